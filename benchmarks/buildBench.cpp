// What registering costs, and whether it costs more the more there is already.
#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "runner.h"
#include "zovMetamodel.h"

namespace zov::benchmarks {

namespace {

// Nanoseconds that `create(number)` takes on average for the numbers from `first` to before `last`.
double nanosecondsEach(std::size_t first, std::size_t last, std::function<void(std::size_t)> const& create) {
    auto const begin = std::chrono::steady_clock::now();
    for (std::size_t number = first; number < last; ++number)
        create(number);
    std::chrono::duration<double, std::nano> const taken = std::chrono::steady_clock::now() - begin;
    return taken.count() / static_cast<double>(last - first);
}

// Creates `count` things. Reports the time for each, for those of the first tenth, and for those of the last.
void measureGrowth(benchmark::State& state, std::size_t count, std::function<void(std::size_t)> const& create) {
    std::size_t const tenth = count / 10;
    double const first = nanosecondsEach(0, tenth, create);
    double const middle = nanosecondsEach(tenth, count - tenth, create);
    double const last = nanosecondsEach(count - tenth, count, create);
    double const each = (first + 8 * middle + last) / 10;
    state.SetIterationTime(each * static_cast<double>(count) * 1e-9);
    state.counters["ns"] = each;
    state.counters["first tenth"] = first;
    state.counters["last tenth"] = last;
}

// How many times the last things of that row cost the first ones.
void addGrowth(runner& runs, std::string const& row) {
    runs.results().addQuotient(row + ", growth", {row, "last tenth"}, {row, "first tenth"});
}

std::string classRow(modelSize size) {
    return "B1 class of 20 fields" + std::string(size.mDefaults ? ", " : " without defaults, ") + size.text();
}

void addClasses(runner& runs, contenderKind const& kind, modelSize size) {
    if (!kind.mCan(operation::addClass, size.mClasses)) return;
    auto const measure = [&runs, &kind, size](benchmark::State& state) {
        auto const& load = runs.loadOf(size);
        for (auto _ : state) {
            buildWatch watch(runs, kind, size.mClasses);
            auto const made = kind.mMake(load);
            measureGrowth(state, size.mClasses, [&](std::size_t number) {
                made->addClass(load.classes()[number]);
                watch.check();
            });
        }
    };
    int const repetitions = size.mClasses < 100'000 ? 3 : 1; // the large one is long enough to be steady
    runs.add(classRow(size), kind.mName, measure)->Iterations(1)->Repetitions(repetitions)->UseManualTime();
}

// Two parts of it for this library: finding the names of the fields, and setting the values of their defaults.
void addPartsOfClasses(runner& runs, modelSize size) {
    auto const measureNames = [&runs, size](benchmark::State& state) {
        auto const& load = runs.loadOf(size);
        std::vector<string> names;
        for (auto const& name : load.fieldNames()) {
            names.push_back(string::fromUtf8(name));
            scString::createFrom(names.back().lower());
        }
        for (auto _ : state)
            measureGrowth(state, size.mClasses, [&](std::size_t number) {
                for (auto const& field : load.classes()[number].mFields)
                    benchmark::DoNotOptimize(scString::findLowered(names[field.mName]));
            });
    };
    auto const measureDefaults = [&runs, size](benchmark::State& state) {
        auto const& load = runs.loadOf(size);
        scString const key = scString::createFrom(L"default");
        for (auto _ : state) {
            std::deque<genericSet> sets;
            measureGrowth(state, size.mClasses, [&](std::size_t number) {
                for (auto const& field : load.classes()[number].mFields)
                    if (field.mHasDefault) sets.emplace_back().setGenericValue(key, genericValue(field.mDefault), true);
            });
        }
    };
    std::string const& own = contenderKinds().front().mName;
    runs.add("P3 part of B1: finding 20 names, " + size.text(), own, measureNames)->Iterations(1)->UseManualTime();
    runs.add("P4 part of B1: the default values, " + size.text(), own, measureDefaults)->Iterations(1)->UseManualTime();
}

void addFields(runner& runs, contenderKind const& kind, std::size_t count) {
    auto const measure = [&runs, &kind, count](benchmark::State& state) {
        auto const& load = runs.loadOf({1, count});
        for (auto _ : state) {
            auto const made = kind.mMake(load);
            made->addClass({load.classes().front().mName, classPlan::noBase, {}});
            auto const& fields = load.classes().front().mFields;
            measureGrowth(state, count, [&](std::size_t number) { made->addField(fields[number]); });
        }
    };
    std::string const row = "B1 field, " + std::to_string(count) + " of one class";
    runs.add(row, kind.mName, measure)->Iterations(1)->UseManualTime();
    addGrowth(runs, row);
}

// Two classes of this library with so many fields each, for relations between them.
class relatedClasses {
public:
    explicit relatedClasses(std::size_t fields) : mModel(metamodel::modelInfo::createModelInfo(false)) {
        mFrom = mModel->createClassInfo(L"Order");
        mTo = mModel->createClassInfo(L"Customer");
        for (std::size_t number = 0; number < fields; ++number) {
            mNames.push_back(L"key" + std::to_wstring(number));
            mFrom->createFieldInfo(mNames.back(), metamodel::eInt, genericSet(), L"");
            mTargets.push_back(mTo->createFieldInfo(mNames.back(), metamodel::eInt, genericSet(), L""));
        }
    }
    ~relatedClasses() { mModel->tearDown(); }
    relatedClasses(relatedClasses const&) = delete;
    relatedClasses& operator=(relatedClasses const&) = delete;

    // The relation of that number, each from another field or to another one than the others.
    void relateToField(std::size_t number) {
        auto const& target = mTargets[number / mNames.size()];
        mFrom->createRelation(mNames[number % mNames.size()], false, target, metamodel::eRef, L"", L"");
    }

    void relateToClass(std::size_t number) {
        mFrom->createRelation(mNames[number % mNames.size()], false, mTo, metamodel::eRef, L"", L"");
    }

private:
    refPtr<metamodel::modelInfo> mModel;
    refPtr<metamodel::classInfo> mFrom;
    refPtr<metamodel::classInfo> mTo;
    std::vector<string> mNames;
    std::vector<refPtr<metamodel::fieldInfo>> mTargets;
};

void addRelations(runner& runs, std::string const& row, void (relatedClasses::*relate)(std::size_t)) {
    constexpr std::size_t fields = 100; // which can be paired in ten thousand ways
    auto const measure = [relate](benchmark::State& state) {
        for (auto _ : state) {
            relatedClasses classes(fields);
            measureGrowth(state, fields * fields, [&](std::size_t number) { (classes.*relate)(number); });
        }
    };
    runs.add(row, contenderKinds().front().mName, measure)->Iterations(1)->Repetitions(1)->UseManualTime();
    addGrowth(runs, row);
}

} // namespace

void addBuilding(runner& runs) {
    for (modelSize const size : {modelSize{1'000, 20}, {10'000, 20}, {10'000, 20, false}, {100'000, 20}})
        for (auto const& kind : contenderKinds())
            addClasses(runs, kind, size);
    addPartsOfClasses(runs, {10'000, 20});
    runs.results().addQuotient("B1 growth: last tenth of 100000 classes to that of 1000",
                               {classRow({100'000, 20}), "last tenth"}, {classRow({1'000, 20}), "last tenth"});
    for (auto const& kind : contenderKinds())
        if (kind.mCan(operation::addField, 1)) addFields(runs, kind, 10'000);
    addRelations(runs, "B1 relation to a field, 10000 of one class", &relatedClasses::relateToField);
    addRelations(runs, "B1 relation to a class, 10000 of one class", &relatedClasses::relateToClass);
}

} // namespace zov::benchmarks
