// What a field holds. Members that may change beside readers are atomic, or shared slots.
#pragma once

#include <atomic>
#include <cstdint>

#include "parts/userProperties.h"
#include "zovGenericSet.h"
#include "zovMdlClassInfo.h"
#include "zovMdlFieldInfo.h"

namespace zov::metamodel {

struct fieldData {
    fieldData(refPtr<classInfo> owner, refPtr<fieldInfo> baseField, scString name, eFieldType type,
              scString customTypeString, genericSet const& typeAttribs)
        : mClassInfo(std::move(owner)), mBaseField(std::move(baseField)), mName(name), mType(type),
          mCustomTypeString(customTypeString), mTypeAttribs(typeAttribs) {}

    refPtr<classInfo> mClassInfo; // shared slot
    refPtr<fieldInfo> const mBaseField;
    scString const mName; // empty in an inheriting field
    string mLabel;
    string mUnit;
    std::atomic<eFieldType> mType;
    std::atomic<scString> mCustomTypeString;
    genericSet mTypeAttribs;
    std::atomic<std::int32_t> mFlags{0};
    std::atomic<eFieldSemantics> mSemantic{eSemNone};
    std::atomic<scString> mCustomSemanticString{scString()};
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
