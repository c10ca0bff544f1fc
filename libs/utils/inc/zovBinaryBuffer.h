// A run of bytes as a value.
//
//     zov::binaryBuffer picture(4);        // four bytes, all 0
//     picture.data()[0] = 0xFF;
//     zov::binaryBuffer copy = picture;    // bytes of its own
//     copy == picture;                     // true: equal size, equal bytes
//
// Ownership: a value; it owns its bytes.
// Threads: any number of readers, or one writer.
// Fails: std::bad_alloc (std::length_error for a size that no buffer can have), with the buffer as before.
#pragma once

#include <cstddef>
#include <vector>

#include "zovUtilsApi.h"

namespace zov {

class ZOV_UTILS_API binaryBuffer {
public:
    // A buffer of size 0.
    binaryBuffer() noexcept = default;

    // A buffer of `size` bytes, all 0.
    explicit binaryBuffer(std::size_t size) : mBytes(size) {}

    // A buffer with a copy of the `size` bytes at `bytes`, which may be null when the size is 0.
    binaryBuffer(void const* bytes, std::size_t size);

    // The first byte. With size 0 the pointer must not be read through, and may be null.
    // Stays valid while the buffer is neither assigned to, moved from nor destroyed.
    unsigned char* data() noexcept { return mBytes.data(); }
    unsigned char const* data() const noexcept { return mBytes.data(); }

    // The number of bytes.
    std::size_t size() const noexcept { return mBytes.size(); }

    // Equal size and equal bytes.
    friend bool operator==(binaryBuffer const&, binaryBuffer const&) noexcept = default;

private:
    std::vector<unsigned char> mBytes;
};

} // namespace zov
