#include "displayText.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <type_traits>

namespace zovModel {

using zov::string;

namespace {

struct codeRange {
    std::uint32_t mFirst;
    std::uint32_t mLast;
};

constexpr std::array cCombining{codeRange{0x300, 0x36f}, codeRange{0x200b, 0x200f}, codeRange{0x20d0, 0x20f0}};

// Hangul, the CJK blocks, full-width forms, pictographs.
constexpr std::array cWide{codeRange{0x1100, 0x115f},  codeRange{0x2e80, 0x303e}, codeRange{0x3041, 0xa4cf},
                           codeRange{0xac00, 0xd7a3},  codeRange{0xf900, 0xfaff}, codeRange{0xfe30, 0xfe6f},
                           codeRange{0xff00, 0xff60},  codeRange{0xffe0, 0xffe6}, codeRange{0x1f300, 0x1faff},
                           codeRange{0x20000, 0x3fffd}};

template <std::size_t Count>
bool isIn(std::array<codeRange, Count> const& ranges, std::uint32_t code) {
    return std::any_of(ranges.begin(), ranges.end(),
                       [code](codeRange range) { return range.mFirst <= code && code <= range.mLast; });
}

// wchar_t is signed on some platforms.
std::uint32_t codeOf(wchar_t unit) {
    return static_cast<std::make_unsigned_t<wchar_t>>(unit);
}

// Controls, and the separators that some terminals take for the end of a line.
bool isControl(std::uint32_t code) {
    return code < 0x20 || (code >= 0x7f && code < 0xa0) || code == 0x2028 || code == 0x2029;
}

string spelledOut(std::uint32_t code) {
    switch (code) {
    case '\n': return L"\\n";
    case '\r': return L"\\r";
    case '\t': return L"\\t";
    default: return string::sformat(L"\\u{%x}", static_cast<unsigned>(code));
    }
}

} // namespace

string printable(string const& text) {
    string shown;
    for (wchar_t const unit : text) {
        std::uint32_t const code = codeOf(unit);
        if (isControl(code)) {
            shown += spelledOut(code);
        } else {
            shown += unit;
        }
    }
    return shown;
}

string quoted(string const& text) {
    string marked;
    for (wchar_t const unit : text) {
        if (unit == L'"' || unit == L'\\') marked += L'\\';
        marked += unit;
    }
    return L"\"" + printable(marked) + L"\"";
}

string joined(std::vector<string> const& texts) {
    string result;
    for (string const& text : texts) {
        if (!result.empty()) result += L", ";
        result += printable(text);
    }
    return result;
}

std::size_t displayWidth(string const& text) {
    std::size_t width = 0;
    for (wchar_t const unit : text) {
        std::uint32_t const code = codeOf(unit);
        if (!isIn(cCombining, code)) width += isIn(cWide, code) ? 2u : 1u;
    }
    return width;
}

string alignedRows(std::vector<std::vector<string>> const& rows) {
    std::vector<std::size_t> widths;
    for (std::vector<string> const& cells : rows) {
        widths.resize(std::max(widths.size(), cells.size()));
        for (std::size_t at = 0; at < cells.size(); ++at)
            widths[at] = std::max(widths[at], displayWidth(cells[at]));
    }
    string text;
    for (std::vector<string> const& cells : rows) {
        string line = L"    ";
        for (std::size_t at = 0; at < cells.size(); ++at) {
            if (widths[at] == 0) continue;
            line += cells[at] + string(widths[at] - displayWidth(cells[at]) + 2, L' ');
        }
        text += line.deleteTrailing(L' ') + L"\n";
    }
    return text;
}

} // namespace zovModel
