// Values and sets beside threads that hold the pointer locker, that replace what others read, and that write it.
#include <gtest/gtest.h>

#include <barrier>
#include <cstddef>
#include <cwchar>
#include <functional>
#include <thread>
#include <typeinfo>
#include <utility>
#include <vector>

#include "threadedRuns.h"
#include "zovGenericSet.h"
#include "zovGenericValue.h"
#include "zovScString.h"
#include "zovSharedPtr.h"
#include "zovString.h"

namespace zov::tests {
namespace {

using zov::string;

constexpr int rounds = 8000;

// An action that is repeated.
std::function<void()> repeated(std::function<void(int)> action, int times = rounds) {
    return [action = std::move(action), times] {
        for (int round = 0; round < times; ++round)
            action(round);
    };
}

// ---- values that are assigned to under the pointer locker

// A value that is an entry of a set, and all ways to read it.
class valueUnderTheLocker : public testing::Test {
protected:
    using isWanted = std::function<bool(int)>;

    // Tells whether the value is held as an int, or converts from one, that is wanted; as far as that way tells.
    using reading = std::function<bool(isWanted const&)>;

    std::vector<reading> readings() {
        return {[this](isWanted const& wanted) {
                    int number = 0;
                    return mValue.getValue(number) && wanted(number);
                },
                [this](isWanted const& wanted) {
                    string text;
                    return mValue.getValue(text) && wanted(static_cast<int>(std::wcstol(text.c_str(), nullptr, 10)));
                },
                [this](isWanted const&) { return mValue.type() == typeid(int); },
                [this](isWanted const&) { return !mValue.isEmpty(); },
                [this](isWanted const& wanted) { return holds(genericValue(mValue), wanted); },
                [this](isWanted const& wanted) {
                    genericValue target(L"before");
                    target = mValue;
                    return holds(target, wanted);
                },
                [this](isWanted const& wanted) {
                    int number = 0;
                    return mSet.getValue(mKey, number) && wanted(number);
                },
                [this](isWanted const& wanted) {
                    genericValue target(L"before");
                    return mSet.copyValue(mKey, target) && holds(target, wanted);
                }};
    }

    static bool holds(genericValue const& value, isWanted const& wanted) {
        int const* const number = value.valuePtr<int>();
        return number && wanted(*number);
    }

    // Gives another thread, which has come to the same point, time to do what it should wait with.
    static void dawdle() {
        for (int times = 0; times < 20; ++times)
            std::this_thread::yield();
    }

    // Empties the value and sets it to the round's number, under one locker; does `between` in between. Each round
    // begins its second half, and ends, together with another thread.
    std::function<void()> replacedTwice(std::barrier<>& bothAreHere, int times, std::function<void(int)> between) {
        return repeated(
            [this, &bothAreHere, between = std::move(between)](int round) {
                {
                    sharedPtrLocker const guard;
                    mValue = genericValue();
                    bothAreHere.arrive_and_wait();
                    dawdle();
                    between(round);
                    mValue = genericValue(round);
                }
                bothAreHere.arrive_and_wait();
            },
            times);
    }

    scString const mKey = scString::createFrom(L"number");
    genericSet mSet = [this] {
        genericSet set;
        set.setValue(mKey, 1, false);
        return set;
    }();
    sharedPtr<genericValue> mEntry = mSet.genericValue(mKey);
    genericValue& mValue = *mEntry;
    violations mViolations;
};

// behaviour: GV-33, GS-28
TEST_F(valueUnderTheLocker, neverShowsTheFirstOfTwoAssignments) {
    genericValue const first[] = {genericValue(), genericValue(L"2"), genericValue(2)};
    genericValue const second[] = {genericValue(1), genericValue(3)};
    auto const write = repeated(
        [&](int round) {
            sharedPtrLocker const guard;
            mValue = first[round % 3];
            mValue = second[round % 2];
        },
        5 * rounds);
    auto const read = repeated([this, all = readings()](int) {
        for (auto const& isRead : all)
            mViolations.check(isRead([](int number) { return number == 1 || number == 3; }));
    });
    runTogether({write, read, read});
}

// behaviour: GV-33, GS-28
TEST_F(valueUnderTheLocker, isReadAsItIsWhenTheLockerIsReleased) {
    int const times = 2000;
    std::barrier<> bothAreHere(2);
    auto const write = replacedTwice(bothAreHere, times, [](int) {});
    auto const read = repeated(
        [&, all = readings()](int round) {
            bothAreHere.arrive_and_wait();
            auto const& isRead = all[static_cast<std::size_t>(round) % all.size()];
            mViolations.check(isRead([=](int number) { return number == round; }));
            bothAreHere.arrive_and_wait();
        },
        times);
    runTogether({write, read});
}

// behaviour: GV-33, GS-28
TEST_F(valueUnderTheLocker, leavesItsSetFreeWhileACopyOfItWaits) {
    int const times = 1000;
    scString const other = scString::createFrom(L"other");
    std::barrier<> bothAreHere(2);
    auto const write = replacedTwice(bothAreHere, times, [&](int round) {
        int stored = -1;
        mViolations.check(mSet.setValue(other, round, false) && mSet.size() == 2);
        mViolations.check(mSet.getValue(other, stored) && stored == round);
    });
    auto const copy = repeated(
        [&](int round) {
            genericValue target;
            bothAreHere.arrive_and_wait();
            mViolations.check(mSet.copyValue(mKey, target));
            mViolations.check(holds(target, [=](int number) { return number == round; }));
            bothAreHere.arrive_and_wait();
        },
        times);
    runTogether({write, copy});
}

// behaviour: GV-33, GS-28
TEST_F(valueUnderTheLocker, isReadAndCopiedByTheThreadThatHoldsIt) {
    auto const work = [this](int ownFirst) {
        return repeated(
            [this, ownFirst, all = readings()](int round) {
                int const own = ownFirst + round;
                sharedPtrLocker const guard;
                mValue = genericValue(own);
                for (auto const& isRead : all)
                    mViolations.check(isRead([=](int number) { return number == own; }));
            },
            rounds / 4);
    };
    runTogether({work(0), work(rounds), work(2 * rounds)});
}

// Copying it copies the value within, under the lock of the outer one.
struct crate {
    genericValue within{17};
};

// behaviour: GV-33
TEST(valuesWithinValues, areCopiedByAThreadThatHoldsTheLockerWhileOthersCopyThem) {
    genericValue const outer{crate()};
    violations seen;
    auto const copyOne = [&] {
        genericValue const copy(outer);
        auto const* const copied = copy.valuePtr<crate>();
        int number = 0;
        seen.check(copied && copied->within.getValue(number) && number == 17);
    };
    auto const copy = repeated([&](int) { copyOne(); });
    auto const copyUnderTheLocker = repeated([&](int) {
        sharedPtrLocker const guard;
        copyOne();
    });
    runTogether({copy, copy, copyUnderTheLocker});
}

// ---- values and sets that are replaced while others read them

// behaviour: GV-30, GV-31
TEST(numberVariableOnThreads, isReplacedAndWrittenWhole) {
    int const one = 0x11111111;
    int const other = 0x22222222;
    int const times = 5 * rounds;
    genericValue const values[] = {genericValue(one), genericValue(other)};
    genericValue slot(one);
    violations seen;
    auto const isWhole = [&](int number) { return number == one || number == other; };
    auto const replace = repeated(
        [&](int round) {
            if (round % 2) {
                slot = genericValue(one);
            } else {
                slot = values[round / 2 % 2];
            }
        },
        times);
    // Under the locker nobody replaces the holder.
    auto const write = repeated(
        [&](int round) {
            sharedPtrLocker const guard;
            dynamic_cast<genericValue::holder<int>&>(*slot.heldBy()).setValue(round % 2 ? one : other);
        },
        times);
    auto const read = repeated(
        [&](int) {
            int number = 0;
            seen.check(slot.getValue(number) && isWhole(number));
            seen.check(!slot.isEmpty());
        },
        times);
    auto const copy = repeated(
        [&](int) {
            genericValue const taken(slot);
            int const* const number = taken.valuePtr<int>();
            seen.check(number && isWhole(*number));
        },
        times);
    runTogether({replace, write, read, copy});
}

// The entries of a set; of each, a copy is kept.
std::vector<genericValue> entriesOf(genericSet const& set) {
    std::vector<genericValue> entries;
    set.forEach(
        [&](scString const&, genericValue const& value) {
            entries.push_back(value);
            return true;
        },
        true);
    return entries;
}

// behaviour: GS-26
TEST(setOnThreads, isAssignedToWhole) {
    scString const keys[] = {scString::createFrom(L"a"), scString::createFrom(L"b"), scString::createFrom(L"c")};
    // The first set has the entry "a" alone, the next ones an entry more each; an entry's value is the set's size.
    genericSet states[3];
    for (int size = 1; size <= 3; ++size)
        for (int at = 0; at < size; ++at)
            states[size - 1].setValue(keys[at], size, false);
    genericSet set(states[0]);
    violations seen;
    // Whether a set of that size has the entry.
    auto const belongs = [](int number, int at) { return number > at && number <= 3; };
    auto const isWhole = [](std::vector<genericValue> const& entries) {
        for (genericValue const& each : entries) {
            int const* const number = each.valuePtr<int>();
            if (!number || static_cast<std::size_t>(*number) != entries.size()) return false;
        }
        return !entries.empty();
    };
    auto const assign = repeated([&](int round) {
        genericSet const& next = states[round % 3];
        if (round % 2) {
            set = next;
        } else {
            set = genericSet(next);
        }
    });
    auto const look = repeated([&](int round) {
        int const at = round % 3;
        int number = 0;
        genericValue copy;
        auto const entry = set.genericValue(keys[at]);
        seen.check(entry ? entry->getValue(number) && belongs(number, at) : at > 0);
        seen.check(set.getValue(keys[at], number) ? belongs(number, at) : at > 0);
        seen.check(set.copyValue(keys[at], copy) ? copy.getValue(number) && belongs(number, at) : at > 0);
        seen.check(set.size() >= 1 && set.size() <= 3);
    });
    auto const walk = repeated(
        [&](int) {
            seen.check(isWhole(entriesOf(set)));
            seen.check(isWhole(entriesOf(genericSet(set))));
        },
        rounds / 2);
    runTogether({assign, look, walk});
}

} // namespace
} // namespace zov::tests
