// The expression texts of a field: for its default, for a constant, and for a value that is computed.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fieldChain.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::events;
using tests::fieldChain;
using tests::ownClass;
using zov::tests::eventLog;

// One of the two expressions that are kept and given back alike.
struct expression {
    char const* name;
    bool (fieldInfo::*set)(string const&);
    string (fieldInfo::*get)() const;
};

expression const expressions[] = {
    {"default", &fieldInfo::setDefaultExpression, &fieldInfo::defaultExpression},
    {"auto", &fieldInfo::setAutoExpression, &fieldInfo::autoExpression},
};

// behaviour: FE-01
TEST(expressions, areEmptyAtFirst) {
    fieldChain const chain;
    for (auto const& field : {chain.root, chain.field}) {
        EXPECT_EQ(field->defaultExpression(), L"");
        EXPECT_EQ(field->constantExpression(), L"");
        EXPECT_EQ(field->autoExpression(), L"");
    }
}

// behaviour: FE-01
TEST(expressions, areKeptAsGivenAndReplaced) {
    string const texts[] = {L"Width * 2",     L"  blanks\tand\nlines ", L"Größe + 名前 * \U0001F527",
                            string(3, L'\0'), string(100000, L'x'),     L"1"};
    ownClass const part(L"part");
    for (auto const& each : expressions) {
        SCOPED_TRACE(each.name);
        auto const field = part->createFieldInfo(string::fromUtf8(each.name), eInt, genericSet(), L"");
        eventLog log;
        for (auto const& text : texts) {
            EXPECT_TRUE((field.get()->*each.set)(text));
            EXPECT_EQ((field.get()->*each.get)(), text);
        }
        EXPECT_EQ(log.take(), events());
    }
}

// behaviour: FE-01
TEST(expressions, doNotMixWithEachOther) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width");
    field->setDefaultExpression(L"a");
    field->setAutoExpression(L"b");
    field->setConstantExpression(L"c");
    EXPECT_EQ(field->defaultExpression(), L"a");
    EXPECT_EQ(field->autoExpression(), L"b");
    field->setAutoExpression(L"");
    field->setConstantExpression(L"");
    EXPECT_EQ(field->defaultExpression(), L"a");
    EXPECT_EQ(field->autoExpression(), L"");
}

// behaviour: FE-06
TEST(expressions, areApartFromTheDefaultValue) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width", eString);
    field->setDefaultExpression(L"a");
    genericValue value;
    EXPECT_TRUE(field->getDefaultValue(value, true));
    EXPECT_EQ(*value.valuePtr<string>(), L"");
    field->setDefaultValue(genericValue(L"b"));
    EXPECT_EQ(field->defaultExpression(), L"a");
    field->setDefaultExpression(L"");
    EXPECT_TRUE(field->getDefaultValue(value, true));
    EXPECT_EQ(*value.valuePtr<string>(), L"b");
}

// behaviour: FE-02
TEST(expressions, areThoseOfTheNearestFieldThatHasOne) {
    for (auto const& each : expressions) {
        SCOPED_TRACE(each.name);
        fieldChain const chain;
        (chain.root.get()->*each.set)(L"root");
        EXPECT_EQ((chain.middle.get()->*each.get)(), L"root");
        EXPECT_EQ((chain.field.get()->*each.get)(), L"root");
        (chain.middle.get()->*each.set)(L"middle");
        EXPECT_EQ((chain.field.get()->*each.get)(), L"middle");
        (chain.field.get()->*each.set)(L"field");
        EXPECT_EQ((chain.field.get()->*each.get)(), L"field");
        EXPECT_EQ((chain.middle.get()->*each.get)(), L"middle");
        EXPECT_EQ((chain.root.get()->*each.get)(), L"root");
    }
}

// behaviour: FE-02
TEST(expressions, fallBackToTheBaseFieldWhenTheyAreMadeEmpty) {
    for (auto const& each : expressions) {
        SCOPED_TRACE(each.name);
        fieldChain const chain;
        (chain.root.get()->*each.set)(L"root");
        (chain.middle.get()->*each.set)(L"middle");
        EXPECT_TRUE((chain.middle.get()->*each.set)(L""));
        EXPECT_EQ((chain.middle.get()->*each.get)(), L"root");
        EXPECT_EQ((chain.field.get()->*each.get)(), L"root");
        EXPECT_TRUE((chain.root.get()->*each.set)(L""));
        EXPECT_EQ((chain.field.get()->*each.get)(), L"");
        EXPECT_TRUE((chain.root.get()->*each.set)(L""));
    }
}

// behaviour: FE-02
TEST(expressions, thatAreBlankAreNotEmpty) {
    fieldChain const chain;
    chain.root->setDefaultExpression(L"root");
    chain.field->setDefaultExpression(L" ");
    EXPECT_EQ(chain.field->defaultExpression(), L" ");
}

// behaviour: FE-03
TEST(expressions, forAConstantAreTakenButNotGivenBack) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width");
    eventLog log;
    EXPECT_TRUE(field->setConstantExpression(L"3"));
    EXPECT_EQ(field->constantExpression(), L"");
    EXPECT_TRUE(field->setConstantExpression(L"4"));
    EXPECT_EQ(field->constantExpression(), L"");
    EXPECT_TRUE(field->setConstantExpression(L""));
    EXPECT_TRUE(field->setConstantExpression(L""));
    EXPECT_EQ(field->constantExpression(), L"");
    EXPECT_EQ(log.take(), events());
}

// behaviour: FE-03
TEST(expressions, forAConstantAreNotInheritedEither) {
    fieldChain const chain;
    chain.root->setConstantExpression(L"3");
    chain.field->setConstantExpression(L"4");
    EXPECT_EQ(chain.field->constantExpression(), L"");
    EXPECT_EQ(chain.root->constantExpression(), L"");
}

// behaviour: FE-03
TEST(expressions, forAConstantAreNotGivenBackByACopyEither) {
    ownClass const part(L"part");
    ownClass const other(L"other");
    auto const field = addField(part, L"width");
    field->setConstantExpression(L"3");
    field->setAutoExpression(L"4");
    auto const copy = other->copyFieldInfoFrom(field, nullptr);
    EXPECT_EQ(copy->constantExpression(), L"");
    EXPECT_EQ(copy->autoExpression(), L"4");
}

// behaviour: FE-01
TEST(expressions, leaveMandatoryAndUniqueAlone) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width");
    field->setMandatory(true);
    field->setAutoExpression(L"a");
    field->setConstantExpression(L"b");
    EXPECT_TRUE(field->isMandatory());
    EXPECT_FALSE(field->isUnique());
    field->setUnique(true);
    field->setAutoExpression(L"");
    field->setConstantExpression(L"");
    EXPECT_TRUE(field->isMandatory() && field->isUnique());
}

// behaviour: FE-01, CF-16
TEST(expressions, areCopiedWithTheFieldAndChangeOnTheirOwn) {
    for (auto const& each : expressions) {
        SCOPED_TRACE(each.name);
        ownClass const part(L"part");
        ownClass const other(L"other");
        auto const field = addField(part, L"width");
        (field.get()->*each.set)(L"a");
        auto const copy = other->copyFieldInfoFrom(field, nullptr);
        (field.get()->*each.set)(L"b");
        EXPECT_EQ((copy.get()->*each.get)(), L"a");
        (copy.get()->*each.set)(L"c");
        EXPECT_EQ((field.get()->*each.get)(), L"b");
    }
}

// behaviour: FE-02, CF-16
TEST(expressions, ofTheBaseAreNotCopiedWithAStandingField) {
    fieldChain const chain;
    ownClass const other(L"other");
    chain.root->setDefaultExpression(L"root");
    auto const copy = other->copyFieldInfoFrom(chain.field, nullptr);
    EXPECT_EQ(copy->defaultExpression(), L"");
}

} // namespace
} // namespace zov::metamodel
