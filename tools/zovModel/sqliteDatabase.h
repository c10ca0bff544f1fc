// An SQLite database opened for reading, and prepared statements on it.
//
//     database source("workshop.db");
//     statement names(source, "SELECT name FROM sqlite_master WHERE type = ?1");
//     names.bind(1, "table");
//     while (names.step()) print(names.text(0));
//
// From its constructor to its end a database holds one read transaction: what it answers is one state of the file.
// Nothing is written to the file or beside it.
//
// Fails: databaseError, whose text is one line for the user; queryError when SQLite refuses a single query only, such
// as one about a view of a table that is gone.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

namespace zovModel {

class databaseError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The text is SQLite's message alone.
class queryError : public databaseError {
    using databaseError::databaseError;
};

class database {
public:
    // Opens the file. A file of no bytes is an empty database.
    explicit database(std::string const& path);
    ~database();

    database(database const&) = delete;
    database& operator=(database const&) = delete;

private:
    friend class statement;

    struct closer {
        void operator()(sqlite3* connection) const noexcept;
    };

    void open();
    [[noreturn]] void fail(int code) const;

    std::string mPath;
    std::unique_ptr<sqlite3, closer> mConnection;
};

class statement {
public:
    statement(database const& source, char const* sql);

    // Gives a parameter, counted from 1, its text and makes the statement ready to run anew.
    void bind(int parameter, std::string const& text);

    // Goes to the next row; false after the last.
    bool step();

    // Of the row that step() reached, a column counted from 0. A null is the empty text and the number 0.
    std::string text(int column) const;
    int number(int column) const;
    bool isNull(int column) const;

private:
    struct finalizer {
        void operator()(sqlite3_stmt* handle) const noexcept;
    };

    database const& mSource;
    std::unique_ptr<sqlite3_stmt, finalizer> mHandle;
};

} // namespace zovModel
