// What threads may expect of a model that others change: readers that check an invariant beside writers, from one
// start line, a fixed number of times. Worth most under the thread sanitizer.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <barrier>
#include <chrono>
#include <functional>
#include <future>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "numbered.h"
#include "threadedRuns.h"
#include "zovMetamodel.h"

namespace {

using zov::genericSet;
using zov::refPtr;
using zov::scString;
using zov::string;
using zov::metamodel::classInfo;
using zov::metamodel::eInt;
using zov::metamodel::eSemNone;
using zov::metamodel::eSemPrimkey;
using zov::metamodel::fieldInfo;
using zov::metamodel::idInfo;
using zov::metamodel::modelInfo;
using zov::tests::addField;
using zov::tests::numbered;
using zov::tests::runTogether;
using zov::tests::violations;

std::vector<string> numberedNames(wchar_t const* stem, int count) {
    std::vector<string> names;
    for (int i = 0; i < count; ++i)
        names.push_back(numbered(stem, i));
    return names;
}

std::vector<refPtr<fieldInfo>> fieldsOf(refPtr<classInfo> const& type) {
    std::vector<refPtr<fieldInfo>> fields;
    type->forEachFieldInfo(
        [&fields](refPtr<fieldInfo> field) {
            fields.push_back(std::move(field));
            return true;
        },
        false);
    return fields;
}

// A model that is let go at the end of the test.
class threadsOfAModel : public testing::Test {
protected:
    ~threadsOfAModel() override { mModel->tearDown(); }

    // A model of `count` classes with three fields each, the class numbered i named class<i>.
    void fill(int count) {
        for (int i = 0; i < count; ++i)
            mModel->createClassInfo(numbered(L"class", i), withThreeFields);
    }

    static bool withThreeFields(refPtr<classInfo> added) {
        for (auto const* name : {L"width", L"height", L"depth"})
            addField(added, name);
        return true;
    }

    refPtr<modelInfo> mModel = modelInfo::createModelInfo(false);
    violations mViolations;
};

// ---- registration beside readers

// behaviour: TH-01
TEST_F(threadsOfAModel, lookupsBesideRegistrationSeeWholeClassesAndLoseNone) {
    auto const names = numberedNames(L"Class", 200);
    auto const qualified = [&] {
        std::vector<string> made;
        for (auto const& name : names)
            made.push_back(name + L".depth");
        return made;
    }();
    std::atomic<bool> finished{false};
    auto const reader = [&] {
        std::vector<bool> known(names.size());
        for (bool last = false; !last;) {
            last = finished;
            for (std::size_t i = 0; i < names.size(); ++i) {
                auto const found = mModel->classInfo(names[i], false);
                mViolations.check(found || !known[i]);
                mViolations.check(!found || found->countFields() == 3);
                mViolations.check(!found || mModel->fieldInfo(qualified[i], false));
                known[i] = static_cast<bool>(found);
            }
        }
        mViolations.check(std::count(known.begin(), known.end(), true) == 200);
    };
    auto const writer = [&] {
        for (auto const& name : names)
            mModel->createClassInfo(name, withThreeFields);
        finished = true;
    };
    runTogether({writer, reader, reader});
}

// behaviour: TH-01
TEST_F(threadsOfAModel, walksBesideRegistrationSeeWhatWasThereWhenTheyBegan) {
    auto const names = numberedNames(L"class", 200);
    std::atomic<bool> finished{false};
    auto const reader = [&] {
        std::size_t before = 0;
        for (bool last = false; !last;) {
            last = finished;
            auto const atLeast = mModel->countClasses();
            std::size_t seen = 0;
            mModel->forEachClassInfo(
                [&](classInfo::entry const& entry) {
                    ++seen;
                    mViolations.check(entry.second && entry.second->scName() == entry.first);
                    mViolations.check(fieldsOf(entry.second).size() == 3);
                    return true;
                },
                true);
            mViolations.check(seen >= atLeast && atLeast >= before);
            before = seen;
        }
        mViolations.check(before == names.size());
    };
    auto const writer = [&] {
        for (auto const& name : names)
            mModel->createClassInfo(name, withThreeFields);
        finished = true;
    };
    runTogether({writer, reader, reader});
}

// behaviour: TH-02
TEST_F(threadsOfAModel, eachNameIsRegisteredByOneOfTwoThreads) {
    auto const names = numberedNames(L"class", 200);
    std::atomic<int> registered{0};
    std::atomic<int> refused{0};
    auto const writer = [&] {
        for (auto const& name : names) {
            try {
                if (mModel->createClassInfo(name, withThreeFields)) ++registered;
            } catch (bool thrown) {
                if (!thrown) ++refused;
            }
        }
    };
    runTogether({writer, writer});
    EXPECT_EQ(registered, 200);
    EXPECT_EQ(refused, 200);
    EXPECT_EQ(mModel->countClasses(), 200u);
}

// behaviour: TH-02
TEST_F(threadsOfAModel, classesThatTwoThreadsRegisterAreAllThere) {
    auto const mine = numberedNames(L"mine", 100);
    auto const yours = numberedNames(L"yours", 100);
    auto const writer = [this](std::vector<string> const& names) {
        return [this, &names] {
            for (auto const& name : names)
                mModel->createClassInfo(name, withThreeFields);
        };
    };
    runTogether({writer(mine), writer(yours)});
    for (auto const* names : {&mine, &yours}) {
        for (auto const& name : *names)
            EXPECT_TRUE(mModel->classInfo(name, false)) << name.toUtf8();
    }
}

// behaviour: TH-03
TEST_F(threadsOfAModel, getOrCreateClassInfoGivesAllThreadsOneObject) {
    auto const names = numberedNames(L"class", 100);
    std::atomic<int> accepted{0};
    std::array<std::vector<refPtr<classInfo>>, 4> got;
    std::vector<std::function<void()>> jobs;
    for (auto& mine : got) {
        jobs.emplace_back([&] {
            for (auto const& name : names) {
                mine.push_back(mModel->getOrCreateClassInfo(name, [&accepted](refPtr<classInfo>) {
                    ++accepted;
                    return true;
                }));
            }
        });
    }
    runTogether(jobs);
    EXPECT_EQ(accepted, 100);
    EXPECT_EQ(mModel->countClasses(), 100u);
    for (auto const& other : got)
        EXPECT_EQ(other, got[0]);
}

// A thread sits inside accept, and so holds the model's mutex, until readers have asked everything they ask.
// behaviour: TH-04
TEST_F(threadsOfAModel, readersNeverWaitForARegistration) {
    fill(20);
    auto const part = mModel->createClassInfo(L"part", withThreeFields);
    part->addAliasname(L"component");
    std::promise<void> inside;
    std::promise<void> readersAreDone;
    auto const done = readersAreDone.get_future();
    bool inTime = false;
    std::thread writer([&] {
        mModel->createClassInfo(L"late", [&](refPtr<classInfo>) {
            inside.set_value();
            inTime = done.wait_for(std::chrono::seconds(30)) == std::future_status::ready;
            return true;
        });
    });
    inside.get_future().wait();
    for (int i = 0; i < 1000; ++i) {
        mViolations.check(mModel->classInfo(L"Part", false) == part);
        mViolations.check(mModel->classInfo(L"component", true) == part);
        mViolations.check(!mModel->classInfo(L"late", true));
        mViolations.check(static_cast<bool>(mModel->fieldInfo(L"Part.width", false)));
        mViolations.check(mModel->forEachClassInfo([](auto const& entry) { return !!entry.second; }, true));
        mViolations.check(mModel->countClasses() == 21);
        string text;
        mViolations.check(mModel->addProp(L"caseSensitiveNames", text));
    }
    readersAreDone.set_value();
    writer.join();
    EXPECT_TRUE(inTime) << "the readers waited for the registration";
    EXPECT_TRUE(mModel->classInfo(L"late", false));
}

// A class's fields may be made while another thread registers classes: only the class's own lock counts.
// behaviour: TH-04
TEST_F(threadsOfAModel, creatingFieldsDoesNotWaitForARegistration) {
    auto const part = mModel->createClassInfo(L"part");
    std::promise<void> inside;
    std::promise<void> fieldsAreDone;
    auto const done = fieldsAreDone.get_future();
    bool inTime = false;
    std::thread writer([&] {
        mModel->createClassInfo(L"late", [&](refPtr<classInfo>) {
            inside.set_value();
            inTime = done.wait_for(std::chrono::seconds(30)) == std::future_status::ready;
            return true;
        });
    });
    inside.get_future().wait();
    addField(part, L"key")->setSemantic(eSemPrimkey, genericSet(), L"");
    EXPECT_EQ(part->idInfo()->countFields(), 1u);
    fieldsAreDone.set_value();
    writer.join();
    EXPECT_TRUE(inTime) << "the fields waited for the registration";
}

// ---- fields

// behaviour: TH-05
TEST_F(threadsOfAModel, fieldsOfTheSameNamesAreMadeOnce) {
    auto const part = mModel->createClassInfo(L"part");
    auto const names = numberedNames(L"Field", 100);
    std::array<std::vector<refPtr<fieldInfo>>, 4> got;
    std::vector<std::function<void()>> jobs;
    for (auto& mine : got) {
        jobs.emplace_back([&] {
            for (auto const& name : names)
                mine.push_back(addField(part, name));
        });
    }
    runTogether(jobs);
    EXPECT_EQ(part->countFields(), names.size());
    for (auto const& other : got)
        EXPECT_EQ(other, got[0]);
}

// behaviour: TH-05
TEST_F(threadsOfAModel, fieldsOfDifferentNamesAreAllThereInTheirOrder) {
    auto const part = mModel->createClassInfo(L"part");
    std::array<std::vector<string>, 4> const names{numberedNames(L"a", 100), numberedNames(L"b", 100),
                                                   numberedNames(L"c", 100), numberedNames(L"d", 100)};
    std::vector<std::function<void()>> jobs;
    for (auto const& mine : names) {
        jobs.emplace_back([&] {
            for (auto const& name : mine)
                addField(part, name);
        });
    }
    runTogether(jobs);
    ASSERT_EQ(part->countFields(), 400u);
    auto const fields = fieldsOf(part);
    for (auto const& mine : names) {
        std::vector<string> inOrder;
        for (auto const& field : fields) {
            if (field->scName().string()[0] == mine[0][0]) inOrder.push_back(field->scName().string());
        }
        EXPECT_EQ(inOrder, mine);
    }
}

// behaviour: TH-05
TEST_F(threadsOfAModel, inheritingFieldsOfTheSameNamesAreMadeOnce) {
    auto const base = mModel->createClassInfo(L"item");
    auto const part = mModel->createClassInfo(L"part");
    part->addBaseClass(base);
    auto const names = numberedNames(L"field", 50);
    for (auto const& name : names)
        addField(base, name);
    auto const writer = [&] {
        for (auto const& name : names)
            mViolations.check(part->createFieldInfo(base, name)->baseField()->classInfo() == base);
    };
    runTogether({writer, writer, writer});
    EXPECT_EQ(part->countFields(), names.size());
}

// behaviour: TH-06
TEST_F(threadsOfAModel, lookupsOfFieldsBesideCreationLoseNone) {
    auto const part = mModel->createClassInfo(L"part");
    auto const names = numberedNames(L"Field", 200);
    std::atomic<std::size_t> made{0};
    auto const reader = [&] {
        while (true) {
            std::size_t const there = made;
            for (std::size_t i = 0; i < there; i += 7)
                mViolations.check(static_cast<bool>(part->fieldInfo(names[i], true, true)));
            auto const fields = fieldsOf(part);
            mViolations.check(fields.size() >= there && part->countFields() >= fields.size());
            for (std::size_t i = 0; i < fields.size(); i += 7)
                mViolations.check(fields[i]->scName().string() == names[i].lower() && fields[i]->classInfo() == part);
            if (there == names.size()) break;
        }
    };
    auto const writer = [&] {
        for (auto const& name : names) {
            addField(part, name);
            ++made;
        }
    };
    runTogether({writer, reader, reader});
}

// behaviour: TH-07
TEST_F(threadsOfAModel, copiedFieldsAppearAllAtOnce) {
    auto const part = mModel->createClassInfo(L"part", withThreeFields);
    auto const copies = mModel->createClassInfo(L"copies");
    std::atomic<bool> finished{false};
    auto const reader = [&] {
        for (bool last = false; !last;) {
            last = finished;
            mViolations.check(copies->countFields() % 3 == 0);
            mViolations.check(fieldsOf(copies).size() % 3 == 0);
        }
    };
    auto const writer = [&] {
        for (int i = 0; i < 50; ++i)
            copies->copyInfosFrom(part, numbered(L"copy", i).c_str());
        finished = true;
    };
    runTogether({writer, reader, reader});
    EXPECT_EQ(copies->countFields(), 150u);
}

// behaviour: TH-07
TEST_F(threadsOfAModel, twoClassesMayCopyFromEachOtherAtOnce) {
    auto const one = mModel->createClassInfo(L"one", withThreeFields);
    auto const other = mModel->createClassInfo(L"other", withThreeFields);
    for (int i = 0; i < 20; ++i) {
        auto const prefix = numbered(L"copy", i);
        runTogether({[&] {
                         for (auto const* name : {L"width", L"height", L"depth"})
                             one->copyFieldInfoFrom(other->fieldInfo(name, false, false), prefix.c_str());
                     },
                     [&] {
                         for (auto const* name : {L"width", L"height", L"depth"})
                             other->copyFieldInfoFrom(one->fieldInfo(name, false, false), prefix.c_str());
                     }});
    }
    EXPECT_EQ(one->countFields(), 63u);
    EXPECT_EQ(other->countFields(), 63u);
}

// ---- bases

// behaviour: TH-08
TEST_F(threadsOfAModel, basesThatSeveralThreadsAddAreAllThereAndStay) {
    auto const part = mModel->createClassInfo(L"part");
    std::vector<refPtr<classInfo>> bases;
    for (int i = 0; i < 100; ++i)
        bases.push_back(mModel->createClassInfo(numbered(L"base", i), withThreeFields));
    std::atomic<int> finished{0};
    auto const writer = [&](std::size_t first) {
        return [&, first] {
            for (std::size_t i = first; i < bases.size(); i += 2) {
                part->addBaseClass(bases[i]);
                mViolations.check(part->isDerivedFrom(bases[i]));
            }
            ++finished;
        };
    };
    auto const reader = [&] {
        std::size_t before = 0;
        for (bool last = false; !last;) {
            last = finished == 2;
            std::size_t seen = 0;
            part->forEachBaseClass(
                [&](classInfo::entry const& entry) {
                    ++seen;
                    mViolations.check(part->isDerivedFrom(entry.second));
                    return true;
                },
                true);
            mViolations.check(seen >= before);
            mViolations.check(seen == 0 || part->fieldInfo(L"width", true, false));
            before = seen;
        }
        mViolations.check(before == bases.size());
    };
    runTogether({writer(0), writer(1), reader});
}

// ---- identity

// behaviour: TH-09
TEST_F(threadsOfAModel, idInfoNeverMissesAFieldThatWasIdentifyingBefore) {
    constexpr int count = 100;
    for (int round = 0; round < 5; ++round) {
        auto const part = mModel->createClassInfo(numbered(L"part", round));
        std::vector<refPtr<fieldInfo>> fields;
        for (int i = 0; i < count; ++i)
            fields.push_back(addField(part, numbered(L"field", i)));
        fields[0]->setSemantic(eSemPrimkey, genericSet(), L"");
        std::atomic<std::size_t> identifying{1};
        auto const reader = [&] {
            while (true) {
                std::size_t const atLeast = identifying;
                auto const id = part->idInfo();
                mViolations.check(id->countFields() >= atLeast && id->classInfo() == part);
                std::size_t at = 0;
                id->forEachFieldInfo(
                    [&](refPtr<fieldInfo> field) {
                        mViolations.check(field == fields[at]);
                        ++at;
                        return true;
                    },
                    true);
                if (atLeast == fields.size()) break;
            }
        };
        auto const writer = [&] {
            for (std::size_t i = 1; i < fields.size(); ++i) {
                fields[i]->setSemantic(eSemPrimkey, genericSet(), L"");
                ++identifying;
            }
        };
        runTogether({writer, reader, reader});
        EXPECT_EQ(part->idInfo()->countFields(), fields.size());
    }
}

// behaviour: TH-09
TEST_F(threadsOfAModel, idInfoMissesNoFieldThatTwoThreadsMakeIdentifying) {
    auto const part = mModel->createClassInfo(L"part");
    std::vector<refPtr<fieldInfo>> fields;
    for (int i = 0; i < 200; ++i)
        fields.push_back(addField(part, numbered(L"field", i)));
    auto const writer = [&](std::size_t first) {
        return [&, first] {
            for (std::size_t i = first; i < fields.size(); i += 2) {
                fields[i]->setSemantic(eSemPrimkey, genericSet(), L"");
                bool found = false;
                part->idInfo()->forEachFieldInfo(
                    [&](refPtr<fieldInfo> field) {
                        found = found || field == fields[i];
                        return true;
                    },
                    false);
                mViolations.check(found);
            }
        };
    };
    runTogether({writer(0), writer(1)});
    EXPECT_EQ(part->idInfo()->countFields(), fields.size());
}

// behaviour: TH-09
TEST_F(threadsOfAModel, allThreadsGetTheSameIdSet) {
    for (int round = 0; round < 50; ++round) {
        auto const part = mModel->createClassInfo(numbered(L"part", round));
        addField(part, L"key")->setSemantic(eSemPrimkey, genericSet(), L"");
        std::array<refPtr<idInfo>, 3> got;
        std::vector<std::function<void()>> jobs;
        for (auto& mine : got)
            jobs.emplace_back([&] { mine = part->idInfo(); });
        runTogether(jobs);
        auto const last = part->idInfo();
        for (auto const& each : got)
            EXPECT_TRUE(each->isEqualTo(last.get()));
        EXPECT_EQ(part->idInfo(), last);
    }
}

// behaviour: TH-10
TEST_F(threadsOfAModel, aSemanticMayBeSetBesideReadersOfTheField) {
    auto const part = mModel->createClassInfo(L"part");
    auto const made = part->createFieldInfo(L"made", zov::metamodel::eTimestamp, genericSet(), L"");
    genericSet note;
    note.setValue(L"note", string(L"a note that is longer than a short text"), false);
    std::atomic<bool> finished{false};
    auto const reader = [&] {
        for (bool last = false; !last;) {
            last = finished;
            auto const semantic = made->semantic();
            mViolations.check(semantic == eSemNone || semantic == eSemPrimkey);
            mViolations.check(made->type() == zov::metamodel::eTimestamp);
            made->isMandatory();
            made->isUnique();
            string text;
            if (made->semanticAttribs().getValue(L"note", text)) {
                mViolations.check(text.size() == 39);
            }
            std::vector<refPtr<fieldInfo>> ids;
            part->getIdFieldInfos(ids);
            mViolations.check(ids.size() <= 1);
        }
    };
    auto const writer = [&] {
        for (int i = 0; i < 500; ++i) {
            made->setSemantic(eSemPrimkey, note, L"");
            made->setSemantic(eSemNone, genericSet(), L"");
            made->setMandatory(i % 2 == 0);
            made->setUnique(i % 3 == 0);
        }
        finished = true;
    };
    runTogether({writer, reader, reader});
}

// behaviour: TH-10
TEST_F(threadsOfAModel, flagsThatTwoThreadsSetDoNotDisturbEachOther) {
    auto const width = addField(mModel->createClassInfo(L"part"), L"width");
    runTogether({[&] {
                     for (int i = 0; i < 2000; ++i) {
                         width->setMandatory(i % 2 == 0);
                         mViolations.check(width->isMandatory() == (i % 2 == 0));
                     }
                 },
                 [&] {
                     for (int i = 0; i < 2000; ++i) {
                         width->setUnique(i % 2 == 0);
                         mViolations.check(width->isUnique() == (i % 2 == 0));
                     }
                 }});
}

// ---- properties

// behaviour: TH-11
TEST_F(threadsOfAModel, lookupsFollowTheCaseRuleThatIsReplacedBesideThem) {
    auto const part = mModel->createClassInfo(L"part", withThreeFields);
    std::atomic<bool> finished{false};
    auto const reader = [&] {
        for (bool last = false; !last;) {
            last = finished;
            mViolations.check(mModel->classInfo(L"part", false) == part);
            auto const byCapitals = mModel->classInfo(L"PART", false);
            mViolations.check(!byCapitals || byCapitals == part);
        }
    };
    auto const writer = [&] {
        for (int i = 0; i < 500; ++i) {
            mModel->setAddProp(L"caseSensitiveNames", L"true");
            mViolations.check(!mModel->classInfo(L"PART", false));
            mModel->setAddProp(L"caseSensitiveNames", L"false");
            mViolations.check(mModel->classInfo(L"PART", false) == part);
        }
        finished = true;
    };
    runTogether({writer, reader, reader});
}

// behaviour: TH-11
TEST_F(threadsOfAModel, theCaseRuleIsTheStoredTextWhicheverThreadStoredItLast) {
    mModel->createClassInfo(L"part", withThreeFields);
    auto const compare = [this]() noexcept {
        string stored;
        mViolations.check(mModel->addProp(L"caseSensitiveNames", stored));
        mViolations.check(static_cast<bool>(mModel->classInfo(L"PART", false)) == (stored == L"false"));
    };
    // The threads store at the same time, and nobody does while the barrier compares.
    std::barrier rounds(2, compare);
    auto const writer = [&](string const& text) {
        return [&rounds, text, this] {
            for (int round = 0; round < 5000; ++round) {
                mModel->setAddProp(L"caseSensitiveNames", text);
                rounds.arrive_and_wait();
            }
        };
    };
    runTogether({writer(L"true"), writer(L"false")});
}

// behaviour: TH-11
TEST_F(threadsOfAModel, propertiesMayBeSetReadAndWalkedAtOnce) {
    auto const keys = numberedNames(L"key", 10);
    std::atomic<int> finished{0};
    auto const writer = [&] {
        for (int i = 0; i < 50; ++i) {
            for (auto const& key : keys)
                mModel->setAddProp(key, key);
        }
        ++finished;
    };
    auto const reader = [&] {
        for (bool last = false; !last;) {
            last = finished == 2;
            string text;
            for (auto const& key : keys)
                mViolations.check(!mModel->addProp(key, text) || text == key);
            mModel->forEachAddProp(
                [&](scString const& key, zov::genericValue const& value) {
                    string held;
                    mViolations.check(value.getValue(held));
                    mViolations.check(held == key.string() || key.string() == L"caseSensitiveNames");
                    return true;
                },
                true);
        }
    };
    runTogether({writer, writer, reader});
}

// ---- letting go

// behaviour: TH-12
TEST_F(threadsOfAModel, tearDownBesideReadersLeavesThemWithTheirOwn) {
    for (int round = 0; round < 20; ++round) {
        fill(20);
        auto const reader = [&] {
            for (int i = 0; i < 40; ++i) {
                auto const found = mModel->classInfo(numbered(L"class", i % 20), false);
                if (!found) continue;
                mViolations.check(found->scName().string() == numbered(L"class", i % 20));
                auto const fields = fieldsOf(found);
                mViolations.check(fields.size() == 3 || fields.empty());
                for (auto const& field : fields) {
                    auto const owner = field->classInfo();
                    mViolations.check(!owner || owner == found);
                    mViolations.check(field->type() == eInt && field->scName() != scString());
                }
                auto const width = found->fieldInfo(L"width", true, true);
                mViolations.check(!width || width->qualifiedName().ends_with(L"width"));
            }
        };
        runTogether({[&] { mModel->tearDown(); }, reader, reader});
        EXPECT_EQ(mModel->countClasses(), 0u);
    }
}

// behaviour: TH-12
TEST_F(threadsOfAModel, tearDownBesideWalksLetsThemGoOn) {
    for (int round = 0; round < 20; ++round) {
        fill(20);
        auto const walker = [&] {
            std::size_t seen = 0;
            mModel->forEachClassInfo(
                [&](classInfo::entry const& entry) {
                    ++seen;
                    mViolations.check(entry.second->scName() == entry.first);
                    entry.second->forEachFieldInfo([](refPtr<fieldInfo> field) { return field->type() == eInt; }, true);
                    return true;
                },
                true);
            mViolations.check(seen == 20 || seen == 0);
        };
        runTogether({[&] { mModel->tearDown(); }, walker, walker});
    }
}

// The walk is in its first visit while another thread tears everything down.
// behaviour: TH-12
TEST_F(threadsOfAModel, aWalkThatHasBegunVisitsAllThatWasThere) {
    fill(20);
    std::size_t seen = 0;
    mModel->forEachClassInfo(
        [&](classInfo::entry const& entry) {
            if (seen++ == 0) std::thread([this] { mModel->tearDown(); }).join();
            mViolations.check(entry.second->countFields() == 0);
            return true;
        },
        true);
    EXPECT_EQ(seen, 20u);
    EXPECT_EQ(mModel->countClasses(), 0u);
}

// behaviour: TH-13
TEST_F(threadsOfAModel, twoThreadsMayTearDownAtOnce) {
    for (int round = 0; round < 20; ++round) {
        fill(20);
        auto const held = mModel->fieldInfo(L"class7.width", false);
        auto const tearDown = [&] { mModel->tearDown(); };
        runTogether({tearDown, tearDown});
        EXPECT_EQ(mModel->countClasses(), 0u);
        EXPECT_FALSE(held->classInfo());
        EXPECT_EQ(held->refCount(), 1u);
    }
}

// behaviour: TH-13
TEST_F(threadsOfAModel, tearDownBesideRegistrationLeavesWholeClassesOnly) {
    for (int round = 0; round < 20; ++round) {
        runTogether({[&] {
                         for (int i = 0; i < 20; ++i)
                             mModel->getOrCreateClassInfo(numbered(L"class", i), withThreeFields);
                     },
                     [&] { mModel->tearDown(); }});
        mModel->forEachClassInfo(
            [&](classInfo::entry const& entry) {
                mViolations.check(entry.second->countFields() == 3);
                return true;
            },
            true);
        mModel->tearDown();
    }
}

// behaviour: TH-13
TEST_F(threadsOfAModel, aClassOfNoModelIsTornDownByTwoThreadsBesideReaders) {
    for (int round = 0; round < 50; ++round) {
        auto const part = classInfo::createClassInfo(L"part");
        auto const base = classInfo::createClassInfo(L"item");
        part->addBaseClass(base);
        withThreeFields(part);
        auto const tearDown = [&] { part->tearDown(); };
        auto const reader = [&] {
            for (int i = 0; i < 20; ++i) {
                auto const width = part->fieldInfo(L"WIDTH", true, true);
                mViolations.check(!width || width->scName().string() == L"width");
                part->isDerivedFrom(base);
            }
        };
        runTogether({tearDown, tearDown, reader});
        EXPECT_EQ(part->countFields(), 0u);
        EXPECT_EQ(part->refCount(), 1u);
        EXPECT_EQ(base->refCount(), 1u);
    }
}

// behaviour: TH-14
TEST_F(threadsOfAModel, theClassOfAFieldIsThereOrGoneBesideTearDown) {
    for (int round = 0; round < 100; ++round) {
        auto part = classInfo::createClassInfo(L"part");
        auto const width = addField(part, L"width");
        auto const* const object = part.get();
        std::atomic<bool> finished{false};
        auto const reader = [&] {
            bool gone = false;
            for (bool last = false; !last;) {
                last = finished;
                auto const owner = width->classInfo();
                mViolations.check(!owner || (owner.get() == object && !gone));
                mViolations.check(!owner || owner->scName().string() == L"part");
                gone = !owner;
            }
            mViolations.check(gone);
        };
        auto const writer = [&] {
            part->tearDown();
            part = nullptr;
            finished = true;
        };
        runTogether({writer, reader, reader});
    }
}

// behaviour: TH-15
TEST_F(threadsOfAModel, theLastReferencesMayBeDroppedByAnyThread) {
    for (int round = 0; round < 50; ++round) {
        auto part = classInfo::createClassInfo(L"part");
        withThreeFields(part);
        auto fields = fieldsOf(part);
        auto copies = fields;
        part->tearDown();
        auto const drop = [](std::vector<refPtr<fieldInfo>>& mine) { return [&mine] { mine.clear(); }; };
        runTogether({drop(fields), drop(copies), [&part] { part = nullptr; }});
        EXPECT_FALSE(part);
        EXPECT_TRUE(fields.empty() && copies.empty());
    }
}

} // namespace
