#include "zovMdlIdInfo.h"

#include <algorithm>

#include "base/sources.h"
#include "zovAssert.h"
#include "zovMdlClassInfo.h"
#include "zovMdlFieldInfo.h"

namespace zov::metamodel {

idInfo::idInfo(std::vector<refPtr<fieldInfo>> const& rfields) {
    assertThat(!rfields.empty(), L"rfields.size()>=1", sources::idInfo, 11);
    auto const owner = rfields.front()->classInfo();
    bool const isOneClass = std::all_of(rfields.begin() + 1, rfields.end(), [&owner](refPtr<fieldInfo> const& later) {
        return later->classInfo() == owner;
    });
    if (!isOneClass) throw false;
    mFields = rfields;
}

idInfo::~idInfo() = default;

void idInfo::destroy() {
    delete this;
}

refPtr<classInfo> idInfo::classInfo() const {
    return mFields.front()->classInfo();
}

bool idInfo::isEqualTo(idInfo const* pOther) const {
    assertThat(pOther != nullptr, L"pOther!=0", sources::idInfo, 33);
    return mFields == pOther->mFields;
}

std::size_t idInfo::countFields() const noexcept {
    return mFields.size();
}

bool idInfo::forEachFieldInfo(std::function<bool(refPtr<fieldInfo>)> const& visit, bool stopOnFalse) const {
    for (auto const& field : mFields) {
        if (!visit(field) && stopOnFalse) return false;
    }
    return true;
}

} // namespace zov::metamodel
