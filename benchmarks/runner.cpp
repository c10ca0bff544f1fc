#include "runner.h"

#include <regex>

namespace zov::benchmarks {

benchmark::internal::Benchmark* runner::add(std::string const& row, std::string const& contenderName,
                                            std::function<void(benchmark::State&)> const& measure) {
    mResults.addRow(row);
    std::string const name = row + "/" + contenderName;
    return benchmark::RegisterBenchmark(name.c_str(), [measure](benchmark::State& state) {
        try {
            measure(state);
        } catch (tooSlow const& failure) {
            state.SkipWithError(failure.what());
        }
    });
}

void runner::before(std::string const& row, std::string const& contenderName, std::function<void()> make) {
    mPreparations.emplace_back(row + "/" + contenderName, std::move(make));
}

void runner::prepare() {
    std::string const filter = benchmark::GetBenchmarkFilter();
    bool const isAll = filter.empty() || filter == "all";
    bool const isInverted = !isAll && filter.front() == '-';
    std::regex const wanted(isAll ? "." : filter.substr(isInverted ? 1 : 0), std::regex::extended);
    for (auto const& [name, make] : mPreparations) {
        if (std::regex_search(name, wanted) == isInverted) continue;
        try {
            make();
        } catch (tooSlow const&) { // the benchmark says so
        }
    }
}

workload const& runner::loadOf(modelSize size) {
    std::lock_guard const guard(mMutex);
    auto& load = mLoads[size];
    if (!load) load = std::make_unique<workload>(size);
    return *load;
}

contender const& runner::standing(contenderKind const& kind, modelSize size, operation asked) {
    std::lock_guard const guard(mMutex);
    auto& made = mStanding[{kind.mName, size}];
    if (!made) made = filled(*this, kind, loadOf(size));
    if (mTaken.emplace(made.get(), asked).second) made->takeQuestions(asked);
    return *made;
}

buildWatch::buildWatch(runner& runs, contenderKind const& kind, std::size_t classes)
    : mRuns(runs), mContender(kind.mName), mClasses(classes) {
    auto const tooMany = mRuns.mTooMany.find(mContender);
    if (tooMany != mRuns.mTooMany.end() && classes >= tooMany->second) giveUp();
}

void buildWatch::check() {
    constexpr std::size_t checksPerLook = 64; // looking at the clock is not free
    constexpr std::clock_t limit = 20 * CLOCKS_PER_SEC;
    if (++mChecks % checksPerLook != 0 || std::clock() - mBegin < limit) return;
    mRuns.mTooMany[mContender] = mClasses;
    giveUp();
}

void buildWatch::giveUp() const {
    throw tooSlow("more than 20 s to build " + std::to_string(mClasses) + " classes");
}

std::unique_ptr<contender> filled(runner& runs, contenderKind const& kind, workload const& load) {
    buildWatch watch(runs, kind, load.classes().size());
    auto made = kind.mMake(load);
    for (auto const& plan : load.classes()) {
        made->addClass(plan);
        watch.check();
    }
    return made;
}

void countEach(benchmark::State& state, std::size_t things) {
    constexpr double nano = 1e-9;
    auto const all = static_cast<double>(state.iterations()) * static_cast<double>(things);
    state.counters["ns"] = benchmark::Counter(all * nano, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

} // namespace zov::benchmarks
