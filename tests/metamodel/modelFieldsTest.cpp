// Fields as they are found through the model.
#include "zovMdlModelInfo.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "modelFixture.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::ownModel;

// behaviour: MF-01
TEST(modelFields, areFoundByClassAndName) {
    ownModel const model;
    auto const width = addField(model->createClassInfo(L"Part"), L"Width");
    EXPECT_EQ(model->fieldInfo(L"Part", L"Width", false), width);
    EXPECT_EQ(model->fieldInfo(L"PART", L"WIDTH", true), width);
    EXPECT_EQ(model->fieldInfo(L"part", L"height", true), nullptr);
    EXPECT_EQ(model->fieldInfo(L"thing", L"width", true), nullptr);
    EXPECT_EQ(model->fieldInfo(L"", L"", true), nullptr);
}

// behaviour: MF-02
TEST(modelFields, areFoundByQualifiedName) {
    ownModel const model;
    auto const width = addField(model->createClassInfo(L"Part"), L"Width");
    EXPECT_EQ(model->fieldInfo(L"Part.width", false), width);
    EXPECT_EQ(model->fieldInfo(L"PART.WIDTH", true), width);
    EXPECT_EQ(model->fieldInfo(L"Part.height", false), nullptr);
    EXPECT_EQ(model->fieldInfo(L"Thing.width", false), nullptr);
}

// behaviour: MF-02
TEST(modelFields, splitAQualifiedNameAtItsFirstFullStop) {
    ownModel const model;
    auto const dotted = addField(model->createClassInfo(L"a"), L"b.c");
    auto const owner = model->createClassInfo(L"a.b");
    auto const plain = addField(owner, L"c");
    EXPECT_EQ(model->fieldInfo(L"A.b.c", false), dotted);
    EXPECT_EQ(model->fieldInfo(L"a.b", L"c", false), plain);
}

// behaviour: MF-02
TEST(modelFields, areNullForNamesWithoutAFullStopOrAPart) {
    ownModel const model;
    addField(model->createClassInfo(L"part"), L"width");
    for (wchar_t const* name : {L"", L"part", L"width", L".", L"part.", L".width", L"part..width"})
        EXPECT_EQ(model->fieldInfo(name, true), nullptr) << string(name).toUtf8();
}

// behaviour: MF-02
TEST(modelFields, passEmptyPartsOnToTheLookups) {
    ownModel const model;
    auto const unnamed = model->createClassInfo(L"");
    auto const x = addField(unnamed, L"x");
    auto const nameless = addField(unnamed, L"");
    EXPECT_EQ(model->fieldInfo(L".x", false), x);
    EXPECT_EQ(model->fieldInfo(L".", false), nameless);
    EXPECT_EQ(model->fieldInfo(L"", false), nullptr);
}

// behaviour: MF-03
TEST(modelFields, areFoundInADirectBaseOnlyWithTheFlag) {
    ownModel const model;
    auto const base = model->createClassInfo(L"base");
    auto const width = addField(base, L"width");
    model->createClassInfo(L"part")->addBaseClass(base);
    EXPECT_EQ(model->fieldInfo(L"part", L"width", false), nullptr);
    EXPECT_EQ(model->fieldInfo(L"part", L"width", true), width);
    EXPECT_EQ(model->fieldInfo(L"part.width", false), nullptr);
    EXPECT_EQ(model->fieldInfo(L"part.width", true), width);
}

// behaviour: MF-03
TEST(modelFields, areNotFoundInABaseOfABaseWhateverTheFlag) {
    ownModel const model;
    auto const top = model->createClassInfo(L"top");
    auto const middle = model->createClassInfo(L"middle");
    addField(top, L"width");
    middle->addBaseClass(top);
    model->createClassInfo(L"part")->addBaseClass(middle);
    EXPECT_EQ(model->fieldInfo(L"part", L"width", true), nullptr);
    EXPECT_EQ(model->fieldInfo(L"part.width", true), nullptr);
}

// behaviour: MF-03
TEST(modelFields, areFoundByTheAliasOfTheirClassOnlyWithTheFlag) {
    ownModel const model;
    auto const part = model->createClassInfo(L"part");
    auto const width = addField(part, L"width");
    part->addAliasname(L"piece");
    EXPECT_EQ(model->fieldInfo(L"piece", L"width", false), nullptr);
    EXPECT_EQ(model->fieldInfo(L"piece", L"width", true), width);
    EXPECT_EQ(model->fieldInfo(L"piece.width", false), nullptr);
    EXPECT_EQ(model->fieldInfo(L"Piece.Width", true), width);
}

// behaviour: MF-04
TEST(modelFields, followTheRuleOfTheModelAndThenOfTheClass) {
    ownModel const model(true);
    auto const part = model->createClassInfo(L"part");
    auto const width = addField(part, L"Width");
    EXPECT_EQ(model->fieldInfo(L"part", L"Width", false), width);
    EXPECT_EQ(model->fieldInfo(L"part", L"width", false), nullptr);
    EXPECT_EQ(model->fieldInfo(L"Part", L"Width", false), nullptr);
    EXPECT_EQ(model->fieldInfo(L"part.Width", false), width);
    EXPECT_EQ(model->fieldInfo(L"part.WIDTH", false), nullptr);
    model->setAddProp(L"caseSensitiveNames", L"false");
    EXPECT_EQ(model->fieldInfo(L"PART.Width", false), width);
    EXPECT_EQ(model->fieldInfo(L"PART.width", false), nullptr);
}

// behaviour: MF-05
TEST(modelFields, areConstThroughAConstModel) {
    ownModel const model;
    auto const base = model->createClassInfo(L"base");
    auto const width = addField(base, L"width");
    model->createClassInfo(L"part")->addBaseClass(base);
    modelInfo const& seen = *model.pointer();
    static_assert(std::is_same_v<decltype(seen.fieldInfo(string(), false)), const_refPtr<fieldInfo>>);
    static_assert(std::is_same_v<decltype(seen.fieldInfo(string(), string(), false)), const_refPtr<fieldInfo>>);
    EXPECT_EQ(seen.fieldInfo(L"base", L"WIDTH", false), width);
    EXPECT_EQ(seen.fieldInfo(L"base.width", false), width);
    EXPECT_EQ(seen.fieldInfo(L"part.width", true), width);
    EXPECT_EQ(seen.fieldInfo(L"part", L"width", false), nullptr);
}

template <class Model>
concept takesATextForAFlag = requires(Model model) {
    model.fieldInfo(L"Part", L"width");
};

template <class Model>
concept takesThreeTexts = requires(Model model) {
    model.fieldInfo(L"Part", L"width", L"mm");
};

template <class Model>
concept takesAFlag = requires(Model model) {
    model.fieldInfo(L"Part.width", true);
    model.fieldInfo(L"Part", L"width", true);
};

// behaviour: MF-06
TEST(modelFields, doNotTakeATextForAFlag) {
    static_assert(!takesATextForAFlag<modelInfo&> && !takesATextForAFlag<modelInfo const&>);
    static_assert(!takesThreeTexts<modelInfo&> && !takesThreeTexts<modelInfo const&>);
    static_assert(takesAFlag<modelInfo&> && takesAFlag<modelInfo const&>);
}

// behaviour: MF-07
TEST(modelFields, neverInternNamesThatAreOnlyAskedFor) {
    ownModel const model;
    auto const base = model->createClassInfo(L"base");
    auto const part = model->createClassInfo(L"part");
    part->addBaseClass(base);
    addField(part, L"width");
    for (int at = 0; at < 50000; ++at) {
        auto const name = string::sformat(L"unknown field %d", at);
        ASSERT_EQ(model->fieldInfo(L"part", name, true), nullptr);
        ASSERT_EQ(model->fieldInfo(L"part." + name, true), nullptr);
        ASSERT_EQ(model->fieldInfo(name + L".width", true), nullptr);
        ASSERT_EQ(part->fieldInfo(name, true, true), nullptr);
    }
    for (int at = 0; at < 50000; ++at) {
        auto const name = string::sformat(L"unknown field %d", at);
        ASSERT_FALSE(scString::find(name).has_value());
        ASSERT_FALSE(scString::find(L"part." + name).has_value());
    }
}

} // namespace
} // namespace zov::metamodel
