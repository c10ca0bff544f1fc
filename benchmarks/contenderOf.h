// A contender made of a store. A store is a class that knows one way to keep classes and fields:
//
//     explicit store(workload const&);                    prepares all field names
//     text classNameOf(std::string const&) const;         names in the form in which a host of it holds them
//     text fieldNameOf(std::string const&) const;
//     qualifiedText qualifiedNameOf(std::string const& className, std::string const& fieldName) const;
//     classHandle addClass(classPlan const&, classHandle const* base);
//     findClass(text const&) const                        something that is false when there is no such class
//     fieldHandle findField(qualifiedText const&) const   false when there is no such field
//     bool isClass(found, classPlan const&) const         whether this is what the plan says, as far as a host can tell
//     bool isField(fieldHandle, classPlan const& owner, fieldPlan const&) const
//     static constexpr bool isReadableBesideWriter
//
// and that may be able to do more:
//
//     fieldHandle findInherited(classHandle const&, text const&) const
//     void prepareInherited()                             called once before the former
//     void forEachField(visit) const                      visit(first letter of the name, whether an int)
//     int intDefault(fieldHandle const&) const
//     std::uint64_t keyOf(text const& className) const    what its index of classes goes by
//     classHandle counted(classHandle const&) const       the same, counted once more
//     void addField(classHandle const&, fieldPlan const&)
//     void takeSpareMemory()                              where its library keeps memory in store
//
// or less:
//
//     static constexpr std::size_t mostClasses            that a model may have
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "contender.h"

namespace zov::benchmarks {

template <class Store>
concept findsInherited = requires(Store const& store, typename Store::classHandle const& asked,
                                  typename Store::text const& name) {
    store.findInherited(asked, name);
};

template <class Store>
concept preparesInherited = requires(Store& store) {
    store.prepareInherited();
};

template <class Store>
concept walksFields = requires(Store const& store, void (&visit)(wchar_t, bool)) {
    store.forEachField(visit);
};

template <class Store>
concept readsDefaults = requires(Store const& store, typename Store::fieldHandle const& field) {
    store.intDefault(field);
};

template <class Store>
concept makesKeys = requires(Store const& store, typename Store::text const& name) {
    store.keyOf(name);
};

template <class Store>
concept countsClasses = requires(Store const& store, typename Store::classHandle const& known) {
    store.counted(known);
};

template <class Store>
concept addsFields = requires(Store& store, typename Store::classHandle const& owner, fieldPlan const& plan) {
    store.addField(owner, plan);
};

template <class Store>
class contenderOf final : public contender {
public:
    explicit contenderOf(workload const& load) : mLoad(load), mStore(load) { mClasses.reserve(load.classes().size()); }

    static bool can(operation asked, [[maybe_unused]] std::size_t classes) {
        if constexpr (requires { Store::mostClasses; }) {
            if (classes > Store::mostClasses) return false;
        }
        switch (asked) {
        case operation::inheritedField: return findsInherited<Store>;
        case operation::walk: return walksFields<Store>;
        case operation::intDefault: return readsDefaults<Store>;
        case operation::classKey: return makesKeys<Store>;
        case operation::countedClass: return countsClasses<Store>;
        case operation::addField: return addsFields<Store>;
        case operation::addClassBesideReaders: return Store::isReadableBesideWriter;
        default: return true;
        }
    }

    void addClass(classPlan const& plan) override {
        bool const isRoot = plan.mBase == classPlan::noBase;
        mClasses.push_back(mStore.addClass(plan, isRoot ? nullptr : &mClasses[plan.mBase]));
    }

    void addField([[maybe_unused]] fieldPlan const& plan) override {
        if constexpr (addsFields<Store>) mStore.addField(mClasses.back(), plan);
    }

    void takeSpareMemory() override {
        if constexpr (requires { mStore.takeSpareMemory(); }) mStore.takeSpareMemory();
    }

    void takeQuestions(operation asked) override {
        switch (asked) {
        case operation::classByName:
        case operation::classKey:
            if (mKnownClasses.empty()) mKnownClasses = classQuestions(operation::classByName);
            break;
        case operation::countedClass: takeClassesToCount(); break;
        case operation::unknownClass: mUnknownClasses = classQuestions(asked); break;
        case operation::qualifiedField: mKnownFields = fieldQuestions(asked); break;
        case operation::unknownField: mUnknownFields = fieldQuestions(asked); break;
        case operation::fieldsByThread: mFieldsByThread = fieldQuestions(asked); break;
        case operation::sameFields: mSameFields = fieldQuestions(asked); break;
        case operation::inheritedField: takeInheritedQuestions(); break;
        case operation::intDefault: takeDefaultQuestions(); break;
        case operation::walk: verifyWalk(); break;
        default: throw std::logic_error("not a question");
        }
    }

    std::size_t countQuestions(operation asked) const override {
        if (asked == operation::walk) return mLoad.countFields();
        return asked == operation::inheritedField ? mInheritedFields.size() : benchmarks::countQuestions;
    }

    std::uint64_t ask(operation asked, std::size_t first, std::size_t last) const override {
        auto const classNamed = [this](text const& name) { return isFound(mStore.findClass(name)); };
        auto const fieldNamed = [this](qualifiedText const& name) { return isFound(mStore.findField(name)); };
        switch (asked) {
        case operation::classByName: return sumOf(mKnownClasses, first, last, classNamed);
        case operation::unknownClass: return sumOf(mUnknownClasses, first, last, classNamed);
        case operation::qualifiedField: return sumOf(mKnownFields, first, last, fieldNamed);
        case operation::unknownField: return sumOf(mUnknownFields, first, last, fieldNamed);
        case operation::fieldsByThread: return sumOf(mFieldsByThread, first, last, fieldNamed);
        case operation::sameFields: return sumOf(mSameFields, first, last, fieldNamed);
        case operation::inheritedField: return askInherited(first, last);
        case operation::classKey: return makeKeys(first, last);
        case operation::countedClass: return countClasses(first, last);
        case operation::intDefault: return askDefaults(first, last);
        case operation::walk: return walkAll();
        default: throw std::logic_error("not a question");
        }
    }

private:
    using text = typename Store::text;
    using qualifiedText = typename Store::qualifiedText;
    using classHandle = typename Store::classHandle;
    using fieldHandle = typename Store::fieldHandle;

    static unsigned isFound(auto const& handle) { return handle ? 1 : 0; }

    static std::uint64_t sumOf(auto const& questions, std::size_t first, std::size_t last, auto const& answer) {
        std::uint64_t sum = 0;
        for (std::size_t at = first; at < last; ++at)
            sum += static_cast<std::uint64_t>(answer(questions[at]));
        return sum;
    }

    std::uint64_t askInherited([[maybe_unused]] std::size_t first, [[maybe_unused]] std::size_t last) const {
        if constexpr (findsInherited<Store>) {
            return sumOf(mInheritedFields, first, last, [this](auto const& asked) {
                return isFound(mStore.findInherited(asked.first, asked.second));
            });
        } else {
            return 0;
        }
    }

    std::uint64_t askDefaults([[maybe_unused]] std::size_t first, [[maybe_unused]] std::size_t last) const {
        if constexpr (readsDefaults<Store>) {
            return sumOf(mIntFields, first, last,
                         [this](fieldHandle const& field) { return mStore.intDefault(field); });
        } else {
            return 0;
        }
    }

    std::uint64_t makeKeys([[maybe_unused]] std::size_t first, [[maybe_unused]] std::size_t last) const {
        if constexpr (makesKeys<Store>) {
            return sumOf(mKnownClasses, first, last, [this](text const& name) { return mStore.keyOf(name); });
        } else {
            return 0;
        }
    }

    std::uint64_t countClasses([[maybe_unused]] std::size_t first, [[maybe_unused]] std::size_t last) const {
        if constexpr (countsClasses<Store>) {
            return sumOf(mCountedClasses, first, last,
                         [this](classHandle const& known) { return isFound(mStore.counted(known)); });
        } else {
            return 0;
        }
    }

    std::uint64_t walkAll() const {
        std::uint64_t sum = 0;
        if constexpr (walksFields<Store>) {
            mStore.forEachField([&sum](auto firstLetter, bool isInt) { sum += walkShare(firstLetter, isInt); });
        }
        return sum;
    }

    static std::uint64_t walkShare(auto firstLetter, bool isInt) {
        return static_cast<std::uint64_t>(firstLetter) + (isInt ? 1'000 : 0);
    }

    static void require(bool isRight, question const& asked) {
        if (!isRight) throw std::runtime_error("wrong answer about " + asked.mClassName + "." + asked.mFieldName);
    }

    std::vector<text> classQuestions(operation asked) const {
        std::vector<text> names;
        for (auto const& drawn : makeQuestions(mLoad, asked)) {
            names.push_back(mStore.classNameOf(drawn.mClassName));
            auto const found = mStore.findClass(names.back());
            require(found ? drawn.mAsked && mStore.isClass(found, *drawn.mAsked) : !drawn.mAsked, drawn);
        }
        return names;
    }

    void takeClassesToCount() {
        for (auto const& drawn : makeQuestions(mLoad, operation::classByName))
            mCountedClasses.push_back(askedClass(drawn));
    }

    classHandle const& askedClass(question const& drawn) const {
        return mClasses[static_cast<std::size_t>(drawn.mAsked - mLoad.classes().data())];
    }

    void requireField(fieldHandle const& found, question const& asked) const {
        require(found ? asked.mField && mStore.isField(found, *asked.mOwner, *asked.mField) : !asked.mField, asked);
    }

    std::vector<qualifiedText> fieldQuestions(operation asked) const {
        std::vector<qualifiedText> names;
        for (auto const& drawn : makeQuestions(mLoad, asked)) {
            names.push_back(mStore.qualifiedNameOf(drawn.mClassName, drawn.mFieldName));
            requireField(mStore.findField(names.back()), drawn);
        }
        return names;
    }

    void takeInheritedQuestions() {
        if constexpr (preparesInherited<Store>) mStore.prepareInherited();
        if constexpr (findsInherited<Store>) {
            for (auto const& drawn : makeQuestions(mLoad, operation::inheritedField)) {
                auto const& asked = askedClass(drawn);
                mInheritedFields.emplace_back(asked, mStore.fieldNameOf(drawn.mFieldName));
                requireField(mStore.findInherited(asked, mInheritedFields.back().second), drawn);
            }
        }
    }

    void takeDefaultQuestions() {
        if constexpr (readsDefaults<Store>) {
            for (auto const& drawn : makeQuestions(mLoad, operation::intDefault)) {
                mIntFields.push_back(mStore.findField(mStore.qualifiedNameOf(drawn.mClassName, drawn.mFieldName)));
                requireField(mIntFields.back(), drawn);
                require(mStore.intDefault(mIntFields.back()) == drawn.mField->mDefault, drawn);
            }
        }
    }

    void verifyWalk() const {
        std::uint64_t sum = 0;
        for (auto const& plan : mLoad.classes())
            for (auto const& field : plan.mFields)
                sum += walkShare(mLoad.fieldNames()[field.mName].front(), field.mType == valueType::integer);
        if (walkAll() != sum) throw std::runtime_error("wrong fields on a walk");
    }

    workload const& mLoad;
    Store mStore;
    std::vector<classHandle> mClasses;

    std::vector<text> mKnownClasses;
    std::vector<text> mUnknownClasses;
    std::vector<classHandle> mCountedClasses;
    std::vector<qualifiedText> mKnownFields;
    std::vector<qualifiedText> mUnknownFields;
    std::vector<qualifiedText> mFieldsByThread;
    std::vector<qualifiedText> mSameFields;
    std::vector<std::pair<classHandle, text>> mInheritedFields;
    std::vector<fieldHandle> mIntFields;
};

template <class Store>
contenderKind kindOf(std::string name) {
    return {std::move(name), contenderOf<Store>::can,
            [](workload const& load) { return std::make_unique<contenderOf<Store>>(load); }};
}

} // namespace zov::benchmarks
