// Runs a function when a scope is left, by an exception too, unless it was called off.
#pragma once

#include <utility>

namespace zov::metamodel {

template <class Fn>
class scopeExit {
public:
    explicit scopeExit(Fn fn) : mFn(std::move(fn)) {}
    ~scopeExit() {
        if (mWanted) mFn();
    }

    scopeExit(scopeExit const&) = delete;
    scopeExit& operator=(scopeExit const&) = delete;

    void callOff() noexcept { mWanted = false; }

private:
    Fn mFn;
    bool mWanted = true;
};

} // namespace zov::metamodel
