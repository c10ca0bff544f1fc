// Aliases of fields, which never come into being.
#include "zovMdlFieldInfo.h"

#include <gtest/gtest.h>

#include "modelFixture.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::events;
using tests::fieldAssertion;
using tests::names;
using tests::ownClass;
using zov::tests::eventLog;
using zov::tests::throwsFalse;

// behaviour: FR-06
TEST(fieldAliases, cannotBeEmpty) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { width->addAliasname(L""); }));
    EXPECT_EQ(log.take(), events{fieldAssertion("alias.length()", 668)});
    EXPECT_TRUE(throwsFalse([&] { width->removeAliasname(L""); }));
    EXPECT_EQ(log.take(), events{fieldAssertion("alias.length()", 686)});
}

// behaviour: FR-07
TEST(fieldAliases, failWheneverOneIsAdded) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    eventLog log;
    for (wchar_t const* alias : {L"breadth", L"breadth", L"Other"}) {
        EXPECT_TRUE(throwsFalse([&] { width->addAliasname(alias); }));
        EXPECT_EQ(log.take(), events{fieldAssertion("pAliasNames", 679)});
    }
}

// behaviour: FR-08
TEST(fieldAliases, areNotThereToBeRemoved) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    eventLog log;
    width->removeAliasname(L"breadth");
    EXPECT_EQ(log.take(), events());
    EXPECT_TRUE(throwsFalse([&] { width->addAliasname(L"breadth"); }));
    log.take();
    width->removeAliasname(L"breadth");
    EXPECT_EQ(log.take(), events());
}

// behaviour: FR-09
TEST(fieldAliases, addNothingToAList) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    eventLog log;
    names found{L"one", L"two"};
    width->getAliasnames(found);
    EXPECT_TRUE(throwsFalse([&] { width->addAliasname(L"breadth"); }));
    log.take();
    width->getAliasnames(found);
    EXPECT_EQ(found, (names{L"one", L"two"}));
    EXPECT_EQ(log.take(), events());
}

// behaviour: FR-09
TEST(fieldAliases, addNothingToAListAlongAChain) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    auto const root = addField(base, L"width");
    auto const field = part->createFieldInfo(base.pointer(), L"width");
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { root->addAliasname(L"breadth"); }));
    EXPECT_TRUE(throwsFalse([&] { field->addAliasname(L"extent"); }));
    log.take();
    names found;
    field->getAliasnames(found);
    EXPECT_EQ(found, names());
    EXPECT_EQ(log.take(), events());
}

// behaviour: FR-10
TEST(fieldAliases, areNeverConfirmed) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { width->addAliasname(L"breadth"); }));
    EXPECT_FALSE(width->hasAliasname(scString::createFrom(L"breadth")));
    EXPECT_FALSE(width->hasAliasname(scString::createFrom(L"width")));
    EXPECT_FALSE(width->hasAliasname(scString()));
}

} // namespace
} // namespace zov::metamodel
