// What hosts do not see of a field: its flag word, texts and definitions, its release step, and how it ends.
#include "zovMdlFieldInfo.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "modelFixture.h"
#include "testAccess.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::events;
using tests::fieldAssertion;
using tests::names;
using tests::ownClass;
using zov::tests::eventLog;
using zov::tests::throwsFalse;

using handles = std::vector<scString>;

handles handlesOf(names const& texts) {
    handles made;
    for (auto const& text : texts)
        made.push_back(scString::createFrom(text));
    return made;
}

fieldData& dataOf(refPtr<fieldInfo> const& field) {
    return testAccess::data(*field);
}

// Puts a list that can be changed, or one that is read, under the field's key for aliases.
void setWritableAliases(refPtr<fieldInfo> const& field, names const& aliases) {
    dataOf(field).mDefinitions.setValue(L"Alias", handlesOf(aliases), false);
}
void setReadableAliases(refPtr<fieldInfo> const& field, names const& aliases) {
    genericValue const list(new genericValue::valueholder<handles const>(handlesOf(aliases)));
    dataOf(field).mDefinitions.setGenericValue(scString::createFrom(L"Alias"), list, false);
}

// A class with a field, and one below it with a field that stands for it.
struct chain {
    ownClass base{L"base"};
    ownClass part{L"part"};
    refPtr<fieldInfo> root = addField(base, L"width");
    refPtr<fieldInfo> field;

    chain() {
        part->addBaseClass(base);
        field = part->createFieldInfo(base.pointer(), L"width");
    }
};

// behaviour: FR-03
TEST(fieldInner, keepsMandatoryAndUniqueInTwoBits) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    EXPECT_EQ(testAccess::flags(*width), 0);
    width->setMandatory(true);
    EXPECT_EQ(testAccess::flags(*width), 1);
    width->setUnique(true);
    EXPECT_EQ(testAccess::flags(*width), 3);
    width->setMandatory(false);
    EXPECT_EQ(testAccess::flags(*width), 2);
    width->setUnique(false);
    EXPECT_EQ(testAccess::flags(*width), 0);
}

// behaviour: FR-03
TEST(fieldInner, leavesOtherFlagBitsAlone) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    dataOf(width).mFlags = 12;
    width->setMandatory(true);
    width->setUnique(true);
    EXPECT_EQ(testAccess::flags(*width), 15);
    width->setMandatory(false);
    width->setUnique(false);
    EXPECT_EQ(testAccess::flags(*width), 12);
}

// behaviour: CF-16
TEST(fieldInner, isCopiedWithAllFlagsTextsAndDefinitions) {
    chain const made;
    ownClass const to(L"to");
    dataOf(made.field).mFlags = 13;
    dataOf(made.field).mDefinitions.setValue(L"Default", 7, false);
    made.field->setSemantic(eSemCustom, genericSet(), L"Own Kind");
    made.root->setSemantic(eSemCustom, genericSet(), L"Root Kind");
    dataOf(made.root).mFlags = 2;
    auto const copy = to->copyFieldInfoFrom(made.field, nullptr);
    EXPECT_EQ(testAccess::flags(*copy), 13);
    EXPECT_EQ(copy->semantic(), eSemCustom);
    EXPECT_EQ(dataOf(copy).name(&fieldTexts::customSemantic).string(), L"Own Kind");
    int value = 0;
    EXPECT_TRUE(dataOf(copy).mDefinitions.getValue(L"Default", value));
    EXPECT_EQ(value, 7);
    dataOf(copy).mDefinitions.setValue(L"Default", 8, false);
    EXPECT_TRUE(dataOf(made.field).mDefinitions.getValue(L"Default", value));
    EXPECT_EQ(value, 7);
}

// behaviour: FR-07
TEST(fieldInner, isLeftAnEmptyListOfTextsWhenAnAliasIsAdded) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { width->addAliasname(L"breadth"); }));
    std::vector<string>* texts = nullptr;
    handles* list = nullptr;
    ASSERT_TRUE(dataOf(width).mDefinitions.getValuePtr(L"Alias", texts));
    EXPECT_TRUE(texts->empty());
    EXPECT_FALSE(dataOf(width).mDefinitions.getValuePtr(L"Alias", list));
    EXPECT_EQ(dataOf(width).mDefinitions.size(), 1u);
}

// behaviour: FR-06
TEST(fieldInner, storesNothingForAnEmptyAlias) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { width->addAliasname(L""); }));
    EXPECT_TRUE(throwsFalse([&] { width->removeAliasname(L""); }));
    EXPECT_EQ(dataOf(width).mDefinitions.size(), 0u);
}

// behaviour: FR-07
TEST(fieldInner, replacesAnAliasEntryOfAnotherTypeByAnEmptyListOfTexts) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    setReadableAliases(width, {L"extent"});
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { width->addAliasname(L"breadth"); }));
    EXPECT_EQ(log.take(), events{fieldAssertion("pAliasNames", 679)});
    std::vector<string>* texts = nullptr;
    ASSERT_TRUE(dataOf(width).mDefinitions.getValuePtr(L"Alias", texts));
    EXPECT_TRUE(texts->empty());
}

// behaviour: FR-14
TEST(fieldInner, addsToAListOfNamesThatIsThere) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    setWritableAliases(width, {L"a", L"b"});
    eventLog log;
    width->addAliasname(L"C");
    width->addAliasname(L"a");
    EXPECT_EQ(log.take(), events());
    handles* list = nullptr;
    ASSERT_TRUE(dataOf(width).mDefinitions.getValuePtr(L"Alias", list));
    EXPECT_EQ(*list, handlesOf({L"b", L"C", L"a"}));
    names found;
    width->getAliasnames(found);
    EXPECT_EQ(found, names());
    EXPECT_FALSE(width->hasAliasname(scString::createFrom(L"a")));
}

// behaviour: FR-08
TEST(fieldInner, removesTheFirstEqualNameOfItsOwnList) {
    chain const made;
    setWritableAliases(made.root, {L"a"});
    setWritableAliases(made.field, {L"a", L"b", L"a", L"c"});
    made.field->removeAliasname(L"a");
    made.field->removeAliasname(L"C");
    made.field->removeAliasname(L"nobody");
    handles* list = nullptr;
    ASSERT_TRUE(dataOf(made.field).mDefinitions.getValuePtr(L"Alias", list));
    EXPECT_EQ(*list, handlesOf({L"b", L"a", L"c"}));
    made.field->removeAliasname(L"a");
    made.field->removeAliasname(L"a");
    EXPECT_EQ(*list, handlesOf({L"b", L"c"}));
    ASSERT_TRUE(dataOf(made.root).mDefinitions.getValuePtr(L"Alias", list));
    EXPECT_EQ(*list, handlesOf({L"a"}));
}

// behaviour: FR-08
TEST(fieldInner, removesNothingFromAListThatIsOnlyRead) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    setReadableAliases(width, {L"a"});
    width->removeAliasname(L"a");
    handles const* list = nullptr;
    ASSERT_TRUE(dataOf(width).mDefinitions.getValuePtr(L"Alias", list));
    EXPECT_EQ(*list, handlesOf({L"a"}));
}

// behaviour: FR-09
TEST(fieldInner, listsReadAliasesAndThenFailsWithoutABase) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    setReadableAliases(width, {L"a", L"B"});
    names found{L"before"};
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { width->getAliasnames(found); }));
    EXPECT_EQ(log.take(), events{tests::emptyRefPtr});
    EXPECT_EQ(found, (names{L"before", L"a", L"B"}));
}

// behaviour: FR-09
TEST(fieldInner, listsAliasesUpToTheFirstFieldWithoutAny) {
    chain const made;
    setReadableAliases(made.field, {L"a"});
    names found;
    eventLog log;
    made.field->getAliasnames(found);
    EXPECT_EQ(found, names{L"a"});
    setWritableAliases(made.root, {L"b"});
    made.field->getAliasnames(found);
    EXPECT_EQ(found, (names{L"a", L"a"}));
    EXPECT_EQ(log.take(), events());
}

// behaviour: FR-09
TEST(fieldInner, listsAliasesNearestFirstAndFailsAtTheEndOfTheChain) {
    chain const made;
    setReadableAliases(made.field, {L"a", L"b"});
    setReadableAliases(made.root, {L"c"});
    names found;
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { made.field->getAliasnames(found); }));
    EXPECT_EQ(log.take(), events{tests::emptyRefPtr});
    EXPECT_EQ(found, (names{L"a", L"b", L"c"}));
}

// behaviour: FR-09
TEST(fieldInner, listsNothingWhenOnlyTheRootHasAliases) {
    chain const made;
    setReadableAliases(made.root, {L"c"});
    names found;
    made.field->getAliasnames(found);
    EXPECT_EQ(found, names());
}

// behaviour: FR-10, CF-06
TEST(fieldInner, confirmsNoAliasWhateverItsListsHold) {
    chain const made;
    setReadableAliases(made.field, {L"breadth"});
    setReadableAliases(made.root, {L"extent"});
    eventLog log;
    for (wchar_t const* alias : {L"breadth", L"extent", L"other"})
        EXPECT_FALSE(made.field->hasAliasname(scString::createFrom(alias)));
    EXPECT_EQ(log.take(), events());
    EXPECT_EQ(made.part->fieldInfo(L"breadth", true, true), nullptr);
    EXPECT_EQ(made.base->fieldInfo(L"extent", false, true), nullptr);
}

// behaviour: FR-15
TEST(fieldInner, forgetsItsClassWhenReleased) {
    chain const made;
    testAccess::releaseInfo(*made.field);
    EXPECT_EQ(made.field->classInfo(), nullptr);
    EXPECT_EQ(made.field->baseField(), made.root);
    EXPECT_EQ(made.field->qualifiedName(), L"width");
    EXPECT_EQ(made.part->fieldInfo(L"width", false, false), made.field);
    EXPECT_EQ(made.part->refCount(), 1u);
    testAccess::releaseInfo(*made.root);
    EXPECT_EQ(made.root->qualifiedName(), L"width");
}

// behaviour: FR-15, LL-11
TEST(fieldInner, tellsOfItsReleaseAtInfoLevel) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    width->setLabel(L"The width");
    eventLog log(zovlog::eLogInfo);
    std::vector<zovlog::logRecord> lines;
    zovlog::logManager::setSink([&](zovlog::logRecord const& line) { lines.push_back(line); });
    testAccess::releaseInfo(*width);
    testAccess::releaseInfo(*width);
    ASSERT_EQ(lines.size(), 2u);
    for (auto const& line : lines) {
        EXPECT_EQ(line.level, zovlog::eLogInfo);
        EXPECT_EQ(line.message, L"fieldInfo releaseInfo called: \"The width\"");
        EXPECT_EQ(std::string(line.loggerName), "zov::metamodel::fieldInfo::releaseInfo");
        EXPECT_EQ(std::string(line.function), "zov::metamodel::fieldInfo::releaseInfo");
        EXPECT_EQ(std::string(line.file), "libs/metamodel/src/zovMdlFieldInfo.cpp");
        EXPECT_EQ(line.line, 177);
    }
}

// behaviour: FR-15, LL-11
TEST(fieldInner, isNotReleasedWithoutALogger) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    eventLog log(zovlog::eLogOff);
    zovlog::logManager::setProvider([](char const*) { return refPtr<zovlog::logger>(); });
    EXPECT_TRUE(throwsFalse([&] { testAccess::releaseInfo(*width); }));
    zovlog::logManager::setProvider({});
    EXPECT_EQ(log.take(), events{tests::emptyRefPtr});
    EXPECT_EQ(width->classInfo(), part.pointer());
}

// behaviour: FR-16
TEST(fieldInner, letsItsBaseFieldGoBeforeItsClass) {
    refPtr<fieldInfo> field;
    {
        auto const base = classInfo::createClassInfo(L"base");
        auto const part = classInfo::createClassInfo(L"part");
        part->addBaseClass(base);
        auto const root = addField(base, L"width");
        field = part->createFieldInfo(base, L"width");
        base->setLabel(L"base");
        part->setLabel(L"part");
        root->setLabel(L"root");
        field->setLabel(L"field");
        testAccess::releaseInfo(*part);
        testAccess::releaseInfo(*base);
    }
    eventLog log;
    field.reset();
    EXPECT_EQ(log.take(), (events{"debug fieldInfo released: \"field\"", "debug fieldInfo released: \"root\"",
                                  "trace classInfo released: \"base\"", "trace classInfo released: \"part\""}));
}

// behaviour: FR-17
TEST(fieldInner, isMadeApartFromItsClassesList) {
    ownClass const part(L"part");
    auto field = testAccess::makeField(part, L"Width", eDouble);
    EXPECT_EQ(field->scName().string(), L"Width");
    EXPECT_EQ(field->refCount(), 1u);
    EXPECT_EQ(part->countFields(), 0u);
    EXPECT_EQ(part->refCount(), 2u);
    field.reset();
    EXPECT_EQ(part->refCount(), 1u);
}

string customTextOf(refPtr<fieldInfo> const& field) {
    return dataOf(field).name(&fieldTexts::customSemantic).string();
}

// behaviour: FS-08
TEST(fieldInner, keepsTheCustomNameAsGiven) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    genericSet attribs;
    attribs.setValue(L"custom_semantic", L"From Attributes", false);
    width->setSemantic(eSemCustom, attribs, L"From Text");
    EXPECT_EQ(customTextOf(width), L"From Text");
    width->setSemantic(eSemCustom, attribs, L"");
    EXPECT_EQ(customTextOf(width), L"From Attributes");
}

// behaviour: FS-09
TEST(fieldInner, keepsTheCustomNameUnderOtherSemantics) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width", eTimestamp);
    width->setSemantic(eSemCustom, genericSet(), L"Kind");
    for (auto const semantic : {eSemRelation, eSemLength, eSemNone, eSemPrimkey, eSemTimestamp, eSemDate}) {
        width->setSemantic(semantic, genericSet(), L"Other");
        EXPECT_EQ(customTextOf(width), L"Kind");
        EXPECT_EQ(width->semantic(), semantic);
    }
}

// behaviour: FS-14
TEST(fieldInner, losesItsCustomNameWhenASemanticIsRefused) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    eventLog log;
    width->setSemantic(eSemCustom, genericSet(), L"Kind");
    width->setSemantic(eSemDate, genericSet(), L"");
    EXPECT_EQ(width->semantic(), eSemCustom);
    EXPECT_EQ(customTextOf(width), L"");
    width->setSemantic(eSemCustom, genericSet(), L"Kind");
    width->setSemantic(eSemCustom, genericSet(), L"");
    EXPECT_EQ(width->semantic(), eSemCustom);
    EXPECT_EQ(customTextOf(width), L"");
}

// behaviour: FS-14
TEST(fieldInner, losesItsCustomNameWhenThereIsNoClassToTell) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    testAccess::releaseInfo(*width);
    eventLog log;
    width->setSemantic(eSemCustom, genericSet(), L"Kind");
    EXPECT_EQ(log.take(), events{tests::emptyRefPtr});
    EXPECT_EQ(width->semantic(), eSemNone);
    EXPECT_EQ(customTextOf(width), L"");
}

// behaviour: FS-11
TEST(fieldInner, takesBackAllFlagsOfARefusedPrimaryKey) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    dataOf(width).mFlags = 8;
    testAccess::releaseInfo(*width);
    eventLog log;
    width->setSemantic(eSemPrimkey, genericSet(), L"");
    EXPECT_EQ(testAccess::flags(*width), 8);
    EXPECT_EQ(width->semantic(), eSemNone);
}

// behaviour: FS-02
TEST(fieldInner, addsTwoFlagsForAPrimaryKey) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    dataOf(width).mFlags = 8;
    width->setSemantic(eSemPrimkey, genericSet(), L"");
    EXPECT_EQ(testAccess::flags(*width), 11);
}

// behaviour: FR-05
TEST(fieldInner, isMadeWithTheTypeThatTheRootHasThen) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    ownClass const bottom(L"bottom");
    part->addBaseClass(base);
    bottom->addBaseClass(part);
    auto const root = addField(base, L"when", eTimestamp);
    auto const middle = part->createFieldInfo(base.pointer(), L"when");
    root->setSemantic(eSemDate, genericSet(), L"");
    auto const last = bottom->createFieldInfo(part.pointer(), L"when");
    EXPECT_EQ(dataOf(middle).mType.load(), eTimestamp);
    EXPECT_EQ(dataOf(last).mType.load(), eDate);
    EXPECT_EQ(middle->type(), eDate);
    EXPECT_EQ(last->type(), eDate);
    EXPECT_EQ(dataOf(last).mName, scString());
}

} // namespace
} // namespace zov::metamodel
