// The library's text: a std::wstring with the operations that the library and its hosts share.
//
// The unit is the platform's wchar_t: UTF-16 where it has 16 bits, UTF-32 where it has 32. UTF-8 and UTF-16
// cross that border through fromUtf8, toUtf8, fromUtf16 and toUtf16, which replace what is ill-formed by
// U+FFFD and never fail for the sake of a text. Nothing here depends on the locale.
//
//     zov::string kind(L" String (80) ");
//     kind.deleteAll(L" \t");                               // "String(80)"
//     kind = kind.lower();                                  // "string(80)"
//     unsigned long length = 0;
//     zov::string::dtconvert(length, zov::string(L"80)"));  // true, length is 80
//     zov::string::sformat(L"%s: %d", kind.c_str(), 7);     // "string(80): 7"
//
// Ownership: a value; it owns its units as std::wstring does.
// Threads: as std::wstring: any number of readers, or one writer. The static members may be called from any thread.
// Fails: std::bad_alloc (std::length_error for a text beyond max_size()); nothing changed then, unless a member
// says otherwise.
#pragma once

#include <concepts>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zovUtilsApi.h"

namespace zov {

class ZOV_UTILS_TYPE string : public std::wstring {
public:
    // Everything that makes a std::wstring makes a string; a std::wstring_view does so explicitly.
    using std::wstring::wstring;
    string() = default;
    string(std::wstring const& text) : std::wstring(text) {}
    string(std::wstring&& text) noexcept : std::wstring(std::move(text)) {}
    string(std::nullptr_t) = delete;

    using std::wstring::operator=;

    // A copy in lower case by Unicode's simple mapping: one code point becomes one code point, in the same number
    // of units, in every locale. Units that are no code point (a lone surrogate, a value above U+10FFFF) stay.
    ZOV_UTILS_API string lower() const;

    // printf-style formatting of wide text, the same on every platform and in every locale.
    //   %s, %ls          a wide text (wchar_t const*), null written as (null); %hs a narrow one in UTF-8
    //   %c, %lc          one wide unit
    //   %d %i %u %o %x %X, with hh h l ll j z t   whole numbers
    //   %f %F %e %E %g %G %a %A, with L           floating numbers, with a decimal point
    //   %p, %%           a pointer in hexadecimal, the percent sign
    // The flags - + blank # 0, a width and a precision, * included, mean what they mean in C. The result has no
    // length limit. A format that is none of this (an unknown letter, an end inside a conversion, %n, a width or a
    // precision above 1,000,000) yields the empty text, and so does a null format. The arguments must fit the format,
    // as with printf.
    ZOV_UTILS_API static string sformat(wchar_t const* format, ...);

    // Splits the text at each occurrence of `separator` and replaces what `pieces` held by the pieces, in order: n
    // separators give n + 1 pieces, the empty text gives none, and an empty separator gives the whole text as one.
    // With `skipEmpty`, pieces without any unit are left out. The text and the separator may be elements of `pieces`.
    // Fails: std::bad_alloc, and `pieces` is as before.
    ZOV_UTILS_API void splitAt(string const& separator, std::vector<zov::string>& pieces, bool skipEmpty) const;

    // Removes every occurrence of a unit, or of each unit of `units`, wherever it stands. Returns this string.
    // Fails: the second form with std::bad_alloc, only when `units` views this very text.
    ZOV_UTILS_API string& deleteAll(wchar_t unit) noexcept;
    ZOV_UTILS_API string& deleteAll(std::wstring_view units);

    // Removes the run of units of `units` at the start. Returns this string. Fails: never.
    ZOV_UTILS_API string& deleteLeading(std::wstring_view units) noexcept;

    // Removes the run of a unit, or of units of `units`, at the end. Returns this string. Fails: never.
    ZOV_UTILS_API string& deleteTrailing(wchar_t unit) noexcept;
    ZOV_UTILS_API string& deleteTrailing(std::wstring_view units) noexcept;

    // Reads a number from the start of `in`: the leading run of the decimal digits 0 to 9; what follows is ignored.
    // Answers false, and leaves `out` as it was, when there is no digit at the start (a blank or a sign is none) or
    // when the number does not fit. The last two arguments are accepted and ignored.
    template <std::same_as<unsigned long> Target, std::same_as<zov::string> Source>
    static bool dtconvert(Target& out, Source const& in, int = 0, char* = nullptr) noexcept {
        return readLeadingNumber(out, in);
    }

    // The text that UTF-8 or UTF-16 spells; each maximal ill-formed piece becomes one U+FFFD.
    ZOV_UTILS_API static string fromUtf8(std::string_view text);
    ZOV_UTILS_API static string fromUtf16(std::u16string_view text);

    // The text in UTF-8 or UTF-16, always well-formed: a lone surrogate or a value above U+10FFFF becomes U+FFFD.
    ZOV_UTILS_API std::string toUtf8() const;
    ZOV_UTILS_API std::u16string toUtf16() const;

private:
    ZOV_UTILS_API static bool readLeadingNumber(unsigned long& out, std::wstring_view text) noexcept;
};

} // namespace zov

// Hashes as the std::wstring of the same text.
template <>
struct std::hash<zov::string> : std::hash<std::wstring> {};
