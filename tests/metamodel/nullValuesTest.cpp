// What stands for no value in a field, and what counts as no value.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "fieldChain.h"
#include "foreignValue.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::conversionsFromMeasures;
using tests::datedChain;
using tests::events;
using tests::fieldChain;
using tests::measure;
using tests::ownClass;
using zov::tests::eventLog;
using zov::tests::throwsFalse;

constexpr eFieldType valueTypes[] = {eBool,   eShort, eInt,  eLong,      eFloat, eDouble,
                                     eString, eDate,  eTime, eTimestamp, eBinary};
constexpr eFieldType holderTypes[] = {eDirectory, eFile, eSearchPath, ePtr, eCustom, static_cast<eFieldType>(0x20)};

date const day1900(1900, 1, 1);

// A class with one field of the given type.
struct subject {
    ownClass part{L"part"};
    refPtr<fieldInfo> field;

    explicit subject(eFieldType type) : field(addField(part, L"width", type)) {}

    template <class T>
    bool isNull(T const& value) const {
        return field->isNullValue(genericValue(value));
    }

    // Whether asking throws false and reports nothing.
    bool refuses(genericValue const& value) const {
        eventLog log;
        bool const threw = throwsFalse([&] { field->isNullValue(value); });
        return threw && log.take().empty();
    }
};

// The null value of a field of this type is held as exactly a T and equals `expected`.
template <class T>
void expectNullValue(eFieldType type, T const& expected) {
    SCOPED_TRACE(type);
    genericValue const value = subject(type).field->createNullValue();
    ASSERT_TRUE(value.valuePtr<T>());
    EXPECT_TRUE(*value.valuePtr<T>() == expected);
    EXPECT_FALSE(value.heldBy()->isPointer());
}

// behaviour: FV-09
TEST(nullValues, areFalseZeroAndEmpty) {
    expectNullValue(eBool, false);
    expectNullValue(eShort, short{0});
    expectNullValue(eInt, 0);
    expectNullValue(eLong, 0L);
    expectNullValue(eFloat, 0.0F);
    expectNullValue(eDouble, 0.0);
    expectNullValue(eString, string());
    expectNullValue(eBinary, binaryBuffer(0));
}

// behaviour: FV-09
TEST(nullValues, areTheFirstDayOf1900AndMidnight) {
    expectNullValue(eDate, day1900);
    expectNullValue(eTime, time(0, 0, 0, 0));
    expectNullValue(eTimestamp, timestamp(day1900, time(0, 0, 0, 0)));
}

// behaviour: FV-09
TEST(nullValues, ofPathsAreEmptyPathsOfTheirKind) {
    expectNullValue(eDirectory, directory());
    expectNullValue(eFile, file());
    expectNullValue(eSearchPath, searchPath());
    genericValue const where = subject(eDirectory).field->createNullValue();
    genericValue const what = subject(eFile).field->createNullValue();
    EXPECT_TRUE(where.valuePtr<directory>()->isDirectory());
    EXPECT_FALSE(what.valuePtr<file>()->isDirectory());
    EXPECT_FALSE(where.valuePtr<directory>()->exists() || what.valuePtr<file>()->exists());
}

// behaviour: FV-09
TEST(nullValues, ofOtherTypesAreTheEmptyValue) {
    for (eFieldType const type : {ePtr, eCustom, static_cast<eFieldType>(0x20)})
        EXPECT_TRUE(subject(type).field->createNullValue().isEmpty());
}

// behaviour: FV-09
TEST(nullValues, areMadeAnewAtEveryCall) {
    subject const given(eString);
    genericValue first = given.field->createNullValue();
    *first.valuePtr<string>() = L"changed";
    EXPECT_EQ(*given.field->createNullValue().valuePtr<string>(), L"");
}

// behaviour: FV-09
TEST(nullValues, areNotTheExplicitDefault) {
    subject const given(eInt);
    given.field->setDefaultValue(genericValue(5));
    EXPECT_EQ(*given.field->createNullValue().valuePtr<int>(), 0);
    EXPECT_FALSE(given.isNull(5));
}

// behaviour: FV-10
TEST(nullValues, followTheFieldsOwnTypeNotItsRoots) {
    datedChain const chain;
    EXPECT_TRUE(chain.root->createNullValue().valuePtr<date>());
    EXPECT_TRUE(chain.field->createNullValue().valuePtr<timestamp>());
    genericValue const noon(timestamp(day1900, time(12, 0, 0)));
    EXPECT_TRUE(chain.root->isNullValue(noon));
    EXPECT_FALSE(chain.field->isNullValue(noon));
}

// behaviour: FV-10
TEST(nullValues, ofAStandingFieldAreOfTheTypeItWasMadeWith) {
    fieldChain const chain(eDouble);
    EXPECT_TRUE(chain.field->createNullValue().valuePtr<double>());
    EXPECT_TRUE(chain.field->isNullValue(genericValue(0.0)));
    EXPECT_FALSE(chain.field->isNullValue(genericValue(1.0)));
}

// behaviour: FV-11
TEST(nullValues, countAsNullInAFieldOfTheirType) {
    for (eFieldType const type : valueTypes) {
        SCOPED_TRACE(type);
        subject const given(type);
        EXPECT_TRUE(given.field->isNullValue(given.field->createNullValue()));
    }
}

// behaviour: FV-16
TEST(nullValues, ofPathsDoNotCountAsNullSinceTheyAreHeld) {
    for (eFieldType const type : {eDirectory, eFile, eSearchPath}) {
        SCOPED_TRACE(type);
        subject const given(type);
        EXPECT_FALSE(given.field->isNullValue(given.field->createNullValue()));
    }
}

// behaviour: FV-04
TEST(nullValues, areNeverTheDefaultsOfDatesAndMoments) {
    for (eFieldType const type : {eDate, eTimestamp}) {
        SCOPED_TRACE(type);
        subject const given(type);
        genericValue now;
        ASSERT_TRUE(given.field->getDefaultValue(now, false));
        EXPECT_FALSE(given.field->isNullValue(now));
    }
}

// behaviour: FV-04
TEST(nullValues, areTheDefaultsOfAllOtherTypes) {
    for (eFieldType const type : {eBool, eShort, eInt, eLong, eFloat, eDouble, eString, eBinary}) {
        SCOPED_TRACE(type);
        subject const given(type);
        genericValue value;
        ASSERT_TRUE(given.field->getDefaultValue(value, false));
        EXPECT_TRUE(given.field->isNullValue(value));
    }
}

// behaviour: FV-11
TEST(nullValues, areFalseAndZeroToBoolsAndWholeNumbers) {
    EXPECT_FALSE(subject(eBool).isNull(true));
    EXPECT_FALSE(subject(eShort).isNull(short{1}));
    EXPECT_FALSE(subject(eInt).isNull(-1));
    EXPECT_FALSE(subject(eLong).isNull(std::numeric_limits<long>::min()));
    EXPECT_TRUE(subject(eBool).isNull(false));
    EXPECT_TRUE(subject(eShort).isNull(short{0}));
    EXPECT_TRUE(subject(eInt).isNull(0));
    EXPECT_TRUE(subject(eLong).isNull(0L));
}

// behaviour: FV-12
TEST(nullValues, areDoublesBelowTheThresholdInMagnitude) {
    subject const given(eDouble);
    for (double const value : {0.0, -0.0, 5e-07, -5e-07, 9.999999e-07, std::numeric_limits<double>::denorm_min()})
        EXPECT_TRUE(given.isNull(value)) << value;
    for (double const value : {1e-06, -1e-06, 2e-06, -2e-06, 1.0, std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity()})
        EXPECT_FALSE(given.isNull(value)) << value;
}

// behaviour: FV-12
TEST(nullValues, areFloatsBelowTheThresholdOnceTheyAreDoubles) {
    subject const given(eFloat);
    for (float const value : {0.0F, -0.0F, 5e-07F, -5e-07F, 1e-06F})
        EXPECT_TRUE(given.isNull(value)) << value;
    for (float const value : {std::nextafter(1e-06F, 1.0F), 2e-06F, -2e-06F, std::numeric_limits<float>::infinity()})
        EXPECT_FALSE(given.isNull(value)) << value;
}

// behaviour: FV-12
TEST(nullValues, areNeverNotANumber) {
    EXPECT_FALSE(subject(eFloat).isNull(std::numeric_limits<float>::quiet_NaN()));
    EXPECT_FALSE(subject(eDouble).isNull(std::numeric_limits<double>::quiet_NaN()));
    EXPECT_FALSE(subject(eDouble).isNull(std::numeric_limits<float>::quiet_NaN()));
}

// behaviour: FV-11
TEST(nullValues, areTextsAndBuffersWithoutLength) {
    EXPECT_TRUE(subject(eString).isNull(string()));
    EXPECT_FALSE(subject(eString).isNull(string(L" ")));
    EXPECT_FALSE(subject(eString).isNull(string(1, L'\0')));
    EXPECT_TRUE(subject(eBinary).isNull(binaryBuffer()));
    EXPECT_FALSE(subject(eBinary).isNull(binaryBuffer(1)));
}

// behaviour: FV-11
TEST(nullValues, areTheFirstDayOf1900AndMidnightAndNothingNearThem) {
    EXPECT_TRUE(subject(eDate).isNull(day1900));
    EXPECT_FALSE(subject(eDate).isNull(date(1900, 1, 2)));
    EXPECT_FALSE(subject(eDate).isNull(date(1899, 12, 31)));
    EXPECT_TRUE(subject(eTime).isNull(time(0, 0, 0)));
    EXPECT_FALSE(subject(eTime).isNull(time(0, 0, 0, 1)));
    EXPECT_TRUE(subject(eTimestamp).isNull(timestamp(day1900, time(0, 0, 0))));
    EXPECT_FALSE(subject(eTimestamp).isNull(timestamp(day1900, time(0, 0, 0, 1))));
    EXPECT_FALSE(subject(eTimestamp).isNull(timestamp(date(1900, 1, 2), time(0, 0, 0))));
}

// behaviour: FV-17
TEST(nullValues, mayBeObjectsOfTheHosts) {
    int number = 0;
    int const constant = 0;
    subject const given(eInt);
    EXPECT_TRUE(given.field->isNullValue(genericValue::byReference(number)));
    EXPECT_TRUE(given.field->isNullValue(genericValue::byReference(constant)));
    number = 5;
    EXPECT_FALSE(given.field->isNullValue(genericValue::byReference(number)));
    EXPECT_EQ(number, 5);
}

// behaviour: FV-17
TEST(nullValues, areTestedWithoutChangingTheValue) {
    subject const given(eInt);
    genericValue const value(L" 0 ");
    EXPECT_TRUE(given.field->isNullValue(value));
    ASSERT_TRUE(value.valuePtr<string>());
    EXPECT_EQ(*value.valuePtr<string>(), L" 0 ");
}

// behaviour: FV-13
TEST(nullValues, areReadFromTexts) {
    EXPECT_TRUE(subject(eBool).isNull(string(L"False")));
    EXPECT_FALSE(subject(eBool).isNull(string(L"true")));
    EXPECT_TRUE(subject(eShort).isNull(string(L"-0")));
    EXPECT_TRUE(subject(eInt).isNull(string(L"0")));
    EXPECT_FALSE(subject(eInt).isNull(string(L"1")));
    EXPECT_TRUE(subject(eLong).isNull(string(L" 0 ")));
    EXPECT_TRUE(subject(eFloat).isNull(string(L"5e-07")));
    EXPECT_TRUE(subject(eDouble).isNull(string(L"5e-07")));
    EXPECT_FALSE(subject(eDouble).isNull(string(L"2e-06")));
    EXPECT_TRUE(subject(eDate).isNull(string(L"1900-01-01")));
    EXPECT_FALSE(subject(eDate).isNull(string(L"1900-01-02")));
    EXPECT_TRUE(subject(eTime).isNull(string(L"00:00:00")));
    EXPECT_FALSE(subject(eTime).isNull(string(L"00:00:00.000001")));
    EXPECT_TRUE(subject(eTimestamp).isNull(string(L"1900-01-01 00:00:00")));
    EXPECT_FALSE(subject(eTimestamp).isNull(string(L"1900-01-01T00:00:01")));
    EXPECT_TRUE(subject(eBinary).isNull(string()));
    EXPECT_FALSE(subject(eBinary).isNull(string(L"00")));
}

// behaviour: FV-13
TEST(nullValues, areReadFromOtherTypes) {
    EXPECT_TRUE(subject(eBool).isNull(0));
    EXPECT_FALSE(subject(eBool).isNull(0.5));
    EXPECT_TRUE(subject(eInt).isNull(0.0));
    EXPECT_TRUE(subject(eInt).isNull(false));
    EXPECT_TRUE(subject(eFloat).isNull(5e-07));
    EXPECT_TRUE(subject(eDouble).isNull(5e-07F));
    EXPECT_FALSE(subject(eString).isNull(0));
    EXPECT_TRUE(subject(eDate).isNull(timestamp(day1900, time(12, 0, 0))));
    EXPECT_TRUE(subject(eTime).isNull(timestamp(date(2024, 2, 29), time(0, 0, 0))));
    EXPECT_TRUE(subject(eTimestamp).isNull(day1900));
    EXPECT_FALSE(subject(eTimestamp).isNull(date(2024, 2, 29)));
}

// behaviour: FV-14
TEST(nullValues, areNotToldOfWhatCannotBeRead) {
    EXPECT_TRUE(subject(eInt).refuses(genericValue(L"abc")));
    EXPECT_TRUE(subject(eInt).refuses(genericValue(L"")));
    EXPECT_TRUE(subject(eShort).refuses(genericValue(70000)));
    EXPECT_TRUE(subject(eLong).refuses(genericValue(0.5)));
    EXPECT_TRUE(subject(eBool).refuses(genericValue(std::numeric_limits<double>::quiet_NaN())));
    EXPECT_TRUE(subject(eDate).refuses(genericValue(L"1900-02-30")));
    EXPECT_TRUE(subject(eTime).refuses(genericValue(day1900)));
    EXPECT_TRUE(subject(eBinary).refuses(genericValue(0)));
    EXPECT_TRUE(subject(eString).refuses(genericValue(std::vector<int>())));
}

// behaviour: FV-14
TEST(nullValues, areNotToldOfNoValueWhereATypeIsRead) {
    for (eFieldType const type : valueTypes) {
        SCOPED_TRACE(type);
        EXPECT_TRUE(subject(type).refuses(genericValue()));
    }
}

// behaviour: FV-15
TEST(nullValues, areOnlyTheEmptyValueForPathsPointersAndCustomTypes) {
    for (eFieldType const type : holderTypes) {
        SCOPED_TRACE(type);
        subject const given(type);
        EXPECT_TRUE(given.field->isNullValue(genericValue()));
        EXPECT_FALSE(given.isNull(directory()));
        EXPECT_FALSE(given.isNull(file()));
        EXPECT_FALSE(given.isNull(searchPath()));
        EXPECT_FALSE(given.isNull(0));
        EXPECT_FALSE(given.isNull(string()));
        EXPECT_FALSE(given.isNull(refPtr<refObj>()));
        EXPECT_FALSE(given.isNull(std::vector<int>()));
    }
}

// behaviour: FV-11
TEST(nullValues, ofAPointerFieldCountAsNull) {
    for (eFieldType const type : {ePtr, eCustom}) {
        subject const given(type);
        EXPECT_TRUE(given.field->isNullValue(given.field->createNullValue()));
    }
}

// behaviour: FV-13
TEST(nullValues, areReadByConversionsOfTheHosts) {
    subject const given(eInt);
    EXPECT_TRUE(given.refuses(genericValue(measure{0})));
    {
        conversionsFromMeasures<int> const added([](int& target, measure const& source) {
            target = source.millimetres;
            return true;
        });
        EXPECT_TRUE(given.isNull(measure{0}));
        EXPECT_FALSE(given.isNull(measure{3}));
    }
    EXPECT_TRUE(given.refuses(genericValue(measure{0})));
}

// behaviour: FV-18
TEST(nullValues, startFromTheNewYearWhereAConversionWritesNothing) {
    conversionsFromMeasures<bool, short, int, long, float, double, string, date, time, timestamp, binaryBuffer> const
        added([](auto&, measure const&) { return true; });
    for (eFieldType const type : valueTypes) {
        SCOPED_TRACE(type);
        EXPECT_EQ(subject(type).isNull(measure{3}), type != eDate && type != eTimestamp);
    }
}

} // namespace
} // namespace zov::metamodel
