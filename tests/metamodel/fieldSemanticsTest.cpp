// The meaning of a field, and what it asks of the field's type.
#include "zovMdlFieldSemantics.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "modelFixture.h"
#include "semanticSubject.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::bitsDemand;
using tests::enumDemand;
using tests::events;
using tests::fieldAssertion;
using tests::itemsDemand;
using tests::ownClass;
using tests::subject;
using tests::withItems;
using zov::tests::eventLog;

constexpr eFieldType allTypes[] = {eBool, eShort,     eInt,    eLong,      eFloat, eDouble,     eString, eDate,
                                   eTime, eTimestamp, eBinary, eDirectory, eFile,  eSearchPath, ePtr,    eCustom};

char const* const dateDemand = "mType==eTimestamp || mType==eDate";
char const* const timeDemand = "mType==eTimestamp || mType==eTime";

// Sets `semantic` on fields of all types: those accepted must end as `expected` says, the others be rolled back.
void expectAccepted(eFieldSemantics semantic, genericSet const& attribs, std::vector<eFieldType> const& accepted,
                    std::string const& report, eFieldType changedTo = eFieldType()) {
    for (eFieldType const type : allTypes) {
        SCOPED_TRACE(type);
        subject const given(type);
        bool const fits = std::find(accepted.begin(), accepted.end(), type) != accepted.end();
        EXPECT_EQ(given.set(semantic, attribs), fits ? events() : events{report});
        EXPECT_EQ(given.field->semantic(), fits ? semantic : eSemNone);
        EXPECT_EQ(given.field->type(), fits && changedTo ? changedTo : type);
        EXPECT_FALSE(given.field->isMandatory());
        EXPECT_FALSE(given.field->isUnique());
        EXPECT_EQ(given.field->semanticAttribs().size(), fits ? attribs.size() : 0u);
    }
}

// behaviour: FS-15
TEST(fieldSemantics, haveTheStatedValues) {
    static_assert(eSemNone == 0 && eSemLength == 0x10000 && eSemArea == 0x20000 && eSemVolume == 0x40000);
    static_assert(eSemMonetary == 0x80000 && eSemDate == 0x100000 && eSemTime == 0x200000);
    static_assert(eSemTimestamp == 0x400000 && eSemEnum == 0x800000 && eSemRelation == 0x1000000);
    static_assert(eSemPrimkey == 0x2000000 && eSemBits == 0x4000000 && eSemCustom == 0x80000000);
    static_assert(sizeof(eFieldSemantics) == 4);
}

// behaviour: FS-01
TEST(fieldSemantics, areNoneAtFirst) {
    subject const given(eInt);
    EXPECT_EQ(given.field->semantic(), eSemNone);
    EXPECT_EQ(given.field->semanticAttribs().size(), 0u);
}

// behaviour: FS-02
TEST(fieldSemantics, makeAPrimaryKeyMandatoryAndUnique) {
    for (eFieldType const type : allTypes) {
        subject const given(type);
        EXPECT_EQ(given.set(eSemPrimkey), events());
        EXPECT_EQ(given.field->semantic(), eSemPrimkey);
        EXPECT_TRUE(given.field->isMandatory());
        EXPECT_TRUE(given.field->isUnique());
        EXPECT_EQ(given.field->type(), type);
    }
}

// behaviour: FS-02
TEST(fieldSemantics, leaveAFormerPrimaryKeyMandatoryAndUnique) {
    subject const given(eInt);
    given.set(eSemPrimkey);
    given.set(eSemNone);
    EXPECT_EQ(given.field->semantic(), eSemNone);
    EXPECT_TRUE(given.field->isMandatory());
    EXPECT_TRUE(given.field->isUnique());
}

// behaviour: FS-03
TEST(fieldSemantics, makeADateOfATimestamp) {
    expectAccepted(eSemDate, genericSet(), {eTimestamp, eDate}, fieldAssertion(dateDemand, 613), eDate);
}

// behaviour: FS-04
TEST(fieldSemantics, makeATimeOfATimestamp) {
    expectAccepted(eSemTime, genericSet(), {eTimestamp, eTime}, fieldAssertion(timeDemand, 618), eTime);
}

// behaviour: FS-05
TEST(fieldSemantics, askForATimestamp) {
    expectAccepted(eSemTimestamp, genericSet(), {eTimestamp}, fieldAssertion("mType==eTimestamp", 623));
}

// behaviour: FS-06
TEST(fieldSemantics, askForANumberOrTextWithItemsForAnEnum) {
    expectAccepted(eSemEnum, withItems(), {eBool, eShort, eInt, eLong, eFloat, eDouble, eString},
                   fieldAssertion(enumDemand, 640));
}

// behaviour: FS-07
TEST(fieldSemantics, askForAWholeNumberWithItemsForBits) {
    expectAccepted(eSemBits, withItems(), {eShort, eInt, eLong}, fieldAssertion(bitsDemand, 646));
}

// behaviour: FS-06
TEST(fieldSemantics, askForItemsOfAnEnumUnderTheirKeyAndType) {
    genericSet otherKey;
    otherKey.setValue(L"EnumItems", std::vector<enumItem>(), false);
    genericSet otherType;
    otherType.setValue(L"enumItems", std::vector<string>{L"one"}, false);
    for (auto const& attribs : {genericSet(), otherKey, otherType}) {
        subject const given(eInt);
        EXPECT_EQ(given.set(eSemEnum, attribs), events{fieldAssertion(itemsDemand, 642)});
        EXPECT_EQ(given.field->semantic(), eSemNone);
        EXPECT_EQ(given.field->semanticAttribs().size(), 0u);
    }
}

// behaviour: FS-07
TEST(fieldSemantics, askForItemsOfBits) {
    subject const given(eLong);
    EXPECT_EQ(given.set(eSemBits), events{fieldAssertion(itemsDemand, 648)});
    EXPECT_EQ(given.field->semantic(), eSemNone);
}

// behaviour: FS-06, FS-07
TEST(fieldSemantics, takeAnEmptyListOfItems) {
    genericSet attribs;
    attribs.setValue(L"enumItems", std::vector<enumItem>(), false);
    for (eFieldSemantics const semantic : {eSemEnum, eSemBits}) {
        subject const given(eShort);
        EXPECT_EQ(given.set(semantic, attribs), events());
        EXPECT_EQ(given.field->semantic(), semantic);
    }
}

// behaviour: FS-08
TEST(fieldSemantics, takeTheNameOfACustomOneFromTheTextOrTheAttributes) {
    genericSet attribs;
    attribs.setValue(L"custom_semantic", L"kind", false);
    for (eFieldType const type : allTypes) {
        subject const given(type);
        EXPECT_EQ(given.set(eSemCustom, genericSet(), L"Kind"), events());
        EXPECT_EQ(given.field->semantic(), eSemCustom);
        EXPECT_EQ(given.field->type(), type);
        subject const other(type);
        EXPECT_EQ(other.set(eSemCustom, attribs), events());
        EXPECT_EQ(other.field->semantic(), eSemCustom);
    }
}

// behaviour: FS-08
TEST(fieldSemantics, refuseACustomOneWithoutAName) {
    genericSet emptyName;
    emptyName.setValue(L"custom_semantic", L"", false);
    genericSet otherType;
    otherType.setValue(L"custom_semantic", 5, false);
    for (auto const& attribs : {genericSet(), emptyName, otherType}) {
        subject const given(eInt);
        EXPECT_EQ(given.set(eSemCustom, attribs), events{fieldAssertion("semStr.length()", 634)});
        EXPECT_EQ(given.field->semantic(), eSemNone);
        EXPECT_EQ(given.field->semanticAttribs().size(), 0u);
    }
}

// behaviour: FS-09
TEST(fieldSemantics, takeAnyTypeForTheOthersAndChangeNothing) {
    for (eFieldSemantics const semantic : {eSemLength, eSemArea, eSemVolume, eSemMonetary, eSemRelation, eSemNone}) {
        for (eFieldType const type : allTypes) {
            subject const given(type);
            EXPECT_EQ(given.set(semantic, genericSet(), L"ignored"), events());
            EXPECT_EQ(given.field->semantic(), semantic);
            EXPECT_EQ(given.field->type(), type);
            EXPECT_FALSE(given.field->isMandatory() || given.field->isUnique());
        }
    }
}

// behaviour: FS-10
TEST(fieldSemantics, replaceAllAttributes) {
    subject const given(eInt);
    genericSet first;
    first.setValue(L"one", 1, false);
    first.setValue(L"two", 2, false);
    given.set(eSemLength, first);
    EXPECT_EQ(given.field->semanticAttribs().size(), 2u);
    genericSet second;
    second.setValue(L"three", 3, false);
    given.set(eSemArea, second);
    int value = 0;
    EXPECT_FALSE(given.field->semanticAttribs().getValue(L"one", value));
    EXPECT_TRUE(given.field->semanticAttribs().getValue(L"three", value));
    EXPECT_EQ(value, 3);
    second.setValue(L"four", 4, false);
    EXPECT_EQ(given.field->semanticAttribs().size(), 1u);
}

// behaviour: FS-10
TEST(fieldSemantics, takeTheFieldsOwnAttributesAgain) {
    subject const given(eInt);
    given.set(eSemEnum, withItems());
    EXPECT_EQ(given.set(eSemBits, given.field->semanticAttribs()), events());
    EXPECT_EQ(given.field->semantic(), eSemBits);
    EXPECT_EQ(given.field->semanticAttribs().size(), 1u);
}

// behaviour: FS-11
TEST(fieldSemantics, goBackToWhatWasThereWhenOneIsRefused) {
    subject const given(eTimestamp);
    genericSet attribs;
    attribs.setValue(L"one", 1, false);
    given.set(eSemPrimkey, attribs);
    given.field->setUnique(false);
    EXPECT_EQ(given.set(eSemEnum, withItems()), events{fieldAssertion(enumDemand, 640)});
    EXPECT_EQ(given.field->semantic(), eSemPrimkey);
    EXPECT_EQ(given.field->type(), eTimestamp);
    EXPECT_TRUE(given.field->isMandatory());
    EXPECT_FALSE(given.field->isUnique());
    int one = 0;
    EXPECT_TRUE(given.field->semanticAttribs().getValue(L"one", one));
    EXPECT_EQ(given.field->semanticAttribs().size(), 1u);
}

// behaviour: FS-11
TEST(fieldSemantics, refuseATimeForWhatHasBecomeADate) {
    subject const given(eTimestamp);
    given.set(eSemDate);
    EXPECT_EQ(given.set(eSemTime), events{fieldAssertion(timeDemand, 618)});
    EXPECT_EQ(given.field->semantic(), eSemDate);
    EXPECT_EQ(given.field->type(), eDate);
    EXPECT_EQ(given.set(eSemDate), events());
}

// behaviour: FS-12
TEST(fieldSemantics, areThoseOfTheRootWithAttributesOfTheFieldsOwn) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    auto const root = addField(base, L"width", eInt);
    auto const field = part->createFieldInfo(base.pointer(), L"width");
    root->setSemantic(eSemLength, withItems(), L"");
    EXPECT_EQ(field->semantic(), eSemLength);
    EXPECT_EQ(field->semanticAttribs().size(), 0u);
    genericSet attribs;
    attribs.setValue(L"one", 1, false);
    attribs.setValue(L"two", 2, false);
    field->setSemantic(eSemPrimkey, attribs, L"");
    EXPECT_EQ(field->semantic(), eSemLength);
    EXPECT_EQ(field->semanticAttribs().size(), 2u);
    EXPECT_TRUE(field->isMandatory() && field->isUnique());
    EXPECT_FALSE(root->isMandatory() || root->isUnique());
    EXPECT_EQ(root->semanticAttribs().size(), 1u);
}

// behaviour: FS-12
TEST(fieldSemantics, askForTheTypeThatAStandingFieldWasMadeWith) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    auto const root = addField(base, L"when", eTimestamp);
    auto const field = part->createFieldInfo(base.pointer(), L"when");
    root->setSemantic(eSemDate, genericSet(), L"");
    ASSERT_EQ(field->type(), eDate);
    eventLog log;
    field->setSemantic(eSemTimestamp, genericSet(), L"");
    EXPECT_EQ(log.take(), events());
    field->setSemantic(eSemTime, genericSet(), L"");
    EXPECT_EQ(log.take(), events());
    EXPECT_EQ(field->type(), eDate);
    EXPECT_EQ(root->type(), eDate);
    field->setSemantic(eSemDate, genericSet(), L"");
    EXPECT_EQ(log.take(), events{fieldAssertion(dateDemand, 613)});
}

// behaviour: FS-13
TEST(fieldSemantics, tellTheClassOfANewPrimaryKey) {
    subject const given(eInt);
    given.set(eSemPrimkey);
    auto const before = given.part->idInfo();
    auto const other = addField(given.part, L"other");
    other->setSemantic(eSemPrimkey, genericSet(), L"");
    EXPECT_NE(given.part->idInfo(), before);
    EXPECT_EQ(given.part->idInfo()->countFields(), 2u);
}

// behaviour: FS-14
TEST(fieldSemantics, keepTheNewAttributesWhenThereIsNoClassToTell) {
    subject const given(eTimestamp);
    given.set(eSemLength);
    given.part->tearDown();
    EXPECT_EQ(given.set(eSemDate, withItems()), events{tests::emptyRefPtr});
    EXPECT_EQ(given.field->semantic(), eSemLength);
    EXPECT_EQ(given.field->type(), eTimestamp);
    EXPECT_EQ(given.field->semanticAttribs().size(), 1u);
    EXPECT_EQ(given.set(eSemPrimkey), events{tests::emptyRefPtr});
    EXPECT_FALSE(given.field->isMandatory() || given.field->isUnique());
    EXPECT_EQ(given.field->semanticAttribs().size(), 0u);
}

// behaviour: FS-14
TEST(fieldSemantics, keepTheFormerAttributesWhenTheTypeIsRefused) {
    subject const given(eInt);
    given.set(eSemLength, withItems());
    genericSet other;
    other.setValue(L"one", 1, false);
    other.setValue(L"two", 2, false);
    EXPECT_EQ(given.set(eSemTimestamp, other), events{fieldAssertion("mType==eTimestamp", 623)});
    EXPECT_EQ(given.field->semanticAttribs().size(), 1u);
}

} // namespace
} // namespace zov::metamodel
