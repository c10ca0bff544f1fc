#include "zovMdlFieldInfo.h"

#include <mutex>
#include <new>
#include <utility>

#include "base/cowSlot.h"
#include "base/flags.h"
#include "base/lifeLine.h"
#include "base/scopeExit.h"
#include "base/sources.h"
#include "data/classData.h"
#include "data/fieldData.h"
#include "parts/aliases.h"
#include "parts/definitions.h"
#include "parts/enumItems.h"
#include "parts/fieldSemantics.h"
#include "parts/fieldTypes.h"
#include "parts/propertySearch.h"
#include "zovAssert.h"

namespace zov::metamodel {

namespace {

constexpr zovlog::eLogLevel createdLevel = zovlog::eLogTrace;
constexpr char const* createdBy = "zov::metamodel::fieldInfo::fieldInfo";

// KEEP FR-04: the created line shows the label, which is always empty this early.
constexpr wchar_t const* createdLine = L"fieldInfo created: \"%s\"";

// Interned once.
scString defaultValueKey() {
    static scString const key = scString::createFrom(definitions::defaultValue);
    return key;
}

} // namespace

// ---- life

// Neither of the two is ever inlined alone: the compiler would take the other one for a mismatch.
[[gnu::noinline]] void* fieldInfo::operator new(std::size_t size) {
    static_assert(sizeof(fieldInfo) % alignof(fieldData) == 0);
    return ::operator new(size + sizeof(fieldData));
}
[[gnu::noinline]] void fieldInfo::operator delete(void* storage) noexcept {
    ::operator delete(storage);
}

template <class... Arguments>
fieldData* fieldInfo::makeRecord(Arguments&&... arguments) {
    return ::new (this + 1) fieldData(std::forward<Arguments>(arguments)...);
}
void fieldInfo::endRecord::operator()(fieldData* record) const noexcept {
    record->~fieldData();
}

fieldInfo::fieldInfo(metamodel::classInfo* owner, scString name, eFieldType type, genericSet const& typeAttribs,
                     string const& customTypeString)
    : mData(makeRecord(owner, nullptr, name, type, scString::createFrom(customTypeString), typeAttribs)) {
    writeLifeLine({createdLevel, createdBy, sources::fieldInfo, 119}, createdLine, label());
}

fieldInfo::fieldInfo(metamodel::classInfo* owner, refPtr<fieldInfo> const& baseField)
    : mData(makeRecord(owner, baseField, scString(), baseField->type(), scString(), genericSet())) {
    writeLifeLine({createdLevel, createdBy, sources::fieldInfo, 129}, createdLine, label());
}

fieldInfo::~fieldInfo() = default;

void fieldInfo::destroy() {
    scopeExit const freed([this] { delete this; });
    writeLifeLine({zovlog::eLogDebug, "zov::metamodel::fieldInfo::~fieldInfo", sources::fieldInfo, 169},
                  L"fieldInfo released: \"%s\"", label());
}

void fieldInfo::releaseInfo() {
    writeLifeLine({zovlog::eLogInfo, "zov::metamodel::fieldInfo::releaseInfo", sources::fieldInfo, 177},
                  L"fieldInfo releaseInfo called: \"%s\"", label());
    clearOwner();
}

void fieldInfo::clearOwner() noexcept {
    mData->mClassInfo.clear();
}

metamodel::classInfo* fieldInfo::detachOwner() noexcept {
    return mData->mClassInfo.detach();
}

refPtr<fieldInfo> fieldInfo::copyFor(metamodel::classInfo* owner, string const& name) const {
    refPtr<fieldInfo> copy(
        new fieldInfo(owner, scString::createFrom(name), type(), mData->mTypeAttribs, customTypeString().string()));
    fieldData& to = *copy->mData;
    to.setText(&fieldTexts::label, label());
    to.setText(&fieldTexts::unit, unit());
    to.mFlags = mData->mFlags.load();
    to.mSemantic = semantic();
    to.setName(&fieldTexts::customSemantic, mData->name(&fieldTexts::customSemantic));
    to.mSemanticAttribs = mData->mSemanticAttribs;
    to.mDefinitions = mData->mDefinitions;
    to.mUserProperties = mData->mUserProperties;
    return copy;
}

// ---- names

fieldInfo const& fieldInfo::root() const noexcept {
    fieldInfo const* field = this;
    while (field->mData->mBaseField)
        field = field->mData->mBaseField.get();
    return *field;
}

scString const& fieldInfo::scName() const {
    return root().mData->mName;
}

string fieldInfo::qualifiedName() const {
    auto const owner = classInfo();
    if (!owner) return scName().string();
    // KEEP FR-12: the field's own name, which an inheriting field does not have.
    return owner->scName().string() + L"." + mData->mName.string();
}

string const& fieldInfo::label() const noexcept {
    return mData->text(&fieldTexts::label);
}
string const& fieldInfo::unit() const noexcept {
    return mData->text(&fieldTexts::unit);
}
void fieldInfo::setLabel(string const& label) {
    mData->setText(&fieldTexts::label, label);
}
void fieldInfo::setUnit(string const& unit) {
    mData->setText(&fieldTexts::unit, unit);
}

void fieldInfo::addAliasname(string const& alias) {
    assertThat(!alias.empty(), L"alias.length()", sources::fieldInfo, 668);
    removeAliasname(alias);
    scString const added = scString::createFrom(alias);
    auto* list = findAliases<aliasList>(mData->mDefinitions);
    if (!list) {
        // KEEP FR-07: the list that is made here is of texts, not of names, so that it is not found, now or later.
        mData->mDefinitions.setValue(aliasKey, std::vector<string>(), false);
        list = findAliases<aliasList>(mData->mDefinitions);
        assertThat(list != nullptr, L"pAliasNames", sources::fieldInfo, 679);
    }
    list->push_back(added);
}

void fieldInfo::removeAliasname(string const& alias) {
    assertThat(!alias.empty(), L"alias.length()", sources::fieldInfo, 686);
    if (auto* const list = findAliases<aliasList>(mData->mDefinitions)) removeAlias(*list, alias);
}

// KEEP FR-09: reads lists of another type than addAliasname and removeAliasname do, nearest field first, and fails
// at the end of a chain in which every field has one.
void fieldInfo::getAliasnames(std::vector<string>& out) const {
    fieldInfo const* field = this;
    while (auto const* const list = findAliases<aliasList const>(field->mData->mDefinitions)) {
        appendAliases(*list, out);
        field = &*field->mData->mBaseField;
    }
}

// KEEP FR-10: no field answers to an alias, whatever its lists hold.
bool fieldInfo::hasAliasname(scString const&) const {
    return false;
}

// ---- place in the model

refPtr<classInfo> fieldInfo::classInfo() const {
    return mData->mClassInfo.get();
}

refPtr<fieldInfo> fieldInfo::baseField() const {
    return mData->mBaseField;
}

// ---- flags

bool fieldInfo::isMandatory() const noexcept {
    return (mData->mFlags & eFlagMandatory) != 0;
}
bool fieldInfo::isUnique() const noexcept {
    return (mData->mFlags & eFlagUnique) != 0;
}
void fieldInfo::setMandatory(bool mandatory) noexcept {
    setFlags(mData->mFlags, eFlagMandatory, mandatory);
}
void fieldInfo::setUnique(bool unique) noexcept {
    setFlags(mData->mFlags, eFlagUnique, unique);
}
int fieldInfo::flags() const noexcept {
    return mData->mFlags;
}

// ---- type

bool fieldInfo::parseType(string const& text, eFieldType& type, unsigned long& length) {
    return parseTypeText(text, type, length);
}

scString fieldInfo::typeStringFromType(eFieldType type) {
    return scString::createFrom(rowOf(type).text);
}

eFieldType fieldInfo::type() const noexcept {
    return root().mData->mType;
}

scString fieldInfo::typeString() const {
    fieldInfo const& defining = root();
    eFieldType const type = defining.mData->mType;
    return type == eCustom ? defining.customTypeString() : typeStringFromType(type);
}

scString fieldInfo::customTypeString() const noexcept {
    return mData->name(&fieldTexts::customType);
}

void fieldInfo::setCustomTypeString(string const& text) {
    mData->setName(&fieldTexts::customType, scString::createFrom(text));
}

genericSet const& fieldInfo::typeAttribs() const noexcept {
    return mData->mTypeAttribs;
}

// KEEP FT-10: the arguments behind the first one are ignored.
fieldInfo::hasTypeFunc::hasTypeFunc(eFieldType type, eFieldType, ...) {
    mTypes.insert(type);
}

bool fieldInfo::hasTypeFunc::operator()(const_refPtr<fieldInfo> const& field) const {
    return mTypes.contains(field->type());
}

// ---- default and null values

bool fieldInfo::getDefaultFromType(eFieldType type, genericValue& out) {
    auto const makeDefault = rowOf(type).makeDefault;
    if (!makeDefault) return false;
    out = makeDefault();
    return true;
}

bool fieldInfo::getDefaultValue(genericValue& out, bool inherit) const {
    scString const key = defaultValueKey();
    fieldInfo const* field = this;
    for (;; field = field->mData->mBaseField.get()) {
        if (field->mData->mDefinitions.copyValue(key, out)) return true;
        if (!inherit || !field->mData->mBaseField) return getDefaultFromType(field->mData->mType, out);
    }
}

bool fieldInfo::setDefaultValue(genericValue const& value) {
    mData->mDefinitions.setGenericValue(defaultValueKey(), value, true);
    return true;
}

genericValue fieldInfo::createNullValue() const {
    return rowOf(mData->mType).makeNull();
}

bool fieldInfo::isNullValue(genericValue const& value) const {
    return rowOf(mData->mType).isNull(value);
}

// ---- items

bool fieldInfo::parseEnumItem(string const& text, eFieldType type, enumItem& item) {
    return parseItemText(text, type, item);
}

bool fieldInfo::parseBitsItem(string const& text, eFieldType type, enumItem& item) {
    return parseItemText(text, type, item);
}

// ---- semantic

bool fieldInfo::parseSemantics(string const& text, eFieldSemantics& sem, genericSet& attribs) {
    return parseSemanticsText(text, sem, attribs);
}

scString fieldInfo::semanticStringFromType(eFieldSemantics sem) {
    return semanticText(sem);
}

wchar_t const* fieldInfo::referencedClasses() noexcept {
    return referencedClassesKey;
}

// KEEP FS-32: for ordinary semantics this is the text of the type, not of the semantic.
scString fieldInfo::semanticString() const {
    fieldData const& defining = *root().mData;
    eFieldSemantics const sem = defining.mSemantic;
    if (sem == eSemCustom || sem == eSemRelation) return defining.name(&fieldTexts::customSemantic);
    return typeStringFromType(defining.mType);
}

eFieldSemantics fieldInfo::semantic() const noexcept {
    return root().mData->mSemantic;
}

genericSet const& fieldInfo::semanticAttribs() const noexcept {
    return mData->mSemanticAttribs;
}

void fieldInfo::setSemantic(eFieldSemantics sem, genericSet const& attribs, string const& semStr) {
    auto const owner = classInfo();
    heldMutex const held = owner ? heldMutex(owner->mData->mMutex) : heldMutex();
    eFieldSemantics const formerSemantic = mData->mSemantic;
    std::int32_t const addedFlags = sem == eSemPrimkey ? keyFlags & ~mData->mFlags : 0;
    eFieldType const formerType = mData->mType;
    // A key whose class's id set is still to be collected: that may be done without it meanwhile.
    bool const awaitsIdSet = formerSemantic == eSemPrimkey && owner && !owner->mData->mIdInfo.get();
    try {
        applySemantic(*mData, sem, attribs, semStr);
        mData->mSemanticAttribs = attribs;
        owner->onSemanticChanged(this);
    } catch (...) {
        // KEEP FS-14: the text is emptied, not put back, and the attributes stay when telling the class has failed.
        mData->mSemantic = formerSemantic;
        setFlags(mData->mFlags, addedFlags, false);
        mData->mType = formerType;
        mData->setName(&fieldTexts::customSemantic, scString());
        if (awaitsIdSet) owner->onKeyRestored(*this);
    }
}

fieldInfo::semanticState fieldInfo::semanticNow() const {
    return {mData->mSemantic, mData->name(&fieldTexts::customSemantic), mData->mSemanticAttribs};
}

// What another thread has set meanwhile stays, unless it is a relation's semantic as well.
void fieldInfo::restoreSemantic(semanticState former) noexcept {
    auto const owner = classInfo();
    heldMutex const held = owner ? heldMutex(owner->mData->mMutex) : heldMutex();
    if (mData->mSemantic != eSemRelation) return;
    mData->mSemantic = former.mSemantic;
    mData->setName(&fieldTexts::customSemantic, former.mCustomSemanticString);
    mData->mSemanticAttribs = std::move(former.mSemanticAttribs);
    if (owner && former.mSemantic == eSemPrimkey) owner->onKeyRestored(*this);
}

// ---- expressions, condition, equality

bool fieldInfo::setDefaultExpression(string const& expression) {
    return mData->mDefinitions.setValue(definitions::defaultExpression, expression, false);
}

bool fieldInfo::setConstantExpression(string const& expression) {
    // KEEP FE-03: the flag under which the text is read is cleared with it, but never set.
    if (!expression.empty()) return mData->mDefinitions.setValue(definitions::constantExpression, expression, false);
    mData->mDefinitions.erase(scString::createFrom(definitions::constantExpression));
    setFlags(mData->mFlags, eFlagConstantExpression, false);
    return true;
}

bool fieldInfo::setAutoExpression(string const& expression) {
    if (expression.empty()) {
        mData->mDefinitions.erase(scString::createFrom(definitions::autoExpression));
    } else {
        mData->mDefinitions.setValue(definitions::autoExpression, expression, false);
    }
    setFlags(mData->mFlags, eFlagAutoExpression, !expression.empty());
    return true;
}

string fieldInfo::defaultExpression() const {
    return expressionUnder(definitions::defaultExpression, 0);
}

string fieldInfo::constantExpression() const {
    return expressionUnder(definitions::constantExpression, eFlagConstantExpression);
}

string fieldInfo::autoExpression() const {
    return expressionUnder(definitions::autoExpression, 0);
}

// The first text along the chain that is not empty; only fields that have the needed flag are asked.
string fieldInfo::expressionUnder(wchar_t const* key, int neededFlag) const {
    string expression;
    for (fieldInfo const* field = this; field && expression.empty(); field = field->mData->mBaseField.get()) {
        if ((field->mData->mFlags & neededFlag) == neededFlag) field->mData->mDefinitions.getValue(key, expression);
    }
    return expression;
}

bool fieldInfo::setValueCondition(conditions::condition const* condition) {
    if (condition) {
        sharedPtr<conditions::condition> const copy(condition->clone());
        return mData->mDefinitions.setValue(definitions::valueCondition, copy, false);
    }
    mData->mDefinitions.erase(scString::createFrom(definitions::valueCondition));
    return true;
}

conditions::condition const* fieldInfo::valueCondition() const {
    auto const key = scString::find(definitions::valueCondition);
    if (!key) return nullptr;
    for (fieldInfo const* field = this; field; field = field->mData->mBaseField.get()) {
        // Counted while it is looked at, since another thread may replace it.
        auto const stored = std::as_const(field->mData->mDefinitions).genericValue(*key);
        auto const* const kept = stored ? stored->valuePtr<sharedPtr<conditions::condition>>() : nullptr;
        if (kept) return kept->get();
    }
    return nullptr;
}

bool fieldInfo::setValueEqFunc(valueEqFunction areEqual) {
    mData->mDefinitions.setValue(definitions::equality, areEqual, true);
    return true;
}

valueEqFunction fieldInfo::valueEqFunc(bool inherit) const {
    fieldInfo const* field = this;
    for (;; field = field->mData->mBaseField.get()) {
        valueEqFunction areEqual = nullptr;
        if (field->mData->mDefinitions.getValue(definitions::equality, areEqual)) return areEqual;
        if (!inherit || !field->mData->mBaseField) return rowOf(field->mData->mType).areEqual;
    }
}

// ---- user properties

void fieldInfo::setUserProperty(string const& name, string const& value, bool inheritable) {
    setUserProperty(name, genericValue(value), inheritable);
}

void fieldInfo::setUserProperty(string const& name, refPtr<refObj> const& value, bool inheritable) {
    setUserProperty(name, genericValue(value), inheritable);
}

void fieldInfo::setUserProperty(string const& name, genericValue const& value, bool inheritable) {
    mData->mUserProperties.chosen(inheritable).setGenericValue(scString::createFrom(name), value, true);
}

bool fieldInfo::getUserProperty(string const& name, string& value, bool searchInherited) const {
    return findProperty(mData->mUserProperties, fieldReading, name, value, searchInherited,
                        [&](scString key) { return findInherited(key, value); });
}

bool fieldInfo::getUserProperty(string const& name, refPtr<refObj>& value, bool searchInherited) {
    return findProperty(mData->mUserProperties, fieldReading, name, value, searchInherited,
                        [&](scString key) { return findInherited(key, value); });
}

bool fieldInfo::getUserProperty(string const& name, const_refPtr<refObj>& value, bool searchInherited) const {
    return findProperty(mData->mUserProperties, fieldReading, name, value, searchInherited,
                        [&](scString key) { return findInherited(key, value); });
}

bool fieldInfo::getUserProperty(string const& name, genericValue& value, bool searchInherited) const {
    return findProperty(mData->mUserProperties, fieldReading, name, value, searchInherited,
                        [&](scString key) { return findInherited(key, value); });
}

// Along the base fields, nearest first; their private values are not seen.
template <class T>
bool fieldInfo::findInherited(scString key, T& out) const {
    for (fieldInfo const* field = mData->mBaseField.get(); field; field = field->mData->mBaseField.get()) {
        if (readProperty(field->mData->mUserProperties.mInheritable, key, out)) return true;
    }
    return false;
}

bool fieldInfo::forEachUserProperty(bool inheritable,
                                    std::function<bool(scString const&, genericValue const&)> const& visit,
                                    bool stopOnFalse) const {
    return mData->mUserProperties.chosen(inheritable).forEach(visit, stopOnFalse);
}

} // namespace zov::metamodel
