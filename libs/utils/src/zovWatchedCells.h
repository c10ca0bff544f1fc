// Free cells, as the address sanitizer sees them: nobody but their pool may touch them.
#pragma once

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
#    define ZOV_WATCHES_CELLS
#elif defined(__has_feature)
#    if __has_feature(address_sanitizer)
#        define ZOV_WATCHES_CELLS
#    endif
#endif
#if defined(ZOV_WATCHES_CELLS)
#    include <sanitizer/asan_interface.h>
#endif

// Marks the functions of a pool that touch free cells.
#if defined(__GNUC__)
#    define ZOV_OF_THE_POOL __attribute__((no_sanitize("address")))
#else
#    define ZOV_OF_THE_POOL
#endif

namespace zov {

// From now on, touching the memory is a mistake.
inline void forbidCell([[maybe_unused]] void* cell, [[maybe_unused]] std::size_t size) noexcept {
#if defined(ZOV_WATCHES_CELLS)
    __asan_poison_memory_region(cell, size);
#endif
}

// From now on, the memory is somebody's.
inline void permitCell([[maybe_unused]] void* cell, [[maybe_unused]] std::size_t size) noexcept {
#if defined(ZOV_WATCHES_CELLS)
    __asan_unpoison_memory_region(cell, size);
#endif
}

} // namespace zov
