// Dates, times of day and timestamps.
#include "zovDateTime.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <compare>
#include <thread>
#include <type_traits>
#include <vector>

#include "zovAssert.h"

namespace {

using zov::date;
using zov::time;
using zov::timestamp;

static_assert(std::is_trivially_copyable_v<timestamp>);
static_assert(std::is_nothrow_default_constructible_v<timestamp>);

// Keeps the texts of failed assertions while it lives.
class reports {
public:
    reports() {
        zov::setAssertHandler([this](zov::string const& text) { mTexts.push_back(text); });
    }
    reports(reports const&) = delete;
    reports& operator=(reports const&) = delete;
    ~reports() { zov::setAssertHandler({}); }

    std::vector<zov::string> const& texts() const { return mTexts; }

private:
    std::vector<zov::string> mTexts;
};

// Whether `make` fails one assertion of the given condition, and throws false.
template <class Fn>
testing::AssertionResult failsAssertion(Fn&& make, std::wstring_view condition) {
    reports const seen;
    try {
        make();
        return testing::AssertionFailure() << "it succeeded";
    } catch (bool value) {
        zov::string const start =
            L"Assertion failed:\n" + zov::string(condition) + L"\n\nFile: libs/utils/src/zovDateTime.cpp\n";
        bool const told = seen.texts().size() == 1 && seen.texts()[0].starts_with(start);
        if (!value && told) return testing::AssertionSuccess();
        return testing::AssertionFailure() << "another report";
    }
}

using dateParts = std::array<unsigned, 3>;
using timeParts = std::array<unsigned, 4>;

class dateThatExists : public testing::TestWithParam<dateParts> {};

// behaviour: DT-01
TEST_P(dateThatExists, keepsItsParts) {
    auto const [year, month, day] = GetParam();
    EXPECT_TRUE(date::exists(year, month, day));
    date const value(year, month, day);
    EXPECT_EQ(value.year(), year);
    EXPECT_EQ(value.month(), month);
    EXPECT_EQ(value.day(), day);
}

INSTANTIATE_TEST_SUITE_P(days, dateThatExists,
                         testing::Values(dateParts{1, 1, 1}, dateParts{9999, 12, 31}, dateParts{1900, 1, 1},
                                         dateParts{2000, 2, 29}, dateParts{2024, 2, 29}, dateParts{2023, 2, 28},
                                         dateParts{2023, 4, 30}, dateParts{2023, 12, 31}, dateParts{1600, 2, 29}));

class dateThatDoesNotExist : public testing::TestWithParam<dateParts> {};

// behaviour: DT-02
TEST_P(dateThatDoesNotExist, failsAnAssertion) {
    auto const [year, month, day] = GetParam();
    EXPECT_FALSE(date::exists(year, month, day));
    auto const make = [&] { static_cast<void>(date(GetParam()[0], GetParam()[1], GetParam()[2])); };
    EXPECT_TRUE(failsAssertion(make, L"date::exists(year, month, day)"));
}

INSTANTIATE_TEST_SUITE_P(days, dateThatDoesNotExist,
                         testing::Values(dateParts{0, 1, 1}, dateParts{10000, 1, 1}, dateParts{2023, 0, 1},
                                         dateParts{2023, 13, 1}, dateParts{2023, 1, 0}, dateParts{2023, 1, 32},
                                         dateParts{2023, 2, 29}, dateParts{2024, 2, 30}, dateParts{1900, 2, 29},
                                         dateParts{2100, 2, 29}, dateParts{2023, 4, 31}, dateParts{2023, 11, 31},
                                         dateParts{67559, 1, 1}, dateParts{2023, 257, 1}, dateParts{2023, 1, 257},
                                         dateParts{4294967295U, 4294967295U, 4294967295U}));

// behaviour: DT-03
TEST(dateDefault, isTheFirstOf1900) {
    EXPECT_EQ(date(), date(1900, 1, 1));
}

// behaviour: DT-04
TEST(dateOrder, isTheOrderOfTime) {
    EXPECT_LT(date(2023, 12, 31), date(2024, 1, 1));
    EXPECT_LT(date(2024, 1, 31), date(2024, 2, 1));
    EXPECT_LT(date(2024, 2, 1), date(2024, 2, 2));
    EXPECT_EQ(date(2024, 2, 1) <=> date(2024, 2, 1), std::strong_ordering::equal);
    EXPECT_NE(date(2024, 2, 1), date(2024, 2, 2));
    EXPECT_GE(date(2024, 2, 1), date(2024, 2, 1));
}

class timeThatExists : public testing::TestWithParam<timeParts> {};

// behaviour: DT-05
TEST_P(timeThatExists, keepsItsParts) {
    auto const [hour, minute, second, fraction] = GetParam();
    EXPECT_TRUE(time::exists(hour, minute, second, fraction));
    time const value(hour, minute, second, fraction);
    EXPECT_EQ(value.hour(), hour);
    EXPECT_EQ(value.minute(), minute);
    EXPECT_EQ(value.second(), second);
    EXPECT_EQ(value.fraction(), fraction);
}

INSTANTIATE_TEST_SUITE_P(times, timeThatExists,
                         testing::Values(timeParts{0, 0, 0, 0}, timeParts{23, 59, 59, 999'999},
                                         timeParts{12, 30, 15, 1}));

class timeThatDoesNotExist : public testing::TestWithParam<timeParts> {};

// behaviour: DT-06
TEST_P(timeThatDoesNotExist, failsAnAssertion) {
    auto const [hour, minute, second, fraction] = GetParam();
    EXPECT_FALSE(time::exists(hour, minute, second, fraction));
    auto const make = [&] { static_cast<void>(time(GetParam()[0], GetParam()[1], GetParam()[2], GetParam()[3])); };
    EXPECT_TRUE(failsAssertion(make, L"time::exists(hour, minute, second, fraction)"));
}

INSTANTIATE_TEST_SUITE_P(times, timeThatDoesNotExist,
                         testing::Values(timeParts{24, 0, 0, 0}, timeParts{25, 0, 0, 0}, timeParts{0, 60, 0, 0},
                                         timeParts{23, 59, 60, 0}, timeParts{0, 0, 0, 1'000'000},
                                         timeParts{256, 0, 0, 0}, timeParts{0, 0, 0, 4294967295U}));

// behaviour: DT-07
TEST(timeDefault, isMidnight) {
    EXPECT_EQ(time(), time(0, 0, 0, 0));
    EXPECT_EQ(time(1, 2, 3), time(1, 2, 3, 0));
}

// behaviour: DT-08
TEST(timeOrder, isTheOrderWithinADay) {
    EXPECT_LT(time(1, 59, 59, 999'999), time(2, 0, 0));
    EXPECT_LT(time(2, 0, 59), time(2, 1, 0));
    EXPECT_LT(time(2, 1, 0), time(2, 1, 1));
    EXPECT_LT(time(2, 1, 1), time(2, 1, 1, 1));
    EXPECT_NE(time(2, 1, 1), time(2, 1, 1, 1));
}

// behaviour: DT-09
TEST(timestampValue, hasADateAndATime) {
    timestamp const value(date(2024, 2, 29), time(17, 30, 0, 5));
    EXPECT_EQ(value.date(), date(2024, 2, 29));
    EXPECT_EQ(value.time(), time(17, 30, 0, 5));
    EXPECT_EQ(timestamp(), timestamp(date(1900, 1, 1), time(0, 0, 0, 0)));
}

// behaviour: DT-10
TEST(timestampOrder, looksAtTheDateFirst) {
    EXPECT_LT(timestamp(date(2024, 1, 1), time(23, 0, 0)), timestamp(date(2024, 1, 2), time(0, 0, 0)));
    EXPECT_LT(timestamp(date(2024, 1, 1), time(0, 0, 0)), timestamp(date(2024, 1, 1), time(0, 0, 0, 1)));
    EXPECT_EQ(timestamp(date(2024, 1, 1), time()), timestamp(date(2024, 1, 1), time()));
    EXPECT_NE(timestamp(date(2024, 1, 1), time()), timestamp(date(2024, 1, 1), time(1, 0, 0)));
}

// behaviour: DT-11
TEST(presentMoment, isNeverTheReferenceDate) {
    EXPECT_NE(date::today(), date());
    EXPECT_GE(date::today().year(), 2024U);
    EXPECT_NE(timestamp::now(), timestamp());
}

// behaviour: DT-11
TEST(presentMoment, liesBetweenTwoReadingsOfTheClock) {
    timestamp const before = timestamp::now();
    date const today = date::today();
    time const now = time::now();
    unsigned const year = date::thisYear();
    timestamp const after = timestamp::now();
    EXPECT_LE(before, after);
    EXPECT_GE(today, before.date());
    EXPECT_LE(today, after.date());
    EXPECT_GE(year, before.date().year());
    EXPECT_LE(year, after.date().year());
    if (before.date() == after.date()) {
        EXPECT_GE(now, before.time());
        EXPECT_LE(now, after.time());
    }
}

// behaviour: DT-11
TEST(presentMoment, movesByMicroseconds) {
    time const start = time::now();
    auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (time::now() == start && std::chrono::steady_clock::now() < end) {
    }
    EXPECT_NE(time::now(), start);
}

// behaviour: DT-12
TEST(presentMoment, isReadFromSeveralThreads) {
    std::vector<std::thread> threads;
    for (int count = 0; count < 4; ++count) {
        threads.emplace_back([] {
            for (int round = 0; round < 1000; ++round)
                EXPECT_NE(timestamp::now(), timestamp());
        });
    }
    for (auto& thread : threads)
        thread.join();
}

} // namespace
