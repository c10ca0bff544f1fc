// Code as hosts write it, with everything named by using-declarations: that it compiles is most of the test.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <type_traits>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "zovAssert.h"
#include "zovMetamodel.h"

namespace {

using zov::const_refPtr;
using zov::const_sharedPtr;
using zov::genericSet;
using zov::genericValue;
using zov::iRefObj;
using zov::refObj;
using zov::refPtr;
using zov::refPtrCast;
using zov::scString;
using zov::sharedPtr;
using zov::string;
using zov::metamodel::classInfo;
using zov::metamodel::eDouble;
using zov::metamodel::eInt;
using zov::metamodel::eSemPrimkey;
using zov::metamodel::eString;
using zov::metamodel::fieldInfo;
using zov::metamodel::idInfo;
using zov::metamodel::modelInfo;

// ---- what converts and what does not

template <class From, class To>
constexpr bool converts = std::is_convertible_v<From, To>;

// Const comes in and does not go out; bases are reached and derived classes are not.
static_assert(converts<refPtr<classInfo>, const_refPtr<classInfo>>);
static_assert(!converts<const_refPtr<classInfo>, refPtr<classInfo>>);
static_assert(!std::is_constructible_v<refPtr<classInfo>, const_refPtr<classInfo>>);
static_assert(!std::is_assignable_v<refPtr<classInfo>&, const_refPtr<classInfo>>);
static_assert(std::is_assignable_v<const_refPtr<classInfo>&, refPtr<classInfo>>);
static_assert(converts<refPtr<classInfo>, refPtr<refObj>> && converts<refPtr<classInfo>, refPtr<iRefObj>>);
static_assert(converts<refPtr<fieldInfo>, const_refPtr<refObj>>);
static_assert(converts<const_refPtr<fieldInfo>, const_refPtr<refObj>>);
static_assert(!converts<refPtr<refObj>, refPtr<classInfo>> && !converts<refPtr<classInfo>, refPtr<fieldInfo>>);
static_assert(!std::is_constructible_v<refPtr<classInfo>, refPtr<refObj>>);
static_assert(!std::is_base_of_v<const_refPtr<classInfo>, refPtr<classInfo>>);

// Pointers are made from raw pointers and null, and test as bool only where a condition stands.
static_assert(converts<classInfo*, refPtr<classInfo>> && converts<std::nullptr_t, refPtr<classInfo>>);
static_assert(converts<classInfo const*, const_refPtr<classInfo>>);
static_assert(!converts<classInfo const*, refPtr<classInfo>>);
static_assert(!converts<refPtr<classInfo>, bool> && std::is_constructible_v<bool, refPtr<classInfo>>);
static_assert(!converts<string*, sharedPtr<string>>);

// Moves never count and never throw, so that containers and threads take pointers.
static_assert(std::is_nothrow_move_constructible_v<refPtr<classInfo>>);
static_assert(std::is_nothrow_move_assignable_v<refPtr<classInfo>>);
static_assert(std::is_nothrow_destructible_v<refPtr<classInfo>>);
static_assert(std::is_nothrow_move_constructible_v<const_refPtr<classInfo>>);
static_assert(sizeof(refPtr<classInfo>) == sizeof(void*) && sizeof(const_refPtr<classInfo>) == sizeof(void*));
static_assert(sizeof(scString) == sizeof(void*) && std::is_trivially_copyable_v<scString>);
static_assert(sizeof(sharedPtr<string>) == 2 * sizeof(void*) && sizeof(genericValue) == 2 * sizeof(void*));
static_assert(sizeof(const_sharedPtr<string>) == 3 * sizeof(void*));

// Values and names are made where a host says so; texts are made of what a host has.
static_assert(!converts<int, genericValue> && std::is_constructible_v<genericValue, int>);
static_assert(!converts<wchar_t const*, scString> && !converts<string, genericValue>);
static_assert(converts<wchar_t const*, string> && converts<std::wstring, string>);
static_assert(!std::is_constructible_v<string, std::nullptr_t>);

// The model classes are neither copied nor made nor deleted by hosts, and nobody derives from them.
template <class Model>
constexpr bool isHandedOutOnly =
    !std::is_copy_constructible_v<Model> && !std::is_copy_assignable_v<Model> &&
    !std::is_default_constructible_v<Model> && !std::is_destructible_v<Model> && std::is_final_v<Model> &&
    std::is_base_of_v<iRefObj, Model> && std::is_base_of_v<refObj, Model>;
static_assert(isHandedOutOnly<modelInfo> && isHandedOutOnly<classInfo>);
static_assert(isHandedOutOnly<fieldInfo> && isHandedOutOnly<idInfo>);

// Enumerations take part in sets of bits, as unsigned numbers of 32 bits.
static_assert(std::is_same_v<std::underlying_type_t<zov::metamodel::eFieldType>, std::uint32_t>);
static_assert(std::is_same_v<std::underlying_type_t<zov::metamodel::eFieldSemantics>, std::uint32_t>);
static_assert((eInt | zov::metamodel::eCustom) == 0x80000008u);

// What a const model and a const class give is const.
template <class Of>
using classOf = decltype(std::declval<Of&>().classInfo(L"", false));
template <class Of>
using fieldOf = decltype(std::declval<Of&>().fieldInfo(L"", false));
template <class Of>
using ownFieldOf = decltype(std::declval<Of&>().fieldInfo(L"", false, false));
static_assert(std::is_same_v<classOf<modelInfo>, refPtr<classInfo>>);
static_assert(std::is_same_v<classOf<modelInfo const>, const_refPtr<classInfo>>);
static_assert(std::is_same_v<fieldOf<modelInfo>, refPtr<fieldInfo>>);
static_assert(std::is_same_v<fieldOf<modelInfo const>, const_refPtr<fieldInfo>>);
static_assert(std::is_same_v<ownFieldOf<classInfo>, refPtr<fieldInfo>>);
static_assert(std::is_same_v<ownFieldOf<classInfo const>, const_refPtr<fieldInfo>>);

// ---- a workshop, as a host would have it

class hostCode : public testing::Test {
protected:
    hostCode() {
        mItem->createFieldInfo(L"number", eInt, {}, L"");
        mPart->addBaseClass(mItem);
        mPart->createFieldInfo(L"width", eDouble, {}, L"");
    }
    ~hostCode() override { mModel->tearDown(); }

    refPtr<modelInfo> mModel = modelInfo::createModelInfo(false);
    refPtr<classInfo> mItem = mModel->createClassInfo(L"Item");
    refPtr<classInfo> mPart = mModel->createClassInfo(L"Part");
};

// behaviour: HO-06
TEST_F(hostCode, temporariesBindWhereAReferenceIsTaken) {
    auto const supplier = mModel->createClassInfo(L"Supplier");
    EXPECT_TRUE(mPart->createFieldInfo(mModel->classInfo(L"Item", false), L"number"));
    EXPECT_FALSE(mItem->isBaseOf(mModel->classInfo(L"Part", false)));
    EXPECT_TRUE(mPart->isDerivedFrom(mModel->classInfo(L"Item", false)));
    EXPECT_TRUE(supplier->copyFieldInfoFrom(mModel->fieldInfo(L"Part.width", false), L"their"));
    EXPECT_TRUE(supplier->copyInfosFrom(mModel->classInfo(L"Item", false), nullptr));
    EXPECT_TRUE(supplier->fieldInfo(L"theirwidth", false, false));
    EXPECT_EQ(supplier->countFields(), 2u);
}

// behaviour: HO-06
TEST_F(hostCode, pointersThatConvertBindWhereAReferenceIsTaken) {
    auto const supplier = mModel->createClassInfo(L"Supplier");
    refPtr<classInfo> item = mItem;
    refPtr<classInfo> const constItem = mItem;
    const_refPtr<classInfo> readOnlyPart = mPart;
    refPtr<fieldInfo> width = mPart->fieldInfo(L"width", false, false);
    const_refPtr<fieldInfo> readOnlyWidth = width;

    EXPECT_TRUE(mPart->createFieldInfo(item, L"number"));
    EXPECT_TRUE(mPart->createFieldInfo(constItem, L"number"));
    EXPECT_FALSE(mItem->isBaseOf(readOnlyPart));
    EXPECT_FALSE(mItem->isBaseOf(mPart));
    EXPECT_TRUE(readOnlyPart->isDerivedFrom(item));
    EXPECT_TRUE(readOnlyPart->isDerivedFrom(mItem.get()));
    EXPECT_TRUE(supplier->copyFieldInfoFrom(width, L"a"));
    EXPECT_TRUE(supplier->copyFieldInfoFrom(readOnlyWidth, L"b"));
    EXPECT_TRUE(supplier->copyInfosFrom(readOnlyPart, L"c"));
    EXPECT_TRUE(supplier->copyInfosFrom(mPart, L"d"));
    mItem->addBaseClass(supplier.get());
    EXPECT_TRUE(mItem->isDerivedFrom(supplier));
}

// behaviour: HO-07
TEST_F(hostCode, acceptIsLeftOutOrIsAnythingThatCanBeCalled) {
    EXPECT_TRUE(mModel->createClassInfo(L"Order"));
    EXPECT_TRUE(mModel->getOrCreateClassInfo(L"Order"));
    EXPECT_TRUE(mModel->createClassInfo(L"Line", nullptr));

    int filled = 0;
    auto const fill = [&filled](refPtr<classInfo> const& added) {
        ++filled;
        return added->createFieldInfo(L"number", eInt, {}, L"") != nullptr;
    };
    EXPECT_TRUE(mModel->createClassInfo(L"Bill", fill));
    EXPECT_TRUE(mModel->getOrCreateClassInfo(L"Reminder", std::ref(fill)));
    EXPECT_EQ(filled, 2);
}

// behaviour: HO-08
TEST_F(hostCode, wideLiteralsAndStandardTextsAreTexts) {
    std::wstring const standard = L"Part.width";
    wchar_t const* const raw = L"Part";
    EXPECT_TRUE(mModel->fieldInfo(standard, false));
    EXPECT_TRUE(mModel->classInfo(raw, false));
    EXPECT_TRUE(mModel->fieldInfo(raw, L"width", false));
    EXPECT_TRUE(mModel->fieldInfo(std::wstring(L"Part") + L".width", false));
    EXPECT_TRUE(mModel->fieldInfo(mPart->scName().string() + L".width", false));
    EXPECT_TRUE(mModel->fieldInfo(string::fromUtf8("Part.width"), false));
    mPart->setLabel(L"A part");
    std::wstring const label = mPart->label();
    EXPECT_EQ(label, L"A part");
    EXPECT_EQ(mPart->label(), L"A part");
}

// behaviour: HO-09
TEST_F(hostCode, lambdasKeepWhatTheyCapture) {
    std::function<string()> widthLabel;
    {
        auto const width = mModel->fieldInfo(L"Part.width", false);
        width->setLabel(L"Width over everything");
        widthLabel = [width] { return width->label(); };
    }
    auto const copy = widthLabel;
    widthLabel = nullptr;
    EXPECT_EQ(copy(), L"Width over everything");
}

// behaviour: HO-09
TEST_F(hostCode, pointersLiveInContainers) {
    std::vector<refPtr<classInfo>> list{mPart, mItem};
    list.insert(list.begin(), mPart);
    list.erase(list.begin());
    EXPECT_EQ(std::find(list.begin(), list.end(), mItem), list.begin() + 1);

    std::map<scString, refPtr<classInfo>> byName{{mPart->scName(), mPart}};
    byName.emplace(mItem->scName(), mItem);
    EXPECT_EQ(byName.at(scString::createFrom(L"item")), mItem);

    std::unordered_map<refPtr<classInfo>, int> counts;
    ++counts[mPart];
    ++counts[mModel->classInfo(L"PART", false)];
    EXPECT_EQ(counts[mPart], 2);

    std::unordered_map<scString, const_refPtr<classInfo>> readOnly{{mPart->scName(), mPart}};
    EXPECT_EQ(readOnly.begin()->second, mPart);

    std::set<const_refPtr<classInfo>> seen{mPart, mItem, mPart};
    EXPECT_EQ(seen.size(), 2u);
    std::unordered_set<const_refPtr<fieldInfo>> fields{mPart->fieldInfo(L"width", false, false)};
    EXPECT_EQ(fields.count(mPart->fieldInfo(L"width", false, false)), 1u);
}

// behaviour: HO-09
TEST_F(hostCode, threadsTakePointersAlong) {
    string label;
    auto width = mModel->fieldInfo(L"Part.width", false);
    width->setUnit(L"mm");
    std::thread([&label, width = std::move(width)] { label = width->unit(); }).join();
    EXPECT_FALSE(width);
    EXPECT_EQ(label, L"mm");
}

// behaviour: HO-10
TEST_F(hostCode, modelClassesAreHeldAsObjectsAndCastBack) {
    std::vector<refPtr<refObj>> const held{mModel, mPart, mModel->fieldInfo(L"Part.width", false)};
    EXPECT_EQ(refPtrCast<modelInfo>(held[0]), mModel);
    EXPECT_EQ(refPtrCast<classInfo>(held[1]), mPart);
    EXPECT_EQ(refPtrCast<fieldInfo>(held[2])->scName().string(), L"width");
    EXPECT_FALSE(refPtrCast<classInfo>(held[0]));
    EXPECT_FALSE(refPtrCast<classInfo>(refPtr<refObj>()));
    const_refPtr<refObj> const readOnly = held[1];
    EXPECT_EQ(refPtrCast<classInfo>(readOnly), mPart);
    refPtr<iRefObj> const interface = mPart;
    EXPECT_EQ(interface->refCount(), mPart->refCount());
}

// behaviour: HO-10
TEST_F(hostCode, modelClassesAreHeldInValues) {
    genericValue const value(refPtr<refObj>{mPart});
    genericValue const copy = value;
    ASSERT_TRUE(copy.valuePtr<refPtr<refObj>>());
    EXPECT_EQ(refPtrCast<classInfo>(*copy.valuePtr<refPtr<refObj>>()), mPart);
    EXPECT_FALSE(copy.valuePtr<refPtr<classInfo>>());
}

// behaviour: HO-11
TEST_F(hostCode, aModelThatIsReadOnlyIsReadAllTheSame) {
    const_refPtr<modelInfo> const model = mModel;
    const_refPtr<classInfo> const part = model->classInfo(L"Part", false);
    ASSERT_TRUE(part);
    EXPECT_EQ(model->fieldInfo(L"Part.width", false)->type(), eDouble);
    EXPECT_EQ(model->fieldInfo(L"Part", L"number", true)->type(), eInt);
    EXPECT_EQ(part->fieldInfo(L"width", false, false)->typeString().string(), L"double");
    EXPECT_EQ(part->countFields(), 1u);
    EXPECT_FALSE(part->isAbstract());
    string text;
    EXPECT_TRUE(model->addProp(L"caseSensitiveNames", text));
    std::size_t seen = 0;
    model->forEachClassInfo([&seen](auto const& entry) { return entry.second && ++seen; }, true);
    EXPECT_EQ(seen, model->countClasses());
}

// behaviour: HO-12
TEST_F(hostCode, walksTakeAnythingThatCanBeCalled) {
    std::vector<scString> names;
    auto const byValue = [&names](refPtr<fieldInfo> field) {
        names.push_back(field->scName());
        return true;
    };
    auto const byReference = [&names](refPtr<fieldInfo> const& field) {
        names.push_back(field->scName());
        return true;
    };
    auto const readOnly = [&names](const_refPtr<fieldInfo> field) {
        names.push_back(field->scName());
        return true;
    };
    EXPECT_TRUE(mPart->forEachFieldInfo(byValue, true));
    EXPECT_TRUE(mPart->forEachFieldInfo(byReference, true));
    EXPECT_TRUE(mPart->forEachFieldInfo(readOnly, true));
    EXPECT_EQ(names, std::vector<scString>(3, scString::createFrom(L"width")));
    EXPECT_TRUE(mPart->forEachBaseClass([](classInfo::entry const& base) { return base.second != nullptr; }, true));
    EXPECT_TRUE(
        mModel->forEachAddProp([](scString const& key, genericValue const&) { return key != scString(); }, true));
}

// behaviour: HO-13
TEST_F(hostCode, pointersTestAndCompareAsPointersDo) {
    refPtr<classInfo> none;
    EXPECT_TRUE(none == nullptr && nullptr == none && !none);
    EXPECT_TRUE(mPart != nullptr && mPart && mPart != mItem);
    const_refPtr<classInfo> const readOnly = mPart;
    EXPECT_TRUE(readOnly == mPart && mPart == readOnly && mPart == readOnly.get());
    none = mPart;
    EXPECT_EQ(none, mPart);
    none = nullptr;
    EXPECT_FALSE(none);
    none = mItem.get();
    EXPECT_EQ(none, mItem);
    none.reset();
    EXPECT_EQ(none.get(), nullptr);
}

// behaviour: HO-14
TEST_F(hostCode, aRefusalIsCaughtAsABool) {
    bool caught = true;
    try {
        mModel->createClassInfo(L"PART");
    } catch (bool thrown) {
        caught = thrown;
    }
    EXPECT_FALSE(caught);
}

// behaviour: HO-15
TEST_F(hostCode, attributesAreWrittenAndReadWhereTheyAreUsed) {
    genericSet attribs;
    attribs.setValue(L"digits", 2, false);
    attribs.setValue(L"note", L"rounded", false);
    auto const weight = mPart->createFieldInfo(L"weight", eDouble, attribs, L"");
    int digits = 0;
    string note;
    EXPECT_TRUE(weight->typeAttribs().getValue(L"digits", digits));
    EXPECT_TRUE(weight->typeAttribs().getValue(L"note", note));
    EXPECT_EQ(digits, 2);
    EXPECT_EQ(note, L"rounded");
    weight->setSemantic(eSemPrimkey, {}, {});
    EXPECT_EQ(mPart->idInfo()->classInfo(), mPart);
    EXPECT_TRUE(mPart->idInfo()->isEqualTo(mPart->idInfo().get()));
}

// A class of the host's own, kept and let go by the library's pointers.
class drawing : public refObj {
public:
    explicit drawing(bool& ended) : mEnded(ended) {}

protected:
    void destroy() override { delete this; }
    ~drawing() override { mEnded = true; }

private:
    bool& mEnded;
};

// behaviour: HO-16
TEST_F(hostCode, classesOfTheHostsOwnAreCountedToo) {
    bool ended = false;
    refPtr<drawing> sheet = new drawing(ended);
    refPtr<refObj> object = sheet;
    auto const value = std::make_unique<genericValue>(object);
    sheet = nullptr;
    EXPECT_TRUE(refPtrCast<drawing>(object));
    object = nullptr;
    EXPECT_FALSE(ended);
    *value = genericValue();
    EXPECT_TRUE(ended);
}

} // namespace
