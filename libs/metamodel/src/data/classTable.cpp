#include "data/classTable.h"

#include <algorithm>

#include "data/classData.h"

namespace zov::metamodel {

bool classTable::contains(scString name) const noexcept {
    return std::any_of(begin(), end(), [name](related const& known) { return known.named.first == name; });
}

void classTable::emplace(scString name, refPtr<classInfo> const& added) {
    if (contains(name)) return;
    std::vector<related> larger;
    larger.reserve(size() + 1);
    auto next = begin();
    for (; next != end() && next->named.first < name; ++next)
        larger.push_back(*next);
    larger.push_back({{name, added}, added ? &classData::of(*added) : nullptr});
    for (; next != end(); ++next)
        larger.push_back(*next);
    mClasses.swap(larger);
}

} // namespace zov::metamodel
