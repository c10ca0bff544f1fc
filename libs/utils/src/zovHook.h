// A function that a host may replace at any time while other threads call it. It is never destroyed, since
// objects that end after main still report and log.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <new>

#include "zovSpinLock.h"

namespace zov {

template <class Signature>
class hook {
public:
    using function = std::function<Signature>;

    // An empty function stands for the default. The former one ends after the lock is gone.
    void set(function replacement) {
        auto next = replacement ? std::make_shared<function const>(std::move(replacement)) : nullptr;
        {
            std::lock_guard guard(mLock);
            mFunction.swap(next);
            mIsSet.store(mFunction != nullptr, std::memory_order_release);
        }
    }

    bool isSet() const noexcept { return mIsSet.load(std::memory_order_acquire); }

    // What to call, kept alive by the result; null when the default holds. Takes no lock in that case.
    std::shared_ptr<function const> get() const noexcept {
        if (!isSet()) return nullptr;
        std::lock_guard guard(mLock);
        return mFunction;
    }

private:
    mutable spinLockerRecursive mLock;
    std::atomic<bool> mIsSet{false};
    std::shared_ptr<function const> mFunction;
};

// An object with static storage that is made at its first use, without allocating, and never destroyed.
template <class T>
class neverDestroyed {
public:
    neverDestroyed() { new (mStorage) T; }
    neverDestroyed(neverDestroyed const&) = delete;
    neverDestroyed& operator=(neverDestroyed const&) = delete;

    T& operator*() noexcept { return *std::launder(reinterpret_cast<T*>(mStorage)); }
    T* operator->() noexcept { return &**this; }

private:
    alignas(T) std::byte mStorage[sizeof(T)];
};

} // namespace zov
