// User properties: two sets an owner, one of its own and one that those who inherit from it may see too.
#pragma once

#include "zovGenericSet.h"

namespace zov::metamodel {

struct userProperties {
    genericSet mOwn;
    genericSet mInheritable;

    genericSet& chosen(bool inheritable) noexcept { return inheritable ? mInheritable : mOwn; }
    genericSet const& chosen(bool inheritable) const noexcept { return inheritable ? mInheritable : mOwn; }
};

} // namespace zov::metamodel
