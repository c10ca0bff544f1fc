// Classes with several bases that share theirs: layers of two classes, each derived from both classes of the layer
// above. Every layer doubles the number of paths to the top, so that a search that takes each path would never end.
// Where one question takes longer than a tenth of a second, that lattice is left out.
//
// The numbers are nanoseconds for each class above the one that is asked.
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "runner.h"
#include "zovMetamodel.h"

namespace zov::benchmarks {

namespace {

using metamodel::classInfo;
using metamodel::modelInfo;

class lattice {
public:
    explicit lattice(std::size_t depth) : mModel(modelInfo::createModelInfo(false)) {
        mStranger = mModel->createClassInfo(L"Stranger");
        std::vector<refPtr<classInfo>> above;
        for (std::size_t layer = 0; layer < depth; ++layer)
            above = {derivedFrom(above, layer, L"left"), derivedFrom(above, layer, L"right")};
        mBottom = derivedFrom(above, depth, L"bottom");
    }
    ~lattice() { mModel->tearDown(); }
    lattice(lattice const&) = delete;
    lattice& operator=(lattice const&) = delete;

    // Questions that each class has to be asked for: the answer is no, or at the top.
    bool isDerivedFromStranger() const { return mBottom->isDerivedFrom(mStranger); }
    bool isDerivedFromTop() const { return mBottom->isDerivedFrom(mTop); }
    bool hasUnknownField() const { return static_cast<bool>(mBottom->fieldInfo(mUnknownName, true, true)); }
    bool hasTopField() const { return static_cast<bool>(mBottom->fieldInfo(mTopName, true, true)); }

private:
    refPtr<classInfo> derivedFrom(std::vector<refPtr<classInfo>> const& bases, std::size_t layer, string const& name) {
        return mModel->createClassInfo(name + std::to_wstring(layer), [&](refPtr<classInfo> const& made) {
            for (auto const& base : bases)
                made->addBaseClass(base);
            made->createFieldInfo(L"in_" + name + std::to_wstring(layer), metamodel::eInt, genericSet(), L"");
            if (!mTop) mTop = made;
            return true;
        });
    }

    refPtr<modelInfo> mModel;
    refPtr<classInfo> mStranger;
    refPtr<classInfo> mTop;
    refPtr<classInfo> mBottom;
    string mTopName = L"in_left0";
    string mUnknownName = L"in_nothing";
};

using latticeQuestion = bool (lattice::*)() const;

constexpr std::size_t depths[] = {4, 8, 12, 16};

// The lattice of that depth; null when this one, or one that is not as deep, takes too long to answer.
std::unique_ptr<lattice> answeringLattice(std::size_t wanted, latticeQuestion question) {
    std::unique_ptr<lattice> made;
    for (std::size_t const depth : depths) {
        if (depth > wanted) break;
        made = std::make_unique<lattice>(depth);
        auto const begin = std::chrono::steady_clock::now();
        (*made.*question)();
        if (std::chrono::steady_clock::now() - begin > std::chrono::milliseconds(100)) return nullptr;
    }
    return made;
}

void addQuestion(runner& runs, std::string const& row, latticeQuestion question) {
    for (std::size_t const depth : depths) {
        auto const measure = [depth, question](benchmark::State& state) {
            auto const asked = answeringLattice(depth, question);
            if (!asked) return state.SkipWithError("one question takes longer than 100 ms");
            for (auto _ : state)
                benchmark::DoNotOptimize((*asked.*question)());
            countEach(state, 2 * depth);
        };
        runs.add(row + ", depth " + std::to_string(depth), contenderKinds().front().mName, measure);
    }
}

} // namespace

void addLattice(runner& runs) {
    addQuestion(runs, "D derived from the top", &lattice::isDerivedFromTop);
    addQuestion(runs, "D derived from a stranger", &lattice::isDerivedFromStranger);
    addQuestion(runs, "D field of the top", &lattice::hasTopField);
    addQuestion(runs, "D unknown field", &lattice::hasUnknownField);
}

} // namespace zov::benchmarks
