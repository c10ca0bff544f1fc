#include "zovSpinLock.h"

#include <thread>

namespace zov {

namespace {

// The address tells threads apart; the value is never used.
thread_local char threadMark = 0;

constexpr int spinsBeforeYield = 64;

} // namespace

void spinLockerRecursive::lock() noexcept {
    void const* const self = &threadMark;
    if (mOwner.load(std::memory_order_relaxed) == self) {
        ++mDepth;
        return;
    }
    for (int spins = 0;; ++spins) {
        void const* nobody = nullptr;
        if (mOwner.compare_exchange_weak(nobody, self, std::memory_order_acquire, std::memory_order_relaxed)) break;
        if (spins >= spinsBeforeYield) std::this_thread::yield();
    }
    mDepth = 1;
}

void spinLockerRecursive::unlock() noexcept {
    if (--mDepth == 0) mOwner.store(nullptr, std::memory_order_release);
}

} // namespace zov
