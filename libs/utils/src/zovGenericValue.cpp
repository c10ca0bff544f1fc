#include "zovGenericValue.h"

#include <functional>
#include <new>
#include <utility>

#include "zovSpinLock.h"
#include "zovTypeConvert.h"

namespace zov {

genericValueHolderLocker::genericValueHolderLocker(spinLockerRecursive* lock) noexcept : mFirst(lock) {
    mFirst->lock();
}

genericValueHolderLocker::genericValueHolderLocker(spinLockerRecursive* one, spinLockerRecursive* other) noexcept
    : mFirst(one), mSecond(other) {
    if (std::less<>()(mSecond, mFirst)) std::swap(mFirst, mSecond);
    if (mFirst) mFirst->lock();
    if (mSecond) mSecond->lock();
}

genericValueHolderLocker::~genericValueHolderLocker() {
    if (mSecond) mSecond->unlock();
    if (mFirst) mFirst->unlock();
}

spinLockerRecursive* genericValueHolderLocker::createLocker() {
    return new spinLockerRecursive;
}
void genericValueHolderLocker::destroyLocker(spinLockerRecursive* lock) noexcept {
    delete lock;
}

genericValue::holderbase::~holderbase() = default;

void* genericValue::holderbase::allocate(std::size_t size) {
    return ::operator new(size);
}
void genericValue::holderbase::deallocate(void* storage) noexcept {
    ::operator delete(storage);
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

genericValue::genericValue(holderbase* newHolder) {
    if (newHolder) mHolder.reset(newHolder);
}

genericValue::genericValue(genericValue const& other) {
    if (sharedPtr<holderbase> const source = other.heldNow()) mHolder.reset(source->clone());
}

genericValue& genericValue::operator=(genericValue const& other) {
    if (this == &other) return *this;
    genericValue copy(other);
    mHolder.exchange(copy.mHolder);
    return *this;
}

sharedPtr<genericValue::holderbase> genericValue::heldNow() const noexcept {
    sharedPtrLocker guard;
    return mHolder;
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
