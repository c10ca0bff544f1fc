#include "zovMdlClassInfo.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <unordered_set>

#include "base/allocation.h"
#include "base/counting.h"
#include "base/flags.h"
#include "base/lifeLine.h"
#include "base/names.h"
#include "base/scopeExit.h"
#include "base/sources.h"
#include "base/walk.h"
#include "data/classData.h"
#include "data/fieldData.h"
#include "data/relationData.h"
#include "parts/aliases.h"
#include "parts/baseSearch.h"
#include "parts/classFields.h"
#include "parts/knownAliases.h"
#include "parts/propertySearch.h"
#include "zovAssert.h"

namespace zov::metamodel {

namespace {

constexpr std::int32_t flagAbstract = 1;

std::atomic<bool> closing{false};

bool hasClass(relatedClasses const& table, refPtr<classInfo> const& wanted) {
    if (!wanted) return false;
    readSection const reading;
    classTable const* const classes = table.peek(reading);
    return classes && classes->contains(wanted->scName());
}

void addClass(relatedClasses& table, heldMutex const& held, refPtr<classInfo> const& added) {
    table.add(held, added->scName(), added);
}

bool walkClasses(relatedClasses const& table, bool stopOnFalse,
                 std::function<bool(classInfo::entry const&)> const& visit) {
    auto const classes = table.snapshot();
    return !classes || walk(*classes, stopOnFalse, [&](classTable::related const& one) { return visit(one.named); });
}

// "class.field" by the root's name, which an inheriting field's qualifiedName() lacks.
string qualified(fieldInfo const& field) {
    return field.classInfo()->scName().string() + L"." + field.scName().string();
}

refPtr<classInfo> const& classOf(refPtr<classInfo> const& target) {
    return target;
}
refPtr<classInfo> classOf(refPtr<fieldInfo> const& target) {
    return target ? target->classInfo() : nullptr;
}

// The mutexes of the two classes of a relation, which may be the same one.
class heldClasses {
public:
    heldClasses(classData& source, classData& target)
        : mSource(source.mMutex, std::defer_lock), mTarget(target.mMutex, std::defer_lock) {
        &source == &target ? mSource.lock() : std::lock(mSource, mTarget);
    }
    heldMutex const& source() const noexcept { return mSource; }
    heldMutex const& target() const noexcept { return mTarget.owns_lock() ? mTarget : mSource; }

private:
    heldMutex mSource;
    heldMutex mTarget;
};

// Makes room for a relation in both classes. Throws std::bad_alloc.
void reserveRelation(heldClasses const& held, classData& source, classData& target) {
    source.mToRelations.reserve(held.source(), 1);
    target.mFromRelations.reserve(held.target(), 1);
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
                  L"classInfo released: \"%s\"", label());
}

void classInfo::releaseInfo() {
    writeLifeLine({zovlog::eLogTrace, "zov::metamodel::classInfo::releaseInfo", sources::classInfo, __LINE__},
                  L"classInfo releaseInfo called: \"%s\"", label());
    heldMutex held(mData->mMutex);
    auto const fields = mData->mFieldInfos.clear(held);
    auto const bases = mData->mBaseClasses.clear(held);
    auto const derived = mData->mDerivedClasses.clear(held);
    held.unlock();
    waitForReaders();
}

void classInfo::tearDown() noexcept {
    heldMutex held(mData->mMutex);
    auto const fields = mData->mFieldInfos.clear(held);
    auto const bases = mData->mBaseClasses.clear(held);
    auto const derived = mData->mDerivedClasses.clear(held);
    auto const from = mData->mFromRelations.clear(held);
    auto const to = mData->mToRelations.clear(held);
    held.unlock();
    auto const detached = std::count_if(
        fields.begin(), fields.end(), [](fieldEntry const& listed) { return listed.field->detachOwner() != nullptr; });
    waitForReaders();
    for (auto left = detached; left > 0; --left)
        giveUpQuietly(this); // the references of the fields, to which this class was the owner
    for (arrivingEntry const& listed : from)
        listed.relation->clearOwnField();
    for (leavingEntry const& listed : to)
        listed.relation->clearOwnField();
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
    return mData->mLabel ? *mData->mLabel : scString().string();
}

void classInfo::setLabel(string const& label) {
    if (!label.empty() || mData->mLabel) mData->mLabel.made() = label;
}

bool classInfo::isAbstract() const {
    return (mData->mFlags & flagAbstract) != 0;
}

void classInfo::setAbstract(bool abstract) {
    setFlags(mData->mFlags, flagAbstract, abstract);
}

int classInfo::flags() const {
    return mData->mFlags;
}

void classInfo::addAliasname(string const& alias) {
    assertThat(!alias.empty(), L"alias.length()", sources::classInfo, __LINE__);
    scString const added = scString::createFrom(alias);
    rememberAlias(added);
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
    auto added = falseWithoutMemory([&]() -> refPtr<metamodel::fieldInfo> {
        refPtr<metamodel::fieldInfo> made(
            new metamodel::fieldInfo(this, nameByRule(name, caseSensitive), type, typeAttribs, customTypeString));
        newName const named = caseSensitive ? newName(made->scName()) : newName::inLowerCase(made->scName());
        heldMutex const held(mData->mMutex);
        if (addField(*mData, held, made, named, caseSensitive)) return nullptr;
        return made;
    });
    if (added) return added;
    return findCreated(name);
}

refPtr<fieldInfo> classInfo::createFieldInfo(refPtr<classInfo>& baseClass, string const& name) {
    return createFieldInfo(std::as_const(baseClass), name);
}

refPtr<fieldInfo> classInfo::createFieldInfo(refPtr<classInfo> const& baseClass, string const& name) {
    if (!isDerivedFrom(baseClass)) throw false;
    auto const baseField = baseClass->findField(name, true, false);
    if (!baseField) throw false;
    auto known = falseWithoutMemory([&]() -> refPtr<metamodel::fieldInfo> {
        refPtr<metamodel::fieldInfo> const added(new metamodel::fieldInfo(this, baseField));
        newName const inherited(added->scName());
        heldMutex const held(mData->mMutex);
        return addField(*mData, held, added, inherited, false);
    });
    if (known) return known;
    return findCreated(name);
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
    readSection const reading;
    return metamodel::findField(reading, *mData, name, searchBaseClasses, searchAliases);
}

bool classInfo::forEachFieldInfo(std::function<bool(refPtr<metamodel::fieldInfo>)> const& visit,
                                 bool stopOnFalse) const {
    return walk(mData->mFieldInfos.snapshot(), stopOnFalse,
                [&](fieldEntry const& listed) { return !listed.field || visit(listed.field); });
}

std::uint64_t classInfo::countFields() const {
    return mData->mFieldInfos.size();
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
        addField(*mData, held, copy, newName(copy->scName()), false);
        return findCreated(name);
    });
}

bool classInfo::copyInfosFrom(const_refPtr<classInfo>& from, wchar_t const* prefix) {
    return copyInfosFrom(std::as_const(from), prefix);
}

bool classInfo::copyInfosFrom(const_refPtr<classInfo> const& from, wchar_t const* prefix) {
    falseWithoutMemory([&] {
        heldMutex const held(mData->mMutex);
        std::vector<refPtr<metamodel::fieldInfo>> copies;
        std::unordered_set<std::wstring> names; // of the copies, in lower case
        auto const copyOne = [&](refPtr<metamodel::fieldInfo> const& field) {
            auto const copy = field->copyFor(this, prefixed(prefix, field->scName()));
            bool const isFree = !isTaken(*mData, held, copy->scName());
            if (isFree && names.insert(copy->scName().string().lower()).second) copies.push_back(copy);
            return true;
        };
        from->forEachFieldInfo(copyOne, false);
        addFields(*mData, held, copies);
    });
    return true;
}

// ---- identity

std::vector<refPtr<fieldInfo>> classInfo::identifyingFields() const {
    std::vector<refPtr<metamodel::fieldInfo>> identifying;
    auto const fields = mData->mFieldInfos.snapshot();
    for (fieldEntry const& listed : fields) {
        if (listed.field->semantic() == eSemPrimkey) identifying.push_back(listed.field);
    }
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
        if (auto known = mData->mIdInfo.get()) return known;
        auto made = collectedIdInfo();
        if (!made) continue;
        referencePtrLocker const guard;
        if (generation == mData->mIdGeneration && mData->mIdInfo.setIfEmpty(made)) return made;
    }
}

// KEEP ID-08: a class without identifying fields is refused here, at every call anew. An empty pointer when a tear-down
// has taken the class from some of the fields, but not yet from all of them: there are no fields any more then.
refPtr<idInfo> classInfo::collectedIdInfo() const {
    auto const fields = identifyingFields();
    try {
        return refPtr<metamodel::idInfo>(new metamodel::idInfo(fields));
    } catch (bool) {
        if (fields.empty() || countFields() != 0) throw;
        return nullptr;
    }
}

void classInfo::onSemanticChanged(refPtr<metamodel::fieldInfo> field) {
    // KEEP ID-11: a field that ceases to be identifying changes nothing here, and stays in the set.
    if (field->semantic() != eSemPrimkey) return;
    ++mData->mIdGeneration;
    mData->mIdInfo.clear();
}

// A set that was collected while the field was no key goes; one that has the field stays the same.
void classInfo::onKeyRestored(metamodel::fieldInfo const& field) noexcept {
    {
        referencePtrLocker const guard; // whoever keeps a set has compared generations under it
        ++mData->mIdGeneration;
    }
    auto const known = mData->mIdInfo.get();
    auto const isIt = [&field](refPtr<metamodel::fieldInfo> const& each) { return each.get() == &field; };
    if (known && std::none_of(known->mFields.begin(), known->mFields.end(), isIt)) mData->mIdInfo.clear();
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
    return walkClasses(mData->mBaseClasses, stopOnFalse, visit);
}

bool classInfo::forEachDerivedClass(std::function<bool(entry const&)> const& visit, bool stopOnFalse) const {
    return walkClasses(mData->mDerivedClasses, stopOnFalse, visit);
}

bool classInfo::isBaseOf(const_refPtr<classInfo>& other) const {
    return isBaseOf(std::as_const(other));
}

bool classInfo::isBaseOf(const_refPtr<classInfo> const& other) const {
    readSection const reading;
    classTable const* const derived = mData->mDerivedClasses.peek(reading);
    return derived && std::any_of(derived->begin(), derived->end(), [&](classTable::related const& one) {
               return one.named.second && one.named.second == other;
           });
}

bool classInfo::isDerivedFrom(const_refPtr<classInfo> const& other) const {
    readSection const reading;
    return other && baseSearch(withinSection{reading}).any(*mData, [&](classData const* base) {
        return base == &classData::of(*other);
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
    // What further pairs lead to is in no index.
    if (fromField->mData->mHasFurtherPairs) {
        for (leavingEntry const& listed : mData->mToRelations.snapshot()) {
            auto const* const relation = listed.relation;
            bool const same = relation->fromClassInfo() == fromField->classInfo() &&
                              relation->toClassInfo() == toField->classInfo() &&
                              relation->toFieldInfo(fromField) == toField;
            if (same) return listed.relation;
        }
        return nullptr;
    }
    readSection const reading;
    auto const isIt = [&](leavingEntry const& listed) {
        return listed.from == fromField.get() && listed.to == toField.get();
    };
    auto const* const found =
        mData->mToRelations.find(reading, leavingEntry::keyOf(fromField.get(), toField.get()), isIt);
    return found ? found->relation : nullptr;
}

// Making the relation gives the from field its semantic, so there is room for it by then. When another thread has taken
// that room, and there is no memory for more, the former semantic comes back.
template <class Target>
refPtr<relationInfo> classInfo::createAndFile(refPtr<metamodel::fieldInfo> const& fromField, Target const& target,
                                              eRelationType type, string const& name, string const& reverseName) {
    if (auto to = classOf(target)) reserveRelation(heldClasses(*mData, *to->mData), *mData, *to->mData);
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
    auto const from = made->firstFromFieldInfo();
    auto const to = made->toFieldInfo(from);
    heldClasses const held(*mData, *target->mData);
    reserveRelation(held, *mData, *target->mData);
    mData->mToRelations.append(held.source(), {made.get(), from.get(), to.get()});
    target->mData->mFromRelations.append(held.target(), {made.get()});
}

bool classInfo::forEachToRelation(std::function<bool(refPtr<relationInfo>)> const& visit, bool stopOnFalse) const {
    return walk(mData->mToRelations.snapshot(), stopOnFalse,
                [&](leavingEntry const& listed) { return !listed.relation || visit(listed.relation); });
}

bool classInfo::forEachFromRelation(std::function<bool(refPtr<relationInfo>)> const& visit, bool stopOnFalse) const {
    return walk(mData->mFromRelations.snapshot(), stopOnFalse,
                [&](arrivingEntry const& listed) { return !listed.relation || visit(listed.relation); });
}

const_refPtr<relationInfo> classInfo::toRelation(string const& name, bool searchBaseClasses) const {
    auto const key = knownName(name, true);
    if (!key) return nullptr;
    readSection const reading;
    relationInfo const* found = nullptr;
    auto const isIn = [&](classData const& owner) {
        for (leavingEntry const& listed : owner.mToRelations.peek(reading)) {
            if (!listed.relation || listed.relation->scName() != *key) continue;
            found = listed.relation;
            return true;
        }
        return false;
    };
    if (!isIn(*mData) && searchBaseClasses) {
        baseSearch(withinSection{reading}).any(*mData, [&](classData const* base) { return isIn(checked(base)); });
    }
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
    return baseSearch(bySnapshots()).any(*mData, [&](classData const* base) {
        return readProperty(checked(base).mUserProperties.mInheritable, key, out);
    });
}

bool classInfo::forEachUserProperty(bool inheritable,
                                    std::function<bool(scString const&, genericValue const&)> const& visit,
                                    bool stopOnFalse) const {
    return mData->mUserProperties.chosen(inheritable).forEach(visit, stopOnFalse);
}

} // namespace zov::metamodel
