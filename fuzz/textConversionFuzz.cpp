// Texts into values of every type: a refusal leaves the value alone, and what was read comes back from its own text.
// behaviour: TC-01
#include "fuzzCheck.h"
#include "zovGenericValue.h"

namespace {

using zov::genericValue;
using zov::fuzz::check;

template <class T>
void readAndWriteBack(zov::string const& text, T const& start) {
    genericValue value(start);
    if (!value.assignText(text)) {
        check(*value.valuePtr<T>() == start);
        return;
    }
    zov::string written;
    check(value.getValue(written));
    genericValue again(start);
    check(again.assignText(written));
    check(*again.valuePtr<T>() == *value.valuePtr<T>());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    zov::string const text = zov::fuzz::textFromBytes(data, size);
    readAndWriteBack(text, false);
    readAndWriteBack(text, short{7});
    readAndWriteBack(text, 7);
    readAndWriteBack(text, 7L);
    readAndWriteBack(text, 7.5F);
    readAndWriteBack(text, 7.5);
    readAndWriteBack(text, zov::date(2001, 2, 3));
    readAndWriteBack(text, zov::time(1, 2, 3, 4));
    readAndWriteBack(text, zov::timestamp(zov::date(2001, 2, 3), zov::time(1, 2, 3, 4)));
    readAndWriteBack(text, zov::binaryBuffer(3));
    return 0;
}
