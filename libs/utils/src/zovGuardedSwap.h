// Swaps shared pointers that their user guards already: `exchange` and assignment would take the locker once more.
// Nothing ends: what is destroyed here is empty.
#pragma once

#include <memory>
#include <utility>

#include "zovSharedPtr.h"

namespace zov {

template <class T>
void swapGuarded(sharedPtr<T>& one, sharedPtr<T>& other) noexcept {
    sharedPtr<T> former(std::move(one));
    std::destroy_at(&one);
    std::construct_at(&one, std::move(other));
    std::destroy_at(&other);
    std::construct_at(&other, std::move(former));
}

} // namespace zov
