// The classes of a model as JSON for programs.
#pragma once

#include <string>

#include "databaseModel.h"

namespace zovModel {

// One object with two entries: "classes", sorted by name, their fields in the order of the table's columns, and
// "relations", in the order of the classes that they leave.
std::string jsonReport(databaseModel const& source);

} // namespace zovModel
