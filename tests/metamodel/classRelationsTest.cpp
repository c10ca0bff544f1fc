// The relations of a class: creating them, walking those that leave and those that arrive, finding one by its name.
#include "zovMdlClassInfo.h"

#include <gtest/gtest.h>

#include <functional>
#include <type_traits>

#include "graphFixture.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::arriving;
using tests::classAssertion;
using tests::events;
using tests::leaving;
using tests::namesOf;
using tests::orders;
using tests::ownClass;
using tests::ownModel;
using tests::pairsOf;
using tests::relationAssertion;
using tests::relations;
using tests::targetOf;
using zov::tests::eventLog;
using zov::tests::throwsFalse;

// ---- creating

// behaviour: CR-01
TEST(classRelations, appearInBothClasses) {
    orders const world;
    auto const toField = world.toField();
    auto const toClass = world.toClass();
    EXPECT_EQ(leaving(world.order), (relations{toField, toClass}));
    EXPECT_EQ(arriving(world.customer), (relations{toField, toClass}));
    EXPECT_TRUE(arriving(world.order).empty());
    EXPECT_TRUE(leaving(world.customer).empty());
}

// behaviour: CR-01
TEST(classRelations, areListedInTheOrderOfCreation) {
    orders const world;
    relations made;
    for (wchar_t const* name : {L"z", L"a", L"m", L"b"})
        made.push_back(world.toClass(name));
    EXPECT_EQ(leaving(world.order), made);
    EXPECT_EQ(arriving(world.customer), made);
}

// behaviour: CR-01
TEST(classRelations, areNoneInANewClass) {
    orders const world;
    EXPECT_TRUE(world.order->forEachToRelation([](refPtr<relationInfo> const&) { return false; }, true));
    EXPECT_TRUE(world.order->forEachFromRelation([](refPtr<relationInfo> const&) { return false; }, true));
    EXPECT_EQ(world.order->toRelation(L"customer", true), nullptr);
}

// behaviour: CR-02
TEST(classRelations, toAClassAreNamedByTheFieldAndItsClass) {
    orders const world;
    EXPECT_EQ(namesOf(world.toClass()), L"customer to order");
    EXPECT_EQ(namesOf(world.toClass(L"buyer")), L"buyer to order");
    EXPECT_EQ(namesOf(world.toClass(L"", L"bought")), L"customer to bought");
}

// behaviour: CR-02
TEST(classRelations, toAFieldAreNamedByTheFieldAndItsQualifiedName) {
    orders const world;
    EXPECT_EQ(namesOf(world.toField()), L"customer to order.customer");
    auto const other = world.order->createRelation(L"BRANCH", false, world.site, eRef, L"", L"bought");
    EXPECT_EQ(namesOf(other), L"branch to bought");
    auto const third = world.order->createRelation(L"branch", false, world.id, eRef, L"Branch", L"");
    EXPECT_EQ(namesOf(third), L"Branch to order.branch");
}

// A class Base with a field, and a derived class in which a field stands for it.
class standing {
public:
    standing() {
        derived->addBaseClass(base);
        root = addField(base, L"maker");
        field = derived->createFieldInfo(base.pointer(), L"maker");
    }

    ownClass const base{L"Base"};
    ownClass const derived{L"Derived"};
    ownClass const target{L"Target"};
    refPtr<fieldInfo> root;
    refPtr<fieldInfo> field;
};

// behaviour: CR-02
TEST(classRelations, ofAStandingFieldAreNamedByItsRoot) {
    standing const world;
    auto const id = addField(world.target, L"id");
    auto const toField = world.derived->createRelation(L"maker", false, id, eRef, L"", L"");
    EXPECT_EQ(namesOf(toField), L"maker to derived.maker");
    auto const toClass = world.derived->createRelation(L"maker", false, world.target, eRef, L"", L"");
    EXPECT_EQ(namesOf(toClass), L"maker to derived");
    EXPECT_EQ(toField->firstFromFieldInfo(), world.field);
    EXPECT_EQ(toField->fromClassInfo(), world.derived.pointer());
}

// behaviour: CR-13
TEST(classRelations, ofAStandingFieldLeaveTheRootItsMeaning) {
    standing const world;
    world.root->setSemantic(eSemLength, genericSet(), L"");
    world.derived->createRelation(L"maker", false, world.target, eRef, L"", L"");
    EXPECT_EQ(world.root->semantic(), eSemLength);
    EXPECT_EQ(world.field->semantic(), eSemLength);
}

// behaviour: CR-03
TEST(classRelations, toAClassAreMadeAnewAtEveryCall) {
    orders const world;
    auto const first = world.toClass(L"name", L"reverse", eAgg);
    auto const second = world.toClass(L"name", L"reverse", eAgg);
    EXPECT_NE(first, second);
    EXPECT_EQ(leaving(world.order), (relations{first, second}));
    EXPECT_EQ(arriving(world.customer), (relations{first, second}));
    EXPECT_NE(targetOf(first), targetOf(second));
}

// behaviour: CR-04
TEST(classRelations, toAFieldAreMadeOnce) {
    orders const world;
    auto const first = world.toField(L"name", L"reverse", eAgg);
    world.from->setSemantic(eSemLength, genericSet(), L"");
    eventLog log;
    auto const second = world.toField(L"another name", L"another reverse", eRef);
    EXPECT_EQ(log.take(), events());
    EXPECT_EQ(first, second);
    EXPECT_EQ(namesOf(second), L"name to reverse");
    EXPECT_EQ(second->type(), eAgg);
    EXPECT_EQ(world.from->semantic(), eSemLength);
    EXPECT_EQ(leaving(world.order), relations{first});
    EXPECT_EQ(arriving(world.customer), relations{first});
}

// behaviour: CR-04
TEST(classRelations, toAFieldAreToldApartByBothFields) {
    orders const world;
    auto const first = world.toField();
    auto const otherTarget = world.order->createRelation(L"customer", false, world.site, eRef, L"", L"");
    auto const otherSource = world.order->createRelation(L"branch", false, world.id, eRef, L"", L"");
    EXPECT_NE(otherTarget, first);
    EXPECT_NE(otherSource, first);
    EXPECT_EQ(world.order->createRelation(L"customer", false, world.site, eRef, L"x", L"y"), otherTarget);
    EXPECT_EQ(leaving(world.order), (relations{first, otherTarget, otherSource}));
}

// behaviour: CR-04
TEST(classRelations, toAFieldAreFoundAgainByAPairThatWasAdded) {
    orders const world;
    auto const relation = world.toField();
    relation->addFieldRelation(world.branch, world.site);
    EXPECT_EQ(world.order->createRelation(L"branch", false, world.site, eRef, L"", L""), relation);
    auto const across = world.order->createRelation(L"branch", false, world.id, eRef, L"", L"");
    EXPECT_NE(across, relation);
}

// Only the first pair with the from field counts.
// behaviour: CR-04
TEST(classRelations, toAFieldAreMadeAgainWhereOnlyASecondPairOfTheFieldMatches) {
    orders const world;
    auto const relation = world.toField();
    relation->addFieldRelation(world.from, world.site);
    EXPECT_NE(world.order->createRelation(L"customer", false, world.site, eRef, L"", L""), relation);
    EXPECT_EQ(leaving(world.order).size(), 2u);
}

// behaviour: CR-04
TEST(classRelations, toAPointerFieldFindTheRelationThatMadeIt) {
    orders const world;
    auto const relation = world.toClass();
    EXPECT_EQ(world.order->createRelation(L"customer", false, targetOf(relation), eRef, L"", L""), relation);
    auto const other = world.order->createRelation(L"branch", false, targetOf(relation), eRef, L"", L"");
    EXPECT_NE(other, relation);
    EXPECT_EQ(targetOf(other), targetOf(relation));
}

// behaviour: CR-05
TEST(classRelations, needAFieldToLeaveFrom) {
    orders const world;
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { world.order->createRelation(L"none", true, world.customer, eRef, L"n", L"r"); }));
    EXPECT_TRUE(throwsFalse([&] { world.order->createRelation(L"none", true, world.id, eRef, L"n", L"r"); }));
    EXPECT_EQ(log.take(), (events{classAssertion("pFromFld", 688), classAssertion("pFromFld", 653)}));
    EXPECT_TRUE(leaving(world.order).empty());
    EXPECT_TRUE(arriving(world.customer).empty());
    EXPECT_FALSE(scString::find(L"none"));
}

// behaviour: CR-05
TEST(classRelations, doNotLeaveFromAliasesOrTheirOwnPointerFields) {
    orders const world;
    world.order->createRelation(L"customer", false, world.order, eRef, L"", L"");
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { world.order->createRelation(L"PTR", true, world.id, eRef, L"", L""); }));
    EXPECT_EQ(log.take(), events{classAssertion("pFromFld", 653)});
}

constexpr auto noType = static_cast<eFieldType>(0);

// behaviour: CR-06
TEST(classRelations, toAClassNeedAFieldWithAType) {
    orders const world;
    auto const untyped = addField(world.order, L"untyped", noType);
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { world.order->createRelation(L"untyped", false, world.customer, eRef, L"", L""); }));
    EXPECT_EQ(log.take(), events{classAssertion("pFromFld->type()", 689)});
    EXPECT_TRUE(leaving(world.order).empty());
    EXPECT_TRUE(arriving(world.customer).empty());
    EXPECT_EQ(untyped->semantic(), eSemNone);
}

// behaviour: CR-06
TEST(classRelations, toAFieldTakeAFieldWithoutType) {
    orders const world;
    auto const untyped = addField(world.order, L"untyped", noType);
    auto const relation = world.order->createRelation(L"untyped", false, world.id, eRef, L"", L"");
    EXPECT_EQ(relation->firstFromFieldInfo(), untyped);
    EXPECT_EQ(untyped->semantic(), eSemRelation);
    EXPECT_EQ(untyped->type(), noType);
}

// behaviour: CR-07
TEST(classRelations, leaveFromAFieldOfABaseOnlyWhenBasesAreSearched) {
    standing const world;
    auto const colour = addField(world.base, L"colour");
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { world.derived->createRelation(L"colour", false, world.target, eRef, L"", L""); }));
    EXPECT_EQ(log.take(), events{classAssertion("pFromFld", 688)});
    auto const relation = world.derived->createRelation(L"colour", true, world.target, eRef, L"", L"");
    EXPECT_EQ(relation->firstFromFieldInfo(), colour);
    EXPECT_EQ(relation->fromClassInfo(), world.base.pointer());
    EXPECT_EQ(namesOf(relation), L"colour to base");
    EXPECT_EQ(leaving(world.derived), relations{relation});
    EXPECT_TRUE(leaving(world.base).empty());
    EXPECT_EQ(arriving(world.target), relations{relation});
    EXPECT_EQ(colour->semantic(), eSemRelation);
}

// behaviour: CR-07, CR-04
TEST(classRelations, toAFieldFromAFieldOfABaseAreMadeOnceInEachClass) {
    standing const world;
    addField(world.base, L"colour");
    auto const id = addField(world.target, L"id");
    auto const derived = world.derived->createRelation(L"colour", true, id, eRef, L"", L"");
    EXPECT_EQ(namesOf(derived), L"colour to base.colour");
    EXPECT_EQ(world.derived->createRelation(L"colour", true, id, eRef, L"", L""), derived);
    auto const base = world.base->createRelation(L"colour", true, id, eRef, L"", L"");
    EXPECT_NE(base, derived);
    EXPECT_EQ(leaving(world.base), relations{base});
    EXPECT_EQ(arriving(world.target), (relations{derived, base}));
}

// behaviour: CR-07
TEST(classRelations, doNotLeaveFromFieldsOfBasesOfBases) {
    standing const world;
    ownClass const last(L"Last");
    last->addBaseClass(world.derived);
    addField(world.base, L"colour");
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { last->createRelation(L"colour", true, world.target, eRef, L"", L""); }));
    EXPECT_EQ(log.take(), events{classAssertion("pFromFld", 688)});
}

// behaviour: CR-08
TEST(classRelations, needATarget) {
    orders const world;
    world.from->setSemantic(eSemPrimkey, genericSet(), L"");
    eventLog log;
    EXPECT_TRUE(
        throwsFalse([&] { world.order->createRelation(L"customer", false, refPtr<classInfo>(), eRef, L"", L""); }));
    EXPECT_TRUE(
        throwsFalse([&] { world.order->createRelation(L"customer", false, refPtr<fieldInfo>(), eRef, L"", L""); }));
    EXPECT_EQ(log.take(),
              (events{relationAssertion("pFromField&&pToClass", 54), relationAssertion("pFromField&&pToField", 19)}));
    EXPECT_TRUE(leaving(world.order).empty());
    EXPECT_EQ(world.from->semantic(), eSemPrimkey);
}

// behaviour: CR-08
TEST(classRelations, tellOfTheFromFieldBeforeTheTarget) {
    orders const world;
    addField(world.order, L"untyped", noType);
    eventLog log;
    auto const toNoClass = [&](wchar_t const* name) {
        return throwsFalse([&] { world.order->createRelation(name, false, refPtr<classInfo>(), eRef, L"", L""); });
    };
    EXPECT_TRUE(toNoClass(L"none"));
    EXPECT_TRUE(toNoClass(L"untyped"));
    EXPECT_TRUE(throwsFalse([&] { world.order->createRelation(L"none", false, refPtr<fieldInfo>(), eRef, L"", L""); }));
    EXPECT_EQ(log.take(), (events{classAssertion("pFromFld", 688), classAssertion("pFromFld->type()", 689),
                                  classAssertion("pFromFld", 653)}));
}

// behaviour: CR-08
TEST(classRelations, needATargetFieldWithAClass) {
    orders const world;
    auto const classless = [] {
        ownClass const gone(L"gone");
        return addField(gone, L"id");
    }();
    world.from->setSemantic(eSemLength, genericSet(), L"");
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { world.order->createRelation(L"customer", false, classless, eRef, L"", L""); }));
    EXPECT_EQ(log.take(), events{relationAssertion("pFromField->classInfo()&&pToField->classInfo()", 20)});
    EXPECT_TRUE(leaving(world.order).empty());
    EXPECT_EQ(world.from->semantic(), eSemLength);
    EXPECT_EQ(classless->refCount(), 1u);
}

// behaviour: CR-09
TEST(classRelations, mayLeadToTheirOwnClass) {
    ownModel const model;
    auto const part = model->createClassInfo(L"Part");
    auto const parent = addField(part, L"parent");
    auto const id = addField(part, L"id");
    auto const toClass = part->createRelation(L"parent", false, part, eRevAgg, L"", L"");
    auto const toField = part->createRelation(L"parent", false, id, eRevAgg, L"", L"");
    EXPECT_EQ(leaving(part), (relations{toClass, toField}));
    EXPECT_EQ(arriving(part), (relations{toClass, toField}));
    for (auto const& relation : leaving(part)) {
        EXPECT_EQ(relation->fromClassInfo(), part);
        EXPECT_EQ(relation->toClassInfo(), part);
    }
}

// behaviour: CR-09
TEST(classRelations, mayLeadFromAFieldToItself) {
    ownModel const model;
    auto const part = model->createClassInfo(L"Part");
    auto const parent = addField(part, L"parent");
    auto const relation = part->createRelation(L"parent", false, parent, eRef, L"", L"");
    EXPECT_EQ(relation->toFieldInfo(parent), parent);
    EXPECT_EQ(relation->fromFieldInfo(parent), parent);
    EXPECT_EQ(parent->semantic(), eSemRelation);
}

// ---- what becomes of the from field

// behaviour: CR-13, RI-05
TEST(classRelations, giveTheFromFieldTheirMeaning) {
    orders const world;
    world.toClass();
    EXPECT_EQ(world.from->semantic(), eSemRelation);
    EXPECT_EQ(world.from->semanticString().string(), L"");
    world.order->createRelation(L"branch", false, world.site, eRef, L"", L"");
    EXPECT_EQ(world.branch->semantic(), eSemRelation);
    EXPECT_EQ(world.site->semantic(), eSemNone);
    EXPECT_EQ(world.branch->type(), eInt);
    EXPECT_FALSE(world.branch->isMandatory());
}

// behaviour: CR-13
TEST(classRelations, takeTheAttributesOfTheFormerMeaning) {
    orders const world;
    genericSet attribs;
    attribs.setValue(L"digits", 2, false);
    for (bool const toClass : {true, false}) {
        world.from->setSemantic(eSemMonetary, attribs, L"");
        toClass ? world.toClass() : world.toField();
        EXPECT_EQ(world.from->semantic(), eSemRelation);
        EXPECT_EQ(world.from->semanticAttribs().size(), 0u);
    }
}

// behaviour: CR-13
TEST(classRelations, leaveTheTextOfACustomMeaning) {
    orders const world;
    world.from->setSemantic(eSemCustom, genericSet(), L"colour");
    world.toClass();
    EXPECT_EQ(world.from->semantic(), eSemRelation);
    EXPECT_EQ(world.from->semanticString().string(), L"colour");
}

// behaviour: CR-13
TEST(classRelations, leaveAKeyInTheIdSetThatIsKnown) {
    orders const world;
    world.from->setSemantic(eSemPrimkey, genericSet(), L"");
    auto const known = world.order->idInfo();
    world.toField();
    EXPECT_EQ(world.from->semantic(), eSemRelation);
    EXPECT_TRUE(world.from->isMandatory());
    EXPECT_TRUE(world.from->isUnique());
    EXPECT_EQ(world.order->idInfo(), known);
    EXPECT_EQ(known->countFields(), 1u);
    std::vector<refPtr<fieldInfo>> identifying;
    world.order->getIdFieldInfos(identifying);
    EXPECT_TRUE(identifying.empty());
}

// behaviour: CR-13
TEST(classRelations, takeAKeyOutOfTheIdSetThatIsMadeNext) {
    orders const world;
    world.from->setSemantic(eSemPrimkey, genericSet(), L"");
    world.toField();
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { world.order->idInfo(); }));
    EXPECT_EQ(tests::countStarting(log.take(), "assert rfields.size()>=1"), 1u);
    world.branch->setSemantic(eSemPrimkey, genericSet(), L"");
    EXPECT_EQ(world.order->idInfo()->countFields(), 1u);
}

// behaviour: CR-13
TEST(classRelations, letAFieldBeBothIfItIsMadeAKeyAfterwards) {
    orders const world;
    auto const relation = world.toField();
    world.from->setSemantic(eSemPrimkey, genericSet(), L"");
    EXPECT_EQ(world.order->idInfo()->countFields(), 1u);
    EXPECT_EQ(world.order->toRelation(L"customer", false), relation);
}

// ---- walking

using visitFunction = std::function<bool(refPtr<relationInfo>)>;

// behaviour: CR-10
TEST(classRelations, areWalkedUntilFalseOnlyWhenAsked) {
    orders const world;
    auto const first = world.toClass();
    auto const second = world.toClass();
    relations visited;
    visitFunction const refuse = [&](refPtr<relationInfo> const& relation) {
        visited.push_back(relation);
        return false;
    };
    EXPECT_FALSE(world.order->forEachToRelation(refuse, true));
    EXPECT_EQ(visited, relations{first});
    EXPECT_FALSE(world.customer->forEachFromRelation(refuse, true));
    EXPECT_EQ(visited, (relations{first, first}));
    visited.clear();
    EXPECT_TRUE(world.order->forEachToRelation(refuse, false));
    EXPECT_TRUE(world.customer->forEachFromRelation(refuse, false));
    EXPECT_EQ(visited, (relations{first, second, first, second}));
}

// behaviour: CR-10
TEST(classRelations, mayBeCreatedInAWalkThatDoesNotVisitThem) {
    orders const world;
    world.toClass();
    int visits = 0;
    visitFunction const create = [&](refPtr<relationInfo> const&) {
        world.toClass();
        return ++visits > 0;
    };
    EXPECT_TRUE(world.order->forEachToRelation(create, true));
    EXPECT_EQ(visits, 1);
    EXPECT_TRUE(world.customer->forEachFromRelation(create, true));
    EXPECT_EQ(visits, 3);
    EXPECT_EQ(leaving(world.order).size(), 4u);
}

// behaviour: CR-10
TEST(classRelations, refuseAnEmptyFunctionForAWalk) {
    orders const world;
    EXPECT_TRUE(world.order->forEachToRelation({}, true));
    world.toClass();
    EXPECT_THROW(world.order->forEachToRelation({}, true), std::bad_function_call);
    EXPECT_THROW(world.customer->forEachFromRelation({}, true), std::bad_function_call);
}

// behaviour: CR-10
TEST(classRelations, areHandedToAWalkAsCountedCopies) {
    orders const world;
    auto const relation = world.toClass();
    EXPECT_EQ(relation->refCount(), 3u);
    refPtr<relationInfo> kept;
    world.order->forEachToRelation(
        [&](refPtr<relationInfo> visited) {
            kept = std::move(visited);
            return true;
        },
        true);
    EXPECT_EQ(relation->refCount(), 4u);
    EXPECT_EQ(leaving(world.order), relations{relation});
}

// ---- finding

// behaviour: CR-11
TEST(classRelations, areFoundByTheirName) {
    orders const world;
    auto const unnamed = world.toClass();
    auto const named = world.toClass(L"buyer");
    EXPECT_EQ(world.order->toRelation(L"customer", false), unnamed);
    EXPECT_EQ(world.order->toRelation(L"buyer", false), named);
    EXPECT_EQ(world.order->toRelation(L"seller", true), nullptr);
    EXPECT_EQ(world.order->toRelation(L"", true), nullptr);
}

// behaviour: CR-11
TEST(classRelations, areFoundInTheOrderOfCreation) {
    orders const world;
    auto const first = world.toClass(L"buyer");
    world.toClass(L"buyer");
    EXPECT_EQ(world.order->toRelation(L"buyer", false), first);
}

// behaviour: CR-11
TEST(classRelations, areFoundInTheirExactSpellingOnly) {
    orders const world;
    auto const capital = world.toClass(L"Buyer");
    auto const small = world.toClass(L"buyer");
    EXPECT_EQ(world.order->toRelation(L"Buyer", false), capital);
    EXPECT_EQ(world.order->toRelation(L"buyer", false), small);
    EXPECT_EQ(world.order->toRelation(L"BUYER", false), nullptr);
    EXPECT_EQ(world.order->toRelation(L" buyer", false), nullptr);
}

// behaviour: CR-11
TEST(classRelations, areNotFoundByTheirReverseNamesOrFromTheTarget) {
    orders const world;
    world.toClass(L"buyer", L"buys");
    world.toField(L"payer", L"pays");
    for (auto const& of : {world.order, world.customer}) {
        EXPECT_EQ(of->toRelation(L"buys", true), nullptr);
        EXPECT_EQ(of->toRelation(L"pays", true), nullptr);
    }
    EXPECT_EQ(world.customer->toRelation(L"buyer", true), nullptr);
}

// behaviour: CR-11
TEST(classRelations, ofABaseAreFoundOnlyWhenBasesAreSearched) {
    orders const world;
    ownClass const special(L"special");
    special->addBaseClass(world.order);
    auto const relation = world.toClass();
    EXPECT_EQ(special->toRelation(L"customer", false), nullptr);
    EXPECT_EQ(special->toRelation(L"customer", true), relation);
    EXPECT_TRUE(leaving(special).empty());
    auto const own = special->createRelation(L"branch", true, world.customer, eRef, L"customer", L"");
    EXPECT_EQ(special->toRelation(L"customer", true), own);
    EXPECT_EQ(world.order->toRelation(L"customer", true), relation);
}

// behaviour: CR-11
TEST(classRelations, areFoundThroughAllBasesOfBases) {
    orders const world;
    ownClass const middle(L"middle");
    ownClass const last(L"last");
    last->addBaseClass(middle);
    middle->addBaseClass(world.order);
    auto const relation = world.toClass();
    EXPECT_EQ(last->toRelation(L"customer", true), relation);
    EXPECT_EQ(last->toRelation(L"customer", false), nullptr);
}

// The bases are walked in the order of their handles, and each to its end before the next.
// behaviour: CR-11
TEST(classRelations, areFoundDepthFirst) {
    orders const world;
    ownClass const left(L"left");
    ownClass const right(L"right");
    ownClass const last(L"last");
    last->addBaseClass(left);
    last->addBaseClass(right);
    std::vector<refPtr<classInfo>> inOrder;
    last->forEachBaseClass(
        [&](classInfo::entry const& base) {
            inOrder.push_back(base.second);
            return true;
        },
        true);
    ASSERT_EQ(inOrder.size(), 2u);
    ownClass const above(L"above");
    inOrder[0]->addBaseClass(above);
    addField(inOrder[1], L"from");
    addField(above, L"from");
    auto const second = inOrder[1]->createRelation(L"from", false, world.customer, eRef, L"wanted", L"");
    EXPECT_EQ(last->toRelation(L"wanted", true), second);
    auto const deeper = above->createRelation(L"from", false, world.customer, eRef, L"wanted", L"");
    EXPECT_EQ(last->toRelation(L"wanted", true), deeper);
    EXPECT_EQ(inOrder[1]->toRelation(L"wanted", true), second);
}

// behaviour: CR-11
TEST(classRelations, leaveUnknownNamesUnknown) {
    orders const world;
    world.toClass();
    EXPECT_EQ(world.order->toRelation(L"a name that no relation ever had", true), nullptr);
    EXPECT_FALSE(scString::find(L"a name that no relation ever had"));
}

// behaviour: CR-14
TEST(classRelations, areReadOnlyWhenFoundByName) {
    static_assert(
        std::is_same_v<decltype(std::declval<classInfo&>().toRelation(L"", true)), const_refPtr<relationInfo>>);
    orders const world;
    auto const relation = world.toClass();
    const_refPtr<classInfo> const order = world.order;
    EXPECT_EQ(order->toRelation(L"customer", true), relation);
    int visits = 0;
    EXPECT_TRUE(order->forEachToRelation([&](const_refPtr<relationInfo> const&) { return ++visits > 0; }, true));
    EXPECT_EQ(visits, 1);
}

// behaviour: CR-12
TEST(classRelations, areNeverCopied) {
    orders const world;
    const_refPtr<relationInfo> relation = world.toField();
    auto const count = relation->refCount();
    ownClass const other(L"other");
    addField(other, L"customer");
    EXPECT_EQ(other->copyRelationFrom(relation), nullptr);
    EXPECT_EQ(other->copyRelationFrom(const_refPtr<relationInfo>()), nullptr);
    EXPECT_EQ(world.order->copyRelationFrom(relation), nullptr);
    EXPECT_TRUE(leaving(other).empty());
    EXPECT_TRUE(arriving(other).empty());
    EXPECT_EQ(leaving(world.order).size(), 1u);
    EXPECT_EQ(relation->refCount(), count);
}

// behaviour: CR-12
TEST(classRelations, areNotCopiedWithFields) {
    orders const world;
    world.toField();
    ownClass const other(L"other");
    other->copyInfosFrom(world.order, nullptr);
    EXPECT_EQ(other->fieldInfo(L"customer", false, false)->semantic(), eSemRelation);
    EXPECT_TRUE(leaving(other).empty());
    EXPECT_EQ(arriving(world.customer).size(), 1u);
}

// behaviour: CR-01
TEST(classRelations, mayLeadAcrossModels) {
    orders const world;
    orders const other;
    auto const relation = world.order->createRelation(L"customer", false, other.customer, eRef, L"", L"");
    EXPECT_EQ(arriving(other.customer), relations{relation});
    EXPECT_TRUE(arriving(world.customer).empty());
    EXPECT_EQ(relation->toClassInfo(), other.customer);
}

// behaviour: CR-01
TEST(classRelations, mayBeCreatedInsideAccept) {
    orders const world;
    refPtr<relationInfo> made;
    auto const invoice = world.model->createClassInfo(L"Invoice", [&](refPtr<classInfo> const& offered) {
        addField(offered, L"order");
        made = offered->createRelation(L"order", false, world.order, eAgg, L"", L"");
        return true;
    });
    EXPECT_EQ(leaving(invoice), relations{made});
    EXPECT_EQ(arriving(world.order), relations{made});
}

} // namespace
} // namespace zov::metamodel
