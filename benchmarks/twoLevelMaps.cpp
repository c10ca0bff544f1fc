// A baseline: a hash map of classes, each with a hash map of its fields, for names exactly as written. What a host
// would write in an afternoon.
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "contenderOf.h"
#include "contenders.h"
#include "plainRecords.h"

namespace zov::benchmarks {

namespace {

// Lets a map of texts be asked with a part of a text.
struct textHash {
    using is_transparent = void;
    std::size_t operator()(std::wstring_view text) const noexcept { return std::hash<std::wstring_view>()(text); }
};

template <class T>
using nameMap = std::unordered_map<std::wstring, T, textHash, std::equal_to<>>;

struct mappedClass {
    std::wstring mName;
    mappedClass const* mBase = nullptr;
    nameMap<plainField> mFields;
};

class twoLevelStore : public plainNames {
public:
    using classHandle = mappedClass*;
    using fieldHandle = plainField const*;
    static constexpr bool isReadableBesideWriter = false;

    using plainNames::plainNames;

    classHandle addClass(classPlan const& plan, classHandle const* base) {
        auto& made = mClasses[wide(plan.mName)];
        made.mName = wide(plan.mName);
        if (base) made.mBase = *base;
        for (auto const& field : plan.mFields)
            addField(&made, field);
        return &made;
    }

    void addField(classHandle owner, fieldPlan const& plan) {
        auto const& name = mFieldNames[plan.mName];
        owner->mFields.try_emplace(name, plainField{name, plan.mType, plainDefault(plan)});
    }

    mappedClass const* findClass(std::wstring_view name) const { return valueIn(mClasses, name); }

    fieldHandle findField(std::wstring_view name) const {
        auto const dot = name.find(L'.');
        auto const* const owner = findClass(name.substr(0, dot));
        return owner ? valueIn(owner->mFields, name.substr(dot + 1)) : nullptr;
    }

    static fieldHandle findInherited(mappedClass const* asked, text const& name) {
        for (; asked; asked = asked->mBase)
            if (auto const* const found = valueIn(asked->mFields, name)) return found;
        return nullptr;
    }

    void forEachField(auto const& visit) const {
        for (auto const& [className, owner] : mClasses)
            for (auto const& [name, field] : owner.mFields)
                visit(field.mName.front(), field.mType == valueType::integer);
    }

    static int intDefault(fieldHandle field) { return field->intDefault(); }

    static bool isClass(mappedClass const* found, classPlan const& plan) { return found->mName == wide(plan.mName); }
    bool isField(fieldHandle found, classPlan const& owner, fieldPlan const& plan) const {
        auto const* const expected = valueIn(findClass(wide(owner.mName))->mFields, mFieldNames[plan.mName]);
        return found == expected && found->mType == plan.mType;
    }

private:
    template <class T>
    static T const* valueIn(nameMap<T> const& map, std::wstring_view name) {
        auto const at = map.find(name);
        return at == map.end() ? nullptr : &at->second;
    }

    nameMap<mappedClass> mClasses;
};

} // namespace

contenderKind twoLevelMapKind() {
    return kindOf<twoLevelStore>("two-level map");
}

} // namespace zov::benchmarks
