#include "relationsReport.h"

#include <vector>

#include "displayText.h"

namespace zovModel {

using zov::string;
using zov::metamodel::relationInfo;

namespace {

using classPtr = databaseModel::classPtr;
using fieldPtr = databaseModel::fieldPtr;
using relationPtr = databaseModel::relationPtr;

string spelled(fieldPtr const& field) {
    return field->classInfo()->label() + L"." + field->label();
}

std::vector<string> rowOf(relationInfo const& relation, bool isLeaving) {
    auto const other = isLeaving ? relation.toClassInfo() : relation.fromClassInfo();
    zov::scString const& name = isLeaving ? relation.scName() : relation.scReverseName();
    return {isLeaving ? L"to" : L"from", printable(other->scName().string()), printable(name.string()),
            zov::metamodel::relationTypeString(relation.type()).string(), pairsForPeople(relation)};
}

// Empty when the class has no relations.
string sectionOf(databaseModel const& source, classPtr const& subject) {
    std::vector<std::vector<string>> rows;
    for (relationPtr const& relation : source.relationsFrom(subject))
        rows.push_back(rowOf(*relation, true));
    for (relationPtr const& relation : source.relationsTo(subject))
        rows.push_back(rowOf(*relation, false));
    if (rows.empty()) return string();
    return nameAndLabel(*subject) + L"\n" + alignedRows(rows);
}

} // namespace

relationsResult relationsReport(databaseModel const& source) {
    relationsResult result;
    for (classPtr const& subject : source.classes()) {
        string const section = sectionOf(source, subject);
        if (!result.mText.empty() && !section.empty()) result.mText += L"\n";
        result.mText += section;
    }
    if (result.mText.empty()) result.mText = L"no relations\n";
    return result;
}

relationsResult relationsReport(databaseModel const& source, string const& className) {
    relationsResult result;
    std::vector<classPtr> const chosen = source.classesNamed(className);
    for (classPtr const& subject : chosen) {
        string const section = sectionOf(source, subject);
        if (!result.mText.empty()) result.mText += L"\n";
        result.mText += section.empty() ? string(nameAndLabel(*subject) + L"\n    no relations\n") : section;
    }
    result.mIsKnown = !chosen.empty();
    if (chosen.empty()) result.mText = L"there is no class " + quoted(className) + L"\n";
    return result;
}

string pairsForPeople(relationInfo const& relation) {
    std::vector<string> pairs;
    auto const add = [&pairs](fieldPtr const& from, fieldPtr const& to) {
        pairs.push_back(spelled(from) + L" = " + spelled(to));
        return true;
    };
    relation.forEachFieldPair(add, true);
    return joined(pairs);
}

} // namespace zovModel
