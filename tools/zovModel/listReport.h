// The classes of a model as text for people.
#pragma once

#include <zovString.h>

#include "databaseModel.h"

namespace zovModel {

// Each class with its fields in aligned columns, sorted by name.
zov::string listReport(databaseModel const& source);

} // namespace zovModel
