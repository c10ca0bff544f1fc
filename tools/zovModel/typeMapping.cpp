#include "typeMapping.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <string_view>

#include <zovMdlFieldInfo.h>

namespace zovModel {

using zov::string;
using zov::metamodel::eFieldType;
using zov::metamodel::fieldInfo;

namespace {

enum class match { contains, is };

struct mappingRow {
    match mMatch;
    std::wstring_view mWord; // in the declared type, in lower case
    wchar_t const* mTypeText;
};

// The first row that fits decides. The upper rows are SQLite's rules of affinity in SQLite's order: since a column
// takes any value of its affinity, whatever width was declared, each has the widest type. The lower rows are words
// of which affinity says nothing; declared types that no row fits are tried as type texts of the library themselves.
// docs/tool.md shows this table.
constexpr std::array cMapping{
    mappingRow{match::contains, L"int", L"long"},     mappingRow{match::contains, L"char", L"string"},
    mappingRow{match::contains, L"clob", L"string"},  mappingRow{match::contains, L"text", L"string"},
    mappingRow{match::contains, L"blob", L"binary"},  mappingRow{match::is, L"", L"binary"},
    mappingRow{match::contains, L"real", L"double"},  mappingRow{match::contains, L"floa", L"double"},
    mappingRow{match::contains, L"doub", L"double"},  mappingRow{match::is, L"boolean", L"bool"},
    mappingRow{match::is, L"datetime", L"timestamp"}, mappingRow{match::is, L"numeric", L"double"},
    mappingRow{match::is, L"decimal", L"double"},     mappingRow{match::is, L"varbinary", L"binary"},
};

// As SQLite folds the words that it looks for: the letters A to Z only.
string lowerAscii(string text) {
    for (wchar_t& unit : text) {
        if (unit >= L'A' && unit <= L'Z') unit = static_cast<wchar_t>(unit - L'A' + L'a');
    }
    return text;
}

// The text before the first parenthesis, without blanks around it.
string wordOf(string const& declared) {
    string word(declared, 0, declared.find(L'('));
    return word.deleteLeading(L" \t\r\n").deleteTrailing(L" \t\r\n");
}

// The first parenthesis with what is in it, without blanks; empty when there is none.
string argumentOf(string const& declared) {
    std::size_t const begin = declared.find(L'(');
    if (begin == string::npos) return string();
    std::size_t const end = declared.find(L')', begin);
    string argument(declared, begin, end == string::npos ? end : end + 1 - begin);
    return argument.deleteAll(L" \t\r\n");
}

wchar_t const* mappedText(string const& declared, string const& word) {
    auto const row = std::find_if(cMapping.begin(), cMapping.end(), [&](mappingRow const& candidate) {
        if (candidate.mMatch == match::is) return word == candidate.mWord;
        return declared.find(candidate.mWord) != string::npos;
    });
    return row == cMapping.end() ? nullptr : row->mTypeText;
}

// The type of the first of the texts that is one; a custom type when none is.
columnType firstType(std::initializer_list<string> texts, string const& declared) {
    columnType result{eFieldType::eCustom, 0, string()};
    for (string const& text : texts) {
        if (fieldInfo::parseType(text, result.mType, result.mLength)) return result;
    }
    result.mCustomText = declared;
    return result;
}

} // namespace

columnType typeOfColumn(string const& declared) {
    string const folded = lowerAscii(declared);
    string const word = wordOf(folded);
    wchar_t const* const text = mappedText(folded, word);
    if (!text) return firstType({folded, word}, declared);
    // Only a string takes a length, and not every length: (0) and (max) are refused.
    return firstType({text + argumentOf(folded), text}, declared);
}

} // namespace zovModel
