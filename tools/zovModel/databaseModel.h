// The model of a database, and beside it what the model cannot hold.
//
// The model ignores letter case, as SQLite does. SQLite folds the letters A to Z only, the library those of every
// script: É and é are two tables to SQLite and one name to the model. The first of such tables is in the model; the
// others, whole, are classes *apart*, which belong to no model. Likewise the first of such columns is a field of its
// table's class; the others are fields of a class apart, one for each.
//
// Ownership: a databaseModel lets go of its model and of all classes apart when it ends.
#pragma once

#include <utility>
#include <vector>

#include <zovMdlClassInfo.h>
#include <zovMdlFieldInfo.h>
#include <zovMdlModelInfo.h>
#include <zovMdlRelationInfo.h>

namespace zovModel {

class databaseModel {
public:
    using classPtr = zov::refPtr<zov::metamodel::classInfo>;
    using fieldPtr = zov::refPtr<zov::metamodel::fieldInfo>;
    using relationPtr = zov::refPtr<zov::metamodel::relationInfo>;

    databaseModel();
    ~databaseModel();

    databaseModel(databaseModel const&) = delete;
    databaseModel& operator=(databaseModel const&) = delete;

    zov::metamodel::modelInfo& model() const { return *mModel; }

    // ---- while it is built

    // A class for a table whose name is taken.
    classPtr createClassApart(zov::string const& name);

    // A class for a column of `owner` whose name is taken. Its one field will be shown with owner's.
    classPtr createPlaceApart(classPtr const& owner, zov::string const& name);

    // Something that the user must be told, one line: what the model cannot hold, and what is odd in the database.
    void addProblem(zov::string const& problem);
    void addWarning(zov::string const& warning);

    // ---- reading

    std::vector<zov::string> const& problems() const { return mProblems; }
    std::vector<zov::string> const& warnings() const { return mWarnings; }

    // All classes, those apart included, by name and then by label.
    std::vector<classPtr> classes() const;

    bool isApart(classPtr const& candidate) const;

    // The classes apart that have the name of this one.
    std::vector<classPtr> namesakes(classPtr const& named) const;

    // The class that the model finds by the name, and its namesakes; none when there is no such class.
    std::vector<classPtr> classesNamed(zov::string const& name) const;

    // The class's own fields, and the fields apart that are shown with them.
    static std::vector<fieldPtr> ownFields(classPtr const& owner);
    std::vector<fieldPtr> fieldsApart(classPtr const& owner) const;
    std::vector<fieldPtr> fields(classPtr const& owner) const;

    // The names of what identifies its objects, fields apart at the end.
    std::vector<zov::string> idFieldNames(classPtr const& owner) const;

    // The direct base classes, by name.
    static std::vector<classPtr> baseClasses(classPtr const& derived);

    // The relations that leave the class, or arrive at it, those of its fields apart at the end.
    std::vector<relationPtr> relationsFrom(classPtr const& owner) const;
    std::vector<relationPtr> relationsTo(classPtr const& owner) const;

private:
    std::vector<classPtr> withPlaces(classPtr const& owner) const;

    zov::refPtr<zov::metamodel::modelInfo> mModel;
    std::vector<classPtr> mClassesApart;
    std::vector<std::pair<classPtr, classPtr>> mPlacesApart; // the class of the table, and the place of its column
    std::vector<zov::string> mProblems;
    std::vector<zov::string> mWarnings;
};

// The name and the label in a form for the terminal: part "Part".
zov::string nameAndLabel(zov::metamodel::classInfo const& subject);

// Whether qualified names cannot reach its fields, since its name holds the full stop at which they are split.
bool isOutOfReach(zov::metamodel::classInfo const& owner);

} // namespace zovModel
