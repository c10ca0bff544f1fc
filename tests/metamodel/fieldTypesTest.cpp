// Field types: their texts, reading them, and the type of a field.
#include "zovMdlFieldType.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <optional>
#include <string>
#include <type_traits>

#include "modelFixture.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::ownClass;
using zov::tests::eventLog;
using zov::tests::throwsFalse;

struct typeRow {
    eFieldType type;
    wchar_t const* text;
};

constexpr typeRow rows[] = {
    {eBool, L"bool"},   {eShort, L"short"},           {eInt, L"int"},       {eLong, L"long"},
    {eFloat, L"float"}, {eDouble, L"double"},         {eString, L"string"}, {eDate, L"date"},
    {eTime, L"time"},   {eTimestamp, L"timestamp"},   {eBinary, L"binary"}, {eDirectory, L"directory"},
    {eFile, L"file"},   {eSearchPath, L"searchpath"}, {ePtr, L"ptr"},
};

// A value that is no type, to see whether it was replaced.
constexpr auto untouched = static_cast<eFieldType>(0x4);

// What reading a text gives: the length for a string type, empty for a refused text, which must leave the type alone.
std::optional<unsigned long> stringLength(string const& text) {
    eFieldType type = untouched;
    unsigned long length = 4711;
    if (fieldInfo::parseType(text, type, length)) {
        EXPECT_EQ(type, eString);
        return length;
    }
    EXPECT_EQ(type, untouched);
    EXPECT_EQ(length, 0u);
    return {};
}

// Reads a text as a type without a length, empty for a refused one.
std::optional<eFieldType> typeOf(string const& text) {
    eFieldType type = untouched;
    unsigned long length = 4711;
    bool const read = fieldInfo::parseType(text, type, length);
    EXPECT_EQ(length, 0u);
    if (read) return type;
    EXPECT_EQ(type, untouched);
    return {};
}

// behaviour: FT-14
TEST(fieldTypes, haveTheStatedValues) {
    static_assert(eBool == 0x1 && eShort == 0x2 && eInt == 0x8 && eLong == 0x10 && eFloat == 0x40 && eDouble == 0x80);
    static_assert(eString == 0x100 && eDate == 0x200 && eTime == 0x400 && eTimestamp == 0x800 && eBinary == 0x1000);
    static_assert(eDirectory == 0x2000 && eFile == 0x4000 && eSearchPath == 0x8000);
    static_assert(ePtr == 0x40000000 && eCustom == 0x80000000);
    static_assert(sizeof(eFieldType) == 4 && std::is_convertible_v<eFieldType, std::uint32_t>);
}

// behaviour: FT-01
TEST(fieldTypes, areReadFromTheirTexts) {
    for (auto const& row : rows)
        EXPECT_EQ(typeOf(row.text), row.type) << string(row.text).toUtf8();
}

// behaviour: FT-02
TEST(fieldTypes, areReadInAnyLetterCase) {
    EXPECT_EQ(typeOf(L"STRING"), eString);
    EXPECT_EQ(typeOf(L"SearchPath"), eSearchPath);
    EXPECT_EQ(typeOf(L"TIMEstamp"), eTimestamp);
    EXPECT_EQ(typeOf(L"\u0130NT"), eInt); // the capital I with a dot is an i in lower case
    EXPECT_EQ(typeOf(L"\u0131nt"), std::nullopt);
    EXPECT_EQ(stringLength(L"STRING(80)"), 80u);
}

// behaviour: FT-02
TEST(fieldTypes, areReadWithoutBlanksAndTabsWhereverTheyStand) {
    EXPECT_EQ(typeOf(L"Time Stamp"), eTimestamp);
    EXPECT_EQ(typeOf(L"s t r i n g"), eString);
    EXPECT_EQ(typeOf(L"int "), eInt);
    EXPECT_EQ(typeOf(L"\tint"), eInt);
    EXPECT_EQ(typeOf(L" \t b\to o l \t"), eBool);
    EXPECT_EQ(stringLength(L"String (40)"), 40u);
    EXPECT_EQ(stringLength(L" str ing\t( 1 2\t3 ) "), 123u);
}

// behaviour: FT-13
TEST(fieldTypes, areNotReadWithOtherSpace) {
    for (wchar_t const* text : {L"int\n", L"\rint", L"int\u00A0", L"\u2003int", L"in\vt", L"\u3000bool"})
        EXPECT_EQ(typeOf(text), std::nullopt) << string(text).toUtf8();
    EXPECT_EQ(stringLength(L"string\u00A0(5)"), 0u);
    EXPECT_EQ(stringLength(L"string(\u00A05)"), std::nullopt);
}

// behaviour: FT-13
TEST(fieldTypes, areNotReadFromOtherTexts) {
    for (wchar_t const* text : {L"", L" ", L"\t", L"integer", L"in", L"strin", L"custom", L"ptr*", L"long(5)", L"int()",
                                L"bool,", L"xstring", L"date time", L"(string)", L"search-path", L"timestamps"})
        EXPECT_EQ(typeOf(text), std::nullopt) << string(text).toUtf8();
}

// behaviour: FT-03
TEST(fieldTypes, tellTheLengthOfAString) {
    EXPECT_EQ(stringLength(L"string"), 0u);
    EXPECT_EQ(stringLength(L"string(1)"), 1u);
    EXPECT_EQ(stringLength(L"string(80)"), 80u);
    EXPECT_EQ(stringLength(L"string(007)"), 7u);
    EXPECT_EQ(stringLength(string::sformat(L"string(%lu)", ULONG_MAX)), ULONG_MAX);
}

// behaviour: FT-03
TEST(fieldTypes, ignoreWhatFollowsTheDigitsOfALength) {
    EXPECT_EQ(stringLength(L"string(80)xyz"), 80u);
    EXPECT_EQ(stringLength(L"string(80))"), 80u);
    EXPECT_EQ(stringLength(L"string(8x)"), 8u);
    EXPECT_EQ(stringLength(L"string(80,5)"), 80u);
    EXPECT_EQ(stringLength(L"string(1.5)"), 1u);
    EXPECT_EQ(stringLength(L"string(5)(6)"), 5u);
}

// behaviour: FT-07
TEST(fieldTypes, refuseALengthThatIsNone) {
    for (wchar_t const* text :
         {L"string(0)", L"string(00)", L"string(abc)", L"string(-5)", L"string(+5)", L"string((5))", L"string(x5)",
          L"string(18446744073709551616)", L"string(99999999999999999999999999)", L"string(\u0665)"})
        EXPECT_EQ(stringLength(text), std::nullopt) << string(text).toUtf8();
}

// behaviour: FT-04
TEST(fieldTypes, takeEveryTextThatBeginsWithStringForOne) {
    for (wchar_t const* text : {L"strings", L"string80", L"string)", L"string)(5)", L"stringint", L"string,(x)"})
        EXPECT_EQ(stringLength(text), 0u) << string(text).toUtf8();
}

// behaviour: FT-05
TEST(fieldTypes, readALengthOnlyRightBehindTheWord) {
    EXPECT_EQ(stringLength(L"stringx(5)"), 0u);
    EXPECT_EQ(stringLength(L"strings(0)"), 0u);
    EXPECT_EQ(stringLength(L"string)(5)"), 0u);
    EXPECT_EQ(stringLength(L"string (5)"), 5u);
}

// behaviour: FT-06
TEST(fieldTypes, readTheWholeTextWhereNothingStandsInParentheses) {
    EXPECT_EQ(stringLength(L"string()"), std::nullopt);
    EXPECT_EQ(stringLength(L"string( )"), std::nullopt);
    EXPECT_EQ(stringLength(L"string()5)"), std::nullopt);
    EXPECT_EQ(stringLength(L"string("), std::nullopt);
    EXPECT_EQ(stringLength(L"string(5"), std::nullopt);
}

// behaviour: FT-07
TEST(fieldTypes, reportNothingWhenATextIsRefused) {
    eventLog log;
    EXPECT_EQ(typeOf(L"integer"), std::nullopt);
    EXPECT_EQ(stringLength(L"string(0)"), std::nullopt);
    EXPECT_EQ(log.take(), tests::events());
}

// behaviour: FT-08
TEST(fieldTypes, haveATextEach) {
    for (auto const& row : rows)
        EXPECT_EQ(fieldInfo::typeStringFromType(row.type), scString::createFrom(row.text));
}

// behaviour: FT-08
TEST(fieldTypes, haveNoTextWhereThereIsNoType) {
    for (std::uint32_t value : {0u, 0x4u, 0x20u, 0x3u, 0x109u, 0x10000u, 0x20000000u, 0x80000000u, 0xFFFFFFFFu})
        EXPECT_EQ(fieldInfo::typeStringFromType(static_cast<eFieldType>(value)), scString()) << value;
}

// behaviour: FT-09
TEST(fieldTypes, showTheTextOfTheTypeOrOfTheCustomType) {
    ownClass const part(L"part");
    EXPECT_EQ(addField(part, L"a", eSearchPath)->typeString().string(), L"searchpath");
    auto const plain = part->createFieldInfo(L"b", eInt, genericSet(), L"My Kind");
    EXPECT_EQ(plain->typeString().string(), L"int");
    EXPECT_EQ(plain->customTypeString().string(), L"My Kind");
    auto const custom = part->createFieldInfo(L"c", eCustom, genericSet(), L"My Kind");
    EXPECT_EQ(custom->typeString().string(), L"My Kind");
    EXPECT_EQ(part->createFieldInfo(L"d", eCustom, genericSet(), L"")->typeString(), scString());
}

// behaviour: FT-09
TEST(fieldTypes, showTheTextOfTheRootAlongAChain) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    auto const root = base->createFieldInfo(L"kind", eCustom, genericSet(), L"Root Kind");
    auto const field = part->createFieldInfo(base.pointer(), L"kind");
    EXPECT_EQ(field->type(), eCustom);
    EXPECT_EQ(field->typeString().string(), L"Root Kind");
    EXPECT_EQ(field->customTypeString(), scString());
    field->setCustomTypeString(L"Own Kind");
    EXPECT_EQ(field->customTypeString().string(), L"Own Kind");
    EXPECT_EQ(field->typeString().string(), L"Root Kind");
    EXPECT_EQ(root->customTypeString().string(), L"Root Kind");
}

// behaviour: FT-11
TEST(fieldTypes, changeNothingButTheirTextWhenItIsSet) {
    ownClass const part(L"part");
    auto const field = addField(part, L"a", eInt);
    field->setCustomTypeString(L"My Kind");
    EXPECT_EQ(field->type(), eInt);
    EXPECT_EQ(field->typeString().string(), L"int");
    EXPECT_EQ(field->customTypeString().string(), L"My Kind");
    field->setCustomTypeString(L"");
    EXPECT_EQ(field->customTypeString(), scString());
}

// behaviour: FT-12
TEST(fieldTypes, keepTheAttributesThatTheFieldWasCreatedWith) {
    ownClass const part(L"part");
    genericSet attribs;
    attribs.setValue(L"digits", 3, false);
    auto const field = part->createFieldInfo(L"a", eInt, attribs, L"");
    attribs.setValue(L"digits", 4, false);
    attribs.setValue(L"more", 5, false);
    int digits = 0;
    EXPECT_TRUE(field->typeAttribs().getValue(L"digits", digits));
    EXPECT_EQ(digits, 3);
    EXPECT_EQ(field->typeAttribs().size(), 1u);
}

// behaviour: FT-10
TEST(fieldTypes, arePickedByTheFirstArgumentOnly) {
    ownClass const part(L"part");
    auto const number = addField(part, L"a", eInt);
    auto const bigger = addField(part, L"b", eLong);
    auto const text = addField(part, L"c", eString);
    fieldInfo::hasTypeFunc const two(eInt, eLong);
    fieldInfo::hasTypeFunc const three(eString, eInt, eLong);
    EXPECT_TRUE(two(number));
    EXPECT_FALSE(two(bigger));
    EXPECT_FALSE(two(text));
    EXPECT_TRUE(three(text));
    EXPECT_FALSE(three(number));
    EXPECT_FALSE(three(bigger));
}

// behaviour: FT-10
TEST(fieldTypes, arePickedByTheTypeOfTheRoot) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    addField(base, L"kind", eCustom);
    auto const field = part->createFieldInfo(base.pointer(), L"kind");
    EXPECT_TRUE(fieldInfo::hasTypeFunc(eCustom, eInt)(field));
}

// behaviour: FT-10
TEST(fieldTypes, cannotBePickedFromAnEmptyPointer) {
    eventLog log;
    EXPECT_TRUE(throwsFalse([] { fieldInfo::hasTypeFunc(eInt, eInt)(const_refPtr<fieldInfo>()); }));
    EXPECT_EQ(log.take(), tests::events{tests::emptyConstRefPtr});
}

} // namespace
} // namespace zov::metamodel
