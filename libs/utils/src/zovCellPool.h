// Storage cells of one size, handed out and taken back without a trip to the allocator: counters, locks, small values.
//
// Each of the first threads of the process has a stripe of free cells that nobody else touches; all later ones share
// the remaining stripes, each under a lock of its own. A stripe without a free cell takes a batch from the store that
// all stripes share, or a new block when the store is empty; a stripe with many free cells hands a batch to the store.
// So cells that one thread takes and another one gives back come round, and no more blocks are made than are needed
// at a time, but for the few cells that each stripe keeps.
//
// A pool is never destroyed, and its blocks are never given back: objects that end after main still find it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "zovLeafLock.h"

namespace zov {

class cellPool {
public:
    // Cells of 16 bytes and its multiples are aligned to 16 bytes, others to 8.
    constexpr explicit cellPool(std::size_t cellSize) noexcept : mCellSize(cellSize) {}
    cellPool(cellPool const&) = delete;
    cellPool& operator=(cellPool const&) = delete;

    // A cell, its content not set. Throws std::bad_alloc; the pool is then as before.
    void* take();

    // Takes back what take gave, on any thread.
    void give(void* cell) noexcept;

private:
    struct freeCell {
        freeCell* next;
    };
    struct block {
        block* next;
    };
    struct chain {
        freeCell* first = nullptr;
        freeCell* last = nullptr;
        std::size_t length = 0;
    };

    // On a cache line of its own: a stripe's thread disturbs no other one.
    struct alignas(64) stripe {
        freeCell* first = nullptr;
        std::size_t length = 0;
        leafLock guard; // of stripes that several threads share

        void push(freeCell* cell) noexcept;
        freeCell* pop() noexcept;
        void append(chain const& cells) noexcept;
        chain cutBatch() noexcept;
    };

    // What is rare, apart from what is not: take and give stay small.
    [[gnu::noinline]] void* takeSlowly();
    [[gnu::noinline]] void giveSlowly(void* cell) noexcept;
    [[gnu::noinline]] void handOn(stripe& from) noexcept;

    static void numberThread() noexcept;

    chain moreCells();
    chain newBlock();
    void store(chain const& cells) noexcept;

    static freeCell* asFree(void* cell) noexcept;

    static constexpr std::size_t ownedStripes = 48;
    static constexpr std::size_t sharedStripes = 16;

    std::array<stripe, ownedStripes + sharedStripes> mStripes{};
    stripe mStore;            // under its guard
    block* mBlocks = nullptr; // all blocks, so that leak checkers find them; under the store's guard
    std::size_t const mCellSize;
};

// The pools of the process, by the size of their cells.
extern constinit cellPool cellsOf8;
extern constinit cellPool cellsOf16;
extern constinit cellPool cellsOf32;
extern constinit cellPool cellsOf48;

} // namespace zov
