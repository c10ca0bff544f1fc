// Classes and models that grow: after every single addition all that was added is found, walked in order and counted,
// and nothing else is; walks keep to what was there when they began, whatever happens meanwhile.
#include "zovMetamodel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "graphFixture.h"
#include "numberedNames.h"

namespace zov::metamodel {
namespace {

using tests::addIntField;
using tests::arriving;
using tests::capitals;
using tests::classesOf;
using tests::fieldsOf;
using tests::haveAscendingHandles;
using tests::leaving;
using tests::names;
using tests::numbered;
using tests::numberedNames;
using tests::ownClass;
using tests::ownModel;
using tests::relations;
using zov::tests::eventLog;
using zov::tests::throwsFalse;

using fields = std::vector<refPtr<fieldInfo>>;
using classes = std::vector<refPtr<classInfo>>;

// The position at which each of the names is found, or -1 for those that are not.
template <class Made, class Find>
void expectFound(names const& asked, std::vector<Made> const& made, Find const& find) {
    for (std::size_t at = 0; at < asked.size(); ++at)
        ASSERT_EQ(find(asked[at]), at < made.size() ? made[at] : Made()) << asked[at].toUtf8() << " of " << made.size();
}

// ---- fields

class growingFields : public testing::TestWithParam<bool> {};
INSTANTIATE_TEST_SUITE_P(caseMatters, growingFields, testing::Bool());

// behaviour: CF-01, CF-02, CF-03, CF-12, CF-14
TEST_P(growingFields, areFoundWalkedAndCountedAfterEachAddition) {
    constexpr std::size_t most = 200;
    bool const exact = GetParam();
    ownModel const model(exact);
    auto const part = model->createClassInfo(L"part");
    auto const other = model->createClassInfo(L"other");
    auto const given = numberedNames(exact ? L"Field" : L"field", most);
    auto const inCapitals = capitals(given);
    auto const ofAnother = numberedNames(L"another", most);
    fields made;
    for (std::size_t count = 0; count <= most; ++count) {
        ASSERT_EQ(part->countFields(), count);
        ASSERT_EQ(fieldsOf(part), made);
        expectFound(given, made, [&](string const& name) { return part->fieldInfo(name, false, false); });
        expectFound(inCapitals, exact ? fields() : made,
                    [&](string const& name) { return part->fieldInfo(name, true, true); });
        expectFound(ofAnother, fields(), [&](string const& name) { return part->fieldInfo(name, true, true); });
        if (count == most) break;
        addIntField(other, ofAnother[count]);
        made.push_back(addIntField(part, given[count]));
        ASSERT_EQ(made.back()->scName().string(), given[count]);
    }
}

// behaviour: CF-01
TEST_P(growingFields, areReturnedWhenTheyAreCreatedAgainAtAnyCount) {
    constexpr std::size_t most = 130;
    ownModel const model(GetParam());
    auto const part = model->createClassInfo(L"part");
    auto const given = numberedNames(L"field", most);
    auto const again = GetParam() ? given : capitals(given);
    fields made;
    for (auto const& name : given) {
        made.push_back(addIntField(part, name));
        for (std::size_t at = 0; at < made.size(); ++at)
            ASSERT_EQ(addIntField(part, again[at]), made[at]);
        ASSERT_EQ(part->countFields(), made.size());
    }
}

// behaviour: CF-02, CF-24
TEST(growingFieldsByCase, keepAllSpellingsOfANameWhereLetterCaseMatters) {
    ownModel const model(true);
    auto const part = model->createClassInfo(L"part");
    fields made;
    names spellings;
    for (unsigned bits = 0; bits < 256; ++bits) {
        string spelling = L"abcdefgh";
        for (unsigned at = 0; at < 8; ++at)
            if ((bits >> at & 1) != 0) spelling[at] = static_cast<wchar_t>(spelling[at] - L'a' + L'A');
        spellings.push_back(spelling);
    }
    for (auto const& spelling : spellings) {
        made.push_back(addIntField(part, spelling));
        expectFound(spellings, made, [&](string const& name) { return part->fieldInfo(name, false, false); });
    }
    ownClass const whole(L"whole");
    EXPECT_TRUE(throwsFalse([&] { whole->copyFieldInfoFrom(made[7], nullptr); }));
    EXPECT_EQ(whole->copyInfosFrom(part, nullptr), true);
    EXPECT_EQ(whole->countFields(), 1u);
    EXPECT_EQ(fieldsOf(part), made);
}

// behaviour: CF-05, CF-11, CF-14
TEST(growingFieldsOfBases, areFoundThroughTheClassThatStandsForEachOfThem) {
    ownModel const model;
    auto const base = model->createClassInfo(L"base");
    auto const part = model->createClassInfo(L"part");
    part->addBaseClass(base);
    auto const given = numberedNames(L"field", 100);
    fields bases;
    fields standing;
    for (std::size_t at = 0; at < given.size(); ++at) {
        bases.push_back(addIntField(base, given[at]));
        expectFound(given, bases, [&](string const& name) {
            auto const found = part->fieldInfo(name, true, false);
            return found && found->baseField() ? found->baseField() : found;
        });
        standing.push_back(part->createFieldInfo(base, given[at]));
        ASSERT_EQ(part->createFieldInfo(base, given[at]), standing.back());
        expectFound(given, standing, [&](string const& name) { return part->fieldInfo(name, true, true); });
    }
    EXPECT_EQ(fieldsOf(base), bases);
    EXPECT_EQ(fieldsOf(part), standing);
}

// behaviour: CF-15, CF-17, CF-18
TEST(growingFieldsByCopies, appearInOrderWhateverIsThereAlready) {
    auto const given = numberedNames(L"field", 70);
    for (std::size_t count = 0; count <= given.size(); ++count) {
        ownClass const from(L"from");
        ownClass const to(L"to");
        for (std::size_t at = 0; at < count; ++at)
            addIntField(from, given[at]);
        fields expected;
        for (std::size_t at = 0; at < count; at += 3)
            expected.push_back(addIntField(to, capitals(given[at])));
        ASSERT_TRUE(to->copyInfosFrom(from, nullptr));
        ASSERT_TRUE(to->copyInfosFrom(from, nullptr));
        ASSERT_TRUE(to->copyInfosFrom(from, L"p_"));
        ASSERT_EQ(to->countFields(), 2 * count);
        auto const all = fieldsOf(to);
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), all.begin()));
        for (std::size_t at = 0; at < count; ++at) {
            ASSERT_EQ(all[count + at]->scName().string(), L"p_" + given[at]);
            ASSERT_EQ(to->fieldInfo(L"P_" + given[at], false, false), all[count + at]);
            ASSERT_TRUE(to->fieldInfo(given[at], false, false));
        }
    }
}

// behaviour: CF-21, CF-22
TEST(growingFieldsByCopies, takeTheirLettersAtAnyCountThoughNobodyFindsThem) {
    ownClass const from(L"from");
    ownClass const to(L"to");
    auto const given = numberedNames(L"field", 100);
    for (std::size_t at = 0; at < given.size(); ++at) {
        auto const field = addIntField(from, given[at]);
        ASSERT_TRUE(throwsFalse([&] { to->copyFieldInfoFrom(field, L"P"); }));
        ASSERT_EQ(to->countFields(), at + 1);
        ASSERT_EQ(to->fieldInfo(L"P" + given[at], true, true), nullptr);
        ASSERT_EQ(to->fieldInfo(L"p" + given[at], true, true), nullptr);
    }
    for (auto const& name : given) {
        ASSERT_TRUE(throwsFalse([&] { addIntField(to, L"p" + name); }));
        ASSERT_TRUE(throwsFalse([&] { to->copyFieldInfoFrom(from->fieldInfo(name, false, false), L"p"); }));
    }
    EXPECT_TRUE(to->copyInfosFrom(from, L"p"));
    EXPECT_EQ(to->countFields(), given.size());
    EXPECT_EQ(fieldsOf(to)[42]->scName().string(), L"Pfield42");
}

// behaviour: CF-01, CF-03, CF-14
TEST(growingFieldsToMany, leavesTenThousandOfAClassInReach) {
    constexpr std::size_t many = 10000;
    ownClass const part(L"part");
    auto const given = numberedNames(L"field", many);
    for (auto const& name : given)
        addIntField(part, name);
    EXPECT_EQ(part->countFields(), many);
    auto const made = fieldsOf(part);
    ASSERT_EQ(made.size(), many);
    for (std::size_t at = 0; at < many; at += 7) {
        ASSERT_EQ(made[at]->scName().string(), given[at]);
        ASSERT_EQ(part->fieldInfo(capitals(given[at]), false, false), made[at]);
    }
    EXPECT_EQ(part->fieldInfo(L"field10000", true, true), nullptr);
    part->tearDown();
    EXPECT_EQ(part->countFields(), 0u);
    EXPECT_EQ(part->fieldInfo(given[0], true, true), nullptr);
    EXPECT_EQ(addIntField(part, given[5])->scName().string(), given[5]);
    EXPECT_EQ(part->countFields(), 1u);
}

// behaviour: GT-11
TEST(growingFieldsAnew, areThoseOfTheSecondFillingAlone) {
    ownClass const part(L"part");
    auto const given = numberedNames(L"field", 60);
    for (std::size_t count = 0; count <= given.size(); ++count) {
        fields former;
        for (std::size_t at = 0; at < count; ++at)
            former.push_back(addIntField(part, given[at]));
        part->tearDown();
        expectFound(given, fields(), [&](string const& name) { return part->fieldInfo(name, true, true); });
        fields made;
        for (std::size_t at = 0; at < count / 2; ++at)
            made.push_back(addIntField(part, given[at]));
        expectFound(given, made, [&](string const& name) { return part->fieldInfo(name, true, true); });
        ASSERT_EQ(fieldsOf(part), made);
        for (auto const& field : former)
            ASSERT_EQ(field->classInfo(), nullptr);
        part->tearDown();
    }
}

// ---- classes

// behaviour: MR-02, MR-03, MR-06, MR-10
TEST(growingModels, findWalkAndCountTheirClassesAfterEachRegistration) {
    constexpr std::size_t most = 300;
    ownModel const model;
    auto const given = numberedNames(L"Class", most);
    auto const inCapitals = capitals(given);
    classes made;
    for (std::size_t count = 0; count <= most; ++count) {
        ASSERT_EQ(model->countClasses(), count);
        auto const walked = classesOf(*model.pointer());
        ASSERT_EQ(walked.size(), count);
        ASSERT_TRUE(haveAscendingHandles(walked));
        classes inOrder = made;
        std::sort(inOrder.begin(), inOrder.end(),
                  [](auto const& left, auto const& right) { return left->scName() < right->scName(); });
        ASSERT_EQ(walked, inOrder);
        expectFound(given, made, [&](string const& name) { return model->classInfo(name, true); });
        expectFound(inCapitals, made, [&](string const& name) { return model->classInfo(name, false); });
        if (count == most) break;
        made.push_back(count % 2 ? model->createClassInfo(given[count]) : model->getOrCreateClassInfo(given[count]));
        ASSERT_EQ(model->getOrCreateClassInfo(inCapitals[count]), made.back());
        ASSERT_TRUE(throwsFalse([&] { model->createClassInfo(inCapitals[count / 2]); }));
    }
}

// behaviour: MR-04, MR-07, MR-13
TEST(growingModels, replaceCapitalisedClassesAtAnyCountWhereLetterCaseMatters) {
    ownModel const model(true);
    auto const given = numberedNames(L"Class", 100);
    classes all;
    classes current;
    for (std::size_t count = 0; count < given.size(); ++count) {
        current.push_back(model->createClassInfo(given[count]));
        auto& replaced = current[count * 7 % current.size()];
        all.push_back(replaced);
        replaced = model->getOrCreateClassInfo(given[count * 7 % current.size()]);
        ASSERT_NE(replaced, all.back());
        ASSERT_EQ(model->countClasses(), current.size());
        for (std::size_t at = 0; at < current.size(); ++at) {
            ASSERT_EQ(model->classInfo(given[at].lower(), true), current[at]);
            ASSERT_EQ(model->classInfo(given[at], true), nullptr);
        }
        auto const walked = classesOf(*model.pointer());
        ASSERT_TRUE(haveAscendingHandles(walked));
        ASSERT_TRUE(std::is_permutation(walked.begin(), walked.end(), current.begin(), current.end()));
    }
    model->tearDown();
    for (auto const& former : all)
        EXPECT_EQ(former->refCount(), 1u);
}

// behaviour: MR-08
TEST(growingModels, findEachAliasUntilItIsTakenAway) {
    constexpr std::size_t most = 120;
    ownModel const model;
    auto const given = numberedNames(L"class", most);
    auto const aliases = numberedNames(L"alias", most);
    classes made;
    for (std::size_t count = 0; count < most; ++count) {
        made.push_back(model->createClassInfo(given[count]));
        made.back()->addAliasname(aliases[count]);
        if (count % 3 == 0) made.back()->addAliasname(L"shared");
        expectFound(aliases, made, [&](string const& name) { return model->classInfo(name, true); });
        ASSERT_EQ(model->classInfo(aliases[count], false), nullptr);
    }
    classes sharing;
    for (auto const& each : classesOf(*model.pointer()))
        if (each->hasAliasname(scString::createFrom(L"shared"))) sharing.push_back(each);
    for (auto const& first : sharing) {
        ASSERT_EQ(model->classInfo(L"Shared", true), first);
        first->removeAliasname(L"shared");
    }
    EXPECT_EQ(model->classInfo(L"shared", true), nullptr);
    for (std::size_t at = 0; at < most; ++at) {
        made[at]->removeAliasname(aliases[at]);
        ASSERT_EQ(model->classInfo(aliases[at], true), nullptr);
        ASSERT_EQ(model->classInfo(given[at], true), made[at]);
    }
}

// behaviour: MR-08, MR-09
TEST(growingModels, followAliasesThatMoveFromClassToClass) {
    for (bool const exact : {false, true}) {
        ownModel const model(exact);
        auto const given = numberedNames(L"class", 30);
        classes made;
        for (auto const& name : given)
            made.push_back(model->createClassInfo(name));
        for (string const alias : {L"piece", L"Piece"}) {
            bool const isFound = exact || alias == L"piece";
            for (auto const& each : made) {
                each->addAliasname(alias);
                ASSERT_EQ(model->classInfo(alias, true), isFound ? each : nullptr);
                each->removeAliasname(alias.lower() == alias ? L"Piece" : L"piece");
                ASSERT_EQ(model->classInfo(alias, true), isFound ? each : nullptr);
                each->removeAliasname(alias);
                ASSERT_EQ(model->classInfo(alias, true), nullptr);
            }
        }
    }
}

// behaviour: MR-08
TEST(growingModels, findNoAliasOfAClassThatTheyLost) {
    ownModel const model(true);
    ownClass const replaced(model->createClassInfo(L"Part"));
    replaced->addAliasname(L"piece");
    EXPECT_EQ(model->classInfo(L"piece", true), replaced.pointer());
    auto const part = model->createClassInfo(L"Part");
    EXPECT_EQ(model->classInfo(L"piece", true), nullptr);
    replaced->addAliasname(L"unit");
    EXPECT_EQ(model->classInfo(L"unit", true), nullptr);
    part->addAliasname(L"piece");
    replaced->removeAliasname(L"piece");
    EXPECT_EQ(model->classInfo(L"piece", true), part);
    model->tearDown();
    EXPECT_EQ(model->classInfo(L"piece", true), nullptr);
    part->addAliasname(L"late");
    EXPECT_EQ(model->classInfo(L"late", true), nullptr);
    EXPECT_TRUE(part->hasAliasname(scString::createFrom(L"piece")));
}

// behaviour: MR-05, MR-08
TEST(growingModels, findAliasesThatAcceptAddedOnlyOfClassesThatItAccepted) {
    ownModel const model;
    refPtr<classInfo> refused;
    model->createClassInfo(L"refused", [&](refPtr<classInfo> const& offered) {
        offered->addAliasname(L"piece");
        refused = offered;
        EXPECT_EQ(model->classInfo(L"piece", true), nullptr);
        return false;
    });
    EXPECT_EQ(model->classInfo(L"piece", true), nullptr);
    refused->addAliasname(L"unit");
    EXPECT_EQ(model->classInfo(L"unit", true), nullptr);
    auto const accepted = model->createClassInfo(L"accepted", [&](refPtr<classInfo> const& offered) {
        for (auto const& alias : numberedNames(L"alias", 40))
            offered->addAliasname(alias);
        offered->removeAliasname(L"alias7");
        offered->addAliasname(L"piece");
        return true;
    });
    EXPECT_EQ(model->classInfo(L"piece", true), accepted);
    EXPECT_EQ(model->classInfo(L"alias39", true), accepted);
    EXPECT_EQ(model->classInfo(L"alias7", true), nullptr);
}

// behaviour: MP-03, MR-09
TEST(growingModels, findAliasesByTheCaseRuleOfTheMoment) {
    ownModel const model;
    auto const part = model->createClassInfo(L"part");
    auto const unit = model->createClassInfo(L"unit");
    part->addAliasname(L"Piece");
    unit->addAliasname(L"piece");
    EXPECT_EQ(model->classInfo(L"Piece", true), unit);
    model->setAddProp(L"caseSensitiveNames", L"true");
    EXPECT_EQ(model->classInfo(L"Piece", true), part);
    EXPECT_EQ(model->classInfo(L"piece", true), unit);
    EXPECT_EQ(model->classInfo(L"PIECE", true), nullptr);
    model->setAddProp(L"caseSensitiveNames", L"false");
    EXPECT_EQ(model->classInfo(L"PIECE", true), unit);
    unit->removeAliasname(L"piece");
    EXPECT_EQ(model->classInfo(L"Piece", true), nullptr);
}

// ---- bases

// behaviour: CI-02, CI-03, CI-04
TEST(growingBases, areWalkedInTheOrderOfHandlesAfterEachAddition) {
    ownModel const model;
    auto const part = model->createClassInfo(L"part");
    classes bases;
    for (auto const& name : numberedNames(L"base", 100)) {
        auto const base = model->createClassInfo(name);
        ASSERT_FALSE(part->isDerivedFrom(base));
        part->addBaseClass(base);
        part->addBaseClass(base);
        bases.push_back(base);
        classes walked;
        part->forEachBaseClass(
            [&](classInfo::entry const& entry) {
                EXPECT_EQ(entry.first, entry.second->scName());
                walked.push_back(entry.second);
                return true;
            },
            true);
        ASSERT_TRUE(haveAscendingHandles(walked));
        ASSERT_TRUE(std::is_permutation(walked.begin(), walked.end(), bases.begin(), bases.end()));
        for (auto const& each : bases)
            ASSERT_TRUE(part->isDerivedFrom(each));
    }
}

// ---- relations

// Two classes with many fields each, and the relations that a test made between them.
class growingRelations : public testing::Test {
protected:
    growingRelations() {
        for (std::size_t at = 0; at < mFromNames.size(); ++at) {
            addIntField(mOrder, mFromNames[at]);
            mTargets.push_back(addIntField(mCustomer, mToNames[at]));
        }
    }

    refPtr<relationInfo> toField(std::size_t at, string const& name = L"") const {
        return mOrder->createRelation(mFromNames[at], false, mTargets[at], eAgg, name, L"");
    }
    refPtr<relationInfo> toClass(std::size_t at, string const& name = L"") const {
        return mOrder->createRelation(mFromNames[at], false, mCustomer, eRef, name, L"");
    }

    ownModel const mModel;
    refPtr<classInfo> const mOrder = mModel->createClassInfo(L"order");
    refPtr<classInfo> const mCustomer = mModel->createClassInfo(L"customer");
    names const mFromNames = numberedNames(L"from", 200);
    names const mToNames = numberedNames(L"to", 200);
    fields mTargets;
};

// behaviour: CR-01, CR-03, CR-04, CR-10, CR-11
TEST_F(growingRelations, areFoundWalkedAndReturnedAgainAfterEachAddition) {
    auto const given = numberedNames(L"relation", mTargets.size());
    relations made;
    for (std::size_t count = 0; count <= given.size(); ++count) {
        ASSERT_EQ(leaving(mOrder), made);
        ASSERT_EQ(arriving(mCustomer), made);
        ASSERT_TRUE(arriving(mOrder).empty() && leaving(mCustomer).empty());
        expectFound(given, made, [&](string const& name) { return mOrder->toRelation(name, false); });
        for (std::size_t at : {std::size_t{0}, count / 2, count - 1}) {
            if (at >= count || at % 3 == 2) continue;
            ASSERT_EQ(toField(at, L"another name"), made[at]);
        }
        ASSERT_EQ(mOrder->toRelation(L"another name", true), nullptr);
        if (count == given.size()) break;
        made.push_back(count % 3 == 2 ? toClass(count, given[count]) : toField(count, given[count]));
    }
}

// behaviour: CR-03, CR-11
TEST_F(growingRelations, toAClassAreNewAtEveryCallAndTheFirstHasTheName) {
    relations made;
    for (int at = 0; at < 150; ++at) {
        made.push_back(toClass(7, L"same"));
        made.push_back(toClass(7, numbered(L"own", made.size())));
        ASSERT_EQ(leaving(mOrder), made);
        ASSERT_EQ(mOrder->toRelation(L"same", false), made[0]);
        ASSERT_EQ(mOrder->toRelation(numbered(L"own", made.size() - 1), false), made.back());
    }
    std::sort(made.begin(), made.end());
    EXPECT_EQ(std::unique(made.begin(), made.end()), made.end());
}

// behaviour: CR-04, RI-07
TEST_F(growingRelations, countPairsThatWereAddedLaterWhenOneIsAskedForAgain) {
    auto const first = toField(0, L"compound");
    for (std::size_t at = 1; at < 100; ++at) {
        auto const from = mOrder->fieldInfo(mFromNames[at], false, false);
        ASSERT_TRUE(first->addFieldRelation(from, mTargets[at]));
        ASSERT_TRUE(first->addFieldRelation(from, mTargets[at + 100]));
        ASSERT_EQ(toField(at), first);
        ASSERT_EQ(first->toFieldInfo(from), mTargets[at]);
    }
    EXPECT_EQ(leaving(mOrder), relations{first});
    auto const second = mOrder->createRelation(mFromNames[5], false, mTargets[105], eRef, L"", L"");
    EXPECT_NE(second, first);
    EXPECT_EQ(leaving(mOrder), (relations{first, second}));
    EXPECT_EQ(tests::pairsOf(first).size(), 199u);
}

// behaviour: CR-09
TEST_F(growingRelations, toTheirOwnClassAreInBothOfItsLists) {
    relations made;
    for (std::size_t at = 0; at + 1 < mFromNames.size(); ++at) {
        auto const target = mOrder->fieldInfo(mFromNames[at + 1], false, false);
        made.push_back(mOrder->createRelation(mFromNames[at], false, target, eBiAgg, L"", L""));
        ASSERT_EQ(mOrder->createRelation(mFromNames[at], false, target, eBiAgg, L"", L""), made.back());
        ASSERT_EQ(leaving(mOrder), made);
        ASSERT_EQ(arriving(mOrder), made);
        ASSERT_EQ(mOrder->toRelation(mFromNames[at / 2], false), made[at / 2]);
    }
}

// behaviour: CR-03, CR-10, CR-11
TEST_F(growingRelations, leaveFiveThousandOfAClassInReach) {
    constexpr std::size_t many = 5000;
    auto const given = numberedNames(L"relation", many);
    for (auto const& name : given)
        toClass(3, name);
    auto const made = leaving(mOrder);
    ASSERT_EQ(made.size(), many);
    EXPECT_EQ(arriving(mCustomer), made);
    for (std::size_t at = 0; at < many; at += 7) {
        ASSERT_EQ(made[at]->scName().string(), given[at]);
        ASSERT_EQ(mOrder->toRelation(given[at], false), made[at]);
    }
    EXPECT_EQ(mOrder->toRelation(L"relation5000", true), nullptr);
    EXPECT_EQ(toField(3), toField(3));
    EXPECT_EQ(leaving(mOrder).size(), many + 1);
}

// behaviour: GT-04, GT-11
TEST_F(growingRelations, areThoseOfTheSecondFillingAloneAfterATearDown) {
    for (std::size_t count : {1u, 2u, 7u, 64u, 65u, 150u}) {
        ownClass const order(L"order");
        for (std::size_t at = 0; at < count; ++at) {
            addIntField(order, mFromNames[at]);
            order->createRelation(mFromNames[at], false, mTargets[at], eRef, L"", L"");
        }
        order->tearDown();
        ASSERT_TRUE(leaving(order).empty());
        ASSERT_EQ(order->toRelation(mFromNames[0], true), nullptr);
        addIntField(order, mFromNames[0]);
        auto const anew = order->createRelation(mFromNames[0], false, mTargets[0], eRef, L"", L"");
        ASSERT_EQ(leaving(order), relations{anew});
        ASSERT_EQ(arriving(mCustomer).back(), anew);
        ASSERT_EQ(order->toRelation(mFromNames[0], false), anew);
    }
}

// ---- walks while things grow

// At each visit as many more are added as there were at first, so that storage grows under the walk again and again.
// behaviour: CF-13, CF-30
TEST(walksThatAdd, seeTheFieldsThatWereThereWhenTheyBegan) {
    for (std::size_t count = 0; count <= 40; ++count) {
        ownClass const part(L"part");
        for (std::size_t at = 0; at < count; ++at)
            addIntField(part, numbered(L"field", at));
        auto const before = fieldsOf(part);
        fields visited;
        EXPECT_TRUE(part->forEachFieldInfo(
            [&](refPtr<fieldInfo> const& field) {
                visited.push_back(field);
                for (std::size_t more = 0; more < count; ++more)
                    addIntField(part, numbered(L"more", visited.size() * 100 + more));
                EXPECT_EQ(part->countFields(), count + visited.size() * count);
                return true;
            },
            true));
        ASSERT_EQ(visited, before);
        auto const after = fieldsOf(part);
        ASSERT_EQ(after.size(), count + count * count);
        ASSERT_TRUE(std::equal(before.begin(), before.end(), after.begin()));
    }
}

// behaviour: CF-13, CF-18
TEST(walksThatAdd, seeOnlyTheirOwnFieldsWhenTheClassIsCopiedOntoItself) {
    ownClass const part(L"part");
    for (std::size_t at = 0; at < 10; ++at)
        addIntField(part, numbered(L"field", at));
    std::size_t visits = 0;
    part->forEachFieldInfo(
        [&](refPtr<fieldInfo> const& field) {
            EXPECT_EQ(field->scName().string(), numbered(L"field", visits));
            if (++visits <= 5) part->copyInfosFrom(part.pointer(), numbered(L"copy", visits).c_str());
            EXPECT_EQ(part->countFields(), std::size_t{10} << std::min<std::size_t>(visits, 5));
            return true;
        },
        true);
    EXPECT_EQ(visits, 10u);
    EXPECT_EQ(part->countFields(), 320u);
}

// behaviour: MR-11
TEST(walksThatAdd, seeTheClassesThatWereThereWhenTheyBegan) {
    for (std::size_t count = 0; count <= 40; ++count) {
        ownModel const model;
        for (auto const& name : numberedNames(L"class", count))
            model->createClassInfo(name);
        auto const before = classesOf(*model.pointer());
        classes visited;
        model->forEachClassInfo(
            [&](classInfo::entry const& entry) {
                visited.push_back(entry.second);
                for (std::size_t more = 0; more < 5; ++more)
                    model->createClassInfo(numbered(L"more", visited.size() * 100 + more));
                EXPECT_EQ(model->countClasses(), count + visited.size() * 5);
                return true;
            },
            true);
        ASSERT_EQ(visited, before);
        ASSERT_EQ(classesOf(*model.pointer()).size(), count * 6);
    }
}

// behaviour: MR-11, MR-13
TEST(walksThatReplace, seeTheClassesThatWereThereWhenTheyBegan) {
    ownModel const model(true);
    auto const given = numberedNames(L"Class", 40);
    for (auto const& name : given)
        model->createClassInfo(name);
    auto const before = classesOf(*model.pointer());
    classes visited;
    model->forEachClassInfo(
        [&](classInfo::entry const& entry) {
            visited.push_back(entry.second);
            if (visited.size() % 4 != 1) return true;
            for (auto const& name : given)
                model->createClassInfo(name);
            return true;
        },
        true);
    EXPECT_EQ(visited, before);
    EXPECT_EQ(model->countClasses(), before.size());
    for (auto const& former : before)
        EXPECT_NE(model->classInfo(former->scName().string(), false), former);
}

// behaviour: CI-07
TEST(walksThatAdd, seeTheBasesThatWereThereWhenTheyBegan) {
    for (std::size_t count = 0; count <= 30; ++count) {
        ownModel const model;
        auto const part = model->createClassInfo(L"part");
        for (auto const& name : numberedNames(L"base", count))
            part->addBaseClass(model->createClassInfo(name));
        std::size_t visits = 0;
        part->forEachBaseClass(
            [&](classInfo::entry const& entry) {
                EXPECT_TRUE(entry.second->scName().string().starts_with(L"base"));
                ++visits;
                for (std::size_t more = 0; more < 5; ++more)
                    part->addBaseClass(model->createClassInfo(numbered(L"more", visits * 100 + more)));
                return true;
            },
            true);
        ASSERT_EQ(visits, count);
    }
}

// behaviour: CR-10
TEST_F(growingRelations, areWalkedInBothDirectionsAsTheyWereWhenTheWalkBegan) {
    for (std::size_t count = 0; count < 30; ++count) {
        if (count > 0) toClass(count);
        auto const before = leaving(mOrder);
        relations visited;
        auto const visit = [&](refPtr<relationInfo> const& relation) {
            visited.push_back(relation);
            if (visited.size() <= 3) toClass(visited.size());
            return true;
        };
        mOrder->forEachToRelation(visit, true);
        ASSERT_EQ(visited, before);
        auto const then = arriving(mCustomer);
        visited.clear();
        mCustomer->forEachFromRelation(visit, true);
        ASSERT_EQ(visited, then);
    }
}

// behaviour: RI-10
TEST_F(growingRelations, leaveWalksThePairsThatWereThereWhenTheyBegan) {
    auto const relation = toField(0);
    auto const from = mOrder->fieldInfo(mFromNames[1], false, false);
    for (std::size_t count = 1; count <= 200; count *= 2) {
        std::size_t visits = 0;
        relation->forEachFieldPair(
            [&](refPtr<fieldInfo> const&, refPtr<fieldInfo> const& to) {
                EXPECT_EQ(to, mTargets[visits == 0 ? 0 : 1]);
                ++visits;
                return relation->addFieldRelation(from, mTargets[1]);
            },
            true);
        ASSERT_EQ(visits, count);
    }
}

// behaviour: CF-13, MR-11
TEST(walksInsideWalks, seeWhatWasThereWhenEachOfThemBegan) {
    ownModel const model;
    for (auto const& name : numberedNames(L"class", 5))
        model->createClassInfo(name, [](refPtr<classInfo> const& offered) { return !!addIntField(offered, L"a"); });
    std::size_t outer = 0;
    std::size_t middle = 0;
    std::size_t inner = 0;
    model->forEachClassInfo(
        [&](classInfo::entry const& entry) {
            model->createClassInfo(numbered(L"outer", ++outer));
            return model->forEachClassInfo(
                [&](classInfo::entry const&) {
                    addIntField(entry.second, numbered(L"b", ++middle));
                    return entry.second->forEachFieldInfo(
                        [&](refPtr<fieldInfo> const& field) {
                            EXPECT_EQ(field->classInfo(), entry.second);
                            addIntField(entry.second, numbered(L"c", ++inner));
                            return true;
                        },
                        true);
                },
                true);
        },
        true);
    EXPECT_EQ(outer, 5u);
    EXPECT_EQ(middle, 6u + 7 + 8 + 9 + 10);
    // The fields of a class double with each inner walk, which begins behind one addition: 2, 5, 11, 23 and so on.
    std::size_t expected = 0;
    for (std::size_t walks = 6; walks <= 10; ++walks)
        for (std::size_t walk = 1, there = 1; walk <= walks; ++walk, there *= 2)
            expected += ++there;
    EXPECT_EQ(inner, expected);
}

// ---- walks while things are let go

// behaviour: TD-03
TEST(walksThatTearDown, goOnToTheEndWithTheFieldsThatWereThere) {
    auto const given = numberedNames(L"field", 70);
    for (std::size_t count : {1u, 2u, 6u, 7u, 12u, 13u, 16u, 17u, 32u, 33u, 70u}) {
        for (std::size_t const when : {std::size_t{0}, count / 2, count - 1}) {
            ownClass const part(L"part");
            for (std::size_t at = 0; at < count; ++at)
                addIntField(part, given[at]);
            std::size_t visits = 0;
            EXPECT_TRUE(part->forEachFieldInfo(
                [&](refPtr<fieldInfo> const& field) {
                    if (visits == when) part->tearDown();
                    EXPECT_EQ(field->scName().string(), given[visits]);
                    EXPECT_EQ(field->classInfo(), visits < when ? part.pointer() : nullptr);
                    if (visits > when) addIntField(part, numbered(L"new", visits));
                    EXPECT_EQ(part->countFields(), visits < when ? count : visits - when);
                    return ++visits > 0;
                },
                true));
            ASSERT_EQ(visits, count);
            ASSERT_EQ(part->countFields(), count - 1 - when);
        }
    }
}

// behaviour: TD-03, TD-06
TEST(walksThatTearDown, goOnToTheEndWithTheClassesThatWereThere) {
    for (std::size_t count : {1u, 2u, 6u, 7u, 16u, 17u, 64u, 65u}) {
        for (std::size_t const when : {std::size_t{0}, count / 2, count - 1}) {
            ownModel const model;
            for (auto const& name : numberedNames(L"class", count))
                addIntField(model->createClassInfo(name), L"a");
            std::size_t visits = 0;
            model->forEachClassInfo(
                [&](classInfo::entry const& entry) {
                    if (visits == when) model->tearDown();
                    EXPECT_EQ(entry.first, entry.second->scName());
                    EXPECT_EQ(entry.second->countFields(), visits < when ? 1u : 0u);
                    if (visits > when) model->createClassInfo(entry.first.string());
                    EXPECT_EQ(model->countClasses(), visits < when ? count : visits - when);
                    return ++visits > 0;
                },
                true);
            ASSERT_EQ(visits, count);
        }
    }
}

// behaviour: GT-06
TEST_F(growingRelations, leaveWalksTheirEntriesWhenEverythingIsTornDown) {
    for (std::size_t at = 0; at < 60; ++at)
        at % 2 ? toField(at) : toClass(at);
    std::size_t visits = 0;
    mOrder->forEachToRelation(
        [&](refPtr<relationInfo> const& relation) {
            if (visits == 20) mModel->tearDown();
            EXPECT_EQ(relation->scName().string(), mFromNames[visits]);
            EXPECT_EQ(relation->fromClassInfo(), visits < 20 ? mOrder : nullptr);
            EXPECT_EQ(relation->toClassInfo(), visits < 20 ? mCustomer : nullptr);
            return ++visits > 0;
        },
        true);
    EXPECT_EQ(visits, 60u);
    EXPECT_TRUE(leaving(mOrder).empty() && arriving(mCustomer).empty());
}

// behaviour: TD-01, TD-03
TEST(walksInsideWalks, letEverythingGoWhenTheInnermostTearsDown) {
    eventLog log;
    {
        ownModel const model;
        for (auto const& name : numberedNames(L"class", 10))
            model->createClassInfo(name, [](refPtr<classInfo> const& offered) {
                for (std::size_t at = 0; at < 10; ++at)
                    addIntField(offered, numbered(L"field", at));
                return true;
            });
        std::size_t visits = 0;
        model->forEachClassInfo(
            [&](classInfo::entry const& entry) {
                return entry.second->forEachFieldInfo(
                    [&](refPtr<fieldInfo> const& field) {
                        if (++visits == 25) model->tearDown();
                        EXPECT_EQ(field->scName().string(), numbered(L"field", (visits - 1) % 10));
                        return true;
                    },
                    true);
            },
            true);
        EXPECT_EQ(visits, 30u);
    }
    auto const happened = log.take();
    EXPECT_EQ(tests::countStarting(happened, "trace classInfo released"), 10u);
    EXPECT_EQ(tests::countStarting(happened, "debug fieldInfo released"), 100u);
}

} // namespace
} // namespace zov::metamodel
