// What a host sees of relations and user properties when memory runs out: in each test the n-th allocation fails, for
// n = 0, 1, 2 ... until the scenario passes; once alone and once with all that follow; and once there are so many times
// 8 bytes of cells; without a log and with one.
// Leaks are the leak sanitizer's to find: every test frees all it makes.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <functional>
#include <string>
#include <vector>

#include "attempts.h"
#include "zovMetamodel.h"

#include "zovAssert.h"
#include "zovLog.h"

namespace {

using zov::const_refPtr;
using zov::genericSet;
using zov::genericValue;
using zov::refObj;
using zov::refPtr;
using zov::scString;
using zov::string;
using zov::metamodel::classInfo;
using zov::metamodel::eAgg;
using zov::metamodel::eInt;
using zov::metamodel::eSemCustom;
using zov::metamodel::eSemPrimkey;
using zov::metamodel::eSemRelation;
using zov::metamodel::fieldInfo;
using zov::metamodel::idInfo;
using zov::metamodel::modelInfo;
using zov::metamodel::relationInfo;
using zov::tests::attempt;
using zov::tests::attempted;
using zov::tests::attemptedIn;
using zov::tests::failureKind;
using zov::tests::failureKinds;
using zov::tests::nameOf;
using zov::tests::outcome;
using enum zov::tests::failureKind;
using enum zov::tests::outcome;

// ---- what a test may compare

template <class Owner>
std::string describedProperties(Owner const& owner) {
    std::string out;
    for (bool const inheritable : {false, true}) {
        owner->forEachUserProperty(
            inheritable,
            [&](scString const& name, genericValue const& value) {
                string text = L"?";
                value.getValue(text);
                out += inheritable ? " inheritable " : " private ";
                out += name.string().toUtf8() + "=" + text.toUtf8();
                return true;
            },
            false);
    }
    return out;
}

// All that may not change, the reference counts included: a lost reference is a changed state.
std::string described(refPtr<fieldInfo> const& field) {
    std::string out = "field " + field->scName().string().toUtf8() + " type=" + std::to_string(field->type());
    out += " semantic=" + std::to_string(field->semantic()) + " " + field->semanticString().string().toUtf8();
    out += field->isMandatory() ? " mandatory" : "";
    out += field->isUnique() ? " unique" : "";
    field->semanticAttribs().forEach(
        [&](scString const& key, genericValue const& value) {
            string text;
            value.getValue(text);
            out += " " + key.string().toUtf8() + "=" + text.toUtf8();
            return true;
        },
        false);
    return out + describedProperties(field) + " count=" + std::to_string(field->refCount()) + "\n";
}

std::string described(refPtr<relationInfo> const& relation) {
    std::string out = "relation " + relation->scName().string().toUtf8() + "/" +
                      relation->scReverseName().string().toUtf8() + " count=" + std::to_string(relation->refCount());
    std::size_t pairs = 0;
    relation->forEachFieldPair(
        [&](refPtr<fieldInfo> const& from, refPtr<fieldInfo> const& to) {
            out += " " + from->qualifiedName().toUtf8() + "=" + to->qualifiedName().toUtf8();
            return ++pairs > 0;
        },
        false);
    return out + "\n";
}

std::string described(refPtr<classInfo> const& type) {
    std::string out = "class " + type->scName().string().toUtf8() + describedProperties(type) +
                      " count=" + std::to_string(type->refCount()) + "\n";
    type->forEachFieldInfo(
        [&](refPtr<fieldInfo> const& field) {
            out += described(field);
            return true;
        },
        false);
    auto const add = [&](refPtr<relationInfo> const& relation) {
        out += described(relation);
        return true;
    };
    type->forEachToRelation(add, false);
    out += "arriving\n";
    type->forEachFromRelation(add, false);
    return out;
}

std::size_t countOf(refPtr<classInfo> const& type, bool leaving) {
    std::size_t count = 0;
    auto const add = [&](refPtr<relationInfo> const&) { return ++count > 0; };
    leaving ? type->forEachToRelation(add, false) : type->forEachFromRelation(add, false);
    return count;
}

// ---- scenarios

// A host that drops reports, and counts life lines without allocating.
class countingHost {
public:
    explicit countingHost(bool logging) {
        zov::setAssertHandler([this](string const&) { ++mReports; });
        zovlog::logManager::setSink([this](zovlog::logRecord const& line) {
            for (std::size_t kind = 0; kind < starts.size(); ++kind)
                if (line.message.starts_with(starts[kind])) ++mLines[kind];
        });
        zovlog::logManager::setLevel(logging ? zovlog::eLogTrace : zovlog::eLogOff);
    }
    ~countingHost() {
        zovlog::logManager::setLevel(zovlog::eLogOff);
        zovlog::logManager::setSink({});
        zov::setAssertHandler({});
    }
    countingHost(countingHost const&) = delete;
    countingHost& operator=(countingHost const&) = delete;

    enum lifeLine { eClassCreated, eClassReleased, eFieldCreated, eFieldReleased, eRelationCreated, eRelationReleased };

    int count(lifeLine kind) const { return mLines[kind]; }
    int reports() const { return mReports; }

private:
    static constexpr std::array<wchar_t const*, 6> starts{L"classInfo created",    L"classInfo released",
                                                          L"fieldInfo created",    L"fieldInfo released",
                                                          L"relationInfo created", L"relationInfo released"};

    std::array<int, 6> mLines{};
    int mReports = 0;
};

// Names that no iteration before has interned, so that interning is among what fails.
string freshName(wchar_t const* stem) {
    static unsigned long made = 0;
    return string(std::wstring(stem) + L"OfTheRelationFaultTests" + std::to_wstring(++made));
}

// One iteration of a scenario: two related classes with properties, the action on them, and their end.
class iteration {
public:
    iteration() {
        mBase = mModel->createClassInfo(L"Item");
        mOrder = mModel->createClassInfo(L"Order");
        mOrder->addBaseClass(mBase);
        mCustomer = mModel->createClassInfo(L"Customer");
        mFrom = addField(mOrder, L"customer");
        genericSet attribs;
        attribs.setValue(L"digits", 2, false);
        mFrom->setSemantic(eSemCustom, attribs, L"the colour of the customer");
        mBranch = addField(mOrder, L"branch");
        mId = addField(mCustomer, L"id");
        mOrder->createRelation(L"branch", false, mId, eAgg, L"known", L"known reverse");
        mOrder->createRelation(L"branch", false, mCustomer, eAgg, L"known to a class", L"");
        mBase->setUserProperty(L"inherited", L"a text that is longer than a short one", true);
        mOrder->setUserProperty(L"known", L"a text that is longer than a short one", false);
        mFrom->setUserProperty(L"known", L"a text that is longer than a short one", true);
    }
    iteration(iteration const&) = delete;
    iteration& operator=(iteration const&) = delete;
    virtual ~iteration() { mModel->tearDown(); }

    virtual bool act() = 0;

    // All that the action must not change when it fails.
    virtual std::string state() { return described(mOrder) + described(mCustomer) + described(mBase); }

    // Checked after each attempt.
    virtual void check(attempt const&) {}

protected:
    static refPtr<fieldInfo> addField(refPtr<classInfo> const& owner, wchar_t const* name) {
        return owner->createFieldInfo(name, eInt, genericSet(), L"");
    }

    refPtr<modelInfo> mModel = modelInfo::createModelInfo(false);
    refPtr<classInfo> mBase;
    refPtr<classInfo> mOrder;
    refPtr<classInfo> mCustomer;
    refPtr<fieldInfo> mFrom;
    refPtr<fieldInfo> mBranch;
    refPtr<fieldInfo> mId;
    string const mFromName = L"Customer";
    string const mNoText;
    string const mName = freshName(L"Name");
    string const mReverseName = freshName(L"Reverse");
    string const mText = freshName(L"Text");
};

// The loop over n. `failing` is the only way in which an attempt with a failed allocation may
// end, apart from having done its work all the same. What came has gone in the end, whatever failed.
template <class Iteration>
void everyAllocationFailing(outcome failing) {
    for (failureKind const kind : failureKinds) {
        for (bool const logging : {false, true}) {
            SCOPED_TRACE(nameOf(kind) + (logging ? ", with a log" : ", without a log"));
            std::size_t failures = 0;
            for (long passing = 0;; ++passing) {
                ASSERT_LT(passing, 5000) << "the scenario never passes";
                SCOPED_TRACE("allocation " + std::to_string(passing));
                countingHost const host(logging);
                attempt made{};
                {
                    Iteration world;
                    made = attemptedIn(world, passing, kind, failing);
                    if (made.ended != ePassed) ++failures;
                }
                EXPECT_EQ(host.reports(), 0);
                EXPECT_EQ(host.count(countingHost::eClassCreated), logging ? 3 : 0);
                if (!made.allocationFailed) {
                    EXPECT_EQ(host.count(countingHost::eRelationCreated), host.count(countingHost::eRelationReleased));
                    EXPECT_EQ(host.count(countingHost::eFieldCreated), host.count(countingHost::eFieldReleased));
                }
                EXPECT_EQ(host.count(countingHost::eClassCreated), host.count(countingHost::eClassReleased));
                if (testing::Test::HasFailure()) return;
                if (!made.allocationFailed) break;
            }
            EXPECT_TRUE(failures > 0 || kind == eCellBlocks) << "nothing failed, so nothing was tested";
        }
    }
}

// ---- creating relations

class relationIsCreated : public iteration {
public:
    void check(attempt const& made) override {
        std::size_t const all = made.ended == ePassed ? 3 : 2;
        EXPECT_EQ(countOf(mOrder, true), all);
        EXPECT_EQ(countOf(mCustomer, false), all);
        EXPECT_EQ(static_cast<bool>(mMade), made.ended == ePassed);
        EXPECT_EQ(mFrom->semantic(), made.ended == ePassed ? eSemRelation : eSemCustom);
        EXPECT_EQ(mFrom->semanticString().string(), L"the colour of the customer");
        EXPECT_EQ(mFrom->semanticAttribs().size(), made.ended == ePassed ? 0u : 1u);
        if (mMade) {
            EXPECT_EQ(mMade->refCount(), 3u);
            EXPECT_EQ(mMade->firstFromFieldInfo(), mFrom);
            EXPECT_EQ(mMade->toClassInfo(), mCustomer);
        }
    }

protected:
    refPtr<relationInfo> mMade;
};

class relationToAClassIsCreated : public relationIsCreated {
public:
    bool act() override {
        mMade = mOrder->createRelation(mFromName, false, mCustomer, eAgg, mName, mReverseName);
        return static_cast<bool>(mMade);
    }
};

TEST(faultsOfRelations, comeWithCellsAsWell) {
    EXPECT_TRUE(zov::tests::cellsRunOut());
}

// behaviour: CR-16
TEST(faultsOfRelations, createRelationToAClassYieldsAnEmptyPointer) {
    everyAllocationFailing<relationToAClassIsCreated>(eNull);
}

class relationToAFieldIsCreated : public relationIsCreated {
public:
    bool act() override {
        mMade = mOrder->createRelation(mFromName, false, mId, eAgg, mName, mReverseName);
        return static_cast<bool>(mMade);
    }
};

// behaviour: CR-16
TEST(faultsOfRelations, createRelationToAFieldYieldsAnEmptyPointer) {
    everyAllocationFailing<relationToAFieldIsCreated>(eNull);
}

class relationWithoutNamesIsCreated : public relationIsCreated {
public:
    bool act() override {
        mMade = mOrder->createRelation(mFromName, true, mId, eAgg, mNoText, mNoText);
        return static_cast<bool>(mMade);
    }
};

// behaviour: CR-16
TEST(faultsOfRelations, createRelationWithoutNamesYieldsAnEmptyPointer) {
    everyAllocationFailing<relationWithoutNamesIsCreated>(eNull);
}

// A key among the from fields: also its flags and its place in the id set are as before.
class keyIsRelated : public iteration {
public:
    keyIsRelated() {
        mFrom->setMandatory(false);
        mFrom->setSemantic(eSemPrimkey, genericSet(), L"");
        mFrom->setUnique(false);
    }
    bool act() override { return static_cast<bool>(mOrder->createRelation(mFromName, false, mId, eAgg, mName, mName)); }
    void check(attempt const& made) override {
        std::vector<refPtr<fieldInfo>> keys;
        mOrder->getIdFieldInfos(keys);
        EXPECT_EQ(keys.size(), made.ended == ePassed ? 0u : 1u);
        EXPECT_TRUE(mFrom->isMandatory());
        EXPECT_FALSE(mFrom->isUnique());
    }
};

// behaviour: CR-16
TEST(faultsOfRelations, aKeyStaysOneWhenItsRelationIsNotCreated) {
    everyAllocationFailing<keyIsRelated>(eNull);
}

// A field that stands for a key: the class's id set, which the relation's semantic would drop, stays the same object.
class standingKeyIsRelated : public iteration {
public:
    standingKeyIsRelated() {
        addField(mBase, L"number")->setSemantic(eSemPrimkey, genericSet(), L"");
        mOrder->createFieldInfo(mBase, mKeyName);
        mKeys = mOrder->idInfo();
    }
    // No relation arrives there yet, so that filing this one needs memory.
    bool act() override {
        return static_cast<bool>(mOrder->createRelation(mKeyName, false, mBase, eAgg, mName, mName));
    }
    void check(attempt const& made) override { EXPECT_EQ(mOrder->idInfo() == mKeys, made.ended != ePassed); }

private:
    string const mKeyName = L"number";
    refPtr<idInfo> mKeys;
};

// behaviour: CR-16
TEST(faultsOfRelations, theIdSetOfAStandingKeyIsTheSameWhenItsRelationIsNotCreated) {
    everyAllocationFailing<standingKeyIsRelated>(eNull);
}

class relationToItsOwnClassIsCreated : public iteration {
public:
    bool act() override {
        return static_cast<bool>(mOrder->createRelation(mFromName, false, mOrder, eAgg, mName, mReverseName));
    }
    void check(attempt const& made) override {
        EXPECT_EQ(countOf(mOrder, true), made.ended == ePassed ? 3u : 2u);
        EXPECT_EQ(countOf(mOrder, false), made.ended == ePassed ? 1u : 0u);
    }
};

// behaviour: CR-16
TEST(faultsOfRelations, createRelationToItsOwnClassYieldsAnEmptyPointer) {
    everyAllocationFailing<relationToItsOwnClassIsCreated>(eNull);
}

// After a failure the same call goes through.
class relationIsCreatedAgain : public relationToAClassIsCreated {
public:
    void check(attempt const& made) override {
        relationToAClassIsCreated::check(made);
        if (made.ended == ePassed) return;
        EXPECT_TRUE(act());
        relationToAClassIsCreated::check({ePassed, false});
        EXPECT_EQ(mOrder->toRelation(mName, false), mMade);
    }
};

// behaviour: CR-16
TEST(faultsOfRelations, aRelationThatWasNotCreatedMayBeCreatedAgain) {
    everyAllocationFailing<relationIsCreatedAgain>(eNull);
}

// A tear-down that follows a failure frees all the same.
class modelIsTornDownAfterAFailure : public relationToAClassIsCreated {
public:
    void check(attempt const& made) override {
        relationToAClassIsCreated::check(made);
        mMade.reset();
        mModel->tearDown();
        EXPECT_EQ(mOrder->refCount(), 1u);
        EXPECT_EQ(mCustomer->refCount(), 1u);
        EXPECT_EQ(mFrom->refCount(), 1u);
        EXPECT_EQ(mId->refCount(), 1u);
    }
};

// behaviour: GT-13
TEST(faultsOfRelations, aTearDownAfterAFailureFreesAll) {
    everyAllocationFailing<modelIsTornDownAfterAFailure>(eNull);
}

// A field that is made comes and goes in the log also when the relation around it fails.
// behaviour: CR-16
TEST(faultsOfRelations, aPointerFieldOfARelationThatFailedIsFreed) {
    bool sawFieldInVain = false;
    for (long passing = 0;; ++passing) {
        SCOPED_TRACE("allocation " + std::to_string(passing));
        countingHost const host(true);
        attempt made{};
        {
            relationToAClassIsCreated world;
            int const before = host.count(countingHost::eFieldCreated);
            made = attempted(passing, eOneAllocation, [&] { return world.act(); });
            sawFieldInVain =
                sawFieldInVain || (made.ended == eNull && host.count(countingHost::eFieldCreated) > before);
        }
        EXPECT_EQ(host.count(countingHost::eFieldReleased), host.count(countingHost::eFieldCreated));
        EXPECT_LE(host.count(countingHost::eRelationReleased), host.count(countingHost::eRelationCreated));
        if (HasFailure() || !made.allocationFailed) break;
    }
    EXPECT_TRUE(sawFieldInVain);
}

class pairIsAdded : public iteration {
public:
    pairIsAdded() : mRelation(mOrder->createRelation(L"branch", false, mId, eAgg, L"", L"")) {}
    bool act() override { return mRelation->addFieldRelation(mFrom, mId); }
    void check(attempt const& made) override {
        EXPECT_EQ(mRelation->toFieldInfo(mFrom) == mId, made.ended == ePassed);
        EXPECT_EQ(mFrom->semantic(), eSemCustom);
    }

private:
    refPtr<relationInfo> mRelation;
};

// behaviour: RI-19
TEST(faultsOfRelations, addFieldRelationThrowsBadAlloc) {
    everyAllocationFailing<pairIsAdded>(eThrewBadAlloc);
}

// What `action` allocates.
template <class Action>
std::size_t allocationsOf(Action const& action) {
    auto const before = zov::tests::allocationsMade;
    action();
    return zov::tests::allocationsMade - before;
}

// A world whose action is of no interest.
class plainWorld : public iteration {
public:
    bool act() override { return true; }
    refPtr<modelInfo> const& model() const { return mModel; }
    refPtr<classInfo> const& order() const { return mOrder; }
    refPtr<classInfo> const& customer() const { return mCustomer; }
    refPtr<fieldInfo> const& branch() const { return mBranch; }
    refPtr<fieldInfo> const& id() const { return mId; }
};

// behaviour: CR-18
TEST(faultsOfRelations, findingRelationsAndTheirFieldsAllocatesNothing) {
    plainWorld const world;
    string const known = L"known";
    string const unknown = L"a relation that is not there, with a name that is longer than a short one";
    string const fromName = L"branch";
    bool right = true;
    std::size_t seen = 0;
    std::function<bool(refPtr<relationInfo>)> const visit = [&](refPtr<relationInfo> const&) { return ++seen > 0; };
    EXPECT_EQ(allocationsOf([&] {
                  auto const relation = world.order()->toRelation(known, true);
                  right = right && relation && !world.order()->toRelation(unknown, true);
                  right = right && relation->toFieldInfo(world.branch()) == world.id();
                  right = right && relation->fromFieldInfo(world.id()) == world.branch();
                  right = right && relation->toClassInfo() == world.customer();
                  right = right && world.order()->forEachToRelation(visit, true);
                  right = right && world.customer()->forEachFromRelation(visit, true);
              }),
              0u);
    EXPECT_TRUE(right);
    EXPECT_EQ(seen, 4u);
    EXPECT_FALSE(scString::find(unknown));
}

// behaviour: GT-13
TEST(faultsOfRelations, tearDownAllocatesNothing) {
    plainWorld const world;
    EXPECT_EQ(allocationsOf([&] { world.order()->tearDown(); }), 0u);
    EXPECT_EQ(allocationsOf([&] { world.model()->tearDown(); }), 0u);
    EXPECT_EQ(allocationsOf([&] { world.model()->tearDown(); }), 0u);
    EXPECT_EQ(world.customer()->refCount(), 1u);
}

// behaviour: GT-13
TEST(faultsOfRelations, tearDownWorksWhileEveryAllocationFails) {
    for (bool const logging : {false, true}) {
        countingHost const host(logging);
        {
            plainWorld const world;
            auto const made = attempted(0, eAllAllocations, [&] {
                world.model()->tearDown();
                return true;
            });
            EXPECT_EQ(made.ended, ePassed);
            EXPECT_EQ(world.order()->refCount(), 1u);
            EXPECT_EQ(world.id()->refCount(), 1u);
        }
        EXPECT_EQ(host.reports(), 0);
    }
}

// ---- user properties

template <bool ofClass, bool inheritable, bool replacing>
class textIsSet : public iteration {
public:
    bool act() override {
        string const& name = replacing ? mKnown : mName;
        ofClass ? mOrder->setUserProperty(name, mText, inheritable) : mFrom->setUserProperty(name, mText, inheritable);
        return true;
    }
    void check(attempt const& made) override {
        if (made.ended != ePassed) return;
        string text;
        string const& name = replacing ? mKnown : mName;
        EXPECT_TRUE(ofClass ? mOrder->getUserProperty(name, text, true) : mFrom->getUserProperty(name, text, true));
        EXPECT_EQ(text, mText);
    }

private:
    string const mKnown = L"known";
};

// behaviour: UP-16
TEST(faultsOfUserProperties, settingANewTextThrowsBadAlloc) {
    everyAllocationFailing<textIsSet<true, false, false>>(eThrewBadAlloc);
    everyAllocationFailing<textIsSet<true, true, false>>(eThrewBadAlloc);
    everyAllocationFailing<textIsSet<false, false, false>>(eThrewBadAlloc);
    everyAllocationFailing<textIsSet<false, true, false>>(eThrewBadAlloc);
}

// behaviour: UP-16
TEST(faultsOfUserProperties, replacingATextThrowsBadAllocAndKeepsTheFormer) {
    everyAllocationFailing<textIsSet<true, false, true>>(eThrewBadAlloc);
    everyAllocationFailing<textIsSet<false, true, true>>(eThrewBadAlloc);
}

template <bool ofClass>
class objectIsSet : public iteration {
public:
    bool act() override {
        ofClass ? mOrder->setUserProperty(mName, mObject, true) : mFrom->setUserProperty(mName, mObject, true);
        return true;
    }
    void check(attempt const& made) override {
        EXPECT_EQ(mId->refCount(), made.ended == ePassed ? mCount + 1 : mCount);
        refPtr<refObj> found;
        EXPECT_EQ(ofClass ? mOrder->getUserProperty(mName, found, false) : mFrom->getUserProperty(mName, found, false),
                  made.ended == ePassed);
    }

private:
    refPtr<refObj> const mObject{mId};
    std::uint32_t const mCount = mId->refCount();
};

// behaviour: UP-16
TEST(faultsOfUserProperties, settingAnObjectThrowsBadAlloc) {
    everyAllocationFailing<objectIsSet<true>>(eThrewBadAlloc);
    everyAllocationFailing<objectIsSet<false>>(eThrewBadAlloc);
}

template <bool ofClass>
class valueIsSet : public iteration {
public:
    bool act() override {
        ofClass ? mOrder->setUserProperty(mName, mValue, false) : mFrom->setUserProperty(mName, mValue, false);
        return true;
    }

private:
    genericValue const mValue{42};
};

// behaviour: UP-16
TEST(faultsOfUserProperties, settingAValueThrowsBadAlloc) {
    everyAllocationFailing<valueIsSet<true>>(eThrewBadAlloc);
    everyAllocationFailing<valueIsSet<false>>(eThrewBadAlloc);
}

// Reads into a value of its own, which is as before when the reading fails.
template <class Value, bool ofClass>
class propertyIsRead : public iteration {
public:
    bool act() override {
        return ofClass ? mOrder->getUserProperty(mInherited, mRead, true) : mFrom->getUserProperty(mKnown, mRead, true);
    }
    std::string state() override { return iteration::state() + shown(); }
    void check(attempt const& made) override {
        if (made.ended == ePassed) {
            EXPECT_EQ(shown(), "a text that is longer than a short one");
        }
    }

private:
    std::string shown() {
        string text;
        if constexpr (std::is_same_v<Value, string>) {
            text = mRead;
        } else {
            mRead.getValue(text);
        }
        return text.toUtf8();
    }

    string const mInherited = L"inherited";
    string const mKnown = L"known";
    Value mRead{Value(string(L"before"))};
};

// behaviour: UP-16
TEST(faultsOfUserProperties, readingATextThrowsBadAlloc) {
    everyAllocationFailing<propertyIsRead<string, true>>(eThrewBadAlloc);
    everyAllocationFailing<propertyIsRead<string, false>>(eThrewBadAlloc);
}

// behaviour: UP-16
TEST(faultsOfUserProperties, readingAValueThrowsBadAlloc) {
    everyAllocationFailing<propertyIsRead<genericValue, true>>(eThrewBadAlloc);
    everyAllocationFailing<propertyIsRead<genericValue, false>>(eThrewBadAlloc);
}

// behaviour: UP-16
TEST(faultsOfUserProperties, readingObjectsAndUnknownNamesAllocatesNothing) {
    plainWorld const world;
    string const known = L"note";
    string const unknown = L"a property that is not there, with a name that is longer than a short one";
    world.order()->setUserProperty(known, refPtr<refObj>(world.id()), true);
    bool right = true;
    EXPECT_EQ(allocationsOf([&] {
                  refPtr<refObj> object;
                  const_refPtr<refObj> readOnly;
                  string text;
                  genericValue value;
                  right = right && world.order()->getUserProperty(known, object, true);
                  right = right && world.order()->getUserProperty(known, readOnly, true);
                  right = right && !world.order()->getUserProperty(unknown, object, true);
                  right = right && !world.order()->getUserProperty(unknown, text, true);
                  right = right && !world.branch()->getUserProperty(unknown, value, true);
              }),
              0u);
    EXPECT_TRUE(right);
    EXPECT_FALSE(scString::find(unknown));
}

class fieldWithPropertiesIsCopied : public iteration {
public:
    fieldWithPropertiesIsCopied() {
        mFrom->setUserProperty(L"object", refPtr<refObj>(mId), false);
        mFrom->setUserProperty(L"number", genericValue(42), true);
    }
    bool act() override { return static_cast<bool>(mCustomer->copyFieldInfoFrom(mFrom, mPrefix.c_str())); }
    void check(attempt const& made) override {
        auto const copy = mCustomer->fieldInfo(mPrefix + L"customer", false, false);
        EXPECT_EQ(static_cast<bool>(copy), made.ended == ePassed);
        if (!copy) return;
        EXPECT_EQ(describedProperties(copy), describedProperties(mFrom));
    }

private:
    string const mPrefix = freshName(L"p").lower();
};

// behaviour: UP-17
TEST(faultsOfUserProperties, copyingAFieldThatHasThemThrowsFalse) {
    everyAllocationFailing<fieldWithPropertiesIsCopied>(eThrewFalse);
}

class fieldsWithPropertiesAreCopied : public iteration {
public:
    bool act() override { return mCustomer->copyInfosFrom(mOrder, mPrefix.c_str()); }
    void check(attempt const& made) override { EXPECT_EQ(mCustomer->countFields(), made.ended == ePassed ? 3u : 1u); }

private:
    string const mPrefix = freshName(L"p").lower();
};

// behaviour: UP-17
TEST(faultsOfUserProperties, copyingAllFieldsCopiesAllOrNone) {
    everyAllocationFailing<fieldsWithPropertiesAreCopied>(eThrewFalse);
}

} // namespace
