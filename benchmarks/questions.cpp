#include "questions.h"

#include <algorithm>
#include <iterator>
#include <thread>
#include <utility>

namespace zov::benchmarks {

namespace {

// Draws questions of each kind.
class questioner {
public:
    explicit questioner(workload const& load) : mLoad(load) {}

    question draw(operation asked) {
        switch (asked) {
        case operation::classByName: return aboutClass(anyClass());
        case operation::unknownClass: return aboutNoClass();
        case operation::unknownField: return aboutNoField(anyClass());
        case operation::inheritedField: return aboutInheritedField(anyClass());
        case operation::intDefault: return aboutIntDefault();
        default: break;
        }
        auto const& owner = anyClass();
        return aboutField(owner, owner, owner.mFields[mNumbers.below(owner.mFields.size())]);
    }

    // The eight fields that all threads ask for, over and over.
    question drawSame(std::size_t number) {
        auto const& owner = mLoad.classes().front();
        return aboutField(owner, owner, owner.mFields[number % 8]);
    }

private:
    classPlan const& anyClass() { return mLoad.classes()[mNumbers.below(mLoad.classes().size())]; }

    static question aboutClass(classPlan const& asked) { return {asked.mName, "", &asked, nullptr, nullptr}; }

    // Eleven letters at least, the last two in capitals, as no class's.
    question aboutNoClass() { return {mNumbers.name(9, 18) + "XX", "", nullptr, nullptr, nullptr}; }

    question aboutField(classPlan const& asked, classPlan const& owner, fieldPlan const& field) {
        return {asked.mName, mLoad.fieldNames()[field.mName], &asked, &owner, &field};
    }

    question aboutNoField(classPlan const& asked) {
        if (mNumbers.below(2) == 0) return {asked.mName, mNumbers.name(5, 12) + "XX", &asked, nullptr, nullptr};
        auto name = static_cast<std::uint32_t>(mNumbers.below(mLoad.fieldNames().size()));
        while (mLoad.hasField(asked, name))
            name = static_cast<std::uint32_t>((name + 1) % mLoad.fieldNames().size());
        return {asked.mName, mLoad.fieldNames()[name], &asked, nullptr, nullptr};
    }

    question aboutInheritedField(classPlan const& asked) {
        auto const* owner = &asked;
        for (int up = 0; up < 3; ++up) {
            if (owner->mBase == classPlan::noBase) return aboutInheritedField(anyClass());
            owner = &mLoad.classes()[owner->mBase];
        }
        return aboutField(asked, *owner, owner->mFields[mNumbers.below(owner->mFields.size())]);
    }

    question aboutIntDefault() {
        for (;;) {
            auto const& owner = anyClass();
            auto const& field = owner.mFields[mNumbers.below(owner.mFields.size())];
            if (field.mHasDefault && field.mType == valueType::integer) return aboutField(owner, owner, field);
        }
    }

    workload const& mLoad;
    generator mNumbers{16'384};
};

// Puts the questions about each thread's classes together; among themselves they stay in random order.
void sortByThread(workload const& load, std::vector<question>& questions) {
    auto const threadOf = [&load](question const& drawn) {
        return static_cast<std::size_t>(drawn.mAsked - load.classes().data()) % mostThreads();
    };
    std::ranges::stable_sort(questions, {}, threadOf);
}

} // namespace

std::vector<question> makeQuestions(workload const& load, operation asked) {
    bool const hasChains = load.classes().size() >= 4;
    bool const isQuestion = asked != operation::walk && asked < operation::addClass;
    if (!isQuestion || (asked == operation::inheritedField && !hasChains)) return {};
    questioner draws(load);
    std::vector<question> questions;
    for (std::size_t number = 0; number < countQuestions; ++number)
        questions.push_back(asked == operation::sameFields ? draws.drawSame(number) : draws.draw(asked));
    if (asked == operation::fieldsByThread) sortByThread(load, questions);
    return questions;
}

std::size_t mostThreads() {
    return std::max<std::size_t>(2, std::thread::hardware_concurrency());
}

} // namespace zov::benchmarks
