// From what a database says of its tables to a model of them.
#pragma once

#include <vector>

#include "databaseModel.h"

namespace zovModel {

struct table;

// A class for each table, an abstract one for each view, and a relation for each foreign key. With `inherit`, tables
// that describe the rows of another one further become classes derived from its class. What the model cannot say is
// added to its problems, what is odd in the database to its warnings.
void fillModel(databaseModel& target, std::vector<table> const& tables, bool inherit);

} // namespace zovModel
