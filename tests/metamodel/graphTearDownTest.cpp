// Letting go of models and classes that relations and user properties hold together.
#include "zovMdlModelInfo.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include "endingObjects.h"
#include "graphFixture.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::arriving;
using tests::countStarting;
using tests::events;
using tests::fieldPairs;
using tests::leaving;
using tests::orders;
using tests::ownClass;
using tests::ownModel;
using tests::pairsOf;
using tests::relationAssertion;
using tests::relations;
using tests::targetOf;
using zov::tests::eventLog;
using zov::tests::runOnSmallStack;
using zov::tests::throwsFalse;

// Every class, field and relation that came must have gone, and there were some of each.
void expectAllFreed(events const& happened) {
    EXPECT_GT(countStarting(happened, "trace classInfo created"), 0u);
    EXPECT_GT(countStarting(happened, "trace fieldInfo created"), 0u);
    EXPECT_GT(countStarting(happened, "trace relationInfo created"), 0u);
    EXPECT_EQ(countStarting(happened, "trace classInfo created"), countStarting(happened, "trace classInfo released"));
    EXPECT_EQ(countStarting(happened, "trace fieldInfo created"), countStarting(happened, "debug fieldInfo released"));
    EXPECT_EQ(countStarting(happened, "trace relationInfo created"),
              countStarting(happened, "trace relationInfo released"));
}

// Classes that refer to one another and to themselves in every way.
void fill(modelInfo& model) {
    auto const part = model.createClassInfo(L"part");
    auto const maker = model.createClassInfo(L"maker");
    auto const special = model.createClassInfo(L"special");
    special->addBaseClass(part);
    auto const key = addField(part, L"key");
    key->setSemantic(eSemPrimkey, genericSet(), L"");
    part->idInfo();
    special->createFieldInfo(part, L"key");
    addField(part, L"maker");
    addField(maker, L"part");
    part->createRelation(L"maker", false, maker, eRef, L"", L"");
    part->createRelation(L"maker", false, maker, eRef, L"", L"");
    maker->createRelation(L"part", false, key, eAgg, L"", L"")->addFieldRelation(addField(maker, L"other"), key);
    part->createRelation(L"key", false, part, eBiAgg, L"own", L"");
    special->createRelation(L"key", false, maker, eRef, L"", L"");
    special->createRelation(L"maker", true, special, eRef, L"", L"");
    part->setUserProperty(L"text", L"a text", true);
    key->setUserProperty(L"text", L"a text", true);
}

// An object of the host's that tells whether it is there.
class noteObject : public refObj {
public:
    explicit noteObject(bool& isThere) : mIsThere(isThere) { mIsThere = true; }

private:
    ~noteObject() override { mIsThere = false; }
    void destroy() override { delete this; }

    bool& mIsThere;
};

// ---- the whole model

// behaviour: GT-01
TEST(graphTearDown, freesAllThatNoHostHolds) {
    eventLog log;
    auto const model = modelInfo::createModelInfo(false);
    fill(*model);
    auto happened = log.take();
    EXPECT_EQ(countStarting(happened, "trace relationInfo created"), 6u);
    model->tearDown();
    auto const released = log.take();
    happened.insert(happened.end(), released.begin(), released.end());
    expectAllFreed(happened);
    EXPECT_EQ(model->refCount(), 1u);
}

// behaviour: GT-01
TEST(graphTearDown, freesARelationOfAClassToItself) {
    eventLog log;
    {
        ownClass const part(L"part");
        addField(part, L"parent");
        part->createRelation(L"parent", false, part, eRef, L"", L"");
        part->tearDown();
        EXPECT_EQ(part->refCount(), 1u);
    }
    expectAllFreed(log.take());
}

// behaviour: GT-01
TEST(graphTearDown, freesRelationsBetweenTwoModels) {
    eventLog log;
    {
        orders const world;
        orders const other;
        world.order->createRelation(L"customer", false, other.customer, eRef, L"", L"");
        other.order->createRelation(L"customer", false, world.id, eRef, L"", L"");
    }
    expectAllFreed(log.take());
}

// behaviour: GT-01
TEST(graphTearDown, letsTheModelBeFilledAnew) {
    eventLog log;
    {
        ownModel const model;
        for (int round = 0; round < 3; ++round) {
            fill(*model.pointer());
            EXPECT_EQ(leaving(model->classInfo(L"part", false)).size(), 3u);
            EXPECT_EQ(arriving(model->classInfo(L"maker", false)).size(), 3u);
            model->tearDown();
        }
    }
    expectAllFreed(log.take());
}

// behaviour: GT-09
TEST(graphTearDown, endsRelationsBeforeTheirOwnFieldsAndClassesLast) {
    auto model = modelInfo::createModelInfo(false);
    auto const part = model->createClassInfo(L"part");
    part->setLabel(L"A part");
    addField(part, L"parent")->setLabel(L"The parent");
    targetOf(part->createRelation(L"parent", false, part, eRef, L"", L"back"))->setLabel(L"Its own");
    eventLog log;
    model->tearDown();
    auto const happened = log.take();
    ASSERT_EQ(happened.size(), 3u);
    EXPECT_EQ(happened[0], "trace relationInfo released: \"parent\" to \"back\"");
    EXPECT_EQ(tests::sorted(happened),
              (events{"debug fieldInfo released: \"Its own\"", "debug fieldInfo released: \"The parent\"",
                      "trace relationInfo released: \"parent\" to \"back\""}));
    model.reset();
    EXPECT_EQ(log.take(), events{"trace modelInfo released"});
}

// behaviour: GT-09
TEST(graphTearDown, logsNothingOfItsOwn) {
    orders const world;
    auto const toClass = world.toClass();
    auto const toField = world.toField();
    auto const own = targetOf(toClass);
    eventLog log;
    world.model->tearDown();
    EXPECT_EQ(log.take(), events());
    EXPECT_EQ(own->classInfo(), nullptr);
    EXPECT_EQ(toField->refCount(), 1u);
}

// behaviour: GT-05
TEST(graphTearDown, mayBeDoneTwice) {
    orders const world;
    world.toClass();
    auto const held = world.toField();
    world.model->tearDown();
    eventLog log;
    world.model->tearDown();
    for (auto const& one : {world.order, world.customer}) {
        one->tearDown();
        one->tearDown();
    }
    EXPECT_EQ(log.take(), events());
    EXPECT_EQ(held->refCount(), 1u);
    EXPECT_EQ(held->fromClassInfo(), nullptr);
}

// ---- counts at rest

// behaviour: GT-02
TEST(graphTearDown, finishesWhatIsCountedOncePerList) {
    orders const world;
    auto const order = world.order->refCount();
    auto const customer = world.customer->refCount();
    auto const from = world.from->refCount();
    auto const id = world.id->refCount();
    auto const relation = world.toField();
    EXPECT_EQ(relation->refCount(), 3u);
    EXPECT_EQ(world.from->refCount(), from + 1);
    EXPECT_EQ(world.id->refCount(), id + 1);
    EXPECT_EQ(world.order->refCount(), order);
    EXPECT_EQ(world.customer->refCount(), customer);
    relation->addFieldRelation(world.from, world.id);
    EXPECT_EQ(world.from->refCount(), from + 2);
    EXPECT_EQ(world.id->refCount(), id + 2);
    world.model->tearDown();
    EXPECT_EQ(relation->refCount(), 1u);
    EXPECT_EQ(world.order->refCount(), 1u);
    EXPECT_EQ(world.customer->refCount(), 1u);
    EXPECT_EQ(world.from->refCount(), 3u);
}

// behaviour: GT-02
TEST(graphTearDown, finishesAPointerFieldThatIsCountedOnce) {
    orders const world;
    auto const customer = world.customer->refCount();
    auto relation = world.toClass();
    EXPECT_EQ(relation->refCount(), 3u);
    auto const own = targetOf(relation);
    EXPECT_EQ(own->refCount(), 2u);
    EXPECT_EQ(world.customer->refCount(), customer + 1);
    world.model->tearDown();
    EXPECT_EQ(world.customer->refCount(), 1u);
    EXPECT_EQ(own->refCount(), 2u);
    relation.reset();
    EXPECT_EQ(own->refCount(), 1u);
}

// behaviour: GT-02
TEST(graphTearDown, countsNoWalksAndLookupsThatHaveEnded) {
    orders const world;
    auto const relation = world.toClass();
    leaving(world.order);
    arriving(world.customer);
    pairsOf(relation);
    world.order->toRelation(L"customer", true);
    relation->toFieldInfo(world.from);
    world.toField();
    EXPECT_EQ(relation->refCount(), 3u);
    EXPECT_EQ(world.from->refCount(), 4u);
}

// ---- what a host holds

// behaviour: GT-03
TEST(graphTearDown, leavesAHeldRelationItsOwnData) {
    orders const world;
    auto const relation = world.toField(L"bought by", L"buys", eRevAgg);
    relation->addFieldRelation(world.branch, world.site);
    world.model->tearDown();
    EXPECT_EQ(relation->type(), eRevAgg);
    EXPECT_EQ(tests::namesOf(relation), L"bought by to buys");
    EXPECT_EQ(pairsOf(relation), (fieldPairs{{world.from, world.id}, {world.branch, world.site}}));
    EXPECT_EQ(relation->firstFromFieldInfo(), world.from);
    EXPECT_EQ(relation->toFieldInfo(world.branch), world.site);
    EXPECT_EQ(relation->fromClassInfo(), nullptr);
    EXPECT_EQ(relation->toClassInfo(), nullptr);
}

// behaviour: GT-03
TEST(graphTearDown, leavesHeldClassesTheirPropertiesAndNoRelations) {
    orders const world;
    world.toField();
    world.toClass();
    world.order->setUserProperty(L"a", L"x", false);
    world.from->setUserProperty(L"a", L"y", true);
    world.model->tearDown();
    EXPECT_TRUE(leaving(world.order).empty());
    EXPECT_TRUE(arriving(world.customer).empty());
    EXPECT_EQ(world.order->toRelation(L"customer", true), nullptr);
    string text;
    EXPECT_TRUE(world.order->getUserProperty(L"a", text, false));
    EXPECT_EQ(text, L"x");
    EXPECT_TRUE(world.from->getUserProperty(L"a", text, true));
    EXPECT_EQ(text, L"y");
    EXPECT_EQ(world.from->semantic(), eSemRelation);
}

// behaviour: GT-03
TEST(graphTearDown, leavesAHeldPointerFieldItsOwnData) {
    orders const world;
    auto const own = targetOf(world.toClass());
    world.model->tearDown();
    EXPECT_EQ(own->refCount(), 1u);
    EXPECT_EQ(own->scName().string(), L"PTR");
    EXPECT_EQ(own->qualifiedName(), L"PTR");
    EXPECT_EQ(own->type(), ePtr);
    EXPECT_EQ(own->classInfo(), nullptr);
}

// behaviour: GT-03
TEST(graphTearDown, keepsInheritedPropertiesOfAStandingFieldInSight) {
    eventLog log;
    refPtr<fieldInfo> held;
    {
        ownModel const model;
        fill(*model.pointer());
        held = model->fieldInfo(L"special.key", false);
    }
    string text;
    EXPECT_TRUE(held->getUserProperty(L"text", text, true));
    EXPECT_EQ(text, L"a text");
    held.reset();
    expectAllFreed(log.take());
}

// behaviour: GT-11
TEST(graphTearDown, leavesAHeldClassToBeFilledAndRelatedAnew) {
    eventLog log;
    {
        orders const world;
        auto const former = world.toClass();
        world.model->tearDown();
        log.take();
        EXPECT_TRUE(throwsFalse([&] { world.toClass(); }));
        EXPECT_TRUE(throwsFalse([&] { world.toField(); }));
        EXPECT_EQ(log.take(), (events{tests::classAssertion("pFromFld", 688), tests::classAssertion("pFromFld", 653)}));
        addField(world.order, L"customer");
        auto const made = world.toClass();
        EXPECT_EQ(leaving(world.order), relations{made});
        EXPECT_EQ(arriving(world.customer), relations{made});
        world.order->tearDown();
        world.customer->tearDown();
        EXPECT_EQ(former->refCount(), 1u);
        EXPECT_EQ(world.order->refCount(), 1u);
    }
}

// ---- classes of no model

// Two related classes of no model, the first also to itself.
class twoClasses {
public:
    twoClasses() {
        addField(source, L"from");
        to = addField(target, L"to");
        toField = source->createRelation(L"from", false, to, eRef, L"to field", L"");
        toClass = source->createRelation(L"from", false, target, eRef, L"to class", L"");
        back = target->createRelation(L"to", false, source, eRef, L"back", L"");
    }

    refPtr<classInfo> source = classInfo::createClassInfo(L"source");
    refPtr<classInfo> target = classInfo::createClassInfo(L"target");
    refPtr<fieldInfo> to;
    refPtr<relationInfo> toField;
    refPtr<relationInfo> toClass;
    refPtr<relationInfo> back;
};

// behaviour: GT-04
TEST(graphTearDown, letsTwoRelatedClassesOfNoModelGoInEitherOrder) {
    for (bool const sourceFirst : {true, false}) {
        eventLog log;
        {
            twoClasses const world;
            (sourceFirst ? world.source : world.target)->tearDown();
            (sourceFirst ? world.target : world.source)->tearDown();
            EXPECT_EQ(world.source->refCount(), 1u);
            EXPECT_EQ(world.target->refCount(), 1u);
            EXPECT_EQ(world.toField->refCount(), 1u);
            EXPECT_EQ(world.toClass->refCount(), 1u);
        }
        expectAllFreed(log.take());
    }
}

// behaviour: GT-04
TEST(graphTearDown, ofTheSourceLeavesTheTargetItsList) {
    twoClasses const world;
    world.source->tearDown();
    EXPECT_TRUE(leaving(world.source).empty());
    EXPECT_TRUE(arriving(world.source).empty());
    EXPECT_EQ(world.source->countFields(), 0u);
    EXPECT_EQ(world.source->refCount(), 1u);
    EXPECT_EQ(arriving(world.target), (relations{world.toField, world.toClass}));
    EXPECT_EQ(leaving(world.target), relations{world.back});
    EXPECT_EQ(world.toField->fromClassInfo(), nullptr);
    EXPECT_EQ(world.toField->toClassInfo(), world.target);
    EXPECT_EQ(world.back->toClassInfo(), nullptr);
    EXPECT_EQ(world.target->toRelation(L"back", false), world.back);
    world.target->tearDown();
}

// behaviour: GT-04
TEST(graphTearDown, ofTheTargetLeavesTheSourceItsList) {
    twoClasses const world;
    world.target->tearDown();
    EXPECT_TRUE(arriving(world.target).empty());
    EXPECT_EQ(world.target->countFields(), 0u);
    EXPECT_EQ(world.target->refCount(), 1u);
    EXPECT_EQ(leaving(world.source), (relations{world.toField, world.toClass}));
    EXPECT_EQ(world.toField->toClassInfo(), nullptr);
    EXPECT_EQ(world.toClass->toClassInfo(), nullptr);
    EXPECT_EQ(world.source->toRelation(L"to class", false), world.toClass);
    EXPECT_EQ(world.source->createRelation(L"from", false, world.to, eRef, L"", L""), world.toField);
    world.source->tearDown();
}

// behaviour: GT-04
TEST(graphTearDown, freesATornDownClassBesideOneThatIsNot) {
    for (bool const source : {true, false}) {
        eventLog log;
        auto world = std::make_unique<twoClasses>();
        (source ? world->source : world->target)->setLabel(L"torn down");
        auto const other = source ? world->target : world->source;
        (source ? world->source : world->target)->tearDown();
        log.take();
        world.reset();
        auto const happened = log.take();
        EXPECT_EQ(countStarting(happened, "trace classInfo released: \"torn down\""), 1u);
        EXPECT_EQ(countStarting(happened, "trace classInfo released"), 1u);
        other->tearDown();
        EXPECT_EQ(other->refCount(), 1u);
    }
}

// ---- in the middle of things

// behaviour: GT-06
TEST(graphTearDown, leavesWalksOverRelationsTheirEntries) {
    eventLog log;
    {
        ownModel const model;
        fill(*model.pointer());
        auto const part = model->classInfo(L"part", false);
        auto const maker = model->classInfo(L"maker", false);
        int visits = 0;
        auto const tearDown = [&](refPtr<relationInfo> const& relation) {
            model->tearDown();
            EXPECT_EQ(relation->fromClassInfo(), nullptr);
            EXPECT_EQ(pairsOf(relation).size(), 1u);
            return ++visits > 0;
        };
        EXPECT_TRUE(part->forEachToRelation(tearDown, true));
        EXPECT_EQ(visits, 3);
        EXPECT_TRUE(leaving(part).empty());
        EXPECT_TRUE(arriving(maker).empty());
        fill(*model.pointer());
        visits = 0;
        EXPECT_TRUE(model->classInfo(L"maker", false)->forEachFromRelation(tearDown, true));
        EXPECT_EQ(visits, 3);
    }
    expectAllFreed(log.take());
}

// behaviour: GT-06
TEST(graphTearDown, leavesWalksOverPairsTheirFields) {
    eventLog log;
    {
        ownModel const model;
        fill(*model.pointer());
        auto const relation = leaving(model->classInfo(L"maker", false)).front();
        int visits = 0;
        relation->forEachFieldPair(
            [&](refPtr<fieldInfo> const& from, refPtr<fieldInfo> const& to) {
                model->tearDown();
                EXPECT_EQ(from->classInfo(), nullptr);
                EXPECT_EQ(to->scName().string(), L"key");
                return ++visits > 0;
            },
            true);
        EXPECT_EQ(visits, 2);
    }
    expectAllFreed(log.take());
}

// behaviour: GT-06
TEST(graphTearDown, leavesWalksOverPropertiesTheirValues) {
    orders const world;
    world.toClass();
    world.order->setUserProperty(L"a", L"1", false);
    world.order->setUserProperty(L"b", L"2", false);
    int visits = 0;
    world.order->forEachUserProperty(
        false,
        [&](scString const&, genericValue const& value) {
            world.model->tearDown();
            string text;
            EXPECT_TRUE(value.getValue(text));
            return ++visits > 0;
        },
        true);
    EXPECT_EQ(visits, 2);
}

// behaviour: GT-06
TEST(graphTearDown, mayBeDoneInsideAccept) {
    eventLog log;
    {
        ownModel const model;
        fill(*model.pointer());
        auto const maker = model->classInfo(L"maker", false);
        auto const made = model->createClassInfo(L"new", [&](refPtr<classInfo> const& offered) {
            addField(offered, L"from");
            offered->createRelation(L"from", false, maker, eRef, L"first", L"");
            model->tearDown();
            offered->createRelation(L"from", false, offered, eRef, L"second", L"");
            return true;
        });
        EXPECT_EQ(model->countClasses(), 1u);
        EXPECT_EQ(leaving(made).size(), 2u);
        EXPECT_TRUE(arriving(maker).empty());
        EXPECT_EQ(arriving(made).size(), 1u);
        model->tearDown();
    }
    expectAllFreed(log.take());
}

// behaviour: GT-07
TEST(graphTearDown, isDoneByTheLibraryForARefusedClassThatIsRelated) {
    eventLog log;
    {
        orders const world;
        refPtr<relationInfo> toOrder;
        refPtr<relationInfo> toNew;
        auto const relate = [&](refPtr<classInfo> const& offered) {
            addField(offered, L"from");
            toOrder = offered->createRelation(L"from", false, world.order, eRef, L"", L"");
            offered->createRelation(L"from", false, offered, eRef, L"", L"");
            toNew = world.order->createRelation(L"branch", false, offered, eRef, L"", L"");
        };
        EXPECT_EQ(world.model->createClassInfo(L"refused",
                                               [&](refPtr<classInfo> const& offered) {
                                                   relate(offered);
                                                   return false;
                                               }),
                  nullptr);
        EXPECT_EQ(toOrder->fromClassInfo(), nullptr);
        EXPECT_EQ(toNew->toClassInfo(), nullptr);
        EXPECT_THROW(world.model->createClassInfo(L"refused",
                                                  [&](refPtr<classInfo> const& offered) -> bool {
                                                      relate(offered);
                                                      throw std::runtime_error("the host's own");
                                                  }),
                     std::runtime_error);
        EXPECT_EQ(toOrder->fromClassInfo(), nullptr);
        EXPECT_EQ(toNew->toClassInfo(), nullptr);
        auto const soFar = log.take();
        EXPECT_EQ(countStarting(soFar, "trace classInfo released"), 2u);
        toOrder.reset();
        toNew.reset();
        EXPECT_EQ(countStarting(log.take(), "trace classInfo released"), 0u);
    }
    EXPECT_EQ(countStarting(log.take(), "trace classInfo released"), 2u);
}

// ---- what it is not

// behaviour: GT-08
TEST(graphTearDown, isNotWhatTheEndOfAModelDoes) {
    eventLog log;
    auto model = modelInfo::createModelInfo(false);
    fill(*model);
    ownClass const part(model->classInfo(L"part", false));
    ownClass const maker(model->classInfo(L"maker", false));
    ownClass const special(model->classInfo(L"special", false));
    log.take();
    model.reset();
    EXPECT_EQ(log.take(), events{"trace modelInfo released"});
    EXPECT_EQ(leaving(part).size(), 3u);
    EXPECT_EQ(arriving(maker).size(), 3u);
    for (auto const& relation : arriving(maker))
        EXPECT_EQ(relation->toClassInfo(), maker.pointer());
    EXPECT_EQ(special->toRelation(L"own", true)->fromClassInfo(), part.pointer());
}

// behaviour: GT-10
TEST(graphTearDown, leavesCyclesOfPropertiesToTheHost) {
    eventLog log;
    refPtr<classInfo> part = classInfo::createClassInfo(L"part");
    part->setUserProperty(L"self", refPtr<refObj>(part), false);
    part->tearDown();
    EXPECT_EQ(part->refCount(), 2u);
    part->setUserProperty(L"self", L"nothing", false);
    EXPECT_EQ(part->refCount(), 1u);
    part.reset();
    EXPECT_EQ(countStarting(log.take(), "trace classInfo released"), 1u);
}

// behaviour: GT-10
TEST(graphTearDown, endsPropertiesWithTheirOwners) {
    bool ofClass = false;
    bool ofField = false;
    bool ofPointerField = false;
    {
        auto const make = [](bool& isThere) { return refPtr<refObj>(refPtr<noteObject>(new noteObject(isThere))); };
        orders const world;
        world.order->setUserProperty(L"a", make(ofClass), false);
        world.from->setUserProperty(L"a", make(ofField), true);
        targetOf(world.toClass())->setUserProperty(L"a", make(ofPointerField), true);
        EXPECT_TRUE(ofClass && ofField && ofPointerField);
        world.model->tearDown();
        EXPECT_TRUE(ofClass && ofField);
        EXPECT_FALSE(ofPointerField);
    }
    EXPECT_FALSE(ofClass || ofField);
}

// ---- a long chain

// Relations hold fields, and each field a property that holds the next relation.
// behaviour: GT-12
TEST(graphTearDown, endsALongChainOfRelationsAndPropertiesOnASmallStack) {
    eventLog log;
    runOnSmallStack([] {
        refPtr<relationInfo> last;
        for (int at = 0; at < 5000; ++at) {
            ownClass const one(L"one");
            auto const from = addField(one, L"from");
            if (last) from->setUserProperty(L"next", refPtr<refObj>(last), false);
            last = one->createRelation(L"from", false, one, eRef, L"", L"");
        }
        EXPECT_EQ(last->refCount(), 1u);
        last.reset();
    });
    expectAllFreed(log.take());
}

} // namespace
} // namespace zov::metamodel
