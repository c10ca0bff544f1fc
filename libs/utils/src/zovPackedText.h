// Short texts of small units, packed into 32 bytes: what names are hashed and compared by.
//
// A text is narrow when it has at most 31 units, all of them below 256; nearly every name is. Packing reads whole
// blocks of four units, which overlap where a text does not fill them, so that little depends on its length. Together
// with the number of units, the bytes tell every narrow text from every other; equal texts have equal bytes.
//
//     zov::packedText name(L"Width");   // 1 to 31 units
//     if (name.isAscii()) name.lowerAscii();
//     name.hash();                      // that of L"width"
//
// Threads: a value. Fails: never.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cwchar>
#include <string_view>

#include "zovInternedName.h"

#if defined(__x86_64__) && defined(__SSE2__) && WCHAR_MAX > 0xFFFF
#    define ZOV_PACKS_WITH_SSE2
#    include <emmintrin.h>
#endif

namespace zov {

namespace detail {

// The two halves of a product of 128 bits, laid over each other.
inline std::uint64_t foldedProduct(std::uint64_t left, std::uint64_t right) noexcept {
#if defined(__SIZEOF_INT128__)
    __extension__ using wide = unsigned __int128;
    wide const product = static_cast<wide>(left) * right;
    return static_cast<std::uint64_t>(product >> 64) ^ static_cast<std::uint64_t>(product);
#else
    constexpr std::uint64_t half = 0xFFFFFFFFU;
    std::uint64_t const lower = (left & half) * (right & half);
    std::uint64_t const one = (left >> 32) * (right & half) + (lower >> 32);
    std::uint64_t const other = (left & half) * (right >> 32) + (one & half);
    std::uint64_t const upper = (left >> 32) * (right >> 32) + (one >> 32) + (other >> 32);
    return upper ^ (other << 32 | (lower & half));
#endif
}

// Four blocks of four units, a byte each, and the bits that units had.
#if defined(ZOV_PACKS_WITH_SSE2)

class packedHalf {
public:
    packedHalf() noexcept = default;
    packedHalf(wchar_t const* one, wchar_t const* two, wchar_t const* three, wchar_t const* four) noexcept
        : packedHalf(fourAt(one), fourAt(two), fourAt(three), fourAt(four)) {}

    explicit packedHalf(std::uint64_t const* words) noexcept
        : mBytes(_mm_load_si128(static_cast<__m128i const*>(static_cast<void const*>(words)))) {}

    // Whether all units, and those of `other`, are below `limit`, a power of two.
    bool isBelow(int limit, packedHalf const& other) const noexcept {
        __m128i const beyond = _mm_and_si128(_mm_or_si128(mSeen, other.mSeen), _mm_set1_epi32(-limit));
        return _mm_movemask_epi8(_mm_cmpeq_epi32(beyond, _mm_setzero_si128())) == 0xFFFF;
    }

    // Only where all units are below 128.
    void lowerAscii() noexcept {
        // Moved to where they are the least of all signed bytes, the capitals are told by one comparison.
        __m128i const moved = _mm_add_epi8(mBytes, _mm_set1_epi8(static_cast<char>(0x80 - 'A')));
        __m128i const isCapital = _mm_cmplt_epi8(moved, _mm_set1_epi8('Z' + 1 - 'A' - 0x80));
        mBytes = _mm_or_si128(mBytes, _mm_and_si128(isCapital, _mm_set1_epi8('a' - 'A')));
    }

    std::uint64_t first() const noexcept { return static_cast<std::uint64_t>(_mm_cvtsi128_si64(mBytes)); }
    std::uint64_t second() const noexcept {
        return static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(mBytes, mBytes)));
    }

    void keepIn(std::uint64_t* words) const noexcept {
        _mm_store_si128(static_cast<__m128i*>(static_cast<void*>(words)), mBytes);
    }
    bool isThatOf(std::uint64_t const* words) const noexcept {
        __m128i const kept = _mm_load_si128(static_cast<__m128i const*>(static_cast<void const*>(words)));
        return _mm_movemask_epi8(_mm_cmpeq_epi8(mBytes, kept)) == 0xFFFF;
    }

private:
    packedHalf(__m128i one, __m128i two, __m128i three, __m128i four) noexcept
        : mBytes(_mm_packus_epi16(_mm_packs_epi32(one, two), _mm_packs_epi32(three, four))),
          mSeen(_mm_or_si128(_mm_or_si128(one, two), _mm_or_si128(three, four))) {}

    static __m128i fourAt(wchar_t const* units) noexcept {
        return _mm_loadu_si128(static_cast<__m128i const*>(static_cast<void const*>(units)));
    }

    __m128i mBytes = _mm_setzero_si128();
    __m128i mSeen = _mm_setzero_si128();
};

#else

class packedHalf {
public:
    packedHalf() noexcept = default;
    packedHalf(wchar_t const* one, wchar_t const* two, wchar_t const* three, wchar_t const* four) noexcept
        : mFirst(fourAt(one) | fourAt(two) << 32), mSecond(fourAt(three) | fourAt(four) << 32) {}

    explicit packedHalf(std::uint64_t const* words) noexcept : mFirst(words[0]), mSecond(words[1]) {}

    bool isBelow(int limit, packedHalf const& other) const noexcept {
        return (mSeen | other.mSeen) < static_cast<std::uint32_t>(limit);
    }

    void lowerAscii() noexcept {
        mFirst = lowered(mFirst);
        mSecond = lowered(mSecond);
    }

    std::uint64_t first() const noexcept { return mFirst; }
    std::uint64_t second() const noexcept { return mSecond; }

    void keepIn(std::uint64_t* words) const noexcept {
        words[0] = mFirst;
        words[1] = mSecond;
    }
    bool isThatOf(std::uint64_t const* words) const noexcept { return mFirst == words[0] && mSecond == words[1]; }

private:
    std::uint64_t fourAt(wchar_t const* units) noexcept {
        std::uint64_t bytes = 0;
        for (int at = 0; at < 4; ++at) {
            auto const unit = static_cast<std::uint32_t>(units[at]);
            mSeen |= unit;
            bytes |= std::uint64_t{unit & 0xFFU} << (8 * at);
        }
        return bytes;
    }

    // The highest bit of each byte, which units of ASCII leave free, tells where a capital is.
    static std::uint64_t lowered(std::uint64_t bytes) noexcept {
        constexpr std::uint64_t each = 0x0101010101010101U;
        std::uint64_t const fromA = bytes + each * (0x80 - 'A');
        std::uint64_t const beyondZ = bytes + each * (0x80 - ('Z' + 1));
        return bytes | (((fromA ^ beyondZ) & (each * 0x80)) >> 2);
    }

    std::uint32_t mSeen = 0;
    std::uint64_t mFirst = 0;
    std::uint64_t mSecond = 0;
};

#endif

} // namespace detail

class packedText {
public:
    static constexpr std::size_t longest = 31;

    // `text` has 1 to 31 units. Unless it is narrow, there is nothing to be done with the result but to ask that.
    explicit packedText(std::wstring_view text) noexcept : mSize(text.size()) {
        wchar_t const* const units = text.data();
        wchar_t const* const last = units + (mSize < 4 ? 0 : mSize - 4);
        if (mSize > oneHalf) {
            mLow = detail::packedHalf(units, units + 4, units + 8, units + 12);
            mHigh = detail::packedHalf(last - 12, last - 8, last - 4, last);
        } else if (mSize >= 4) {
            mLow = detail::packedHalf(units, std::min(units + 4, last), std::min(units + 8, last), last);
        } else {
            std::array<wchar_t, 4> const spread{units[0], units[mSize / 2], units[mSize - 1]};
            mLow = detail::packedHalf(spread.data(), spread.data(), spread.data(), spread.data());
        }
    }

    std::size_t size() const noexcept { return mSize; }
    bool isAscii() const noexcept { return mLow.isBelow(0x80, mHigh); }
    bool isNarrow() const noexcept { return mLow.isBelow(0x100, mHigh); }

    // Makes this the lower case of a text of ASCII.
    void lowerAscii() noexcept {
        mLow.lowerAscii();
        mHigh.lowerAscii();
    }

    // Every bit of the result depends on every unit.
    std::uint64_t hash() const noexcept {
        std::uint64_t const low =
            detail::foldedProduct(mLow.first() ^ (mSize * 0x9E3779B97F4A7C15U), mLow.second() ^ 0xD6E8FEB86659FD93U);
        if (mSize <= oneHalf) return low;
        return low ^ detail::foldedProduct(mHigh.first() ^ 0xC2B2AE3D27D4EB4FU, mHigh.second() ^ 0xA0761D6478BD642FU);
    }

    // The bytes of no narrow text of any length: up to 16 units leave the second half 0, and in more the two halves
    // overlap in at least one unit, which would have to be 0 and 1 at once.
    static constexpr detail::packedBytes bytesOfNone() noexcept {
        return {{0, 0, 0x0101010101010101U, 0x0101010101010101U}};
    }

    detail::packedBytes bytes() const noexcept {
        detail::packedBytes kept;
        mLow.keepIn(kept.words.data());
        mHigh.keepIn(kept.words.data() + 2);
        return kept;
    }

    // The text whose bytes were kept; `size` is the number of its units.
    packedText(detail::packedBytes const& kept, std::size_t size) noexcept
        : mSize(size), mLow(kept.words.data()), mHigh(kept.words.data() + 2) {}

    bool isThatOf(detail::packedBytes const& kept, std::size_t keptSize) const noexcept {
        return mLow.isThatOf(kept.words.data()) && mSize == keptSize && mHigh.isThatOf(kept.words.data() + 2);
    }

private:
    static constexpr std::size_t oneHalf = 16; // units that one half takes; more lie in both

    std::size_t mSize;
    detail::packedHalf mLow;
    detail::packedHalf mHigh;
};

} // namespace zov
