// Storage cells that are kept from the library, so that what it takes from cells are allocations, which may fail.
//
//     keptCells::useUp();                 // the next cell, of whatever kind, takes a new block
//     failingAllocations const armed(0);  // and cannot have it
//
//     keptCells::leave(48);                     // cells of 48 bytes in all
//     failingAllocations armed(0, eCellBlocks); // and no more
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

#include "failingAllocations.h"
#include "zovGenericValue.h"
#include "zovSharedPtr.h"

namespace zov::tests {

// The cells in which the library keeps what is small: counters, locks, small values, holders. It makes them by the
// block, each for cells of all kinds, so that only the first cell of a block is an allocation.
struct cellKind {
    std::size_t bytes;
    void* (*take)();
    void (*give)(void*);
};
inline constexpr std::size_t cellKinds = 3;
inline cellKind const cells[cellKinds] = {
    {8, []() -> void* { return const_cast<std::uint32_t*>(shptr::allocCounter()); },
     [](void* cell) { shptr::releaseCounter(static_cast<std::uint32_t*>(cell)); }},
    {16, []() -> void* { return genericValueHolderLocker::createLocker(); },
     [](void* cell) { genericValueHolderLocker::destroyLocker(static_cast<spinLockerRecursive*>(cell)); }},
    {32, [] { return genericValue::holderbase::allocate(32); },
     [](void* cell) { genericValue::holderbase::deallocate(cell); }}};

// The free cells of the thread that runs the tests, kept from it for good: the next cell takes a new block.
class keptCells {
public:
    // Takes what is free of a kind; answers how many cells that was. The first kind takes what is left of a block too.
    static std::size_t useUp(std::size_t kind) {
        std::size_t taken = 0;
        while (void* const cell = freeCell(kind)) {
            mKept[kind].push_back(cell);
            ++taken;
        }
        return taken;
    }

    static void useUp() {
        for (std::size_t kind = 0; kind < cellKinds; ++kind)
            useUp(kind);
    }

    // The same; answers how many bytes that was.
    static std::size_t useUpBytes() {
        std::size_t bytes = 0;
        for (std::size_t kind = 0; kind < cellKinds; ++kind)
            bytes += useUp(kind) * cells[kind].bytes;
        return bytes;
    }

    // Takes what is free but for so many bytes, a multiple of 8, of which cells of any kind can be made.
    static void leave(std::size_t bytes) {
        useUp();
        if (bytes == 0) return;
        ASSERT_LT(bytes, bytesOfABlock());
        for (std::size_t left = bytesOfABlock(); left > bytes; left -= cells[0].bytes)
            mKept[0].push_back(cells[0].take());
    }

    static std::size_t bytesOfABlock() {
        static std::size_t const known = [] {
            useUp();
            mKept[0].push_back(cells[0].take());
            return (1 + useUp(0)) * cells[0].bytes;
        }();
        return known;
    }

    static void giveBack(std::size_t kind, std::size_t count) {
        for (; count > 0; --count) {
            cells[kind].give(mKept[kind].back());
            mKept[kind].pop_back();
        }
    }

    static void giveBackOthers(std::size_t kept) {
        for (std::size_t kind = 0; kind < cellKinds; ++kind)
            if (kind != kept) giveBack(kind, mKept[kind].size());
    }

private:
    static void* freeCell(std::size_t kind) {
        failingAllocations const armed(0);
        try {
            return cells[kind].take();
        } catch (std::bad_alloc const&) {
            return nullptr;
        }
    }

    static inline std::array<std::vector<void*>, cellKinds> mKept;
};

} // namespace zov::tests
