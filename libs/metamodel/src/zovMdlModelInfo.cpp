#include "zovMdlModelInfo.h"

#include "base/allocation.h"
#include "base/lifeLine.h"
#include "base/names.h"
#include "base/scopeExit.h"
#include "base/sources.h"
#include "data/modelRegistry.h"
#include "parts/classFields.h"
#include "parts/knownAliases.h"
#include "zovMdlFieldInfo.h"

namespace zov::metamodel {

namespace {

constexpr wchar_t const* caseRuleKey = L"caseSensitiveNames";

// The rule that a text states; a text that is no bool states that letter case does not matter.
bool readCaseRule(string const& text) {
    bool caseSensitive = false;
    genericValue(text).getValue(caseSensitive);
    return caseSensitive;
}

// For a name that has just been found to be no class's: the first class in the order of the walk that has it as an
// alias. A class of that name may have come since, and goes before any alias.
refPtr<classInfo> findByAlias(classMap const& classes, std::wstring_view name, bool caseSensitive) {
    nameKey const key(name, caseSensitive);
    if (!wasEverAlias(key)) return nullptr;
    auto const now = classes.snapshot(); // one state of the model for both questions
    if (classEntry const* const named = now.find(key)) return named->object;
    auto const alias = knownName(name, caseSensitive);
    classInfo* found = nullptr;
    now.any([&](classEntry const& entry) {
        if (entry.object->hasAliasname(*alias)) found = entry.object;
        return found != nullptr;
    });
    return found;
}

} // namespace

// ---- life

refPtr<modelInfo> modelInfo::createModelInfo(bool caseSensitiveNames) {
    return emptyWithoutMemory([&] { return refPtr<modelInfo>(new modelInfo(caseSensitiveNames)); });
}

modelInfo::modelInfo(bool caseSensitiveNames) : mRegistry(new modelRegistry) {
    writeLifeLine({zovlog::eLogTrace, "zov::metamodel::modelInfo::modelInfo", sources::modelInfo, __LINE__},
                  L"modelInfo created");
    mProperties.setValue(caseRuleKey, caseSensitiveNames, false);
    mRegistry->mCaseSensitiveNames = caseSensitiveNames;
}

modelInfo::~modelInfo() = default;

void modelInfo::destroy() {
    scopeExit const freed([this] { delete this; });
    writeLifeLine({zovlog::eLogTrace, "zov::metamodel::modelInfo::~modelInfo", sources::modelInfo, __LINE__},
                  L"modelInfo released");
}

void modelInfo::tearDown() noexcept {
    auto const classes = mRegistry->mClasses.clear(heldMutex(mRegistry->mMutex));
    waitForReaders();
    classes.any([](classEntry const& entry) {
        entry.object->tearDown();
        return false;
    });
}

// ---- classes

refPtr<classInfo> modelInfo::classInfo(string const& name, bool searchAliases) {
    return findClass(name, searchAliases);
}

const_refPtr<classInfo> modelInfo::classInfo(string const& name, bool searchAliases) const {
    return findClass(name, searchAliases);
}

refPtr<classInfo> modelInfo::findClass(std::wstring_view name, bool searchAliases) const {
    // KEEP MR-07: classes are filed under lower-case names always, so that with case-sensitive names a class with
    // capitals is not found by its own spelling.
    bool const caseSensitive = mRegistry->mCaseSensitiveNames;
    {
        readSection const reading;
        classEntry const* const found = mRegistry->mClasses.find(reading, nameKey(name, caseSensitive));
        if (found) return found->object;
    }
    return searchAliases ? findByAlias(mRegistry->mClasses, name, caseSensitive) : nullptr;
}

refPtr<classInfo> modelInfo::createClassInfo(string const& name, acceptFunction const& accept) {
    heldMutex const held(mRegistry->mMutex);
    if (findClass(name, false)) throw false;
    return createAndPublish(name, accept);
}

refPtr<classInfo> modelInfo::getOrCreateClassInfo(string const& name, acceptFunction const& accept) {
    heldMutex const held(mRegistry->mMutex);
    if (auto known = findClass(name, false)) return known;
    return createAndPublish(name, accept);
}

// Under the model's mutex, which accept may take again.
refPtr<classInfo> modelInfo::createAndPublish(string const& name, acceptFunction const& accept) {
    heldMutex const held(mRegistry->mMutex);
    auto added = falseWithoutMemory(
        [&] { return refPtr<metamodel::classInfo>(new metamodel::classInfo(name, mRegistry->mCaseSensitiveNames)); });
    scopeExit letGo([&] { added->tearDown(); });
    if (accept && !accept(added)) return nullptr;
    falseWithoutMemory([&] { mRegistry->mClasses.store(held, added); });
    letGo.callOff();
    return added;
}

bool modelInfo::forEachClassInfo(std::function<bool(metamodel::classInfo::entry const&)> const& visit,
                                 bool stopOnFalse) const {
    return !mRegistry->mClasses.snapshot().any([&](classEntry const& entry) {
        return !visit({entry.name.handle(), entry.object}) && stopOnFalse;
    });
}

std::size_t modelInfo::countClasses() const {
    return mRegistry->mClasses.size();
}

// ---- fields

refPtr<fieldInfo> modelInfo::fieldInfo(string const& className, string const& fieldName, bool searchAliases) {
    return findField(className, fieldName, searchAliases);
}

const_refPtr<fieldInfo> modelInfo::fieldInfo(string const& className, string const& fieldName,
                                             bool searchAliases) const {
    return findField(className, fieldName, searchAliases);
}

refPtr<fieldInfo> modelInfo::fieldInfo(string const& qualifiedName, bool searchAliases) {
    return findQualifiedField(qualifiedName, searchAliases);
}

const_refPtr<fieldInfo> modelInfo::fieldInfo(string const& qualifiedName, bool searchAliases) const {
    return findQualifiedField(qualifiedName, searchAliases);
}

refPtr<fieldInfo> modelInfo::findField(std::wstring_view className, std::wstring_view fieldName,
                                       bool searchAliases) const {
    // KEEP MF-03: the flag becomes the class's searchBaseClasses, and aliases of fields are not searched.
    bool const searchBaseClasses = searchAliases;
    bool const caseSensitive = mRegistry->mCaseSensitiveNames;
    {
        readSection const reading;
        auto const* const owner = mRegistry->mClasses.find(reading, nameKey(className, caseSensitive));
        if (owner) return metamodel::findField(reading, *owner->data, fieldName, searchBaseClasses, false);
    }
    auto const owner = searchAliases ? findByAlias(mRegistry->mClasses, className, caseSensitive) : nullptr;
    return owner ? owner->findField(fieldName, searchBaseClasses, false) : nullptr;
}

refPtr<fieldInfo> modelInfo::findQualifiedField(std::wstring_view qualifiedName, bool searchAliases) const {
    auto const stop = qualifiedName.find(L'.');
    if (stop == std::wstring_view::npos) return nullptr;
    return findField(qualifiedName.substr(0, stop), qualifiedName.substr(stop + 1), searchAliases);
}

// ---- properties

void modelInfo::setAddProp(string const& key, string const& value) {
    if (key != caseRuleKey) {
        mProperties.setValue(scString::createFrom(key), value, true);
        return;
    }
    bool const caseSensitive = readCaseRule(value);
    std::lock_guard const held(mRegistry->mCaseRuleMutex);
    mProperties.setValue(caseRuleKey, value, true);
    mRegistry->mCaseSensitiveNames = caseSensitive;
}

bool modelInfo::addProp(string const& key, string& out) const {
    auto const name = scString::find(key);
    return name && mProperties.getValue(*name, out);
}

bool modelInfo::forEachAddProp(std::function<bool(scString const&, genericValue const&)> const& visit,
                               bool stopOnFalse) const {
    return mProperties.forEach(visit, stopOnFalse);
}

} // namespace zov::metamodel
