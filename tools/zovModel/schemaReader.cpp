#include "schemaReader.h"

#include <algorithm>
#include <map>
#include <set>

#include "sqliteDatabase.h"
#include "tableDefinition.h"

namespace zovModel {

namespace {

// The questions asked of every table, prepared once.
class tableReader {
public:
    explicit tableReader(database const& source)
        : mColumns(source, "SELECT name, type, \"notnull\", pk, dflt_value FROM pragma_table_xinfo(?1, 'main') "
                           "ORDER BY cid"),
          mUniques(source, "SELECT list.seq, info.cid FROM pragma_index_list(?1, 'main') AS list, "
                           "pragma_index_info(list.name, 'main') AS info WHERE list.\"unique\" AND NOT list.partial"),
          mReferences(source, "SELECT id, \"table\", \"from\", \"to\", on_delete = 'CASCADE' "
                              "FROM pragma_foreign_key_list(?1, 'main') ORDER BY id DESC, seq") {}

    void read(table& target) {
        readColumns(target);
        readGenerated(target);
        markUniques(target);
        readForeignKeys(target);
    }

private:
    void readColumns(table& target) {
        mColumns.bind(1, target.mName);
        while (mColumns.step()) {
            column& read = target.mColumns.emplace_back();
            read.mName = mColumns.text(0);
            read.mDeclaredType = mColumns.text(1);
            read.mIsNotNull = mColumns.number(2) != 0;
            read.mKeyPosition = mColumns.number(3);
            if (!mColumns.isNull(4)) read.mDefault = mColumns.text(4);
        }
    }

    // SQLite tells that a column is generated, but not from what.
    static void readGenerated(table& target) {
        std::vector<std::string> const expressions = generatedExpressions(target.mSql);
        for (std::size_t place = 0; place < std::min(expressions.size(), target.mColumns.size()); ++place)
            target.mColumns[place].mGeneratedFrom = expressions[place];
    }

    void markUniques(table& target) {
        std::map<int, std::set<int>> indexed; // the columns of each index; an expression counts as a negative one
        mUniques.bind(1, target.mName);
        while (mUniques.step())
            indexed[mUniques.number(0)].insert(mUniques.number(1));
        // A key that is the row's own number has no index.
        std::set<int> key;
        for (std::size_t place = 0; place < target.mColumns.size(); ++place) {
            if (target.mColumns[place].mKeyPosition > 0) key.insert(static_cast<int>(place));
        }
        indexed[-1] = key;
        for (auto const& [index, places] : indexed) {
            if (places.size() != 1 || *places.begin() < 0) continue;
            target.mColumns.at(static_cast<std::size_t>(*places.begin())).mIsUnique = true;
        }
    }

    void readForeignKeys(table& target) {
        int current = -1;
        mReferences.bind(1, target.mName);
        while (mReferences.step()) {
            if (mReferences.number(0) != current) target.mForeignKeys.push_back({mReferences.text(1), {}, {}, false});
            current = mReferences.number(0);
            foreignKey& reference = target.mForeignKeys.back();
            reference.mDeletesWithOther = mReferences.number(4) != 0;
            reference.mFrom.push_back(mReferences.text(2));
            if (!mReferences.isNull(3)) reference.mTo.push_back(mReferences.text(3));
        }
    }

    statement mColumns;
    statement mUniques;
    statement mReferences;
};

std::vector<table> readNames(database const& source) {
    statement names(source, "SELECT name, type = 'view', sql FROM sqlite_master WHERE type IN ('table', 'view') "
                            "AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\' ORDER BY rowid");
    std::vector<table> tables;
    while (names.step()) {
        table& named = tables.emplace_back();
        named.mName = names.text(0);
        named.mIsView = names.number(1) != 0;
        named.mSql = names.text(2);
    }
    return tables;
}

} // namespace

std::vector<table> readSchema(database const& source) {
    std::vector<table> tables = readNames(source);
    tableReader reader(source);
    for (table& named : tables) {
        try {
            reader.read(named);
        } catch (queryError const& problem) { // a view of something that is gone, a table of an unknown module
            named.mProblem = problem.what();
        }
    }
    return tables;
}

} // namespace zovModel
