// Numbered names, and ordinary fields to give them to: for tests that make many of both.
#pragma once

#include <concepts>
#include <string>

#include "zovMetamodel.h"

namespace zov::tests {

// "stem0", "stem1" and so on.
inline string numbered(wchar_t const* stem, std::integral auto number) {
    return string(std::wstring(stem) + std::to_wstring(number));
}

inline refPtr<metamodel::fieldInfo> addField(refPtr<metamodel::classInfo> const& owner, string const& name) {
    return owner->createFieldInfo(name, metamodel::eInt, genericSet(), L"");
}

} // namespace zov::tests
