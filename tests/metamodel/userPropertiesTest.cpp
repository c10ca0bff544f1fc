// The values that a host keeps with classes and fields: texts, counted objects, and any other value.
#include "zovMdlClassInfo.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "modelFixture.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::ownClass;

// An object of the host's.
class note : public refObj {
private:
    ~note() override = default;
    void destroy() override { delete this; }
};

refPtr<refObj> makeNote() {
    return refPtr<note>(new note);
}

// Three classes, each derived from the one before, with a field in the first and those that stand for it.
class chain {
public:
    chain() {
        middle->addBaseClass(top);
        last->addBaseClass(middle);
        root = addField(top, L"width");
        between = middle->createFieldInfo(top.pointer(), L"width");
        field = last->createFieldInfo(middle.pointer(), L"width");
    }

    ownClass const top{L"top"};
    ownClass const middle{L"middle"};
    ownClass const last{L"last"};
    refPtr<fieldInfo> root;
    refPtr<fieldInfo> between;
    refPtr<fieldInfo> field;
};

// The answer as a text; "-" for none.
template <class Owner>
string textOf(Owner const& owner, string const& name, bool searchInherited) {
    string value = L"as before";
    if (owner->getUserProperty(name, value, searchInherited)) return value;
    EXPECT_EQ(value, L"as before");
    return L"-";
}

// The answer as an object; empty for none. Asks through both kinds of pointers.
template <class Owner>
refPtr<refObj> objectOf(Owner const& owner, string const& name, bool searchInherited) {
    refPtr<refObj> const before = makeNote();
    refPtr<refObj> value = before;
    const_refPtr<refObj> readOnly = before;
    bool const found = owner->getUserProperty(name, value, searchInherited);
    EXPECT_EQ(std::as_const(*owner.operator->()).getUserProperty(name, readOnly, searchInherited), found);
    EXPECT_EQ(readOnly, value);
    EXPECT_TRUE(found || value == before);
    return found ? value : nullptr;
}

// The answer as a value of any type, shown as a text; "-" for none.
template <class Owner>
string valueOf(Owner const& owner, string const& name, bool searchInherited) {
    genericValue value(string(L"as before"));
    bool const found = owner->getUserProperty(name, value, searchInherited);
    string text;
    EXPECT_TRUE(value.getValue(text));
    if (found) return text;
    EXPECT_EQ(text, L"as before");
    return L"-";
}

using listed = std::map<string, string>;

// The texts of the properties of one kind.
template <class Owner>
listed propertiesOf(Owner const& owner, bool inheritable) {
    listed found;
    owner->forEachUserProperty(
        inheritable,
        [&](scString const& name, genericValue const& value) {
            string text = L"?";
            value.getValue(text);
            EXPECT_TRUE(found.emplace(name.string(), text).second);
            return true;
        },
        false);
    return found;
}

// ---- the owner's own

template <class Owner>
void expectValuesReadBack(Owner const& owner) {
    auto const object = makeNote();
    for (bool const inheritable : {false, true}) {
        SCOPED_TRACE(inheritable);
        string const suffix = inheritable ? L" inheritable" : L" private";
        owner->setUserProperty(L"text" + suffix, L"red", inheritable);
        owner->setUserProperty(L"object" + suffix, object, inheritable);
        owner->setUserProperty(L"value" + suffix, genericValue(42), inheritable);
        EXPECT_EQ(textOf(owner, L"text" + suffix, true), L"red");
        EXPECT_EQ(valueOf(owner, L"text" + suffix, true), L"red");
        EXPECT_EQ(objectOf(owner, L"object" + suffix, true), object);
        genericValue value;
        EXPECT_TRUE(owner->getUserProperty(L"value" + suffix, value, true));
        ASSERT_NE(value.template valuePtr<int>(), nullptr);
        EXPECT_EQ(*value.template valuePtr<int>(), 42);
    }
}

// behaviour: UP-01
TEST(userProperties, ofAClassAreReadBack) {
    ownClass const part(L"part");
    expectValuesReadBack(part);
}

// behaviour: UP-01
TEST(userProperties, ofAFieldAreReadBack) {
    ownClass const part(L"part");
    expectValuesReadBack(addField(part, L"width"));
}

// behaviour: UP-01
TEST(userProperties, keepTheTypeOfAText) {
    ownClass const part(L"part");
    part->setUserProperty(L"colour", L"red", false);
    genericValue value;
    ASSERT_TRUE(part->getUserProperty(L"colour", value, false));
    ASSERT_NE(value.valuePtr<string>(), nullptr);
    part->setUserProperty(L"note", makeNote(), false);
    ASSERT_TRUE(part->getUserProperty(L"note", value, false));
    EXPECT_NE(value.valuePtr<refPtr<refObj>>(), nullptr);
}

template <class Owner>
void expectReplacedAndKeptApart(Owner const& owner) {
    owner->setUserProperty(L"a", L"private", false);
    owner->setUserProperty(L"a", L"inheritable", true);
    EXPECT_EQ(textOf(owner, L"a", true), L"private");
    EXPECT_EQ(textOf(owner, L"a", false), L"private");
    EXPECT_EQ(valueOf(owner, L"a", true), L"private");
    owner->setUserProperty(L"a", L"another", true);
    EXPECT_EQ(textOf(owner, L"a", true), L"private");
    owner->setUserProperty(L"a", genericValue(7), false);
    EXPECT_EQ(textOf(owner, L"a", true), L"7");
    EXPECT_EQ(propertiesOf(owner, false), (listed{{L"a", L"7"}}));
    EXPECT_EQ(propertiesOf(owner, true), (listed{{L"a", L"another"}}));
}

// behaviour: UP-02
TEST(userProperties, ofAClassAreReplacedAmongTheirKindAndReadPrivateOnesFirst) {
    ownClass const part(L"part");
    expectReplacedAndKeptApart(part);
}

// behaviour: UP-02
TEST(userProperties, ofAFieldAreReplacedAmongTheirKindAndReadPrivateOnesFirst) {
    ownClass const part(L"part");
    expectReplacedAndKeptApart(addField(part, L"width"));
}

// behaviour: UP-02
TEST(userProperties, readAPrivateObjectBeforeAnInheritableOne) {
    chain const world;
    auto const mine = makeNote();
    auto const forAll = makeNote();
    world.top->setUserProperty(L"note", mine, false);
    world.top->setUserProperty(L"note", forAll, true);
    EXPECT_EQ(objectOf(world.top, L"note", true), mine);
    EXPECT_EQ(objectOf(world.middle, L"note", true), forAll);
    world.root->setUserProperty(L"note", mine, false);
    world.root->setUserProperty(L"note", forAll, true);
    EXPECT_EQ(objectOf(world.root, L"note", true), mine);
    EXPECT_EQ(objectOf(world.between, L"note", true), forAll);
}

// behaviour: UP-07
TEST(userProperties, leaveTheValueAloneWhenThereIsNone) {
    chain const world;
    for (bool const searchInherited : {false, true}) {
        EXPECT_EQ(textOf(world.last, L"none", searchInherited), L"-");
        EXPECT_EQ(objectOf(world.last, L"none", searchInherited), nullptr);
        EXPECT_EQ(valueOf(world.last, L"none", searchInherited), L"-");
        EXPECT_EQ(textOf(world.field, L"none", searchInherited), L"-");
        EXPECT_EQ(objectOf(world.field, L"none", searchInherited), nullptr);
        EXPECT_EQ(valueOf(world.field, L"none", searchInherited), L"-");
    }
}

// behaviour: UP-11
TEST(userProperties, haveNamesInTheirExactSpelling) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    part->setUserProperty(L"Colour", L"red", false);
    width->setUserProperty(L"Colour", L"red", false);
    for (wchar_t const* name : {L"colour", L"COLOUR", L" Colour", L""}) {
        EXPECT_EQ(textOf(part, name, true), L"-");
        EXPECT_EQ(textOf(width, name, true), L"-");
    }
    EXPECT_EQ(textOf(part, L"Colour", true), L"red");
    EXPECT_EQ(textOf(width, L"Colour", true), L"red");
    part->setUserProperty(L"", L"nameless", false);
    width->setUserProperty(L"", L"nameless", false);
    EXPECT_EQ(textOf(part, L"", false), L"nameless");
    EXPECT_EQ(textOf(width, L"", false), L"nameless");
}

// behaviour: UP-11
TEST(userProperties, leaveUnknownNamesUnknown) {
    chain const world;
    world.top->setUserProperty(L"colour", L"red", true);
    world.root->setUserProperty(L"colour", L"red", true);
    string const unknown = L"a property that nobody ever set";
    EXPECT_EQ(textOf(world.last, unknown, true), L"-");
    EXPECT_EQ(objectOf(world.last, unknown, true), nullptr);
    EXPECT_EQ(valueOf(world.field, unknown, true), L"-");
    EXPECT_FALSE(scString::find(unknown));
}

// behaviour: UP-14
TEST(userProperties, ofAClassAndOfItsFieldsKnowNothingOfEachOther) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    part->setUserProperty(L"a", L"the class's", true);
    width->setUserProperty(L"b", L"the field's", true);
    EXPECT_EQ(textOf(width, L"a", true), L"-");
    EXPECT_EQ(textOf(part, L"b", true), L"-");
}

// ---- inherited ones

// behaviour: UP-03
TEST(userProperties, ofABaseAreSeenWhenInheritable) {
    chain const world;
    world.top->setUserProperty(L"a", L"x", false);
    EXPECT_EQ(textOf(world.middle, L"a", true), L"-");
    EXPECT_EQ(valueOf(world.middle, L"a", true), L"-");
    world.top->setUserProperty(L"a", L"x", true);
    EXPECT_EQ(textOf(world.middle, L"a", true), L"x");
    EXPECT_EQ(valueOf(world.middle, L"a", true), L"x");
    EXPECT_EQ(textOf(world.middle, L"a", false), L"-");
    EXPECT_EQ(valueOf(world.middle, L"a", false), L"-");
}

// behaviour: UP-03
TEST(userProperties, ofABaseOfABaseAreSeenWhenInheritable) {
    chain const world;
    auto const object = makeNote();
    world.top->setUserProperty(L"text", L"x", true);
    world.top->setUserProperty(L"object", object, true);
    EXPECT_EQ(textOf(world.last, L"text", true), L"x");
    EXPECT_EQ(valueOf(world.last, L"text", true), L"x");
    EXPECT_EQ(objectOf(world.last, L"object", true), object);
    EXPECT_EQ(objectOf(world.last, L"object", false), nullptr);
}

// behaviour: UP-03
TEST(userProperties, ofTheNearestBaseAreSeenFirst) {
    chain const world;
    world.top->setUserProperty(L"a", L"far", true);
    world.middle->setUserProperty(L"a", L"private", false);
    EXPECT_EQ(textOf(world.last, L"a", true), L"far");
    world.middle->setUserProperty(L"a", L"near", true);
    EXPECT_EQ(textOf(world.last, L"a", true), L"near");
    EXPECT_EQ(valueOf(world.last, L"a", true), L"near");
    world.last->setUserProperty(L"a", L"own, inheritable", true);
    EXPECT_EQ(textOf(world.last, L"a", true), L"own, inheritable");
    EXPECT_EQ(valueOf(world.last, L"a", true), L"own, inheritable");
    world.last->setUserProperty(L"a", L"own", false);
    EXPECT_EQ(valueOf(world.last, L"a", true), L"own");
}

// The bases are searched in the order of their handles, and each to its end before the next.
// behaviour: UP-03
TEST(userProperties, ofBasesAreSeenDepthFirst) {
    ownClass const left(L"left");
    ownClass const right(L"right");
    ownClass const above(L"above");
    ownClass const last(L"last");
    last->addBaseClass(left);
    last->addBaseClass(right);
    std::vector<refPtr<classInfo>> inOrder;
    last->forEachBaseClass(
        [&](classInfo::entry const& base) {
            inOrder.push_back(base.second);
            return true;
        },
        true);
    ASSERT_EQ(inOrder.size(), 2u);
    inOrder[0]->addBaseClass(above);
    inOrder[1]->setUserProperty(L"a", L"second", true);
    EXPECT_EQ(textOf(last, L"a", true), L"second");
    EXPECT_EQ(valueOf(last, L"a", true), L"second");
    above->setUserProperty(L"a", L"above the first", true);
    EXPECT_EQ(textOf(last, L"a", true), L"above the first");
    EXPECT_EQ(valueOf(last, L"a", true), L"above the first");
    inOrder[0]->setUserProperty(L"a", L"first", true);
    EXPECT_EQ(textOf(last, L"a", true), L"first");
}

// behaviour: UP-04
TEST(userProperties, ofABaseFieldAreSeenWhenInheritable) {
    chain const world;
    auto const object = makeNote();
    world.root->setUserProperty(L"a", L"private", false);
    world.root->setUserProperty(L"object", object, false);
    EXPECT_EQ(textOf(world.between, L"a", true), L"-");
    EXPECT_EQ(valueOf(world.between, L"a", true), L"-");
    EXPECT_EQ(objectOf(world.between, L"object", true), nullptr);
    world.root->setUserProperty(L"a", L"inheritable", true);
    world.root->setUserProperty(L"object", object, true);
    for (auto const& field : {world.between, world.field}) {
        EXPECT_EQ(textOf(field, L"a", true), L"inheritable");
        EXPECT_EQ(valueOf(field, L"a", true), L"inheritable");
        EXPECT_EQ(objectOf(field, L"object", true), object);
        EXPECT_EQ(textOf(field, L"a", false), L"-");
        EXPECT_EQ(valueOf(field, L"a", false), L"-");
        EXPECT_EQ(objectOf(field, L"object", false), nullptr);
    }
}

// behaviour: UP-04
TEST(userProperties, ofTheNearestBaseFieldAreSeenFirst) {
    chain const world;
    world.root->setUserProperty(L"a", L"far", true);
    world.between->setUserProperty(L"a", L"private", false);
    EXPECT_EQ(textOf(world.field, L"a", true), L"far");
    world.between->setUserProperty(L"a", L"near", true);
    EXPECT_EQ(textOf(world.field, L"a", true), L"near");
    EXPECT_EQ(valueOf(world.field, L"a", true), L"near");
    world.field->setUserProperty(L"a", L"own, inheritable", true);
    EXPECT_EQ(textOf(world.field, L"a", true), L"own, inheritable");
    EXPECT_EQ(valueOf(world.field, L"a", true), L"own, inheritable");
}

// behaviour: UP-04
TEST(userProperties, ofAFieldComeFromItsBaseFieldNotFromFieldsOfTheSameName) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    auto const own = addField(part, L"width");
    part->addBaseClass(base);
    addField(base, L"width")->setUserProperty(L"a", L"x", true);
    EXPECT_EQ(textOf(own, L"a", true), L"-");
}

// behaviour: UP-05
TEST(userProperties, ofAClassShowItsOwnInheritableTextsAndObjectsUnasked) {
    ownClass const part(L"part");
    auto const object = makeNote();
    part->setUserProperty(L"text", L"x", true);
    part->setUserProperty(L"object", object, true);
    EXPECT_EQ(textOf(part, L"text", false), L"x");
    EXPECT_EQ(objectOf(part, L"object", false), object);
    EXPECT_EQ(valueOf(part, L"text", false), L"-");
    EXPECT_EQ(valueOf(part, L"text", true), L"x");
}

// behaviour: UP-05
TEST(userProperties, ofAFieldShowItsOwnInheritableObjectsUnasked) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    auto const object = makeNote();
    width->setUserProperty(L"text", L"x", true);
    width->setUserProperty(L"object", object, true);
    EXPECT_EQ(textOf(width, L"text", false), L"-");
    EXPECT_EQ(valueOf(width, L"text", false), L"-");
    EXPECT_EQ(objectOf(width, L"object", false), object);
    EXPECT_EQ(textOf(width, L"text", true), L"x");
    EXPECT_EQ(valueOf(width, L"text", true), L"x");
}

// ---- values of other types

// behaviour: UP-06
TEST(userProperties, areConvertedToTexts) {
    chain const world;
    world.top->setUserProperty(L"number", genericValue(42), true);
    world.root->setUserProperty(L"number", genericValue(42), true);
    world.last->setUserProperty(L"truth", genericValue(true), false);
    world.field->setUserProperty(L"truth", genericValue(true), false);
    EXPECT_EQ(textOf(world.last, L"number", true), L"42");
    EXPECT_EQ(textOf(world.field, L"number", true), L"42");
    EXPECT_EQ(textOf(world.last, L"truth", false), L"true");
    EXPECT_EQ(textOf(world.field, L"truth", false), L"true");
}

// behaviour: UP-06
TEST(userProperties, thatAreNoObjectsLetTheSearchForOneGoOn) {
    chain const world;
    auto const object = makeNote();
    world.top->setUserProperty(L"a", object, true);
    world.middle->setUserProperty(L"a", L"text", true);
    world.last->setUserProperty(L"a", genericValue(42), true);
    world.last->setUserProperty(L"a", L"text", false);
    EXPECT_EQ(objectOf(world.last, L"a", true), object);
    EXPECT_EQ(objectOf(world.last, L"a", false), nullptr);
    world.root->setUserProperty(L"a", object, true);
    world.between->setUserProperty(L"a", L"text", true);
    world.field->setUserProperty(L"a", genericValue(42), true);
    world.field->setUserProperty(L"a", L"text", false);
    EXPECT_EQ(objectOf(world.field, L"a", true), object);
    EXPECT_EQ(objectOf(world.field, L"a", false), nullptr);
}

// behaviour: UP-06
TEST(userProperties, thatAreNoTextsLetTheSearchForOneGoOn) {
    chain const world;
    world.top->setUserProperty(L"a", L"text", true);
    world.middle->setUserProperty(L"a", makeNote(), true);
    world.last->setUserProperty(L"a", makeNote(), false);
    EXPECT_EQ(textOf(world.last, L"a", true), L"text");
    EXPECT_EQ(textOf(world.last, L"a", false), L"-");
    world.last->setUserProperty(L"a", L"own, inheritable", true);
    EXPECT_EQ(textOf(world.last, L"a", false), L"own, inheritable");
    world.root->setUserProperty(L"a", L"text", true);
    world.between->setUserProperty(L"a", makeNote(), true);
    world.field->setUserProperty(L"a", makeNote(), false);
    EXPECT_EQ(textOf(world.field, L"a", true), L"text");
    world.field->setUserProperty(L"a", L"own, inheritable", true);
    EXPECT_EQ(textOf(world.field, L"a", false), L"-");
    EXPECT_EQ(textOf(world.field, L"a", true), L"own, inheritable");
}

// behaviour: UP-06
TEST(userProperties, ofTypesThatNobodyConvertsAreNoTexts) {
    chain const world;
    world.top->setUserProperty(L"a", L"text", true);
    world.last->setUserProperty(L"a", genericValue(std::vector<string>{L"x"}), false);
    EXPECT_EQ(textOf(world.last, L"a", true), L"text");
    EXPECT_EQ(textOf(world.last, L"a", false), L"-");
}

// behaviour: UP-15
TEST(userProperties, thatAreEmptyAreFoundAsValuesButNotAsTexts) {
    chain const world;
    world.top->setUserProperty(L"a", L"text", true);
    world.root->setUserProperty(L"a", L"text", true);
    world.last->setUserProperty(L"a", genericValue(), false);
    world.field->setUserProperty(L"a", genericValue(), false);
    EXPECT_EQ(textOf(world.last, L"a", true), L"text");
    EXPECT_EQ(textOf(world.field, L"a", true), L"text");
    genericValue value(1);
    EXPECT_TRUE(world.last->getUserProperty(L"a", value, true));
    EXPECT_TRUE(value.isEmpty());
    value = genericValue(1);
    EXPECT_TRUE(world.field->getUserProperty(L"a", value, false));
    EXPECT_TRUE(value.isEmpty());
}

// behaviour: UP-15
TEST(userProperties, thatAreEmptyPointersAreFoundAsObjects) {
    chain const world;
    world.top->setUserProperty(L"a", makeNote(), true);
    world.last->setUserProperty(L"a", refPtr<refObj>(), false);
    refPtr<refObj> value = makeNote();
    EXPECT_TRUE(world.last->getUserProperty(L"a", value, true));
    EXPECT_EQ(value, nullptr);
    const_refPtr<refObj> readOnly = makeNote();
    EXPECT_TRUE(world.last->getUserProperty(L"a", readOnly, true));
    EXPECT_EQ(readOnly, nullptr);
}

// behaviour: UP-15
TEST(userProperties, thatAreEmptyTextsAreFoundAsTexts) {
    chain const world;
    world.top->setUserProperty(L"a", L"text", true);
    world.last->setUserProperty(L"a", L"", false);
    EXPECT_EQ(textOf(world.last, L"a", true), L"");
}

// ---- what is handed out

// behaviour: UP-08
TEST(userProperties, handOutTheVeryObject) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    refPtr<refObj> const object(width);
    part->setUserProperty(L"field", object, false);
    EXPECT_EQ(width->refCount(), 4u);
    refPtr<refObj> found;
    EXPECT_TRUE(part->getUserProperty(L"field", found, false));
    EXPECT_EQ(found, object);
    EXPECT_EQ(width->refCount(), 5u);
    part->setUserProperty(L"field", L"something else", false);
    EXPECT_EQ(width->refCount(), 4u);
}

// behaviour: UP-08
TEST(userProperties, handOutCopiesOfValues) {
    ownClass const part(L"part");
    part->setUserProperty(L"a", L"red", false);
    genericValue copy;
    ASSERT_TRUE(part->getUserProperty(L"a", copy, false));
    EXPECT_TRUE(copy.assignText(L"blue"));
    EXPECT_EQ(textOf(part, L"a", false), L"red");
}

// behaviour: UP-08
TEST(userProperties, keepCopiesOfValues) {
    ownClass const part(L"part");
    genericValue given(string(L"red"));
    part->setUserProperty(L"a", given, false);
    EXPECT_TRUE(given.assignText(L"blue"));
    EXPECT_EQ(textOf(part, L"a", false), L"red");
}

// behaviour: UP-08
TEST(userProperties, mayReferToAValueOfTheHosts) {
    ownClass const part(L"part");
    int owned = 1;
    part->setUserProperty(L"a", genericValue::byReference(owned), false);
    owned = 2;
    EXPECT_EQ(textOf(part, L"a", false), L"2");
}

// behaviour: UP-12
TEST(userProperties, ofReadOnlyOwnersGiveReadOnlyObjects) {
    ownClass const part(L"part");
    auto const object = makeNote();
    auto const width = addField(part, L"width");
    part->setUserProperty(L"a", object, false);
    width->setUserProperty(L"a", object, false);
    const_refPtr<classInfo> const readOnlyClass = part;
    const_refPtr<fieldInfo> const readOnlyField = width;
    const_refPtr<refObj> found;
    EXPECT_TRUE(readOnlyClass->getUserProperty(L"a", found, false));
    EXPECT_EQ(found, object);
    found = nullptr;
    EXPECT_TRUE(readOnlyField->getUserProperty(L"a", found, false));
    EXPECT_EQ(found, object);
    string text;
    EXPECT_FALSE(readOnlyClass->getUserProperty(L"a", text, true));
    genericValue value;
    EXPECT_TRUE(readOnlyField->getUserProperty(L"a", value, false));
}

template <class Owner, class Value>
concept readsFromConst = requires(Owner const& owner, Value& value) {
    owner.getUserProperty(string(), value, true);
};

// behaviour: UP-12
TEST(userProperties, ofReadOnlyOwnersGiveNoChangeableObjects) {
    static_assert(!readsFromConst<classInfo, refPtr<refObj>> && !readsFromConst<fieldInfo, refPtr<refObj>>);
    static_assert(readsFromConst<classInfo, const_refPtr<refObj>> && readsFromConst<fieldInfo, const_refPtr<refObj>>);
    static_assert(readsFromConst<classInfo, string> && readsFromConst<fieldInfo, string>);
    static_assert(readsFromConst<classInfo, genericValue> && readsFromConst<fieldInfo, genericValue>);
}

// ---- listing

template <class Owner>
void expectListed(Owner const& owner) {
    EXPECT_EQ(propertiesOf(owner, false), listed());
    EXPECT_EQ(propertiesOf(owner, true), listed());
    owner->setUserProperty(L"a", L"1", false);
    owner->setUserProperty(L"B", genericValue(2), false);
    owner->setUserProperty(L"b", L"3", true);
    owner->setUserProperty(L"b", L"4", true);
    EXPECT_EQ(propertiesOf(owner, false), (listed{{L"a", L"1"}, {L"B", L"2"}}));
    EXPECT_EQ(propertiesOf(owner, true), (listed{{L"b", L"4"}}));
}

// behaviour: UP-09
TEST(userProperties, ofAClassAreListedByKind) {
    ownClass const part(L"part");
    expectListed(part);
}

// behaviour: UP-09
TEST(userProperties, ofAFieldAreListedByKind) {
    ownClass const part(L"part");
    expectListed(addField(part, L"width"));
}

// behaviour: UP-09
TEST(userProperties, thatAreInheritedAreNotListed) {
    chain const world;
    world.top->setUserProperty(L"a", L"1", true);
    world.root->setUserProperty(L"a", L"1", true);
    for (bool const inheritable : {false, true}) {
        EXPECT_EQ(propertiesOf(world.last, inheritable), listed());
        EXPECT_EQ(propertiesOf(world.field, inheritable), listed());
    }
}

template <class Owner>
void expectWalkedUntilFalse(Owner const& owner) {
    int visits = 0;
    auto const refuse = [&](scString const&, genericValue const&) { return ++visits == 0; };
    EXPECT_TRUE(owner->forEachUserProperty(true, refuse, true));
    EXPECT_TRUE(owner->forEachUserProperty(true, {}, true));
    owner->setUserProperty(L"a", L"1", true);
    owner->setUserProperty(L"b", L"2", true);
    EXPECT_FALSE(owner->forEachUserProperty(true, refuse, true));
    EXPECT_EQ(visits, 1);
    EXPECT_TRUE(owner->forEachUserProperty(true, refuse, false));
    EXPECT_EQ(visits, 3);
    EXPECT_TRUE(owner->forEachUserProperty(false, refuse, true));
    EXPECT_EQ(visits, 3);
    EXPECT_THROW(owner->forEachUserProperty(true, {}, true), std::bad_function_call);
}

// behaviour: UP-09
TEST(userProperties, ofAClassAreWalkedUntilFalseOnlyWhenAsked) {
    ownClass const part(L"part");
    expectWalkedUntilFalse(part);
}

// behaviour: UP-09
TEST(userProperties, ofAFieldAreWalkedUntilFalseOnlyWhenAsked) {
    ownClass const part(L"part");
    expectWalkedUntilFalse(addField(part, L"width"));
}

// behaviour: UP-09
TEST(userProperties, maySetInAWalkThatDoesNotVisitThem) {
    ownClass const part(L"part");
    part->setUserProperty(L"a", L"1", false);
    int visits = 0;
    part->forEachUserProperty(
        false,
        [&](scString const&, genericValue const&) {
            part->setUserProperty(string::sformat(L"new %d", visits), L"2", false);
            return ++visits > 0;
        },
        true);
    EXPECT_EQ(visits, 1);
    EXPECT_EQ(propertiesOf(part, false).size(), 2u);
}

// ---- copies of fields

// behaviour: UP-10
TEST(userProperties, goAlongWhenAFieldIsCopied) {
    ownClass const part(L"part");
    ownClass const other(L"other");
    auto const width = addField(part, L"width");
    auto const object = makeNote();
    width->setUserProperty(L"a", L"private", false);
    width->setUserProperty(L"a", L"inheritable", true);
    width->setUserProperty(L"object", object, true);
    auto const copy = other->copyFieldInfoFrom(width, L"p_");
    EXPECT_EQ(propertiesOf(copy, false), (listed{{L"a", L"private"}}));
    EXPECT_EQ(propertiesOf(copy, true), (listed{{L"a", L"inheritable"}, {L"object", L"?"}}));
    EXPECT_EQ(objectOf(copy, L"object", false), object);
    copy->setUserProperty(L"a", L"changed", false);
    width->setUserProperty(L"b", L"new", false);
    EXPECT_EQ(textOf(width, L"a", true), L"private");
    EXPECT_EQ(textOf(copy, L"b", true), L"-");
}

// behaviour: UP-10
TEST(userProperties, goAlongWhenAllFieldsAreCopied) {
    ownClass const part(L"part");
    ownClass const other(L"other");
    addField(part, L"width")->setUserProperty(L"a", L"w", false);
    addField(part, L"height")->setUserProperty(L"a", L"h", true);
    part->setUserProperty(L"a", L"the class's", true);
    other->copyInfosFrom(part, nullptr);
    EXPECT_EQ(textOf(other->fieldInfo(L"width", false, false), L"a", false), L"w");
    EXPECT_EQ(textOf(other->fieldInfo(L"height", false, false), L"a", true), L"h");
    EXPECT_EQ(propertiesOf(other, true), listed());
}

// behaviour: UP-10
TEST(userProperties, ofTheRootDoNotGoAlongWhenAStandingFieldIsCopied) {
    chain const world;
    ownClass const other(L"other");
    world.root->setUserProperty(L"a", L"the root's", true);
    world.between->setUserProperty(L"b", L"its own", true);
    auto const copy = other->copyFieldInfoFrom(world.between, nullptr);
    EXPECT_EQ(propertiesOf(copy, true), (listed{{L"b", L"its own"}}));
    EXPECT_EQ(textOf(copy, L"a", true), L"-");
}

// behaviour: UP-10
TEST(userProperties, startEmptyInAStandingField) {
    chain const world;
    world.root->setUserProperty(L"a", L"1", false);
    world.root->setUserProperty(L"a", L"2", true);
    ownClass const next(L"next");
    next->addBaseClass(world.top);
    auto const made = next->createFieldInfo(world.top.pointer(), L"width");
    EXPECT_EQ(propertiesOf(made, false), listed());
    EXPECT_EQ(textOf(made, L"a", true), L"2");
}

} // namespace
} // namespace zov::metamodel
