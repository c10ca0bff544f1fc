// Several threads at once: pointers and their shared slots, names, values, sets, hooks.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <barrier>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "endingObjects.h"
#include "zovAssert.h"
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

constexpr int rounds = 8000;

// Runs each of the given functions on a thread of its own; all begin together.
void runTogether(std::vector<std::function<void()>> const& actions) {
    std::barrier startLine(static_cast<std::ptrdiff_t>(actions.size()));
    std::vector<std::thread> threads;
    for (auto const& action : actions) {
        threads.emplace_back([&startLine, &action] {
            startLine.arrive_and_wait();
            action();
        });
    }
    for (auto& thread : threads)
        thread.join();
}

// An action that is repeated.
std::function<void()> repeated(std::function<void(int)> action, int times = rounds) {
    return [action = std::move(action), times] {
        for (int round = 0; round < times; ++round)
            action(round);
    };
}

// Says while it lives that it does, and poisons itself when it ends.
class guarded : public refObj {
public:
    guarded() { ++objectsAlive; }
    ~guarded() override {
        mFirst = -1;
        mSecond = -1;
        --objectsAlive;
    }
    bool isWhole() const { return mFirst == 42 && mSecond == 42; }
    using refObj::currentCount;

private:
    void destroy() override { delete this; }

    int volatile mFirst = 42;
    int volatile mSecond = 42;
};

// The same without a count of its own.
struct plainGuarded {
    plainGuarded() { ++objectsAlive; }
    plainGuarded(plainGuarded const&) = delete;
    plainGuarded& operator=(plainGuarded const&) = delete;
    ~plainGuarded() {
        first = -1;
        second = -1;
        --objectsAlive;
    }
    bool isWhole() const { return first == 42 && second == 42; }

    int volatile first = 42;
    int volatile second = 42;
};

// behaviour: RP-29
TEST(countsOfThreads, addUp) {
    refPtr<guarded> const object(new guarded);
    auto const copy = repeated([&](int) {
        refPtr<guarded> const one(object);
        const_refPtr<guarded> const other(one);
    });
    auto const keep = repeated([&](int) { object->addRef(); });
    runTogether({copy, keep, copy, keep});
    EXPECT_EQ(object->currentCount(), 1U + 2 * rounds);
    for (int reference = 0; reference < 2 * rounds; ++reference)
        object->release();
    EXPECT_EQ(object->currentCount(), 1U);
}

// behaviour: RP-29
TEST(countsOfThreads, ofPrimitivesAddUp) {
    unsigned long volatile wide = 0;
    std::uint32_t volatile narrow = 0;
    auto const up = repeated([&](int) {
        interlockedIncrement(&wide);
        interlockedIncrement(&narrow);
        interlockedIncrement(&narrow);
        interlockedDecrement(&narrow);
    });
    runTogether({up, up, up});
    EXPECT_EQ(wide, 3UL * rounds);
    EXPECT_EQ(narrow, 3U * rounds);
}

// behaviour: RP-30
TEST(lastReference, endsTheObjectOnceWhoeverGivesItUp) {
    auto const before = objectsAlive.load();
    for (int round = 0; round < 200; ++round) {
        refPtr<guarded> first(new guarded);
        refPtr<guarded> second(first);
        refPtr<guarded> third(first);
        auto const giveUp = [](refPtr<guarded>& pointer) {
            return [&pointer] {
                EXPECT_TRUE(pointer->isWhole());
                pointer.reset();
            };
        };
        runTogether({giveUp(first), giveUp(second), giveUp(third)});
        ASSERT_EQ(objectsAlive, before);
    }
}

// behaviour: RP-31
TEST(sharedSlotOfRefPtr, neverShowsAnEndedObject) {
    auto const before = objectsAlive.load();
    {
        refPtr<guarded> slot(new guarded);
        std::atomic<int> broken{0};
        auto const read = repeated([&](int) {
            refPtr<guarded> copy;
            {
                referencePtrLocker const guard;
                copy = slot;
            }
            if (copy && !copy->isWhole()) ++broken;
        });
        auto const write = repeated([&](int round) {
            if (round % 3 == 0) slot = refPtr<guarded>(new guarded);
            if (round % 3 == 1) slot.reset(new guarded);
            if (round % 3 == 2) slot = nullptr;
        });
        runTogether({read, write, read, write});
        EXPECT_EQ(broken, 0);
    }
    EXPECT_EQ(objectsAlive, before);
}

// behaviour: RP-31
TEST(sharedSlotOfConstRefPtr, neverShowsAnEndedObject) {
    auto const before = objectsAlive.load();
    {
        const_refPtr<guarded> slot(new guarded);
        std::atomic<int> broken{0};
        auto const read = repeated([&](int) {
            const_refPtr<guarded> copy;
            {
                referencePtrLocker const guard;
                copy = slot;
            }
            if (!copy->isWhole()) ++broken;
        });
        auto const write = repeated([&](int) {
            refPtr<guarded> const next(new guarded);
            slot = next;
        });
        runTogether({read, write, write});
        EXPECT_EQ(broken, 0);
    }
    EXPECT_EQ(objectsAlive, before);
}

// behaviour: SP-21
TEST(sharedSlotOfSharedPtr, neverShowsAnObjectWithAnothersCounter) {
    auto const before = objectsAlive.load();
    {
        sharedPtr<plainGuarded> slot(new plainGuarded);
        std::atomic<int> broken{0};
        auto const read = repeated([&](int) {
            sharedPtr<plainGuarded> copy;
            {
                sharedPtrLocker const guard;
                copy = slot;
            }
            if (copy && !copy->isWhole()) ++broken;
        });
        auto const write = repeated([&](int round) {
            sharedPtr<plainGuarded> next(new plainGuarded);
            if (round % 4 == 0) slot = next;
            if (round % 4 == 1) slot = std::move(next);
            if (round % 4 == 2) slot.exchange(next);
            if (round % 4 == 3) slot.reset();
        });
        runTogether({read, write, read, write});
        EXPECT_EQ(broken, 0);
    }
    EXPECT_EQ(objectsAlive, before);
}

// behaviour: SP-22
TEST(sharedPtrCopies, ofThreadsEndTheObjectOnce) {
    auto const before = objectsAlive.load();
    {
        sharedPtr<plainGuarded> const object(new plainGuarded);
        const_sharedPtr<plainGuarded> const observer(object);
        auto const copy = repeated([&](int) {
            sharedPtr<plainGuarded> const one(object);
            const_sharedPtr<plainGuarded> const other(one);
            EXPECT_TRUE(other->isWhole());
        });
        runTogether({copy, copy, copy});
        EXPECT_EQ(observer.refCount(), 2U);
    }
    EXPECT_EQ(objectsAlive, before);
}

// behaviour: RE-15
TEST(endingOnThreads, keepsEachThreadsOrder) {
    auto const end = [] {
        for (int round = 0; round < 20; ++round) {
            std::vector<int> ended;
            refPtr<node> first = chainOf(100, ended);
            first.reset();
            EXPECT_EQ(ended.size(), 100U);
            EXPECT_TRUE(std::is_sorted(ended.begin(), ended.end()));
        }
    };
    runTogether({end, end, end});
}

// behaviour: SC-14
TEST(interningOnThreads, givesEqualTextsOneHandle) {
    int const texts = 3000;
    std::vector<std::vector<scString>> handles(4);
    std::vector<std::function<void()>> actions;
    for (std::size_t thread = 0; thread < handles.size(); ++thread) {
        actions.push_back([&, thread] {
            for (int at = 0; at < texts; ++at) {
                // Each thread goes its own way through the same texts.
                int const number = thread % 2 == 0 ? at : texts - 1 - at;
                handles[thread].push_back(scString::createFrom(string(L"threads " + std::to_wstring(number))));
            }
            if (thread % 2 == 1) std::reverse(handles[thread].begin(), handles[thread].end());
        });
    }
    runTogether(actions);
    for (auto const& other : handles)
        ASSERT_EQ(other, handles.front());
    for (int number = 0; number < texts; ++number)
        ASSERT_EQ(handles.front()[static_cast<std::size_t>(number)].string(), L"threads " + std::to_wstring(number));
}

// behaviour: SC-14
TEST(findingOnThreads, neverMissesAnInternedText) {
    std::vector<string> knownTexts;
    std::vector<scString> known;
    for (int number = 0; number < 100; ++number) {
        knownTexts.push_back(L"known to threads " + std::to_wstring(number));
        known.push_back(scString::createFrom(knownTexts.back()));
    }
    std::atomic<int> wrong{0};
    auto const find = repeated([&](int round) {
        std::size_t const at = static_cast<std::size_t>(round) % known.size();
        if (scString::find(knownTexts[at]) != known[at]) ++wrong;
        if (scString::findLowered(L"KNOWN TO THREADS " + std::to_wstring(at)) != known[at]) ++wrong;
        if (scString::find(L"unknown to threads")) ++wrong;
    });
    std::atomic<int> published{0};
    std::vector<scString> made(3 * rounds);
    auto const intern = [&] {
        for (int number = 0; number < 3 * rounds; ++number) {
            made[static_cast<std::size_t>(number)] =
                scString::createFrom(string(L"growing " + std::to_wstring(number)));
            published.store(number + 1, std::memory_order_release);
        }
    };
    auto const follow = repeated([&](int) {
        int const last = published.load(std::memory_order_acquire) - 1;
        if (last >= 0 && scString::find(L"growing " + std::to_wstring(last)) != made[static_cast<std::size_t>(last)])
            ++wrong;
    });
    runTogether({find, intern, follow, find});
    EXPECT_EQ(wrong, 0);
}

// The two texts that are written; long, so that half a copy would show.
string const ones(60, L'1');
string const twos(40, L'2');

// behaviour: GV-30
TEST(valueOnThreads, isWrittenAndReadWhole) {
    genericValue value(ones);
    auto& holder = dynamic_cast<genericValue::holder<string>&>(*value.heldBy());
    std::atomic<int> broken{0};
    auto const write = repeated([&](int round) { holder.setValue(round % 2 ? ones : twos); });
    auto const assign = repeated([&](int round) { value.assignText(round % 2 ? twos : ones); });
    auto const read = repeated([&](int) {
        string seen;
        if (!value.getValue(seen) || (seen != ones && seen != twos)) ++broken;
    });
    auto const copy = repeated([&](int) {
        genericValue const seen(value);
        string const* const text = seen.valuePtr<string>();
        if (!text || (*text != ones && *text != twos)) ++broken;
    });
    runTogether({write, assign, read, copy});
    EXPECT_EQ(broken, 0);
}

// behaviour: GV-30
TEST(valueOnThreads, isConvertedWhole) {
    string const smallNumber(L"                                           11");
    string const largeNumber(L"1000000011");
    genericValue value(smallNumber);
    genericValue::valueholder<long> target(11);
    auto& holder = dynamic_cast<genericValue::holder<string>&>(*value.heldBy());
    std::atomic<int> broken{0};
    auto const isWhole = [](long number) { return number == 11 || number == 1000000011; };
    auto const write = repeated([&](int round) { holder.setValue(round % 2 ? smallNumber : largeNumber); });
    auto const read = repeated([&](int) {
        long seen = 0;
        if (!value.getValue(seen) || !isWhole(seen)) ++broken;
    });
    auto const assign = repeated([&](int) {
        if (!target.assignFrom(holder)) ++broken;
    });
    runTogether({write, read, assign});
    EXPECT_EQ(broken, 0);
    EXPECT_TRUE(isWhole(target.value()));
}

// behaviour: GV-30
TEST(valuesOnThreads, areAssignedToEachOtherWithoutDeadlock) {
    genericValue::valueholder<string> one(ones);
    genericValue::valueholder<string> other(twos);
    auto const there = repeated([&](int) { EXPECT_TRUE(one.assignTo(other)); });
    auto const back = repeated([&](int) { EXPECT_TRUE(other.assignTo(one)); });
    runTogether({there, back, there, back});
    EXPECT_TRUE(one.value() == ones || one.value() == twos);
    EXPECT_TRUE(other.value() == ones || other.value() == twos);
}

// behaviour: GV-31
TEST(valueVariableOnThreads, isAssignedAndCopiedWhole) {
    genericValue slot(ones);
    genericValue const number(42);
    std::atomic<int> broken{0};
    auto const write = repeated([&](int round) {
        if (round % 4 == 0) slot = genericValue(twos);
        if (round % 4 == 1) slot = number;
        if (round % 4 == 2) slot = genericValue();
        if (round % 4 == 3) slot = genericValue(ones);
    });
    auto const copy = repeated([&](int) {
        genericValue const seen(slot);
        if (seen.isEmpty()) return;
        string const* const text = seen.valuePtr<string>();
        int const* const whole = seen.valuePtr<int>();
        if (text ? (*text != ones && *text != twos) : (!whole || *whole != 42)) ++broken;
    });
    auto const read = repeated([&](int) {
        string seen;
        if (slot.getValue(seen) && seen != ones && seen != twos && seen != L"42") ++broken;
    });
    runTogether({write, copy, read, write});
    EXPECT_EQ(broken, 0);
}

// behaviour: GS-26
TEST(setOnThreads, isReadWrittenAndCopiedWhole) {
    genericSet set;
    scString const keys[] = {scString::createFrom(L"a"), scString::createFrom(L"b"), scString::createFrom(L"c")};
    for (scString const key : keys)
        set.setValue(key, ones, false);
    std::atomic<int> broken{0};
    auto const check = [&](genericValue const& value) {
        string seen;
        if (!value.getValue(seen) || (seen != ones && seen != twos)) ++broken;
    };
    auto const write = repeated([&](int round) {
        auto const& key = keys[round % 2];
        if (round % 10 == 0) {
            set.erase(key);
        } else {
            EXPECT_TRUE(set.setValue(key, round % 3 ? ones : twos, false));
        }
    });
    auto const writeThrough =
        repeated([&](int round) { set.genericValue(keys[2])->assignText(round % 2 ? ones : twos); });
    auto const read = repeated([&](int round) {
        string seen;
        if (set.getValue(keys[round % 3], seen) && seen != ones && seen != twos) ++broken;
        if (auto const entry = std::as_const(set).genericValue(keys[round % 2])) check(*entry);
        if (set.size() < 1 || set.size() > 3) ++broken;
    });
    auto const copy = repeated(
        [&](int) {
            genericSet const taken(set);
            genericSet assigned;
            assigned = taken;
            set.forEach(
                [&](scString const&, genericValue const& value) {
                    check(value);
                    return true;
                },
                true);
            assigned.forEach(
                [&](scString const&, genericValue const& value) {
                    check(value);
                    return true;
                },
                true);
        },
        rounds / 4);
    runTogether({write, writeThrough, read, copy});
    EXPECT_EQ(broken, 0);
}

// behaviour: GS-26
TEST(setOnThreads, isFilledFirstByOneOfThem) {
    for (int round = 0; round < 100; ++round) {
        genericSet set;
        runTogether({[&] { set.setValue(L"one", 1, false); }, [&] { set.setValue(L"two", 2, false); },
                     [&] { EXPECT_LE(genericSet(set).size(), 2U); }});
        ASSERT_EQ(set.size(), 2U);
    }
}

// behaviour: AS-12
TEST(assertHandlerOnThreads, isReplacedWhileOthersReport) {
    std::atomic<int> reported{0};
    setAssertHandler([&](string const&) { ++reported; });
    auto const report = repeated([&](int) {
        try {
            assertThat(false, L"holds", "file.cpp", 1);
        } catch (bool) {
        }
    });
    auto const replace = repeated([&](int round) {
        setAssertHandler([&, text = std::to_wstring(round)](string const& message) {
            if (message.starts_with(L"Assertion failed:\nholds") && !text.empty()) ++reported;
        });
    });
    runTogether({report, replace, report});
    setAssertHandler({});
    EXPECT_EQ(reported, 2 * rounds);
}

// behaviour: LG-16
TEST(logHooksOnThreads, areReplacedWhileOthersLog) {
    std::atomic<int> written{0};
    std::atomic<int> wrong{0};
    auto const sink = [&](zovlog::logRecord const& line) {
        line.message == L"a line of text that is long enough" ? ++written : ++wrong;
    };
    refPtr<logger> const own(new logger("own"));
    logManager::setSink(sink);
    logManager::setLevel(zovlog::eLogInfo);
    auto const log = repeated([&](int) {
        logManager::getLogger("threads")->log_info(L"a line of text that is long enough", "file.cpp", 1, "f", nullptr);
    });
    auto const replace = repeated([&](int round) {
        logManager::setSink([&, text = std::to_wstring(round)](zovlog::logRecord const& line) { sink(line); });
        logManager::setProvider([&](char const*) { return own; });
        logManager::setLevel(round % 2 ? zovlog::eLogInfo : zovlog::eLogTrace);
        logManager::setProvider({});
    });
    runTogether({log, replace, log});
    logManager::setLevel(zovlog::eLogOff);
    logManager::setSink({});
    EXPECT_EQ(written, 2 * rounds);
    EXPECT_EQ(wrong, 0);
}

// behaviour: LG-16
TEST(loggersOnThreads, areTheSameForAll) {
    std::vector<std::vector<refPtr<logger>>> loggers(4);
    std::vector<std::function<void()>> actions;
    for (auto& own : loggers) {
        actions.push_back([&own] {
            for (int number = 0; number < 100; ++number)
                own.push_back(logManager::getLogger(("threads " + std::to_string(number)).c_str()));
        });
    }
    runTogether(actions);
    for (auto const& own : loggers)
        EXPECT_EQ(own, loggers.front());
}

} // namespace
} // namespace zov::tests
