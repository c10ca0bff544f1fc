#include "checkReport.h"

#include <vector>

#include "displayText.h"
#include "fieldText.h"

namespace zovModel {

using zov::string;

namespace {

using classPtr = databaseModel::classPtr;
using fieldPtr = databaseModel::fieldPtr;
using relationPtr = databaseModel::relationPtr;

class checker {
public:
    explicit checker(databaseModel const& source) : mSource(source), mClasses(source.classes()) {}

    checkResult result() {
        for (classPtr const& each : mClasses)
            checkIdentity(each);
        for (classPtr const& each : mClasses)
            checkRelations(each);
        for (classPtr const& each : mClasses)
            checkNames(each);
        for (classPtr const& each : mClasses)
            checkAliases(each);
        return {mText.empty() ? string(L"nothing to report\n") : mText, mText.empty()};
    }

private:
    void report(string const& finding) { mText += finding + L"\n"; }

    void checkIdentity(classPtr const& subject) {
        if (subject->isAbstract() || !mSource.idFieldNames(subject).empty()) return;
        report(L"no identifying fields: the class " + nameAndLabel(*subject));
    }

    void checkRelations(classPtr const& subject) {
        for (relationPtr const& relation : mSource.relationsFrom(subject)) {
            auto const check = [this](fieldPtr const& from, fieldPtr const& to) {
                if (from->typeString().string().lower() != to->typeString().string().lower()) reportSides(from, to);
                return true;
            };
            relation->forEachFieldPair(check, true);
        }
    }

    void reportSides(fieldPtr const& from, fieldPtr const& to) {
        report(L"different types: the relation from " + printable(from->qualifiedName()) + L", " +
               typeForPeople(*from) + L", to " + printable(to->qualifiedName()) + L", " + typeForPeople(*to));
    }

    // The model itself is asked, since hosts ask it.
    void checkNames(classPtr const& subject) {
        auto& model = mSource.model();
        string const named = nameAndLabel(*subject);
        if (model.classInfo(subject->scName().string(), true) != subject) {
            report(L"out of reach: the class " + named + L", whose name another class has");
            return;
        }
        if (isOutOfReach(*subject)) {
            report(L"out of reach: the fields of the class " + named + L", whose name holds a full stop");
            return;
        }
        for (fieldPtr const& field : mSource.fields(subject)) {
            if (model.fieldInfo(field->qualifiedName(), true) == field) continue;
            report(L"out of reach: the field " + quoted(field->label()) + L" of the class " + named +
                   L", whose name another field has");
        }
    }

    void checkAliases(classPtr const& subject) {
        std::vector<string> aliases;
        subject->getAliasnames(aliases);
        for (string const& alias : aliases) {
            classPtr const found = mSource.model().classInfo(alias, true);
            if (found == subject) continue;
            report(L"hidden: the alias " + quoted(alias) + L" of the class " + nameAndLabel(*subject) +
                   (found ? string(L", by the class " + nameAndLabel(*found)) : string(L", by its letter case")));
        }
    }

    databaseModel const& mSource;
    std::vector<classPtr> const mClasses;
    string mText;
};

} // namespace

checkResult checkReport(databaseModel const& source) {
    return checker(source).result();
}

} // namespace zovModel
