// Runs of bytes as values.
#include "zovBinaryBuffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <type_traits>
#include <utility>

namespace {

using zov::binaryBuffer;

static_assert(!std::is_convertible_v<std::size_t, binaryBuffer>);
static_assert(std::is_nothrow_move_constructible_v<binaryBuffer>);

// behaviour: BB-01
TEST(binaryBufferMaking, fillsWithZeros) {
    binaryBuffer const buffer(1000);
    ASSERT_EQ(buffer.size(), 1000U);
    EXPECT_TRUE(
        std::all_of(buffer.data(), buffer.data() + buffer.size(), [](unsigned char byte) { return byte == 0; }));
}

// behaviour: BB-02
TEST(binaryBufferMaking, isEmptyByDefault) {
    EXPECT_EQ(binaryBuffer().size(), 0U);
    EXPECT_EQ(binaryBuffer(), binaryBuffer(0));
}

// behaviour: BB-03
TEST(binaryBufferMaking, copiesGivenBytes) {
    std::string_view const source("a\0b", 3);
    binaryBuffer const buffer(source.data(), source.size());
    ASSERT_EQ(buffer.size(), 3U);
    EXPECT_EQ(buffer.data()[2], 'b');
    EXPECT_EQ(binaryBuffer(nullptr, 0), binaryBuffer());
}

// behaviour: BB-04
TEST(binaryBufferMaking, refusesSizesThatNoMemoryHas) {
    std::size_t const size = std::numeric_limits<std::size_t>::max();
    EXPECT_THROW(static_cast<void>(binaryBuffer(size)), std::length_error);
}

// behaviour: BB-05
TEST(binaryBufferCopying, givesBytesOfItsOwn) {
    binaryBuffer one("ab", 2);
    binaryBuffer other = one;
    other.data()[0] = 'x';
    EXPECT_EQ(one, binaryBuffer("ab", 2));
    one = other;
    EXPECT_EQ(one, binaryBuffer("xb", 2));
    one = *&one;
    EXPECT_EQ(one, other);
}

// behaviour: BB-05
TEST(binaryBufferCopying, movesItsBytes) {
    binaryBuffer one("ab", 2);
    unsigned char const* const bytes = one.data();
    binaryBuffer const other = std::move(one);
    EXPECT_EQ(other.data(), bytes);
}

// behaviour: BB-06
TEST(binaryBufferEquality, comparesSizeAndBytes) {
    EXPECT_EQ(binaryBuffer("ab", 2), binaryBuffer("ab", 2));
    EXPECT_NE(binaryBuffer("ab", 2), binaryBuffer("ac", 2));
    EXPECT_NE(binaryBuffer("ab", 2), binaryBuffer("ab", 1));
    EXPECT_NE(binaryBuffer(1), binaryBuffer(0));
}

} // namespace
