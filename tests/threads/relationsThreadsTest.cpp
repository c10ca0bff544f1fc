// What threads may expect of relations and user properties that others change: readers that check an invariant beside
// writers, from one start line, a fixed number of times. Worth most under the thread sanitizer.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "numbered.h"
#include "threadedRuns.h"
#include "zovAssert.h"
#include "zovMetamodel.h"

namespace {

using zov::const_refPtr;
using zov::genericSet;
using zov::genericValue;
using zov::refObj;
using zov::refPtr;
using zov::scString;
using zov::string;
using zov::metamodel::classInfo;
using zov::metamodel::eAgg;
using zov::metamodel::ePtr;
using zov::metamodel::eRef;
using zov::metamodel::eSemNone;
using zov::metamodel::eSemRelation;
using zov::metamodel::fieldInfo;
using zov::metamodel::modelInfo;
using zov::metamodel::relationInfo;
using zov::tests::addField;
using zov::tests::numbered;
using zov::tests::runTogether;
using zov::tests::violations;

using relations = std::vector<refPtr<relationInfo>>;

relations leaving(refPtr<classInfo> const& of) {
    relations found;
    of->forEachToRelation(
        [&](refPtr<relationInfo> relation) {
            found.push_back(std::move(relation));
            return true;
        },
        false);
    return found;
}

relations arriving(refPtr<classInfo> const& at) {
    relations found;
    at->forEachFromRelation(
        [&](refPtr<relationInfo> relation) {
            found.push_back(std::move(relation));
            return true;
        },
        false);
    return found;
}

relations sorted(relations list) {
    std::sort(list.begin(), list.end(), [](auto const& left, auto const& right) { return left.get() < right.get(); });
    return list;
}

// Two classes with a hundred fields each, in a model that is let go at the end of the test.
class threadsOfRelations : public testing::Test {
protected:
    static constexpr int count = 100;

    threadsOfRelations() {
        for (int i = 0; i < count; ++i) {
            mFromFields.push_back(addField(mOrder, numbered(L"field", i)));
            mToFields.push_back(addField(mCustomer, numbered(L"field", i)));
        }
    }
    ~threadsOfRelations() override { mModel->tearDown(); }

    refPtr<modelInfo> mModel = modelInfo::createModelInfo(false);
    refPtr<classInfo> mOrder = mModel->createClassInfo(L"order");
    refPtr<classInfo> mCustomer = mModel->createClassInfo(L"customer");
    std::vector<refPtr<fieldInfo>> mFromFields;
    std::vector<refPtr<fieldInfo>> mToFields;
    violations mViolations;
};

// ---- creating

// Each pair of threads works in both directions, so that the two classes are entered in either order.
// behaviour: CR-17
TEST_F(threadsOfRelations, areCreatedInBothDirectionsAtOnceAndAreAllThere) {
    auto const creator = [](refPtr<classInfo> const& from, refPtr<classInfo> const& to, int which) {
        return [&from, &to, which] {
            for (int i = which; i < count; i += 2)
                from->createRelation(numbered(L"field", i), false, to, eRef, L"", L"");
        };
    };
    runTogether({creator(mOrder, mCustomer, 0), creator(mOrder, mCustomer, 1), creator(mCustomer, mOrder, 0),
                 creator(mCustomer, mOrder, 1)});
    EXPECT_EQ(leaving(mOrder).size(), 100u);
    EXPECT_EQ(leaving(mCustomer).size(), 100u);
    EXPECT_EQ(sorted(leaving(mOrder)), sorted(arriving(mCustomer)));
    EXPECT_EQ(sorted(leaving(mCustomer)), sorted(arriving(mOrder)));
    for (auto const* fields : {&mFromFields, &mToFields}) {
        for (auto const& field : *fields) {
            EXPECT_EQ(field->semantic(), eSemRelation);
            EXPECT_EQ(field->refCount(), 3u);
        }
    }
}

// behaviour: CR-17
TEST_F(threadsOfRelations, areCreatedBetweenThreeClassesAndThemselvesAtOnce) {
    auto const third = mModel->createClassInfo(L"third");
    addField(third, L"field0");
    std::array<refPtr<classInfo>, 3> const all{mOrder, mCustomer, third};
    std::vector<std::function<void()>> jobs;
    for (std::size_t at = 0; at < all.size(); ++at) {
        jobs.emplace_back([&all, at] {
            for (std::size_t i = 0; i < 90; ++i)
                all[at]->createRelation(L"field0", false, all[(at + i) % 3], eRef, L"", L"");
        });
    }
    runTogether(jobs);
    for (auto const& one : all) {
        EXPECT_EQ(leaving(one).size(), 90u);
        EXPECT_EQ(arriving(one).size(), 90u);
    }
}

// behaviour: CR-17
TEST_F(threadsOfRelations, stayInTheOrderInWhichEachThreadCreatedThem) {
    std::array<relations, 3> made;
    std::vector<std::function<void()>> jobs;
    for (auto& mine : made) {
        jobs.emplace_back([&] {
            for (int i = 0; i < count; ++i)
                mine.push_back(mOrder->createRelation(numbered(L"field", i), false, mCustomer, eRef, L"", L""));
        });
    }
    runTogether(jobs);
    for (auto const& list : {leaving(mOrder), arriving(mCustomer)}) {
        ASSERT_EQ(list.size(), 300u);
        for (auto const& mine : made) {
            relations inOrder;
            std::copy_if(list.begin(), list.end(), std::back_inserter(inOrder), [&](auto const& relation) {
                return std::find(mine.begin(), mine.end(), relation) != mine.end();
            });
            EXPECT_EQ(inOrder, mine);
        }
    }
}

// Two threads that create the same relation to a field at once may both create it, but nothing is lost.
// behaviour: CR-17
TEST_F(threadsOfRelations, toTheSameFieldsAreAtMostOneForEachThread) {
    auto const creator = [this] {
        for (int i = 0; i < count; ++i) {
            auto const& to = mToFields[static_cast<std::size_t>(i)];
            auto const made = mOrder->createRelation(numbered(L"field", i), false, to, eRef, L"", L"");
            mViolations.check(made && made->toFieldInfo(mFromFields[static_cast<std::size_t>(i)]) == to);
        }
    };
    runTogether({creator, creator});
    auto const made = leaving(mOrder);
    EXPECT_EQ(sorted(made), sorted(arriving(mCustomer)));
    EXPECT_GE(made.size(), 100u);
    EXPECT_LE(made.size(), 200u);
    creator();
    EXPECT_EQ(leaving(mOrder).size(), made.size());
}

// The semantic is the last one's who set it; the relations are there whoever that was.
// behaviour: CR-17, TH-10
TEST_F(threadsOfRelations, fromOneFieldAreAllThereBesideItsOtherSemantics) {
    constexpr int times = 1000;
    std::atomic<int> finished{0};
    auto const creator = [&](wchar_t const* stem) {
        return [&, stem] {
            for (int i = 0; i < times; ++i) {
                auto const made = mOrder->createRelation(L"field0", false, mCustomer, eRef, numbered(stem, i), L"");
                mViolations.check(made && made->firstFromFieldInfo() == mFromFields[0]);
            }
            ++finished;
        };
    };
    auto const other = [&] {
        for (bool last = false; !last;) {
            last = finished == 2;
            mFromFields[0]->setSemantic(eSemNone, genericSet(), L"");
            std::this_thread::yield();
        }
    };
    runTogether({creator(L"mine"), creator(L"yours"), other});
    auto const made = leaving(mOrder);
    EXPECT_EQ(made.size(), 2u * times);
    EXPECT_EQ(sorted(made), sorted(arriving(mCustomer)));
    for (int i = 0; i < times; ++i) {
        EXPECT_TRUE(mOrder->toRelation(numbered(L"mine", i), false)) << i;
        EXPECT_TRUE(mOrder->toRelation(numbered(L"yours", i), false)) << i;
    }
    EXPECT_EQ(mFromFields[0]->semantic(), eSemNone);
}

// ---- reading beside that

// behaviour: CR-17
TEST_F(threadsOfRelations, areCompleteForWalksAndLookupsBesideTheirCreation) {
    std::atomic<std::size_t> created{0};
    auto const reader = [&] {
        while (true) {
            std::size_t const there = created;
            auto const out = leaving(mOrder);
            auto const in = arriving(mCustomer);
            mViolations.check(out.size() >= there && in.size() >= there);
            auto const both = std::min(out.size(), in.size());
            mViolations.check(std::equal(out.begin(), out.begin() + static_cast<std::ptrdiff_t>(both), in.begin()));
            for (auto const& relation : in) {
                mViolations.check(relation->fromClassInfo() == mOrder && relation->toClassInfo() == mCustomer);
                auto const from = relation->firstFromFieldInfo();
                auto const to = relation->toFieldInfo(from);
                mViolations.check(from && to && to->type() == ePtr && from->scName() == relation->scName());
                mViolations.check(relation->fromFieldInfo(to) == from);
                mViolations.check(from->semantic() == eSemRelation);
            }
            for (std::size_t i = 0; i < there; i += 9)
                mViolations.check(static_cast<bool>(mOrder->toRelation(mFromFields[i]->scName().string(), true)));
            if (there == count) break;
        }
    };
    auto const writer = [&] {
        for (int i = 0; i < count; ++i) {
            mOrder->createRelation(numbered(L"field", i), false, mCustomer, eRef, L"", L"");
            ++created;
        }
    };
    runTogether({writer, reader, reader});
}

// behaviour: RI-20
TEST_F(threadsOfRelations, takePairsFromSeveralThreadsBesideReaders) {
    auto const relation = mOrder->createRelation(L"field0", false, mToFields[0], eAgg, L"", L"");
    std::atomic<int> finished{0};
    auto const writer = [&](std::size_t which) {
        return [&, which] {
            for (std::size_t i = which; i < mFromFields.size(); i += 2) {
                mViolations.check(relation->addFieldRelation(mFromFields[i], mToFields[i]));
                mViolations.check(relation->toFieldInfo(mFromFields[i]) == mToFields[i]);
            }
            ++finished;
        };
    };
    auto const reader = [&] {
        std::size_t before = 0;
        for (bool last = false; !last;) {
            last = finished == 2;
            std::size_t seen = 0;
            relation->forEachFieldPair(
                [&](refPtr<fieldInfo> const& from, refPtr<fieldInfo> const& to) {
                    mViolations.check(from->classInfo() == mOrder && to->classInfo() == mCustomer);
                    mViolations.check(from->scName() == to->scName());
                    return ++seen > 0;
                },
                true);
            mViolations.check(seen >= before && relation->firstFromFieldInfo() == mFromFields[0]);
            before = seen;
        }
        mViolations.check(before == count + 1);
    };
    runTogether({writer(0), writer(1), reader});
    for (std::size_t i = 1; i < mFromFields.size(); ++i)
        EXPECT_EQ(relation->fromFieldInfo(mToFields[i]), mFromFields[i]);
}

// behaviour: CR-17
TEST_F(threadsOfRelations, areFoundThroughBasesThatAreAddedBesideTheSearch) {
    auto const special = mModel->createClassInfo(L"special");
    auto const relation = mOrder->createRelation(L"field0", false, mCustomer, eRef, L"wanted", L"");
    std::atomic<bool> added{false};
    auto const reader = [&] {
        for (int i = 0; i < 500; ++i) {
            bool const there = added;
            auto const found = special->toRelation(L"wanted", true);
            mViolations.check(found ? found == relation : !there);
        }
    };
    auto const writer = [&] {
        for (int i = 0; i < 20; ++i)
            special->addBaseClass(mModel->createClassInfo(numbered(L"base", i)));
        special->addBaseClass(mOrder);
        added = true;
    };
    runTogether({writer, reader, reader});
    EXPECT_EQ(special->toRelation(L"wanted", true), relation);
}

// ---- properties

// The value of each name is the name, so that nobody may read anything else.
template <class Owner>
void propertiesAtOnce(Owner const& owner, violations& found) {
    std::vector<string> names;
    for (int i = 0; i < 10; ++i)
        names.push_back(numbered(L"a name that is longer than a short text ", i));
    std::atomic<int> finished{0};
    auto const writer = [&] {
        for (int i = 0; i < 40; ++i) {
            for (auto const& name : names) {
                owner->setUserProperty(name, name, i % 2 == 0);
                owner->setUserProperty(name, genericValue(name), i % 2 != 0);
            }
        }
        ++finished;
    };
    auto const reader = [&] {
        for (bool last = false; !last;) {
            last = finished == 2;
            for (auto const& name : names) {
                string text;
                found.check(!owner->getUserProperty(name, text, true) || text == name);
                genericValue value;
                found.check(!owner->getUserProperty(name, value, true) || (value.getValue(text) && text == name));
                refPtr<refObj> object;
                found.check(!owner->getUserProperty(name, object, true));
            }
            for (bool const inheritable : {false, true}) {
                owner->forEachUserProperty(
                    inheritable,
                    [&](scString const& name, genericValue const& value) {
                        string text;
                        found.check(value.getValue(text) && text == name.string());
                        return true;
                    },
                    true);
            }
        }
    };
    runTogether({writer, writer, reader});
}

// behaviour: UP-18
TEST_F(threadsOfRelations, leavePropertiesOfAClassToBeSetReadAndWalkedAtOnce) {
    propertiesAtOnce(mOrder, mViolations);
}

// behaviour: UP-18
TEST_F(threadsOfRelations, leavePropertiesOfAFieldToBeSetReadAndWalkedAtOnce) {
    propertiesAtOnce(mFromFields[0], mViolations);
}

// Each object carries what its readers look for, and is freed with its last reader.
class marked : public refObj {
public:
    explicit marked(std::atomic<int>& alive) : mAlive(alive) { ++mAlive; }
    bool isWhole() const { return mMark == 42; }

private:
    ~marked() override {
        mMark = 0;
        --mAlive;
    }
    void destroy() override { delete this; }

    std::atomic<int>& mAlive;
    std::atomic<int> mMark{42};
};

// behaviour: UP-18
TEST_F(threadsOfRelations, keepAnObjectThatIsReplacedForThoseWhoReadIt) {
    std::atomic<int> alive{0};
    auto const special = mModel->createClassInfo(L"special");
    special->addBaseClass(mOrder);
    std::atomic<bool> finished{false};
    auto const reader = [&] {
        for (bool last = false; !last;) {
            last = finished;
            refPtr<refObj> object;
            if (special->getUserProperty(L"object", object, true)) {
                auto const read = zov::refPtrCast<marked>(object);
                mViolations.check(read && read->isWhole());
            }
            const_refPtr<refObj> readOnly;
            mViolations.check(!special->getUserProperty(L"object", readOnly, true) || readOnly);
        }
    };
    auto const writer = [&] {
        for (int i = 0; i < 500; ++i) {
            refPtr<refObj> const next = refPtr<marked>(new marked(alive));
            mOrder->setUserProperty(L"object", next, true);
        }
        finished = true;
    };
    runTogether({writer, reader, reader});
    EXPECT_EQ(alive, 1);
    mOrder->setUserProperty(L"object", L"none", true);
    EXPECT_EQ(alive, 0);
}

// behaviour: UP-18
TEST_F(threadsOfRelations, leaveFieldsToBeCopiedWhileTheirPropertiesAreSet) {
    std::atomic<bool> finished{false};
    auto const& field = mFromFields[0];
    auto const copier = [&] {
        for (int i = 0; !finished || i == 0; ++i) {
            auto const copy = mCustomer->copyFieldInfoFrom(field, numbered(L"copy", i).c_str());
            string text = L"even";
            copy->getUserProperty(L"parity", text, false);
            mViolations.check(text == L"even" || text == L"odd");
        }
    };
    auto const writer = [&] {
        for (int i = 0; i < 300; ++i)
            field->setUserProperty(L"parity", i % 2 ? L"odd" : L"even", false);
        finished = true;
    };
    runTogether({writer, copier});
}

// ---- letting go

// Classes of one round: they refer to each other, and readers and writers go on with them while they are let go.
class world {
public:
    explicit world(refPtr<modelInfo> const& model)
        : order(model->createClassInfo(L"from")), customer(model->createClassInfo(L"to")) {
        for (int i = 0; i < 20; ++i) {
            addField(order, numbered(L"field", i));
            toFields.push_back(addField(customer, numbered(L"field", i)));
            order->createRelation(numbered(L"field", i), false, customer, eRef, L"", L"");
            order->createRelation(numbered(L"field", i), false, toFields.back(), eRef, L"", L"");
            customer->createRelation(numbered(L"field", i), false, order, eRef, L"", L"");
        }
        order->setUserProperty(L"text", L"a text", true);
    }

    refPtr<classInfo> const order;
    refPtr<classInfo> const customer;
    std::vector<refPtr<fieldInfo>> toFields;
};

// behaviour: GT-14
TEST_F(threadsOfRelations, leaveReadersTheirOwnWhenTornDown) {
    for (int round = 0; round < 20; ++round) {
        world const made(mModel);
        auto const reader = [&] {
            for (int i = 0; i < 10; ++i) {
                auto const seen = leaving(made.order);
                mViolations.check(seen.empty() || seen.size() == 40);
                for (auto const& relation : seen) {
                    auto const from = relation->fromClassInfo();
                    auto const to = relation->toClassInfo();
                    mViolations.check((!from || from == made.order) && (!to || to == made.customer));
                    auto const field = relation->firstFromFieldInfo();
                    mViolations.check(field->semantic() == eSemRelation && relation->scName() == field->scName());
                    mViolations.check(static_cast<bool>(relation->toFieldInfo(field)));
                }
                mViolations.check(arriving(made.customer).size() % 40 == 0);
                auto const found = made.order->toRelation(L"field7", true);
                mViolations.check(!found || found->scName().string() == L"field7");
                string text;
                mViolations.check(made.order->getUserProperty(L"text", text, true) && text == L"a text");
            }
        };
        runTogether({[&] { mModel->tearDown(); }, reader, reader});
        EXPECT_TRUE(leaving(made.order).empty());
        EXPECT_EQ(made.order->refCount(), 1u);
        EXPECT_EQ(made.customer->refCount(), 1u);
    }
}

// Refusals are the bool false here, since fields vanish while relations are created from them.
// behaviour: GT-14
TEST_F(threadsOfRelations, areCreatedOrRefusedWhileTheirClassesAreTornDown) {
    zov::setAssertHandler([](string const&) {});
    for (int round = 0; round < 30; ++round) {
        world const made(mModel);
        auto const writer = [&] {
            for (int i = 0; i < 20; ++i) {
                try {
                    auto const relation = made.order->createRelation(numbered(L"field", i), false, made.customer, eRef,
                                                                     numbered(L"new", i), L"");
                    mViolations.check(static_cast<bool>(relation));
                    auto const& to = made.toFields[static_cast<std::size_t>(i)];
                    made.order->createRelation(numbered(L"field", i), false, to, eAgg, L"", L"");
                } catch (bool thrown) {
                    mViolations.check(!thrown);
                }
            }
        };
        auto const adder = [&] {
            for (auto const& relation : leaving(made.order)) {
                try {
                    auto const from = made.order->fieldInfo(L"field1", false, false);
                    mViolations.check(!from || relation->addFieldRelation(from, made.toFields[1]));
                } catch (bool thrown) {
                    mViolations.check(!thrown);
                }
            }
        };
        runTogether({[&] { mModel->tearDown(); }, [&] { made.customer->tearDown(); }, writer, adder});
        made.order->tearDown();
        made.customer->tearDown();
        EXPECT_EQ(made.order->refCount(), 1u);
        EXPECT_EQ(made.customer->refCount(), 1u);
    }
    zov::setAssertHandler({});
}

// behaviour: GT-14
TEST_F(threadsOfRelations, mayBeTornDownFromBothEndsAtOnce) {
    for (int round = 0; round < 30; ++round) {
        world const made(mModel);
        auto const held = leaving(made.order).front();
        runTogether({[&] { made.order->tearDown(); }, [&] { made.customer->tearDown(); }});
        EXPECT_EQ(made.order->refCount(), 2u);
        EXPECT_EQ(made.customer->refCount(), 2u);
        EXPECT_EQ(held->refCount(), 1u);
        EXPECT_FALSE(held->fromClassInfo());
        EXPECT_FALSE(held->toClassInfo());
        mModel->tearDown();
    }
}

// behaviour: GT-14
TEST_F(threadsOfRelations, endWithTheLastOfSeveralThreadsThatHoldThem) {
    for (int round = 0; round < 30; ++round) {
        std::array<relations, 3> held;
        refPtr<fieldInfo> field;
        {
            world const made(mModel);
            held.fill(leaving(made.order));
            field = made.order->fieldInfo(L"field0", false, false);
            mModel->tearDown();
        }
        EXPECT_EQ(field->refCount(), 3u);
        std::vector<std::function<void()>> jobs;
        for (auto& mine : held)
            jobs.emplace_back([&mine] { mine.clear(); });
        runTogether(jobs);
        EXPECT_EQ(field->refCount(), 1u);
    }
}

} // namespace
