// What giving a field a semantic does in detail: which rule speaks first, and what a refusal leaves.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fieldChain.h"
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

// behaviour: FS-35
TEST(semanticRules, askForTheTypeBeforeTheItems) {
    EXPECT_EQ(subject(eDate).set(eSemEnum), events{fieldAssertion(enumDemand, 640)});
    EXPECT_EQ(subject(eBool).set(eSemBits), events{fieldAssertion(bitsDemand, 646)});
    EXPECT_EQ(subject(eBool).set(eSemEnum), events{fieldAssertion(itemsDemand, 642)});
}

// behaviour: FS-06, FS-07
TEST(semanticRules, takeNoItemsThatCannotBeChanged) {
    genericSet attribs;
    attribs.setGenericValue(
        scString::createFrom(L"enumItems"),
        genericValue(new genericValue::valueholder<std::vector<enumItem> const>(std::vector<enumItem>())), false);
    subject const given(eInt);
    EXPECT_EQ(given.set(eSemEnum, attribs), events{fieldAssertion(itemsDemand, 642)});
    EXPECT_EQ(given.set(eSemBits, attribs), events{fieldAssertion(itemsDemand, 648)});
}

// behaviour: FS-08
TEST(semanticRules, preferTheTextToTheAttributesAndDoNotLookAtThemThen) {
    genericSet attribs;
    attribs.setValue(L"custom_semantic", 5, false);
    subject const given(eInt);
    EXPECT_EQ(given.set(eSemCustom, attribs, L"Kind"), events());
    EXPECT_EQ(given.field->semanticString().string(), L"Kind");
    EXPECT_EQ(given.field->semanticAttribs().size(), 1u);
}

// behaviour: FS-09
TEST(semanticRules, keepTheFlagsUnderEverySemanticButAKey) {
    for (eFieldSemantics const semantic : {eSemLength, eSemRelation, eSemTimestamp, eSemDate, eSemNone}) {
        subject const given(eTimestamp);
        given.field->setMandatory(true);
        EXPECT_EQ(given.set(semantic), events());
        EXPECT_TRUE(given.field->isMandatory());
        EXPECT_FALSE(given.field->isUnique());
    }
}

// behaviour: FS-36
TEST(semanticRules, keepADateWhenItGetsAnotherSemantic) {
    subject const given(eTimestamp);
    given.set(eSemDate);
    given.set(eSemNone);
    EXPECT_EQ(given.field->type(), eDate);
    EXPECT_EQ(given.set(eSemTimestamp), events{fieldAssertion("mType==eTimestamp", 623)});
    EXPECT_EQ(given.field->type(), eDate);
}

// behaviour: FS-37
TEST(semanticRules, keepTheKeyAndTheIdSetOfAFieldThatIsRefusedAnotherSemantic) {
    subject const given(eInt);
    given.set(eSemPrimkey);
    auto const before = given.part->idInfo();
    EXPECT_EQ(given.set(eSemDate).size(), 1u);
    EXPECT_EQ(given.field->semantic(), eSemPrimkey);
    EXPECT_EQ(given.part->idInfo(), before);
}

// behaviour: FS-37
TEST(semanticRules, reportARefusalOnceAtEveryTry) {
    subject const given(eInt);
    for (int tries = 0; tries < 3; ++tries)
        EXPECT_EQ(given.set(eSemTime), events{fieldAssertion("mType==eTimestamp || mType==eTime", 618)});
    EXPECT_EQ(given.set(eSemLength), events());
}

// behaviour: FS-14
TEST(semanticRules, emptyTheShownNameOfACustomFieldThatIsRefusedAnotherSemantic) {
    subject const given(eInt);
    given.set(eSemCustom, genericSet(), L"Kind");
    EXPECT_EQ(given.set(eSemTimestamp).size(), 1u);
    EXPECT_EQ(given.field->semantic(), eSemCustom);
    EXPECT_EQ(given.field->semanticString(), scString());
}

// behaviour: FS-14
TEST(semanticRules, emptyTheShownNameOfARelationThatIsRefusedAnotherSemantic) {
    subject const given(eInt);
    given.set(eSemCustom, genericSet(), L"Kind");
    given.set(eSemRelation);
    EXPECT_EQ(given.set(eSemBits).size(), 1u);
    EXPECT_EQ(given.field->semantic(), eSemRelation);
    EXPECT_EQ(given.field->semanticString(), scString());
}

// behaviour: FS-37
TEST(semanticRules, letNothingOutWhenTheReportItselfThrows) {
    subject const given(eInt);
    zov::setAssertHandler([](string const&) { throw std::vector<int>(); });
    EXPECT_NO_THROW(given.field->setSemantic(eSemDate, genericSet(), L""));
    zov::setAssertHandler({});
    EXPECT_EQ(given.field->semantic(), eSemNone);
    EXPECT_EQ(given.field->type(), eInt);
}

// behaviour: FS-38
TEST(semanticRules, checkAStandingFieldByItselfAndShowTheRoot) {
    tests::fieldChain const chain(eInt);
    eventLog log;
    chain.field->setSemantic(eSemBits, withItems(), L"");
    EXPECT_EQ(log.take(), events());
    EXPECT_EQ(chain.field->semantic(), eSemNone);
    EXPECT_EQ(chain.field->semanticAttribs().size(), 1u);
    EXPECT_EQ(chain.middle->semanticAttribs().size(), 0u);
    chain.field->setSemantic(eSemDate, genericSet(), L"");
    EXPECT_EQ(log.take().size(), 1u);
    EXPECT_EQ(chain.field->semanticAttribs().size(), 1u);
}

} // namespace
} // namespace zov::metamodel
