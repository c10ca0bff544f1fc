// Shared ownership of objects that do not count themselves: the counter lies outside the object.
//
//     sharedPtr<list> a(new list);          // counter 1
//     const_sharedPtr<list> b = a;          // counter 2
//     a.reset();                            // counter 1
//     b.reset();                            // counter 0: the list is destroyed, then the counter freed
//
// Threads: counters are atomic. A pointer variable that several threads use is a *shared slot*: assign to it as
// usual (assignment exchanges under a sharedPtrLocker), and copy from it while holding a sharedPtrLocker, so
// that nobody sees the object of one pointer with the counter of another.
//
// Fails: using an empty pointer reports "m_p != nullptr" and throws false. Taking over a new object throws
// std::bad_alloc when there is no memory for its counter; the object is destroyed then, so nothing is lost.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "zovRefPtr.h"
#include "zovUtilsApi.h"

namespace zov {

// Where counters come from.
struct ZOV_UTILS_API shptr {
    // Storage for a counter, not yet set. Throws std::bad_alloc.
    static std::uint32_t volatile* allocCounter();

    // Takes back what allocCounter gave; null is allowed.
    static void releaseCounter(std::uint32_t volatile* counter) noexcept;
};

// The policy by which a shared object ends: through its destructor, virtual where it has one.
template <class T>
struct ZOV_UTILS_TYPE deleteObj {
    void operator()(T* object) const noexcept { delete object; }
};

// Held while a shared sharedPtr slot is copied or exchanged. One lock for the whole process, recursive on a
// thread. Nothing is destroyed, called back or logged under it.
class ZOV_UTILS_API sharedPtrLocker {
public:
    sharedPtrLocker() noexcept;
    ~sharedPtrLocker();

    sharedPtrLocker(sharedPtrLocker const&) = delete;
    sharedPtrLocker& operator=(sharedPtrLocker const&) = delete;
};

namespace detail {

// Reports "m_p != nullptr" for the given accessor's line, then throws false.
[[noreturn]] ZOV_UTILS_API void failEmptySharedPtr(int line);

// The lines that hosts see for the four accessors.
inline constexpr int constDereferenceLine = 127;
inline constexpr int mutableDereferenceLine = 132;
inline constexpr int constMemberAccessLine = 138;
inline constexpr int mutableMemberAccessLine = 143;

// An object with its counter, counted as one. Both are null when empty.
template <class T, class Delete>
class ZOV_UTILS_TYPE countedPair {
public:
    countedPair() noexcept = default;

    explicit countedPair(T* object) : mObject(object) {
        try {
            mCounter = shptr::allocCounter();
        } catch (...) {
            Delete()(object);
            throw;
        }
        *mCounter = 1;
    }

    countedPair(T* object, std::uint32_t volatile* counter) noexcept : mObject(object), mCounter(counter) {
        if (mCounter) increment(mCounter);
    }
    countedPair(countedPair const& other) noexcept : countedPair(other.mObject, other.mCounter) {}
    countedPair(countedPair&& other) noexcept { swap(other); }

    ~countedPair() {
        if (!mCounter) return;
        // Whoever holds the only reference need not tell others.
        if (counterValue(mCounter) != 1 && decrement(mCounter) != 0) return;
        if (mObject) Delete()(mObject);
        shptr::releaseCounter(mCounter);
    }

    // The former pair ends after the locker is gone.
    countedPair& operator=(countedPair const& other) noexcept {
        countedPair next;
        sharedPtrLocker guard;
        countedPair(other).swap(next);
        exchange(next);
        return *this;
    }

    countedPair& operator=(countedPair&& other) noexcept {
        countedPair next(std::move(other));
        exchange(next);
        return *this;
    }

    // Swaps with `other`, which belongs to the caller alone, under the locker.
    void exchange(countedPair& other) noexcept {
        sharedPtrLocker guard;
        swap(other);
    }

    void swap(countedPair& other) noexcept {
        std::swap(mObject, other.mObject);
        std::swap(mCounter, other.mCounter);
    }

    T* object() const noexcept { return mObject; }
    std::uint32_t volatile* counter() const noexcept { return mCounter; }

    T* checked(int line) const {
        if (!mObject) [[unlikely]]
            failEmptySharedPtr(line);
        return mObject;
    }

private:
    T* mObject = nullptr;
    std::uint32_t volatile* mCounter = nullptr;
};

} // namespace detail

// Shared pointer to a T, two pointers in size. A const sharedPtr gives access to a const T.
template <class T, class Delete = deleteObj<T>>
class ZOV_UTILS_TYPE sharedPtr {
public:
    sharedPtr() noexcept = default;
    sharedPtr(std::nullptr_t) noexcept {}

    // Takes the object over with a new counter, set to 1. A null object gets a counter too.
    explicit sharedPtr(T* object) : mPair(object) {}

    // Gives the reference up; the last one destroys the object.
    void reset() noexcept { sharedPtr().exchange(*this); }

    // Takes `object` over in place of the former one. Throws std::bad_alloc as construction does; the pointer
    // then keeps what it had.
    void reset(T* object) { sharedPtr(object).exchange(*this); }

    // Swaps this shared slot with `other`, which belongs to the caller alone, under the locker.
    void exchange(sharedPtr& other) noexcept { mPair.exchange(other.mPair); }

    // The object or null; counts nothing.
    T* get() noexcept { return mPair.object(); }
    T const* get() const noexcept { return mPair.object(); }

    explicit operator bool() const noexcept { return mPair.object() != nullptr; }

    // Access to the object. Fails "m_p != nullptr" when the pointer is empty.
    T const& operator*() const { return *mPair.checked(detail::constDereferenceLine); }
    T& operator*() { return *mPair.checked(detail::mutableDereferenceLine); }
    T const* operator->() const { return mPair.checked(detail::constMemberAccessLine); }
    T* operator->() { return mPair.checked(detail::mutableMemberAccessLine); }

    friend bool operator==(sharedPtr const& left, sharedPtr const& right) noexcept { return left.get() == right.get(); }
    friend bool operator==(sharedPtr const& left, std::nullptr_t) noexcept { return left.get() == nullptr; }

private:
    template <class, class>
    friend class const_sharedPtr;

    detail::countedPair<T, Delete> mPair;
};

// The same over a const object; it can tell its counter's value. Three pointers in size.
template <class T, class Delete = deleteObj<T>>
class ZOV_UTILS_TYPE const_sharedPtr final : public iRefCount {
public:
    const_sharedPtr() noexcept = default;
    const_sharedPtr(std::nullptr_t) noexcept {}
    explicit const_sharedPtr(T* object) : mPair(object) {}
    const_sharedPtr(sharedPtr<T, Delete> const& other) noexcept : mPair(other.mPair) {}
    const_sharedPtr(sharedPtr<T, Delete>&& other) noexcept : mPair(std::move(other.mPair)) {}

    void reset() noexcept { const_sharedPtr().mPair.exchange(mPair); }

    // The counter's value at this moment; 0 when there is no counter.
    std::uint32_t refCount() const override { return mPair.counter() ? detail::counterValue(mPair.counter()) : 0; }

    T const* get() const noexcept { return mPair.object(); }

    explicit operator bool() const noexcept { return mPair.object() != nullptr; }

    // Access to the object. Fails "m_p != nullptr" when the pointer is empty.
    T const& operator*() const { return *mPair.checked(detail::constDereferenceLine); }
    T const* operator->() const { return mPair.checked(detail::constMemberAccessLine); }

    friend bool operator==(const_sharedPtr const& left, const_sharedPtr const& right) noexcept {
        return left.get() == right.get();
    }
    friend bool operator==(const_sharedPtr const& left, std::nullptr_t) noexcept { return left.get() == nullptr; }

private:
    detail::countedPair<T, Delete> mPair;
};

} // namespace zov
