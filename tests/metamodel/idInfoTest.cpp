// The fields that identify an object of a class.
#include "zovMdlIdInfo.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "modelFixture.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::events;
using tests::ownClass;
using zov::tests::eventLog;
using zov::tests::throwsFalse;

using fields = std::vector<refPtr<fieldInfo>>;

char const* const noFields = "assert rfields.size()>=1 @ libs/metamodel/src/zovMdlIdInfo.cpp:11";

refPtr<fieldInfo> addKey(ownClass const& owner, wchar_t const* name) {
    auto const field = addField(owner, name);
    field->setSemantic(eSemPrimkey, genericSet(), L"");
    return field;
}

fields fieldsOf(refPtr<idInfo> const& id) {
    fields found;
    EXPECT_TRUE(id->forEachFieldInfo(
        [&](refPtr<fieldInfo> const& field) {
            found.push_back(field);
            return true;
        },
        true));
    EXPECT_EQ(id->countFields(), found.size());
    return found;
}

// behaviour: ID-01
TEST(idInfo, listsTheIdentifyingFieldsInOrder) {
    ownClass const part(L"part");
    auto const b = addKey(part, L"b");
    addField(part, L"x");
    auto const a = addKey(part, L"a");
    EXPECT_EQ(fieldsOf(part->idInfo()), (fields{b, a}));
}

// behaviour: ID-01
TEST(idInfo, leavesTheFieldsOfBasesOut) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    addKey(base, L"a");
    auto const b = addKey(part, L"b");
    EXPECT_EQ(fieldsOf(part->idInfo()), fields{b});
}

// behaviour: ID-02
TEST(idInfo, isTheSameObjectAtEveryCall) {
    ownClass const part(L"part");
    addKey(part, L"a");
    auto const id = part->idInfo();
    EXPECT_EQ(part->idInfo(), id);
    addField(part, L"x")->setSemantic(eSemLength, genericSet(), L"");
    addField(part, L"y")->setLabel(L"Label");
    EXPECT_EQ(part->idInfo(), id);
}

// behaviour: ID-03
TEST(idInfo, isMadeAnewWhenAnotherFieldBecomesIdentifying) {
    ownClass const part(L"part");
    auto const a = addKey(part, L"a");
    auto const before = part->idInfo();
    auto const b = addKey(part, L"b");
    auto const after = part->idInfo();
    EXPECT_NE(after, before);
    EXPECT_EQ(fieldsOf(after), (fields{a, b}));
    EXPECT_EQ(fieldsOf(before), fields{a});
    EXPECT_FALSE(before->isEqualTo(after.get()));
}

// behaviour: ID-03
TEST(idInfo, isMadeAnewWhenAFieldIsDeclaredIdentifyingAgain) {
    ownClass const part(L"part");
    auto const a = addKey(part, L"a");
    auto const before = part->idInfo();
    a->setSemantic(eSemPrimkey, genericSet(), L"");
    EXPECT_NE(part->idInfo(), before);
    EXPECT_TRUE(part->idInfo()->isEqualTo(before.get()));
}

// behaviour: ID-03
TEST(idInfo, staysWhenASemanticIsRefused) {
    ownClass const part(L"part");
    addKey(part, L"a");
    auto const id = part->idInfo();
    auto const other = addField(part, L"b");
    eventLog log;
    other->setSemantic(eSemDate, genericSet(), L"");
    EXPECT_EQ(part->idInfo(), id);
}

// behaviour: ID-04
TEST(idInfo, belongsToTheClassOfItsFields) {
    ownClass const part(L"part");
    addKey(part, L"a");
    auto const id = part->idInfo();
    EXPECT_EQ(id->classInfo(), part.pointer());
    part->tearDown();
    EXPECT_EQ(id->classInfo(), nullptr);
    EXPECT_EQ(id->countFields(), 1u);
}

// behaviour: ID-05
TEST(idInfo, equalsOneOfTheSameFields) {
    ownClass const part(L"part");
    auto const a = addKey(part, L"a");
    auto const before = part->idInfo();
    EXPECT_TRUE(before->isEqualTo(before.get()));
    part->onSemanticChanged(a);
    auto const after = part->idInfo();
    ASSERT_NE(after, before);
    EXPECT_TRUE(after->isEqualTo(before.get()));
    EXPECT_TRUE(before->isEqualTo(after.get()));
}

// behaviour: ID-05
TEST(idInfo, doesNotEqualOneOfOtherFieldsWithTheSameNames) {
    ownClass const one(L"part");
    ownClass const other(L"part");
    addKey(one, L"a");
    addKey(other, L"a");
    EXPECT_FALSE(one->idInfo()->isEqualTo(other->idInfo().get()));
}

// behaviour: ID-06
TEST(idInfo, cannotBeComparedWithNothing) {
    ownClass const part(L"part");
    addKey(part, L"a");
    auto const id = part->idInfo();
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { id->isEqualTo(nullptr); }));
    EXPECT_EQ(log.take(), events{"assert pOther!=0 @ libs/metamodel/src/zovMdlIdInfo.cpp:33"});
}

// behaviour: ID-07
TEST(idInfo, fieldsAreAppendedToAList) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    addKey(base, L"x");
    auto const a = addKey(part, L"a");
    addField(part, L"y");
    auto const b = addKey(part, L"b");
    fields found{nullptr, a};
    part->getIdFieldInfos(found);
    EXPECT_EQ(found, (fields{nullptr, a, a, b}));
}

// behaviour: ID-07
TEST(idInfo, fieldsAreNoneForAClassWithoutThem) {
    ownClass const part(L"part");
    fields found;
    part->getIdFieldInfos(found);
    addField(part, L"a");
    part->getIdFieldInfos(found);
    EXPECT_TRUE(found.empty());
}

// behaviour: ID-07, ID-11
TEST(idInfo, fieldsAreListedAsTheyAreNowWhateverTheSetHolds) {
    ownClass const part(L"part");
    auto const a = addKey(part, L"a");
    auto const b = addKey(part, L"b");
    part->idInfo();
    a->setSemantic(eSemNone, genericSet(), L"");
    fields found;
    part->getIdFieldInfos(found);
    EXPECT_EQ(found, fields{b});
}

// behaviour: ID-08
TEST(idInfo, isRefusedAtEveryCallForAClassWithoutIdentifyingFields) {
    ownClass const part(L"part");
    addField(part, L"a");
    eventLog log;
    for (int call = 0; call < 3; ++call) {
        EXPECT_TRUE(throwsFalse([&] { part->idInfo(); }));
        EXPECT_EQ(log.take(), events{noFields});
    }
    auto const b = addKey(part, L"b");
    EXPECT_EQ(fieldsOf(part->idInfo()), fields{b});
}

// behaviour: ID-08
TEST(idInfo, isRefusedWhenTheLastIdentifyingFieldIsDroppedByATearDown) {
    ownClass const part(L"part");
    addKey(part, L"a");
    part->tearDown();
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { part->idInfo(); }));
    EXPECT_EQ(log.take(), events{noFields});
}

// behaviour: ID-11
TEST(idInfo, keepsAFieldThatCeasesToBeIdentifying) {
    ownClass const part(L"part");
    auto const a = addKey(part, L"a");
    auto const b = addKey(part, L"b");
    auto const id = part->idInfo();
    a->setSemantic(eSemNone, genericSet(), L"");
    EXPECT_EQ(part->idInfo(), id);
    EXPECT_EQ(fieldsOf(part->idInfo()), (fields{a, b}));
    auto const c = addKey(part, L"c");
    EXPECT_EQ(fieldsOf(part->idInfo()), (fields{b, c}));
}

// behaviour: ID-12
TEST(idInfo, staysWhenAnIdentifyingFieldIsCopiedIntoTheClass) {
    ownClass const part(L"part");
    ownClass const other(L"other");
    auto const a = addKey(part, L"a");
    auto const key = addKey(other, L"b");
    auto const id = part->idInfo();
    auto const copy = part->copyFieldInfoFrom(key, nullptr);
    EXPECT_EQ(copy->semantic(), eSemPrimkey);
    EXPECT_TRUE(part->copyInfosFrom(other.pointer(), L"all_"));
    EXPECT_EQ(part->idInfo(), id);
    fields now;
    part->getIdFieldInfos(now);
    EXPECT_EQ(now, (fields{a, copy, part->fieldInfo(L"all_b", false, false)}));
}

// behaviour: ID-13
TEST(idInfo, isWalkedUntilAskedToStop) {
    ownClass const part(L"part");
    addKey(part, L"a");
    addKey(part, L"b");
    auto const id = part->idInfo();
    int visits = 0;
    auto const refuse = [&](refPtr<fieldInfo> const&) { return ++visits < 0; };
    EXPECT_FALSE(id->forEachFieldInfo(refuse, true));
    EXPECT_EQ(visits, 1);
    EXPECT_TRUE(id->forEachFieldInfo(refuse, false));
    EXPECT_EQ(visits, 3);
    std::function<bool(refPtr<fieldInfo>)> const empty;
    EXPECT_THROW(id->forEachFieldInfo(empty, true), std::bad_function_call);
}

// behaviour: ID-14
TEST(idInfo, listsAFieldThatStandsForAnIdentifyingOne) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    auto const root = addKey(base, L"a");
    auto const standing = part->createFieldInfo(base.pointer(), L"a");
    EXPECT_EQ(fieldsOf(part->idInfo()), fields{standing});
    EXPECT_EQ(part->idInfo()->classInfo(), part.pointer());
    EXPECT_FALSE(part->idInfo()->isEqualTo(base->idInfo().get()));
    EXPECT_EQ(fieldsOf(base->idInfo()), fields{root});
}

// behaviour: ID-14
TEST(idInfo, staysWhenAStandingFieldIsDeclaredIdentifyingByItself) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    addField(base, L"a");
    addKey(part, L"b");
    auto const standing = part->createFieldInfo(base.pointer(), L"a");
    auto const id = part->idInfo();
    standing->setSemantic(eSemPrimkey, genericSet(), L"");
    EXPECT_EQ(standing->semantic(), eSemNone);
    EXPECT_EQ(part->idInfo(), id);
}

// behaviour: ID-15
TEST(idInfo, isDroppedWhenAHostTellsOfAnIdentifyingField) {
    ownClass const part(L"part");
    ownClass const other(L"other");
    addKey(part, L"a");
    auto const plain = addField(part, L"b");
    auto const foreign = addKey(other, L"c");
    auto const id = part->idInfo();
    part->onSemanticChanged(plain);
    EXPECT_EQ(part->idInfo(), id);
    part->onSemanticChanged(foreign);
    EXPECT_NE(part->idInfo(), id);
}

// behaviour: ID-15
TEST(idInfo, cannotBeDroppedForAnEmptyField) {
    ownClass const part(L"part");
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { part->onSemanticChanged(nullptr); }));
    EXPECT_EQ(log.take(), events{tests::emptyRefPtr});
}

// behaviour: ID-02
TEST(idInfo, outlivesTheClassWhenAHostHoldsIt) {
    refPtr<idInfo> id;
    {
        ownClass const part(L"part");
        addKey(part, L"a")->setLabel(L"The key");
        id = part->idInfo();
    }
    EXPECT_EQ(id->classInfo(), nullptr);
    EXPECT_EQ(fieldsOf(id).front()->label(), L"The key");
}

} // namespace
} // namespace zov::metamodel
