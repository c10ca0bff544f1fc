// Walks a model: its classes, their bases and their fields, and stops where it has seen enough.
#include <iostream>
#include <set>
#include <string>

#include "zovMetamodel.h"

using zov::genericSet;
using zov::refPtr;
using zov::scString;
using zov::metamodel::classInfo;
using zov::metamodel::eDouble;
using zov::metamodel::eInt;
using zov::metamodel::eSemPrimkey;
using zov::metamodel::eString;
using zov::metamodel::fieldInfo;
using zov::metamodel::modelInfo;

namespace {

std::string text(scString name) {
    return name.string().toUtf8();
}

refPtr<modelInfo> workshop() {
    auto model = modelInfo::createModelInfo(false);
    auto const item = model->createClassInfo(L"Item", [](refPtr<classInfo> added) {
        added->setAbstract(true);
        added->createFieldInfo(L"number", eInt, genericSet(), L"")->setSemantic(eSemPrimkey, genericSet(), L"");
        return true;
    });
    model->createClassInfo(L"Part", [&item](refPtr<classInfo> added) {
        added->addBaseClass(item);
        added->createFieldInfo(item, L"number");
        added->createFieldInfo(L"width", eDouble, genericSet(), L"");
        added->createFieldInfo(L"material", eString, genericSet(), L"");
        return true;
    });
    model->createClassInfo(L"Supplier", [](refPtr<classInfo> added) {
        added->createFieldInfo(L"name", eString, genericSet(), L"");
        return true;
    });
    return model;
}

void describe(refPtr<classInfo> const& described) {
    std::cout << text(described->scName()) << (described->isAbstract() ? " (abstract)" : "") << '\n';
    auto const printBase = [](classInfo::entry const& base) {
        std::cout << "  is a " << text(base.first) << '\n';
        return true;
    };
    auto const printField = [](refPtr<fieldInfo> field) {
        std::cout << "  " << text(field->scName()) << ": " << text(field->typeString())
                  << (field->isUnique() ? ", unique" : "") << '\n';
        return true;
    };
    described->forEachBaseClass(printBase, true);
    described->forEachFieldInfo(printField, true);
}

} // namespace

int main() {
    auto const model = workshop();

    // The order of a walk over classes is not alphabetical; a host that wants it so sorts.
    std::set<std::wstring> names;
    model->forEachClassInfo(
        [&names](classInfo::entry const& entry) {
            names.insert(entry.first.string());
            return true;
        },
        true);
    for (auto const& name : names)
        describe(model->classInfo(name, false));

    // A walk ends early when a visit answers false and stopOnFalse is set.
    int seen = 0;
    bool const wentThrough = model->classInfo(L"Part", false)
                                 ->forEachFieldInfo(
                                     [&seen](refPtr<fieldInfo> field) {
                                         ++seen;
                                         return field->type() != eDouble;
                                     },
                                     true);
    std::cout << (wentThrough ? "no double among " : "the first double is field ") << seen << '\n';

    model->tearDown();
}
