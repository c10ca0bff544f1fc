// The model's own properties, and the one among them that is a setting.
#include "zovMdlModelInfo.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>

#include "modelFixture.h"

namespace zov::metamodel {
namespace {

using tests::ownClass;
using tests::ownModel;
using zov::tests::throwsFalse;

constexpr wchar_t const* caseRule = L"caseSensitiveNames";

string propertyOf(ownModel const& model, string const& key) {
    string text = L"(none)";
    model->addProp(key, text);
    return text;
}

// behaviour: MP-01
TEST(modelProperties, tellTheCaseRuleOfANewModel) {
    ownModel const anyCase;
    ownModel const exactCase(true);
    EXPECT_EQ(propertyOf(anyCase, caseRule), L"false");
    EXPECT_EQ(propertyOf(exactCase, caseRule), L"true");
}

// behaviour: MP-01
TEST(modelProperties, holdTheCaseRuleAsABoolAndNothingElse) {
    ownModel const model(true);
    int visits = 0;
    model->forEachAddProp(
        [&](scString const& key, genericValue const& value) {
            ++visits;
            EXPECT_EQ(key.string(), caseRule);
            EXPECT_EQ(value.type(), typeid(bool));
            auto const* const rule = value.valuePtr<bool>();
            EXPECT_TRUE(rule && *rule);
            return true;
        },
        true);
    EXPECT_EQ(visits, 1);
}

// behaviour: MP-02
TEST(modelProperties, storeTextsUnderKeysWithTheirLetterCase) {
    ownModel const model;
    model->setAddProp(L"Author", L"one");
    model->setAddProp(L"author", L"two");
    EXPECT_EQ(propertyOf(model, L"Author"), L"one");
    EXPECT_EQ(propertyOf(model, L"author"), L"two");
    EXPECT_EQ(propertyOf(model, L"AUTHOR"), L"(none)");
}

// behaviour: MP-02
TEST(modelProperties, replaceATextThatIsStoredAgain) {
    ownModel const model;
    model->setAddProp(L"author", L"one");
    model->setAddProp(L"author", L"");
    string text = L"before";
    EXPECT_TRUE(model->addProp(L"author", text));
    EXPECT_EQ(text, L"");
}

// behaviour: MP-02
TEST(modelProperties, answerFalseForAnUnknownKeyAndLeaveTheTextAlone) {
    ownModel const model;
    string text = L"before";
    EXPECT_FALSE(model->addProp(L"nobody stored this property", text));
    EXPECT_EQ(text, L"before");
    EXPECT_FALSE(scString::find(L"nobody stored this property").has_value());
}

// behaviour: MP-02
TEST(modelProperties, takeAKeyWithAnInnerNull) {
    ownModel const model;
    string const key(L"a\0b", 3);
    model->setAddProp(key, L"one");
    EXPECT_EQ(propertyOf(model, key), L"one");
    EXPECT_EQ(propertyOf(model, L"a"), L"(none)");
}

// behaviour: MP-02
TEST(modelProperties, takeTheEmptyKey) {
    ownModel const model;
    model->setAddProp(L"", L"one");
    EXPECT_EQ(propertyOf(model, L""), L"one");
}

// behaviour: MP-03
TEST(modelProperties, replaceTheCaseRuleByTextsThatReadAsTrue) {
    for (wchar_t const* text : {L"true", L"TRUE", L"True", L"1"}) {
        ownModel const model;
        auto const part = model->createClassInfo(L"part");
        EXPECT_EQ(model->classInfo(L"PART", false), part);
        model->setAddProp(caseRule, text);
        EXPECT_EQ(model->classInfo(L"PART", false), nullptr) << string(text).toUtf8();
        EXPECT_EQ(model->classInfo(L"part", false), part);
        EXPECT_EQ(propertyOf(model, caseRule), text);
    }
}

// behaviour: MP-03
TEST(modelProperties, takeAnyOtherTextForACaseRuleThatIsOff) {
    for (wchar_t const* text : {L"false", L"FALSE", L"0", L"", L"yes", L"2", L"tru", L"1x"}) {
        ownModel const model(true);
        auto const part = model->createClassInfo(L"part");
        EXPECT_EQ(model->classInfo(L"PART", false), nullptr);
        model->setAddProp(caseRule, text);
        EXPECT_EQ(model->classInfo(L"PART", false), part) << string(text).toUtf8();
    }
}

// behaviour: MP-03
TEST(modelProperties, switchTheCaseRuleBackAndForth) {
    ownModel const model;
    auto const part = model->createClassInfo(L"part");
    model->setAddProp(caseRule, L"true");
    EXPECT_EQ(model->classInfo(L"PART", false), nullptr);
    model->setAddProp(caseRule, L"false");
    EXPECT_EQ(model->classInfo(L"PART", false), part);
    model->setAddProp(caseRule, L"1");
    EXPECT_EQ(model->classInfo(L"PART", false), nullptr);
}

// behaviour: MP-03
TEST(modelProperties, guardTheCaseRuleUnderItsExactKeyOnly) {
    ownModel const model;
    auto const part = model->createClassInfo(L"part");
    model->setAddProp(L"casesensitivenames", L"true");
    model->setAddProp(L"CaseSensitiveNames", L"true");
    EXPECT_EQ(model->classInfo(L"PART", false), part);
}

// behaviour: MP-03, MR-07
TEST(modelProperties, changeTheCaseRuleOfRegistrationToo) {
    ownModel const model;
    ownClass const first(model->createClassInfo(L"Part"));
    EXPECT_TRUE(throwsFalse([&] { model->createClassInfo(L"Part"); }));
    model->setAddProp(caseRule, L"true");
    auto const second = model->createClassInfo(L"Part");
    EXPECT_EQ(model->classInfo(L"part", false), second);
    EXPECT_NE(second, first.pointer());
}

// behaviour: MP-04
TEST(modelProperties, leaveTheRuleOfEarlierClassesAsItWas) {
    ownModel const model;
    auto const early = model->createClassInfo(L"early");
    auto const width = tests::addField(early, L"Width");
    model->setAddProp(caseRule, L"true");
    auto const late = model->createClassInfo(L"late");
    auto const height = tests::addField(late, L"Height");
    EXPECT_EQ(early->fieldInfo(L"WIDTH", false, false), width);
    EXPECT_EQ(width->scName().string(), L"width");
    EXPECT_EQ(late->fieldInfo(L"Height", false, false), height);
    EXPECT_EQ(late->fieldInfo(L"height", false, false), nullptr);
}

// behaviour: MP-05
TEST(modelProperties, areWalkedLikeOtherThings) {
    ownModel const model;
    model->setAddProp(L"one", L"1st");
    model->setAddProp(L"two", L"2nd");
    std::map<string, string> found;
    EXPECT_TRUE(model->forEachAddProp(
        [&](scString const& key, genericValue const& value) {
            string text;
            EXPECT_TRUE(value.getValue(text));
            found[key.string()] = text;
            return false;
        },
        false));
    EXPECT_EQ(found, (std::map<string, string>{{caseRule, L"false"}, {L"one", L"1st"}, {L"two", L"2nd"}}));
    int visits = 0;
    EXPECT_FALSE(model->forEachAddProp([&](scString const&, genericValue const&) { return ++visits < 2; }, true));
    EXPECT_EQ(visits, 2);
    std::function<bool(scString const&, genericValue const&)> const empty;
    EXPECT_THROW(model->forEachAddProp(empty, false), std::bad_function_call);
}

} // namespace
} // namespace zov::metamodel
