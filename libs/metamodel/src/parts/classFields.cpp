#include "parts/classFields.h"

#include <algorithm>

#include "base/counting.h"
#include "parts/baseSearch.h"

namespace zov::metamodel {

namespace {

// The class's own field of this name, or null.
fieldInfo* ownField(readSection const& reading, classData const& owner, nameKey const& name) noexcept {
    auto const isIt = [&name](fieldEntry const& entry) {
        fetchForCounting(entry.field);
        return name.isTextOf(entry.name);
    };
    fieldEntry const* const found = owner.mFieldInfos.find(reading, name.hash(), isIt);
    return found ? found->field : nullptr;
}

// The same for a name as it is asked for, by the class's case rule.
fieldInfo* ownField(readSection const& reading, classData const& owner, lookedUpName& name) noexcept {
    return ownField(reading, owner, name.key(owner.mCaseSensitiveNames));
}

bool isOwnLowerCase(scString name) noexcept {
    return scString::findLowered(name.string()) == name;
}

bool differAtMostInCase(scString left, scString right) {
    if (left == right) return true;
    if (left.string().size() != right.string().size()) return false;
    return left.string().lower() == right.string().lower();
}

// The first field that takes the name, or null.
fieldInfo* fieldThatTakes(classData& owner, heldMutex const& held, scString name, bool caseSensitive) {
    readSection const reading;
    if (caseSensitive) return ownField(reading, owner, nameKey(name));
    if (!owner.mHasCapitals) return ownField(reading, owner, nameKey(name.string(), false));
    for (fieldEntry const& entry : owner.mFieldInfos.entries(held)) {
        if (differAtMostInCase(entry.name, name)) return entry.field;
    }
    return nullptr;
}

// There must be room.
void stage(classData& owner, heldMutex const& held, refPtr<fieldInfo> const& added) noexcept {
    scString const name = added->scName();
    owner.mHasCapitals = owner.mHasCapitals || !isOwnLowerCase(name);
    owner.mFieldInfos.stage(held, {name, added.get()});
}

} // namespace

fieldInfo* findField(readSection const& reading, classData const& owner, std::wstring_view name, bool searchBaseClasses,
                     bool searchAliases) {
    lookedUpName asked(name, owner.mCaseSensitiveNames);
    if (fieldInfo* const own = ownField(reading, owner, asked)) return own;
    if (!searchBaseClasses) return nullptr;
    fieldInfo* found = nullptr;
    auto const isIn = [&](classTable::related const& base) {
        found = ownField(reading, classData::of(*base.named.second), asked);
        return found != nullptr;
    };
    // KEEP CF-07: the flags change places on the way up, so that the bases' own bases are searched only when
    // aliases were asked for.
    if (searchAliases) {
        baseSearch(withinSection{reading}).any(owner, isIn);
    } else if (classTable const* const bases = owner.mBaseClasses.peek(reading)) {
        static_cast<void>(std::any_of(bases->begin(), bases->end(), isIn));
    }
    return found;
}

refPtr<fieldInfo> addField(classData& owner, heldMutex const& held, refPtr<fieldInfo> const& added,
                           bool caseSensitive) {
    if (fieldInfo* const taken = fieldThatTakes(owner, held, added->scName(), caseSensitive)) return taken;
    owner.mFieldInfos.reserve(held, 1);
    stage(owner, held, added);
    owner.mFieldInfos.commit(held);
    return nullptr;
}

bool isTaken(classData& owner, heldMutex const& held, scString name, std::vector<refPtr<fieldInfo>> const& coming) {
    if (fieldThatTakes(owner, held, name, false)) return true;
    return std::any_of(coming.begin(), coming.end(), [name](refPtr<fieldInfo> const& other) {
        return differAtMostInCase(other->scName(), name);
    });
}

void addFields(classData& owner, heldMutex const& held, std::vector<refPtr<fieldInfo>> const& added) {
    if (added.empty()) return;
    owner.mFieldInfos.reserve(held, added.size());
    for (auto const& field : added)
        stage(owner, held, field);
    owner.mFieldInfos.commit(held);
}

} // namespace zov::metamodel
