// What a class holds.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <vector>

#include "base/cowSlot.h"
#include "parts/userProperties.h"
#include "zovGenericSet.h"
#include "zovMdlClassInfo.h"
#include "zovMdlFieldInfo.h"
#include "zovMdlIdInfo.h"
#include "zovMdlRelationInfo.h"

namespace zov::metamodel {

using classTable = std::map<scString, refPtr<classInfo>>;
using relationList = std::vector<refPtr<relationInfo>>;
using fieldList = std::vector<refPtr<fieldInfo>>;

struct classData {
    classData(scString name, bool caseSensitiveNames) : mName(name), mCaseSensitiveNames(caseSensitiveNames) {}

    std::recursive_mutex mutable mMutex; // held while a field list or a table is replaced, and while a semantic changes
    scString const mName;
    bool const mCaseSensitiveNames; // the model's rule at the time the class was made
    string mLabel;
    std::atomic<std::int32_t> mFlags{0};
    refPtr<idInfo> mutable mIdInfo;              // shared slot
    std::atomic<std::uint64_t> mIdGeneration{0}; // counts how often the slot above was dropped
    cowSlot<classTable> mBaseClasses;
    cowSlot<classTable> mDerivedClasses;
    cowSlot<fieldList> mFieldInfos;
    cowSlot<relationList> mFromRelations; // those that arrive at this class
    cowSlot<relationList> mToRelations;   // those that leave it
    genericSet mProperties;               // "Alias": the alias list
    userProperties mUserProperties;
};

} // namespace zov::metamodel
