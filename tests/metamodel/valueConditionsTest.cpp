// The condition that a field's values must satisfy: a clone of the host's, which the field keeps.
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

#include "fieldChain.h"

namespace zov::metamodel {
namespace {

using conditions::condition;
using tests::addField;
using tests::events;
using tests::fieldChain;
using tests::ownClass;
using zov::tests::eventLog;

// A condition of a host's that counts its instances.
class atLeast : public condition {
public:
    static inline int alive = 0;

    explicit atLeast(int least) : mLeast(least) { ++alive; }
    atLeast(atLeast const& other) : condition(other), mLeast(other.mLeast) { ++alive; }
    atLeast& operator=(atLeast const&) = delete;
    ~atLeast() override { --alive; }

    condition* clone() const override { return new atLeast(*this); }

    int least() const { return mLeast; }

private:
    int mLeast;
};

// A condition that cannot be copied.
class notCloned : public condition {
public:
    condition* clone() const override { throw std::runtime_error("no copy"); }
};

// The bound of the field's condition; 0 without one.
int leastOf(refPtr<fieldInfo> const& field) {
    condition const* const kept = field->valueCondition();
    return kept ? dynamic_cast<atLeast const&>(*kept).least() : 0;
}

class valueConditions : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(atLeast::alive, 0); }
    void TearDown() override { EXPECT_EQ(atLeast::alive, 0); }
};

// behaviour: FE-07
TEST_F(valueConditions, areNoneAtFirst) {
    fieldChain const chain;
    EXPECT_EQ(chain.root->valueCondition(), nullptr);
    EXPECT_EQ(chain.field->valueCondition(), nullptr);
}

// behaviour: FE-07
TEST_F(valueConditions, areKeptAsAClone) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width");
    atLeast const given(5);
    eventLog log;
    EXPECT_TRUE(field->setValueCondition(&given));
    EXPECT_EQ(atLeast::alive, 2);
    EXPECT_NE(field->valueCondition(), &given);
    EXPECT_EQ(leastOf(field), 5);
    EXPECT_EQ(field->valueCondition(), field->valueCondition());
    EXPECT_EQ(log.take(), events());
}

// behaviour: FE-07
TEST_F(valueConditions, outliveTheHostsOwn) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width");
    {
        atLeast const given(5);
        field->setValueCondition(&given);
    }
    EXPECT_EQ(atLeast::alive, 1);
    EXPECT_EQ(leastOf(field), 5);
}

// behaviour: FE-08
TEST_F(valueConditions, endWhenTheyAreReplaced) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width");
    atLeast const first(5);
    atLeast const second(6);
    field->setValueCondition(&first);
    EXPECT_TRUE(field->setValueCondition(&second));
    EXPECT_EQ(leastOf(field), 6);
    EXPECT_EQ(atLeast::alive, 3);
}

// behaviour: FE-08
TEST_F(valueConditions, endWhenTheyAreTakenAway) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width");
    atLeast const given(5);
    field->setValueCondition(&given);
    EXPECT_TRUE(field->setValueCondition(nullptr));
    EXPECT_EQ(field->valueCondition(), nullptr);
    EXPECT_EQ(atLeast::alive, 1);
    EXPECT_TRUE(field->setValueCondition(nullptr));
}

// behaviour: FE-08
TEST_F(valueConditions, endWithTheField) {
    refPtr<fieldInfo> held;
    {
        ownClass const part(L"part");
        held = addField(part, L"width");
        atLeast const given(5);
        held->setValueCondition(&given);
    }
    EXPECT_EQ(atLeast::alive, 1);
    EXPECT_EQ(leastOf(held), 5);
    held.reset();
    EXPECT_EQ(atLeast::alive, 0);
}

// behaviour: FE-08
TEST_F(valueConditions, mayBeReplacedByThemselves) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width");
    atLeast const given(5);
    field->setValueCondition(&given);
    EXPECT_TRUE(field->setValueCondition(field->valueCondition()));
    EXPECT_EQ(leastOf(field), 5);
    EXPECT_EQ(atLeast::alive, 2);
}

// behaviour: FE-09
TEST_F(valueConditions, areThoseOfTheNearestFieldThatHasOne) {
    fieldChain const chain;
    atLeast const low(1);
    atLeast const high(9);
    chain.root->setValueCondition(&low);
    EXPECT_EQ(chain.field->valueCondition(), chain.root->valueCondition());
    EXPECT_EQ(leastOf(chain.field), 1);
    chain.middle->setValueCondition(&high);
    EXPECT_EQ(leastOf(chain.field), 9);
    EXPECT_EQ(leastOf(chain.root), 1);
    chain.field->setValueCondition(&low);
    EXPECT_NE(chain.field->valueCondition(), chain.root->valueCondition());
}

// behaviour: FE-09
TEST_F(valueConditions, fallBackToTheBaseFieldWhenTheyAreTakenAway) {
    fieldChain const chain;
    atLeast const low(1);
    atLeast const high(9);
    chain.root->setValueCondition(&low);
    chain.field->setValueCondition(&high);
    EXPECT_TRUE(chain.field->setValueCondition(nullptr));
    EXPECT_EQ(leastOf(chain.field), 1);
    chain.root->setValueCondition(nullptr);
    EXPECT_EQ(chain.field->valueCondition(), nullptr);
}

// behaviour: FE-08
TEST_F(valueConditions, stayAsTheyAreWhenTheNewOneCannotBeCloned) {
    ownClass const part(L"part");
    auto const field = addField(part, L"width");
    atLeast const given(5);
    field->setValueCondition(&given);
    EXPECT_THROW(field->setValueCondition(std::make_unique<notCloned>().get()), std::runtime_error);
    EXPECT_EQ(leastOf(field), 5);
}

// behaviour: FE-08, CF-16
TEST_F(valueConditions, goWithACopyOfTheField) {
    ownClass const part(L"part");
    ownClass const other(L"other");
    auto const field = addField(part, L"width");
    {
        atLeast const given(5);
        field->setValueCondition(&given);
    }
    auto const copy = other->copyFieldInfoFrom(field, nullptr);
    EXPECT_EQ(leastOf(copy), 5);
    field->setValueCondition(nullptr);
    EXPECT_EQ(leastOf(copy), 5);
    EXPECT_EQ(atLeast::alive, 1);
}

} // namespace
} // namespace zov::metamodel
