// What hosts do not see of relations and user properties: the making of a relation by itself, one without pairs, and
// what odd states in the records do.
#include "zovMdlRelationInfo.h"

#include <gtest/gtest.h>

#include "graphFixture.h"
#include "testAccess.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::arriving;
using tests::events;
using tests::fieldPairs;
using tests::leaving;
using tests::namesOf;
using tests::orders;
using tests::ownClass;
using tests::pairsOf;
using tests::relationAssertion;
using tests::relations;
using tests::targetOf;
using zov::tests::eventLog;
using zov::tests::throwsFalse;

constexpr char const* notBothFields = "pFromField&&pToField";
constexpr char const* notBothWithClass = "pFromField->classInfo()&&pToField->classInfo()";
constexpr char const* noFieldOrClass = "pFromField&&pToClass";
constexpr char const* fromWithoutClass = "pFromField->classInfo()";

refPtr<fieldInfo> fieldWithoutClass() {
    ownClass const gone(L"gone");
    return addField(gone, L"field");
}

// ---- made by itself

// behaviour: RI-02, RI-05
TEST(relationInner, takesTheNamesOfTheFieldAndItsClassWhenItGetsNone) {
    orders const world;
    EXPECT_EQ(namesOf(testAccess::makeRelation(world.from, world.id, L"", L"")), L"customer to order");
    EXPECT_EQ(namesOf(testAccess::makeRelation(world.from, world.customer, L"", L"")), L"customer to order");
    EXPECT_EQ(namesOf(testAccess::makeRelation(world.from, world.id, L"a", L"")), L"a to order");
    EXPECT_EQ(namesOf(testAccess::makeRelation(world.from, world.customer, L"", L"b")), L"customer to b");
    EXPECT_EQ(world.from->semantic(), eSemRelation);
}

// behaviour: RI-02
TEST(relationInner, takesTheRootsNameForAStandingField) {
    orders const world;
    ownClass const derived(L"derived");
    derived->addBaseClass(world.order);
    auto const standing = derived->createFieldInfo(world.order, L"customer");
    EXPECT_EQ(namesOf(testAccess::makeRelation(standing, world.id, L"", L"")), L"customer to derived");
}

// behaviour: RI-12
TEST(relationInner, showsTheNamesThatItGetsWhenItComesAndThoseThatItHasWhenItGoes) {
    orders const world;
    eventLog log;
    testAccess::makeRelation(world.from, world.id, L"", L"");
    EXPECT_EQ(log.take(), (events{"trace relationInfo created: \"\" to \"\"",
                                  "trace relationInfo released: \"customer\" to \"order\""}));
    testAccess::makeRelation(world.from, world.customer, L"a", L"");
    EXPECT_EQ(log.take(),
              (events{"trace relationInfo created: \"a\" to \"\"", "trace fieldInfo created: \"\"",
                      "trace relationInfo released: \"a\" to \"order\"", "debug fieldInfo released: \"\""}));
}

// behaviour: RI-05
TEST(relationInner, givesTheFromFieldItsMeaningAndNotTheTarget) {
    orders const world;
    genericSet attribs;
    attribs.setValue(L"digits", 2, false);
    world.from->setSemantic(eSemCustom, attribs, L"colour");
    auto const relation = testAccess::makeRelation(world.from, world.id, L"", L"");
    EXPECT_EQ(world.from->semantic(), eSemRelation);
    EXPECT_EQ(world.from->semanticAttribs().size(), 0u);
    EXPECT_EQ(world.from->semanticString().string(), L"colour");
    EXPECT_EQ(world.id->semantic(), eSemNone);
    EXPECT_EQ(relation->type(), eAgg);
    EXPECT_TRUE(leaving(world.order).empty());
    EXPECT_TRUE(arriving(world.customer).empty());
}

// behaviour: RI-06
TEST(relationInner, needsTwoFields) {
    orders const world;
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { testAccess::makeRelation(nullptr, world.id, L"", L""); }));
    EXPECT_TRUE(throwsFalse([&] { testAccess::makeRelation(world.from, refPtr<fieldInfo>(), L"", L""); }));
    EXPECT_TRUE(throwsFalse([&] { testAccess::makeRelation(nullptr, refPtr<fieldInfo>(), L"", L""); }));
    EXPECT_EQ(log.take(), events(3, relationAssertion(notBothFields, 19)));
    EXPECT_EQ(world.from->semantic(), eSemNone);
}

// behaviour: RI-06
TEST(relationInner, needsAClassOfBothFields) {
    orders const world;
    auto const classless = fieldWithoutClass();
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { testAccess::makeRelation(classless, world.id, L"", L""); }));
    EXPECT_TRUE(throwsFalse([&] { testAccess::makeRelation(world.from, classless, L"", L""); }));
    EXPECT_EQ(log.take(), events(2, relationAssertion(notBothWithClass, 20)));
    EXPECT_EQ(world.from->semantic(), eSemNone);
    EXPECT_EQ(classless->refCount(), 1u);
}

// behaviour: RI-06
TEST(relationInner, needsAFieldAndAClass) {
    orders const world;
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { testAccess::makeRelation(nullptr, world.customer, L"", L""); }));
    EXPECT_TRUE(throwsFalse([&] { testAccess::makeRelation(world.from, refPtr<classInfo>(), L"", L""); }));
    EXPECT_EQ(log.take(), events(2, relationAssertion(noFieldOrClass, 54)));
    EXPECT_EQ(world.from->semantic(), eSemNone);
}

// behaviour: RI-06
TEST(relationInner, needsAClassOfItsFromField) {
    orders const world;
    auto const classless = fieldWithoutClass();
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { testAccess::makeRelation(classless, world.customer, L"", L""); }));
    EXPECT_TRUE(throwsFalse([&] { testAccess::makeRelation(classless, refPtr<classInfo>(), L"", L""); }));
    EXPECT_EQ(log.take(), (events{relationAssertion(fromWithoutClass, 55), relationAssertion(noFieldOrClass, 54)}));
}

// behaviour: RI-06, CR-08
TEST(relationInner, isNotCreatedFromAListedFieldThatHasForgottenItsClass) {
    orders const world;
    testAccess::releaseInfo(*world.from);
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { world.toClass(L"name", L"reverse"); }));
    EXPECT_TRUE(throwsFalse([&] { world.toField(L"name", L"reverse"); }));
    EXPECT_EQ(log.take(), (events{relationAssertion(fromWithoutClass, 55), relationAssertion(notBothWithClass, 20)}));
    EXPECT_TRUE(throwsFalse([&] { world.toClass(L"name", L""); }));
    EXPECT_TRUE(throwsFalse([&] { world.toField(L"name", L""); }));
    EXPECT_EQ(log.take(), events(2, tests::emptyRefPtr));
    EXPECT_TRUE(leaving(world.order).empty());
    EXPECT_TRUE(arriving(world.customer).empty());
}

// ---- without pairs

class pairless {
public:
    pairless() : relation(world.toField(L"name", L"reverse")) {
        auto& data = testAccess::data(*relation);
        auto const former = data.mRelations.clear(heldMutex(data.mMutex));
    }

    orders const world;
    refPtr<relationInfo> const relation;
};

// behaviour: RI-11
TEST(relationInner, withoutPairsRefusesToTellItsClasses) {
    pairless const made;
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { made.relation->fromClassInfo(); }));
    EXPECT_TRUE(throwsFalse([&] { made.relation->toClassInfo(); }));
    EXPECT_EQ(log.take(),
              (events{relationAssertion("mRelations.size()>=1", 146), relationAssertion("mRelations.size()>=1", 151)}));
}

// behaviour: RI-11
TEST(relationInner, withoutPairsTakesNone) {
    pairless const made;
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { made.relation->addFieldRelation(made.world.from, made.world.id); }));
    EXPECT_TRUE(throwsFalse([&] { made.relation->addFieldRelation(nullptr, nullptr); }));
    EXPECT_EQ(log.take(), events(2, relationAssertion("mRelations.size()>=1", 134)));
    EXPECT_EQ(pairsOf(made.relation), fieldPairs());
}

// behaviour: RI-11
TEST(relationInner, withoutPairsFindsNoFields) {
    pairless const made;
    eventLog log;
    EXPECT_EQ(made.relation->firstFromFieldInfo(), nullptr);
    EXPECT_EQ(made.relation->fromFieldInfo(made.world.id), nullptr);
    EXPECT_EQ(made.relation->toFieldInfo(made.world.from), nullptr);
    EXPECT_TRUE(made.relation->forEachFieldPair({}, true));
    EXPECT_EQ(log.take(), events());
}

// ---- filed

// behaviour: CR-15
TEST(relationInner, staysWithAClassThatIsReleased) {
    orders const world;
    auto const relation = world.toField();
    auto const own = world.order->createRelation(L"branch", false, world.order, eRef, L"", L"");
    testAccess::releaseInfo(*world.order);
    EXPECT_EQ(leaving(world.order), (relations{relation, own}));
    EXPECT_EQ(arriving(world.order), relations{own});
    EXPECT_EQ(world.order->toRelation(L"customer", false), relation);
    EXPECT_EQ(relation->fromClassInfo(), world.order);
    world.from->setLabel(L"alive");
    EXPECT_EQ(relation->firstFromFieldInfo()->label(), L"alive");
    EXPECT_EQ(targetOf(own)->classInfo(), world.order);
    testAccess::releaseInfo(*world.from);
    testAccess::releaseInfo(*world.branch);
}

// behaviour: CR-10
TEST(relationInner, isVisitedAndAnEmptyEntryIsNot) {
    orders const world;
    auto const relation = world.toField();
    auto& order = testAccess::data(*world.order);
    auto& customer = testAccess::data(*world.customer);
    order.mToRelations.append(heldMutex(order.mMutex), {nullptr, nullptr, nullptr});
    customer.mFromRelations.append(heldMutex(customer.mMutex), {nullptr});
    EXPECT_EQ(leaving(world.order), relations{relation});
    EXPECT_EQ(arriving(world.customer), relations{relation});
    EXPECT_EQ(world.order->toRelation(L"customer", false), relation);
    EXPECT_EQ(world.order->toRelation(L"none", false), nullptr);
    order.mToRelations.clear(heldMutex(order.mMutex));
    customer.mFromRelations.clear(heldMutex(customer.mMutex));
}

// ---- user properties

// behaviour: UP-13
TEST(userPropertyInner, isLeftAloneWhenItIsReadIntoItself) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    part->setUserProperty(L"a", L"x", false);
    width->setUserProperty(L"a", L"x", false);
    auto const expectLeftAlone = [](auto const& owner, userProperties& properties) {
        auto stored = properties.mOwn.genericValue(scString::createFrom(L"a"));
        auto const* const held = stored->heldBy();
        EXPECT_TRUE(owner->getUserProperty(L"a", *stored, false));
        EXPECT_EQ(stored->heldBy(), held);
    };
    expectLeftAlone(part, testAccess::data(*part.pointer()).mUserProperties);
    expectLeftAlone(width, testAccess::data(*width).mUserProperties);
}

// behaviour: UP-01
TEST(userPropertyInner, isKeptInTheSetOfItsKind) {
    ownClass const part(L"part");
    part->setUserProperty(L"a", L"x", false);
    part->setUserProperty(L"b", L"x", true);
    auto const& properties = testAccess::data(*part.pointer()).mUserProperties;
    EXPECT_EQ(properties.mOwn.size(), 1u);
    EXPECT_EQ(properties.mInheritable.size(), 1u);
    EXPECT_TRUE(properties.mOwn.genericValue(scString::createFrom(L"a")));
    EXPECT_TRUE(properties.mInheritable.genericValue(scString::createFrom(L"b")));
}

} // namespace
} // namespace zov::metamodel
