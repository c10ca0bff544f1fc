// Shared ownership with a counter outside of the object.
#include "zovSharedPtr.h"

#include <gtest/gtest.h>

#include <atomic>
#include <concepts>
#include <cstdint>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "endingObjects.h"
#include "eventLog.h"

namespace zov::tests {
namespace {

struct base {
    base() { ++alive; }
    virtual ~base() { --alive; }
    base(base const&) = delete;
    base& operator=(base const&) = delete;
    int number() const { return 7; }

    static inline int alive = 0;
};
struct derived : base {
    derived() { ++derivedAlive; }
    ~derived() override { --derivedAlive; }

    static inline int derivedAlive = 0;
};

// The counter's value, as a pointer to a const object tells it; the asking pointer is not counted.
template <class T>
std::uint32_t countOf(sharedPtr<T> const& pointer) {
    const_sharedPtr<T> const asking(pointer);
    return asking.refCount() - (asking.refCount() ? 1 : 0);
}

// behaviour: SP-02
static_assert(std::convertible_to<sharedPtr<base>, const_sharedPtr<base>>);
static_assert(!std::is_constructible_v<sharedPtr<base>, const_sharedPtr<base>>);
static_assert(!std::is_assignable_v<sharedPtr<base>&, const_sharedPtr<base>>);
static_assert(!std::convertible_to<base*, sharedPtr<base>>);
static_assert(std::convertible_to<std::nullptr_t, sharedPtr<base>>);
static_assert(!std::convertible_to<sharedPtr<base>, bool>);
// behaviour: SP-03
static_assert(std::same_as<sharedPtr<base>, sharedPtr<base, deleteObj<base>>>);
static_assert(std::same_as<decltype(*std::declval<sharedPtr<base>&>()), base&>);
static_assert(std::same_as<decltype(*std::declval<sharedPtr<base> const&>()), base const&>);
static_assert(std::same_as<decltype(std::declval<sharedPtr<base> const&>().get()), base const*>);
static_assert(std::same_as<decltype(*std::declval<const_sharedPtr<base>&>()), base const&>);
// behaviour: SP-04
static_assert(std::is_nothrow_move_constructible_v<sharedPtr<base>>);
static_assert(std::is_nothrow_move_assignable_v<sharedPtr<base>>);
static_assert(std::is_nothrow_copy_constructible_v<sharedPtr<base>>);
static_assert(std::is_nothrow_move_constructible_v<const_sharedPtr<base>>);

// behaviour: SP-05
TEST(sharedPtrCopy, ofAnEmptyPointerCountsNothing) {
    sharedPtr<base> const empty;
    sharedPtr<base> const copy(empty);
    const_sharedPtr<base> const constCopy(empty);
    EXPECT_FALSE(copy);
    EXPECT_FALSE(constCopy);
    EXPECT_EQ(constCopy.refCount(), 0U);
}

// behaviour: SP-06
TEST(constSharedPtrCount, ofAnEmptyPointerIsNothing) {
    EXPECT_EQ(const_sharedPtr<base>().refCount(), 0U);
    EXPECT_EQ(const_sharedPtr<base>(nullptr).refCount(), 0U);
}

// behaviour: SP-06
TEST(constSharedPtrCount, isReadThroughTheInterface) {
    const_sharedPtr<base> const one(new base);
    iRefCount const& interface = one;
    EXPECT_EQ(interface.refCount(), 1U);
    const_sharedPtr<base> const other(one);
    EXPECT_EQ(interface.refCount(), 2U);
}

// behaviour: SP-07
TEST(sharedPtrOwnership, beginsAtOneAndCountsCopies) {
    sharedPtr<base> one(new base);
    EXPECT_EQ(countOf(one), 1U);
    {
        sharedPtr<base> const two(one);
        const_sharedPtr<base> const three(two);
        EXPECT_EQ(three.refCount(), 3U);
        EXPECT_EQ(three.get(), two.get());
    }
    EXPECT_EQ(countOf(one), 1U);
}

// behaviour: SP-08
TEST(sharedPtrOwnership, endsTheObjectOnceThroughItsVirtualDestructor) {
    int const before = base::alive;
    sharedPtr<base> one(new derived);
    const_sharedPtr<base> other(one);
    one.reset();
    EXPECT_EQ(derived::derivedAlive, 1);
    other.reset();
    EXPECT_EQ(derived::derivedAlive, 0);
    EXPECT_EQ(base::alive, before);
}

// behaviour: SP-08
TEST(sharedPtrOwnership, endsTheObjectByItsPolicy) {
    static int ended = 0;
    struct leaveAlone {
        void operator()(int*) const noexcept { ++ended; }
    };
    int object = 0;
    {
        sharedPtr<int, leaveAlone> const one(&object);
        const_sharedPtr<int, leaveAlone> const other(one);
    }
    EXPECT_EQ(ended, 1);
}

// behaviour: SP-09
TEST(sharedPtrOwnership, ofNoObjectHasACounterToo) {
    const_sharedPtr<base> const one(static_cast<base*>(nullptr));
    EXPECT_FALSE(one);
    EXPECT_EQ(one.refCount(), 1U);
    const_sharedPtr<base> const other(one);
    EXPECT_EQ(one.refCount(), 2U);
}

// behaviour: SP-10
TEST(sharedPtrCounter, comesFromAndGoesBackToTheLibrary) {
    std::uint32_t volatile* const counter = shptr::allocCounter();
    ASSERT_NE(counter, nullptr);
    *counter = 1;
    EXPECT_EQ(interlockedIncrement(counter), 2);
    shptr::releaseCounter(counter);
    shptr::releaseCounter(nullptr);
}

// behaviour: SP-09, SP-10
TEST(sharedPtrCounter, ofNoObjectGoesBackToo) {
    std::uint32_t volatile* const first = shptr::allocCounter();
    shptr::releaseCounter(first);
    { sharedPtr<base> const nothing(static_cast<base*>(nullptr)); }
    std::uint32_t volatile* const next = shptr::allocCounter();
    EXPECT_TRUE(next == first);
    shptr::releaseCounter(next);
}

// behaviour: SP-11
TEST(sharedPtrAssignment, sharesTheNewObjectAndGivesUpTheFormer) {
    int const before = base::alive;
    sharedPtr<base> one(new base);
    sharedPtr<base> other(new base);
    EXPECT_EQ(base::alive, before + 2);
    other = one;
    EXPECT_EQ(base::alive, before + 1);
    EXPECT_EQ(other, one);
    EXPECT_EQ(countOf(one), 2U);
    const_sharedPtr<base> constOther(new base);
    constOther = one;
    EXPECT_EQ(base::alive, before + 1);
    EXPECT_EQ(constOther.refCount(), 3U);
    other = nullptr;
    EXPECT_FALSE(other);
    EXPECT_EQ(countOf(other), 0U);
    EXPECT_EQ(constOther.refCount(), 2U);
}

// behaviour: SP-12
TEST(sharedPtrAssignment, toItselfKeepsTheObject) {
    int const before = base::alive;
    sharedPtr<base> one(new base);
    sharedPtr<base>& same = one;
    one = same;
    EXPECT_EQ(countOf(one), 1U);
    one = std::move(same);
    EXPECT_EQ(countOf(one), 1U);
    const_sharedPtr<base> constOne(one);
    const_sharedPtr<base>& constSame = constOne;
    constOne = constSame;
    constOne = std::move(constSame);
    EXPECT_EQ(constOne.refCount(), 2U);
    EXPECT_EQ(base::alive, before + 1);
}

// behaviour: SP-13
TEST(sharedPtrMove, neverCounts) {
    sharedPtr<base> one(new base);
    base const* const object = one.get();
    sharedPtr<base> two(std::move(one));
    EXPECT_FALSE(one);
    EXPECT_EQ(two.get(), object);
    EXPECT_EQ(countOf(two), 1U);
    one = std::move(two);
    EXPECT_FALSE(two);
    EXPECT_EQ(countOf(one), 1U);
    const_sharedPtr<base> three(one);
    const_sharedPtr<base> four(std::move(three));
    EXPECT_EQ(three.refCount(), 0U);
    EXPECT_EQ(four.refCount(), 2U);
    three = std::move(four);
    EXPECT_EQ(four.refCount(), 0U);
    EXPECT_EQ(three.refCount(), 2U);
}

// behaviour: SP-13
TEST(sharedPtrMove, toAConstPointerNeverCounts) {
    sharedPtr<base> one(new base);
    const_sharedPtr<base> const two(std::move(one));
    EXPECT_FALSE(one);
    EXPECT_EQ(two.refCount(), 1U);
}

// behaviour: SP-14
TEST(sharedPtrReset, givesTheObjectUp) {
    int const before = base::alive;
    sharedPtr<base> one(new base);
    one.reset();
    EXPECT_FALSE(one);
    EXPECT_EQ(base::alive, before);
    one.reset();
    one.reset(new base);
    one.reset(new base);
    EXPECT_EQ(base::alive, before + 1);
    EXPECT_EQ(countOf(one), 1U);
}

// behaviour: SP-14
TEST(sharedPtrExchange, swapsObjectsWithTheirCounters) {
    sharedPtr<base> one(new base);
    sharedPtr<base> const oneMore(one);
    sharedPtr<base> other(new base);
    base const* const first = one.get();
    base const* const second = other.get();
    one.exchange(other);
    EXPECT_EQ(one.get(), second);
    EXPECT_EQ(other.get(), first);
    EXPECT_EQ(countOf(one), 1U);
    EXPECT_EQ(countOf(other), 2U);
}

// behaviour: SP-15
TEST(sharedPtrNullTest, tellsAnEmptyPointer) {
    sharedPtr<base> const full(new base);
    sharedPtr<base> const empty;
    EXPECT_TRUE(full);
    EXPECT_FALSE(empty);
    EXPECT_TRUE(full != nullptr);
    EXPECT_TRUE(empty == nullptr);
    EXPECT_TRUE(full != empty);
    EXPECT_TRUE(full == sharedPtr<base>(full));
    EXPECT_TRUE(const_sharedPtr<base>(full) != nullptr);
    EXPECT_TRUE(const_sharedPtr<base>(full) == const_sharedPtr<base>(full));
}

// behaviour: SP-16
TEST(sharedPtrDereference, reachesTheObject) {
    sharedPtr<base> pointer(new base);
    sharedPtr<base> const& constAccess = pointer;
    const_sharedPtr<base> const constPointer(pointer);
    EXPECT_EQ(pointer->number(), 7);
    EXPECT_EQ(constAccess->number(), 7);
    EXPECT_EQ(constPointer->number(), 7);
    EXPECT_EQ(&*pointer, pointer.get());
    EXPECT_EQ(&*constAccess, pointer.get());
    EXPECT_EQ(&*constPointer, pointer.get());
}

std::vector<std::string> reportOf(char const* line) {
    return {std::string("assert m_p != nullptr @ libs/utils/inc/zovSharedPtr.h:") + line};
}

// behaviour: SP-17
TEST(sharedPtrDereference, ofAnEmptyPointerReportsTheLineOfItsForm) {
    eventLog events;
    sharedPtr<base> empty;
    sharedPtr<base> const& constAccess = empty;
    EXPECT_TRUE(throwsFalse([&] { static_cast<void>(&*constAccess); }));
    EXPECT_EQ(events.take(), reportOf("127"));
    EXPECT_TRUE(throwsFalse([&] { static_cast<void>(&*empty); }));
    EXPECT_EQ(events.take(), reportOf("132"));
    EXPECT_TRUE(throwsFalse([&] { static_cast<void>(constAccess->number()); }));
    EXPECT_EQ(events.take(), reportOf("138"));
    EXPECT_TRUE(throwsFalse([&] { static_cast<void>(empty->number()); }));
    EXPECT_EQ(events.take(), reportOf("143"));
}

// behaviour: SP-17
TEST(constSharedPtrDereference, ofAnEmptyPointerReportsTheLineOfItsForm) {
    eventLog events;
    const_sharedPtr<base> empty;
    EXPECT_TRUE(throwsFalse([&] { static_cast<void>(&*empty); }));
    EXPECT_EQ(events.take(), reportOf("127"));
    EXPECT_TRUE(throwsFalse([&] { static_cast<void>(empty->number()); }));
    EXPECT_EQ(events.take(), reportOf("138"));
}

// behaviour: SP-17
TEST(sharedPtrDereference, ofNoObjectWithACounterFailsToo) {
    eventLog events;
    sharedPtr<base> const nothing(static_cast<base*>(nullptr));
    EXPECT_TRUE(throwsFalse([&] { static_cast<void>(nothing->number()); }));
    EXPECT_EQ(events.take(), reportOf("138"));
}

// behaviour: SP-18
TEST(sharedPtrLockerHeld, allowsItsThreadToCopyAndAssign) {
    sharedPtr<base> one(new base);
    sharedPtrLocker const outer;
    sharedPtrLocker const inner;
    sharedPtr<base> two(one);
    two = one;
    two = std::move(one);
    one = two;
    const_sharedPtr<base> const three(two);
    EXPECT_EQ(three.refCount(), 3U);
}

// behaviour: SP-18
TEST(sharedPtrLockerHeld, keepsOtherThreadsFromExchanging) {
    sharedPtr<base> slot;
    std::atomic<bool> exchanged{false};
    std::thread writer;
    {
        sharedPtrLocker const guard;
        writer = std::thread([&] {
            slot = sharedPtr<base>(new base);
            exchanged = true;
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_FALSE(exchanged);
        EXPECT_FALSE(slot);
    }
    writer.join();
    EXPECT_TRUE(slot);
}

// Asks, while it ends, whether another thread gets the locker.
struct asking {
    ~asking() {
        if (anotherThreadGetsThrough([] { sharedPtrLocker const guard; })) ++freeEnds;
    }
    static inline int freeEnds = 0;
};

// behaviour: SP-19
TEST(sharedPtrAssignment, endsNothingUnderTheLocker) {
    asking::freeEnds = 0;
    sharedPtr<asking> const other;
    sharedPtr<asking> pointer(new asking);
    pointer = other;
    EXPECT_EQ(asking::freeEnds, 1);
    pointer.reset(new asking);
    pointer = sharedPtr<asking>();
    EXPECT_EQ(asking::freeEnds, 2);
    pointer.reset(new asking);
    pointer.reset();
    EXPECT_EQ(asking::freeEnds, 3);
    const_sharedPtr<asking> constPointer(new asking);
    constPointer = const_sharedPtr<asking>();
    EXPECT_EQ(asking::freeEnds, 4);
}

} // namespace
} // namespace zov::tests
