// Interned names: equal texts are one handle.
#include "zovScString.h"

#include <gtest/gtest.h>

#include <concepts>
#include <cstdint>
#include <cstring>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_set>
#include <vector>

#include "notableTexts.h"
#include "zovString.h"

namespace zov::tests {
namespace {

using zov::string;

// behaviour: SC-02
static_assert(std::is_nothrow_default_constructible_v<scString>);
// behaviour: SC-03
static_assert(!std::convertible_to<wchar_t const*, scString>);
static_assert(!std::convertible_to<string, scString>);

std::uintptr_t handleOf(scString name) {
    std::uintptr_t handle = 0;
    std::memcpy(&handle, &name, sizeof handle);
    return handle;
}

// behaviour: SC-04
TEST(scStringHandle, isTheSameForEqualTexts) {
    string const text(L"SC handle");
    scString const one = scString::createFrom(text);
    scString const other = scString::createFrom(L"SC handle");
    scString const third = scString::createFrom(std::wstring_view(L"SC handle and more").substr(0, 9));
    EXPECT_EQ(one, other);
    EXPECT_EQ(one, third);
    EXPECT_EQ(handleOf(one), handleOf(other));
    EXPECT_EQ(handleOf(one), handleOf(third));
}

// behaviour: SC-05
TEST(scStringHandle, tellsCasesApart) {
    scString const lower = scString::createFrom(L"sc case");
    scString const upper = scString::createFrom(L"SC Case");
    EXPECT_NE(lower, upper);
    std::map<scString, int> const numbers{{lower, 1}, {upper, 2}};
    EXPECT_EQ(numbers.size(), 2U);
    EXPECT_EQ(numbers.at(upper), 2);
}

// behaviour: SC-04
TEST(scStringHandle, tellsTextsApartThatDifferBehindANullUnit) {
    scString const one = scString::createFrom(std::wstring_view(L"SC\0a", 4));
    scString const other = scString::createFrom(std::wstring_view(L"SC\0b", 4));
    EXPECT_NE(one, other);
    EXPECT_NE(one, scString::createFrom(L"SC"));
    EXPECT_EQ(one.string().size(), 4U);
}

// behaviour: SC-06
TEST(scStringText, isWhatItWasMadeFrom) {
    EXPECT_EQ(scString::createFrom(L"SC Text \u00C4\u4E2D").string(), L"SC Text \u00C4\u4E2D");
    string const longText(100'000, L'x');
    EXPECT_EQ(scString::createFrom(longText).string(), longText);
}

// behaviour: SC-06
TEST(scStringText, isNotTheCallersText) {
    string text(L"SC before");
    scString const name = scString::createFrom(text);
    text[3] = L'x';
    EXPECT_EQ(name.string(), L"SC before");
}

// behaviour: SC-07
TEST(scStringText, staysWhereItIs) {
    scString const name = scString::createFrom(L"SC stays");
    string const* const address = &name.string();
    for (int number = 0; number < 20'000; ++number)
        scString::createFrom(string(L"SC stays " + std::to_wstring(number)));
    EXPECT_EQ(&scString::createFrom(L"SC stays").string(), address);
    EXPECT_EQ(*address, L"SC stays");
}

// behaviour: SC-07
TEST(scStringHandle, staysTheSameWhileTheTableGrows) {
    std::vector<scString> names;
    for (int number = 0; number < 20'000; ++number)
        names.push_back(scString::createFrom(string(L"SC grows " + std::to_wstring(number))));
    for (std::size_t number = 0; number < names.size(); ++number) {
        string const text(L"SC grows " + std::to_wstring(number));
        ASSERT_EQ(scString::find(text), names[number]);
        ASSERT_EQ(names[number].string(), text);
    }
    EXPECT_EQ(std::set<scString>(names.begin(), names.end()).size(), names.size());
}

// behaviour: SC-02
TEST(scStringDefault, isTheEmptyText) {
    scString const name;
    EXPECT_EQ(name, scString::createFrom(L""));
    EXPECT_EQ(name, scString::createFrom(string()));
    EXPECT_EQ(handleOf(name), handleOf(scString::createFrom(L"")));
    EXPECT_EQ(name.string(), L"");
    EXPECT_EQ(scString::find(L""), name);
    EXPECT_EQ(scString::findLowered(L""), name);
}

// behaviour: SC-02
TEST(scStringCreation, fromANullTextIsTheEmptyText) {
    EXPECT_EQ(scString::createFrom(static_cast<wchar_t const*>(nullptr)), scString());
}

// behaviour: SC-08
TEST(scStringOrder, isThatOfTheHandles) {
    std::vector<scString> names;
    for (wchar_t const* text : {L"SC order c", L"SC order a", L"SC order b", L"", L"SC order d"})
        names.push_back(scString::createFrom(text));
    for (scString const left : names) {
        for (scString const right : names) {
            EXPECT_EQ(left < right, handleOf(left) < handleOf(right));
            EXPECT_EQ(left == right, handleOf(left) == handleOf(right));
        }
    }
}

// behaviour: SC-09
TEST(scStringHash, isTheSameForEqualNames) {
    std::unordered_set<scString> const names{scString::createFrom(L"SC hash"), scString::createFrom(L"SC hash"),
                                             scString::createFrom(L"SC Hash"), scString()};
    EXPECT_EQ(names.size(), 3U);
    EXPECT_TRUE(names.contains(scString::createFrom(L"SC Hash")));
}

// behaviour: SC-10
TEST(scStringFind, answersTheHandleOfAnInternedText) {
    scString const name = scString::createFrom(L"SC found");
    EXPECT_EQ(scString::find(L"SC found"), name);
}

// behaviour: SC-10
TEST(scStringFind, neverInterns) {
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(scString::find(L"SC never interned"), std::nullopt);
        EXPECT_EQ(scString::findLowered(L"SC never interned"), std::nullopt);
        EXPECT_EQ(scString::find(L"sc never interned"), std::nullopt);
    }
}

// behaviour: SC-11
TEST(scStringFindLowered, answersTheHandleOfTheLowerCaseForm) {
    scString const name = scString::createFrom(L"sc width \u00E4\u03C9");
    EXPECT_EQ(scString::findLowered(L"SC Width \u00C4\u03A9"), name);
    EXPECT_EQ(scString::findLowered(L"sc width \u00E4\u03C9"), name);
    EXPECT_EQ(scString::find(L"SC Width \u00C4\u03A9"), std::nullopt);
}

// behaviour: SC-11
TEST(scStringFindLowered, doesNotFindATextWithCapitals) {
    scString::createFrom(L"SC Only Capitals");
    EXPECT_EQ(scString::findLowered(L"SC Only Capitals"), std::nullopt);
    EXPECT_EQ(scString::findLowered(L"sc only capitals"), std::nullopt);
}

// behaviour: SC-11
TEST(scStringFindLowered, agreesWithLower) {
    for (unsigned first = 0x80; first < 0x3000; first += 16) {
        string text(L"SC agrees " + std::to_wstring(first));
        for (unsigned unit = first; unit < first + 16; ++unit)
            text += static_cast<wchar_t>(unit);
        ASSERT_EQ(scString::findLowered(text), std::nullopt) << first;
        scString const name = scString::createFrom(text.lower());
        ASSERT_EQ(scString::findLowered(text), name) << first;
    }
}

// behaviour: SC-11
TEST(scStringFindLowered, foldsCodePointsOfTwoUnitsToo) {
    string const capital = string::fromUtf8("SC \xF0\x90\x90\x80");
    string const small = string::fromUtf8("sc \xF0\x90\x90\xA8");
    scString const name = scString::createFrom(small);
    EXPECT_EQ(scString::findLowered(capital), name);
}

// behaviour: SC-04
// behaviour: SC-10
// behaviour: SC-11
TEST(scStringFind, tellsTextsOfEveryLengthApart) {
    std::map<std::wstring, scString> known;
    std::vector<string> const texts = textsOfEveryLength(L'z');
    // Only every other text is interned.
    for (std::size_t number = 0; number < texts.size(); number += 2)
        known.emplace(texts[number], scString::createFrom(texts[number]));
    known.emplace(L"", scString());
    // What is not known here may have been interned by other tests of the process, but then as what it is.
    auto const isRight = [&known](string const& asked, std::optional<scString> const& answered) {
        auto const expected = known.find(asked);
        if (expected != known.end()) return answered == expected->second;
        return !answered || answered->string() == asked;
    };
    for (string const& text : texts) {
        ASSERT_TRUE(isRight(text, scString::find(text))) << text.toUtf8();
        ASSERT_TRUE(isRight(text.lower(), scString::find(text.lower()))) << text.toUtf8();
        ASSERT_TRUE(isRight(text.lower(), scString::findLowered(text))) << text.toUtf8();
    }
    for (auto const& [text, name] : known)
        ASSERT_EQ(name.string(), text);
}

// behaviour: SC-04
// behaviour: SC-10
// behaviour: SC-11
TEST(scStringFind, agreesWithAMapOfRandomTexts) {
    std::mt19937 random(20);
    std::map<std::wstring, scString> known{{L"", scString()}};
    for (int round = 0; round < 20'000; ++round) {
        string const text = randomNotableText(random, L'k', L'K');
        if (random() % 3 == 0) {
            scString const name = scString::createFrom(text);
            auto const added = known.emplace(text, name);
            ASSERT_EQ(added.first->second, name);
            ASSERT_EQ(name.string(), text);
        }
        // Other tests of this process may have interned such a text, but then as what it is.
        for (bool const lowered : {false, true}) {
            auto const found = lowered ? scString::findLowered(text) : scString::find(text);
            string const asked = lowered ? text.lower() : text;
            ASSERT_TRUE(!found || found->string() == asked);
            auto const expected = known.find(asked);
            ASSERT_TRUE(expected == known.end() || found == expected->second);
        }
    }
}

// behaviour: SC-10
TEST(scStringFind, readsNothingBesideTheText) {
    // The text fills its storage, so that whoever reads further reads what is not there.
    for (std::size_t length = 1; length <= 40; ++length) {
        std::vector<wchar_t> text(length, L'Y');
        text.front() = L'`'; // as no other test begins its names
        std::wstring_view const units(text.data(), text.size());
        EXPECT_EQ(scString::find(units), std::nullopt);
        EXPECT_EQ(scString::findLowered(units), std::nullopt);
        scString const name = scString::createFrom(units);
        EXPECT_EQ(scString::find(units), name);
        EXPECT_EQ(name.string(), units);
    }
}

} // namespace
} // namespace zov::tests
