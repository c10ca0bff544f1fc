// Registers what is measured with Google Benchmark, and keeps the models that it is measured on.
//
// Each benchmark belongs to one row and one contender of the table and is called "row/contender". What it puts into
// its user counters becomes the table's numbers.
//
// Threads: models are made on first use, by whichever thread comes first; all else is for the main thread.
#pragma once

#include <cstddef>
#include <ctime>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#include "contender.h"
#include "table.h"

namespace zov::benchmarks {

// A contender takes more than twenty seconds of the processor's time to build a model.
class tooSlow : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class runner {
public:
    explicit runner(table& results) : mResults(results) {}

    table& results() { return mResults; }

    // Registers `measure` as the row's benchmark of the contender. It is skipped when it throws tooSlow.
    benchmark::internal::Benchmark* add(std::string const& row, std::string const& contenderName,
                                        std::function<void(benchmark::State&)> const& measure);

    // Has `make` called by prepare() if a benchmark of that row and contender is going to run.
    void before(std::string const& row, std::string const& contenderName, std::function<void()> make);

    // Makes what the benchmarks ask, in their order, before any of them runs: so that the models lie in fresh memory,
    // whichever benchmark comes first.
    void prepare();

    workload const& loadOf(modelSize size);

    // A contender that holds the workload of that size and has taken the questions. Made once. Throws tooSlow.
    contender const& standing(contenderKind const& kind, modelSize size, operation asked);

private:
    friend class buildWatch;

    table& mResults;
    std::vector<std::pair<std::string, std::function<void()>>> mPreparations; // by the benchmarks' names
    std::recursive_mutex mMutex;
    std::map<modelSize, std::unique_ptr<workload>> mLoads;
    std::map<std::pair<std::string, modelSize>, std::unique_ptr<contender>> mStanding;
    std::set<std::pair<contender const*, operation>> mTaken; // questions
    std::map<std::string, std::size_t> mTooMany;             // classes, by contender, that it was too slow to add
};

// Looks after the time while a model is built.
class buildWatch {
public:
    // Throws tooSlow at once for a contender that has been too slow for a model of so many classes before.
    buildWatch(runner& runs, contenderKind const& kind, std::size_t classes);

    // Between classes. Throws tooSlow when the time is over.
    void check();

private:
    [[noreturn]] void giveUp() const;

    runner& mRuns;
    std::string mContender;
    std::size_t mClasses;
    std::size_t mChecks = 0;
    std::clock_t mBegin = std::clock();
};

// A contender that holds the workload. Throws tooSlow.
std::unique_ptr<contender> filled(runner& runs, contenderKind const& kind, workload const& load);

// After the loop: so many things were done in each turn of it. Reports the time for each, over all threads together.
void countEach(benchmark::State& state, std::size_t things);

// What is measured.
void addLookups(runner& runs);
void addBuilding(runner& runs);
void addMemory(runner& runs);
void addThreads(runner& runs);
void addLattice(runner& runs);
void addMemoryWaits(runner& runs);

} // namespace zov::benchmarks
