// Storage cells that are kept from the library, so that what it takes from cells are allocations, which may fail.
//
//     keptCells kept;
//     kept.useUp();                       // the next cell of each kind takes a new block
//     failingAllocations const armed(0);  // and cannot have it
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
// block, so that only the first cell of a block is an allocation.
struct cellKind {
    void* (*take)();
    void (*give)(void*);
};
inline constexpr std::size_t cellKinds = 4;
inline cellKind const cells[cellKinds] = {
    {[]() -> void* { return const_cast<std::uint32_t*>(shptr::allocCounter()); },
     [](void* cell) { shptr::releaseCounter(static_cast<std::uint32_t*>(cell)); }},
    {[]() -> void* { return genericValueHolderLocker::createLocker(); },
     [](void* cell) { genericValueHolderLocker::destroyLocker(static_cast<spinLockerRecursive*>(cell)); }},
    {[] { return detail::smallStorage::allocate(32); }, [](void* cell) { detail::smallStorage::deallocate(cell, 32); }},
    {[] { return genericValue::holderbase::allocate(32); },
     [](void* cell) { genericValue::holderbase::deallocate(cell); }}};

// The free cells of this thread, kept from it as long as this lives: the next cell of each kind takes a new block.
class keptCells {
public:
    keptCells() = default;
    keptCells(keptCells const&) = delete;
    keptCells& operator=(keptCells const&) = delete;
    ~keptCells() {
        for (std::size_t kind = 0; kind < cellKinds; ++kind)
            giveBack(kind, mKept[kind].size());
    }

    // Takes what is free of a kind; answers how many cells that was.
    std::size_t useUp(std::size_t kind) {
        std::size_t taken = 0;
        while (void* const cell = freeCell(kind)) {
            mKept[kind].push_back(cell);
            ++taken;
        }
        return taken;
    }

    void useUp() {
        for (std::size_t kind = 0; kind < cellKinds; ++kind)
            useUp(kind);
    }

    // The same, when of each kind either nothing is free or a new block, whole: nobody has kept a cell of it.
    // Answers how many blocks that was.
    long useUpBlocks() {
        long blocks = 0;
        for (std::size_t kind = 0; kind < cellKinds; ++kind) {
            std::size_t const taken = useUp(kind);
            if (taken == 0) continue;
            EXPECT_EQ(taken, cellsOfABlock(kind));
            ++blocks;
        }
        return blocks;
    }

    void giveBack(std::size_t kind, std::size_t count) {
        for (; count > 0; --count) {
            cells[kind].give(mKept[kind].back());
            mKept[kind].pop_back();
        }
    }

    void giveBackOthers(std::size_t kept) {
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

    static std::size_t cellsOfABlock(std::size_t kind) {
        static std::array<std::size_t, cellKinds> known{};
        if (known[kind] == 0) {
            keptCells kept;
            kept.useUp(kind);
            kept.mKept[kind].push_back(cells[kind].take());
            known[kind] = 1 + kept.useUp(kind);
        }
        return known[kind];
    }

    std::array<std::vector<void*>, cellKinds> mKept;
};

} // namespace zov::tests
