// Names for tests of many things: numbered, known to the process beforehand, and in an order of handles that has
// nothing to do with that of creation.
#pragma once

#include <algorithm>
#include <random>
#include <vector>

#include "modelFixture.h"
#include "numbered.h"

namespace zov::metamodel::tests {

using zov::tests::numbered;

// The same text in capitals, as far as ASCII goes.
inline string capitals(string text) {
    for (wchar_t& unit : text)
        if (unit >= L'a' && unit <= L'z') unit = static_cast<wchar_t>(unit - L'a' + L'A');
    return text;
}

// "stem0", "stem1" and so on, all of them interned, in lower case too, in a shuffled order.
inline names numberedNames(wchar_t const* stem, std::size_t count) {
    names made;
    for (std::size_t at = 0; at < count; ++at)
        made.push_back(numbered(stem, at));
    names shuffled = made;
    std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(static_cast<unsigned>(count)));
    for (auto const& name : shuffled) {
        scString::createFrom(name);
        scString::createFrom(name.lower());
    }
    return made;
}

inline names capitals(names list) {
    for (auto& name : list)
        name = capitals(name);
    return list;
}

inline refPtr<fieldInfo> addIntField(refPtr<classInfo> const& owner, string const& name) {
    return owner->createFieldInfo(name, eInt, genericSet(), L"");
}

// What a class's walk over its fields visits, in order.
inline std::vector<refPtr<fieldInfo>> fieldsOf(refPtr<classInfo> const& owner) {
    std::vector<refPtr<fieldInfo>> found;
    owner->forEachFieldInfo(
        [&](refPtr<fieldInfo> const& field) {
            found.push_back(field);
            return true;
        },
        false);
    return found;
}

// What a model's walk over its classes visits, in order.
inline std::vector<refPtr<classInfo>> classesOf(modelInfo const& model) {
    std::vector<refPtr<classInfo>> found;
    model.forEachClassInfo(
        [&](classInfo::entry const& entry) {
            EXPECT_EQ(entry.first, entry.second->scName());
            found.push_back(entry.second);
            return true;
        },
        false);
    return found;
}

inline bool haveAscendingHandles(std::vector<refPtr<classInfo>> const& classes) {
    return std::is_sorted(classes.begin(), classes.end(),
                          [](auto const& left, auto const& right) { return left->scName() < right->scName(); });
}

} // namespace zov::metamodel::tests
