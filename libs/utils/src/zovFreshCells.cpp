#include "zovFreshCells.h"

#include <mutex>
#include <new>
#include <utility>

#include "zovWatchedCells.h"

namespace zov {

namespace {

// Four kilobytes, with what the allocator is likely to need for itself.
constexpr std::size_t blockHeader = freshCells::largest;
constexpr std::size_t roomInBlock = 4032;
static_assert(roomInBlock % freshCells::largest == 0);

} // namespace

void* freshCells::take(std::size_t size) {
    stripe& from = mStripes[threadStripe::index()];
    auto held = guardedStripe(from.guard);
    if (void* const cell = from.cut(size)) return cell;

    // A block is made outside of the guard, since the allocator may be a host's. Meanwhile another thread of the
    // stripe, or that allocator itself, may have been here and made one.
    if (held) held.unlock();
    void* const storage = ::operator new(blockHeader + roomInBlock, std::align_val_t(largest));
    held = guardedStripe(from.guard);
    if (void* const cell = from.cut(size)) {
        if (held) held.unlock();
        ::operator delete(storage, std::align_val_t(largest));
        return cell;
    }
    from.first = static_cast<std::byte*>(storage) + blockHeader;
    from.left = roomInBlock;
    forbidCell(from.first, roomInBlock);
    void* const cell = from.cut(size);
    if (held) held.unlock();
    keep(storage);
    return cell;
}

void* freshCells::takeIfAny(std::size_t size) noexcept {
    return mStripes[threadStripe::index()].cut(size);
}

void freshCells::keep(void* storage) noexcept {
    auto* const made = ::new (storage) block{nullptr};
    std::lock_guard const held(mGuard);
    made->next = std::exchange(mBlocks, made);
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

} // namespace zov
