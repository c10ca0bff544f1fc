// Makes allocations fail on demand. Include it in exactly one source of a test executable: it replaces the global
// operator new of the whole process.
//
//     failingAllocations armed(3);                 // three more allocations get through, the next ones fail
//     failingAllocations armed(3, eOneAllocation); // the same, but those behind the failing one get through again
//     failingAllocations armed(0, eCellBlocks);    // only the library's storage cells are not to be had
//
// Only the thread that armed the failure is affected, and only while it is armed.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace zov::tests {

// Counts down to the allocation that fails; negative while nothing is armed.
inline thread_local long allocationsLeft = -1;

// Whether the end of the countdown makes one allocation fail or all from there on, or all that are made for blocks of
// storage cells. These want this alignment, as does nothing else but the storage of large holders.
enum failureKind { eAllAllocations, eOneAllocation, eCellBlocks };
inline constexpr std::size_t alignmentOfCellBlocks = 32;
inline thread_local failureKind failingNow = eAllAllocations;

// Whether an allocation of this thread has failed since the failure was armed.
inline thread_local bool hasFailed = false;

// All allocations of this thread since it began, the failed ones included.
inline thread_local std::size_t allocationsMade = 0;

// The allocations of this thread less what it freed: unchanged by an operation that loses nothing.
inline thread_local long allocationsAlive = 0;

inline void* allocateOrFail(std::size_t size, std::size_t alignment = alignof(std::max_align_t)) {
    ++allocationsMade;
    if (allocationsLeft == 0 && (failingNow != eCellBlocks || alignment == alignmentOfCellBlocks)) {
        if (failingNow == eOneAllocation) allocationsLeft = -1;
        hasFailed = true;
        return nullptr;
    }
    if (allocationsLeft > 0) --allocationsLeft;
    std::size_t const units = size / alignment + (size % alignment != 0 || size == 0 ? 1 : 0);
    void* const storage = alignment > alignof(std::max_align_t) ? std::aligned_alloc(alignment, units * alignment)
                                                                : std::malloc(size ? size : 1);
    if (storage) ++allocationsAlive;
    return storage;
}

// Never inlined: the compiler would take the free for a mismatch with the new that it sees elsewhere.
[[gnu::noinline]] inline void freeAllocated(void* storage) noexcept {
    if (storage) --allocationsAlive;
    std::free(storage);
}

// While it lives, the allocation after `passing` more ones fails, and, unless only one shall, all that follow do.
class failingAllocations {
public:
    explicit failingAllocations(long passing, failureKind kind = eAllAllocations) noexcept {
        allocationsLeft = passing;
        failingNow = kind;
        hasFailed = false;
    }
    ~failingAllocations() { allocationsLeft = -1; }
    failingAllocations(failingAllocations const&) = delete;
    failingAllocations& operator=(failingAllocations const&) = delete;
};

} // namespace zov::tests

// NOLINTBEGIN: replacing the allocation functions takes their exact forms
void* operator new(std::size_t size) {
    if (void* const storage = zov::tests::allocateOrFail(size)) return storage;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
    return zov::tests::allocateOrFail(size);
}
void* operator new[](std::size_t size, std::nothrow_t const&) noexcept {
    return zov::tests::allocateOrFail(size);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    if (void* const storage = zov::tests::allocateOrFail(size, static_cast<std::size_t>(alignment))) return storage;
    throw std::bad_alloc();
}
void operator delete(void* storage) noexcept {
    zov::tests::freeAllocated(storage);
}
void operator delete[](void* storage) noexcept {
    zov::tests::freeAllocated(storage);
}
void operator delete(void* storage, std::size_t) noexcept {
    zov::tests::freeAllocated(storage);
}
void operator delete[](void* storage, std::size_t) noexcept {
    zov::tests::freeAllocated(storage);
}
void operator delete(void* storage, std::align_val_t) noexcept {
    zov::tests::freeAllocated(storage);
}
void operator delete(void* storage, std::size_t, std::align_val_t) noexcept {
    zov::tests::freeAllocated(storage);
}
// NOLINTEND
