// Conversions between value types.
#include "zovTypeConvert.h"

#include <gtest/gtest.h>

#include <atomic>
#include <bit>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "zovBinaryBuffer.h"
#include "zovDateTime.h"
#include "zovFsEntry.h"
#include "zovString.h"

namespace {

using zov::binaryBuffer;
using zov::date;
using zov::string;
using zov::timestamp;
using zov::typeconvert::typeConversionManager;

template <class Target, class Source>
bool convert(Target& target, Source const& source) {
    return typeConversionManager::instance().convert(typeid(Target), &target, typeid(Source), &source, 0, nullptr);
}

// The source's value in the other type, starting from `start`; a refusal must leave that.
template <class Target, class Source>
testing::AssertionResult gives(Source const& source, Target const& expected, Target const& start) {
    Target target = start;
    if (!convert(target, source)) return testing::AssertionFailure() << "refused";
    if (!(target == expected)) return testing::AssertionFailure() << "another value";
    return testing::AssertionSuccess();
}

template <class Target, class Source>
testing::AssertionResult refuses(Source const& source, Target const& start) {
    Target target = start;
    if (convert(target, source)) return testing::AssertionFailure() << "accepted";
    if (!(target == start)) return testing::AssertionFailure() << "the target was touched";
    return testing::AssertionSuccess();
}

constexpr float floatMax = std::numeric_limits<float>::max();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr float floatInfinity = std::numeric_limits<float>::infinity();
double const notANumber = std::nan("");

// Every conversion between the six number types, for values that all of them have.
template <class Types>
class numberPair : public testing::Test {};

template <class Target, class Source>
struct pairOf {
    using target = Target;
    using source = Source;
};

using numberPairs =
    testing::Types<pairOf<short, short>, pairOf<short, int>, pairOf<short, long>, pairOf<short, float>,
                   pairOf<short, double>, pairOf<int, short>, pairOf<int, int>, pairOf<int, long>, pairOf<int, float>,
                   pairOf<int, double>, pairOf<long, short>, pairOf<long, int>, pairOf<long, long>, pairOf<long, float>,
                   pairOf<long, double>, pairOf<float, short>, pairOf<float, int>, pairOf<float, long>,
                   pairOf<float, float>, pairOf<float, double>, pairOf<double, short>, pairOf<double, int>,
                   pairOf<double, long>, pairOf<double, float>, pairOf<double, double>>;
TYPED_TEST_SUITE(numberPair, numberPairs);

// behaviour: TC-01
TYPED_TEST(numberPair, keepsSmallWholeNumbers) {
    using target = typename TypeParam::target;
    using source = typename TypeParam::source;
    for (int value : {0, 1, -1, 42, -32768, 32767}) {
        EXPECT_TRUE(gives<target>(static_cast<source>(value), static_cast<target>(value), target{7})) << value;
    }
}

template <class Number>
class numberAndBool : public testing::Test {};

using numbers = testing::Types<short, int, long, float, double>;
TYPED_TEST_SUITE(numberAndBool, numbers);

// behaviour: TC-02
TYPED_TEST(numberAndBool, isOneOrNothing) {
    EXPECT_TRUE(gives<TypeParam>(true, TypeParam{1}, TypeParam{7}));
    EXPECT_TRUE(gives<TypeParam>(false, TypeParam{0}, TypeParam{7}));
}

// behaviour: TC-02
TYPED_TEST(numberAndBool, isTrueUnlessZero) {
    EXPECT_TRUE(gives<bool>(TypeParam{0}, false, true));
    EXPECT_TRUE(gives<bool>(TypeParam{1}, true, false));
    EXPECT_TRUE(gives<bool>(static_cast<TypeParam>(-5), true, false));
}

// behaviour: TC-02
TEST(floatToBool, takesAllButNan) {
    EXPECT_TRUE(gives<bool>(0.25, true, false));
    EXPECT_TRUE(gives<bool>(-0.0, false, true));
    EXPECT_TRUE(gives<bool>(infinity, true, false));
    EXPECT_TRUE(gives<bool>(std::numeric_limits<float>::denorm_min(), true, false));
    EXPECT_TRUE(refuses<bool>(notANumber, true));
    EXPECT_TRUE(refuses<bool>(static_cast<float>(notANumber), true));
}

// behaviour: TC-03
TEST(wholeNumbers, areRefusedOutOfRange) {
    EXPECT_TRUE(gives<short>(-32768, short{-32768}, short{7}));
    EXPECT_TRUE(refuses<short>(32768, short{7}));
    EXPECT_TRUE(refuses<short>(-32769, short{7}));
    EXPECT_TRUE(refuses<short>(LONG_MAX, short{7}));
    EXPECT_TRUE(gives<int>(static_cast<long>(INT_MIN), INT_MIN, 7));
    EXPECT_TRUE(gives<long>(INT_MAX, static_cast<long>(INT_MAX), 7L));
    if constexpr (sizeof(long) > sizeof(int)) {
        EXPECT_TRUE(refuses<int>(static_cast<long>(INT_MAX + 1LL), 7));
        EXPECT_TRUE(refuses<int>(LONG_MIN, 7));
    }
}

// behaviour: TC-04
TEST(floatToWhole, keepsNoFraction) {
    EXPECT_TRUE(refuses<int>(1.5, 7));
    EXPECT_TRUE(refuses<int>(-0.25F, 7));
    EXPECT_TRUE(refuses<long>(1e-300, 7L));
    EXPECT_TRUE(gives<int>(-0.0, 0, 7));
    EXPECT_TRUE(gives<int>(-3.0, -3, 7));
}

// behaviour: TC-03
TEST(floatToWhole, takesExactlyTheRange) {
    EXPECT_TRUE(gives<short>(-32768.0, short{-32768}, short{7}));
    EXPECT_TRUE(gives<short>(32767.0F, short{32767}, short{7}));
    EXPECT_TRUE(refuses<short>(32768.0, short{7}));
    EXPECT_TRUE(gives<int>(2147483647.0, INT_MAX, 7));
    EXPECT_TRUE(gives<int>(-2147483648.0, INT_MIN, 7));
    EXPECT_TRUE(refuses<int>(2147483648.0, 7));
    EXPECT_TRUE(refuses<int>(2147483648.0F, 7));
    EXPECT_TRUE(refuses<int>(-2147483649.0, 7));
}

// behaviour: TC-03
TEST(floatToWhole, takesExactlyTheRangeOfLong) {
    double const beyond = -static_cast<double>(LONG_MIN);
    EXPECT_TRUE(gives<long>(static_cast<double>(LONG_MIN), LONG_MIN, 7L));
    EXPECT_TRUE(refuses<long>(beyond, 7L));
    EXPECT_TRUE(refuses<long>(static_cast<float>(beyond), 7L));
    EXPECT_TRUE(refuses<long>(std::nextafter(-beyond, -infinity), 7L));
    double const below = std::floor(std::nextafter(beyond, 0.0));
    EXPECT_TRUE(gives<long>(below, static_cast<long>(below), 7L));
}

// behaviour: TC-04
TEST(floatToWhole, refusesWhatIsNotFinite) {
    for (double value : {infinity, -infinity, notANumber}) {
        EXPECT_TRUE(refuses<short>(value, short{7}));
        EXPECT_TRUE(refuses<int>(value, 7));
        EXPECT_TRUE(refuses<long>(static_cast<float>(value), 7L));
    }
}

// behaviour: TC-05
TEST(wholeToFloat, roundsToTheNearest) {
    EXPECT_TRUE(gives<float>(16777217, 16777216.0F, 7.0F));
    EXPECT_TRUE(gives<float>(16777219, 16777220.0F, 7.0F));
    EXPECT_TRUE(gives<double>(LONG_MAX, static_cast<double>(LONG_MAX), 7.0));
}

// behaviour: TC-05
TEST(doubleToFloat, roundsToTheNearest) {
    EXPECT_TRUE(gives<float>(0.1, 0.1F, 7.0F));
    EXPECT_TRUE(gives<float>(1e-60, 0.0F, 7.0F));
    EXPECT_TRUE(gives<double>(0.5F, 0.5, 7.0));
    EXPECT_TRUE(gives<float>(static_cast<double>(floatMax), floatMax, 7.0F));
}

// behaviour: TC-03
TEST(doubleToFloat, isRefusedBeyondTheLargestFloat) {
    EXPECT_TRUE(refuses<float>(std::nextafter(static_cast<double>(floatMax), infinity), 7.0F));
    EXPECT_TRUE(refuses<float>(-1e39, 7.0F));
    EXPECT_TRUE(refuses<float>(std::numeric_limits<double>::max(), 7.0F));
}

// behaviour: TC-06
TEST(doubleToFloat, passesInfinityAndNan) {
    EXPECT_TRUE(gives<float>(infinity, floatInfinity, 7.0F));
    EXPECT_TRUE(gives<double>(-floatInfinity, -infinity, 7.0));
    float narrow = 7;
    EXPECT_TRUE(convert(narrow, notANumber));
    EXPECT_TRUE(std::isnan(narrow));
    double wide = 7;
    EXPECT_TRUE(convert(wide, narrow));
    EXPECT_TRUE(std::isnan(wide));
}

// Texts that a whole number type reads.
struct wholeText {
    wchar_t const* mText;
    int mValue;
};

class wholeFromText : public testing::TestWithParam<wholeText> {};

// behaviour: TC-07
TEST_P(wholeFromText, readsTheWholeText) {
    string const text = GetParam().mText;
    EXPECT_TRUE(gives<int>(text, GetParam().mValue, 7));
    EXPECT_TRUE(gives<long>(text, static_cast<long>(GetParam().mValue), 7L));
    EXPECT_TRUE(gives<short>(text, static_cast<short>(GetParam().mValue), short{7}));
    EXPECT_TRUE(gives<double>(text, static_cast<double>(GetParam().mValue), 7.5));
}

INSTANTIATE_TEST_SUITE_P(texts, wholeFromText,
                         testing::Values(wholeText{L"0", 0}, wholeText{L"42", 42}, wholeText{L"-42", -42},
                                         wholeText{L"+42", 42}, wholeText{L" \t42\t ", 42}, wholeText{L"0042", 42},
                                         wholeText{L"-0", 0}, wholeText{L"32767", 32767}, wholeText{L"-32768", -32768},
                                         wholeText{L"0000000000000000000000000000000000000001", 1}));

class noNumberText : public testing::TestWithParam<wchar_t const*> {};

// behaviour: TC-08
TEST_P(noNumberText, isRefusedByEveryNumberType) {
    string const text = GetParam();
    EXPECT_TRUE(refuses<short>(text, short{7}));
    EXPECT_TRUE(refuses<int>(text, 7));
    EXPECT_TRUE(refuses<long>(text, 7L));
    EXPECT_TRUE(refuses<float>(text, 7.5F));
    EXPECT_TRUE(refuses<double>(text, 7.5));
}

INSTANTIATE_TEST_SUITE_P(texts, noNumberText,
                         testing::Values(L"", L" ", L"\t", L"abc", L"4 2", L"42x", L"x42", L"0x2A", L"+-42", L"--42",
                                         L"+", L"-", L"+ 42", L"- 42", L"42-", L"42+", L"1,5", L"1'000", L"\u0664",
                                         L"\u00A042", L"\n42", L"4\U00010034", L"inf", L"-inf", L"INFINITY", L"nan",
                                         L"NaN", L"nan(1)", L"true", L"e5", L".", L"-.", L".e5", L"1e", L"1e+",
                                         L"1e5.5", L"1.2.3", L"1e5e5", L"0x1p3"));

class fractionText : public testing::TestWithParam<std::tuple<wchar_t const*, double>> {};

// behaviour: TC-07
TEST_P(fractionText, isReadByFloatsOnly) {
    auto const [text, value] = GetParam();
    EXPECT_TRUE(gives<double>(string(text), value, 7.5));
    EXPECT_TRUE(gives<float>(string(text), static_cast<float>(value), 7.5F));
    EXPECT_TRUE(refuses<int>(string(text), 7));
}

INSTANTIATE_TEST_SUITE_P(texts, fractionText,
                         testing::Values(std::tuple{L"1.5", 1.5}, std::tuple{L"-1.5", -1.5}, std::tuple{L"+.5", 0.5},
                                         std::tuple{L"5.", 5.0}, std::tuple{L" 1e3 ", 1000.0},
                                         std::tuple{L"1E-2", 0.01}, std::tuple{L"2.5e+1", 25.0},
                                         std::tuple{L"1.0", 1.0}, std::tuple{L"-0.0", 0.0}));

// behaviour: TC-09
TEST(numberFromText, isRefusedOutOfRange) {
    EXPECT_TRUE(refuses<short>(string(L"32768"), short{7}));
    EXPECT_TRUE(refuses<short>(string(L"-32769"), short{7}));
    EXPECT_TRUE(gives<int>(string(L"-2147483648"), INT_MIN, 7));
    EXPECT_TRUE(refuses<int>(string(L"2147483648"), 7));
    EXPECT_TRUE(gives<long>(string(std::to_wstring(LONG_MIN)), LONG_MIN, 7L));
    EXPECT_TRUE(refuses<long>(string(L"9223372036854775808"), 7L));
    EXPECT_TRUE(refuses<float>(string(L"1e39"), 7.5F));
    EXPECT_TRUE(gives<double>(string(L"1e39"), 1e39, 7.5));
    EXPECT_TRUE(refuses<double>(string(L"1e309"), 7.5));
    EXPECT_TRUE(refuses<double>(string(L"-1e999999999999"), 7.5));
    EXPECT_TRUE(refuses<double>(string(L"1e-400"), 7.5));
}

// behaviour: TC-10
TEST(numberToText, isDecimal) {
    EXPECT_TRUE(gives<string>(short{-32768}, string(L"-32768"), L"x"));
    EXPECT_TRUE(gives<string>(0, string(L"0"), L"x"));
    EXPECT_TRUE(gives<string>(INT_MIN, string(L"-2147483648"), L"x"));
    EXPECT_TRUE(gives<string>(LONG_MAX, string(std::to_wstring(LONG_MAX)), L"x"));
    EXPECT_TRUE(gives<string>(1.5, string(L"1.5"), L"x"));
    EXPECT_TRUE(gives<string>(0.1, string(L"0.1"), L"x"));
    EXPECT_TRUE(gives<string>(0.1F, string(L"0.1"), L"x"));
    EXPECT_TRUE(gives<string>(-0.0, string(L"-0"), L"x"));
    EXPECT_TRUE(gives<string>(1e300, string(L"1e+300"), L"x"));
}

// behaviour: TC-11
TEST(numberToText, isRefusedForWhatIsNotFinite) {
    for (double value : {infinity, -infinity, notANumber}) {
        EXPECT_TRUE(refuses<string>(value, string(L"x")));
        EXPECT_TRUE(refuses<string>(static_cast<float>(value), string(L"x")));
    }
}

template <class Float>
void expectRoundTrip(Float value) {
    string text;
    Float back{};
    ASSERT_TRUE(convert(text, value));
    ASSERT_TRUE(convert(back, text)) << text.toUtf8();
    ASSERT_EQ(back, value) << text.toUtf8();
    ASSERT_EQ(std::signbit(back), std::signbit(value)) << text.toUtf8();
}

// behaviour: TC-10
TEST(numberToText, readsBackAsTheSameFloat) {
    using limits = std::numeric_limits<double>;
    for (double value :
         {0.0, -0.0, 0.1, 1.0 / 3, limits::max(), limits::lowest(), limits::min(), limits::denorm_min()}) {
        expectRoundTrip(value);
    }
    using floatLimits = std::numeric_limits<float>;
    for (float value : {0.1F, floatLimits::max(), floatLimits::min(), floatLimits::denorm_min()})
        expectRoundTrip(value);
}

// behaviour: TC-10
TEST(numberToText, readsBackAsTheSameForAnyBits) {
    std::mt19937_64 random(20240229);
    for (int round = 0; round < 20'000; ++round) {
        auto const bits = random();
        double const wide = std::bit_cast<double>(bits);
        float const narrow = std::bit_cast<float>(static_cast<std::uint32_t>(bits));
        if (std::isfinite(wide)) expectRoundTrip(wide);
        if (std::isfinite(narrow)) expectRoundTrip(narrow);
    }
}

// behaviour: TC-12
TEST(numberTexts, areTheSameInEveryLocale) {
    std::string const before = std::setlocale(LC_ALL, nullptr);
    for (char const* name : {"C", "C.UTF-8", "de_DE.UTF-8", "fr_FR.UTF-8", "German_Germany"}) {
        if (std::setlocale(LC_ALL, name) == nullptr) continue;
        EXPECT_TRUE(gives<double>(string(L"1234.5"), 1234.5, 7.5)) << name;
        EXPECT_TRUE(gives<string>(1234.5, string(L"1234.5"), L"x")) << name;
        EXPECT_TRUE(refuses<double>(string(L"1234,5"), 7.5)) << name;
    }
    std::setlocale(LC_ALL, before.c_str());
}

// behaviour: TC-13
TEST(boolTexts, areReadInAnyCase) {
    for (wchar_t const* text : {L"true", L"TRUE", L"True", L" true\t", L"1", L" 1 "}) {
        EXPECT_TRUE(gives<bool>(string(text), true, false));
    }
    for (wchar_t const* text : {L"false", L"FALSE", L"fAlSe", L"\tfalse ", L"0", L"0 "}) {
        EXPECT_TRUE(gives<bool>(string(text), false, true));
    }
}

// behaviour: TC-13
TEST(boolTexts, areNothingElse) {
    for (wchar_t const* text : {L"", L" ", L"yes", L"on", L"2", L"-1", L"01", L"1.0", L"truest", L"t", L"tr ue"}) {
        EXPECT_TRUE(refuses<bool>(string(text), true));
        EXPECT_TRUE(refuses<bool>(string(text), false));
    }
}

// behaviour: TC-13
TEST(boolTexts, areWrittenInLowerCase) {
    EXPECT_TRUE(gives<string>(true, string(L"true"), L"x"));
    EXPECT_TRUE(gives<string>(false, string(L"false"), L"x"));
}

// behaviour: TC-14
TEST(dateTexts, goThereAndBack) {
    for (date const value : {date(2024, 2, 29), date(1, 1, 1), date(9999, 12, 31), date()}) {
        string text;
        ASSERT_TRUE(convert(text, value));
        EXPECT_TRUE(gives<date>(text, value, date(2000, 1, 1)));
    }
    EXPECT_TRUE(gives<string>(date(833, 4, 5), string(L"0833-04-05"), L"x"));
    EXPECT_TRUE(gives<date>(string(L" 2024-02-29\t"), date(2024, 2, 29), date()));
}

class noDateText : public testing::TestWithParam<wchar_t const*> {};

// behaviour: TC-15
TEST_P(noDateText, isRefused) {
    EXPECT_TRUE(refuses<date>(string(GetParam()), date(2000, 1, 1)));
}

INSTANTIATE_TEST_SUITE_P(texts, noDateText,
                         testing::Values(L"", L"2023-02-29", L"2023-13-01", L"2023-00-01", L"2023-01-00", L"0000-01-01",
                                         L"2023-1-01", L"2023-01-1", L"223-01-01", L"12023-01-01", L"2023-01-011",
                                         L"2023/01/01", L"20230101", L"2023-01", L"2023-01-01x", L"x2023-01-01",
                                         L"-2023-01-01", L"+2023-01-01", L"2023 -01-01", L"2023-01-01T",
                                         L"2023-01-01T00:00:00", L"\u0662023-01-01", L"2023-01-"));

// behaviour: TC-16
TEST(timeTexts, showDecimalsOnlyWhenThereAreAny) {
    EXPECT_TRUE(gives<string>(zov::time(1, 2, 3), string(L"01:02:03"), L"x"));
    EXPECT_TRUE(gives<string>(zov::time(23, 59, 59, 5), string(L"23:59:59.000005"), L"x"));
    EXPECT_TRUE(gives<string>(zov::time(0, 0, 0, 500'000), string(L"00:00:00.500000"), L"x"));
}

struct timeText {
    wchar_t const* mText;
    unsigned mFraction;
};

class timeFromText : public testing::TestWithParam<timeText> {};

// behaviour: TC-16
TEST_P(timeFromText, readsUpToSixDecimals) {
    EXPECT_TRUE(gives<zov::time>(string(GetParam().mText), zov::time(17, 30, 9, GetParam().mFraction), zov::time()));
}

INSTANTIATE_TEST_SUITE_P(texts, timeFromText,
                         testing::Values(timeText{L"17:30:09", 0}, timeText{L" 17:30:09 ", 0},
                                         timeText{L"17:30:09.5", 500'000}, timeText{L"17:30:09.05", 50'000},
                                         timeText{L"17:30:09.123", 123'000}, timeText{L"17:30:09.1234", 123'400},
                                         timeText{L"17:30:09.12345", 123'450}, timeText{L"17:30:09.123456", 123'456},
                                         timeText{L"17:30:09.000001", 1}, timeText{L"17:30:09.0", 0}));

class noTimeText : public testing::TestWithParam<wchar_t const*> {};

// behaviour: TC-17
TEST_P(noTimeText, isRefused) {
    EXPECT_TRUE(refuses<zov::time>(string(GetParam()), zov::time(1, 2, 3)));
}

INSTANTIATE_TEST_SUITE_P(texts, noTimeText,
                         testing::Values(L"", L"24:00:00", L"25:00:00", L"00:60:00", L"23:59:60", L"1:02:03",
                                         L"01:2:03", L"01:02:3", L"01:02", L"01:02:03.", L"01:02:03.1234567",
                                         L"01:02:03,5", L"01:02:03.x", L"01:02:03Z", L"01:02:03 x", L"010203",
                                         L"-1:02:03", L"01:02:03.-1", L"01:02:03.5 5", L"2024-01-01T01:02:03"));

// behaviour: TC-18
TEST(timestampTexts, areDateAndTime) {
    timestamp const value(date(2024, 2, 29), zov::time(17, 30, 9, 250'000));
    EXPECT_TRUE(gives<string>(value, string(L"2024-02-29T17:30:09.250000"), L"x"));
    EXPECT_TRUE(gives<timestamp>(string(L"2024-02-29T17:30:09.25"), value, timestamp()));
    EXPECT_TRUE(gives<timestamp>(string(L"\t2024-02-29 17:30:09.25 "), value, timestamp()));
    EXPECT_TRUE(gives<string>(timestamp(), string(L"1900-01-01T00:00:00"), L"x"));
}

class noTimestampText : public testing::TestWithParam<wchar_t const*> {};

// behaviour: TC-18
TEST_P(noTimestampText, isRefused) {
    timestamp const start(date(2000, 1, 1), zov::time(1, 2, 3));
    EXPECT_TRUE(refuses<timestamp>(string(GetParam()), start));
}

INSTANTIATE_TEST_SUITE_P(texts, noTimestampText,
                         testing::Values(L"", L"2024-02-29", L"17:30:09", L"2024-02-29T", L"2024-02-29t17:30:09",
                                         L"2024-02-29  17:30:09", L"2024-02-29T 17:30:09", L"2024-02-29\t17:30:09",
                                         L"2023-02-29T17:30:09", L"2024-02-29T24:00:00", L"2024-02-29T17:30:09Z",
                                         L"2024-02-29T17:30:09+01:00", L"2024-02-2917:30:09"));

// behaviour: TC-19
TEST(timestampParts, convertToDateAndTime) {
    timestamp const value(date(2024, 2, 29), zov::time(17, 30, 9, 1));
    EXPECT_TRUE(gives<date>(value, date(2024, 2, 29), date()));
    EXPECT_TRUE(gives<zov::time>(value, zov::time(17, 30, 9, 1), zov::time()));
    EXPECT_TRUE(gives<timestamp>(date(2024, 2, 29), timestamp(date(2024, 2, 29), zov::time()), value));
}

// behaviour: TC-20
TEST(pathTexts, goThereAndBack) {
    string const path = L" /data/\u00E4 b ";
    EXPECT_TRUE(gives<zov::file>(path, zov::file(path), zov::file(L"x")));
    EXPECT_TRUE(gives<zov::directory>(path, zov::directory(path), zov::directory(L"x")));
    EXPECT_TRUE(gives<zov::searchPath>(path, zov::searchPath(path), zov::searchPath(L"x")));
    EXPECT_TRUE(gives<string>(zov::file(path), path, L"x"));
    EXPECT_TRUE(gives<string>(zov::directory(path), path, L"x"));
    EXPECT_TRUE(gives<string>(zov::searchPath(path), path, L"x"));
    EXPECT_TRUE(gives<zov::file>(string(), zov::file(), zov::file(L"x")));
}

// behaviour: TC-21
TEST(binaryTexts, areHexadecimal) {
    unsigned char const bytes[] = {0x00, 0x7F, 0xAB, 0xFF};
    binaryBuffer const value(bytes, sizeof bytes);
    EXPECT_TRUE(gives<string>(value, string(L"007fabff"), L"x"));
    EXPECT_TRUE(gives<binaryBuffer>(string(L"007fabff"), value, binaryBuffer(1)));
    EXPECT_TRUE(gives<binaryBuffer>(string(L"007FaBFf"), value, binaryBuffer(1)));
}

// behaviour: TC-21
TEST(binaryTexts, areEmptyForTheEmptyBuffer) {
    EXPECT_TRUE(gives<string>(binaryBuffer(), string(), L"x"));
    EXPECT_TRUE(gives<binaryBuffer>(string(), binaryBuffer(), binaryBuffer(1)));
}

// behaviour: TC-21
TEST(binaryTexts, areNothingElse) {
    for (wchar_t const* text : {L"0", L"0g", L"g0", L"00 ", L" 00", L"0x00", L"00 00", L"0\u0660", L"-1", L"  "}) {
        EXPECT_TRUE(refuses<binaryBuffer>(string(text), binaryBuffer(3)));
    }
}

// behaviour: TC-22
TEST(sameType, isCopied) {
    EXPECT_TRUE(gives<bool>(true, true, false));
    EXPECT_TRUE(gives<string>(string(L" as it stands "), string(L" as it stands "), L"x"));
    EXPECT_TRUE(gives<date>(date(2024, 1, 2), date(2024, 1, 2), date()));
    EXPECT_TRUE(gives<zov::time>(zov::time(1, 2, 3), zov::time(1, 2, 3), zov::time()));
    EXPECT_TRUE(gives<timestamp>(timestamp(date(2024, 1, 2), zov::time()), timestamp(date(2024, 1, 2), zov::time()),
                                 timestamp()));
    EXPECT_TRUE(gives<binaryBuffer>(binaryBuffer(2), binaryBuffer(2), binaryBuffer()));
    EXPECT_TRUE(gives<zov::file>(zov::file(L"a"), zov::file(L"a"), zov::file()));
    EXPECT_TRUE(gives<zov::directory>(zov::directory(L"a"), zov::directory(L"a"), zov::directory()));
    EXPECT_TRUE(gives<zov::searchPath>(zov::searchPath(L"a"), zov::searchPath(L"a"), zov::searchPath()));
    double value = 0;
    EXPECT_TRUE(convert(value, notANumber));
    EXPECT_TRUE(std::isnan(value));
}

// behaviour: TC-22
TEST(sameType, mayBeCopiedOntoItself) {
    string text = L"a text that is long enough to be stored elsewhere";
    string const before = text;
    EXPECT_TRUE(convert(text, text));
    EXPECT_EQ(text, before);
}

// behaviour: TC-23
TEST(unknownPairs, areRefused) {
    EXPECT_TRUE(refuses<date>(zov::time(1, 2, 3), date(2000, 1, 1)));
    EXPECT_TRUE(refuses<timestamp>(zov::time(1, 2, 3), timestamp()));
    EXPECT_TRUE(refuses<int>(date(), 7));
    EXPECT_TRUE(refuses<unsigned>(1, 7U));
    EXPECT_TRUE(refuses<zov::file>(zov::directory(L"a"), zov::file()));
}

// behaviour: TC-23
TEST(nullPointers, areRefused) {
    auto const& conversions = typeConversionManager::instance();
    int number = 7;
    EXPECT_FALSE(conversions.convert(typeid(int), nullptr, typeid(int), &number, 0, nullptr));
    EXPECT_FALSE(conversions.convert(typeid(int), &number, typeid(int), nullptr, 0, nullptr));
    EXPECT_EQ(number, 7);
}

// behaviour: TC-24
TEST(lastArguments, areIgnored) {
    char extra[] = "extra";
    int number = 7;
    string const text = L"42";
    EXPECT_TRUE(typeConversionManager::instance().convert(typeid(int), &number, typeid(text), &text, 99, extra));
    EXPECT_EQ(number, 42);
}

// behaviour: TC-24
TEST(registry, isOne) {
    EXPECT_EQ(&typeConversionManager::instance(), &typeConversionManager::instance());
}

// A type of the host's own, one for each test that registers something.
template <int>
struct hostValue {
    int mNumber = 0;
    bool operator==(hostValue const&) const = default;
};

// behaviour: TC-25
TEST(addedConversions, areFound) {
    using host = hostValue<1>;
    EXPECT_TRUE(refuses<host>(5, host{7}));
    typeConversionManager::instance().add<host, int>([](host& target, int const& source) {
        if (source < 0) return false;
        target.mNumber = source;
        return true;
    });
    EXPECT_TRUE(gives<host>(5, host{5}, host{7}));
    EXPECT_TRUE(refuses<host>(-5, host{7}));
    EXPECT_TRUE(refuses<int>(host{5}, 7));
}

// behaviour: TC-25
TEST(addedConversions, workOnUntypedObjects) {
    using host = hostValue<2>;
    typeConversionManager::instance().add(typeid(host), typeid(int), [](void* target, void const* source) {
        static_cast<host*>(target)->mNumber = *static_cast<int const*>(source) + 1;
        return true;
    });
    EXPECT_TRUE(gives<host>(5, host{6}, host{7}));
}

// behaviour: TC-26
TEST(addedConversions, takeThePlaceOfEarlierOnes) {
    using host = hostValue<3>;
    auto& conversions = typeConversionManager::instance();
    for (int factor : {1, 10}) {
        conversions.add<host, int>([factor](host& target, int const& source) {
            target.mNumber = source * factor;
            return true;
        });
    }
    EXPECT_TRUE(gives<host>(5, host{50}, host{7}));
}

// behaviour: TC-26
TEST(addedConversions, areTakenAwayByAnEmptyFunction) {
    using host = hostValue<4>;
    auto& conversions = typeConversionManager::instance();
    conversions.add<host, int>([](host&, int const&) { return true; });
    conversions.add(typeid(host), typeid(int), {});
    EXPECT_TRUE(refuses<host>(5, host{7}));
}

// behaviour: TC-26
TEST(addedConversions, goBeforeWhatIsBuiltIn) {
    auto& conversions = typeConversionManager::instance();
    conversions.add<bool, date>([](bool& target, date const&) { return target = true; });
    conversions.add<bool, string>([](bool& target, string const& source) {
        target = source == L"yes";
        return true;
    });
    EXPECT_TRUE(gives<bool>(string(L"yes"), true, false));
    conversions.add(typeid(bool), typeid(string), nullptr);
    conversions.add(typeid(bool), typeid(date), nullptr);
    EXPECT_TRUE(refuses<bool>(string(L"yes"), false));
    EXPECT_TRUE(gives<bool>(string(L"true"), true, false));
}

// behaviour: TC-27
TEST(addedConversions, runOutsideOfAnyLock) {
    using outer = hostValue<5>;
    using inner = hostValue<6>;
    auto& conversions = typeConversionManager::instance();
    conversions.add<outer, int>([](outer& target, int const& source) {
        auto const next = [](inner& to, int const& from) { return to.mNumber = from, true; };
        typeConversionManager::instance().add<inner, int>(next);
        inner value;
        if (!convert(value, source)) return false;
        target.mNumber = value.mNumber;
        return true;
    });
    EXPECT_TRUE(gives<outer>(5, outer{5}, outer{7}));
}

// behaviour: TC-27
TEST(addedConversions, mayReplaceThemselvesWhileTheyRun) {
    using host = hostValue<7>;
    auto& conversions = typeConversionManager::instance();
    std::string const word = "kept alive until the call is over";
    conversions.add<host, int>([word](host& target, int const&) {
        typeConversionManager::instance().add(typeid(host), typeid(int), {});
        target.mNumber = static_cast<int>(word.size());
        return true;
    });
    EXPECT_TRUE(gives<host>(5, host{static_cast<int>(word.size())}, host{7}));
    EXPECT_TRUE(refuses<host>(5, host{7}));
}

// behaviour: TC-27
TEST(addedConversions, passExceptionsOn) {
    using host = hostValue<8>;
    auto const thrower = [](host&, int const& source) -> bool { throw source; };
    typeConversionManager::instance().add<host, int>(thrower);
    host value;
    EXPECT_THROW(convert(value, 5), int);
}

// behaviour: TC-28
TEST(conversionThreads, convertWhileOthersAdd) {
    using host = hostValue<9>;
    auto& conversions = typeConversionManager::instance();
    std::atomic<bool> start{false};
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int writer = 0; writer < 2; ++writer) {
        threads.emplace_back([&] {
            while (!start)
                std::this_thread::yield();
            for (int round = 0; round < 500; ++round) {
                std::string const text(40, 'x');
                conversions.add<host, int>([text](host& target, int const& source) {
                    target.mNumber = source + static_cast<int>(text.size());
                    return true;
                });
            }
        });
    }
    for (int reader = 0; reader < 2; ++reader) {
        threads.emplace_back([&] {
            while (!start)
                std::this_thread::yield();
            for (int round = 0; round < 2000; ++round) {
                host value;
                long number = 0;
                if (convert(value, 2) && value.mNumber != 42) ++wrong;
                if (!convert(number, string(L"42")) || number != 42) ++wrong;
            }
        });
    }
    start = true;
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

} // namespace
