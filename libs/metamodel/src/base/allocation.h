// What becomes of a failed allocation: the two stated outcomes other than std::bad_alloc.
#pragma once

#include <new>

namespace zov::metamodel {

// Answers what `make` answers, or an empty result when memory is gone.
template <class Make>
auto emptyWithoutMemory(Make const& make) -> decltype(make()) {
    try {
        return make();
    } catch (std::bad_alloc const&) {
        return {};
    }
}

// Answers what `make` answers; throws false when memory is gone.
template <class Make>
auto falseWithoutMemory(Make const& make) -> decltype(make()) {
    try {
        return make();
    } catch (std::bad_alloc const&) {
        throw false;
    }
}

} // namespace zov::metamodel
