#include "zovGenericValue.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

#include "zovCellPool.h"
#include "zovGuardedSwap.h"
#include "zovLeafLock.h"
#include "zovSharedLock.h"
#include "zovSpinLock.h"
#include "zovTypeConvert.h"

namespace zov {

namespace {

// How many values' locks this thread holds, but for those that it only tries.
ZOV_NEAR_THREAD constinit thread_local unsigned heldValueLocks = 0;

void lockIfAny(spinLockerRecursive* lock) noexcept {
    if (!lock) return;
    lock->lock();
    ++heldValueLocks;
}

void unlockIfAny(spinLockerRecursive* lock) noexcept {
    if (!lock) return;
    --heldValueLocks;
    lock->unlock();
}

} // namespace

genericValueHolderLocker::genericValueHolderLocker(spinLockerRecursive* lock) noexcept : mFirst(lock) {
    lockIfAny(mFirst);
}

genericValueHolderLocker::genericValueHolderLocker(spinLockerRecursive* one, spinLockerRecursive* other) noexcept
    : mFirst(one), mSecond(other) {
    if (std::less<>()(mSecond, mFirst)) std::swap(mFirst, mSecond);
    lockIfAny(mFirst);
    lockIfAny(mSecond);
}

genericValueHolderLocker::~genericValueHolderLocker() {
    unlockIfAny(mSecond);
    unlockIfAny(mFirst);
}

spinLockerRecursive* genericValueHolderLocker::createLocker() {
    return ::new (detail::smallStorage::allocate(sizeof(spinLockerRecursive))) spinLockerRecursive;
}
void genericValueHolderLocker::destroyLocker(spinLockerRecursive* lock) noexcept {
    if (!lock) return;
    std::destroy_at(lock);
    detail::smallStorage::deallocate(lock, sizeof(spinLockerRecursive));
}

namespace {

// The pool for objects of this size; null for those that go to the allocator.
cellPool* poolFor(std::size_t size) noexcept {
    if (size <= 8) return &cellsOf8;
    if (size <= 16) return &cellsOf16;
    if (size <= 32) return &cellsOf32;
    return nullptr;
}

} // namespace

void* detail::smallStorage::allocate(std::size_t size) {
    cellPool* const pool = poolFor(size);
    return pool ? pool->take() : ::operator new(size);
}

void detail::smallStorage::deallocate(void* storage, std::size_t size) noexcept {
    if (!storage) return;
    if (cellPool* const pool = poolFor(size)) return pool->give(storage);
    ::operator delete(storage);
}

genericValue::holderbase::~holderbase() = default;

namespace {

// Holders are given back without their size. Where they lie tells where they come from: in a cell, which begins at a
// multiple of 32 bytes, or, when they are larger, in storage of their own, 16 bytes behind such a place.
constexpr std::size_t holderCell = 32;
constexpr std::size_t behindCell = 16;
static_assert(behindCell % __STDCPP_DEFAULT_NEW_ALIGNMENT__ == 0);

} // namespace

void* genericValue::holderbase::allocate(std::size_t size) {
    if (size <= holderCell) return cellsOf32.take();
    return static_cast<std::byte*>(::operator new(behindCell + size, std::align_val_t(holderCell))) + behindCell;
}
void genericValue::holderbase::deallocate(void* storage) noexcept {
    if (!storage) return;
    if (reinterpret_cast<std::uintptr_t>(storage) % holderCell == 0) return cellsOf32.give(storage);
    ::operator delete(static_cast<std::byte*>(storage) - behindCell, std::align_val_t(holderCell));
}

void genericValue::holderbase::refuseWriting() {
    throw false;
}

namespace {

// The lock of a holder; null for a holder of a host's own making that has none.
spinLockerRecursive* lockOf(genericValue::holderbase const& holder) noexcept {
    auto const* const locked = dynamic_cast<genericValue::lockedHolder const*>(&holder);
    return locked ? locked->locker() : nullptr;
}

} // namespace

genericValue::lockedHolder::lockedHolder() : mLock(genericValueHolderLocker::createLocker()) {}
genericValue::lockedHolder::~lockedHolder() {
    genericValueHolderLocker::destroyLocker(mLock);
}

bool genericValue::lockedHolder::copyValue(holderbase& target, holderbase const& source,
                                           void (*assign)(holderbase& target, holderbase const& source)) {
    if (!target.valuePointer()) return false;
    genericValueHolderLocker const guard(lockOf(target), lockOf(source));
    if (!assign) return detail::convertValue(target.type(), target.valuePointer(), source);
    assign(target, source);
    return true;
}

bool detail::convertValue(std::type_info const& outType, void* out, genericValue::holderbase const& source) {
    genericValueHolderLocker const guard(lockOf(source), nullptr);
    return typeconvert::typeConversionManager::instance().convert(outType, out, source.type(), source.valuePointer(), 0,
                                                                  nullptr);
}

namespace {

// The locks under which a value's pointer to its holder is exchanged and looked at, shared by the values' addresses.
// Under it the pair of pointers is read or swapped, or a few bytes of the value are copied, if its own lock is free.
struct alignas(64) slotLock : leafLock {};
constexpr std::size_t slotLockCount = 64;
constinit std::array<slotLock, slotLockCount> slotLocks;

slotLock& slotLockOf(genericValue const* value) noexcept {
    auto const address = reinterpret_cast<std::uintptr_t>(value);
    return slotLocks[(address / sizeof(genericValue) ^ address / 4096) % slotLockCount];
}

// Takes a slot for reading, unless another thread holds the sharedPtrLocker: of several assignments under one locker
// nobody else is to see the first ones. Who has just assigned here, and holds the locker still, is seen to hold it. A
// thread that holds a value's lock, since it copies a value that has others in it, does not wait: who holds the locker
// may be waiting for that lock.
bool lockForReading(slotLock& slot) noexcept {
    slot.lock();
    if (!sharedLock.isHeldElsewhere() || heldValueLocks != 0) return true;
    slot.unlock();
    return false;
}

// A value's slot, held for reading. Waits for the sharedPtrLocker while another thread holds it, and otherwise leaves
// it alone.
class readableSlot {
public:
    explicit readableSlot(genericValue const* value) noexcept : mSlot(slotLockOf(value)) {
        if (lockForReading(mSlot)) return;
        sharedPtrLocker const turn;
        mSlot.lock();
    }
    ~readableSlot() { mSlot.unlock(); }
    readableSlot(readableSlot const&) = delete;
    readableSlot& operator=(readableSlot const&) = delete;

private:
    slotLock& mSlot;
};

} // namespace

genericValue::genericValue(holderbase* newHolder)
    : mHolder(newHolder ? sharedPtr<holderbase>(newHolder) : sharedPtr<holderbase>()) {}

genericValue::genericValue(genericValue const& other) : mHolder(cloneOf(other.heldNow())) {}

genericValue& genericValue::operator=(genericValue const& other) {
    if (this != &other) assignClone(other.heldNow());
    return *this;
}

genericValue& genericValue::operator=(genericValue&& other) noexcept {
    sharedPtr<holderbase> next(std::move(other.mHolder));
    exchange(next);
    return *this;
}

sharedPtr<genericValue::holderbase> genericValue::cloneOf(sharedPtr<holderbase> const& source) {
    return source ? sharedPtr<holderbase>(source->clone()) : sharedPtr<holderbase>();
}

void genericValue::assignClone(sharedPtr<holderbase> const& source) {
    sharedPtr<holderbase> next = cloneOf(source);
    exchange(next);
}

// Under both locks: hosts know the first, readers and copies take the second.
void genericValue::exchange(sharedPtr<holderbase>& other) noexcept {
    sharedPtrLocker const guard;
    std::lock_guard const held(slotLockOf(this));
    swapGuarded(mHolder, other);
}

sharedPtr<genericValue::holderbase> genericValue::heldNow() const noexcept {
    readableSlot const slot(this);
    return mHolder;
}

bool genericValue::heldIfFree(sharedPtr<holderbase>& into) const noexcept {
    slotLock& slot = slotLockOf(this);
    if (!lockForReading(slot)) return false;
    std::lock_guard const held(slot, std::adopt_lock);
    sharedPtr<holderbase> copy(mHolder);
    swapGuarded(into, copy);
    return true;
}

bool genericValue::isEmpty() const noexcept {
    readableSlot const slot(this);
    return !mHolder;
}

// Does not wait for the holder's lock: whoever has it may want the slot's.
bool genericValue::copyBytes(std::type_info const& holderClass, void* out, std::size_t size) const noexcept {
    readableSlot const slot(this);
    holderbase const* const held = mHolder.get();
    if (!held || &typeid(*held) != &holderClass) return false;
    spinLockerRecursive& lock = *static_cast<lockedHolder const*>(held)->locker();
    if (!lock.tryLock()) return false;
    std::memcpy(out, held->valuePointer(), size);
    lock.unlock();
    return true;
}

std::type_info const& genericValue::type() const {
    sharedPtr<holderbase> const held = heldNow();
    return held ? held->type() : typeid(void);
}

bool genericValue::assignText(zov::string const& text) {
    constptrholder<zov::string> const source(&text);
    if (sharedPtr<holderbase> held = heldNow()) return held->assignFrom(source);
    *this = genericValue(text);
    return true;
}

#if defined(__ELF__)
ZOV_ALL_HOLDERS()
#endif

} // namespace zov
