// Keys of names: equal texts have equal keys, whatever way they came in, and no other name is taken for theirs.
#include "zovNameKey.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

#include "notableTexts.h"
#include "zovScString.h"
#include "zovString.h"

namespace zov::tests {
namespace {

using zov::string;

// behaviour: NK-07
static_assert(std::is_nothrow_constructible_v<nameKey, std::wstring_view, bool>);
static_assert(std::is_nothrow_constructible_v<nameKey, scString>);
static_assert(std::is_nothrow_copy_constructible_v<nameKey> && std::is_nothrow_copy_assignable_v<nameKey>);
static_assert(std::is_nothrow_constructible_v<filedName, scString> && !std::convertible_to<scString, filedName>);
static_assert(!std::convertible_to<scString, nameKey> && !std::convertible_to<std::wstring_view, nameKey>);

constexpr bool asWritten = true;
constexpr bool inAnyCase = false;

std::vector<scString> namesOf(std::vector<string> const& texts) {
    std::vector<scString> names;
    for (string const& text : texts)
        names.push_back(scString::createFrom(text));
    return names;
}

// Whether the key is that of the name's text, which it is of the filed name as well or of neither.
bool isTextOf(nameKey const& key, scString name) {
    bool const answer = key.isTextOf(name);
    EXPECT_EQ(key.isTextOf(filedName(name)), answer);
    return answer;
}

// How many of the names the key takes for another text than `text`, or does not take for it.
std::ptrdiff_t mistakesOf(nameKey const& key, string const& text, std::vector<scString> const& names) {
    return std::count_if(names.begin(), names.end(),
                         [&](scString name) { return isTextOf(key, name) != (name.string() == text); });
}

// The text in both ways of asking, and as a name: all of them the same key. What it is in any case is interned too.
void expectKeysOf(string const& text, std::vector<scString> const& names) {
    scString const name = scString::createFrom(text);
    scString const folded = scString::createFrom(text.lower());
    nameKey const written(text, asWritten);
    nameKey const lowered(text, inAnyCase);
    EXPECT_EQ(written.hash(), nameKey(name).hash());
    EXPECT_EQ(lowered.hash(), nameKey(folded).hash());
    EXPECT_EQ(lowered.hash(), nameKey(text.lower(), asWritten).hash());
    for (scString const other : {name, folded, scString()}) {
        EXPECT_EQ(isTextOf(written, other), other == name);
        EXPECT_EQ(isTextOf(lowered, other), other == folded);
        EXPECT_EQ(isTextOf(nameKey(name), other), other == name);
    }
    EXPECT_EQ(mistakesOf(written, text, names), 0);
    EXPECT_EQ(mistakesOf(lowered, text.lower(), names), 0);
    EXPECT_EQ(mistakesOf(nameKey(name), text, names), 0);
}

// behaviour: NK-01, NK-02, NK-03
TEST(nameKey, isThatOfItsTextAndOfNoOtherAtEveryLength) {
    std::vector<string> const texts = textsOfEveryLength(L'w');
    std::map<std::size_t, std::vector<scString>> names; // by length, and those of one plain text of each other length
    for (string const& text : texts) {
        names[text.size()].push_back(scString::createFrom(text));
        names[text.size()].push_back(scString::createFrom(text.lower()));
    }
    for (auto& [length, ofLength] : names) {
        for (std::size_t other = 0; other <= 70; ++other)
            ofLength.push_back(scString::createFrom(string(other, L'w')));
    }
    for (string const& text : texts) {
        SCOPED_TRACE(text.toUtf8());
        expectKeysOf(text, names[text.size()]);
        if (HasFailure()) return;
    }
}

// behaviour: NK-01, NK-02, NK-03
TEST(nameKey, isThatOfCapitalsOnlyInAnyCase) {
    for (std::size_t length = 1; length <= 70; ++length) {
        for (auto const& [capital, small] :
             {std::pair(L"A", L"a"), std::pair(L"Z", L"z"), std::pair(L"\u00C0", L"\u00E0"),
              std::pair(L"\u00DE", L"\u00FE"), std::pair(L"\u0391", L"\u03B1")}) {
            string const capitals(length, *capital);
            string const smalls(length, *small);
            scString const name = scString::createFrom(smalls);
            scString const other = scString::createFrom(capitals);
            for (string const& text : {capitals, smalls}) {
                EXPECT_EQ(nameKey(text, inAnyCase).hash(), nameKey(name).hash()) << length;
                EXPECT_TRUE(isTextOf(nameKey(text, inAnyCase), name)) << length;
                EXPECT_FALSE(isTextOf(nameKey(text, inAnyCase), other)) << length;
            }
            EXPECT_NE(nameKey(capitals, asWritten).hash(), nameKey(name).hash()) << length;
            EXPECT_FALSE(isTextOf(nameKey(capitals, asWritten), name)) << length;
        }
    }
}

// behaviour: NK-03
TEST(nameKey, foldsIntoSmallerUnits) {
    struct folding {
        wchar_t capital;
        wchar_t small;
    };
    constexpr std::array foldings{
        folding{L'\u212A', L'k'},      // KELVIN SIGN
        folding{L'\u0130', L'i'},      // a capital I with a dot
        folding{L'\u0178', L'\u00FF'}, // a capital Y with two dots
        folding{L'\u212B', L'\u00E5'}, // ANGSTROM SIGN
        folding{L'\u1E9E', L'\u00DF'}, // a capital sharp S
    };
    for (auto const& [capital, small] : foldings) {
        for (std::size_t length = 1; length <= 40; ++length) {
            for (std::size_t const at : placesIn(length)) {
                string wide(length, L'F');
                wide[at] = capital;
                string folded(length, L'f');
                folded[at] = small;
                ASSERT_EQ(wide.lower(), folded);
                scString const name = scString::createFrom(folded);
                EXPECT_EQ(nameKey(wide, inAnyCase).hash(), nameKey(name).hash()) << length;
                EXPECT_TRUE(isTextOf(nameKey(wide, inAnyCase), name)) << length;
                EXPECT_FALSE(isTextOf(nameKey(wide, asWritten), name)) << length;
            }
        }
    }
}

// Texts whose units are alike in their lower bytes, or come to the ends of what a byte holds, and those that could pass
// for one another in blocks of some units: of 1 to 33 units.
std::vector<string> textsOfSimilarBytes() {
    std::vector<string> texts;
    for (std::size_t length = 1; length <= 33; ++length) {
        for (unsigned const unit : {0x0U, 0x1U, 0x80U, 0xFFU, 0x100U, 0x101U, 0x1FFU, 0x8000U, 0xD800U, 0xDC01U,
                                    0xFFFFU, 0x10000U, 0x10001U, 0x7FFFFFFFU, 0x80000000U, 0x80000001U, 0xFFFFFFFFU}) {
            auto const same = static_cast<wchar_t>(unit);
            texts.push_back(string(length, same));
            for (std::size_t const at : placesIn(length)) {
                for (wchar_t const other : {L'\0', L'\1', L'\u00FF', L'\u0100'}) {
                    texts.push_back(string(length, same));
                    texts.back()[at] = other;
                }
            }
        }
        for (std::size_t const ones : {1U, 4U, 8U, 15U, 16U, 17U}) {
            if (ones >= length) continue;
            texts.push_back(string(std::wstring(length - ones, L'\0') + std::wstring(ones, L'\1')));
            texts.push_back(string(std::wstring(ones, L'\1') + std::wstring(length - ones, L'\0')));
        }
    }
    std::set<std::wstring> const distinct(texts.begin(), texts.end());
    return {distinct.begin(), distinct.end()};
}

// behaviour: NK-01, NK-02
TEST(nameKey, tellsTextsOfSimilarBytesApart) {
    std::vector<string> const texts = textsOfSimilarBytes();
    std::vector<scString> const names = namesOf(texts);
    std::map<std::size_t, std::vector<scString>> similar; // of the length and of those beside it
    for (scString const name : names) {
        for (std::size_t const length : {name.string().size() - 1, name.string().size(), name.string().size() + 1})
            similar[length].push_back(name);
    }
    for (string const& text : texts) {
        expectKeysOf(text, similar[text.size()]);
        ASSERT_FALSE(HasFailure()) << text.toUtf8() << ", " << text.size();
    }
}

// behaviour: NK-02
TEST(nameKey, ofNullsIsNotThatOfWiderTexts) {
    for (std::size_t length = 1; length <= 40; ++length) {
        string const nulls(length, L'\0');
        string const wide(length, L'\u0100');
        scString const nullsName = scString::createFrom(nulls);
        scString const wideName = scString::createFrom(wide);
        for (bool const caseMatters : {asWritten, inAnyCase}) {
            nameKey const key(nulls, caseMatters);
            EXPECT_TRUE(isTextOf(key, nullsName)) << length;
            EXPECT_FALSE(isTextOf(key, wideName)) << length;
            EXPECT_FALSE(isTextOf(key, scString())) << length;
            EXPECT_FALSE(isTextOf(nameKey(wide, caseMatters), nullsName)) << length;
        }
        EXPECT_TRUE(isTextOf(nameKey(wide, asWritten), wideName)) << length;
    }
}

// behaviour: NK-04
TEST(nameKey, ofTheEmptyTextIsThatOfTheDefaultName) {
    std::vector<scString> const others =
        namesOf({L"a", string(1, L'\0'), L"\u4E2D", string(31, L'\0'), string(40, L'e'), string(40, L'\0')});
    for (nameKey const& key :
         {nameKey(L"", asWritten), nameKey(L"", inAnyCase), nameKey(std::wstring_view(), inAnyCase),
          nameKey(scString()), nameKey(scString::createFrom(L""))}) {
        EXPECT_EQ(key.hash(), nameKey(scString()).hash());
        EXPECT_TRUE(isTextOf(key, scString()));
        EXPECT_EQ(mistakesOf(key, L"", others), 0);
    }
    for (scString const other : others) {
        EXPECT_FALSE(isTextOf(nameKey(other), scString()));
        EXPECT_FALSE(isTextOf(nameKey(other.string(), asWritten), scString()));
    }
}

// Texts that no other test interns: short and narrow, short and wide, long; with a capital.
std::vector<string> freshTexts(wchar_t const* stem) {
    return {string(std::wstring(stem) + L" Short"), string(std::wstring(stem) + L" Wide \u4E2D"),
            string(std::wstring(stem) + L" Long" + std::wstring(40, L'x'))};
}

// behaviour: NK-02
TEST(nameKey, ofAFiledNameIsThatOfItsHandle) {
    for (scString const name : namesOf({L"", L"Width", string(31, L'y'), string(32, L'y'), L"\u4E2D"})) {
        filedName const filed(name);
        EXPECT_EQ(filed.handle(), name);
        EXPECT_TRUE(nameKey(name).isTextOf(filed));
        EXPECT_TRUE(nameKey(name.string(), asWritten).isTextOf(filed));
    }
}

// behaviour: NK-05
TEST(nameKey, internsNothingAndIsNobodysWhileThereIsNoName) {
    std::vector<scString> const names = namesOf({L"", L"NK", L"nk", L"\u4E2D", string(40, L'x')});
    for (string const& text : freshTexts(L"NK never")) {
        for (bool const caseMatters : {asWritten, inAnyCase}) {
            nameKey const key(text, caseMatters);
            for (scString const name : names)
                EXPECT_FALSE(isTextOf(key, name));
        }
        EXPECT_EQ(scString::find(text), std::nullopt);
        EXPECT_EQ(scString::findLowered(text), std::nullopt);
    }
}

// behaviour: NK-06
TEST(nameKey, ofAShortNarrowTextKnowsNamesThatAreInternedLater) {
    for (std::size_t length = 1; length <= 31; ++length) {
        for (wchar_t const unit : {L'\u00A1', L'\u00D0'}) {
            string const text(length, unit);
            ASSERT_EQ(scString::find(text), std::nullopt);
            nameKey const written(text, asWritten);
            nameKey const lowered(text, inAnyCase);
            scString const name = scString::createFrom(text);
            scString const folded = scString::createFrom(text.lower());
            EXPECT_TRUE(isTextOf(written, name)) << length;
            EXPECT_TRUE(isTextOf(lowered, folded)) << length;
            EXPECT_EQ(isTextOf(lowered, name), name == folded) << length;
        }
    }
}

// behaviour: NK-06
TEST(nameKey, ofAnyOtherTextStaysNobodysWhenTheTextIsInternedLater) {
    std::vector<string> texts;
    for (std::size_t length = 32; length <= 70; ++length)
        texts.push_back(string(length, L'\u00A1'));
    for (std::size_t length = 1; length <= 70; ++length)
        texts.push_back(string(length, L'\u13A0'));
    for (string const& text : texts) {
        ASSERT_EQ(scString::find(text), std::nullopt);
        nameKey const written(text, asWritten);
        nameKey const lowered(text, inAnyCase);
        scString const name = scString::createFrom(text);
        scString const folded = scString::createFrom(text.lower());
        for (scString const each : {name, folded, scString()}) {
            EXPECT_FALSE(isTextOf(written, each)) << text.size();
            EXPECT_FALSE(isTextOf(lowered, each)) << text.size();
        }
        EXPECT_EQ(written.hash(), nameKey(name).hash());
        EXPECT_EQ(lowered.hash(), nameKey(folded).hash());
        expectKeysOf(text, {name, folded});
    }
}

// behaviour: NK-06
TEST(nameKey, ofAWideTextThatFoldsIntoANarrowOneKnowsItLater) {
    string const text(L"nk folds later: \u0178");
    ASSERT_EQ(scString::findLowered(text), std::nullopt);
    nameKey const lowered(text, inAnyCase);
    EXPECT_TRUE(isTextOf(lowered, scString::createFrom(text.lower())));
}

// behaviour: NK-07
TEST(nameKey, isAValue) {
    string text(L"NK value");
    scString const name = scString::createFrom(text);
    nameKey key(text, asWritten);
    nameKey const copy(key);
    text[0] = L'x';
    EXPECT_TRUE(isTextOf(key, name));
    for (string const& other : freshTexts(L"NK assigned")) {
        key = nameKey(other, inAnyCase);
        EXPECT_FALSE(isTextOf(key, name));
        key = nameKey(scString::createFrom(other));
        EXPECT_TRUE(isTextOf(key, scString::createFrom(other)));
        key = copy;
        EXPECT_TRUE(isTextOf(key, name));
        EXPECT_EQ(key.hash(), nameKey(name).hash());
    }
}

// behaviour: NK-02
TEST(nameKey, readsNothingBesideTheText) {
    // The text fills its storage, so that whoever reads further reads what is not there.
    for (std::size_t length = 1; length <= 40; ++length) {
        for (wchar_t const unit : {L'N', L'\u00D1', L'\u0143'}) {
            std::vector<wchar_t> const storage(length, unit);
            std::wstring_view const units(storage.data(), storage.size());
            expectKeysOf(string(units), {});
            EXPECT_TRUE(isTextOf(nameKey(units, asWritten), scString::createFrom(units)));
            EXPECT_TRUE(isTextOf(nameKey(units, inAnyCase), scString::createFrom(string(units).lower())));
        }
    }
}

// behaviour: NK-01, NK-02, NK-03
TEST(nameKey, agreesWithTheTextsOfRandomNames) {
    std::mt19937 random(31);
    std::vector<string> texts;
    for (int number = 0; number < 400; ++number)
        texts.push_back(randomNotableText(random, L'n', L'N'));
    std::vector<scString> names = namesOf(texts);
    for (string const& text : texts)
        names.push_back(scString::createFrom(text.lower()));
    for (string const& text : texts) {
        expectKeysOf(text, names);
        ASSERT_FALSE(HasFailure()) << text.toUtf8();
    }
}

// behaviour: NK-08
TEST(nameKey, hasAHashOfItsOwnForEachText) {
    std::vector<string> texts = textsOfEveryLength(L'h');
    for (string const& text : textsOfSimilarBytes())
        texts.push_back(text);
    std::set<std::wstring> const distinct(texts.begin(), texts.end());
    std::unordered_set<std::uint64_t> hashes;
    for (std::wstring const& text : distinct)
        hashes.insert(nameKey(text, asWritten).hash());
    EXPECT_EQ(hashes.size(), distinct.size());
}

// How many of the hashes have the same 12 bits, at most.
std::size_t fullestOf(std::vector<std::uint64_t> const& hashes, unsigned shift) {
    std::vector<std::size_t> counts(4096);
    for (std::uint64_t const hash : hashes)
        ++counts[(hash >> shift) % counts.size()];
    return *std::max_element(counts.begin(), counts.end());
}

// behaviour: NK-08
TEST(nameKey, hasAHashThatIsSpreadOverItsBits) {
    for (wchar_t const* stem : {L"", L"a field of the part ", L"a field of the part of the workshop ", L"\u4E2D "}) {
        std::vector<std::uint64_t> hashes;
        for (int number = 0; number < 4096; ++number)
            hashes.push_back(nameKey(std::wstring(stem) + std::to_wstring(number), asWritten).hash());
        for (unsigned shift = 0; shift <= 51; ++shift) {
            // Of as many numbers drawn by chance, six to eight come together.
            EXPECT_LE(fullestOf(hashes, shift), 12U) << "bits from " << shift << ", " << string(stem).toUtf8();
        }
    }
}

} // namespace
} // namespace zov::tests
