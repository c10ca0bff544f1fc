#include "zovScString.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>

#include "zovHook.h"
#include "zovLowerCase.h"

namespace zov {

namespace {

// An interned text with its hash. Never changed, never freed.
struct entry {
    std::size_t hash;
    string text;
};

// How a looked-up text is read: as it stands, or folded unit by unit on the way.
struct asWritten {
    template <class Fn>
    static void forEachUnit(std::wstring_view text, Fn&& fn) {
        for (wchar_t const unit : text)
            fn(unit);
    }
};

struct lowered {
    template <class Fn>
    static void forEachUnit(std::wstring_view text, Fn&& fn) {
        forEachLowered(text, fn);
    }
};

template <class Reading>
std::size_t hashOf(std::wstring_view text) noexcept {
    std::uint64_t hash = 0x9E3779B97F4A7C15U;
    Reading::forEachUnit(text, [&hash](wchar_t unit) {
        hash = (hash ^ static_cast<std::uint64_t>(unit)) * 0x9FB21C651E98DF25U;
        hash ^= hash >> 32;
    });
    return static_cast<std::size_t>(hash);
}

template <class Reading>
bool spells(std::wstring_view text, string const& interned) noexcept {
    if (text.size() != interned.size()) return false;
    wchar_t const* expected = interned.data();
    bool same = true;
    Reading::forEachUnit(text, [&](wchar_t unit) { same = (unit == *expected++) && same; });
    return same;
}

// Open addressing over a power of two of slots, at most half of them taken. Slots are only ever filled.
struct slotArray {
    explicit slotArray(std::size_t slotCount)
        : mask(slotCount - 1), slots(std::make_unique<std::atomic<entry const*>[]>(slotCount)) {}

    template <class Reading>
    entry const* find(std::wstring_view text, std::size_t hash) const noexcept {
        for (std::size_t at = hash;; ++at) {
            entry const* const found = slots[at & mask].load(std::memory_order_acquire);
            if (!found || (found->hash == hash && spells<Reading>(text, found->text))) return found;
        }
    }

    // Only under the table's mutex, and only while a slot is free.
    void add(entry const* added) noexcept {
        std::size_t at = added->hash;
        while (slots[at & mask].load(std::memory_order_relaxed))
            ++at;
        slots[at & mask].store(added, std::memory_order_release);
    }

    std::size_t const mask;
    std::unique_ptr<std::atomic<entry const*>[]> const slots;
    std::unique_ptr<slotArray> smaller; // the array that this one replaced; readers may still be in it
};

// The table of the process. Readers probe the current array without a lock; an array that is half full is
// replaced by one of twice the size and kept, since a reader may be in it: all of them together take less room
// than the current one.
class interningTable {
public:
    template <class Reading>
    string const* find(std::wstring_view text) const noexcept {
        slotArray const* const slots = mSlots.load(std::memory_order_acquire);
        if (!slots) return nullptr;
        entry const* const found = slots->find<Reading>(text, hashOf<Reading>(text));
        return found ? &found->text : nullptr;
    }

    string const* intern(std::wstring_view text) {
        if (string const* const known = find<asWritten>(text)) return known;
        std::size_t const hash = hashOf<asWritten>(text);
        std::unique_ptr<entry> added(new entry{hash, string(text)});
        std::lock_guard guard(mMutex);
        slotArray* const slots = roomForOneMore();
        if (entry const* const known = slots->find<asWritten>(text, hash)) return &known->text;
        slots->add(added.get());
        ++mCount;
        return &added.release()->text;
    }

private:
    slotArray* roomForOneMore() {
        slotArray* const current = mSlots.load(std::memory_order_relaxed);
        std::size_t const slotCount = current ? current->mask + 1 : 0;
        if (2 * (mCount + 1) <= slotCount) return current;
        auto larger = std::make_unique<slotArray>(current ? 2 * slotCount : initialSlots);
        for (std::size_t at = 0; at < slotCount; ++at) {
            if (entry const* const kept = current->slots[at].load(std::memory_order_relaxed)) larger->add(kept);
        }
        larger->smaller.reset(current);
        mSlots.store(larger.get(), std::memory_order_release);
        return larger.release();
    }

    static constexpr std::size_t initialSlots = 1024;

    std::mutex mMutex;
    std::size_t mCount = 0;
    std::atomic<slotArray*> mSlots{nullptr}; // made by the first text
};

interningTable& table() {
    static neverDestroyed<interningTable> theTable;
    return *theTable;
}

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
    return text.empty() ? scString() : scString(table().intern(text));
}

std::optional<scString> scString::find(std::wstring_view text) noexcept {
    if (text.empty()) return scString();
    zov::string const* const known = table().find<asWritten>(text);
    return known ? std::optional(scString(known)) : std::nullopt;
}

std::optional<scString> scString::findLowered(std::wstring_view text) noexcept {
    if (text.empty()) return scString();
    zov::string const* const known = table().find<lowered>(text);
    return known ? std::optional(scString(known)) : std::nullopt;
}

zov::string const& scString::string() const noexcept {
    return mText ? *mText : emptyText();
}

} // namespace zov
