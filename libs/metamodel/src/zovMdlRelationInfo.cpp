#include "zovMdlRelationInfo.h"

#include <string_view>

#include "base/lifeLine.h"
#include "base/scopeExit.h"
#include "base/sources.h"
#include "base/walk.h"
#include "data/fieldData.h"
#include "data/relationData.h"
#include "zovAssert.h"
#include "zovMdlClassInfo.h"

namespace zov::metamodel {

namespace {

struct relationTypeRow {
    eRelationType type;
    std::wstring_view text;
};

constexpr relationTypeRow relationTypes[] = {{eRef, L"ref"}, {eAgg, L"agg"}, {eRevAgg, L"revagg"}, {eBiAgg, L"biagg"}};

void logCreated(string const& name, string const& reverseName) {
    writeLifeLine({zovlog::eLogTrace, "zov::metamodel::relationInfo::relationInfo", sources::relationInfo, __LINE__},
                  L"relationInfo created: \"%s\" to \"%s\"", name, reverseName);
}

bool hasClass(refPtr<fieldInfo> const& field) {
    return field->classInfo() != nullptr;
}

bool haveSameClass(refPtr<fieldInfo> const& field, refPtr<fieldInfo> const& other) {
    auto const owner = field->classInfo();
    return owner && owner == other->classInfo();
}

} // namespace

bool parseRelationType(string const& text, eRelationType& type) {
    type = eRef;
    string folded = text.lower();
    folded.deleteAll(L" \t");
    if (folded.empty()) return true;
    for (auto const& row : relationTypes) {
        if (folded != row.text) continue;
        type = row.type;
        return true;
    }
    return false;
}

scString relationTypeString(eRelationType type) {
    for (auto const& row : relationTypes) {
        if (row.type == type) return scString::createFrom(row.text);
    }
    return scString();
}

// ---- life

relationInfo::relationInfo(refPtr<fieldInfo> const& fromField, refPtr<fieldInfo> const& toField, eRelationType type,
                           string const& name, string const& reverseName)
    : mData(std::make_unique<relationData>(type)) {
    assertThat(fromField && toField, L"pFromField&&pToField", sources::relationInfo, 19);
    assertThat(hasClass(fromField) && hasClass(toField), L"pFromField->classInfo()&&pToField->classInfo()",
               sources::relationInfo, 20);
    logCreated(name, reverseName);
    begin(fromField, toField, name, reverseName);
}

relationInfo::relationInfo(refPtr<fieldInfo> const& fromField, refPtr<classInfo> const& toClass, eRelationType type,
                           string const& name, string const& reverseName)
    : mData(std::make_unique<relationData>(type)) {
    assertThat(fromField && toClass, L"pFromField&&pToClass", sources::relationInfo, 54);
    assertThat(hasClass(fromField), L"pFromField->classInfo()", sources::relationInfo, 55);
    logCreated(name, reverseName);
    // KEEP RI-04: the relation alone holds this field; the target class does not list it.
    mData->mHasOwnField = true;
    begin(fromField, new fieldInfo(toClass.get(), scString::createFrom(L"PTR"), ePtr, genericSet(), L""), name,
          reverseName);
}

// The first pair and the names; the semantic comes last, when nothing can fail any more.
void relationInfo::begin(refPtr<fieldInfo> const& fromField, refPtr<fieldInfo> const& toField, string const& name,
                         string const& reverseName) {
    mData->mName = name.empty() ? fromField->scName() : scString::createFrom(name);
    mData->mReverseName = reverseName.empty() ? fromField->classInfo()->scName() : scString::createFrom(reverseName);
    mData->mRelations.publish(heldMutex(mData->mMutex),
                              [&](fieldPairs& pairs) { pairs.emplace_back(fromField, toField); });
    fromField->setSemantic(eSemRelation, genericSet(), L"");
}

relationInfo::~relationInfo() = default;

void relationInfo::destroy() {
    scopeExit const freed([this] { delete this; });
    writeLifeLine({zovlog::eLogTrace, "zov::metamodel::relationInfo::~relationInfo", sources::relationInfo, __LINE__},
                  L"relationInfo released: \"%s\" to \"%s\"", mData->mName.string(), mData->mReverseName.string());
}

refPtr<classInfo> relationInfo::targetClass() const {
    return mData->mRelations.snapshot()->front().second->classInfo();
}

void relationInfo::clearOwnField() noexcept {
    if (mData->mHasOwnField) mData->mRelations.snapshot()->front().second->clearOwner();
}

// ---- reading

eRelationType relationInfo::type() const noexcept {
    return mData->mType;
}
scString const& relationInfo::scName() const noexcept {
    return mData->mName;
}
scString const& relationInfo::scReverseName() const noexcept {
    return mData->mReverseName;
}

const_refPtr<fieldInfo> relationInfo::firstFromFieldInfo() const {
    auto const pairs = mData->mRelations.snapshot();
    return pairs ? pairs->front().first : nullptr;
}

const_refPtr<classInfo> relationInfo::fromClassInfo() const {
    auto const pairs = mData->mRelations.snapshot();
    assertThat(bool(pairs), L"mRelations.size()>=1", sources::relationInfo, 146);
    return pairs->front().first->classInfo();
}

const_refPtr<classInfo> relationInfo::toClassInfo() const {
    auto const pairs = mData->mRelations.snapshot();
    assertThat(bool(pairs), L"mRelations.size()>=1", sources::relationInfo, 151);
    return pairs->front().second->classInfo();
}

const_refPtr<fieldInfo> relationInfo::fromFieldInfo(const_refPtr<fieldInfo> const& toField) const {
    return mData->partner(toField.get(), &fieldPair::second, &fieldPair::first);
}

const_refPtr<fieldInfo> relationInfo::toFieldInfo(const_refPtr<fieldInfo> const& fromField) const {
    return mData->partner(fromField.get(), &fieldPair::first, &fieldPair::second);
}

bool relationInfo::forEachFieldPair(std::function<bool(refPtr<fieldInfo>, refPtr<fieldInfo>)> const& visit,
                                    bool stopOnFalse) const {
    auto const pairs = mData->mRelations.snapshot();
    return !pairs || walk(*pairs, stopOnFalse, [&](fieldPair const& pair) { return visit(pair.first, pair.second); });
}

// ---- growing

bool relationInfo::addFieldRelation(refPtr<fieldInfo> pParentColumn, refPtr<fieldInfo> pDepColumn) {
    auto const pairs = mData->mRelations.snapshot();
    assertThat(bool(pairs), L"mRelations.size()>=1", sources::relationInfo, 134);
    assertThat(hasClass(pParentColumn) && hasClass(pDepColumn), L"pParentColumn->classInfo()&&pDepColumn->classInfo()",
               sources::relationInfo, 135);
    assertThat(haveSameClass(pairs->front().first, pParentColumn),
               L"mRelations[0].first->classInfo() && mRelations[0].first->classInfo()==pParentColumn->classInfo()",
               sources::relationInfo, 137);
    assertThat(haveSameClass(pairs->front().second, pDepColumn),
               L"mRelations[0].second->classInfo() && mRelations[0].second->classInfo()==pDepColumn->classInfo()",
               sources::relationInfo, 138);
    pParentColumn->mData->mHasFurtherPairs = true;
    mData->mRelations.publish(heldMutex(mData->mMutex),
                              [&](fieldPairs& added) { added.emplace_back(pParentColumn, pDepColumn); });
    return true;
}

} // namespace zov::metamodel
