// Id sets as only classes make them.
#include "zovMdlIdInfo.h"

#include <gtest/gtest.h>

#include "modelFixture.h"
#include "testAccess.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::events;
using tests::ownClass;
using zov::tests::eventLog;
using zov::tests::throwsFalse;

// behaviour: ID-05
TEST(idInner, equalsASetOfTheSameFieldsInTheSameOrder) {
    ownClass const part(L"part");
    auto const a = addField(part, L"a");
    auto const b = addField(part, L"b");
    EXPECT_TRUE(testAccess::makeId({a})->isEqualTo(testAccess::makeId({a}).get()));
    EXPECT_TRUE(testAccess::makeId({a, b})->isEqualTo(testAccess::makeId({a, b}).get()));
    EXPECT_TRUE(testAccess::makeId({a, a})->isEqualTo(testAccess::makeId({a, a}).get()));
    EXPECT_FALSE(testAccess::makeId({a, b})->isEqualTo(testAccess::makeId({b, a}).get()));
    EXPECT_FALSE(testAccess::makeId({a})->isEqualTo(testAccess::makeId({b}).get()));
}

// behaviour: ID-05
TEST(idInner, doesNotEqualASetOfAnotherLength) {
    ownClass const part(L"part");
    auto const a = addField(part, L"a");
    auto const b = addField(part, L"b");
    EXPECT_FALSE(testAccess::makeId({a})->isEqualTo(testAccess::makeId({a, b}).get()));
    EXPECT_FALSE(testAccess::makeId({a, b})->isEqualTo(testAccess::makeId({a}).get()));
    EXPECT_FALSE(testAccess::makeId({a, a})->isEqualTo(testAccess::makeId({a}).get()));
}

// behaviour: ID-08
TEST(idInner, isNotMadeOfNothing) {
    eventLog log;
    EXPECT_TRUE(throwsFalse([] { testAccess::makeId({}); }));
    EXPECT_EQ(log.take(), events{"assert rfields.size()>=1 @ libs/metamodel/src/zovMdlIdInfo.cpp:11"});
}

// behaviour: ID-09
TEST(idInner, isNotMadeOfFieldsOfTwoClassesAndDoesNotReportIt) {
    ownClass const part(L"part");
    ownClass const other(L"part");
    auto const a = addField(part, L"a");
    auto const b = addField(part, L"b");
    auto const c = addField(other, L"a");
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { testAccess::makeId({a, c}); }));
    EXPECT_TRUE(throwsFalse([&] { testAccess::makeId({a, b, c}); }));
    EXPECT_TRUE(throwsFalse([&] { testAccess::makeId({c, a, b}); }));
    EXPECT_EQ(log.take(), events());
    EXPECT_EQ(a->refCount(), 2u);
}

// behaviour: ID-10
TEST(idInner, isNotMadeOfAnEmptyPointer) {
    ownClass const part(L"part");
    auto const a = addField(part, L"a");
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { testAccess::makeId({nullptr}); }));
    EXPECT_TRUE(throwsFalse([&] { testAccess::makeId({nullptr, a}); }));
    EXPECT_TRUE(throwsFalse([&] { testAccess::makeId({a, nullptr}); }));
    EXPECT_EQ(log.take(), events(3, tests::emptyRefPtr));
}

// behaviour: ID-09, ID-10
TEST(idInner, isRefusedForTheFirstFieldThatDoesNotFit) {
    ownClass const part(L"part");
    ownClass const other(L"other");
    auto const a = addField(part, L"a");
    auto const b = addField(other, L"b");
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { testAccess::makeId({a, b, nullptr}); }));
    EXPECT_EQ(log.take(), events());
    EXPECT_TRUE(throwsFalse([&] { testAccess::makeId({a, nullptr, b}); }));
    EXPECT_EQ(log.take(), events{tests::emptyRefPtr});
}

// behaviour: ID-16
TEST(idInner, holdsItsFieldsAndNotItsClass) {
    ownClass const part(L"part");
    auto const a = addField(part, L"a");
    auto id = testAccess::makeId({a, a});
    EXPECT_EQ(a->refCount(), 4u);
    EXPECT_EQ(part->refCount(), 2u);
    EXPECT_EQ(id->classInfo(), part.pointer());
    EXPECT_EQ(id->refCount(), 1u);
    eventLog log;
    id.reset();
    EXPECT_EQ(a->refCount(), 2u);
    EXPECT_EQ(log.take(), events());
}

// behaviour: TH-09, CR-16
TEST(idInner, isCollectedAnewWhenAKeyWasMissedWhileItsRelationWasNotFiled) {
    ownClass const part(L"part");
    auto const a = addField(part, L"a");
    auto const b = addField(part, L"b");
    for (auto const& key : {a, b})
        key->setSemantic(eSemPrimkey, genericSet(), L"");
    refPtr<idInfo> without;
    testAccess::giveRelationAndTakeItBack(*a, [&] { without = part->idInfo(); });
    EXPECT_EQ(without->countFields(), 1u);
    EXPECT_EQ(a->semantic(), eSemPrimkey);
    EXPECT_TRUE(part->idInfo()->isEqualTo(testAccess::makeId({a, b}).get()));
}

// behaviour: CR-16, TH-10
TEST(idInner, isTheSameWhenItHasTheKeyWhoseRelationWasNotFiled) {
    ownClass const part(L"part");
    auto const a = addField(part, L"a");
    a->setSemantic(eSemPrimkey, genericSet(), L"");
    auto const id = part->idInfo();
    testAccess::giveRelationAndTakeItBack(*a, [] {});
    EXPECT_EQ(part->idInfo(), id);
    testAccess::giveRelationAndTakeItBack(*a, [&] { a->setSemantic(eSemNone, genericSet(), L""); });
    EXPECT_EQ(a->semantic(), eSemNone);
}

} // namespace
} // namespace zov::metamodel
