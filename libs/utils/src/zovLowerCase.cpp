#include "zovLowerCase.h"

#include <cstdint>
#include <iterator>

namespace zov {

namespace {

#include "zovLowerCaseTable.inc"

} // namespace

char32_t lowerCodePointAboveAscii(char32_t codePoint) noexcept {
    auto const block = codePoint >> lowerBlockBits;
    if (block >= std::size(lowerBlockOf)) return codePoint;
    char32_t const offset = lowerOffsets[lowerBlockOf[block]][codePoint & ((1U << lowerBlockBits) - 1)];
    // Both ends of a mapping lie in one plane, so 16 bits hold every offset.
    return (codePoint & ~char32_t{0xFFFF}) | ((codePoint + offset) & 0xFFFF);
}

} // namespace zov
