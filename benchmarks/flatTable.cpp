#include "flatTable.h"

#include <algorithm>
#include <cwctype>
#include <utility>

namespace zov::benchmarks {

namespace {

// Four units of a name, each in sixteen bits of its own. Wider units overlap, which is good enough for a hash.
struct fourUnits {
    std::uint64_t mPacked = 0;
    bool mIsAscii = true;
};

constexpr std::uint64_t inEachUnit(std::uint64_t value) {
    return value * 0x0001'0001'0001'0001;
}

std::uint64_t packed(wchar_t first, wchar_t second, wchar_t third, wchar_t fourth) {
    return static_cast<std::uint64_t>(first) ^ (static_cast<std::uint64_t>(second) << 16) ^
           (static_cast<std::uint64_t>(third) << 32) ^ (static_cast<std::uint64_t>(fourth) << 48);
}

wchar_t foldedUnit(wchar_t unit) {
    return static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(unit)));
}

// Lower case for four ASCII units at once: the top bit of a unit's byte is set in turn when it is not below 'A' and
// not above 'Z', and becomes the bit that tells a small letter from a capital.
std::uint64_t foldedAscii(std::uint64_t units) {
    std::uint64_t const notBelowA = units + inEachUnit(0x80 - 'A');
    std::uint64_t const aboveZ = units + inEachUnit(0x7F - 'Z');
    return units | (((notBelowA & ~aboveZ) & inEachUnit(0x80)) >> 2);
}

// The four units that begin at `units`, in lower case.
fourUnits foldedFour(wchar_t const* units) {
    auto const all = static_cast<std::uint64_t>(units[0] | units[1] | units[2] | units[3]);
    if (all < 0x80) return {foldedAscii(packed(units[0], units[1], units[2], units[3])), true};
    return {packed(foldedUnit(units[0]), foldedUnit(units[1]), foldedUnit(units[2]), foldedUnit(units[3])), false};
}

// The fewer than four units of a short name, filled up with zeros.
fourUnits foldedShort(std::wstring_view name) {
    wchar_t units[4] = {};
    name.copy(units, name.size());
    return foldedFour(units);
}

// Calls `take` with each four units of a name of four at least and where they are; the last two may overlap. Ends
// when a call answers false, and answers it.
bool forEachFour(std::wstring_view name, auto const& take) {
    std::size_t const last = name.size() - 4;
    for (std::size_t at = 0; at < last; at += 4)
        if (!take(foldedFour(name.data() + at), at)) return false;
    return take(foldedFour(name.data() + last), last);
}

std::uint64_t mixed(std::uint64_t hash, std::uint64_t units) {
    hash = (hash ^ units) * 0x9e37'79b9'7f4a'7c15;
    return hash ^ (hash >> 32);
}

std::uint64_t foldedHash(std::uint64_t scope, std::wstring_view name) {
    std::uint64_t hash = scope ^ name.size();
    if (name.size() < 4) return mixed(mixed(hash, foldedShort(name).mPacked), 0);
    forEachFour(name, [&hash](fourUnits const& units, std::size_t) {
        hash = mixed(hash, units.mPacked);
        return true;
    });
    return mixed(hash, 0);
}

bool foldsUnitwise(std::wstring_view name, std::wstring_view key) {
    return std::ranges::equal(name, key, {}, foldedUnit);
}

bool foldsTo(std::wstring_view name, std::wstring_view key) {
    if (name.size() != key.size()) return false;
    if (name.size() < 4) return foldsUnitwise(name, key);
    return forEachFour(name, [&](fourUnits const& units, std::size_t at) {
        auto const expected = key.substr(at, 4);
        return units.mPacked == packed(expected[0], expected[1], expected[2], expected[3]) &&
               (units.mIsAscii || foldsUnitwise(name.substr(at, 4), expected));
    });
}

} // namespace

void flatTable::add(std::uint64_t scope, std::wstring_view name, void const* value) {
    if (2 * (mUsed + 1) > mSlots.size()) grow();
    std::uint64_t const hash = foldedHash(scope, name);
    std::wstring key(name);
    for (wchar_t& unit : key)
        unit = foldedUnit(unit);
    mSlots[firstFree(hash)] = slot{hash, scope, value, std::move(key)};
    ++mUsed;
}

void const* flatTable::find(std::uint64_t scope, std::wstring_view name) const {
    std::uint64_t const hash = foldedHash(scope, name);
    for (std::size_t at = hash & (mSlots.size() - 1);; at = (at + 1) & (mSlots.size() - 1)) {
        auto const& candidate = mSlots[at];
        if (!candidate.mValue) return nullptr;
        if (candidate.mHash == hash && candidate.mScope == scope && foldsTo(name, candidate.mKey))
            return candidate.mValue;
    }
}

void flatTable::grow() {
    std::vector<slot> former(2 * mSlots.size());
    former.swap(mSlots);
    for (auto& used : former)
        if (used.mValue) mSlots[firstFree(used.mHash)] = std::move(used);
}

std::size_t flatTable::firstFree(std::uint64_t hash) const {
    std::size_t at = hash & (mSlots.size() - 1);
    while (mSlots[at].mValue)
        at = (at + 1) & (mSlots.size() - 1);
    return at;
}

} // namespace zov::benchmarks
