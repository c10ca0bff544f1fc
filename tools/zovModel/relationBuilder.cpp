#include "relationBuilder.h"

#include <algorithm>
#include <new>
#include <string>
#include <utility>

#include <zovGenericSet.h>
#include <zovMdlRelationInfo.h>

#include "displayText.h"
#include "references.h"
#include "schemaReader.h"

namespace zovModel {

using zov::string;

namespace {

using classPtr = databaseModel::classPtr;
using fieldPtr = databaseModel::fieldPtr;
using relationPtr = databaseModel::relationPtr;
using fieldPair = std::pair<fieldPtr, fieldPtr>;

bool hasClassesOf(fieldPair const& pair, relationPtr const& made) {
    return made->fromClassInfo() == pair.first->classInfo() && made->toClassInfo() == pair.second->classInfo();
}

// The relation that createRelation would answer with in place of a new one; empty when there is none.
relationPtr existingRelation(fieldPair const& pair) {
    relationPtr found;
    auto const isOther = [&](relationPtr const& each) {
        if (each->toClassInfo() != pair.second->classInfo()) return true;
        if (each->toFieldInfo(pair.first) != pair.second) return true;
        found = each;
        return false;
    };
    pair.first->classInfo()->forEachToRelation(isOther, true);
    return found;
}

class relationBuilder {
public:
    relationBuilder(databaseModel& target, std::vector<table> const& tables, tableFields const& fields)
        : mTarget(target), mTables(tables), mFields(fields) {}

    // Those with fewer columns come first. A relation is known by a pair of fields, and so a wider one still has a pair
    // of its own when it shares some with them.
    void build() {
        referenceList references = findReferences(mTables);
        auto const isNarrower = [](reference const& one, reference const& other) {
            return one.mColumns.size() < other.mColumns.size();
        };
        std::stable_sort(references.mFound.begin(), references.mFound.end(), isNarrower);
        for (deadEnd const& each : references.mDeadEnds) {
            mTarget.addWarning(named(each.mFrom, each.mColumns) + L" leads nowhere: " + string::fromUtf8(each.mReason));
        }
        for (reference const& each : references.mFound)
            relate(each);
    }

private:
    string named(std::size_t from, std::vector<std::string> const& columns) const {
        std::vector<string> names;
        names.reserve(columns.size());
        for (std::string const& column : columns)
            names.push_back(string::fromUtf8(column));
        return L"in the table " + quoted(string::fromUtf8(mTables[from].mName)) + L", the foreign key (" +
               joined(names) + L")";
    }

    string named(reference const& source) const {
        std::vector<std::string> columns;
        for (auto const& [from, to] : source.mColumns)
            columns.push_back(mTables[source.mFrom].mColumns[from].mName);
        return named(source.mFrom, columns);
    }

    void relate(reference const& source) {
        std::vector<fieldPair> pairs;
        for (auto const& [from, to] : source.mColumns)
            pairs.emplace_back(mFields[source.mFrom][from], mFields[source.mTo][to]);
        auto const isNew = [](fieldPair const& pair) { return !existingRelation(pair); };
        auto const first = std::find_if(pairs.begin(), pairs.end(), isNew);
        if (first == pairs.end()) {
            mTarget.addWarning(named(source) + L" has no relation of its own: " +
                               quoted(existingRelation(pairs.front())->scName().string()) +
                               (pairs.size() == 1 ? L" joins the same fields" : L" and others join the same fields"));
            return;
        }
        std::rotate(pairs.begin(), first, first + 1);
        create(source, pairs);
    }

    void create(reference const& source, std::vector<fieldPair> const& pairs) {
        auto const& [from, to] = pairs.front();
        classPtr const owner = from->classInfo();
        string const name = freeName(owner, from, to->classInfo());
        bool const isDefault = name == from->scName().string();
        string const reverseName = isDefault ? string() : string(owner->scName().string() + L"." + name);
        auto const type = source.mDeletesWithOther ? zov::metamodel::eAgg : zov::metamodel::eRef;
        relationPtr const made = owner->createRelation(from->scName().string(), false, to, type, name, reverseName);
        if (!made) throw std::bad_alloc();
        for (std::size_t at = 1; at < pairs.size(); ++at)
            addPair(source, made, pairs[at]);
    }

    void addPair(reference const& source, relationPtr const& made, fieldPair const& pair) {
        pair.first->setSemantic(zov::metamodel::eSemRelation, zov::genericSet(), L"");
        if (hasClassesOf(pair, made)) {
            made->addFieldRelation(pair.first, pair.second);
            return;
        }
        mTarget.addProblem(named(source) + L" loses the pair of " + quoted(pair.first->label()) + L" and " +
                           quoted(pair.second->label()) + L": one of the two is not in the model");
    }

    // The from field's name, or, when a relation of the class has it already, one made of it and the target's.
    static string freeName(classPtr const& owner, fieldPtr const& from, classPtr const& target) {
        string name = from->scName().string();
        if (!owner->toRelation(name, false)) return name;
        name += L"_" + target->scName().string();
        string const longName = name;
        for (unsigned count = 2; owner->toRelation(name, false); ++count)
            name = longName + string::sformat(L"_%u", count);
        return name;
    }

    databaseModel& mTarget;
    std::vector<table> const& mTables;
    tableFields const& mFields;
};

} // namespace

void makeRelations(databaseModel& target, std::vector<table> const& tables, tableFields const& fields) {
    relationBuilder(target, tables, fields).build();
}

} // namespace zovModel
