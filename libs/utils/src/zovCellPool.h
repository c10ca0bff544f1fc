// Storage cells of one size, handed out and taken back without a trip to the allocator: counters, locks, small values.
//
// Each stripe of threads has free cells of its own. One without a free cell takes a batch from the store that all
// stripes share, or a fresh cell when the store is empty; a stripe with many free cells hands a batch to the store. So
// cells that one thread takes and another one gives back come round, and no more memory is taken than is needed at a
// time, but for the few cells that each stripe keeps, and what is left of the block that it cuts fresh ones from.
//
// A pool is never destroyed, and its cells' memory is never given back: objects that end after main still find it.
#pragma once

#include <atomic>
#include <cstddef>

#include "zovLeafLock.h"
#include "zovThreadStripe.h"

namespace zov {

class cellPool {
public:
    // Cells have 8, 16 or 32 bytes and are aligned to as many.
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
    struct chain {
        freeCell* first = nullptr;
        freeCell* last = nullptr;
        std::size_t length = 0;
    };

    // On a cache line of its own: threads of one stripe disturb no other one.
    struct alignas(64) stripe {
        freeCell* first = nullptr;
        std::size_t length = 0;
        leafLock guard; // of stripes that several threads share

        void push(freeCell* cell) noexcept;
        freeCell* pop() noexcept;
        void append(chain const& cells) noexcept;
        chain cutBatch() noexcept;
    };

    // What is rarer, apart from what is not: take and give stay small.
    [[gnu::noinline]] void* takeFresh();
    [[gnu::noinline]] void* takeSlowly();
    [[gnu::noinline]] void giveSlowly(void* cell) noexcept;
    [[gnu::noinline]] void handOn(stripe& from) noexcept;

    static void* popIfAny(stripe& from) noexcept;
    bool refill(stripe& empty) noexcept;
    void store(chain const& cells) noexcept;

    static freeCell* asFree(void* cell) noexcept;

    striped<stripe> mStripes{};
    stripe mStore;                      // under its guard
    std::atomic<bool> mHasStore{false}; // whether the store is worth looking at
    std::size_t const mCellSize;
};

// The pools of the process, by the size of their cells.
extern constinit cellPool cellsOf8;
extern constinit cellPool cellsOf16;
extern constinit cellPool cellsOf32;

} // namespace zov
