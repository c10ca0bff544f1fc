// How the objects of a model are laid out and counted, as far as hosts rely on it.
#include "zovMetamodel.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <type_traits>

#include "modelFixture.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::ownClass;

template <class Object>
constexpr bool isForLibraryOnly =
    !std::is_copy_constructible_v<Object> && !std::is_copy_assignable_v<Object> &&
    !std::is_default_constructible_v<Object> && !std::is_destructible_v<Object> && std::is_final_v<Object>;

// behaviour: CC-14
TEST(sizesAndSlots, keepMakingCopyingAndEndingObjectsFromHosts) {
    static_assert(isForLibraryOnly<modelInfo> && isForLibraryOnly<classInfo>);
    static_assert(isForLibraryOnly<fieldInfo> && isForLibraryOnly<idInfo>);
    static_assert(!std::is_constructible_v<classInfo, string, bool>);
    static_assert(!std::is_constructible_v<modelInfo, bool>);
    static_assert(!std::is_constructible_v<idInfo, std::vector<refPtr<fieldInfo>>>);
}

template <class Object>
constexpr bool pointersLeadTheRightWay =
    sizeof(refPtr<Object>) == sizeof(void*) && sizeof(const_refPtr<Object>) == sizeof(void*) &&
    std::is_nothrow_move_constructible_v<refPtr<Object>>&& std::is_convertible_v<refPtr<Object>,
                                                                                 const_refPtr<Object>>&& std::
        is_convertible_v<refPtr<Object>, refPtr<refObj>>&& std::is_convertible_v<refPtr<Object>, refPtr<iRefObj>> &&
    !std::is_convertible_v<const_refPtr<Object>, refPtr<Object>> &&
    !std::is_convertible_v<refPtr<refObj>, refPtr<Object>>;

// behaviour: CC-13
TEST(sizesAndSlots, letPointersLeadToBasesAndConstButNotBack) {
    static_assert(pointersLeadTheRightWay<modelInfo> && pointersLeadTheRightWay<classInfo>);
    static_assert(pointersLeadTheRightWay<fieldInfo> && pointersLeadTheRightWay<idInfo>);
    static_assert(sizeof(scString) == sizeof(void*));
    static_assert(!std::is_convertible_v<refPtr<classInfo>, refPtr<fieldInfo>>);
}

// The size of an object that has the two bases and `Data` besides.
template <class Data>
struct laidOut : iRefObj, refObj {
    Data data;
};

// behaviour: CC-13
TEST(sizesAndSlots, holdNothingBesideThePointersToTheirData) {
    static_assert(sizeof(classInfo) == sizeof(laidOut<void* [2]>));
    static_assert(sizeof(fieldInfo) == sizeof(laidOut<void*>));
    static_assert(sizeof(idInfo) == sizeof(laidOut<std::vector<void*>>));
}

// Both bases lead to one object and one count.
template <class Object>
void expectOneCount(refPtr<Object> const& object) {
    auto* const first = static_cast<iRefObj*>(object.get());
    auto* const second = static_cast<refObj*>(object.get());
    EXPECT_EQ(static_cast<void*>(first), static_cast<void*>(object.get()));
    EXPECT_NE(static_cast<void*>(second), static_cast<void*>(object.get()));
    EXPECT_EQ(static_cast<iRefCount*>(first)->refCount(), object->refCount());
    auto const count = object->refCount();
    EXPECT_EQ(first->addRef(), count + 1);
    EXPECT_EQ(second->addRef(), count + 2);
    EXPECT_EQ(object->addRef(), count + 3);
    EXPECT_EQ(first->refCount(), count + 3);
    EXPECT_EQ(object->release(), count + 2);
    EXPECT_EQ(first->release(), count + 1);
    EXPECT_EQ(second->release(), count);
}

// behaviour: CC-13
TEST(sizesAndSlots, countThroughBothBasesAlike) {
    tests::ownModel const model;
    ownClass const part(L"part");
    auto const key = addField(part, L"key");
    key->setSemantic(eSemPrimkey, genericSet(), L"");
    expectOneCount(model.pointer());
    expectOneCount(part.pointer());
    expectOneCount(key);
    expectOneCount(part->idInfo());
}

// behaviour: CC-13
TEST(sizesAndSlots, leadBackFromTheCountedBaseToTheClass) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    refPtr<refObj> const any = part.pointer();
    EXPECT_EQ(refPtrCast<classInfo>(any), part.pointer());
    EXPECT_EQ(refPtrCast<fieldInfo>(any), nullptr);
    EXPECT_EQ(refPtrCast<modelInfo>(any), nullptr);
    EXPECT_EQ(refPtrCast<fieldInfo>(refPtr<refObj>(width)), width);
    EXPECT_EQ(refPtrCast<classInfo>(refPtr<refObj>()), nullptr);
}

#if !defined(_MSC_VER)
// The slot of a virtual member in its table, as the common C++ ABI writes it into a pointer to the member.
template <class Member>
std::size_t slotOf(Member member) {
    static_assert(sizeof(Member) == 2 * sizeof(std::size_t));
    std::size_t words[2];
    std::memcpy(words, &member, sizeof words);
    return (words[0] - 1) / sizeof(void*);
}

struct destroyAccess : refObj {
    static std::size_t slot() { return slotOf(&destroyAccess::destroy); }
};

// behaviour: CC-13
TEST(sizesAndSlots, haveTheirVirtualMembersInFixedSlots) {
    EXPECT_EQ(slotOf(&iRefObj::refCount), 0u);
    EXPECT_EQ(slotOf(&iRefObj::addRef), 1u);
    EXPECT_EQ(slotOf(&iRefObj::release), 2u);
    EXPECT_EQ(slotOf(&refObj::addRef), 0u);
    EXPECT_EQ(slotOf(&refObj::release), 1u);
    EXPECT_EQ(destroyAccess::slot(), 2u);
}
#endif

} // namespace
} // namespace zov::metamodel
