#include "zovCellPool.h"

#include <atomic>
#include <mutex>
#include <new>

#include "zovThreads.h"

// While the address sanitizer watches, a free cell may be touched by its pool alone.
#if defined(__SANITIZE_ADDRESS__)
#    define ZOV_WATCHED_CELLS
#elif defined(__has_feature)
#    if __has_feature(address_sanitizer)
#        define ZOV_WATCHED_CELLS
#    endif
#endif
#if defined(ZOV_WATCHED_CELLS)
#    include <sanitizer/asan_interface.h>
#else
#    define ASAN_POISON_MEMORY_REGION(Begin, Size) (static_cast<void>(Begin), static_cast<void>(Size))
#    define ASAN_UNPOISON_MEMORY_REGION(Begin, Size) (static_cast<void>(Begin), static_cast<void>(Size))
#endif
#if defined(__GNUC__)
#    define ZOV_OF_THE_POOL __attribute__((no_sanitize("address")))
#else
#    define ZOV_OF_THE_POOL
#endif
namespace zov {

namespace {

// With the allocator's own 16 bytes a block takes two kilobytes.
constexpr std::size_t blockSize = 2032;
constexpr std::size_t blockHeader = 16;

// What a stripe keeps at most, and what it hands on at a time.
constexpr std::size_t keptCells = 256;
constexpr std::size_t batch = 64;

// Threads are numbered from 1 in the order in which they first use a pool.
constinit std::atomic<std::uint64_t> threads{0};
ZOV_NEAR_THREAD constinit thread_local std::uint64_t threadNumber = 0;

// Whether the number is that of a thread with a stripe of its own; 0 is that of a thread without a number yet.
constexpr bool hasOwnStripe(std::uint64_t number, std::size_t ownedStripes) noexcept {
    return number - 1 < ownedStripes;
}

} // namespace

constinit cellPool cellsOf8(8);
constinit cellPool cellsOf16(16);
constinit cellPool cellsOf32(32);
constinit cellPool cellsOf48(48);

void* cellPool::take() {
    std::uint64_t const number = threadNumber;
    if (hasOwnStripe(number, ownedStripes)) [[likely]] {
        stripe& own = mStripes[number - 1];
        if (own.first) [[likely]] {
            freeCell* const cell = own.pop();
            ASAN_UNPOISON_MEMORY_REGION(cell, mCellSize);
            return cell;
        }
    }
    return takeSlowly();
}

void cellPool::give(void* cell) noexcept {
    std::uint64_t const number = threadNumber;
    if (hasOwnStripe(number, ownedStripes)) [[likely]] {
        stripe& own = mStripes[number - 1];
        own.push(asFree(cell));
        ASAN_POISON_MEMORY_REGION(cell, mCellSize);
        if (own.length > keptCells) [[unlikely]]
            handOn(own);
        return;
    }
    giveSlowly(cell);
}

// Numbers the thread if it has no number yet. A block is made outside of a shared stripe's guard: the allocator may be
// a host's.
void* cellPool::takeSlowly() {
    numberThread();
    std::uint64_t const number = threadNumber;
    freeCell* cell = nullptr;
    if (hasOwnStripe(number, ownedStripes)) {
        stripe& own = mStripes[number - 1];
        if (!own.first) own.append(moreCells());
        cell = own.pop();
    } else {
        stripe& from = mStripes[ownedStripes + number % sharedStripes];
        std::unique_lock held(from.guard);
        while (!from.first) {
            held.unlock();
            chain const more = moreCells();
            held.lock();
            from.append(more);
        }
        cell = from.pop();
    }
    ASAN_UNPOISON_MEMORY_REGION(cell, mCellSize);
    return cell;
}

void cellPool::giveSlowly(void* cell) noexcept {
    numberThread();
    std::uint64_t const number = threadNumber;
    if (hasOwnStripe(number, ownedStripes)) {
        give(cell);
        return;
    }
    stripe& to = mStripes[ownedStripes + number % sharedStripes];
    std::unique_lock held(to.guard);
    to.push(asFree(cell));
    ASAN_POISON_MEMORY_REGION(cell, mCellSize);
    if (to.length <= keptCells) return;
    chain const tooMany = to.cutBatch();
    held.unlock();
    store(tooMany);
}

void cellPool::handOn(stripe& from) noexcept {
    store(from.cutBatch());
}

void cellPool::numberThread() noexcept {
    if (threadNumber == 0) threadNumber = threads.fetch_add(1, std::memory_order_relaxed) + 1;
}

cellPool::chain cellPool::moreCells() {
    {
        std::lock_guard const held(mStore.guard);
        if (mStore.first) return mStore.cutBatch();
    }
    return newBlock();
}

ZOV_OF_THE_POOL cellPool::chain cellPool::newBlock() {
    void* const storage = ::operator new(blockSize);
    auto* const made = ::new (storage) block{nullptr};
    auto* const cells = static_cast<std::byte*>(storage) + blockHeader;
    std::size_t const count = (blockSize - blockHeader) / mCellSize;
    freeCell* const last = asFree(cells + (count - 1) * mCellSize);
    chain result{last, last, count};
    for (std::size_t at = count - 1; at-- > 0;) {
        freeCell* const cell = asFree(cells + at * mCellSize);
        cell->next = result.first;
        result.first = cell;
    }
    ASAN_POISON_MEMORY_REGION(cells, result.length * mCellSize);
    std::lock_guard const held(mStore.guard);
    made->next = mBlocks;
    mBlocks = made;
    return result;
}

void cellPool::store(chain const& cells) noexcept {
    std::lock_guard const held(mStore.guard);
    mStore.append(cells);
}

ZOV_OF_THE_POOL cellPool::freeCell* cellPool::asFree(void* cell) noexcept {
    return ::new (cell) freeCell;
}

ZOV_OF_THE_POOL void cellPool::stripe::push(freeCell* cell) noexcept {
    cell->next = first;
    first = cell;
    ++length;
}

ZOV_OF_THE_POOL cellPool::freeCell* cellPool::stripe::pop() noexcept {
    freeCell* const cell = first;
    first = cell->next;
    --length;
    return cell;
}

ZOV_OF_THE_POOL void cellPool::stripe::append(chain const& cells) noexcept {
    cells.last->next = first;
    first = cells.first;
    length += cells.length;
}

// A batch from the front, which is where the cells are that the processor has seen last, or all there is.
ZOV_OF_THE_POOL cellPool::chain cellPool::stripe::cutBatch() noexcept {
    chain cut{first, first, 1};
    while (cut.length < batch && cut.last->next) {
        cut.last = cut.last->next;
        ++cut.length;
    }
    first = cut.last->next;
    length -= cut.length;
    return cut;
}

} // namespace zov
