// Reading needs no memory: every lookup that finds or misses, and every walk, while each allocation would fail; in
// models of any size, and as the first thing that a thread ever does.
#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "failingAllocations.h"
#include "numbered.h"
#include "zovMetamodel.h"

namespace {

using zov::const_refPtr;
using zov::genericSet;
using zov::refObj;
using zov::refPtr;
using zov::scString;
using zov::string;
using zov::metamodel::classInfo;
using zov::metamodel::eInt;
using zov::metamodel::eRef;
using zov::metamodel::eSemPrimkey;
using zov::metamodel::fieldInfo;
using zov::metamodel::idInfo;
using zov::metamodel::modelInfo;
using zov::metamodel::relationInfo;
using zov::tests::addField;
using zov::tests::failingAllocations;
using zov::tests::numbered;

// How often a check failed, counted without allocating while nothing may be allocated.
class silentChecks {
public:
    void check(bool holds, int line = __builtin_LINE()) noexcept {
        ++mMade;
        if (!holds && mFailed++ == 0) mFirstLine = line;
    }
    void report() const {
        EXPECT_GT(mMade, 0);
        EXPECT_EQ(mFailed, 0) << "the first in line " << mFirstLine;
    }

private:
    int mMade = 0;
    int mFailed = 0;
    int mFirstLine = 0;
};

// Runs the action while every allocation of this thread fails; none may even be tried.
template <class Action>
void withoutMemory(Action const& action) {
    silentChecks checks;
    bool threw = false;
    auto const before = zov::tests::allocationsMade;
    {
        failingAllocations const armed(0);
        try {
            action(checks);
        } catch (...) {
            threw = true;
        }
    }
    EXPECT_EQ(zov::tests::allocationsMade - before, 0u);
    EXPECT_FALSE(threw);
    checks.report();
}

// A model of many classes, each with bases, aliases, fields and relations, and all the texts to ask for.
class readWithoutMemory : public testing::TestWithParam<int> {
protected:
    readWithoutMemory() {
        mBase = mModel->createClassInfo(L"A base of all that the workshop has");
        addField(mBase, L"The number of the item");
        mBase->createRelation(L"The number of the item", false, mBase, eRef, L"inherited relation", L"");
        mBase->setUserProperty(L"object", refPtr<refObj>(mBase), true);
        for (int at = 0; at < GetParam(); ++at)
            fill(mModel->createClassInfo(numbered(L"A part of the workshop ", at)), at);
        mPart = mModel->classInfo(L"A part of the workshop 0", false);
        mField = mPart->fieldInfo(L"A field of the part 0", false, false);
        mStanding = mPart->createFieldInfo(mBase, L"The number of the item");
        mField->setSemantic(eSemPrimkey, genericSet(), L"");
        mId = mPart->idInfo();
        mRelation = mPart->toRelation(L"own relation 0", false);
    }
    ~readWithoutMemory() override {
        mBase->setUserProperty(L"object", refPtr<refObj>(), true);
        mModel->tearDown();
    }

    void fill(refPtr<classInfo> const& made, int number) {
        made->addBaseClass(mBase);
        made->addAliasname(numbered(L"another name of the part ", number));
        made->addAliasname(L"an alias of all");
        made->addAliasname(L"an alias that was taken away");
        made->removeAliasname(L"an alias that was taken away");
        for (int at = 0; at < GetParam(); ++at) {
            addField(made, numbered(L"A field of the part ", at));
            made->createRelation(numbered(L"A field of the part ", at), false, mBase, eRef,
                                 numbered(L"own relation ", at), L"");
        }
    }

    // Every way to ask for something, for what is there and for what is not.
    void read(silentChecks& checks) {
        lookUpClasses(checks);
        lookUpFields(checks);
        lookUpRelations(checks);
        readFacts(checks);
        walk(checks);
    }

    void lookUpClasses(silentChecks& checks) {
        modelInfo const& readOnly = *mModel;
        checks.check(mModel->classInfo(mClassName, false) == mPart);
        checks.check(mModel->classInfo(mClassName, true) == mPart);
        checks.check(readOnly.classInfo(mClassName, true) == mPart);
        checks.check(mModel->classInfo(mAlias, true) == mPart);
        checks.check(!mModel->classInfo(mAlias, false));
        checks.check(static_cast<bool>(mModel->classInfo(mSharedAlias, true)));
        checks.check(mModel->getOrCreateClassInfo(mClassName) == mPart);
        for (string const* name : {&mUnknown, &mLong, &mEmpty, &mFormerAlias, &mFieldName, &mQualified}) {
            checks.check(!mModel->classInfo(*name, true));
            checks.check(!readOnly.classInfo(*name, false));
        }
    }

    void lookUpFields(silentChecks& checks) {
        modelInfo const& readOnly = *mModel;
        classInfo const& readOnlyPart = *mPart;
        checks.check(mModel->fieldInfo(mClassName, mFieldName, false) == mField);
        checks.check(mModel->fieldInfo(mAlias, mFieldName, true) == mField);
        checks.check(readOnly.fieldInfo(mQualified, false) == mField);
        checks.check(mModel->fieldInfo(mClassName, mInherited, true) == mStanding);
        checks.check(readOnlyPart.fieldInfo(mInherited, true, true) == mStanding);
        checks.check(createAgain() == mField);
        for (bool const bases : {false, true}) {
            for (bool const aliases : {false, true}) {
                checks.check(mPart->fieldInfo(mFieldName, bases, aliases) == mField);
                for (string const* name : {&mUnknown, &mLong, &mEmpty, &mAlias, &mClassName, &mRelationName})
                    checks.check(!mPart->fieldInfo(*name, bases, aliases));
            }
        }
        for (string const* name : {&mUnknown, &mLong, &mEmpty, &mFormerAlias}) {
            checks.check(!mModel->fieldInfo(mClassName, *name, true) && !mModel->fieldInfo(*name, mFieldName, true));
            checks.check(!mModel->fieldInfo(*name, true) && !readOnly.fieldInfo(*name, *name, false));
        }
    }

    // A field that is there already; the arguments are made before.
    refPtr<fieldInfo> createAgain() { return mPart->createFieldInfo(mFieldName, eInt, mNoAttributes, mEmpty); }

    void lookUpRelations(silentChecks& checks) {
        for (bool const bases : {false, true}) {
            checks.check(mPart->toRelation(mRelationName, bases) == mRelation);
            checks.check(bool(mPart->toRelation(mInheritedRelation, bases)) == bases);
            for (string const* name : {&mUnknown, &mLong, &mEmpty, &mFieldName})
                checks.check(!mPart->toRelation(*name, bases));
        }
        checks.check(mRelation->firstFromFieldInfo() == mField);
        checks.check(mRelation->fromClassInfo() == mPart && mRelation->toClassInfo() == mBase);
        auto const to = mRelation->toFieldInfo(mField);
        checks.check(mRelation->fromFieldInfo(to) == mField && !mRelation->toFieldInfo(mStanding));
    }

    void readFacts(silentChecks& checks) {
        checks.check(mField->classInfo() == mPart && mStanding->baseField()->classInfo() == mBase);
        checks.check(mStanding->scName() == mStanding->baseField()->scName());
        checks.check(mField->type() == eInt && mStanding->type() == eInt);
        checks.check(mPart->idInfo() == mId && mId->classInfo() == mPart && mId->isEqualTo(mId.get()));
        checks.check(mPart->isDerivedFrom(mBase) && !mPart->isDerivedFrom(mPart) && !mBase->isBaseOf(mPart));
        checks.check(mPart->countFields() == static_cast<std::size_t>(GetParam()) + 1);
        checks.check(mModel->countClasses() == static_cast<std::size_t>(GetParam()) + 1);
        checks.check(mPart->hasAliasname(mAliasHandle) && !mBase->hasAliasname(mAliasHandle));
        refPtr<refObj> object;
        checks.check(mPart->getUserProperty(mObjectName, object, true) && object.get() == mBase.get());
        checks.check(!mPart->getUserProperty(mUnknown, object, true));
    }

    // The functions are made before, with the walks inside of one another.
    void walk(silentChecks& checks) {
        auto const count = static_cast<std::size_t>(GetParam());
        mSeen = 0;
        checks.check(mModel->forEachClassInfo(mVisitClass, true));
        checks.check(mSeen == count * count + 2);
        mSeen = 0;
        checks.check(mPart->forEachToRelation(mVisitRelation, true) && mSeen == count);
        checks.check(mBase->forEachFromRelation(mVisitRelation, false) && mSeen == count + count * count + 1);
        checks.check(mId->forEachFieldInfo(mVisitField, true));
        checks.check(mPart->forEachDerivedClass(mVisitClass, true));
    }

    refPtr<modelInfo> const mModel = modelInfo::createModelInfo(false);
    refPtr<classInfo> mBase;
    refPtr<classInfo> mPart;
    refPtr<fieldInfo> mField;
    refPtr<fieldInfo> mStanding;
    refPtr<idInfo> mId;
    const_refPtr<relationInfo> mRelation;

    string const mClassName = L"A PART of the Workshop 0";
    string const mAlias = L"Another Name of the part 0";
    string const mSharedAlias = L"AN ALIAS OF ALL";
    string const mFormerAlias = L"an alias that was taken away";
    string const mFieldName = L"a FIELD of the part 0";
    string const mInherited = L"the NUMBER of the item";
    string const mQualified = mClassName + L"." + mFieldName;
    string const mRelationName = L"own relation 0";
    string const mInheritedRelation = L"inherited relation";
    string const mObjectName = L"object";
    string const mUnknown = L"A name that nobody ever gave to anything in these tests";
    string const mLong = string(std::wstring(5000, L'\u00c9'));
    string const mEmpty;
    genericSet const mNoAttributes;
    scString const mAliasHandle = scString::createFrom(L"another name of the part 0");
    std::size_t mSeen = 0;
    std::function<bool(refPtr<fieldInfo>)> const mVisitField = [this](refPtr<fieldInfo> const& field) {
        ++mSeen;
        return field->type() == eInt;
    };
    std::function<bool(refPtr<relationInfo>)> const mVisitRelation = [this](refPtr<relationInfo> const& relation) {
        ++mSeen;
        return relation->type() == eRef;
    };
    std::function<bool(classInfo::entry const&)> const mVisitBase = [](classInfo::entry const& entry) {
        return entry.first == entry.second->scName();
    };
    std::function<bool(classInfo::entry const&)> const mVisitClass = [this](classInfo::entry const& entry) {
        return entry.second->forEachFieldInfo(mVisitField, true) && entry.second->forEachBaseClass(mVisitBase, true);
    };
};

INSTANTIATE_TEST_SUITE_P(ofAnySize, readWithoutMemory, testing::Values(1, 2, 6, 7, 13, 40));

// behaviour: AF-15, AF-16, AF-19, AF-20, CR-18, MR-14
TEST_P(readWithoutMemory, findsMissesAndWalks) {
    withoutMemory([&](silentChecks& checks) { read(checks); });
}

// behaviour: AF-15, AF-16, AF-20, CR-18, MR-14
TEST_P(readWithoutMemory, isTheFirstThingThatAThreadDoes) {
    for (int times = 0; times < 3; ++times)
        std::thread([&] { withoutMemory([&](silentChecks& checks) { read(checks); }); }).join();
}

// More threads than any table of readers can have had room for at first, all of them new.
// behaviour: AF-16, AF-20, MR-14
TEST_P(readWithoutMemory, isTheFirstThingThatManyThreadsDoAtOnce) {
    std::vector<std::thread> threads;
    for (int at = 0; at < 80; ++at) {
        threads.emplace_back([&] {
            withoutMemory([&](silentChecks& checks) {
                for (int times = 0; times < 20; ++times)
                    lookUpClasses(checks);
            });
        });
    }
    for (auto& thread : threads)
        thread.join();
}

// behaviour: AF-16, AF-19
TEST_P(readWithoutMemory, goesOnInsideAWalkThatTearsDown) {
    std::size_t visits = 0;
    std::function<bool(refPtr<fieldInfo>)> const visit = [&](refPtr<fieldInfo> const& field) {
        if (++visits == 1) mModel->tearDown();
        return !field->classInfo() && !mModel->classInfo(mClassName, true) && !mPart->fieldInfo(mFieldName, true, true);
    };
    withoutMemory([&](silentChecks& checks) { checks.check(mPart->forEachFieldInfo(visit, true)); });
    EXPECT_EQ(visits, static_cast<std::size_t>(GetParam()) + 1);
}

// behaviour: AF-18
TEST_P(readWithoutMemory, leavesTearDownWithoutNeedOfMemory) {
    withoutMemory([&](silentChecks& checks) {
        mPart->tearDown();
        checks.check(mPart->countFields() == 0);
        mModel->tearDown();
        mModel->tearDown();
        checks.check(mModel->countClasses() == 0 && !mModel->classInfo(mAlias, true));
    });
}

// A lattice of layers of some classes each, with what is looked for at the top.
class latticeWithoutMemory {
public:
    explicit latticeWithoutMemory(int depth, int width = 3) {
        addTo(mTop);
        std::vector<refPtr<classInfo>> above{mTop};
        for (int layer = 0; layer < depth; ++layer) {
            std::vector<refPtr<classInfo>> here;
            for (int at = 0; at < width; ++at) {
                here.push_back(mModel->createClassInfo(numbered(L"latticed", layer * width + at)));
                for (auto const& base : above)
                    here.back()->addBaseClass(base);
            }
            above = here;
        }
        for (auto const& base : above)
            mBottom->addBaseClass(base);
    }
    ~latticeWithoutMemory() { mModel->tearDown(); }
    latticeWithoutMemory(latticeWithoutMemory const&) = delete;
    latticeWithoutMemory& operator=(latticeWithoutMemory const&) = delete;

    void expectSearched() const {
        withoutMemory([&](silentChecks& checks) { search(checks); });
    }

    // The same while every allocation is refused, where a search asks for one.
    void expectSearchedThoughMemoryIsRefused() const {
        silentChecks checks;
        bool wasRefused = false;
        {
            failingAllocations const armed(0);
            search(checks);
            wasRefused = zov::tests::hasFailed;
        }
        EXPECT_TRUE(wasRefused);
        checks.report();
    }

private:
    void search(silentChecks& checks) const {
        checks.check(mBottom->fieldInfo(mKnown, true, true) == mTop->fieldInfo(mKnown, false, false));
        checks.check(mBottom->toRelation(mKnown, true) == mTop->toRelation(mKnown, false));
        checks.check(!mBottom->fieldInfo(mUnknown, true, true) && !mBottom->toRelation(mUnknown, true));
        checks.check(mBottom->isDerivedFrom(mTop) && !mBottom->isDerivedFrom(mApart));
        refPtr<refObj> object;
        checks.check(mBottom->getUserProperty(mKnown, object, true) && !object);
        checks.check(!mBottom->getUserProperty(mUnknown, object, true));
    }

    static void addTo(refPtr<classInfo> const& owner) {
        owner->createFieldInfo(L"known", eInt, genericSet(), L"");
        owner->createRelation(L"known", false, owner, eRef, L"", L"");
        owner->setUserProperty(L"known", refPtr<refObj>(), true);
    }

    refPtr<modelInfo> const mModel = modelInfo::createModelInfo(false);
    refPtr<classInfo> const mTop = mModel->createClassInfo(L"top");
    refPtr<classInfo> const mBottom = mModel->createClassInfo(L"bottom");
    refPtr<classInfo> const mApart = mModel->createClassInfo(L"apart");
    string const mKnown = L"known";
    string const mUnknown = L"unknown";
};

// behaviour: AF-16, AF-20, CI-08, CR-18, UP-16
TEST(latticesWithoutMemory, areSearchedWhole) {
    for (int const depth : {1, 2, 3, 7})
        latticeWithoutMemory(depth).expectSearched();
    latticeWithoutMemory(1, 400).expectSearched();
    latticeWithoutMemory(2, 40).expectSearched();
    latticeWithoutMemory(300, 1).expectSearched();
}

// behaviour: AF-20, CI-13
TEST(latticesWithoutMemory, ofAThousandBasesAreSearchedWholeThoughMemoryIsRefused) {
    latticeWithoutMemory(1, 1000).expectSearchedThoughMemoryIsRefused();
}

// There are 3 to the 40th ways to the top: a search remembers where it has been, and needs no memory for it either.
// behaviour: AF-16, AF-20, CI-08, CI-13, CR-18, UP-16
TEST(deepLatticesWithoutMemory, areSearchedInNoTime) {
    latticeWithoutMemory const deep(40);
    deep.expectSearched();
}

// behaviour: AF-16, AF-20, CI-08, CI-13
TEST(deepLatticesWithoutMemory, areSearchedInNoTimeAsTheFirstThingThatAThreadDoes) {
    latticeWithoutMemory const deep(40);
    std::thread([&] { deep.expectSearched(); }).join();
}

} // namespace
