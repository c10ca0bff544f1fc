// Containers that grow, are replaced and are let go under readers: more threads than there are cores, each of which
// checks all the time what a host may rely on. What a thread has seen it sees again, walks see what was there when they
// began, in order, and what is found is whole. Worth most under the thread sanitizer.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "numbered.h"
#include "threadedRuns.h"
#include "zovMetamodel.h"

namespace {

using zov::refPtr;
using zov::scString;
using zov::string;
using zov::metamodel::classInfo;
using zov::metamodel::eInt;
using zov::metamodel::eRef;
using zov::metamodel::eSemRelation;
using zov::metamodel::fieldInfo;
using zov::metamodel::modelInfo;
using zov::metamodel::relationInfo;
using zov::tests::addField;
using zov::tests::numbered;
using zov::tests::runTogether;
using zov::tests::violations;

using fields = std::vector<refPtr<fieldInfo>>;
using classes = std::vector<refPtr<classInfo>>;
using relations = std::vector<refPtr<relationInfo>>;

std::vector<string> numberedNames(wchar_t const* stem, std::size_t count) {
    std::vector<string> names;
    for (std::size_t i = 0; i < count; ++i)
        names.push_back(numbered(stem, i));
    return names;
}

// Walks, with room made before: a reader that spends its time allocating sees less.
fields fieldsOf(refPtr<classInfo> const& type) {
    fields found;
    found.reserve(64);
    type->forEachFieldInfo(
        [&found](refPtr<fieldInfo> field) {
            found.push_back(std::move(field));
            return true;
        },
        false);
    return found;
}

classes classesOf(refPtr<modelInfo> const& model, violations& checks) {
    classes found;
    model->forEachClassInfo(
        [&](classInfo::entry const& entry) {
            checks.check(entry.first == entry.second->scName());
            checks.check(found.empty() || found.back()->scName() < entry.first);
            found.push_back(entry.second);
            return true;
        },
        false);
    return found;
}

relations leaving(refPtr<classInfo> const& type) {
    relations found;
    type->forEachToRelation(
        [&found](refPtr<relationInfo> relation) {
            found.push_back(std::move(relation));
            return true;
        },
        false);
    return found;
}

// Whether what was seen before is what the list begins with.
template <class Objects>
bool beginsWith(Objects const& list, Objects const& before) {
    return before.size() <= list.size() && std::equal(before.begin(), before.end(), list.begin());
}

// A model that is let go at the end, and jobs for more threads than there are cores.
class threadsOfGrowth : public testing::Test {
protected:
    ~threadsOfGrowth() override { mModel->tearDown(); }

    static std::size_t readerCount() {
        return std::clamp<std::size_t>(std::size_t{2} * std::thread::hardware_concurrency(), 4, 10);
    }

    // Runs the writers, each once, beside readers that go on until all writers are done, and then once more.
    void runBesideReaders(std::vector<std::function<void()>> const& writers,
                          std::function<std::function<void()>()> const& makeReader) {
        std::atomic<std::size_t> working{writers.size()};
        std::vector<std::function<void()>> jobs;
        for (auto const& write : writers) {
            jobs.emplace_back([&working, &write] {
                write();
                --working;
            });
        }
        for (std::size_t at = 0; at < readerCount(); ++at) {
            jobs.emplace_back([this, &working, read = makeReader()] {
                for (bool last = false; !last;) {
                    last = working == 0;
                    read();
                    ++mPasses;
                }
            });
        }
        runTogether(jobs);
    }

    // Called by a writer between its steps, so that it is not done before the readers have begun: gives way until one
    // of them has come through, or for a while.
    void letReadersSee() {
        auto const before = mPasses.load();
        for (int turn = 0; turn < 60 && mPasses == before; ++turn)
            std::this_thread::yield();
    }

    refPtr<modelInfo> const mModel = modelInfo::createModelInfo(false);
    violations mViolations;

private:
    std::atomic<std::size_t> mPasses{0};
};

// ---- fields of one class

// behaviour: CF-13, TH-06
TEST_F(threadsOfGrowth, readersSeeTheFieldsOfOneWriterInItsOrderAndNoneTwice) {
    constexpr std::size_t count = 300;
    auto const part = mModel->createClassInfo(L"part");
    auto const names = numberedNames(L"field", count);
    auto const asked = numberedNames(L"FIELD", count);
    std::atomic<std::size_t> made{0};
    auto const makeReader = [&] {
        return [&, seen = fields()]() mutable {
            std::size_t const atLeast = made;
            auto const countBefore = part->countFields();
            auto const now = fieldsOf(part);
            auto const countAfter = part->countFields();
            mViolations.check(atLeast <= countBefore && countBefore <= now.size() && now.size() <= countAfter);
            mViolations.check(beginsWith(now, seen));
            for (std::size_t at = seen.size(); at < now.size(); ++at)
                mViolations.check(now[at]->scName().string() == names[at] && now[at]->classInfo() == part);
            for (std::size_t at = seen.size() / 2; at < now.size(); at += 3)
                mViolations.check(part->fieldInfo(asked[at], true, true) == now[at]);
            for (std::size_t at = 0; at < atLeast; at += 17)
                mViolations.check(static_cast<bool>(part->fieldInfo(asked[at], false, false)));
            seen = now;
        };
    };
    auto const writer = [&] {
        for (auto const& name : names) {
            addField(part, name);
            if (++made % 4 == 0) letReadersSee();
        }
    };
    runBesideReaders({writer}, makeReader);
    EXPECT_EQ(part->countFields(), count);
}

// behaviour: CF-13, TH-05, TH-06
TEST_F(threadsOfGrowth, walksSeeOneOrderWhileSeveralWritersAppendToOneClass) {
    auto const part = mModel->createClassInfo(L"part");
    auto const writer = [&](wchar_t const* stem) {
        return [&, stem] {
            refPtr<fieldInfo> first;
            for (auto const& name : numberedNames(stem, 100)) {
                auto const made = addField(part, name);
                mViolations.check(part->fieldInfo(name, false, false) == made);
                if (!first) first = made;
                mViolations.check(addField(part, numbered(stem, 0)) == first);
                letReadersSee();
            }
        };
    };
    auto const makeReader = [&] {
        return [&, seen = fields()]() mutable {
            auto const now = fieldsOf(part);
            mViolations.check(beginsWith(now, seen));
            for (std::size_t at = seen.size(); at < now.size(); ++at)
                mViolations.check(part->fieldInfo(now[at]->scName().string(), true, false) == now[at]);
            seen = now;
        };
    };
    runBesideReaders({writer(L"a"), writer(L"b"), writer(L"c")}, makeReader);
    EXPECT_EQ(part->countFields(), 300u);
}

// behaviour: TH-07
TEST_F(threadsOfGrowth, copiedFieldsAreThereAllOrNoneHoweverManyThereAre) {
    for (std::size_t const each : {7u, 16u, 33u}) {
        auto const source = mModel->createClassInfo(numbered(L"source", each));
        auto const copies = mModel->createClassInfo(numbered(L"copies", each));
        for (auto const& name : numberedNames(L"field", each))
            addField(source, name);
        auto const prefixes = numberedNames(L"copy", 12);
        auto const makeReader = [&] {
            return [&] {
                mViolations.check(copies->countFields() % each == 0);
                mViolations.check(fieldsOf(copies).size() % each == 0);
                for (auto const& prefix : prefixes) {
                    // What comes last is looked for first.
                    bool known = false;
                    for (std::size_t at = each; at-- > 0;) {
                        auto const name = prefix + numbered(L"field", at);
                        bool const found = static_cast<bool>(copies->fieldInfo(name, false, false));
                        mViolations.check(found || !known);
                        known = known || found;
                    }
                }
            };
        };
        auto const writer = [&] {
            for (auto const& prefix : prefixes) {
                copies->copyInfosFrom(source, prefix.c_str());
                letReadersSee();
            }
        };
        runBesideReaders({writer}, makeReader);
        EXPECT_EQ(copies->countFields(), each * prefixes.size());
    }
}

// Every thread adds to the class that it walks, and sees nothing of what is added meanwhile.
// behaviour: CF-13, CF-30, TH-05
TEST_F(threadsOfGrowth, walksOnSeveralThreadsMayAddToTheClassThatAllOfThemWalk) {
    auto const part = mModel->createClassInfo(L"part");
    for (auto const& name : numberedNames(L"field", 10))
        addField(part, name);
    std::atomic<std::size_t> number{0};
    auto const job = [&] {
        for (int times = 0; times < 3; ++times) {
            auto const before = part->countFields();
            std::size_t visits = 0;
            std::size_t added = 0;
            part->forEachFieldInfo(
                [&](refPtr<fieldInfo> const& field) {
                    mViolations.check(field->classInfo() == part);
                    if (visits++ < 5 && ++added) addField(part, numbered(L"more", ++number));
                    return true;
                },
                true);
            mViolations.check(visits >= before && added == 5 && part->countFields() >= before + added);
        }
    };
    runTogether({job, job, job, job, job, job});
    EXPECT_EQ(part->countFields(), 10u + std::size_t{6} * 3 * 5);
}

// ---- classes of one model

// behaviour: MR-08, TH-01
TEST_F(threadsOfGrowth, readersFindWholeClassesAgainByNameAndAliasBesideSeveralWriters) {
    auto const writer = [&](wchar_t const* stem) {
        return [&, stem] {
            for (auto const& name : numberedNames(stem, 60)) {
                auto const made = mModel->createClassInfo(name, [&](refPtr<classInfo> const& offered) {
                    offered->addAliasname(L"alias of " + name);
                    for (auto const* field : {L"width", L"height", L"depth"})
                        addField(offered, field);
                    return true;
                });
                mViolations.check(mModel->classInfo(name, false) == made);
                letReadersSee();
            }
        };
    };
    auto const makeReader = [&] {
        return [&, seen = classes()]() mutable {
            auto const countBefore = mModel->countClasses();
            auto const now = classesOf(mModel, mViolations);
            mViolations.check(countBefore <= now.size() && now.size() <= mModel->countClasses());
            mViolations.check(
                std::includes(now.begin(), now.end(), seen.begin(), seen.end(),
                              [](auto const& left, auto const& right) { return left->scName() < right->scName(); }));
            for (auto const& each : now) {
                auto const& name = each->scName().string();
                mViolations.check(mModel->classInfo(name, false) == each && each->countFields() == 3);
                mViolations.check(mModel->classInfo(L"alias of " + name, true) == each);
                mViolations.check(mModel->fieldInfo(name, L"DEPTH", false)->classInfo() == each);
            }
            seen = now;
        };
    };
    runBesideReaders({writer(L"a"), writer(L"b"), writer(L"c")}, makeReader);
    EXPECT_EQ(mModel->countClasses(), 180u);
}

// A class is replaced again and again, also by registrations inside of registrations; its label tells which one it is.
// behaviour: MR-12, MR-13, TH-01
TEST_F(threadsOfGrowth, readersNeverGoBackToAClassThatWasReplaced) {
    auto const model = modelInfo::createModelInfo(true);
    for (auto const& name : numberedNames(L"other", 20))
        model->createClassInfo(name);
    classes all;
    auto const registerOne = [&](int version, std::function<void()> const& nested) {
        all.push_back(model->createClassInfo(L"Part", [&](refPtr<classInfo> const& offered) {
            offered->setLabel(string(std::to_wstring(version)));
            addField(offered, L"width");
            offered->addAliasname(L"piece");
            if (nested) nested();
            return true;
        }));
    };
    registerOne(0, {});
    auto const writer = [&] {
        for (int version = 1; version < 1000; version += 2) {
            registerOne(version + 1, [&] { registerOne(version, {}); });
            if (version % 10 == 1) letReadersSee();
        }
    };
    auto const versionOf = [&](refPtr<classInfo> const& seen) {
        mViolations.check(seen && seen->scName().string() == L"part" && seen->countFields() == 1);
        return seen ? std::stoi(seen->label()) : -1;
    };
    auto const makeReader = [&] {
        return [&, before = 0]() mutable {
            auto const byName = versionOf(model->classInfo(L"part", false));
            auto const byAlias = versionOf(model->classInfo(L"piece", true));
            int byWalk = -1;
            model->forEachClassInfo(
                [&](classInfo::entry const& entry) {
                    if (entry.second->countFields() == 1) byWalk = versionOf(entry.second);
                    return true;
                },
                true);
            mViolations.check(before <= byName && byName <= byAlias && byAlias <= byWalk);
            mViolations.check(model->countClasses() == 21);
            before = byWalk;
        };
    };
    runBesideReaders({writer}, makeReader);
    model->tearDown();
    for (auto const& each : all)
        each->tearDown();
    ASSERT_EQ(all.size(), 1001u);
    for (auto const& each : all)
        EXPECT_EQ(each->refCount(), 1u);
}

// ---- bases and relations

// behaviour: CI-04, TH-08
TEST_F(threadsOfGrowth, readersSeeThroughEveryBaseThatTheyHaveSeen) {
    auto const part = mModel->createClassInfo(L"part");
    classes bases;
    for (std::size_t at = 0; at < 100; ++at) {
        bases.push_back(mModel->createClassInfo(numbered(L"base", at)));
        addField(bases.back(), numbered(L"field", at));
        bases.back()->createRelation(numbered(L"field", at), false, part, eRef, L"", L"");
        bases.back()->setUserProperty(numbered(L"text", at), L"a text", true);
    }
    auto const makeReader = [&] {
        return [&, seen = std::vector<bool>(bases.size())]() mutable {
            for (std::size_t at = 0; at < bases.size(); ++at) {
                bool const isBase = part->isDerivedFrom(bases[at]);
                mViolations.check(isBase || !seen[at]);
                seen[at] = isBase;
                auto const field = part->fieldInfo(numbered(L"field", at), true, false);
                auto const relation = part->toRelation(numbered(L"field", at), true);
                string text;
                bool const hasText = part->getUserProperty(numbered(L"text", at), text, true);
                mViolations.check(!isBase || (field && relation && hasText));
                mViolations.check(!field || field->classInfo() == bases[at]);
                mViolations.check(!relation || relation->fromClassInfo() == bases[at]);
            }
        };
    };
    auto const writer = [&](std::size_t first) {
        return [&, first] {
            for (std::size_t at = first; at < bases.size(); at += 2) {
                part->addBaseClass(bases[at]);
                mViolations.check(part->isDerivedFrom(bases[at]));
                letReadersSee();
            }
        };
    };
    runBesideReaders({writer(0), writer(1)}, makeReader);
    for (auto const& base : bases)
        EXPECT_TRUE(part->isDerivedFrom(base));
}

// Lattices are searched by many threads at once, for different things, while they grow at the top.
// behaviour: CI-08, CR-11, TH-06
TEST_F(threadsOfGrowth, readersSearchOneLatticeAtOnceAndDoNotDisturbOneAnother) {
    auto const top = mModel->createClassInfo(L"top");
    auto const apart = mModel->createClassInfo(L"apart");
    classes above{top};
    for (std::size_t layer = 0; layer < 5; ++layer) {
        classes here;
        for (std::size_t at = 0; at < 2; ++at) {
            here.push_back(mModel->createClassInfo(numbered(L"latticed", layer * 2 + at)));
            addField(here.back(), here.back()->scName().string());
            for (auto const& base : above)
                here.back()->addBaseClass(base);
        }
        above = here;
    }
    auto const bottom = above.front();
    auto const names = numberedNames(L"field", 60);
    std::atomic<std::size_t> made{0};
    auto const makeReader = [&] {
        return [&] {
            std::size_t const atLeast = made;
            for (std::size_t at = 0; at < names.size(); at += 5) {
                auto const relation = bottom->toRelation(names[at], true);
                auto const found = bottom->fieldInfo(names[at], true, true);
                mViolations.check(found ? found->classInfo() == top : at >= atLeast && !relation);
            }
            mViolations.check(!bottom->fieldInfo(L"unknown", true, true));
            mViolations.check(bottom->isDerivedFrom(top) && !bottom->isDerivedFrom(apart));
            for (std::size_t at = 0; at < 8; ++at)
                mViolations.check(static_cast<bool>(bottom->fieldInfo(numbered(L"latticed", at), true, true)));
        };
    };
    auto const writer = [&] {
        for (auto const& name : names) {
            addField(top, name);
            ++made;
            top->createRelation(name, false, apart, eRef, name, L"");
            letReadersSee();
        }
    };
    runBesideReaders({writer}, makeReader);
    EXPECT_EQ(top->countFields(), names.size());
}

// behaviour: CR-10, CR-17
TEST_F(threadsOfGrowth, readersSeeRelationsInOneOrderAndFindThemAgain) {
    constexpr std::size_t count = 120;
    auto const order = mModel->createClassInfo(L"order");
    auto const customer = mModel->createClassInfo(L"customer");
    fields targets;
    for (auto const& name : numberedNames(L"field", count)) {
        addField(order, name);
        targets.push_back(addField(customer, name));
    }
    auto const writer = [&](std::size_t first) {
        return [&, first] {
            for (std::size_t at = first; at < count; at += 2) {
                auto const name = numbered(L"field", at);
                auto const made = at % 3 ? order->createRelation(name, false, targets[at], eRef, L"", L"")
                                         : order->createRelation(name, false, customer, eRef, L"", L"");
                mViolations.check(order->toRelation(name, false) == made);
                letReadersSee();
            }
        };
    };
    auto const makeReader = [&] {
        return [&, seen = relations()]() mutable {
            auto const now = leaving(order);
            mViolations.check(beginsWith(now, seen));
            for (std::size_t at = seen.size(); at < now.size(); ++at) {
                mViolations.check(order->toRelation(now[at]->scName().string(), true) == now[at]);
                mViolations.check(now[at]->fromClassInfo() == order && now[at]->toClassInfo() == customer);
                auto const from = now[at]->firstFromFieldInfo();
                mViolations.check(from->semantic() == eSemRelation && now[at]->toFieldInfo(from));
            }
            seen = now;
        };
    };
    runBesideReaders({writer(0), writer(1)}, makeReader);
    EXPECT_EQ(leaving(order).size(), count);
}

// ---- letting go

// Readers keep some of what they saw for longer than the model keeps it.
// behaviour: TH-12, TH-14
TEST_F(threadsOfGrowth, readersKeepWhatTheySawOfModelsThatAreTornDownAgainAndAgain) {
    auto const names = numberedNames(L"class", 20);
    auto const writer = [&] {
        for (int round = 0; round < 30; ++round) {
            for (auto const& name : names) {
                mModel->createClassInfo(name, [&](refPtr<classInfo> const& offered) {
                    offered->addAliasname(L"alias of " + name);
                    for (std::size_t at = 0; at < 9; ++at)
                        addField(offered, name + numbered(L"_", at));
                    return true;
                });
            }
            if (round % 2) mModel->classInfo(names[3], false)->tearDown();
            mModel->tearDown();
        }
    };
    auto const makeReader = [&] {
        return [&, kept = fields(), turn = std::size_t{0}]() mutable {
            auto const& name = names[++turn % names.size()];
            auto const found = turn % 2 ? mModel->classInfo(name, false) : mModel->classInfo(L"alias of " + name, true);
            if (found) {
                mViolations.check(found->scName().string() == name);
                auto const now = fieldsOf(found);
                mViolations.check(now.size() == 9 || now.empty());
                for (auto const& field : now)
                    mViolations.check(field->scName().string().starts_with(name + L"_"));
                kept.insert(kept.end(), now.begin(), now.end());
            }
            for (auto const& field : kept) {
                auto const owner = field->classInfo();
                mViolations.check(field->type() == eInt && field->scName().string().starts_with(L"class"));
                mViolations.check(!owner || field->scName().string().starts_with(owner->scName().string()));
            }
            if (kept.size() > 60) kept.clear();
        };
    };
    runBesideReaders({writer}, makeReader);
    EXPECT_EQ(mModel->countClasses(), 0u);
}

// behaviour: TH-12, TH-13
TEST_F(threadsOfGrowth, aClassIsFilledAndTornDownUnderReadersByTwoThreads) {
    auto const base = mModel->createClassInfo(L"base");
    auto const part = mModel->createClassInfo(L"part");
    addField(base, L"inherited");
    auto const names = numberedNames(L"field", 30);
    auto const filler = [&] {
        for (int round = 0; round < 40; ++round) {
            part->addBaseClass(base);
            for (auto const& name : names) {
                try {
                    addField(part, name);
                } catch (bool thrown) {
                    // It was torn down before the field could be handed out.
                    mViolations.check(!thrown);
                }
            }
        }
    };
    auto const tearer = [&] {
        for (int round = 0; round < 60; ++round) {
            part->tearDown();
            letReadersSee();
        }
    };
    auto const makeReader = [&] {
        return [&] {
            auto const now = fieldsOf(part);
            std::map<scString, refPtr<fieldInfo>> known;
            for (auto const& field : now)
                mViolations.check(known.emplace(field->scName(), field).second);
            for (std::size_t at = 0; at < names.size(); at += 4) {
                auto const found = part->fieldInfo(names[at], true, true);
                mViolations.check(!found || found->scName().string() == names[at]);
            }
            mViolations.check(part->countFields() <= names.size());
            auto const inherited = part->fieldInfo(L"inherited", true, false);
            mViolations.check(!inherited || inherited->classInfo() == base);
        };
    };
    runBesideReaders({filler, tearer}, makeReader);
    part->tearDown();
    EXPECT_EQ(part->countFields(), 0u);
    EXPECT_EQ(part->refCount(), 2u);
}

// Hundreds of threads come, look something up, and go, while others write and let go.
// behaviour: TH-01, TH-06, TH-12
TEST_F(threadsOfGrowth, threadsThatComeAndGoReadBesideWriters) {
    auto const part = mModel->createClassInfo(L"part");
    std::atomic<bool> finished{false};
    std::atomic<std::size_t> made{0};
    auto const writer = [&] {
        for (std::size_t at = 0; !finished || at < 100; ++at) {
            if (made < 300) {
                addField(part, numbered(L"field", made.load()));
                ++made;
            }
            auto const passing = classInfo::createClassInfo(L"passing");
            addField(passing, L"width");
            addField(passing, L"height");
            passing->tearDown();
        }
    };
    auto const starter = [&] {
        for (int wave = 0; wave < 25; ++wave) {
            std::vector<std::thread> threads;
            for (int at = 0; at < 12; ++at) {
                threads.emplace_back([&] {
                    std::size_t const atLeast = made;
                    mViolations.check(mModel->classInfo(L"PART", true) == part);
                    mViolations.check(atLeast == 0 || part->fieldInfo(numbered(L"Field", atLeast - 1), true, true));
                    mViolations.check(fieldsOf(part).size() >= atLeast);
                });
            }
            for (auto& thread : threads)
                thread.join();
        }
        finished = true;
    };
    runTogether({writer, starter});
    EXPECT_EQ(part->countFields(), made);
}

} // namespace
