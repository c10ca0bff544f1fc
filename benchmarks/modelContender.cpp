// This library, asked as its hosts ask it.
#include <deque>
#include <stdexcept>
#include <string>
#include <vector>

#include "allocatedBytes.h"
#include "contenderOf.h"
#include "contenders.h"
#include "zovMetamodel.h"
#include "zovNameKey.h"

namespace zov::benchmarks {

namespace {

using metamodel::classInfo;
using metamodel::fieldInfo;
using metamodel::modelInfo;

metamodel::eFieldType typeOf(valueType type) {
    switch (type) {
    case valueType::boolean: return metamodel::eBool;
    case valueType::integer: return metamodel::eInt;
    case valueType::longInteger: return metamodel::eLong;
    case valueType::real: return metamodel::eDouble;
    case valueType::text: return metamodel::eString;
    }
    throw std::logic_error("a type without a counterpart");
}

genericValue defaultOf(fieldPlan const& plan) {
    switch (plan.mType) {
    case valueType::boolean: return genericValue(plan.mDefault % 2 != 0);
    case valueType::integer: return genericValue(int{plan.mDefault});
    case valueType::longInteger: return genericValue(long{plan.mDefault});
    case valueType::real: return genericValue(plan.mDefault / 2.0);
    case valueType::text: return genericValue(string(std::to_wstring(plan.mDefault)));
    }
    throw std::logic_error("a type without a default");
}

class modelStore {
public:
    using text = string;
    using qualifiedText = string;
    using classHandle = refPtr<classInfo>;
    using fieldHandle = refPtr<fieldInfo>;
    static constexpr bool isReadableBesideWriter = true;

    // Names are interned for the life of the process; memory measurements count the model alone.
    explicit modelStore(workload const& load) : mModel(modelInfo::createModelInfo(false)) {
        for (auto const& name : load.fieldNames())
            mFieldNames.push_back(interned(name));
        for (auto const& plan : load.classes())
            interned(plan.mName);
    }
    ~modelStore() { mModel->tearDown(); }
    modelStore(modelStore const&) = delete;
    modelStore& operator=(modelStore const&) = delete;

    static text classNameOf(std::string const& name) { return string::fromUtf8(name); }
    static text fieldNameOf(std::string const& name) { return string::fromUtf8(name); }
    static qualifiedText qualifiedNameOf(std::string const& className, std::string const& fieldName) {
        return string::fromUtf8(className + "." + fieldName);
    }

    classHandle addClass(classPlan const& plan, classHandle const* base) {
        return mModel->createClassInfo(classNameOf(plan.mName), [&](refPtr<classInfo> const& made) {
            if (base) made->addBaseClass(*base);
            for (auto const& field : plan.mFields)
                addField(made, field);
            return true;
        });
    }

    void addField(classHandle const& owner, fieldPlan const& plan) {
        auto const made = owner->createFieldInfo(mFieldNames[plan.mName], typeOf(plan.mType), genericSet(), L"");
        if (plan.mHasDefault) made->setDefaultValue(defaultOf(plan));
    }

    // Keeps sets with a number until each of them takes memory of its own, as those of a process's first model do.
    void takeSpareMemory() {
        constexpr std::size_t batch = 20'000;   // asking the allocator takes long
        constexpr std::size_t bytesOfOne = 130; // and some more
        std::size_t taken = 0;
        for (std::size_t before = allocatedBytes(); taken < batch * bytesOfOne; before += taken) {
            for (std::size_t number = 0; number < batch; ++number)
                mSpare.emplace_back().setValue(L"number", 1, false);
            taken = allocatedBytes() - before;
        }
    }

    classHandle findClass(text const& name) const { return mModel->classInfo(name, false); }
    fieldHandle findField(qualifiedText const& name) const { return mModel->fieldInfo(name, false); }
    static fieldHandle findInherited(classHandle const& asked, text const& name) {
        return asked->fieldInfo(name, true, true);
    }

    void forEachField(auto const& visit) const {
        mModel->forEachClassInfo(
            [&visit](classInfo::entry const& entry) {
                return entry.second->forEachFieldInfo(
                    [&visit](refPtr<fieldInfo> const& field) {
                        visit(field->scName().string().front(), field->type() == metamodel::eInt);
                        return true;
                    },
                    false);
            },
            false);
    }

    static int intDefault(fieldHandle const& field) {
        genericValue value;
        int number = 0;
        field->getDefaultValue(value, false);
        value.getValue(number);
        return number;
    }

    static std::uint64_t keyOf(text const& className) { return nameKey(className, false).hash(); }
    static classHandle counted(classHandle const& known) { return known; }

    static bool isClass(classHandle const& found, classPlan const& plan) {
        return found->scName().string() == classNameOf(lowered(plan.mName));
    }
    bool isField(fieldHandle const& found, classPlan const& owner, fieldPlan const& plan) const {
        return isClass(found->classInfo(), owner) && found->scName().string() == mFieldNames[plan.mName].lower() &&
               found->type() == typeOf(plan.mType);
    }

private:
    static string interned(std::string const& name) {
        string made = fieldNameOf(name);
        scString::createFrom(made.lower());
        return made;
    }

    refPtr<modelInfo> mModel;
    std::vector<string> mFieldNames;
    std::deque<genericSet> mSpare;
};

} // namespace

contenderKind metamodelKind() {
    return kindOf<modelStore>("zovMetamodel");
}

} // namespace zov::benchmarks
