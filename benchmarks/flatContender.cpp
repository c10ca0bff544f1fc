// A baseline: the flat table, with classes under their names, fields under "class.field", and what a class inherits
// under the class itself.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "contenderOf.h"
#include "contenders.h"
#include "flatTable.h"
#include "plainRecords.h"

namespace zov::benchmarks {

namespace {

struct flatClass {
    std::wstring mName;
    flatClass const* mBase = nullptr;
    std::deque<plainField> mFields; // which stay where they are
};

class flatStore : public plainNames {
public:
    using classHandle = flatClass*;
    using fieldHandle = plainField const*;
    static constexpr bool isReadableBesideWriter = false;

    using plainNames::plainNames;

    classHandle addClass(classPlan const& plan, classHandle const* base) {
        auto& made = mOwned.emplace_back();
        made.mName = wide(plan.mName);
        mClasses.add(0, made.mName, &made);
        if (base) made.mBase = *base;
        for (auto const& field : plan.mFields)
            addField(&made, field);
        return &made;
    }

    void addField(classHandle owner, fieldPlan const& plan) {
        auto const& name = mFieldNames[plan.mName];
        owner->mFields.push_back({name, plan.mType, plainDefault(plan)});
        mFields.add(0, owner->mName + L"." + name, &owner->mFields.back());
    }

    flatClass const* findClass(text const& name) const { return static_cast<flatClass const*>(mClasses.find(0, name)); }
    fieldHandle findField(qualifiedText const& name) const { return static_cast<fieldHandle>(mFields.find(0, name)); }
    fieldHandle findInherited(flatClass const* asked, text const& name) const {
        return static_cast<fieldHandle>(mInherited.find(scopeOf(asked), name));
    }

    void prepareInherited() {
        for (auto const& asked : mOwned)
            for (auto const* level = &asked; level; level = level->mBase)
                for (auto const& field : level->mFields)
                    mInherited.add(scopeOf(&asked), field.mName, &field);
    }

    void forEachField(auto const& visit) const {
        for (auto const& owner : mOwned)
            for (auto const& field : owner.mFields)
                visit(field.mName.front(), field.mType == valueType::integer);
    }

    static int intDefault(fieldHandle field) { return field->intDefault(); }

    static bool isClass(flatClass const* found, classPlan const& plan) { return found->mName == wide(plan.mName); }
    bool isField(fieldHandle found, classPlan const& owner, fieldPlan const& plan) const {
        auto const& fields = findClass(wide(owner.mName))->mFields;
        bool const isOwned = std::ranges::any_of(fields, [&](plainField const& field) { return &field == found; });
        return isOwned && found->mName == mFieldNames[plan.mName] && found->mType == plan.mType;
    }

private:
    static std::uint64_t scopeOf(flatClass const* asked) { return reinterpret_cast<std::uintptr_t>(asked); }

    std::deque<flatClass> mOwned;
    flatTable mClasses;
    flatTable mFields;
    flatTable mInherited;
};

} // namespace

contenderKind flatTableKind() {
    return kindOf<flatStore>("flat table");
}

} // namespace zov::benchmarks
