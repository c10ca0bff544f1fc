#include "zovCellPool.h"

#include <mutex>
#include <new>

#include "zovFreshCells.h"
#include "zovWatchedCells.h"

namespace zov {

namespace {

// What a stripe keeps at most, and what it hands on at a time.
constexpr std::size_t keptCells = 256;
constexpr std::size_t batch = 64;

constinit freshCells fresh;

} // namespace

constinit cellPool cellsOf8(8);
constinit cellPool cellsOf16(16);
constinit cellPool cellsOf32(32);

void* cellPool::take() {
    if (threadStripe::isOwn()) [[likely]] {
        stripe& own = mStripes[threadStripe::index()];
        if (own.first) [[likely]] {
            freeCell* const cell = own.pop();
            permitCell(cell, mCellSize);
            return cell;
        }
        if (!mHasStore.load(std::memory_order_relaxed)) return takeFresh();
    }
    return takeSlowly();
}

void cellPool::give(void* cell) noexcept {
    if (threadStripe::isOwn()) [[likely]] {
        stripe& own = mStripes[threadStripe::index()];
        own.push(asFree(cell));
        forbidCell(cell, mCellSize);
        if (own.length > keptCells) [[unlikely]]
            handOn(own);
        return;
    }
    giveSlowly(cell);
}

// For threads with a stripe of their own, when neither that nor the store has a cell.
void* cellPool::takeFresh() {
    void* const cell = fresh.takeIfAny(mCellSize);
    if (!cell) return takeSlowly();
    permitCell(cell, mCellSize);
    return cell;
}

void* cellPool::takeSlowly() {
    threadStripe::prepare();
    stripe& from = mStripes[threadStripe::index()];
    void* cell = popIfAny(from);
    if (!cell && refill(from)) cell = popIfAny(from);
    if (!cell) cell = fresh.take(mCellSize);
    permitCell(cell, mCellSize);
    return cell;
}

void cellPool::giveSlowly(void* cell) noexcept {
    threadStripe::prepare();
    if (threadStripe::isOwn()) {
        give(cell);
        return;
    }
    stripe& to = mStripes[threadStripe::index()];
    std::unique_lock held(to.guard);
    to.push(asFree(cell));
    forbidCell(cell, mCellSize);
    if (to.length <= keptCells) return;
    chain const tooMany = to.cutBatch();
    held.unlock();
    store(tooMany);
}

void cellPool::handOn(stripe& from) noexcept {
    store(from.cutBatch());
}

void* cellPool::popIfAny(stripe& from) noexcept {
    auto const held = guardedStripe(from.guard);
    return from.first ? from.pop() : nullptr;
}

// Gives the stripe a batch from the store; answers whether there was one.
bool cellPool::refill(stripe& empty) noexcept {
    if (!mHasStore.load(std::memory_order_relaxed)) return false;
    std::unique_lock heldStore(mStore.guard);
    if (!mStore.first) return false;
    chain const cells = mStore.cutBatch();
    mHasStore.store(mStore.first != nullptr, std::memory_order_relaxed);
    heldStore.unlock();
    auto const held = guardedStripe(empty.guard);
    empty.append(cells);
    return true;
}

void cellPool::store(chain const& cells) noexcept {
    std::lock_guard const held(mStore.guard);
    mStore.append(cells);
    mHasStore.store(true, std::memory_order_relaxed);
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
