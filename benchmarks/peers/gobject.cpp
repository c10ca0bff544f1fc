// GObject's type system: classes are types below GObject's own, fields are properties. Types cannot be unregistered,
// so each store gives its classes a suffix of its own. Hosts keep a reference to each class that they use.
#include <atomic>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <glib-object.h>

#include "contenderOf.h"
#include "contenders.h"

namespace zov::benchmarks {

namespace {

constexpr auto paramFlags = static_cast<GParamFlags>(G_PARAM_READABLE);

GParamSpec* newProperty(fieldPlan const& plan, char const* name) {
    gint const value = plan.mHasDefault ? plan.mDefault : 0;
    switch (plan.mType) {
    case valueType::boolean: return g_param_spec_boolean(name, nullptr, nullptr, value % 2 != 0, paramFlags);
    case valueType::integer: return g_param_spec_int(name, nullptr, nullptr, G_MININT, G_MAXINT, value, paramFlags);
    case valueType::longInteger:
        return g_param_spec_int64(name, nullptr, nullptr, G_MININT64, G_MAXINT64, value, paramFlags);
    case valueType::real: return g_param_spec_double(name, nullptr, nullptr, -1e9, 1e9, value / 2.0, paramFlags);
    case valueType::text:
        return g_param_spec_string(name, nullptr, nullptr, plan.mHasDefault ? std::to_string(value).c_str() : nullptr,
                                   paramFlags);
    }
    throw std::logic_error("a type without a counterpart");
}

// Properties need a reader, though no object is ever made.
void readNothing(GObject*, guint, GValue*, GParamSpec*) {}

class gobjectStore {
public:
    using text = std::string;
    using qualifiedText = std::pair<std::string, std::string>;
    using classHandle = GObjectClass*;
    using fieldHandle = GParamSpec*;
    static constexpr bool isReadableBesideWriter = true;
    static constexpr std::size_t mostClasses = 10'000; // as nothing of them is ever freed

    explicit gobjectStore(workload const& load) : mFieldNames(load.fieldNames()) {
        static std::atomic<int> count = 0;
        mSuffix += std::to_string(++count);
    }
    ~gobjectStore() {
        for (auto* const owned : mClasses)
            g_type_class_unref(owned);
    }
    gobjectStore(gobjectStore const&) = delete;
    gobjectStore& operator=(gobjectStore const&) = delete;

    static text fieldNameOf(std::string const& name) { return name; }
    text classNameOf(std::string const& name) const { return name + mSuffix; }
    qualifiedText qualifiedNameOf(std::string const& className, std::string const& fieldName) const {
        return {classNameOf(className), fieldName};
    }

    classHandle addClass(classPlan const& plan, classHandle const* base) {
        GTypeInfo info = {};
        info.class_size = sizeof(GObjectClass);
        info.instance_size = sizeof(GObject);
        info.class_init = installProperties;
        classInit init{*this, plan};
        info.class_data = &init;
        GType const parent = base ? G_OBJECT_CLASS_TYPE(*base) : G_TYPE_OBJECT;
        GType const type = g_type_register_static(parent, classNameOf(plan.mName).c_str(), &info, GTypeFlags(0));
        mClasses.push_back(static_cast<GObjectClass*>(g_type_class_ref(type)));
        return mClasses.back();
    }

    // Answers the type, of which there is none when it is 0.
    GType findClass(text const& name) const { return g_type_from_name(name.c_str()); }

    fieldHandle findField(qualifiedText const& name) const {
        auto* const owner = static_cast<GObjectClass*>(g_type_class_peek(findClass(name.first)));
        return findInherited(owner, name.second);
    }
    static fieldHandle findInherited(classHandle asked, text const& name) {
        return g_object_class_find_property(asked, name.c_str());
    }

    // GObject's own list of a class's properties is picked from those of all types in the process, so hosts keep one.
    void forEachField(auto const& visit) const {
        for (auto const* const property : mProperties)
            visit(property->name[0], G_IS_PARAM_SPEC_INT(property));
    }

    static int intDefault(fieldHandle field) { return g_value_get_int(g_param_spec_get_default_value(field)); }

    bool isClass(GType found, classPlan const& plan) const { return g_type_name(found) == classNameOf(plan.mName); }
    bool isField(fieldHandle found, classPlan const& owner, fieldPlan const& plan) const {
        return isClass(found->owner_type, owner) && found->name == mFieldNames[plan.mName];
    }

private:
    // What a class's initialiser is told; it runs within addClass.
    struct classInit {
        gobjectStore& mStore;
        classPlan const& mPlan;
    };

    static void installProperties(gpointer made, gpointer data) {
        auto* const owner = static_cast<GObjectClass*>(made);
        auto const& init = *static_cast<classInit const*>(data);
        owner->get_property = readNothing;
        guint number = 0;
        for (auto const& field : init.mPlan.mFields) {
            auto* const property = newProperty(field, init.mStore.mFieldNames[field.mName].c_str());
            g_object_class_install_property(owner, ++number, property);
            init.mStore.mProperties.push_back(property);
        }
    }

    std::vector<std::string> mFieldNames;
    std::string mSuffix = "_";
    std::vector<GObjectClass*> mClasses;
    std::vector<GParamSpec*> mProperties;
};

} // namespace

contenderKind gobjectKind() {
    return kindOf<gobjectStore>("GObject");
}

} // namespace zov::benchmarks
