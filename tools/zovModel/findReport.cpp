#include "findReport.h"

#include <set>

#include "displayText.h"
#include "fieldText.h"

namespace zovModel {

using zov::string;
using zov::metamodel::classInfo;

namespace {

using classPtr = databaseModel::classPtr;
using fieldPtr = databaseModel::fieldPtr;

enum class place { ownField, directBase, furtherUp };

// The name as it was given, between quotes where it would not be seen as one word.
string shown(string const& name) {
    return name.empty() || name.find_first_of(L" :\"") != string::npos ? quoted(name) : printable(name);
}

string note(string const& text) {
    return L"    note: " + text + L"\n";
}

// The fields of that name that the class's bases own: the direct ones, or with `further` the nearest on each way up.
void collectInherited(classPtr const& derived, string const& name, bool further, std::set<classInfo*>& seen,
                      std::vector<fieldPtr>& found) {
    for (classPtr const& base : databaseModel::baseClasses(derived)) {
        if (!seen.insert(base.get()).second) continue;
        if (fieldPtr const field = base->fieldInfo(name, false, false)) {
            found.push_back(field);
        } else if (further) {
            collectInherited(base, name, further, seen, found);
        }
    }
}

class nameFinder {
public:
    nameFinder(databaseModel const& source, string const& name) : mSource(source), mName(name) {}

    // The lines about the name; empty when it denotes nothing.
    string denoted() {
        addField();
        addClass();
        return mText;
    }

    // The line that says that, and why.
    string unknown() const {
        string const begin = shown(mName) + L": unknown; ";
        if (string const hidden = columnBehindFullStop(); !hidden.empty()) return begin + hidden;
        std::size_t const stop = mName.find(L'.');
        if (stop == string::npos) return begin + L"there is no class of this name\n";
        string const className(mName, 0, stop);
        classPtr const owner = mSource.model().classInfo(className, true);
        if (!owner) return begin + L"there is no class " + quoted(className) + L"\n";
        return begin + L"the class " + nameAndLabel(*owner) + L" has no such field, nor has a base of it\n";
    }

private:
    // Asks the model first, as any host would: it knows the fields of the class and of its direct bases. Then asks
    // the class itself, which looks further up.
    void addField() {
        std::size_t const stop = mName.find(L'.');
        if (stop == string::npos) return;
        string const fieldName(mName, stop + 1);
        classPtr const owner = mSource.model().classInfo(string(mName, 0, stop), true);
        fieldPtr field = mSource.model().fieldInfo(mName, true);
        if (field) {
            addField(owner, field, field->classInfo() == owner ? place::ownField : place::directBase, fieldName);
        } else if (owner) {
            field = owner->fieldInfo(fieldName, true, true);
            if (field) addField(owner, field, place::furtherUp, fieldName);
        }
    }

    void addField(classPtr const& owner, fieldPtr field, place where, string const& fieldName) {
        std::vector<fieldPtr> choices;
        if (where != place::ownField) {
            std::set<classInfo*> seen;
            collectInherited(owner, fieldName, where == place::furtherUp, seen, choices);
            field = choices.front();
        }
        mText += shown(mName) + L": field " + describe(field) + origin(field, where) + L"\n";
        for (fieldPtr const& other : choices) {
            if (other != field)
                mText += note(L"it may as well be " + printable(other->qualifiedName()) +
                              L": nothing tells which of several bases comes first");
        }
        for (fieldPtr const& other : mSource.fieldsApart(field->classInfo())) {
            if (other->scName() == field->scName()) {
                mText += note(L"the column " + quoted(other->label()) + L" has this name too, and is not in the model");
            }
        }
    }

    static string describe(fieldPtr const& field) {
        string text = printable(field->qualifiedName()) + L" " + quoted(field->label());
        for (string const& detail : {typeForPeople(*field), semanticOf(*field), flagsForPeople(*field),
                                     originForPeople(*field), nullForPeople(*field)}) {
            if (!detail.empty()) text += L", " + detail;
        }
        return text;
    }

    static string origin(fieldPtr const& field, place where) {
        switch (where) {
        case place::ownField: break;
        case place::directBase: return L", inherited from the direct base " + nameAndLabel(*field->classInfo());
        case place::furtherUp: return L", inherited from further up, from " + nameAndLabel(*field->classInfo());
        }
        return L"";
    }

    void addClass() {
        classPtr const found = mSource.model().classInfo(mName, true);
        if (!found) return;
        mText += shown(mName) + L": class " + nameAndLabel(*found) + details(found) + L"\n";
        for (classPtr const& other : mSource.namesakes(found)) {
            mText += note(quoted(other->label()) + L" has this name too, and is not in the model");
        }
        if (isOutOfReach(*found)) {
            mText += note(L"no qualified name reaches its fields, since its own name holds a full stop");
        }
    }

    string details(classPtr const& subject) const {
        string text = subject->isAbstract() ? L", abstract" : L"";
        std::vector<string> bases;
        for (classPtr const& base : databaseModel::baseClasses(subject))
            bases.push_back(base->scName().string());
        if (!bases.empty()) text += L", derived from " + joined(bases);
        std::size_t const count = mSource.fields(subject).size();
        text += string::sformat(count == 1 ? L", %zu field" : L", %zu fields", count);
        std::vector<string> const key = mSource.idFieldNames(subject);
        return key.empty() ? text : string(text + L", identified by " + joined(key));
    }

    // What the name means when the table's own name holds full stops: it is split behind the table, not at its first.
    string columnBehindFullStop() const {
        for (std::size_t stop = mName.find(L'.'); stop != string::npos; stop = mName.find(L'.', stop + 1)) {
            classPtr const owner = mSource.model().classInfo(string(mName, 0, stop), false);
            if (!owner || !isOutOfReach(*owner)) continue;
            fieldPtr const field = owner->fieldInfo(string(mName, stop + 1), true, true);
            if (!field) continue;
            return L"the class " + nameAndLabel(*owner) + L" has the field " + quoted(field->label()) +
                   L", but no qualified name reaches it, since the class's own name holds a full stop\n";
        }
        return string();
    }

    databaseModel const& mSource;
    string const& mName;
    string mText;
};

} // namespace

findResult findReport(databaseModel const& source, std::vector<string> const& names) {
    findResult result;
    for (string const& name : names) {
        nameFinder finder(source, name);
        string const lines = finder.denoted();
        result.mText += lines.empty() ? finder.unknown() : lines;
        if (lines.empty()) result.mAllKnown = false;
    }
    return result;
}

} // namespace zovModel
