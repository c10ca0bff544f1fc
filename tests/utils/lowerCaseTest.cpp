// The lower-case table and the walk over code points behind it, which hosts do not see.
#include "zovLowerCase.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

template <class Unit>
std::vector<char32_t> codePointsOf(std::basic_string<Unit> const& text) {
    std::vector<char32_t> result;
    zov::forEachCodePoint(std::basic_string_view<Unit>(text), [&](char32_t value) { result.push_back(value); });
    return result;
}

template <class Unit>
std::basic_string<Unit> loweredUnits(std::basic_string<Unit> const& text) {
    std::basic_string<Unit> result;
    zov::forEachLoweredUnit(std::basic_string_view<Unit>(text), [&](Unit unit) { result += unit; });
    return result;
}

using codePoints = std::vector<char32_t>;

class lowerCaseOf : public testing::TestWithParam<std::pair<char32_t, char32_t>> {};

// behaviour: ST-02
TEST_P(lowerCaseOf, isTheSimpleMapping) {
    EXPECT_EQ(zov::lowerCodePoint(GetParam().first), GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(
    codePoints, lowerCaseOf,
    testing::Values(std::pair{U'A', U'a'}, std::pair{U'Z', U'z'}, std::pair{U'@', U'@'}, std::pair{U'[', U'['},
                    std::pair{U'a', U'a'}, std::pair{U'\0', U'\0'}, std::pair{U'\u00C0', U'\u00E0'},
                    std::pair{U'\u00D7', U'\u00D7'}, std::pair{U'\u00DE', U'\u00FE'}, std::pair{U'\u00DF', U'\u00DF'},
                    std::pair{U'\u0100', U'\u0101'}, std::pair{U'\u0130', U'i'}, std::pair{U'\u0131', U'\u0131'},
                    std::pair{U'\u0178', U'\u00FF'}, std::pair{U'\u01C4', U'\u01C6'}, std::pair{U'\u01C5', U'\u01C6'},
                    std::pair{U'\u03A3', U'\u03C3'}, std::pair{U'\u03C2', U'\u03C2'}, std::pair{U'\u0410', U'\u0430'},
                    std::pair{U'\u10A0', U'\u2D00'}, std::pair{U'\u1C90', U'\u10D0'}, std::pair{U'\u13A0', U'\uAB70'},
                    std::pair{U'\u13F0', U'\u13F8'}, std::pair{U'\u1E9E', U'\u00DF'}, std::pair{U'\u2126', U'\u03C9'},
                    std::pair{U'\u212A', U'k'}, std::pair{U'\u2160', U'\u2170'}, std::pair{U'\u24B6', U'\u24D0'},
                    std::pair{U'\u2C62', U'\u026B'}, std::pair{U'\uA77D', U'\u1D79'}, std::pair{U'\uA7AA', U'\u0266'},
                    std::pair{U'\uFF21', U'\uFF41'}, std::pair{U'\U00010400', U'\U00010428'},
                    std::pair{U'\U000104B0', U'\U000104D8'}, std::pair{U'\U00010C80', U'\U00010CC0'},
                    std::pair{U'\U000118A0', U'\U000118C0'}, std::pair{U'\U00016E40', U'\U00016E60'},
                    std::pair{U'\U0001E921', U'\U0001E943'}, std::pair{U'\U0001E922', U'\U0001E922'},
                    std::pair{U'\U0010FFFF', U'\U0010FFFF'}));

// behaviour: ST-02
TEST(lowerCaseTable, hasEveryMappingOnce) {
    int changed = 0;
    for (char32_t code = 0; code <= 0x10FFFF; ++code) {
        char32_t const lower = zov::lowerCodePoint(code);
        if (lower == code) continue;
        ++changed;
        ASSERT_EQ(zov::lowerCodePoint(lower), lower) << "one step is not enough for " << static_cast<unsigned>(code);
        ASSERT_EQ(lower >> 16, code >> 16) << "another number of units for " << static_cast<unsigned>(code);
        ASSERT_TRUE(zov::isScalarValue(lower));
    }
    EXPECT_EQ(changed, 1433);
}

// behaviour: ST-03
TEST(lowerCaseTable, leavesValuesThatAreNoCodePoint) {
    for (char32_t value : {0xD800U, 0xDFFFU, 0x110000U, 0x80000041U, 0xFFFFFFFFU}) {
        EXPECT_EQ(zov::lowerCodePoint(value), value);
    }
}

// behaviour: ST-03
TEST(lowerCaseWalk, joinsPairsOf16BitUnits) {
    EXPECT_EQ(codePointsOf(std::u16string(u"a\U0001F600\U0010FFFFb")), (codePoints{U'a', 0x1F600, 0x10FFFF, U'b'}));
    EXPECT_EQ(codePointsOf(std::u32string(U"a\U0001F600")), (codePoints{U'a', 0x1F600}));
}

// behaviour: ST-03
TEST(lowerCaseWalk, handsLoneSurrogatesOut) {
    EXPECT_EQ(codePointsOf(std::u16string{0xD83D}), (codePoints{0xD83D}));
    EXPECT_EQ(codePointsOf(std::u16string{0xDE00, 0xD83D, u'a'}), (codePoints{0xDE00, 0xD83D, U'a'}));
    EXPECT_EQ(codePointsOf(std::u16string{0xD83D, 0xD83D, 0xDE00}), (codePoints{0xD83D, 0x1F600}));
    EXPECT_EQ(codePointsOf(std::u32string{0xD83D, 0xDE00}), (codePoints{0xD83D, 0xDE00}));
}

// behaviour: ST-02
TEST(lowerCaseWalk, lowersBothWidthsOfUnit) {
    EXPECT_EQ(loweredUnits(std::u16string(u"A\u00C4\U00010400")), u"a\u00E4\U00010428");
    EXPECT_EQ(loweredUnits(std::u32string(U"A\u00C4\U00010400")), U"a\u00E4\U00010428");
}

// behaviour: ST-03
TEST(lowerCaseWalk, keepsTheNumberOfUnits) {
    std::u16string const text{u'A', 0xD801, 0xDC00, 0xD801, u'B', 0xDC00};
    std::u16string const lower{u'a', 0xD801, 0xDC28, 0xD801, u'b', 0xDC00};
    EXPECT_EQ(loweredUnits(text), lower);
}

// behaviour: ST-02
TEST(lowerCaseWalk, foldsWideTextsUnitByUnit) {
    std::wstring folded;
    zov::forEachLowered(L"Part \u0416", [&](wchar_t unit) { folded += unit; });
    EXPECT_EQ(folded, L"part \u0436");
}

} // namespace
