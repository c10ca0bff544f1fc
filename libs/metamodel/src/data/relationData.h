// What a relation holds.
#pragma once

#include <mutex>
#include <utility>
#include <vector>

#include "base/cowSlot.h"
#include "zovGenericSet.h"
#include "zovMdlFieldInfo.h"
#include "zovMdlRelationInfo.h"

namespace zov::metamodel {

// A field of the source class and the field of the target class that it refers to.
using fieldPair = std::pair<refPtr<fieldInfo>, refPtr<fieldInfo>>;
using fieldPairs = std::vector<fieldPair>;

struct relationData {
    explicit relationData(eRelationType type) : mType(type) {}

    // The one field of the first pair that has `field` as the other one, or an empty pointer.
    refPtr<fieldInfo> partner(fieldInfo const* field, refPtr<fieldInfo> fieldPair::*known,
                              refPtr<fieldInfo> fieldPair::*wanted) const {
        readSection const reading;
        fieldPairs const* const pairs = mRelations.peek(reading);
        if (!pairs) return nullptr;
        for (fieldPair const& pair : *pairs) {
            if (pair.*known == field) return pair.*wanted;
        }
        return nullptr;
    }

    std::recursive_mutex mMutex; // held while a pair is added
    eRelationType const mType;
    cowSlot<fieldPairs> mRelations;
    bool mHasOwnField = false; // the first pair's target field was made for this relation
    scString mName;
    scString mReverseName;
};

} // namespace zov::metamodel
