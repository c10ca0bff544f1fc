// What an SQLite database says about its tables and views, read through SQLite's own descriptions of them.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zovModel {

class database;

// Texts are UTF-8, in the database's spelling.
struct column {
    std::string mName;
    std::string mDeclaredType;
    bool mIsNotNull = false;
    bool mIsUnique = false;              // by itself: through a key or an unconditional index of this one column
    int mKeyPosition = 0;                // within the primary key, from 1; 0 when outside
    std::optional<std::string> mDefault; // the expression of its DEFAULT
    std::string mGeneratedFrom;          // the expression of a generated column, else empty
};

struct foreignKey {
    std::string mTable;
    std::vector<std::string> mFrom;
    std::vector<std::string> mTo;   // empty: the other table's primary key
    bool mDeletesWithOther = false; // ON DELETE CASCADE
};

struct table {
    std::string mName;
    bool mIsView = false;
    std::string mSql;                     // the statement that creates it
    std::vector<column> mColumns;         // hidden and generated ones included
    std::vector<foreignKey> mForeignKeys; // in the order in which they were declared
    std::string mProblem;                 // why SQLite cannot tell the columns, else empty
};

// All tables and views but SQLite's own, in the order in which they were created.
// Fails: databaseError.
std::vector<table> readSchema(database const& source);

} // namespace zovModel
