// What threads would get in each other's way with is striped: each of the first threads of the process has a stripe
// that nobody else touches, and all later ones share the remaining stripes, each under a lock of its own. Threads keep
// their stripe; those that have ended leave it unused.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>

#include "zovLeafLock.h"
#include "zovThreads.h"

namespace zov {

// Threads are numbered from 1 in the order in which they first ask; 0 is that of a thread without a number yet.
class threadStripe {
public:
    static constexpr std::size_t owned = 48;
    static constexpr std::size_t shared = 16;

    // Numbers the thread, if it has no number yet.
    static void prepare() noexcept;

    // Whether the thread has a stripe of its own; not before it has been prepared.
    static bool isOwn() noexcept { return number - 1 < owned; }

    // For threads that have been prepared.
    static std::size_t index() noexcept { return isOwn() ? number - 1 : owned + number % shared; }

private:
    ZOV_NEAR_THREAD static constinit thread_local std::uint64_t number;
};

// The lock of the thread's stripe: held, unless the stripe is its own.
inline std::unique_lock<leafLock> guardedStripe(leafLock& guard) noexcept {
    return threadStripe::isOwn() ? std::unique_lock<leafLock>() : std::unique_lock(guard);
}

template <class Stripe>
using striped = std::array<Stripe, threadStripe::owned + threadStripe::shared>;

} // namespace zov
