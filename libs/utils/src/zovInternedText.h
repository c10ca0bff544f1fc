// Interned texts, and looked-up texts as they are compared with them.
//
// Narrow texts (see packedText) are hashed and compared by their packed bytes, all others, called wide, unit by unit. A
// text that is looked up by its lower-case form is taken for what that form is: whatever way a text came in, equal
// (lowered) texts have the same hash.
//
//     detail::withLowered(text, [](auto const& form) { return form.hash(); });
//
// Threads: values, and constants once they are interned. Fails: never.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "zovInternedName.h"
#include "zovLowerCase.h"
#include "zovPackedText.h"

namespace zov::detail {

// Hashes of narrow and wide texts differ in the highest bit, so that they are hardly ever compared with each other.
constexpr std::uint64_t wideMark = 0x8000000000000000U;

// How a wide text is read: as it stands, or folded unit by unit on the way.
struct asWritten {
    template <class Fn>
    static void forEachUnit(std::wstring_view text, Fn&& fn) {
        for (wchar_t const unit : text)
            fn(unit);
    }
};

struct lowered {
    template <class Fn>
    static void forEachUnit(std::wstring_view text, Fn&& fn) {
        forEachLowered(text, fn);
    }
};

struct narrowText {
    packedText units;

    std::uint64_t hash() const noexcept { return units.hash() & ~wideMark; }
    packedBytes packed() const noexcept { return units.bytes(); }
    bool isThatOf(internedText const& known) const noexcept { return units.isThatOf(known.packed, known.text.size()); }
};

template <class Reading>
struct wideText {
    std::wstring_view units;

    std::uint64_t hash() const noexcept {
        std::uint64_t result = 0x9E3779B97F4A7C15U;
        Reading::forEachUnit(units, [&result](wchar_t unit) {
            result = (result ^ static_cast<std::uint64_t>(unit)) * 0x9FB21C651E98DF25U;
            result ^= result >> 32;
        });
        return result | wideMark;
    }
    packedBytes packed() const noexcept { return packedText::bytesOfNone(); }
    bool isThatOf(internedText const& known) const noexcept {
        if (units.size() != known.text.size()) return false;
        wchar_t const* expected = known.text.data();
        bool same = true;
        Reading::forEachUnit(units, [&](wchar_t unit) { same = (unit == *expected++) && same; });
        return same;
    }
};

inline std::uint64_t hashOf(internedText const& known) noexcept {
    if (known.packed == packedText::bytesOfNone()) return wideText<asWritten>{known.text}.hash();
    return narrowText{packedText(known.packed, known.text.size())}.hash();
}

// Calls `fn` with `text`, which is not empty, as a wide or as a narrow text.
template <class Fn>
auto withWritten(std::wstring_view text, Fn&& fn) {
    if (text.size() <= packedText::longest) [[likely]] {
        packedText const packed(text);
        if (packed.isNarrow()) [[likely]]
            return fn(narrowText{packed});
    }
    return fn(wideText<asWritten>{text});
}

// The same for the lower-case form of `text`. Units beyond ASCII may have a lower case within, and those beyond 255 one
// below: what the form is shows when it is made.
template <class Fn>
[[gnu::noinline]] auto withLoweredBeyondAscii(std::wstring_view text, Fn&& fn) {
    if (text.size() > packedText::longest) return fn(wideText<lowered>{text});
    std::array<wchar_t, packedText::longest> units;
    auto next = units.begin();
    forEachLowered(text, [&next](wchar_t unit) { *next++ = unit; });
    return withWritten(std::wstring_view(units.data(), text.size()), fn);
}

template <class Fn>
auto withLowered(std::wstring_view text, Fn&& fn) {
    if (text.size() <= packedText::longest) [[likely]] {
        packedText packed(text);
        if (packed.isAscii()) [[likely]] {
            packed.lowerAscii();
            return fn(narrowText{packed});
        }
    }
    return withLoweredBeyondAscii(text, fn);
}

} // namespace zov::detail
