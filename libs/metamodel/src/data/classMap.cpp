#include "data/classMap.h"

#include <iterator>
#include <utility>

#include "data/classData.h"

namespace zov::metamodel {

// Nobody reads the links any more: they are turned round.
void classListHead::releaseAll(std::span<classEntry> entries) noexcept {
    std::uint32_t turned = 0;
    for (std::uint32_t next = first.follow(); next != 0;) {
        classLink& link = entries[next - 1].next;
        std::uint32_t const behind = link.follow();
        link.lead(turned);
        turned = std::exchange(next, behind);
    }
    for (; turned != 0; turned = entries[turned - 1].next.follow())
        entries[turned - 1].release();
}

classMap::snapshotPtr classMap::snapshot() const noexcept {
    return snapshotPtr(mClasses.snapshot());
}

classEntry const* classMap::find(readSection const& reading, nameKey const& name) const noexcept {
    return mClasses.find(reading, name.hash(), [&name](classEntry const& entry) {
        fetchForCounting(entry.object);
        return name.isTextOf(entry.name);
    });
}

void classMap::store(heldMutex const& held, refPtr<classInfo> const& added) {
    scString const name = added->scName();
    classEntry entry{filedName(name), {}, added.get(), &classData::of(*added)};
    if (auto const known = mOrder.find(name); known != mOrder.end()) {
        entry.next = mClasses.entries(held)[known->second].next;
        mClasses.replace(held, known->second, entry);
        return;
    }
    mClasses.reserve(held, 1);
    auto const position = static_cast<std::uint32_t>(mOrder.size());
    auto const place = mOrder.emplace(name, position).first;
    link(held, place, entry);
    mClasses.commit(held);
}

// Between its neighbours, before it is committed: walks that began earlier pass over it.
void classMap::link(heldMutex const& held, positions::const_iterator place, classEntry const& added) noexcept {
    auto const next = std::next(place);
    classEntry& staged = mClasses.stage(held, added);
    staged.next.lead(next == mOrder.end() ? 0 : next->second + 1);
    classLink& before =
        place == mOrder.begin() ? mClasses.head(held).first : mClasses.entries(held)[std::prev(place)->second].next;
    before.lead(place->second + 1);
}

classMap::snapshotPtr classMap::clear(heldMutex const& held) noexcept {
    mOrder.clear();
    return snapshotPtr(mClasses.clear(held));
}

} // namespace zov::metamodel
