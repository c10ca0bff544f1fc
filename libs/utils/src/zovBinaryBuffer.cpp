#include "zovBinaryBuffer.h"

#include <algorithm>

namespace zov {

binaryBuffer::binaryBuffer(void const* bytes, std::size_t size) : mBytes(size) {
    std::copy_n(static_cast<unsigned char const*>(bytes), size, mBytes.begin());
}

} // namespace zov
