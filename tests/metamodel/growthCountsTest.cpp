// What is counted at rest, however containers have grown, been replaced, copied or let go: one reference for each list
// that has an object, and one for each pointer of the host's.
#include "zovMetamodel.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <stdexcept>
#include <vector>

#include "endingObjects.h"
#include "graphFixture.h"
#include "numberedNames.h"

namespace zov::metamodel {
namespace {

using tests::addIntField;
using tests::classesOf;
using tests::events;
using tests::fieldsOf;
using tests::leaving;
using tests::numbered;
using tests::numberedNames;
using tests::ownClass;
using tests::ownModel;
using tests::relations;
using zov::tests::eventLog;
using zov::tests::node;

using fields = std::vector<refPtr<fieldInfo>>;
using classes = std::vector<refPtr<classInfo>>;

// Objects that are held by `held`, and by as many others.
template <class Objects>
void expectHeld(Objects const& held, std::uint32_t others) {
    for (std::size_t at = 0; at < held.size(); ++at)
        ASSERT_EQ(held[at]->refCount(), 1 + others) << at << " of " << held.size();
}

// Everything that came while it was open has gone when it is closed.
class balanceOfLives {
public:
    ~balanceOfLives() {
        auto const happened = mLog.take();
        auto const count = [&](char const* start) { return tests::countStarting(happened, start); };
        EXPECT_GT(count("trace classInfo created"), 0u);
        EXPECT_EQ(count("trace classInfo created"), count("trace classInfo released"));
        EXPECT_EQ(count("trace fieldInfo created"), count("debug fieldInfo released"));
        EXPECT_EQ(count("trace relationInfo created"), count("trace relationInfo released"));
    }
    balanceOfLives() = default;
    balanceOfLives(balanceOfLives const&) = delete;
    balanceOfLives& operator=(balanceOfLives const&) = delete;

private:
    eventLog mLog;
};

// behaviour: TD-12, GT-02
TEST(countsAtRest, areOneForEachFieldAfterEachAddition) {
    balanceOfLives const freed;
    ownModel const model;
    auto const part = model->createClassInfo(L"part");
    fields made;
    for (auto const& name : numberedNames(L"field", 130)) {
        made.push_back(addIntField(part, name));
        addIntField(part, name);
        expectHeld(made, 1);
        ASSERT_EQ(part->refCount(), 2 + made.size());
    }
    model->tearDown();
    expectHeld(made, 0);
    EXPECT_EQ(part->refCount(), 1u);
}

// behaviour: TD-12
TEST(countsAtRest, areOneForEachClassAfterEachRegistration) {
    balanceOfLives const freed;
    ownModel const model;
    classes made;
    for (auto const& name : numberedNames(L"class", 150)) {
        made.push_back(model->createClassInfo(name));
        model->getOrCreateClassInfo(name);
        model->createClassInfo(L"refused", [](refPtr<classInfo> const&) { return false; });
        made.back()->addAliasname(L"alias of " + name);
        expectHeld(made, 1);
    }
    for (auto const& each : made)
        each->removeAliasname(L"alias of " + each->scName().string());
    expectHeld(made, 1);
    EXPECT_EQ(model->refCount(), 1u);
    model->tearDown();
    expectHeld(made, 0);
}

// behaviour: TD-12
TEST(countsAtRest, areOneForEachClassThatABaseHasBelow) {
    balanceOfLives const freed;
    ownModel const model;
    auto const base = model->createClassInfo(L"base");
    auto const part = model->createClassInfo(L"part");
    classes bases;
    classes derived;
    for (auto const& name : numberedNames(L"class", 70)) {
        bases.push_back(model->createClassInfo(L"base " + name));
        part->addBaseClass(bases.back());
        part->addBaseClass(bases.front());
        derived.push_back(model->createClassInfo(name));
        derived.back()->addBaseClass(base);
        expectHeld(bases, 2);
        expectHeld(derived, 1);
        ASSERT_EQ(base->refCount(), 2 + derived.size());
        ASSERT_EQ(part->refCount(), 2u);
    }
    model->tearDown();
    expectHeld(bases, 0);
    expectHeld(derived, 0);
}

// behaviour: GT-02
TEST(countsAtRest, areOneForEachListOfRelationsAfterEachAddition) {
    balanceOfLives const freed;
    ownModel const model;
    auto const order = model->createClassInfo(L"order");
    auto const customer = model->createClassInfo(L"customer");
    fields from;
    fields to;
    relations made;
    relations toOwn;
    for (auto const& name : numberedNames(L"field", 100)) {
        from.push_back(addIntField(order, name));
        to.push_back(addIntField(customer, name));
        made.push_back(order->createRelation(name, false, to.back(), eAgg, L"", L""));
        order->createRelation(name, false, to.back(), eAgg, L"", L"");
        toOwn.push_back(customer->createRelation(name, false, to.front(), eRef, numbered(L"own", made.size()), L""));
        expectHeld(made, 2);
        expectHeld(toOwn, 2);
        expectHeld(from, 2);
        ASSERT_EQ(order->refCount(), 2 + from.size());
    }
    EXPECT_EQ(to[5]->refCount(), 4u);
    EXPECT_EQ(to[0]->refCount(), 2u + 1 + 1 + toOwn.size());
    model->tearDown();
    expectHeld(made, 0);
    expectHeld(toOwn, 0);
    expectHeld(from, 1);
    made.clear();
    toOwn.clear();
    expectHeld(from, 0);
    expectHeld(to, 0);
}

// behaviour: GT-02
TEST(countsAtRest, areOneForEachPairOfARelation) {
    ownModel const model;
    auto const order = model->createClassInfo(L"order");
    auto const from = addIntField(order, L"from");
    auto const to = addIntField(order, L"to");
    auto const relation = order->createRelation(L"from", false, to, eAgg, L"", L"");
    for (std::uint32_t pairs = 1; pairs <= 100; ++pairs) {
        ASSERT_EQ(from->refCount(), 2 + pairs);
        ASSERT_EQ(to->refCount(), 2 + pairs);
        relation->addFieldRelation(from, to);
    }
    relation->forEachFieldPair([](auto const&, auto const&) { return true; }, true);
    EXPECT_EQ(to->refCount(), 103u);
}

// behaviour: MR-12, MR-13, TD-12
TEST(countsAtRest, areTheHostsAloneForClassesThatWereReplacedInsideAccept) {
    balanceOfLives const freed;
    ownModel const model;
    classes current;
    classes replaced;
    for (auto const& name : numberedNames(L"class", 70)) {
        current.push_back(model->createClassInfo(name, [&](refPtr<classInfo> const& offered) {
            replaced.push_back(model->createClassInfo(name, [&](refPtr<classInfo> const& inner) {
                inner->addAliasname(L"alias of " + name);
                return !!addIntField(inner, L"width");
            }));
            EXPECT_EQ(replaced.back()->refCount(), 3u);
            EXPECT_EQ(model->classInfo(L"alias of " + name, true), replaced.back());
            return !!addIntField(offered, L"width");
        }));
        ASSERT_EQ(model->classInfo(L"alias of " + name, true), nullptr);
        ASSERT_EQ(model->countClasses(), current.size());
        expectHeld(replaced, 1);
        expectHeld(current, 2);
    }
    model->tearDown();
    expectHeld(current, 0);
    for (auto const& former : replaced) {
        EXPECT_EQ(former->countFields(), 1u);
        former->tearDown();
    }
    expectHeld(replaced, 0);
}

// behaviour: MR-07, MR-13, TD-12
TEST(countsAtRest, areTheHostsAloneForClassesThatWereReplacedByCapitals) {
    balanceOfLives const freed;
    ownModel const model(true);
    for (auto const& name : numberedNames(L"other", 20))
        model->createClassInfo(name);
    classes replaced;
    for (int at = 0; at < 100; ++at) {
        auto const made = model->createClassInfo(L"Part");
        ASSERT_EQ(made->refCount(), 2u);
        expectHeld(replaced, 0);
        replaced.push_back(made);
        ASSERT_EQ(replaced.back()->refCount(), 3u);
    }
    EXPECT_EQ(model->countClasses(), 21u);
}

// behaviour: MR-13, LL-07
TEST(countsAtRest, leaveNothingOfReplacedClassesThatNobodyHolds) {
    eventLog log;
    ownModel const model(true);
    for (int at = 0; at < 50; ++at) {
        model->createClassInfo(L"Part");
        log.take();
        model->createClassInfo(L"Part");
        ASSERT_EQ(log.take(), (events{"trace classInfo created: \"Part\"", "trace classInfo released: \"\""}));
    }
}

// behaviour: CF-18, TD-12
TEST(countsAtRest, areOneForEachCopiedField) {
    for (std::size_t count : {0u, 1u, 5u, 6u, 7u, 12u, 13u, 24u, 25u, 60u, 100u}) {
        balanceOfLives const freed;
        ownClass const from(L"from");
        ownClass const to(L"to");
        for (std::size_t at = 0; at < count; ++at)
            addIntField(from, numbered(L"field", at));
        for (std::size_t at = 0; at < count; at += 2)
            addIntField(to, numbered(L"field", at));
        for (int times = 0; times < 3; ++times)
            ASSERT_TRUE(to->copyInfosFrom(from.pointer(), nullptr));
        ASSERT_TRUE(to->copyInfosFrom(from.pointer(), L"p"));
        auto const copies = fieldsOf(to);
        ASSERT_EQ(copies.size(), 2 * count);
        expectHeld(copies, 1);
        expectHeld(fieldsOf(from), 1);
        ASSERT_EQ(from->refCount(), 1 + count);
        ASSERT_EQ(to->refCount(), 1 + 2 * count);
        to->tearDown();
        expectHeld(copies, 0);
    }
}

// behaviour: RB-02, TD-12
TEST(countsAtRest, areNotChangedByReading) {
    ownModel const model;
    auto const base = model->createClassInfo(L"base");
    for (auto const& name : numberedNames(L"class", 40)) {
        auto const made = model->createClassInfo(name);
        made->addBaseClass(base);
        made->addAliasname(L"alias of " + name);
        for (auto const& field : numberedNames(L"field", 20))
            made->createRelation(addIntField(made, field)->scName().string(), false, base, eRef, L"", L"");
    }
    auto const all = classesOf(*model.pointer());
    std::vector<std::uint32_t> before;
    for (auto const& each : all)
        before.push_back(each->refCount());
    for (int times = 0; times < 20; ++times) {
        for (auto const& each : all) {
            auto const& name = each->scName().string();
            EXPECT_EQ(model->classInfo(L"Alias of " + name, true), each == base ? nullptr : each);
            EXPECT_EQ(bool(model->fieldInfo(name, L"field7", true)), each != base);
            EXPECT_EQ(bool(each->toRelation(L"field7", true)), each != base);
            EXPECT_EQ(each->isDerivedFrom(base), each != base);
            EXPECT_FALSE(each->fieldInfo(L"unknown", true, true));
            fieldsOf(each);
            leaving(each);
        }
    }
    for (std::size_t at = 0; at < all.size(); ++at)
        EXPECT_EQ(all[at]->refCount(), before[at]);
}

// behaviour: TD-03, TD-12
TEST(countsAtRest, areTheHostsAloneAfterWalksThatOutlivedATearDown) {
    balanceOfLives const freed;
    ownModel const model;
    classes held;
    fields heldFields;
    for (auto const& name : numberedNames(L"class", 30)) {
        held.push_back(model->createClassInfo(name));
        for (auto const& field : numberedNames(L"field", 10))
            heldFields.push_back(addIntField(held.back(), field));
    }
    model->forEachClassInfo(
        [&](classInfo::entry const& entry) {
            return entry.second->forEachFieldInfo(
                [&](refPtr<fieldInfo> const& field) {
                    model->tearDown();
                    return !field->classInfo();
                },
                true);
        },
        true);
    expectHeld(held, 0);
    expectHeld(heldFields, 0);
}

// behaviour: TD-09, TD-12
TEST(countsAtRest, areTheHostsAloneForClassesThatAcceptLeftByAnException) {
    balanceOfLives const freed;
    ownModel const model;
    classes refused;
    fields ofRefused;
    for (std::size_t count = 0; count <= 40; ++count) {
        auto const fill = [&](refPtr<classInfo> const& offered) -> bool {
            refused.push_back(offered);
            for (std::size_t at = 0; at < count; ++at)
                ofRefused.push_back(addIntField(offered, numbered(L"field", at)));
            if (count % 2) throw std::runtime_error("the host's own");
            return false;
        };
        try {
            EXPECT_FALSE(model->createClassInfo(L"part", fill));
        } catch (std::runtime_error const&) {
            EXPECT_EQ(count % 2, 1u);
        }
        expectHeld(refused, 0);
        expectHeld(ofRefused, 0);
    }
    EXPECT_EQ(model->countClasses(), 0u);
}

// behaviour: GT-10, TD-01
TEST(countsAtRest, areNoneForObjectsThatHostsGaveToWhatIsTornDown) {
    auto const before = zov::tests::objectsAlive.load();
    std::vector<int> ended;
    {
        ownModel const model;
        int number = 0;
        for (auto const& name : numberedNames(L"class", 40)) {
            auto const made = model->createClassInfo(name);
            made->setUserProperty(L"object", refPtr<refObj>(new node(++number, ended)), true);
            for (auto const& field : numberedNames(L"field", 10))
                addIntField(made, field)->setUserProperty(L"object", refPtr<refObj>(new node(++number, ended)), false);
            made->copyInfosFrom(made, L"p");
        }
        EXPECT_EQ(zov::tests::objectsAlive, before + 440);
        model->tearDown();
    }
    EXPECT_EQ(zov::tests::objectsAlive, before);
    EXPECT_EQ(ended.size(), 440u);
}

} // namespace
} // namespace zov::metamodel
