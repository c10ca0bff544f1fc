// A lock of one byte for sections of a few instructions in which nobody waits, but for another such lock, and no host
// is called: a list of free cells, a set's entries, a pointer with its counter. Not recursive. Taking it allocates
// nothing and cannot fail.
#pragma once

#include <atomic>
#include <thread>

namespace zov {

class leafLock {
public:
    constexpr leafLock() noexcept = default;
    leafLock(leafLock const&) = delete;
    leafLock& operator=(leafLock const&) = delete;

    void lock() noexcept {
        while (mHeld.exchange(true, std::memory_order_acquire))
            waitUntilFree();
    }
    void unlock() noexcept { mHeld.store(false, std::memory_order_release); }

private:
    void waitUntilFree() const noexcept {
        constexpr int spinsBeforeYield = 64;
        for (int spins = 0; mHeld.load(std::memory_order_relaxed); ++spins)
            if (spins >= spinsBeforeYield) std::this_thread::yield();
    }

    std::atomic<bool> mHeld{false};
};

} // namespace zov
