// How objects end: in which order, on how much stack, and what becomes of a failure on the way.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "endingObjects.h"
#include "eventLog.h"
#include "zovRefPtr.h"
#include "zovSharedPtr.h"

namespace zov::tests {
namespace {

using events = std::vector<std::string>;

// Ends by doing what the test says; counted in objectsAlive.
class acting : public refObj {
public:
    explicit acting(std::function<void()> atEnd) : mAtEnd(std::move(atEnd)) { ++objectsAlive; }
    ~acting() override { --objectsAlive; }

    using refObj::currentCount;

private:
    void destroy() override {
        std::unique_ptr<acting> const self(this);
        mAtEnd();
    }

    std::function<void()> mAtEnd;
};

// Logs a line when it ends, as the objects of a model do, and frees itself whatever comes of that. Its children go
// with it.
class speaking : public refObj {
public:
    explicit speaking(std::vector<refPtr<speaking>> children = {}) : mChildren(std::move(children)) { ++objectsAlive; }
    ~speaking() override { --objectsAlive; }

private:
    void destroy() override {
        std::unique_ptr<speaking> const self(this);
        zovlog::logManager::getLogger("speaking")->log_trace(L"ended", "here.cpp", 1, "speaking", nullptr);
    }

    std::vector<refPtr<speaking>> mChildren;
};
class speakingLoud : public speaking {};

std::string const missingLogger = "assert m_p != NULL @ libs/utils/inc/zovRefPtr.h:156";

// behaviour: RE-01
TEST(endingOrder, ofAChainIsFromItsStart) {
    std::vector<int> ended;
    refPtr<node> first = chainOf(5, ended);
    first.reset();
    EXPECT_EQ(ended, (std::vector{0, 1, 2, 3, 4}));
}

// behaviour: RE-01
TEST(endingOrder, ofManyChildrenIsThatOfTheirRelease) {
    std::vector<int> ended;
    std::vector<int> expected;
    refPtr<node> parent(new node(0, ended));
    for (int child = 1; child <= 1000; ++child)
        parent->add(new node(child, ended));
    for (int number = 0; number <= 1000; ++number)
        expected.push_back(number);
    parent.reset();
    EXPECT_EQ(ended, expected);
}

// behaviour: RE-01
TEST(endingOrder, isDepthFirst) {
    std::vector<int> ended;
    refPtr<node> parent(new node(1, ended));
    for (int child : {10, 20, 30}) {
        refPtr<node> inner(new node(child, ended));
        inner->add(new node(child + 1, ended));
        inner->add(new node(child + 2, ended));
        parent->add(std::move(inner));
    }
    parent.reset();
    EXPECT_EQ(ended, (std::vector{1, 10, 11, 12, 20, 21, 22, 30, 31, 32}));
}

// behaviour: RE-01
TEST(endingOrder, ofADiamondEndsTheSharedObjectWithItsLastHolder) {
    std::vector<int> ended;
    refPtr<node> shared(new node(4, ended));
    refPtr<node> top(new node(1, ended));
    for (int side : {2, 3}) {
        refPtr<node> holder(new node(side, ended));
        holder->add(shared);
        top->add(std::move(holder));
    }
    shared.reset();
    top.reset();
    EXPECT_EQ(ended, (std::vector{1, 2, 3, 4}));
}

// behaviour: RE-01
TEST(endingOrder, ofAnObjectHeldTwiceByOneIsWhereItsLastReferenceGoes) {
    std::vector<int> ended;
    refPtr<node> twice(new node(2, ended));
    refPtr<node> parent(new node(1, ended));
    parent->add(twice);
    parent->add(new node(3, ended));
    parent->add(twice);
    parent->add(new node(4, ended));
    twice.reset();
    parent.reset();
    EXPECT_EQ(ended, (std::vector{1, 3, 2, 4}));
}

// behaviour: RE-01
TEST(endingOrder, ofAnyGraphIsThatOfNestedDestruction) {
    std::mt19937 random(20240229);
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE(round);
        nestedModel graph = randomGraph(random, 2 + round % 60, 1 + round % 7);
        std::vector<int> ended;
        auto nodes = realGraph(graph, ended);
        for (std::size_t at = 0; at < nodes.size(); ++at) {
            graph.release(static_cast<int>(at));
            nodes[at].reset();
            ASSERT_EQ(ended, graph.ended);
        }
        ASSERT_EQ(ended.size(), nodes.size());
    }
}

// behaviour: RE-01
TEST(endingOrder, ofAWideGraphIsThatOfNestedDestruction) {
    std::mt19937 random(7);
    nestedModel graph = randomGraph(random, 400, 300);
    std::vector<int> ended;
    auto nodes = realGraph(graph, ended);
    for (std::size_t at = nodes.size(); at-- > 1;) {
        graph.release(static_cast<int>(at));
        nodes[at].reset();
    }
    EXPECT_TRUE(std::ranges::none_of(ended, [](int number) { return number == 0; }));
    graph.release(0);
    nodes.front().reset();
    EXPECT_EQ(ended, graph.ended);
    EXPECT_EQ(ended.size(), 400U);
}

// behaviour: RE-02
TEST(endingChain, ofAMillionObjectsNeedsNoDeepStack) {
    int const length = 1'000'000;
    std::vector<int> ended;
    ended.reserve(length);
    auto const before = objectsAlive.load();
    refPtr<node> first = chainOf(length, ended);
    EXPECT_EQ(objectsAlive, before + length);
    runOnSmallStack([&] { first.reset(); });
    EXPECT_EQ(objectsAlive, before);
    ASSERT_EQ(ended.size(), static_cast<std::size_t>(length));
    EXPECT_TRUE(std::is_sorted(ended.begin(), ended.end()));
}

// behaviour: RE-02
TEST(endingChain, ofAMillionObjectsNeedsNoDeepStackInADestructor) {
    int const length = 1'000'000;
    std::vector<int> ended;
    ended.reserve(length);
    auto const before = objectsAlive.load();
    auto first = std::make_unique<refPtr<node>>(chainOf(length, ended));
    runOnSmallStack([&] { first.reset(); });
    EXPECT_EQ(objectsAlive, before);
}

// behaviour: RE-02
TEST(endingChain, whoseObjectsHoldMoreBehindTheNextOneNeedsNoDeepStack) {
    int const length = 300'000;
    std::vector<int> ended;
    ended.reserve(2 * length);
    auto const before = objectsAlive.load();
    refPtr<node> first;
    for (int number = length; number-- > 0;) {
        refPtr<node> next(new node(number, ended));
        if (first) next->add(std::move(first));
        next->add(new node(2 * length - 1 - number, ended));
        first = std::move(next);
    }
    runOnSmallStack([&] { first.reset(); });
    EXPECT_EQ(objectsAlive, before);
    ASSERT_EQ(ended.size(), static_cast<std::size_t>(2 * length));
    EXPECT_TRUE(std::is_sorted(ended.begin(), ended.end()));
}

// behaviour: RE-03
TEST(releaseWhileEnding, isPutOffUntilTheObjectIsGone) {
    events seen;
    refPtr<acting> inner(new acting([&] { seen.push_back("inner ends"); }));
    refPtr<acting> outer(new acting([&] {
        seen.push_back("outer begins");
        inner.reset();
        EXPECT_FALSE(inner);
        seen.push_back("outer ends");
    }));
    outer.reset();
    EXPECT_EQ(seen, (events{"outer begins", "outer ends", "inner ends"}));
}

// behaviour: RE-03
TEST(releaseWhileEnding, isPutOffForAnObjectMadeOnTheWay) {
    events seen;
    refPtr<acting> outer(new acting([&] {
        refPtr<acting> made(new acting([&] { seen.push_back("made ends"); }));
        made.reset();
        seen.push_back("outer ends");
    }));
    outer.reset();
    EXPECT_EQ(seen, (events{"outer ends", "made ends"}));
}

// behaviour: RE-03
TEST(releaseWhileEnding, isDoneWhenTheOutermostReleaseReturns) {
    auto const before = objectsAlive.load();
    refPtr<acting> const kept(new acting([] {}));
    refPtr<acting> copy(kept);
    refPtr<acting> outer(new acting([&] { copy.reset(); }));
    outer.reset();
    EXPECT_EQ(kept->currentCount(), 1U);
    EXPECT_EQ(objectsAlive, before + 1);
}

// behaviour: RE-04
TEST(releaseWhileEnding, answersOneLessThanTheCount) {
    auto* const object = new acting([] {});
    object->addRef();
    object->addRef();
    object->addRef();
    std::vector<std::uint32_t> answers;
    refPtr<acting> outer(new acting([&] { answers.push_back(object->release()); }));
    outer.reset();
    EXPECT_EQ(answers, (std::vector{2U}));
    EXPECT_EQ(object->currentCount(), 2U);
    object->release();
    object->release();
}

// behaviour: RE-04
TEST(releaseWhileEnding, answersTheSameCountAgainWhileItsLikesAreStillPutOff) {
    auto const before = objectsAlive.load();
    auto* const object = new acting([] {});
    object->addRef();
    object->addRef();
    std::vector<std::uint32_t> answers;
    refPtr<acting> outer(new acting([&] {
        answers.push_back(object->release());
        answers.push_back(object->release());
    }));
    outer.reset();
    EXPECT_EQ(answers, (std::vector{1U, 1U}));
    EXPECT_EQ(objectsAlive, before);
}

// behaviour: RE-05
TEST(releaseWhileEnding, onAnotherThreadIsNotPutOff) {
    events seen;
    refPtr<acting> inner(new acting([&] { seen.push_back("inner ends"); }));
    refPtr<acting> outer(new acting([&] {
        std::thread([&] { inner.reset(); }).join();
        seen.push_back("outer ends");
    }));
    outer.reset();
    EXPECT_EQ(seen, (events{"inner ends", "outer ends"}));
}

// behaviour: RE-06
TEST(endingThroughASharedPtr, keepsTheOrder) {
    struct list {
        refPtr<node> first;
        refPtr<node> second;
        ~list() {
            first.reset();
            second.reset();
        }
    };
    std::vector<int> ended;
    sharedPtr<list> shared(new list{chainOf(2, ended), refPtr<node>(new node(7, ended))});
    refPtr<acting> outer(new acting([&] {
        shared.reset();
        ended.push_back(100);
    }));
    outer.reset();
    EXPECT_EQ(ended, (std::vector{100, 0, 1, 7}));
}

// Each way to give a reference up that is not a destructor or a move.
std::vector<std::pair<char const*, std::function<void(refPtr<speakingLoud>&&)>>> const& waysToGiveUp() {
    using pointer = refPtr<speakingLoud>;
    static std::vector<std::pair<char const*, std::function<void(pointer &&)>>> const ways{
        {"reset", [](pointer&& last) { last.reset(); }},
        {"null", [](pointer&& last) { last = nullptr; }},
        {"copy of an empty pointer",
         [](pointer&& last) {
             pointer const empty;
             last = empty;
         }},
        {"raw null", [](pointer&& last) { last = static_cast<speakingLoud*>(nullptr); }},
        {"reset of a const pointer",
         [](pointer&& last) {
             const_refPtr<speakingLoud> constLast(std::move(last));
             constLast.reset();
         }},
        {"copy to a const pointer",
         [](pointer&& last) {
             const_refPtr<speakingLoud> constLast(std::move(last));
             const_refPtr<speakingLoud> const empty;
             constLast = empty;
         }},
        {"pointer to a const pointer",
         [](pointer&& last) {
             const_refPtr<speakingLoud> constLast(std::move(last));
             constLast = last;
         }},
        {"derived to base",
         [](pointer&& last) {
             refPtr<speaking> base(std::move(last));
             base = last;
         }},
        {"const derived to const base",
         [](pointer&& last) {
             const_refPtr<speaking> base(std::move(last));
             const_refPtr<speakingLoud> const empty;
             base = empty;
         }},
        {"release",
         [](pointer&& last) {
             speakingLoud* const object = last.get();
             object->addRef();
             last.reset();
             object->release();
         }},
    };
    return ways;
}

// behaviour: RE-07
TEST(missingLoggerWhileEnding, isThrownToWhoeverGaveTheReferenceUp) {
    eventLog log;
    noLoggers const none;
    for (auto const& [name, giveUp] : waysToGiveUp()) {
        SCOPED_TRACE(name);
        auto const before = objectsAlive.load();
        refPtr<speakingLoud> last(new speakingLoud);
        EXPECT_TRUE(throwsFalse([&last, &way = giveUp] { way(std::move(last)); }));
        EXPECT_EQ(log.take(), (events{missingLogger}));
        EXPECT_EQ(objectsAlive, before);
        EXPECT_FALSE(last);
    }
}

// behaviour: RE-08
TEST(missingLoggerWhileEnding, leavesThePointerWithItsNewValue) {
    eventLog log;
    auto const before = objectsAlive.load();
    refPtr<speaking> const next(new speaking);
    refPtr<speaking> pointer(new speaking);
    {
        noLoggers const none;
        EXPECT_TRUE(throwsFalse([&] { pointer = next; }));
    }
    EXPECT_EQ(pointer, next);
    EXPECT_EQ(next->addRef(), 3U);
    next->release();
    EXPECT_EQ(objectsAlive, before + 1);
}

// behaviour: RE-07
TEST(missingLoggerWhileEnding, freesEverythingAndThrowsOnce) {
    eventLog log;
    noLoggers const none;
    auto const before = objectsAlive.load();
    refPtr<speaking> leaf(new speaking);
    std::vector<refPtr<speaking>> children{leaf, refPtr<speaking>(new speaking({leaf})), leaf};
    leaf = nullptr;
    refPtr<speaking> parent(new speaking(std::move(children)));
    EXPECT_TRUE(throwsFalse([&] { parent.reset(); }));
    EXPECT_EQ(objectsAlive, before);
    EXPECT_EQ(log.take(), (events{missingLogger, missingLogger, missingLogger}));
}

// behaviour: RE-07
TEST(missingLoggerWhileEnding, isNotedFarDownAndThrownByTheOutermost) {
    eventLog log;
    noLoggers const none;
    auto const before = objectsAlive.load();
    refPtr<speaking> deep(new speaking);
    refPtr<acting> middle(new acting([&] { EXPECT_NO_THROW(deep.reset()); }));
    refPtr<acting> outer(new acting([&] { EXPECT_NO_THROW(middle.reset()); }));
    EXPECT_TRUE(throwsFalse([&] { outer.reset(); }));
    EXPECT_EQ(objectsAlive, before);
    EXPECT_EQ(log.take(), (events{missingLogger}));
}

// behaviour: RE-09
TEST(missingLoggerWhileEnding, endsWithTheReportInADestructor) {
    eventLog log;
    noLoggers const none;
    auto const before = objectsAlive.load();
    EXPECT_NO_THROW(refPtr<speaking>(new speaking));
    EXPECT_NO_THROW(const_refPtr<speaking>(new speaking));
    EXPECT_NO_THROW((std::vector<refPtr<speaking>>{refPtr<speaking>(new speaking)}.clear()));
    EXPECT_EQ(log.take(), (events{missingLogger, missingLogger, missingLogger}));
    EXPECT_EQ(objectsAlive, before);
}

// behaviour: RE-09
TEST(missingLoggerWhileEnding, endsWithTheReportInAMove) {
    eventLog log;
    noLoggers const none;
    auto const before = objectsAlive.load();
    refPtr<speaking> pointer(new speaking);
    EXPECT_NO_THROW(pointer = refPtr<speaking>());
    const_refPtr<speaking> constPointer(new speaking);
    EXPECT_NO_THROW(constPointer = const_refPtr<speaking>());
    EXPECT_EQ(log.take(), (events{missingLogger, missingLogger}));
    EXPECT_EQ(objectsAlive, before);
}

// behaviour: RE-09
TEST(missingLoggerWhileEnding, isForgottenByTheNextRelease) {
    eventLog log;
    {
        noLoggers const none;
        refPtr<speaking> const swallowed(new speaking);
    }
    refPtr<speaking> next(new speaking);
    EXPECT_NO_THROW(next.reset());
    EXPECT_EQ(log.take(), (events{missingLogger, "trace ended"}));
}

// behaviour: RE-10
TEST(missingLoggerWhileEnding, isNotThrownWhileAnotherExceptionIsUnderWay) {
    struct givingUp {
        ~givingUp() noexcept(false) {
            pointer.reset();
            reached = true;
        }
        refPtr<speaking> pointer{new speaking};
        bool& reached;
    };
    eventLog log;
    noLoggers const none;
    auto const before = objectsAlive.load();
    bool reached = false;
    EXPECT_THROW(
        {
            givingUp const leaving{.reached = reached};
            throw std::runtime_error("under way");
        },
        std::runtime_error);
    EXPECT_TRUE(reached);
    EXPECT_EQ(log.take(), (events{missingLogger}));
    EXPECT_EQ(objectsAlive, before);
}

// behaviour: RE-11
TEST(failingDestroyHook, throwsFalseWhateverItThrew) {
    auto const before = objectsAlive.load();
    refPtr<acting> pointer(new acting([] { throw std::runtime_error("no"); }));
    EXPECT_TRUE(throwsFalse([&] { pointer.reset(); }));
    pointer = new acting([] { throw true; });
    EXPECT_TRUE(throwsFalse([&] { pointer.reset(); }));
    EXPECT_EQ(objectsAlive, before);
}

// behaviour: RE-11
TEST(failingDestroyHook, doesNotThrowForALostAllocation) {
    auto const before = objectsAlive.load();
    refPtr<acting> pointer(new acting([] { throw std::bad_alloc(); }));
    EXPECT_NO_THROW(pointer.reset());
    EXPECT_EQ(objectsAlive, before);
}

// behaviour: RE-12
TEST(endingObject, isEndedOnce) {
    int ends = 0;
    refPtr<acting> one(new acting([&] { ++ends; }));
    refPtr<acting> other(one);
    one.reset();
    EXPECT_EQ(ends, 0);
    other.reset();
    EXPECT_EQ(ends, 1);
}

// behaviour: RE-12
TEST(endingObject, mayUseOthersThatLiveOn) {
    refPtr<acting> const living(new acting([] {}));
    refPtr<acting> outer(new acting([&] {
        refPtr<acting> const copy(living);
        EXPECT_EQ(living->currentCount(), 2U);
    }));
    outer.reset();
    EXPECT_EQ(living->currentCount(), 1U);
}

} // namespace
} // namespace zov::tests
