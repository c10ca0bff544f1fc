// How names become keys: as they are written, or folded to lower case.
//
// The key of a name under both rules is found at most once each, whatever number of classes is asked for it.
#pragma once

#include <functional>
#include <optional>
#include <string_view>

#include "base/growingList.h"
#include "zovScString.h"
#include "zovString.h"

namespace zov::metamodel {

// The key under which a looked-up name would be filed; empty when no such text was ever interned, so that nothing
// can be filed under it. Interns and allocates nothing.
inline std::optional<scString> lookupKey(std::wstring_view name, bool caseSensitive) noexcept {
    return caseSensitive ? scString::find(name) : scString::findLowered(name);
}

// The key of a name in the index of a growing list.
inline std::uint64_t scrambledKey(scString name) noexcept {
    return scrambled(std::hash<scString>()(name));
}

// The name of something new, interned; the text is folded only when its folded form is new as well.
inline scString nameByRule(string const& name, bool caseSensitive) {
    if (auto const known = lookupKey(name, caseSensitive)) return *known;
    return scString::createFrom(caseSensitive ? name : name.lower());
}

// One looked-up name for classes of either rule.
class lookedUpName {
public:
    explicit lookedUpName(std::wstring_view name) noexcept : mName(name) {}

    std::optional<scString> key(bool caseSensitive) noexcept {
        ruledKey& ruled = mKeys[caseSensitive];
        if (!ruled.isFound) ruled = {lookupKey(mName, caseSensitive), true};
        return ruled.key;
    }

private:
    struct ruledKey {
        std::optional<scString> key;
        bool isFound = false;
    };

    std::wstring_view mName;
    ruledKey mKeys[2];
};

} // namespace zov::metamodel
