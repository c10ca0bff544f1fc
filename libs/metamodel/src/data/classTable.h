// The direct bases or derived classes of a class, by name.
#pragma once

#include <cstddef>
#include <optional>
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

    classTable() = default;
    classTable(classTable const&) = default;
    classTable(classTable&&) = default;
    classTable& operator=(classTable const&) = delete;
    classTable& operator=(classTable&&) = delete;

    // The last class is given up first.
    ~classTable();

    bool contains(scString name) const noexcept;

    // Adds a class, unless one of that name is there. Throws std::bad_alloc, and nothing has changed.
    void emplace(scString name, refPtr<classInfo> const& added);

    std::size_t size() const noexcept { return mMany.empty() ? mOne.has_value() : mMany.size(); }
    related const* begin() const noexcept { return mMany.empty() && mOne ? &*mOne : mMany.data(); }
    related const* end() const noexcept { return begin() + size(); }

private:
    std::optional<related> mOne; // a single class: at hand without a further step
    std::vector<related> mMany;  // all classes when there are more
};

} // namespace zov::metamodel
