// How the text of an interned name lies in memory: for zovNameKey.h, whose comparisons are made where tables are
// looked through. Whoever wants a name's text asks scString::string().
#pragma once

#include <array>
#include <cstdint>

#include "zovString.h"

namespace zov::detail {

// The bytes of a packed text where they are kept.
struct alignas(16) packedBytes {
    std::array<std::uint64_t, 4> words{};

    friend constexpr bool operator==(packedBytes const& left, packedBytes const& right) noexcept {
        return ((left.words[0] ^ right.words[0]) | (left.words[1] ^ right.words[1]) | (left.words[2] ^ right.words[2]) |
                (left.words[3] ^ right.words[3])) == 0;
    }
};

// An interned text behind its packed form. Never changed, never freed. One cache line, where a string takes no more
// room than four pointers.
struct alignas(64) internedText {
    packedBytes packed;
    string text;
};

} // namespace zov::detail
