// Copying fields from another class.
#include "zovMdlClassInfo.h"

#include <gtest/gtest.h>

#include <vector>

#include "modelFixture.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::fieldNames;
using tests::names;
using tests::ownClass;
using tests::ownModel;
using zov::tests::eventLog;
using zov::tests::throwsFalse;

// behaviour: CF-15
TEST(copyFields, putsThePrefixDirectlyBeforeTheName) {
    ownClass const from(L"from");
    ownClass const to(L"to");
    auto const width = addField(from, L"Width");
    auto const copy = to->copyFieldInfoFrom(width, L"old_");
    EXPECT_NE(copy, width);
    EXPECT_EQ(copy->scName().string(), L"old_width");
    EXPECT_EQ(copy->classInfo(), to.pointer());
    EXPECT_EQ(copy->baseField(), nullptr);
    EXPECT_EQ(to->fieldInfo(L"OLD_WIDTH", false, false), copy);
    EXPECT_EQ(from->countFields(), 1u);
}

// behaviour: CF-15
TEST(copyFields, keepsTheNameWithoutAPrefix) {
    ownClass const from(L"from");
    ownClass const to(L"to");
    auto const width = addField(from, L"width");
    auto const height = addField(from, L"height");
    EXPECT_EQ(to->copyFieldInfoFrom(width, nullptr)->scName().string(), L"width");
    EXPECT_EQ(to->copyFieldInfoFrom(height, L"")->scName().string(), L"height");
    EXPECT_EQ(fieldNames(to), (names{L"width", L"height"}));
}

// behaviour: CF-15
TEST(copyFields, takesVariablesConstantsAndTemporaries) {
    ownClass const from(L"from");
    ownClass const to(L"to");
    const_refPtr<fieldInfo> field = addField(from, L"a");
    const_refPtr<fieldInfo> const constant = addField(from, L"b");
    const_refPtr<classInfo> source = from.pointer();
    const_refPtr<classInfo> const constantSource = from.pointer();
    EXPECT_NE(to->copyFieldInfoFrom(field, L"1"), nullptr);
    EXPECT_NE(to->copyFieldInfoFrom(constant, L"2"), nullptr);
    EXPECT_NE(to->copyFieldInfoFrom(from->fieldInfo(L"a", false, false), L"3"), nullptr);
    EXPECT_TRUE(to->copyInfosFrom(source, L"4"));
    EXPECT_TRUE(to->copyInfosFrom(constantSource, L"5"));
    EXPECT_TRUE(to->copyInfosFrom(from.pointer(), L"6"));
    EXPECT_EQ(fieldNames(to), (names{L"1a", L"2b", L"3a", L"4a", L"4b", L"5a", L"5b", L"6a", L"6b"}));
}

// Compares what a field says of itself besides its name and place.
void expectSameSayings(refPtr<fieldInfo> const& copy, refPtr<fieldInfo> const& source) {
    EXPECT_EQ(copy->type(), source->type());
    EXPECT_EQ(copy->semantic(), source->semantic());
    EXPECT_EQ(copy->label(), source->label());
    EXPECT_EQ(copy->unit(), source->unit());
    EXPECT_EQ(copy->isMandatory(), source->isMandatory());
    EXPECT_EQ(copy->isUnique(), source->isUnique());
    EXPECT_EQ(copy->customTypeString(), source->customTypeString());
    int copied = 0;
    int original = 0;
    EXPECT_EQ(copy->typeAttribs().getValue(L"digits", copied), source->typeAttribs().getValue(L"digits", original));
    EXPECT_EQ(copied, original);
    string copiedKind;
    string originalKind;
    EXPECT_EQ(copy->semanticAttribs().getValue(L"kind", copiedKind),
              source->semanticAttribs().getValue(L"kind", originalKind));
    EXPECT_EQ(copiedKind, originalKind);
}

// Gives a field something to carry in every place.
void describe(refPtr<fieldInfo> const& field) {
    field->setLabel(L"The width");
    field->setUnit(L"mm");
    field->setUnique(true);
    field->setCustomTypeString(L"Own Kind");
    genericSet meaning;
    meaning.setValue(L"kind", L"inner", false);
    field->setSemantic(eSemLength, meaning, L"");
}

// behaviour: CF-16
TEST(copyFields, carriesAllThatTheFieldSaysOfItself) {
    ownClass const from(L"from");
    ownClass const to(L"to");
    genericSet attribs;
    attribs.setValue(L"digits", 3, false);
    auto const width = from->createFieldInfo(L"width", eDouble, attribs, L"");
    describe(width);
    auto const copy = to->copyFieldInfoFrom(width, nullptr);
    expectSameSayings(copy, width);
    EXPECT_EQ(copy->semantic(), eSemLength);
    EXPECT_EQ(copy->label(), L"The width");
    EXPECT_TRUE(copy->isUnique());
    EXPECT_FALSE(copy->isMandatory());
    EXPECT_EQ(copy->customTypeString().string(), L"Own Kind");
}

// behaviour: CF-16
TEST(copyFields, makesACopyThatChangesOnItsOwn) {
    ownClass const from(L"from");
    ownClass const to(L"to");
    auto const width = addField(from, L"width", eTimestamp);
    describe(width);
    auto const copy = to->copyFieldInfoFrom(width, nullptr);
    copy->setLabel(L"Other");
    copy->setMandatory(true);
    copy->setSemantic(eSemDate, genericSet(), L"");
    EXPECT_EQ(width->label(), L"The width");
    EXPECT_FALSE(width->isMandatory());
    EXPECT_EQ(width->type(), eTimestamp);
    EXPECT_EQ(width->semantic(), eSemLength);
    EXPECT_EQ(width->semanticAttribs().size(), 1u);
    EXPECT_EQ(copy->type(), eDate);
    EXPECT_EQ(copy->semanticAttribs().size(), 0u);
}

// behaviour: CF-16
TEST(copyFields, takesTypeAndSemanticOfAStandingFieldFromItsRootAndTheRestFromItself) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    ownClass const to(L"to");
    part->addBaseClass(base);
    genericSet attribs;
    attribs.setValue(L"digits", 3, false);
    auto const root = base->createFieldInfo(L"kind", eCustom, attribs, L"Root Kind");
    root->setLabel(L"Root label");
    root->setMandatory(true);
    root->setSemantic(eSemArea, genericSet(), L"");
    auto const standing = part->createFieldInfo(base.pointer(), L"kind");
    describe(standing);
    auto const copy = to->copyFieldInfoFrom(standing, L"x");
    EXPECT_EQ(copy->scName().string(), L"xkind");
    EXPECT_EQ(copy->baseField(), nullptr);
    EXPECT_EQ(copy->type(), eCustom);
    EXPECT_EQ(copy->semantic(), eSemArea);
    expectSameSayings(copy, standing);
    EXPECT_EQ(copy->label(), L"The width");
    EXPECT_FALSE(copy->isMandatory());
    EXPECT_TRUE(copy->isUnique());
    EXPECT_EQ(copy->typeAttribs().size(), 0u);
    EXPECT_EQ(copy->typeString().string(), L"Own Kind");
}

// behaviour: CF-16
TEST(copyFields, takesTheTypeThatTheRootHasBecomeMeanwhile) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    ownClass const to(L"to");
    part->addBaseClass(base);
    auto const root = addField(base, L"when", eTimestamp);
    auto const standing = part->createFieldInfo(base.pointer(), L"when");
    root->setSemantic(eSemDate, genericSet(), L"");
    EXPECT_EQ(to->copyFieldInfoFrom(standing, nullptr)->type(), eDate);
}

// behaviour: CF-17
TEST(copyFields, returnsTheFieldThatIsThere) {
    ownClass const from(L"from");
    ownClass const to(L"to");
    auto const own = addField(to, L"width", eString);
    EXPECT_EQ(to->copyFieldInfoFrom(addField(from, L"Width", eInt), nullptr), own);
    EXPECT_EQ(own->type(), eString);
    EXPECT_EQ(to->countFields(), 1u);
}

// behaviour: CF-17
TEST(copyFields, copiesOverAFieldOfABase) {
    ownClass const base(L"base");
    ownClass const from(L"from");
    ownClass const to(L"to");
    to->addBaseClass(base);
    auto const inherited = addField(base, L"width");
    auto const copy = to->copyFieldInfoFrom(addField(from, L"width"), nullptr);
    EXPECT_NE(copy, inherited);
    EXPECT_EQ(copy->classInfo(), to.pointer());
    EXPECT_EQ(to->countFields(), 1u);
}

// behaviour: CF-18
TEST(copyFields, copiesAllOwnFieldsInOrderAndOnlyOnce) {
    ownClass const from(L"from");
    ownClass const to(L"to");
    for (wchar_t const* name : {L"c", L"a", L"b"})
        addField(from, name);
    EXPECT_TRUE(to->copyInfosFrom(from.pointer(), L"p"));
    EXPECT_EQ(fieldNames(to), (names{L"pc", L"pa", L"pb"}));
    auto const first = to->fieldInfo(L"pa", false, false);
    EXPECT_EQ(first->classInfo(), to.pointer());
    EXPECT_TRUE(to->copyInfosFrom(from.pointer(), L"p"));
    EXPECT_EQ(fieldNames(to), (names{L"pc", L"pa", L"pb"}));
    EXPECT_EQ(to->fieldInfo(L"pa", false, false), first);
}

// behaviour: CF-18
TEST(copyFields, addsToTheFieldsThatAreThere) {
    ownClass const from(L"from");
    ownClass const to(L"to");
    auto const own = addField(to, L"b", eString);
    for (wchar_t const* name : {L"a", L"B", L"c"})
        addField(from, name);
    EXPECT_TRUE(to->copyInfosFrom(from.pointer(), nullptr));
    EXPECT_EQ(fieldNames(to), (names{L"b", L"a", L"c"}));
    EXPECT_EQ(to->fieldInfo(L"b", false, false), own);
    EXPECT_EQ(own->type(), eString);
}

// behaviour: CF-18
TEST(copyFields, answersTrueForASourceWithoutFields) {
    ownClass const from(L"from");
    ownClass const to(L"to");
    EXPECT_TRUE(to->copyInfosFrom(from.pointer(), L"p"));
    EXPECT_EQ(to->countFields(), 0u);
}

// behaviour: CF-18
TEST(copyFields, leavesWalksThatHaveBegunAlone) {
    ownClass const from(L"from");
    ownClass const to(L"to");
    addField(from, L"a");
    addField(to, L"b");
    int visits = 0;
    to->forEachFieldInfo(
        [&](refPtr<fieldInfo> const&) {
            ++visits;
            return to->copyInfosFrom(from.pointer(), L"p");
        },
        true);
    EXPECT_EQ(visits, 1);
    EXPECT_EQ(to->countFields(), 2u);
}

// behaviour: CF-19
TEST(copyFields, leavesTheBasesOfTheSourceOut) {
    ownClass const base(L"base");
    ownClass const from(L"from");
    ownClass const to(L"to");
    from->addBaseClass(base);
    addField(base, L"a");
    addField(from, L"b");
    EXPECT_TRUE(to->copyInfosFrom(from.pointer(), nullptr));
    EXPECT_EQ(fieldNames(to), names{L"b"});
}

// behaviour: CF-19
TEST(copyFields, copiesStandingFieldsAsDefiningOnes) {
    ownClass const base(L"base");
    ownClass const from(L"from");
    ownClass const to(L"to");
    from->addBaseClass(base);
    addField(base, L"a", eDouble);
    from->createFieldInfo(base.pointer(), L"a");
    EXPECT_TRUE(to->copyInfosFrom(from.pointer(), L"p"));
    auto const copy = to->fieldInfo(L"pa", false, false);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->baseField(), nullptr);
    EXPECT_EQ(copy->type(), eDouble);
    EXPECT_EQ(copy->qualifiedName(), L"to.pa");
}

// behaviour: CF-20
TEST(copyFields, failsForAnEmptySource) {
    ownClass const to(L"to");
    addField(to, L"a");
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { to->copyFieldInfoFrom(const_refPtr<fieldInfo>(), L"p"); }));
    EXPECT_EQ(log.take(), tests::events{tests::emptyConstRefPtr});
    EXPECT_TRUE(throwsFalse([&] { to->copyInfosFrom(const_refPtr<classInfo>(), nullptr); }));
    EXPECT_EQ(log.take(), tests::events{tests::emptyConstRefPtr});
    EXPECT_EQ(to->countFields(), 1u);
    EXPECT_NE(addField(to, L"b"), nullptr);
}

// behaviour: CF-21
TEST(copyFields, leavesAFieldThatNobodyFindsWhenThePrefixHasCapitals) {
    ownClass const from(L"from");
    ownClass const to(L"to");
    auto const width = addField(from, L"width");
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { to->copyFieldInfoFrom(width, L"Old"); }));
    EXPECT_EQ(log.take(), tests::events{"trace fieldInfo created: \"\""});
    EXPECT_EQ(to->countFields(), 1u);
    EXPECT_EQ(fieldNames(to), names{L"Oldwidth"});
    for (wchar_t const* name : {L"Oldwidth", L"oldwidth", L"OLDWIDTH"})
        EXPECT_EQ(to->fieldInfo(name, true, true), nullptr);
}

// behaviour: CF-21
TEST(copyFields, answersTrueForAllFieldsUnderACapitalisedPrefix) {
    ownClass const from(L"from");
    ownClass const to(L"to");
    addField(from, L"a");
    addField(from, L"b");
    EXPECT_TRUE(to->copyInfosFrom(from.pointer(), L"P"));
    EXPECT_EQ(fieldNames(to), (names{L"Pa", L"Pb"}));
    EXPECT_EQ(to->fieldInfo(L"Pa", false, false), nullptr);
    EXPECT_EQ(to->fieldInfo(L"pa", false, false), nullptr);
}

// behaviour: CF-21
TEST(copyFields, findsACapitalisedPrefixWhenCaseMatters) {
    ownModel const model(true);
    auto const from = model->createClassInfo(L"from");
    auto const to = model->createClassInfo(L"to");
    auto const copy = to->copyFieldInfoFrom(addField(from, L"Width"), L"Old");
    EXPECT_EQ(copy->scName().string(), L"OldWidth");
    EXPECT_EQ(to->fieldInfo(L"OldWidth", false, false), copy);
}

// behaviour: CF-21
TEST(copyFields, keepsTheCapitalsOfANameThatComesFromAClassWhereCaseMatters) {
    ownModel const model(true);
    auto const width = addField(model->createClassInfo(L"from"), L"Width");
    ownClass const to(L"to");
    EXPECT_TRUE(throwsFalse([&] { to->copyFieldInfoFrom(width, nullptr); }));
    EXPECT_EQ(fieldNames(to), names{L"Width"});
    EXPECT_EQ(to->fieldInfo(L"Width", false, false), nullptr);
}

// behaviour: CF-22
TEST(copyFields, leavesNoRoomForTheSameLettersAsAFieldThatNobodyFinds) {
    ownClass const from(L"from");
    ownClass const to(L"to");
    auto const width = addField(from, L"width");
    EXPECT_TRUE(throwsFalse([&] { to->copyFieldInfoFrom(width, L"Old"); }));
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { addField(to, L"oldwidth"); }));
    EXPECT_TRUE(throwsFalse([&] { addField(to, L"Oldwidth"); }));
    EXPECT_TRUE(throwsFalse([&] { to->copyFieldInfoFrom(width, L"old"); }));
    EXPECT_EQ(to->countFields(), 1u);
    EXPECT_TRUE(to->copyInfosFrom(from.pointer(), L"old"));
    EXPECT_EQ(fieldNames(to), names{L"Oldwidth"});
    EXPECT_EQ(tests::countStarting(log.take(), "assert"), 0u);
}

// behaviour: CF-22
TEST(copyFields, findsTheFieldOfABaseInPlaceOfOneThatNobodyFinds) {
    ownClass const base(L"base");
    ownClass const from(L"from");
    ownClass const to(L"to");
    auto const width = addField(from, L"width");
    EXPECT_TRUE(throwsFalse([&] { to->copyFieldInfoFrom(width, L"Old"); }));
    to->addBaseClass(base);
    auto const inherited = addField(base, L"oldwidth");
    EXPECT_EQ(to->copyFieldInfoFrom(width, L"Old"), inherited);
    EXPECT_EQ(to->countFields(), 1u);
}

// behaviour: CF-23
TEST(copyFields, copiesAClassOntoItself) {
    ownClass const part(L"part");
    addField(part, L"a");
    addField(part, L"b");
    EXPECT_TRUE(part->copyInfosFrom(part.pointer(), nullptr));
    EXPECT_EQ(fieldNames(part), (names{L"a", L"b"}));
    EXPECT_TRUE(part->copyInfosFrom(part.pointer(), L"p"));
    EXPECT_EQ(fieldNames(part), (names{L"a", L"b", L"pa", L"pb"}));
    EXPECT_TRUE(part->copyInfosFrom(part.pointer(), L"p"));
    EXPECT_EQ(fieldNames(part), (names{L"a", L"b", L"pa", L"pb", L"ppa", L"ppb"}));
}

// behaviour: CF-23
TEST(copyFields, copiesAFieldWithinItsClass) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    EXPECT_EQ(part->copyFieldInfoFrom(width, nullptr), width);
    auto const copy = part->copyFieldInfoFrom(width, L"other_");
    EXPECT_NE(copy, width);
    EXPECT_EQ(fieldNames(part), (names{L"width", L"other_width"}));
}

// behaviour: CF-24
TEST(copyFields, comparesNamesInLowerCaseEvenWhenCaseMatters) {
    ownModel const model(true);
    auto const from = model->createClassInfo(L"from");
    auto const to = model->createClassInfo(L"to");
    auto const lower = addField(from, L"width");
    addField(from, L"Width");
    EXPECT_TRUE(to->copyInfosFrom(from, nullptr));
    EXPECT_EQ(fieldNames(to), names{L"width"});
    addField(to, L"HEIGHT");
    auto const height = addField(from, L"height");
    EXPECT_TRUE(throwsFalse([&] { to->copyFieldInfoFrom(height, nullptr); }));
    EXPECT_EQ(fieldNames(to), (names{L"width", L"HEIGHT"}));
}

// behaviour: CF-31
TEST(copyFields, copiesAFieldOfATornDownClass) {
    ownClass const from(L"from");
    ownClass const to(L"to");
    auto const width = addField(from, L"width", eDouble);
    from->tearDown();
    auto const copy = to->copyFieldInfoFrom(width, nullptr);
    EXPECT_EQ(copy->type(), eDouble);
    EXPECT_EQ(copy->classInfo(), to.pointer());
}

} // namespace
} // namespace zov::metamodel
