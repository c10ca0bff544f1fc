// A field by itself: names, label, flags, and its place in the model.
#include "zovMdlFieldInfo.h"

#include <gtest/gtest.h>

#include "modelFixture.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::ownClass;
using tests::ownModel;

// A class with a field that stands for one of its base.
struct standing {
    ownClass base{L"base"};
    ownClass part{L"part"};
    refPtr<fieldInfo> root;
    refPtr<fieldInfo> field;

    explicit standing(eFieldType type = eDouble) {
        part->addBaseClass(base);
        root = addField(base, L"width", type);
        field = part->createFieldInfo(base.pointer(), L"width");
    }
};

// behaviour: FR-01
TEST(fieldRecord, saysLittleOfItselfAtFirst) {
    ownClass const part(L"part");
    auto const width = addField(part, L"Width", eDouble);
    EXPECT_EQ(width->scName().string(), L"width");
    EXPECT_EQ(width->label(), L"");
    EXPECT_EQ(width->unit(), L"");
    EXPECT_FALSE(width->isMandatory());
    EXPECT_FALSE(width->isUnique());
    EXPECT_EQ(width->type(), eDouble);
    EXPECT_EQ(width->customTypeString(), scString());
    EXPECT_EQ(width->typeAttribs().size(), 0u);
    EXPECT_EQ(width->semantic(), eSemNone);
    EXPECT_EQ(width->semanticAttribs().size(), 0u);
    EXPECT_EQ(width->classInfo(), part.pointer());
    EXPECT_EQ(width->baseField(), nullptr);
}

// behaviour: FR-02
TEST(fieldRecord, keepsLabelAndUnit) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    width->setLabel(L"The Width");
    width->setUnit(L"mm");
    EXPECT_EQ(width->label(), L"The Width");
    EXPECT_EQ(width->unit(), L"mm");
    width->setLabel(width->label());
    width->setUnit(width->unit());
    EXPECT_EQ(width->label(), L"The Width");
    EXPECT_EQ(width->unit(), L"mm");
    width->setLabel(width->unit());
    width->setUnit(L"");
    EXPECT_EQ(width->label(), L"mm");
    EXPECT_EQ(width->unit(), L"");
    EXPECT_EQ(width->scName().string(), L"width");
}

// behaviour: FR-03
TEST(fieldRecord, keepsTwoFlagsApart) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    width->setMandatory(true);
    EXPECT_TRUE(width->isMandatory());
    EXPECT_FALSE(width->isUnique());
    width->setUnique(true);
    EXPECT_TRUE(width->isMandatory());
    EXPECT_TRUE(width->isUnique());
    width->setMandatory(false);
    EXPECT_FALSE(width->isMandatory());
    EXPECT_TRUE(width->isUnique());
    width->setUnique(false);
    EXPECT_FALSE(width->isUnique());
}

// behaviour: FR-05
TEST(fieldRecord, answersNameAndTypeOfItsRoot) {
    standing const made;
    EXPECT_EQ(made.field->scName(), made.root->scName());
    EXPECT_EQ(made.field->type(), eDouble);
    EXPECT_EQ(made.field->baseField(), made.root);
    EXPECT_EQ(made.field->classInfo(), made.part.pointer());
}

// behaviour: FR-05
TEST(fieldRecord, saysTheRestForItselfWhenItStandsForAnother) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    genericSet attribs;
    attribs.setValue(L"digits", 3, false);
    auto const root = base->createFieldInfo(L"width", eDouble, attribs, L"Root Kind");
    root->setLabel(L"Root label");
    root->setUnit(L"mm");
    root->setMandatory(true);
    auto const field = part->createFieldInfo(base.pointer(), L"width");
    EXPECT_EQ(field->label(), L"");
    EXPECT_EQ(field->unit(), L"");
    EXPECT_FALSE(field->isMandatory());
    EXPECT_EQ(field->customTypeString(), scString());
    EXPECT_EQ(field->typeAttribs().size(), 0u);
    EXPECT_EQ(field->semanticAttribs().size(), 0u);
    field->setLabel(L"Own label");
    field->setUnit(L"cm");
    field->setUnique(true);
    EXPECT_EQ(root->label(), L"Root label");
    EXPECT_EQ(root->unit(), L"mm");
    EXPECT_FALSE(root->isUnique());
}

// behaviour: FR-05
TEST(fieldRecord, followsAChainToItsRoot) {
    standing const made(eTimestamp);
    ownClass const bottom(L"bottom");
    bottom->addBaseClass(made.part);
    auto const field = bottom->createFieldInfo(made.part.pointer(), L"width");
    EXPECT_EQ(field->baseField(), made.field);
    EXPECT_EQ(field->scName(), made.root->scName());
    EXPECT_EQ(field->type(), eTimestamp);
    made.root->setSemantic(eSemDate, genericSet(), L"");
    EXPECT_EQ(field->type(), eDate);
    EXPECT_EQ(field->semantic(), eSemDate);
    EXPECT_EQ(field->typeString().string(), L"date");
}

// behaviour: FR-11
TEST(fieldRecord, isQualifiedByTheNameOfItsClass) {
    ownModel const model;
    auto const x = addField(model->createClassInfo(L"C"), L"X");
    EXPECT_EQ(x->qualifiedName(), L"c.x");
    ownModel const exactCase(true);
    EXPECT_EQ(addField(exactCase->createClassInfo(L"C"), L"X")->qualifiedName(), L"c.X");
}

// behaviour: FR-11
TEST(fieldRecord, isQualifiedByNothingAfterATearDown) {
    ownClass const part(L"C");
    auto const x = addField(part, L"x");
    part->tearDown();
    EXPECT_EQ(x->qualifiedName(), L"x");
    EXPECT_EQ(x->classInfo(), nullptr);
}

// behaviour: FR-12
TEST(fieldRecord, hasNoNameOfItsOwnToQualifyWhenItStandsForAnother) {
    standing const made;
    EXPECT_EQ(made.field->qualifiedName(), L"part.");
    EXPECT_EQ(made.root->qualifiedName(), L"base.width");
}

// behaviour: FR-12
TEST(fieldRecord, hasTheNameOfItsRootWhenItsClassIsTornDown) {
    standing const made;
    made.part->tearDown();
    EXPECT_EQ(made.field->qualifiedName(), L"width");
    EXPECT_EQ(made.root->qualifiedName(), L"base.width");
}

// behaviour: FR-13
TEST(fieldRecord, keepsItsRootWhenItsClassIsTornDown) {
    standing const made;
    made.part->tearDown();
    made.base->tearDown();
    EXPECT_EQ(made.field->classInfo(), nullptr);
    EXPECT_EQ(made.field->baseField(), made.root);
    EXPECT_EQ(made.field->scName().string(), L"width");
    EXPECT_EQ(made.field->type(), eDouble);
}

// behaviour: FR-13
TEST(fieldRecord, keepsItsClassAlive) {
    refPtr<fieldInfo> width;
    {
        auto const part = classInfo::createClassInfo(L"part");
        part->setLabel(L"Still here");
        width = addField(part, L"width");
    }
    ownClass const part(width->classInfo());
    EXPECT_EQ(part->label(), L"Still here");
    EXPECT_EQ(part->fieldInfo(L"width", false, false), width);
}

} // namespace
} // namespace zov::metamodel
