// The search through the bases of a class: depth first, bases in the order of name handles, each distinct class once.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <new>
#include <span>
#include <utility>

#include "data/classData.h"

namespace zov::metamodel {

// The classes that a search has met. Up to 768 of them need no memory of the heap. Beyond that, classes are not
// remembered when there is no memory: they are searched on every way that leads to them then, and found to be what they
// were.
class metClasses {
public:
    // Answers whether the class is new, as far as is known, and remembers it.
    bool add(classData const* met) noexcept {
        if (mCount * 4 >= mSlots.size() * 3 && !grow()) return !*place(mSlots, met);
        auto* const slot = place(mSlots, met);
        if (*slot) return false;
        *slot = met;
        ++mCount;
        return true;
    }

private:
    using slots = std::span<classData const*>;

    static classData const** place(slots in, classData const* met) noexcept {
        for (std::uint64_t at = scrambled(addressOf(met));; ++at) {
            classData const** const slot = &in[at & (in.size() - 1)];
            if (!*slot || *slot == met) return slot;
        }
    }

    bool grow() noexcept {
        if (mSlots.empty()) return moveTo(mFew);
        if (mSlots.size() == mFew.size()) return moveTo(mMany);
        std::size_t const count = mSlots.size() * 2;
        std::unique_ptr<classData const*[]> more(new (std::nothrow) classData const*[count]);
        if (!more) return false;
        moveTo({more.get(), count});
        mHeap = std::move(more);
        return true;
    }

    bool moveTo(slots next) noexcept {
        std::fill(next.begin(), next.end(), nullptr);
        for (auto const* met : mSlots) {
            if (met) *place(next, met) = met;
        }
        mSlots = next;
        return true;
    }

    // Filled when they are first needed.
    std::array<classData const*, 64> mFew;
    std::array<classData const*, 1024> mMany;
    std::unique_ptr<classData const*[]> mHeap;
    slots mSlots;
    std::size_t mCount = 0;
};

// The class of an entry that a search comes to. An empty one fails as an empty pointer does.
inline classData const& checked(classData const* base) {
    return base ? *base : classData::of(*refPtr<classInfo>());
}

// Looks at the bases within a section: for searches that call nothing but the library.
struct withinSection {
    readSection const& reading;

    classData const* onlyBase(classData const& of) const noexcept { return of.mBaseClasses.only(reading); }
    classTable const* bases(classData const& of) const noexcept { return of.mBaseClasses.peek(reading); }
};

// Keeps the bases alive by snapshots: for searches that call the host. A class that another thread frees meanwhile may
// be taken for a new one at the same address, which then counts as not there yet.
struct bySnapshots {
    static classData const* onlyBase(classData const&) noexcept { return nullptr; }
    static relatedClasses::snapshotPtr bases(classData const& of) noexcept { return of.mBaseClasses.snapshot(); }
};

// Access is one of the two above.
template <class Access>
class baseSearch {
public:
    explicit baseSearch(Access access) noexcept : mAccess(access) {}

    // Calls `visit` with each distinct direct or indirect base, null for an empty entry, until it answers true. Answers
    // whether it did.
    template <class Visit>
    bool any(classData const& from, Visit const& visit) {
        if (classData const* const base = mAccess.onlyBase(from)) return comesTo(base, visit);
        auto const bases = mAccess.bases(from);
        if (!bases) return false;
        // A class can be met again only behind one that has several bases.
        mMayMeetAgain = mMayMeetAgain || bases->size() > 1;
        return std::any_of(bases->begin(), bases->end(),
                           [&](classTable::related const& base) { return comesTo(base.data, visit); });
    }

private:
    template <class Visit>
    bool comesTo(classData const* base, Visit const& visit) {
        if (mMayMeetAgain && base && !mMet.add(base)) return false;
        return visit(base) || (base && any(*base, visit));
    }

    Access mAccess;
    metClasses mMet;
    bool mMayMeetAgain = false;
};

// The same for the direct bases alone.
template <class Visit>
bool anyDirectBase(readSection const& reading, classData const& from, Visit const& visit) {
    if (classData const* const base = from.mBaseClasses.only(reading)) return visit(base);
    classTable const* const bases = from.mBaseClasses.peek(reading);
    return bases &&
           std::any_of(bases->begin(), bases->end(), [&](classTable::related const& base) { return visit(base.data); });
}

} // namespace zov::metamodel
