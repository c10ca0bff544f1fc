// What a new record gets in a field when nothing else is said.
#include <gtest/gtest.h>

#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include <stdlib.h>

#include "fieldChain.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::datedChain;
using tests::events;
using tests::fieldChain;
using tests::ownClass;
using zov::tests::eventLog;

constexpr eFieldType noTypes[] = {ePtr,
                                  eCustom,
                                  static_cast<eFieldType>(0),
                                  static_cast<eFieldType>(0x4),
                                  static_cast<eFieldType>(0x20),
                                  static_cast<eFieldType>(eInt | eLong)};

// The type's default, as exactly a T; nothing when there is none or it is held as another type.
template <class T>
std::optional<T> defaultOf(eFieldType type) {
    genericValue value(std::vector<int>{7});
    if (!fieldInfo::getDefaultFromType(type, value)) return std::nullopt;
    auto const* const held = value.valuePtr<T>();
    return held ? std::optional<T>(*held) : std::nullopt;
}

// The field's default as a number; nothing when it has none or one of another type.
std::optional<int> numberOf(refPtr<fieldInfo> const& field, bool inherit) {
    genericValue value;
    if (!field->getDefaultValue(value, inherit)) return std::nullopt;
    auto const* const held = value.valuePtr<int>();
    return held ? std::optional<int>(*held) : std::nullopt;
}

// Makes local time that of another part of the world while it lives.
class otherTimeZone {
public:
    explicit otherTimeZone(char const* zone) {
        if (char const* const former = getenv("TZ")) mFormer = former;
        setenv("TZ", zone, 1);
        tzset();
    }
    ~otherTimeZone() {
        mFormer ? setenv("TZ", mFormer->c_str(), 1) : unsetenv("TZ");
        tzset();
    }
    otherTimeZone(otherTimeZone const&) = delete;
    otherTimeZone& operator=(otherTimeZone const&) = delete;

private:
    std::optional<std::string> mFormer;
};

// Counts its instances.
struct counted {
    static inline int alive = 0;
    counted() { ++alive; }
    counted(counted const&) { ++alive; }
    counted& operator=(counted const&) = default;
    ~counted() { --alive; }
};

// behaviour: FV-01
TEST(defaultValues, areFalseAndZeroOfTheFieldsVeryType) {
    EXPECT_EQ(defaultOf<bool>(eBool), false);
    EXPECT_EQ(defaultOf<short>(eShort), short{0});
    EXPECT_EQ(defaultOf<int>(eInt), 0);
    EXPECT_EQ(defaultOf<long>(eLong), 0L);
    EXPECT_EQ(defaultOf<float>(eFloat), 0.0F);
    EXPECT_EQ(defaultOf<double>(eDouble), 0.0);
}

// behaviour: FV-01
TEST(defaultValues, areEmptyTextsBuffersAndPaths) {
    EXPECT_EQ(defaultOf<string>(eString), string());
    EXPECT_EQ(defaultOf<binaryBuffer>(eBinary), binaryBuffer(0));
    EXPECT_EQ(defaultOf<directory>(eDirectory), directory());
    EXPECT_EQ(defaultOf<file>(eFile), file());
    EXPECT_EQ(defaultOf<searchPath>(eSearchPath), searchPath());
    EXPECT_TRUE(defaultOf<directory>(eDirectory)->isDirectory());
    EXPECT_FALSE(defaultOf<file>(eFile)->isDirectory());
}

// behaviour: FV-03
TEST(defaultValues, ofADateIsToday) {
    date const before = date::today();
    auto const value = defaultOf<date>(eDate);
    date const after = date::today();
    ASSERT_TRUE(value);
    EXPECT_LE(before, *value);
    EXPECT_LE(*value, after);
}

// behaviour: FV-03
TEST(defaultValues, ofADateIsThatOfTheDayOfTheCall) {
    otherTimeZone const east("EAST-14");
    auto const there = defaultOf<date>(eDate);
    otherTimeZone const west("WEST12");
    auto const here = defaultOf<date>(eDate);
    ASSERT_TRUE(there && here);
    EXPECT_GT(*there, *here);
}

// behaviour: FV-03
TEST(defaultValues, ofATimestampIsThisMoment) {
    timestamp const before = timestamp::now();
    auto const value = defaultOf<timestamp>(eTimestamp);
    timestamp const after = timestamp::now();
    ASSERT_TRUE(value);
    EXPECT_LE(before, *value);
    EXPECT_LE(*value, after);
}

// behaviour: FV-03
TEST(defaultValues, ofATimeIsThePresentTime) {
    timestamp before;
    std::optional<time> value;
    timestamp after;
    do {
        before = timestamp::now();
        value = defaultOf<time>(eTime);
        after = timestamp::now();
    } while (before.date() != after.date());
    ASSERT_TRUE(value);
    EXPECT_LE(before.time(), *value);
    EXPECT_LE(*value, after.time());
}

// behaviour: FV-02
TEST(defaultValues, areMissingForOtherTypesAndLeaveTheValueAlone) {
    eventLog log;
    for (eFieldType const type : noTypes) {
        SCOPED_TRACE(type);
        genericValue value(5);
        int const* const held = value.valuePtr<int>();
        EXPECT_FALSE(fieldInfo::getDefaultFromType(type, value));
        EXPECT_EQ(value.valuePtr<int>(), held);
        EXPECT_EQ(*held, 5);
        genericValue empty;
        EXPECT_FALSE(fieldInfo::getDefaultFromType(type, empty));
        EXPECT_TRUE(empty.isEmpty());
    }
    EXPECT_EQ(log.take(), events());
}

// behaviour: FV-02
TEST(defaultValues, areMissingInAFieldOfATypeWithoutOne) {
    ownClass const part(L"part");
    for (eFieldType const type : {ePtr, eCustom}) {
        auto const field = part->createFieldInfo(type == ePtr ? L"a" : L"b", type, genericSet(), L"");
        for (bool const inherit : {false, true}) {
            genericValue value(5);
            EXPECT_FALSE(field->getDefaultValue(value, inherit));
            ASSERT_TRUE(value.valuePtr<int>());
            EXPECT_EQ(*value.valuePtr<int>(), 5);
        }
    }
}

// behaviour: FV-05
TEST(defaultValues, endTheValueThatWasThere) {
    genericValue value{counted()};
    ASSERT_EQ(counted::alive, 1);
    EXPECT_TRUE(fieldInfo::getDefaultFromType(eInt, value));
    EXPECT_EQ(counted::alive, 0);
    ASSERT_TRUE(value.valuePtr<int>());
    EXPECT_FALSE(value.heldBy()->isPointer());
}

// behaviour: FV-05
TEST(defaultValues, doNotReachTheObjectThatWasReferredTo) {
    int number = 5;
    genericValue value = genericValue::byReference(number);
    EXPECT_TRUE(fieldInfo::getDefaultFromType(eInt, value));
    EXPECT_EQ(number, 5);
    ASSERT_TRUE(value.valuePtr<int>());
    EXPECT_EQ(*value.valuePtr<int>(), 0);
}

// behaviour: FV-05
TEST(defaultValues, areMadeAnewAtEveryCall) {
    genericValue first;
    genericValue second;
    fieldInfo::getDefaultFromType(eString, first);
    *first.valuePtr<string>() = L"changed";
    fieldInfo::getDefaultFromType(eString, second);
    EXPECT_EQ(*second.valuePtr<string>(), L"");
}

// behaviour: FV-07
TEST(defaultValues, areThoseOfTheTypeAtFirst) {
    fieldChain const chain;
    for (auto const& field : {chain.root, chain.middle, chain.field})
        for (bool const inherit : {false, true})
            EXPECT_EQ(numberOf(field, inherit), 0);
}

// behaviour: FV-06
TEST(defaultValues, areWhatTheHostSays) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width");
    EXPECT_TRUE(field->setDefaultValue(genericValue(5)));
    EXPECT_EQ(numberOf(field, false), 5);
    EXPECT_EQ(numberOf(field, true), 5);
    EXPECT_TRUE(field->setDefaultValue(genericValue(6)));
    EXPECT_EQ(numberOf(field, false), 6);
}

// behaviour: FV-06
TEST(defaultValues, keepAnExplicitOneOfAWrongTypeAsItIs) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width", eInt);
    eventLog log;
    EXPECT_TRUE(field->setDefaultValue(genericValue(L"wide")));
    genericValue value(5);
    EXPECT_TRUE(field->getDefaultValue(value, false));
    ASSERT_TRUE(value.valuePtr<string>());
    EXPECT_EQ(*value.valuePtr<string>(), L"wide");
    EXPECT_EQ(field->type(), eInt);
    EXPECT_EQ(log.take(), events());
}

// behaviour: FV-06
TEST(defaultValues, mayBeGivenToAFieldOfATypeWithoutOne) {
    ownClass const part(L"part");
    auto const field = addField(part, L"where", eCustom);
    EXPECT_TRUE(field->setDefaultValue(genericValue(std::vector<int>{1, 2})));
    genericValue value;
    EXPECT_TRUE(field->getDefaultValue(value, false));
    ASSERT_TRUE(value.valuePtr<std::vector<int>>());
    EXPECT_EQ(value.valuePtr<std::vector<int>>()->size(), 2u);
}

// behaviour: FV-06
TEST(defaultValues, keepAnExplicitEmptyValueAndGoNoFurther) {
    fieldChain const chain;
    chain.root->setDefaultValue(genericValue(5));
    EXPECT_TRUE(chain.middle->setDefaultValue(genericValue()));
    genericValue value(7);
    EXPECT_TRUE(chain.field->getDefaultValue(value, true));
    EXPECT_TRUE(value.isEmpty());
}

// behaviour: FV-07
TEST(defaultValues, comeFromTheNearestFieldThatHasOne) {
    fieldChain const chain;
    chain.root->setDefaultValue(genericValue(1));
    EXPECT_EQ(numberOf(chain.field, true), 1);
    chain.middle->setDefaultValue(genericValue(2));
    EXPECT_EQ(numberOf(chain.field, true), 2);
    chain.field->setDefaultValue(genericValue(3));
    EXPECT_EQ(numberOf(chain.field, true), 3);
    EXPECT_EQ(numberOf(chain.middle, true), 2);
    EXPECT_EQ(numberOf(chain.root, true), 1);
}

// behaviour: FV-07
TEST(defaultValues, areNotInheritedUnlessAskedFor) {
    fieldChain const chain;
    chain.root->setDefaultValue(genericValue(1));
    chain.middle->setDefaultValue(genericValue(2));
    EXPECT_EQ(numberOf(chain.field, false), 0);
    EXPECT_EQ(numberOf(chain.middle, false), 2);
}

// behaviour: FV-07
TEST(defaultValues, ofADerivedFieldDoNotReachItsBases) {
    fieldChain const chain;
    chain.field->setDefaultValue(genericValue(3));
    EXPECT_EQ(numberOf(chain.middle, true), 0);
    EXPECT_EQ(numberOf(chain.root, true), 0);
}

// behaviour: FV-08
TEST(defaultValues, areCopiesOfWhatTheHostGave) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width");
    genericValue given(5);
    field->setDefaultValue(given);
    *given.valuePtr<int>() = 6;
    EXPECT_EQ(numberOf(field, false), 5);
}

// behaviour: FV-08
TEST(defaultValues, areHandedOutAsCopies) {
    fieldChain const chain(eString);
    chain.root->setDefaultValue(genericValue(L"wide"));
    for (auto const& field : {chain.root, chain.field}) {
        genericValue value;
        EXPECT_TRUE(field->getDefaultValue(value, true));
        *value.valuePtr<string>() = L"changed";
        genericValue again;
        EXPECT_TRUE(field->getDefaultValue(again, true));
        ASSERT_TRUE(again.valuePtr<string>());
        EXPECT_EQ(*again.valuePtr<string>(), L"wide");
    }
}

// behaviour: FV-08
TEST(defaultValues, thatReferToAnObjectOfTheHostsGoOnReferringToIt) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width");
    int number = 5;
    field->setDefaultValue(genericValue::byReference(number));
    number = 6;
    EXPECT_EQ(numberOf(field, false), 6);
}

// behaviour: FV-08
TEST(defaultValues, endWhenTheyAreReplacedAndWithTheField) {
    {
        ownClass const part(L"part");
        auto const field = addField(part, L"width");
        field->setDefaultValue(genericValue(counted()));
        EXPECT_EQ(counted::alive, 1);
        field->setDefaultValue(genericValue(counted()));
        EXPECT_EQ(counted::alive, 1);
    }
    EXPECT_EQ(counted::alive, 0);
}

// behaviour: FV-10
TEST(defaultValues, followTheRootsTypeWhenInheritedAndElseTheFieldsOwn) {
    datedChain const chain;
    genericValue value;
    EXPECT_TRUE(chain.field->getDefaultValue(value, true));
    EXPECT_TRUE(value.valuePtr<date>());
    EXPECT_TRUE(chain.field->getDefaultValue(value, false));
    EXPECT_TRUE(value.valuePtr<timestamp>());
}

// behaviour: FV-08, CF-16
TEST(defaultValues, areCopiedWithTheFieldAndChangeOnTheirOwn) {
    ownClass const part(L"part");
    ownClass const other(L"other");
    auto const field = addField(part, L"width");
    field->setDefaultValue(genericValue(5));
    auto const copy = other->copyFieldInfoFrom(field, nullptr);
    field->setDefaultValue(genericValue(6));
    EXPECT_EQ(numberOf(copy, false), 5);
    copy->setDefaultValue(genericValue(7));
    EXPECT_EQ(numberOf(field, false), 6);
}

// behaviour: FV-07, TD-05
TEST(defaultValues, areInheritedBeyondATearDown) {
    refPtr<fieldInfo> held;
    {
        fieldChain const chain;
        chain.root->setDefaultValue(genericValue(5));
        held = chain.field;
    }
    EXPECT_EQ(numberOf(held, true), 5);
}

} // namespace
} // namespace zov::metamodel
