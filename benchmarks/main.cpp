// Runs all benchmarks, in one process and in random order, and prints the table of their medians.
//
//     zovBenchmarks                                   everything
//     zovBenchmarks --benchmark_filter='^L3'          some of it; all options are Google Benchmark's
#include <cstdio>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "runner.h"
#include "table.h"

namespace {

using zov::benchmarks::table;

// Puts the medians into the table, or the numbers themselves where there is only one run, and shows how far it is.
class tableReporter : public benchmark::BenchmarkReporter {
public:
    explicit tableReporter(table& results) : mResults(results) {}

    bool ReportContext(Context const&) override { return true; }

    void ReportRuns(std::vector<Run> const& runs) override {
        for (auto const& run : runs)
            if (run.aggregate_name == "median" || run.repetitions <= 1) take(run);
        std::cerr << '.' << std::flush;
    }

    void Finalize() override { std::cerr << '\n'; }

private:
    void take(Run const& run) {
        std::string const& name = run.run_name.function_name;
        auto const slash = name.rfind('/');
        if (run.error_occurred) return mResults.addNote(name + ": " + run.error_message);
        for (auto const& [counter, value] : run.counters)
            mResults.setCell(name.substr(0, slash), counter, name.substr(slash + 1), value);
    }

    table& mResults;
};

// Google Benchmark reads its options in order, so that the user's own come after these and win.
std::vector<char*> withDefaults(int argc, char** argv) {
    static std::vector<std::string> defaults = {
        "--benchmark_min_time=0.05",
        "--benchmark_repetitions=5",
        "--benchmark_enable_random_interleaving=true",
        "--benchmark_report_aggregates_only=true",
    };
    std::vector<char*> arguments = {argv[0]};
    for (auto& option : defaults)
        arguments.push_back(option.data());
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    return arguments;
}

void runAll(int argc, char** argv) {
    auto arguments = withDefaults(argc, argv);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) throw std::runtime_error("unknown option");

    table results;
    zov::benchmarks::runner runs(results);
    addLookups(runs);
    addBuilding(runs);
    addMemory(runs);
    addThreads(runs);
    addLattice(runs);
    addMemoryWaits(runs);
    runs.prepare();
    tableReporter reporter(results);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    results.print(std::cout);
}

} // namespace

int main(int argc, char** argv) {
    try {
        runAll(argc, argv);
        return 0;
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "zovBenchmarks: %s\n", failure.what());
        return 1;
    }
}
