// The fields of a class by their names: finding them, and adding further ones.
#pragma once

#include <string_view>
#include <vector>

#include "base/names.h"
#include "data/classData.h"

namespace zov::metamodel {

// The field of this name: of the class's own, else, with searchBaseClasses, of its bases, in whose own bases aliases
// must be wanted for a search. Null when there is none. Valid until the end of the section.
fieldInfo* findField(readSection const& reading, classData const& owner, std::wstring_view name, bool searchBaseClasses,
                     bool searchAliases);

// The name that a field is to be filed under.
struct newName {
    explicit newName(scString given) noexcept;

    // Of a name that is known to be its own lower case.
    static newName inLowerCase(scString given) noexcept { return newName(given, true); }

    nameKey inAnyCase() const noexcept { return isLowered ? filed : nameKey(name.string(), false); }

    scString name;
    nameKey filed;
    bool isLowered; // has no capitals

private:
    newName(scString given, bool hasNoCapitals) noexcept : name(given), filed(given), isLowered(hasNoCapitals) {}
};

// Adds the field, unless its name is taken: by the same one, or, unless letter case matters, by one that differs in
// letter case alone. Answers the field that takes it, or null. Throws std::bad_alloc, and nothing has changed.
refPtr<fieldInfo> addField(classData& owner, heldMutex const& held, refPtr<fieldInfo> const& added, newName const& name,
                           bool caseSensitive);

// Whether a field of the class takes the name, letter case apart.
bool isTaken(classData& owner, heldMutex const& held, scString name);

// Adds fields whose names are not taken; readers see all of them at once. Throws std::bad_alloc, and nothing has
// changed.
void addFields(classData& owner, heldMutex const& held, std::vector<refPtr<fieldInfo>> const& added);

} // namespace zov::metamodel
