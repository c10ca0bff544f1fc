// The tables of base and derived classes from within, with entries that hosts cannot make.
#include "zovMdlClassInfo.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "modelFixture.h"
#include "testAccess.h"

namespace zov::metamodel {
namespace {

using tests::ownClass;
using zov::tests::eventLog;

using classes = std::vector<refPtr<classInfo>>;

// Puts an entry into one of the class's tables.
void place(relatedClasses classData::*table, ownClass const& into, scString name, refPtr<classInfo> const& entry) {
    auto& data = testAccess::data(*into.pointer());
    (data.*table).add(heldMutex(data.mMutex), name, entry);
}

void placeDerived(ownClass const& base, ownClass const& derived) {
    place(&classData::mDerivedClasses, base, derived->scName(), derived.pointer());
}

classes derivedOf(ownClass const& base) {
    classes found;
    EXPECT_TRUE(base->forEachDerivedClass(
        [&](classInfo::entry const& entry) {
            found.push_back(entry.second);
            return true;
        },
        true));
    return found;
}

// behaviour: CI-11
TEST(inheritanceInner, knowsABaseByItsNameAlone) {
    ownClass const base(L"base");
    ownClass const namesake(L"BASE");
    ownClass const part(L"part");
    EXPECT_FALSE(testAccess::hasBaseClass(*part.pointer(), base));
    part->addBaseClass(base);
    EXPECT_TRUE(testAccess::hasBaseClass(*part.pointer(), base));
    EXPECT_TRUE(testAccess::hasBaseClass(*part.pointer(), namesake));
    EXPECT_FALSE(testAccess::hasBaseClass(*part.pointer(), part));
    EXPECT_FALSE(testAccess::hasBaseClass(*part.pointer(), nullptr));
    EXPECT_FALSE(testAccess::hasBaseClass(*base.pointer(), part));
}

// behaviour: CI-11
TEST(inheritanceInner, knowsADerivedClassByItsNameAlone) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    ownClass const namesake(L"Part");
    EXPECT_FALSE(testAccess::hasDerivedClass(*base.pointer(), part));
    placeDerived(base, part);
    EXPECT_TRUE(testAccess::hasDerivedClass(*base.pointer(), part));
    EXPECT_TRUE(testAccess::hasDerivedClass(*base.pointer(), namesake));
    EXPECT_FALSE(testAccess::hasDerivedClass(*base.pointer(), base));
    EXPECT_FALSE(testAccess::hasDerivedClass(*base.pointer(), nullptr));
}

// behaviour: CI-05
TEST(inheritanceInner, entersNoDerivedClassThatIsNotThere) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    testAccess::addDerivedClass(*base.pointer(), part);
    testAccess::addDerivedClass(*base.pointer(), nullptr);
    EXPECT_EQ(derivedOf(base), classes());
    part->addBaseClass(base);
    EXPECT_FALSE(testAccess::hasDerivedClass(*base.pointer(), part));
    EXPECT_EQ(part->refCount(), 1u);
}

// behaviour: CI-09
TEST(inheritanceInner, keepsTheDerivedClassThatIsThere) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    ownClass const namesake(L"part");
    placeDerived(base, part);
    testAccess::addDerivedClass(*base.pointer(), part);
    EXPECT_EQ(derivedOf(base), classes{part.pointer()});
    EXPECT_EQ(part->refCount(), 2u);
    namesake->addBaseClass(base);
    EXPECT_EQ(derivedOf(base), classes{part.pointer()});
    EXPECT_EQ(namesake->refCount(), 1u);
}

// behaviour: CI-09
TEST(inheritanceInner, isBaseOfWhatItsTableHolds) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    ownClass const namesake(L"part");
    ownClass const below(L"below");
    placeDerived(base, part);
    placeDerived(part, below);
    EXPECT_TRUE(base->isBaseOf(part.pointer()));
    EXPECT_FALSE(base->isBaseOf(namesake.pointer()));
    EXPECT_FALSE(base->isBaseOf(below.pointer()));
    EXPECT_FALSE(part->isBaseOf(base.pointer()));
    EXPECT_FALSE(base->isBaseOf(const_refPtr<classInfo>()));
    const_refPtr<classInfo> variable = part.pointer();
    EXPECT_TRUE(base->isBaseOf(variable));
}

// behaviour: CI-09
TEST(inheritanceInner, walksItsDerivedClassesLikeItsBases) {
    ownClass const base(L"base");
    ownClass const one(L"one");
    ownClass const two(L"two");
    ownClass const three(L"three");
    for (auto const* const derived : {&one, &two, &three})
        placeDerived(base, *derived);
    auto const found = derivedOf(base);
    ASSERT_EQ(found.size(), 3u);
    for (std::size_t at = 1; at < found.size(); ++at)
        EXPECT_LT(found[at - 1]->scName(), found[at]->scName());
    int visits = 0;
    auto const refuse = [&](classInfo::entry const&) { return ++visits < 0; };
    EXPECT_FALSE(base->forEachDerivedClass(refuse, true));
    EXPECT_EQ(visits, 1);
    EXPECT_TRUE(base->forEachDerivedClass(refuse, false));
    EXPECT_EQ(visits, 4);
    EXPECT_THROW(base->forEachDerivedClass({}, false), std::bad_function_call);
}

// behaviour: CI-12
TEST(inheritanceInner, isBaseOfNothingThroughAnEmptyEntry) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    place(&classData::mDerivedClasses, base, scString::createFrom(L"empty"), nullptr);
    EXPECT_FALSE(base->isBaseOf(part.pointer()));
    EXPECT_FALSE(base->isBaseOf(const_refPtr<classInfo>()));
    placeDerived(base, part);
    EXPECT_TRUE(base->isBaseOf(part.pointer()));
}

// behaviour: CI-12
TEST(inheritanceInner, isDerivedFromNothingThroughAnEmptyEntry) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    ownClass const other(L"other");
    place(&classData::mBaseClasses, part, scString::createFrom(L"empty"), nullptr);
    part->addBaseClass(base);
    eventLog log;
    bool found = false;
    EXPECT_NO_THROW(found = part->isDerivedFrom(base.pointer()));
    EXPECT_TRUE(found);
    for (auto const& wanted : {const_refPtr<classInfo>(), const_refPtr<classInfo>(other.pointer())}) {
        bool derived = true;
        EXPECT_NO_THROW(derived = part->isDerivedFrom(wanted));
        EXPECT_FALSE(derived);
    }
    EXPECT_EQ(log.take(), tests::events());
}

// behaviour: CC-11
TEST(inheritanceInner, dropsBothTablesWhenReleased) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    ownClass const below(L"below");
    part->addBaseClass(base);
    placeDerived(part, below);
    testAccess::releaseInfo(*part.pointer());
    EXPECT_FALSE(part->isDerivedFrom(base.pointer()));
    EXPECT_FALSE(part->isBaseOf(below.pointer()));
    EXPECT_EQ(base->refCount(), 1u);
    EXPECT_EQ(below->refCount(), 1u);
}

// behaviour: TD-08
TEST(inheritanceInner, dropsBothTablesWhenTornDown) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    placeDerived(base, part);
    EXPECT_EQ(part->refCount(), 2u);
    base->tearDown();
    EXPECT_EQ(part->refCount(), 1u);
    EXPECT_FALSE(base->isBaseOf(part.pointer()));
    part->tearDown();
    EXPECT_EQ(base->refCount(), 1u);
}

} // namespace
} // namespace zov::metamodel
