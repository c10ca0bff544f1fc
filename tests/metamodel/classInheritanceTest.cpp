// Base and derived classes.
#include "zovMdlClassInfo.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "modelFixture.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::ownClass;
using tests::ownModel;
using zov::tests::eventLog;

using classes = std::vector<refPtr<classInfo>>;

classes basesOf(refPtr<classInfo> const& derived) {
    classes found;
    EXPECT_TRUE(derived->forEachBaseClass(
        [&](classInfo::entry const& entry) {
            EXPECT_EQ(entry.first, entry.second->scName());
            found.push_back(entry.second);
            return true;
        },
        true));
    return found;
}

int countDerived(refPtr<classInfo> const& base) {
    int visits = 0;
    EXPECT_TRUE(base->forEachDerivedClass([&](classInfo::entry const&) { return ++visits > 0; }, true));
    return visits;
}

// behaviour: CI-01
TEST(classInheritance, recordsADirectBase) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    EXPECT_EQ(basesOf(part), classes{base.pointer()});
    EXPECT_EQ(basesOf(base), classes());
}

// behaviour: CI-01
TEST(classInheritance, ignoresAnEmptyBase) {
    ownClass const part(L"part");
    eventLog log;
    part->addBaseClass(nullptr);
    part->addBaseClass(refPtr<classInfo>());
    EXPECT_EQ(basesOf(part), classes());
    EXPECT_EQ(countDerived(part), 0);
    EXPECT_EQ(log.take(), tests::events());
}

// behaviour: CI-02
TEST(classInheritance, recordsABaseOnce) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    part->addBaseClass(base);
    EXPECT_EQ(basesOf(part), classes{base.pointer()});
    EXPECT_EQ(base->refCount(), 2u);
}

// behaviour: CI-02
TEST(classInheritance, keepsTheFirstOfTwoBasesOfOneName) {
    ownClass const first(L"base");
    ownClass const second(L"BASE");
    ownClass const part(L"part");
    part->addBaseClass(first);
    part->addBaseClass(second);
    EXPECT_EQ(basesOf(part), classes{first.pointer()});
    EXPECT_TRUE(part->isDerivedFrom(first.pointer()));
    EXPECT_FALSE(part->isDerivedFrom(second.pointer()));
    EXPECT_EQ(second->refCount(), 1u);
}

// behaviour: CI-03
TEST(classInheritance, walksBasesInTheOrderOfNameHandles) {
    ownModel const model;
    auto const part = model->createClassInfo(L"part");
    for (wchar_t const* name : {L"zeta", L"alpha", L"mu", L"beta", L"omega"})
        part->addBaseClass(model->createClassInfo(name));
    auto const found = basesOf(part);
    ASSERT_EQ(found.size(), 5u);
    for (std::size_t at = 1; at < found.size(); ++at)
        EXPECT_LT(found[at - 1]->scName(), found[at]->scName());
}

// behaviour: CI-03
TEST(classInheritance, endsAWalkAtFalseOnlyWhenAskedTo) {
    ownModel const model;
    auto const part = model->createClassInfo(L"part");
    int visits = 0;
    auto const refuse = [&](classInfo::entry const&) { return ++visits < 0; };
    EXPECT_TRUE(part->forEachBaseClass(refuse, true));
    EXPECT_TRUE(part->forEachDerivedClass(refuse, true));
    EXPECT_EQ(visits, 0);
    for (wchar_t const* name : {L"a", L"b", L"c"})
        part->addBaseClass(model->createClassInfo(name));
    EXPECT_FALSE(part->forEachBaseClass(refuse, true));
    EXPECT_EQ(visits, 1);
    EXPECT_TRUE(part->forEachBaseClass(refuse, false));
    EXPECT_EQ(visits, 4);
}

// behaviour: CI-03
TEST(classInheritance, callsAnEmptyFunctionOnlyWhenThereIsABase) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    std::function<bool(classInfo::entry const&)> const empty;
    EXPECT_TRUE(part->forEachBaseClass(empty, true));
    EXPECT_TRUE(part->forEachDerivedClass(empty, false));
    part->addBaseClass(base);
    EXPECT_THROW(part->forEachBaseClass(empty, true), std::bad_function_call);
    EXPECT_THROW(part->forEachBaseClass(empty, false), std::bad_function_call);
    EXPECT_TRUE(base->forEachDerivedClass(empty, true));
}

// behaviour: CI-03
TEST(classInheritance, visitsDirectBasesOnly) {
    ownClass const top(L"top");
    ownClass const middle(L"middle");
    ownClass const part(L"part");
    middle->addBaseClass(top);
    part->addBaseClass(middle);
    EXPECT_EQ(basesOf(part), classes{middle.pointer()});
}

// behaviour: CI-04
TEST(classInheritance, isDerivedFromDirectAndIndirectBases) {
    ownClass const top(L"top");
    ownClass const middle(L"middle");
    ownClass const part(L"part");
    ownClass const other(L"other");
    middle->addBaseClass(top);
    part->addBaseClass(middle);
    EXPECT_TRUE(part->isDerivedFrom(middle.pointer()));
    EXPECT_TRUE(part->isDerivedFrom(top.pointer()));
    EXPECT_TRUE(middle->isDerivedFrom(top.pointer()));
    EXPECT_FALSE(top->isDerivedFrom(part.pointer()));
    EXPECT_FALSE(middle->isDerivedFrom(part.pointer()));
    EXPECT_FALSE(part->isDerivedFrom(other.pointer()));
    EXPECT_FALSE(part->isDerivedFrom(const_refPtr<classInfo>()));
    EXPECT_FALSE(part->isDerivedFrom(nullptr));
}

// behaviour: CI-04
TEST(classInheritance, comparesObjectsAndNotNames) {
    ownClass const base(L"base");
    ownClass const namesake(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    EXPECT_FALSE(part->isDerivedFrom(namesake.pointer()));
    EXPECT_TRUE(part->isDerivedFrom(base.pointer()));
}

// behaviour: CI-05
TEST(classInheritance, leavesTheDerivedTableEmpty) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    part->addBaseClass(base);
    EXPECT_EQ(countDerived(base), 0);
    EXPECT_FALSE(base->isBaseOf(part.pointer()));
    EXPECT_FALSE(base->isBaseOf(const_refPtr<classInfo>()));
    EXPECT_TRUE(part->isDerivedFrom(base.pointer()));
}

// behaviour: CI-05
TEST(classInheritance, takesVariablesConstantsAndTemporaries) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    const_refPtr<classInfo> other = part.pointer();
    const_refPtr<classInfo> const constant = part.pointer();
    refPtr<classInfo> plain = part.pointer();
    EXPECT_FALSE(base->isBaseOf(other));
    EXPECT_FALSE(base->isBaseOf(constant));
    EXPECT_FALSE(base->isBaseOf(plain));
    EXPECT_FALSE(base->isBaseOf(const_refPtr<classInfo>(part.pointer())));
    EXPECT_TRUE(plain->isDerivedFrom(base.pointer()));
    EXPECT_TRUE(constant->isDerivedFrom(const_refPtr<classInfo>(base.pointer())));
}

// behaviour: CI-06
TEST(classInheritance, isNotDerivedFromItself) {
    ownClass const part(L"part");
    EXPECT_FALSE(part->isDerivedFrom(part.pointer()));
}

// behaviour: CI-06
TEST(classInheritance, isDerivedFromItselfWhenItIsItsOwnBase) {
    ownClass const part(L"part");
    part->addBaseClass(part);
    EXPECT_TRUE(part->isDerivedFrom(part.pointer()));
    EXPECT_EQ(basesOf(part), classes{part.pointer()});
    EXPECT_FALSE(part->isBaseOf(part.pointer()));
    EXPECT_EQ(countDerived(part), 0);
}

// behaviour: CI-07
TEST(classInheritance, doesNotVisitBasesThatAreAddedDuringTheWalk) {
    ownModel const model;
    auto const part = model->createClassInfo(L"part");
    part->addBaseClass(model->createClassInfo(L"a"));
    part->addBaseClass(model->createClassInfo(L"b"));
    int visits = 0;
    part->forEachBaseClass(
        [&](classInfo::entry const& entry) {
            ++visits;
            part->addBaseClass(model->createClassInfo(entry.first.string() + L"x"));
            return true;
        },
        true);
    EXPECT_EQ(visits, 2);
    EXPECT_EQ(basesOf(part).size(), 4u);
}

// behaviour: CI-08
TEST(classInheritance, searchesADiamond) {
    ownClass const top(L"top");
    ownClass const left(L"left");
    ownClass const right(L"right");
    ownClass const part(L"part");
    left->addBaseClass(top);
    right->addBaseClass(top);
    part->addBaseClass(left);
    part->addBaseClass(right);
    auto const width = addField(top, L"width");
    auto const height = addField(right, L"height");
    EXPECT_TRUE(part->isDerivedFrom(top.pointer()));
    EXPECT_EQ(part->fieldInfo(L"width", true, true), width);
    EXPECT_EQ(part->fieldInfo(L"width", true, false), nullptr);
    EXPECT_EQ(part->fieldInfo(L"height", true, false), height);
    EXPECT_EQ(part->createFieldInfo(top.pointer(), L"width")->baseField(), width);
}

// behaviour: CI-08
TEST(classInheritance, searchesALatticeOfDiamonds) {
    ownModel const model;
    constexpr int levels = 8;
    auto const top = model->createClassInfo(L"top");
    auto const width = addField(top, L"width");
    classes below{top};
    for (int level = 0; level < levels; ++level) {
        classes next;
        for (wchar_t const* side : {L"left", L"right"}) {
            next.push_back(model->createClassInfo(string::sformat(L"%s %d", side, level)));
            for (auto const& base : below)
                next.back()->addBaseClass(base);
        }
        below = next;
    }
    ownClass const stranger(L"stranger");
    for (auto const& bottom : below) {
        EXPECT_TRUE(bottom->isDerivedFrom(top));
        EXPECT_FALSE(bottom->isDerivedFrom(stranger.pointer()));
        EXPECT_EQ(bottom->fieldInfo(L"width", true, true), width);
    }
}

// behaviour: CI-10
TEST(classInheritance, keepsABaseAliveAsLongAsAClassNamesIt) {
    ownClass const part(L"part");
    classInfo* watched = nullptr;
    {
        auto const base = classInfo::createClassInfo(L"base");
        base->setLabel(L"Still here");
        part->addBaseClass(base);
        watched = base.get();
        EXPECT_EQ(base->refCount(), 2u);
    }
    EXPECT_EQ(basesOf(part).front().get(), watched);
    EXPECT_EQ(basesOf(part).front()->label(), L"Still here");
}

} // namespace
} // namespace zov::metamodel
