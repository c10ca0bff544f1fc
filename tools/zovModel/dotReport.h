// A class diagram of a model in the language of Graphviz.
#pragma once

#include <vector>

#include <zovString.h>

#include "databaseModel.h"

namespace zovModel {

// The classes, or only those chosen, in the order of their names: a box for each with its fields, keys underlined,
// generated fields behind a slash; abstract classes in italics. Hollow arrows lead to base classes, thin ones along
// relations; a diamond stands at the class whose objects take those of the other with them when they go. A relation
// that merely says what a base class says, from key to key, is left out.
zov::string dotReport(databaseModel const& source, std::vector<databaseModel::classPtr> const& chosen);

} // namespace zovModel
