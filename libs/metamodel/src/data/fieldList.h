// The fields of a class, in the order of their creation, and by name.
#pragma once

#include "base/counting.h"
#include "base/growingList.h"
#include "base/names.h"
#include "zovMdlFieldInfo.h"

namespace zov::metamodel {

struct fieldEntry {
    static constexpr auto search = listSearch::byTagsThenIndex;

    std::uint64_t key() const noexcept { return nameKey(name).hash(); }
    void retain() const noexcept { countIfAny(field); }
    void release() const noexcept { giveUpQuietly(field); }

    scString name; // the root's name
    fieldInfo* field;
};

using fieldList = growingList<fieldEntry>;

} // namespace zov::metamodel
