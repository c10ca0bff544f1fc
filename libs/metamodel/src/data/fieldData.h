// What a field holds. Members that may change beside readers are atomic, or shared slots.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "base/linkSlot.h"
#include "parts/userProperties.h"
#include "zovGenericSet.h"
#include "zovMdlClassInfo.h"
#include "zovMdlFieldInfo.h"

namespace zov::metamodel {

// Texts for people, which few fields have.
struct fieldTexts {
    string label;
    string unit;
};

struct fieldData {
    fieldData(refPtr<classInfo> const& owner, refPtr<fieldInfo> baseField, scString name, eFieldType type,
              scString customTypeString, genericSet const& typeAttribs)
        : mClassInfo(owner), mBaseField(std::move(baseField)), mName(name), mType(type),
          mCustomTypeString(customTypeString), mTypeAttribs(typeAttribs) {}

    string const& text(string fieldTexts::*which) const noexcept {
        return mTexts ? *mTexts.*which : scString().string();
    }
    void setText(string fieldTexts::*which, string const& text) {
        if (!mTexts) mTexts = std::make_unique<fieldTexts>();
        *mTexts.*which = text;
    }

    linkSlot<classInfo> mClassInfo;
    refPtr<fieldInfo> const mBaseField;
    scString const mName; // empty in an inheriting field
    std::atomic<eFieldType> mType;
    std::atomic<eFieldSemantics> mSemantic{eSemNone};
    std::atomic<std::int32_t> mFlags{0};
    std::atomic<bool> mHasFurtherPairs{false}; // some relation leads from here by a pair that is not its first one
    std::atomic<scString> mCustomTypeString;
    std::atomic<scString> mCustomSemanticString{scString()};
    std::unique_ptr<fieldTexts> mTexts; // made by the first text
    genericSet mTypeAttribs;
    genericSet mSemanticAttribs;
    genericSet mDefinitions; // aliases, defaults, expressions, condition, equality: see parts/definitions.h
    userProperties mUserProperties;
};

// The bits of mFlags.
enum eFieldFlag : std::int32_t {
    eFlagMandatory = 1,
    eFlagUnique = 2,
    eFlagAutoExpression = 4,
    eFlagConstantExpression = 8 // comes into a field by a copy of a whole word only
};

// A field's semantic with what goes with it, so that a change can be taken back.
struct fieldInfo::semanticState {
    eFieldSemantics mSemantic;
    scString mCustomSemanticString;
    genericSet mSemanticAttribs;
};

} // namespace zov::metamodel
