// Texts as UTF-8, byte by byte, for whoever writes them without a copy.
#pragma once

#include <string_view>

#include "zovLowerCase.h"

namespace zov {

// Calls `fn` with each byte that spells `codePoint`, which must be a scalar value.
template <class Fn>
void forEachUtf8Byte(char32_t codePoint, Fn&& fn) {
    auto const tail = [codePoint](int shift) { return static_cast<char>(0x80 | (codePoint >> shift & 0x3F)); };
    if (codePoint < 0x80) {
        fn(static_cast<char>(codePoint));
        return;
    }
    if (codePoint < 0x800) {
        fn(static_cast<char>(0xC0 | codePoint >> 6));
    } else {
        if (codePoint < 0x10000) {
            fn(static_cast<char>(0xE0 | codePoint >> 12));
        } else {
            fn(static_cast<char>(0xF0 | codePoint >> 18));
            fn(tail(12));
        }
        fn(tail(6));
    }
    fn(tail(0));
}

// The same for a whole text; what is no scalar value is written as U+FFFD.
template <class Fn>
void forEachUtf8Byte(std::wstring_view text, Fn&& fn) {
    forEachCodePoint(
        text, [&fn](char32_t value) { forEachUtf8Byte(isScalarValue(value) ? value : replacementCodePoint, fn); });
}

} // namespace zov
