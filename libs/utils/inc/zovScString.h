// Interned names: a name is one pointer, and equal names are equal pointers.
//
//     scString a = scString::createFrom(L"width");
//     scString b = scString::createFrom(L"width");   // a == b: the same handle
//     a.string();                                    // L"width"
//     scString::find(L"never interned");             // empty: asking adds nothing
//
// Interned texts live as long as the process. Therefore only createFrom adds to the table; whoever merely looks
// something up asks find or findLowered, and any number of unknown names leaves memory as it was.
//
// Threads: any thread may call anything. Equal texts give equal handles from every thread and every shared
// library of the process. find and findLowered take no lock and allocate nothing.
#pragma once

#include <compare>
#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>

#include "zovString.h"
#include "zovUtilsApi.h"

namespace zov {

namespace detail {
struct internedText;
}

class ZOV_UTILS_API scString {
public:
    // The handle of the empty text; cannot fail.
    constexpr scString() noexcept = default;

    // The handle of `text`, which is interned if it was not. A null text counts as the empty one.
    // Throws std::bad_alloc; the table is then as before.
    static scString createFrom(zov::string const& text);
    static scString createFrom(wchar_t const* text);
    static scString createFrom(std::wstring_view text);

    // The handle of a text that has been interned before, else empty.
    static std::optional<scString> find(std::wstring_view text) noexcept;

    // The same for the lower-case form of `text`, which is folded while it is compared: no copy is made.
    static std::optional<scString> findLowered(std::wstring_view text) noexcept;

    // The text. The reference stays valid as long as the process.
    zov::string const& string() const noexcept;

    // Handles are equal exactly when texts are. The order is that of the handles' addresses: stable while the
    // process runs, not alphabetical, and another one in the next run.
    friend bool operator==(scString, scString) noexcept = default;
    friend std::strong_ordering operator<=>(scString left, scString right) noexcept {
        return std::compare_three_way()(left.mText, right.mText);
    }

private:
    friend struct std::hash<scString>;
    friend class filedName;
    friend class nameKey;

    explicit constexpr scString(detail::internedText const* text) noexcept : mText(text) {}

    detail::internedText const* mText = nullptr; // null is the empty text
};

} // namespace zov

template <>
struct std::hash<zov::scString> {
    std::size_t operator()(zov::scString name) const noexcept { return std::hash<void const*>()(name.mText); }
};
