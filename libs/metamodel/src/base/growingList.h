// The growing list: for containers that only grow, by one entry at a time, and are read far more often. They keep the
// order in which entries came; entries with a key are found by it at once.
//
// Entries lie in one block of memory, behind an index of their keys if there is one. Adding one writes behind the
// published ones and publishes a greater size: nothing is copied, and whoever reads goes by the size that he found. A
// full block is replaced by one of twice the room. The newest block holds the references; a former block that a walk
// still needs holds the newer one instead, so that what it lists stays alive, and with it what came after the walk
// began. (A block one of whose entries was replaced keeps its own references.)
//
// Writers prove with the owner's held mutex that they are alone. Readers work within a section, or on a snapshot.
//
// Entry: trivially copyable; retain() and release() count and give up what it refers to; unless `search` is none, key()
// answers its scrambled key (see scrambled).
#pragma once

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <span>
#include <type_traits>

#include "base/entryTags.h"
#include "base/publishedSlot.h"

namespace zov::metamodel {

// Spreads what tells keys apart, such as the address behind a name handle, over 64 bits.
constexpr std::uint64_t scrambled(std::uint64_t key) noexcept {
    std::uint64_t const product = key * 0x9E3779B97F4A7C15U;
    return product ^ (product >> 32);
}

inline std::uint64_t addressOf(void const* object) noexcept {
    return reinterpret_cast<std::uintptr_t>(object);
}

// How entries are found by their keys: not at all; by the index; or, while there are no more of them than tags, by tags
// that lie in the list itself, so that a block of few entries has no index. Then the line that leads to the block tells
// as well where in it to look.
enum class listSearch { none, byIndex, byTagsThenIndex };

// What lies beside the entries of a block, is copied with them, and ends them: nothing, and the first one first.
struct noHead {
    template <class Entry>
    void releaseAll(std::span<Entry> entries) noexcept {
        for (Entry const& entry : entries)
            entry.release();
    }
};

template <class Entry, class Head = noHead>
class growingList {
    static_assert(std::is_trivially_copyable_v<Entry>);

    // What storage is counted in.
    struct alignas(std::max<std::size_t>(alignof(Entry), __STDCPP_DEFAULT_NEW_ALIGNMENT__)) unit {};
    struct block;

public:
    class snapshotPtr;

    // ---- readers

    // What is published at this moment.
    snapshotPtr snapshot() const noexcept { return snapshotPtr(mSlot.share()); }

    // The same, not counted: valid until the end of the section.
    std::span<Entry const> peek(readSection const& reading) const noexcept {
        block const* const now = mSlot.peek(reading);
        return now ? now->published() : std::span<Entry const>();
    }

    // The first entry with this scrambled key that `matches` accepts, or null; valid until the end of the section.
    template <class Matches>
    Entry const* find(readSection const& reading, std::uint64_t key, Matches const& matches) const noexcept {
        return findIn(mSlot.peekNoted(reading), key, matches);
    }

    std::size_t size() const noexcept {
        readSection const reading;
        return peek(reading).size();
    }

    // ---- writers

    // The same as for readers: what is only staged is not found. Valid while the mutex is held.
    template <class Matches>
    Entry const* find(heldMutex const& held, std::uint64_t key, Matches const& matches) const noexcept {
        return findIn(mSlot.currentNoted(held), key, matches);
    }

    // Makes room for `more` entries, after which adding so many cannot fail. Throws std::bad_alloc, and nothing has
    // changed.
    void reserve(heldMutex const& held, std::size_t more) {
        block* const now = mSlot.current(held);
        std::size_t const needed = (now ? now->taken : 0) + more;
        if (needed <= (now ? now->room : 0)) return;
        heldBody<block> next(block::make(needed, now));
        if (now) now->heir = heldBody<block>::share(next.get());
        auto const former = mSlot.exchange(held, std::move(next));
        if (former) waitForReaders();
    }

    // Adds a copy of the entry, retained, where readers do not see it until it is committed. There must be room. `key`
    // is the entry's own.
    Entry& stage(heldMutex const& held, Entry const& added, std::uint64_t key) noexcept {
        block* const now = mSlot.current(held);
        if constexpr (hasTags) {
            if (!now->hasIndex()) mTags.set(now->taken, key);
        }
        added.retain();
        return now->stage(added, key);
    }
    Entry& stage(heldMutex const& held, Entry const& added) noexcept { return stage(held, added, keyOf(added)); }

    // Lets readers see all entries that have been staged, at once.
    void commit(heldMutex const& held) noexcept {
        publishPoint();
        mSlot.current(held)->commit();
    }

    void append(heldMutex const& held, Entry const& added) {
        reserve(held, 1);
        stage(held, added);
        commit(held);
    }

    // Publishes a list in which the entry at `position` is `instead`. Walks that have begun see the former one.
    // Throws std::bad_alloc, and nothing has changed.
    void replace(heldMutex const& held, std::size_t position, Entry const& instead) {
        block* const now = mSlot.current(held);
        heldBody<block> next(block::make(now->room, now));
        next.get()->entries()[position] = instead;
        for (Entry const& entry : next.get()->published())
            entry.retain();
        auto const former = mSlot.exchange(held, std::move(next));
        waitForReaders();
    }

    // For writers: all entries, and what lies beside them.
    std::span<Entry> entries(heldMutex const& held) noexcept {
        block* const now = mSlot.current(held);
        return now ? std::span(now->entries(), now->taken) : std::span<Entry>();
    }
    Head& head(heldMutex const& held) noexcept { return mSlot.current(held)->head; }

    // Publishes the empty list and answers what was there, for the caller to end after waitForReaders().
    snapshotPtr clear(heldMutex const& held) noexcept { return snapshotPtr(mSlot.exchange(held, {})); }

private:
    static constexpr bool isSearched = Entry::search != listSearch::none;
    static constexpr bool hasTags = Entry::search == listSearch::byTagsThenIndex;

    static std::uint64_t keyOf([[maybe_unused]] Entry const& entry) noexcept {
        if constexpr (isSearched) {
            return entry.key();
        } else {
            return 0;
        }
    }

    template <class Matches>
    Entry const* findIn(notedPtr<block> now, std::uint64_t key, Matches const& matches) const noexcept {
        block const* const body = now.body();
        if (!body) return nullptr;
        if (now.note() != 0) return body->findIndexed(block::wordsNotedAs(now.note()), key, matches);
        if constexpr (hasTags) {
            if (!body->hasIndex()) return body->findTagged(mTags, key, matches);
        }
        return body->findIndexed(body->words, key, matches);
    }

    struct noTags {};

    publishedSlot<block> mSlot;
    [[no_unique_address]] std::conditional_t<hasTags, entryTags, noTags> mTags; // those of a block without an index
};

// The entries that were published at one moment, kept alive.
template <class Entry, class Head>
class growingList<Entry, Head>::snapshotPtr {
public:
    snapshotPtr() noexcept = default;

    Entry const* begin() const noexcept { return mBlock ? mBlock.get()->entries() : nullptr; }
    Entry const* end() const noexcept { return begin() + mSize; }
    std::size_t size() const noexcept { return mSize; }
    bool empty() const noexcept { return mSize == 0; }
    Head const& head() const noexcept { return mBlock.get()->head; }

    // The first entry with this scrambled key that `matches` accepts, or null.
    template <class Matches>
    Entry const* find(std::uint64_t key, Matches const& matches) const noexcept {
        static_assert(Entry::search == listSearch::byIndex);
        if (!mBlock) return nullptr;
        auto const wasThere = [&](Entry const& entry) { return &entry < end() && matches(entry); };
        return mBlock.get()->findIndexed(mBlock.get()->words, key, wasThere);
    }

private:
    friend class growingList;
    explicit snapshotPtr(heldBody<block> held) noexcept
        : mBlock(std::move(held)), mSize(mBlock ? mBlock.get()->published().size() : 0) {}

    heldBody<block> mBlock;
    std::size_t mSize = 0;
};

// Header, then an index unless the list goes by tags, then the entries, in one piece of memory. The index is an
// open-addressing table of a power of two of words, at most three eighths of them taken, so that most questions end at
// the first one: the entry's position plus 1 in as many bits as positions need, and above them bits of the key; 0 is a
// free place. Words are only ever added, behind the entries that they lead to.
template <class Entry, class Head>
struct alignas(typename growingList<Entry, Head>::unit) growingList<Entry, Head>::block {
    using word = std::atomic<std::uint32_t>;

    // A block for at least `needed` entries, with what `former` has taken. Throws std::bad_alloc.
    static block* make(std::size_t needed, block const* former) {
        static_assert(smallestIndex == wordsFor(fewestIndexed));
        std::size_t const room = std::max(smallestRoom, roomWith(wordsFor(needed)));
        bool const isIndexed = isSearched && room >= fewestIndexed;
        std::size_t const words = isIndexed ? wordsFor(room) : 0;
        block* const made = new (std::allocator<unit>().allocate(unitsFor(room, words))) block(room, words);
        if (former) made->takeOver(*former);
        return made;
    }

    static void end(block* last) noexcept {
        if (!last->heir) last->head.releaseAll(std::span(last->entries(), last->taken));
        std::size_t const units = unitsFor(last->room, last->words);
        last->~block();
        std::allocator<unit>().deallocate(reinterpret_cast<unit*>(last), units);
    }

    // How many index words there are, for who finds the block; 0 where there are none, or too many for a note.
    unsigned note() const noexcept {
        auto const doublings = static_cast<unsigned>(std::bit_width(words / smallestIndex));
        return doublings < 16 ? doublings : 0;
    }
    static std::uint32_t wordsNotedAs(unsigned note) noexcept { return smallestIndex << (note - 1); }
    bool hasIndex() const noexcept { return words != 0; }

    template <class Matches>
    Entry const* findTagged(entryTags const& tags, std::uint64_t key, Matches const& matches) const noexcept {
        auto const* const listed = reinterpret_cast<Entry const*>(this + 1);
        Entry const* found = nullptr;
        tags.any(key, [&](std::size_t position) {
            if (position < size.load() && matches(listed[position])) found = listed + position;
            return found != nullptr;
        });
        return found;
    }

    // `count` is the number of index words. Whoever knows it need not stop at the block's own line, which may not be at
    // hand.
    template <class Matches>
    Entry const* findIndexed(std::uint32_t count, std::uint64_t key, Matches const& matches) const noexcept {
        std::uint32_t const positions = count - 1;
        std::uint32_t const wanted = keyBits(key, positions);
        auto const* const listed = reinterpret_cast<Entry const*>(index() + count);
        for (std::uint64_t at = key;; ++at) {
            std::uint32_t const found = index()[at & (count - 1)].load(std::memory_order_acquire);
            if (found == 0) return nullptr;
            if ((found & ~positions) != wanted) continue;
            std::size_t const position = (found & positions) - 1;
            if (position < size.load() && matches(listed[position])) return listed + position;
        }
    }

    std::span<Entry const> published() const noexcept { return {entries(), size.load()}; }

    Entry& stage(Entry const& added, std::uint64_t key) noexcept {
        Entry& entry = *new (entries() + taken) Entry(added);
        ++taken;
        if (hasIndex()) indexNewest(key);
        return entry;
    }

    void commit() noexcept { size.store(taken); }

    // The part of the key that an index word holds beside the bits of a position. These are as many as tell the words
    // apart, of which there are more than entries.
    static std::uint32_t keyBits(std::uint64_t key, std::uint32_t positions) noexcept {
        return static_cast<std::uint32_t>(key >> 32) & ~positions;
    }

    word* index() noexcept { return reinterpret_cast<word*>(this + 1); }
    word const* index() const noexcept { return reinterpret_cast<word const*>(this + 1); }
    Entry* entries() noexcept { return reinterpret_cast<Entry*>(index() + words); }
    Entry const* entries() const noexcept { return reinterpret_cast<Entry const*>(index() + words); }

    std::atomic<std::uint32_t> holders{1};
    std::atomic<std::uint32_t> size{0}; // entries that readers see; in one order for all lists and threads
    std::uint32_t taken = 0;            // entries that are there; writers only
    std::uint32_t const room;
    std::uint32_t const words;
    [[no_unique_address]] Head head;
    heldBody<block> heir; // what holds the references in place of this block

private:
    static constexpr std::size_t smallestRoom = 6;

    // At most three eighths of the index are taken.
    static constexpr std::size_t wordsFor(std::size_t entries) noexcept { return std::bit_ceil((entries * 8 + 2) / 3); }
    static constexpr std::size_t roomWith(std::size_t words) noexcept { return words / 8 * 3; }
    static constexpr std::size_t fewestIndexed = hasTags ? entryTags::count + 1 : smallestRoom;
    static constexpr std::uint32_t smallestIndex = hasTags ? 128 : 16; // for so many entries

    static constexpr std::size_t unitsFor(std::size_t room, std::size_t words) noexcept {
        return (sizeof(block) + words * sizeof(word) + room * sizeof(Entry) + sizeof(unit) - 1) / sizeof(unit);
    }

    block(std::size_t roomFor, std::size_t indexWords) noexcept
        : room(static_cast<std::uint32_t>(roomFor)), words(static_cast<std::uint32_t>(indexWords)) {
        std::uninitialized_value_construct_n(index(), indexWords);
    }

    void takeOver(block const& former) noexcept {
        for (Entry const& entry : std::span(former.entries(), former.taken))
            stage(entry, hasIndex() ? keyOf(entry) : 0);
        head = former.head;
        commit();
    }

    void indexNewest(std::uint64_t key) noexcept {
        std::uint64_t at = key;
        while (index()[at & (words - 1)].load(std::memory_order_relaxed) != 0)
            ++at;
        index()[at & (words - 1)].store(keyBits(key, words - 1) | taken, std::memory_order_release);
    }
};

} // namespace zov::metamodel
