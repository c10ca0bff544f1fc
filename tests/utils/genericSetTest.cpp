// Bags of named values.
#include "zovGenericSet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "endingObjects.h"

namespace zov::tests {
namespace {

using zov::string;
using names = std::vector<scString>;

scString key(wchar_t const* text) {
    return scString::createFrom(text);
}

// The entries by name, as texts.
std::map<string, string> contentsOf(genericSet const& set) {
    std::map<string, string> contents;
    set.forEach(
        [&](scString const& name, genericValue const& value) {
            string text;
            value.getValue(text);
            contents[name.string()] = text;
            return true;
        },
        true);
    return contents;
}
using contents = std::map<string, string>;

genericSet threeNumbers() {
    genericSet set;
    set.setValue(L"one", 1, false);
    set.setValue(L"two", 2, false);
    set.setValue(L"three", 3, false);
    return set;
}

// behaviour: GS-02
static_assert(std::is_nothrow_default_constructible_v<genericSet>);
static_assert(std::is_nothrow_move_constructible_v<genericSet>);
static_assert(std::is_nothrow_move_assignable_v<genericSet>);
static_assert(std::is_copy_constructible_v<genericSet> && std::is_copy_assignable_v<genericSet>);

// behaviour: GS-03
TEST(emptySet, hasNoEntry) {
    genericSet set;
    EXPECT_EQ(set.size(), 0U);
    EXPECT_FALSE(set.genericValue(key(L"any")));
    EXPECT_FALSE(std::as_const(set).genericValue(key(L"any")));
    int number = 7;
    int* pointer = &number;
    EXPECT_FALSE(set.getValue(L"any", number));
    EXPECT_FALSE(set.getValuePtr(L"any", pointer));
    EXPECT_EQ(number, 7);
    EXPECT_EQ(pointer, &number);
    EXPECT_NO_THROW(set.erase(key(L"any")));
}

// behaviour: GS-04
TEST(storedValue, isACopy) {
    genericSet set;
    genericValue value(1);
    EXPECT_TRUE(set.setGenericValue(key(L"k"), value, false));
    *value.valuePtr<int>() = 2;
    EXPECT_EQ(contentsOf(set), (contents{{L"k", L"1"}}));
}

// behaviour: GS-05
TEST(storedValue, replacesTheFormerWhateverItsType) {
    genericSet set;
    EXPECT_TRUE(set.setValue(L"k", 1, false));
    EXPECT_TRUE(set.setValue(L"k", string(L"text"), false));
    EXPECT_EQ(set.size(), 1U);
    EXPECT_EQ(contentsOf(set), (contents{{L"k", L"text"}}));
    EXPECT_TRUE(set.setGenericValue(key(L"k"), genericValue(2.5), false));
    EXPECT_EQ(set.size(), 1U);
    EXPECT_EQ(contentsOf(set), (contents{{L"k", L"2.5"}}));
}

// behaviour: GS-06
TEST(storeFlag, changesNothing) {
    genericSet set;
    EXPECT_TRUE(set.setValue(L"k", 1, true));
    EXPECT_TRUE(set.setValue(L"k", 2, true));
    EXPECT_TRUE(set.setGenericValue(key(L"k"), genericValue(3), true));
    EXPECT_EQ(contentsOf(set), (contents{{L"k", L"3"}}));
}

// behaviour: GS-07
TEST(storedValue, isOfTheGivenType) {
    genericSet set;
    set.setValue(L"short", short{1}, false);
    set.setValue(L"text", L"wide text", false);
    set.setValue(key(L"names"), names{key(L"a")}, false);
    set.setValue(L"empty", string(), false);
    short* number = nullptr;
    string* text = nullptr;
    names* list = nullptr;
    EXPECT_TRUE(set.getValuePtr(L"short", number));
    EXPECT_TRUE(set.getValuePtr(L"text", text));
    EXPECT_TRUE(set.getValuePtr(L"names", list));
    EXPECT_EQ(*number, 1);
    EXPECT_EQ(*text, L"wide text");
    EXPECT_EQ(*list, names{key(L"a")});
    EXPECT_EQ(set.size(), 4U);
}

// behaviour: GS-07
TEST(storedValue, mayBeEmpty) {
    genericSet set;
    EXPECT_TRUE(set.setGenericValue(key(L"k"), genericValue(), false));
    EXPECT_EQ(set.size(), 1U);
    ASSERT_TRUE(set.genericValue(key(L"k")));
    EXPECT_TRUE(set.genericValue(key(L"k"))->isEmpty());
    int number = 7;
    int* pointer = nullptr;
    EXPECT_FALSE(set.getValue(L"k", number));
    EXPECT_FALSE(set.getValuePtr(L"k", pointer));
    EXPECT_EQ(number, 7);
}

// behaviour: GS-08
TEST(setKeys, tellCasesApart) {
    genericSet set;
    set.setValue(L"Key", 1, false);
    set.setValue(L"key", 2, false);
    EXPECT_EQ(contentsOf(set), (contents{{L"Key", L"1"}, {L"key", L"2"}}));
}

// behaviour: GS-09
TEST(setEntry, isSharedWithTheSet) {
    genericSet set;
    set.setValue(L"k", 1, false);
    sharedPtr<genericValue> entry = set.genericValue(key(L"k"));
    *entry = genericValue(L"written");
    EXPECT_EQ(contentsOf(set), (contents{{L"k", L"written"}}));
    const_sharedPtr<genericValue> const constEntry = std::as_const(set).genericValue(key(L"k"));
    EXPECT_EQ(constEntry.get(), entry.get());
    EXPECT_EQ(constEntry.refCount(), 3U);
}

// behaviour: GS-09
TEST(setEntry, outlivesItsPlaceInTheSet) {
    genericSet set;
    set.setValue(L"k", 1, false);
    const_sharedPtr<genericValue> const entry = std::as_const(set).genericValue(key(L"k"));
    set.setValue(L"k", 2, false);
    EXPECT_EQ(entry.refCount(), 1U);
    EXPECT_EQ(*entry->valuePtr<int>(), 1);
    EXPECT_EQ(contentsOf(set), (contents{{L"k", L"2"}}));
}

// behaviour: GS-28
TEST(copiedEntry, isIndependentOfTheSet) {
    genericSet set;
    set.setValue(L"k", 1, false);
    genericValue copy(L"former");
    EXPECT_TRUE(set.copyValue(key(L"k"), copy));
    ASSERT_NE(copy.valuePtr<int>(), nullptr);
    *copy.valuePtr<int>() = 2;
    EXPECT_EQ(contentsOf(set), (contents{{L"k", L"1"}}));
    EXPECT_EQ(std::as_const(set).genericValue(key(L"k")).refCount(), 2U);
}

// behaviour: GS-28
TEST(copiedEntry, isEmptyWhereTheEntryIs) {
    genericSet set;
    set.setGenericValue(key(L"k"), genericValue(), false);
    genericValue copy(1);
    EXPECT_TRUE(set.copyValue(key(L"k"), copy));
    EXPECT_TRUE(copy.isEmpty());
}

// behaviour: GS-28
TEST(copiedEntry, leavesTheTargetAloneWhereThereIsNone) {
    genericSet set;
    genericValue copy(1);
    EXPECT_FALSE(set.copyValue(key(L"k"), copy));
    set.setValue(L"other", 2, false);
    EXPECT_FALSE(set.copyValue(key(L"k"), copy));
    EXPECT_EQ(*copy.valuePtr<int>(), 1);
}

// behaviour: GS-28
TEST(copiedEntry, staysWhatItIsWhenItIsTheTargetItself) {
    genericSet set;
    set.setValue(L"k", 1, false);
    sharedPtr<genericValue> const entry = set.genericValue(key(L"k"));
    int const* const held = entry->valuePtr<int>();
    EXPECT_TRUE(set.copyValue(key(L"k"), const_cast<genericValue&>(*entry)));
    EXPECT_EQ(entry->valuePtr<int>(), held);
}

// behaviour: GS-10
TEST(setValuePointer, leadsIntoTheSet) {
    genericSet set;
    set.setValue(L"k", 1, false);
    int* number = nullptr;
    ASSERT_TRUE(set.getValuePtr(L"k", number));
    *number = 2;
    EXPECT_EQ(contentsOf(set), (contents{{L"k", L"2"}}));
    int* same = nullptr;
    ASSERT_TRUE(set.getValuePtr(key(L"k"), same));
    EXPECT_EQ(same, number);
}

// behaviour: GS-11
TEST(setValuePointer, doesNotConvert) {
    genericSet set;
    set.setValue(L"k", 1, false);
    long number = 0;
    long* pointer = &number;
    EXPECT_FALSE(set.getValuePtr(L"k", pointer));
    EXPECT_EQ(pointer, &number);
    string* text = nullptr;
    EXPECT_FALSE(set.getValuePtr(key(L"k"), text));
    EXPECT_EQ(text, nullptr);
}

// behaviour: GS-12
TEST(setValuePointer, tellsConstFromMutable) {
    genericSet set;
    set.setValue(L"mutable", names{key(L"a")}, false);
    set.setGenericValue(key(L"const"), genericValue(new genericValue::valueholder<names const>(names{key(L"b")})),
                        false);
    names* list = nullptr;
    names const* constList = nullptr;
    EXPECT_FALSE(set.getValuePtr(L"const", list));
    EXPECT_FALSE(set.getValuePtr(L"mutable", constList));
    EXPECT_TRUE(set.getValuePtr(L"mutable", list));
    EXPECT_TRUE(set.getValuePtr(L"const", constList));
    EXPECT_EQ(*list, names{key(L"a")});
    EXPECT_EQ(*constList, names{key(L"b")});
}

// behaviour: GS-12
TEST(setValuePointer, ofAConstObjectIsRefused) {
    int const object = 5;
    genericSet set;
    set.setGenericValue(key(L"k"), genericValue::byReference(object), false);
    int* number = nullptr;
    EXPECT_FALSE(set.getValuePtr(L"k", number));
    EXPECT_EQ(number, nullptr);
}

// behaviour: GS-10
TEST(setValuePointer, ofAReferenceIsTheCallersObject) {
    int object = 5;
    genericSet set;
    set.setGenericValue(key(L"k"), genericValue::byReference(object), false);
    int* number = nullptr;
    ASSERT_TRUE(set.getValuePtr(L"k", number));
    EXPECT_EQ(number, &object);
}

// behaviour: GS-13
TEST(setLookup, internsNothing) {
    genericSet const set = threeNumbers();
    int number = 0;
    int* pointer = nullptr;
    EXPECT_FALSE(set.getValue(L"GS never interned", number));
    EXPECT_FALSE(set.getValuePtr(L"GS never interned", pointer));
    EXPECT_FALSE(scString::find(L"GS never interned"));
}

// behaviour: GS-14
TEST(setRead, convertsAnotherType) {
    genericSet set;
    set.setValue(L"number", 42, false);
    set.setValue(L"text", L"17", false);
    int number = 0;
    string text;
    EXPECT_TRUE(set.getValue(L"number", number));
    EXPECT_EQ(number, 42);
    EXPECT_TRUE(set.getValue(L"number", text));
    EXPECT_EQ(text, L"42");
    EXPECT_TRUE(set.getValue(key(L"text"), number));
    EXPECT_EQ(number, 17);
}

// behaviour: GS-14
TEST(setRead, thatDoesNotConvertLeavesTheTarget) {
    genericSet set;
    set.setValue(L"text", L"no number", false);
    int number = 7;
    EXPECT_FALSE(set.getValue(L"text", number));
    EXPECT_FALSE(set.getValue(key(L"none"), number));
    EXPECT_EQ(number, 7);
}

// behaviour: GS-15
TEST(setErase, removesTheEntry) {
    genericSet set = threeNumbers();
    set.erase(key(L"two"));
    EXPECT_EQ(contentsOf(set), (contents{{L"one", L"1"}, {L"three", L"3"}}));
    EXPECT_EQ(set.size(), 2U);
    set.erase(key(L"two"));
    EXPECT_EQ(set.size(), 2U);
    EXPECT_FALSE(set.genericValue(key(L"two")));
    set.setValue(L"two", 22, false);
    EXPECT_EQ(set.size(), 3U);
}

// behaviour: GS-05, GS-15, GS-16
TEST(setEntries, areTheExpectedOnesAfterAnyOperations) {
    std::vector<scString> keys;
    for (int number = 0; number < 60; ++number)
        keys.push_back(key(string(L"entry " + std::to_wstring(number)).c_str()));
    std::mt19937 random(7);
    genericSet set;
    std::map<scString, int> expected;
    for (int step = 0; step < 6000; ++step) {
        // Between few entries and many.
        std::size_t const among = step % 2000 < 1000 ? keys.size() : 3;
        scString const chosen = keys[random() % among];
        if (random() % 3 != 0) {
            set.setValue(chosen, step, false);
            expected[chosen] = step;
        } else {
            set.erase(chosen);
            expected.erase(chosen);
        }
        if (step % 100 == 50) {
            for (scString const each : keys) {
                if (each == keys[1]) continue;
                set.erase(each);
                expected.erase(each);
            }
        }
        genericSet const copy(set);
        std::map<scString, int> copied;
        copy.forEach([&](scString const& name,
                         genericValue const& value) { return copied.emplace(name, *value.valuePtr<int>()).second; },
                     true);
        ASSERT_EQ(copied, expected);
        ASSERT_EQ(set.size(), expected.size());
        int read = -1;
        ASSERT_EQ(set.getValue(chosen, read), expected.count(chosen) == 1);
        ASSERT_EQ(read, expected.count(chosen) == 1 ? expected[chosen] : -1);
    }
}

// behaviour: GS-16
TEST(setCopy, hasEntriesOfItsOwn) {
    genericSet set = threeNumbers();
    genericSet copy(set);
    int* number = nullptr;
    ASSERT_TRUE(set.getValuePtr(L"one", number));
    *number = 100;
    set.erase(key(L"two"));
    *copy.genericValue(key(L"three")) = genericValue(300);
    EXPECT_EQ(contentsOf(copy), (contents{{L"one", L"1"}, {L"two", L"2"}, {L"three", L"300"}}));
    EXPECT_EQ(contentsOf(set), (contents{{L"one", L"100"}, {L"three", L"3"}}));
}

// behaviour: GS-16
TEST(setCopy, ofAnEmptySetIsEmpty) {
    genericSet const empty;
    genericSet copy(empty);
    EXPECT_EQ(copy.size(), 0U);
    copy.setValue(L"k", 1, false);
    EXPECT_EQ(empty.size(), 0U);
}

// behaviour: GS-17
TEST(setAssignment, replacesAllEntries) {
    genericSet set;
    set.setValue(L"former", 1, false);
    genericSet const source = threeNumbers();
    set = source;
    EXPECT_EQ(contentsOf(set), contentsOf(source));
    EXPECT_NE(set.genericValue(key(L"one")).get(), source.genericValue(key(L"one")).get());
    genericSet const empty;
    set = empty;
    EXPECT_EQ(set.size(), 0U);
}

// behaviour: GS-17
TEST(setAssignment, toItselfKeepsTheEntries) {
    genericSet set = threeNumbers();
    genericSet& same = set;
    set = same;
    EXPECT_EQ(set.size(), 3U);
    set = std::move(same);
    EXPECT_EQ(contentsOf(set), contentsOf(threeNumbers()));
}

// behaviour: GS-18
TEST(setMove, carriesTheEntries) {
    genericSet source = threeNumbers();
    genericValue const* const entry = source.genericValue(key(L"one")).get();
    genericSet moved(std::move(source));
    EXPECT_EQ(moved.genericValue(key(L"one")).get(), entry);
    EXPECT_EQ(source.size(), 0U);
    source.setValue(L"new", 1, false);
    moved = std::move(source);
    EXPECT_EQ(contentsOf(moved), (contents{{L"new", L"1"}}));
    EXPECT_EQ(source.size(), 0U);
    moved = std::move(source);
    EXPECT_EQ(moved.size(), 0U);
}

// behaviour: GS-19
TEST(setWalk, visitsEveryEntryOnce) {
    genericSet const set = threeNumbers();
    std::vector<string> visited;
    EXPECT_TRUE(set.forEach(
        [&](scString const& name, genericValue const& value) {
            visited.push_back(name.string());
            EXPECT_TRUE(value.type() == typeid(int));
            return true;
        },
        true));
    std::sort(visited.begin(), visited.end());
    EXPECT_EQ(visited, (std::vector<string>{L"one", L"three", L"two"}));
}

// behaviour: GS-20
TEST(setWalk, endsAtTheFirstFalseWhenAsked) {
    genericSet const set = threeNumbers();
    int visits = 0;
    EXPECT_FALSE(set.forEach([&](scString const&, genericValue const&) { return ++visits < 2; }, true));
    EXPECT_EQ(visits, 2);
}

// behaviour: GS-20
TEST(setWalk, endsWithFalseAtTheLastEntryToo) {
    genericSet const set = threeNumbers();
    int visits = 0;
    EXPECT_FALSE(set.forEach([&](scString const&, genericValue const&) { return ++visits < 3; }, true));
    EXPECT_EQ(visits, 3);
}

// behaviour: GS-20
TEST(setWalk, goesOnOtherwise) {
    genericSet const set = threeNumbers();
    int visits = 0;
    EXPECT_TRUE(set.forEach([&](scString const&, genericValue const&) { return ++visits < 0; }, false));
    EXPECT_EQ(visits, 3);
}

// behaviour: GS-21
TEST(setWalk, ofAnEmptySetVisitsNothing) {
    genericSet set;
    auto const fail = [](scString const&, genericValue const&) -> bool { throw std::bad_function_call(); };
    EXPECT_TRUE(set.forEach(fail, true));
    EXPECT_TRUE(set.forEach(fail, false));
    EXPECT_TRUE(set.forEach({}, true));
    set.setValue(L"k", 1, false);
    set.erase(key(L"k"));
    EXPECT_TRUE(set.forEach(fail, true));
}

// behaviour: GS-21
TEST(setWalk, withAnEmptyFunctionThrows) {
    genericSet const set = threeNumbers();
    EXPECT_THROW(set.forEach({}, false), std::bad_function_call);
}

// behaviour: GS-22
TEST(setWalk, seesTheSetAsItWasWhenItBegan) {
    genericSet set = threeNumbers();
    int visits = 0;
    set.forEach(
        [&](scString const& name, genericValue const&) {
            ++visits;
            set.erase(name);
            set.setValue(string(L"new " + name.string()).c_str(), visits, false);
            return true;
        },
        true);
    EXPECT_EQ(visits, 3);
    EXPECT_EQ(set.size(), 3U);
    EXPECT_EQ(contentsOf(set).count(L"new one"), 1U);
}

// Reads the set that held it when it ends, on its own thread and on another one.
struct lastLook {
    ~lastLook() {
        if (!set) return;
        sizeSeen = set->size();
        othersSee = anotherThreadGetsThrough([seen = set] { seen->size(); });
    }
    genericSet const* set = nullptr;
    static inline std::size_t sizeSeen = 1000;
    static inline bool othersSee = false;

    // Puts one into the set, which no copy of it knows.
    static void into(genericSet& target) {
        target.setValue(L"looking", lastLook(), false);
        lastLook* held = nullptr;
        target.getValuePtr(L"looking", held);
        held->set = &target;
        sizeSeen = 1000;
        othersSee = false;
    }
};

// behaviour: GS-23
TEST(formerValue, endsAfterTheSetIsFreeAgain) {
    genericSet set;
    lastLook::into(set);
    set.setValue(L"looking", 1, false);
    EXPECT_EQ(lastLook::sizeSeen, 1U);
    EXPECT_TRUE(lastLook::othersSee);
}

// behaviour: GS-23
TEST(erasedValue, endsAfterTheSetIsFreeAgain) {
    genericSet set;
    lastLook::into(set);
    set.erase(key(L"looking"));
    EXPECT_EQ(lastLook::sizeSeen, 0U);
    EXPECT_TRUE(lastLook::othersSee);
}

// behaviour: GS-23
TEST(formerValues, endAfterAnAssignedSetIsFreeAgain) {
    genericSet set;
    lastLook::into(set);
    set = threeNumbers();
    EXPECT_EQ(lastLook::sizeSeen, 3U);
    EXPECT_TRUE(lastLook::othersSee);
    lastLook::into(set);
    genericSet const empty;
    set = empty;
    EXPECT_EQ(lastLook::sizeSeen, 0U);
    EXPECT_TRUE(lastLook::othersSee);
}

// behaviour: GS-27
TEST(formerValues, endFromTheLastKeyOn) {
    std::vector<scString> const keys = {key(L"one"), key(L"two"), key(L"three"), key(L"four"), key(L"five")};
    std::vector<int> expected;
    for (std::size_t at = 0; at < keys.size(); ++at)
        expected.push_back(static_cast<int>(at));
    std::sort(expected.begin(), expected.end(), [&](int left, int right) {
        return keys[static_cast<std::size_t>(right)] < keys[static_cast<std::size_t>(left)];
    });
    for (bool const isAssigned : {false, true}) {
        std::vector<int> ended;
        {
            genericSet set;
            for (std::size_t at = 0; at < keys.size(); ++at)
                set.setValue(keys[at], refPtr<refObj>(new node(static_cast<int>(at), ended)), false);
            if (isAssigned) set = genericSet(genericSet());
        }
        EXPECT_EQ(ended, expected);
    }
}

} // namespace
} // namespace zov::tests
