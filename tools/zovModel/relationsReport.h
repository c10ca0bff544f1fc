// The relations of a model, seen from both sides.
#pragma once

#include <zovString.h>

#include "databaseModel.h"

namespace zovModel {

struct relationsResult {
    zov::string mText;
    bool mIsKnown = true;
};

// Each class that has relations, with those that leave it and those that arrive at it.
relationsResult relationsReport(databaseModel const& source);

// The same for one class, or several that differ in letter case only.
relationsResult relationsReport(databaseModel const& source, zov::string const& className);

// The relation's pairs of fields in the database's spelling: "Order.customer = Customer.id".
zov::string pairsForPeople(zov::metamodel::relationInfo const& relation);

} // namespace zovModel
