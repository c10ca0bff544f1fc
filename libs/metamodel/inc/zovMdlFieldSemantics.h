// What a field's value means beyond its type.
#pragma once

#include <cstdint>

namespace zov::metamodel {

enum eFieldSemantics : std::uint32_t {
    eSemNone = 0,
    eSemLength = 0x10000,
    eSemArea = 0x20000,
    eSemVolume = 0x40000,
    eSemMonetary = 0x80000,
    eSemDate = 0x100000,
    eSemTime = 0x200000,
    eSemTimestamp = 0x400000,
    eSemEnum = 0x800000,
    eSemRelation = 0x1000000,
    eSemPrimkey = 0x2000000, // the field is one of those that identify an object
    eSemBits = 0x4000000,
    eSemCustom = 0x80000000 // named by the host
};

} // namespace zov::metamodel
