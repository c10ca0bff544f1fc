#include "parts/classFields.h"

#include "base/counting.h"
#include "parts/baseSearch.h"

namespace zov::metamodel {

namespace {

// The class's own field of this name, or null: for readers in their section, and for who holds the class's mutex.
template <class Access>
fieldInfo* ownField(Access const& access, classData const& owner, nameKey const& name) noexcept {
    if (!owner.mFieldFilter.mayHave(name)) return nullptr;
    auto const isIt = [&name](fieldEntry const& entry) {
        fetchForCounting(entry.field);
        return name.isTextOf(entry.name);
    };
    fieldEntry const* const found = owner.mFieldInfos.find(access, name.hash(), isIt);
    return found ? found->field : nullptr;
}

// The same for a name as it is asked for, by the class's case rule.
fieldInfo* ownField(readSection const& reading, classData const& owner, lookedUpName& name) noexcept {
    return ownField(reading, owner, name.key(owner.mCaseSensitiveNames));
}

// Kept apart from findField, which seldom comes here.
[[gnu::noinline]] fieldInfo* inheritedField(readSection const& reading, classData const& owner, lookedUpName& asked,
                                            bool searchAliases) {
    fieldInfo* found = nullptr;
    auto const isIn = [&](classData const* base) {
        found = ownField(reading, checked(base), asked);
        return found != nullptr;
    };
    // KEEP CF-07: the flags change places on the way up, so that the bases' own bases are searched only when
    // aliases were asked for.
    if (searchAliases) {
        baseSearch(withinSection{reading}).any(owner, isIn);
    } else {
        anyDirectBase(reading, owner, isIn);
    }
    return found;
}

bool differAtMostInCase(scString left, scString right) {
    if (left == right) return true;
    if (left.string().size() != right.string().size()) return false;
    return left.string().lower() == right.string().lower();
}

// The first field that takes the name, or null.
fieldInfo* fieldThatTakes(classData& owner, heldMutex const& held, newName const& added, bool caseSensitive) {
    if (caseSensitive) return ownField(held, owner, added.filed);
    if (!owner.mHasCapitals) return ownField(held, owner, added.inAnyCase());
    for (fieldEntry const& entry : owner.mFieldInfos.entries(held)) {
        if (differAtMostInCase(entry.name, added.name)) return entry.field;
    }
    return nullptr;
}

// There must be room.
void stage(classData& owner, heldMutex const& held, refPtr<fieldInfo> const& added, newName const& name) noexcept {
    owner.mHasCapitals = owner.mHasCapitals || !name.isLowered;
    owner.mFieldFilter.add(name.filed);
    owner.mFieldInfos.stage(held, {name.name, added.get()}, name.filed.hash());
}

} // namespace

fieldInfo* findField(readSection const& reading, classData const& owner, std::wstring_view name, bool searchBaseClasses,
                     bool searchAliases) {
    lookedUpName asked(name, owner.mCaseSensitiveNames);
    if (fieldInfo* const own = ownField(reading, owner, asked)) return own;
    return searchBaseClasses ? inheritedField(reading, owner, asked, searchAliases) : nullptr;
}

newName::newName(scString given) noexcept : newName(given, nameKey(given.string(), false).isTextOf(given)) {}

refPtr<fieldInfo> addField(classData& owner, heldMutex const& held, refPtr<fieldInfo> const& added, newName const& name,
                           bool caseSensitive) {
    if (fieldInfo* const taken = fieldThatTakes(owner, held, name, caseSensitive)) return taken;
    owner.mFieldInfos.reserve(held, 1);
    stage(owner, held, added, name);
    owner.mFieldInfos.commit(held);
    return nullptr;
}

bool isTaken(classData& owner, heldMutex const& held, scString name) {
    return fieldThatTakes(owner, held, newName(name), false) != nullptr;
}

void addFields(classData& owner, heldMutex const& held, std::vector<refPtr<fieldInfo>> const& added) {
    if (added.empty()) return;
    owner.mFieldInfos.reserve(held, added.size());
    for (auto const& field : added)
        stage(owner, held, field, newName(field->scName()));
    owner.mFieldInfos.commit(held);
}

} // namespace zov::metamodel
