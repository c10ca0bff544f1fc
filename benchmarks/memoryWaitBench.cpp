// How long the machine waits for a line of memory when it learns where the line is from the one before: to judge the
// rows by that ask models too large for a cache.
#include <cstddef>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "runner.h"

namespace zov::benchmarks {

namespace {

// Lines of memory in which each leads to another one, in random order, round in one circle.
class chainOfLines {
public:
    explicit chainOfLines(std::size_t bytes) : mLines(bytes / sizeof(line)) {
        std::vector<std::size_t> order(mLines.size());
        std::iota(order.begin(), order.end(), std::size_t{0});
        generator numbers{order.size()};
        for (std::size_t left = order.size(); left > 1; --left)
            std::swap(order[left - 1], order[numbers.below(left)]);
        for (std::size_t at = 0; at < order.size(); ++at)
            mLines[order[at]].next = &mLines[order[(at + 1) % order.size()]];
    }

    // Goes on from where the last call came to.
    void const* follow(std::size_t steps) {
        for (; steps > 0; --steps)
            mAt = mAt->next;
        return mAt;
    }

private:
    struct alignas(64) line {
        line const* next;
    };

    std::vector<line> mLines;
    line const* mAt = mLines.data();
};

void addChain(runner& runs, std::string const& size, std::size_t bytes) {
    auto const measure = [bytes](benchmark::State& state) {
        chainOfLines chain(bytes);
        constexpr std::size_t steps = 1'024;
        for (auto _ : state)
            benchmark::DoNotOptimize(chain.follow(steps));
        countEach(state, steps);
    };
    runs.add("M a line out of " + size, contenderKinds().front().mName, measure);
}

} // namespace

void addMemoryWaits(runner& runs) {
    addChain(runs, "512 KiB", std::size_t{512} << 10);
    addChain(runs, "8 MiB", std::size_t{8} << 20);
    addChain(runs, "64 MiB", std::size_t{64} << 20);
}

} // namespace zov::benchmarks
