#include "parts/knownAliases.h"

#include <mutex>
#include <new>

#include "base/growingList.h"
#include "base/names.h"

namespace zov::metamodel {

namespace {

struct knownAlias {
    static constexpr auto search = listSearch::byIndex;

    std::uint64_t key() const noexcept { return nameKey(name).hash(); }
    void retain() const noexcept {}
    void release() const noexcept {}

    scString name;
};

struct knownAliases {
    std::recursive_mutex mutex;
    growingList<knownAlias> names;

    bool contains(nameKey const& name) const noexcept {
        readSection const reading;
        auto const isIt = [&name](knownAlias const& known) { return name.isTextOf(known.name); };
        return names.find(reading, name.hash(), isIt) != nullptr;
    }
};

// Never destroyed: classes that end after main are asked as well.
knownAliases& aliases() noexcept {
    alignas(knownAliases) static std::byte storage[sizeof(knownAliases)];
    static auto* const known = new (storage) knownAliases;
    return *known;
}

} // namespace

void rememberAlias(scString alias) {
    knownAliases& known = aliases();
    nameKey const key(alias);
    if (known.contains(key)) return;
    heldMutex const held(known.mutex);
    if (!known.contains(key)) known.names.append(held, {alias});
}

bool wasEverAlias(nameKey const& name) noexcept {
    return aliases().contains(name);
}

} // namespace zov::metamodel
