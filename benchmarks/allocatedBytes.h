// How many bytes the allocator has handed out.
#pragma once

#include <malloc.h>

#include <cstddef>

namespace zov::benchmarks {

inline std::size_t allocatedBytes() {
    auto const state = mallinfo2();
    return state.uordblks + state.hblkhd;
}

} // namespace zov::benchmarks
