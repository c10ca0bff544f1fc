// What hosts do not see of a field's definitions: the flags of its expressions, which entries there are, and what only
// a copy of a whole flag word brings about.
#include <gtest/gtest.h>

#include <string>

#include "fieldChain.h"
#include "testAccess.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::fieldChain;
using tests::ownClass;

constexpr int eAuto = 4;
constexpr int eConstant = 8;

fieldData& dataOf(refPtr<fieldInfo> const& field) {
    return testAccess::data(*field);
}

// Whether there is an entry under the key that is held as exactly a string of this text.
bool holdsText(refPtr<fieldInfo> const& field, wchar_t const* key, string const& text) {
    string* held = nullptr;
    return dataOf(field).mDefinitions.getValuePtr(key, held) && *held == text;
}

// behaviour: FE-05
TEST(expressionsInner, flagAnAutoExpressionWhileThereIsOne) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width");
    dataOf(field).mFlags = 0x71;
    field->setAutoExpression(L"a");
    EXPECT_EQ(testAccess::flags(*field), 0x71 | eAuto);
    EXPECT_TRUE(holdsText(field, L"Auto", L"a"));
    field->setAutoExpression(L"b");
    EXPECT_EQ(testAccess::flags(*field), 0x71 | eAuto);
    field->setAutoExpression(L"");
    EXPECT_EQ(testAccess::flags(*field), 0x71);
    EXPECT_EQ(dataOf(field).mDefinitions.size(), 0u);
}

// behaviour: FE-05
TEST(expressionsInner, readAnAutoExpressionWhateverTheFlag) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width");
    field->setAutoExpression(L"a");
    dataOf(field).mFlags = 0;
    EXPECT_EQ(field->autoExpression(), L"a");
}

// behaviour: FE-05
TEST(expressionsInner, flagOnlyTheFieldThatHasTheAutoExpression) {
    fieldChain const chain;
    chain.root->setAutoExpression(L"a");
    EXPECT_EQ(testAccess::flags(*chain.root), eAuto);
    EXPECT_EQ(testAccess::flags(*chain.middle), 0);
    EXPECT_EQ(chain.middle->autoExpression(), L"a");
}

// behaviour: FE-01
TEST(expressionsInner, keepAnEmptyDefaultExpressionAsAnEntry) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width");
    field->setDefaultExpression(L"a");
    EXPECT_TRUE(holdsText(field, L"Default", L"a"));
    field->setDefaultExpression(L"");
    EXPECT_TRUE(holdsText(field, L"Default", L""));
    EXPECT_EQ(dataOf(field).mDefinitions.size(), 1u);
    EXPECT_EQ(testAccess::flags(*field), 0);
}

// behaviour: FE-03
TEST(expressionsInner, storeAConstantExpressionAndSetNoFlag) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width");
    field->setConstantExpression(L"3");
    EXPECT_TRUE(holdsText(field, L"Constant", L"3"));
    EXPECT_EQ(testAccess::flags(*field), 0);
}

// behaviour: FE-04
TEST(expressionsInner, giveBackAConstantExpressionUnderTheFlag) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width");
    field->setConstantExpression(L"3");
    dataOf(field).mFlags = eConstant;
    EXPECT_EQ(field->constantExpression(), L"3");
    field->setConstantExpression(L"4");
    EXPECT_EQ(field->constantExpression(), L"4");
    EXPECT_EQ(testAccess::flags(*field), eConstant);
}

// behaviour: FE-04
TEST(expressionsInner, clearTheFlagWithTheConstantExpression) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width");
    field->setConstantExpression(L"3");
    dataOf(field).mFlags = 0x77 | eConstant;
    EXPECT_TRUE(field->setConstantExpression(L""));
    EXPECT_EQ(testAccess::flags(*field), 0x77);
    EXPECT_EQ(dataOf(field).mDefinitions.size(), 0u);
    EXPECT_EQ(field->constantExpression(), L"");
    field->setConstantExpression(L"3");
    EXPECT_EQ(field->constantExpression(), L"");
}

// behaviour: FE-04
TEST(expressionsInner, clearTheFlagAlsoWithoutAConstantExpression) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width");
    dataOf(field).mFlags = eConstant;
    EXPECT_TRUE(field->setConstantExpression(L""));
    EXPECT_EQ(testAccess::flags(*field), 0);
}

// behaviour: FE-04
TEST(expressionsInner, fallBackToTheConstantExpressionOfAFlaggedBase) {
    fieldChain const chain;
    chain.root->setConstantExpression(L"root");
    chain.middle->setConstantExpression(L"middle");
    dataOf(chain.root).mFlags = eConstant;
    EXPECT_EQ(chain.field->constantExpression(), L"root");
    dataOf(chain.middle).mFlags = eConstant;
    EXPECT_EQ(chain.field->constantExpression(), L"middle");
    dataOf(chain.field).mFlags = eConstant;
    EXPECT_EQ(chain.field->constantExpression(), L"middle");
    dataOf(chain.root).mFlags = 0;
    dataOf(chain.middle).mFlags = 0;
    EXPECT_EQ(chain.field->constantExpression(), L"");
}

// behaviour: FE-04, CF-16
TEST(expressionsInner, giveBackAConstantExpressionOnceAWholeFlagWordWasCopied) {
    ownClass const part(L"part");
    ownClass const other(L"other");
    auto const field = addField(part, L"width");
    field->setConstantExpression(L"3");
    dataOf(field).mFlags = eConstant;
    auto const copy = other->copyFieldInfoFrom(field, nullptr);
    EXPECT_EQ(copy->constantExpression(), L"3");
    copy->setConstantExpression(L"");
    EXPECT_EQ(copy->constantExpression(), L"");
    EXPECT_EQ(field->constantExpression(), L"3");
}

// behaviour: FV-08
TEST(expressionsInner, leaveTheStoredDefaultAloneWhenItIsReadIntoItself) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width");
    field->setDefaultValue(genericValue(5));
    sharedPtr<zov::genericValue> stored =
        dataOf(field).mDefinitions.genericValue(scString::createFrom(L"DefaultValue"));
    ASSERT_TRUE(stored);
    auto const* const held = stored->heldBy();
    EXPECT_TRUE(field->getDefaultValue(*stored, true));
    EXPECT_EQ(stored->heldBy(), held);
    EXPECT_EQ(*stored->valuePtr<int>(), 5);
}

// behaviour: FE-08, FE-11
TEST(expressionsInner, eraseAConditionButKeepANullFunction) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width");
    field->setValueCondition(nullptr);
    EXPECT_EQ(dataOf(field).mDefinitions.size(), 0u);
    field->setValueEqFunc(nullptr);
    valueEqFunction* held = nullptr;
    ASSERT_TRUE(dataOf(field).mDefinitions.getValuePtr(L"EqValue", held));
    EXPECT_EQ(*held, nullptr);
}

} // namespace
} // namespace zov::metamodel
