#include "workload.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace zov::benchmarks {

namespace {

constexpr std::uint64_t seed = 20'011;
constexpr std::size_t chainLength = 4;

// Enough that the names of a chain, which differ, are still drawn at random.
std::size_t countFieldNames(modelSize size) {
    return std::max<std::size_t>(5'000, 4 * size.mFieldsPerClass);
}

// So many different names, in whatever letter case.
std::vector<std::string> differentNames(generator& numbers, std::size_t count, std::size_t fewest, std::size_t most) {
    std::vector<std::string> names;
    std::unordered_set<std::string> taken;
    while (names.size() < count) {
        std::string name = numbers.name(fewest, most);
        if (taken.insert(lowered(name)).second) names.push_back(std::move(name));
    }
    return names;
}

char capital(char letter) {
    return static_cast<char>(letter - 'a' + 'A');
}

} // namespace

std::uint64_t generator::next() {
    mState += 0x9e37'79b9'7f4a'7c15;
    std::uint64_t mixed = mState;
    mixed = (mixed ^ (mixed >> 30)) * 0xbf58'476d'1ce4'e5b9;
    mixed = (mixed ^ (mixed >> 27)) * 0x94d0'49bb'1331'11eb;
    return mixed ^ (mixed >> 31);
}

std::string generator::name(std::size_t fewest, std::size_t most) {
    constexpr std::string_view consonants = "bcdfghklmnprstvwz";
    constexpr std::string_view vowels = "aeiou";
    constexpr std::size_t lettersPerWord = 6;
    std::string name;
    std::size_t const length = fewest + below(most - fewest + 1);
    while (name.size() < length) {
        auto const& letters = name.size() % 2 == 0 ? consonants : vowels;
        char const letter = letters[below(letters.size())];
        name += !name.empty() && name.size() % lettersPerWord == 0 ? capital(letter) : letter;
    }
    return name;
}

std::string modelSize::text() const {
    return std::to_string(mClasses) + " x " + std::to_string(mFieldsPerClass);
}

workload::workload(modelSize size)
    : mSize(size), mGenerator(seed), mFieldNames(differentNames(mGenerator, countFieldNames(size), 5, 14)) {
    auto names = differentNames(mGenerator, size.mClasses, 8, 20);
    std::vector<bool> taken; // by the chain that is being made
    for (std::size_t number = 0; number < names.size(); ++number) {
        if (number % chainLength == 0) taken.assign(mFieldNames.size(), false);
        names[number].front() = capital(names[number].front());
        mClasses.push_back(makeClass(number, std::move(names[number]), taken));
    }
}

std::size_t workload::countFields() const {
    return mSize.mClasses * mSize.mFieldsPerClass;
}

bool workload::hasField(classPlan const& asked, std::uint32_t name) const {
    for (auto const* level = &asked;; level = &mClasses[level->mBase]) {
        if (std::ranges::find(level->mFields, name, &fieldPlan::mName) != level->mFields.end()) return true;
        if (level->mBase == classPlan::noBase) return false;
    }
}

classPlan workload::makeClass(std::size_t number, std::string name, std::vector<bool>& taken) {
    classPlan made;
    made.mName = std::move(name);
    if (number % chainLength != 0) made.mBase = number - 1;
    while (made.mFields.size() < mSize.mFieldsPerClass) {
        std::uint32_t const fieldName = drawName();
        if (taken[fieldName]) continue;
        taken[fieldName] = true;
        made.mFields.push_back(makeField(fieldName));
    }
    return made;
}

fieldPlan workload::makeField(std::uint32_t name) {
    fieldPlan made;
    made.mName = name;
    made.mType = static_cast<valueType>(mGenerator.below(5));
    bool const chosen = mGenerator.below(2) == 0;
    made.mHasDefault = mSize.mDefaults && chosen;
    made.mDefault = static_cast<std::int32_t>(1 + mGenerator.below(1'000));
    return made;
}

// Squared, so that a tenth of the names makes up a third of the fields.
std::uint32_t workload::drawName() {
    std::size_t const drawn = mGenerator.below(mFieldNames.size());
    return static_cast<std::uint32_t>(drawn * drawn / mFieldNames.size());
}

std::string lowered(std::string text) {
    for (char& letter : text)
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    return text;
}

} // namespace zov::benchmarks
