// One named value of a field with the enum or the bits semantic. Lists of them travel in a field's semantic
// attributes under L"enumItems", as a std::vector<enumItem>.
#pragma once

#include "zovGenericValue.h"
#include "zovString.h"

namespace zov::metamodel {

// A plain value: copying an item clones its value. For bits the value is the bit itself, not its number.
struct enumItem {
    genericValue mValue;
    string mName;
};

} // namespace zov::metamodel
