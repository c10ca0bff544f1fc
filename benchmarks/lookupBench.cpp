// What a question costs: lookups in models of several sizes, beside a plain hash map of the same names as the
// baseline of the same run.
#include <benchmark/benchmark.h>

#include <string>
#include <unordered_map>
#include <vector>

#include "zovMetamodel.h"

namespace {

using zov::genericSet;
using zov::refPtr;
using zov::string;
using zov::metamodel::classInfo;
using zov::metamodel::eInt;
using zov::metamodel::fieldInfo;
using zov::metamodel::modelInfo;

string className(long number) {
    return string::sformat(L"Assembly%ld", number);
}
string fieldName(long number) {
    return string::sformat(L"quantity%ld", number);
}

constexpr long fieldsPerClass = 20;

// A model of `classes` classes, each with twenty fields, and the qualified names of some of its fields.
class sampleModel {
public:
    explicit sampleModel(long classes) : mModel(modelInfo::createModelInfo(false)) {
        for (long number = 0; number < classes; ++number) {
            mModel->createClassInfo(className(number), [](refPtr<classInfo> made) {
                for (long field = 0; field < fieldsPerClass; ++field) {
                    made->createFieldInfo(fieldName(field), eInt, genericSet(), L"");
                }
                return true;
            });
            mClasses.push_back(className(number));
            mFields.push_back(className(number) + L"." + fieldName(number % fieldsPerClass));
        }
    }
    ~sampleModel() { mModel->tearDown(); }
    sampleModel(sampleModel const&) = delete;
    sampleModel& operator=(sampleModel const&) = delete;

    refPtr<modelInfo> mModel;
    std::vector<string> mClasses;
    std::vector<string> mFields;
};

void classByName(benchmark::State& state) {
    sampleModel const sample(state.range(0));
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(sample.mModel->classInfo(sample.mClasses[next], false));
        if (++next == sample.mClasses.size()) next = 0;
    }
}
BENCHMARK(classByName)->Arg(100)->Arg(1000);

void qualifiedField(benchmark::State& state) {
    sampleModel const sample(state.range(0));
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(sample.mModel->fieldInfo(sample.mFields[next], false));
        if (++next == sample.mFields.size()) next = 0;
    }
}
BENCHMARK(qualifiedField)->Arg(100)->Arg(1000);

void unknownClass(benchmark::State& state) {
    sampleModel const sample(state.range(0));
    string const unknown = L"Unheard.of";
    for (auto _ : state)
        benchmark::DoNotOptimize(sample.mModel->classInfo(unknown, false));
}
BENCHMARK(unknownClass)->Arg(100)->Arg(1000);

// The baseline: exact names in a hash map, without folding, counting or publishing.
void baselineHashMap(benchmark::State& state) {
    sampleModel const sample(state.range(0));
    std::unordered_map<std::wstring, std::size_t> map;
    for (auto const& name : sample.mFields)
        map.emplace(name, map.size());
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(map.find(sample.mFields[next]));
        if (++next == sample.mFields.size()) next = 0;
    }
}
BENCHMARK(baselineHashMap)->Arg(100)->Arg(1000);

void registerClass(benchmark::State& state) {
    for (auto _ : state) {
        sampleModel const sample(state.range(0));
        benchmark::DoNotOptimize(sample.mModel->countClasses());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(registerClass)->Arg(100)->Arg(1000);

} // namespace
