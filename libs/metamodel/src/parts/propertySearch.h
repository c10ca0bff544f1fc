// The search for a user property, which classes and fields share.
//
// They differ in one thing only: which kinds of values an owner finds among its own inheritable ones without being
// asked to search inherited ones. That difference is data here.
#pragma once

#include "base/names.h"
#include "data/userProperties.h"
#include "zovRefPtr.h"

namespace zov::metamodel {

// What an owner reads of its own inheritable values when inherited ones are not searched.
struct unaskedReading {
    bool texts;
    bool objects;
    bool genericValues;
};

// KEEP UP-05: a class sees texts and objects, a field objects only.
inline constexpr unaskedReading classReading = {true, true, false};
inline constexpr unaskedReading fieldReading = {false, true, false};

constexpr bool readsUnasked(unaskedReading reading, string const&) {
    return reading.texts;
}
constexpr bool readsUnasked(unaskedReading reading, refPtr<refObj> const&) {
    return reading.objects;
}
constexpr bool readsUnasked(unaskedReading reading, const_refPtr<refObj> const&) {
    return reading.objects;
}
constexpr bool readsUnasked(unaskedReading reading, genericValue const&) {
    return reading.genericValues;
}

// Reads a value as the asked type; one that cannot be read so counts as not there.
template <class T>
bool readProperty(genericSet const& set, scString key, T& out) {
    return set.getValue(key, out);
}

inline bool readProperty(genericSet const& set, scString key, const_refPtr<refObj>& out) {
    refPtr<refObj> object;
    if (!set.getValue(key, object)) return false;
    out = object;
    return true;
}

inline bool readProperty(genericSet const& set, scString key, genericValue& out) {
    auto const stored = set.genericValue(key);
    if (!stored) return false;
    out = *stored;
    return true;
}

// The search from one owner: its own values, its inheritable ones, then, when inherited ones are searched, what
// `searchAbove` finds under the key.
template <class T, class SearchAbove>
bool findProperty(userProperties const& properties, unaskedReading reading, string const& name, T& out,
                  bool searchInherited, SearchAbove const& searchAbove) {
    auto const key = knownName(name, true);
    if (!key) return false;
    if (readProperty(properties.mOwn, *key, out)) return true;
    if (!searchInherited && !readsUnasked(reading, out)) return false;
    if (readProperty(properties.mInheritable, *key, out)) return true;
    return searchInherited && searchAbove(*key);
}

} // namespace zov::metamodel
