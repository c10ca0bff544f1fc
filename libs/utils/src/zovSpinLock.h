// The recursive spin lock of pointer lockers and value holders. Taking it allocates nothing and cannot fail, so that it
// may be taken while memory is gone and in code that must not throw. It spins briefly, then yields: most sections under
// it are a few instructions long. (A value is cloned or converted under its holder's lock, which may take longer.)
#pragma once

#include <atomic>
#include <cstdint>

#include "zovThreads.h"

namespace zov {

// The address tells threads apart; the value is never used.
ZOV_NEAR_THREAD extern constinit thread_local char threadMark;

class spinLockerRecursive {
public:
    constexpr spinLockerRecursive() noexcept = default;
    spinLockerRecursive(spinLockerRecursive const&) = delete;
    spinLockerRecursive& operator=(spinLockerRecursive const&) = delete;

    void lock() noexcept {
        void const* const self = &threadMark;
        if (mOwner.load(std::memory_order_relaxed) == self) {
            ++mDepth;
            return;
        }
        void const* nobody = nullptr;
        if (!mOwner.compare_exchange_strong(nobody, self, std::memory_order_acquire, std::memory_order_relaxed))
            waitFor(self);
        mDepth = 1;
    }

    // Takes the lock unless another thread has it; answers whether it did.
    bool tryLock() noexcept {
        void const* const self = &threadMark;
        void const* owner = nullptr;
        if (!mOwner.compare_exchange_strong(owner, self, std::memory_order_acquire, std::memory_order_relaxed) &&
            owner != self)
            return false;
        ++mDepth;
        return true;
    }

    // Whether another thread has it at this moment.
    bool isHeldElsewhere() const noexcept {
        void const* const owner = mOwner.load(std::memory_order_relaxed);
        return owner && owner != &threadMark;
    }

    void unlock() noexcept {
        if (--mDepth == 0) mOwner.store(nullptr, std::memory_order_release);
    }

private:
    // Takes the lock for `self` once nobody has it.
    void waitFor(void const* self) noexcept;

    std::atomic<void const*> mOwner{nullptr}; // an address that only the owning thread has
    std::uint32_t mDepth = 0;                 // touched by the owner alone
};

} // namespace zov
