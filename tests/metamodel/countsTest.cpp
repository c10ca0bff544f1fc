// What is counted, and what is not allocated.
#include "zovRefPtr.h"

#include <gtest/gtest.h>

#include "failingAllocations.h"
#include "modelFixture.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::ownClass;
using tests::ownModel;

// behaviour: TD-12
TEST(counts, areOneForTheModelsHostAlone) {
    auto const model = modelInfo::createModelInfo(false);
    EXPECT_EQ(model->refCount(), 1u);
    model->createClassInfo(L"part");
    EXPECT_EQ(model->refCount(), 1u);
}

// behaviour: TD-12
TEST(counts, ofARegisteredClassAreTheModelsAndTheHosts) {
    ownModel const model;
    auto const part = model->createClassInfo(L"part");
    EXPECT_EQ(part->refCount(), 2u);
    for (int at = 0; at < 40; ++at)
        model->createClassInfo(string::sformat(L"other %d", at));
    model->forEachClassInfo([](classInfo::entry const&) { return true; }, false);
    EXPECT_EQ(part->refCount(), 2u);
    auto const again = model->classInfo(L"part", false);
    EXPECT_EQ(part->refCount(), 3u);
}

// behaviour: TD-12
TEST(counts, ofAClassGrowByOneForEachFieldAndEachDerivedClass) {
    ownClass const base(L"base");
    addField(base, L"a");
    addField(base, L"b");
    EXPECT_EQ(base->refCount(), 3u);
    addField(base, L"A");
    EXPECT_EQ(base->refCount(), 3u);
    ownClass const part(L"part");
    part->addBaseClass(base);
    part->addBaseClass(base);
    EXPECT_EQ(base->refCount(), 4u);
    EXPECT_EQ(part->refCount(), 1u);
    part->isDerivedFrom(base.pointer());
    EXPECT_EQ(base->refCount(), 4u);
}

// behaviour: TD-12
TEST(counts, ofAFieldAreItsClassesAndTheHosts) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    auto const width = addField(base, L"width");
    EXPECT_EQ(width->refCount(), 2u);
    for (int at = 0; at < 40; ++at)
        base->createFieldInfo(string::sformat(L"other %d", at), eInt, genericSet(), L"");
    base->forEachFieldInfo([](refPtr<fieldInfo> const&) { return true; }, false);
    EXPECT_EQ(width->refCount(), 2u);
    auto const standing = part->createFieldInfo(base.pointer(), L"width");
    EXPECT_EQ(width->refCount(), 3u);
    EXPECT_EQ(standing->refCount(), 2u);
    part->copyFieldInfoFrom(width, L"p");
    EXPECT_EQ(width->refCount(), 3u);
}

// behaviour: TD-12
TEST(counts, ofAnIdSetAreItsClassesAndTheHosts) {
    ownClass const part(L"part");
    auto const key = addField(part, L"key");
    key->setSemantic(eSemPrimkey, genericSet(), L"");
    EXPECT_EQ(key->refCount(), 2u);
    auto const id = part->idInfo();
    EXPECT_EQ(id->refCount(), 2u);
    EXPECT_EQ(key->refCount(), 3u);
    part->onSemanticChanged(key);
    EXPECT_EQ(id->refCount(), 1u);
}

// behaviour: TD-12
TEST(counts, areTheHostsAloneAfterATearDown) {
    ownModel const model;
    auto const base = model->createClassInfo(L"base");
    auto const part = model->createClassInfo(L"part");
    part->addBaseClass(base);
    auto const width = addField(base, L"width");
    auto const standing = part->createFieldInfo(base, L"width");
    model->tearDown();
    EXPECT_EQ(base->refCount(), 1u);
    EXPECT_EQ(part->refCount(), 1u);
    EXPECT_EQ(standing->refCount(), 1u);
    EXPECT_EQ(width->refCount(), 2u);
}

// behaviour: TD-12
TEST(counts, areUnchangedByRefusals) {
    ownModel const model;
    auto const part = model->createClassInfo(L"part");
    auto const width = addField(part, L"width");
    ownClass const other(L"other");
    EXPECT_TRUE(zov::tests::throwsFalse([&] { model->createClassInfo(L"part"); }));
    EXPECT_TRUE(zov::tests::throwsFalse([&] { other->createFieldInfo(part, L"width"); }));
    EXPECT_EQ(part->refCount(), 3u);
    EXPECT_EQ(width->refCount(), 2u);
    EXPECT_EQ(other->refCount(), 1u);
}

// behaviour: MR-14
TEST(counts, showThatLookupsAllocateNothing) {
    ownModel const model;
    auto const base = model->createClassInfo(L"Base");
    auto const part = model->createClassInfo(L"Part");
    part->addBaseClass(base);
    part->addAliasname(L"piece");
    addField(base, L"Width");
    string const className = L"PART";
    string const alias = L"Piece";
    string const fieldName = L"WIDTH";
    string const qualifiedName = L"Part.Width";
    string const unknown = L"A name that nobody ever gave to a thing of this model";
    auto const before = zov::tests::allocationsMade;
    bool asExpected = true;
    for (int at = 0; at < 1000; ++at) {
        asExpected = asExpected && model->classInfo(className, false) == part && !model->classInfo(unknown, true) &&
                     model->classInfo(alias, true) == part && model->fieldInfo(className, fieldName, true) &&
                     model->fieldInfo(qualifiedName, true) && !model->fieldInfo(className, unknown, true) &&
                     !part->fieldInfo(unknown, true, true) && part->fieldInfo(fieldName, true, true);
    }
    EXPECT_EQ(zov::tests::allocationsMade, before);
    EXPECT_TRUE(asExpected);
}

// behaviour: TD-02
TEST(counts, showThatATearDownAllocatesNothing) {
    ownModel const model;
    for (int at = 0; at < 20; ++at) {
        auto const made = model->createClassInfo(string::sformat(L"class %d", at));
        addField(made, L"a");
        addField(made, L"b")->setSemantic(eSemPrimkey, genericSet(), L"");
        made->idInfo();
    }
    auto const before = zov::tests::allocationsMade;
    model->tearDown();
    EXPECT_EQ(zov::tests::allocationsMade, before);
}

} // namespace
} // namespace zov::metamodel
