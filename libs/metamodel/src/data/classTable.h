// The direct bases or derived classes of a class, by name.
#pragma once

#include <cstddef>
#include <vector>

#include "zovMdlClassInfo.h"

namespace zov::metamodel {

// In the order of name handles. Few, and seldom changed: kept side by side and copied whole.
class classTable {
public:
    struct related {
        classInfo::entry named;
        classData const* data; // of the class; null where there is none
    };

    bool contains(scString name) const noexcept;

    // Adds a class, unless one of that name is there. Throws std::bad_alloc, and nothing has changed.
    void emplace(scString name, refPtr<classInfo> const& added);

    std::size_t size() const noexcept { return mClasses.size(); }
    std::vector<related>::const_iterator begin() const noexcept { return mClasses.begin(); }
    std::vector<related>::const_iterator end() const noexcept { return mClasses.end(); }

private:
    std::vector<related> mClasses;
};

} // namespace zov::metamodel
