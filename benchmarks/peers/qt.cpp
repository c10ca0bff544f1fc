// Qt's meta-objects, made at run time, and a hash of them by name. Fields are properties; they have no defaults.
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <QByteArray>
#include <QHash>
#include <QMetaObject>
#include <QMetaProperty>
#include <private/qmetaobjectbuilder_p.h>

#include "contenderOf.h"
#include "contenders.h"

namespace zov::benchmarks {

namespace {

char const* typeOf(valueType type) {
    switch (type) {
    case valueType::boolean: return "bool";
    case valueType::integer: return "int";
    case valueType::longInteger: return "qlonglong";
    case valueType::real: return "double";
    case valueType::text: return "QString";
    }
    throw std::logic_error("a type without a counterpart");
}

// A property that was found, or not.
struct foundProperty {
    QMetaObject const* mAsked = nullptr;
    int mIndex = -1;

    explicit operator bool() const { return mIndex >= 0; }
};

class qtStore {
public:
    using text = QByteArray;
    using qualifiedText = std::pair<QByteArray, QByteArray>;
    using classHandle = QMetaObject const*;
    using fieldHandle = foundProperty;
    static constexpr bool isReadableBesideWriter = false;

    explicit qtStore(workload const& load) {
        for (auto const& name : load.fieldNames())
            mFieldNames.push_back(fieldNameOf(name));
    }

    static text classNameOf(std::string const& name) { return QByteArray::fromStdString(name); }
    static text fieldNameOf(std::string const& name) { return QByteArray::fromStdString(name); }
    static qualifiedText qualifiedNameOf(std::string const& className, std::string const& fieldName) {
        return {classNameOf(className), fieldNameOf(fieldName)};
    }

    classHandle addClass(classPlan const& plan, classHandle const* base) {
        QMetaObjectBuilder builder;
        builder.setClassName(classNameOf(plan.mName));
        if (base) builder.setSuperClass(*base);
        for (auto const& field : plan.mFields)
            builder.addProperty(mFieldNames[field.mName], typeOf(field.mType));
        auto const& made = mOwned.emplace_back(builder.toMetaObject());
        mClasses.insert(classNameOf(plan.mName), made.get());
        return made.get();
    }

    classHandle findClass(text const& name) const { return mClasses.value(name); }
    fieldHandle findField(qualifiedText const& name) const { return findInherited(findClass(name.first), name.second); }
    static fieldHandle findInherited(classHandle asked, text const& name) {
        return {asked, asked->indexOfProperty(name.constData())};
    }

    void forEachField(auto const& visit) const {
        for (auto const& owner : mOwned)
            for (int number = owner->propertyOffset(); number < owner->propertyCount(); ++number) {
                auto const property = owner->property(number);
                visit(property.name()[0], property.userType() == QMetaType::Int);
            }
    }

    static bool isClass(classHandle found, classPlan const& plan) { return found->className() == plan.mName; }
    bool isField(fieldHandle found, classPlan const& owner, fieldPlan const& plan) const {
        auto const property = found.mAsked->property(found.mIndex);
        return isClass(property.enclosingMetaObject(), owner) && property.name() == mFieldNames[plan.mName];
    }

private:
    struct freed {
        void operator()(QMetaObject* made) const { std::free(made); }
    };

    std::vector<QByteArray> mFieldNames;
    std::vector<std::unique_ptr<QMetaObject, freed>> mOwned;
    QHash<QByteArray, QMetaObject const*> mClasses;
};

} // namespace

contenderKind qtKind() {
    return kindOf<qtStore>("Qt");
}

} // namespace zov::benchmarks
