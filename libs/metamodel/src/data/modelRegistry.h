// What a model holds: its classes by name.
#pragma once

#include <atomic>
#include <mutex>

#include "data/classMap.h"

namespace zov::metamodel {

struct modelRegistry {
    // The property of that name as a bool, ready for lookups, which read it and the start of the map behind it.
    std::atomic<bool> mCaseSensitiveNames{false};
    classMap mClasses;
    std::recursive_mutex mMutex; // held while a class is made and published, accept included
    std::mutex mCaseRuleMutex;   // held while the stored rule and the copy above change together
};

} // namespace zov::metamodel
