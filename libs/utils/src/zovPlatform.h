// What the operating systems do differently, in one place.
//
// Threads: everything here may be called from any thread at any time.
#pragma once

#include <ctime>

namespace zov {

// The local date and time of `moment`; 1 January 1900, 00:00:00, where the system cannot tell.
std::tm localTime(std::time_t moment) noexcept;

} // namespace zov
