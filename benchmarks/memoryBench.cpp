// How many bytes a built model takes, by what the allocator has handed out, for each of its fields. Classes, indexes
// and defaults are in it. This library's interned names are not, as models share them; the peers' own copies are.
#include <cstddef>
#include <string>

#include "allocatedBytes.h"
#include "runner.h"

namespace zov::benchmarks {

namespace {

void measureMemory(benchmark::State& state, runner& runs, contenderKind const& kind, workload const& load) {
    for (auto _ : state) {
        buildWatch watch(runs, kind, load.classes().size());
        auto const made = kind.mMake(load);
        made->takeSpareMemory();
        std::size_t const before = allocatedBytes();
        for (auto const& plan : load.classes()) {
            made->addClass(plan);
            watch.check();
        }
        auto const taken = static_cast<double>(allocatedBytes() - before);
        state.counters["bytes a field"] = taken / static_cast<double>(load.countFields());
    }
}

} // namespace

void addMemory(runner& runs) {
    for (std::size_t const count : {10'000U, 100'000U})
        for (bool const defaults : {false, true})
            for (auto const& kind : contenderKinds()) {
                if (!kind.mCan(operation::addClass, count)) continue;
                modelSize const size{count, 20, defaults};
                auto const measure = [&runs, &kind, size](benchmark::State& state) {
                    measureMemory(state, runs, kind, runs.loadOf(size));
                };
                std::string const row = "R1 " + size.text() + (defaults ? ", half with default" : ", no defaults");
                runs.add(row, kind.mName, measure)->Iterations(1)->Repetitions(1);
            }
}

} // namespace zov::benchmarks
