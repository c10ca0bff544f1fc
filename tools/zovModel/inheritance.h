// Which tables are special cases of which: SQLite knows no inheritance, but a row of a table whose whole primary key
// is a foreign key to another table's whole primary key belongs to one row of that table, and describes it further.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace zovModel {

struct table;

struct inheritance {
    // By derived table, its base tables; both as places in the list of tables.
    std::vector<std::vector<std::size_t>> mBases;

    // Derived and base table of each link that was left out, because it leads in a circle.
    std::vector<std::pair<std::size_t, std::size_t>> mCircular;
};

inheritance findInheritance(std::vector<table> const& tables);

} // namespace zovModel
