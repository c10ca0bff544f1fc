// Semantics texts, compared with the rules spelled out once more: the answer, the semantic and the attributes, to which
// a text adds at most its own.
// behaviour: FS-20
#include "fuzzCheck.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <vector>

#include "zovMetamodel.h"

using zov::genericSet;
using zov::string;
using zov::fuzz::check;
using zov::metamodel::eFieldSemantics;
using zov::metamodel::eSemArea;
using zov::metamodel::eSemBits;
using zov::metamodel::eSemCustom;
using zov::metamodel::eSemDate;
using zov::metamodel::eSemEnum;
using zov::metamodel::eSemLength;
using zov::metamodel::eSemMonetary;
using zov::metamodel::eSemNone;
using zov::metamodel::eSemPrimkey;
using zov::metamodel::eSemRelation;
using zov::metamodel::eSemTime;
using zov::metamodel::eSemTimestamp;
using zov::metamodel::eSemVolume;
using zov::metamodel::fieldInfo;

namespace {

struct reading {
    bool accepted = true;
    bool outOfRange = false;
    eFieldSemantics semantic = eSemNone;
    string custom;
    std::vector<string> classes;
};

string withoutTrailingParentheses(string text) {
    while (!text.empty() && text.back() == L')')
        text.pop_back();
    return text;
}

std::vector<string> namesOf(string text) {
    text = withoutTrailingParentheses(text);
    std::erase_if(text, [](wchar_t unit) { return unit == L' ' || unit == L'\t'; });
    if (text.empty()) return {};
    std::vector<string> names(1);
    for (wchar_t const unit : text) {
        if (unit == L',')
            names.emplace_back();
        else
            names.back() += unit;
    }
    return names;
}

reading readingOf(string const& text) {
    static std::map<string, eFieldSemantics> const words{
        {L"length", eSemLength}, {L"area", eSemArea}, {L"volume", eSemVolume},       {L"monetary", eSemMonetary},
        {L"time", eSemTime},     {L"date", eSemDate}, {L"timestamp", eSemTimestamp}, {L"enum", eSemEnum},
        {L"bits", eSemBits},     {L"", eSemNone}};
    static string const customStart = L"custom(";
    static string const relationStart = L"relation(";
    string const lower = text.lower();
    reading result;
    if (lower.starts_with(L"primkey")) {
        result.semantic = eSemPrimkey;
    } else if (auto const word = words.find(lower); word != words.end()) {
        result.semantic = word->second;
    } else if (auto const custom = lower.find(customStart); custom != string::npos) {
        result.semantic = eSemCustom;
        result.custom = withoutTrailingParentheses(lower.substr(custom + customStart.size()));
    } else if (auto const relation = lower.find(relationStart); relation != string::npos) {
        result.outOfRange = relation + relationStart.size() == lower.size();
        if (!result.outOfRange) result.classes = namesOf(lower.substr(relation + relationStart.size() + 1));
        if (!result.classes.empty()) result.semantic = eSemRelation;
    } else {
        result.accepted = false;
    }
    return result;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    string const text = zov::fuzz::textFromBytes(data, size);
    reading const expected = readingOf(text);
    eFieldSemantics semantic = eSemBits;
    genericSet attribs;
    attribs.setValue(L"kept", 7, false);
    try {
        bool const accepted = fieldInfo::parseSemantics(text, semantic, attribs);
        check(!expected.outOfRange && accepted == expected.accepted && semantic == expected.semantic);
    } catch (std::out_of_range const&) {
        check(expected.outOfRange);
    }
    string* custom = nullptr;
    std::vector<string>* classes = nullptr;
    int kept = 0;
    check(attribs.getValuePtr(L"custom_semantic", custom) == (expected.semantic == eSemCustom));
    check(!custom || *custom == expected.custom);
    check(attribs.getValuePtr(fieldInfo::referencedClasses(), classes) == (expected.semantic == eSemRelation));
    check(!classes || *classes == expected.classes);
    check(attribs.getValue(L"kept", kept) && kept == 7);
    check(attribs.size() == (custom || classes ? 2u : 1u));
    return 0;
}
