// What a model holds: its classes by name.
#pragma once

#include <atomic>
#include <cstddef>
#include <mutex>

#include "data/classMap.h"

namespace zov::metamodel {

struct modelRegistry {
    // What every lookup reads, and registrations write only where they publish.
    classMap mClasses;
    std::atomic<bool> mCaseSensitiveNames{false}; // the property of that name as a bool, ready for lookups

    // What registrations write all the while stands on other cache lines.
    [[maybe_unused]] std::byte mGap[128];
    std::recursive_mutex mMutex; // held while a class is made and published, accept included
    std::mutex mCaseRuleMutex;   // held while the stored rule and the copy above change together
};

} // namespace zov::metamodel
