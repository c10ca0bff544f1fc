// Letting go of models and classes.
#include "zovMdlModelInfo.h"

#include <gtest/gtest.h>

#include <pthread.h>

#include <functional>
#include <stdexcept>
#include <utility>
#include <vector>

#include "modelFixture.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::countStarting;
using tests::events;
using tests::fieldNames;
using tests::names;
using tests::ownClass;
using tests::ownModel;
using zov::tests::eventLog;
using zov::tests::throwsFalse;

// Every class and field that came must have gone.
void expectAllFreed(events const& happened) {
    EXPECT_GT(countStarting(happened, "trace classInfo created"), 0u);
    EXPECT_EQ(countStarting(happened, "trace classInfo created"), countStarting(happened, "trace classInfo released"));
    EXPECT_EQ(countStarting(happened, "trace fieldInfo created"), countStarting(happened, "debug fieldInfo released"));
}

// Two related classes with fields of every kind, and an id set.
void fill(modelInfo& model) {
    auto const base = model.createClassInfo(L"base");
    auto const part = model.createClassInfo(L"part");
    part->addBaseClass(base);
    part->addAliasname(L"piece");
    addField(base, L"width");
    addField(base, L"key")->setSemantic(eSemPrimkey, genericSet(), L"");
    part->createFieldInfo(base, L"key");
    part->copyInfosFrom(base, L"copied_");
    base->idInfo();
    part->idInfo();
}

// behaviour: TD-01
TEST(tearDown, freesAllThatNoHostHolds) {
    eventLog log;
    auto const model = modelInfo::createModelInfo(false);
    fill(*model);
    auto happened = log.take();
    EXPECT_EQ(countStarting(happened, "trace fieldInfo created"), 5u);
    model->tearDown();
    auto const released = log.take();
    happened.insert(happened.end(), released.begin(), released.end());
    expectAllFreed(happened);
    EXPECT_EQ(model->countClasses(), 0u);
    EXPECT_EQ(model->classInfo(L"part", true), nullptr);
    EXPECT_EQ(model->fieldInfo(L"part.key", true), nullptr);
}

// behaviour: TD-02
TEST(tearDown, mayBeDoneTwice) {
    ownModel const model;
    fill(*model.pointer());
    model->tearDown();
    eventLog log;
    model->tearDown();
    EXPECT_EQ(log.take(), events());
    ownClass const part(L"part");
    addField(part, L"width");
    part->tearDown();
    log.take();
    part->tearDown();
    EXPECT_EQ(log.take(), events());
    EXPECT_EQ(part->scName().string(), L"part");
}

// behaviour: TD-02
TEST(tearDown, doesNothingToAnEmptyModel) {
    ownModel const model;
    eventLog log;
    model->tearDown();
    EXPECT_EQ(log.take(), events());
    static_assert(noexcept(std::declval<modelInfo&>().tearDown()));
    static_assert(noexcept(std::declval<classInfo&>().tearDown()));
}

// behaviour: TD-03
TEST(tearDown, leavesWalksThatHaveBegunTheirClasses) {
    eventLog log;
    ownModel const model;
    fill(*model.pointer());
    int visits = 0;
    EXPECT_TRUE(model->forEachClassInfo(
        [&](classInfo::entry const& entry) {
            ++visits;
            model->tearDown();
            EXPECT_EQ(entry.first, entry.second->scName());
            EXPECT_EQ(entry.second->countFields(), 0u);
            return true;
        },
        true));
    EXPECT_EQ(visits, 2);
    expectAllFreed(log.take());
}

// behaviour: TD-03
TEST(tearDown, leavesWalksOverFieldsAndBasesTheirEntries) {
    eventLog log;
    {
        ownModel const model;
        fill(*model.pointer());
        auto const part = model->classInfo(L"part", false);
        names visited;
        part->forEachFieldInfo(
            [&](refPtr<fieldInfo> const& field) {
                part->tearDown();
                visited.push_back(field->qualifiedName());
                return true;
            },
            true);
        EXPECT_EQ(visited, (names{L"key", L"copied_width", L"copied_key"}));
        part->addBaseClass(model->classInfo(L"base", false));
        int bases = 0;
        part->forEachBaseClass(
            [&](classInfo::entry const& entry) {
                model->tearDown();
                EXPECT_EQ(entry.second->scName().string(), L"base");
                return ++bases > 0;
            },
            true);
        EXPECT_EQ(bases, 1);
    }
    expectAllFreed(log.take());
}

// behaviour: TD-04
TEST(tearDown, mayBeDoneInsideAccept) {
    eventLog log;
    {
        ownModel const model;
        fill(*model.pointer());
        auto const made = model->createClassInfo(L"new", [&](refPtr<classInfo> const& offered) {
            addField(offered, L"width");
            model->tearDown();
            return true;
        });
        EXPECT_EQ(model->countClasses(), 1u);
        EXPECT_EQ(model->classInfo(L"new", false), made);
        EXPECT_EQ(fieldNames(made), names{L"width"});
    }
    expectAllFreed(log.take());
}

// behaviour: TD-04
TEST(tearDown, ofAClassInsideAcceptLeavesItToBeFilledAnew) {
    eventLog log;
    {
        ownModel const model;
        auto const made = model->createClassInfo(L"new", [&](refPtr<classInfo> const& offered) {
            addField(offered, L"width");
            offered->tearDown();
            addField(offered, L"height");
            return true;
        });
        EXPECT_EQ(fieldNames(made), names{L"height"});
    }
    expectAllFreed(log.take());
}

// behaviour: TD-05
TEST(tearDown, leavesAHeldClassItsOwnData) {
    auto const model = modelInfo::createModelInfo(false);
    fill(*model);
    auto const part = model->classInfo(L"part", false);
    part->setLabel(L"A part");
    part->setAbstract(true);
    model->tearDown();
    EXPECT_EQ(part->scName().string(), L"part");
    EXPECT_EQ(part->label(), L"A part");
    EXPECT_TRUE(part->isAbstract());
    EXPECT_TRUE(part->hasAliasname(scString::createFrom(L"piece")));
    EXPECT_EQ(part->countFields(), 0u);
    EXPECT_EQ(part->fieldInfo(L"key", true, true), nullptr);
    EXPECT_TRUE(part->forEachBaseClass([](classInfo::entry const&) { return false; }, true));
    EXPECT_EQ(part->refCount(), 1u);
}

// behaviour: TD-05
TEST(tearDown, leavesAHeldFieldItsOwnData) {
    auto const model = modelInfo::createModelInfo(false);
    fill(*model);
    auto const key = model->fieldInfo(L"part.key", false);
    auto const root = key->baseField();
    root->setUnit(L"mm");
    key->setLabel(L"The key");
    model->tearDown();
    EXPECT_EQ(key->scName().string(), L"key");
    EXPECT_EQ(key->label(), L"The key");
    EXPECT_EQ(key->type(), eInt);
    EXPECT_EQ(key->semantic(), eSemPrimkey);
    EXPECT_EQ(key->baseField(), root);
    EXPECT_EQ(key->classInfo(), nullptr);
    EXPECT_EQ(root->classInfo(), nullptr);
    EXPECT_EQ(root->unit(), L"mm");
    EXPECT_TRUE(root->isMandatory());
}

// behaviour: TD-06
TEST(tearDown, leavesTheModelUsable) {
    ownModel const model;
    model->setAddProp(L"author", L"somebody");
    fill(*model.pointer());
    auto const before = model->classInfo(L"part", false);
    model->tearDown();
    fill(*model.pointer());
    EXPECT_EQ(model->countClasses(), 2u);
    EXPECT_NE(model->classInfo(L"part", false), before);
    EXPECT_NE(model->fieldInfo(L"part.key", false), nullptr);
    string author;
    EXPECT_TRUE(model->addProp(L"author", author));
    EXPECT_EQ(author, L"somebody");
}

// behaviour: TD-07
TEST(tearDown, isNotWhatTheEndOfAModelDoes) {
    eventLog log;
    auto model = modelInfo::createModelInfo(false);
    fill(*model);
    ownClass const base(model->classInfo(L"base", false));
    ownClass const part(model->classInfo(L"part", false));
    log.take();
    model.reset();
    EXPECT_EQ(log.take(), events{"trace modelInfo released"});
    EXPECT_EQ(part->countFields(), 3u);
    EXPECT_EQ(part->fieldInfo(L"key", false, false)->classInfo(), part.pointer());
    EXPECT_TRUE(part->isDerivedFrom(base.pointer()));
}

// behaviour: TD-07
TEST(tearDown, isNotNeededForClassesWithoutFields) {
    eventLog log;
    auto model = modelInfo::createModelInfo(false);
    model->createClassInfo(L"part")->addBaseClass(model->createClassInfo(L"base"));
    model.reset();
    auto const happened = log.take();
    expectAllFreed(happened);
    EXPECT_EQ(countStarting(happened, "trace modelInfo released"), 1u);
}

// behaviour: TD-08
TEST(tearDown, letsAClassOfNoModelGo) {
    eventLog log;
    {
        auto const part = classInfo::createClassInfo(L"part");
        addField(part, L"width")->setSemantic(eSemPrimkey, genericSet(), L"");
        part->idInfo();
        part->addBaseClass(part);
        part->tearDown();
        EXPECT_EQ(part->refCount(), 1u);
    }
    expectAllFreed(log.take());
}

// behaviour: TD-08
TEST(tearDown, letsAReplacedClassGo) {
    eventLog log;
    {
        ownModel const model(true);
        ownClass const first(model->createClassInfo(L"Part"));
        addField(first, L"width");
        addField(model->createClassInfo(L"Part"), L"width");
        model->tearDown();
        EXPECT_EQ(first->countFields(), 1u);
    }
    expectAllFreed(log.take());
}

// behaviour: TD-09
TEST(tearDown, isDoneByTheLibraryForAClassThatAcceptRefused) {
    eventLog log;
    ownModel const model;
    refPtr<fieldInfo> held;
    EXPECT_EQ(model->createClassInfo(L"part",
                                     [&](refPtr<classInfo> const& offered) {
                                         held = addField(offered, L"width");
                                         addField(offered, L"height");
                                         offered->addBaseClass(offered);
                                         return false;
                                     }),
              nullptr);
    EXPECT_EQ(held->classInfo(), nullptr);
    held.reset();
    expectAllFreed(log.take());
}

// behaviour: TD-09
TEST(tearDown, isDoneByTheLibraryForAClassThatAcceptThrewAway) {
    eventLog log;
    ownModel const model;
    EXPECT_THROW(model->getOrCreateClassInfo(L"part",
                                             [&](refPtr<classInfo> const& offered) -> bool {
                                                 addField(offered, L"width");
                                                 throw std::runtime_error("the host's own");
                                             }),
                 std::runtime_error);
    expectAllFreed(log.take());
}

// behaviour: TD-09
TEST(tearDown, isDoneForARefusedClassThatAHostStillHolds) {
    ownModel const model;
    refPtr<classInfo> held;
    model->createClassInfo(L"part", [&](refPtr<classInfo> const& offered) {
        held = offered;
        addField(offered, L"width");
        offered->setLabel(L"A part");
        return false;
    });
    EXPECT_EQ(held->countFields(), 0u);
    EXPECT_EQ(held->label(), L"A part");
    EXPECT_EQ(held->refCount(), 1u);
}

// behaviour: TD-11
TEST(tearDown, logsNothingOfItsOwn) {
    ownModel const model;
    fill(*model.pointer());
    std::vector<refPtr<classInfo>> classes;
    std::vector<refPtr<fieldInfo>> fields;
    model->forEachClassInfo(
        [&](classInfo::entry const& entry) {
            classes.push_back(entry.second);
            return entry.second->forEachFieldInfo(
                [&](refPtr<fieldInfo> const& field) {
                    fields.push_back(field);
                    return true;
                },
                true);
        },
        true);
    eventLog log;
    model->tearDown();
    EXPECT_EQ(log.take(), events());
    EXPECT_EQ(fields.size(), 5u);
}

// Runs `action` on a thread whose stack has 256 KiB.
void onSmallStack(std::function<void()> const& action) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, std::size_t(256) * 1024), 0);
    pthread_t thread;
    auto const run = [](void* argument) -> void* {
        (*static_cast<std::function<void()> const*>(argument))();
        return nullptr;
    };
    std::function<void()> copy = action;
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &copy), 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    ASSERT_EQ(pthread_attr_destroy(&attributes), 0);
}

// The last of `length` classes, each with the one before as its base.
refPtr<classInfo> chainOfClasses(int length) {
    refPtr<classInfo> last;
    for (int at = 0; at < length; ++at) {
        auto const next = classInfo::createClassInfo(L"link");
        next->addBaseClass(last);
        last = next;
    }
    return last;
}

// behaviour: TD-10
TEST(tearDown, endsALongChainOfBasesOnASmallStack) {
    constexpr int length = 200000;
    auto first = classInfo::createClassInfo(L"first");
    onSmallStack([&] {
        auto last = chainOfClasses(length);
        refPtr<classInfo> bottom = last;
        while (true) {
            refPtr<classInfo> next;
            bottom->forEachBaseClass(
                [&](classInfo::entry const& entry) {
                    next = entry.second;
                    return true;
                },
                true);
            if (!next) break;
            bottom = next;
        }
        bottom->addBaseClass(first);
        bottom.reset();
        EXPECT_EQ(first->refCount(), 2u);
        last.reset();
    });
    EXPECT_EQ(first->refCount(), 1u);
}

// behaviour: TD-10
TEST(tearDown, endsALongChainThatIsTornDownOnASmallStack) {
    eventLog log;
    onSmallStack([] {
        auto const last = chainOfClasses(20000);
        last->tearDown();
        EXPECT_EQ(last->refCount(), 1u);
    });
    expectAllFreed(log.take());
}

// behaviour: TD-10
TEST(tearDown, endsALongChainOfStandingFieldsOnASmallStack) {
    eventLog log;
    onSmallStack([] {
        std::vector<refPtr<classInfo>> classes{classInfo::createClassInfo(L"link")};
        refPtr<fieldInfo> last = addField(classes.back(), L"width");
        for (int at = 0; at < 4000; ++at) {
            auto const next = classInfo::createClassInfo(L"link");
            next->addBaseClass(classes.back());
            last = next->createFieldInfo(classes.back(), L"width");
            classes.push_back(next);
        }
        for (auto const& made : classes)
            made->tearDown();
        classes.clear();
        EXPECT_EQ(last->scName().string(), L"width");
        last.reset();
    });
    expectAllFreed(log.take());
}

} // namespace
} // namespace zov::metamodel
