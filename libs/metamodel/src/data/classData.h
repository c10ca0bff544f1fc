// What a class holds.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>

#include "base/linkSlot.h"
#include "base/madeWhenNeeded.h"
#include "base/nameFilter.h"
#include "data/fieldList.h"
#include "data/relatedClasses.h"
#include "data/relationLists.h"
#include "data/userProperties.h"
#include "zovGenericSet.h"
#include "zovMdlClassInfo.h"
#include "zovMdlFieldInfo.h"
#include "zovMdlIdInfo.h"

namespace zov::metamodel {

// On cache lines of its own: whoever counts the class, or what lies beside it, does not disturb those who look at its
// fields. The bases end before the id set, which stands before them.
struct classData {
    classData(scString name, bool caseSensitiveNames) : mName(name), mCaseSensitiveNames(caseSensitiveNames) {}

    static classData const& of(classInfo const& owner) { return *owner.mData; }

    linkSlot<idInfo> mutable mIdInfo;
    std::atomic<std::uint64_t> mIdGeneration{0}; // counts how often the id set was dropped
    scString const mName;
    std::recursive_mutex mutable mMutex; // held while a field list or a table is replaced, and while a semantic changes

    // What lookups read lies within one line, but for the table of several bases.
    alignas(64) nameFilter mFieldFilter;
    fieldList mFieldInfos;
    bool const mCaseSensitiveNames; // the model's rule at the time the class was made
    bool mHasCapitals = false;      // the name of some field is not its own lower case; for writers
    std::atomic<std::int32_t> mFlags{0};
    relatedClasses mBaseClasses;
    arrivingRelations mFromRelations;
    leavingRelations mToRelations;
    relatedClasses mDerivedClasses;
    madeWhenNeeded<string> mLabel;
    genericSet mProperties; // "Alias": the alias list
    userProperties mUserProperties;
};

static_assert(offsetof(classData, mBaseClasses) + sizeof(void*) <= offsetof(classData, mFieldFilter) + 64);

} // namespace zov::metamodel
