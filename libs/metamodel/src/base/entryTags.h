// Where in a list an entry with a key may lie: eight bits of the key of each of the first entries, side by side, so
// that short lists need no index, and which entry to look at is known before the list itself is looked at.
//
//     tags.set(position, key);                                           // before readers may find the entry
//     tags.any(key, [&](std::size_t position) { return isIt(position); });
//
// Threads: one thread at a time sets, beside readers. Nothing is taken out: readers check what they are led to.
#pragma once

#include <array>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace zov::metamodel {

class entryTags {
public:
    static constexpr std::size_t count = 24; // of entries that have a tag

    void set(std::size_t position, std::uint64_t key) noexcept {
        std::atomic<std::uint64_t>& word = mWords[position % mWords.size()];
        std::size_t const shift = position / mWords.size() * 8;
        std::uint64_t const others = word.load(std::memory_order_relaxed) & ~(std::uint64_t{0xFF} << shift);
        word.store(others | tagOf(key) << shift, std::memory_order_release);
    }

    // Calls `visit` with the positions of all entries whose key this may be, and of some where there is no entry, the
    // first one first, until it answers true. Answers whether it did.
    template <class Visit>
    bool any(std::uint64_t key, Visit const& visit) const noexcept {
        for (std::uint64_t left = alike(key); left != 0; left &= left - 1) {
            auto const bit = static_cast<std::size_t>(std::countr_zero(left));
            if (visit(bit / 8 * mWords.size() + bit % 8)) return true;
        }
        return false;
    }

private:
    static constexpr std::uint64_t each = 0x0101010101010101U;

    // Bits that the filter of a class's names does not go by.
    static std::uint64_t tagOf(std::uint64_t key) noexcept { return key >> 48 & 0xFF; }

    // One bit for each position, those of a word eight bits apart, so that they come in the order of the positions.
    std::uint64_t alike(std::uint64_t key) const noexcept {
        std::uint64_t const wanted = tagOf(key) * each;
        auto const alikeIn = [wanted](std::atomic<std::uint64_t> const& word) {
            return zeroBytes(word.load(std::memory_order_acquire) ^ wanted);
        };
        return alikeIn(mWords[0]) >> 7 | alikeIn(mWords[1]) >> 6 | alikeIn(mWords[2]) >> 5;
    }

    // The highest bit of each byte that is 0, and now and then that of one above which is 1.
    static std::uint64_t zeroBytes(std::uint64_t word) noexcept { return (word - each) & ~word & each << 7; }

    std::array<std::atomic<std::uint64_t>, 3> mWords{};
};

} // namespace zov::metamodel
