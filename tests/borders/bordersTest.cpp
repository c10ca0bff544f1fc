// What passes between a host and a plugin that is a shared library of its own and is loaded at run time: values,
// names, pointers, failures, logs. What is made on one side must be read, and freed, on the other.
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include <dlfcn.h>

#include "borderPlugin.h"

namespace {

using zov::genericSet;
using zov::genericValue;
using zov::refObj;
using zov::refPtr;
using zov::refPtrCast;
using zov::scString;
using zov::string;
using zov::conditions::condition;
using zov::metamodel::classInfo;
using zov::metamodel::modelInfo;
using zov::tests::borderPlugin;
using zov::tests::countedObject;
using zov::tests::gridPoint;
using zov::tests::rangeCondition;

// The number of samples that forEachSample knows.
constexpr int sampleCount = 17;

borderPlugin const* load() {
    void* const library = dlopen(ZOV_BORDER_PLUGIN, RTLD_NOW | RTLD_LOCAL);
    if (!library) return nullptr;
    using entry = borderPlugin const* (*)();
    auto const function = reinterpret_cast<entry>(dlsym(library, zov::tests::pluginFunctionName));
    return function ? function() : nullptr;
}

class libraryBorders : public testing::Test {
protected:
    void SetUp() override {
        // Loaded once and never unloaded: what it made may live as long as the process.
        static borderPlugin const* const loaded = load();
        ASSERT_TRUE(loaded) << dlerror();
        mPlugin = loaded;
    }

    borderPlugin const* mPlugin = nullptr;
    std::atomic<int> mEnded{0};
};

class hostObject final : public countedObject {
public:
    using countedObject::countedObject;
    std::string origin() const override { return "host"; }
};

class hostCondition final : public rangeCondition {
public:
    using rangeCondition::rangeCondition;
    std::string origin() const override { return "host"; }
    condition* clone() const override { return new hostCondition(*this); }
};

// A copy of what the value holds as a T; a T of its own when it holds none.
template <class T>
T heldIn(genericValue const& value) {
    auto const* const held = value.valuePtr<T>();
    return held ? *held : T();
}

// ---- values

// behaviour: BO-01
TEST_F(libraryBorders, theHostReadsEveryTypeOfValueThatThePluginMade) {
    auto const samples = mPlugin->makeSamples();
    EXPECT_EQ(zov::tests::samplesRead(samples), sampleCount);
}

// behaviour: BO-01
TEST_F(libraryBorders, thePluginReadsEveryTypeOfValueThatTheHostMade) {
    auto const samples = zov::tests::samplesMade();
    EXPECT_EQ(mPlugin->countSamplesRead(samples), sampleCount);
}

// behaviour: BO-01
TEST_F(libraryBorders, valuesOfOneSideAreCopiedAndChangedOnTheOther) {
    auto samples = mPlugin->makeSamples();
    auto copies = samples;
    EXPECT_EQ(mPlugin->countSamplesRead(copies), sampleCount);
    EXPECT_TRUE(copies[2].assignText(L"7"));
    int number = 0;
    EXPECT_TRUE(copies[2].getValue(number));
    EXPECT_EQ(number, 7);
    EXPECT_TRUE(copies[6].heldBy()->assignFrom(*copies[2].heldBy()));
    EXPECT_EQ(heldIn<string>(copies[6]), L"7");
    EXPECT_EQ(mPlugin->countSamplesRead(samples), sampleCount);
    EXPECT_EQ(mPlugin->countSamplesRead(copies), sampleCount - 2);
}

// behaviour: BO-02
TEST_F(libraryBorders, aTypeTestIsExactOnBothSides) {
    auto const samples = mPlugin->makeSamples();
    EXPECT_TRUE(samples[2].valuePtr<int>());
    EXPECT_FALSE(samples[2].valuePtr<long>());
    EXPECT_FALSE(samples[2].valuePtr<int const>());
    EXPECT_FALSE(samples[6].valuePtr<std::wstring>());
    EXPECT_TRUE(samples[16].valuePtr<gridPoint>());
    EXPECT_FALSE(samples[16].valuePtr<int>());
    EXPECT_EQ(samples[16].type(), typeid(gridPoint));
}

// behaviour: BO-02
TEST_F(libraryBorders, aTypeOfTheHostsOwnIsAssignedBetweenValuesOfBothSides) {
    auto theirs = std::move(mPlugin->makeSamples()[16]);
    genericValue const mine(gridPoint{7, 8});
    EXPECT_TRUE(theirs.heldBy()->assignFrom(*mine.heldBy()));
    EXPECT_EQ(heldIn<gridPoint>(theirs), (gridPoint{7, 8}));
    genericValue mineToo(gridPoint{});
    EXPECT_TRUE(theirs.heldBy()->assignTo(*mineToo.heldBy()));
    EXPECT_EQ(heldIn<gridPoint>(mineToo), (gridPoint{7, 8}));
}

// behaviour: BO-03
TEST_F(libraryBorders, setsOfOneSideAreReadOnTheOther) {
    auto const theirs = mPlugin->makeSet();
    EXPECT_EQ(theirs.size(), static_cast<std::size_t>(sampleCount));
    EXPECT_EQ(zov::tests::entriesRead(theirs), sampleCount);
    auto const mine = zov::tests::setMade();
    EXPECT_EQ(mPlugin->countEntriesRead(mine), sampleCount);
    genericSet copy = theirs;
    copy.setValue(L"2", 43, false);
    EXPECT_EQ(mPlugin->countEntriesRead(copy), sampleCount - 1);
    EXPECT_EQ(mPlugin->countEntriesRead(theirs), sampleCount);
}

// ---- names and failures

// behaviour: BO-04
TEST_F(libraryBorders, equalTextsAreOneNameOnBothSides) {
    EXPECT_EQ(mPlugin->nameOf(L"a name that both sides intern"),
              scString::createFrom(L"a name that both sides intern"));
    auto const theirs = mPlugin->nameOf(L"a name that the plugin interned");
    auto const found = scString::find(L"a name that the plugin interned");
    ASSERT_TRUE(found);
    EXPECT_EQ(*found, theirs);
    EXPECT_EQ(&found->string(), &theirs.string());
}

// behaviour: BO-05
TEST_F(libraryBorders, aFailureInsideThePluginIsCaughtByTheHost) {
    std::vector<std::string> reports;
    mPlugin->takeOverReports(reports);
    bool caught = false;
    try {
        mPlugin->useEmptyPointer();
    } catch (bool thrown) {
        caught = !thrown;
    }
    mPlugin->giveBackBoth();
    EXPECT_TRUE(caught);
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_EQ(reports[0].find("Assertion failed:\nm_p != NULL\n"), 0u);
}

// behaviour: BO-05
TEST_F(libraryBorders, aFailureInsideTheHostIsCaughtByThePlugin) {
    std::vector<std::string> reports;
    mPlugin->takeOverReports(reports);
    EXPECT_TRUE(mPlugin->catchesFalseFrom([] { refPtr<classInfo>()->scName(); }));
    EXPECT_FALSE(mPlugin->catchesFalseFrom([] {}));
    mPlugin->giveBackBoth();
    EXPECT_EQ(reports.size(), 1u);
}

// behaviour: BO-06
TEST_F(libraryBorders, aHandlerOfThePluginsGetsTheHostsReports) {
    std::vector<std::string> reports;
    mPlugin->takeOverReports(reports);
    zov::assertMsg(L"a report of the host");
    mPlugin->giveBackBoth();
    EXPECT_EQ(reports, std::vector<std::string>{"a report of the host"});
}

// behaviour: BO-06
TEST_F(libraryBorders, loggersOfThePluginsGetTheLibrarysLines) {
    std::vector<std::string> lines;
    mPlugin->takeOverLog(lines);
    modelInfo::createModelInfo(false);
    mPlugin->giveBackBoth();
    modelInfo::createModelInfo(false);
    EXPECT_EQ(lines, (std::vector<std::string>{"plugin: modelInfo created", "plugin: modelInfo released"}));
}

// ---- objects

// behaviour: BO-07
TEST_F(libraryBorders, anObjectOfThePluginEndsInTheHost) {
    refPtr<refObj> object = mPlugin->makeObject(mEnded);
    auto cast = refPtrCast<countedObject>(object);
    ASSERT_TRUE(cast);
    EXPECT_EQ(cast->origin(), "plugin");
    EXPECT_FALSE(refPtrCast<hostObject>(object));
    genericValue value(object);
    object = nullptr;
    EXPECT_EQ(mEnded, 0);
    cast = nullptr;
    EXPECT_EQ(mEnded, 0);
    value = genericValue();
    EXPECT_EQ(mEnded, 1);
}

// behaviour: BO-07
TEST_F(libraryBorders, anObjectOfTheHostEndsInThePlugin) {
    mPlugin->keepObject(new hostObject(mEnded));
    EXPECT_EQ(mPlugin->originOfKept(), "host");
    EXPECT_EQ(mEnded, 0);
    mPlugin->dropObject();
    EXPECT_EQ(mEnded, 1);
}

// behaviour: BO-08
TEST_F(libraryBorders, conditionsAreClonedAndEndedOnEitherSide) {
    std::unique_ptr<rangeCondition> const theirs(mPlugin->makeCondition(5, mEnded));
    auto* const clone = theirs->clone();
    EXPECT_EQ(dynamic_cast<rangeCondition*>(clone)->limit(), 5);
    EXPECT_EQ(dynamic_cast<rangeCondition*>(clone)->origin(), "plugin");
    mPlugin->deleteCondition(clone);
    EXPECT_EQ(mEnded, 1);
    mPlugin->deleteCondition(new hostCondition(6, mEnded));
    EXPECT_EQ(mEnded, 2);
}

// behaviour: BO-08
TEST_F(libraryBorders, sharedConditionsOfThePluginEndWithTheHostsValue) {
    genericSet set;
    set.setValue(L"Condition", zov::sharedPtr<condition>(mPlugin->makeCondition(5, mEnded)), false);
    zov::sharedPtr<condition>* held = nullptr;
    ASSERT_TRUE(set.getValuePtr(L"Condition", held));
    EXPECT_EQ(dynamic_cast<rangeCondition const&>(**held).limit(), 5);
    set.erase(scString::createFrom(L"Condition"));
    EXPECT_EQ(mEnded, 1);
}

// behaviour: BO-09
TEST_F(libraryBorders, aFunctionOfThePluginsIsHeldAsAValue) {
    genericValue const value(static_cast<zov::valueEqFunction>(&zov::tests::sampleEquality));
    zov::valueEqFunction read = nullptr;
    EXPECT_TRUE(value.getValue(read));
    EXPECT_EQ(read, &zov::tests::sampleEquality);
}

// ---- models

// behaviour: BO-10
TEST_F(libraryBorders, aModelOfThePluginIsReadAndLetGoByTheHost) {
    auto const model = mPlugin->makeModel();
    auto const width = model->fieldInfo(L"PART.Width", false);
    ASSERT_TRUE(width);
    EXPECT_EQ(zov::tests::entriesRead(width->typeAttribs()), sampleCount);
    EXPECT_EQ(refPtrCast<classInfo>(refPtr<refObj>(width->classInfo())), model->classInfo(L"part", false));
    model->tearDown();
    EXPECT_FALSE(width->classInfo());
    EXPECT_EQ(width->refCount(), 1u);
}

// behaviour: BO-10
TEST_F(libraryBorders, aModelOfTheHostIsFilledAndReadByThePlugin) {
    auto const model = modelInfo::createModelInfo(false);
    model->createClassInfo(L"Part", mPlugin->fillClass);
    EXPECT_EQ(mPlugin->countFieldsOf(model, L"PART"), 2);
    EXPECT_EQ(mPlugin->countFieldsOf(model, L"Supplier"), -1);
    std::vector<std::string> reports;
    mPlugin->takeOverReports(reports);
    EXPECT_THROW(mPlugin->addFieldAlias(model->fieldInfo(L"Part.width", false)), bool);
    mPlugin->giveBackBoth();
    EXPECT_EQ(reports.size(), 1u);
    model->tearDown();
}

} // namespace
