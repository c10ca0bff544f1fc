#include "literal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <system_error>

#include <sqlite3.h>

#include <zovMdlFieldInfo.h>

#include "sqlTokens.h"

namespace zovModel {

using zov::genericValue;
using zov::string;
using zov::metamodel::eFieldType;
using zov::metamodel::fieldInfo;

namespace {

using tokenList = std::vector<sqlToken>;

template <class Number, class... Format>
std::optional<Number> readNumber(std::string_view text, Format... format) {
    Number number{};
    auto const [end, problem] = std::from_chars(text.data(), text.data() + text.size(), number, format...);
    if (problem != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

// What SQLite writes into a column of texts.
std::string writtenBySqlite(literal const& source) {
    auto const number = source.mKind == literalKind::real ? readNumber<double>(source.mText) : std::nullopt;
    if (!number) return source.mText;
    std::array<char, 40> text{};
    sqlite3_snprintf(static_cast<int>(text.size()), text.data(), "%!.15g", *number);
    return text.data();
}

// Numbers with more digits than a whole number has are floating ones; those in base 16 are the bits of one.
std::optional<literal> numberOf(std::string_view digits, bool isNegative) {
    std::string const minus = isNegative ? "-" : "";
    if (foldedName(digits.substr(0, 2)) == "0x") {
        auto const bits = readNumber<std::uint64_t>(digits.substr(2), 16);
        if (!bits) return std::nullopt;
        auto const number = static_cast<std::int64_t>(isNegative ? std::uint64_t{0} - *bits : *bits);
        return literal{literalKind::whole, std::to_string(number)};
    }
    if (auto const whole = readNumber<std::int64_t>(minus + std::string(digits))) {
        return literal{literalKind::whole, std::to_string(*whole)};
    }
    return literal{literalKind::real, minus + std::string(digits)};
}

std::optional<literal> literalOf(sqlToken const& token) {
    switch (token.mKind) {
    case tokenKind::number: return numberOf(token.mText, false);
    case tokenKind::blob: return literal{literalKind::blob, unquotedText(token)};
    case tokenKind::text:
    case tokenKind::quotedName: return literal{literalKind::text, unquotedText(token)};
    case tokenKind::sign: return std::nullopt;
    case tokenKind::word: break;
    }
    if (isKeyword(token, "NULL")) return literal{literalKind::null, std::string()};
    if (isKeyword(token, "TRUE")) return literal{literalKind::whole, "1"};
    if (isKeyword(token, "FALSE")) return literal{literalKind::whole, "0"};
    constexpr std::array cMoments{"CURRENT_DATE", "CURRENT_TIME", "CURRENT_TIMESTAMP"};
    auto const isToken = [&token](auto const* word) { return isKeyword(token, word); };
    if (std::any_of(cMoments.begin(), cMoments.end(), isToken)) return std::nullopt;
    return literal{literalKind::text, std::string(token.mText)};
}

// Leaves out parentheses around the whole.
tokenList bareTokens(std::string_view expression) {
    tokenList tokens = tokensOf(expression);
    while (tokens.size() > 2 && isSign(tokens.front(), '(') && closingPlace(tokens, 0) == tokens.size() - 1) {
        tokens.pop_back();
        tokens.erase(tokens.begin());
    }
    return tokens;
}

// Writes a number into a value of another type.
bool assignNumber(genericValue& target, literal const& source) {
    if (source.mKind == literalKind::whole) {
        auto const number = readNumber<long>(source.mText);
        return number && target.heldBy()->assignFrom(*genericValue(*number).heldBy());
    }
    auto const number = readNumber<double>(source.mText);
    return number && target.heldBy()->assignFrom(*genericValue(*number).heldBy());
}

// A text that is a number is stored as that number in a column of numbers, as '1e3' is 1000.
bool assignText(genericValue& target, literal const& source, eFieldType type) {
    if (target.assignText(string::fromUtf8(writtenBySqlite(source)))) return true;
    auto const number = readNumber<double>(source.mText);
    return type == zov::metamodel::eLong && number && target.heldBy()->assignFrom(*genericValue(*number).heldBy());
}

bool assign(genericValue& target, literal const& source, eFieldType type) {
    bool const isBlob = source.mKind == literalKind::blob;
    if (isBlob != (type == zov::metamodel::eBinary)) return false;
    bool const isNumber = source.mKind == literalKind::whole || source.mKind == literalKind::real;
    if (isNumber && type != zov::metamodel::eString) return assignNumber(target, source);
    return assignText(target, source, type);
}

} // namespace

std::optional<literal> literalOf(std::string_view expression) {
    tokenList const tokens = bareTokens(expression);
    if (tokens.size() == 1) return literalOf(tokens.front());
    if (tokens.size() != 2 || tokens[1].mKind != tokenKind::number) return std::nullopt;
    bool const isNegative = isSign(tokens[0], '-');
    return isNegative || isSign(tokens[0], '+') ? numberOf(tokens[1].mText, isNegative) : std::nullopt;
}

std::optional<genericValue> valueOf(literal const& source, eFieldType type) {
    if (source.mKind == literalKind::null) return genericValue();
    if (type == zov::metamodel::eCustom && source.mKind != literalKind::blob) {
        return genericValue(string::fromUtf8(writtenBySqlite(source)));
    }
    genericValue value;
    bool const converts = fieldInfo::getDefaultFromType(type, value) && assign(value, source, type);
    return converts ? std::optional(value) : std::nullopt;
}

} // namespace zovModel
