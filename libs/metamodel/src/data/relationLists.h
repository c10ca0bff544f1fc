// The relations of a class: those that leave it, and those that arrive at it, each in the order of their creation.
#pragma once

#include "base/counting.h"
#include "base/growingList.h"
#include "zovMdlRelationInfo.h"

namespace zov::metamodel {

// A relation that leaves the class, with the fields of its first pair, by which it is found.
struct leavingEntry {
    static constexpr auto search = listSearch::byIndex;

    static std::uint64_t keyOf(fieldInfo const* from, fieldInfo const* to) noexcept {
        return scrambled(scrambled(addressOf(from)) + addressOf(to));
    }

    std::uint64_t key() const noexcept { return keyOf(from, to); }
    void retain() const noexcept { countIfAny(relation); }
    void release() const noexcept { giveUpQuietly(relation); }

    relationInfo* relation;
    fieldInfo const* from;
    fieldInfo const* to;
};

struct arrivingEntry {
    static constexpr auto search = listSearch::none;

    void retain() const noexcept { countIfAny(relation); }
    void release() const noexcept { giveUpQuietly(relation); }

    relationInfo* relation;
};

using leavingRelations = growingList<leavingEntry>;
using arrivingRelations = growingList<arrivingEntry>;

} // namespace zov::metamodel
