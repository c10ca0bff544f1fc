// What a field means when memory runs out: in each test the n-th allocation fails, for n = 0, 1, 2 ... until the
// scenario passes, once alone and once with all that follow, or there are n times 8 bytes of cells. Either all is
// done, or std::bad_alloc comes out and nothing is.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "attempts.h"
#include "testAccess.h"
#include "zovAssert.h"

namespace zov::metamodel {
namespace {

using conditions::condition;
using zov::tests::failureKind;
using zov::tests::failureKinds;
using zov::tests::nameOf;
using zov::tests::outcome;
using enum zov::tests::failureKind;
using enum zov::tests::outcome;

// Longer than what a text keeps without an allocation.
string longText(wchar_t unit) {
    return string(200, unit);
}

// A condition with a text of its own, which tells how many there are.
class named : public condition {
public:
    static inline int alive = 0;

    explicit named(string name) : mName(std::move(name)) { ++alive; }
    named(named const& other) : condition(other), mName(other.mName) { ++alive; }
    named& operator=(named const&) = delete;
    ~named() override { --alive; }

    condition* clone() const override { return new named(*this); }
    string const& name() const { return mName; }

private:
    string mName;
};

bool alwaysEqual(genericValue const&, genericValue const&) {
    return true;
}
bool neverEqual(genericValue const&, genericValue const&) {
    return false;
}

// A text field that has said all there is to say of itself, and one that stands for it.
class world {
public:
    world() {
        mBase->createFieldInfo(L"name", eString, genericSet(), L"");
        mPart->addBaseClass(mBase);
        root = mBase->fieldInfo(L"name", false, false);
        field = mPart->createFieldInfo(mBase, L"name");
        root->setDefaultValue(genericValue(longText(L'd')));
        root->setDefaultExpression(longText(L'e'));
        root->setAutoExpression(longText(L'a'));
        root->setConstantExpression(longText(L'c'));
        testAccess::data(*root).mFlags = 15;
        named const given(longText(L'n'));
        root->setValueCondition(&given);
        root->setValueEqFunc(&alwaysEqual);
        genericSet attribs;
        attribs.setValue(L"former", 1, false);
        root->setSemantic(eSemCustom, attribs, L"Former Kind");
    }
    ~world() {
        mPart->tearDown();
        mBase->tearDown();
    }
    world(world const&) = delete;
    world& operator=(world const&) = delete;

    // All that the field at the end says of itself, with what it inherits.
    std::string state() const {
        std::string out;
        for (auto const& each : {root, field}) {
            genericValue value;
            string text;
            bool const has = each->getDefaultValue(value, true) && value.getValue(text);
            out += (has ? text : string(L"none")).toUtf8() + "|" + each->defaultExpression().toUtf8() + "|";
            out += each->autoExpression().toUtf8() + "|" + each->constantExpression().toUtf8() + "|";
            auto const* const kept = each->valueCondition();
            out += (kept ? dynamic_cast<named const&>(*kept).name() : string(L"none")).toUtf8() + "|";
            out += each->valueEqFunc(true) == &alwaysEqual ? "always|" : "not always|";
            out += std::to_string(testAccess::flags(*each)) + "|" + std::to_string(each->semantic()) + "|";
            out += std::to_string(each->type()) + "|" + each->semanticString().string().toUtf8() + "|";
            out += std::to_string(testAccess::data(*each).mDefinitions.size()) + "\n";
        }
        return out;
    }

    refPtr<fieldInfo> root;
    refPtr<fieldInfo> field;

private:
    refPtr<classInfo> mBase = classInfo::createClassInfo(L"base");
    refPtr<classInfo> mPart = classInfo::createClassInfo(L"part");
};

// Runs the action with the allocation after `passing` ones failing; tells whether one failed.
outcome attempted(long passing, failureKind kind, std::function<void()> const& action, bool& allocationFailed) {
    auto const made = zov::tests::attempted(passing, kind, [&] {
        action();
        return true;
    });
    allocationFailed = made.allocationFailed;
    return made.ended;
}

// The loop over n. After a failure the world must be as before; after the last attempt `done` must hold.
void everyAllocationFailing(std::function<void(world&)> const& action, std::function<bool(world&)> const& done) {
    int const aliveBefore = named::alive;
    for (failureKind const kind : failureKinds) {
        SCOPED_TRACE(nameOf(kind));
        int failures = 0;
        bool failing = true;
        for (long passing = 0; failing; ++passing) {
            ASSERT_LT(passing, 1000) << "the scenario never passes";
            SCOPED_TRACE("allocation " + std::to_string(passing));
            world given;
            std::string const before = given.state();
            outcome const ended = attempted(
                passing, kind, [&] { action(given); }, failing);
            if (ended != ePassed) {
                ++failures;
                ASSERT_EQ(ended, eThrewBadAlloc);
                ASSERT_TRUE(failing);
                ASSERT_EQ(given.state(), before);
            } else {
                ASSERT_TRUE(done(given));
            }
        }
        EXPECT_TRUE(failures > 0 || kind == eCellBlocks) << "nothing failed, so nothing was tested";
    }
    EXPECT_EQ(named::alive, aliveBefore);
}

TEST(faultsOfFieldMeaning, comeWithCellsAsWell) {
    EXPECT_TRUE(zov::tests::cellsRunOut());
}

// behaviour: FV-19
TEST(faultsOfFieldMeaning, settingADefaultIsAllOrNothing) {
    genericValue const value(longText(L'D'));
    everyAllocationFailing([&](world& given) { given.root->setDefaultValue(value); },
                           [](world& given) {
                               genericValue kept;
                               return given.field->getDefaultValue(kept, true) &&
                                      *kept.valuePtr<string>() == longText(L'D');
                           });
}

// behaviour: FV-19
TEST(faultsOfFieldMeaning, settingTheFirstDefaultIsAllOrNothing) {
    genericValue const value(longText(L'D'));
    everyAllocationFailing([&](world& given) { given.field->setDefaultValue(value); },
                           [](world& given) { return testAccess::data(*given.field).mDefinitions.size() == 1; });
}

// behaviour: FV-19
TEST(faultsOfFieldMeaning, readingADefaultLeavesTheValueAsItWas) {
    genericValue value;
    everyAllocationFailing([&](world& given) { given.field->getDefaultValue(value, true); },
                           [&](world&) {
                               bool const read =
                                   value.valuePtr<string>() && *value.valuePtr<string>() == longText(L'd');
                               value = genericValue();
                               return read;
                           });
    for (failureKind const kind : failureKinds) {
        for (long passing = 0;; ++passing) {
            world const given;
            genericValue out(5);
            int const* const before = out.valuePtr<int>();
            bool failing = false;
            outcome const ended = attempted(
                passing, kind, [&] { given.field->getDefaultValue(out, true); }, failing);
            if (ended == ePassed) break;
            ASSERT_EQ(out.valuePtr<int>(), before);
        }
    }
}

void makeValueWhileMemoryFails(eFieldType type, bool isNull, failureKind kind) {
    SCOPED_TRACE(type);
    SCOPED_TRACE(nameOf(kind));
    auto const part = classInfo::createClassInfo(L"part");
    auto const field = part->createFieldInfo(L"width", type, genericSet(), L"");
    int failures = 0;
    bool failing = true;
    for (long passing = 0; failing; ++passing) {
        genericValue out(5);
        int const* const before = out.valuePtr<int>();
        auto const make = [&] {
            if (isNull)
                out = field->createNullValue();
            else
                fieldInfo::getDefaultFromType(type, out);
        };
        outcome const ended = attempted(passing, kind, make, failing);
        if (ended == ePassed) continue;
        ++failures;
        EXPECT_EQ(ended, eThrewBadAlloc);
        EXPECT_EQ(out.valuePtr<int>(), before);
    }
    EXPECT_GT(failures, 0);
    part->tearDown();
}

// behaviour: FV-19
TEST(faultsOfFieldMeaning, makingTypeDefaultsAndNullValuesThrowsBadAlloc) {
    for (eFieldType const type : {eBool, eShort, eInt, eLong, eFloat, eDouble, eString, eDate, eTime, eTimestamp,
                                  eBinary, eDirectory, eFile, eSearchPath})
        for (bool const isNull : {false, true})
            for (failureKind const kind : failureKinds)
                makeValueWhileMemoryFails(type, isNull, kind);
}

// behaviour: FV-17, FV-19
TEST(faultsOfFieldMeaning, tellingANullValueOfTheFieldsTypeNeedsNoMemory) {
    auto const part = classInfo::createClassInfo(L"part");
    auto const text = part->createFieldInfo(L"text", eString, genericSet(), L"");
    auto const bytes = part->createFieldInfo(L"bytes", eBinary, genericSet(), L"");
    genericValue const longOne(longText(L't'));
    genericValue const buffer(zov::binaryBuffer(1000));
    bool anyIsNull = true;
    bool needsMemory = true;
    auto const ask = [&] { anyIsNull = text->isNullValue(longOne) || bytes->isNullValue(buffer); };
    EXPECT_EQ(attempted(0, zov::tests::eAllAllocations, ask, needsMemory), ePassed);
    EXPECT_FALSE(anyIsNull);
    EXPECT_FALSE(needsMemory);
    part->tearDown();
}

// behaviour: EI-12
TEST(faultsOfFieldMeaning, readingAnItemLeavesItAsItWas) {
    string const text = L"some value , a name, that is, long enough to need memory of its own, piece by piece";
    using parser = bool (*)(string const&, eFieldType, enumItem&);
    for (parser const parse : {&fieldInfo::parseEnumItem, &fieldInfo::parseBitsItem}) {
        for (eFieldType const type : {eString, eDirectory, eCustom}) {
            for (failureKind const kind : failureKinds) {
                int failures = 0;
                bool failing = true;
                for (long passing = 0; failing; ++passing) {
                    SCOPED_TRACE("allocation " + std::to_string(passing));
                    enumItem item{genericValue(5), longText(L'b')};
                    auto const* const before = item.mValue.heldBy();
                    outcome const ended = attempted(
                        passing, kind, [&] { parse(text, type, item); }, failing);
                    if (ended == ePassed) {
                        EXPECT_NE(item.mValue.heldBy(), before);
                        EXPECT_TRUE(item.mName.starts_with(L"a name that is long"));
                        continue;
                    }
                    ++failures;
                    ASSERT_EQ(ended, eThrewBadAlloc);
                    ASSERT_EQ(item.mValue.heldBy(), before);
                    ASSERT_EQ(item.mName, longText(L'b'));
                }
                EXPECT_GT(failures, 0);
            }
        }
    }
}

// behaviour: FS-39
TEST(faultsOfFieldMeaning, readingASemanticsTextLeavesTheAttributesAsTheyWere) {
    for (wchar_t const* text :
         {L"Custom(a name that needs memory of its own)", L"relation(xone class, another class)"}) {
        for (failureKind const kind : failureKinds) {
            int failures = 0;
            bool failing = true;
            for (long passing = 0; failing; ++passing) {
                SCOPED_TRACE("allocation " + std::to_string(passing));
                genericSet attribs;
                attribs.setValue(L"custom_semantic", L"former", false);
                string const given = text;
                eFieldSemantics semantic = eSemBits;
                outcome const ended = attempted(
                    passing, kind, [&] { fieldInfo::parseSemantics(given, semantic, attribs); }, failing);
                if (ended == ePassed) continue;
                ++failures;
                ASSERT_EQ(ended, eThrewBadAlloc);
                string kept;
                ASSERT_TRUE(attribs.getValue(L"custom_semantic", kept));
                ASSERT_EQ(kept, L"former");
                ASSERT_EQ(attribs.size(), 1u);
            }
            EXPECT_TRUE(failures > 0 || kind == eCellBlocks);
        }
    }
}

// behaviour: FE-18
TEST(faultsOfFieldMeaning, settingADefaultExpressionIsAllOrNothing) {
    string const text = longText(L'E');
    everyAllocationFailing([&](world& given) { given.root->setDefaultExpression(text); },
                           [&](world& given) { return given.field->defaultExpression() == text; });
}

// behaviour: FE-18
TEST(faultsOfFieldMeaning, settingAnAutoExpressionIsAllOrNothing) {
    string const text = longText(L'A');
    everyAllocationFailing([&](world& given) { given.root->setAutoExpression(text); },
                           [&](world& given) { return given.field->autoExpression() == text; });
}

// behaviour: FE-18
TEST(faultsOfFieldMeaning, settingTheFirstAutoExpressionLeavesTheFlagAsItWas) {
    string const text = longText(L'A');
    everyAllocationFailing([&](world& given) { given.field->setAutoExpression(text); },
                           [&](world& given) { return testAccess::flags(*given.field) == 4; });
}

// behaviour: FE-18
TEST(faultsOfFieldMeaning, settingAConstantExpressionIsAllOrNothing) {
    string const text = longText(L'C');
    everyAllocationFailing([&](world& given) { given.root->setConstantExpression(text); },
                           [&](world& given) { return given.field->constantExpression() == text; });
}

// behaviour: FE-18
TEST(faultsOfFieldMeaning, readingAnExpressionThrowsBadAlloc) {
    string text;
    everyAllocationFailing([&](world& given) { text = given.field->autoExpression(); },
                           [&](world&) { return text == longText(L'a'); });
}

// behaviour: FE-18
TEST(faultsOfFieldMeaning, settingAConditionIsAllOrNothing) {
    named const given(longText(L'N'));
    everyAllocationFailing([&](world& inside) { inside.root->setValueCondition(&given); },
                           [&](world& inside) {
                               bool const kept =
                                   dynamic_cast<named const*>(inside.field->valueCondition())->name() == given.name();
                               return kept && named::alive == 2;
                           });
}

// behaviour: FE-18
TEST(faultsOfFieldMeaning, settingAnEqualityFunctionIsAllOrNothing) {
    everyAllocationFailing([](world& given) { given.root->setValueEqFunc(&neverEqual); },
                           [](world& given) { return given.field->valueEqFunc(true) == &neverEqual; });
}

// behaviour: FS-39
TEST(faultsOfFieldMeaning, aRefusedSemanticIsTakenBackWithItsTextEmptied) {
    zov::setAssertHandler([](string const&) {});
    for (failureKind const kind : failureKinds) {
        int rolledBack = 0;
        bool failing = true;
        for (long passing = 0; failing; ++passing) {
            SCOPED_TRACE("allocation " + std::to_string(passing));
            world const given;
            genericSet attribs;
            attribs.setValue(L"note", longText(L's'), false);
            outcome const ended = attempted(
                passing, kind, [&] { given.root->setSemantic(eSemPrimkey, attribs, L""); }, failing);
            ASSERT_EQ(ended, ePassed);
            if (given.root->semantic() == eSemPrimkey) {
                EXPECT_EQ(given.root->semanticString().string(), L"string");
                continue;
            }
            ++rolledBack;
            ASSERT_TRUE(failing);
            ASSERT_EQ(given.root->semantic(), eSemCustom);
            ASSERT_EQ(given.root->semanticString(), scString());
            ASSERT_EQ(testAccess::flags(*given.root), 15);
            ASSERT_EQ(given.root->type(), eString);
        }
        EXPECT_TRUE(rolledBack > 0 || kind == eCellBlocks);
    }
    zov::setAssertHandler({});
}

} // namespace
} // namespace zov::metamodel
