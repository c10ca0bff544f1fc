#include "zovGenericSet.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <utility>

#include "zovGuardedSwap.h"
#include "zovLeafLock.h"

namespace zov {

namespace {

using valuePtr = sharedPtr<genericValue>;

struct entryOfSet {
    scString key;
    valuePtr value;
};

// Moves the entry to where none is.
void relocate(entryOfSet* from, entryOfSet* to) noexcept {
    std::construct_at(to, std::move(*from));
    std::destroy_at(from);
}

// Room for entries.
struct block {
    entryOfSet* first = nullptr;
    std::uint32_t capacity = 0;
};

// Room that nobody uses yet, or any more.
struct spareBlock : block {
    spareBlock() noexcept = default;
    spareBlock(spareBlock const&) = delete;
    spareBlock& operator=(spareBlock const&) = delete;
    ~spareBlock() { ::operator delete(first); }

    void makeFor(std::uint32_t wanted) {
        auto* const made = static_cast<entryOfSet*>(::operator new(wanted * sizeof(entryOfSet)));
        ::operator delete(first);
        first = made;
        capacity = wanted;
    }
};

} // namespace

// The entries in the order of their keys, with their guard: one entry in the record itself, more in a block. The
// record never moves. Under the guard pointers are copied and moved, an entry's own one under its slot's lock; no value
// is copied, called or destroyed, and no storage made or given back: replaced values and blocks end with what is the
// caller's own, and whose guard nobody needs.
struct genericSet::record {
    record() noexcept {}
    record(record const&) = delete;
    record& operator=(record const&) = delete;
    // The last entry ends first.
    ~record() {
        while (mSize > 0)
            std::destroy_at(entries() + --mSize);
        if (mInBlock) ::operator delete(mBlock.first);
    }

    static void* operator new(std::size_t size) { return detail::smallStorage::allocate(size); }
    static void operator delete(void* storage) noexcept { detail::smallStorage::deallocate(storage, sizeof(record)); }

    std::size_t size() const noexcept {
        std::lock_guard const held(mGuard);
        return mSize;
    }

    valuePtr find(scString key) const noexcept {
        std::lock_guard const held(mGuard);
        entryOfSet const* const at = place(key);
        return holds(at, key) ? at->value : nullptr;
    }

    // Calls `look` with the entry's value, if there is one, under the guard, under which nobody may wait; answers
    // whether there is.
    template <class Look>
    bool look(scString key, Look const& look) const noexcept {
        std::lock_guard const held(mGuard);
        entryOfSet const* const at = place(key);
        if (!holds(at, key)) return false;
        look(at->value);
        return true;
    }

    // Swaps all entries with those of the caller's own.
    void exchange(record& own) noexcept {
        record former;
        std::lock_guard const held(mGuard);
        former.takeOver(*this);
        takeOver(own);
        own.takeOver(former);
    }

    // Leaves the entry's former value in `value`.
    void store(scString key, valuePtr& value) {
        spareBlock spare;
        for (std::uint32_t wanted = 0;; spare.makeFor(wanted)) {
            std::lock_guard const held(mGuard);
            entryOfSet* const at = place(key);
            if (holds(at, key)) {
                swapGuarded(at->value, value);
                return;
            }
            if (mSize < capacity() || moveTo(spare, mSize + 1)) {
                insert(key, value);
                return;
            }
            wanted = 2 * mSize;
        }
    }

    void erase(scString key) noexcept {
        record former;
        record emptied;
        std::lock_guard const held(mGuard);
        entryOfSet* at = place(key);
        if (!holds(at, key)) return;
        relocate(at, &former.mOwn);
        former.mSize = 1;
        --mSize;
        for (entryOfSet* const end = entries() + mSize; at != end; ++at)
            relocate(at + 1, at);
        if (mSize == 0) emptied.takeOver(*this);
    }

    // Copies the entries, their values shared, to an empty record of the caller's own.
    void copyTo(record& own) const {
        spareBlock spare;
        for (std::uint32_t wanted = 0;; spare.makeFor(wanted)) {
            std::lock_guard const held(mGuard);
            wanted = mSize;
            if (wanted > own.capacity() && !own.moveTo(spare, wanted)) continue;
            std::uninitialized_copy_n(entries(), mSize, own.entries());
            own.mSize = mSize;
            return;
        }
    }

    // What follows is for records of the caller's own.
    entryOfSet* begin() noexcept { return entries(); }
    entryOfSet* end() noexcept { return entries() + mSize; }

    void makeIndependent() {
        for (auto& [key, value] : *this) {
            valuePtr copy(new zov::genericValue(std::as_const(*value)));
            swapGuarded(value, copy);
        }
    }

private:
    entryOfSet* entries() noexcept { return mInBlock ? mBlock.first : &mOwn; }
    entryOfSet const* entries() const noexcept { return mInBlock ? mBlock.first : &mOwn; }
    std::uint32_t capacity() const noexcept { return mInBlock ? mBlock.capacity : 1; }

    // Where the key is or would be.
    entryOfSet const* place(scString key) const noexcept {
        return std::lower_bound(entries(), entries() + mSize, key,
                                [](entryOfSet const& each, scString wanted) { return each.key < wanted; });
    }
    entryOfSet* place(scString key) noexcept { return const_cast<entryOfSet*>(std::as_const(*this).place(key)); }
    bool holds(entryOfSet const* at, scString key) const noexcept { return at != entries() + mSize && at->key == key; }

    void insert(scString key, valuePtr& value) noexcept {
        entryOfSet* const at = place(key);
        for (entryOfSet* from = entries() + mSize; from != at; --from)
            relocate(from - 1, from);
        std::construct_at(at, entryOfSet{key, std::move(value)});
        ++mSize;
    }

    // Moves the entries to the spare block if that has room for that many, and leaves the former one in its place.
    bool moveTo(spareBlock& spare, std::uint32_t wanted) noexcept {
        if (spare.capacity < wanted) return false;
        for (std::uint32_t at = 0; at < mSize; ++at)
            relocate(entries() + at, spare.first + at);
        block const former = mInBlock ? mBlock : block{};
        std::construct_at(&mBlock, spare);
        mInBlock = true;
        static_cast<block&>(spare) = former;
        return true;
    }

    // From another record to this one, which has neither entries nor a block.
    void takeOver(record& other) noexcept {
        mSize = std::exchange(other.mSize, 0);
        mInBlock = std::exchange(other.mInBlock, false);
        if (mInBlock) {
            std::construct_at(&mBlock, other.mBlock);
        } else if (mSize != 0) {
            relocate(&other.mOwn, &mOwn);
        }
    }

    mutable leafLock mGuard;
    bool mInBlock = false;
    std::uint32_t mSize = 0;
    union {
        block mBlock = {};
        entryOfSet mOwn; // there when mSize is 1 and there is no block
    };
};

genericSet::genericSet(genericSet const& other) {
    record const* const from = other.mRecord.load(std::memory_order_acquire);
    if (!from) return;
    auto copy = std::make_unique<record>();
    from->copyTo(*copy);
    copy->makeIndependent();
    if (copy->begin() != copy->end()) mRecord.store(copy.release(), std::memory_order_release);
}

genericSet::genericSet(genericSet&& other) noexcept : mRecord(other.mRecord.exchange(nullptr)) {}

genericSet& genericSet::operator=(genericSet const& other) {
    genericSet copy(other);
    if (record* const taken = copy.mRecord.load(std::memory_order_acquire)) {
        ownRecord().exchange(*taken);
    } else if (record* const held = mRecord.load(std::memory_order_acquire)) {
        record nothing;
        held->exchange(nothing);
    }
    return *this;
}

genericSet& genericSet::operator=(genericSet&& other) noexcept {
    std::unique_ptr<record> taken(other.mRecord.exchange(nullptr));
    record* held = nullptr;
    if (mRecord.compare_exchange_strong(held, taken.get(), std::memory_order_acq_rel)) {
        static_cast<void>(taken.release()); // it is the set's own now
        return *this;
    }
    record nothing;
    held->exchange(taken ? *taken : nothing);
    return *this;
}

genericSet::~genericSet() {
    delete mRecord.load(std::memory_order_acquire);
}

const_sharedPtr<genericValue> genericSet::genericValue(scString const& key) const {
    return entry(key);
}

sharedPtr<genericValue> genericSet::genericValue(scString const& key) {
    return entry(key);
}

bool genericSet::setGenericValue(scString const& key, zov::genericValue const& value, bool flag) {
    zov::genericValue copy(value);
    return _setGenericValue(key, copy, flag);
}

bool genericSet::_setGenericValue(scString const& key, zov::genericValue& value, bool) {
    auto stored = valuePtr(new zov::genericValue(std::move(value)));
    ownRecord().store(key, stored);
    return true;
}

void genericSet::erase(scString const& key) {
    if (record* const held = mRecord.load(std::memory_order_acquire)) held->erase(key);
}

bool genericSet::copyValue(scString const& key, zov::genericValue& out) const {
    record const* const from = mRecord.load(std::memory_order_acquire);
    sharedPtr<zov::genericValue::holderbase> source;
    // Set when another thread holds the sharedPtrLocker, for which nobody waits under the guard.
    std::optional<valuePtr> later;
    bool isOther = false;
    bool const isThere = from && from->look(key, [&](valuePtr const& stored) {
        isOther = stored.get() != &out;
        if (isOther && !stored->heldIfFree(source)) later.emplace(stored);
    });
    if (later) {
        out.assignClone((*later)->heldNow());
    } else if (isOther) {
        out.assignClone(source);
    }
    return isThere;
}

bool genericSet::forEach(std::function<bool(scString const&, zov::genericValue const&)> const& visit,
                         bool stopOnFalse) const {
    record const* const held = mRecord.load(std::memory_order_acquire);
    if (!held) return true;
    record walked;
    held->copyTo(walked);
    for (auto const& [key, value] : walked) {
        if (!visit(key, *value) && stopOnFalse) return false;
    }
    return true;
}

std::size_t genericSet::size() const noexcept {
    record const* const held = mRecord.load(std::memory_order_acquire);
    return held ? held->size() : 0;
}

sharedPtr<genericValue> genericSet::entry(scString key) const noexcept {
    record const* const held = mRecord.load(std::memory_order_acquire);
    return held ? held->find(key) : nullptr;
}

genericSet::record& genericSet::ownRecord() {
    if (record* const held = mRecord.load(std::memory_order_acquire)) return *held;
    auto made = std::make_unique<record>();
    record* other = nullptr;
    if (mRecord.compare_exchange_strong(other, made.get(), std::memory_order_acq_rel)) return *made.release();
    return *other;
}

} // namespace zov
