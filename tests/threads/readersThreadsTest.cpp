// Readers wait for nobody, and nobody waits for a reader: lookups go on while other threads hold whatever they may
// hold, and writers do all they do while a walk is open.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>
#include <future>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "numbered.h"
#include "threadedRuns.h"
#include "zovMetamodel.h"
#include "zovRefPtr.h"
#include "zovSharedPtr.h"

namespace {

using zov::refPtr;
using zov::string;
using zov::metamodel::classInfo;
using zov::metamodel::eRef;
using zov::metamodel::fieldInfo;
using zov::metamodel::modelInfo;
using zov::tests::addField;
using zov::tests::numbered;
using zov::tests::runTogether;
using zov::tests::violations;

constexpr std::chrono::seconds patience{20};

// What another thread does, and whether it has done it in time. The thread ends before the object does.
class anotherThread {
public:
    explicit anotherThread(std::function<void()> action)
        : mThread([this, action = std::move(action)] {
              action();
              mDone.set_value();
          }) {}
    ~anotherThread() { mThread.join(); }
    anotherThread(anotherThread const&) = delete;
    anotherThread& operator=(anotherThread const&) = delete;

    bool isDone() { return mDone.get_future().wait_for(patience) == std::future_status::ready; }

private:
    std::promise<void> mDone;
    std::thread mThread;
};

// A model that is large enough for its containers to have grown, and all ways to read it.
class readersThatNeverWait : public testing::Test {
protected:
    readersThatNeverWait() {
        addField(mBase, L"number");
        mPart->addBaseClass(mBase);
        mPart->addAliasname(L"component");
        for (int at = 0; at < 30; ++at) {
            mModel->createClassInfo(numbered(L"class", at))->addAliasname(numbered(L"alias", at));
            addField(mPart, numbered(L"field", at));
            mPart->createRelation(numbered(L"field", at), false, mBase, eRef, L"", L"");
        }
        addField(mPart, L"width");
        mModel->setAddProp(L"owner", L"the workshop");
    }
    ~readersThatNeverWait() override { mModel->tearDown(); }

    void lookUpAndReadValues() {
        lookUp();
        readDefault();
    }

    // Nothing here assigns to a pointer: that is an exchange, for which pointers may have to wait.
    void lookUp() {
        mViolations.check(mModel->classInfo(L"PART", false) == mPart);
        mViolations.check(mModel->classInfo(L"Component", true) == mPart);
        mViolations.check(static_cast<bool>(mModel->classInfo(L"alias17", true)));
        mViolations.check(!mModel->classInfo(L"unknown", true));
        mViolations.check(static_cast<bool>(mModel->fieldInfo(L"part.Width", false)));
        mViolations.check(static_cast<bool>(mModel->fieldInfo(L"part", L"number", true)));
        mViolations.check(static_cast<bool>(mPart->fieldInfo(L"field29", true, true)));
        mViolations.check(!mPart->fieldInfo(L"unknown", true, true));
        mViolations.check(static_cast<bool>(mPart->toRelation(L"field29", true)));
        mViolations.check(!mPart->toRelation(L"unknown", true));
        mViolations.check(mPart->isDerivedFrom(mBase) && !mBase->isDerivedFrom(mPart));
        mViolations.check(mPart->countFields() == 31 && mModel->countClasses() >= 32);
        walk();
    }

    // Into a new value: assigning to one that is there is a change, for which the sharedPtrLocker is taken.
    void readDefault() {
        int number = 0;
        zov::genericValue const copy(mDefault);
        mViolations.check(copy.getValue(number) && number == 17);
        mViolations.check(mDefault.getValue(number) && mDefault.type() == typeid(int));
    }

    void walk() {
        std::size_t seen = 0;
        auto const visit = [&](auto const& each) { return ++seen > 0 && static_cast<bool>(each); };
        mViolations.check(mModel->forEachClassInfo([&](auto const& entry) { return visit(entry.second); }, true));
        mViolations.check(mPart->forEachBaseClass([&](auto const& entry) { return visit(entry.second); }, true));
        mViolations.check(mPart->forEachFieldInfo([&](refPtr<fieldInfo> const& field) { return visit(field); }, true));
        mViolations.check(mPart->forEachToRelation(visit, true) && mBase->forEachFromRelation(visit, true));
        mViolations.check(seen >= 32 + 1 + 31 + 30 + 30);
    }

    // Another thread looks everything up, by `ask`, while this one holds a Locker.
    template <class Locker>
    void expectLookupsWhileThisThreadHolds(std::function<void()> const& ask) {
        bool inTime = false;
        {
            std::promise<void> held;
            anotherThread reader([&] {
                held.get_future().wait();
                for (int times = 0; times < 1000; ++times)
                    ask();
            });
            {
                Locker const holding;
                held.set_value();
                inTime = reader.isDone();
            }
        }
        EXPECT_TRUE(inTime) << "the reader waited for the locker";
    }

    violations mViolations;
    refPtr<modelInfo> const mModel = modelInfo::createModelInfo(false);
    refPtr<classInfo> const mBase = mModel->createClassInfo(L"base");
    refPtr<classInfo> const mPart = mModel->createClassInfo(L"part");
    zov::genericValue const mDefault{17};
};

// behaviour: TH-04
TEST_F(readersThatNeverWait, lookUpWhileAnotherThreadIsInsideAccept) {
    bool inTime = false;
    mModel->createClassInfo(L"late", [&](refPtr<classInfo> const&) {
        anotherThread reader([&] {
            for (int times = 0; times < 1000; ++times)
                lookUpAndReadValues();
        });
        inTime = reader.isDone();
        return true;
    });
    EXPECT_TRUE(inTime) << "the reader waited for the registration";
    EXPECT_TRUE(mModel->classInfo(L"late", false));
}

// behaviour: TH-04
TEST_F(readersThatNeverWait, lookUpWhileSeveralThreadsAreInsideAcceptOrWaitForIt) {
    std::atomic<int> readers{0};
    std::atomic<int> late{0};
    auto const writer = [&] {
        mModel->createClassInfo(numbered(L"late", ++late), [&](refPtr<classInfo> const&) {
            auto const until = std::chrono::steady_clock::now() + patience;
            while (readers < 2 && std::chrono::steady_clock::now() < until)
                std::this_thread::yield();
            mViolations.check(readers == 2);
            return true;
        });
    };
    auto const reader = [&] {
        for (int times = 0; times < 1000; ++times)
            lookUp();
        ++readers;
    };
    runTogether({writer, writer, writer, reader, reader});
    EXPECT_EQ(mModel->countClasses(), 35u);
}

// behaviour: TH-04, TH-16
TEST_F(readersThatNeverWait, lookUpWhileAnotherThreadHoldsTheSharedPtrLocker) {
    expectLookupsWhileThisThreadHolds<zov::sharedPtrLocker>([this] { lookUp(); });
}

// behaviour: TH-04, TH-16, GV-33
TEST_F(readersThatNeverWait, lookUpAndReadValuesWhileAnotherThreadHoldsTheReferencePtrLocker) {
    expectLookupsWhileThisThreadHolds<zov::referencePtrLocker>([this] { lookUpAndReadValues(); });
}

// ---- walks for which no writer waits

// All walks there are, each of which runs `inside` at its first visit.
class writersBesideOpenWalks : public readersThatNeverWait {
protected:
    using walkFunction = std::function<void(std::function<void()> const& inside)>;

    std::vector<std::pair<char const*, walkFunction>> walks() const {
        auto const once = [](std::function<void()> const& inside, int& visits) {
            if (visits++ == 0) inside();
            return true;
        };
        return {
            {"classes",
             [=, this](auto const& inside) {
                 int visits = 0;
                 mModel->forEachClassInfo([&](auto const&) { return once(inside, visits); }, true);
                 EXPECT_GE(visits, 32);
             }},
            {"fields",
             [=, this](auto const& inside) {
                 int visits = 0;
                 auto const visit = [&](refPtr<fieldInfo> const& field) {
                     return !field->scName().string().empty() && once(inside, visits);
                 };
                 mPart->forEachFieldInfo(visit, true);
                 EXPECT_GE(visits, 31);
             }},
            {"bases",
             [=, this](auto const& inside) {
                 int visits = 0;
                 mPart->forEachBaseClass([&](auto const&) { return once(inside, visits); }, true);
                 EXPECT_GE(visits, 1);
             }},
            {"relations that leave",
             [=, this](auto const& inside) {
                 int visits = 0;
                 mPart->forEachToRelation([&](auto const&) { return once(inside, visits); }, true);
                 EXPECT_GE(visits, 30);
             }},
            {"relations that arrive",
             [=, this](auto const& inside) {
                 int visits = 0;
                 mBase->forEachFromRelation([&](auto const&) { return once(inside, visits); }, true);
                 EXPECT_GE(visits, 30);
             }},
            {"pairs",
             [=, this](auto const& inside) {
                 int visits = 0;
                 auto const relation = mPart->toRelation(L"field3", false);
                 relation->forEachFieldPair([&](auto const&, auto const&) { return once(inside, visits); }, true);
                 EXPECT_GE(visits, 1);
             }},
            {"a walk inside a walk",
             [=, this](auto const& inside) {
                 int visits = 0;
                 auto const inner = [&](auto const&) { return once(inside, visits); };
                 auto const outer = [&](auto const&) { return mPart->forEachFieldInfo(inner, true); };
                 mModel->forEachClassInfo(outer, true);
                 EXPECT_GE(visits, 31);
             }},
        };
    }

    // The writer runs on another thread while each of the walks is open, and must be done before the walk goes on.
    void expectDoneInsideEachWalk(std::function<void()> const& write) {
        for (auto const& [name, walk] : walks()) {
            SCOPED_TRACE(name);
            bool inTime = false;
            walk([&] {
                anotherThread writer(write);
                inTime = writer.isDone();
            });
            EXPECT_TRUE(inTime) << "the writer waited for the walk";
        }
    }
};

// behaviour: TH-04, TH-06, TH-17
TEST_F(writersBesideOpenWalks, createFields) {
    int made = 0;
    expectDoneInsideEachWalk([&] {
        for (int at = 0; at < 50; ++at)
            addField(mPart, numbered(L"made", made++));
    });
    EXPECT_EQ(mPart->countFields(), 31u + 350);
}

// behaviour: TH-04, TH-17
TEST_F(writersBesideOpenWalks, registerAndRefuseClasses) {
    int made = 0;
    expectDoneInsideEachWalk([&] {
        for (int at = 0; at < 50; ++at)
            mModel->createClassInfo(numbered(L"made", made++), [&](refPtr<classInfo> const&) { return at % 2 == 0; });
    });
    EXPECT_EQ(mModel->countClasses(), 32u + 175);
}

// behaviour: MR-13, TH-04, TH-17
TEST_F(writersBesideOpenWalks, replaceClasses) {
    mModel->setAddProp(L"caseSensitiveNames", L"true");
    expectDoneInsideEachWalk([&] {
        for (int at = 0; at < 30; ++at)
            mModel->createClassInfo(numbered(L"Class", at));
    });
    EXPECT_EQ(mModel->countClasses(), 32u);
}

// behaviour: TH-08, TH-17
TEST_F(writersBesideOpenWalks, addBasesAndRelations) {
    int made = 0;
    expectDoneInsideEachWalk([&] {
        for (int at = 0; at < 30; ++at) {
            auto const other = mModel->createClassInfo(numbered(L"made", made++));
            mPart->addBaseClass(other);
            mPart->createRelation(numbered(L"field", at), false, mBase, eRef, L"", L"");
        }
    });
    EXPECT_EQ(mModel->countClasses(), 32u + 210);
}

// behaviour: TH-07, TH-17
TEST_F(writersBesideOpenWalks, copyFields) {
    auto const copies = mModel->createClassInfo(L"copies");
    int made = 0;
    expectDoneInsideEachWalk([&] { copies->copyInfosFrom(mPart, numbered(L"copy", made++).c_str()); });
    EXPECT_EQ(copies->countFields(), 7u * 31);
}

// behaviour: TH-12, TH-17, TD-03
TEST_F(writersBesideOpenWalks, tearDownTheClassThatIsWalked) {
    for (auto const& [name, walk] : walks()) {
        SCOPED_TRACE(name);
        bool inTime = false;
        walk([&] {
            anotherThread writer([&] {
                mPart->tearDown();
                mBase->tearDown();
            });
            inTime = writer.isDone();
            EXPECT_EQ(mPart->countFields(), 0u);
        });
        EXPECT_TRUE(inTime) << "the tear-down waited for the walk";
        mPart->addBaseClass(mBase);
        for (int at = 0; at < 31; ++at) {
            addField(mPart, numbered(L"field", at));
            if (at < 30) mPart->createRelation(numbered(L"field", at), false, mBase, eRef, L"", L"");
        }
    }
}

// The model is filled anew for each kind of walk.
class tearDownsBesideOpenWalks : public writersBesideOpenWalks, public testing::WithParamInterface<std::size_t> {};
INSTANTIATE_TEST_SUITE_P(ofEachKind, tearDownsBesideOpenWalks, testing::Range(std::size_t{0}, std::size_t{7}));

// behaviour: TH-12, TH-17, TD-03
TEST_P(tearDownsBesideOpenWalks, waitForNone) {
    bool inTime = false;
    walks()[GetParam()].second([&] {
        anotherThread writer([&] { mModel->tearDown(); });
        inTime = writer.isDone();
        EXPECT_EQ(mModel->countClasses(), 0u);
        EXPECT_EQ(mPart->countFields(), 0u);
    });
    EXPECT_TRUE(inTime) << "the tear-down waited for the walk";
    EXPECT_EQ(mPart->refCount(), 1u);
    EXPECT_EQ(mBase->refCount(), 1u);
}

} // namespace
