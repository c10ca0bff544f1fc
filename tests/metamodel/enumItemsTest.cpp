// The named values of enum and bits fields, and the texts that they are read from.
#include "zovMdlEnumItem.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "modelFixture.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::events;
using tests::ownClass;
using zov::tests::eventLog;

using parser = bool (*)(string const&, eFieldType, enumItem&);
constexpr parser parsers[] = {&fieldInfo::parseEnumItem, &fieldInfo::parseBitsItem};

// Both parsers read this value, as exactly a T, and this name.
template <class T>
void expectItem(string const& text, eFieldType type, T const& value, string const& name) {
    SCOPED_TRACE(text.toUtf8());
    for (parser const parse : parsers) {
        eventLog log;
        enumItem item{genericValue(std::vector<int>{7}), L"before"};
        EXPECT_TRUE(parse(text, type, item));
        ASSERT_TRUE(item.mValue.valuePtr<T>());
        EXPECT_TRUE(*item.mValue.valuePtr<T>() == value);
        EXPECT_EQ(item.mName, name);
        EXPECT_EQ(log.take(), events());
    }
}

// Both parsers refuse the text and leave the item alone, down to the holder of its value.
void expectRefused(string const& text, eFieldType type) {
    SCOPED_TRACE(text.toUtf8());
    for (parser const parse : parsers) {
        eventLog log;
        enumItem item{genericValue(5), L"before"};
        auto const* const held = item.mValue.heldBy();
        EXPECT_FALSE(parse(text, type, item));
        EXPECT_EQ(item.mValue.heldBy(), held);
        EXPECT_EQ(*item.mValue.valuePtr<int>(), 5);
        EXPECT_EQ(item.mName, L"before");
        EXPECT_EQ(log.take(), events());
    }
}

// behaviour: EI-01
TEST(enumItems, areAValueAndANameWithACommaBetween) {
    expectItem(L"1, Red", eInt, 1, L"Red");
    expectItem(L"1,Red", eInt, 1, L"Red");
    expectItem(L"-7,below", eInt, -7, L"below");
}

// behaviour: EI-01
TEST(enumItems, ofBitsAreMasksAsWritten) {
    expectItem(L"4, Flag C", eShort, short{4}, L"Flag C");
    expectItem(L"6, Flags B and C", eLong, 6L, L"Flags B and C");
    expectItem(L"0, none", eInt, 0, L"none");
}

// behaviour: EI-02
TEST(enumItems, loseAllBlanksOfTheirValue) {
    expectItem(L"1 0 , Red", eInt, 10, L"Red");
    expectItem(L"\t - 1\t2 ,Red", eInt, -12, L"Red");
    expectItem(L"x y, Name", eString, string(L"xy"), L"Name");
    expectItem(L" t r\tu e ,yes", eBool, true, L"yes");
}

// behaviour: EI-02
TEST(enumItems, loseTheBlanksAroundTheirName) {
    expectItem(L"1, \t Dark  red \t ", eInt, 1, L"Dark  red");
    expectItem(L"1, \t ", eInt, 1, L"");
    expectItem(L"1,", eInt, 1, L"");
}

// behaviour: EI-02
TEST(enumItems, keepOtherSpaceThanBlanksAndTabs) {
    expectItem(L"1,\u00a0Red\u3000", eInt, 1, L"\u00a0Red\u3000");
    expectItem(L"a\nb,\nRed\n", eString, string(L"a\nb"), L"\nRed\n");
    expectRefused(L"1\u00a00,Red", eInt);
}

// behaviour: EI-05
TEST(enumItems, loseTheCommasOfTheirName) {
    expectItem(L"2, Dark, Blue", eInt, 2, L"Dark Blue");
    expectItem(L"2,a,b,c", eInt, 2, L"abc");
    expectItem(L"2,,,", eInt, 2, L"");
}

// behaviour: EI-05
TEST(enumItems, keepTheBlanksBehindCommasAndBeforeThem) {
    expectItem(L"2, \ta \t, \tb \t, \tc \t", eInt, 2, L"a \t \tb \t \tc");
    expectItem(L"2, , x", eInt, 2, L" x");
    expectItem(L"2, x , ", eInt, 2, L"x ");
}

// behaviour: EI-03
TEST(enumItems, needAComma) {
    expectRefused(L"Red", eInt);
    expectRefused(L"1", eInt);
    expectRefused(L"1; Red", eInt);
    expectRefused(L"1\uff0c Red", eInt);
    expectRefused(L"", eInt);
    expectRefused(L"", eString);
    expectRefused(L"text", eString);
    expectRefused(L"text", eCustom);
}

// behaviour: EI-04
TEST(enumItems, needAValueThatConverts) {
    expectRefused(L"abc, Red", eInt);
    expectRefused(L", Red", eInt);
    expectRefused(L"1.5, Red", eInt);
    expectRefused(L"0x10, Red", eInt);
    expectRefused(L"2, Red", eBool);
    expectRefused(L"32768, Red", eShort);
    expectRefused(L"99999999999999999999, Red", eLong);
    expectRefused(L"1e39, Red", eFloat);
    expectRefused(L"1e309, Red", eDouble);
    expectRefused(L"nan, Red", eDouble);
    expectRefused(L"2023-02-29, Red", eDate);
    expectRefused(L"24:00:00, Red", eTime);
    expectRefused(L"2024-02-29, Red", eTimestamp);
    expectRefused(L"0, Red", eBinary);
}

// behaviour: EI-06
TEST(enumItems, areReadAsEveryNumberType) {
    expectItem(L"TRUE, yes", eBool, true, L"yes");
    expectItem(L"0, no", eBool, false, L"no");
    expectItem(L"-32768, least", eShort, short{-32768}, L"least");
    expectItem(L"2147483647, most", eInt, 2147483647, L"most");
    expectItem(L"-2147483648, least", eLong, -2147483647L - 1L, L"least");
    expectItem(L"0.5, half", eFloat, 0.5F, L"half");
    expectItem(L"-1.5e3, much", eDouble, -1500.0, L"much");
}

// behaviour: EI-06
TEST(enumItems, areReadAsEveryOtherType) {
    expectItem(L"text, name", eString, string(L"text"), L"name");
    expectItem(L", nothing", eString, string(), L"nothing");
    expectItem(L"2024-02-29, leap day", eDate, date(2024, 2, 29), L"leap day");
    expectItem(L"17:30:00, tea", eTime, time(17, 30, 0, 0), L"tea");
    expectItem(L"17:30:00.25, tea", eTime, time(17, 30, 0, 250000), L"tea");
    expectItem(L"2024-02-29T17:30:00, then", eTimestamp, timestamp(date(2024, 2, 29), time(17, 30, 0)), L"then");
    unsigned char const bytes[] = {0, 255};
    expectItem(L"00fF, mask", eBinary, binaryBuffer(bytes, 2), L"mask");
    expectItem(L"/data/a b, where", eDirectory, directory(L"/data/ab"), L"where");
    expectItem(L"a.dwg, what", eFile, file(L"a.dwg"), L"what");
    expectItem(L"/a;/b, path", eSearchPath, searchPath(L"/a;/b"), L"path");
}

// behaviour: EI-06
TEST(enumItems, ofTimestampsNeedTheLetterBetweenDateAndTimeSinceBlanksVanish) {
    expectRefused(L"2024-02-29 17:30:00, then", eTimestamp);
}

// behaviour: EI-07
TEST(enumItems, ofTypesWithoutADefaultHoldTheirText) {
    for (eFieldType const type : {ePtr, eCustom, static_cast<eFieldType>(0x20)}) {
        expectItem(L"a b, Name", type, string(L"ab"), L"Name");
        expectItem(L", Name", type, string(), L"Name");
    }
}

// behaviour: EI-08
TEST(enumItems, keepCaseAndScript) {
    expectItem(L"ÄrMeL, GRÖSSE ß", eString, string(L"ÄrMeL"), L"GRÖSSE ß");
    expectItem(L"Ж ж, Имя, 名前 ", eString, string(L"Жж"), L"Имя 名前");
    expectItem(L"1, \U0001F527 tool", eInt, 1, L"\U0001F527 tool");
    expectRefused(L"\u0661, Red", eInt);
}

// behaviour: EI-08
TEST(enumItems, keepNulAndUnitsThatAreNoCodePoint) {
    using namespace std::string_literals;
    expectItem(string(L"a\0b, c\0d"s), eString, string(L"a\0b"s), string(L"c\0d"s));
    string const lone(1, static_cast<wchar_t>(0xD800));
    expectItem(string(lone + L"," + lone), eString, lone, lone);
}

// Counts its instances.
struct counted {
    static inline int alive = 0;
    counted() { ++alive; }
    counted(counted const&) { ++alive; }
    counted& operator=(counted const&) = default;
    ~counted() { --alive; }
};

// behaviour: EI-09
TEST(enumItems, endTheirFormerValueWhenTheyAreReadAnew) {
    enumItem item{genericValue(counted()), L"before"};
    ASSERT_EQ(counted::alive, 1);
    EXPECT_TRUE(fieldInfo::parseEnumItem(L"1,one", eInt, item));
    EXPECT_EQ(counted::alive, 0);
}

// behaviour: EI-09
TEST(enumItems, doNotWriteIntoTheValueThatTheyReplace) {
    int number = 5;
    enumItem item{genericValue::byReference(number), L"before"};
    EXPECT_TRUE(fieldInfo::parseEnumItem(L"1,one", eInt, item));
    EXPECT_EQ(number, 5);
    EXPECT_EQ(*item.mValue.valuePtr<int>(), 1);
}

// behaviour: EI-09
TEST(enumItems, mayBeReadFromTheirOwnName) {
    enumItem item{genericValue(5), L"6, six"};
    EXPECT_TRUE(fieldInfo::parseEnumItem(item.mName, eInt, item));
    EXPECT_EQ(*item.mValue.valuePtr<int>(), 6);
    EXPECT_EQ(item.mName, L"six");
}

// behaviour: EI-10
TEST(enumItems, areCopiedWithAValueOfTheirOwn) {
    enumItem item;
    fieldInfo::parseEnumItem(L"1,one", eInt, item);
    enumItem const copy = item;
    *item.mValue.valuePtr<int>() = 2;
    item.mName = L"two";
    EXPECT_EQ(*copy.mValue.valuePtr<int>(), 1);
    EXPECT_EQ(copy.mName, L"one");
    enumItem const fresh;
    EXPECT_TRUE(fresh.mValue.isEmpty());
    EXPECT_EQ(fresh.mName, L"");
}

// behaviour: EI-11
TEST(enumItems, travelWithTheSemanticOfTheField) {
    ownClass const part(L"part");
    auto const colour = addField(part, L"colour", eShort);
    std::vector<enumItem> items(2);
    ASSERT_TRUE(fieldInfo::parseEnumItem(L"1, Red", eShort, items[0]));
    ASSERT_TRUE(fieldInfo::parseEnumItem(L"2, Dark, Blue", eShort, items[1]));
    genericSet attribs;
    attribs.setValue(L"enumItems", items, false);
    colour->setSemantic(eSemEnum, attribs, L"");
    *items[0].mValue.valuePtr<short>() = 9;
    std::vector<enumItem>* kept = nullptr;
    ASSERT_TRUE(colour->semanticAttribs().getValuePtr(L"enumItems", kept));
    ASSERT_EQ(kept->size(), 2u);
    EXPECT_EQ(*kept->at(0).mValue.valuePtr<short>(), 1);
    EXPECT_EQ(kept->at(1).mName, L"Dark Blue");
}

} // namespace
} // namespace zov::metamodel
