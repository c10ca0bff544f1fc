#include "zovFreshCells.h"

#include <mutex>
#include <new>
#include <utility>

#include "zovWatchedCells.h"

namespace zov {

namespace {

// With what the allocator needs for itself, a block takes four kilobytes at most.
constexpr std::size_t blockHeader = freshCells::largest;
constexpr std::size_t roomInBlock = 4032;
static_assert(roomInBlock % freshCells::largest == 0);

} // namespace

void* freshCells::take(std::size_t size) {
    stripe& from = mStripes[threadStripe::index()];
    return threadStripe::isOwn() ? takeOwn(from, size) : takeShared(from, size);
}

void* freshCells::takeOwn(stripe& from, std::size_t size) {
    if (void* const cell = from.cut(size)) return cell;
    from.replace(newBlock());
    return from.cut(size);
}

// A block is made outside of the guard: the allocator may be a host's. When two threads make one at a time, what is
// left of the first is lost.
void* freshCells::takeShared(stripe& from, std::size_t size) {
    std::unique_lock held(from.guard);
    if (void* const cell = from.cut(size)) return cell;
    held.unlock();
    std::byte* const made = newBlock();
    held.lock();
    from.replace(made);
    return from.cut(size);
}

std::byte* freshCells::newBlock() {
    void* const storage = ::operator new(blockHeader + roomInBlock, std::align_val_t(largest));
    auto* const made = ::new (storage) block{nullptr};
    std::byte* const room = static_cast<std::byte*>(storage) + blockHeader;
    forbidCell(room, roomInBlock);
    std::lock_guard const held(mGuard);
    made->next = std::exchange(mBlocks, made);
    return room;
}

std::byte* freshCells::stripe::cut(std::size_t size) noexcept {
    if (size < largest) {
        std::byte*& other = half[size / 16];
        if (other) return std::exchange(other, nullptr);
        std::byte* const both = cut(2 * size);
        if (both) other = both + size;
        return both;
    }
    if (left == 0) return nullptr;
    left -= size;
    return std::exchange(first, first + size);
}

void freshCells::stripe::replace(std::byte* begin) noexcept {
    first = begin;
    left = roomInBlock;
}

} // namespace zov
