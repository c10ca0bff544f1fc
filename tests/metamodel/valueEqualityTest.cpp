// How two values of a field are compared: by the host's function, or by the type's own.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "fieldChain.h"
#include "foreignValue.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::datedChain;
using tests::events;
using tests::fieldChain;
using tests::ownClass;
using zov::tests::eventLog;
using zov::tests::throwsFalse;

bool alwaysEqual(genericValue const&, genericValue const&) {
    return true;
}
bool neverEqual(genericValue const&, genericValue const&) {
    return false;
}

// The type's own function, as a field of the type answers it.
valueEqFunction builtIn(eFieldType type) {
    ownClass const part(L"part");
    return addField(part, L"width", type)->valueEqFunc(false);
}

template <class A, class B>
bool equal(eFieldType type, A const& one, B const& other) {
    return builtIn(type)(genericValue(one), genericValue(other));
}

// Whether comparing throws false and reports nothing, whichever side the value stands on.
bool refuses(eFieldType type, genericValue const& value, genericValue const& readable) {
    valueEqFunction const areEqual = builtIn(type);
    eventLog log;
    bool const left = throwsFalse([&] { areEqual(value, readable); });
    bool const right = throwsFalse([&] { areEqual(readable, value); });
    return left && right && log.take().empty();
}

// behaviour: FE-10
TEST(valueEquality, isTheHostsOnceItHasSaidSo) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width");
    eventLog log;
    EXPECT_TRUE(field->setValueEqFunc(&alwaysEqual));
    EXPECT_EQ(field->valueEqFunc(false), &alwaysEqual);
    EXPECT_EQ(field->valueEqFunc(true), &alwaysEqual);
    EXPECT_TRUE(field->setValueEqFunc(&neverEqual));
    EXPECT_EQ(field->valueEqFunc(false), &neverEqual);
    EXPECT_EQ(log.take(), events());
}

// behaviour: FE-10
TEST(valueEquality, mayBeTheHostsForTypesThatHaveNone) {
    for (eFieldType const type : {eBinary, eSearchPath, ePtr, eCustom}) {
        ownClass const part(L"part");
        auto const field = addField(part, L"width", type);
        field->setValueEqFunc(&alwaysEqual);
        EXPECT_EQ(field->valueEqFunc(false), &alwaysEqual);
    }
}

// behaviour: FE-10
TEST(valueEquality, isThatOfTheNearestFieldThatHasOneWhenInherited) {
    fieldChain const chain;
    chain.root->setValueEqFunc(&alwaysEqual);
    EXPECT_EQ(chain.middle->valueEqFunc(true), &alwaysEqual);
    EXPECT_EQ(chain.field->valueEqFunc(true), &alwaysEqual);
    chain.middle->setValueEqFunc(&neverEqual);
    EXPECT_EQ(chain.field->valueEqFunc(true), &neverEqual);
    EXPECT_EQ(chain.root->valueEqFunc(true), &alwaysEqual);
}

// behaviour: FE-10
TEST(valueEquality, isTheTypesOwnWhenNotInherited) {
    fieldChain const chain;
    chain.root->setValueEqFunc(&alwaysEqual);
    chain.middle->setValueEqFunc(&neverEqual);
    EXPECT_EQ(chain.field->valueEqFunc(false), builtIn(eInt));
    EXPECT_NE(builtIn(eInt), nullptr);
}

// behaviour: FE-11
TEST(valueEquality, mayBeTakenAwayAndDoesNotFallBackThen) {
    fieldChain const chain;
    chain.root->setValueEqFunc(&alwaysEqual);
    EXPECT_TRUE(chain.middle->setValueEqFunc(nullptr));
    EXPECT_EQ(chain.middle->valueEqFunc(true), nullptr);
    EXPECT_EQ(chain.middle->valueEqFunc(false), nullptr);
    EXPECT_EQ(chain.field->valueEqFunc(true), nullptr);
    EXPECT_EQ(chain.field->valueEqFunc(false), builtIn(eInt));
}

// behaviour: FE-11
TEST(valueEquality, mayComeBackAfterItWasTakenAway) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width");
    field->setValueEqFunc(nullptr);
    field->setValueEqFunc(&alwaysEqual);
    EXPECT_EQ(field->valueEqFunc(false), &alwaysEqual);
}

// behaviour: FE-10, CF-16
TEST(valueEquality, goesWithACopyOfTheField) {
    ownClass const part(L"part");
    ownClass const other(L"other");
    auto const field = addField(part, L"width");
    field->setValueEqFunc(&alwaysEqual);
    auto const copy = other->copyFieldInfoFrom(field, nullptr);
    field->setValueEqFunc(&neverEqual);
    EXPECT_EQ(copy->valueEqFunc(false), &alwaysEqual);
}

// behaviour: FE-12
TEST(valueEquality, ofNumbersAndBoolsIsExact) {
    EXPECT_TRUE(equal(eBool, true, true));
    EXPECT_FALSE(equal(eBool, true, false));
    EXPECT_TRUE(equal(eShort, short{-5}, short{-5}));
    EXPECT_FALSE(equal(eShort, short{-5}, short{5}));
    EXPECT_TRUE(equal(eInt, 5, 5));
    EXPECT_FALSE(equal(eInt, 5, 6));
    EXPECT_TRUE(equal(eLong, std::numeric_limits<long>::max(), std::numeric_limits<long>::max()));
    EXPECT_FALSE(equal(eLong, std::numeric_limits<long>::max(), std::numeric_limits<long>::max() - 1));
    EXPECT_TRUE(equal(eFloat, 0.1F, 0.1F));
    EXPECT_FALSE(equal(eFloat, 1.0F, 1.0F + std::numeric_limits<float>::epsilon()));
    EXPECT_TRUE(equal(eDouble, 0.1, 0.1));
    EXPECT_FALSE(equal(eDouble, 1.0, 1.0 + std::numeric_limits<double>::epsilon()));
}

// behaviour: FE-13
TEST(valueEquality, ofFloatingNumbersKnowsNoTolerance) {
    EXPECT_FALSE(equal(eDouble, 0.1 + 0.2, 0.3));
    EXPECT_FALSE(equal(eDouble, 0.0, 5e-07));
    EXPECT_FALSE(equal(eFloat, 0.0F, 5e-07F));
    EXPECT_TRUE(equal(eDouble, 0.0, -0.0));
}

// behaviour: FE-13
TEST(valueEquality, ofNotANumberIsFalseAlsoToItself) {
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinite = std::numeric_limits<double>::infinity();
    EXPECT_FALSE(equal(eDouble, notANumber, notANumber));
    EXPECT_FALSE(equal(eFloat, std::numeric_limits<float>::quiet_NaN(), 0.0F));
    EXPECT_TRUE(equal(eDouble, infinite, infinite));
    EXPECT_FALSE(equal(eDouble, infinite, -infinite));
}

// behaviour: FE-12
TEST(valueEquality, ofTextsIsThatOfEveryUnit) {
    EXPECT_TRUE(equal(eString, string(L"Größe"), string(L"Größe")));
    EXPECT_FALSE(equal(eString, string(L"Größe"), string(L"größe")));
    EXPECT_FALSE(equal(eString, string(L"a"), string(L"a ")));
    EXPECT_FALSE(equal(eString, string(L"a"), string(2, L'\0')));
    EXPECT_TRUE(equal(eString, string(), string()));
}

// behaviour: FE-12
TEST(valueEquality, ofDatesTimesAndTimestampsIsThatOfTheirParts) {
    date const day(2024, 2, 29);
    time const tea(17, 30, 0);
    EXPECT_TRUE(equal(eDate, day, date(2024, 2, 29)));
    EXPECT_FALSE(equal(eDate, day, date(2024, 2, 28)));
    EXPECT_TRUE(equal(eTime, tea, time(17, 30, 0, 0)));
    EXPECT_FALSE(equal(eTime, tea, time(17, 30, 0, 1)));
    EXPECT_TRUE(equal(eTimestamp, timestamp(day, tea), timestamp(day, tea)));
    EXPECT_FALSE(equal(eTimestamp, timestamp(day, tea), timestamp(day, time(17, 30, 1))));
    EXPECT_FALSE(equal(eTimestamp, timestamp(day, tea), timestamp(date(2023, 2, 28), tea)));
}

// behaviour: FE-12
TEST(valueEquality, ofPathsIsThatOfTheirTexts) {
    EXPECT_TRUE(equal(eDirectory, directory(L"/data"), directory(L"/data")));
    EXPECT_FALSE(equal(eDirectory, directory(L"/data"), directory(L"/data/")));
    EXPECT_TRUE(equal(eFile, file(L"a"), file(L"a")));
    EXPECT_FALSE(equal(eFile, file(L"a"), file(L"A")));
}

// behaviour: FE-15
TEST(valueEquality, isMissingForBuffersSearchPathsPointersAndCustomTypes) {
    for (eFieldType const type : {eBinary, eSearchPath, ePtr, eCustom, static_cast<eFieldType>(0x20)}) {
        SCOPED_TRACE(type);
        EXPECT_EQ(builtIn(type), nullptr);
        fieldChain const chain(type);
        EXPECT_EQ(chain.field->valueEqFunc(true), nullptr);
    }
}

// behaviour: FE-14
TEST(valueEquality, readsBothValuesAsTheFieldsType) {
    EXPECT_TRUE(equal(eBool, string(L"True"), 5));
    EXPECT_TRUE(equal(eShort, string(L" 5 "), 5.0));
    EXPECT_TRUE(equal(eInt, string(L"5"), 5L));
    EXPECT_TRUE(equal(eLong, true, 1));
    EXPECT_TRUE(equal(eFloat, 0.1, 0.1F));
    EXPECT_FALSE(equal(eDouble, 0.1, 0.1F));
    EXPECT_TRUE(equal(eString, 5, string(L"5")));
    EXPECT_TRUE(equal(eDate, string(L"2024-02-29"), timestamp(date(2024, 2, 29), time(17, 30, 0))));
    EXPECT_TRUE(equal(eTime, string(L"17:30:00"), timestamp(date(2024, 2, 29), time(17, 30, 0))));
    EXPECT_TRUE(equal(eTimestamp, date(2024, 2, 29), string(L"2024-02-29 00:00:00")));
    EXPECT_TRUE(equal(eDirectory, string(L"/data"), directory(L"/data")));
    EXPECT_TRUE(equal(eFile, file(L"a"), string(L"a")));
}

// behaviour: FE-14
TEST(valueEquality, comparesObjectsOfTheHosts) {
    int number = 5;
    genericValue const seen = genericValue::byReference(number);
    valueEqFunction const areEqual = builtIn(eInt);
    EXPECT_TRUE(areEqual(seen, genericValue(5)));
    number = 6;
    EXPECT_FALSE(areEqual(seen, genericValue(5)));
    EXPECT_TRUE(areEqual(seen, seen));
}

// behaviour: FE-14
TEST(valueEquality, isRefusedForValuesThatCannotBeRead) {
    EXPECT_TRUE(refuses(eBool, genericValue(L"perhaps"), genericValue(true)));
    EXPECT_TRUE(refuses(eShort, genericValue(70000), genericValue(short{1})));
    EXPECT_TRUE(refuses(eInt, genericValue(L"abc"), genericValue(1)));
    EXPECT_TRUE(refuses(eLong, genericValue(0.5), genericValue(1L)));
    EXPECT_TRUE(refuses(eFloat, genericValue(1e300), genericValue(1.0F)));
    EXPECT_TRUE(refuses(eDouble, genericValue(L""), genericValue(1.0)));
    EXPECT_TRUE(refuses(eString, genericValue(std::vector<int>()), genericValue(L"a")));
    EXPECT_TRUE(refuses(eDate, genericValue(L"2023-02-29"), genericValue(date())));
    EXPECT_TRUE(refuses(eTime, genericValue(date()), genericValue(time())));
    EXPECT_TRUE(refuses(eTimestamp, genericValue(time()), genericValue(timestamp())));
    EXPECT_TRUE(refuses(eDirectory, genericValue(file()), genericValue(directory())));
    EXPECT_TRUE(refuses(eFile, genericValue(directory()), genericValue(file())));
}

// behaviour: FE-14
TEST(valueEquality, isRefusedForNoValue) {
    for (eFieldType const type :
         {eBool, eShort, eInt, eLong, eFloat, eDouble, eString, eDate, eTime, eTimestamp, eDirectory, eFile}) {
        SCOPED_TRACE(type);
        ownClass const part(L"part");
        EXPECT_TRUE(refuses(type, genericValue(), addField(part, L"width", type)->createNullValue()));
        EXPECT_TRUE(refuses(type, genericValue(), genericValue()));
    }
}

// behaviour: FE-17
TEST(valueEquality, ofDatesStartsFromTheNewYearWhereAConversionWritesNothing) {
    tests::conversionsFromMeasures<date> const added([](date&, tests::measure const&) { return true; });
    EXPECT_TRUE(equal(eDate, tests::measure{3}, date(date::thisYear(), 1, 1)));
    EXPECT_FALSE(equal(eDate, tests::measure{3}, date(1900, 1, 1)));
}

// behaviour: FE-16
TEST(valueEquality, followsTheRootsTypeWhenInheritedAndElseTheFieldsOwn) {
    datedChain const chain;
    EXPECT_EQ(chain.field->valueEqFunc(true), builtIn(eDate));
    EXPECT_EQ(chain.field->valueEqFunc(false), builtIn(eTimestamp));
    genericValue const morning(timestamp(date(2024, 2, 29), time(8, 0, 0)));
    genericValue const evening(timestamp(date(2024, 2, 29), time(20, 0, 0)));
    EXPECT_TRUE(chain.field->valueEqFunc(true)(morning, evening));
    EXPECT_FALSE(chain.field->valueEqFunc(false)(morning, evening));
}

} // namespace
} // namespace zov::metamodel
