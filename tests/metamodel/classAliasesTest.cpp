// The further names of a class.
#include "zovMdlClassInfo.h"

#include <gtest/gtest.h>

#include <string>

#include "modelFixture.h"

namespace zov::metamodel {
namespace {

using tests::events;
using tests::names;
using tests::ownClass;
using zov::tests::eventLog;
using zov::tests::throwsFalse;

names aliasesOf(ownClass const& owner) {
    names found;
    owner->getAliasnames(found);
    return found;
}

bool hasAlias(ownClass const& owner, wchar_t const* alias) {
    return owner->hasAliasname(scString::createFrom(alias));
}

// behaviour: CC-05
TEST(classAliases, areListedInTheOrderOfAdding) {
    ownClass const part(L"part");
    EXPECT_EQ(aliasesOf(part), names());
    for (wchar_t const* alias : {L"zeta", L"Alpha", L"mu"})
        part->addAliasname(alias);
    EXPECT_EQ(aliasesOf(part), (names{L"zeta", L"Alpha", L"mu"}));
}

// behaviour: CC-05
TEST(classAliases, areListedOnceAndMoveToTheEndWhenAddedAgain) {
    ownClass const part(L"part");
    for (wchar_t const* alias : {L"a", L"b", L"c", L"a"})
        part->addAliasname(alias);
    EXPECT_EQ(aliasesOf(part), (names{L"b", L"c", L"a"}));
    part->addAliasname(L"a");
    EXPECT_EQ(aliasesOf(part), (names{L"b", L"c", L"a"}));
}

// behaviour: CC-05
TEST(classAliases, goToTheEndWhenAddedAfterRemoving) {
    ownClass const part(L"part");
    for (wchar_t const* alias : {L"a", L"b", L"c"})
        part->addAliasname(alias);
    part->removeAliasname(L"b");
    EXPECT_EQ(aliasesOf(part), (names{L"a", L"c"}));
    part->addAliasname(L"b");
    EXPECT_EQ(aliasesOf(part), (names{L"a", L"c", L"b"}));
}

// behaviour: CC-06
TEST(classAliases, areFoundInTheirOwnSpellingOnly) {
    ownClass const part(L"part");
    EXPECT_FALSE(hasAlias(part, L"Piece"));
    part->addAliasname(L"Piece");
    EXPECT_TRUE(hasAlias(part, L"Piece"));
    EXPECT_FALSE(hasAlias(part, L"piece"));
    EXPECT_FALSE(hasAlias(part, L"PIECE"));
    EXPECT_FALSE(hasAlias(part, L"part"));
    EXPECT_FALSE(part->hasAliasname(scString()));
}

// behaviour: CC-06
TEST(classAliases, ofDifferentSpellingStandSideBySide) {
    ownClass const part(L"part");
    part->addAliasname(L"Piece");
    part->addAliasname(L"piece");
    EXPECT_EQ(aliasesOf(part), (names{L"Piece", L"piece"}));
    part->removeAliasname(L"piece");
    EXPECT_TRUE(hasAlias(part, L"Piece"));
    EXPECT_FALSE(hasAlias(part, L"piece"));
}

// behaviour: CC-07
TEST(classAliases, areAppendedToWhatTheListHolds) {
    ownClass const part(L"part");
    part->addAliasname(L"piece");
    names found{L"one", L"two"};
    part->getAliasnames(found);
    EXPECT_EQ(found, (names{L"one", L"two", L"piece"}));
    ownClass const other(L"other");
    other->getAliasnames(found);
    EXPECT_EQ(found, (names{L"one", L"two", L"piece"}));
}

// behaviour: CC-08
TEST(classAliases, cannotBeEmpty) {
    ownClass const part(L"part");
    part->addAliasname(L"piece");
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { part->addAliasname(L""); }));
    EXPECT_TRUE(throwsFalse([&] { part->removeAliasname(L""); }));
    auto const happened = log.take();
    ASSERT_EQ(happened.size(), 2u);
    for (auto const& event : happened)
        EXPECT_TRUE(event.starts_with("assert alias.length() @ libs/metamodel/src/zovMdlClassInfo.cpp:")) << event;
    EXPECT_EQ(aliasesOf(part), names{L"piece"});
}

// behaviour: CC-08
TEST(classAliases, reportAnEmptyAliasWithoutListToo) {
    ownClass const part(L"part");
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { part->removeAliasname(L""); }));
    EXPECT_EQ(log.take().size(), 1u);
    EXPECT_EQ(aliasesOf(part), names());
}

// behaviour: CC-09
TEST(classAliases, areLeftAloneWhenAnUnknownOneIsRemoved) {
    ownClass const part(L"part");
    eventLog log;
    part->removeAliasname(L"nobody");
    part->addAliasname(L"piece");
    part->removeAliasname(L"Piece");
    part->removeAliasname(L"nobody");
    EXPECT_EQ(aliasesOf(part), names{L"piece"});
    EXPECT_EQ(log.take(), events());
}

// behaviour: CC-05
TEST(classAliases, mayEqualTheClassName) {
    ownClass const part(L"part");
    part->addAliasname(L"part");
    EXPECT_TRUE(hasAlias(part, L"part"));
    EXPECT_EQ(part->scName().string(), L"part");
}

} // namespace
} // namespace zov::metamodel
