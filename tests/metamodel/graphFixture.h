// What the tests of relations share: two classes to relate, and short ways to list relations and their pairs.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "modelFixture.h"

namespace zov::metamodel::tests {

using relations = std::vector<refPtr<relationInfo>>;
using fieldPairs = std::vector<std::pair<refPtr<fieldInfo>, refPtr<fieldInfo>>>;

// A model with a class Order, which has the fields customer and branch, and a class Customer with id and site.
class orders {
public:
    orders()
        : order(model->createClassInfo(L"Order")), customer(model->createClassInfo(L"Customer")),
          from(addField(order, L"customer")), branch(addField(order, L"branch")), id(addField(customer, L"id")),
          site(addField(customer, L"site")) {}

    // A relation from Order.customer to the class Customer, or to the field Customer.id.
    refPtr<relationInfo> toClass(string const& name = L"", string const& reverseName = L"",
                                 eRelationType type = eRef) const {
        return order->createRelation(L"customer", false, customer, type, name, reverseName);
    }
    refPtr<relationInfo> toField(string const& name = L"", string const& reverseName = L"",
                                 eRelationType type = eRef) const {
        return order->createRelation(L"customer", false, id, type, name, reverseName);
    }

    ownModel const model;
    refPtr<classInfo> const order;
    refPtr<classInfo> const customer;
    refPtr<fieldInfo> const from;
    refPtr<fieldInfo> const branch;
    refPtr<fieldInfo> const id;
    refPtr<fieldInfo> const site;
};

inline relations leaving(refPtr<classInfo> const& of) {
    relations found;
    of->forEachToRelation(
        [&](refPtr<relationInfo> const& relation) {
            found.push_back(relation);
            return true;
        },
        false);
    return found;
}

inline relations arriving(refPtr<classInfo> const& at) {
    relations found;
    at->forEachFromRelation(
        [&](refPtr<relationInfo> const& relation) {
            found.push_back(relation);
            return true;
        },
        false);
    return found;
}

inline fieldPairs pairsOf(refPtr<relationInfo> const& relation) {
    fieldPairs found;
    relation->forEachFieldPair(
        [&](refPtr<fieldInfo> const& from, refPtr<fieldInfo> const& to) {
            found.emplace_back(from, to);
            return true;
        },
        false);
    return found;
}

// The target field of the first pair.
inline refPtr<fieldInfo> targetOf(refPtr<relationInfo> const& relation) {
    return pairsOf(relation).front().second;
}

// The two names, as the relation's life lines show them.
inline string namesOf(refPtr<relationInfo> const& relation) {
    return relation->scName().string() + L" to " + relation->scReverseName().string();
}

// Events that report a condition of the relation's source, or of the class's.
inline std::string relationAssertion(std::string const& condition, int line) {
    return "assert " + condition + " @ libs/metamodel/src/zovMdlRelationInfo.cpp:" + std::to_string(line);
}
inline std::string classAssertion(std::string const& condition, int line) {
    return "assert " + condition + " @ libs/metamodel/src/zovMdlClassInfo.cpp:" + std::to_string(line);
}

} // namespace zov::metamodel::tests
