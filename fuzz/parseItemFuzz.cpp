// Item texts, the first byte choosing the type: both parsers read alike, a refusal leaves the item alone, and what is
// accepted has the value that the first piece converts to, and the other pieces for a name.
// behaviour: EI-01
#include "fuzzCheck.h"

#include <iterator>
#include <vector>

#include "zovMetamodel.h"

using zov::genericValue;
using zov::string;
using zov::fuzz::check;
using zov::metamodel::eFieldType;
using zov::metamodel::enumItem;
using zov::metamodel::fieldInfo;

namespace {

constexpr eFieldType types[] = {zov::metamodel::eBool,      zov::metamodel::eShort,       zov::metamodel::eInt,
                                zov::metamodel::eLong,      zov::metamodel::eFloat,       zov::metamodel::eDouble,
                                zov::metamodel::eString,    zov::metamodel::eDate,        zov::metamodel::eTime,
                                zov::metamodel::eTimestamp, zov::metamodel::eBinary,      zov::metamodel::eDirectory,
                                zov::metamodel::eFile,      zov::metamodel::eSearchPath,  zov::metamodel::ePtr,
                                zov::metamodel::eCustom,    static_cast<eFieldType>(0x20)};

bool isBlank(wchar_t unit) {
    return unit == L' ' || unit == L'\t';
}

std::vector<string> piecesOf(string const& text) {
    std::vector<string> pieces(1);
    for (wchar_t const unit : text) {
        if (unit == L',')
            pieces.emplace_back();
        else
            pieces.back() += unit;
    }
    return pieces;
}

string nameOf(std::vector<string> pieces) {
    string& first = pieces[1];
    while (!first.empty() && isBlank(first.front()))
        first.erase(0, 1);
    string& last = pieces.back();
    while (!last.empty() && isBlank(last.back()))
        last.pop_back();
    string name;
    for (std::size_t at = 1; at < pieces.size(); ++at)
        name += pieces[at];
    return name;
}

template <class... T>
bool holdTheSame(genericValue const& one, genericValue const& other) {
    auto const same = []<class Held>(Held const* left, Held const* right) { return left && right && *left == *right; };
    return (same(one.valuePtr<T>(), other.valuePtr<T>()) || ...);
}

bool areEqual(genericValue const& one, genericValue const& other) {
    return holdTheSame<bool, short, int, long, float, double, string, zov::date, zov::time, zov::timestamp,
                       zov::binaryBuffer, zov::directory, zov::file, zov::searchPath>(one, other);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size == 0) return 0;
    eFieldType const type = types[data[0] % std::size(types)];
    string const text = zov::fuzz::textFromBytes(data + 1, size - 1);
    std::vector<string> pieces = piecesOf(text);
    std::erase_if(pieces[0], isBlank);
    genericValue expected;
    if (!fieldInfo::getDefaultFromType(type, expected)) expected = genericValue(string());
    bool const readable = pieces.size() >= 2 && expected.assignText(pieces[0]);

    genericValue const before(std::vector<int>{7});
    enumItem item{before, L"before"};
    enumItem bits = item;
    check(fieldInfo::parseEnumItem(text, type, item) == readable);
    check(fieldInfo::parseBitsItem(text, type, bits) == readable);
    if (readable) {
        check(areEqual(item.mValue, expected) && areEqual(bits.mValue, expected));
        check(item.mName == nameOf(pieces) && bits.mName == item.mName);
    } else {
        check(item.mValue.valuePtr<std::vector<int>>() && item.mName == L"before");
        check(bits.mValue.valuePtr<std::vector<int>>() && bits.mName == L"before");
    }
    return 0;
}
