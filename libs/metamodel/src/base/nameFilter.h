// Which names a list may have, in two words: most lists that do not have a name can tell so by the filter, without
// being looked at. A name has two bits in one of the words; with some twenty names in it, fourteen of fifteen others
// are turned away.
//
// Threads: names are added by one thread at a time, beside readers; they are never taken out.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

#include "zovNameKey.h"

namespace zov::metamodel {

class nameFilter {
public:
    // To be called before readers can find the name.
    void add(nameKey const& name) noexcept {
        auto& word = mWords[wordOf(name)];
        word.store(word.load(std::memory_order_relaxed) | bitsOf(name), std::memory_order_release);
    }

    bool mayHave(nameKey const& name) const noexcept {
        std::uint64_t const bits = bitsOf(name);
        return (mWords[wordOf(name)].load(std::memory_order_acquire) & bits) == bits;
    }

private:
    // Of the hash, parts that lists of less than a million names do not go by.
    static std::size_t wordOf(nameKey const& name) noexcept { return name.hash() >> 20 & 1; }
    static std::uint64_t bitsOf(nameKey const& name) noexcept {
        return std::uint64_t{1} << (name.hash() >> 21 & 63) | std::uint64_t{1} << (name.hash() >> 27 & 63);
    }

    std::array<std::atomic<std::uint64_t>, 2> mWords{};
};

} // namespace zov::metamodel
