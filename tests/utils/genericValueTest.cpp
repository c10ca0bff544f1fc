// Values of any type: holding, referring, copying, reading, writing.
#include "zovGenericValue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include "eventLog.h"
#include "zovTypeConvert.h"

namespace zov::tests {
namespace {

using zov::string;
using names = std::vector<scString>;

// Tells how often it was copied and assigned, and how many of it there are.
struct counting {
    explicit counting(int value = 0) : number(value) { ++alive; }
    counting(counting const& other) : number(other.number) {
        ++copies;
        ++alive;
    }
    counting& operator=(counting const& other) {
        number = other.number;
        ++assignments;
        return *this;
    }
    ~counting() { --alive; }

    static void startOver() { copies = assignments = 0; }

    int number;
    static inline int alive = 0;
    static inline int copies = 0;
    static inline int assignments = 0;
};

bool equalAsTexts(genericValue const& one, genericValue const& other) {
    string left;
    string right;
    return one.getValue(left) && other.getValue(right) && left == right;
}
bool neverEqual(genericValue const&, genericValue const&) {
    return false;
}

class aboveZero : public conditions::condition {
public:
    condition* clone() const override { return new aboveZero(*this); }
};

// Two different values of each type that is held.
template <class T>
struct samples;
template <>
struct samples<bool> {
    static bool one() { return true; }
    static bool other() { return false; }
};
template <class T>
requires std::is_arithmetic_v<T>
struct samples<T> {
    static T one() { return static_cast<T>(42); }
    static T other() { return static_cast<T>(-7); }
};
template <>
struct samples<string> {
    static string one() { return L"one"; }
    static string other() { return L"other"; }
};
template <>
struct samples<date> {
    static date one() { return {2024, 2, 29}; }
    static date other() { return {1999, 12, 31}; }
};
template <>
struct samples<zov::time> {
    static zov::time one() { return {1, 2, 3, 4}; }
    static zov::time other() { return {23, 59, 59}; }
};
template <>
struct samples<timestamp> {
    static timestamp one() { return {date(2024, 2, 29), zov::time(1, 2, 3)}; }
    static timestamp other() { return {date(2024, 2, 28), zov::time(1, 2, 3)}; }
};
template <>
struct samples<binaryBuffer> {
    static binaryBuffer one() { return binaryBuffer("abc", 3); }
    static binaryBuffer other() { return binaryBuffer(2); }
};
template <class T>
requires std::same_as<T, file> || std::same_as<T, directory> || std::same_as<T, searchPath>
struct samples<T> {
    static T one() { return T(L"/one"); }
    static T other() { return T(L"/other"); }
};
class counted : public refObj {
    void destroy() override { delete this; }
};
template <>
struct samples<refPtr<refObj>> {
    static refPtr<refObj> one() {
        static refPtr<refObj> const object(new counted);
        return object;
    }
    static refPtr<refObj> other() { return nullptr; }
};
template <>
struct samples<sharedPtr<conditions::condition>> {
    static sharedPtr<conditions::condition> one() {
        static sharedPtr<conditions::condition> const object(new aboveZero);
        return object;
    }
    static sharedPtr<conditions::condition> other() { return nullptr; }
};
template <>
struct samples<valueEqFunction> {
    static valueEqFunction one() { return &equalAsTexts; }
    static valueEqFunction other() { return &neverEqual; }
};
template <>
struct samples<std::vector<string>> {
    static std::vector<string> one() { return {L"a", L"b"}; }
    static std::vector<string> other() { return {}; }
};
template <>
struct samples<names> {
    static names one() { return {scString::createFrom(L"a"), scString::createFrom(L"b")}; }
    static names other() { return {}; }
};

template <class T>
class heldType : public testing::Test {};
using heldTypes = testing::Types<bool, short, int, long, float, double, string, date, zov::time, timestamp,
                                 binaryBuffer, file, directory, searchPath, refPtr<refObj>,
                                 sharedPtr<conditions::condition>, valueEqFunction, std::vector<string>, names>;
TYPED_TEST_SUITE(heldType, heldTypes);

// behaviour: GV-03
TYPED_TEST(heldType, isHeldAndReadBack) {
    using T = TypeParam;
    genericValue const value(samples<T>::one());
    EXPECT_FALSE(value.isEmpty());
    EXPECT_TRUE(value.type() == typeid(T));
    ASSERT_NE(value.valuePtr<T>(), nullptr);
    EXPECT_TRUE(*value.valuePtr<T>() == samples<T>::one());
    T read = samples<T>::other();
    EXPECT_TRUE(value.getValue(read));
    EXPECT_TRUE(read == samples<T>::one());
}

// behaviour: GV-04
TYPED_TEST(heldType, isCopiedApart) {
    using T = TypeParam;
    genericValue value(samples<T>::one());
    genericValue const copy(value);
    *value.valuePtr<T>() = samples<T>::other();
    EXPECT_TRUE(*copy.valuePtr<T>() == samples<T>::one());
    EXPECT_TRUE(*value.valuePtr<T>() == samples<T>::other());
}

// behaviour: GV-05
TYPED_TEST(heldType, isReferredTo) {
    using T = TypeParam;
    T object = samples<T>::one();
    genericValue value = genericValue::byReference(object);
    EXPECT_EQ(value.valuePtr<T>(), &object);
    EXPECT_TRUE(value.type() == typeid(T));
    genericValue copy(value);
    EXPECT_EQ(copy.valuePtr<T>(), &object);
    T const next = samples<T>::other();
    dynamic_cast<genericValue::holder<T>&>(*copy.heldBy()).setValue(next);
    EXPECT_TRUE(object == samples<T>::other());
}

// behaviour: GV-06
TYPED_TEST(heldType, isAssignedBetweenHoldersOfItsType) {
    using T = TypeParam;
    genericValue::valueholder<T> source(samples<T>::one());
    genericValue::valueholder<T> target(samples<T>::other());
    EXPECT_TRUE(source.assignTo(target));
    EXPECT_TRUE(target.value() == samples<T>::one());
    T object = samples<T>::other();
    genericValue::ptrholder<T> reference(&object);
    EXPECT_TRUE(source.assignFrom(reference));
    EXPECT_TRUE(source.value() == samples<T>::other());
    EXPECT_TRUE(reference.assignFrom(target));
    EXPECT_TRUE(object == samples<T>::one());
}

// behaviour: GV-07
static_assert(std::is_nothrow_default_constructible_v<genericValue>);
static_assert(std::is_nothrow_move_constructible_v<genericValue>);
static_assert(std::is_nothrow_move_assignable_v<genericValue>);
// behaviour: GV-08
static_assert(!std::convertible_to<int, genericValue>);
static_assert(!std::convertible_to<string, genericValue>);
static_assert(std::is_constructible_v<genericValue, int>);
// behaviour: GV-09
static_assert(!std::is_base_of_v<genericValue::holder<int>, genericValue::holder<int const>>);
static_assert(!std::is_base_of_v<genericValue::holder<int const>, genericValue::holder<int>>);
static_assert(std::is_base_of_v<genericValue::holder<int>, genericValue::valueholder<int>>);
static_assert(std::is_base_of_v<genericValue::holder<int>, genericValue::ptrholder<int>>);
static_assert(std::is_base_of_v<genericValue::holder<int>, genericValue::constptrholder<int>>);

// behaviour: GV-10
TEST(emptyValue, holdsNothing) {
    genericValue value;
    genericValue const& constValue = value;
    EXPECT_TRUE(value.isEmpty());
    EXPECT_TRUE(value.type() == typeid(void));
    EXPECT_EQ(value.valuePtr<int>(), nullptr);
    EXPECT_EQ(constValue.valuePtr<int>(), nullptr);
    EXPECT_EQ(value.heldBy(), nullptr);
    EXPECT_EQ(constValue.heldBy(), nullptr);
}

// behaviour: GV-10
TEST(emptyValue, cannotBeRead) {
    int number = 7;
    string text(L"before");
    EXPECT_FALSE(genericValue().getValue(number));
    EXPECT_FALSE(genericValue().getValue(text));
    EXPECT_EQ(number, 7);
    EXPECT_EQ(text, L"before");
}

// behaviour: GV-11
TEST(emptyValue, emptiesWhatItIsAssignedTo) {
    int const before = counting::alive;
    genericValue value((counting(1)));
    genericValue const empty;
    value = empty;
    EXPECT_TRUE(value.isEmpty());
    EXPECT_EQ(counting::alive, before);
    EXPECT_TRUE(genericValue(empty).isEmpty());
}

// behaviour: GV-12
TEST(wideText, isHeldAsAString) {
    genericValue const fromArray(L"text");
    wchar_t const* const pointer = L"text";
    genericValue const fromPointer(pointer);
    std::wstring buffer(L"text");
    genericValue const fromMutable(buffer.data());
    for (genericValue const* value : {&fromArray, &fromPointer, &fromMutable}) {
        ASSERT_NE(value->valuePtr<string>(), nullptr);
        EXPECT_EQ(*value->valuePtr<string>(), L"text");
    }
}

// behaviour: GV-13
TEST(valueOfAHolder, takesTheHolderOver) {
    int const before = counting::alive;
    {
        auto* const holder = new genericValue::valueholder<counting>(counting(5));
        genericValue const value(holder);
        EXPECT_EQ(value.heldBy(), holder);
        EXPECT_EQ(value.valuePtr<counting>()->number, 5);
    }
    EXPECT_EQ(counting::alive, before);
    EXPECT_TRUE(genericValue(static_cast<genericValue::holderbase*>(nullptr)).isEmpty());
}

// behaviour: GV-04
TEST(valueCopy, hasAHolderOfItsOwn) {
    genericValue const value(1);
    genericValue const copy(value);
    genericValue assigned;
    assigned = value;
    EXPECT_NE(copy.heldBy(), value.heldBy());
    EXPECT_NE(assigned.heldBy(), value.heldBy());
    EXPECT_NE(copy.valuePtr<int>(), value.valuePtr<int>());
    EXPECT_EQ(*assigned.valuePtr<int>(), 1);
}

// behaviour: GV-14
TEST(valueAssignment, replacesTheValueWhateverItsType) {
    int const before = counting::alive;
    genericValue value((counting(1)));
    genericValue const text(L"text");
    value = text;
    EXPECT_EQ(*value.valuePtr<string>(), L"text");
    EXPECT_EQ(value.valuePtr<counting>(), nullptr);
    EXPECT_EQ(counting::alive, before);
}

// behaviour: GV-14
TEST(valueAssignment, toItselfKeepsTheValue) {
    genericValue value(7);
    genericValue& same = value;
    value = same;
    EXPECT_EQ(*value.valuePtr<int>(), 7);
    value = std::move(same);
    ASSERT_FALSE(value.isEmpty());
    EXPECT_EQ(*value.valuePtr<int>(), 7);
}

// behaviour: GV-15
TEST(valueMove, carriesTheHolder) {
    genericValue value((counting(3)));
    auto* const holder = value.heldBy();
    counting::startOver();
    genericValue moved(std::move(value));
    EXPECT_EQ(moved.heldBy(), holder);
    EXPECT_TRUE(value.isEmpty());
    value = std::move(moved);
    EXPECT_EQ(value.heldBy(), holder);
    EXPECT_TRUE(moved.isEmpty());
    EXPECT_EQ(counting::copies, 0);
    EXPECT_EQ(counting::assignments, 0);
}

// behaviour: GV-16
TEST(valueReference, toAConstObjectIsReadOnly) {
    int const object = 5;
    genericValue value = genericValue::byReference(object);
    genericValue const& constValue = value;
    EXPECT_TRUE(value.type() == typeid(int));
    EXPECT_EQ(value.valuePtr<int>(), nullptr);
    EXPECT_EQ(constValue.valuePtr<int>(), &object);
    EXPECT_EQ(constValue.valuePtr<int const>(), nullptr);
    int read = 0;
    EXPECT_TRUE(value.getValue(read));
    EXPECT_EQ(read, 5);
    EXPECT_FALSE(value.assignText(L"6"));
    EXPECT_EQ(object, 5);
}

// behaviour: GV-16
TEST(valueReference, toAConstObjectIsCopiedAsAReference) {
    string const object(L"text");
    genericValue const value = genericValue::byReference(object);
    genericValue const copy(value);
    EXPECT_EQ(copy.valuePtr<string>(), &object);
    EXPECT_NE(copy.heldBy(), value.heldBy());
}

// behaviour: GV-05
TEST(valueReference, seesWhatTheCallerWrites) {
    int object = 1;
    genericValue const value = genericValue::byReference(object);
    object = 2;
    int read = 0;
    EXPECT_TRUE(value.getValue(read));
    EXPECT_EQ(read, 2);
}

// behaviour: GV-05
TEST(valueReference, neverEndsTheCallersObject) {
    counting object(1);
    int const before = counting::alive;
    counting::startOver();
    {
        genericValue const value = genericValue::byReference(object);
        genericValue const copy(value);
    }
    EXPECT_EQ(counting::alive, before);
    EXPECT_EQ(counting::copies, 0);
}

// behaviour: GV-17
TEST(valuePointer, isNullForAnyOtherType) {
    genericValue value(42);
    genericValue const& constValue = value;
    EXPECT_EQ(value.valuePtr<long>(), nullptr);
    EXPECT_EQ(value.valuePtr<short>(), nullptr);
    EXPECT_EQ(value.valuePtr<unsigned>(), nullptr);
    EXPECT_EQ(value.valuePtr<string>(), nullptr);
    EXPECT_EQ(constValue.valuePtr<double>(), nullptr);
    EXPECT_NE(value.valuePtr<int>(), nullptr);
}

// behaviour: GV-09
TEST(valuePointer, tellsConstFromMutable) {
    genericValue mutableNames(names{scString::createFrom(L"a")});
    genericValue constNames(new genericValue::valueholder<names const>(names{scString::createFrom(L"a")}));
    EXPECT_NE(mutableNames.valuePtr<names>(), nullptr);
    EXPECT_EQ(std::as_const(mutableNames).valuePtr<names const>(), nullptr);
    EXPECT_EQ(constNames.valuePtr<names>(), nullptr);
    EXPECT_NE(std::as_const(constNames).valuePtr<names const>(), nullptr);
    EXPECT_TRUE(constNames.type() == typeid(names));
}

// behaviour: GV-09
TEST(constHolder, doesNotAcceptWriting) {
    genericValue::valueholder<names const> holder(names{});
    names const next{scString::createFrom(L"a")};
    EXPECT_TRUE(throwsFalse([&] { holder.setValue(next); }));
    EXPECT_EQ(holder.valuePointer(), nullptr);
    genericValue::valueholder<names> const source(next);
    EXPECT_FALSE(source.assignTo(holder));
    EXPECT_TRUE(std::as_const(holder).value().empty());
}

// behaviour: GV-18
TEST(valueRead, convertsAnotherType) {
    string text;
    EXPECT_TRUE(genericValue(42).getValue(text));
    EXPECT_EQ(text, L"42");
    int number = 0;
    EXPECT_TRUE(genericValue(L" 17 ").getValue(number));
    EXPECT_EQ(number, 17);
    long wide = 0;
    EXPECT_TRUE(genericValue(short{3}).getValue(wide));
    EXPECT_EQ(wide, 3);
    EXPECT_TRUE(genericValue::byReference(number).getValue(text));
    EXPECT_EQ(text, L"17");
}

// behaviour: GV-18
TEST(valueRead, thatDoesNotConvertLeavesTheTarget) {
    int number = 7;
    EXPECT_FALSE(genericValue(L"no number").getValue(number));
    EXPECT_FALSE(genericValue(1e300).getValue(number));
    EXPECT_FALSE(genericValue(names{}).getValue(number));
    EXPECT_EQ(number, 7);
    counting other(8);
    EXPECT_FALSE(genericValue(1).getValue(other));
    EXPECT_EQ(other.number, 8);
}

// Trivially copyable, with room behind its members that belongs to whoever derives from it.
class roomy {
public:
    explicit roomy(int number) : mNumber(number), mMark('r') {}
    bool holds(int number) const { return mNumber == number && mMark == 'r'; }

private:
    int mNumber;
    char mMark;
};

// behaviour: GV-03
TEST(valueRead, intoABaseLeavesWhatTheDerivedClassKeepsBehindIt) {
    struct derived : roomy {
        using roomy::roomy;
        char own[3] = {'o', 'w', 'n'};
    };
    static_assert(std::is_trivially_copyable_v<roomy> && sizeof(derived) == sizeof(roomy));
    genericValue const value(roomy(42));
    derived target(1);
    EXPECT_TRUE(value.getValue(static_cast<roomy&>(target)));
    EXPECT_TRUE(target.holds(42));
    EXPECT_EQ(std::string(target.own, sizeof target.own), "own");
}

// behaviour: GV-19
TEST(assignedText, isConvertedToTheHeldType) {
    genericValue number(1);
    EXPECT_TRUE(number.assignText(L"42"));
    EXPECT_EQ(*number.valuePtr<int>(), 42);
    genericValue text(L"before");
    EXPECT_TRUE(text.assignText(L"after"));
    EXPECT_EQ(*text.valuePtr<string>(), L"after");
    double object = 0;
    EXPECT_TRUE(genericValue::byReference(object).assignText(L"2.5"));
    EXPECT_EQ(object, 2.5);
}

// behaviour: GV-19
TEST(assignedText, thatDoesNotConvertLeavesTheValue) {
    genericValue number(1);
    EXPECT_FALSE(number.assignText(L"no number"));
    EXPECT_EQ(*number.valuePtr<int>(), 1);
    genericValue unknown((counting(5)));
    EXPECT_FALSE(unknown.assignText(L"text"));
    EXPECT_EQ(unknown.valuePtr<counting>()->number, 5);
}

// behaviour: GV-20
TEST(assignedText, makesAnEmptyValueAString) {
    genericValue value;
    EXPECT_TRUE(value.assignText(L"42"));
    ASSERT_NE(value.valuePtr<string>(), nullptr);
    EXPECT_EQ(*value.valuePtr<string>(), L"42");
}

// behaviour: GV-20
TEST(assignedText, isCopied) {
    genericValue value;
    string text(L"before");
    value.assignText(text);
    text = L"after";
    EXPECT_EQ(*value.valuePtr<string>(), L"before");
}

// behaviour: GV-21
TEST(valueHolder, ownsItsValue) {
    genericValue::valueholder<counting> holder(counting(3));
    EXPECT_FALSE(holder.isPointer());
    EXPECT_EQ(holder.value().number, 3);
    EXPECT_EQ(holder.valuePointer(), &holder.value());
    EXPECT_EQ(std::as_const(holder).valuePointer(), &holder.value());
    EXPECT_EQ(&std::as_const(holder).value(), &holder.value());
    EXPECT_TRUE(holder.type() == typeid(counting));
}

// behaviour: GV-21
TEST(valueHolder, isClonedApart) {
    genericValue::valueholder<counting> holder(counting(3));
    std::unique_ptr<genericValue::holderbase> const clone(holder.clone());
    auto& other = dynamic_cast<genericValue::valueholder<counting>&>(*clone);
    EXPECT_NE(other.locker(), holder.locker());
    other.setValue(counting(4));
    EXPECT_EQ(holder.value().number, 3);
    holder.setValue(counting(5));
    EXPECT_EQ(other.value().number, 4);
}

// behaviour: GV-22
TEST(pointerHolder, refersToTheCallersObject) {
    counting object(3);
    genericValue::ptrholder<counting> holder(&object);
    EXPECT_TRUE(holder.isPointer());
    EXPECT_EQ(&holder.value(), &object);
    EXPECT_EQ(holder.valuePointer(), &object);
    EXPECT_EQ(std::as_const(holder).valuePointer(), &object);
    EXPECT_EQ(&std::as_const(holder).value(), &object);
    holder.setValue(counting(4));
    EXPECT_EQ(object.number, 4);
}

// behaviour: GV-22
TEST(pointerHolder, isClonedToTheSameObject) {
    counting object(3);
    genericValue::ptrholder<counting> const holder(&object);
    std::unique_ptr<genericValue::holderbase> const clone(holder.clone());
    auto* const other = dynamic_cast<genericValue::ptrholder<counting>*>(clone.get());
    ASSERT_NE(other, nullptr);
    EXPECT_EQ(&other->value(), &object);
    EXPECT_TRUE(other->isPointer());
    EXPECT_NE(other->locker(), holder.locker());
}

// behaviour: GV-23
TEST(constPointerHolder, refusesWriting) {
    counting const object(3);
    genericValue::constptrholder<counting> holder(&object);
    EXPECT_TRUE(holder.isPointer());
    EXPECT_EQ(holder.valuePointer(), nullptr);
    EXPECT_EQ(std::as_const(holder).valuePointer(), &object);
    EXPECT_EQ(&std::as_const(holder).value(), &object);
    EXPECT_TRUE(throwsFalse([&] { holder.value(); }));
    EXPECT_TRUE(throwsFalse([&] { holder.setValue(counting(4)); }));
    genericValue::valueholder<counting> const source(counting(4));
    EXPECT_FALSE(source.assignTo(holder));
    EXPECT_FALSE(holder.assignFrom(source));
    EXPECT_EQ(object.number, 3);
}

// behaviour: GV-23
TEST(constPointerHolder, isReadAndClonedAsAReference) {
    counting const object(3);
    genericValue::constptrholder<counting> const holder(&object);
    genericValue::valueholder<counting> target(counting(0));
    EXPECT_TRUE(holder.assignTo(target));
    EXPECT_EQ(target.value().number, 3);
    std::unique_ptr<genericValue::holderbase> const clone(holder.clone());
    EXPECT_NE(dynamic_cast<genericValue::constptrholder<counting>*>(clone.get()), nullptr);
    EXPECT_EQ(std::as_const(*clone).valuePointer(), &object);
}

// behaviour: GV-24
TEST(holderSetValue, assignsOnce) {
    genericValue::valueholder<counting> holder(counting(3));
    counting const next(4);
    counting::startOver();
    holder.setValue(next);
    EXPECT_EQ(counting::copies, 0);
    EXPECT_EQ(counting::assignments, 1);
    EXPECT_EQ(holder.value().number, 4);
}

// behaviour: GV-24
TEST(holderSetValue, withTheHeldObjectItselfDoesNothing) {
    genericValue::valueholder<counting> holder(counting(3));
    counting object(4);
    genericValue::ptrholder<counting> pointer(&object);
    counting::startOver();
    holder.setValue(holder.value());
    pointer.setValue(object);
    EXPECT_TRUE(holder.assignFrom(holder));
    EXPECT_TRUE(pointer.assignTo(pointer));
    EXPECT_EQ(counting::copies, 0);
    EXPECT_EQ(counting::assignments, 0);
    EXPECT_EQ(holder.value().number, 3);
}

// behaviour: GV-25
TEST(holderAssignment, ofAnotherTypeConverts) {
    genericValue::valueholder<int> const number(42);
    genericValue::valueholder<string> text(L"before");
    EXPECT_TRUE(number.assignTo(text));
    EXPECT_EQ(text.value(), L"42");
    genericValue::valueholder<long> wide(0);
    EXPECT_TRUE(wide.assignFrom(number));
    EXPECT_EQ(wide.value(), 42);
    short object = 0;
    genericValue::ptrholder<short> reference(&object);
    EXPECT_TRUE(reference.assignFrom(text));
    EXPECT_EQ(object, 42);
}

// behaviour: GV-25
TEST(holderAssignment, thatDoesNotConvertLeavesTheTarget) {
    genericValue::valueholder<string> const text(L"no number");
    genericValue::valueholder<int> number(7);
    EXPECT_FALSE(text.assignTo(number));
    EXPECT_FALSE(number.assignFrom(text));
    EXPECT_EQ(number.value(), 7);
    genericValue::valueholder<counting> const unknown(counting(3));
    EXPECT_FALSE(unknown.assignTo(number));
    EXPECT_EQ(number.value(), 7);
}

// behaviour: GV-25
TEST(holderAssignment, succeedsWithAConversionOfTheHosts) {
    struct colour {
        int code;
    };
    auto& conversions = typeconvert::typeConversionManager::instance();
    genericValue::valueholder<colour> const source(colour{5});
    genericValue::valueholder<int> target(0);
    EXPECT_FALSE(source.assignTo(target));
    conversions.add<int, colour>([](int& to, colour const& from) {
        to = from.code;
        return true;
    });
    EXPECT_TRUE(source.assignTo(target));
    EXPECT_EQ(target.value(), 5);
    conversions.add(typeid(int), typeid(colour), {});
    EXPECT_FALSE(source.assignTo(target));
}

// Whether `action`, on another thread, waits for the lock.
template <class Action>
bool waitsFor(spinLockerRecursive* lock, Action const& action) {
    std::atomic<bool> done{false};
    bool doneTooEarly = false;
    std::thread other;
    {
        genericValueHolderLocker const guard(lock);
        other = std::thread([&] {
            action();
            done = true;
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        doneTooEarly = done;
    }
    other.join();
    return !doneTooEarly;
}

// behaviour: GV-26
TEST(holderLock, isTakenByWhatWritesAndByWhatCopies) {
    genericValue::valueholder<int> holder(1);
    genericValue::valueholder<int> other(2);
    genericValue::valueholder<string> text(L"3");
    auto const clone = [](genericValue::holderbase const& source) {
        std::unique_ptr<genericValue::holderbase> const copy(source.clone());
    };
    EXPECT_TRUE(waitsFor(holder.locker(), [&] { holder.setValue(5); }));
    EXPECT_TRUE(waitsFor(holder.locker(), [&] { clone(holder); }));
    EXPECT_TRUE(waitsFor(holder.locker(), [&] { holder.assignFrom(other); }));
    EXPECT_TRUE(waitsFor(holder.locker(), [&] { holder.assignTo(other); }));
    EXPECT_TRUE(waitsFor(holder.locker(), [&] { holder.assignFrom(text); }));
    EXPECT_TRUE(waitsFor(text.locker(), [&] { holder.assignFrom(text); }));
    EXPECT_TRUE(waitsFor(text.locker(), [&] { text.assignTo(holder); }));
    EXPECT_EQ(holder.value(), 3);
}

// behaviour: GV-26
TEST(holderLock, isTakenByReadingAValue) {
    genericValue const number(1);
    auto* const lock = dynamic_cast<genericValue::holder<int> const&>(*number.heldBy()).locker();
    int same = 0;
    string converted;
    EXPECT_TRUE(waitsFor(lock, [&] { number.getValue(same); }));
    EXPECT_TRUE(waitsFor(lock, [&] { number.getValue(converted); }));
    EXPECT_TRUE(waitsFor(lock, [&] { genericValue const copy(number); }));
    EXPECT_EQ(same, 1);
    EXPECT_EQ(converted, L"1");
}

// behaviour: GV-26
TEST(holderLock, isNotTakenByTheReferenceToTheValue) {
    genericValue::valueholder<int> const holder(1);
    EXPECT_FALSE(waitsFor(holder.locker(), [&] { EXPECT_EQ(holder.value(), 1); }));
}

// behaviour: GV-26
TEST(holderLock, isRecursive) {
    genericValue::valueholder<int> holder(1);
    genericValueHolderLocker const outer(holder.locker());
    genericValueHolderLocker const inner(holder.locker());
    holder.setValue(2);
    EXPECT_EQ(holder.value(), 2);
}

// behaviour: GV-26
TEST(holderLock, letsTheThreadThatHasItReadTheValue) {
    genericValue const number(42);
    genericValueHolderLocker const guard(dynamic_cast<genericValue::lockedHolder const&>(*number.heldBy()).locker());
    int same = 0;
    string converted;
    EXPECT_TRUE(number.getValue(same));
    EXPECT_TRUE(number.getValue(converted));
    EXPECT_EQ(same, 42);
    EXPECT_EQ(converted, L"42");
    EXPECT_EQ(*genericValue(number).valuePtr<int>(), 42);
}

// behaviour: GV-26
TEST(holderLock, ofEachHolderIsItsOwn) {
    genericValue::valueholder<int> const one(1);
    genericValue::valueholder<int> const other(1);
    EXPECT_NE(one.locker(), nullptr);
    EXPECT_NE(one.locker(), other.locker());
    auto* const made = genericValueHolderLocker::createLocker();
    { genericValueHolderLocker const guard(made); }
    genericValueHolderLocker::destroyLocker(made);
}

// behaviour: GV-27
TEST(holderStorage, comesFromAndGoesBackToTheLibrary) {
    using holder = genericValue::valueholder<counting>;
    int const before = counting::alive;
    void* const storage = genericValue::holderbase::allocate(sizeof(holder));
    genericValue::holderbase* const placed = ::new (storage) holder(counting(1));
    delete placed;
    auto* const made = new holder(counting(2));
    made->~holder();
    genericValue::holderbase::deallocate(made);
    EXPECT_EQ(counting::alive, before);
}

// behaviour: GV-28
TEST(valueOfAPointer, countsTheObject) {
    refPtr<refObj> const object(new counted);
    {
        genericValue const value(object);
        genericValue const copy(value);
        EXPECT_EQ(object->addRef(), 4U);
        object->release();
    }
    EXPECT_EQ(object->addRef(), 2U);
    object->release();
}

// behaviour: GV-28
TEST(valueOfAFunction, isCalledAsItWasGiven) {
    genericValue const value(valueEqFunction{&equalAsTexts});
    valueEqFunction equal = nullptr;
    ASSERT_TRUE(value.getValue(equal));
    EXPECT_TRUE(equal(genericValue(42), genericValue(L"42")));
    EXPECT_FALSE(equal(genericValue(42), genericValue(43)));
}

// behaviour: GV-03, GV-04
TEST(heldStorage, isAlignedForTheType) {
    struct alignas(64) wide {
        int number = 5;
    };
    genericValue const value{wide{}};
    genericValue const copy(value);
    for (genericValue const* each : {&value, &copy}) {
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(each->valuePtr<wide>()) % alignof(wide), 0U);
        EXPECT_EQ(each->valuePtr<wide>()->number, 5);
    }
    genericValue const longNumber(2.5L);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(longNumber.valuePtr<long double>()) % alignof(long double), 0U);
    EXPECT_EQ(*longNumber.valuePtr<long double>(), 2.5L);
}

// Allocates for itself.
struct ofItsOwnStorage {
    static void* operator new(std::size_t size) {
        ++alive;
        return ::operator new(size);
    }
    static void operator delete(void* storage) {
        --alive;
        ::operator delete(storage);
    }
    static inline int alive = 0;
};

// behaviour: GV-04
TEST(heldStorage, isTheTypesOwnIfItHasSome) {
    {
        genericValue const value{ofItsOwnStorage{}};
        genericValue const copy(value);
        EXPECT_EQ(ofItsOwnStorage::alive, 2);
    }
    EXPECT_EQ(ofItsOwnStorage::alive, 0);
}

// behaviour: GV-04
TEST(heldStorage, isIndependentForManyCopies) {
    genericValue const source(7);
    std::vector<genericValue> copies;
    for (int number = 0; number < 1000; ++number) {
        copies.push_back(source);
        *copies.back().valuePtr<int>() = number;
    }
    for (int number = 0; number < 1000; ++number)
        ASSERT_EQ(*copies[static_cast<std::size_t>(number)].valuePtr<int>(), number);
    EXPECT_EQ(*source.valuePtr<int>(), 7);
}

// behaviour: GV-17, GV-18
TEST(holderOfAHostsOwn, isReadAsAHolderOfItsType) {
    class special : public genericValue::valueholder<int> {
    public:
        special() : valueholder(42) {}
        holderbase* clone() const override { return new special; }
        // Too large for what holders usually take.
        char more[100] = {};
    };
    genericValue value(new special);
    genericValue const copy(value);
    int read = 0;
    EXPECT_TRUE(copy.getValue(read));
    EXPECT_EQ(read, 42);
    ASSERT_NE(value.valuePtr<int>(), nullptr);
    EXPECT_EQ(*value.valuePtr<int>(), 42);
    EXPECT_EQ(value.valuePtr<long>(), nullptr);
}

// behaviour: GV-07
TEST(valueOnTheHeap, isMadeAndEndedInEveryForm) {
    std::unique_ptr<genericValue> const one(new genericValue(1));
    std::unique_ptr<genericValue> const other(new (std::nothrow) genericValue(2));
    std::unique_ptr<genericValue[]> const several(new genericValue[3]);
    alignas(genericValue) std::byte place[sizeof(genericValue)];
    auto* const placed = new (place) genericValue(3);
    EXPECT_EQ(*one->valuePtr<int>() + *other->valuePtr<int>() + *placed->valuePtr<int>(), 6);
    EXPECT_TRUE(several[2].isEmpty());
    placed->~genericValue();
}

} // namespace
} // namespace zov::tests
