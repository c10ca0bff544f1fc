// The recursive spin lock under every short critical section of the library: pointer lockers, value holders,
// property sets. Taking it allocates nothing and cannot fail, so that it may be taken while memory is gone and
// in code that must not throw. It spins briefly, then yields: sections under it are a few instructions long.
#pragma once

#include <atomic>
#include <cstdint>

namespace zov {

class spinLockerRecursive {
public:
    constexpr spinLockerRecursive() noexcept = default;
    spinLockerRecursive(spinLockerRecursive const&) = delete;
    spinLockerRecursive& operator=(spinLockerRecursive const&) = delete;

    void lock() noexcept;
    void unlock() noexcept;

private:
    std::atomic<void const*> mOwner{nullptr}; // an address that only the owning thread has
    std::uint32_t mDepth = 0;                 // touched by the owner alone
};

} // namespace zov
