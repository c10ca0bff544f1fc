// Those who are measured: this library, two baselines of our own, and what else keeps classes and fields by name.
//
// A contender is one model. Operations are asked in batches, so that the price of calling a contender does not show.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "questions.h"
#include "workload.h"

namespace zov::benchmarks {

class contender {
public:
    contender() = default;
    contender(contender const&) = delete;
    contender& operator=(contender const&) = delete;
    virtual ~contender() = default;

    // Registers a class with its fields, visible at once. Its base has been added before.
    virtual void addClass(classPlan const& plan) = 0;

    // Adds a field to the class that was added last. Only for kinds that can.
    virtual void addField(fieldPlan const& plan) = 0;

    // Has the contender's library use up what it keeps in store of memory from former models, so that the next one
    // shows what it takes.
    virtual void takeSpareMemory() = 0;

    // Once before they are asked: prepares the questions about the workload that the contender has been filled with, in
    // the form in which a host of it holds names, asks each one, and throws std::runtime_error when an answer is wrong.
    virtual void takeQuestions(operation asked) = 0;

    // How many questions of the operation there are: for a walk, how many fields.
    virtual std::size_t countQuestions(operation asked) const = 0;

    // Asks the questions from `first` to before `last`, or walks all fields. Answers a sum of what was found.
    virtual std::uint64_t ask(operation asked, std::size_t first, std::size_t last) const = 0;
};

// One kind of contender: what it is called, and what it can do in a model of so many classes.
struct contenderKind {
    std::string mName;
    std::function<bool(operation, std::size_t)> mCan;
    std::function<std::unique_ptr<contender>(workload const&)> mMake; // empty, but with all names prepared
};

// All kinds that were built: this library first, then the flat table, the two-level map, and the peers.
std::vector<contenderKind> const& contenderKinds();

// The peers that were not found when the benchmarks were built.
std::vector<std::string> const& missingPeers();

} // namespace zov::benchmarks
