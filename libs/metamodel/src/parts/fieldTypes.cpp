#include "parts/fieldTypes.h"

#include <string_view>

namespace zov::metamodel {

namespace {

// One row a type that has a text, in the order of values.
struct typeRow {
    eFieldType type;
    std::wstring_view text;
};

constexpr typeRow typeRows[] = {
    {eBool, L"bool"},   {eShort, L"short"},           {eInt, L"int"},       {eLong, L"long"},
    {eFloat, L"float"}, {eDouble, L"double"},         {eString, L"string"}, {eDate, L"date"},
    {eTime, L"time"},   {eTimestamp, L"timestamp"},   {eBinary, L"binary"}, {eDirectory, L"directory"},
    {eFile, L"file"},   {eSearchPath, L"searchpath"}, {ePtr, L"ptr"},
};

constexpr std::wstring_view stringText = L"string";

// The length of a text that begins with "string"; 0 when it declares none. Answers false when it declares one that
// is no number, or 0.
bool parseStringLength(string text, unsigned long& length) {
    std::size_t const opening = text.find(L'(');
    // KEEP FT-05: only a parenthesis right behind the word counts, so that stringx(5) is a string of no length.
    if (opening != stringText.size()) return true;
    std::size_t const closing = text.find(L')');
    // KEEP FT-06: without something between the parentheses the whole text is read as the number, and refused.
    // What stands from the closing parenthesis on goes to the conversion too, which ignores it.
    if (closing != string::npos && closing >= opening + 2) text.erase(0, opening + 1);
    unsigned long declared = 0;
    if (!string::dtconvert<unsigned long, string>(declared, text, 0, nullptr) || declared == 0) return false;
    length = declared;
    return true;
}

} // namespace

bool parseTypeText(string const& text, eFieldType& type, unsigned long& length) {
    length = 0;
    string folded = text.lower();
    folded.deleteAll(L" \t");
    if (folded.starts_with(stringText)) {
        if (!parseStringLength(folded, length)) return false;
        type = eString;
        return true;
    }
    for (auto const& row : typeRows) {
        if (folded != row.text) continue;
        type = row.type;
        return true;
    }
    return false;
}

scString typeText(eFieldType type) {
    for (auto const& row : typeRows) {
        if (row.type == type) return scString::createFrom(row.text);
    }
    return scString();
}

} // namespace zov::metamodel
