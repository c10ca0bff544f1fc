// Type texts: a refusal leaves the type alone, an accepted text names a type that is written back as itself.
// behaviour: FT-01
#include "fuzzCheck.h"
#include "zovMetamodel.h"

using zov::fuzz::check;
using zov::metamodel::eFieldType;
using zov::metamodel::eString;
using zov::metamodel::fieldInfo;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    constexpr auto untouched = static_cast<eFieldType>(0x4);
    zov::string const text = zov::fuzz::textFromBytes(data, size);
    eFieldType type = untouched;
    unsigned long length = 99;
    bool const accepted = fieldInfo::parseType(text, type, length);
    check(accepted ? type != untouched : type == untouched && length == 0);
    check(length == 0 || type == eString);
    if (accepted) {
        eFieldType again = untouched;
        unsigned long none = 99;
        check(fieldInfo::parseType(fieldInfo::typeStringFromType(type).string(), again, none));
        check(again == type && none == 0);
    }
    return 0;
}
