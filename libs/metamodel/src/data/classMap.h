// The classes of a model: found by name, walked in the order of name handles.
//
// A growing list of classes whose entries are linked in that order. Readers follow the links; where a new class belongs
// is found in a tree of the writers' own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>

#include "base/counting.h"
#include "base/growingList.h"
#include "base/names.h"
#include "zovMdlClassInfo.h"

namespace zov::metamodel {

// Leads to the next class in the order of name handles: its position plus 1, or 0 behind the last one. Changes beside
// readers.
struct classLink {
    std::uint32_t follow() const noexcept {
        return std::atomic_ref(const_cast<std::uint32_t&>(mNext)).load(std::memory_order_acquire);
    }
    void lead(std::uint32_t next) noexcept { std::atomic_ref(mNext).store(next, std::memory_order_release); }

private:
    std::uint32_t mNext = 0;
};

// All that a question by name looks at, within one cache line.
struct alignas(64) classEntry {
    static constexpr auto search = listSearch::byIndex;

    std::uint64_t key() const noexcept { return nameKey(name.handle()).hash(); }
    void retain() const noexcept { countIfAny(object); }
    void release() const noexcept { giveUpQuietly(object); }

    [[no_unique_address]] filedName name;
    classLink next;
    classInfo* object;
    classData const* data;
};

// Leads to the first class.
struct classListHead {
    // The last one in the order first.
    void releaseAll(std::span<classEntry> entries) noexcept;

    classLink first;
};

class classMap {
    using list = growingList<classEntry, classListHead>;

public:
    // The classes at one moment, kept alive.
    class snapshotPtr;

    snapshotPtr snapshot() const noexcept;

    // The class of this name, or null; valid until the end of the section.
    classEntry const* find(readSection const& reading, nameKey const& name) const noexcept;

    std::size_t size() const noexcept { return mClasses.size(); }

    // Publishes the class under its name, in place of one that is there. Throws std::bad_alloc, and nothing has
    // changed.
    void store(heldMutex const& held, refPtr<classInfo> const& added);

    // Publishes the empty map and answers what was there, for the caller to end after waitForReaders().
    snapshotPtr clear(heldMutex const& held) noexcept;

private:
    using positions = std::map<scString, std::uint32_t>;

    void link(heldMutex const& held, positions::const_iterator place, classEntry const& added) noexcept;

    list mClasses;

    // What registrations write and lookups do not read stands on other cache lines, here and behind.
    [[maybe_unused]] std::byte mGap[128];
    positions mOrder; // where each class stands in the list; under the model's mutex
};

class classMap::snapshotPtr {
public:
    // Calls `visit` with each class until it answers true. Answers whether it did.
    template <class Visit>
    bool any(Visit const& visit) const {
        if (mClasses.empty()) return false;
        for (auto next = mClasses.head().first.follow(); next != 0;) {
            classEntry const& entry = mClasses.begin()[next - 1];
            bool const wasThere = next <= mClasses.size(); // links lead to later ones as well
            if (wasThere && visit(entry)) return true;
            next = entry.next.follow();
        }
        return false;
    }

    // The class of this name, or null.
    classEntry const* find(nameKey const& name) const noexcept {
        return mClasses.find(name.hash(), [&name](classEntry const& entry) { return name.isTextOf(entry.name); });
    }

private:
    friend class classMap;
    explicit snapshotPtr(list::snapshotPtr classes) noexcept : mClasses(std::move(classes)) {}

    list::snapshotPtr mClasses;
};

} // namespace zov::metamodel
