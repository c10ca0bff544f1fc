// The value types of fields. Each is one bit, so that hosts can form sets of them; stored values keep their
// meaning, which is why 0x4 and 0x20 stay unassigned.
#pragma once

#include <cstdint>

namespace zov::metamodel {

enum eFieldType : std::uint32_t {
    eBool = 0x1,
    eShort = 0x2,
    eInt = 0x8,
    eLong = 0x10, // the platform's long
    eFloat = 0x40,
    eDouble = 0x80,
    eString = 0x100,
    eDate = 0x200,
    eTime = 0x400,
    eTimestamp = 0x800,
    eBinary = 0x1000,
    eDirectory = 0x2000,
    eFile = 0x4000,
    eSearchPath = 0x8000,
    ePtr = 0x40000000,
    eCustom = 0x80000000 // named by the field's own type text
};

} // namespace zov::metamodel
