// A class by itself: its name, label and flags.
#include "zovMdlClassInfo.h"

#include <gtest/gtest.h>

#include <string>

#include "modelFixture.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::ownClass;
using tests::ownModel;

// behaviour: CC-01
TEST(classCore, isMadeWithoutAModel) {
    ownClass const part(L"Part");
    ASSERT_NE(part.pointer(), nullptr);
    EXPECT_EQ(part->scName().string(), L"part");
    EXPECT_EQ(part->label(), L"");
    EXPECT_FALSE(part->isAbstract());
    EXPECT_EQ(part->countFields(), 0u);
    EXPECT_EQ(part->refCount(), 1u);
}

// behaviour: CC-01
TEST(classCore, ignoresLetterCaseOfNamesWhenItHasNoModel) {
    ownClass const part(L"Part");
    auto const width = addField(part, L"Width");
    EXPECT_EQ(width->scName().string(), L"width");
    EXPECT_EQ(part->fieldInfo(L"WIDTH", false, false), width);
}

// behaviour: CC-02
TEST(classCore, hasALowerCaseNameInEveryModel) {
    ownModel const anyCase;
    ownModel const exactCase(true);
    EXPECT_EQ(anyCase->createClassInfo(L"Order")->scName().string(), L"order");
    EXPECT_EQ(exactCase->createClassInfo(L"Order")->scName().string(), L"order");
    EXPECT_EQ(exactCase->createClassInfo(L"\u00D6RDER")->scName().string(), L"\u00F6rder");
}

// behaviour: CC-02
TEST(classCore, hasTheHandleOfItsLowerCaseName) {
    ownClass const one(L"Order");
    ownClass const other(L"ORDER");
    EXPECT_EQ(one->scName(), other->scName());
    EXPECT_EQ(one->scName(), scString::createFrom(L"order"));
    EXPECT_NE(one->scName(), scString::createFrom(L"Order"));
    EXPECT_EQ(ownClass(L"")->scName(), scString());
}

// behaviour: CC-03
TEST(classCore, keepsTheLabelThatIsSet) {
    ownClass const part(L"part");
    part->setLabel(L"A Part");
    EXPECT_EQ(part->label(), L"A Part");
    part->setLabel(part->label());
    EXPECT_EQ(part->label(), L"A Part");
    part->setLabel(L"");
    EXPECT_EQ(part->label(), L"");
    EXPECT_EQ(part->scName().string(), L"part");
}

// behaviour: CC-04
TEST(classCore, isAbstractWhenToldSo) {
    ownClass const part(L"part");
    part->setAbstract(true);
    EXPECT_TRUE(part->isAbstract());
    part->setAbstract(true);
    EXPECT_TRUE(part->isAbstract());
    part->setAbstract(false);
    EXPECT_FALSE(part->isAbstract());
}

// behaviour: CC-10
TEST(classCore, keepsTheNoteThatModelsAreClosing) {
    EXPECT_FALSE(classInfo::isClosing());
    classInfo::setIsClosing(true);
    EXPECT_TRUE(classInfo::isClosing());
    ownModel const model;
    EXPECT_NE(model->createClassInfo(L"part"), nullptr);
    classInfo::setIsClosing(false);
    EXPECT_FALSE(classInfo::isClosing());
}

} // namespace
} // namespace zov::metamodel
