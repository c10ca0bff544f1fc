// The growing list at every size of its index, and without one: hosts see what it does at the largest ones only in
// models too large for a test.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <mutex>

#include "base/growingList.h"

namespace zov::metamodel::tests {
namespace {

// Found by the number, under a key that may be that of others as well.
template <listSearch How>
struct numberEntry {
    static constexpr auto search = How;

    std::uint64_t key() const noexcept { return mKey; }
    void retain() const noexcept {}
    void release() const noexcept {}

    std::uint64_t mNumber;
    std::uint64_t mKey;
};

template <class Entry>
class growingListInner : public testing::Test {
protected:
    static Entry numbered(std::uint64_t number) { return {number, scrambled(number)}; }

    void appendUpTo(std::uint64_t count) {
        heldMutex const held(mMutex);
        for (std::uint64_t number = mList.size(); number < count; ++number)
            mList.append(held, numbered(number));
    }

    // The entry that the list finds for the number among all of the same key, null when there is none.
    Entry const* find(Entry const& wanted) {
        readSection const reading;
        auto const isIt = [&wanted](Entry const& entry) { return entry.mNumber == wanted.mNumber; };
        return mList.find(reading, wanted.mKey, isIt);
    }
    Entry const* find(std::uint64_t number) { return find(numbered(number)); }

    std::recursive_mutex mMutex;
    growingList<Entry> mList;
};

using searchedLists = testing::Types<numberEntry<listSearch::byIndex>, numberEntry<listSearch::byTagsThenIndex>>;
TYPED_TEST_SUITE(growingListInner, searchedLists);

// behaviour: CF-01, MR-02
TYPED_TEST(growingListInner, findsTheFirstAndTheLastEntryAtEverySize) {
    EXPECT_EQ(this->find(0), nullptr);
    for (std::uint64_t count = 1; count <= 2000; ++count) {
        this->appendUpTo(count);
        ASSERT_NE(this->find(0), nullptr) << count;
        ASSERT_NE(this->find(count - 1), nullptr) << count;
        EXPECT_EQ(this->find(count - 1)->mNumber, count - 1);
        ASSERT_EQ(this->find(count), nullptr) << count;
    }
}

// Around 98,304 or 786,432 entries the index becomes too large for its size to be told with the block's address.
// behaviour: CF-01, MR-02
TYPED_TEST(growingListInner, findsEveryEntryOfManyThousands) {
    constexpr bool hasTags = TypeParam::search == listSearch::byTagsThenIndex;
    constexpr std::uint64_t largestNoted = hasTags ? 786'432 : 98'304;
    for (std::uint64_t const count : {largestNoted - 1, largestNoted, largestNoted + 1, 2 * largestNoted + 1}) {
        this->appendUpTo(count);
        std::uint64_t missed = 0;
        for (std::uint64_t number = 0; number < count; ++number) {
            auto const* const found = this->find(number);
            if (!found || found->mNumber != number) ++missed;
        }
        EXPECT_EQ(missed, 0U) << count;
        EXPECT_EQ(this->find(count), nullptr) << count;
        EXPECT_EQ(this->mList.size(), count);
    }
}

// behaviour: CF-01, MR-02
TYPED_TEST(growingListInner, findsEveryEntryOfAnyKeysAtEverySmallSize) {
    // Keys that differ in few bits, and keys that are all alike.
    for (std::uint64_t const step : {0ULL, 1ULL, 1ULL << 32, 1ULL << 47, 1ULL << 48, 1ULL << 55, 0x0101ULL << 48}) {
        heldMutex const held(this->mMutex);
        this->mList.clear(held);
        for (std::uint64_t count = 0; count < 60; ++count) {
            for (std::uint64_t number = 0; number < count; ++number) {
                auto const* const found = this->find(TypeParam{number, number * step});
                ASSERT_NE(found, nullptr) << step << ", " << number << " of " << count;
                EXPECT_EQ(found->mNumber, number);
            }
            EXPECT_EQ(this->find(TypeParam{count, count * step}), nullptr) << step << ", " << count;
            this->mList.append(held, {count, count * step});
        }
    }
}

// behaviour: CR-03
TYPED_TEST(growingListInner, findsTheFirstOfThoseThatAreAccepted) {
    heldMutex const held(this->mMutex);
    for (std::uint64_t number = 0; number < 60; ++number) {
        this->mList.append(held, {number, 7});
        readSection const reading;
        auto const isEven = [](TypeParam const& entry) { return entry.mNumber % 2 == 0; };
        auto const isLater = [](TypeParam const& entry) { return entry.mNumber >= 3; };
        ASSERT_NE(this->mList.find(reading, 7, isEven), nullptr);
        EXPECT_EQ(this->mList.find(reading, 7, isEven)->mNumber, 0U);
        auto const* const later = this->mList.find(reading, 7, isLater);
        ASSERT_EQ(later != nullptr, number >= 3);
        if (!later) continue;
        EXPECT_EQ(later->mNumber, 3U);
    }
}

// behaviour: CF-01, MR-02
TYPED_TEST(growingListInner, findsWhatIsStagedWhenItIsCommitted) {
    for (std::uint64_t const each : {1U, 3U, 30U}) {
        heldMutex const held(this->mMutex);
        this->mList.clear(held);
        for (std::uint64_t first = 0; first < 90; first += each) {
            this->mList.reserve(held, each);
            for (std::uint64_t number = first; number < first + each; ++number) {
                this->mList.stage(held, this->numbered(number));
                EXPECT_EQ(this->find(number), nullptr) << number;
            }
            this->mList.commit(held);
            for (std::uint64_t number = 0; number < first + each; ++number)
                EXPECT_NE(this->find(number), nullptr) << number;
        }
    }
}

// behaviour: CF-01
TYPED_TEST(growingListInner, findsManyThatComeAtOnceToAFew) {
    heldMutex const held(this->mMutex);
    for (std::uint64_t number = 0; number < 5; ++number)
        this->mList.append(held, this->numbered(number));
    this->mList.reserve(held, 30);
    for (std::uint64_t number = 5; number < 35; ++number)
        this->mList.stage(held, this->numbered(number));
    for (std::uint64_t number = 0; number < 35; ++number)
        EXPECT_EQ(this->find(number) != nullptr, number < 5) << number;
    this->mList.commit(held);
    for (std::uint64_t number = 0; number < 35; ++number)
        EXPECT_NE(this->find(number), nullptr) << number;
}

// behaviour: MR-07
TYPED_TEST(growingListInner, findsTheOthersAndWhatCameInPlaceOfOne) {
    for (std::uint64_t const reserved : {1U, 30U}) {
        heldMutex const held(this->mMutex);
        this->mList.clear(held);
        this->mList.reserve(held, reserved);
        for (std::uint64_t number = 0; number < 5; ++number)
            this->mList.append(held, this->numbered(number));
        this->mList.replace(held, 3, {100, scrambled(3)});
        for (std::uint64_t number = 0; number < 5; ++number)
            EXPECT_EQ(this->find(number) != nullptr, number != 3) << number;
        EXPECT_NE(this->find(TypeParam{100, scrambled(3)}), nullptr);
        EXPECT_EQ(this->mList.size(), 5U);
    }
}

// behaviour: CF-01
TYPED_TEST(growingListInner, isSearchedByItsWriterAsByReaders) {
    heldMutex const held(this->mMutex);
    auto const findsNow = [&](std::uint64_t number) {
        auto const isIt = [number](TypeParam const& entry) { return entry.mNumber == number; };
        return this->mList.find(held, scrambled(number), isIt) != nullptr;
    };
    for (std::uint64_t number = 0; number < 60; ++number) {
        this->mList.reserve(held, 1);
        this->mList.stage(held, this->numbered(number));
        EXPECT_FALSE(findsNow(number)) << number;
        this->mList.commit(held);
        EXPECT_TRUE(findsNow(number)) << number;
        EXPECT_TRUE(findsNow(0)) << number;
    }
}

// behaviour: GT-11
TYPED_TEST(growingListInner, findsNothingOfWhatWasThereBeforeItWasCleared) {
    for (std::uint64_t const before : {5U, 24U, 25U, 200U}) {
        heldMutex const held(this->mMutex);
        for (std::uint64_t number = 0; number < before; ++number)
            this->mList.append(held, this->numbered(number));
        this->mList.clear(held);
        EXPECT_EQ(this->find(0), nullptr);
        for (std::uint64_t number = 1000; number < 1010; ++number)
            this->mList.append(held, this->numbered(number));
        for (std::uint64_t number = 0; number < before; ++number)
            EXPECT_EQ(this->find(number), nullptr) << number;
        for (std::uint64_t number = 1000; number < 1010; ++number)
            EXPECT_NE(this->find(number), nullptr) << number;
        this->mList.clear(held);
    }
}

} // namespace
} // namespace zov::metamodel::tests
