#include "zovString.h"

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <limits>
#include <optional>
#include <type_traits>

#include "zovFormat.h"
#include "zovLowerCase.h"
#include "zovUtf8.h"

namespace zov {

namespace {

template <class Unit>
void appendCodePoint(std::basic_string<Unit>& out, char32_t codePoint) {
    forEachUnitOf<Unit>(codePoint, [&out](Unit unit) { out += unit; });
}

char32_t scalarOrReplacement(char32_t value) noexcept {
    return isScalarValue(value) ? value : replacementCodePoint;
}

// What a lead byte of UTF-8 promises: how many bytes follow, the bits it carries, and the range of the first one
// that follows, which is narrower where a longer spelling, a surrogate or a value above U+10FFFF would begin.
struct utf8Lead {
    int mFollowing;
    char32_t mBits;
    unsigned char mLowest = 0x80;
    unsigned char mHighest = 0xBF;
};

std::optional<utf8Lead> readUtf8Lead(unsigned char byte) noexcept {
    if (byte < 0x80) return utf8Lead{0, byte};
    if (byte >= 0xC2 && byte <= 0xDF) return utf8Lead{1, byte & 0x1FU};
    if (byte >= 0xE0 && byte <= 0xEF) {
        auto const lowest = static_cast<unsigned char>(byte == 0xE0 ? 0xA0 : 0x80);
        auto const highest = static_cast<unsigned char>(byte == 0xED ? 0x9F : 0xBF);
        return utf8Lead{2, byte & 0x0FU, lowest, highest};
    }
    if (byte >= 0xF0 && byte <= 0xF4) {
        auto const lowest = static_cast<unsigned char>(byte == 0xF0 ? 0x90 : 0x80);
        auto const highest = static_cast<unsigned char>(byte == 0xF4 ? 0x8F : 0xBF);
        return utf8Lead{3, byte & 0x07U, lowest, highest};
    }
    return std::nullopt;
}

// Reads one code point and moves `at` behind it, or behind the maximal ill-formed piece.
char32_t readUtf8(std::string_view text, std::size_t& at) noexcept {
    auto const lead = readUtf8Lead(static_cast<unsigned char>(text[at++]));
    if (!lead) return replacementCodePoint;
    char32_t value = lead->mBits;
    unsigned char lowest = lead->mLowest;
    unsigned char highest = lead->mHighest;
    for (int left = lead->mFollowing; left > 0; --left) {
        if (at == text.size()) return replacementCodePoint;
        auto const byte = static_cast<unsigned char>(text[at]);
        if (byte < lowest || byte > highest) return replacementCodePoint;
        value = value << 6 | (byte & 0x3FU);
        lowest = 0x80;
        highest = 0xBF;
        ++at;
    }
    return value;
}

// Makes a text of ASCII its lower case. Answers false for any other, which is then half done. There is no way out of
// the loop before its end, so that it can take several units at a time.
bool lowerAscii(std::wstring& text) noexcept {
    char32_t seen = 0;
    for (wchar_t& unit : text) {
        auto const value = static_cast<char32_t>(unit);
        seen |= value;
        unit = static_cast<wchar_t>(value - U'A' < 26 ? value + (U'a' - U'A') : value);
    }
    return seen < 0x80;
}

} // namespace

string string::lower() const {
    string result(*this);
    if (!lowerAscii(result)) {
        auto next = result.begin();
        forEachLowered(*this, [&next](wchar_t unit) { *next++ = unit; });
    }
    return result;
}

string string::sformat(wchar_t const* format, ...) {
    if (format == nullptr) return {};
    std::va_list list;
    va_start(list, format);
    formatArguments values(list);
    va_end(list);
    return formatText(format, values);
}

void string::splitAt(string const& separator, std::vector<zov::string>& pieces, bool skipEmpty) const {
    std::vector<zov::string> found;
    std::wstring_view rest = *this;
    bool more = !rest.empty();
    while (more) {
        std::size_t const end = separator.empty() ? npos : rest.find(separator);
        more = end != npos;
        std::wstring_view const piece = rest.substr(0, end);
        if (!skipEmpty || !piece.empty()) found.emplace_back(piece);
        if (more) rest.remove_prefix(end + separator.size());
    }
    pieces = std::move(found);
}

string& string::deleteAll(wchar_t unit) noexcept {
    std::erase(*this, unit);
    return *this;
}

string& string::deleteAll(std::wstring_view units) {
    std::less<> const before;
    bool const viewsThis = !before(units.data(), data()) && before(units.data(), data() + size());
    // What is looked up must not move while units are taken out.
    if (viewsThis) return deleteAll(std::wstring_view(std::wstring(units)));
    std::erase_if(*this, [units](wchar_t unit) { return units.find(unit) != npos; });
    return *this;
}

string& string::deleteLeading(std::wstring_view units) noexcept {
    erase(0, std::min(find_first_not_of(units), size()));
    return *this;
}

string& string::deleteTrailing(wchar_t unit) noexcept {
    return deleteTrailing(std::wstring_view(&unit, 1));
}

string& string::deleteTrailing(std::wstring_view units) noexcept {
    // With nothing to keep, npos + 1 is 0.
    erase(find_last_not_of(units) + 1);
    return *this;
}

bool string::readLeadingNumber(unsigned long& out, std::wstring_view text) noexcept {
    constexpr unsigned long largest = std::numeric_limits<unsigned long>::max();
    unsigned long value = 0;
    std::size_t digits = 0;
    for (; digits < text.size() && isDigit(text[digits]); ++digits) {
        auto const digit = static_cast<unsigned long>(text[digits] - L'0');
        if (value > (largest - digit) / 10) return false;
        value = value * 10 + digit;
    }
    if (digits == 0) return false;
    out = value;
    return true;
}

string string::fromUtf8(std::string_view text) {
    string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size();)
        appendCodePoint<wchar_t>(result, readUtf8(text, at));
    return result;
}

string string::fromUtf16(std::u16string_view text) {
    string result;
    result.reserve(text.size());
    forEachCodePoint(text, [&result](char32_t value) { appendCodePoint<wchar_t>(result, scalarOrReplacement(value)); });
    return result;
}

std::string string::toUtf8() const {
    std::string result;
    result.reserve(size());
    forEachUtf8Byte(*this, [&result](char byte) { result += byte; });
    return result;
}

std::u16string string::toUtf16() const {
    std::u16string result;
    result.reserve(size());
    auto const append = [&result](char32_t value) { appendCodePoint<char16_t>(result, scalarOrReplacement(value)); };
    forEachCodePoint(std::wstring_view(*this), append);
    return result;
}

} // namespace zov
