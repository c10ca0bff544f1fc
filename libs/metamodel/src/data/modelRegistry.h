// What a model holds: its classes by name.
#pragma once

#include <atomic>
#include <map>
#include <mutex>

#include "base/cowSlot.h"
#include "zovMdlClassInfo.h"

namespace zov::metamodel {

// Classes by scName(), in the order of name handles.
using classMap = std::map<scString, refPtr<classInfo>>;

struct modelRegistry {
    std::recursive_mutex mMutex; // held while a class is made and published, accept included
    cowSlot<classMap> mClasses;
    std::mutex mCaseRuleMutex;                    // held while the stored rule and the copy below change together
    std::atomic<bool> mCaseSensitiveNames{false}; // the property of that name as a bool, ready for lookups
};

} // namespace zov::metamodel
