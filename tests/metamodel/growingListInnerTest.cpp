// The growing list at every size of its index: hosts see what it does only in models too large for a test.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <mutex>

#include "base/growingList.h"

namespace zov::metamodel::tests {
namespace {

struct numberEntry {
    static constexpr bool isIndexed = true;

    std::uint64_t key() const noexcept { return scrambled(number); }
    void retain() const noexcept {}
    void release() const noexcept {}

    std::uint64_t number;
};

class growingListInner : public testing::Test {
protected:
    void appendUpTo(std::uint64_t count) {
        heldMutex const held(mMutex);
        for (std::uint64_t number = mList.size(); number < count; ++number)
            mList.append(held, {number});
    }

    // The entry that the list finds for the number among all of the same key, null when there is none.
    numberEntry const* find(std::uint64_t number) {
        readSection const reading;
        auto const isIt = [number](numberEntry const& entry) { return entry.number == number; };
        return mList.find(reading, scrambled(number), isIt);
    }

    std::recursive_mutex mMutex;
    growingList<numberEntry> mList;
};

// behaviour: CF-01, MR-02
TEST_F(growingListInner, findsTheFirstAndTheLastEntryAtEverySize) {
    EXPECT_EQ(find(0), nullptr);
    for (std::uint64_t count = 1; count <= 2000; ++count) {
        appendUpTo(count);
        ASSERT_NE(find(0), nullptr) << count;
        ASSERT_NE(find(count - 1), nullptr) << count;
        EXPECT_EQ(find(count - 1)->number, count - 1);
        ASSERT_EQ(find(count), nullptr) << count;
    }
}

// Around 98,304 entries the index becomes too large for its size to be told with the block's address.
// behaviour: CF-01, MR-02
TEST_F(growingListInner, findsEveryEntryOfManyThousands) {
    constexpr std::uint64_t largestNoted = 98'304;
    for (std::uint64_t const count : {largestNoted - 1, largestNoted, largestNoted + 1, 2 * largestNoted + 1}) {
        appendUpTo(count);
        std::uint64_t missed = 0;
        for (std::uint64_t number = 0; number < count; ++number) {
            auto const* const found = find(number);
            if (!found || found->number != number) ++missed;
        }
        EXPECT_EQ(missed, 0U) << count;
        EXPECT_EQ(find(count), nullptr) << count;
        EXPECT_EQ(mList.size(), count);
    }
}

} // namespace
} // namespace zov::metamodel::tests
