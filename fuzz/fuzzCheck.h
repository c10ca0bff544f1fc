// What fuzz targets share: how they fail, and how bytes become texts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "zovString.h"

namespace zov::fuzz {

// Ends the process, so that the engine keeps the input.
inline void check(bool holds) {
    if (!holds) std::abort();
}

inline string textFromBytes(std::uint8_t const* data, std::size_t size) {
    return string::fromUtf8(std::string_view(reinterpret_cast<char const*>(data), size));
}

} // namespace zov::fuzz
