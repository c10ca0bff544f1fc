// What a host sees of a model when memory runs out: in each test the n-th allocation fails, for n = 0, 1, 2 ... until
// the scenario passes; once alone and once with all that follow; and once there are so many times 8 bytes of cells;
// without a log and with one at trace level.
// Leaks are the leak sanitizer's to find: every test frees all it makes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <unistd.h>

#include "attempts.h"
#include "zovMetamodel.h"

#include "zovAssert.h"
#include "zovLog.h"

namespace {

using zov::genericSet;
using zov::refPtr;
using zov::scString;
using zov::string;
using zov::metamodel::classInfo;
using zov::metamodel::enumItem;
using zov::metamodel::fieldInfo;
using zov::metamodel::idInfo;
using zov::metamodel::modelInfo;
using zov::tests::attempt;
using zov::tests::attempted;
using zov::tests::attemptedIn;
using zov::tests::failureKind;
using zov::tests::failureKinds;
using zov::tests::nameOf;
using zov::tests::outcome;
using enum zov::tests::failureKind;
using enum zov::tests::outcome;

// ---- what a test may compare

// All that a host can read of a field, its reference count included: a lost reference is a changed state.
std::string described(refPtr<fieldInfo> const& field) {
    std::string out = "  field " + field->scName().string().toUtf8() + " as " + field->qualifiedName().toUtf8();
    out += " label=" + field->label().toUtf8() + " unit=" + field->unit().toUtf8();
    out += " type=" + std::to_string(field->type()) + " " + field->typeString().string().toUtf8();
    out += " custom=" + field->customTypeString().string().toUtf8();
    out += " semantic=" + std::to_string(field->semantic());
    out += " attribs=" + std::to_string(field->typeAttribs().size());
    out += field->isMandatory() ? " mandatory" : "";
    out += field->isUnique() ? " unique" : "";
    out += field->baseField() ? " inheriting" : "";
    std::vector<string> aliases;
    field->getAliasnames(aliases);
    out += " aliases=" + std::to_string(aliases.size());
    out += " count=" + std::to_string(field->refCount()) + "\n";
    return out;
}

std::string described(refPtr<classInfo> const& type) {
    std::string out = "class " + type->scName().string().toUtf8() + " label=" + type->label().toUtf8();
    out += type->isAbstract() ? " abstract" : "";
    out += " count=" + std::to_string(type->refCount()) + "\n";
    std::vector<string> aliases;
    type->getAliasnames(aliases);
    for (auto const& alias : aliases)
        out += "  alias " + alias.toUtf8() + "\n";
    std::vector<std::string> bases;
    type->forEachBaseClass(
        [&](auto const& base) {
            bases.push_back(base.first.string().toUtf8());
            return true;
        },
        false);
    std::sort(bases.begin(), bases.end());
    for (auto const& base : bases)
        out += "  base " + base + "\n";
    std::vector<refPtr<fieldInfo>> fields;
    type->forEachFieldInfo(
        [&](refPtr<fieldInfo> field) {
            fields.push_back(std::move(field));
            return true;
        },
        false);
    for (auto const& field : fields)
        out += described(field);
    std::vector<refPtr<fieldInfo>> ids;
    type->getIdFieldInfos(ids);
    for (auto const& id : ids)
        out += "  id " + id->scName().string().toUtf8() + "\n";
    return out;
}

std::string described(refPtr<modelInfo> const& model) {
    std::vector<std::string> parts;
    model->forEachClassInfo(
        [&](auto const& entry) {
            parts.push_back(described(entry.second));
            return true;
        },
        false);
    model->forEachAddProp(
        [&](scString const& key, zov::genericValue const& value) {
            string text;
            value.getValue(text);
            parts.push_back("property " + key.string().toUtf8() + "=" + text.toUtf8() + "\n");
            return true;
        },
        false);
    std::sort(parts.begin(), parts.end());
    std::string out;
    for (auto const& part : parts)
        out += part;
    return out;
}

// ---- scenarios

// A log and a report that a host drops, so that the life lines are written in full.
class silentHost {
public:
    explicit silentHost(bool logging) {
        zov::setAssertHandler([](string const&) {});
        zovlog::logManager::setSink([](zovlog::logRecord const&) {});
        zovlog::logManager::setLevel(logging ? zovlog::eLogTrace : zovlog::eLogOff);
    }
    ~silentHost() {
        zovlog::logManager::setLevel(zovlog::eLogOff);
        zovlog::logManager::setSink({});
        zov::setAssertHandler({});
    }
    silentHost(silentHost const&) = delete;
    silentHost& operator=(silentHost const&) = delete;
};

// Names that no iteration before has interned, so that interning is among what fails.
string freshName(wchar_t const* stem) {
    static unsigned long made = 0;
    return string(std::wstring(stem) + L"OfTheFaultTests" + std::to_wstring(++made));
}

// One iteration of a scenario: a world of its own, the action in it, and the end of that world.
class iteration {
public:
    iteration() = default;
    iteration(iteration const&) = delete;
    iteration& operator=(iteration const&) = delete;
    virtual ~iteration() = default;

    // What the failing allocations are armed for.
    virtual bool act() = 0;

    // All that the action must not change when it fails.
    virtual std::string state() { return {}; }

    // Checked after each attempt.
    virtual void check(attempt const&) {}
};

// The loop over n. `failing` is the only way in which an attempt with a failed allocation may end, apart from having
// done its work all the same.
template <class Iteration>
void everyAllocationFailing(outcome failing, failureKind kind, bool logging) {
    silentHost const host(logging);
    SCOPED_TRACE(nameOf(kind) + (logging ? ", with a log" : ", without a log"));
    std::size_t failures = 0;
    for (long passing = 0;; ++passing) {
        ASSERT_LT(passing, 5000) << "the scenario never passes";
        SCOPED_TRACE("allocation " + std::to_string(passing));
        Iteration world;
        auto const made = attemptedIn(world, passing, kind, failing);
        if (made.ended != ePassed) ++failures;
        if (testing::Test::HasFailure()) return;
        if (!made.allocationFailed) break;
    }
    EXPECT_TRUE(failures > 0 || kind == eCellBlocks) << "nothing failed, so nothing was tested";
}

template <class Iteration>
void everyAllocationFailing(outcome failing) {
    for (failureKind const kind : failureKinds)
        for (bool const logging : {false, true})
            everyAllocationFailing<Iteration>(failing, kind, logging);
}

// A model with a base, a derived class with every kind of field, and a class apart.
class modelIteration : public iteration {
public:
    modelIteration() : mModel(modelInfo::createModelInfo(false)) {
        mBase = mModel->createClassInfo(L"Item");
        mBase->createFieldInfo(L"number", zov::metamodel::eInt, genericSet(), L"");
        mPart = mModel->createClassInfo(L"Part");
        mPart->addBaseClass(mBase);
        mPart->addAliasname(L"component");
        mPart->setLabel(L"A part of the workshop");
        genericSet attribs;
        attribs.setValue(L"digits", 2, false);
        mWidth = mPart->createFieldInfo(L"width", zov::metamodel::eDouble, attribs, L"");
        mWidth->setLabel(L"Width over everything");
        mWidth->setUnit(L"millimetre");
        mMade = mPart->createFieldInfo(L"made", zov::metamodel::eTimestamp, genericSet(), L"");
        mPart->createFieldInfo(mBase, L"number");
        mKey = mPart->createFieldInfo(L"key", zov::metamodel::eString, genericSet(), L"");
        mKey->setSemantic(zov::metamodel::eSemPrimkey, genericSet(), L"");
        mOther = mModel->createClassInfo(L"Supplier");
        mModel->setAddProp(L"owner", L"the workshop");
    }

    ~modelIteration() override { mModel->tearDown(); }

    std::string state() override { return described(mModel); }

protected:
    refPtr<modelInfo> mModel;
    refPtr<classInfo> mBase;
    refPtr<classInfo> mPart;
    refPtr<classInfo> mOther;
    refPtr<fieldInfo> mWidth;
    refPtr<fieldInfo> mMade;
    refPtr<fieldInfo> mKey;
    string mName = freshName(L"Name");
};

// ---- making models and classes

class modelIsMade : public iteration {
public:
    bool act() override {
        mModel = modelInfo::createModelInfo(false);
        return static_cast<bool>(mModel);
    }
    void check(attempt const& made) override {
        if (made.ended != ePassed) return;
        EXPECT_EQ(mModel->refCount(), 1u);
        EXPECT_EQ(mModel->countClasses(), 0u);
    }

private:
    refPtr<modelInfo> mModel;
};

TEST(faultsOfModels, comeWithCellsAsWell) {
    EXPECT_TRUE(zov::tests::cellsRunOut());
}

// behaviour: AF-01
TEST(faultsOfModels, createModelInfoYieldsNull) {
    everyAllocationFailing<modelIsMade>(eNull);
}

class classOfNoModelIsMade : public iteration {
public:
    bool act() override {
        mClass = classInfo::createClassInfo(mName);
        return static_cast<bool>(mClass);
    }
    void check(attempt const& made) override {
        if (made.ended != ePassed) return;
        EXPECT_EQ(mClass->refCount(), 1u);
        EXPECT_EQ(mClass->scName().string(), mName.lower());
    }

private:
    string mName = freshName(L"Alone");
    refPtr<classInfo> mClass;
};

// behaviour: AF-02
TEST(faultsOfModels, createClassInfoWithoutAModelYieldsNull) {
    everyAllocationFailing<classOfNoModelIsMade>(eNull);
}

class classIsRegistered : public modelIteration {
public:
    bool act() override { return static_cast<bool>(mModel->createClassInfo(mName)); }
    void check(attempt const& made) override {
        EXPECT_EQ(static_cast<bool>(mModel->classInfo(mName, false)), made.ended == ePassed);
    }
};

// behaviour: AF-03
TEST(faultsOfModels, registeringAClassThrowsFalse) {
    everyAllocationFailing<classIsRegistered>(eThrewFalse);
}

class classIsGotOrCreated : public modelIteration {
public:
    bool act() override { return static_cast<bool>(mModel->getOrCreateClassInfo(mName)); }
    void check(attempt const& made) override {
        EXPECT_EQ(static_cast<bool>(mModel->classInfo(mName, false)), made.ended == ePassed);
    }
};

// behaviour: AF-03
TEST(faultsOfModels, gettingOrCreatingAClassThrowsFalse) {
    everyAllocationFailing<classIsGotOrCreated>(eThrewFalse);
}

// A class that accept fills; the test keeps it, and looks whether the library has let it go.
class filledClassIsRegistered : public modelIteration {
public:
    bool act() override {
        return static_cast<bool>(mModel->createClassInfo(mName, [this](refPtr<classInfo> added) {
            mSeen = added;
            mField = added->createFieldInfo(mFieldName, zov::metamodel::eInt, genericSet(), mNoText);
            added->createFieldInfo(mOtherFieldName, zov::metamodel::eString, genericSet(), mNoText);
            return true;
        }));
    }
    void check(attempt const& made) override {
        if (made.ended == ePassed) {
            EXPECT_EQ(mModel->classInfo(mName, false), mSeen);
            EXPECT_EQ(mSeen->countFields(), 2u);
            return;
        }
        if (mSeen) {
            EXPECT_EQ(mSeen->countFields(), 0u);
            EXPECT_EQ(mSeen->refCount(), 1u);
        }
        if (mField) {
            EXPECT_FALSE(mField->classInfo());
            EXPECT_EQ(mField->refCount(), 1u);
        }
    }

private:
    string mFieldName = freshName(L"Field");
    string mOtherFieldName = freshName(L"Field");
    string mNoText;
    refPtr<classInfo> mSeen;
    refPtr<fieldInfo> mField;
};

// behaviour: AF-04
TEST(faultsOfModels, aClassThatAcceptFilledIsLetGo) {
    everyAllocationFailing<filledClassIsRegistered>(eThrewFalse);
}

// The label is accept's own business: its failure is no failure of the registration.
class labelledClassIsRegistered : public modelIteration {
public:
    bool act() override {
        return static_cast<bool>(mModel->getOrCreateClassInfo(mName, [this](refPtr<classInfo> added) {
            mSeen = added;
            mInLabel = true;
            added->setLabel(mLabel);
            mInLabel = false;
            return true;
        }));
    }
    void check(attempt const& made) override {
        if (made.ended != ePassed) {
            EXPECT_EQ(made.ended, mInLabel ? eThrewBadAlloc : eThrewFalse);
            EXPECT_FALSE(mModel->classInfo(mName, false));
            sawLabelFailing = sawLabelFailing || mInLabel;
        }
    }
    static inline bool sawLabelFailing = false;

private:
    string mLabel = freshName(L"A label");
    refPtr<classInfo> mSeen;
    bool mInLabel = false;
};

void registerWhileMemoryFails(failureKind kind, bool logging) {
    silentHost const host(logging);
    SCOPED_TRACE(nameOf(kind));
    for (long passing = 0;; ++passing) {
        SCOPED_TRACE("allocation " + std::to_string(passing));
        labelledClassIsRegistered world;
        auto const before = world.state();
        auto const made = attempted(passing, kind, [&] { return world.act(); });
        world.check(made);
        if (made.ended != ePassed) {
            EXPECT_EQ(world.state(), before);
        }
        if (testing::Test::HasFailure() || !made.allocationFailed) break;
    }
}

// behaviour: AF-05
TEST(faultsOfModels, whatAcceptThrowsComesOut) {
    for (failureKind const kind : failureKinds)
        for (bool const logging : {false, true})
            registerWhileMemoryFails(kind, logging);
    EXPECT_TRUE(labelledClassIsRegistered::sawLabelFailing);
}

class refusedClassIsRegistered : public modelIteration {
public:
    bool act() override {
        auto const refused = mModel->createClassInfo(mName, [this](refPtr<classInfo> added) {
            mField = added->createFieldInfo(mFieldName, zov::metamodel::eInt, genericSet(), mNoText);
            return false;
        });
        return !refused;
    }
    void check(attempt const&) override {
        EXPECT_FALSE(mModel->classInfo(mName, false));
        if (mField) {
            EXPECT_FALSE(mField->classInfo());
        }
    }

private:
    string mFieldName = freshName(L"Field");
    string mNoText;
    refPtr<fieldInfo> mField;
};

// behaviour: AF-04
TEST(faultsOfModels, aRefusedClassIsLetGo) {
    everyAllocationFailing<refusedClassIsRegistered>(eThrewFalse);
}

// In a model that keeps letter case, a class with capitals is registered again under the same key.
class classIsReplaced : public iteration {
public:
    classIsReplaced() : mModel(modelInfo::createModelInfo(true)), mFirst(mModel->createClassInfo(mName)) {}
    ~classIsReplaced() override {
        mModel->tearDown();
        mFirst->tearDown();
    }
    bool act() override {
        mSecond = mModel->createClassInfo(mName);
        return static_cast<bool>(mSecond);
    }
    std::string state() override { return described(mModel); }
    void check(attempt const& made) override {
        EXPECT_EQ(mModel->classInfo(mName.lower(), false), made.ended == ePassed ? mSecond : mFirst);
    }

private:
    string mName = freshName(L"Replaced");
    refPtr<modelInfo> mModel;
    refPtr<classInfo> mFirst;
    refPtr<classInfo> mSecond;
};

// behaviour: AF-03
TEST(faultsOfModels, replacingAClassThrowsFalse) {
    everyAllocationFailing<classIsReplaced>(eThrewFalse);
}

class propertyIsSet : public modelIteration {
public:
    bool act() override {
        mModel->setAddProp(mName, mValue);
        return true;
    }

private:
    string mValue = freshName(L"Value");
};

// behaviour: AF-06
TEST(faultsOfModels, settingAPropertyThrowsBadAlloc) {
    everyAllocationFailing<propertyIsSet>(eThrewBadAlloc);
}

class propertyIsReplaced : public modelIteration {
public:
    bool act() override {
        mModel->setAddProp(mKey, mValue);
        return true;
    }

private:
    string mKey = L"owner";
    string mValue = freshName(L"Value");
};

// behaviour: AF-06
TEST(faultsOfModels, replacingAPropertyThrowsBadAlloc) {
    everyAllocationFailing<propertyIsReplaced>(eThrewBadAlloc);
}

class caseRuleIsReplaced : public modelIteration {
public:
    bool act() override {
        mModel->setAddProp(mRule, mYes);
        return true;
    }
    void check(attempt const& made) override {
        string text;
        EXPECT_TRUE(mModel->addProp(mRule, text));
        EXPECT_EQ(text, made.ended == ePassed ? L"true" : L"false");
        EXPECT_EQ(static_cast<bool>(mModel->classInfo(L"PART", false)), made.ended != ePassed);
    }

private:
    string mRule = L"caseSensitiveNames";
    string mYes = L"true";
};

// behaviour: AF-06
TEST(faultsOfModels, aCaseRuleThatCannotBeStoredIsNotFollowed) {
    everyAllocationFailing<caseRuleIsReplaced>(eThrewBadAlloc);
}

class propertyIsRead : public modelIteration {
public:
    bool act() override { return mModel->addProp(mKey, mText); }
    std::string state() override { return modelIteration::state() + mText.toUtf8(); }
    void check(attempt const& made) override {
        if (made.ended == ePassed) {
            EXPECT_EQ(mText, L"the workshop");
        }
    }

private:
    string mKey = L"owner";
    string mText;
};

// behaviour: AF-07
TEST(faultsOfModels, readingAPropertyThrowsBadAlloc) {
    everyAllocationFailing<propertyIsRead>(eThrewBadAlloc);
}

// ---- fields

class fieldIsCreated : public modelIteration {
public:
    fieldIsCreated() { mAttribs.setValue(L"digits", 2, false); }
    bool act() override {
        return static_cast<bool>(mPart->createFieldInfo(mName, zov::metamodel::eCustom, mAttribs, mType));
    }
    void check(attempt const& made) override {
        EXPECT_EQ(static_cast<bool>(mPart->fieldInfo(mName, false, false)), made.ended == ePassed);
        EXPECT_EQ(mPart->countFields(), made.ended == ePassed ? 5u : 4u);
    }

private:
    genericSet mAttribs;
    string mType = freshName(L"type");
};

// behaviour: AF-08
TEST(faultsOfFields, creatingAFieldThrowsFalse) {
    everyAllocationFailing<fieldIsCreated>(eThrewFalse);
}

class firstFieldIsCreated : public modelIteration {
public:
    bool act() override {
        return static_cast<bool>(mOther->createFieldInfo(mName, zov::metamodel::eInt, genericSet(), mNoText));
    }
    void check(attempt const& made) override { EXPECT_EQ(mOther->countFields(), made.ended == ePassed ? 1u : 0u); }

private:
    string mNoText;
};

// behaviour: AF-08
TEST(faultsOfFields, creatingTheFirstFieldThrowsFalse) {
    everyAllocationFailing<firstFieldIsCreated>(eThrewFalse);
}

class inheritingFieldIsCreated : public modelIteration {
public:
    inheritingFieldIsCreated() { mOther->addBaseClass(mBase); }
    bool act() override { return static_cast<bool>(mOther->createFieldInfo(mBase, mNumber)); }
    void check(attempt const& made) override { EXPECT_EQ(mOther->countFields(), made.ended == ePassed ? 1u : 0u); }

private:
    string mNumber = L"number";
};

// behaviour: AF-08
TEST(faultsOfFields, creatingAnInheritingFieldThrowsFalse) {
    everyAllocationFailing<inheritingFieldIsCreated>(eThrewFalse);
}

class fieldIsCopied : public modelIteration {
public:
    bool act() override { return static_cast<bool>(mOther->copyFieldInfoFrom(mWidth, mPrefix.c_str())); }
    void check(attempt const& made) override {
        EXPECT_EQ(mOther->countFields(), made.ended == ePassed ? 1u : 0u);
        if (made.ended == ePassed) {
            EXPECT_EQ(mOther->fieldInfo(mPrefix + L"width", false, false)->label(), L"Width over everything");
        }
    }

private:
    string mPrefix = mName.lower();
};

// behaviour: AF-09
TEST(faultsOfFields, copyingAFieldThrowsFalse) {
    everyAllocationFailing<fieldIsCopied>(eThrewFalse);
}

class fieldsAreCopied : public modelIteration {
public:
    bool act() override { return mOther->copyInfosFrom(mPart, mPrefix.c_str()); }
    void check(attempt const& made) override { EXPECT_EQ(mOther->countFields(), made.ended == ePassed ? 4u : 0u); }

private:
    string mPrefix = mName.lower();
};

// behaviour: AF-09
TEST(faultsOfFields, copyingAllFieldsThrowsFalseAndCopiesNone) {
    everyAllocationFailing<fieldsAreCopied>(eThrewFalse);
}

class existingFieldIsAskedFor : public modelIteration {
public:
    existingFieldIsAskedFor() : mFirst(mPart->createFieldInfo(mLongName, zov::metamodel::eInt, genericSet(), L"")) {}
    bool act() override {
        return mPart->createFieldInfo(mLongName, zov::metamodel::eBool, genericSet(), mNoText) == mFirst;
    }

private:
    string mLongName = L"Width of the Whole Part";
    string mNoText;
    refPtr<fieldInfo> mFirst;
};

// behaviour: AF-16
TEST(faultsOfFields, aFieldThatIsThereIsReturnedWithoutMemory) {
    silentHost const host(false);
    existingFieldIsAskedFor world;
    EXPECT_EQ(attempted(0, eAllAllocations, [&] { return world.act(); }).ended, ePassed);
}

class labelIsSet : public modelIteration {
public:
    bool act() override {
        mWidth->setLabel(mText);
        return true;
    }

private:
    string mText = string(std::wstring(200, L'l'));
};

// behaviour: AF-10
TEST(faultsOfFields, settingALabelThrowsBadAlloc) {
    everyAllocationFailing<labelIsSet>(eThrewBadAlloc);
}

class unitIsSet : public modelIteration {
public:
    bool act() override {
        mWidth->setUnit(mText);
        return true;
    }

private:
    string mText = string(std::wstring(200, L'u'));
};

// behaviour: AF-10
TEST(faultsOfFields, settingAUnitThrowsBadAlloc) {
    everyAllocationFailing<unitIsSet>(eThrewBadAlloc);
}

class customTypeIsSet : public modelIteration {
public:
    bool act() override {
        mWidth->setCustomTypeString(mName);
        return true;
    }
    void check(attempt const& made) override {
        EXPECT_EQ(mWidth->customTypeString().string(), made.ended == ePassed ? mName : string());
    }
};

// behaviour: AF-10
TEST(faultsOfFields, settingACustomTypeThrowsBadAlloc) {
    everyAllocationFailing<customTypeIsSet>(eThrewBadAlloc);
}

class qualifiedNameIsAsked : public modelIteration {
public:
    bool act() override {
        mText = mWidth->qualifiedName();
        return true;
    }
    void check(attempt const& made) override { EXPECT_EQ(mText, made.ended == ePassed ? L"part.width" : L""); }

private:
    string mText;
};

// behaviour: AF-07
TEST(faultsOfFields, askingTheQualifiedNameThrowsBadAlloc) {
    everyAllocationFailing<qualifiedNameIsAsked>(eThrewBadAlloc);
}

class typeTextIsParsed : public iteration {
public:
    bool act() override { return fieldInfo::parseType(mText, mType, mLength); }
    std::string state() override { return std::to_string(mType); }
    void check(attempt const& made) override {
        if (made.ended == ePassed) {
            EXPECT_EQ(mLength, 80u);
        }
    }

private:
    string mText = L"String ( 80 )";
    zov::metamodel::eFieldType mType = zov::metamodel::ePtr;
    unsigned long mLength = 7;
};

// behaviour: AF-07
TEST(faultsOfFields, parsingATypeTextThrowsBadAlloc) {
    everyAllocationFailing<typeTextIsParsed>(eThrewBadAlloc);
}

// Ends by its own assertion when no allocation fails, so that the loop needs an action that takes that for success.
class fieldAliasIsAdded : public modelIteration {
public:
    bool act() override {
        try {
            mWidth->addAliasname(mName);
        } catch (bool) {
            return true;
        }
        return false;
    }
};

// behaviour: AF-11
TEST(faultsOfFields, addingAnAliasToAFieldThrowsBadAllocOrItsAssertion) {
    everyAllocationFailing<fieldAliasIsAdded>(eThrewBadAlloc);
}

// ---- classes

class baseIsAdded : public modelIteration {
public:
    bool act() override {
        mOther->addBaseClass(mPart);
        return true;
    }
    void check(attempt const& made) override { EXPECT_EQ(mOther->isDerivedFrom(mPart), made.ended == ePassed); }
};

// behaviour: AF-12
TEST(faultsOfClasses, addingABaseThrowsBadAlloc) {
    everyAllocationFailing<baseIsAdded>(eThrewBadAlloc);
}

class aliasIsAdded : public modelIteration {
public:
    bool act() override {
        mPart->addAliasname(mName);
        return true;
    }
    void check(attempt const& made) override {
        EXPECT_EQ(mPart->hasAliasname(scString::createFrom(mName)), made.ended == ePassed);
    }
};

// behaviour: AF-11
TEST(faultsOfClasses, addingAnAliasThrowsBadAlloc) {
    everyAllocationFailing<aliasIsAdded>(eThrewBadAlloc);
}

class firstAliasIsAdded : public modelIteration {
public:
    bool act() override {
        mOther->addAliasname(mName);
        return true;
    }
};

// behaviour: AF-11
TEST(faultsOfClasses, addingTheFirstAliasThrowsBadAlloc) {
    everyAllocationFailing<firstAliasIsAdded>(eThrewBadAlloc);
}

// A known alias moves to the end, or stays where it was.
class aliasIsAddedAgain : public modelIteration {
public:
    aliasIsAddedAgain() {
        mPart->addAliasname(L"piece");
        mPart->addAliasname(L"unit");
    }
    bool act() override {
        mPart->addAliasname(mKnown);
        return true;
    }

private:
    string mKnown = L"piece";
};

// behaviour: AF-11
TEST(faultsOfClasses, addingAKnownAliasAgainKeepsTheOrderOrMovesIt) {
    silentHost const host(false);
    for (failureKind const kind : failureKinds) {
        for (long passing = 0;; ++passing) {
            aliasIsAddedAgain world;
            auto const before = world.state();
            auto const made = attempted(passing, kind, [&] { return world.act(); });
            EXPECT_EQ(made.ended == ePassed, world.state() != before);
            if (made.ended != ePassed) {
                EXPECT_EQ(made.ended, eThrewBadAlloc);
            }
            if (HasFailure() || !made.allocationFailed) break;
        }
    }
}

class aliasesAreAsked : public modelIteration {
public:
    aliasesAreAsked() {
        mPart->addAliasname(L"a second name of this class");
        mPart->addAliasname(L"a third name of this class");
    }
    bool act() override {
        mPart->getAliasnames(mOut);
        return true;
    }
    std::string state() override { return modelIteration::state() + std::to_string(mOut.size()); }
    void check(attempt const& made) override { EXPECT_EQ(mOut.size(), made.ended == ePassed ? 4u : 1u); }

private:
    std::vector<string> mOut{L"what was there before"};
};

// behaviour: AF-07
TEST(faultsOfClasses, readingAliasesThrowsBadAllocAndAppendsNone) {
    everyAllocationFailing<aliasesAreAsked>(eThrewBadAlloc);
}

class classLabelIsSet : public modelIteration {
public:
    bool act() override {
        mPart->setLabel(mText);
        return true;
    }

private:
    string mText = string(std::wstring(200, L'l'));
};

// behaviour: AF-10
TEST(faultsOfClasses, settingALabelThrowsBadAlloc) {
    everyAllocationFailing<classLabelIsSet>(eThrewBadAlloc);
}

class idFieldsAreAsked : public modelIteration {
public:
    idFieldsAreAsked() { mMade->setSemantic(zov::metamodel::eSemPrimkey, genericSet(), L""); }
    bool act() override {
        mPart->getIdFieldInfos(mOut);
        return true;
    }
    std::string state() override { return modelIteration::state() + std::to_string(mOut.size()); }
    void check(attempt const& made) override { EXPECT_EQ(mOut.size(), made.ended == ePassed ? 3u : 1u); }

private:
    std::vector<refPtr<fieldInfo>> mOut{refPtr<fieldInfo>()};
};

// behaviour: AF-07
TEST(faultsOfClasses, readingTheIdentifyingFieldsThrowsBadAllocAndAppendsNone) {
    everyAllocationFailing<idFieldsAreAsked>(eThrewBadAlloc);
}

class idIsAsked : public modelIteration {
public:
    bool act() override {
        mId = mPart->idInfo();
        return static_cast<bool>(mId);
    }
    void check(attempt const& made) override {
        if (made.ended != ePassed) {
            EXPECT_FALSE(mId);
        }
        auto const again = mPart->idInfo();
        EXPECT_EQ(again->countFields(), 1u);
        if (mId) {
            EXPECT_EQ(again, mId);
        }
    }

private:
    refPtr<idInfo> mId;
};

// behaviour: AF-13
TEST(faultsOfClasses, askingTheIdSetThrowsBadAllocAndNextTimeItIsThere) {
    everyAllocationFailing<idIsAsked>(eThrewBadAlloc);
}

// behaviour: AF-13
TEST(faultsOfClasses, anIdSetThatIsThereNeedsNoMemory) {
    silentHost const host(false);
    idIsAsked world;
    ASSERT_TRUE(world.act());
    EXPECT_FALSE(attempted(0, eAllAllocations, [&] { return world.act(); }).allocationFailed);
}

// ---- semantics: setSemantic never throws; it rolls back

class semanticIsSet : public modelIteration {
public:
    semanticIsSet(zov::metamodel::eFieldSemantics semantic, string name) : mSemantic(semantic), mKind(std::move(name)) {
        mAttribs.setValue(L"enumItems", std::vector<enumItem>{{zov::genericValue(1), L"first"}}, false);
        mAttribs.setValue(L"note", string(L"an attribute of the semantic"), false);
    }
    bool act() override {
        target()->setSemantic(mSemantic, mAttribs, mKind);
        return true;
    }
    refPtr<fieldInfo> const& target() const { return mSemantic == zov::metamodel::eSemEnum ? mKey : mMade; }
    bool isSet() const { return target()->semantic() == mSemantic; }

private:
    zov::metamodel::eFieldSemantics mSemantic;
    genericSet mAttribs;
    string mKind;
};

void setSemanticWhileMemoryFails(zov::metamodel::eFieldSemantics semantic, string const& customText) {
    for (failureKind const kind : failureKinds) {
        for (bool const logging : {false, true}) {
            silentHost const host(logging);
            std::size_t rolledBack = 0;
            for (long passing = 0;; ++passing) {
                SCOPED_TRACE("allocation " + std::to_string(passing));
                semanticIsSet world(semantic, customText.empty() ? customText : freshName(customText.c_str()));
                auto const before = world.state();
                auto const made = attempted(passing, kind, [&] { return world.act(); });
                EXPECT_EQ(made.ended, ePassed);
                if (!world.isSet()) {
                    EXPECT_TRUE(made.allocationFailed);
                    EXPECT_EQ(world.state(), before);
                    ++rolledBack;
                }
                if (testing::Test::HasFailure() || !made.allocationFailed) break;
            }
            EXPECT_TRUE(rolledBack > 0 || kind == eCellBlocks) << "nothing failed, so nothing was tested";
        }
    }
}

// behaviour: AF-14
TEST(faultsOfSemantics, aPrimaryKeyIsRolledBackWithItsFlags) {
    setSemanticWhileMemoryFails(zov::metamodel::eSemPrimkey, L"");
}

// behaviour: AF-14
TEST(faultsOfSemantics, aDateIsRolledBackWithItsType) {
    setSemanticWhileMemoryFails(zov::metamodel::eSemDate, L"");
}

// behaviour: AF-14
TEST(faultsOfSemantics, aCustomSemanticIsRolledBack) {
    setSemanticWhileMemoryFails(zov::metamodel::eSemCustom, L"kind");
}

// behaviour: AF-14
TEST(faultsOfSemantics, anEnumerationIsRolledBackToThePrimaryKeyThatItWas) {
    setSemanticWhileMemoryFails(zov::metamodel::eSemEnum, L"");
}

// ---- walks

// The visits are plain functions over counters, so that what allocates is the library.
template <class Walk>
void walkWhileMemoryFails(Walk const& walk) {
    silentHost const host(false);
    for (failureKind const kind : failureKinds) {
        for (long passing = 0;; ++passing) {
            auto const made = attempted(passing, kind, walk);
            if (made.ended != ePassed) {
                EXPECT_EQ(made.ended, eThrewBadAlloc);
            }
            if (testing::Test::HasFailure() || !made.allocationFailed) break;
        }
    }
}

class walkedModel : public modelIteration {
public:
    refPtr<modelInfo> const& model() const { return mModel; }
    refPtr<classInfo> const& part() const { return mPart; }
    refPtr<fieldInfo> const& width() const { return mWidth; }
    bool act() override { return true; }
};

// behaviour: AF-07
TEST(faultsOfWalks, walksPassOrThrowBadAlloc) {
    walkedModel const world;
    auto const id = world.part()->idInfo();
    walkWhileMemoryFails([&] {
        return world.model()->forEachClassInfo([](classInfo::entry const& entry) { return !!entry.second; }, true);
    });
    walkWhileMemoryFails([&] {
        return world.part()->forEachBaseClass([](classInfo::entry const& entry) { return !!entry.second; }, true);
    });
    walkWhileMemoryFails([&] {
        return world.part()->forEachDerivedClass([](classInfo::entry const& entry) { return !!entry.second; }, true);
    });
    walkWhileMemoryFails(
        [&] { return world.part()->forEachFieldInfo([](refPtr<fieldInfo> field) { return !!field; }, true); });
    walkWhileMemoryFails([&] { return id->forEachFieldInfo([](refPtr<fieldInfo> field) { return !!field; }, true); });
    walkWhileMemoryFails([&] {
        return world.model()->forEachAddProp([](scString const& key, auto const&) { return key != scString(); }, true);
    });
}

// behaviour: AF-15
TEST(faultsOfWalks, walkingFieldsAndReadingNamesAndTypesAllocatesNothing) {
    walkedModel const world;
    std::size_t seen = 0;
    std::function<bool(refPtr<fieldInfo>)> const visit = [&seen](refPtr<fieldInfo> field) {
        if (field->scName() != scString() && field->type() != 0) ++seen;
        return true;
    };
    auto const before = zov::tests::allocationsMade;
    world.part()->forEachFieldInfo(visit, false);
    EXPECT_EQ(zov::tests::allocationsMade, before);
    EXPECT_EQ(seen, 4u);
}

// behaviour: AF-15
TEST(faultsOfWalks, walkingClassesAndBasesAllocatesNothing) {
    walkedModel const world;
    std::size_t seen = 0;
    std::function<bool(classInfo::entry const&)> const visit = [&seen](classInfo::entry const& entry) {
        if (entry.second->countFields() < 100) ++seen;
        return true;
    };
    auto const before = zov::tests::allocationsMade;
    world.model()->forEachClassInfo(visit, false);
    world.part()->forEachBaseClass(visit, false);
    EXPECT_EQ(zov::tests::allocationsMade, before);
    EXPECT_EQ(seen, 4u);
}

// ---- lookups

// Allocations that the action makes on this thread.
template <class Action>
std::size_t allocationsOf(Action const& action) {
    auto const before = zov::tests::allocationsMade;
    action();
    return zov::tests::allocationsMade - before;
}

// The counter counts what the libraries allocate, and not only what the test does: else nothing here means anything.
// behaviour: AF-16
TEST(faultsOfLookups, theCounterSeesTheLibrary) {
    string const name = freshName(L"Counted");
    EXPECT_GT(allocationsOf([&] { scString::createFrom(name); }), 0u);
}

// Found and missing names, in a model that ignores letter case and in one that does not.
void lookupsAllocateNothing(bool caseSensitive) {
    auto const model = modelInfo::createModelInfo(caseSensitive);
    auto const base = model->createClassInfo(L"an item of the workshop");
    base->createFieldInfo(L"the number of the item", zov::metamodel::eInt, genericSet(), L"");
    auto const part = model->createClassInfo(L"a part of the workshop");
    part->createFieldInfo(L"the width of the part", zov::metamodel::eDouble, genericSet(), L"");
    part->addBaseClass(base);
    part->addAliasname(L"another name of the part");

    string const partName = caseSensitive ? L"a part of the workshop" : L"A Part OF the Workshop";
    string const widthName = caseSensitive ? L"the width of the part" : L"The WIDTH of the part";
    string const numberName = L"the number of the item";
    string const alias = L"another name of the part";
    string const qualified = partName + L"." + widthName;
    string const unknown = freshName(L"Unknown");
    string const long1 = string(std::wstring(5000, L'\u00c9'));
    string const qualifiedUnknown = unknown + L"." + unknown;
    string const empty;

    bool found = true;
    bool missed = true;
    EXPECT_EQ(allocationsOf([&] {
                  found = found && model->classInfo(partName, false) == part;
                  found = found && model->classInfo(alias, true) == part;
                  found = found && model->fieldInfo(qualified, false);
                  found = found && model->fieldInfo(partName, widthName, false);
                  found = found && model->fieldInfo(alias, numberName, true);
                  found = found && part->fieldInfo(widthName, false, false);
                  found = found && part->fieldInfo(numberName, true, true);
              }),
              0u);
    EXPECT_TRUE(found);
    EXPECT_EQ(allocationsOf([&] {
                  missed = missed && !model->classInfo(unknown, true) && !model->classInfo(long1, true);
                  missed = missed && !model->classInfo(empty, true);
                  missed = missed && !model->fieldInfo(qualifiedUnknown, true) && !model->fieldInfo(unknown, true);
                  missed = missed && !model->fieldInfo(partName, unknown, true);
                  missed = missed && !part->fieldInfo(unknown, true, true) && !part->fieldInfo(long1, true, true);
                  missed = missed && !part->fieldInfo(numberName, false, false);
              }),
              0u);
    EXPECT_TRUE(missed);
    EXPECT_FALSE(scString::find(unknown));
    EXPECT_FALSE(scString::find(unknown.lower()));
    model->tearDown();
}

// behaviour: AF-16
TEST(faultsOfLookups, lookupsWhateverTheCaseAllocateNothing) {
    lookupsAllocateNothing(false);
}

// behaviour: AF-16
TEST(faultsOfLookups, lookupsByExactCaseAllocateNothing) {
    lookupsAllocateNothing(true);
}

// behaviour: AF-16
TEST(faultsOfLookups, readingSingleFactsAllocatesNothing) {
    walkedModel const world;
    auto const number = world.part()->fieldInfo(L"number", false, false);
    auto const doubleText = world.width()->typeString();
    EXPECT_EQ(allocationsOf([&] {
                  auto const owner = world.width()->classInfo();
                  auto const base = number->baseField();
                  auto const fields = world.part()->countFields() + world.model()->countClasses();
                  auto const derived = world.part()->isDerivedFrom(base->classInfo());
                  auto const text = world.width()->typeString();
                  EXPECT_TRUE(owner && fields && derived && text == doubleText);
              }),
              0u);
}

std::size_t residentPages() {
    std::ifstream file("/proc/self/statm");
    std::size_t all = 0;
    std::size_t resident = 0;
    file >> all >> resident;
    return resident;
}

// Writes `number` in front of the fixed rest of the name, without allocating.
void renumber(string& name, unsigned long number) {
    for (std::size_t digit = 0; digit < 8; ++digit, number /= 10)
        name[digit] = static_cast<wchar_t>(L'0' + number % 10);
}

// behaviour: AF-17
TEST(faultsOfLookups, millionsOfUnknownNamesLeaveMemoryAsItWas) {
    walkedModel const world;
    string name = L"00000000Unknown";
    string qualified = L"00000000Unknown.width";
    world.model()->classInfo(name, true);
    auto const pages = residentPages();
    bool missed = true;
    auto const made = allocationsOf([&] {
        for (unsigned long asked = 0; asked < ZOV_UNKNOWN_NAMES; ++asked) {
            renumber(name, asked);
            renumber(qualified, asked);
            missed = missed && !(asked % 2 ? world.model()->fieldInfo(qualified, false) ||
                                                 world.part()->fieldInfo(name, true, true)
                                           : static_cast<bool>(world.model()->classInfo(name, true)));
        }
    });
    EXPECT_TRUE(missed);
    EXPECT_EQ(made, 0u);
    auto const grown = residentPages() - std::min(residentPages(), pages);
    EXPECT_LT(grown * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)), ZOV_RESIDENT_SLACK);
    EXPECT_FALSE(scString::find(name));
}

// ---- letting go

// behaviour: AF-18
TEST(faultsOfTearDown, tearDownAllocatesNothing) {
    walkedModel const world;
    EXPECT_EQ(allocationsOf([&] { world.model()->tearDown(); }), 0u);
    EXPECT_EQ(allocationsOf([&] { world.model()->tearDown(); }), 0u);
}

// behaviour: AF-18
TEST(faultsOfTearDown, tearDownOfAClassOfNoModelAllocatesNothing) {
    auto const part = classInfo::createClassInfo(L"Part");
    auto const base = classInfo::createClassInfo(L"Item");
    auto const width = part->createFieldInfo(L"width", zov::metamodel::eInt, genericSet(), L"");
    part->addBaseClass(base);
    EXPECT_EQ(allocationsOf([&] {
                  part->tearDown();
                  part->tearDown();
              }),
              0u);
    EXPECT_EQ(part->countFields(), 0u);
    EXPECT_FALSE(part->isDerivedFrom(base));
    EXPECT_FALSE(width->classInfo());
}

// behaviour: AF-19
TEST(faultsOfTearDown, tearDownWorksWhileEveryAllocationFails) {
    for (bool const logging : {false, true}) {
        silentHost const host(logging);
        walkedModel const world;
        auto const part = world.part();
        auto const width = world.width();
        EXPECT_EQ(attempted(0, eAllAllocations,
                            [&] {
                                world.model()->tearDown();
                                return true;
                            })
                      .ended,
                  ePassed);
        EXPECT_EQ(world.model()->countClasses(), 0u);
        EXPECT_EQ(part->countFields(), 0u);
        EXPECT_FALSE(width->classInfo());
        EXPECT_EQ(width->label(), L"Width over everything");
    }
}

// behaviour: AF-19
TEST(faultsOfTearDown, aWholeModelEndsWhileEveryAllocationFails) {
    for (bool const logging : {false, true}) {
        silentHost const host(logging);
        auto model = modelInfo::createModelInfo(false);
        for (int i = 0; i < 50; ++i) {
            model->createClassInfo(freshName(L"Ending"), [](refPtr<classInfo> added) {
                added->createFieldInfo(L"width", zov::metamodel::eDouble, genericSet(), L"");
                return true;
            });
        }
        EXPECT_EQ(attempted(0, eAllAllocations,
                            [&] {
                                model->tearDown();
                                model = nullptr;
                                return true;
                            })
                      .ended,
                  ePassed);
    }
}

// behaviour: AF-19
TEST(faultsOfTearDown, lookupsAndWalksWorkWhileEveryAllocationFails) {
    walkedModel const world;
    string const name = L"A name that is not there";
    string const qualified = L"Part.width";
    std::function<bool(refPtr<fieldInfo>)> const visit = [](refPtr<fieldInfo> field) { return !!field; };
    EXPECT_EQ(attempted(0, eAllAllocations,
                        [&] {
                            return world.model()->fieldInfo(qualified, false) &&
                                   !world.model()->classInfo(name, true) && world.part()->forEachFieldInfo(visit, true);
                        })
                  .ended,
              ePassed);
}

} // namespace
