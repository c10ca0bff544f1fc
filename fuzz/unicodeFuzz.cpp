// Bytes as UTF-8: reading never fails, what was read survives every border, and folding keeps the length.
// behaviour: ST-01
#include "fuzzCheck.h"
#include "zovScString.h"

using zov::fuzz::check;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    zov::string const text = zov::fuzz::textFromBytes(data, size);
    check(zov::string::fromUtf8(text.toUtf8()) == text);
    check(zov::string::fromUtf16(text.toUtf16()) == text);
    zov::string const folded = text.lower();
    check(folded.size() == text.size());
    // Interned texts stay: only short ones are, so that long runs keep within the engine's memory.
    if (folded.size() <= 16) {
        auto const name = zov::scString::createFrom(folded);
        check(zov::scString::findLowered(text) == name);
    }
    return 0;
}
