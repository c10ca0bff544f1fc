// The kinds of relations between classes, and their texts.
#pragma once

#include <cstdint>

#include "zovMetamodelApi.h"
#include "zovScString.h"
#include "zovString.h"

namespace zov::metamodel {

enum eRelationType : std::uint32_t {
    eRef = 1,    // "ref": the source refers to the target
    eAgg = 2,    // "agg": the source owns the target
    eRevAgg = 4, // "revagg": the target owns the source
    eBiAgg = 8   // "biagg": each owns the other
};

// Reads a kind text; letter case, blanks and tabs do not matter, and the empty text is eRef. Answers false, with `type`
// eRef, for any other text. Any thread; throws std::bad_alloc.
ZOV_METAMODEL_API bool parseRelationType(string const& text, eRelationType& type);

// The text of a kind; the empty text for values that are none. Any thread; throws std::bad_alloc.
ZOV_METAMODEL_API scString relationTypeString(eRelationType type);

} // namespace zov::metamodel
