// The fields of a class: creating, finding and walking them.
#include "zovMdlClassInfo.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <type_traits>

#include "modelFixture.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::fieldNames;
using tests::names;
using tests::ownClass;
using tests::ownModel;
using zov::tests::eventLog;
using zov::tests::throwsFalse;

// behaviour: CF-01
TEST(classFields, findsWidthWhateverTheCase) {
    ownClass const part(L"part");
    auto const width = addField(part, L"Width");
    for (wchar_t const* name : {L"WIDTH", L"width", L"Width"})
        EXPECT_EQ(part->fieldInfo(name, false, false), width);
    EXPECT_EQ(part->fieldInfo(L"widt", true, true), nullptr);
    EXPECT_EQ(width->scName().string(), L"width");
}

// behaviour: CF-01
TEST(classFields, returnsTheFirstFieldWhenItsNameIsCreatedAgain) {
    ownClass const part(L"part");
    auto const width = addField(part, L"Width", eInt);
    EXPECT_EQ(part->createFieldInfo(L"WIDTH", eString, genericSet(), L"ignored"), width);
    EXPECT_EQ(width->type(), eInt);
    EXPECT_EQ(width->customTypeString(), scString());
    EXPECT_EQ(part->countFields(), 1u);
}

// behaviour: CF-01
TEST(classFields, makesNothingForAKnownName) {
    ownClass const part(L"part");
    addField(part, L"width");
    eventLog log;
    addField(part, L"WIDTH");
    EXPECT_EQ(log.take(), tests::events());
}

// behaviour: CF-02
TEST(classFields, keepsNamesAsWrittenWhenCaseMatters) {
    ownModel const model(true);
    auto const part = model->createClassInfo(L"part");
    auto const capital = addField(part, L"Width");
    auto const lower = addField(part, L"width");
    EXPECT_NE(capital, lower);
    EXPECT_EQ(part->fieldInfo(L"Width", false, false), capital);
    EXPECT_EQ(part->fieldInfo(L"width", false, false), lower);
    EXPECT_EQ(part->fieldInfo(L"WIDTH", true, true), nullptr);
    EXPECT_EQ(fieldNames(part), (names{L"Width", L"width"}));
}

// behaviour: CF-03
TEST(classFields, standInTheOrderOfCreation) {
    ownClass const part(L"part");
    for (wchar_t const* name : {L"zeta", L"alpha", L"mu", L"", L"beta"})
        addField(part, name);
    EXPECT_EQ(fieldNames(part), (names{L"zeta", L"alpha", L"mu", L"", L"beta"}));
    EXPECT_EQ(part->countFields(), 5u);
    EXPECT_NE(part->fieldInfo(L"", false, false), nullptr);
}

// behaviour: CF-03
TEST(classFields, carriesWhatTheyAreCreatedWith) {
    ownClass const part(L"part");
    genericSet attribs;
    attribs.setValue(L"length", 80, false);
    auto const kind = part->createFieldInfo(L"Kind", eCustom, attribs, L"My Kind");
    EXPECT_EQ(kind->type(), eCustom);
    EXPECT_EQ(kind->customTypeString().string(), L"My Kind");
    EXPECT_EQ(kind->classInfo(), part.pointer());
    EXPECT_EQ(kind->baseField(), nullptr);
    int length = 0;
    EXPECT_TRUE(kind->typeAttribs().getValue(L"length", length));
    EXPECT_EQ(length, 80);
}

// behaviour: CF-04
TEST(classFields, returnsTheFieldOfADirectBaseInsteadOfCreatingIt) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    auto const width = addField(base, L"width", eDouble);
    EXPECT_EQ(part->createFieldInfo(L"Width", eString, genericSet(), L"ignored"), width);
    EXPECT_EQ(part->countFields(), 0u);
    EXPECT_EQ(width->type(), eDouble);
    EXPECT_EQ(width->classInfo(), base.pointer());
}

// behaviour: CF-05
TEST(classFields, createsANameThatOnlyABaseOfABaseHas) {
    ownClass const top(L"top");
    ownClass const middle(L"middle");
    ownClass const part(L"part");
    middle->addBaseClass(top);
    part->addBaseClass(middle);
    auto const width = addField(top, L"width");
    auto const own = addField(part, L"width");
    EXPECT_NE(own, width);
    EXPECT_EQ(own->classInfo(), part.pointer());
    EXPECT_EQ(part->countFields(), 1u);
}

// behaviour: CF-06
TEST(classFields, findsNoFieldByAnAlias) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    eventLog log;
    for (auto const& owner : {base.pointer(), part.pointer()}) {
        auto const field = addField(owner, owner == base.pointer() ? L"depth" : L"width");
        EXPECT_TRUE(throwsFalse([&] { field->addAliasname(L"breadth"); }));
    }
    EXPECT_EQ(part->fieldInfo(L"breadth", false, true), nullptr);
    EXPECT_EQ(part->fieldInfo(L"breadth", true, true), nullptr);
    EXPECT_NE(part->fieldInfo(L"width", false, true), nullptr);
}

// behaviour: CF-07
TEST(classFields, searchesBasesOfBasesOnlyWhenAliasesAreAskedFor) {
    ownClass const top(L"top");
    ownClass const upper(L"upper");
    ownClass const middle(L"middle");
    ownClass const part(L"part");
    upper->addBaseClass(top);
    middle->addBaseClass(upper);
    part->addBaseClass(middle);
    auto const near = addField(middle, L"near");
    auto const far = addField(upper, L"far");
    auto const farthest = addField(top, L"farthest");
    EXPECT_EQ(part->fieldInfo(L"near", true, false), near);
    EXPECT_EQ(part->fieldInfo(L"far", true, false), nullptr);
    EXPECT_EQ(part->fieldInfo(L"farthest", true, false), nullptr);
    EXPECT_EQ(part->fieldInfo(L"near", true, true), near);
    EXPECT_EQ(part->fieldInfo(L"far", true, true), far);
    EXPECT_EQ(part->fieldInfo(L"farthest", true, true), farthest);
}

// behaviour: CF-08
TEST(classFields, leavesBasesAloneWhenTheyAreNotAskedFor) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    addField(base, L"width");
    EXPECT_EQ(part->fieldInfo(L"width", false, false), nullptr);
    EXPECT_EQ(part->fieldInfo(L"width", false, true), nullptr);
}

// behaviour: CF-09
TEST(classFields, letsEachBaseApplyItsOwnCaseRule) {
    ownModel const exactCase(true);
    auto const part = exactCase->createClassInfo(L"part");
    ownClass const anyCase(L"anycase");
    auto const width = addField(anyCase, L"Width");
    part->addBaseClass(anyCase);
    EXPECT_EQ(part->fieldInfo(L"WIDTH", true, false), width);

    ownClass const derived(L"derived");
    auto const capital = addField(exactCase->createClassInfo(L"capital"), L"Height");
    derived->addBaseClass(capital->classInfo());
    EXPECT_EQ(derived->fieldInfo(L"Height", true, false), capital);
    EXPECT_EQ(derived->fieldInfo(L"height", true, false), nullptr);
}

// behaviour: CF-25
TEST(classFields, prefersItsOwnFieldToThatOfABase) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    auto const own = addField(part, L"width");
    auto const inherited = addField(base, L"width");
    part->addBaseClass(base);
    EXPECT_EQ(part->fieldInfo(L"width", true, true), own);
    EXPECT_EQ(base->fieldInfo(L"width", true, true), inherited);
}

// behaviour: CF-25
TEST(classFields, findsTheFieldOfTheFirstBaseInHandleOrder) {
    ownClass const one(L"first of two bases");
    ownClass const two(L"second of two bases");
    ownClass const part(L"part");
    addField(one, L"width");
    addField(two, L"width");
    part->addBaseClass(two);
    part->addBaseClass(one);
    auto const& nearest = one->scName() < two->scName() ? one : two;
    EXPECT_EQ(part->fieldInfo(L"width", true, false)->classInfo(), nearest.pointer());
    EXPECT_EQ(part->fieldInfo(L"width", true, true)->classInfo(), nearest.pointer());
}

// behaviour: CF-10
TEST(classFields, createsAFieldThatStandsForOneOfABase) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    auto const width = addField(base, L"width", eDouble);
    auto const standing = part->createFieldInfo(base.pointer(), L"WIDTH");
    ASSERT_NE(standing, nullptr);
    EXPECT_NE(standing, width);
    EXPECT_EQ(standing->baseField(), width);
    EXPECT_EQ(standing->classInfo(), part.pointer());
    EXPECT_EQ(part->fieldInfo(L"width", false, false), standing);
    EXPECT_EQ(fieldNames(part), names{L"width"});
}

// behaviour: CF-10
TEST(classFields, standsForAFieldOfAnIndirectBase) {
    ownClass const top(L"top");
    ownClass const middle(L"middle");
    ownClass const part(L"part");
    middle->addBaseClass(top);
    part->addBaseClass(middle);
    auto const width = addField(top, L"width");
    EXPECT_EQ(part->createFieldInfo(top.pointer(), L"width")->baseField(), width);
}

// behaviour: CF-10
TEST(classFields, standsForAFieldThatADirectBaseOfTheNamedClassHas) {
    ownClass const top(L"top");
    ownClass const middle(L"middle");
    ownClass const part(L"part");
    middle->addBaseClass(top);
    part->addBaseClass(middle);
    auto const width = addField(top, L"width");
    EXPECT_EQ(part->createFieldInfo(middle.pointer(), L"width")->baseField(), width);
    ownClass const bottom(L"bottom");
    bottom->addBaseClass(part);
    EXPECT_EQ(bottom->createFieldInfo(part.pointer(), L"width")->baseField(), part->fieldInfo(L"width", false, false));
    addField(top, L"height");
    EXPECT_TRUE(throwsFalse([&] { bottom->createFieldInfo(part.pointer(), L"height"); }));
}

// behaviour: CF-10
TEST(classFields, refusesToStandForAFieldOfAClassThatIsNoBase) {
    ownClass const other(L"other");
    ownClass const part(L"part");
    addField(other, L"width");
    addField(part, L"width");
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { part->createFieldInfo(other.pointer(), L"width"); }));
    EXPECT_TRUE(throwsFalse([&] { part->createFieldInfo(part.pointer(), L"width"); }));
    EXPECT_TRUE(throwsFalse([&] { part->createFieldInfo(refPtr<classInfo>(), L"width"); }));
    EXPECT_EQ(log.take(), tests::events());
    EXPECT_EQ(part->countFields(), 1u);
}

// behaviour: CF-10
TEST(classFields, refusesToStandForAFieldThatTheBaseDoesNotHave) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    addField(part, L"width");
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { part->createFieldInfo(base.pointer(), L"width"); }));
    EXPECT_EQ(log.take(), tests::events());
}

// behaviour: CF-11
TEST(classFields, returnsItsOwnFieldInsteadOfOneThatStandsForTheBases) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    auto const own = addField(part, L"width", eString);
    part->addBaseClass(base);
    auto const width = addField(base, L"width");
    EXPECT_EQ(part->createFieldInfo(base.pointer(), L"width"), own);
    EXPECT_EQ(own->baseField(), nullptr);
    EXPECT_EQ(part->countFields(), 1u);
    EXPECT_EQ(width->refCount(), 2u);
}

// behaviour: CF-11
TEST(classFields, returnsTheStandingFieldWhenItIsCreatedAgain) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    addField(base, L"width");
    auto const standing = part->createFieldInfo(base.pointer(), L"width");
    EXPECT_EQ(part->createFieldInfo(base.pointer(), L"Width"), standing);
    EXPECT_EQ(addField(part, L"width"), standing);
    EXPECT_EQ(part->countFields(), 1u);
}

// behaviour: CF-24
TEST(classFields, comparesStandingFieldsInLowerCaseEvenWhenCaseMatters) {
    ownModel const model(true);
    auto const base = model->createClassInfo(L"base");
    auto const part = model->createClassInfo(L"part");
    part->addBaseClass(base);
    auto const own = addField(part, L"WIDTH");
    addField(base, L"width");
    EXPECT_EQ(part->createFieldInfo(base, L"width"), own);
    EXPECT_EQ(part->countFields(), 1u);
}

// behaviour: CF-28
TEST(classFields, answersWithTheBasesFieldWhenItsOwnRuleMissesTheStandingOne) {
    ownModel const model(true);
    auto const part = model->createClassInfo(L"part");
    ownClass const base(L"base");
    auto const width = addField(base, L"width");
    part->addBaseClass(base);
    EXPECT_EQ(part->createFieldInfo(base.pointer(), L"WIDTH"), width);
    ASSERT_EQ(part->countFields(), 1u);
    EXPECT_EQ(part->fieldInfo(L"width", false, false)->baseField(), width);
}

// behaviour: CF-28
TEST(classFields, throwsFalseWhenItsOwnRuleMissesTheStandingFieldOfABasesBase) {
    ownModel const model(true);
    auto const part = model->createClassInfo(L"part");
    auto const between = model->createClassInfo(L"between");
    ownClass const base(L"base");
    auto const width = addField(base, L"width");
    between->addBaseClass(base);
    part->addBaseClass(between);
    EXPECT_TRUE(throwsFalse([&] { part->createFieldInfo(base.pointer(), L"WIDTH"); }));
    ASSERT_EQ(part->countFields(), 1u);
    EXPECT_EQ(part->fieldInfo(L"width", false, false)->baseField(), width);
}

// Names of more units than are folded in one go, and of units beyond Latin ones.
constexpr wchar_t const* unusualNames[] = {
    L"A Name Of More Than Thirty-One Units, Which Is Long",
    L"A Name Of Sixty-Four Units And Some More, Which Is Longer Than All Others Here",
    L"\u0416\u0418\u0420",
    L"\u00C4 \u0416\u0418\u0420\u041D\u042B\u0419 Name Of More Than Thirty-One Units, Some Of Them Wide",
};

// behaviour: CF-01, CF-09, MF-01, MR-02
TEST(classFields, ofLongAndWideNamesAreFoundAmongFewAndManyWhateverTheCase) {
    for (int const others : {0, 20, 100}) {
        ownModel const model;
        auto const base = model->createClassInfo(L"base");
        for (int other = 0; other < others; ++other)
            addField(base, (L"other " + std::to_wstring(other)).c_str());
        for (wchar_t const* name : unusualNames) {
            SCOPED_TRACE(string(name).toUtf8() + " among " + std::to_string(others));
            auto const field = addField(base, name);
            auto const owner = model->createClassInfo(name);
            owner->addBaseClass(base);
            string const lowered = string(name).lower();
            EXPECT_EQ(field->scName().string(), lowered);
            EXPECT_EQ(model->classInfo(lowered, false), owner);
            EXPECT_EQ(model->classInfo(name, false), owner);
            for (string const& asked : {string(name), lowered}) {
                EXPECT_EQ(base->fieldInfo(asked, false, false), field);
                EXPECT_EQ(owner->fieldInfo(asked, true, false), field);
                EXPECT_EQ(model->fieldInfo(string(L"BASE." + asked), false), field);
                EXPECT_EQ(addField(base, asked.c_str()), field);
            }
            EXPECT_EQ(base->fieldInfo(string(lowered + L"x"), false, false), nullptr);
            EXPECT_EQ(base->fieldInfo(string(lowered.substr(1)), false, false), nullptr);
        }
    }
}

// behaviour: CF-02
TEST(classFields, ofLongAndWideNamesKeepTheirCaseWhereItMatters) {
    ownModel const model(true);
    auto const part = model->createClassInfo(L"part");
    for (wchar_t const* name : unusualNames) {
        SCOPED_TRACE(string(name).toUtf8());
        auto const field = addField(part, name);
        auto const other = addField(part, string(name).lower().c_str());
        EXPECT_NE(field, other);
        EXPECT_EQ(part->fieldInfo(name, false, false), field);
        EXPECT_EQ(part->fieldInfo(string(name).lower(), false, false), other);
    }
}

// behaviour: CF-12
TEST(classFields, areWalkedInOrderUntilAskedToStop) {
    ownClass const part(L"part");
    for (wchar_t const* name : {L"a", L"b", L"c"})
        addField(part, name);
    names visited;
    auto const untilB = [&](refPtr<fieldInfo> const& field) {
        visited.push_back(field->scName().string());
        return visited.back() != L"b";
    };
    EXPECT_FALSE(part->forEachFieldInfo(untilB, true));
    EXPECT_EQ(visited, (names{L"a", L"b"}));
    visited.clear();
    EXPECT_TRUE(part->forEachFieldInfo(untilB, false));
    EXPECT_EQ(visited, (names{L"a", L"b", L"c"}));
}

// behaviour: CF-12
TEST(classFields, areNotWalkedWhenThereAreNone) {
    ownClass const part(L"part");
    std::function<bool(refPtr<fieldInfo>)> const empty;
    EXPECT_TRUE(part->forEachFieldInfo(empty, true));
    EXPECT_TRUE(part->forEachFieldInfo(empty, false));
    addField(part, L"width");
    EXPECT_THROW(part->forEachFieldInfo(empty, true), std::bad_function_call);
    EXPECT_THROW(part->forEachFieldInfo(empty, false), std::bad_function_call);
}

// behaviour: CF-13
TEST(classFields, addedDuringAWalkAreNotVisited) {
    ownClass const part(L"part");
    addField(part, L"a");
    addField(part, L"b");
    names visited;
    part->forEachFieldInfo(
        [&](refPtr<fieldInfo> const& field) {
            visited.push_back(field->scName().string());
            part->createFieldInfo(visited.back() + L"x", eInt, genericSet(), L"");
            EXPECT_NE(part->fieldInfo(visited.back() + L"x", false, false), nullptr);
            return true;
        },
        true);
    EXPECT_EQ(visited, (names{L"a", L"b"}));
    EXPECT_EQ(fieldNames(part), (names{L"a", L"b", L"ax", L"bx"}));
}

// behaviour: CF-14
TEST(classFields, areCountedWithoutThoseOfBases) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    addField(base, L"a");
    addField(base, L"b");
    EXPECT_EQ(part->countFields(), 0u);
    EXPECT_EQ(fieldNames(part), names());
    addField(part, L"c");
    EXPECT_EQ(part->countFields(), 1u);
    EXPECT_EQ(base->countFields(), 2u);
}

// behaviour: CF-27
TEST(classFields, areConstThroughAConstClass) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    auto const width = addField(base, L"width");
    const_refPtr<classInfo> const seen = part.pointer();
    static_assert(std::is_same_v<decltype(seen->fieldInfo(string(), false, false)), const_refPtr<fieldInfo>>);
    EXPECT_EQ(seen->fieldInfo(L"WIDTH", true, false), width);
    EXPECT_EQ(seen->fieldInfo(L"width", false, false), nullptr);
}

// behaviour: CF-27
TEST(classFields, standForBasesGivenAsVariablesConstantsAndTemporaries) {
    ownModel const model;
    auto base = model->createClassInfo(L"base");
    auto const& constant = base;
    auto const part = model->createClassInfo(L"part");
    part->addBaseClass(base);
    for (wchar_t const* name : {L"a", L"b", L"c"})
        addField(base, name);
    EXPECT_NE(part->createFieldInfo(base, L"a"), nullptr);
    EXPECT_NE(part->createFieldInfo(constant, L"b"), nullptr);
    EXPECT_NE(part->createFieldInfo(model->classInfo(L"base", false), L"c"), nullptr);
    EXPECT_EQ(part->countFields(), 3u);
}

template <class Class>
concept takesATextForBases = requires(Class owner) {
    owner.fieldInfo(L"part", L"width", false);
};

template <class Class>
concept takesATextForAliases = requires(Class owner) {
    owner.fieldInfo(L"part", false, L"width");
};

template <class Class>
concept takesFlags = requires(Class owner) {
    owner.fieldInfo(L"part", false, true);
};

// behaviour: CF-29
TEST(classFields, doNotTakeATextForAFlag) {
    static_assert(!takesATextForBases<classInfo&> && !takesATextForBases<classInfo const&>);
    static_assert(!takesATextForAliases<classInfo&> && !takesATextForAliases<classInfo const&>);
    static_assert(takesFlags<classInfo&> && takesFlags<classInfo const&>);
}

// behaviour: CF-30
TEST(classFields, mayBeCreatedInsideAcceptAndInsideAWalkOfTheModel) {
    ownModel const model;
    auto const part = model->createClassInfo(L"part", [&](refPtr<classInfo> const& offered) {
        auto const width = addField(offered, L"width");
        EXPECT_EQ(addField(offered, L"WIDTH"), width);
        return true;
    });
    model->forEachClassInfo([](classInfo::entry const& entry) { return addField(entry.second, L"height") != nullptr; },
                            true);
    EXPECT_EQ(fieldNames(part), (names{L"width", L"height"}));
}

} // namespace
} // namespace zov::metamodel
