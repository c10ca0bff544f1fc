// OGR's layer definitions and a hash map of them by name. No inheritance; a default is a text.
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include <ogr_feature.h>

#include "contenderOf.h"
#include "contenders.h"

namespace zov::benchmarks {

namespace {

OGRFieldType typeOf(valueType type) {
    switch (type) {
    case valueType::boolean:
    case valueType::integer: return OFTInteger;
    case valueType::longInteger: return OFTInteger64;
    case valueType::real: return OFTReal;
    case valueType::text: return OFTString;
    }
    throw std::logic_error("a type without a counterpart");
}

class ogrStore {
public:
    using text = std::string;
    using qualifiedText = std::pair<std::string, std::string>;
    using classHandle = OGRFeatureDefn*;
    using fieldHandle = OGRFieldDefn const*;
    static constexpr bool isReadableBesideWriter = false;

    explicit ogrStore(workload const& load) : mFieldNames(load.fieldNames()) {}

    static text classNameOf(std::string const& name) { return name; }
    static text fieldNameOf(std::string const& name) { return name; }
    static qualifiedText qualifiedNameOf(std::string const& className, std::string const& fieldName) {
        return {className, fieldName};
    }

    classHandle addClass(classPlan const& plan, classHandle const*) {
        auto& made = mClasses[plan.mName];
        made.reset(new OGRFeatureDefn(plan.mName.c_str()));
        made->Reference();
        for (auto const& field : plan.mFields)
            addField(made.get(), field);
        return made.get();
    }

    void addField(classHandle owner, fieldPlan const& plan) {
        OGRFieldDefn made(mFieldNames[plan.mName].c_str(), typeOf(plan.mType));
        if (plan.mType == valueType::boolean) made.SetSubType(OFSTBoolean);
        if (plan.mHasDefault) made.SetDefault(std::to_string(plan.mDefault).c_str());
        owner->AddFieldDefn(&made);
    }

    OGRFeatureDefn const* findClass(text const& name) const {
        auto const at = mClasses.find(name);
        return at == mClasses.end() ? nullptr : at->second.get();
    }
    fieldHandle findField(qualifiedText const& name) const {
        auto const* const owner = findClass(name.first);
        int const index = owner->GetFieldIndex(name.second.c_str());
        return index < 0 ? nullptr : owner->GetFieldDefn(index);
    }

    void forEachField(auto const& visit) const {
        for (auto const& [name, owner] : mClasses)
            for (int number = 0; number < owner->GetFieldCount(); ++number) {
                auto const* const field = std::as_const(*owner).GetFieldDefn(number);
                visit(field->GetNameRef()[0], field->GetType() == OFTInteger && field->GetSubType() == OFSTNone);
            }
    }

    static int intDefault(fieldHandle field) { return std::atoi(field->GetDefault()); }

    static bool isClass(OGRFeatureDefn const* found, classPlan const& plan) { return found->GetName() == plan.mName; }
    bool isField(fieldHandle found, classPlan const& owner, fieldPlan const& plan) const {
        auto const* const expected = findField({owner.mName, mFieldNames[plan.mName]});
        return found == expected && found->GetNameRef() == mFieldNames[plan.mName];
    }

private:
    struct released {
        void operator()(OGRFeatureDefn* made) const { made->Release(); }
    };

    std::vector<std::string> mFieldNames;
    std::unordered_map<std::string, std::unique_ptr<OGRFeatureDefn, released>> mClasses;
};

} // namespace

contenderKind ogrKind() {
    return kindOf<ogrStore>("OGR");
}

} // namespace zov::benchmarks
