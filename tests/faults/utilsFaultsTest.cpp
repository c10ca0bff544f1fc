// When memory runs out: the n-th allocation fails, or there are n bytes of cells, for n = 0, 1, 2 ... until the
// operation passes.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "endingObjects.h"
#include "eventLog.h"
#include "failingAllocations.h"
#include "keptCells.h"
#include "zovAssert.h"
#include "zovBinaryBuffer.h"
#include "zovGenericSet.h"
#include "zovGenericValue.h"
#include "zovLog.h"
#include "zovRefPtr.h"
#include "zovScString.h"
#include "zovSharedPtr.h"
#include "zovString.h"
#include "zovTypeConvert.h"

namespace zov::tests {
namespace {

using zov::string;
using zovlog::logger;
using zovlog::logManager;

// Texts that do not fit into a string object itself.
wchar_t const* const longText = L"a text that takes an allocation of its own";
wchar_t const* const otherText = L"another text that takes an allocation of its own";

// Lets the action run with `left` bytes of cells and all allocations but for those behind the first `passing` ones:
// with the next one failing alone, and with all that follow. Each failure is a std::bad_alloc that loses neither
// storage nor a cell and leaves everything as `asBefore` wants it. Answers whether the action passes.
template <class Action, class AsBefore>
bool passes(long passing, std::size_t left, Action action, AsBefore asBefore) {
    for (failureKind const kind : {eOneAllocation, eAllAllocations}) {
        keptCells::leave(left);
        long const aliveBefore = allocationsAlive;
        try {
            failingAllocations const armed(passing, kind);
            action();
            return true;
        } catch (std::bad_alloc const&) {
        }
        auto const more = static_cast<std::size_t>(allocationsAlive - aliveBefore);
        std::size_t const free = keptCells::useUpBytes();
        EXPECT_EQ(free, left + more * keptCells::bytesOfABlock());
        EXPECT_TRUE(asBefore()) << "after " << passing << " allocations, with " << left << " bytes of cells";
    }
    return false;
}

// Lets each allocation of `action` fail in turn until it passes. Answers how many failed.
template <class Action, class AsBefore>
long failEachAllocation(Action action, AsBefore asBefore) {
    for (long passing = 0; passing < 10'000 && !testing::Test::HasFailure(); ++passing)
        if (passes(passing, 0, action, asBefore)) return passing;
    ADD_FAILURE() << "never passes";
    return 0;
}

// The same, and for each of them each cell: at first there are no cells, then 8 bytes of them, 16 and so on. Answers
// how many allocations, and how many times 8 bytes of cells, the action needs.
template <class Action, class AsBefore>
long failEachAllocationAndCell(Action action, AsBefore asBefore) {
    constexpr std::size_t mostCells = 512; // bytes
    for (long passing = 0; passing < 100; ++passing)
        for (std::size_t left = 0; left <= mostCells && !testing::Test::HasFailure(); left += 8)
            if (passes(passing, left, action, asBefore)) return passing + static_cast<long>(left / 8);
    ADD_FAILURE() << "never passes";
    return 0;
}

// Lets each cell that `action` takes fail in turn, one kind after the other, until it passes; it makes no other
// allocations, and ends what it made. Checks the same. Answers how many failed.
template <class Action, class AsBefore>
long failEachCell(Action action, AsBefore asBefore) {
    long failures = 0;
    for (std::size_t kind = 0; kind < cellKinds; ++kind) {
        for (std::size_t left = 0; left < 1000; ++left) {
            keptCells::useUp();
            keptCells::giveBackOthers(kind);
            cells[kind].give(cells[kind].take()); // there is a block at least
            keptCells::useUp(kind);
            keptCells::giveBack(kind, left);
            long const aliveBefore = allocationsAlive;
            bool failed = false;
            try {
                failingAllocations const armed(0);
                action();
            } catch (std::bad_alloc const&) {
                failed = true;
            }
            EXPECT_EQ(allocationsAlive, aliveBefore) << "kind " << kind << ", " << left << " cells left";
            EXPECT_EQ(keptCells::useUp(kind), left) << "kind " << kind;
            EXPECT_TRUE(asBefore()) << "kind " << kind << ", " << left << " cells left";
            if (testing::Test::HasFailure()) return failures;
            if (!failed) break;
            ++failures;
        }
    }
    return failures;
}

// Sees to it that some hundred cells of each kind are free.
void makeCells() {
    for (std::size_t kind = 0; kind < cellKinds; ++kind) {
        std::vector<void*> taken;
        for (int count = 0; count < 300; ++count)
            taken.push_back(cells[kind].take());
        for (void* const cell : taken)
            cells[kind].give(cell);
    }
}

// The allocations that `action` makes.
template <class Action>
std::size_t allocationsOf(Action const& action) {
    std::size_t const before = allocationsMade;
    action();
    return allocationsMade - before;
}

template <class T>
T read(genericValue const& value) {
    T result{};
    EXPECT_TRUE(value.getValue(result));
    return result;
}

// behaviour: SC-12
TEST(interningFaults, leaveTheTableAsItWas) {
    // More texts than the table has room for at first, so that its growth fails too.
    long most = 0;
    for (int number = 0; number < 3000; ++number) {
        string const text(L"interned while memory is short " + std::to_wstring(number));
        std::optional<scString> made;
        long const failures = failEachAllocation([&] { made = scString::createFrom(text); },
                                                 [&] { return scString::find(text) == std::nullopt; });
        ASSERT_GE(failures, 1);
        most = std::max(most, failures);
        ASSERT_EQ(scString::find(text), made);
        ASSERT_EQ(made->string(), text);
    }
    // The text, the larger table with its slots and its list of blocks, and a block.
    EXPECT_GE(most, 5);
}

// behaviour: SC-13
TEST(interningLookup, allocatesNothing) {
    scString const known = scString::createFrom(L"known to the fault tests, and long");
    std::optional<scString> found;
    std::optional<scString> lowered;
    std::optional<scString> unknown;
    std::optional<scString> unknownLowered;
    EXPECT_EQ(allocationsOf([&] {
                  found = scString::find(L"known to the fault tests, and long");
                  lowered = scString::findLowered(L"Known To The Fault Tests, And Long");
                  unknown = scString::find(L"unknown to the fault tests, and long");
                  unknownLowered = scString::findLowered(L"Unknown To The Fault Tests, And Long");
              }),
              0U);
    EXPECT_EQ(found, known);
    EXPECT_EQ(lowered, known);
    EXPECT_EQ(unknown, std::nullopt);
    EXPECT_EQ(unknownLowered, std::nullopt);
}

// behaviour: SC-13
TEST(interningAgain, allocatesNothing) {
    string const text(L"interned twice by the fault tests");
    scString const first = scString::createFrom(text);
    scString second;
    scString empty = first;
    EXPECT_EQ(allocationsOf([&] {
                  second = scString::createFrom(text);
                  empty = scString::createFrom(L"");
              }),
              0U);
    EXPECT_EQ(first, second);
    EXPECT_EQ(empty, scString());
}

// behaviour: GV-29
TEST(valueFaults, whileMakingOneLoseNothing) {
    string const text(longText);
    genericValue made;
    EXPECT_GE(failEachAllocationAndCell([&] { made = genericValue(text); }, [&] { return made.isEmpty(); }), 13);
    EXPECT_EQ(read<string>(made), longText);
    int object = 5;
    EXPECT_GE(failEachAllocationAndCell([&] { made = genericValue::byReference(object); },
                                        [&] { return read<string>(made) == longText; }),
              7);
    EXPECT_EQ(read<int>(made), 5);
}

// behaviour: GV-29
TEST(valueFaults, whileTakingAHolderOverEndIt) {
    static int alive = 0;
    struct tracked {
        tracked() { ++alive; }
        tracked(tracked const&) { ++alive; }
        tracked& operator=(tracked const&) = default;
        ~tracked() { --alive; }
    };
    tracked const object;
    genericValue made;
    EXPECT_GE(failEachAllocationAndCell([&] { made = genericValue(new genericValue::valueholder<tracked>(object)); },
                                        [] { return alive == 1; }),
              9);
    EXPECT_EQ(alive, 2);
}

// behaviour: GV-29
TEST(valueFaults, whileCopyingLeaveBothSides) {
    genericValue const source{string(longText)};
    genericValue target{string(otherText)};
    auto const bothAsBefore = [&] { return read<string>(source) == longText && read<string>(target) == otherText; };
    EXPECT_GE(failEachAllocationAndCell([&] { genericValue const copy(source); }, bothAsBefore), 13);
    EXPECT_GE(failEachAllocationAndCell([&] { target = source; }, bothAsBefore), 13);
    EXPECT_EQ(read<string>(target), longText);
}

// behaviour: GV-29
TEST(valueFaults, whileReadingLeaveTheTarget) {
    genericValue const text{string(longText)};
    genericValue const number{-123456789};
    string converted;
    ASSERT_TRUE(number.getValue(converted));
    string target(L"x");
    bool answer = false;
    auto const asBefore = [&] { return target == L"x"; };
    EXPECT_GE(failEachAllocationAndCell([&] { answer = text.getValue(target); }, asBefore), 1);
    EXPECT_TRUE(answer);
    EXPECT_EQ(target, longText);
    string other(L"x");
    answer = false;
    EXPECT_GE(failEachAllocationAndCell([&] { answer = number.getValue(other); }, [&] { return other == L"x"; }), 1);
    EXPECT_TRUE(answer);
    EXPECT_EQ(other, L"-123456789");
}

// behaviour: GV-29
TEST(valueFaults, whileAssigningTextLeaveTheValue) {
    genericValue text{string(L"x")};
    string const next(longText);
    bool answer = false;
    EXPECT_GE(
        failEachAllocationAndCell([&] { answer = text.assignText(next); }, [&] { return read<string>(text) == L"x"; }),
        1);
    EXPECT_TRUE(answer);
    EXPECT_EQ(read<string>(text), longText);

    genericValue empty;
    answer = false;
    EXPECT_GE(failEachAllocationAndCell([&] { answer = empty.assignText(next); }, [&] { return empty.isEmpty(); }), 13);
    EXPECT_TRUE(answer);
    EXPECT_EQ(read<string>(empty), longText);

    string made; // the conversions are there from their first use on
    ASSERT_TRUE(genericValue(1).getValue(made));
    genericValue bytes{binaryBuffer("abc", 3)};
    answer = false;
    EXPECT_GE(failEachAllocationAndCell([&] { answer = bytes.assignText(L"0102030405060708"); },
                                        [&] { return read<binaryBuffer>(bytes) == binaryBuffer("abc", 3); }),
              1);
    EXPECT_TRUE(answer);
    EXPECT_EQ(read<binaryBuffer>(bytes).size(), 8U);
}

// The entries of a set as texts, in no order of its own.
std::vector<std::pair<string, string>> contentsOf(genericSet const& set) {
    std::vector<std::pair<string, string>> contents;
    set.forEach(
        [&](scString const& name, genericValue const& value) {
            contents.emplace_back(name.string(), read<string>(value));
            return true;
        },
        true);
    std::sort(contents.begin(), contents.end());
    return contents;
}

genericSet threeTexts() {
    genericSet set;
    for (wchar_t const* name : {L"one", L"two", L"three"})
        set.setValue(name, string(longText), false);
    return set;
}

// behaviour: GS-24
TEST(setFaults, whileStoringLeaveTheSet) {
    scString const key = scString::createFrom(L"two");
    string const next(otherText);
    EXPECT_GE(failEachAllocationAndCell(
                  [&] {
                      genericSet first;
                      first.setValue(key, next, false);
                  },
                  [] { return true; }),
              20);
    genericSet set;
    set.setValue(key, 1, false);
    set.erase(key);
    bool answer = false;
    EXPECT_GE(failEachAllocationAndCell([&] { answer = set.setValue(key, next, false); },
                                        [&] { return set.size() == 0 && !set.genericValue(key); }),
              13);
    EXPECT_TRUE(answer);
    set = threeTexts();
    auto const before = contentsOf(set);
    EXPECT_GE(
        failEachAllocationAndCell([&] { set.setValue(key, next, false); }, [&] { return contentsOf(set) == before; }),
        13);
    EXPECT_EQ(read<string>(*set.genericValue(key)), otherText);
    genericValue const value{string(longText)};
    auto const changed = contentsOf(set);
    EXPECT_GE(failEachAllocationAndCell([&] { set.setGenericValue(key, value, false); },
                                        [&] { return contentsOf(set) == changed; }),
              13);
    EXPECT_EQ(contentsOf(set), before);
}

// behaviour: GS-24
TEST(setFaults, whileCopyingLeaveBothSides) {
    genericSet const source = threeTexts();
    auto const before = contentsOf(source);
    genericSet target;
    target.setValue(L"former", string(otherText), false);
    auto const former = contentsOf(target);
    auto const bothAsBefore = [&] { return contentsOf(source) == before && contentsOf(target) == former; };
    EXPECT_GE(failEachAllocationAndCell([&] { genericSet const copy(source); }, bothAsBefore), 50);
    EXPECT_GE(failEachAllocationAndCell([&] { target = source; }, bothAsBefore), 50);
    EXPECT_EQ(contentsOf(target), before);
    genericSet empty;
    EXPECT_GE(failEachAllocationAndCell([&] { empty = source; }, [&] { return empty.size() == 0; }), 50);
    EXPECT_EQ(contentsOf(empty), before);
}

// behaviour: GS-24
TEST(setFaults, ofAWalkLeaveTheSet) {
    genericSet const set = threeTexts();
    auto const before = contentsOf(set);
    int visits = 0;
    std::function<bool(scString const&, genericValue const&)> const count = [&](scString const&, genericValue const&) {
        ++visits;
        return true;
    };
    failEachAllocationAndCell([&] { set.forEach(count, true); },
                              [&] { return visits == 0 && contentsOf(set) == before; });
    EXPECT_EQ(visits, 3);
}

// behaviour: GS-25
TEST(setLookup, allocatesNothing) {
    genericSet set = threeTexts();
    set.setValue(L"number", 1, false);
    scString const known = scString::createFrom(L"number");
    int* number = nullptr;
    int* other = nullptr;
    int value = 0;
    bool unknown = true;
    EXPECT_EQ(allocationsOf([&] {
                  set.getValuePtr(L"number", number);
                  set.getValuePtr(known, other);
                  set.getValue(known, value);
                  unknown = set.getValuePtr(L"unknown to the fault tests, and long", other);
                  set.erase(scString());
                  static_cast<void>(std::as_const(set).genericValue(known));
                  static_cast<void>(set.size());
              }),
              0U);
    ASSERT_NE(number, nullptr);
    EXPECT_EQ(number, other);
    EXPECT_EQ(value, 1);
    EXPECT_FALSE(unknown);
}

// behaviour: GV-29
TEST(valueFaults, ofEachCellLoseNothing) {
    makeCells();
    genericValue const source(42);
    int object = 5;
    auto const asBefore = [&] { return read<int>(source) == 42 && object == 5; };
    // The holder, its lock and its counter, the held number and its counter.
    EXPECT_EQ(failEachCell([] { genericValue const made(7); }, asBefore), 5);
    EXPECT_EQ(failEachCell([&] { genericValue const copy(source); }, asBefore), 5);
    EXPECT_EQ(failEachCell([&] { genericValue const made(genericValue::byReference(object)); }, asBefore), 3);
}

// behaviour: GS-24
TEST(setFaults, ofEachCellLeaveTheSets) {
    makeCells();
    scString const key = scString::createFrom(L"one");
    genericSet source;
    source.setValue(key, 42, false);
    auto const asBefore = [&] { return source.size() == 1 && read<int>(*source.genericValue(key)) == 42; };
    // The record, the shared value and its counter, and what a value takes.
    EXPECT_EQ(failEachCell(
                  [&] {
                      genericSet made;
                      made.setValue(key, 7, false);
                  },
                  asBefore),
              8);
    EXPECT_EQ(failEachCell([&] { genericSet const copy(source); }, asBefore), 8);
}

// behaviour: GV-32
TEST(valueCosts, makingAndCopyingTakesTwoTripsToTheAllocatorAtMost) {
    struct large {
        char bytes[100];
    };
    makeCells();
    genericValue const number(42);
    genericValue const text{string(L"text")};
    genericValue const bytes{large{}};
    int read = 0;
    EXPECT_LE(allocationsOf([] { genericValue const made(7); }), 2U);
    EXPECT_LE(allocationsOf([] { genericValue const made{string(L"text")}; }), 2U);
    EXPECT_LE(allocationsOf([] { genericValue const made{large{}}; }), 2U);
    EXPECT_LE(allocationsOf([&] { genericValue const copy(number); }), 2U);
    EXPECT_LE(allocationsOf([&] { genericValue const copy(text); }), 2U);
    EXPECT_LE(allocationsOf([&] { genericValue const copy(bytes); }), 2U);
    EXPECT_EQ(allocationsOf([&] { number.getValue(read); }), 0U);
    EXPECT_EQ(read, 42);
}

TEST(setCosts, ofOneNumberAreSmall) {
    scString const key = scString::createFrom(L"digits");
    std::size_t const count = 10'000;
    std::vector<genericSet> sets(count);
    keptCells::useUp();
    // All that is allocated is blocks of cells, of four kilobytes each.
    std::size_t const blocks = allocationsOf([&] {
        for (genericSet& set : sets)
            set.setValue(key, 2, false);
    });
    EXPECT_LE(blocks * 4096, count * 132);
    EXPECT_GE(blocks, 1U);
}

TEST(setCosts, growByFewBlocks) {
    std::vector<scString> keys;
    for (int number = 0; number < 100; ++number)
        keys.push_back(scString::createFrom(string(L"cost " + std::to_wstring(number))));
    makeCells();
    makeCells();
    std::size_t const first = allocationsOf([&] {
        genericSet set;
        for (scString const key : keys)
            set.setValue(key, 1, false);
        for (scString const key : keys)
            set.erase(key);
    });
    EXPECT_LE(first, 20U);
}

// behaviour: SP-20
TEST(sharedPtrFaults, endTheNewObject) {
    static int alive = 0;
    struct tracked {
        tracked() { ++alive; }
        tracked(tracked const&) = delete;
        tracked& operator=(tracked const&) = delete;
        ~tracked() { --alive; }
    };
    sharedPtr<tracked> pointer;
    EXPECT_EQ(
        failEachAllocation([&] { pointer = sharedPtr<tracked>(new tracked); }, [&] { return alive == 0 && !pointer; }),
        2);
    tracked const* const former = pointer.get();
    EXPECT_EQ(
        failEachAllocation([&] { pointer.reset(new tracked); }, [&] { return alive == 1 && pointer.get() == former; }),
        2);
    EXPECT_EQ(alive, 1);
    EXPECT_NE(pointer.get(), former);
    EXPECT_EQ(failEachAllocation([&] { const_sharedPtr<tracked> const constPointer(new tracked); },
                                 [] { return alive == 1; }),
              2);
    EXPECT_EQ(alive, 1);
}

// behaviour: RP-28
TEST(pointerCopies, allocateNothing) {
    sharedPtr<string> const shared(new string(longText));
    std::vector<int> ended;
    ended.reserve(2);
    refPtr<node> const counted(new node(1, ended));
    EXPECT_EQ(allocationsOf([&] {
                  sharedPtr<string> sharedCopy(shared);
                  sharedCopy = shared;
                  const_sharedPtr<string> const constShared(sharedCopy);
                  refPtr<node> countedCopy(counted);
                  countedCopy = counted;
                  const_refPtr<node> constCounted(countedCopy);
                  constCounted = counted;
                  constCounted.reset();
              }),
              0U);
}

// behaviour: RE-13
TEST(endingWithoutMemory, ofAWideObjectKeepsTheOrder) {
    for (long passing : {0, 1, 2, 3}) {
        std::vector<int> ended;
        ended.reserve(1001);
        refPtr<node> parent(new node(0, ended));
        for (int child = 1; child <= 1000; ++child)
            parent->add(new node(child, ended));
        auto const before = objectsAlive.load();
        {
            failingAllocations const armed(passing);
            parent.reset();
        }
        EXPECT_EQ(objectsAlive, before - 1001);
        ASSERT_EQ(ended.size(), 1001U);
        EXPECT_TRUE(std::is_sorted(ended.begin(), ended.end()));
    }
}

// behaviour: RE-13
TEST(endingWithoutMemory, ofAMillionObjectsInAChainNeedsNoDeepStack) {
    int const length = 1'000'000;
    std::vector<int> ended;
    ended.reserve(length);
    refPtr<node> first = chainOf(length, ended);
    auto const before = objectsAlive.load();
    runOnSmallStack([&] {
        failingAllocations const armed(0);
        first.reset();
    });
    EXPECT_EQ(objectsAlive, before - length);
    ASSERT_EQ(ended.size(), static_cast<std::size_t>(length));
    EXPECT_TRUE(std::is_sorted(ended.begin(), ended.end()));
}

// behaviour: RE-13
TEST(endingWithoutMemory, ofAnyGraphEndsEachObjectOnce) {
    std::mt19937 random(31);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        int const size = 100 + 2 * round;
        nestedModel graph = randomGraph(random, size, 200);
        std::vector<int> ended;
        ended.reserve(static_cast<std::size_t>(size));
        auto nodes = realGraph(graph, ended);
        for (std::size_t at = nodes.size(); at-- > 0;) {
            graph.release(static_cast<int>(at));
            failingAllocations const armed(round % 3);
            nodes[at].reset();
        }
        ASSERT_EQ(ended.size(), nodes.size());
        std::sort(ended.begin(), ended.end());
        std::sort(graph.ended.begin(), graph.ended.end());
        ASSERT_EQ(ended, graph.ended);
    }
}

// behaviour: RE-14
TEST(endingWithoutMemory, ofAChainWhoseObjectsHoldMoreBehindTheNextOneNeedsNoDeepStack) {
    EXPECT_EXIT(
        {
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
            runOnSmallStack([&] {
                failingAllocations const armed(0);
                first.reset();
            });
            std::exit(objectsAlive == before && ended.size() == std::size_t{2} * length ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

// behaviour: RE-13
TEST(endingWithoutMemory, withoutALoggerStillFreesAndThrowsFalse) {
    class speaking : public refObj {
    public:
        explicit speaking(refPtr<speaking> inner) : mInner(std::move(inner)) { ++objectsAlive; }
        ~speaking() override { --objectsAlive; }

    private:
        void destroy() override {
            std::unique_ptr<speaking> const self(this);
            logManager::getLogger("speaking")->log_trace(string(), "", 0, "", nullptr);
        }
        refPtr<speaking> mInner;
    };
    auto const before = objectsAlive.load();
    refPtr<speaking> outer(new speaking(refPtr<speaking>(new speaking(nullptr))));
    noLoggers const none;
    testing::internal::CaptureStderr();
    bool thrown = false;
    {
        failingAllocations const armed(0);
        thrown = throwsFalse([&] { outer.reset(); });
    }
    std::string const reported = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(thrown);
    EXPECT_EQ(objectsAlive, before);
    std::string const report = "Assertion failed:\nm_p != NULL\n\nFile: libs/utils/inc/zovRefPtr.h\nLine: 156";
    auto const first = reported.find(report);
    ASSERT_NE(first, std::string::npos);
    EXPECT_NE(reported.find(report, first + 1), std::string::npos);
}

// behaviour: AS-10
TEST(failedCheckWithoutMemory, isReportedAndThrowsFalse) {
    string const condition(3000, L'c');
    testing::internal::CaptureStderr();
    bool thrown = false;
    {
        failingAllocations const armed(0);
        thrown = throwsFalse([&] { assertionFailed(condition.c_str(), "file.cpp", 7); });
    }
    std::string const reported = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(thrown);
    EXPECT_NE(reported.find("Assertion failed:\nccccc"), std::string::npos);
}

// behaviour: AS-10
TEST(failedCheckWithoutMemory, isReportedWithAHandlerToo) {
    bool handled = false;
    setAssertHandler([&](string const&) { handled = true; });
    testing::internal::CaptureStderr();
    bool thrown = false;
    {
        failingAllocations const armed(0);
        thrown = throwsFalse([] { assertionFailed(longText, "file.cpp", 7); });
    }
    setAssertHandler({});
    std::string const reported = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(thrown);
    EXPECT_TRUE(handled || reported.find("a text that takes") != std::string::npos);
}

// behaviour: AS-11
TEST(assertHandlerFaults, keepTheFormerHandler) {
    int former = 0;
    int next = 0;
    setAssertHandler([&](string const&) { ++former; });
    std::array<char, 200> const ballast{};
    failEachAllocation([&] { setAssertHandler([&next, ballast](string const&) { next += 1 + ballast[0]; }); },
                       [&] {
                           int const before = former;
                           assertMsg(L"x");
                           return former == before + 1 && next == 0;
                       });
    assertMsg(L"x");
    setAssertHandler({});
    EXPECT_EQ(next, 1);
}

// behaviour: LG-13
TEST(logSinkFaults, keepTheFormerSink) {
    int former = 0;
    int next = 0;
    auto const write = [] { logManager::getLogger("log faults")->log_info(L"x", "", 0, "", nullptr); };
    logManager::setLevel(zovlog::eLogInfo);
    logManager::setSink([&](zovlog::logRecord const&) { ++former; });
    std::array<char, 200> const ballast{};
    write();
    failEachAllocation(
        [&] { logManager::setSink([&next, ballast](zovlog::logRecord const&) { next += 1 + ballast[0]; }); },
        [&] {
            int const before = former;
            write();
            return former == before + 1 && next == 0;
        });
    write();
    logManager::setSink({});
    logManager::setLevel(zovlog::eLogOff);
    EXPECT_EQ(next, 1);
}

// behaviour: LG-13
TEST(logProviderFaults, keepTheFormerProvider) {
    refPtr<logger> const mine(new logger("mine"));
    std::array<char, 200> const ballast{};
    logManager::setProvider([&](char const*) { return mine; });
    failEachAllocation(
        [&] {
            logManager::setProvider(
                [ballast](char const*) { return refPtr<logger>(ballast[0] ? new logger("never") : nullptr); });
        },
        [&] { return logManager::getLogger("any") == mine; });
    EXPECT_FALSE(logManager::getLogger("any"));
    logManager::setProvider({});
}

// behaviour: LG-14
TEST(loggerFaults, giveTheLoggerAtTheNextCall) {
    for (int number = 0; number < 20; ++number) {
        std::string const name = "a logger of the fault tests, with a long name, number " + std::to_string(number);
        refPtr<logger> made;
        for (long passing = 0; passing < 10 && !made; ++passing) {
            failingAllocations const armed(passing);
            try {
                made = logManager::getLogger(name.c_str());
            } catch (std::bad_alloc const&) {
                made = nullptr;
            }
        }
        ASSERT_TRUE(made);
        EXPECT_EQ(logManager::getLogger(name.c_str()), made);
    }
}

// behaviour: LG-14
TEST(logLineFaults, loseOnlyTheLine) {
    std::vector<string> seen;
    string const message(longText);
    logManager::setLevel(zovlog::eLogInfo);
    logManager::setSink([&](zovlog::logRecord const& line) { seen.push_back(line.message); });
    refPtr<logger> const target = logManager::getLogger("log faults");
    failEachAllocation([&] { target->log_info(message, "", 0, "", nullptr); }, [&] { return seen.empty(); });
    logManager::setSink({});
    logManager::setLevel(zovlog::eLogOff);
    EXPECT_EQ(seen, (std::vector<string>{longText}));
}

// behaviour: LG-15
TEST(logWithLevelOff, allocatesNothing) {
    string const message(longText);
    refPtr<logger> const first = logManager::getLogger("known to the fault tests, and long");
    bool enabled = true;
    EXPECT_EQ(allocationsOf([&] {
                  refPtr<logger> const target = logManager::getLogger("known to the fault tests, and long");
                  enabled = target->isEnabled(zovlog::eLogInfo);
                  target->log_info(message, "", 0, "", nullptr);
                  target->log_debug(message, "", 0, "", nullptr);
                  target->log_trace(message, "", 0, "", nullptr);
              }),
              0U);
    EXPECT_FALSE(enabled);
}

// behaviour: ST-30
TEST(stringFaults, leaveTheTexts) {
    string const text(L"A Text; Of Several; Long And Very Long Pieces; For The Fault Tests");
    string const separator(L"; ");
    std::string const utf8 = text.toUtf8();
    std::u16string const utf16 = text.toUtf16();
    std::vector<string> pieces{longText, otherText};
    string result(L"x");
    std::string narrow("x");
    auto const asBefore = [&] {
        return result == L"x" && narrow == "x" && pieces == std::vector<string>{longText, otherText};
    };
    EXPECT_GE(failEachAllocation([&] { string(text.lower()).swap(result); }, asBefore), 1);
    result = L"x";
    EXPECT_GE(failEachAllocation([&] { result = string::sformat(L"%s: %d %s", text.c_str(), 7, longText); }, asBefore),
              1);
    EXPECT_EQ(result.size(), text.size() + 4 + string(longText).size());
    result = L"x";
    EXPECT_GE(failEachAllocation([&] { result = string::fromUtf8(utf8); }, asBefore), 1);
    EXPECT_EQ(result, text);
    result = L"x";
    EXPECT_GE(failEachAllocation([&] { result = string::fromUtf16(utf16); }, asBefore), 1);
    EXPECT_EQ(result, text);
    result = L"x";
    EXPECT_GE(failEachAllocation([&] { narrow = text.toUtf8(); }, asBefore), 1);
    EXPECT_EQ(narrow, utf8);
    narrow = "x";
    EXPECT_GE(failEachAllocation([&] { text.splitAt(separator, pieces, false); }, asBefore), 3);
    EXPECT_EQ(pieces.size(), 4U);
}

// behaviour: ST-31
TEST(stringDeletion, allocatesNothing) {
    string text(L" \ta text with blanks \t and tabs \t ");
    EXPECT_EQ(allocationsOf([&] {
                  text.deleteLeading(L" \t").deleteTrailing(L" \t").deleteAll(L'\t').deleteAll(L"ab").deleteTrailing(
                      L's');
              }),
              0U);
    EXPECT_EQ(text, L" text with lnks  nd t");
}

// behaviour: TC-29
TEST(conversionFaults, leaveTheRegistry) {
    struct unit {
        int code;
    };
    auto& conversions = typeconvert::typeConversionManager::instance();
    unit const source{5};
    int target = 7;
    std::array<char, 200> const ballast{};
    auto const convert = [&] { return conversions.convert(typeid(int), &target, typeid(unit), &source, 0, nullptr); };
    failEachAllocation(
        [&] {
            conversions.add<int, unit>([ballast](int& to, unit const& from) {
                to = from.code + ballast[0];
                return true;
            });
        },
        [&] { return !convert() && target == 7; });
    EXPECT_TRUE(convert());
    EXPECT_EQ(target, 5);
    conversions.add(typeid(int), typeid(unit), {});
}

} // namespace
} // namespace zov::tests
