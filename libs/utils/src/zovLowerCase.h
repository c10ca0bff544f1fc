// Code points of texts, and their lower case by Unicode's simple mapping.
//
// A simple mapping turns one code point into one code point of the same plane, so a lowered text has as many
// units as the text it came from, in 16-bit and in 32-bit units alike. That is what lets names be folded while
// they are hashed or compared, without a copy:
//
//     std::size_t hash = 0;
//     zov::forEachLowered(L"Part", [&](wchar_t unit) { hash = hash * 31 + static_cast<std::size_t>(unit); });
//
// Threads: pure functions. Fails: never, unless the given function throws.
#pragma once

#include <cstddef>
#include <string_view>
#include <type_traits>

namespace zov {

// What stands for a piece of text that is no code point.
inline constexpr char32_t replacementCodePoint = 0xFFFD;

// The lower case of a code point above U+007F; the code point itself where it has none.
char32_t lowerCodePointAboveAscii(char32_t codePoint) noexcept;

// The lower case of a code point; anything that has none, values that are no code point included, stays.
inline char32_t lowerCodePoint(char32_t codePoint) noexcept {
    if (codePoint < 0x80) return codePoint - U'A' < 26 ? codePoint + (U'a' - U'A') : codePoint;
    return lowerCodePointAboveAscii(codePoint);
}

constexpr bool isSurrogate(char32_t value) noexcept {
    return value - 0xD800 < 0x800;
}
constexpr bool isHighSurrogate(char32_t value) noexcept {
    return value - 0xD800 < 0x400;
}
constexpr bool isLowSurrogate(char32_t value) noexcept {
    return value - 0xDC00 < 0x400;
}

// Whether a value can be written in UTF-8, UTF-16 and UTF-32.
constexpr bool isScalarValue(char32_t value) noexcept {
    return value <= 0x10FFFF && !isSurrogate(value);
}

// Calls `fn` with each code point of `text`, in order. Units of 16 bits are joined in pairs; what is no code point
// (a lone surrogate, a 32-bit unit above U+10FFFF) is handed out as the value it has.
template <class Unit, class Fn>
void forEachCodePoint(std::basic_string_view<Unit> text, Fn&& fn) {
    static_assert(sizeof(Unit) == 2 || sizeof(Unit) == 4);
    for (std::size_t at = 0; at < text.size(); ++at) {
        auto value = static_cast<char32_t>(text[at]);
        if constexpr (sizeof(Unit) == 2) {
            bool const pairs =
                isHighSurrogate(value) && at + 1 < text.size() && isLowSurrogate(static_cast<char32_t>(text[at + 1]));
            if (pairs) value = 0x10000 + ((value - 0xD800) << 10) + (static_cast<char32_t>(text[++at]) - 0xDC00);
        }
        fn(value);
    }
}

// Calls `fn` with the units that spell `codePoint`: two where a unit has 16 bits and the value needs them.
template <class Unit, class Fn>
void forEachUnitOf(char32_t codePoint, Fn&& fn) {
    if constexpr (sizeof(Unit) == 2) {
        if (codePoint >= 0x10000 && codePoint <= 0x10FFFF) {
            fn(static_cast<Unit>(0xD800 + ((codePoint - 0x10000) >> 10)));
            fn(static_cast<Unit>(0xDC00 + ((codePoint - 0x10000) & 0x3FF)));
            return;
        }
    }
    fn(static_cast<Unit>(codePoint));
}

// forEachLowered for a text of any unit.
template <class Unit, class Fn>
void forEachLoweredUnit(std::basic_string_view<Unit> text, Fn&& fn) {
    forEachCodePoint(text, [&fn](char32_t codePoint) { forEachUnitOf<Unit>(lowerCodePoint(codePoint), fn); });
}

// Calls `fn` with each unit of the lowered `text`, in order; there are exactly text.size() of them.
template <class Fn>
void forEachLowered(std::wstring_view text, Fn&& fn) {
    forEachLoweredUnit(text, fn);
}

} // namespace zov
