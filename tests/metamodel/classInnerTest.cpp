// What hosts do not see of a class: its flag word, its release step, and what odd entries in its record do.
#include "zovMdlClassInfo.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "modelFixture.h"
#include "testAccess.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::events;
using tests::fieldNames;
using tests::names;
using tests::ownClass;
using zov::tests::eventLog;
using zov::tests::throwsFalse;

// behaviour: CC-04
TEST(classInner, hasOneFlagBit) {
    ownClass const part(L"part");
    EXPECT_EQ(testAccess::flags(*part.pointer()), 0);
    part->setAbstract(true);
    EXPECT_EQ(testAccess::flags(*part.pointer()), 1);
    part->setAbstract(true);
    EXPECT_EQ(testAccess::flags(*part.pointer()), 1);
    part->setAbstract(false);
    EXPECT_EQ(testAccess::flags(*part.pointer()), 0);
}

// behaviour: CC-04
TEST(classInner, leavesOtherFlagBitsAlone) {
    ownClass const part(L"part");
    testAccess::data(*part.pointer()).mFlags = 6;
    part->setAbstract(true);
    EXPECT_EQ(testAccess::flags(*part.pointer()), 7);
    EXPECT_TRUE(part->isAbstract());
    part->setAbstract(false);
    EXPECT_EQ(testAccess::flags(*part.pointer()), 6);
    EXPECT_FALSE(part->isAbstract());
}

// behaviour: CC-02
TEST(classInner, isMadeWithEitherCaseRule) {
    ownClass const exact(testAccess::makeClass(L"Order", true));
    ownClass const any(testAccess::makeClass(L"Order", false));
    EXPECT_EQ(exact->scName(), any->scName());
    EXPECT_EQ(exact->scName().string(), L"order");
    EXPECT_EQ(addField(exact, L"Width")->scName().string(), L"Width");
    EXPECT_EQ(addField(any, L"Width")->scName().string(), L"width");
}

// behaviour: CC-11
TEST(classInner, dropsFieldsAndBasesWhenReleasedAndKeepsTheRest) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    auto const width = addField(part, L"width");
    part->setLabel(L"A part");
    part->setAbstract(true);
    part->addAliasname(L"piece");
    testAccess::releaseInfo(*part.pointer());
    EXPECT_EQ(part->countFields(), 0u);
    EXPECT_FALSE(part->isDerivedFrom(base.pointer()));
    EXPECT_EQ(base->refCount(), 1u);
    EXPECT_EQ(width->refCount(), 1u);
    EXPECT_EQ(part->label(), L"A part");
    EXPECT_TRUE(part->isAbstract());
    EXPECT_TRUE(part->hasAliasname(scString::createFrom(L"piece")));
    EXPECT_EQ(width->classInfo(), part.pointer());
    EXPECT_EQ(width->qualifiedName(), L"part.width");
}

// behaviour: CC-11
TEST(classInner, isUsableAfterARelease) {
    ownClass const part(L"part");
    addField(part, L"width");
    testAccess::releaseInfo(*part.pointer());
    testAccess::releaseInfo(*part.pointer());
    EXPECT_NE(addField(part, L"height"), nullptr);
    EXPECT_EQ(fieldNames(part), names{L"height"});
}

// behaviour: CC-11
TEST(classInner, leavesAWalkItsFieldsWhenReleased) {
    ownClass const part(L"part");
    addField(part, L"a");
    addField(part, L"b");
    names visited;
    part->forEachFieldInfo(
        [&](refPtr<fieldInfo> const& field) {
            testAccess::releaseInfo(*part.pointer());
            visited.push_back(field->scName().string());
            return true;
        },
        true);
    EXPECT_EQ(visited, (names{L"a", L"b"}));
}

// behaviour: LL-11
TEST(classInner, tellsOfItsReleaseBeforeItLetsGo) {
    ownClass const part(L"part");
    addField(part, L"width")->setLabel(L"The width");
    eventLog log;
    testAccess::releaseInfo(*part.pointer());
    EXPECT_EQ(log.take(),
              (events{"trace classInfo releaseInfo called: \"\"", "debug fieldInfo released: \"The width\""}));
    part->setLabel(L"A part");
    std::vector<zovlog::logRecord> lines;
    zovlog::logManager::setSink([&](zovlog::logRecord const& line) { lines.push_back(line); });
    testAccess::releaseInfo(*part.pointer());
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].level, zovlog::eLogTrace);
    EXPECT_EQ(lines[0].message, L"classInfo releaseInfo called: \"A part\"");
    EXPECT_EQ(std::string(lines[0].loggerName), "zov::metamodel::classInfo::releaseInfo");
    EXPECT_EQ(std::string(lines[0].function), "zov::metamodel::classInfo::releaseInfo");
    EXPECT_EQ(std::string(lines[0].file), "libs/metamodel/src/zovMdlClassInfo.cpp");
}

// behaviour: LL-11
TEST(classInner, isNotReleasedWithoutALogger) {
    ownClass const part(L"part");
    addField(part, L"width");
    eventLog log(zovlog::eLogOff);
    zovlog::logManager::setProvider([](char const*) { return refPtr<zovlog::logger>(); });
    EXPECT_TRUE(throwsFalse([&] { testAccess::releaseInfo(*part.pointer()); }));
    zovlog::logManager::setProvider({});
    EXPECT_EQ(log.take(), events{tests::emptyRefPtr});
    EXPECT_EQ(part->countFields(), 1u);
}

// behaviour: CC-12
TEST(classInner, takesAnAliasEntryOfAnotherTypeForNone) {
    ownClass const part(L"part");
    auto& properties = testAccess::data(*part.pointer()).mProperties;
    properties.setValue(L"Alias", std::vector<string>{L"piece"}, false);
    EXPECT_FALSE(part->hasAliasname(scString::createFrom(L"piece")));
    names found;
    part->getAliasnames(found);
    EXPECT_EQ(found, names());
    part->removeAliasname(L"piece");
    part->addAliasname(L"item");
    part->getAliasnames(found);
    EXPECT_EQ(found, names{L"item"});
}

// behaviour: CC-12
TEST(classInner, keepsItsAliasesAsAListOfNames) {
    ownClass const part(L"part");
    part->addAliasname(L"Piece");
    std::vector<scString>* list = nullptr;
    ASSERT_TRUE(testAccess::data(*part.pointer()).mProperties.getValuePtr(L"Alias", list));
    EXPECT_EQ(*list, std::vector<scString>{scString::createFrom(L"Piece")});
}

// A class with the field a and an empty entry behind it; the list is dropped at the end.
struct withEmptyEntry {
    ownClass part{L"part"};
    refPtr<fieldInfo> a = addField(part, L"a");

    withEmptyEntry() {
        auto& data = testAccess::data(*part.pointer());
        data.mFieldInfos.append(heldMutex(data.mMutex), {scString(), nullptr});
    }
    ~withEmptyEntry() { testAccess::releaseInfo(*part.pointer()); }

    withEmptyEntry(withEmptyEntry const&) = delete;
    withEmptyEntry& operator=(withEmptyEntry const&) = delete;
};

// behaviour: CF-26
TEST(classInner, skipsEmptyEntriesWhenFieldsAreWalked) {
    withEmptyEntry const given;
    std::vector<refPtr<fieldInfo>> visited;
    EXPECT_TRUE(given.part->forEachFieldInfo(
        [&](refPtr<fieldInfo> const& field) {
            visited.push_back(field);
            return true;
        },
        true));
    EXPECT_EQ(visited, std::vector<refPtr<fieldInfo>>{given.a});
    EXPECT_EQ(given.part->countFields(), 2u);
}

// behaviour: CF-26
TEST(classInner, comesToNoEmptyEntryInALookup) {
    withEmptyEntry const given;
    eventLog log;
    EXPECT_EQ(given.part->fieldInfo(L"a", false, false), given.a);
    EXPECT_EQ(log.take(), events());
    EXPECT_EQ(given.part->fieldInfo(L"part", false, false), nullptr);
    EXPECT_EQ(given.part->fieldInfo(L"", false, false), nullptr);
    EXPECT_EQ(log.take(), events());
}

// behaviour: CF-26
TEST(classInner, copiesOnlyTheFieldsThatAWalkVisits) {
    withEmptyEntry const given;
    ownClass const to(L"to");
    eventLog log;
    EXPECT_FALSE(throwsFalse([&] { to->copyInfosFrom(given.part.pointer(), nullptr); }));
    EXPECT_EQ(fieldNames(to), names{L"a"});
}

} // namespace
} // namespace zov::metamodel
