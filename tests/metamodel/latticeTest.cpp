// Searches through bases that are reached on many ways: what is found is the first match, depth first in the order of
// name handles, and asking takes no longer than there are classes, however many ways lead to each.
#include "zovMetamodel.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <random>
#include <vector>

#include "graphFixture.h"
#include "numberedNames.h"

namespace zov::metamodel {
namespace {

using tests::numbered;
using tests::numberedNames;
using tests::ownModel;

refPtr<fieldInfo> addField(refPtr<classInfo> const& owner, string const& name) {
    return owner->createFieldInfo(name, eInt, genericSet(), L"");
}

// Layers of `width` classes, each derived from all of the layer above; below them one class derived from the last
// layer, above them one that all of the first are derived from. The last class of each layer, in the order of handles,
// and the top have a field, a relation and a property of their own.
class lattice {
public:
    lattice(std::size_t width, std::size_t depth) {
        auto const given = numberedNames(L"latticed", width * depth);
        addTo(mTop, L"at the top");
        std::vector<refPtr<classInfo>> above{mTop};
        for (std::size_t layer = 0; layer < depth; ++layer) {
            std::vector<refPtr<classInfo>> here;
            for (std::size_t at = 0; at < width; ++at) {
                here.push_back(mModel->createClassInfo(given[layer * width + at]));
                for (auto const& base : above)
                    here.back()->addBaseClass(base);
            }
            addTo(*std::max_element(here.begin(), here.end(),
                                    [](auto const& one, auto const& other) { return one->scName() < other->scName(); }),
                  numbered(L"in layer ", layer));
            above = here;
        }
        for (auto const& base : above)
            mBottom->addBaseClass(base);
    }

    // All that can be asked of the bottom, for a name that one class of the lattice has, or none.
    void expectAnswers(string const& name, bool isThere) const {
        EXPECT_EQ(bool(mBottom->fieldInfo(name, true, true)), isThere);
        EXPECT_EQ(bool(mModel->classInfo(L"bottom", false)->toRelation(name, true)), isThere);
        string text = L"before";
        EXPECT_EQ(mBottom->getUserProperty(name, text, true), isThere);
        EXPECT_EQ(text, isThere ? name : string(L"before"));
        refPtr<refObj> object;
        EXPECT_FALSE(mBottom->getUserProperty(name, object, true));
        EXPECT_FALSE(mBottom->getUserProperty(L"private " + name, text, true));
        genericValue value;
        EXPECT_EQ(mBottom->getUserProperty(name, value, true), isThere);
    }

    ownModel const mModel;
    refPtr<classInfo> const mTop = mModel->createClassInfo(L"top");
    refPtr<classInfo> const mBottom = mModel->createClassInfo(L"bottom");
    refPtr<classInfo> const mApart = mModel->createClassInfo(L"apart");

private:
    void addTo(refPtr<classInfo> const& owner, string const& name) const {
        addField(owner, name);
        owner->createRelation(name, false, mApart, eRef, name, L"");
        owner->setUserProperty(name, name, true);
        owner->setUserProperty(L"private " + name, name, false);
    }
};

void expectAllAnswers(std::size_t width, std::size_t depth) {
    SCOPED_TRACE(testing::Message() << "width " << width << ", depth " << depth);
    lattice const all(width, depth);
    all.expectAnswers(L"at the top", true);
    for (std::size_t layer = 0; layer < depth; ++layer)
        all.expectAnswers(numbered(L"in layer ", layer), true);
    addField(all.mApart, L"elsewhere");
    for (string const unknown : {L"elsewhere", L"never heard of in any lattice"})
        all.expectAnswers(unknown, false);
    EXPECT_TRUE(all.mBottom->isDerivedFrom(all.mTop));
    EXPECT_FALSE(all.mBottom->isDerivedFrom(all.mApart));
    EXPECT_FALSE(all.mBottom->isDerivedFrom(all.mBottom));
    EXPECT_FALSE(all.mTop->isDerivedFrom(all.mBottom));
}

// behaviour: CI-08, CF-07, CR-11, UP-03
TEST(lattices, ofFewLayersAreSearchedWhole) {
    for (std::size_t width : {1u, 2u, 3u})
        for (std::size_t depth = 0; depth <= 6; ++depth)
            expectAllAnswers(width, depth);
}

// behaviour: CI-08, CF-07, CR-11, UP-03
TEST(lattices, ofManyClassesSideBySideOrInARowAreSearchedWhole) {
    expectAllAnswers(400, 1);
    expectAllAnswers(40, 2);
    expectAllAnswers(1, 300);
}

// More classes than a search remembers without taking memory.
// behaviour: CI-08, CI-13, CF-07, CR-11, UP-03
TEST(lattices, ofAThousandBasesAreSearchedWhole) {
    expectAllAnswers(1000, 1);
    expectAllAnswers(30, 60);
}

// A search that went every way would not come back: there are 2 to the 40th of them and more.
// behaviour: CI-08, CI-13, CF-07, CR-11, UP-03
TEST(deepLattices, areSearchedInNoTimeByFieldsRelationsAndProperties) {
    expectAllAnswers(2, 40);
    expectAllAnswers(3, 40);
    expectAllAnswers(20, 20);
}

// behaviour: CI-04, CI-08, CI-13
TEST(deepLattices, tellInNoTimeWhatIsNoBase) {
    for (std::size_t width : {2u, 3u}) {
        lattice const all(width, 40);
        EXPECT_FALSE(all.mBottom->isDerivedFrom(all.mApart));
        EXPECT_FALSE(all.mBottom->isDerivedFrom(const_refPtr<classInfo>()));
        EXPECT_TRUE(all.mBottom->isDerivedFrom(all.mTop));
        all.mTop->addBaseClass(all.mApart);
        EXPECT_TRUE(all.mBottom->isDerivedFrom(all.mApart));
    }
}

// behaviour: CF-10, CI-08, CI-13
TEST(deepLattices, haveStandingFieldsCreatedAndRefusedInNoTime) {
    lattice const all(3, 40);
    auto const standing = all.mBottom->createFieldInfo(all.mTop, L"at the top");
    EXPECT_EQ(standing->baseField(), all.mTop->fieldInfo(L"at the top", false, false));
    EXPECT_TRUE(zov::tests::throwsFalse([&] { all.mBottom->createFieldInfo(all.mApart, L"at the top"); }));
    EXPECT_TRUE(zov::tests::throwsFalse([&] { all.mBottom->createFieldInfo(all.mTop, L"unknown"); }));
}

// behaviour: CI-08, TD-03
TEST(deepLattices, areLetGoInTheMiddle) {
    lattice const all(3, 40);
    refPtr<classInfo> between;
    all.mBottom->forEachBaseClass(
        [&](classInfo::entry const& entry) {
            between = entry.second;
            entry.second->tearDown();
            return true;
        },
        true);
    EXPECT_FALSE(all.mBottom->isDerivedFrom(all.mTop));
    EXPECT_TRUE(all.mBottom->isDerivedFrom(between));
    EXPECT_FALSE(all.mBottom->fieldInfo(L"at the top", true, true));
    EXPECT_FALSE(all.mBottom->toRelation(L"at the top", true));
}

// ---- the order of the search

// A random lattice of which many classes could answer, beside a search that goes every way.
class randomLattice {
public:
    explicit randomLattice(unsigned seed) : mRandom(seed) {
        for (auto const& name : numberedNames(L"any", 14)) {
            mClasses.push_back(mModel->createClassInfo(name));
            mBases.emplace_back();
        }
        mTarget = mModel->createClassInfo(L"target");
        for (auto const& each : mClasses)
            fill(each);
        for (std::size_t at = 1; at < mClasses.size(); ++at)
            derive(at);
    }

    void expectFirstMatches() {
        for (std::size_t at = 0; at < mClasses.size(); ++at) {
            SCOPED_TRACE(at);
            for (string const name : {L"x", L"y", L"z"}) {
                expectField(at, name);
                EXPECT_EQ(mClasses[at]->toRelation(name, true), relation(at, name));
                expectProperties(at, name);
            }
            for (std::size_t other = 0; other < mClasses.size(); ++other)
                EXPECT_EQ(mClasses[at]->isDerivedFrom(mClasses[other]), derives(at, other));
        }
    }

private:
    bool chance(unsigned percent) { return mRandom() % 100 < percent; }

    void fill(refPtr<classInfo> const& owner) {
        for (string const name : {L"x", L"y", L"z"}) {
            if (!chance(35)) continue;
            addField(owner, name);
            if (chance(60)) owner->createRelation(name, false, mTarget, eRef, name, L"");
            if (chance(60)) owner->setUserProperty(name, owner->scName().string(), true);
            if (chance(30)) owner->setUserProperty(name, refPtr<refObj>(mTarget), true);
            if (chance(50)) owner->setUserProperty(name, L"private", false);
        }
    }

    void derive(std::size_t at) {
        for (std::size_t base = at; base-- > 0;) {
            if (!chance(base + 4 > at ? 60 : 15)) continue;
            mClasses[at]->addBaseClass(mClasses[base]);
            mBases[at].emplace(mClasses[base]->scName(), base);
        }
    }

    refPtr<fieldInfo> field(std::size_t at, string const& name, bool searchBases, bool searchAliases) const {
        if (auto const own = mClasses[at]->fieldInfo(name, false, false)) return own;
        if (!searchBases) return nullptr;
        for (auto const& [handle, base] : mBases[at])
            if (auto const found = field(base, name, searchAliases, true)) return found;
        return nullptr;
    }

    void expectField(std::size_t at, string const& name) {
        for (bool const searchBases : {false, true})
            for (bool const searchAliases : {false, true})
                EXPECT_EQ(mClasses[at]->fieldInfo(name, searchBases, searchAliases),
                          field(at, name, searchBases, searchAliases));
        EXPECT_EQ(mModel->fieldInfo(mClasses[at]->scName().string(), name, true), field(at, name, true, false));
    }

    const_refPtr<relationInfo> relation(std::size_t at, string const& name) const {
        if (auto const own = mClasses[at]->toRelation(name, false)) return own;
        for (auto const& [handle, base] : mBases[at])
            if (auto const found = relation(base, name)) return found;
        return nullptr;
    }

    // The first inheritable value that reads as a T.
    template <class T>
    bool inherited(std::size_t at, scString name, T& out) const {
        for (auto const& [handle, base] : mBases[at]) {
            bool found = false;
            mClasses[base]->forEachUserProperty(
                true,
                [&](scString const& key, genericValue const& value) {
                    found = found || (key == name && value.getValue(out));
                    return true;
                },
                true);
            if (found || inherited(base, name, out)) return true;
        }
        return false;
    }

    void expectProperties(std::size_t at, string const& name) const {
        if (mClasses[at]->fieldInfo(name, false, false)) return; // its own values are not the question here
        scString const key = scString::createFrom(name);
        string text;
        string expectedText;
        EXPECT_EQ(mClasses[at]->getUserProperty(name, text, true), inherited(at, key, expectedText));
        EXPECT_EQ(text, expectedText);
        refPtr<refObj> object;
        refPtr<refObj> expectedObject;
        EXPECT_EQ(mClasses[at]->getUserProperty(name, object, true), inherited(at, key, expectedObject));
        EXPECT_EQ(object, expectedObject);
    }

    bool derives(std::size_t at, std::size_t other) const {
        for (auto const& [handle, base] : mBases[at])
            if (base == other || derives(base, other)) return true;
        return false;
    }

    std::mt19937 mRandom;
    ownModel const mModel;
    refPtr<classInfo> mTarget;
    std::vector<refPtr<classInfo>> mClasses;
    std::vector<std::map<scString, std::size_t>> mBases;
};

// behaviour: CF-07, CF-25, CI-04, CI-08, CR-11, UP-03, UP-06
TEST(lattices, answerWithTheFirstMatchDepthFirstInTheOrderOfHandles) {
    for (unsigned seed = 1; seed <= 60 && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        randomLattice(seed).expectFirstMatches();
    }
}

// Each class applies its own case rule to the text that was asked for, and may be reached in both ways.
// behaviour: CF-09, CI-08
TEST(lattices, applyEachClassesOwnCaseRuleWhicheverWayItIsReached) {
    ownModel const exact(true);
    ownModel const any;
    auto const top = exact->createClassInfo(L"top");
    auto const same = addField(top, L"Width");
    addField(top, L"width");
    auto const bottom = any->createClassInfo(L"bottom");
    for (auto const& name : numberedNames(L"between", 6)) {
        auto const between = (bottom->isDerivedFrom(top) ? any : exact)->createClassInfo(name);
        between->addBaseClass(top);
        bottom->addBaseClass(between);
    }
    EXPECT_EQ(bottom->fieldInfo(L"Width", true, true), same);
    EXPECT_EQ(bottom->fieldInfo(L"WIDTH", true, true), nullptr);
    addField(any->classInfo(L"between5", false), L"Height");
    EXPECT_EQ(bottom->fieldInfo(L"HEIGHT", true, true)->scName().string(), L"height");
}

// A search may be made inside a walk over the bases, and inside another search's answer.
// behaviour: CI-03, CI-08
TEST(lattices, areSearchedInsideTheirOwnWalks) {
    lattice const all(3, 5);
    std::size_t visits = 0;
    all.mBottom->forEachBaseClass(
        [&](classInfo::entry const& one) {
            return one.second->forEachBaseClass(
                [&](classInfo::entry const& other) {
                    ++visits;
                    EXPECT_TRUE(one.second->isDerivedFrom(other.second));
                    EXPECT_TRUE(other.second->fieldInfo(L"at the top", true, true));
                    all.expectAnswers(L"at the top", true);
                    all.expectAnswers(L"unknown", false);
                    return true;
                },
                true);
        },
        true);
    EXPECT_EQ(visits, 9u);
}

} // namespace
} // namespace zov::metamodel
