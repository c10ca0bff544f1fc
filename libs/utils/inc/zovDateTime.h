// Calendar dates, times of day, and both together: plain values without a time zone.
//
//     zov::date delivered(2024, 2, 29);
//     zov::timestamp at(delivered, zov::time(17, 30, 0, 250'000));   // a quarter of a second past 17:30
//     delivered < zov::date::today();                                // true
//     zov::date(2023, 2, 29);                                        // no such day: an assertion fails
//
// A date lies in the years 1 to 9999 of the Gregorian calendar, extended to the years before it was introduced. A
// time runs from 00:00:00 to 23:59:59.999999; there is no 24:00 and no second 60. The parts of a value that exists
// always exist: there is no invalid date.
//
// Ownership: values; they hold nothing.
// Threads: any number of readers, or one writer. The static members may be called from any thread.
// Fails: constructing what does not exist fails an assertion, which throws false (zovAssert.h). Ask exists() first
// where the parts come from outside.
#pragma once

#include <compare>
#include <cstdint>

#include "zovUtilsApi.h"

namespace zov {

// A day of the calendar. Dates compare in the order of time.
class ZOV_UTILS_API date {
public:
    // 1 January 1900.
    date() noexcept = default;

    // The given day: the year from 1 to 9999, the month from 1 to 12, the day from 1.
    // Fails: an assertion when there is no such day.
    date(unsigned year, unsigned month, unsigned day);

    // Today in local time.
    static date today();

    // The current year in local time.
    static unsigned thisYear();

    // Whether there is such a day, so that a date can be made of it.
    static bool exists(unsigned year, unsigned month, unsigned day) noexcept;

    unsigned year() const noexcept { return mYear; }
    unsigned month() const noexcept { return mMonth; }
    unsigned day() const noexcept { return mDay; }

    friend bool operator==(date const&, date const&) noexcept = default;
    friend std::strong_ordering operator<=>(date const&, date const&) noexcept = default;

private:
    std::uint16_t mYear = 1900;
    std::uint8_t mMonth = 1;
    std::uint8_t mDay = 1;
};

// A time of day, to the microsecond. Times compare in their order within a day.
class ZOV_UTILS_API time {
public:
    // 00:00:00.
    time() noexcept = default;

    // The given time: the hour from 0 to 23, minute and second from 0 to 59, the fraction of the second in
    // microseconds, from 0 to 999,999.
    // Fails: an assertion when there is no such time.
    time(unsigned hour, unsigned minute, unsigned second, unsigned fraction = 0);

    // The time of day now in local time.
    static time now();

    // Whether there is such a time, so that a time can be made of it.
    static bool exists(unsigned hour, unsigned minute, unsigned second, unsigned fraction = 0) noexcept;

    unsigned hour() const noexcept { return mHour; }
    unsigned minute() const noexcept { return mMinute; }
    unsigned second() const noexcept { return mSecond; }

    // Microseconds since the second began.
    unsigned fraction() const noexcept { return mFraction; }

    friend bool operator==(time const&, time const&) noexcept = default;
    friend std::strong_ordering operator<=>(time const&, time const&) noexcept = default;

private:
    std::uint8_t mHour = 0;
    std::uint8_t mMinute = 0;
    std::uint8_t mSecond = 0;
    std::uint32_t mFraction = 0;
};

// A time on a day. Timestamps compare in the order of time.
class ZOV_UTILS_API timestamp {
public:
    // 1 January 1900, 00:00:00.
    timestamp() noexcept = default;

    // The given time on the given day.
    timestamp(zov::date const& date, zov::time const& time) noexcept : mDate(date), mTime(time) {}

    // This moment in local time; date and time are those of one reading of the clock.
    static timestamp now();

    zov::date date() const noexcept { return mDate; }
    zov::time time() const noexcept { return mTime; }

    friend bool operator==(timestamp const&, timestamp const&) noexcept = default;
    friend std::strong_ordering operator<=>(timestamp const&, timestamp const&) noexcept = default;

private:
    zov::date mDate;
    zov::time mTime;
};

} // namespace zov
