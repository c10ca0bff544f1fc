// A field that is given semantics, and what setting one reports when a demand is not met.
#pragma once

#include <string>
#include <vector>

#include "modelFixture.h"
#include "zovMdlEnumItem.h"

namespace zov::metamodel::tests {

inline constexpr char const* enumDemand =
    "mType==eBool ||mType==eShort || mType==eInt || mType==eLong || mType==eFloat || "
    "mType==eDouble || mType==eString";
inline constexpr char const* bitsDemand = "mType == eShort || mType == eInt || mType == eLong";
inline constexpr char const* itemsDemand = "semProps.getValuePtr(_T(\"enumItems\"), eis)";

inline genericSet withItems() {
    genericSet attribs;
    attribs.setValue(L"enumItems", std::vector<enumItem>{{genericValue(1), L"one"}}, false);
    return attribs;
}

// A class with one field of the given type, and what setting a semantic reports.
struct subject {
    ownClass part{L"part"};
    refPtr<fieldInfo> field;

    explicit subject(eFieldType type) : field(addField(part, L"width", type)) {}

    events set(eFieldSemantics semantic, genericSet const& attribs = genericSet(), string const& text = L"") const {
        zov::tests::eventLog log;
        field->setSemantic(semantic, attribs, text);
        return log.take();
    }
};

} // namespace zov::metamodel::tests
