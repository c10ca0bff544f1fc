// Pointers that count their objects: what counts, what does not, and what an empty one does.
#include "zovRefPtr.h"

#include <gtest/gtest.h>

#include <atomic>
#include <concepts>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <string>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

#include "endingObjects.h"
#include "eventLog.h"

namespace zov::tests {
namespace {

// Not a refObj and never ended: shows every call that a pointer makes.
struct counted {
    void addRef() { ++added; }
    void release() { ++released; }
    int held() const { return added - released; }

    int added = 0;
    int released = 0;
};
struct special : counted {};
struct unrelated : counted {};

class part : public refObj {
public:
    ~part() override { ++ended; }
    int number() const { return 7; }
    using refObj::currentCount;

    static inline int ended = 0;

private:
    void destroy() override { delete this; }
};
class specialPart : public part {};
class otherObject : public refObj {
    void destroy() override { delete this; }
};

// As the model classes: the interface first, the count second, one set of operations for both.
class modelObject : public iRefObj, public refObj {
public:
    std::uint32_t refCount() const override { return currentCount(); }
    std::uint32_t addRef() final { return refObj::addRef(); }
    std::uint32_t release() final { return refObj::release(); }

private:
    void destroy() override { delete this; }
};

std::string const reportOfRefPtr = "assert m_p != NULL @ libs/utils/inc/zovRefPtr.h:156";
std::string const reportOfConstRefPtr = "assert m_p != NULL @ libs/utils/inc/zovRefPtr.h:348";

// behaviour: RP-04
static_assert(std::is_nothrow_move_constructible_v<refPtr<part>>);
static_assert(std::is_nothrow_move_assignable_v<refPtr<part>>);
static_assert(std::is_nothrow_destructible_v<refPtr<part>>);
static_assert(std::is_nothrow_move_constructible_v<const_refPtr<part>>);
static_assert(std::is_nothrow_move_assignable_v<const_refPtr<part>>);
static_assert(std::is_nothrow_destructible_v<const_refPtr<part>>);
static_assert(std::is_nothrow_constructible_v<refPtr<part>, refPtr<specialPart>>);
static_assert(std::is_nothrow_constructible_v<const_refPtr<part>, refPtr<part>>);
static_assert(std::is_nothrow_default_constructible_v<refPtr<part>>);

// behaviour: RP-05
static_assert(std::convertible_to<refPtr<specialPart>, refPtr<part>>);
static_assert(std::convertible_to<refPtr<part>, refPtr<refObj>>);
static_assert(std::convertible_to<refPtr<part>, const_refPtr<part>>);
static_assert(std::convertible_to<refPtr<specialPart>, const_refPtr<part>>);
static_assert(std::convertible_to<const_refPtr<specialPart>, const_refPtr<part>>);
static_assert(std::is_assignable_v<refPtr<part>&, refPtr<specialPart> const&>);
static_assert(std::is_assignable_v<const_refPtr<part>&, refPtr<specialPart> const&>);
static_assert(std::is_assignable_v<const_refPtr<part>&, const_refPtr<specialPart> const&>);
static_assert(std::convertible_to<part*, refPtr<part>>);
static_assert(std::convertible_to<std::nullptr_t, refPtr<part>>);

// behaviour: RP-06
static_assert(!std::is_constructible_v<refPtr<part>, const_refPtr<part>>);
static_assert(!std::is_constructible_v<refPtr<specialPart>, refPtr<part>>);
static_assert(!std::is_constructible_v<refPtr<part>, refPtr<otherObject>>);
static_assert(!std::is_constructible_v<refPtr<part>, part const*>);
static_assert(!std::is_constructible_v<const_refPtr<specialPart>, const_refPtr<part>>);
static_assert(!std::is_assignable_v<refPtr<part>&, const_refPtr<part>>);
static_assert(!std::is_assignable_v<refPtr<specialPart>&, refPtr<part>>);
static_assert(!std::is_assignable_v<refPtr<part>&, part const*>);
static_assert(!std::is_assignable_v<const_refPtr<specialPart>&, const_refPtr<part>>);
static_assert(!std::is_base_of_v<const_refPtr<part>, refPtr<part>>);
static_assert(!std::convertible_to<refPtr<part>, bool>);
static_assert(!std::convertible_to<refPtr<part>, part*>);

// behaviour: RP-07
static_assert(std::same_as<refPtr<part>, refPtr<part, addRef<part>, release<part>>>);
static_assert(std::same_as<const_refPtr<part>, const_refPtr<part, addRef<part>, release<part>>>);
static_assert(std::same_as<decltype(*std::declval<refPtr<part> const&>()), part&>);
static_assert(std::same_as<decltype(*std::declval<const_refPtr<part>&>()), part const&>);

// behaviour: RP-08
TEST(countingPrimitives, addAndSubtractOne) {
    unsigned long volatile wide = 5;
    std::uint32_t volatile narrow = 5;
    EXPECT_EQ(interlockedIncrement(&wide), 6);
    EXPECT_EQ(interlockedIncrement(&narrow), 6);
    EXPECT_EQ(wide, 6U);
    EXPECT_EQ(narrow, 6U);
    EXPECT_EQ(interlockedDecrement(&wide), 5);
    EXPECT_EQ(interlockedDecrement(&narrow), 5);
    EXPECT_EQ(wide, 5U);
    EXPECT_EQ(narrow, 5U);
}

// behaviour: RP-08
TEST(countingPrimitives, answerTheNewValueAsASigned32BitNumber) {
    unsigned long volatile wide = 0x7FFFFFFFUL;
    std::uint32_t volatile narrow = 0;
    EXPECT_EQ(interlockedIncrement(&wide), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(interlockedDecrement(&narrow), -1);
    EXPECT_EQ(interlockedIncrement(&narrow), 0);
    static_assert(std::same_as<decltype(interlockedIncrement(&wide)), std::int32_t>);
    static_assert(std::same_as<decltype(interlockedDecrement(&narrow)), std::int32_t>);
}

// behaviour: RP-09
TEST(countedObject, beginsWithNoReference) {
    part* const object = new part;
    EXPECT_EQ(object->currentCount(), 0U);
    refPtr<part> const owner(object);
    EXPECT_EQ(object->currentCount(), 1U);
}

// behaviour: RP-09
TEST(countedObject, answersTheNewCount) {
    part* const object = new part;
    EXPECT_EQ(object->addRef(), 1U);
    EXPECT_EQ(object->addRef(), 2U);
    EXPECT_EQ(object->release(), 1U);
    EXPECT_EQ(object->release(), 0U);
}

// behaviour: RP-10
TEST(countedObject, endsOnceWithItsLastReference) {
    part::ended = 0;
    refPtr<part> one(new part);
    refPtr<part> other(one);
    one.reset();
    EXPECT_EQ(part::ended, 0);
    other.reset();
    EXPECT_EQ(part::ended, 1);
}

// behaviour: RP-11
TEST(countedObject, ofBothBasesHasOneCount) {
    refPtr<modelObject> const object(new modelObject);
    iRefObj& interface = *object;
    refObj& base = *object;
    EXPECT_EQ(interface.addRef(), 2U);
    EXPECT_EQ(base.addRef(), 3U);
    EXPECT_EQ(interface.refCount(), 3U);
    EXPECT_EQ(base.release(), 2U);
    EXPECT_EQ(interface.release(), 1U);
}

// behaviour: RP-12
TEST(refPtrCopy, ofAnEmptyPointerCountsNothing) {
    counted object;
    refPtr<counted> const empty;
    refPtr<counted> const copy(empty);
    const_refPtr<counted> const constCopy(empty);
    refPtr<counted> assigned(&object);
    assigned = empty;
    EXPECT_FALSE(copy);
    EXPECT_FALSE(constCopy);
    EXPECT_FALSE(assigned);
    EXPECT_EQ(object.added, 1);
    EXPECT_EQ(object.released, 1);
}

// behaviour: RP-13
TEST(refPtrCopy, countsTheObjectOnceMore) {
    counted object;
    refPtr<counted> const one(&object);
    EXPECT_EQ(object.added, 1);
    refPtr<counted> const copy(one);
    const_refPtr<counted> const constCopy(one);
    const_refPtr<counted> const copyOfConst(constCopy);
    EXPECT_EQ(object.added, 4);
    EXPECT_EQ(object.released, 0);
    EXPECT_EQ(copyOfConst.get(), &object);
}

// behaviour: RP-13
TEST(refPtrCopy, ofAPointerToADerivedClassCountsOnce) {
    special object;
    refPtr<special> const one(&object);
    refPtr<counted> const base(one);
    const_refPtr<counted> const constBase(one);
    const_refPtr<special> const constOne(one);
    const_refPtr<counted> const constBaseOfConst(constOne);
    EXPECT_EQ(object.added, 5);
    EXPECT_EQ(constBaseOfConst.get(), &object);
}

// behaviour: RP-13
TEST(refPtrDestruction, givesUpOneReference) {
    counted object;
    {
        refPtr<counted> const one(&object);
        const_refPtr<counted> const other(&object);
        refPtr<counted> const empty;
        EXPECT_EQ(object.added, 2);
    }
    EXPECT_EQ(object.released, 2);
}

// behaviour: RP-14
TEST(refPtrMove, constructsWithoutCounting) {
    special object;
    refPtr<special> one(&object);
    refPtr<special> two(std::move(one));
    refPtr<counted> three(std::move(two));
    const_refPtr<counted> four(std::move(three));
    const_refPtr<counted> five(std::move(four));
    EXPECT_EQ(five.get(), &object);
    EXPECT_EQ(object.added, 1);
    EXPECT_EQ(object.released, 0);
    EXPECT_FALSE(one);
    EXPECT_FALSE(two);
    EXPECT_FALSE(three);
    EXPECT_FALSE(four);
}

// behaviour: RP-14
TEST(refPtrMove, constructsAConstPointerToABaseWithoutCounting) {
    special object;
    const_refPtr<special> one(&object);
    const_refPtr<counted> const two(std::move(one));
    EXPECT_EQ(two.get(), &object);
    EXPECT_FALSE(one);
    EXPECT_EQ(object.added, 1);
}

// behaviour: RP-14
TEST(refPtrMove, assignsWithoutCounting) {
    counted object;
    counted former;
    refPtr<counted> one(&object);
    refPtr<counted> two(&former);
    two = std::move(one);
    EXPECT_EQ(two.get(), &object);
    EXPECT_FALSE(one);
    EXPECT_EQ(object.added, 1);
    EXPECT_EQ(object.released, 0);
    EXPECT_EQ(former.released, 1);
}

// behaviour: RP-14
TEST(refPtrMove, assignsAPointerToADerivedClassWithoutCounting) {
    special object;
    refPtr<special> one(&object);
    refPtr<counted> two;
    two = std::move(one);
    EXPECT_EQ(two.get(), &object);
    EXPECT_FALSE(one);
    EXPECT_EQ(object.added, 1);
    EXPECT_EQ(object.released, 0);
}

// behaviour: RP-14
TEST(refPtrMove, assignsToAConstPointerWithoutCounting) {
    counted object;
    refPtr<counted> one(&object);
    const_refPtr<counted> two;
    two = std::move(one);
    EXPECT_EQ(two.get(), &object);
    EXPECT_FALSE(one);
    EXPECT_EQ(object.added, 1);
    EXPECT_EQ(object.released, 0);
}

// behaviour: RP-14
TEST(refPtrMove, assignsAConstPointerToADerivedClassWithoutCounting) {
    special object;
    const_refPtr<special> one(&object);
    const_refPtr<counted> two;
    two = std::move(one);
    EXPECT_EQ(two.get(), &object);
    EXPECT_FALSE(one);
    EXPECT_EQ(object.added, 1);
    EXPECT_EQ(object.released, 0);
}

// behaviour: RP-14
TEST(refPtrMove, carriesPointersThroughAGrowingVectorWithoutCounting) {
    counted object;
    std::vector<refPtr<counted>> pointers;
    for (int at = 0; at < 100; ++at)
        pointers.emplace_back(&object);
    EXPECT_EQ(object.added, 100);
    EXPECT_EQ(object.released, 0);
}

// behaviour: RP-15
TEST(refPtrAssignment, countsTheNewObjectAndGivesUpTheFormer) {
    special object;
    counted former;
    refPtr<special> const source(&object);
    refPtr<counted> same(&former);
    const_refPtr<counted> constTarget(&former);
    same = refPtr<counted>(source);
    constTarget = source;
    refPtr<counted> fromDerived(&former);
    fromDerived = source;
    EXPECT_EQ(object.held(), 4);
    EXPECT_EQ(former.held(), 0);
    EXPECT_EQ(fromDerived.get(), &object);
    EXPECT_EQ(constTarget.get(), &object);
}

// What happened to which object, in order.
std::vector<std::string>& countingEvents() {
    static std::vector<std::string> events;
    return events;
}
struct telling {
    explicit telling(char const* text) : name(text) {}
    void addRef() const { countingEvents().push_back(std::string("add ") + name); }
    void release() const { countingEvents().push_back(std::string("release ") + name); }
    char const* name;
};

// behaviour: RP-15
TEST(refPtrAssignment, takesTheNewReferenceBeforeItGivesUpTheOld) {
    telling first("first");
    telling second("second");
    refPtr<telling> pointer(&first);
    refPtr<telling> const source(&second);
    const_refPtr<telling> constPointer(&first);
    std::vector<std::string> const expected{"add second", "release first"};

    countingEvents().clear();
    pointer = source;
    EXPECT_EQ(countingEvents(), expected);

    countingEvents().clear();
    constPointer = source;
    EXPECT_EQ(countingEvents(), expected);

    pointer = &first;
    countingEvents().clear();
    pointer = &second;
    EXPECT_EQ(countingEvents(), expected);

    pointer = &first;
    countingEvents().clear();
    pointer.reset(&second);
    EXPECT_EQ(countingEvents(), expected);
}

// behaviour: RP-16
TEST(refPtrAssignment, toItselfKeepsTheObject) {
    part::ended = 0;
    refPtr<part> pointer(new part);
    refPtr<part> const& same = pointer;
    pointer = same;
    EXPECT_EQ(pointer->currentCount(), 1U);
    pointer = pointer.get();
    EXPECT_EQ(pointer->currentCount(), 1U);
    const_refPtr<part> constPointer(pointer);
    const_refPtr<part> const& constSame = constPointer;
    constPointer = constSame;
    EXPECT_EQ(pointer->currentCount(), 2U);
    EXPECT_EQ(part::ended, 0);
}

// behaviour: RP-16
TEST(refPtrMove, toItselfKeepsTheObject) {
    part::ended = 0;
    refPtr<part> pointer(new part);
    refPtr<part>& same = pointer;
    pointer = std::move(same);
    ASSERT_TRUE(pointer);
    EXPECT_EQ(pointer->currentCount(), 1U);
    EXPECT_EQ(part::ended, 0);
}

// behaviour: RP-17
TEST(refPtrReset, leavesThePointerEmpty) {
    counted object;
    refPtr<counted> pointer(&object);
    pointer.reset();
    EXPECT_FALSE(pointer);
    pointer.reset();
    EXPECT_EQ(object.released, 1);
}

// behaviour: RP-17
TEST(refPtrReset, byNullGivesTheObjectUp) {
    counted object;
    refPtr<counted> pointer(&object);
    const_refPtr<counted> constPointer(&object);
    pointer = nullptr;
    constPointer = nullptr;
    EXPECT_FALSE(pointer);
    EXPECT_FALSE(constPointer);
    EXPECT_EQ(object.held(), 0);
}

// behaviour: RP-17
TEST(refPtrReset, pointsToAnotherObject) {
    counted object;
    counted former;
    const_refPtr<counted> pointer(&former);
    pointer.reset(&object);
    EXPECT_EQ(pointer.get(), &object);
    EXPECT_EQ(object.held(), 1);
    EXPECT_EQ(former.held(), 0);
}

// behaviour: RP-18
TEST(refPtrNullTest, tellsAnEmptyPointer) {
    counted object;
    refPtr<counted> const full(&object);
    refPtr<counted> const empty;
    refPtr<counted> const null(nullptr);
    EXPECT_TRUE(full);
    EXPECT_FALSE(empty);
    EXPECT_TRUE(full != nullptr);
    EXPECT_TRUE(nullptr != full);
    EXPECT_TRUE(empty == nullptr);
    EXPECT_TRUE(null == nullptr);
    EXPECT_EQ(full.get(), &object);
    EXPECT_EQ(empty.get(), nullptr);
    EXPECT_TRUE(const_refPtr<counted>() == nullptr);
    EXPECT_TRUE(const_refPtr<counted>(full) != nullptr);
}

// behaviour: RP-19
TEST(refPtrDereference, reachesTheObject) {
    refPtr<part> const pointer(new part);
    const_refPtr<part> const constPointer(pointer);
    EXPECT_EQ(pointer->number(), 7);
    EXPECT_EQ(&*pointer, pointer.get());
    EXPECT_EQ(constPointer->number(), 7);
    EXPECT_EQ(&*constPointer, pointer.get());
    EXPECT_EQ(pointer->currentCount(), 2U);
}

// behaviour: RP-20
TEST(refPtrDereference, ofAnEmptyPointerReportsLine156AndThrowsFalse) {
    eventLog events;
    refPtr<part> const empty;
    EXPECT_TRUE(throwsFalse([&] { static_cast<void>(empty->number()); }));
    EXPECT_EQ(events.take(), std::vector{reportOfRefPtr});
    EXPECT_TRUE(throwsFalse([&] { static_cast<void>(&*empty); }));
    EXPECT_EQ(events.take(), std::vector{reportOfRefPtr});
}

// behaviour: RP-21
TEST(constRefPtrDereference, ofAnEmptyPointerReportsLine348AndThrowsFalse) {
    eventLog events;
    const_refPtr<part> const empty;
    EXPECT_TRUE(throwsFalse([&] { static_cast<void>(empty->number()); }));
    EXPECT_EQ(events.take(), std::vector{reportOfConstRefPtr});
    EXPECT_TRUE(throwsFalse([&] { static_cast<void>(&*empty); }));
    EXPECT_EQ(events.take(), std::vector{reportOfConstRefPtr});
}

// behaviour: RP-22
TEST(refPtrComparison, isByObject) {
    special object;
    counted other;
    refPtr<special> const one(&object);
    refPtr<counted> const base(one);
    const_refPtr<counted> const constBase(base);
    refPtr<counted> const different(&other);
    EXPECT_TRUE(one == base);
    EXPECT_TRUE(base == constBase);
    EXPECT_TRUE(base != different);
    EXPECT_TRUE(constBase != different);
    EXPECT_TRUE(base == &object);
    EXPECT_TRUE(different != &object);
    EXPECT_FALSE(refPtr<counted>() == different);
}

// behaviour: RP-22
TEST(refPtrComparison, ordersByAddress) {
    counted objects[3];
    std::map<refPtr<counted>, int> numbers;
    for (int at = 2; at >= 0; --at)
        numbers.emplace(&objects[at], at);
    int expected = 0;
    for (auto const& [pointer, number] : numbers)
        EXPECT_EQ(number, expected++);
    EXPECT_TRUE(const_refPtr<counted>(&objects[0]) < const_refPtr<counted>(&objects[1]));
    EXPECT_FALSE(const_refPtr<counted>(&objects[0]) < const_refPtr<counted>(&objects[0]));
}

// behaviour: RP-23
TEST(refPtrHash, isTheSameForTheSameObject) {
    counted one;
    counted other;
    std::unordered_set<refPtr<counted>> pointers{&one, &other, &one};
    EXPECT_EQ(pointers.size(), 2U);
    EXPECT_TRUE(pointers.contains(&other));
    EXPECT_EQ(std::hash<const_refPtr<counted>>()(&one), std::hash<refPtr<counted>>()(&one));
}

// behaviour: RP-24
TEST(refPtrCastDown, leadsToTheSameObject) {
    refPtr<refObj> const base(new specialPart);
    refPtr<specialPart> const down = refPtrCast<specialPart>(base);
    EXPECT_EQ(down.get(), base.get());
    EXPECT_EQ(down->currentCount(), 2U);
    const_refPtr<specialPart> const constDown = refPtrCast<specialPart>(const_refPtr<refObj>(base));
    EXPECT_EQ(constDown.get(), base.get());
    EXPECT_EQ(down->currentCount(), 3U);
}

// behaviour: RP-24
TEST(refPtrCastDown, ofAnotherTypeIsEmpty) {
    refPtr<refObj> const base(new part);
    EXPECT_FALSE(refPtrCast<specialPart>(base));
    EXPECT_FALSE(refPtrCast<otherObject>(base));
    EXPECT_FALSE(refPtrCast<part>(refPtr<refObj>()));
    EXPECT_FALSE(refPtrCast<otherObject>(const_refPtr<refObj>(base)));
}

// behaviour: RP-25
TEST(refPtrPolicies, areWhatCounts) {
    static int taken = 0;
    static int givenUp = 0;
    struct take {
        void operator()(int*) const { ++taken; }
    };
    struct giveUp {
        void operator()(int*) const { ++givenUp; }
    };
    int object = 0;
    {
        refPtr<int, take, giveUp> const one(&object);
        const_refPtr<int, take, giveUp> const other(one);
    }
    EXPECT_EQ(taken, 2);
    EXPECT_EQ(givenUp, 2);
}

// behaviour: RP-26
TEST(referencePtrLockerHeld, allowsItsThreadToCopyAndAssign) {
    counted object;
    {
        referencePtrLocker const outer;
        referencePtrLocker const inner;
        refPtr<counted> one(&object);
        refPtr<counted> two(one);
        const_refPtr<counted> three;
        three = two;
        two = one;
        one = std::move(two);
        one.reset(&object);
        EXPECT_EQ(object.held(), 2);
    }
    EXPECT_EQ(object.held(), 0);
}

// behaviour: RP-26
TEST(referencePtrLockerHeld, keepsOtherThreadsFromExchanging) {
    counted object;
    refPtr<counted> slot;
    std::atomic<bool> exchanged{false};
    std::thread writer;
    {
        referencePtrLocker const guard;
        writer = std::thread([&] {
            slot = &object;
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
class asking : public refObj {
public:
    explicit asking(int& freeEnds) : mFreeEnds(freeEnds) {}

private:
    void destroy() override {
        if (anotherThreadGetsThrough([] { referencePtrLocker const guard; })) ++mFreeEnds;
        delete this;
    }

    int& mFreeEnds;
};

// behaviour: RP-27
TEST(refPtrAssignment, endsNothingUnderTheLocker) {
    int freeEnds = 0;
    refPtr<asking> const other(new asking(freeEnds));
    refPtr<asking> pointer(new asking(freeEnds));
    pointer = other;
    EXPECT_EQ(freeEnds, 1);
    pointer = new asking(freeEnds);
    pointer = refPtr<asking>();
    EXPECT_EQ(freeEnds, 2);
    pointer = new asking(freeEnds);
    pointer.reset();
    EXPECT_EQ(freeEnds, 3);
    const_refPtr<asking> constPointer(new asking(freeEnds));
    constPointer = other;
    EXPECT_EQ(freeEnds, 4);
    refPtr<refObj> base(new asking(freeEnds));
    base = other;
    EXPECT_EQ(freeEnds, 5);
}

} // namespace
} // namespace zov::tests
