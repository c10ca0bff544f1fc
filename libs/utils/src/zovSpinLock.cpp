#include "zovSpinLock.h"

#include <thread>

namespace zov {

namespace {

constexpr int spinsBeforeYield = 64;

} // namespace

constinit thread_local char threadMark = 0;

void spinLockerRecursive::waitFor(void const* self) noexcept {
    for (int spins = 0;; ++spins) {
        void const* nobody = nullptr;
        if (mOwner.compare_exchange_weak(nobody, self, std::memory_order_acquire, std::memory_order_relaxed)) return;
        if (spins >= spinsBeforeYield) std::this_thread::yield();
    }
}

} // namespace zov
