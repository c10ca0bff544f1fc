#include "sqlTokens.h"

#include <algorithm>

namespace zovModel {

namespace {

bool isBlank(char unit) {
    return unit == ' ' || (unit >= '\t' && unit <= '\r');
}

bool isDigit(char unit) {
    return unit >= '0' && unit <= '9';
}

char lower(char unit) {
    return unit >= 'A' && unit <= 'Z' ? static_cast<char>(unit - 'A' + 'a') : unit;
}

// Letters, digits, underscores, dollars, and the units of every character beyond ASCII.
bool isInWord(char unit) {
    char const folded = lower(unit);
    return isDigit(unit) || (folded >= 'a' && folded <= 'z') || unit == '_' || unit == '$' ||
           (static_cast<unsigned char>(unit) & 0x80) != 0;
}

class divider {
public:
    explicit divider(std::string_view sql) : mSql(sql) {}

    std::vector<sqlToken> tokens() {
        std::vector<sqlToken> found;
        while (skipToToken()) {
            std::size_t const begin = mAt;
            tokenKind const kind = passToken();
            found.push_back({kind, mSql.substr(begin, mAt - begin)});
        }
        return found;
    }

private:
    // The unit at some distance; beyond the end a null.
    char unit(std::size_t distance = 0) const { return mAt + distance < mSql.size() ? mSql[mAt + distance] : '\0'; }

    bool skipToToken() {
        for (;;) {
            if (isBlank(unit())) {
                ++mAt;
            } else if (unit() == '-' && unit(1) == '-') {
                passTo("\n");
            } else if (unit() == '/' && unit(1) == '*') {
                mAt += 2;
                passTo("*/");
            } else {
                return mAt < mSql.size();
            }
        }
    }

    void passTo(std::string_view end) {
        std::size_t const found = mSql.find(end, mAt);
        mAt = found == std::string_view::npos ? mSql.size() : found + end.size();
    }

    tokenKind passToken() {
        char const first = unit();
        if (first == '\'') return passQuoted('\'', tokenKind::text);
        if (first == '"' || first == '`') return passQuoted(first, tokenKind::quotedName);
        if (first == '[') {
            passTo("]");
            return tokenKind::quotedName;
        }
        if (lower(first) == 'x' && unit(1) == '\'') {
            ++mAt;
            return passQuoted('\'', tokenKind::blob);
        }
        if (isDigit(first) || (first == '.' && isDigit(unit(1)))) return passNumber();
        if (isInWord(first)) {
            passWord();
            return tokenKind::word;
        }
        ++mAt;
        return tokenKind::sign;
    }

    // A doubled quote stands for one and does not end the text.
    tokenKind passQuoted(char quote, tokenKind kind) {
        for (++mAt; mAt < mSql.size(); ++mAt) {
            if (unit() != quote) continue;
            if (unit(1) != quote) {
                ++mAt;
                break;
            }
            ++mAt;
        }
        mAt = std::min(mAt, mSql.size());
        return kind;
    }

    tokenKind passNumber() {
        if (unit() == '0' && lower(unit(1)) == 'x') {
            passWord();
            return tokenKind::number;
        }
        passDigits();
        if (unit() == '.') {
            ++mAt;
            passDigits();
        }
        bool const isSigned = unit(1) == '+' || unit(1) == '-';
        if (lower(unit()) == 'e' && isDigit(unit(isSigned ? 2 : 1))) {
            mAt += isSigned ? 2 : 1;
            passDigits();
        }
        return tokenKind::number;
    }

    void passDigits() {
        while (isDigit(unit()))
            ++mAt;
    }

    void passWord() {
        while (isInWord(unit()))
            ++mAt;
    }

    std::string_view mSql;
    std::size_t mAt = 0;
};

} // namespace

std::vector<sqlToken> tokensOf(std::string_view sql) {
    return divider(sql).tokens();
}

bool isKeyword(sqlToken const& token, std::string_view keyword) {
    return token.mKind == tokenKind::word && foldedName(token.mText) == foldedName(keyword);
}

bool isSign(sqlToken const& token, char sign) {
    return token.mKind == tokenKind::sign && token.mText.front() == sign;
}

std::string unquotedText(sqlToken const& token) {
    std::string_view text = token.mText;
    if (token.mKind == tokenKind::blob) text.remove_prefix(1);
    bool const isQuoted = token.mKind != tokenKind::word && token.mKind != tokenKind::number &&
                          token.mKind != tokenKind::sign && !text.empty();
    if (!isQuoted) return std::string(text);
    char const quote = text.front() == '[' ? ']' : text.front();
    text.remove_prefix(1);
    if (!text.empty() && text.back() == quote) text.remove_suffix(1);
    std::string plain;
    for (std::size_t at = 0; at < text.size(); ++at) {
        plain += text[at];
        if (text[at] == quote) ++at; // its double
    }
    return plain;
}

std::size_t closingPlace(std::vector<sqlToken> const& tokens, std::size_t open) {
    std::size_t depth = 0;
    for (std::size_t at = open; at < tokens.size(); ++at) {
        if (isSign(tokens[at], '(')) ++depth;
        if (isSign(tokens[at], ')') && --depth == 0) return at;
    }
    return tokens.size();
}

std::string foldedName(std::string_view name) {
    std::string folded(name);
    std::transform(folded.begin(), folded.end(), folded.begin(), lower);
    return folded;
}

} // namespace zovModel
