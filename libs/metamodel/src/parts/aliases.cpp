#include "parts/aliases.h"

#include <algorithm>
#include <iterator>

namespace zov::metamodel {

void removeAlias(aliasList& list, string const& alias) {
    // A text that nobody interned is in no list.
    auto const known = scString::find(alias);
    if (!known) return;
    auto const found = std::find(list.begin(), list.end(), *known);
    if (found != list.end()) list.erase(found);
}

bool hasAlias(aliasList const& list, scString alias) noexcept {
    return std::find(list.begin(), list.end(), alias) != list.end();
}

void appendAliases(aliasList const& list, std::vector<string>& out) {
    std::vector<string> added;
    added.reserve(list.size());
    for (scString const alias : list)
        added.push_back(alias.string());
    out.reserve(out.size() + added.size());
    std::move(added.begin(), added.end(), std::back_inserter(out));
}

} // namespace zov::metamodel
