// The fields that together identify an object of one class.
//
// Id sets are made by classInfo::idInfo() and never change. They hold their fields strongly.
//
// Threads: any thread may call anything.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "zovMetamodelApi.h"
#include "zovRefPtr.h"

namespace zov::metamodel {

class classInfo;
class fieldInfo;

class ZOV_METAMODEL_API idInfo final : public iRefObj, public refObj {
public:
    // The class of the first field; empty once that class has been torn down.
    refPtr<metamodel::classInfo> classInfo() const;

    // Whether both sets name the very same field objects in the same order; names do not count.
    // Fails "pOther!=0" when pOther is null.
    bool isEqualTo(idInfo const* pOther) const;

    // The number of fields, at least 1.
    std::size_t countFields() const noexcept;

    // Calls `visit` for each field, in order. Answers false when a visit answered false and stopOnFalse is set
    // (which ends the walk), else true. An empty function throws std::bad_function_call.
    bool forEachFieldInfo(std::function<bool(refPtr<fieldInfo>)> const& visit, bool stopOnFalse) const;

    std::uint32_t refCount() const override { return currentCount(); }
    std::uint32_t addRef() override { return refObj::addRef(); }
    std::uint32_t release() override { return refObj::release(); }

private:
    friend class metamodel::classInfo;
    friend struct testAccess;

    // Fails "rfields.size()>=1" when there is none, "m_p != NULL" at an empty pointer; throws false without a
    // report when the fields belong to different classes.
    explicit idInfo(std::vector<refPtr<fieldInfo>> const& rfields);
    ~idInfo() override;
    void destroy() override;

    std::vector<refPtr<fieldInfo>> mFields;
};

} // namespace zov::metamodel
