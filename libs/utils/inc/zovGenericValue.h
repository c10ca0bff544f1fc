// A value of any type: what defaults, attributes and properties are kept as.
//
//     genericValue width(42);                 // holds an int of its own
//     genericValue copy = width;              // an independent copy
//     zov::string text;
//     width.getValue(text);                   // converted: L"42"
//     width.valuePtr<long>();                 // null: the type test is exact, nothing is converted
//
//     int counter = 0;
//     auto seen = genericValue::byReference(counter);  // refers to the caller's object, which must outlive it
//
// Values cross shared-library borders: the holders of the types listed at the end live in zovUtils.
//
// Threads: each held value has a lock of its own. Copying a value, getValue, assignText and setValue take it, so
// one value may be read and written from several threads; pointers and references into it (valuePtr, value()) do
// not. Assigning to one genericValue object from several threads exchanges under a sharedPtrLocker; copying
// *from*, and reading, an object that another thread assigns to is safe too. It takes no lock that all share, and waits
// only while another thread holds a sharedPtrLocker (not for the values within a value). Moving from a value is for who
// has it to himself.
//
// Fails: std::bad_alloc, with both sides as before; and with what copying a T throws.
#pragma once

#include <cstddef>
#include <functional>
#include <new>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include "zovBinaryBuffer.h"
#include "zovCondition.h"
#include "zovDateTime.h"
#include "zovFsEntry.h"
#include "zovRefPtr.h"
#include "zovScString.h"
#include "zovSharedPtr.h"
#include "zovString.h"
#include "zovUtilsApi.h"

namespace zov {

class spinLockerRecursive;

// Holds the lock of one value, or of two in an order that cannot deadlock, while it lives.
class ZOV_UTILS_API genericValueHolderLocker {
public:
    explicit genericValueHolderLocker(spinLockerRecursive* lock) noexcept;
    genericValueHolderLocker(spinLockerRecursive* one, spinLockerRecursive* other) noexcept;
    ~genericValueHolderLocker();

    genericValueHolderLocker(genericValueHolderLocker const&) = delete;
    genericValueHolderLocker& operator=(genericValueHolderLocker const&) = delete;

    // A new lock for one value, and its end. createLocker throws std::bad_alloc.
    static spinLockerRecursive* createLocker();
    static void destroyLocker(spinLockerRecursive* lock) noexcept;

private:
    spinLockerRecursive* mFirst;
    spinLockerRecursive* mSecond = nullptr;
};

namespace detail {

// Where small objects lie: in cells that the library keeps for them, so that values, which come and go in numbers,
// spare the allocator. What does not fit goes to the allocator. Storage is given back with the size it was asked for.
struct ZOV_UTILS_API smallStorage {
    // Aligned for anything of that size that needs no more than the allocator gives. Throws std::bad_alloc.
    static void* allocate(std::size_t size);

    // Null is allowed.
    static void deallocate(void* storage, std::size_t size) noexcept;
};

// Types that allocate for themselves, or want more alignment than the allocator gives, are left to their own.
template <class T>
inline constexpr bool liesInSmallStorage = alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__ && !requires {
    T::operator new(sizeof(T));
};

// The policy by which a held copy ends.
template <class T>
struct ZOV_UTILS_TYPE deleteHeld {
    void operator()(T* object) const noexcept {
        if constexpr (liesInSmallStorage<T>) {
            object->~T();
            smallStorage::deallocate(const_cast<std::remove_const_t<T>*>(object), sizeof(T));
        } else {
            delete object;
        }
    }
};

// A copy for a holder to own. Throws std::bad_alloc, and what copying throws.
template <class T>
T* copyToHold(T const& value) {
    if constexpr (liesInSmallStorage<T>) {
        void* const storage = smallStorage::allocate(sizeof(T));
        try {
            return ::new (storage) T(value);
        } catch (...) {
            smallStorage::deallocate(storage, sizeof(T));
            throw;
        }
    } else {
        return new T(value);
    }
}

} // namespace detail

class ZOV_UTILS_API genericValue {
public:
    class holderbase;
    class lockedHolder;
    template <class T>
    class holder;
    template <class T>
    class valueholder;
    template <class T>
    class ptrholder;
    template <class T>
    class constptrholder;

    // The empty value.
    genericValue() noexcept = default;

    // Holds a copy of `value`; a wide text is held as a string.
    template <class T, class = std::enable_if_t<!std::is_base_of_v<holderbase, std::remove_pointer_t<T>>>>
    explicit genericValue(T const& value);

    // Takes over a new holder; null gives the empty value.
    explicit genericValue(holderbase* newHolder);

    // Copies clone the held value; the copy has a holder of its own.
    genericValue(genericValue const& other);
    genericValue(genericValue&& other) noexcept = default;
    genericValue& operator=(genericValue const& other);
    genericValue& operator=(genericValue&& other) noexcept;
    ~genericValue() = default;

    // Values on the heap lie in small storage, however they are made there. The size tells a derived class's apart (but
    // for one whose constructor throws in the nothrow form: its storage stays with the library).
    // NOLINTNEXTLINE(misc-new-delete-overloads): the sized form is the matching one
    static void* operator new(std::size_t size) { return detail::smallStorage::allocate(size); }
    static void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
        try {
            return detail::smallStorage::allocate(size);
        } catch (std::bad_alloc const&) {
            return nullptr;
        }
    }
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* storage, std::size_t size) noexcept {
        detail::smallStorage::deallocate(storage, size);
    }
    static void operator delete(void* storage, std::nothrow_t const&) noexcept {
        detail::smallStorage::deallocate(storage, sizeof(genericValue));
    }
    static void operator delete(void*, void*) noexcept {}

    // Refers to the caller's object, which must outlive the value and every copy of it. Writing to a const
    // object is refused.
    template <class T>
    static genericValue byReference(T& object);
    template <class T>
    static genericValue byReference(T const& object);

    bool isEmpty() const noexcept;

    // The type of the held value; typeid(void) when empty.
    std::type_info const& type() const;

    // The held value itself when it is held as exactly a T, else null. The mutable form is null for a const
    // object of the caller's. Stays valid while this value is neither assigned to nor destroyed.
    template <class T>
    T* valuePtr();
    template <class T>
    T const* valuePtr() const;

    // Copies the held value to `out`, converting it when it is of another type. Answers false, with `out` as it
    // was, when the value is empty or does not convert.
    template <class T>
    bool getValue(T& out) const;

    // Writes the text into the held value, converted to its type; an empty value becomes a string. Answers
    // false, with the value as it was, when the text does not convert or the object is const.
    bool assignText(zov::string const& text);

    // The holder, null when empty. Stays valid while this value is neither assigned to nor destroyed; takes no lock.
    holderbase* heldBy() noexcept { return mHolder.get(); }
    holderbase const* heldBy() const noexcept { return mHolder.get(); }

private:
    friend class genericSet;

    // A counted pointer to the holder at this moment, safe against a concurrent assignment.
    sharedPtr<holderbase> heldNow() const noexcept;

    // The same in place of the empty `into`, for who must not wait. False while another thread holds a sharedPtrLocker.
    bool heldIfFree(sharedPtr<holderbase>& into) const noexcept;

    // Copies the bytes of a value that is held by exactly that holder class, if its lock is free; answers whether it
    // did.
    bool copyBytes(std::type_info const& holderClass, void* out, std::size_t size) const noexcept;

    // A new holder of the same value; empty for an empty one.
    static sharedPtr<holderbase> cloneOf(sharedPtr<holderbase> const& source);

    // Holds a clone of `source`'s value from now on.
    void assignClone(sharedPtr<holderbase> const& source);

    // Swaps with `other`, which belongs to the caller alone.
    void exchange(sharedPtr<holderbase>& other) noexcept;

    sharedPtr<holderbase> mHolder;
};

// What every holder offers, whatever the type it holds. The slot order is fixed: libraries built apart share it.
class ZOV_UTILS_API genericValue::holderbase {
public:
    virtual ~holderbase();

    // A new holder with the same value; the caller owns it.
    virtual holderbase* clone() const = 0;

    // Write this value into `target`, or `source`'s value into this one: by assignment when both are held as the
    // same type, else converted. Answer false, with the written side as it was, when that cannot be done.
    virtual bool assignTo(holderbase& target) const = 0;
    virtual bool assignFrom(holderbase const& source) = 0;

    virtual std::type_info const& type() const noexcept = 0;

    // The address of the value; the mutable form is null for an object that must not be written to.
    virtual void* valuePointer() noexcept = 0;
    virtual void const* valuePointer() const noexcept = 0;

    // Whether the value lives outside the holder.
    virtual bool isPointer() const noexcept = 0;

    // Holders made in one library are freed by another: all go through these two.
    static void* allocate(std::size_t size);
    static void deallocate(void* storage) noexcept;

    static void* operator new(std::size_t size) { return allocate(size); }
    static void operator delete(void* storage) noexcept { deallocate(storage); }

protected:
    holderbase() = default;
    holderbase(holderbase const&) = delete;
    holderbase& operator=(holderbase const&) = delete;

    // A write to an object that is const: throws false.
    [[noreturn]] static void refuseWriting();
};

// A holder with a lock of its own, which guards its value.
class ZOV_UTILS_API genericValue::lockedHolder : public genericValue::holderbase {
public:
    ~lockedHolder() override;

    spinLockerRecursive* locker() const noexcept { return mLock; }

protected:
    lockedHolder();

    // Writes `source`'s value into `target` under both locks: by `assign` when that is not null, else converted.
    // Answers false when the target must not be written to.
    static bool copyValue(holderbase& target, holderbase const& source,
                          void (*assign)(holderbase& target, holderbase const& source));

private:
    spinLockerRecursive* mLock;
};

// A holder of a T. holder<T> and holder<T const> are two types, and the type test is on them.
template <class T>
class ZOV_UTILS_TYPE genericValue::holder : public genericValue::lockedHolder {
public:
    bool assignTo(holderbase& target) const override {
        return copyValue(target, *this, dynamic_cast<holder*>(&target) ? &assignSameType : nullptr);
    }
    bool assignFrom(holderbase const& source) override {
        return copyValue(*this, source, dynamic_cast<holder const*>(&source) ? &assignSameType : nullptr);
    }
    std::type_info const& type() const noexcept override { return typeid(T); }

    // The value. The mutable form throws false for an object that must not be written to.
    virtual T& value() = 0;
    virtual T const& value() const = 0;

    // Assigns to the value under its lock; assigning the value to itself does nothing. Throws false for an
    // object that must not be written to.
    virtual void setValue(T const& next) = 0;

protected:
    // The shared part of setValue.
    void assign([[maybe_unused]] T* object, [[maybe_unused]] T const& next) {
        if constexpr (std::is_const_v<T>) {
            refuseWriting();
        } else {
            genericValueHolderLocker guard(this->locker());
            if (object != &next) *object = next;
        }
    }

private:
    static void assignSameType(holderbase& target, holderbase const& source) {
        static_cast<holder&>(target).setValue(static_cast<holder const&>(source).value());
    }
};

// Holds a value of its own.
template <class T>
class ZOV_UTILS_TYPE genericValue::valueholder : public genericValue::holder<T> {
public:
    explicit valueholder(T const& value) : mValue(detail::copyToHold<T>(value)) {}

    holderbase* clone() const override {
        genericValueHolderLocker guard(this->locker());
        return new valueholder(value());
    }
    void* valuePointer() noexcept override {
        if constexpr (std::is_const_v<T>) {
            return nullptr;
        } else {
            return mValue.get();
        }
    }
    void const* valuePointer() const noexcept override { return mValue.get(); }
    bool isPointer() const noexcept override { return false; }
    T& value() override { return *mValue; }
    T const& value() const override { return *mValue; }
    void setValue(T const& next) override { this->assign(&*mValue, next); }

private:
    sharedPtr<T, detail::deleteHeld<T>> mValue;
};

// Refers to an object of the caller's.
template <class T>
class ZOV_UTILS_TYPE genericValue::ptrholder : public genericValue::holder<T> {
public:
    explicit ptrholder(T* object) : mObject(object) {}

    holderbase* clone() const override {
        genericValueHolderLocker guard(this->locker());
        return new ptrholder(mObject);
    }
    void* valuePointer() noexcept override {
        if constexpr (std::is_const_v<T>) {
            return nullptr;
        } else {
            return mObject;
        }
    }
    void const* valuePointer() const noexcept override { return mObject; }
    bool isPointer() const noexcept override { return true; }
    T& value() override { return *mObject; }
    T const& value() const override { return *mObject; }
    void setValue(T const& next) override { this->assign(mObject, next); }

private:
    T* mObject;
};

// Refers to an object of the caller's that must not be written to.
template <class T>
class ZOV_UTILS_TYPE genericValue::constptrholder : public genericValue::holder<T> {
public:
    explicit constptrholder(T const* object) : mObject(object) {}

    holderbase* clone() const override {
        genericValueHolderLocker guard(this->locker());
        return new constptrholder(mObject);
    }
    void* valuePointer() noexcept override { return nullptr; }
    void const* valuePointer() const noexcept override { return mObject; }
    bool isPointer() const noexcept override { return true; }
    T& value() override { this->refuseWriting(); }
    T const& value() const override { return *mObject; }
    void setValue(T const&) override { this->refuseWriting(); }

private:
    T const* mObject;
};

namespace detail {

// What a value given as a T is held as.
template <class T>
using heldAs =
    std::conditional_t<std::is_same_v<std::decay_t<T>, wchar_t const*> || std::is_same_v<std::decay_t<T>, wchar_t*>,
                       zov::string, T>;

// The holder as a holder of T, null when it is another one. Most holders are of exactly the class that owns its value,
// which is told by one comparison.
template <class T>
genericValue::holder<T> const* asHolderOf(genericValue::holderbase const* held) {
    if (!held) return nullptr;
    if (&typeid(*held) == &typeid(genericValue::valueholder<T>))
        return static_cast<genericValue::holder<T> const*>(held);
    return dynamic_cast<genericValue::holder<T> const*>(held);
}

// Converts the value of `source` into `out`, under its lock; false, with `out` as it was, when that cannot be done.
ZOV_UTILS_API bool convertValue(std::type_info const& outType, void* out, genericValue::holderbase const& source);

} // namespace detail

template <class T, class>
genericValue::genericValue(T const& value)
    : mHolder(new valueholder<detail::heldAs<T>>(static_cast<detail::heldAs<T> const&>(value))) {}

template <class T>
genericValue genericValue::byReference(T& object) {
    return genericValue(static_cast<holderbase*>(new ptrholder<T>(&object)));
}

template <class T>
genericValue genericValue::byReference(T const& object) {
    return genericValue(static_cast<holderbase*>(new constptrholder<T>(&object)));
}

template <class T>
T* genericValue::valuePtr() {
    auto* const held = const_cast<holder<T>*>(detail::asHolderOf<T>(mHolder.get()));
    return held && held->valuePointer() ? &held->value() : nullptr;
}

template <class T>
T const* genericValue::valuePtr() const {
    auto const* const held = detail::asHolderOf<T>(mHolder.get());
    return held ? &held->value() : nullptr;
}

template <class T>
bool genericValue::getValue(T& out) const {
    // Numbers and their like are seldom written just now: they need not be counted while they are copied.
    if constexpr (std::is_scalar_v<T>) {
        T copy;
        if (copyBytes(typeid(valueholder<T>), &copy, sizeof(T))) {
            out = copy;
            return true;
        }
    }
    sharedPtr<holderbase> const source = heldNow();
    if (!source) return false;
    auto const* const held = detail::asHolderOf<T>(source.get());
    if (!held) return detail::convertValue(typeid(T), &out, *source);
    genericValueHolderLocker guard(held->locker());
    out = held->value();
    return true;
}

// A function that compares two values of a field.
using valueEqFunction = bool (*)(genericValue const&, genericValue const&);

// The holders that zovUtils itself contains. Elsewhere than on ELF a template cannot be imported, and each
// library has its own copies; their type tests compare names there.
#if defined(__ELF__)
#    define ZOV_HOLDERS_OF(Keyword, ...)                                                                               \
        Keyword template class genericValue::holder<__VA_ARGS__>;                                                      \
        Keyword template class genericValue::valueholder<__VA_ARGS__>;                                                 \
        Keyword template class genericValue::ptrholder<__VA_ARGS__>;
#    define ZOV_ALL_HOLDERS(Keyword)                                                                                   \
        ZOV_HOLDERS_OF(Keyword, bool)                                                                                  \
        ZOV_HOLDERS_OF(Keyword, short)                                                                                 \
        ZOV_HOLDERS_OF(Keyword, int)                                                                                   \
        ZOV_HOLDERS_OF(Keyword, long)                                                                                  \
        ZOV_HOLDERS_OF(Keyword, float)                                                                                 \
        ZOV_HOLDERS_OF(Keyword, double)                                                                                \
        ZOV_HOLDERS_OF(Keyword, zov::string)                                                                           \
        ZOV_HOLDERS_OF(Keyword, date)                                                                                  \
        ZOV_HOLDERS_OF(Keyword, time)                                                                                  \
        ZOV_HOLDERS_OF(Keyword, timestamp)                                                                             \
        ZOV_HOLDERS_OF(Keyword, binaryBuffer)                                                                          \
        ZOV_HOLDERS_OF(Keyword, file)                                                                                  \
        ZOV_HOLDERS_OF(Keyword, directory)                                                                             \
        ZOV_HOLDERS_OF(Keyword, searchPath)                                                                            \
        ZOV_HOLDERS_OF(Keyword, refPtr<refObj>)                                                                        \
        ZOV_HOLDERS_OF(Keyword, sharedPtr<conditions::condition>)                                                      \
        ZOV_HOLDERS_OF(Keyword, valueEqFunction)                                                                       \
        ZOV_HOLDERS_OF(Keyword, std::vector<zov::string>)                                                              \
        ZOV_HOLDERS_OF(Keyword, std::vector<scString>)                                                                 \
        ZOV_HOLDERS_OF(Keyword, std::vector<scString> const)                                                           \
        Keyword template class genericValue::constptrholder<zov::string>;
ZOV_ALL_HOLDERS(extern)
#endif

} // namespace zov
