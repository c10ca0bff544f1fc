// Names as keys: as they are written, or folded to lower case.
#pragma once

#include <optional>
#include <string_view>

#include "zovNameKey.h"
#include "zovScString.h"
#include "zovString.h"

namespace zov::metamodel {

// The handle of a looked-up name under a case rule; empty when no such text was ever interned, so that nothing can be
// kept under it. Interns and allocates nothing.
inline std::optional<scString> knownName(std::wstring_view name, bool caseSensitive) noexcept {
    return caseSensitive ? scString::find(name) : scString::findLowered(name);
}

// The name of something new, interned; the text is folded only when its folded form is new as well.
inline scString nameByRule(string const& name, bool caseSensitive) {
    if (auto const known = knownName(name, caseSensitive)) return *known;
    return scString::createFrom(caseSensitive ? name : name.lower());
}

// One looked-up name for classes of either rule. Hardly ever do classes that are searched together differ in theirs, so
// that the name is folded and hashed once.
class lookedUpName {
public:
    lookedUpName(std::wstring_view name, bool caseSensitive) noexcept
        : mName(name), mKey(name, caseSensitive), mIsCaseSensitive(caseSensitive) {}

    nameKey const& key(bool caseSensitive) noexcept {
        if (caseSensitive != mIsCaseSensitive) *this = lookedUpName(mName, caseSensitive);
        return mKey;
    }

private:
    std::wstring_view mName;
    nameKey mKey;
    bool mIsCaseSensitive;
};

} // namespace zov::metamodel
