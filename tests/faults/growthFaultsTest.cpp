// Memory that runs out while containers grow: at every size the n-th allocation fails, for n = 0, 1, 2 ... until the
// addition passes. After each failure everything is as before, down to the counts, and the same addition succeeds when
// it is tried again. Leaks are the leak sanitizer's to find: every test frees all it makes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "attempts.h"
#include "numbered.h"
#include "zovMetamodel.h"

#include "zovAssert.h"

namespace {

using zov::genericSet;
using zov::refPtr;
using zov::string;
using zov::metamodel::classInfo;
using zov::metamodel::eInt;
using zov::metamodel::eRef;
using zov::metamodel::fieldInfo;
using zov::metamodel::modelInfo;
using zov::metamodel::relationInfo;
using zov::tests::addField;
using zov::tests::attempt;
using zov::tests::attempted;
using zov::tests::failingAllocations;
using zov::tests::failureKind;
using zov::tests::numbered;
using enum zov::tests::outcome;

// Names that nobody has interned before, so that interning is among what fails.
string freshName(wchar_t const* stem) {
    static int made = 0;
    return numbered(stem, ++made) + L"OfTheGrowthFaultTests";
}

// ---- the whole of what a host sees

void describe(std::string& out, refPtr<relationInfo> const& relation) {
    out += "  relation " + relation->scName().string().toUtf8() + "/" + relation->scReverseName().string().toUtf8() +
           " count=" + std::to_string(relation->refCount());
    relation->forEachFieldPair(
        [&](refPtr<fieldInfo> const& from, refPtr<fieldInfo> const& to) {
            out += " " + from->scName().string().toUtf8() + ">" + to->scName().string().toUtf8();
            return true;
        },
        false);
    out += "\n";
}

// Asked by its name too: what a walk visits, a lookup finds.
void describe(std::string& out, refPtr<classInfo> const& type) {
    out += "class " + type->scName().string().toUtf8() + " count=" + std::to_string(type->refCount()) +
           " fields=" + std::to_string(type->countFields()) + "\n";
    std::vector<string> aliases;
    type->getAliasnames(aliases);
    for (auto const& alias : aliases)
        out += "  alias " + alias.toUtf8() + "\n";
    type->forEachBaseClass(
        [&](classInfo::entry const& entry) {
            out += "  base " + entry.first.string().toUtf8() + "\n";
            return true;
        },
        false);
    type->forEachFieldInfo(
        [&](refPtr<fieldInfo> const& field) {
            out += "  field " + field->scName().string().toUtf8() + " semantic=" + std::to_string(field->semantic()) +
                   " count=" + std::to_string(field->refCount()) + "\n";
            EXPECT_EQ(type->fieldInfo(field->scName().string(), false, false), field);
            return true;
        },
        false);
    auto const add = [&](refPtr<relationInfo> const& relation) {
        describe(out, relation);
        return true;
    };
    type->forEachToRelation(add, false);
    out += "  arriving\n";
    type->forEachFromRelation(add, false);
}

std::string described(refPtr<modelInfo> const& model) {
    std::string out = "classes=" + std::to_string(model->countClasses()) + "\n";
    model->forEachClassInfo(
        [&](classInfo::entry const& entry) {
            describe(out, entry.second);
            EXPECT_EQ(model->classInfo(entry.first.string(), false), entry.second);
            return true;
        },
        false);
    return out;
}

// ---- additions that fail

// Whether the action succeeds with the allocation after `passing` ones failing; it fails as it may.
bool succeeds(long passing, failureKind kind, std::function<bool()> const& addition, bool& failed) {
    attempt const made = attempted(passing, kind, addition);
    EXPECT_NE(made.ended, eThrewOther);
    failed = made.allocationFailed;
    return made.ended == ePassed;
}

// Makes one addition, after it failed at each of its allocations. `addition` answers whether it was made; `isThere`
// whether what it adds is found.
void addAfterAllFailures(refPtr<modelInfo> const& model, std::function<bool()> const& addition,
                         std::function<bool()> const& isThere) {
    auto const before = described(model);
    for (long passing = 0;; ++passing) {
        ASSERT_LT(passing, 3000) << "the addition never passes";
        SCOPED_TRACE("allocation " + std::to_string(passing));
        bool failed = false;
        auto const kind = passing % 2 ? zov::tests::eOneAllocation : zov::tests::eAllAllocations;
        bool const done = succeeds(passing, kind, addition, failed);
        ASSERT_TRUE(done || failed);
        ASSERT_EQ(done, isThere());
        if (done) break;
        ASSERT_EQ(described(model), before);
    }
    ASSERT_NE(described(model), before);
    ASSERT_FALSE(testing::Test::HasFailure());
}

// A model that is let go at the end of a test, with reports that nobody reads.
class growthWhenMemoryRunsOut : public testing::Test {
protected:
    growthWhenMemoryRunsOut() {
        zov::setAssertHandler([](string const&) {});
    }
    ~growthWhenMemoryRunsOut() override {
        mModel->tearDown();
        zov::setAssertHandler({});
    }

    refPtr<modelInfo> const mModel = modelInfo::createModelInfo(false);
    string const mNoText;
    genericSet const mNoAttributes;
};

// behaviour: AF-08
TEST_F(growthWhenMemoryRunsOut, ofFieldsLeavesTheClassAsItWas) {
    auto const part = mModel->createClassInfo(L"part");
    for (int count = 0; count <= 60; ++count) {
        SCOPED_TRACE(count);
        string const name = freshName(L"Field");
        refPtr<fieldInfo> made;
        addAfterAllFailures(
            mModel,
            [&] {
                made = part->createFieldInfo(name, eInt, mNoAttributes, mNoText);
                return static_cast<bool>(made);
            },
            [&] { return made ? part->fieldInfo(name, false, false) == made : !!part->fieldInfo(name, true, true); });
        ASSERT_FALSE(HasFatalFailure());
        ASSERT_EQ(part->countFields(), static_cast<std::size_t>(count) + 1);
        ASSERT_EQ(made->refCount(), 2u);
    }
}

// behaviour: AF-08
TEST_F(growthWhenMemoryRunsOut, ofStandingFieldsLeavesTheClassAsItWas) {
    auto const base = mModel->createClassInfo(L"base");
    auto const part = mModel->createClassInfo(L"part");
    part->addBaseClass(base);
    for (int count = 0; count <= 30; ++count) {
        SCOPED_TRACE(count);
        string const name = numbered(L"field", count);
        addField(base, name);
        addAfterAllFailures(
            mModel, [&] { return static_cast<bool>(part->createFieldInfo(base, name)); },
            [&] { return static_cast<bool>(part->fieldInfo(name, false, false)); });
        ASSERT_FALSE(HasFatalFailure());
    }
}

// behaviour: AF-09
TEST_F(growthWhenMemoryRunsOut, ofCopiedFieldsLeavesTheClassAsItWas) {
    auto const from = mModel->createClassInfo(L"from");
    auto const part = mModel->createClassInfo(L"part");
    auto const source = addField(from, L"width");
    for (int count = 0; count <= 30; ++count) {
        SCOPED_TRACE(count);
        string const prefix = freshName(L"p").lower();
        string const name = prefix + L"width";
        addAfterAllFailures(
            mModel, [&] { return static_cast<bool>(part->copyFieldInfoFrom(source, prefix.c_str())); },
            [&] { return static_cast<bool>(part->fieldInfo(name, false, false)); });
        ASSERT_FALSE(HasFatalFailure());
    }
}

// Classes of each size are copied into classes of each size, so that the copies end before, at and behind every point
// where storage grows.
// behaviour: AF-09
TEST_F(growthWhenMemoryRunsOut, ofAllCopiedFieldsCopiesAllOrNone) {
    for (int there : {0, 1, 4, 6, 7, 8, 12, 13, 16, 24}) {
        for (int copied : {1, 2, 5, 9}) {
            SCOPED_TRACE(testing::Message() << copied << " to " << there);
            auto const model = modelInfo::createModelInfo(false);
            auto const from = model->createClassInfo(L"from");
            auto const part = model->createClassInfo(L"part");
            for (int at = 0; at < there; ++at)
                addField(part, numbered(L"field", at));
            for (int at = 0; at < copied; ++at)
                addField(from, numbered(L"copied", at));
            addField(from, L"field0");
            addField(part, L"field0");
            auto const before = part->countFields();
            addAfterAllFailures(
                model, [&] { return part->copyInfosFrom(from, nullptr); },
                [&] { return part->countFields() == before + static_cast<std::size_t>(copied); });
            EXPECT_TRUE(part->fieldInfo(numbered(L"copied", copied - 1), false, false));
            model->tearDown();
            ASSERT_FALSE(HasFailure());
        }
    }
}

// behaviour: AF-03
TEST_F(growthWhenMemoryRunsOut, ofModelsLeavesThemAsTheyWere) {
    for (int count = 0; count <= 60; ++count) {
        SCOPED_TRACE(count);
        string const name = freshName(L"Class");
        addAfterAllFailures(
            mModel,
            [&] {
                return static_cast<bool>(count % 2 ? mModel->createClassInfo(name)
                                                   : mModel->getOrCreateClassInfo(name));
            },
            [&] { return static_cast<bool>(mModel->classInfo(name, true)); });
        ASSERT_FALSE(HasFatalFailure());
        ASSERT_EQ(mModel->countClasses(), static_cast<std::size_t>(count) + 1);
        ASSERT_EQ(mModel->classInfo(name, false)->refCount(), 2u);
    }
}

// behaviour: AF-03, AF-04
TEST_F(growthWhenMemoryRunsOut, ofModelsLeavesNothingOfClassesThatAcceptFilled) {
    for (int count = 0; count <= 25; ++count) {
        SCOPED_TRACE(count);
        string const name = freshName(L"Class");
        string const alias = freshName(L"Alias").lower();
        refPtr<classInfo> last;
        modelInfo::acceptFunction const accept = [&](refPtr<classInfo> const& offered) {
            last = offered;
            offered->addAliasname(alias);
            return !!offered->createFieldInfo(L"a", eInt, mNoAttributes, mNoText);
        };
        auto const found = [&] {
            bool const isThere = static_cast<bool>(mModel->classInfo(alias, true));
            EXPECT_EQ(isThere, static_cast<bool>(mModel->classInfo(name, false)));
            EXPECT_TRUE(isThere || !last || (last->refCount() == 1 && last->countFields() == 0));
            return isThere;
        };
        addAfterAllFailures(
            mModel, [&] { return static_cast<bool>(mModel->createClassInfo(name, accept)); }, found);
        ASSERT_FALSE(HasFatalFailure());
    }
}

// In a model that keeps letter case a class with capitals takes the place of the one before.
// behaviour: AF-03
TEST_F(growthWhenMemoryRunsOut, leavesTheClassThatWouldHaveBeenReplaced) {
    auto const model = modelInfo::createModelInfo(true);
    for (int count = 0; count <= 20; ++count) {
        SCOPED_TRACE(count);
        string const name = numbered(L"Replaced", count);
        string const key = name.lower();
        auto const former = model->createClassInfo(name);
        addField(former, L"a");
        former->addAliasname(L"alias of " + key);
        string const alias = L"alias of " + key;
        addAfterAllFailures(
            model, [&] { return static_cast<bool>(model->createClassInfo(name)); },
            [&] {
                bool const isThere = model->classInfo(key, false) != former;
                EXPECT_EQ(model->classInfo(alias, true), isThere ? nullptr : former);
                return isThere;
            });
        ASSERT_FALSE(HasFatalFailure());
        former->tearDown();
        ASSERT_EQ(former->refCount(), 1u);
    }
    model->tearDown();
}

// behaviour: AF-11, MR-08
TEST_F(growthWhenMemoryRunsOut, ofAliasesLeavesTheModelAsItWas) {
    auto const part = mModel->createClassInfo(L"part");
    auto const unit = mModel->createClassInfo(L"unit");
    for (int count = 0; count <= 40; ++count) {
        SCOPED_TRACE(count);
        string const alias = freshName(L"alias").lower();
        auto const owner = count % 2 ? part : unit;
        addAfterAllFailures(
            mModel,
            [&] {
                owner->addAliasname(alias);
                return true;
            },
            [&] { return mModel->classInfo(alias, true) == owner; });
        ASSERT_FALSE(HasFatalFailure());
        owner->removeAliasname(alias);
        ASSERT_FALSE(mModel->classInfo(alias, true));
        owner->addAliasname(alias);
    }
}

// behaviour: AF-12
TEST_F(growthWhenMemoryRunsOut, ofBasesLeavesTheClassAsItWas) {
    auto const part = mModel->createClassInfo(L"part");
    for (int count = 0; count <= 40; ++count) {
        SCOPED_TRACE(count);
        auto const base = mModel->createClassInfo(numbered(L"base", count));
        addAfterAllFailures(
            mModel,
            [&] {
                part->addBaseClass(base);
                return true;
            },
            [&] { return part->isDerivedFrom(base); });
        ASSERT_FALSE(HasFatalFailure());
    }
}

// behaviour: CR-16
TEST_F(growthWhenMemoryRunsOut, ofRelationsLeavesBothClassesAsTheyWere) {
    auto const order = mModel->createClassInfo(L"order");
    auto const customer = mModel->createClassInfo(L"customer");
    for (int count = 0; count <= 60; ++count) {
        SCOPED_TRACE(count);
        string const field = numbered(L"field", count);
        addField(order, field);
        auto const to = addField(customer, field);
        string const name = freshName(L"Relation");
        string const back = freshName(L"Back");
        addAfterAllFailures(
            mModel,
            [&] {
                return static_cast<bool>(count % 2 ? order->createRelation(field, false, to, eRef, name, back)
                                                   : order->createRelation(field, false, customer, eRef, name, back));
            },
            [&] { return static_cast<bool>(order->toRelation(name, false)); });
        ASSERT_FALSE(HasFatalFailure());
    }
}

// behaviour: CR-16
TEST_F(growthWhenMemoryRunsOut, ofRelationsToTheirOwnClassLeavesItAsItWas) {
    auto const order = mModel->createClassInfo(L"order");
    for (int count = 0; count <= 30; ++count) {
        SCOPED_TRACE(count);
        string const field = numbered(L"field", count);
        auto const made = addField(order, field);
        addAfterAllFailures(
            mModel,
            [&] { return static_cast<bool>(order->createRelation(field, false, made, eRef, mNoText, mNoText)); },
            [&] { return static_cast<bool>(order->toRelation(field, false)); });
        ASSERT_FALSE(HasFatalFailure());
    }
}

// behaviour: RI-19
TEST_F(growthWhenMemoryRunsOut, ofPairsLeavesTheRelationAsItWas) {
    auto const order = mModel->createClassInfo(L"order");
    auto const from = addField(order, L"from");
    auto const to = addField(order, L"to");
    auto const relation = order->createRelation(L"from", false, to, eRef, L"", L"");
    for (int count = 1; count <= 40; ++count) {
        SCOPED_TRACE(count);
        auto const other = addField(order, numbered(L"field", count));
        addAfterAllFailures(
            mModel, [&] { return relation->addFieldRelation(other, to); },
            [&] { return static_cast<bool>(relation->toFieldInfo(other)); });
        ASSERT_FALSE(HasFatalFailure());
    }
}

// A walk has begun, and keeps what is to be replaced, while each addition fails and then passes.
// behaviour: AF-08, CF-13
TEST_F(growthWhenMemoryRunsOut, disturbsNoWalkThatHasBegun) {
    auto const part = mModel->createClassInfo(L"part");
    for (int at = 0; at < 12; ++at)
        addField(part, numbered(L"field", at));
    int visits = 0;
    part->forEachFieldInfo(
        [&](refPtr<fieldInfo> const& field) {
            EXPECT_EQ(field->scName().string(), numbered(L"field", visits++));
            string const name = freshName(L"More");
            addAfterAllFailures(
                mModel, [&] { return static_cast<bool>(part->createFieldInfo(name, eInt, mNoAttributes, mNoText)); },
                [&] { return static_cast<bool>(part->fieldInfo(name, false, false)); });
            return !HasFailure();
        },
        true);
    EXPECT_EQ(visits, 12);
    EXPECT_EQ(part->countFields(), 24u);
}

// What a tear-down lets go after failures is everything.
// behaviour: AF-18, GT-13
TEST_F(growthWhenMemoryRunsOut, leavesNothingThatATearDownDoesNotFree) {
    std::vector<refPtr<fieldInfo>> fields;
    auto const part = mModel->createClassInfo(L"part");
    for (int count = 0; count < 40; ++count) {
        string const name = freshName(L"Field");
        for (long passing = 0;; ++passing) {
            bool failed = false;
            auto const add = [&] { return !!part->createFieldInfo(name, eInt, mNoAttributes, mNoText); };
            if (succeeds(passing, zov::tests::eAllAllocations, add, failed)) break;
            ASSERT_LT(passing, 3000);
        }
        fields.push_back(part->fieldInfo(name, false, false));
    }
    {
        failingAllocations const armed(0);
        mModel->tearDown();
    }
    for (auto const& field : fields)
        EXPECT_EQ(field->refCount(), 1u);
    EXPECT_EQ(part->refCount(), 1u);
}

} // namespace
