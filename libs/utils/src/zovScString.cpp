#include "zovScString.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <mutex>
#include <new>
#include <type_traits>
#include <utility>

#include "zovHook.h"
#include "zovInternedText.h"

namespace zov {

namespace {

using detail::internedText;

// What tells an entry from others: the hash of its text in the high half, its number in the low half; 0 is nobody's.
using slot = std::uint64_t;

// Half of the hash of a text: what the table goes by.
constexpr std::uint32_t tagOf(std::uint64_t hash) noexcept {
    return static_cast<std::uint32_t>(hash >> 32);
}

constexpr slot slotOf(std::uint32_t hash, std::uint32_t number) noexcept {
    return slot{hash} << 32 | number;
}
constexpr std::uint32_t hashIn(slot taken) noexcept {
    return static_cast<std::uint32_t>(taken >> 32);
}
constexpr std::uint32_t numberIn(slot taken) noexcept {
    return static_cast<std::uint32_t>(taken);
}

constexpr std::size_t blockSize = 512;

// Open addressing over a power of two of slots, less than half of them taken, and the blocks of entries that the slots
// name by number. Slots are only ever filled; blocks, each of `blockSize` entries, never move.
struct slotArray {
    explicit slotArray(std::size_t slotCount)
        : mask(slotCount - 1), slots(std::make_unique<std::atomic<slot>[]>(slotCount)),
          blocks(std::make_unique<std::atomic<internedText*>[]>(slotCount / (2 * blockSize))) {}

    bool hasRoomFor(std::uint32_t number) const noexcept { return number < (mask + 1) / 2; }

    std::atomic<internedText*>& blockOf(std::uint32_t number) const noexcept { return blocks[number / blockSize]; }

    // The place of an entry. Its block was made before any slot named it.
    internedText* at(std::uint32_t number) const noexcept {
        return blockOf(number).load(std::memory_order_relaxed) + number % blockSize;
    }

    template <class Text>
    internedText const* find(Text const& text, std::uint32_t hash) const noexcept {
        for (std::size_t next = hash;; ++next) {
            slot const taken = slots[next & mask].load(std::memory_order_acquire);
            if (hashIn(taken) != hash || !taken) {
                if (!taken) return nullptr;
                continue;
            }
            internedText const* const known = at(numberIn(taken));
            if (text.isThatOf(*known)) return known;
        }
    }

    // Only under the table's mutex, and only while a slot is free.
    void add(slot added) noexcept {
        std::size_t next = hashIn(added);
        while (slots[next & mask].load(std::memory_order_relaxed))
            ++next;
        slots[next & mask].store(added, std::memory_order_release);
    }

    // Only before others see this array.
    void addAllOf(slotArray const& other) noexcept {
        for (std::size_t next = 0; next <= other.mask; ++next) {
            if (slot const kept = other.slots[next].load(std::memory_order_relaxed)) add(kept);
        }
        for (std::size_t block = 0; block <= other.mask / (2 * blockSize); ++block)
            blocks[block].store(other.blocks[block].load(std::memory_order_relaxed), std::memory_order_relaxed);
    }

    std::size_t const mask;
    std::unique_ptr<std::atomic<slot>[]> const slots;
    std::unique_ptr<std::atomic<internedText*>[]> const blocks;
    std::unique_ptr<slotArray> smaller; // the array that this one replaced; readers may still be in it
};

std::mutex& tableMutex() {
    static neverDestroyed<std::mutex> theMutex;
    return *theMutex;
}

// The table of the process. Readers probe the current array without a lock; an array that is half full is
// replaced by one of twice the size and kept, since a reader may be in it: all of them together take less room
// than the current one.
class interningTable {
public:
    template <class Text>
    internedText const* find(Text const& text) const noexcept {
        return find(text, tagOf(text.hash()));
    }

    // `units` is what `text` is made of.
    template <class Text>
    internedText const* intern(Text const& text, std::wstring_view units) {
        std::uint32_t const hash = tagOf(text.hash());
        internedText const* const known = find(text, hash);
        return known ? known : add(text, hash, string(units));
    }

private:
    template <class Text>
    internedText const* find(Text const& text, std::uint32_t hash) const noexcept {
        slotArray const* const slots = mSlots.load(std::memory_order_acquire);
        return slots ? slots->find(text, hash) : nullptr;
    }

    template <class Text>
    [[gnu::noinline]] internedText const* add(Text const& text, std::uint32_t hash, string&& units) {
        std::lock_guard guard(tableMutex());
        if (internedText const* const known = find(text, hash)) return known;
        slotArray* const slots = roomForOneMore();
        auto const* const added = new (slots->at(mNext)) internedText{text.packed(), std::move(units)};
        slots->add(slotOf(hash, mNext++));
        return added;
    }

    void addBlock(slotArray& slots) {
        slots.blockOf(mNext).store(std::allocator<internedText>().allocate(blockSize), std::memory_order_relaxed);
    }

    // Room for a slot and an entry. Nothing has changed unless both could be had.
    slotArray* roomForOneMore() {
        if (mNext == std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
        slotArray* const current = mSlots.load(std::memory_order_relaxed);
        if (current && current->hasRoomFor(mNext)) {
            if (mNext % blockSize == 0) addBlock(*current);
            return current;
        }
        auto larger = std::make_unique<slotArray>(current ? 2 * (current->mask + 1) : 2 * blockSize);
        if (current) larger->addAllOf(*current);
        if (!current || mNext % blockSize == 0) addBlock(*larger);
        larger->smaller.reset(current);
        mSlots.store(larger.get(), std::memory_order_release);
        return larger.release();
    }

    std::uint32_t mNext = 1;                 // the number of the next entry; 0 is none's
    std::atomic<slotArray*> mSlots{nullptr}; // made by the first text
};

// Ready before anything runs and never destroyed: whatever outlives main may still look names up.
static_assert(std::is_trivially_destructible_v<interningTable>);
constinit interningTable theTable;

string const& emptyText() noexcept {
    static neverDestroyed<string> empty;
    return *empty;
}

} // namespace

scString scString::createFrom(zov::string const& text) {
    return createFrom(std::wstring_view(text));
}

scString scString::createFrom(wchar_t const* text) {
    return createFrom(std::wstring_view(text ? text : L""));
}

scString scString::createFrom(std::wstring_view text) {
    if (text.empty()) return scString();
    return scString(detail::withWritten(text, [text](auto const& form) { return theTable.intern(form, text); }));
}

std::optional<scString> scString::find(std::wstring_view text) noexcept {
    if (text.empty()) return scString();
    internedText const* const known = detail::withWritten(text, [](auto const& form) { return theTable.find(form); });
    return known ? std::optional(scString(known)) : std::nullopt;
}

std::optional<scString> scString::findLowered(std::wstring_view text) noexcept {
    if (text.empty()) return scString();
    internedText const* const known = detail::withLowered(text, [](auto const& form) { return theTable.find(form); });
    return known ? std::optional(scString(known)) : std::nullopt;
}

zov::string const& scString::string() const noexcept {
    return mText ? mText->text : emptyText();
}

} // namespace zov
