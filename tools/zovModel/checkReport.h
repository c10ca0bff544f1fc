// What a data modeller wants to know before trusting a model.
#pragma once

#include <zovString.h>

#include "databaseModel.h"

namespace zovModel {

struct checkResult {
    zov::string mText; // a line for each finding, or one that says that there is none
    bool mIsClean = true;
};

// In this order, and by class within each: classes that have objects but no identifying fields, relations whose two
// sides differ in type, names by which the model does not find what they name, aliases that hide each other.
checkResult checkReport(databaseModel const& source);

} // namespace zovModel
