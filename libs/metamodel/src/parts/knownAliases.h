// Every text that has ever been an alias of some class: a name that is none needs no search for one.
//
// Like interned names, the texts are never forgotten.
#pragma once

#include "zovNameKey.h"

namespace zov::metamodel {

// Throws std::bad_alloc.
void rememberAlias(scString alias);

// Takes no lock and allocates nothing.
bool wasEverAlias(nameKey const& name) noexcept;

} // namespace zov::metamodel
