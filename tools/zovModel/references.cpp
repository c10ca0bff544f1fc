#include "references.h"

#include <algorithm>
#include <map>
#include <optional>

#include "displayText.h"
#include "schemaReader.h"
#include "sqlTokens.h"

namespace zovModel {

namespace {

using places = std::map<std::string, std::size_t>; // by folded name

std::string quotedUtf8(std::string const& name) {
    return quoted(zov::string::fromUtf8(name)).toUtf8();
}

// The names of the primary key's columns, in the key's order.
std::vector<std::string> keyNames(table const& owner) {
    std::map<int, std::string> names;
    for (column const& each : owner.mColumns) {
        if (each.mKeyPosition > 0) names.emplace(each.mKeyPosition, each.mName);
    }
    std::vector<std::string> ordered;
    ordered.reserve(names.size());
    for (auto const& [position, name] : names)
        ordered.push_back(name);
    return ordered;
}

class referenceFinder {
public:
    explicit referenceFinder(std::vector<table> const& tables) : mTables(tables) {
        for (std::size_t at = 0; at < tables.size(); ++at) {
            mPlaces.emplace(foldedName(tables[at].mName), at);
            places& columns = mColumns.emplace_back();
            for (column const& each : tables[at].mColumns)
                columns.emplace(foldedName(each.mName), columns.size());
        }
    }

    referenceList find() {
        for (std::size_t from = 0; from < mTables.size(); ++from) {
            for (foreignKey const& key : mTables[from].mForeignKeys)
                follow(from, key);
        }
        return std::move(mResult);
    }

private:
    void follow(std::size_t from, foreignKey const& key) {
        std::string const reason = tryToFollow(from, key);
        if (!reason.empty()) mResult.mDeadEnds.push_back({from, key.mFrom, reason});
    }

    // Empty when it leads somewhere, else the reason why not.
    std::string tryToFollow(std::size_t from, foreignKey const& key) {
        auto const to = mPlaces.find(foldedName(key.mTable));
        if (to == mPlaces.end()) return "there is no table " + quotedUtf8(key.mTable);
        table const& target = mTables[to->second];
        std::vector<std::string> const names = key.mTo.empty() ? keyNames(target) : key.mTo;
        if (names.size() != key.mFrom.size()) {
            return "the primary key of " + quotedUtf8(target.mName) + " has " + std::to_string(names.size()) +
                   (names.size() == 1 ? " column" : " columns");
        }
        reference found{from, to->second, {}, key.mDeletesWithOther};
        for (std::size_t at = 0; at < names.size(); ++at) {
            auto const column = mColumns[to->second].find(foldedName(names[at]));
            if (column == mColumns[to->second].end()) {
                return "the table " + quotedUtf8(target.mName) + " has no column " + quotedUtf8(names[at]);
            }
            found.mColumns.emplace_back(mColumns[from].at(foldedName(key.mFrom[at])), column->second);
        }
        mResult.mFound.push_back(std::move(found));
        return std::string();
    }

    std::vector<table> const& mTables;
    places mPlaces;
    std::vector<places> mColumns;
    referenceList mResult;
};

} // namespace

referenceList findReferences(std::vector<table> const& tables) {
    return referenceFinder(tables).find();
}

} // namespace zovModel
