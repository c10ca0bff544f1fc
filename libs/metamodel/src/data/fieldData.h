// What a field holds. Members that may change beside readers are atomic, or shared slots.
#pragma once

#include <atomic>
#include <cstdint>
#include <utility>

#include "base/linkSlot.h"
#include "base/madeWhenNeeded.h"
#include "data/userProperties.h"
#include "zovGenericSet.h"
#include "zovMdlClassInfo.h"
#include "zovMdlFieldInfo.h"

namespace zov::metamodel {

// Texts that few fields have. Label and unit are set while a field is built; the others may change beside readers.
struct fieldTexts {
    string label;
    string unit;
    std::atomic<scString> customType{scString()};
    std::atomic<scString> customSemantic{scString()};
};

struct fieldData {
    fieldData(classInfo* owner, refPtr<fieldInfo> baseField, scString name, eFieldType type, scString customTypeString,
              genericSet const& typeAttribs)
        : mClassInfo(owner), mBaseField(std::move(baseField)), mName(name), mType(type), mTypeAttribs(typeAttribs) {
        setName(&fieldTexts::customType, customTypeString);
    }

    string const& text(string fieldTexts::*which) const noexcept {
        return mTexts ? *mTexts.*which : scString().string();
    }
    void setText(string fieldTexts::*which, string const& text) {
        if (!text.empty() || mTexts) mTexts.made().*which = text;
    }

    using nameSlot = std::atomic<scString> fieldTexts::*;
    scString name(nameSlot which) const noexcept { return mTexts ? (*mTexts.*which).load() : scString(); }
    // Throws std::bad_alloc, and nothing has changed. The empty name needs no memory.
    void setName(nameSlot which, scString name) {
        if (name != scString()) mTexts.made();
        if (mTexts) *mTexts.*which = name;
    }

    linkSlot<classInfo> mClassInfo;
    refPtr<fieldInfo> const mBaseField;
    scString const mName; // empty in an inheriting field
    std::atomic<eFieldType> mType;
    std::atomic<eFieldSemantics> mSemantic{eSemNone};
    std::atomic<std::int32_t> mFlags{0};
    std::atomic<bool> mHasFurtherPairs{false}; // some relation leads from here by a pair that is not its first one
    madeWhenNeeded<fieldTexts> mTexts;
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

// What a field becomes with the semantic of a key.
inline constexpr std::int32_t keyFlags = eFlagMandatory | eFlagUnique;

// A field's semantic with what goes with it, so that a change can be taken back.
struct fieldInfo::semanticState {
    eFieldSemantics mSemantic;
    scString mCustomSemanticString;
    genericSet mSemanticAttribs;
};

} // namespace zov::metamodel
