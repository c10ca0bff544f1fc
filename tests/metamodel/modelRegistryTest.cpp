// The model as a registry of classes.
#include "zovMdlModelInfo.h"

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "modelFixture.h"

namespace zov::metamodel {
namespace {

using tests::ownClass;
using tests::ownModel;
using zov::tests::eventLog;
using zov::tests::throwsFalse;

// The keys and classes of a walk, in the order of visiting.
std::vector<std::pair<scString, refPtr<classInfo>>> walked(modelInfo const& model) {
    std::vector<std::pair<scString, refPtr<classInfo>>> found;
    EXPECT_TRUE(model.forEachClassInfo(
        [&](classInfo::entry const& entry) {
            found.emplace_back(entry.first, entry.second);
            return true;
        },
        true));
    return found;
}

// behaviour: MR-01
TEST(modelRegistry, beginsEmpty) {
    ownModel const model;
    EXPECT_EQ(model->countClasses(), 0u);
    EXPECT_EQ(model->classInfo(L"part", false), nullptr);
    EXPECT_EQ(model->classInfo(L"part", true), nullptr);
    EXPECT_EQ(model->classInfo(L"", true), nullptr);
    EXPECT_TRUE(walked(*model.pointer()).empty());
}

// behaviour: MR-02
TEST(modelRegistry, findsAClassWhateverTheLetterCase) {
    ownModel const model;
    auto const part = model->createClassInfo(L"Part");
    ASSERT_NE(part, nullptr);
    for (wchar_t const* name : {L"PART", L"part", L"Part", L"pArT"})
        EXPECT_EQ(model->classInfo(name, false), part);
    EXPECT_EQ(model->classInfo(L"par", false), nullptr);
    EXPECT_EQ(model->classInfo(L"parts", false), nullptr);
    EXPECT_EQ(model->classInfo(L" part", false), nullptr);
}

// behaviour: MR-02
TEST(modelRegistry, foldsLettersBeyondAscii) {
    ownModel const model;
    auto const street = model->createClassInfo(L"\u00C4RA\u0416");
    EXPECT_EQ(model->classInfo(L"\u00E4ra\u0436", false), street);
    EXPECT_EQ(street->scName().string(), L"\u00E4ra\u0436");
    EXPECT_TRUE(throwsFalse([&] { model->createClassInfo(L"\u00E4RA\u0416"); }));
}

// behaviour: MR-02
TEST(modelRegistry, takesTheEmptyNameLikeAnyOther) {
    ownModel const model;
    auto const unnamed = model->createClassInfo(L"");
    EXPECT_EQ(model->classInfo(L"", false), unnamed);
    EXPECT_TRUE(throwsFalse([&] { model->createClassInfo(L""); }));
}

// behaviour: MR-03
TEST(modelRegistry, refusesATakenNameWithoutAskingOrReporting) {
    ownModel const model;
    auto const part = model->createClassInfo(L"Part");
    eventLog log;
    bool asked = false;
    EXPECT_TRUE(
        throwsFalse([&] { model->createClassInfo(L"pART", [&](refPtr<classInfo> const&) { return asked = true; }); }));
    EXPECT_FALSE(asked);
    EXPECT_EQ(log.take(), tests::events());
    EXPECT_EQ(model->classInfo(L"part", false), part);
    EXPECT_EQ(model->countClasses(), 1u);
}

// behaviour: MR-03
TEST(modelRegistry, registersFurtherClassesAfterARefusal) {
    ownModel const model;
    model->createClassInfo(L"a");
    EXPECT_TRUE(throwsFalse([&] { model->createClassInfo(L"a"); }));
    EXPECT_NE(model->createClassInfo(L"b"), nullptr);
    EXPECT_EQ(model->countClasses(), 2u);
}

// behaviour: MR-04
TEST(modelRegistry, findsALowerCaseClassByThatSpellingOnlyWhenCaseMatters) {
    ownModel const model(true);
    auto const part = model->createClassInfo(L"part");
    EXPECT_EQ(model->classInfo(L"part", false), part);
    EXPECT_EQ(model->classInfo(L"Part", false), nullptr);
    EXPECT_EQ(model->classInfo(L"PART", true), nullptr);
    EXPECT_TRUE(throwsFalse([&] { model->createClassInfo(L"part"); }));
    EXPECT_EQ(model->getOrCreateClassInfo(L"part"), part);
}

// behaviour: MR-07
TEST(modelRegistry, filesACapitalisedClassUnderLowerCaseWhenCaseMatters) {
    ownModel const model(true);
    auto const part = model->createClassInfo(L"Part");
    EXPECT_EQ(part->scName().string(), L"part");
    EXPECT_EQ(model->classInfo(L"Part", false), nullptr);
    EXPECT_EQ(model->classInfo(L"Part", true), nullptr);
    EXPECT_EQ(model->classInfo(L"part", false), part);
    EXPECT_TRUE(throwsFalse([&] { model->createClassInfo(L"part"); }));
}

// behaviour: MR-07, MR-13
TEST(modelRegistry, replacesACapitalisedClassThatIsCreatedAgain) {
    ownModel const model(true);
    ownClass const first(model->createClassInfo(L"Part"));
    auto const second = model->createClassInfo(L"Part");
    EXPECT_NE(second, first.pointer());
    EXPECT_EQ(model->classInfo(L"part", false), second);
    EXPECT_EQ(model->countClasses(), 1u);
    EXPECT_EQ(first.pointer()->refCount(), 1u);
}

// behaviour: MR-07
TEST(modelRegistry, makesAFreshCapitalisedClassAtEveryGetOrCreate) {
    ownModel const model(true);
    int asked = 0;
    auto const accept = [&](refPtr<classInfo> const&) { return ++asked > 0; };
    ownClass const first(model->getOrCreateClassInfo(L"Part", accept));
    ownClass const second(model->getOrCreateClassInfo(L"Part", accept));
    EXPECT_NE(first.pointer(), second.pointer());
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(model->classInfo(L"part", false), second.pointer());
    EXPECT_EQ(model->getOrCreateClassInfo(L"part", accept), second.pointer());
    EXPECT_EQ(asked, 2);
}

// behaviour: MR-07, MR-13
TEST(modelRegistry, letsACapitalisedClassTakeTheEntryOfALowerCaseOne) {
    ownModel const model(true);
    ownClass const lower(model->createClassInfo(L"part"));
    auto const capital = model->createClassInfo(L"PART");
    EXPECT_EQ(model->classInfo(L"part", false), capital);
    EXPECT_EQ(model->countClasses(), 1u);
}

// behaviour: MR-05
TEST(modelRegistry, showsTheClassToAcceptBeforeAnybodyElse) {
    ownModel const model;
    refPtr<classInfo> seen;
    auto const part = model->createClassInfo(L"Part", [&](refPtr<classInfo> const& offered) {
        seen = offered;
        EXPECT_EQ(model->classInfo(L"part", false), nullptr);
        EXPECT_EQ(model->countClasses(), 0u);
        tests::addField(offered, L"width");
        offered->setLabel(L"A part");
        offered->addAliasname(L"piece");
        return true;
    });
    EXPECT_EQ(seen, part);
    EXPECT_EQ(model->classInfo(L"part", false)->countFields(), 1u);
    EXPECT_EQ(model->classInfo(L"part", false)->label(), L"A part");
    EXPECT_EQ(model->classInfo(L"piece", true), part);
}

// behaviour: MR-05
TEST(modelRegistry, registersNothingThatAcceptRefuses) {
    ownModel const model;
    auto const other = model->createClassInfo(L"other");
    auto const refuse = [](refPtr<classInfo> const&) { return false; };
    EXPECT_EQ(model->createClassInfo(L"part", refuse), nullptr);
    EXPECT_EQ(model->getOrCreateClassInfo(L"part", refuse), nullptr);
    EXPECT_EQ(model->classInfo(L"part", true), nullptr);
    EXPECT_EQ(model->countClasses(), 1u);
    EXPECT_NE(model->createClassInfo(L"part"), nullptr);
}

// behaviour: MR-05
TEST(modelRegistry, passesOnWhatAcceptThrowsAndRegistersNothing) {
    ownModel const model;
    auto const fail = [](refPtr<classInfo> const& offered) -> bool {
        tests::addField(offered, L"width");
        throw std::runtime_error("the host's own");
    };
    EXPECT_THROW(model->createClassInfo(L"part", fail), std::runtime_error);
    EXPECT_THROW(model->getOrCreateClassInfo(L"part", fail), std::runtime_error);
    EXPECT_EQ(model->classInfo(L"part", false), nullptr);
    EXPECT_NE(model->createClassInfo(L"part"), nullptr);
}

// behaviour: MR-06
TEST(modelRegistry, getsAKnownClassWithoutCallingAccept) {
    ownModel const model;
    auto const part = model->getOrCreateClassInfo(L"Part");
    ASSERT_NE(part, nullptr);
    bool asked = false;
    EXPECT_EQ(model->getOrCreateClassInfo(L"PART", [&](refPtr<classInfo> const&) { return asked = true; }), part);
    EXPECT_FALSE(asked);
    EXPECT_EQ(model->countClasses(), 1u);
}

// behaviour: MR-06
TEST(modelRegistry, createsAnUnknownClassWithAccept) {
    ownModel const model;
    refPtr<classInfo> offered;
    auto const part = model->getOrCreateClassInfo(L"Part", [&](refPtr<classInfo> const& made) {
        offered = made;
        return true;
    });
    EXPECT_EQ(offered, part);
    EXPECT_EQ(model->classInfo(L"part", false), part);
}

// behaviour: MR-08
TEST(modelRegistry, findsAnAliasOnlyWhenAsked) {
    ownModel const model;
    auto const part = model->createClassInfo(L"part");
    part->addAliasname(L"piece");
    EXPECT_EQ(model->classInfo(L"piece", false), nullptr);
    EXPECT_EQ(model->classInfo(L"piece", true), part);
    EXPECT_EQ(model->classInfo(L"PIECE", true), part);
    EXPECT_EQ(model->classInfo(L"pieces", true), nullptr);
}

// behaviour: MR-08
TEST(modelRegistry, prefersANameToTheAliasOfAnotherClass) {
    ownModel const model;
    auto const part = model->createClassInfo(L"part");
    part->addAliasname(L"piece");
    auto const piece = model->createClassInfo(L"piece");
    ASSERT_NE(piece, nullptr);
    EXPECT_EQ(model->classInfo(L"piece", true), piece);
    EXPECT_EQ(model->classInfo(L"piece", false), piece);
}

// behaviour: MR-08
TEST(modelRegistry, doesNotTakeAnAliasForATakenName) {
    ownModel const model;
    auto const part = model->createClassInfo(L"part");
    part->addAliasname(L"piece");
    EXPECT_NE(model->getOrCreateClassInfo(L"piece"), part);
    EXPECT_EQ(model->countClasses(), 2u);
}

// behaviour: MR-08
TEST(modelRegistry, findsTheFirstClassOfTheWalkThatHasTheAlias) {
    ownModel const model;
    for (wchar_t const* name : {L"c1", L"c2", L"c3", L"c4", L"c5"})
        model->createClassInfo(name)->addAliasname(L"shared");
    EXPECT_EQ(model->classInfo(L"shared", true), walked(*model.pointer()).front().second);
}

// behaviour: MR-09
TEST(modelRegistry, findsACapitalisedAliasOnlyWhenCaseMatters) {
    ownModel const anyCase;
    anyCase->createClassInfo(L"part")->addAliasname(L"Piece");
    EXPECT_EQ(anyCase->classInfo(L"Piece", true), nullptr);
    EXPECT_EQ(anyCase->classInfo(L"piece", true), nullptr);

    ownModel const exactCase(true);
    auto const part = exactCase->createClassInfo(L"part");
    part->addAliasname(L"Piece");
    EXPECT_EQ(exactCase->classInfo(L"Piece", true), part);
    EXPECT_EQ(exactCase->classInfo(L"piece", true), nullptr);
}

// behaviour: MR-10
TEST(modelRegistry, walksAllClassesInTheOrderOfNameHandles) {
    ownModel const model;
    std::set<refPtr<classInfo>> made;
    for (wchar_t const* name : {L"zeta", L"Alpha", L"mu", L"beta", L"omega", L"chi", L"nu"})
        made.insert(model->createClassInfo(name));
    auto const found = walked(*model.pointer());
    ASSERT_EQ(found.size(), made.size());
    EXPECT_EQ(model->countClasses(), made.size());
    for (std::size_t at = 0; at < found.size(); ++at) {
        EXPECT_TRUE(made.contains(found[at].second));
        EXPECT_EQ(found[at].first, found[at].second->scName());
        if (at > 0) {
            EXPECT_LT(found[at - 1].first, found[at].first);
        }
    }
}

// behaviour: MR-10
TEST(modelRegistry, endsAWalkAtFalseOnlyWhenAskedTo) {
    ownModel const model;
    for (wchar_t const* name : {L"a", L"b", L"c"})
        model->createClassInfo(name);
    int visits = 0;
    auto const refuse = [&](classInfo::entry const&) { return ++visits < 0; };
    EXPECT_TRUE(model->forEachClassInfo(refuse, false));
    EXPECT_EQ(visits, 3);
    visits = 0;
    EXPECT_FALSE(model->forEachClassInfo(refuse, true));
    EXPECT_EQ(visits, 1);
    visits = 0;
    EXPECT_FALSE(model->forEachClassInfo([&](classInfo::entry const&) { return ++visits < 2; }, true));
    EXPECT_EQ(visits, 2);
    EXPECT_TRUE(model->forEachClassInfo([](classInfo::entry const&) { return true; }, true));
}

// behaviour: MR-10
TEST(modelRegistry, callsAnEmptyFunctionOnlyWhenThereIsAClass) {
    ownModel const model;
    std::function<bool(classInfo::entry const&)> const empty;
    EXPECT_TRUE(model->forEachClassInfo(empty, true));
    EXPECT_TRUE(model->forEachClassInfo(empty, false));
    model->createClassInfo(L"a");
    EXPECT_THROW(model->forEachClassInfo(empty, true), std::bad_function_call);
    EXPECT_THROW(model->forEachClassInfo(empty, false), std::bad_function_call);
}

// behaviour: MR-11
TEST(modelRegistry, doesNotVisitClassesThatAreRegisteredDuringTheWalk) {
    ownModel const model;
    model->createClassInfo(L"a");
    model->createClassInfo(L"b");
    int visits = 0;
    EXPECT_TRUE(model->forEachClassInfo(
        [&](classInfo::entry const& entry) {
            ++visits;
            EXPECT_NE(model->createClassInfo(entry.first.string() + L"x"), nullptr);
            return true;
        },
        true));
    EXPECT_EQ(visits, 2);
    EXPECT_EQ(model->countClasses(), 4u);
    EXPECT_NE(model->classInfo(L"ax", false), nullptr);
    EXPECT_NE(model->classInfo(L"bx", false), nullptr);
}

// behaviour: MR-11
TEST(modelRegistry, keepsAReplacedClassForTheWalkThatHasBegun) {
    ownModel const model(true);
    ownClass const first(model->createClassInfo(L"Part"));
    refPtr<classInfo> visited;
    model->forEachClassInfo(
        [&](classInfo::entry const& entry) {
            model->createClassInfo(L"Part");
            visited = entry.second;
            return true;
        },
        true);
    EXPECT_EQ(visited, first.pointer());
    EXPECT_NE(model->classInfo(L"part", false), first.pointer());
}

// behaviour: MR-12
TEST(modelRegistry, keepsOtherClassesThatAcceptRegisters) {
    ownModel const model;
    refPtr<classInfo> inner;
    auto const outer = model->createClassInfo(L"outer", [&](refPtr<classInfo> const&) {
        inner = model->createClassInfo(L"inner");
        EXPECT_EQ(model->getOrCreateClassInfo(L"third")->scName().string(), L"third");
        EXPECT_EQ(model->classInfo(L"inner", false), inner);
        return true;
    });
    EXPECT_EQ(model->classInfo(L"inner", false), inner);
    EXPECT_EQ(model->classInfo(L"outer", false), outer);
    EXPECT_EQ(model->countClasses(), 3u);
}

// behaviour: MR-12
TEST(modelRegistry, keepsWhatAcceptRegisteredEvenWhenItThenRefuses) {
    ownModel const model;
    EXPECT_EQ(model->createClassInfo(L"outer",
                                     [&](refPtr<classInfo> const&) {
                                         model->createClassInfo(L"inner");
                                         return false;
                                     }),
              nullptr);
    EXPECT_NE(model->classInfo(L"inner", false), nullptr);
    EXPECT_EQ(model->countClasses(), 1u);
}

// behaviour: MR-12, MR-13
TEST(modelRegistry, replacesAClassOfTheSameNameThatAcceptRegistered) {
    ownModel const model;
    refPtr<classInfo> inner;
    auto const outer = model->createClassInfo(L"part", [&](refPtr<classInfo> const&) {
        inner = model->createClassInfo(L"part");
        return true;
    });
    ownClass const replaced(inner);
    EXPECT_NE(inner, nullptr);
    EXPECT_NE(outer, inner);
    EXPECT_EQ(model->classInfo(L"part", false), outer);
    EXPECT_EQ(model->countClasses(), 1u);
}

// behaviour: MR-12
TEST(modelRegistry, refusesTheNameInsideAcceptOnceItIsTaken) {
    ownModel const model;
    model->createClassInfo(L"known");
    bool refused = false;
    model->createClassInfo(L"part", [&](refPtr<classInfo> const&) {
        refused = throwsFalse([&] { model->createClassInfo(L"KNOWN"); });
        return true;
    });
    EXPECT_TRUE(refused);
    EXPECT_NE(model->classInfo(L"part", false), nullptr);
}

// behaviour: MR-14
TEST(modelRegistry, neverInternsANameThatIsOnlyAskedFor) {
    ownModel const anyCase;
    ownModel const exactCase(true);
    for (auto* const model : {&anyCase, &exactCase}) {
        (*model)->createClassInfo(L"part")->addAliasname(L"piece");
        for (int at = 0; at < 50000; ++at) {
            auto const name = string::sformat(L"unknown class %d", at);
            EXPECT_EQ((*model)->classInfo(name, at % 2 == 0), nullptr);
        }
    }
    for (int at = 0; at < 50000; ++at)
        ASSERT_FALSE(scString::find(string::sformat(L"unknown class %d", at)).has_value());
}

// behaviour: MR-15
TEST(modelRegistry, givesConstClassesOfAConstModel) {
    ownModel const model;
    auto const part = model->createClassInfo(L"part");
    part->addAliasname(L"piece");
    modelInfo const& seen = *model.pointer();
    static_assert(std::is_same_v<decltype(seen.classInfo(string(), false)), const_refPtr<classInfo>>);
    EXPECT_EQ(seen.classInfo(L"PART", false), part);
    EXPECT_EQ(seen.classInfo(L"piece", false), nullptr);
    EXPECT_EQ(seen.classInfo(L"piece", true), part);
}

template <class Model>
concept takesATextForAFlag = requires(Model model) {
    model.classInfo(L"part", L"width");
};

template <class Model>
concept takesAFlag = requires(Model model) {
    model.classInfo(L"part", true);
};

// behaviour: MR-16
TEST(modelRegistry, doesNotTakeATextForAFlag) {
    static_assert(!takesATextForAFlag<modelInfo&>);
    static_assert(!takesATextForAFlag<modelInfo const&>);
    static_assert(takesAFlag<modelInfo&> && takesAFlag<modelInfo const&>);
}

// behaviour: MR-17
TEST(modelRegistry, keepsModelsApart) {
    ownModel const one;
    ownModel const other;
    auto const part = one->createClassInfo(L"part");
    EXPECT_EQ(other->classInfo(L"part", true), nullptr);
    EXPECT_NE(other->createClassInfo(L"part"), part);
    EXPECT_EQ(one->classInfo(L"part", false), part);
}

} // namespace
} // namespace zov::metamodel
