#include "databaseModel.h"

#include <algorithm>
#include <new>
#include <tuple>

#include <zovMdlFieldSemantics.h>
#include <zovMdlIdInfo.h>

#include "displayText.h"

namespace zovModel {

using zov::string;
using zov::metamodel::classInfo;
using zov::metamodel::modelInfo;

namespace {

void sortByName(std::vector<databaseModel::classPtr>& classes) {
    std::sort(classes.begin(), classes.end(), [](auto const& left, auto const& right) {
        return std::tie(left->scName().string(), left->label()) < std::tie(right->scName().string(), right->label());
    });
}

// A visit that collects what is visited.
template <class Pointer>
auto addingTo(std::vector<Pointer>& all) {
    return [&all](Pointer const& each) {
        all.push_back(each);
        return true;
    };
}

databaseModel::classPtr createClass(string const& name) {
    databaseModel::classPtr created = classInfo::createClassInfo(name);
    if (!created) throw std::bad_alloc();
    return created;
}

} // namespace

databaseModel::databaseModel() : mModel(modelInfo::createModelInfo(false)) {
    if (!mModel) throw std::bad_alloc();
}

databaseModel::~databaseModel() {
    mModel->tearDown();
    for (classPtr const& apart : mClassesApart)
        apart->tearDown();
    for (auto const& [owner, place] : mPlacesApart)
        place->tearDown();
}

databaseModel::classPtr databaseModel::createClassApart(string const& name) {
    return mClassesApart.emplace_back(createClass(name));
}

databaseModel::classPtr databaseModel::createPlaceApart(classPtr const& owner, string const& name) {
    classPtr place = mPlacesApart.emplace_back(owner, createClass(name)).second;
    place->setLabel(owner->label());
    return place;
}

void databaseModel::addProblem(string const& problem) {
    mProblems.push_back(problem);
}

void databaseModel::addWarning(string const& warning) {
    mWarnings.push_back(warning);
}

std::vector<databaseModel::classPtr> databaseModel::classes() const {
    std::vector<classPtr> all = mClassesApart;
    auto const add = [&all](classInfo::entry const& entry) {
        all.push_back(entry.second);
        return true;
    };
    mModel->forEachClassInfo(add, true);
    sortByName(all);
    return all;
}

bool databaseModel::isApart(classPtr const& candidate) const {
    return std::find(mClassesApart.begin(), mClassesApart.end(), candidate) != mClassesApart.end();
}

std::vector<databaseModel::classPtr> databaseModel::namesakes(classPtr const& named) const {
    std::vector<classPtr> found;
    for (classPtr const& apart : mClassesApart) {
        if (apart != named && apart->scName() == named->scName()) found.push_back(apart);
    }
    sortByName(found);
    return found;
}

std::vector<databaseModel::classPtr> databaseModel::classesNamed(string const& name) const {
    classPtr const first = mModel->classInfo(name, true);
    if (!first) return {};
    std::vector<classPtr> found = namesakes(first);
    found.insert(found.begin(), first);
    return found;
}

std::vector<databaseModel::fieldPtr> databaseModel::ownFields(classPtr const& owner) {
    std::vector<fieldPtr> own;
    owner->forEachFieldInfo(addingTo(own), true);
    return own;
}

std::vector<databaseModel::fieldPtr> databaseModel::fieldsApart(classPtr const& owner) const {
    std::vector<fieldPtr> found;
    for (classPtr const& place : withPlaces(owner)) {
        if (place != owner) place->forEachFieldInfo(addingTo(found), true);
    }
    return found;
}

std::vector<databaseModel::fieldPtr> databaseModel::fields(classPtr const& owner) const {
    std::vector<fieldPtr> all = ownFields(owner);
    for (fieldPtr const& field : fieldsApart(owner))
        all.push_back(field);
    return all;
}

std::vector<string> databaseModel::idFieldNames(classPtr const& owner) const {
    std::vector<string> names;
    auto const add = [&names](fieldPtr const& field) {
        names.push_back(field->scName().string());
        return true;
    };
    std::vector<fieldPtr> identifying;
    owner->getIdFieldInfos(identifying);
    if (!identifying.empty()) owner->idInfo()->forEachFieldInfo(add, true); // without any, idInfo() is refused
    for (fieldPtr const& field : fieldsApart(owner)) {
        if (field->semantic() == zov::metamodel::eSemPrimkey) add(field);
    }
    return names;
}

std::vector<databaseModel::classPtr> databaseModel::baseClasses(classPtr const& derived) {
    std::vector<classPtr> bases;
    auto const add = [&bases](classInfo::entry const& entry) {
        bases.push_back(entry.second);
        return true;
    };
    derived->forEachBaseClass(add, true);
    sortByName(bases);
    return bases;
}

std::vector<databaseModel::classPtr> databaseModel::withPlaces(classPtr const& owner) const {
    std::vector<classPtr> all{owner};
    for (auto const& [tableClass, place] : mPlacesApart) {
        if (tableClass == owner) all.push_back(place);
    }
    return all;
}

std::vector<databaseModel::relationPtr> databaseModel::relationsFrom(classPtr const& owner) const {
    std::vector<relationPtr> relations;
    for (classPtr const& each : withPlaces(owner))
        each->forEachToRelation(addingTo(relations), true);
    return relations;
}

std::vector<databaseModel::relationPtr> databaseModel::relationsTo(classPtr const& owner) const {
    std::vector<relationPtr> relations;
    for (classPtr const& each : withPlaces(owner))
        each->forEachFromRelation(addingTo(relations), true);
    return relations;
}

string nameAndLabel(classInfo const& subject) {
    return printable(subject.scName().string()) + L" " + quoted(subject.label());
}

bool isOutOfReach(classInfo const& owner) {
    return owner.scName().string().find(L'.') != string::npos;
}

} // namespace zovModel
