// Counting references by hand, for containers whose entries must be plain memory.
#pragma once

namespace zov::metamodel {

// Has the processor fetch the object's count, which is likely to be written soon, while other things are looked at.
inline void fetchForCounting([[maybe_unused]] void const* object) noexcept {
#if defined(__GNUC__)
    __builtin_prefetch(object, 1);
#endif
}

template <class T>
void countIfAny(T* object) noexcept {
    if (object) object->addRef();
}

// Releases the object, if there is one, where nobody can be told of a failure: what its end reports has been reported
// there.
template <class T>
void giveUpQuietly(T* counted) noexcept {
    try {
        if (counted) counted->release();
    } catch (...) { // reported where it failed
    }
}

} // namespace zov::metamodel
