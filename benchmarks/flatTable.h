// One open-addressing hash table for names in any letter case, which answers a plain pointer: no counting, no
// publishing, no inheritance. About as fast as the machine can answer; the yardstick of the other contenders.
//
// Names are folded while they are hashed and again while they are compared, four units at a time while they are ASCII.
// A scope sets equal names apart: that of a class, say, or 0.
//
// Ownership: keys are owned, values are not. Threads: any number of readers, or one writer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zov::benchmarks {

class flatTable {
public:
    flatTable() : mSlots(64) {}

    // Adds a name that is not there yet.
    void add(std::uint64_t scope, std::wstring_view name, void const* value);

    // The value of the name, or null.
    void const* find(std::uint64_t scope, std::wstring_view name) const;

private:
    struct slot {
        std::uint64_t mHash = 0;
        std::uint64_t mScope = 0;
        void const* mValue = nullptr; // null in a free slot
        std::wstring mKey;            // folded
    };

    void grow();
    std::size_t firstFree(std::uint64_t hash) const;

    std::vector<slot> mSlots; // a power of two, half of them free at least
    std::size_t mUsed = 0;
};

} // namespace zov::benchmarks
