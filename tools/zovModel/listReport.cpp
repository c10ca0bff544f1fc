#include "listReport.h"

#include <vector>

#include "displayText.h"
#include "fieldText.h"

namespace zovModel {

using zov::string;

namespace {

using classPtr = databaseModel::classPtr;
using fieldPtr = databaseModel::fieldPtr;

constexpr wchar_t const* cIndent = L"    ";

std::vector<string> rowOf(fieldPtr const& field) {
    return {printable(field->scName().string()),
            quoted(field->label()),
            typeForPeople(*field),
            semanticOf(*field),
            flagsForPeople(*field),
            originForPeople(*field),
            nullForPeople(*field)};
}

string headingOf(classPtr const& subject) {
    string heading = nameAndLabel(*subject);
    if (subject->isAbstract()) heading += L", abstract";
    std::vector<string> bases;
    for (classPtr const& base : databaseModel::baseClasses(subject))
        bases.push_back(base->scName().string());
    if (!bases.empty()) heading += L", derived from " + joined(bases);
    return heading + L"\n";
}

string notesOn(databaseModel const& source, classPtr const& subject) {
    string notes;
    auto const add = [&notes](string const& note) { notes += string(cIndent) + L"note: " + note + L"\n"; };
    if (source.isApart(subject)) add(L"not in the model, where a class of this name is already");
    for (fieldPtr const& field : source.fieldsApart(subject)) {
        add(L"the column " + quoted(field->label()) + L" is not in the model, where a field of this name is already");
    }
    if (isOutOfReach(*subject)) add(L"no qualified name reaches its fields, since its own name holds a full stop");
    return notes;
}

string sectionOf(databaseModel const& source, classPtr const& subject) {
    std::vector<std::vector<string>> rows;
    for (fieldPtr const& field : source.fields(subject))
        rows.push_back(rowOf(field));
    string section = headingOf(subject) + alignedRows(rows);
    std::vector<string> const key = source.idFieldNames(subject);
    if (!key.empty()) section += string(cIndent) + L"identified by " + joined(key) + L"\n";
    return section + notesOn(source, subject);
}

} // namespace

string listReport(databaseModel const& source) {
    string report;
    for (classPtr const& subject : source.classes()) {
        if (!report.empty()) report += L"\n";
        report += sectionOf(source, subject);
    }
    return report.empty() ? string(L"no tables and no views\n") : report;
}

} // namespace zovModel
