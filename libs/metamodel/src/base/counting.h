// Counting references by hand, for containers whose entries must be plain memory.
#pragma once

namespace zov::metamodel {

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
