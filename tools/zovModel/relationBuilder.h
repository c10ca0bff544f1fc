// From foreign keys to relations between the fields of a model.
#pragma once

#include <cstddef>
#include <vector>

#include "databaseModel.h"

namespace zovModel {

struct table;

// The fields of each table, both in the order of the database.
using tableFields = std::vector<std::vector<databaseModel::fieldPtr>>;

// A relation for each foreign key, field to field; the fields of the table that declares it get the relation semantic.
// A foreign key that leads nowhere, or that another relation covers, is added to the target's warnings; one that the
// model cannot hold whole, to its problems.
void makeRelations(databaseModel& target, std::vector<table> const& tables, tableFields const& fields);

} // namespace zovModel
