#include "zovMdlClassInfo.h"

#include <algorithm>
#include <iterator>

#include "base/allocation.h"
#include "base/flags.h"
#include "base/lifeLine.h"
#include "base/nameKey.h"
#include "base/scopeExit.h"
#include "base/sources.h"
#include "data/classData.h"
#include "data/fieldData.h"
#include "data/relationData.h"
#include "parts/aliases.h"
#include "zovAssert.h"

namespace zov::metamodel {

namespace {

constexpr std::int32_t flagAbstract = 1;

std::atomic<bool> closing{false};

// Whether two fields of one class may not stand side by side.
bool isSameName(scString left, scString right, bool caseSensitive) {
    if (left == right) return true;
    if (caseSensitive || left.string().size() != right.string().size()) return false;
    return left.string().lower() == right.string().lower();
}

// The field of the list that takes this name, or null.
refPtr<fieldInfo> fieldOfName(fieldList const& fields, scString name, bool caseSensitive) {
    auto const found = std::find_if(fields.begin(), fields.end(), [&](refPtr<fieldInfo> const& field) {
        return isSameName(field->scName(), name, caseSensitive);
    });
    return found == fields.end() ? nullptr : *found;
}

refPtr<fieldInfo> fieldOfName(cowSlot<fieldList> const& fields, scString name, bool caseSensitive) {
    auto const list = fields.snapshot();
    return list ? fieldOfName(*list, name, caseSensitive) : nullptr;
}

bool hasClass(cowSlot<classTable> const& table, refPtr<classInfo> const& wanted) {
    auto const classes = table.snapshot();
    return wanted && classes && classes->contains(wanted->scName());
}

void addClass(cowSlot<classTable>& table, heldMutex const& held, refPtr<classInfo> const& added) {
    table.publish(held, [&](classTable& classes) { classes.emplace(added->scName(), added); });
}

template <class Container, class Action>
void forEachIn(sharedPtr<Container const> const& snapshot, Action const& action) {
    walk(snapshot, false, [&](auto const& element) {
        action(element);
        return true;
    });
}

// "class.field" by the root's name, which an inheriting field's qualifiedName() lacks.
string qualified(fieldInfo const& field) {
    return field.classInfo()->scName().string() + L"." + field.scName().string();
}

string prefixed(wchar_t const* prefix, scString name) {
    return string(prefix ? prefix : L"") + name.string();
}

} // namespace

// ---- life

refPtr<classInfo> classInfo::createClassInfo(string const& name) {
    return emptyWithoutMemory([&] { return refPtr<classInfo>(new classInfo(name, false)); });
}

// KEEP CC-02: the key is lower case whatever the rule, which only lookups and the names of fields follow.
classInfo::classInfo(string const& name, bool caseSensitiveNames)
    : mData(new classData(scString::createFrom(name.lower()), caseSensitiveNames)) {
    writeLifeLine({zovlog::eLogTrace, "zov::metamodel::classInfo::classInfo", sources::classInfo, __LINE__},
                  L"classInfo created: \"%s\"", name);
}

classInfo::~classInfo() = default;

void classInfo::destroy() {
    scopeExit const freed([this] { delete this; });
    writeLifeLine({zovlog::eLogTrace, "zov::metamodel::classInfo::~classInfo", sources::classInfo, __LINE__},
                  L"classInfo released: \"%s\"", mData->mLabel);
}

std::uint32_t classInfo::refCount() const {
    return currentCount();
}
std::uint32_t classInfo::addRef() {
    return refObj::addRef();
}
std::uint32_t classInfo::release() {
    return refObj::release();
}

void classInfo::releaseInfo() {
    writeLifeLine({zovlog::eLogTrace, "zov::metamodel::classInfo::releaseInfo", sources::classInfo, __LINE__},
                  L"classInfo releaseInfo called: \"%s\"", mData->mLabel);
    heldMutex held(mData->mMutex);
    auto const fields = mData->mFieldInfos.clear(held);
    auto const bases = mData->mBaseClasses.clear(held);
    auto const derived = mData->mDerivedClasses.clear(held);
    held.unlock();
}

void classInfo::tearDown() noexcept {
    heldMutex held(mData->mMutex);
    auto const fields = mData->mFieldInfos.clear(held);
    auto const bases = mData->mBaseClasses.clear(held);
    auto const derived = mData->mDerivedClasses.clear(held);
    auto const from = mData->mFromRelations.clear(held);
    auto const to = mData->mToRelations.clear(held);
    held.unlock();
    forEachIn(fields, [](refPtr<metamodel::fieldInfo> const& field) { field->clearOwner(); });
    forEachIn(from, [](refPtr<relationInfo> const& relation) { relation->clearOwnField(); });
    forEachIn(to, [](refPtr<relationInfo> const& relation) { relation->clearOwnField(); });
}

void classInfo::setIsClosing(bool isNow) noexcept {
    closing = isNow;
}
bool classInfo::isClosing() noexcept {
    return closing;
}

// ---- names and flags

scString const& classInfo::scName() const {
    return mData->mName;
}

string const& classInfo::label() const {
    return mData->mLabel;
}

void classInfo::setLabel(string const& label) {
    mData->mLabel = label;
}

bool classInfo::isAbstract() const {
    return (mData->mFlags & flagAbstract) != 0;
}

void classInfo::setAbstract(bool abstract) {
    setFlag(mData->mFlags, flagAbstract, abstract);
}

int classInfo::flags() const {
    return mData->mFlags;
}

void classInfo::addAliasname(string const& alias) {
    assertThat(!alias.empty(), L"alias.length()", sources::classInfo, __LINE__);
    scString const added = scString::createFrom(alias);
    auto* list = findAliases<aliasList>(mData->mProperties);
    if (!list) {
        mData->mProperties.setValue(aliasKey, aliasList(), false);
        list = findAliases<aliasList>(mData->mProperties);
        assertThat(list != nullptr, L"pAliasNames", sources::classInfo, __LINE__);
    }
    list->reserve(list->size() + 1); // nothing is lost when memory is gone
    removeAlias(*list, alias);
    list->push_back(added);
}

void classInfo::removeAliasname(string const& alias) {
    assertThat(!alias.empty(), L"alias.length()", sources::classInfo, __LINE__);
    if (auto* const list = findAliases<aliasList>(mData->mProperties)) removeAlias(*list, alias);
}

bool classInfo::hasAliasname(scString const& alias) const {
    auto const* const list = findAliases<aliasList>(mData->mProperties);
    return list && hasAlias(*list, alias);
}

void classInfo::getAliasnames(std::vector<string>& out) const {
    if (auto const* const list = findAliases<aliasList>(mData->mProperties)) appendAliases(*list, out);
}

// ---- fields

refPtr<fieldInfo> classInfo::createFieldInfo(string const& name, eFieldType type, genericSet const& typeAttribs,
                                             string const& customTypeString) {
    if (auto known = findField(name, true, false)) return known;
    bool const caseSensitive = mData->mCaseSensitiveNames;
    falseWithoutMemory([&] {
        refPtr<metamodel::fieldInfo> const added(
            new metamodel::fieldInfo(this, nameByRule(name, caseSensitive), type, typeAttribs, customTypeString));
        heldMutex const held(mData->mMutex);
        if (fieldOfName(mData->mFieldInfos, added->scName(), caseSensitive)) return;
        mData->mFieldInfos.publish(held, [&](fieldList& fields) { fields.push_back(added); });
    });
    return findCreated(name);
}

refPtr<fieldInfo> classInfo::createFieldInfo(refPtr<classInfo>& baseClass, string const& name) {
    return createFieldInfo(std::as_const(baseClass), name);
}

refPtr<fieldInfo> classInfo::createFieldInfo(refPtr<classInfo> const& baseClass, string const& name) {
    if (!isDerivedFrom(baseClass)) throw false;
    auto const baseField = baseClass->findField(name, true, false);
    if (!baseField) throw false;
    auto const known = falseWithoutMemory([&]() -> refPtr<metamodel::fieldInfo> {
        refPtr<metamodel::fieldInfo> const added(new metamodel::fieldInfo(this, baseField));
        heldMutex const held(mData->mMutex);
        if (auto same = fieldOfName(mData->mFieldInfos, added->scName(), false)) return same;
        mData->mFieldInfos.publish(held, [&](fieldList& fields) { fields.push_back(added); });
        return nullptr;
    });
    return known ? known : findCreated(name);
}

// What a creating call returns in the end: the field as lookups find it.
refPtr<fieldInfo> classInfo::findCreated(std::wstring_view name) const {
    auto found = findField(name, true, false);
    if (!found) throw false;
    return found;
}

refPtr<fieldInfo> classInfo::fieldInfo(string const& name, bool searchBaseClasses, bool searchAliases) {
    return findField(name, searchBaseClasses, searchAliases);
}

const_refPtr<fieldInfo> classInfo::fieldInfo(string const& name, bool searchBaseClasses, bool searchAliases) const {
    return findField(name, searchBaseClasses, searchAliases);
}

// KEEP CF-06: searchAliases finds no field by an alias, since fields answer that they have none.
refPtr<fieldInfo> classInfo::findField(std::wstring_view name, bool searchBaseClasses, bool searchAliases) const {
    refPtr<metamodel::fieldInfo> found;
    if (auto const key = lookupKey(name, mData->mCaseSensitiveNames)) {
        walk(mData->mFieldInfos.snapshot(), true, [&](refPtr<metamodel::fieldInfo> const& field) {
            if (field->scName() == *key) found = field;
            return !found;
        });
    }
    if (found || !searchBaseClasses) return found;
    walk(mData->mBaseClasses.snapshot(), true, [&](entry const& base) {
        // KEEP CF-07: the flags change places on the way up, so that the bases' own bases are searched only when
        // aliases were asked for.
        found = base.second->findField(name, searchAliases, true);
        return !found;
    });
    return found;
}

bool classInfo::forEachFieldInfo(std::function<bool(refPtr<metamodel::fieldInfo>)> const& visit,
                                 bool stopOnFalse) const {
    return walk(mData->mFieldInfos.snapshot(), stopOnFalse,
                [&](refPtr<metamodel::fieldInfo> const& field) { return !field || visit(field); });
}

std::uint64_t classInfo::countFields() const {
    auto const fields = mData->mFieldInfos.snapshot();
    return fields ? fields->size() : 0;
}

refPtr<fieldInfo> classInfo::copyFieldInfoFrom(const_refPtr<metamodel::fieldInfo>& from, wchar_t const* prefix) {
    return copyFieldInfoFrom(std::as_const(from), prefix);
}

refPtr<fieldInfo> classInfo::copyFieldInfoFrom(const_refPtr<metamodel::fieldInfo> const& from, wchar_t const* prefix) {
    return falseWithoutMemory([&] {
        heldMutex const held(mData->mMutex);
        // KEEP CF-21: the prefix is taken as it is given, also where lookups fold what they are asked for.
        string const name = prefixed(prefix, from->scName());
        auto const copy = from->copyFor(this, name);
        if (!fieldOfName(mData->mFieldInfos, copy->scName(), false)) {
            mData->mFieldInfos.publish(held, [&](fieldList& fields) { fields.push_back(copy); });
        }
        return findCreated(name);
    });
}

bool classInfo::copyInfosFrom(const_refPtr<classInfo>& from, wchar_t const* prefix) {
    return copyInfosFrom(std::as_const(from), prefix);
}

bool classInfo::copyInfosFrom(const_refPtr<classInfo> const& from, wchar_t const* prefix) {
    falseWithoutMemory([&] {
        heldMutex const held(mData->mMutex);
        mData->mFieldInfos.publish(held, [&](fieldList& fields) {
            auto const copyOne = [&](refPtr<metamodel::fieldInfo> const& field) {
                auto const copy = field->copyFor(this, prefixed(prefix, field->scName()));
                if (!fieldOfName(fields, copy->scName(), false)) fields.push_back(copy);
                return true;
            };
            from->forEachFieldInfo(copyOne, false);
        });
    });
    return true;
}

// ---- identity

std::vector<refPtr<fieldInfo>> classInfo::identifyingFields() const {
    std::vector<refPtr<metamodel::fieldInfo>> identifying;
    walk(mData->mFieldInfos.snapshot(), false, [&](refPtr<metamodel::fieldInfo> const& field) {
        if (field->semantic() == eSemPrimkey) identifying.push_back(field);
        return true;
    });
    return identifying;
}

void classInfo::getIdFieldInfos(std::vector<refPtr<metamodel::fieldInfo>>& out) const {
    auto found = identifyingFields();
    out.reserve(out.size() + found.size());
    std::move(found.begin(), found.end(), std::back_inserter(out));
}

// What was collected is kept only if no field became identifying meanwhile; otherwise it is collected again.
refPtr<idInfo> classInfo::idInfo() const {
    for (;;) {
        auto const generation = mData->mIdGeneration.load();
        {
            referencePtrLocker const guard;
            if (mData->mIdInfo) return mData->mIdInfo;
        }
        // KEEP ID-08: a class without identifying fields is refused here, at every call anew.
        refPtr<metamodel::idInfo> const made(new metamodel::idInfo(identifyingFields()));
        referencePtrLocker const guard;
        if (generation == mData->mIdGeneration && !mData->mIdInfo) return mData->mIdInfo = made;
    }
}

void classInfo::onSemanticChanged(refPtr<metamodel::fieldInfo> field) {
    // KEEP ID-11: a field that ceases to be identifying changes nothing here, and stays in the set.
    if (field->semantic() != eSemPrimkey) return;
    refPtr<metamodel::idInfo> former;
    referencePtrLocker const guard;
    ++mData->mIdGeneration;
    former = std::move(mData->mIdInfo);
}

// ---- inheritance

bool classInfo::hasBaseClass(refPtr<classInfo> const& base) const {
    return hasClass(mData->mBaseClasses, base);
}

bool classInfo::hasDerivedClass(refPtr<classInfo> const& derived) const {
    return hasClass(mData->mDerivedClasses, derived);
}

void classInfo::addBaseClass(refPtr<classInfo> base) {
    if (!base) return;
    if (!hasBaseClass(base)) addClass(mData->mBaseClasses, heldMutex(mData->mMutex), base);
    base->addDerivedClass(this);
}

void classInfo::addDerivedClass(refPtr<classInfo> derived) {
    // KEEP CI-05: a derived class is entered only where it is entered already, so that the table stays empty.
    if (hasDerivedClass(derived)) addClass(mData->mDerivedClasses, heldMutex(mData->mMutex), derived);
}

bool classInfo::forEachBaseClass(std::function<bool(entry const&)> const& visit, bool stopOnFalse) const {
    return walk(mData->mBaseClasses.snapshot(), stopOnFalse, visit);
}

bool classInfo::forEachDerivedClass(std::function<bool(entry const&)> const& visit, bool stopOnFalse) const {
    return walk(mData->mDerivedClasses.snapshot(), stopOnFalse, visit);
}

bool classInfo::isBaseOf(const_refPtr<classInfo>& other) const {
    return isBaseOf(std::as_const(other));
}

bool classInfo::isBaseOf(const_refPtr<classInfo> const& other) const {
    return !walk(mData->mDerivedClasses.snapshot(), true,
                 [&](entry const& derived) { return !derived.second || derived.second != other; });
}

bool classInfo::isDerivedFrom(const_refPtr<classInfo> const& other) const {
    return !walk(mData->mBaseClasses.snapshot(), true, [&](entry const& base) {
        return !base.second || (base.second != other && !base.second->isDerivedFrom(other));
    });
}

// ---- relations

refPtr<relationInfo> classInfo::createRelation(string const& fromFieldName, bool searchBaseClasses,
                                               refPtr<classInfo> toClass, eRelationType type, string const& name,
                                               string const& reverseName) {
    auto const fromField = findField(fromFieldName, searchBaseClasses, false);
    assertThat(bool(fromField), L"pFromFld", sources::classInfo, 688);
    assertThat(fromField->type() != 0, L"pFromFld->type()", sources::classInfo, 689);
    // KEEP CR-03: no test for a relation that is there already; to a class, every call makes a further one.
    return emptyWithoutMemory([&] {
        string const& seenFrom = name.empty() ? fromField->scName().string() : name;
        string const seenBack = reverseName.empty() ? fromField->classInfo()->scName().string() : reverseName;
        return createAndFile(fromField, toClass, type, seenFrom, seenBack);
    });
}

refPtr<relationInfo> classInfo::createRelation(string const& fromFieldName, bool searchBaseClasses,
                                               refPtr<metamodel::fieldInfo> toField, eRelationType type,
                                               string const& name, string const& reverseName) {
    auto const fromField = findField(fromFieldName, searchBaseClasses, false);
    assertThat(bool(fromField), L"pFromFld", sources::classInfo, 653);
    if (auto known = toField ? relationBetween(fromField, toField) : nullptr) return known;
    return emptyWithoutMemory([&] {
        string const& seenFrom = name.empty() ? fromField->scName().string() : name;
        string const seenBack = reverseName.empty() ? qualified(*fromField) : reverseName;
        return createAndFile(fromField, toField, type, seenFrom, seenBack);
    });
}

// The relation that leaves this class and leads from the one field to the other, or null.
refPtr<relationInfo> classInfo::relationBetween(refPtr<metamodel::fieldInfo> const& fromField,
                                                refPtr<metamodel::fieldInfo> const& toField) const {
    refPtr<relationInfo> found;
    walk(mData->mToRelations.snapshot(), true, [&](refPtr<relationInfo> const& relation) {
        bool const same = relation->fromClassInfo() == fromField->classInfo() &&
                          relation->toClassInfo() == toField->classInfo() &&
                          relation->toFieldInfo(fromField) == toField;
        if (same) found = relation;
        return !same;
    });
    return found;
}

// Making the relation gives the from field its semantic; when it cannot be filed after that, the former one comes back.
template <class Target>
refPtr<relationInfo> classInfo::createAndFile(refPtr<metamodel::fieldInfo> const& fromField, Target const& target,
                                              eRelationType type, string const& name, string const& reverseName) {
    auto former = fromField->semanticNow();
    refPtr<relationInfo> made(new relationInfo(fromField, target, type, name, reverseName));
    scopeExit restored([&] { fromField->restoreSemantic(std::move(former)); });
    fileRelation(made);
    restored.callOff();
    return made;
}

// Files the relation with this class and with its target: with both or with neither.
void classInfo::fileRelation(refPtr<relationInfo> const& made) {
    auto const target = made->targetClass();
    auto const append = [&](relationList& relations) { relations.push_back(made); };
    cowSlot<relationList>::snapshotPtr leaving;
    cowSlot<relationList>::snapshotPtr arriving;
    bool const isOwnTarget = target == this;
    heldMutex own(mData->mMutex, std::defer_lock);
    heldMutex other(target->mData->mMutex, std::defer_lock);
    isOwnTarget ? own.lock() : std::lock(own, other);
    leaving = mData->mToRelations.prepare(own, append);
    arriving = target->mData->mFromRelations.prepare(isOwnTarget ? own : other, append);
    mData->mToRelations.publishPrepared(own, leaving);
    target->mData->mFromRelations.publishPrepared(isOwnTarget ? own : other, arriving);
}

bool classInfo::forEachToRelation(std::function<bool(refPtr<relationInfo>)> const& visit, bool stopOnFalse) const {
    return walk(mData->mToRelations.snapshot(), stopOnFalse,
                [&](refPtr<relationInfo> const& relation) { return !relation || visit(relation); });
}

bool classInfo::forEachFromRelation(std::function<bool(refPtr<relationInfo>)> const& visit, bool stopOnFalse) const {
    return walk(mData->mFromRelations.snapshot(), stopOnFalse,
                [&](refPtr<relationInfo> const& relation) { return !relation || visit(relation); });
}

const_refPtr<relationInfo> classInfo::toRelation(string const& name, bool searchBaseClasses) const {
    auto const key = lookupKey(name, true);
    return key ? findRelation(*key, searchBaseClasses) : nullptr;
}

const_refPtr<relationInfo> classInfo::findRelation(scString name, bool searchBaseClasses) const {
    const_refPtr<relationInfo> found;
    walk(mData->mToRelations.snapshot(), true, [&](refPtr<relationInfo> const& relation) {
        if (relation && relation->scName() == name) found = relation;
        return !found;
    });
    if (found || !searchBaseClasses) return found;
    walk(mData->mBaseClasses.snapshot(), true, [&](entry const& base) {
        found = base.second->findRelation(name, true);
        return !found;
    });
    return found;
}

// KEEP CR-12: reserved; nothing is copied.
refPtr<relationInfo> classInfo::copyRelationFrom(const_refPtr<relationInfo>&) {
    return nullptr;
}
refPtr<relationInfo> classInfo::copyRelationFrom(const_refPtr<relationInfo> const&) {
    return nullptr;
}

// ---- user properties

void classInfo::setUserProperty(string const& name, string const& value, bool inheritable) {
    setUserProperty(name, genericValue(value), inheritable);
}

void classInfo::setUserProperty(string const& name, refPtr<refObj> const& value, bool inheritable) {
    setUserProperty(name, genericValue(value), inheritable);
}

void classInfo::setUserProperty(string const& name, genericValue const& value, bool inheritable) {
    mData->mUserProperties.chosen(inheritable).setGenericValue(scString::createFrom(name), value, true);
}

bool classInfo::getUserProperty(string const& name, string& value, bool searchInherited) const {
    return findProperty(mData->mUserProperties, classReading, name, value, searchInherited,
                        [&](scString key) { return findInherited(key, value); });
}

bool classInfo::getUserProperty(string const& name, refPtr<refObj>& value, bool searchInherited) {
    return findProperty(mData->mUserProperties, classReading, name, value, searchInherited,
                        [&](scString key) { return findInherited(key, value); });
}

bool classInfo::getUserProperty(string const& name, const_refPtr<refObj>& value, bool searchInherited) const {
    return findProperty(mData->mUserProperties, classReading, name, value, searchInherited,
                        [&](scString key) { return findInherited(key, value); });
}

bool classInfo::getUserProperty(string const& name, genericValue& value, bool searchInherited) const {
    return findProperty(mData->mUserProperties, classReading, name, value, searchInherited,
                        [&](scString key) { return findInherited(key, value); });
}

// Through the bases, depth first in key order; their private values are not seen.
template <class T>
bool classInfo::findInherited(scString key, T& out) const {
    return !walk(mData->mBaseClasses.snapshot(), true, [&](entry const& base) {
        return !readProperty(base.second->mData->mUserProperties.mInheritable, key, out) &&
               !base.second->findInherited(key, out);
    });
}

bool classInfo::forEachUserProperty(bool inheritable,
                                    std::function<bool(scString const&, genericValue const&)> const& visit,
                                    bool stopOnFalse) const {
    return mData->mUserProperties.chosen(inheritable).forEach(visit, stopOnFalse);
}

} // namespace zov::metamodel
