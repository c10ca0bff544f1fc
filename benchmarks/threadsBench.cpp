// Threads that ask at once: for different classes, without and beside a writer, and for the same eight fields. The
// quotients say how many times the answers of one thread several threads get in the same time. Beside them stand
// threads that only add numbers, and so share nothing: more than they gain is not to be had from the machine.
//
// The writer registers a class of twenty fields, sleeps for a millisecond, and so on.
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "runner.h"

namespace zov::benchmarks {

namespace {

constexpr modelSize size{100, 20};

// A model of its own, and a thread that registers further classes in it as long as this object lives.
class writtenModel {
public:
    writtenModel(runner& runs, contenderKind const& kind)
        : mLoad(runs.loadOf(size)), mModel(filled(runs, kind, mLoad)) {
        mModel->takeQuestions(operation::fieldsByThread);
        mWriter = std::thread([this] { write(); });
    }
    ~writtenModel() {
        mIsOver = true;
        mWriter.join();
    }
    writtenModel(writtenModel const&) = delete;
    writtenModel& operator=(writtenModel const&) = delete;

    contender const& model() const { return *mModel; }

private:
    void write() {
        for (std::size_t number = 0; !mIsOver; ++number) {
            classPlan further = mLoad.classes()[number % mLoad.classes().size()];
            further.mName += std::to_string(number);
            further.mBase = classPlan::noBase;
            mModel->addClass(further);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    workload const& mLoad;
    std::unique_ptr<contender> mModel;
    std::atomic<bool> mIsOver = false;
    std::thread mWriter;
};

// Lets each of the benchmark's threads ask its part of the questions. The parts are those of as many threads as there
// can be, so that each thread looks at as much whether it is alone or not: a share of its own processor's cache that
// grows with the number of threads would pass for a gain. The model is asked for when all threads are there.
void askAtOnce(benchmark::State& state, operation what, std::function<contender const&()> const& model) {
    std::size_t const share = countQuestions / mostThreads();
    std::size_t const first = share * static_cast<std::size_t>(state.thread_index());
    for (auto _ : state)
        benchmark::DoNotOptimize(model().ask(what, first, first + share));
    countEach(state, share);
}

using measureFunction = std::function<void(benchmark::State&)>;

measureFunction withoutWriter(runner& runs, contenderKind const& kind, operation what) {
    return [&runs, &kind, what](benchmark::State& state) {
        auto const& standing = runs.standing(kind, size, what);
        askAtOnce(state, what, [&standing]() -> contender const& { return standing; });
    };
}

// The first thread makes the model before the threads' loops begin, and ends it when all are over.
measureFunction besideWriter(runner& runs, contenderKind const& kind) {
    auto const written = std::make_shared<std::unique_ptr<writtenModel>>();
    return [&runs, &kind, written](benchmark::State& state) {
        if (state.thread_index() == 0) *written = std::make_unique<writtenModel>(runs, kind);
        askAtOnce(state, operation::fieldsByThread, [&written]() -> contender const& { return (*written)->model(); });
        if (state.thread_index() == 0) written->reset();
    };
}

measureFunction addingNumbers(contenderKind const&) {
    return [](benchmark::State& state) {
        constexpr std::size_t additions = 1'024;
        std::size_t sum = 0;
        for (auto _ : state)
            for (std::size_t number = 0; number < additions; ++number)
                benchmark::DoNotOptimize(sum += number);
        countEach(state, additions);
    };
}

bool isAny(contenderKind const&) {
    return true;
}

bool isReadableBesideWriter(contenderKind const& kind) {
    return kind.mCan(operation::addClassBesideReaders, size.mClasses);
}

// The column of what does not depend on a contender.
bool isFirst(contenderKind const& kind) {
    return &kind == &contenderKinds().front();
}

// A row for each number of threads, and one for how much more than one thread each number gets, of the contenders that
// `isMeasured` accepts.
void addRows(runner& runs, std::string const& row, bool (&isMeasured)(contenderKind const&), auto const& measureOf) {
    auto const rowOf = [&row](std::size_t threads) { return row + ", threads: " + std::to_string(threads); };
    std::vector<std::size_t> counts;
    for (std::size_t threads = 1; threads < mostThreads(); threads *= 2)
        counts.push_back(threads);
    counts.push_back(mostThreads());
    for (std::size_t const threads : counts)
        for (auto const& kind : contenderKinds()) {
            if (!isMeasured(kind)) continue;
            runs.add(rowOf(threads), kind.mName, measureOf(kind))->Threads(static_cast<int>(threads))->UseRealTime();
        }
    for (std::size_t const threads : counts)
        if (threads > 1)
            runs.results().addQuotient(row + ", gain by " + std::to_string(threads), {rowOf(1), "ns"},
                                       {rowOf(threads), "ns"});
}

} // namespace

void addThreads(runner& runs) {
    addRows(runs, "T different classes", isAny,
            [&runs](contenderKind const& kind) { return withoutWriter(runs, kind, operation::fieldsByThread); });
    addRows(runs, "T beside a writer", isReadableBesideWriter,
            [&runs](contenderKind const& kind) { return besideWriter(runs, kind); });
    addRows(runs, "T the same fields", isAny,
            [&runs](contenderKind const& kind) { return withoutWriter(runs, kind, operation::sameFields); });
    addRows(runs, "T numbers added", isFirst, addingNumbers);
}

} // namespace zov::benchmarks
