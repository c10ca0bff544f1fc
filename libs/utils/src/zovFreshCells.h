// Memory for the cells of all pools. What one thread takes one after another lies side by side, whatever the sizes: the
// pieces of a value (itself, its holder, lock, number and counters) share two or three cache lines.
//
// Cells have 8, 16 or 32 bytes and are aligned to as many. Nothing is ever given back here, and nothing lost: a cell is
// the half of one twice its size, and the other half is the next one of its size.
#pragma once

#include <array>
#include <cstddef>

#include "zovLeafLock.h"
#include "zovThreadStripe.h"

namespace zov {

class freshCells {
public:
    static constexpr std::size_t largest = 32;

    constexpr freshCells() noexcept = default;
    freshCells(freshCells const&) = delete;
    freshCells& operator=(freshCells const&) = delete;

    // A cell that has not been used yet. For threads that have been prepared. Throws std::bad_alloc, and nothing has
    // changed.
    void* take(std::size_t size);

    // The same from what is left of the newest block, or null. For threads with a stripe of their own.
    void* takeIfAny(std::size_t size) noexcept;

private:
    struct block {
        block* next;
    };

    // What is left of a stripe's newest block.
    struct alignas(64) stripe {
        std::byte* first = nullptr;
        std::size_t left = 0;
        std::array<std::byte*, 2> half{}; // of 8 and of 16 bytes
        leafLock guard;                   // of stripes that several threads share

        std::byte* cut(std::size_t size) noexcept; // null when nothing is left
    };

    void keep(void* storage) noexcept;

    striped<stripe> mStripes{};
    leafLock mGuard;
    block* mBlocks = nullptr; // all blocks, so that leak checkers find them
};

} // namespace zov
