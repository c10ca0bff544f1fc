#include "zovMdlFieldInfo.h"

#include <mutex>

#include "base/cowSlot.h"
#include "base/flags.h"
#include "base/lifeLine.h"
#include "base/scopeExit.h"
#include "base/sources.h"
#include "data/classData.h"
#include "data/fieldData.h"
#include "parts/aliases.h"
#include "parts/fieldSemantics.h"
#include "parts/fieldTypes.h"
#include "zovAssert.h"

namespace zov::metamodel {

namespace {

constexpr zovlog::eLogLevel createdLevel = zovlog::eLogTrace;
constexpr char const* createdBy = "zov::metamodel::fieldInfo::fieldInfo";

// KEEP FR-04: the created line shows the label, which is always empty this early.
constexpr wchar_t const* createdLine = L"fieldInfo created: \"%s\"";

} // namespace

// ---- life

fieldInfo::fieldInfo(refPtr<metamodel::classInfo> owner, string const& name, eFieldType type,
                     genericSet const& typeAttribs, string const& customTypeString)
    : mData(std::make_unique<fieldData>(std::move(owner), nullptr, scString::createFrom(name), type,
                                        scString::createFrom(customTypeString), typeAttribs)) {
    writeLifeLine({createdLevel, createdBy, sources::fieldInfo, 119}, createdLine, mData->mLabel);
}

fieldInfo::fieldInfo(refPtr<metamodel::classInfo> owner, refPtr<fieldInfo> baseField)
    : mData(std::make_unique<fieldData>(std::move(owner), baseField, scString(), baseField->type(), scString(),
                                        genericSet())) {
    writeLifeLine({createdLevel, createdBy, sources::fieldInfo, 129}, createdLine, mData->mLabel);
}

fieldInfo::~fieldInfo() = default;

void fieldInfo::destroy() {
    scopeExit const freed([this] { delete this; });
    writeLifeLine({zovlog::eLogDebug, "zov::metamodel::fieldInfo::~fieldInfo", sources::fieldInfo, 169},
                  L"fieldInfo released: \"%s\"", mData->mLabel);
}

std::uint32_t fieldInfo::refCount() const {
    return currentCount();
}
std::uint32_t fieldInfo::addRef() {
    return refObj::addRef();
}
std::uint32_t fieldInfo::release() {
    return refObj::release();
}

void fieldInfo::releaseInfo() {
    writeLifeLine({zovlog::eLogInfo, "zov::metamodel::fieldInfo::releaseInfo", sources::fieldInfo, 177},
                  L"fieldInfo releaseInfo called: \"%s\"", mData->mLabel);
    clearOwner();
}

void fieldInfo::clearOwner() noexcept {
    mData->mClassInfo = refPtr<metamodel::classInfo>();
}

refPtr<fieldInfo> fieldInfo::copyFor(refPtr<metamodel::classInfo> owner, string const& name) const {
    refPtr<fieldInfo> copy(
        new fieldInfo(std::move(owner), name, type(), mData->mTypeAttribs, customTypeString().string()));
    fieldData& to = *copy->mData;
    to.mLabel = mData->mLabel;
    to.mUnit = mData->mUnit;
    to.mFlags = mData->mFlags.load();
    to.mSemantic = semantic();
    to.mCustomSemanticString = mData->mCustomSemanticString.load();
    to.mSemanticAttribs = mData->mSemanticAttribs;
    to.mDefinitions = mData->mDefinitions;
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
    return mData->mLabel;
}
string const& fieldInfo::unit() const noexcept {
    return mData->mUnit;
}
void fieldInfo::setLabel(string const& label) {
    mData->mLabel = label;
}
void fieldInfo::setUnit(string const& unit) {
    mData->mUnit = unit;
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
    referencePtrLocker const guard;
    return mData->mClassInfo;
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
    setFlag(mData->mFlags, eFlagMandatory, mandatory);
}
void fieldInfo::setUnique(bool unique) noexcept {
    setFlag(mData->mFlags, eFlagUnique, unique);
}
int fieldInfo::flags() const noexcept {
    return mData->mFlags;
}

// ---- type

bool fieldInfo::parseType(string const& text, eFieldType& type, unsigned long& length) {
    return parseTypeText(text, type, length);
}

scString fieldInfo::typeStringFromType(eFieldType type) {
    return typeText(type);
}

eFieldType fieldInfo::type() const noexcept {
    return root().mData->mType;
}

scString fieldInfo::typeString() const {
    fieldInfo const& defining = root();
    eFieldType const type = defining.mData->mType;
    return type == eCustom ? defining.customTypeString() : typeText(type);
}

scString fieldInfo::customTypeString() const noexcept {
    return mData->mCustomTypeString;
}

void fieldInfo::setCustomTypeString(string const& text) {
    mData->mCustomTypeString = scString::createFrom(text);
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

// ---- semantic

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
    std::int32_t const formerFlags = mData->mFlags;
    eFieldType const formerType = mData->mType;
    try {
        applySemantic(*mData, sem, attribs, semStr);
        mData->mSemanticAttribs = attribs;
        owner->onSemanticChanged(this);
    } catch (...) {
        // KEEP FS-14: the text is emptied, not put back, and the attributes stay when telling the class has failed.
        mData->mSemantic = formerSemantic;
        mData->mFlags = formerFlags;
        mData->mType = formerType;
        mData->mCustomSemanticString = scString();
    }
}

} // namespace zov::metamodel
