// Which columns of which tables the foreign keys of a database lead to.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace zovModel {

struct table;

// Tables and columns are places in the lists of tables and of their columns.
struct reference {
    std::size_t mFrom;
    std::size_t mTo;
    std::vector<std::pair<std::size_t, std::size_t>> mColumns;
    bool mDeletesWithOther;
};

// A foreign key that leads nowhere.
struct deadEnd {
    std::size_t mFrom;
    std::vector<std::string> mColumns;
    std::string mReason; // a clause: there is no table "x"
};

struct referenceList {
    std::vector<reference> mFound;
    std::vector<deadEnd> mDeadEnds;
};

// Names are compared as SQLite does. A foreign key that names no columns of the other table leads to its primary key,
// in the order in which that names them.
referenceList findReferences(std::vector<table> const& tables);

} // namespace zovModel
