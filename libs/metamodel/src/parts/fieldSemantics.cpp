#include "parts/fieldSemantics.h"

#include <initializer_list>
#include <vector>

#include "base/sources.h"
#include "zovAssert.h"
#include "zovMdlEnumItem.h"

namespace zov::metamodel {

namespace {

// A type that a semantic accepts, and the report when the field has none of those. Hosts match on text and line.
struct typeDemand {
    std::initializer_list<eFieldType> accepted;
    wchar_t const* condition;
    int line;
};

void demandType(fieldData const& field, typeDemand const& demand) {
    bool met = false;
    for (eFieldType const type : demand.accepted)
        met = met || field.mType == type;
    assertThat(met, demand.condition, sources::fieldInfo, demand.line);
}

void demandItems(genericSet const& attribs, int line) {
    std::vector<enumItem>* items = nullptr;
    assertThat(attribs.getValuePtr(L"enumItems", items), L"semProps.getValuePtr(_T(\"enumItems\"), eis)",
               sources::fieldInfo, line);
}

scString customName(genericSet const& attribs, string const& semStr) {
    if (!semStr.empty()) return scString::createFrom(semStr);
    string* name = nullptr;
    bool const named = attribs.getValuePtr(L"custom_semantic", name) && !name->empty();
    assertThat(named, L"semStr.length()", sources::fieldInfo, 634);
    return scString::createFrom(*name);
}

} // namespace

void applySemantic(fieldData& field, eFieldSemantics sem, genericSet const& attribs, string const& semStr) {
    field.mSemantic = sem;
    switch (sem) {
    case eSemPrimkey: field.mFlags |= eFlagMandatory | eFlagUnique; break;
    case eSemDate:
        demandType(field, {{eTimestamp, eDate}, L"mType==eTimestamp || mType==eDate", 613});
        field.mType = eDate;
        break;
    case eSemTime:
        demandType(field, {{eTimestamp, eTime}, L"mType==eTimestamp || mType==eTime", 618});
        field.mType = eTime;
        break;
    case eSemTimestamp: demandType(field, {{eTimestamp}, L"mType==eTimestamp", 623}); break;
    case eSemCustom: field.mCustomSemanticString = customName(attribs, semStr); break;
    case eSemEnum:
        demandType(field, {{eBool, eShort, eInt, eLong, eFloat, eDouble, eString},
                           L"mType==eBool ||mType==eShort || mType==eInt || mType==eLong || mType==eFloat || "
                           L"mType==eDouble || mType==eString",
                           640});
        demandItems(attribs, 642);
        break;
    case eSemBits:
        demandType(field, {{eShort, eInt, eLong}, L"mType == eShort || mType == eInt || mType == eLong", 646});
        demandItems(attribs, 648);
        break;
    default: break; // the others ask for nothing and change nothing else
    }
}

} // namespace zov::metamodel
