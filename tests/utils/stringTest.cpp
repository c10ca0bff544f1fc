// Texts: what a host does with zov::string.
#include "zovString.h"

#include <gtest/gtest.h>

#include <climits>
#include <clocale>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cwchar>
#include <limits>
#include <string>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

namespace {

using zov::string;
using pieces = std::vector<string>;

pieces split(string const& text, string const& separator, bool skipEmpty = false) {
    pieces result{L"left from before"};
    text.splitAt(separator, result, skipEmpty);
    return result;
}

// Runs `check` in every locale of a list that the machine has, the plain one included, and restores the one before.
template <class Fn>
void inEveryLocale(Fn&& check) {
    std::string const before = std::setlocale(LC_ALL, nullptr);
    for (char const* name : {"C", "C.UTF-8", "de_DE.UTF-8", "tr_TR.UTF-8", "German_Germany", "Turkish_Turkey"}) {
        if (std::setlocale(LC_ALL, name) == nullptr) continue;
        SCOPED_TRACE(name);
        check();
    }
    std::setlocale(LC_ALL, before.c_str());
}

// One wide unit of any value, as a text.
string unitText(unsigned value) {
    return string(1, static_cast<wchar_t>(value));
}

static_assert(std::is_base_of_v<std::wstring, string>);
static_assert(sizeof(string) == sizeof(std::wstring));
static_assert(std::is_nothrow_move_constructible_v<string>);
static_assert(std::is_convertible_v<wchar_t const*, string>);
static_assert(std::is_convertible_v<std::wstring, string>);
static_assert(std::is_constructible_v<string, std::wstring_view>);
static_assert(!std::is_convertible_v<std::wstring_view, string>);
static_assert(!std::is_constructible_v<string, std::nullptr_t>);

// behaviour: ST-01
TEST(stringValue, comparesAndJoinsLikeAStandardText) {
    string text = L"Part";
    text += L" one";
    string const joined = text + L"!" + string(L"?");
    EXPECT_EQ(joined, L"Part one!?");
    EXPECT_EQ(joined, std::wstring(L"Part one!?"));
    EXPECT_LT(string(L"a"), string(L"b"));
}

// behaviour: ST-01
TEST(stringValue, isAssignedFromLiteralsTextsAndParts) {
    string text;
    text = L"width";
    EXPECT_EQ(text, L"width");
    text = std::wstring(L"height");
    EXPECT_EQ(text, L"height");
    text = text.substr(1, 3);
    EXPECT_EQ(text, L"eig");
    text = string(std::wstring_view(L"depth"));
    EXPECT_EQ(text, L"depth");
}

// behaviour: ST-01
TEST(stringValue, isAKeyOfHashedContainers) {
    std::unordered_set<string> const names{L"a", L"b", L"a"};
    EXPECT_EQ(names.size(), 2U);
    EXPECT_TRUE(names.contains(L"b"));
}

// behaviour: ST-02
TEST(stringLower, findsCapitalsOfEveryScript) {
    EXPECT_EQ(string(L"PART Width 80").lower(), L"part width 80");
    EXPECT_EQ(string(L"\u00C4\u00D6\u00DC \u0130 \u1E9E").lower(), L"\u00E4\u00F6\u00FC i \u00DF");
    EXPECT_EQ(string(L"\u0391\u03A3 \u0416 \u0531 \u10A0 \u13A0").lower(), L"\u03B1\u03C3 \u0436 \u0561 \u2D00 \uAB70");
    EXPECT_EQ(string(L"\U00010400\U0001E921").lower(), L"\U00010428\U0001E943");
}

// behaviour: ST-02
TEST(stringLower, returnsACopy) {
    string const text = L"ABC";
    EXPECT_EQ(text.lower(), L"abc");
    EXPECT_EQ(text, L"ABC");
    EXPECT_EQ(string().lower(), L"");
}

// behaviour: ST-02
// behaviour: ST-03
TEST(stringLower, foldsTextsOfEveryLength) {
    for (std::size_t length = 1; length <= 70; ++length) {
        EXPECT_EQ(string(length, L'Q').lower(), string(length, L'q'));
        EXPECT_EQ(string(length, L'@').lower(), string(length, L'@'));
        EXPECT_EQ(string(length, L'[').lower(), string(length, L'['));
        for (std::size_t const at : {std::size_t{0}, length / 2, length - 1}) {
            for (auto const& [capital, small] : {std::pair{L'\u00C4', L'\u00E4'}, std::pair{L'\u212A', L'k'},
                                                 std::pair{L'\u0178', L'\u00FF'}, std::pair{L'\u4E2D', L'\u4E2D'}}) {
                string text(length, L'Z');
                string expected(length, L'z');
                text[at] = capital;
                expected[at] = small;
                EXPECT_EQ(text.lower(), expected);
            }
        }
    }
}

// behaviour: ST-03
TEST(stringLower, leavesWhatHasNoLowerCase) {
    EXPECT_EQ(string(L"a1_\u00DF \u4E2D").lower(), L"a1_\u00DF \u4E2D");
    string const withNul(L"A\0B", 3);
    EXPECT_EQ(withNul.lower(), string(L"a\0b", 3));
}

// behaviour: ST-03
TEST(stringLower, leavesUnitsThatAreNoCodePoint) {
    for (unsigned value : {0xD800U, 0xDFFFU, 0xDC00U}) {
        string const lone = unitText(value) + L"A";
        EXPECT_EQ(lone.lower(), unitText(value) + L"a");
    }
    if constexpr (sizeof(wchar_t) == 4) {
        EXPECT_EQ(unitText(0x110000).lower(), unitText(0x110000));
        EXPECT_EQ(unitText(0xFFFFFFFF).lower(), unitText(0xFFFFFFFF));
    }
}

// behaviour: ST-04
TEST(stringLower, isTheSameInEveryLocale) {
    inEveryLocale([] { EXPECT_EQ(string(L"TITLE I\u00C9").lower(), L"title i\u00E9"); });
}

// behaviour: ST-05
TEST(stringFormat, takesWideTextForS) {
    EXPECT_EQ(string::sformat(L"classInfo created: \"%s\"", L"Part"), L"classInfo created: \"Part\"");
    EXPECT_EQ(string::sformat(L"%s to %ls", L"\u00C4\U0001F600", L"\u4E2D"), L"\u00C4\U0001F600 to \u4E2D");
}

// behaviour: ST-05
TEST(stringFormat, padsAndCutsTexts) {
    EXPECT_EQ(string::sformat(L"[%5s][%-5s][%.2s][%5.1s]", L"abc", L"abc", L"abc", L"abc"),
              L"[  abc][abc  ][ab][    a]");
    EXPECT_EQ(string::sformat(L"[%*s][%-*s][%*s]", 4, L"a", 4, L"b", -4, L"c"), L"[   a][b   ][c   ]");
    EXPECT_EQ(string::sformat(L"[%.*s][%.*s][%.s]", 1, L"ab", -1, L"cd", L"ef"), L"[a][cd][]");
}

// behaviour: ST-05
TEST(stringFormat, readsNoFurtherThanThePrecision) {
    wchar_t const unended[] = {L'a', L'b', L'c'};
    EXPECT_EQ(string::sformat(L"%.3s", unended), L"abc");
}

// behaviour: ST-05
TEST(stringFormat, showsANullText) {
    wchar_t const* const wide = nullptr;
    char const* const narrow = nullptr;
    EXPECT_EQ(string::sformat(L"%s %hs", wide, narrow), L"(null) (null)");
}

// behaviour: ST-06
TEST(stringFormat, readsNarrowTextAsUtf8) {
    EXPECT_EQ(string::sformat(L"%hs|%4hs|%.1hs", "\xC3\x84", "ab", "xyz"), L"\u00C4|  ab|x");
}

// behaviour: ST-07
TEST(stringFormat, writesOneUnitForC) {
    EXPECT_EQ(string::sformat(L"%c%lc%c|%3c|%-3c|", L'a', static_cast<std::wint_t>(0x00E4), L'\u4E2D', L'x', L'y'),
              L"a\u00E4\u4E2D|  x|y  |");
}

struct wholeCase {
    wchar_t const* mFormat;
    int mValue;
    wchar_t const* mText;
};

class stringFormatWhole : public testing::TestWithParam<wholeCase> {};

// behaviour: ST-08
TEST_P(stringFormatWhole, writesNumbersAsCDoes) {
    EXPECT_EQ(string::sformat(GetParam().mFormat, GetParam().mValue), GetParam().mText);
}

INSTANTIATE_TEST_SUITE_P(formats, stringFormatWhole,
                         testing::Values(wholeCase{L"%d", 0, L"0"}, wholeCase{L"%d", -7, L"-7"},
                                         wholeCase{L"%i", INT_MIN, L"-2147483648"}, wholeCase{L"%5d|", 42, L"   42|"},
                                         wholeCase{L"%-5d|", 42, L"42   |"}, wholeCase{L"%05d", -42, L"-0042"},
                                         wholeCase{L"%-05d|", 42, L"42   |"}, wholeCase{L"%+d", 42, L"+42"},
                                         wholeCase{L"% d", 42, L" 42"}, wholeCase{L"%+ d", 42, L"+42"},
                                         wholeCase{L"%.3d", 7, L"007"}, wholeCase{L"%6.3d", -7, L"  -007"},
                                         wholeCase{L"%06.3d", 7, L"   007"}, wholeCase{L"[%.0d]", 0, L"[]"},
                                         wholeCase{L"[%.d]", 0, L"[]"}, wholeCase{L"%u", -1, L"4294967295"},
                                         wholeCase{L"%x", 0xBEEF, L"beef"}, wholeCase{L"%X", 0xBEEF, L"BEEF"},
                                         wholeCase{L"%#x", 0xBEEF, L"0xbeef"}, wholeCase{L"%#X", 0xBEEF, L"0XBEEF"},
                                         wholeCase{L"%#x", 0, L"0"}, wholeCase{L"%#010x", 0xBEEF, L"0x0000beef"},
                                         wholeCase{L"%o", 8, L"10"}, wholeCase{L"%#o", 8, L"010"},
                                         wholeCase{L"%#o", 0, L"0"}, wholeCase{L"%#.0o", 0, L"0"},
                                         wholeCase{L"%#.4o", 8, L"0010"}, wholeCase{L"%hhd", 0x1FF, L"-1"},
                                         wholeCase{L"%hd", 0x18000, L"-32768"}, wholeCase{L"%hhu", 0x1FF, L"255"},
                                         wholeCase{L"%hu", 0x1FFFF, L"65535"}));

// behaviour: ST-08
TEST(stringFormat, writesEveryWidthOfNumber) {
    EXPECT_EQ(string::sformat(L"%ld %lu", LONG_MIN, ULONG_MAX),
              string(std::to_wstring(LONG_MIN)) + L" " + std::to_wstring(ULONG_MAX));
    EXPECT_EQ(string::sformat(L"%lld %llu", LLONG_MIN, ULLONG_MAX), L"-9223372036854775808 18446744073709551615");
    EXPECT_EQ(string::sformat(L"%jd %ju", std::intmax_t{-1}, std::uintmax_t{2}), L"-1 2");
    EXPECT_EQ(string::sformat(L"%zu %zd", std::size_t{3}, std::ptrdiff_t{-3}), L"3 -3");
    EXPECT_EQ(string::sformat(L"%td %tu", std::ptrdiff_t{-4}, std::ptrdiff_t{4}), L"-4 4");
}

constexpr double infinity = std::numeric_limits<double>::infinity();

struct floatCase {
    wchar_t const* mFormat;
    double mValue;
    wchar_t const* mText;
};

class stringFormatFloat : public testing::TestWithParam<floatCase> {};

// behaviour: ST-09
TEST_P(stringFormatFloat, writesFloatsAsCDoes) {
    EXPECT_EQ(string::sformat(GetParam().mFormat, GetParam().mValue), GetParam().mText);
}

INSTANTIATE_TEST_SUITE_P(
    formats, stringFormatFloat,
    testing::Values(floatCase{L"%f", 0.0, L"0.000000"}, floatCase{L"%f", -1.5, L"-1.500000"},
                    floatCase{L"%.0f", 2.5, L"2"}, floatCase{L"%#.0f", 2.5, L"2."},
                    floatCase{L"%.3f", 1e15, L"1000000000000000.000"},
                    floatCase{L"%.20f", 0.1, L"0.10000000000000000555"}, floatCase{L"%10.2f|", 3.14159, L"      3.14|"},
                    floatCase{L"%-10.2f|", 3.14159, L"3.14      |"}, floatCase{L"%010.2f", -3.14159, L"-000003.14"},
                    floatCase{L"%+f", 1.0, L"+1.000000"}, floatCase{L"% f", 1.0, L" 1.000000"},
                    floatCase{L"%e", 12345.678, L"1.234568e+04"}, floatCase{L"%.0e", 12345.678, L"1e+04"},
                    floatCase{L"%#.0e", 12345.678, L"1.e+04"}, floatCase{L"%E", 1e-100, L"1.000000E-100"},
                    floatCase{L"%g", 0.0001, L"0.0001"}, floatCase{L"%g", 0.00001, L"1e-05"},
                    floatCase{L"%g", 1e6, L"1e+06"}, floatCase{L"%g", 100000.0, L"100000"},
                    floatCase{L"%G", 1e-10, L"1E-10"}, floatCase{L"%.10g", 0.1, L"0.1"},
                    floatCase{L"%.0g", 123.0, L"1e+02"}, floatCase{L"%#g", 1.0, L"1.00000"},
                    floatCase{L"%#g", 0.0001, L"0.000100000"}, floatCase{L"%#g", 1e10, L"1.00000e+10"},
                    floatCase{L"%#.0g", 3.0, L"3."}, floatCase{L"%#.3g", 999.9, L"1.00e+03"},
                    floatCase{L"%#g", 0.0, L"0.00000"}, floatCase{L"%a", 1.0, L"0x1p+0"},
                    floatCase{L"%.2a", 1.999, L"0x2.00p+0"}, floatCase{L"%A", 0.1, L"0X1.999999999999AP-4"},
                    floatCase{L"%015a", -1.5, L"-0x0000001.8p+0"}, floatCase{L"%f", infinity, L"inf"},
                    floatCase{L"%F", -infinity, L"-INF"}, floatCase{L"%08f", infinity, L"     inf"},
                    floatCase{L"%+g", infinity, L"+inf"}, floatCase{L"%.1f", 0.25, L"0.2"}));

// behaviour: ST-09
TEST(stringFormat, writesEveryDigitOfLargeNumbers) {
    string const text = string::sformat(L"%.2f", std::ldexp(1.0, 1023));
    EXPECT_EQ(text.size(), 311U);
    EXPECT_TRUE(text.starts_with(L"89884656743115795386465259539451236680898848947115328636715040578866337902750"));
    EXPECT_TRUE(text.ends_with(L"8608.00"));
}

// behaviour: ST-09
TEST(stringFormat, writesLongDoublesAndNan) {
    EXPECT_EQ(string::sformat(L"%.2Lf %Lg", 1.25L, 2.5L), L"1.25 2.5");
    EXPECT_EQ(string::sformat(L"%f %G", std::nan(""), std::nan("")), L"nan NAN");
}

// behaviour: ST-10
TEST(stringFormat, writesPointersInHexadecimal) {
    EXPECT_EQ(string::sformat(L"%p", reinterpret_cast<void*>(std::uintptr_t{0xBEEF})), L"0xbeef");
    EXPECT_EQ(string::sformat(L"%p", static_cast<void*>(nullptr)), L"0x0");
}

// behaviour: ST-11
TEST(stringFormat, hasNoLengthLimit) {
    string const part(300'000, L'x');
    string const text = string::sformat(L"<%s%s>", part.c_str(), part.c_str());
    EXPECT_EQ(text.size(), 600'002U);
    EXPECT_EQ(text.back(), L'>');
    EXPECT_EQ(string::sformat(L"%1000000d", 1).size(), 1'000'000U);
}

// behaviour: ST-12
TEST(stringFormat, writesThePercentSign) {
    EXPECT_EQ(string::sformat(L"100%% of %d", 3), L"100% of 3");
    EXPECT_EQ(string::sformat(L"plain"), L"plain");
    EXPECT_EQ(string::sformat(L""), L"");
}

class stringFormatIll : public testing::TestWithParam<wchar_t const*> {};

// behaviour: ST-13
TEST_P(stringFormatIll, yieldsTheEmptyText) {
    EXPECT_EQ(string::sformat(GetParam(), 1, 1), L"");
}

INSTANTIATE_TEST_SUITE_P(formats, stringFormatIll,
                         testing::Values(nullptr, L"%", L"a %", L"%-", L"%5", L"%5.", L"%.", L"%l", L"%ll", L"%y",
                                         L"text %d %!", L"%n", L"%1$d", L"%1000001d", L"%.1000001d",
                                         L"%99999999999999999999d", L"%\u00E4"));

// behaviour: ST-13
TEST(stringFormat, refusesFieldsOfAbsurdWidth) {
    EXPECT_EQ(string::sformat(L"%*d", INT_MAX, 1), L"");
    EXPECT_EQ(string::sformat(L"%*d", INT_MIN, 1), L"");
}

// behaviour: ST-14
TEST(stringFormat, isTheSameInEveryLocale) {
    inEveryLocale([] { EXPECT_EQ(string::sformat(L"%.1f %s %hs", 1.5, L"\u00E4", "\xC3\xA4"), L"1.5 \u00E4 \u00E4"); });
}

// behaviour: ST-15
TEST(stringSplit, cutsAtEachSeparator) {
    EXPECT_EQ(split(L"a,b,c", L","), (pieces{L"a", L"b", L"c"}));
    EXPECT_EQ(split(L"one", L","), (pieces{L"one"}));
    EXPECT_EQ(split(L"a::b:c", L"::"), (pieces{L"a", L"b:c"}));
    EXPECT_EQ(split(L"aaa", L"aa"), (pieces{L"", L"a"}));
}

// behaviour: ST-15
TEST(stringSplit, keepsEmptyPieces) {
    EXPECT_EQ(split(L",a,,b,", L","), (pieces{L"", L"a", L"", L"b", L""}));
    EXPECT_EQ(split(L",", L","), (pieces{L"", L""}));
}

// behaviour: ST-16
TEST(stringSplit, givesNothingForTheEmptyText) {
    EXPECT_EQ(split(L"", L","), pieces());
    EXPECT_EQ(split(L"", L""), pieces());
}

// behaviour: ST-17
TEST(stringSplit, givesTheWholeTextForAnEmptySeparator) {
    EXPECT_EQ(split(L"a,b", L""), (pieces{L"a,b"}));
}

// behaviour: ST-18
TEST(stringSplit, leavesEmptyPiecesOutOnRequest) {
    EXPECT_EQ(split(L",a,,b,", L",", true), (pieces{L"a", L"b"}));
    EXPECT_EQ(split(L",,", L",", true), pieces());
}

// behaviour: ST-19
TEST(stringSplit, maySplitAnElementOfItsOwnResult) {
    pieces list{L"a,b", L","};
    list[0].splitAt(list[1], list, false);
    EXPECT_EQ(list, (pieces{L"a", L"b"}));
}

// behaviour: ST-20
TEST(stringDelete, takesAUnitOutEverywhere) {
    string text = L" a b  c ";
    EXPECT_EQ(&text.deleteAll(L' '), &text);
    EXPECT_EQ(text, L"abc");
    EXPECT_EQ(text.deleteAll(L'z'), L"abc");
}

// behaviour: ST-20
TEST(stringDelete, takesEachUnitOfATextOutEverywhere) {
    string text = L"\t s t r\ti n g ";
    EXPECT_EQ(text.deleteAll(L" \t"), L"string");
    EXPECT_EQ(text.deleteAll(L""), L"string");
    EXPECT_EQ(text.deleteAll(L"gnirts"), L"");
}

// behaviour: ST-20
TEST(stringDelete, takesAllOutWhenGivenItself) {
    string text = L"abcabc and more than a short text";
    EXPECT_EQ(text.deleteAll(text), L"");
    string other = L"abcabc";
    EXPECT_EQ(other.deleteAll(std::wstring_view(other).substr(0, 2)), L"cc");
}

// behaviour: ST-21
TEST(stringDelete, takesUnitsOutAtTheStartOnly) {
    string text = L" \t a b ";
    EXPECT_EQ(&text.deleteLeading(L"\t "), &text);
    EXPECT_EQ(text, L"a b ");
    EXPECT_EQ(text.deleteLeading(L""), L"a b ");
    EXPECT_EQ(text.deleteLeading(L"ab "), L"");
    EXPECT_EQ(text.deleteLeading(L"a"), L"");
}

// behaviour: ST-22
TEST(stringDelete, takesUnitsOutAtTheEndOnly) {
    string text = L" a b \t ";
    EXPECT_EQ(&text.deleteTrailing(L"\t "), &text);
    EXPECT_EQ(text, L" a b");
    EXPECT_EQ(text.deleteTrailing(L""), L" a b");
    EXPECT_EQ(text.deleteTrailing(L"ab "), L"");
    EXPECT_EQ(text.deleteTrailing(L"a"), L"");
}

// behaviour: ST-22
TEST(stringDelete, takesOneUnitOutAtTheEndOnly) {
    string text = L"a))))";
    EXPECT_EQ(&text.deleteTrailing(L')'), &text);
    EXPECT_EQ(text, L"a");
    EXPECT_EQ(text.deleteTrailing(L'b'), L"a");
    EXPECT_EQ(text.deleteTrailing(L'a'), L"");
}

struct numberCase {
    wchar_t const* mText;
    unsigned long mValue;
};

class stringNumber : public testing::TestWithParam<numberCase> {};

// behaviour: ST-23
TEST_P(stringNumber, readsTheLeadingDigits) {
    unsigned long out = 77;
    string const text = GetParam().mText;
    EXPECT_TRUE((string::dtconvert<unsigned long, string>(out, text, 0, nullptr)));
    EXPECT_EQ(out, GetParam().mValue);
}

INSTANTIATE_TEST_SUITE_P(texts, stringNumber,
                         testing::Values(numberCase{L"0", 0}, numberCase{L"80)", 80}, numberCase{L"80)xyz", 80},
                                         numberCase{L"007", 7}, numberCase{L"12 34", 12}, numberCase{L"5.9", 5},
                                         numberCase{L"1e3", 1}, numberCase{L"4294967295", 4294967295UL}));

// behaviour: ST-23
TEST(stringNumberLimits, readsTheLargestNumber) {
    unsigned long out = 0;
    string const largest = std::to_wstring(ULONG_MAX);
    EXPECT_TRUE(string::dtconvert(out, largest));
    EXPECT_EQ(out, ULONG_MAX);
}

class stringNoNumber : public testing::TestWithParam<wchar_t const*> {};

// behaviour: ST-24
TEST_P(stringNoNumber, leavesTheTargetAlone) {
    unsigned long out = 77;
    EXPECT_FALSE(string::dtconvert(out, string(GetParam())));
    EXPECT_EQ(out, 77U);
}

INSTANTIATE_TEST_SUITE_P(texts, stringNoNumber,
                         testing::Values(L"", L"abc", L" 80", L"+80", L"-80", L")", L"string(80)",
                                         L"18446744073709551616", L"99999999999999999999999999", L"\u0663"));

struct utf8Case {
    wchar_t const* mText;
    char const* mUtf8;
};

class stringUtf8 : public testing::TestWithParam<utf8Case> {};

// behaviour: ST-25
TEST_P(stringUtf8, goesThereAndBack) {
    string const text = GetParam().mText;
    EXPECT_EQ(text.toUtf8(), GetParam().mUtf8);
    EXPECT_EQ(string::fromUtf8(GetParam().mUtf8), text);
}

INSTANTIATE_TEST_SUITE_P(texts, stringUtf8,
                         testing::Values(utf8Case{L"", ""}, utf8Case{L"Part", "Part"},
                                         utf8Case{L"\u007F\u0080", "\x7F\xC2\x80"},
                                         utf8Case{L"\u07FF\u0800", "\xDF\xBF\xE0\xA0\x80"},
                                         utf8Case{L"\uD7FF\uE000\uFFFF", "\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF"},
                                         utf8Case{L"\U00010000\U0010FFFF", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"}));

// behaviour: ST-25
TEST(stringUtf8Nul, isKept) {
    std::string const narrow("a\0b", 3);
    EXPECT_EQ(string::fromUtf8(narrow), string(L"a\0b", 3));
    EXPECT_EQ(string(L"a\0b", 3).toUtf8(), narrow);
}

class stringIllUtf8 : public testing::TestWithParam<utf8Case> {};

// behaviour: ST-26
TEST_P(stringIllUtf8, isReplaced) {
    EXPECT_EQ(string::fromUtf8(GetParam().mUtf8), GetParam().mText);
}

INSTANTIATE_TEST_SUITE_P(
    texts, stringIllUtf8,
    testing::Values(utf8Case{L"\uFFFD", "\x80"}, utf8Case{L"\uFFFD\uFFFD", "\xC0\x80"},
                    utf8Case{L"\uFFFD\uFFFDa", "\xC1\xBF"
                                               "a"},
                    utf8Case{L"\uFFFD", "\xC3"},
                    utf8Case{L"\uFFFDA", "\xC3"
                                         "A"},
                    utf8Case{L"\uFFFD", "\xE2\x82"}, utf8Case{L"\uFFFDx", "\xE2\x82x"},
                    utf8Case{L"\uFFFD\uFFFD\uFFFD", "\xE0\x9F\xBF"}, utf8Case{L"\uFFFD\uFFFD\uFFFD", "\xED\xA0\x80"},
                    utf8Case{L"\uFFFD", "\xF0\x9F\x98"}, utf8Case{L"\uFFFD\uFFFD\uFFFD\uFFFD", "\xF0\x8F\xBF\xBF"},
                    utf8Case{L"\uFFFD\uFFFD\uFFFD\uFFFD", "\xF4\x90\x80\x80"}, utf8Case{L"\uFFFD", "\xF5"},
                    utf8Case{L"\uFFFD", "\xFF"}, utf8Case{L"\uFFFD\u00E4", "\xF0\x9F\x98\xC3\xA4"}));

// behaviour: ST-27
TEST(stringUtf16, goesThereAndBack) {
    string const text = L"A\u00E4\uFFFF\U00010000\U0010FFFF";
    std::u16string const spelled = u"A\u00E4\uFFFF\U00010000\U0010FFFF";
    EXPECT_EQ(text.toUtf16(), spelled);
    EXPECT_EQ(string::fromUtf16(spelled), text);
    EXPECT_EQ(string().toUtf16(), u"");
    EXPECT_EQ(string::fromUtf16(u""), L"");
}

// behaviour: ST-28
TEST(stringUtf16, replacesLoneSurrogates) {
    EXPECT_EQ(string::fromUtf16(std::u16string{0xD83D}), L"\uFFFD");
    EXPECT_EQ(string::fromUtf16(std::u16string{0xDE00, u'a'}), L"\uFFFDa");
    EXPECT_EQ(string::fromUtf16(std::u16string{0xD83D, u'a'}), L"\uFFFDa");
    EXPECT_EQ(string::fromUtf16(std::u16string{0xD83D, 0xD83D, 0xDE00}), L"\uFFFD\U0001F600");
    EXPECT_EQ(string::fromUtf16(std::u16string{0xDE00, 0xD83D}), L"\uFFFD\uFFFD");
}

// behaviour: ST-29
TEST(stringUtf, writesNoCodePointAsReplacement) {
    for (unsigned value : {0xD800U, 0xDBFFU, 0xDC00U, 0xDFFFU}) {
        EXPECT_EQ(string(unitText(value) + L"a").toUtf16(), u"\uFFFDa");
        EXPECT_EQ(string(unitText(value) + L"a").toUtf8(), "\xEF\xBF\xBD"
                                                           "a");
    }
    if constexpr (sizeof(wchar_t) == 4) {
        for (unsigned value : {0x110000U, 0x80000000U, 0xFFFFFFFFU}) {
            EXPECT_EQ(unitText(value).toUtf16(), u"\uFFFD");
            EXPECT_EQ(unitText(value).toUtf8(), "\xEF\xBF\xBD");
        }
    }
}

} // namespace
