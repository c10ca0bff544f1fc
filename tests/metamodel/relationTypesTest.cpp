// The kinds of relations and their texts.
#include "zovMdlRelationType.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace zov::metamodel {
namespace {

constexpr auto noKind = static_cast<eRelationType>(0);

// behaviour: RI-16
TEST(relationTypes, haveFixedValuesOfOneBitEach) {
    static_assert(eRef == 1 && eAgg == 2 && eRevAgg == 4 && eBiAgg == 8);
    static_assert(sizeof(eRelationType) == 4);
    static_assert(std::is_same_v<std::underlying_type_t<eRelationType>, std::uint32_t>);
}

// Expects that the text is read as this kind, whatever the variable held before.
void expectRead(string const& text, eRelationType expected) {
    SCOPED_TRACE(text.toUtf8());
    for (auto const before : {noKind, eRef, eBiAgg}) {
        eRelationType type = before;
        EXPECT_TRUE(parseRelationType(text, type));
        EXPECT_EQ(type, expected);
    }
}

// behaviour: RI-14
TEST(relationTypes, areReadFromTheirTexts) {
    expectRead(L"ref", eRef);
    expectRead(L"agg", eAgg);
    expectRead(L"revagg", eRevAgg);
    expectRead(L"biagg", eBiAgg);
}

// behaviour: RI-14
TEST(relationTypes, areReferencesWhenNothingIsSaid) {
    expectRead(L"", eRef);
    expectRead(L" ", eRef);
    expectRead(L"\t \t", eRef);
}

// behaviour: RI-14
TEST(relationTypes, areReadWhateverTheLetterCaseBlanksAndTabs) {
    expectRead(L"REVAGG", eRevAgg);
    expectRead(L" \tR E\tV A  G\t\tG \t", eRevAgg);
    expectRead(L"Bi Agg", eBiAgg);
    expectRead(L"rEf\t", eRef);
    expectRead(L" a g g", eAgg);
}

// behaviour: RI-14
TEST(relationTypes, areNotReadFromOtherTexts) {
    for (wchar_t const* text : {L"aggregate", L"re", L"refs", L"agg.", L"rev-agg", L"agg\n", L"\u00A0ref", L"agg,ref",
                                L"1", L"eRef", L"revaggr"}) {
        SCOPED_TRACE(string(text).toUtf8());
        for (auto const before : {noKind, eBiAgg}) {
            eRelationType type = before;
            EXPECT_FALSE(parseRelationType(text, type));
            EXPECT_EQ(type, eRef);
        }
    }
}

// behaviour: RI-15
TEST(relationTypes, haveTexts) {
    EXPECT_EQ(relationTypeString(eRef).string(), L"ref");
    EXPECT_EQ(relationTypeString(eAgg).string(), L"agg");
    EXPECT_EQ(relationTypeString(eRevAgg).string(), L"revagg");
    EXPECT_EQ(relationTypeString(eBiAgg).string(), L"biagg");
}

// behaviour: RI-15
TEST(relationTypes, haveNoTextWhenTheyAreNone) {
    for (std::uint32_t const value : {0u, 3u, 5u, 15u, 16u, 0x80000000u})
        EXPECT_EQ(relationTypeString(static_cast<eRelationType>(value)).string(), L"");
}

} // namespace
} // namespace zov::metamodel
