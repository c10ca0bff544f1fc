#include "parts/knownAliases.h"

#include <mutex>
#include <new>

#include "base/growingList.h"
#include "base/nameKey.h"

namespace zov::metamodel {

namespace {

struct knownAlias {
    static constexpr bool isIndexed = true;

    std::uint64_t key() const noexcept { return scrambledKey(name); }
    void retain() const noexcept {}
    void release() const noexcept {}

    scString name;
};

struct knownAliases {
    std::recursive_mutex mutex;
    growingList<knownAlias> names;

    bool contains(scString name) const noexcept {
        readSection const reading;
        auto const isIt = [name](knownAlias const& known) { return known.name == name; };
        return names.find(reading, scrambledKey(name), isIt) != nullptr;
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
    if (known.contains(alias)) return;
    heldMutex const held(known.mutex);
    if (!known.contains(alias)) known.names.append(held, {alias});
}

bool wasEverAlias(scString name) noexcept {
    return aliases().contains(name);
}

} // namespace zov::metamodel
