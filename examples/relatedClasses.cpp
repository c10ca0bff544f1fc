// Classes that refer to each other, seen from both sides.
#include <iostream>

#include "zovMetamodel.h"

using zov::genericSet;
using zov::refPtr;
using zov::string;
using zov::metamodel::eAgg;
using zov::metamodel::eLong;
using zov::metamodel::fieldInfo;
using zov::metamodel::modelInfo;
using zov::metamodel::relationInfo;
using zov::metamodel::relationTypeString;

namespace {

void printPairs(relationInfo const& relation) {
    relation.forEachFieldPair(
        [](refPtr<fieldInfo> from, refPtr<fieldInfo> to) {
            std::cout << "  " << from->qualifiedName().toUtf8() << " = " << to->qualifiedName().toUtf8() << '\n';
            return true;
        },
        false);
}

} // namespace

int main() {
    auto const model = modelInfo::createModelInfo(false);
    auto const order = model->createClassInfo(L"Order");
    auto const line = model->createClassInfo(L"OrderLine");
    auto const number = order->createFieldInfo(L"number", eLong, genericSet(), L"");
    line->createFieldInfo(L"order", eLong, genericSet(), L"");

    // Called "order" by the lines, and "lines" by the order.
    line->createRelation(L"order", false, number, eAgg, L"", L"lines");

    if (auto const found = line->toRelation(L"order", false)) {
        std::cout << found->scName().string().toUtf8() << " (" << relationTypeString(found->type()).string().toUtf8()
                  << ") leads to " << found->toClassInfo()->scName().string().toUtf8() << '\n';
        printPairs(*found);
    }
    order->forEachFromRelation(
        [](refPtr<relationInfo> arriving) {
            std::cout << arriving->scReverseName().string().toUtf8() << " come from "
                      << arriving->fromClassInfo()->scName().string().toUtf8() << '\n';
            return true;
        },
        false);

    // Properties of the host's own travel along: what is inheritable, derived classes see too.
    auto const rushOrder = model->createClassInfo(L"RushOrder");
    rushOrder->addBaseClass(order);
    order->setUserProperty(L"icon", L"box", true);
    string icon;
    if (rushOrder->getUserProperty(L"icon", icon, true)) std::cout << "icon: " << icon.toUtf8() << '\n';

    model->tearDown();
}
