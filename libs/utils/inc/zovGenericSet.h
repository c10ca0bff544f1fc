// A bag of named values: settings, attributes, definitions, user properties.
//
//     genericSet attribs;
//     attribs.setValue(L"digits", 2, false);
//     int digits = 0;
//     attribs.getValue(L"digits", digits);        // converted where the stored type is another one
//     long* exact = nullptr;
//     attribs.getValuePtr(L"digits", exact);      // false: it is an int
//
// A set is a value: a copy has entries of its own. An empty set takes one pointer.
//
// Threads: one set may be read and written from several threads. Entries are shared values, the map is guarded
// inside, and an old value ends after the guard is gone. A raw pointer into a set (getValuePtr) is for a thread
// that knows that nobody replaces or erases the entry meanwhile; moving from a set is for who has it to himself.
//
// Fails: what stores or copies throws std::bad_alloc; the set is then as before.
#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <utility>

#include "zovGenericValue.h"
#include "zovScString.h"
#include "zovSharedPtr.h"
#include "zovUtilsApi.h"

namespace zov {

class ZOV_UTILS_API genericSet {
public:
    genericSet() noexcept = default;
    genericSet(genericSet const& other);
    genericSet(genericSet&& other) noexcept;
    genericSet& operator=(genericSet const& other);
    genericSet& operator=(genericSet&& other) noexcept;
    ~genericSet();

    // The entry for the key, shared with the set, or an empty pointer. What is written through the mutable form
    // is written to the set's entry.
    const_sharedPtr<zov::genericValue> genericValue(scString const& key) const;
    sharedPtr<zov::genericValue> genericValue(scString const& key);

    // Stores a copy of the value under the key, in place of an entry that is there, and answers true. The flag
    // is the caller's and changes nothing.
    bool setGenericValue(scString const& key, zov::genericValue const& value, bool flag);

    // Stores a value of type T; a wide text is held as a string.
    template <class T>
    bool setValue(scString const& key, T const& value, bool flag) {
        zov::genericValue stored(value);
        return _setGenericValue(key, stored, flag);
    }
    template <class T>
    bool setValue(wchar_t const* key, T const& value, bool flag) {
        return setValue(scString::createFrom(key), value, flag);
    }

    // Removes the entry, if there is one.
    void erase(scString const& key);

    // Points `out` to the value inside the set when it is held as exactly a T; nothing is converted or copied.
    // Answers false, with `out` as it was, when there is no entry or it is held as another type. T may be const:
    // that is a type of its own. The key form from text interns nothing.
    template <class T>
    bool getValuePtr(scString const& key, T*& out) const;
    template <class T>
    bool getValuePtr(wchar_t const* key, T*& out) const;

    // Copies the value to `out`, converted where it is held as another type. Answers false, with `out` as it was,
    // when there is no entry or it does not convert.
    template <class T>
    bool getValue(scString const& key, T& out) const;
    template <class T>
    bool getValue(wchar_t const* key, T& out) const;

    // Makes `out` an independent copy of the entry for the key, unless it is that entry. Answers false, with `out` as
    // it was, when there is none.
    bool copyValue(scString const& key, zov::genericValue& out) const;

    // Calls `visit` for each entry that the set had when the walk began, in some order. Answers false when a
    // visit answered false and stopOnFalse is set (which ends the walk), else true. An empty function throws
    // std::bad_function_call at the first entry.
    bool forEach(std::function<bool(scString const&, zov::genericValue const&)> const& visit, bool stopOnFalse) const;

    // The number of entries.
    std::size_t size() const noexcept;

private:
    struct record;

    // The same as setGenericValue, but takes the value over.
    bool _setGenericValue(scString const& key, zov::genericValue& value, bool flag);

    sharedPtr<zov::genericValue> entry(scString key) const noexcept;
    record& ownRecord();

    std::atomic<record*> mRecord{nullptr}; // made by the first store
};

template <class T>
bool genericSet::getValuePtr(scString const& key, T*& out) const {
    sharedPtr<zov::genericValue> const stored = entry(key);
    if (!stored) return false;
    auto* const held = detail::asHolderOf<T>(stored->heldBy());
    if (!held) return false;
    auto* const writable = const_cast<zov::genericValue::holder<T>*>(held);
    if (!std::is_const_v<T> && !writable->valuePointer()) return false;
    out = &writable->value();
    return true;
}

template <class T>
bool genericSet::getValuePtr(wchar_t const* key, T*& out) const {
    auto const name = scString::find(key ? key : L"");
    return name && getValuePtr(*name, out);
}

template <class T>
bool genericSet::getValue(scString const& key, T& out) const {
    sharedPtr<zov::genericValue> const stored = entry(key);
    return stored && stored->getValue(out);
}

template <class T>
bool genericSet::getValue(wchar_t const* key, T& out) const {
    auto const name = scString::find(key ? key : L"");
    return name && getValue(*name, out);
}

} // namespace zov
