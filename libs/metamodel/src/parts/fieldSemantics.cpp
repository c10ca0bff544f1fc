#include "parts/fieldSemantics.h"

#include <initializer_list>
#include <optional>
#include <string_view>
#include <vector>

#include "base/sources.h"
#include "zovAssert.h"
#include "zovMdlEnumItem.h"

namespace zov::metamodel {

namespace {

constexpr wchar_t const* customNameKey = L"custom_semantic";

struct semanticRow {
    eFieldSemantics sem;
    std::wstring_view text;
};

// Semantics that their whole text names.
constexpr semanticRow plainSemantics[] = {
    {eSemLength, L"length"},       {eSemArea, L"area"}, {eSemVolume, L"volume"},
    {eSemMonetary, L"monetary"},   {eSemTime, L"time"}, {eSemDate, L"date"},
    {eSemTimestamp, L"timestamp"}, {eSemEnum, L"enum"}, {eSemBits, L"bits"},
};

constexpr std::wstring_view primkeyText = L"primkey";
constexpr std::wstring_view customOpening = L"custom(";
constexpr std::wstring_view relationOpening = L"relation(";

// What stands behind "custom(", spaces included.
void parseCustom(string const& text, std::size_t argument, genericSet& attribs) {
    string name(text.substr(argument));
    name.deleteTrailing(L')');
    attribs.setValue(customNameKey, name, false);
}

// The classes that stand behind "relation(". Answers eSemNone when there is none.
eFieldSemantics parseRelation(string const& text, std::size_t argument, genericSet& attribs) {
    // KEEP FS-30: the argument is taken to begin one character late, so that its first one is lost; a text that ends
    // at the parenthesis is out of range.
    string classes(text.substr(argument + 1));
    classes.deleteTrailing(L')').deleteAll(L" \t");
    std::vector<string> names;
    classes.splitAt(L",", names, false);
    if (names.empty()) return eSemNone;
    attribs.setValue(referencedClassesKey, names, false);
    return eSemRelation;
}

// The semantic of a folded text, by the first rule that fits; empty when none does.
std::optional<eFieldSemantics> readSemantics(string const& text, genericSet& attribs) {
    if (text.empty()) return eSemNone;
    if (text.starts_with(primkeyText)) return eSemPrimkey;
    for (auto const& row : plainSemantics) {
        if (text == row.text) return row.sem;
    }
    if (auto const found = text.find(customOpening); found != string::npos) {
        parseCustom(text, found + customOpening.size(), attribs);
        return eSemCustom;
    }
    if (auto const found = text.find(relationOpening); found != string::npos) {
        return parseRelation(text, found + relationOpening.size(), attribs);
    }
    return std::nullopt;
}

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
    bool const named = attribs.getValuePtr(customNameKey, name) && !name->empty();
    assertThat(named, L"semStr.length()", sources::fieldInfo, 634);
    return scString::createFrom(*name);
}

} // namespace

void applySemantic(fieldData& field, eFieldSemantics sem, genericSet const& attribs, string const& semStr) {
    field.mSemantic = sem;
    switch (sem) {
    case eSemPrimkey: field.mFlags |= keyFlags; break;
    case eSemDate:
        demandType(field, {{eTimestamp, eDate}, L"mType==eTimestamp || mType==eDate", 613});
        field.mType = eDate;
        break;
    case eSemTime:
        demandType(field, {{eTimestamp, eTime}, L"mType==eTimestamp || mType==eTime", 618});
        field.mType = eTime;
        break;
    case eSemTimestamp: demandType(field, {{eTimestamp}, L"mType==eTimestamp", 623}); break;
    case eSemCustom: field.setName(&fieldTexts::customSemantic, customName(attribs, semStr)); break;
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

bool parseSemanticsText(string const& text, eFieldSemantics& sem, genericSet& attribs) {
    auto const read = readSemantics(text.lower(), attribs);
    sem = read.value_or(eSemNone);
    return read.has_value();
}

// KEEP FS-31: keys and custom semantics have no text here, although the parser reads one.
scString semanticText(eFieldSemantics sem) {
    if (sem == eSemRelation) return scString::createFrom(L"relation");
    for (auto const& row : plainSemantics) {
        if (row.sem == sem) return scString::createFrom(row.text);
    }
    return scString();
}

} // namespace zov::metamodel
