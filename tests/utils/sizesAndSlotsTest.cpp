// What libraries built apart agree on: sizes, the order of fields, the order of virtual functions.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <vector>

#include "zovGenericSet.h"
#include "zovGenericValue.h"
#include "zovLog.h"
#include "zovRefPtr.h"
#include "zovScString.h"
#include "zovSharedPtr.h"

namespace zov::tests {
namespace {

class part : public refObj {
public:
    void destroy() override { delete this; }
    virtual void firstOfItsOwn() {}
};

class iPart : public iRefObj {
public:
    virtual void firstOfItsOwn() = 0;

protected:
    ~iPart() = default;
};

// Derives as the model classes do: the interface first, the count second.
class model : public iRefObj, public refObj {
public:
    std::uint32_t refCount() const override { return currentCount(); }
    std::uint32_t addRef() override { return refObj::addRef(); }
    std::uint32_t release() override { return refObj::release(); }

private:
    void destroy() override { delete this; }
};

constexpr std::size_t pointer = sizeof(void*);

// behaviour: RP-01
static_assert(sizeof(refPtr<part>) == pointer);
static_assert(sizeof(const_refPtr<part>) == pointer);
// behaviour: RP-02
static_assert(sizeof(iRefCount) == pointer);
static_assert(sizeof(iRefObj) == pointer);
static_assert(sizeof(refObj) == 2 * pointer);
static_assert(sizeof(model) == 3 * pointer);
// behaviour: SP-01
static_assert(sizeof(sharedPtr<int>) == 2 * pointer);
static_assert(sizeof(const_sharedPtr<int>) == 3 * pointer);
static_assert(std::is_base_of_v<iRefCount, const_sharedPtr<int>>);
static_assert(!std::is_polymorphic_v<sharedPtr<int>>);
// behaviour: SC-01
static_assert(sizeof(scString) == pointer);
static_assert(std::is_trivially_copyable_v<scString>);
// behaviour: GV-01
static_assert(sizeof(genericValue) == 2 * pointer);
static_assert(sizeof(genericValue::holder<int>) == 2 * pointer);
static_assert(sizeof(genericValue::ptrholder<int>) == 3 * pointer);
static_assert(sizeof(genericValue::constptrholder<int>) == 3 * pointer);
static_assert(sizeof(genericValue::valueholder<int>) == 4 * pointer);
// behaviour: GS-01
static_assert(sizeof(genericSet) == pointer);

// The i-th word that an object consists of.
template <class Object>
void const* word(Object const& object, std::size_t index) {
    void const* result = nullptr;
    std::memcpy(&result, reinterpret_cast<unsigned char const*>(&object) + index * pointer, pointer);
    return result;
}

// The slot of a virtual function in its class's table, by what both compilers make of a pointer to it: one more than
// its distance from the table's start. 1000 for a function that is not virtual.
template <class Member>
std::size_t slotOf(Member member) {
    std::uintptr_t distance = 0;
    std::memcpy(&distance, &member, sizeof distance);
    return distance % 2 == 1 ? (distance - 1) / pointer : 1000;
}

// behaviour: RP-01
TEST(refPtrLayout, isThePointerToTheObject) {
    refPtr<part> const one(new part);
    const_refPtr<part> const other(one);
    EXPECT_EQ(word(one, 0), one.get());
    EXPECT_EQ(word(other, 0), one.get());
    EXPECT_EQ(word(refPtr<part>(), 0), nullptr);
}

// behaviour: SP-01
TEST(sharedPtrLayout, isTheObjectAndThenTheCounter) {
    int* const object = new int(7);
    sharedPtr<int> const one(object);
    sharedPtr<int> const other(one);
    EXPECT_EQ(word(one, 0), object);
    EXPECT_EQ(*static_cast<std::uint32_t const*>(word(one, 1)), 2U);
    EXPECT_EQ(word(one, 1), word(other, 1));
    EXPECT_EQ(word(sharedPtr<int>(), 0), nullptr);
    EXPECT_EQ(word(sharedPtr<int>(), 1), nullptr);
}

// behaviour: SP-01
TEST(constSharedPtrLayout, isTheTableThenTheObjectThenTheCounter) {
    int* const object = new int(7);
    const_sharedPtr<int> const one(object);
    EXPECT_NE(word(one, 0), nullptr);
    EXPECT_EQ(word(one, 1), object);
    EXPECT_EQ(*static_cast<std::uint32_t const*>(word(one, 2)), 1U);
    EXPECT_EQ(word(const_sharedPtr<int>(), 1), nullptr);
    EXPECT_EQ(word(const_sharedPtr<int>(), 2), nullptr);
}

// behaviour: GV-01
TEST(genericValueLayout, isTheHolderAndThenItsCounter) {
    genericValue const value(42);
    EXPECT_EQ(word(value, 0), value.heldBy());
    EXPECT_EQ(*static_cast<std::uint32_t const*>(word(value, 1)), 1U);
    EXPECT_EQ(word(genericValue(), 0), nullptr);
    EXPECT_EQ(word(genericValue(), 1), nullptr);
}

// behaviour: RP-02
TEST(refObjLayout, keepsTheCountRightBehindTheTable) {
    refPtr<part> const one(new part);
    refPtr<part> const other(one);
    std::uint32_t count = 0;
    std::memcpy(&count, reinterpret_cast<unsigned char const*>(one.get()) + pointer, sizeof count);
    EXPECT_EQ(count, 2U);
}

// behaviour: RP-03
TEST(virtualSlots, ofTheCountingInterfacesAreInOrder) {
    EXPECT_EQ(slotOf(&iRefCount::refCount), 0U);
    EXPECT_EQ(slotOf(&iRefObj::addRef), 1U);
    EXPECT_EQ(slotOf(&iRefObj::release), 2U);
    EXPECT_EQ(slotOf(&iPart::firstOfItsOwn), 3U);
}

// behaviour: RP-03
TEST(virtualSlots, ofTheCountedBaseAreInOrder) {
    EXPECT_EQ(slotOf(&refObj::addRef), 0U);
    EXPECT_EQ(slotOf(&refObj::release), 1U);
    EXPECT_EQ(slotOf(&part::destroy), 2U);
    // The destructor takes the two that are left, one for each of its forms.
    EXPECT_EQ(slotOf(&part::firstOfItsOwn), 5U);
}

// behaviour: RP-03
TEST(virtualSlots, ofAnObjectOfBothBasesBelongToTheInterfaceFirst) {
    refPtr<model> const object(new model);
    EXPECT_EQ(static_cast<void*>(static_cast<iRefObj*>(object.get())), static_cast<void*>(object.get()));
    EXPECT_NE(static_cast<void*>(static_cast<refObj*>(object.get())), static_cast<void*>(object.get()));
}

// behaviour: GV-02
TEST(virtualSlots, ofAHolderAreInOrder) {
    using base = genericValue::holderbase;
    using holder = genericValue::holder<int>;
    // The destructor's two forms come first.
    EXPECT_EQ(slotOf(&base::clone), 2U);
    EXPECT_EQ(slotOf(&base::assignTo), 3U);
    EXPECT_EQ(slotOf(&base::assignFrom), 4U);
    EXPECT_EQ(slotOf(&base::type), 5U);
    EXPECT_EQ(slotOf(static_cast<void* (base::*)() noexcept>(&base::valuePointer)), 6U);
    EXPECT_EQ(slotOf(static_cast<void const* (base::*)() const noexcept>(&base::valuePointer)), 7U);
    EXPECT_EQ(slotOf(&base::isPointer), 8U);
    EXPECT_EQ(slotOf(static_cast<int& (holder::*)()>(&holder::value)), 9U);
    EXPECT_EQ(slotOf(static_cast<int const& (holder::*)() const>(&holder::value)), 10U);
    EXPECT_EQ(slotOf(&holder::setValue), 11U);
}

} // namespace
} // namespace zov::tests
