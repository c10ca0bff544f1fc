// What threads may expect of fields, keys and aliases where one thread's change is half of another one's answer: what
// was set stays set, and whoever asks gets what was there before or what is there now. Worth most under the thread
// sanitizer.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "numbered.h"
#include "threadedRuns.h"
#include "zovAssert.h"
#include "zovCondition.h"
#include "zovMetamodel.h"

namespace {

using zov::genericSet;
using zov::genericValue;
using zov::refPtr;
using zov::string;
using zov::valueEqFunction;
using zov::conditions::condition;
using zov::metamodel::classInfo;
using zov::metamodel::eInt;
using zov::metamodel::eSemDate;
using zov::metamodel::eSemNone;
using zov::metamodel::eSemPrimkey;
using zov::metamodel::fieldInfo;
using zov::metamodel::idInfo;
using zov::metamodel::modelInfo;
using zov::tests::addField;
using zov::tests::numbered;
using zov::tests::runTogether;
using zov::tests::violations;

void makeKey(refPtr<fieldInfo> const& field) {
    field->setSemantic(eSemPrimkey, genericSet(), L"");
}

// An int field is refused it.
void refuseSemantic(refPtr<fieldInfo> const& field) {
    field->setSemantic(eSemDate, genericSet(), L"");
}

std::vector<refPtr<fieldInfo>> fieldsOf(refPtr<idInfo> const& id) {
    std::vector<refPtr<fieldInfo>> fields;
    id->forEachFieldInfo(
        [&](refPtr<fieldInfo> const& field) {
            fields.push_back(field);
            return true;
        },
        false);
    return fields;
}

bool isOneOf(string const& text, std::initializer_list<wchar_t const*> texts) {
    return std::any_of(texts.begin(), texts.end(), [&](wchar_t const* each) { return text == each; });
}

// Counts the failed assertions that it keeps quiet, apart by whether they are of the condition that is looked for.
class quietReports {
public:
    explicit quietReports(wchar_t const* expected) {
        zov::setAssertHandler([this, text = std::wstring(L"\n") + expected + L"\n"](string const& message) {
            ++(message.find(text) == string::npos ? mOthers : mExpected);
        });
    }
    ~quietReports() {
        zov::setAssertHandler({});
        EXPECT_EQ(mOthers, 0);
    }
    quietReports(quietReports const&) = delete;
    quietReports& operator=(quietReports const&) = delete;

    int count() const { return mExpected; }

private:
    std::atomic<int> mExpected{0};
    std::atomic<int> mOthers{0};
};

constexpr wchar_t const* dateIsRefused = L"mType==eTimestamp || mType==eDate";
constexpr wchar_t const* noKeyIsRefused = L"rfields.size()>=1";

// A class of a model that is let go at the end of the test.
class threadsOfAField : public testing::Test {
protected:
    ~threadsOfAField() override { mModel->tearDown(); }

    refPtr<modelInfo> mModel = modelInfo::createModelInfo(false);
    refPtr<classInfo> mPart = mModel->createClassInfo(L"part");
    refPtr<fieldInfo> mWidth = addField(mPart, L"width");
    violations mViolations;
};

// ---- aliases

// Each name is an alias of the class with capitals until a class of that name is there.
// behaviour: TH-01, MR-07, MR-08
TEST(threadsThatAskForAliases, findAClassWhileTheNameGoesFromAliasToClass) {
    constexpr int count = 50;
    violations found;
    for (int round = 0; round < 20; ++round) {
        auto const model = modelInfo::createModelInfo(true);
        std::atomic<int> published{-1};
        auto const writer = [&] {
            for (int i = 0; i < count; ++i) {
                model->createClassInfo(L"Part", [i](refPtr<classInfo> const& added) {
                    added->addAliasname(numbered(L"x_", i));
                    return true;
                });
                published = i;
                model->createClassInfo(numbered(L"x_", i));
                model->createClassInfo(L"Part");
            }
        };
        auto const reader = [&] {
            for (int last = -1; last < count - 1;) {
                last = published;
                if (last < 0) continue;
                auto const name = numbered(L"x_", last);
                auto const seen = model->classInfo(name, true);
                found.check(seen && (seen->scName().string() == name || seen->scName().string() == L"part"));
            }
        };
        runTogether({writer, reader, reader});
        EXPECT_EQ(model->countClasses(), count + 1u);
        model->tearDown();
    }
}

// ---- semantics that are refused

// behaviour: TH-10, FS-11
TEST_F(threadsOfAField, keepFlagsAndExpressionsBesideASemanticThatIsRefused) {
    constexpr int count = 2000;
    quietReports const reports(dateIsRefused);
    runTogether({[&] {
                     for (int i = 0; i < count; ++i) {
                         refuseSemantic(mWidth);
                         mViolations.check(mWidth->semantic() == eSemNone && mWidth->type() == eInt);
                     }
                 },
                 [&] {
                     for (int i = 0; i < count; ++i) {
                         bool const on = i % 2 == 0;
                         mWidth->setUnique(on);
                         mWidth->setMandatory(!on);
                         mWidth->setAutoExpression(on ? L"x" : L"");
                         mViolations.check(mWidth->isUnique() == on && mWidth->isMandatory() != on);
                         mViolations.check(mWidth->autoExpression() == (on ? L"x" : L""));
                     }
                     mWidth->setUnique(true);
                     mWidth->setMandatory(true);
                     mWidth->setAutoExpression(L"x");
                 }});
    EXPECT_EQ(reports.count(), count);
    EXPECT_TRUE(mWidth->isUnique());
    EXPECT_TRUE(mWidth->isMandatory());
    EXPECT_EQ(mWidth->autoExpression(), L"x");
}

// The set may be collected just while the width is no key.
// behaviour: TH-09, FS-37
TEST_F(threadsOfAField, findAKeyInTheIdSetAgainAfterASemanticWasRefused) {
    constexpr int count = 1000;
    auto const height = addField(mPart, L"height");
    makeKey(mWidth);
    makeKey(height);
    quietReports const reports(dateIsRefused);
    std::vector<refPtr<fieldInfo>> const both{mWidth, height};
    std::vector<refPtr<fieldInfo>> const one{height};
    std::atomic<bool> finished{false};
    auto const writer = [&] {
        for (int i = 0; i < count; ++i) {
            makeKey(height);
            refuseSemantic(mWidth);
            mViolations.check(fieldsOf(mPart->idInfo()) == both);
        }
        finished = true;
    };
    auto const reader = [&] {
        for (bool last = false; !last;) {
            last = finished;
            auto const seen = fieldsOf(mPart->idInfo());
            mViolations.check(seen == both || (!last && seen == one));
        }
    };
    runTogether({writer, reader, reader});
    EXPECT_EQ(reports.count(), count);
}

// ---- what a field says of itself

// A condition of a host's that counts its instances.
class counted : public condition {
public:
    explicit counted(std::atomic<int>& alive) : mAlive(alive) { ++mAlive; }
    counted(counted const& other) : condition(other), mAlive(other.mAlive) { ++mAlive; }
    counted& operator=(counted const&) = delete;
    ~counted() override { --mAlive; }

    condition* clone() const override { return new counted(*this); }

private:
    std::atomic<int>& mAlive;
};

bool always(genericValue const&, genericValue const&) {
    return true;
}
bool never(genericValue const&, genericValue const&) {
    return false;
}

// Each of the texts is one thread's to set, so that this thread finds it as it has set it; the readers find any.
class threadsOfOneField : public threadsOfAField {
protected:
    static constexpr int count = 10;
    static constexpr wchar_t const* textOf[] = {L"the one text, longer than a short text", L"another text"};

    void setAndFindDefaults(refPtr<fieldInfo> const& field) {
        for (int i = 0; i < count; ++i) {
            genericValue value;
            int number = 0;
            mViolations.check(field->setDefaultValue(genericValue(17 + i % 2)));
            mViolations.check(field->setDefaultExpression(textOf[i % 2]));
            mViolations.check(field->getDefaultValue(value, true) && value.getValue(number) && number == 17 + i % 2);
            mViolations.check(field->defaultExpression() == textOf[i % 2]);
        }
    }

    void setAndFindExpressions(refPtr<fieldInfo> const& field) {
        for (int i = 0; i < count; ++i) {
            auto const* const text = i % 3 == 0 ? L"" : textOf[i % 2];
            mViolations.check(field->setAutoExpression(text) && field->setConstantExpression(text));
            mViolations.check(field->autoExpression() == text && field->constantExpression().empty());
        }
    }

    void setAndFindCondition(refPtr<fieldInfo> const& field) {
        counted const given(mAlive);
        for (int i = 0; i < count; ++i) {
            auto const* const wanted = i % 3 == 1 ? nullptr : &given;
            mViolations.check(field->setValueCondition(wanted));
            mViolations.check((field->valueCondition() != nullptr) == (wanted != nullptr));
        }
    }

    void setAndFindFunctionAndType(refPtr<fieldInfo> const& field) {
        for (int i = 0; i < count; ++i) {
            valueEqFunction const areEqual = i % 2 ? always : never;
            mViolations.check(field->setValueEqFunc(areEqual));
            field->setCustomTypeString(textOf[i % 2]);
            mViolations.check(field->valueEqFunc(false) == areEqual);
            mViolations.check(field->customTypeString().string() == textOf[i % 2]);
        }
    }

    void read(refPtr<fieldInfo> const& field, valueEqFunction ofTheType) {
        genericValue value;
        int number = -1;
        mViolations.check(field->getDefaultValue(value, true) && value.getValue(number));
        mViolations.check(number == 0 || number == 17 || number == 18);
        for (auto const& text :
             {field->defaultExpression(), field->autoExpression(), field->customTypeString().string()})
            mViolations.check(isOneOf(text, {L"", textOf[0], textOf[1]}));
        mViolations.check(field->constantExpression().empty());
        auto const areEqual = field->valueEqFunc(true);
        mViolations.check(areEqual == ofTheType || areEqual == always || areEqual == never);
        if (field->valueCondition() != nullptr) ++mConditionsSeen;
    }

    std::atomic<int> mAlive{0};
    std::atomic<int> mConditionsSeen{0};
};

// The first of all sets race as well: each round has a field of its own.
// behaviour: TH-10, FT-11, FV-06, FE-01, FE-03, FE-05, FE-08, FE-10
TEST_F(threadsOfOneField, findInItWhatTheySetBesideReadersAndEachOther) {
    for (int round = 0; round < 50; ++round) {
        auto const field = addField(mPart, numbered(L"field", round));
        auto const ofTheType = field->valueEqFunc(false);
        std::atomic<int> finished{0};
        auto const writer = [&](std::function<void()> const& setAndFind) {
            return [&finished, setAndFind] {
                setAndFind();
                ++finished;
            };
        };
        auto const reader = [&] {
            for (bool last = false; !last;) {
                last = finished == 4;
                read(field, ofTheType);
            }
        };
        runTogether({writer([&] { setAndFindDefaults(field); }), writer([&] { setAndFindExpressions(field); }),
                     writer([&] { setAndFindCondition(field); }), writer([&] { setAndFindFunctionAndType(field); }),
                     reader, reader});
        EXPECT_EQ(mAlive, 1);
        EXPECT_GE(mConditionsSeen, 2 * (round + 1));
        EXPECT_EQ(field->autoExpression(), L"");
        field->setValueCondition(nullptr);
        EXPECT_EQ(mAlive, 0);
    }
}

// ---- letting go

class threadsThatAskForIdSets : public threadsOfAField, public testing::WithParamInterface<bool> {};
INSTANTIATE_TEST_SUITE_P(ofAModelOrClass, threadsThatAskForIdSets, testing::Bool());

// A set that is known stays known, so that each round has a class of its own.
// behaviour: TH-12, ID-04, ID-08
TEST_P(threadsThatAskForIdSets, getAWholeSetOrTheRefusalBesideTearDown) {
    quietReports const reports(noKeyIsRefused);
    std::atomic<int> refused{0};
    for (int round = 0; round < 200; ++round) {
        auto const part = mModel->createClassInfo(numbered(L"part", round));
        std::vector<refPtr<fieldInfo>> keys;
        for (int number = 0; number < (round % 2 ? 1 : 20); ++number) {
            keys.push_back(addField(part, numbered(L"key", number)));
            makeKey(keys.back());
        }
        auto const reader = [&] {
            for (int i = 0; i < 10; ++i) {
                try {
                    auto const id = part->idInfo();
                    auto const owner = id->classInfo();
                    mViolations.check(fieldsOf(id) == keys);
                    mViolations.check(!owner || owner == part);
                } catch (bool thrown) {
                    mViolations.check(!thrown && part->countFields() == 0);
                    ++refused;
                }
            }
        };
        runTogether({[&] { GetParam() ? mModel->tearDown() : part->tearDown(); }, reader, reader});
        EXPECT_FALSE(keys.front()->classInfo());
    }
    EXPECT_EQ(reports.count(), refused);
}

} // namespace
