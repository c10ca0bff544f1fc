#include "zovDateTime.h"

#include <algorithm>
#include <chrono>

#include "zovAssert.h"
#include "zovPlatform.h"

namespace zov {

namespace {

constexpr char const* sourceFile = "libs/utils/src/zovDateTime.cpp";

bool isLeapYear(unsigned year) noexcept {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

unsigned daysOf(unsigned year, unsigned month) noexcept {
    constexpr std::uint8_t days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeapYear(year) ? 29U : days[month - 1];
}

} // namespace

date::date(unsigned year, unsigned month, unsigned day) {
    assertThat(exists(year, month, day), L"date::exists(year, month, day)", sourceFile, __LINE__);
    mYear = static_cast<std::uint16_t>(year);
    mMonth = static_cast<std::uint8_t>(month);
    mDay = static_cast<std::uint8_t>(day);
}

date date::today() {
    return timestamp::now().date();
}

unsigned date::thisYear() {
    return today().year();
}

bool date::exists(unsigned year, unsigned month, unsigned day) noexcept {
    bool const monthExists = year >= 1 && year <= 9999 && month >= 1 && month <= 12;
    return monthExists && day >= 1 && day <= daysOf(year, month);
}

time::time(unsigned hour, unsigned minute, unsigned second, unsigned fraction) {
    bool const known = exists(hour, minute, second, fraction);
    assertThat(known, L"time::exists(hour, minute, second, fraction)", sourceFile, __LINE__);
    mHour = static_cast<std::uint8_t>(hour);
    mMinute = static_cast<std::uint8_t>(minute);
    mSecond = static_cast<std::uint8_t>(second);
    mFraction = fraction;
}

time time::now() {
    return timestamp::now().time();
}

bool time::exists(unsigned hour, unsigned minute, unsigned second, unsigned fraction) noexcept {
    return hour < 24 && minute < 60 && second < 60 && fraction < 1'000'000;
}

timestamp timestamp::now() {
    using std::chrono::floor;
    using std::chrono::system_clock;
    auto const moment = floor<std::chrono::microseconds>(system_clock::now());
    auto const whole = floor<std::chrono::seconds>(moment);
    std::tm const parts = localTime(system_clock::to_time_t(whole));
    // A system may show a leap second as second 60.
    int const second = std::min(parts.tm_sec, 59);
    zov::date const day(static_cast<unsigned>(parts.tm_year + 1900), static_cast<unsigned>(parts.tm_mon + 1),
                        static_cast<unsigned>(parts.tm_mday));
    zov::time const clock(static_cast<unsigned>(parts.tm_hour), static_cast<unsigned>(parts.tm_min),
                          static_cast<unsigned>(second), static_cast<unsigned>((moment - whole).count()));
    return timestamp(day, clock);
}

} // namespace zov
