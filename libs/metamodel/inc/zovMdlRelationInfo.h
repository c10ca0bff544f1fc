// One relation between two classes: which field of the source refers to which field of the target, what kind of
// relation it is, and under which name it is known from each side.
//
// Relations are made by classInfo::createRelation, which files them with both classes. A relation holds its fields
// strongly. It may pair several fields (a compound key); the first pair fixes the two classes.
//
// Threads: any thread may call anything; pairs may be added beside readers.
// Fails: a failed check reports and throws false (zovAssert.h). Adding a pair throws std::bad_alloc when memory is
// gone, and nothing changed.
#pragma once

#include <functional>
#include <memory>

#include "zovMdlRelationType.h"
#include "zovMetamodelApi.h"
#include "zovRefPtr.h"
#include "zovScString.h"
#include "zovString.h"

namespace zov::metamodel {

class classInfo;
class fieldInfo;
struct relationData;

class ZOV_METAMODEL_API relationInfo final : public iRefObj, public refObj {
public:
    eRelationType type() const noexcept;

    // The relation's name as seen from the source class, by which classInfo::toRelation finds it, and as seen from the
    // target class.
    scString const& scName() const noexcept;
    scString const& scReverseName() const noexcept;

    // The classes of the first pair's fields; empty once these have been torn down.
    const_refPtr<classInfo> fromClassInfo() const;
    const_refPtr<classInfo> toClassInfo() const;

    // The source field of the first pair.
    const_refPtr<fieldInfo> firstFromFieldInfo() const;

    // The other field of the first pair that has this very field as its target, or as its source; empty when there is
    // none. A relation to a class has a target field of its own, "PTR", which the class does not list.
    const_refPtr<fieldInfo> fromFieldInfo(const_refPtr<fieldInfo> const& toField) const;
    const_refPtr<fieldInfo> toFieldInfo(const_refPtr<fieldInfo> const& fromField) const;

    // Adds a pair of fields of the same two classes, also one that is there already. Answers true.
    // Fails when a field has no class, or is of another class than the first pair's.
    bool addFieldRelation(refPtr<fieldInfo> pParentColumn, refPtr<fieldInfo> pDepColumn);

    // Calls `visit` with the source and target field of each pair, in order. Answers false when a visit answered false
    // and stopOnFalse is set (which ends the walk), else true. An empty function throws std::bad_function_call.
    bool forEachFieldPair(std::function<bool(refPtr<fieldInfo>, refPtr<fieldInfo>)> const& visit,
                          bool stopOnFalse) const;

    std::uint32_t refCount() const override { return currentCount(); }
    std::uint32_t addRef() override { return refObj::addRef(); }
    std::uint32_t release() override { return refObj::release(); }

private:
    friend class metamodel::classInfo;
    friend struct testAccess;

    relationInfo(refPtr<fieldInfo> const& fromField, refPtr<fieldInfo> const& toField, eRelationType type,
                 string const& name, string const& reverseName);
    relationInfo(refPtr<fieldInfo> const& fromField, refPtr<classInfo> const& toClass, eRelationType type,
                 string const& name, string const& reverseName);
    ~relationInfo() override;
    void destroy() override;

    void begin(refPtr<fieldInfo> const& fromField, refPtr<fieldInfo> const& toField, string const& name,
               string const& reverseName);
    refPtr<classInfo> targetClass() const;
    void clearOwnField() noexcept;

    std::unique_ptr<relationData> mData;
};

} // namespace zov::metamodel
