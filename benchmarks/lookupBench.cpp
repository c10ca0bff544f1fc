// What a question costs, in nanoseconds: by name, with and without an answer, through bases; a walk; a default value;
// and what parts of that cost which no question can do without.
#include <string>
#include <vector>

#include "runner.h"

namespace zov::benchmarks {

namespace {

struct timedOperation {
    operation mAsked;
    std::string mRow;
    bool mNeedsClasses; // means nothing in a model of one class
};

std::vector<timedOperation> const timedOperations = {
    {operation::classByName, "L1 class", true},
    {operation::unknownClass, "L2 unknown class", true},
    {operation::qualifiedField, "L3 class.field", false},
    {operation::unknownField, "L4 class.unknown", false},
    {operation::inheritedField, "L5 field three bases up", true},
    {operation::walk, "L6 walk, a field", false},
    {operation::intDefault, "V1 int default", false},
    {operation::classKey, "P1 part of L1: the key of the name", true},
    {operation::countedClass, "P2 part of L1: counting the class", true},
};

std::vector<modelSize> const sizes = {{100, 20}, {1'000, 20}, {10'000, 20}, {1, 1'000}};

} // namespace

void addLookups(runner& runs) {
    for (auto const& timed : timedOperations)
        for (auto const& size : sizes)
            for (auto const& kind : contenderKinds()) {
                if ((timed.mNeedsClasses && size.mClasses == 1) || !kind.mCan(timed.mAsked, size.mClasses)) continue;
                auto const measure = [&runs, &kind, size, asked = timed.mAsked](benchmark::State& state) {
                    auto const& standing = runs.standing(kind, size, asked);
                    std::size_t const count = standing.countQuestions(asked);
                    for (auto _ : state)
                        benchmark::DoNotOptimize(standing.ask(asked, 0, count));
                    countEach(state, count);
                };
                std::string const row = timed.mRow + ", " + size.text();
                runs.before(row, kind.mName,
                            [&runs, &kind, size, asked = timed.mAsked] { runs.standing(kind, size, asked); });
                runs.add(row, kind.mName, measure);
            }
}

} // namespace zov::benchmarks
