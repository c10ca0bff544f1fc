// Alias lists: vectors of names kept in a set of properties under one key.
#pragma once

#include <vector>

#include "zovGenericSet.h"
#include "zovScString.h"
#include "zovString.h"

namespace zov::metamodel {

// The key of alias lists in the sets of classes and fields.
inline constexpr wchar_t const* aliasKey = L"Alias";

using aliasList = std::vector<scString>;

// The list held as exactly a List under the key, or null.
template <class List>
List* findAliases(genericSet const& set) {
    List* list = nullptr;
    return set.getValuePtr(aliasKey, list) ? list : nullptr;
}

// Removes the first element equal to the alias, if there is one; the others keep their order.
void removeAlias(aliasList& list, string const& alias);

bool hasAlias(aliasList const& list, scString alias) noexcept;

void appendAliases(aliasList const& list, std::vector<string>& out);

} // namespace zov::metamodel
