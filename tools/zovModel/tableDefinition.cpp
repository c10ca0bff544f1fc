#include "tableDefinition.h"

#include <algorithm>
#include <array>

#include "sqlTokens.h"

namespace zovModel {

namespace {

using tokenList = std::vector<sqlToken>;

// A name that is not quoted cannot be one of these words.
bool beginsConstraint(sqlToken const& token) {
    constexpr std::array cWords{"CONSTRAINT", "PRIMARY", "UNIQUE", "CHECK", "FOREIGN"};
    return std::any_of(cWords.begin(), cWords.end(), [&token](auto const* word) { return isKeyword(token, word); });
}

// The text from the token at `begin` to the one before `end`, with all that is between them.
std::string writtenBetween(tokenList const& tokens, std::size_t begin, std::size_t end) {
    if (begin >= end) return std::string();
    std::string_view const first = tokens[begin].mText;
    std::string_view const last = tokens[end - 1].mText;
    return std::string(first.data(), static_cast<std::size_t>(last.data() + last.size() - first.data()));
}

// Reads the definition of the column that begins at `at`, and leaves `at` at the comma or parenthesis behind it. AS
// with a parenthesis stands nowhere else in one: it is no name unless it is quoted.
std::string readColumn(tokenList const& tokens, std::size_t& at) {
    std::string expression;
    while (at < tokens.size() && !isSign(tokens[at], ',') && !isSign(tokens[at], ')')) {
        if (isSign(tokens[at], '(')) {
            std::size_t const end = closingPlace(tokens, at);
            if (at > 0 && isKeyword(tokens[at - 1], "AS")) expression = writtenBetween(tokens, at + 1, end);
            at = end;
        }
        ++at;
    }
    return expression;
}

} // namespace

std::vector<std::string> generatedExpressions(std::string_view createTable) {
    tokenList const tokens = tokensOf(createTable);
    std::vector<std::string> expressions;
    if (tokens.size() < 2 || !isKeyword(tokens[1], "TABLE")) return expressions;
    auto const list =
        std::find_if(tokens.begin(), tokens.end(), [](sqlToken const& each) { return isSign(each, '('); });
    auto at = static_cast<std::size_t>(list - tokens.begin());
    while (at < tokens.size() && !isSign(tokens[at], ')')) {
        ++at; // the parenthesis, or the comma behind the column before
        if (at == tokens.size() || beginsConstraint(tokens[at])) break;
        expressions.push_back(readColumn(tokens, at));
    }
    return expressions;
}

} // namespace zovModel
