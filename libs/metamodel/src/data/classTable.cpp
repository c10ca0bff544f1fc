#include "data/classTable.h"

#include <algorithm>

#include "data/classData.h"

namespace zov::metamodel {

classTable::~classTable() {
    while (!mMany.empty())
        mMany.pop_back();
}

bool classTable::contains(scString name) const noexcept {
    return std::any_of(begin(), end(), [name](related const& known) { return known.named.first == name; });
}

void classTable::emplace(scString name, refPtr<classInfo> const& added) {
    if (contains(name)) return;
    related const last{{name, added}, added ? &classData::of(*added) : nullptr};
    if (size() == 0) {
        mOne.emplace(last);
        return;
    }
    std::vector<related> all;
    all.reserve(size() + 1);
    auto const* next = begin();
    for (; next != end() && next->named.first < name; ++next)
        all.push_back(*next);
    all.push_back(last);
    for (; next != end(); ++next)
        all.push_back(*next);
    mMany.swap(all);
    mOne.reset();
}

} // namespace zov::metamodel
