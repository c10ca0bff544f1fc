// How SQL is divided, what the SQL of a table says of generated columns, and what literals are worth.
#include <gtest/gtest.h>

#include <array>

#include <zovDateTime.h>
#include <zovGenericValue.h>

#include "literal.h"
#include "sqlTokens.h"
#include "tableDefinition.h"
#include "testDatabase.h"

using namespace zovModel;
using texts = std::vector<std::string>;

namespace {

texts divided(std::string_view sql) {
    texts found;
    for (sqlToken const& each : tokensOf(sql))
        found.emplace_back(each.mText);
    return found;
}

tokenKind kindOf(std::string_view sql) {
    std::vector<sqlToken> const tokens = tokensOf(sql);
    EXPECT_EQ(tokens.size(), 1u) << sql;
    return tokens.at(0).mKind;
}

std::string plain(std::string_view sql) {
    return unquotedText(tokensOf(sql).at(0));
}

// The kind and text of the literal, "none" when there is none.
std::string literalText(std::string_view sql) {
    auto const found = literalOf(sql);
    if (!found) return "none";
    constexpr std::array cKinds{"null", "whole", "real", "text", "blob"};
    return std::string(cKinds.at(static_cast<std::size_t>(found->mKind))) + " " + found->mText;
}

} // namespace

// behaviour: TL-48
TEST(sqlTokens, areWordsNumbersAndSigns) {
    EXPECT_EQ(divided("a AS(b+1.5e-3)||c_1$"), (texts{"a", "AS", "(", "b", "+", "1.5e-3", ")", "|", "|", "c_1$"}));
    EXPECT_EQ(divided("größe<Ширина"), (texts{"größe", "<", "Ширина"}));
    EXPECT_EQ(divided(" \t\r\n\f"), texts());
    EXPECT_EQ(divided(""), texts());
}

// behaviour: TL-48
TEST(sqlTokens, leaveOutComments) {
    EXPECT_EQ(divided("a -- b, 'c\n, d /* e -- */ f"), (texts{"a", ",", "d", "f"}));
    EXPECT_EQ(divided("a /* it's */ - b"), (texts{"a", "-", "b"}));
    EXPECT_EQ(divided("a--"), texts{"a"});
    EXPECT_EQ(divided("a/*"), texts{"a"});
    EXPECT_EQ(divided("a/*/b*/c"), (texts{"a", "c"}));
    EXPECT_EQ(divided("'-- no comment' \"/*nor this*/\""), (texts{"'-- no comment'", "\"/*nor this*/\""}));
}

// behaviour: TL-48
TEST(sqlTokens, keepQuotedTextsWhole) {
    EXPECT_EQ(divided("'a''b'\"c\"\"d\"`e``f`[g]]"), (texts{"'a''b'", "\"c\"\"d\"", "`e``f`", "[g]", "]"}));
    EXPECT_EQ(divided("'a"), texts{"'a"});
    EXPECT_EQ(divided("'a''"), texts{"'a''"});
    EXPECT_EQ(divided("'"), texts{"'"});
    EXPECT_EQ(divided("[a"), texts{"[a"});
    EXPECT_EQ(divided("x'0A' xx'0A'"), (texts{"x'0A'", "xx", "'0A'"}));
}

// behaviour: TL-48
TEST(sqlTokens, areOfOneKindEach) {
    EXPECT_EQ(kindOf("CURRENT_DATE"), tokenKind::word);
    EXPECT_EQ(kindOf("\"a\""), tokenKind::quotedName);
    EXPECT_EQ(kindOf("`a`"), tokenKind::quotedName);
    EXPECT_EQ(kindOf("[a]"), tokenKind::quotedName);
    EXPECT_EQ(kindOf("'a'"), tokenKind::text);
    EXPECT_EQ(kindOf("X'00'"), tokenKind::blob);
    EXPECT_EQ(kindOf("*"), tokenKind::sign);
    for (auto const* const number : {"0", "12", "1.", ".5", "1.5", "1e3", "1E+3", "1.e-3", "0x1F", "0XaB"})
        EXPECT_EQ(kindOf(number), tokenKind::number) << number;
    EXPECT_EQ(divided("1e 1e+ ."), (texts{"1", "e", "1", "e", "+", "."}));
}

// behaviour: TL-48
TEST(sqlTokens, loseTheirQuotes) {
    EXPECT_EQ(plain("'it''s'"), "it's");
    EXPECT_EQ(plain("\"say \"\"hi\"\"\""), "say \"hi\"");
    EXPECT_EQ(plain("`a``b`"), "a`b");
    EXPECT_EQ(plain("[a b]"), "a b");
    EXPECT_EQ(plain("x'0aff'"), "0aff");
    EXPECT_EQ(plain("word"), "word");
    EXPECT_EQ(plain("''"), "");
    EXPECT_EQ(plain("''''"), "'");
}

// behaviour: TL-48
TEST(sqlTokens, areKeywordsInAnyLetterCaseButNotInQuotes) {
    EXPECT_TRUE(isKeyword(tokensOf("gEnErAtEd").at(0), "GENERATED"));
    EXPECT_FALSE(isKeyword(tokensOf("\"AS\"").at(0), "AS"));
    EXPECT_FALSE(isKeyword(tokensOf("ASC").at(0), "AS"));
    EXPECT_EQ(foldedName("Größe É"), "größe É");
}

// behaviour: TL-48
TEST(sqlTokens, arePutTogetherByParentheses) {
    std::vector<sqlToken> const tokens = tokensOf("(a (b) ')') c (");
    EXPECT_EQ(closingPlace(tokens, 0), 6u);
    EXPECT_EQ(closingPlace(tokens, 2), 4u);
    EXPECT_EQ(closingPlace(tokens, 8), tokens.size());
}

// behaviour: TL-47
TEST(tableDefinition, tellsFromWhatColumnsAreGenerated) {
    EXPECT_EQ(generatedExpressions("CREATE TABLE t (a INT, b INT AS (a + 1), c TEXT GENERATED ALWAYS AS ( a || ',' ) "
                                   "STORED, d, CHECK (a > 0))"),
              (texts{"", "a + 1", "a || ','", ""}));
}

// behaviour: TL-47
TEST(tableDefinition, isNotConfusedByNamesTypesAndTexts) {
    EXPECT_EQ(generatedExpressions(R"sql(CREATE TABLE "as (1)" (
        "as" "AS" (3), [b,c] DECIMAL(8, 2) DEFAULT ('as (2)'), `check` INT CHECK (`check` IN (1, (2))),
        "primary" INT COLLATE "as" as ((1) + /* ) */ (2)) -- as (3)
        , e AS(max("as", ')')) UNIQUE, CONSTRAINT "x" UNIQUE ("as") CHECK ([b,c] > (1)), PRIMARY KEY (e)))sql"),
              (texts{"", "", "", "(1) + /* ) */ (2)", "max(\"as\", ')')"}));
}

// behaviour: TL-47
TEST(tableDefinition, leavesOutCommentsAroundAnExpression) {
    EXPECT_EQ(generatedExpressions("CREATE TABLE t (a, b AS (/* twice */ a * 2 -- really\n))"), (texts{"", "a * 2"}));
}

// behaviour: TL-47
TEST(tableDefinition, saysNothingOfOtherStatements) {
    EXPECT_EQ(generatedExpressions("CREATE VIRTUAL TABLE v USING thing (a AS (b))"), texts());
    EXPECT_EQ(generatedExpressions("CREATE VIEW v AS SELECT (1)"), texts());
    EXPECT_EQ(generatedExpressions(""), texts());
    EXPECT_EQ(generatedExpressions("CREATE TABLE"), texts());
    EXPECT_EQ(generatedExpressions("CREATE TABLE t (a, b AS (c"), (texts{"", "c"}));
    EXPECT_EQ(generatedExpressions("CREATE TABLE t (a,"), texts{""});
}

// behaviour: TL-48
TEST(tableDefinition, endsWhateverItIsGiven) {
    std::string const whole = "CREATE TABLE t ('a' AS (x'0' + \"b\"), [c] -- d\n/* e */ AS ((`f`)), CHECK (1.5e+3))";
    for (std::size_t begin = 0; begin < whole.size(); ++begin) {
        for (std::size_t length = 0; begin + length <= whole.size(); ++length) {
            std::string const part = whole.substr(begin, length);
            for (sqlToken const& each : tokensOf(part)) {
                ASSERT_FALSE(each.mText.empty());
                ASSERT_LE(unquotedText(each).size(), each.mText.size());
            }
            generatedExpressions("CREATE TABLE t (" + part);
            literalOf(part);
        }
    }
}

// behaviour: TL-44
TEST(literal, isOneConstant) {
    EXPECT_EQ(literalText("NULL"), "null ");
    EXPECT_EQ(literalText("12"), "whole 12");
    EXPECT_EQ(literalText("- /* minus */ 12"), "whole -12");
    EXPECT_EQ(literalText("+12"), "whole 12");
    EXPECT_EQ(literalText("0x1F"), "whole 31");
    EXPECT_EQ(literalText("-0x10"), "whole -16");
    EXPECT_EQ(literalText("0xffffffffffffffff"), "whole -1");
    EXPECT_EQ(literalText("1.50"), "real 1.50");
    EXPECT_EQ(literalText("-.5e3"), "real -.5e3");
    EXPECT_EQ(literalText("true"), "whole 1");
    EXPECT_EQ(literalText("FALSE"), "whole 0");
    EXPECT_EQ(literalText("'it''s'"), "text it's");
    EXPECT_EQ(literalText("x'0aFF'"), "blob 0aFF");
    EXPECT_EQ(literalText("((5))"), "whole 5");
    EXPECT_EQ(literalText("('a')"), "text a");
}

// behaviour: TL-44
TEST(literal, isANameThatStandsForItsOwnText) {
    EXPECT_EQ(literalText("open"), "text open");
    EXPECT_EQ(literalText("\"half open\""), "text half open");
    EXPECT_EQ(literalText("\"true\""), "text true");
    EXPECT_EQ(literalText("[a]"), "text a");
}

// behaviour: TL-44
TEST(literal, hasAWholeNumbersRangeOrIsAFloatingOne) {
    EXPECT_EQ(literalText("9223372036854775807"), "whole 9223372036854775807");
    EXPECT_EQ(literalText("-9223372036854775808"), "whole -9223372036854775808");
    EXPECT_EQ(literalText("9223372036854775808"), "real 9223372036854775808");
    EXPECT_EQ(literalText("0x10000000000000000"), "none");
}

// behaviour: TL-46
TEST(literal, isNoExpression) {
    for (auto const* const expression : {"", "CURRENT_DATE", "current_time", "Current_Timestamp", "1 + 1", "-'5'",
                                         "- -5", "(1) + (2)", "abs(5)", "'a' || 'b'", "()", "*", "+", "(", "- a"}) {
        EXPECT_EQ(literalText(expression), "none") << expression;
    }
}

// behaviour: TL-44
TEST(literal, isAValueOfTheFieldsType) {
    using namespace zov::metamodel;
    auto const value = [](char const* expression, eFieldType type) { return valueOf(*literalOf(expression), type); };
    EXPECT_EQ(*value("'2024-02-29'", eDate)->valuePtr<zov::date>(), zov::date(2024, 2, 29));
    EXPECT_EQ(*value("'08:30'", eString)->valuePtr<zov::string>(), L"08:30");
    EXPECT_EQ(*value("'1e3'", eLong)->valuePtr<long>(), 1000);
    EXPECT_EQ(*value("3.0", eLong)->valuePtr<long>(), 3);
    EXPECT_EQ(*value("0.1", eDouble)->valuePtr<double>(), 0.1);
    EXPECT_EQ(*value("1", eBool)->valuePtr<bool>(), true);
    EXPECT_EQ(*value("1e3", eString)->valuePtr<zov::string>(), L"1000.0");
    EXPECT_EQ(*value("9.90", eCustom)->valuePtr<zov::string>(), L"9.9");
    EXPECT_TRUE(value("NULL", ePtr)->isEmpty());
    EXPECT_FALSE(value("5", ePtr));
    EXPECT_FALSE(value("'0a'", eBinary));
    EXPECT_FALSE(value("5", eBinary));
    EXPECT_FALSE(value("x'0a'", eString));
    EXPECT_FALSE(value("x'0a'", eCustom));
    EXPECT_FALSE(value("3.5", eLong));
    EXPECT_FALSE(value("'2024-02-30'", eDate));
    EXPECT_FALSE(value("9e999", eDouble));
}
