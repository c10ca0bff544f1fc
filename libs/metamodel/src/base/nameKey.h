// How names become keys: as they are written, or folded to lower case.
#pragma once

#include <optional>
#include <string_view>

#include "zovScString.h"
#include "zovString.h"

namespace zov::metamodel {

// The key under which a looked-up name would be filed; empty when no such text was ever interned, so that nothing
// can be filed under it. Interns and allocates nothing.
inline std::optional<scString> lookupKey(std::wstring_view name, bool caseSensitive) noexcept {
    return caseSensitive ? scString::find(name) : scString::findLowered(name);
}

// The name of something new.
inline string nameByRule(string const& name, bool caseSensitive) {
    return caseSensitive ? name : name.lower();
}

} // namespace zov::metamodel
