// A host gives its fields meaning: defaults, named values, semantics, expressions, conditions and equality. Then it
// lets the model answer for a record that nobody has filled in yet.
#include <cmath>
#include <iostream>
#include <string>
#include <vector>

#include "zovMetamodel.h"

using zov::genericSet;
using zov::genericValue;
using zov::refPtr;
using zov::string;
using zov::conditions::condition;
using zov::metamodel::classInfo;
using zov::metamodel::eDouble;
using zov::metamodel::eFieldSemantics;
using zov::metamodel::enumItem;
using zov::metamodel::eSemEnum;
using zov::metamodel::eSemNone;
using zov::metamodel::eShort;
using zov::metamodel::eString;
using zov::metamodel::fieldInfo;
using zov::metamodel::modelInfo;

namespace {

// What a number must not exceed. Fields keep a clone; what a condition means is the host's business.
class atMost : public condition {
public:
    explicit atMost(double most) : mMost(most) {}
    condition* clone() const override { return new atMost(*this); }
    bool holdsFor(double number) const { return number <= mMost; }

private:
    double mMost;
};

// Widths are equal when a gauge cannot tell them apart.
bool sameWidth(genericValue const& one, genericValue const& other) {
    double left = 0;
    double right = 0;
    return one.getValue(left) && other.getValue(right) && std::abs(left - right) < 0.01;
}

// A semantics text from a file, say; what it does not fit is reported and changes nothing.
void setMeaning(refPtr<fieldInfo> const& field, string const& text) {
    eFieldSemantics semantic = eSemNone;
    genericSet attribs;
    if (fieldInfo::parseSemantics(text, semantic, attribs)) field->setSemantic(semantic, attribs, L"");
}

// The named values of a field, each from a line of text.
void setItems(refPtr<fieldInfo> const& field, std::vector<string> const& lines) {
    std::vector<enumItem> items;
    for (string const& line : lines) {
        enumItem item;
        if (fieldInfo::parseEnumItem(line, field->type(), item)) items.push_back(item);
    }
    genericSet attribs;
    attribs.setValue(L"enumItems", items, false);
    field->setSemantic(eSemEnum, attribs, L"");
}

// The name of a value, as the items of the field have it.
string nameOf(refPtr<fieldInfo> const& field, short value) {
    std::vector<enumItem>* items = nullptr;
    if (!field->semanticAttribs().getValuePtr(L"enumItems", items)) return L"";
    for (enumItem const& item : *items)
        if (short number = 0; item.mValue.getValue(number) && number == value) return item.mName;
    return L"";
}

// What stands in a new record.
string textOfDefault(refPtr<fieldInfo> const& field) {
    genericValue value;
    string text;
    return field->getDefaultValue(value, true) && value.getValue(text) ? text : string(L"nothing");
}

void describeWidth(refPtr<fieldInfo> const& width) {
    std::cout << "width starts at " << textOfDefault(width).toUtf8()
              << (width->isNullValue(genericValue(0.0000005)) ? "; almost nothing counts as no width\n" : "\n");
    auto const* const limit = dynamic_cast<atMost const*>(width->valueCondition());
    if (limit) std::cout << "1200 is " << (limit->holdsFor(1200) ? "allowed" : "too wide") << '\n';
    if (auto const areEqual = width->valueEqFunc(true))
        std::cout << "80 and 80.001 are "
                  << (areEqual(genericValue(80), genericValue(80.001)) ? "the same\n" : "two\n");
}

} // namespace

int main() {
    auto const model = modelInfo::createModelInfo(false);
    auto const part = model->createClassInfo(L"Part", [](refPtr<classInfo> added) {
        auto const number = added->createFieldInfo(L"number", eString, genericSet(), L"");
        setMeaning(number, L"primkey");

        auto const width = added->createFieldInfo(L"width", eDouble, genericSet(), L"");
        setMeaning(width, L"length");
        width->setDefaultValue(genericValue(80.0));
        width->setValueEqFunc(&sameWidth);
        atMost const limit(1000);
        width->setValueCondition(&limit);

        auto const area = added->createFieldInfo(L"area", eDouble, genericSet(), L"");
        setMeaning(area, L"area");
        area->setAutoExpression(L"width * width");

        auto const state = added->createFieldInfo(L"state", eShort, genericSet(), L"");
        setItems(state, {L"0, planned", L"1, in stock", L"2, sold out, for good"});
        state->setDefaultExpression(L"stock > 0 ? 1 : 2");
        return true;
    });
    auto const disc = model->createClassInfo(L"Disc", [&part](refPtr<classInfo> added) {
        added->addBaseClass(part);
        added->createFieldInfo(part, L"width")->setDefaultValue(genericValue(25.5));
        added->createFieldInfo(part, L"state");
        return true;
    });

    std::cout << "Part: ";
    describeWidth(part->fieldInfo(L"width", false, false));
    std::cout << "Disc: ";
    describeWidth(disc->fieldInfo(L"width", false, false));

    auto const number = part->fieldInfo(L"number", false, false);
    std::cout << "number is " << (number->isMandatory() && number->isUnique() ? "mandatory and unique\n" : "free\n")
              << "area is computed: " << part->fieldInfo(L"area", false, false)->autoExpression().toUtf8() << '\n';

    auto const state = part->fieldInfo(L"state", false, false);
    std::cout << "state 2 means " << nameOf(state, 2).toUtf8() << '\n'
              << "state of a disc: " << disc->fieldInfo(L"state", false, false)->defaultExpression().toUtf8() << '\n';

    model->tearDown();
}
