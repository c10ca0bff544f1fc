// Intrusive reference counting: the counted base classes and the pointers that count.
//
// An object derived from refObj starts with count 0. The first refPtr makes it 1; whoever gives up the last
// reference ends the object:
//
//     refPtr<part> a(new part);  // count 1
//     refPtr<part> b = a;        // count 2
//     a.reset();                 // count 1
//     b = nullptr;               // count 0: part's destroy hook runs, once
//
// Ending never recurses. The releases that an object makes while it ends are put off and carried out, depth
// first, by the release() that began it, so that a chain of a million objects ends on a small stack, in the
// order in which nested destructors would have run. (When the memory for keeping that order is gone as well, everything
// still ends; an object held several times may then end before its turn.)
//
// Threads: counts are atomic, so copies of one pointer may live in different threads. One pointer variable that
// several threads use is a *shared slot*: assign to it as usual (assignment exchanges under a
// referencePtrLocker), and copy from it while holding a referencePtrLocker.
//
// Fails: using an empty pointer reports "m_p != NULL" and throws false. When an object ends and its destroy
// hook fails, everything is freed all the same; then release(), reset() or the copying assignment that gave up the
// last reference throws false, unless another exception is under way. Destructors and moves of pointers never throw.
#pragma once

#include <atomic>
#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <type_traits>
#include <utility>

#include "zovUtilsApi.h"

namespace zov {

// Adds 1 to the counter atomically; returns the new value as a signed 32-bit number.
ZOV_UTILS_API std::int32_t interlockedIncrement(unsigned long volatile* counter) noexcept;
ZOV_UTILS_API std::int32_t interlockedIncrement(std::uint32_t volatile* counter) noexcept;

// Subtracts 1 from the counter atomically; returns the new value. The thread that reaches 0 sees all that other
// threads wrote before their own decrement.
ZOV_UTILS_API std::int32_t interlockedDecrement(unsigned long volatile* counter) noexcept;
ZOV_UTILS_API std::int32_t interlockedDecrement(std::uint32_t volatile* counter) noexcept;

namespace detail {

// A new reference needs no order: whoever adds one holds one already. Giving one up publishes what this thread
// did with the object (release) to the thread that ends it (acquire).
template <class Counter>
std::int32_t increment(Counter volatile* counter) noexcept {
    auto const before = std::atomic_ref(*const_cast<Counter*>(counter)).fetch_add(1, std::memory_order_relaxed);
    return static_cast<std::int32_t>(before + 1);
}

template <class Counter>
std::int32_t decrement(Counter volatile* counter) noexcept {
    auto const before = std::atomic_ref(*const_cast<Counter*>(counter)).fetch_sub(1, std::memory_order_acq_rel);
    return static_cast<std::int32_t>(before - 1);
}

// The counter's value at this moment; other threads may change it at any time.
inline std::uint32_t counterValue(std::uint32_t const volatile* counter) noexcept {
    return std::atomic_ref(*const_cast<std::uint32_t*>(counter)).load(std::memory_order_acquire);
}

} // namespace detail

// Whoever can tell how many references lead to an object.
class ZOV_UTILS_API iRefCount {
public:
    // The count at this moment; other threads may change it at any time.
    virtual std::uint32_t refCount() const = 0;

protected:
    ~iRefCount() = default;
};

// The counting interface of the model classes. Slot order: refCount, addRef, release.
class ZOV_UTILS_API iRefObj : public iRefCount {
public:
    // Adds a reference; returns the new count.
    virtual std::uint32_t addRef() = 0;

    // Gives a reference up; returns the new count. The last one ends the object. Throws false as the header of
    // this file says.
    virtual std::uint32_t release() = 0;

protected:
    ~iRefObj() = default;
};

// The base that owns the count. Slot order: addRef, release, destroy, destructor.
class ZOV_UTILS_API refObj {
public:
    refObj(refObj const&) = delete;
    refObj& operator=(refObj const&) = delete;

    // Adds a reference; returns the new count. Not allowed on an object whose count has come back to 0.
    virtual std::uint32_t addRef() { return static_cast<std::uint32_t>(detail::increment(mWords)); }

    // Gives a reference up; returns the new count. The call that makes it 0 runs destroy(), exactly once.
    // Called while this thread is ending another object, it is put off until that object is gone, and returns
    // one less than the count at this moment, which other releases that are put off have not lowered yet.
    // Throws false when the destroy hook of an object that ended by this call has failed.
    virtual std::uint32_t release();

protected:
    refObj() noexcept = default;

    // Ends the object's life: destroys and frees it, whatever happens. What it throws (std::bad_alloc apart)
    // comes out of the outermost release() as false.
    virtual void destroy() = 0;

    virtual ~refObj();

    // The count at this moment.
    std::uint32_t currentCount() const noexcept;

private:
    friend class refObjEnding;

    // The count. Once it has come back to 0, both words may hold the link to the next object that waits for its end.
    alignas(void*) std::uint32_t mWords[2]{0, 0};
};

// Held while a shared refPtr slot is copied or exchanged. One lock for the whole process, recursive on a thread.
// Nothing is destroyed, called back or logged under it; hosts hold it for the few instructions of a copy.
class ZOV_UTILS_API referencePtrLocker {
public:
    referencePtrLocker() noexcept;
    ~referencePtrLocker();

    referencePtrLocker(referencePtrLocker const&) = delete;
    referencePtrLocker& operator=(referencePtrLocker const&) = delete;
};

// The policies by which pointers count: any type with these two members can be pointed to.
template <class T>
struct ZOV_UTILS_TYPE addRef {
    void operator()(T* object) const { object->addRef(); }
};

template <class T>
struct ZOV_UTILS_TYPE release {
    void operator()(T* object) const { object->release(); }
};

namespace detail {

// Report "m_p != NULL" for a refPtr (line 156) or a const_refPtr (line 348), then throw false.
[[noreturn]] ZOV_UTILS_API void failEmptyRefPtr();
[[noreturn]] ZOV_UTILS_API void failEmptyConstRefPtr();

// A pointer to a U is, or converts to, a pointer to a T.
template <class U, class T>
concept leadsTo = std::convertible_to<U*, T*>;

// What refPtr and const_refPtr have in common: one pointer, counted by the policies. T is const for the latter.
template <class T, class AddRef, class Release>
class ZOV_UTILS_TYPE refSlot {
public:
    // The object, or null. Counts nothing; valid while some reference is held.
    T* get() const noexcept { return mObject; }

    // True when the pointer is not empty.
    explicit operator bool() const noexcept { return mObject != nullptr; }

    // Points to `object` (or nothing) from now on and gives up the former object.
    // Throws false when that one ended and its destroy hook failed; the pointer has its new value all the same.
    void reset(T* object = nullptr) { giveUp(exchange(object)); }

protected:
    refSlot() noexcept = default;
    explicit refSlot(T* object) : mObject(object) { count(object); }
    refSlot(refSlot const& other) : refSlot(other.mObject) {}
    refSlot(refSlot&& other) noexcept : mObject(other.detach()) {}
    ~refSlot() { giveUpQuietly(mObject); }

    refSlot& operator=(refSlot const& other) {
        giveUp(exchangeFrom(other));
        return *this;
    }

    refSlot& operator=(refSlot&& other) noexcept {
        T* former = other.detach();
        {
            referencePtrLocker guard;
            std::swap(mObject, former);
        }
        giveUpQuietly(former);
        return *this;
    }

    // Takes over a reference that is already counted.
    void attach(T* counted) noexcept { mObject = counted; }

    // Leaves the slot empty and its reference, still counted, to the caller.
    T* detach() noexcept { return std::exchange(mObject, nullptr); }

private:
    static void count(T* object) {
        if (object) AddRef()(const_cast<std::remove_const_t<T>*>(object));
    }

    static void giveUp(T* object) {
        if (object) Release()(const_cast<std::remove_const_t<T>*>(object));
    }

    static void giveUpQuietly(T* object) noexcept {
        try {
            giveUp(object);
        } catch (...) { // reported where it failed; a destructor ends the matter
        }
    }

    T* exchange(T* object) {
        referencePtrLocker guard;
        count(object);
        return std::exchange(mObject, object);
    }

    T* exchangeFrom(refSlot const& other) {
        referencePtrLocker guard;
        count(other.mObject);
        return std::exchange(mObject, other.mObject);
    }

    T* mObject = nullptr;
};

// Pointers are equal when they lead to the same object; names and values of objects do not matter.
template <class T, class A, class R, class U, class B, class S>
bool operator==(refSlot<T, A, R> const& left, refSlot<U, B, S> const& right) noexcept {
    return left.get() == right.get();
}
template <class T, class A, class R, class U>
bool operator==(refSlot<T, A, R> const& left, U const* right) noexcept {
    return left.get() == right;
}
template <class T, class A, class R>
bool operator==(refSlot<T, A, R> const& left, std::nullptr_t) noexcept {
    return left.get() == nullptr;
}

// Some fixed order of addresses, for ordered containers.
template <class T, class A, class R>
std::strong_ordering operator<=>(refSlot<T, A, R> const& left, refSlot<T, A, R> const& right) noexcept {
    return std::compare_three_way()(left.get(), right.get());
}

} // namespace detail

template <class T, class AddRef, class Release>
class ZOV_UTILS_TYPE const_refPtr;

// Strong pointer to an object that counts its own references; one pointer in size, nothrow movable.
template <class T, class AddRef = addRef<T>, class Release = release<T>>
class ZOV_UTILS_TYPE refPtr : public detail::refSlot<T, AddRef, Release> {
    using slot = detail::refSlot<T, AddRef, Release>;

public:
    refPtr() noexcept = default;
    refPtr(std::nullptr_t) noexcept {}
    refPtr(T* object) : slot(object) {}

    // From a pointer to a derived class. The form from an rvalue counts nothing.
    template <detail::leadsTo<T> U, class A, class R>
    refPtr(refPtr<U, A, R> const& other) : slot(other.get()) {}
    template <detail::leadsTo<T> U, class A, class R>
    refPtr(refPtr<U, A, R>&& other) noexcept {
        this->attach(other.detach());
    }

    refPtr(refPtr const&) = default;
    refPtr(refPtr&&) noexcept = default;
    refPtr& operator=(refPtr const&) = default;
    refPtr& operator=(refPtr&&) noexcept = default;

    // Assignment of a raw pointer, of null, or of a pointer to a derived class.
    template <std::convertible_to<T*> U>
    refPtr& operator=(U object) {
        this->reset(object);
        return *this;
    }
    template <detail::leadsTo<T> U, class A, class R>
    refPtr& operator=(refPtr<U, A, R> const& other) {
        this->reset(other.get());
        return *this;
    }
    template <detail::leadsTo<T> U, class A, class R>
    refPtr& operator=(refPtr<U, A, R>&& other) noexcept {
        return *this = refPtr(std::move(other));
    }

    // The object. Fails "m_p != NULL" when the pointer is empty.
    T* operator->() const { return checked(); }
    T& operator*() const { return *checked(); }

private:
    template <class, class, class>
    friend class refPtr;
    template <class, class, class>
    friend class const_refPtr;

    T* checked() const {
        if (!this->get()) [[unlikely]]
            detail::failEmptyRefPtr();
        return this->get();
    }
};

// The same over a const object. A refPtr converts to it, never back.
template <class T, class AddRef = addRef<T>, class Release = release<T>>
class ZOV_UTILS_TYPE const_refPtr : public detail::refSlot<T const, AddRef, Release> {
    using slot = detail::refSlot<T const, AddRef, Release>;

public:
    const_refPtr() noexcept = default;
    const_refPtr(std::nullptr_t) noexcept {}
    const_refPtr(T const* object) : slot(object) {}

    template <detail::leadsTo<T const> U, class A, class R>
    const_refPtr(const_refPtr<U, A, R> const& other) : slot(other.get()) {}
    template <detail::leadsTo<T const> U, class A, class R>
    const_refPtr(const_refPtr<U, A, R>&& other) noexcept {
        this->attach(other.detach());
    }
    template <detail::leadsTo<T const> U, class A, class R>
    const_refPtr(refPtr<U, A, R> const& other) : slot(other.get()) {}
    template <detail::leadsTo<T const> U, class A, class R>
    const_refPtr(refPtr<U, A, R>&& other) noexcept {
        this->attach(other.detach());
    }

    const_refPtr(const_refPtr const&) = default;
    const_refPtr(const_refPtr&&) noexcept = default;
    const_refPtr& operator=(const_refPtr const&) = default;
    const_refPtr& operator=(const_refPtr&&) noexcept = default;

    template <std::convertible_to<T const*> U>
    const_refPtr& operator=(U object) {
        this->reset(object);
        return *this;
    }
    template <detail::leadsTo<T const> U, class A, class R>
    const_refPtr& operator=(refPtr<U, A, R> const& other) {
        this->reset(other.get());
        return *this;
    }
    template <detail::leadsTo<T const> U, class A, class R>
    const_refPtr& operator=(refPtr<U, A, R>&& other) noexcept {
        return *this = const_refPtr(std::move(other));
    }
    template <detail::leadsTo<T const> U, class A, class R>
    const_refPtr& operator=(const_refPtr<U, A, R> const& other) {
        this->reset(other.get());
        return *this;
    }
    template <detail::leadsTo<T const> U, class A, class R>
    const_refPtr& operator=(const_refPtr<U, A, R>&& other) noexcept {
        return *this = const_refPtr(std::move(other));
    }

    // The object. Fails "m_p != NULL" when the pointer is empty.
    T const* operator->() const { return checked(); }
    T const& operator*() const { return *checked(); }

private:
    template <class, class, class>
    friend class const_refPtr;

    T const* checked() const {
        if (!this->get()) [[unlikely]]
            detail::failEmptyConstRefPtr();
        return this->get();
    }
};

// The same object as a T, or an empty pointer when it is none: from refPtr<refObj> down to a model class.
template <class T, class U, class A, class R>
refPtr<T> refPtrCast(refPtr<U, A, R> const& object) {
    return refPtr<T>(dynamic_cast<T*>(object.get()));
}
template <class T, class U, class A, class R>
const_refPtr<T> refPtrCast(const_refPtr<U, A, R> const& object) {
    return const_refPtr<T>(dynamic_cast<T const*>(object.get()));
}

} // namespace zov

template <class T, class A, class R>
struct std::hash<zov::refPtr<T, A, R>> {
    std::size_t operator()(zov::refPtr<T, A, R> const& pointer) const noexcept {
        return std::hash<T const*>()(pointer.get());
    }
};

template <class T, class A, class R>
struct std::hash<zov::const_refPtr<T, A, R>> {
    std::size_t operator()(zov::const_refPtr<T, A, R> const& pointer) const noexcept {
        return std::hash<T const*>()(pointer.get());
    }
};
