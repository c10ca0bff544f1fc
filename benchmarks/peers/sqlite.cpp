// SQLite's catalog, of a database in memory: classes are tables, fields are columns. No inheritance, and no way to ask
// for a default but by a query.
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <sqlite3.h>

#include "contenderOf.h"
#include "contenders.h"

namespace zov::benchmarks {

namespace {

char const* typeOf(valueType type) {
    switch (type) {
    case valueType::boolean: return "BOOLEAN";
    case valueType::integer: return "INT";
    case valueType::longInteger: return "BIGINT";
    case valueType::real: return "REAL";
    case valueType::text: return "TEXT";
    }
    throw std::logic_error("a type without a counterpart");
}

struct closed {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

class sqliteStore {
public:
    using text = std::string;
    using qualifiedText = std::pair<std::string, std::string>;
    using classHandle = std::size_t; // nothing that hosts hold
    using fieldHandle = char const*; // the column's type, until the table changes
    static constexpr bool isReadableBesideWriter = true;
    static constexpr std::size_t mostClasses = 1'000; // as each new table searches the catalog from end to end

    explicit sqliteStore(workload const& load) : mFieldNames(load.fieldNames()) {
        sqlite3* opened = nullptr;
        sqlite3_open(":memory:", &opened);
        mDatabase.reset(opened);
        sqlite3_stmt* prepared = nullptr;
        constexpr char const* query = "SELECT i.name, i.type FROM sqlite_schema AS s, pragma_table_info(s.name) AS i";
        sqlite3_prepare_v2(opened, query, -1, &prepared, nullptr);
        mWalk.reset(prepared);
    }

    static text classNameOf(std::string const& name) { return name; }
    static text fieldNameOf(std::string const& name) { return name; }
    static qualifiedText qualifiedNameOf(std::string const& className, std::string const& fieldName) {
        return {className, fieldName};
    }

    classHandle addClass(classPlan const& plan, classHandle const*) {
        std::string statement = "CREATE TABLE \"" + plan.mName + "\"";
        char separator = '(';
        for (auto const& field : plan.mFields) {
            statement += separator + ('"' + mFieldNames[field.mName]) + "\" " + typeOf(field.mType);
            if (field.mHasDefault) statement += " DEFAULT " + std::to_string(field.mDefault);
            separator = ',';
        }
        statement += ')';
        if (sqlite3_exec(mDatabase.get(), statement.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
            throw std::runtime_error("SQLite refuses " + plan.mName);
        return 0;
    }

    bool findClass(text const& name) const { return hasColumn(name.c_str(), nullptr, nullptr); }
    fieldHandle findField(qualifiedText const& name) const {
        fieldHandle type = nullptr;
        hasColumn(name.first.c_str(), name.second.c_str(), &type);
        return type;
    }

    void forEachField(auto const& visit) const {
        auto* const walk = mWalk.get();
        while (sqlite3_step(walk) == SQLITE_ROW) {
            std::string_view const type = reinterpret_cast<char const*>(sqlite3_column_text(walk, 1));
            visit(static_cast<char>(*sqlite3_column_text(walk, 0)), type == typeOf(valueType::integer));
        }
        sqlite3_reset(walk);
    }

    static bool isClass(bool, classPlan const&) { return true; }
    static bool isField(fieldHandle found, classPlan const&, fieldPlan const& plan) {
        return std::string_view(found) == typeOf(plan.mType);
    }

private:
    bool hasColumn(char const* table, char const* column, char const** type) const {
        return sqlite3_table_column_metadata(mDatabase.get(), nullptr, table, column, type, nullptr, nullptr, nullptr,
                                             nullptr) == SQLITE_OK;
    }

    std::vector<std::string> mFieldNames;
    std::unique_ptr<sqlite3, closed> mDatabase;
    std::unique_ptr<sqlite3_stmt, closed> mWalk; // ends before the database
};

} // namespace

contenderKind sqliteKind() {
    return kindOf<sqliteStore>("SQLite");
}

} // namespace zov::benchmarks
