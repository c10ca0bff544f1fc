// What names denote in a model.
#pragma once

#include <vector>

#include <zovString.h>

#include "databaseModel.h"

namespace zovModel {

struct findResult {
    zov::string mText; // one line for each name and each thing that it denotes, and indented notes
    bool mAllKnown = true;
};

findResult findReport(databaseModel const& source, std::vector<zov::string> const& names);

} // namespace zovModel
