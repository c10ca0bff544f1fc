#include "modelBuilder.h"

#include <zovGenericSet.h>
#include <zovMdlFieldSemantics.h>

#include "displayText.h"
#include "fieldText.h"
#include "inheritance.h"
#include "literal.h"
#include "relationBuilder.h"
#include "schemaReader.h"
#include "typeMapping.h"

namespace zovModel {

using zov::genericSet;
using zov::string;
using zov::metamodel::eFieldSemantics;
using zov::metamodel::eFieldType;
using zov::metamodel::fieldInfo;

namespace {

using classPtr = databaseModel::classPtr;
using fieldPtr = databaseModel::fieldPtr;

class modelBuilder {
public:
    modelBuilder(databaseModel& target, std::vector<table> const& tables) : mTarget(target), mTables(tables) {}

    // A relation gives its fields another semantic, and the key semantic sets flags: each step leaves the word to the
    // next one.
    void build() {
        for (table const& each : mTables) {
            mFields.emplace_back();
            mClasses.push_back(createClass(each));
        }
        makeRelations(mTarget, mTables, mFields);
        forEachColumn([](fieldPtr const& field, column const& source) {
            if (source.mKeyPosition > 0) field->setSemantic(zov::metamodel::eSemPrimkey, genericSet(), L"");
            // The semantic makes every key column mandatory and unique, which SQLite does not.
            field->setMandatory(source.mIsNotNull);
            field->setUnique(source.mIsUnique);
        });
    }

    // Only when all classes have their fields: a class does not create a field that a base of it has.
    void link(inheritance const& links) {
        for (std::size_t derived = 0; derived < links.mBases.size(); ++derived) {
            for (std::size_t const base : links.mBases[derived])
                addBase(mClasses[derived], mClasses[base]);
        }
        for (auto const& [derived, base] : links.mCircular) {
            mTarget.addProblem(named(mClasses[derived]) + L" is not derived from " + named(mClasses[base]) +
                               L": their primary keys refer to each other in a circle");
        }
    }

private:
    static string named(classPtr const& tableClass) {
        return (tableClass->isAbstract() ? L"the view " : L"the table ") + quoted(tableClass->label());
    }

    classPtr createClass(table const& source) {
        string const name = string::fromUtf8(source.mName);
        auto& model = mTarget.model();
        if (classPtr const first = model.classInfo(name, false)) {
            classPtr apart = mTarget.createClassApart(name);
            fill(apart, source);
            mTarget.addProblem(named(apart) + L" differs from " + named(first) +
                               L" in letter case only: it is listed, but no name finds it");
            return apart;
        }
        return model.createClassInfo(name, [this, &source](classPtr const& created) {
            fill(created, source);
            return true;
        });
    }

    void fill(classPtr const& target, table const& source) {
        target->setLabel(string::fromUtf8(source.mName));
        target->setAbstract(source.mIsView);
        for (column const& each : source.mColumns)
            addField(target, each);
        if (!source.mProblem.empty()) {
            mTarget.addProblem(L"the columns of " + named(target) + L" cannot be read: " +
                               string::fromUtf8(source.mProblem));
        }
    }

    void addField(classPtr const& owner, column const& source) {
        string const name = string::fromUtf8(source.mName);
        fieldPtr const first = owner->fieldInfo(name, false, false);
        if (!first) {
            createField(owner, name, source);
            return;
        }
        createField(mTarget.createPlaceApart(owner, owner->label()), name, source);
        mTarget.addProblem(L"in " + named(owner) + L", the column " + quoted(name) + L" differs from the column " +
                           quoted(first->label()) + L" in letter case only: it is listed, but no name finds it");
    }

    void createField(classPtr const& owner, string const& name, column const& source) {
        columnType const type = typeOfColumn(string::fromUtf8(source.mDeclaredType));
        genericSet attributes;
        if (type.mLength > 0) attributes.setValue(L"length", type.mLength, false);
        fieldPtr const field = owner->createFieldInfo(name, type.mType, attributes, type.mCustomText);
        field->setLabel(name);
        field->setSemantic(semanticOf(type.mType), genericSet(), L"");
        if (source.mDefault) setDefault(*field, *source.mDefault);
        field->setAutoExpression(string::fromUtf8(source.mGeneratedFrom));
        mFields.back().push_back(field);
    }

    static eFieldSemantics semanticOf(eFieldType type) {
        switch (type) {
        case zov::metamodel::eDate: return zov::metamodel::eSemDate;
        case zov::metamodel::eTime: return zov::metamodel::eSemTime;
        case zov::metamodel::eTimestamp: return zov::metamodel::eSemTimestamp;
        default: return zov::metamodel::eSemNone;
        }
    }

    void setDefault(fieldInfo& field, std::string const& expression) {
        field.setDefaultExpression(string::fromUtf8(expression));
        auto const constant = literalOf(expression);
        if (!constant) return;
        if (auto const value = valueOf(*constant, field.type())) {
            giveDefault(field, *value);
            return;
        }
        mTarget.addWarning(L"in the table " + quoted(string::fromUtf8(mTables[mFields.size() - 1].mName)) +
                           L", the default " + printable(string::fromUtf8(expression)) + L" of the column " +
                           quoted(field.label()) + L" is no value of the type " + typeForPeople(field) +
                           L": it is kept as an expression");
    }

    template <class Function>
    void forEachColumn(Function const& call) const {
        for (std::size_t place = 0; place < mTables.size(); ++place) {
            for (std::size_t at = 0; at < mFields[place].size(); ++at)
                call(mFields[place][at], mTables[place].mColumns[at]);
        }
    }

    void addBase(classPtr const& derived, classPtr const& base) {
        derived->addBaseClass(base);
        if (derived->isDerivedFrom(base)) return;
        mTarget.addProblem(named(derived) + L" is not derived from " + named(base) +
                           L": a base with that name but for letter case is there already");
    }

    databaseModel& mTarget;
    std::vector<table> const& mTables;
    std::vector<classPtr> mClasses; // in the order of the tables
    tableFields mFields;
};

} // namespace

void fillModel(databaseModel& target, std::vector<table> const& tables, bool inherit) {
    modelBuilder builder(target, tables);
    builder.build();
    if (inherit) builder.link(findInheritance(tables));
}

} // namespace zovModel
