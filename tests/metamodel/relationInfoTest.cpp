// What a relation says of itself: its names, kind and classes, its pairs of fields, the field of its own, its life
// lines.
#include "zovMdlRelationInfo.h"

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include "graphFixture.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::events;
using tests::fieldNames;
using tests::fieldPairs;
using tests::names;
using tests::namesOf;
using tests::orders;
using tests::ownClass;
using tests::pairsOf;
using tests::relationAssertion;
using tests::targetOf;
using zov::tests::eventLog;
using zov::tests::throwsFalse;

constexpr char const* differentParent =
    "mRelations[0].first->classInfo() && mRelations[0].first->classInfo()==pParentColumn->classInfo()";
constexpr char const* differentDependent =
    "mRelations[0].second->classInfo() && mRelations[0].second->classInfo()==pDepColumn->classInfo()";
constexpr char const* columnWithoutClass = "pParentColumn->classInfo()&&pDepColumn->classInfo()";

// ---- what it says

// behaviour: RI-01
TEST(relationInfo, tellsKindNamesFieldsAndClasses) {
    orders const world;
    auto const relation = world.toField(L"bought by", L"buys", eBiAgg);
    EXPECT_EQ(relation->type(), eBiAgg);
    EXPECT_EQ(relation->scName().string(), L"bought by");
    EXPECT_EQ(relation->scReverseName().string(), L"buys");
    EXPECT_EQ(relation->firstFromFieldInfo(), world.from);
    EXPECT_EQ(relation->fromClassInfo(), world.order);
    EXPECT_EQ(relation->toClassInfo(), world.customer);
    EXPECT_EQ(pairsOf(relation), (fieldPairs{{world.from, world.id}}));
}

// behaviour: RI-01
TEST(relationInfo, keepsTheKindItWasMadeWith) {
    orders const world;
    for (auto const type : {eRef, eAgg, eRevAgg, eBiAgg})
        EXPECT_EQ(world.toClass(L"", L"", type)->type(), type);
}

// behaviour: RI-01
TEST(relationInfo, keepsTheLetterCaseOfItsNames) {
    orders const world;
    EXPECT_EQ(namesOf(world.toClass(L"Bought BY", L"BUYS \u00C4")), L"Bought BY to BUYS \u00C4");
}

// behaviour: RI-17
TEST(relationInfo, handsOutReadOnlyClassesAndFields) {
    static_assert(std::is_same_v<decltype(std::declval<relationInfo&>().fromClassInfo()), const_refPtr<classInfo>>);
    static_assert(std::is_same_v<decltype(std::declval<relationInfo&>().toClassInfo()), const_refPtr<classInfo>>);
    static_assert(
        std::is_same_v<decltype(std::declval<relationInfo&>().firstFromFieldInfo()), const_refPtr<fieldInfo>>);
    orders const world;
    const_refPtr<relationInfo> const relation = world.toField();
    const_refPtr<fieldInfo> const from = world.from;
    const_refPtr<fieldInfo> const id = world.id;
    EXPECT_EQ(relation->toFieldInfo(from), id);
    EXPECT_EQ(relation->fromFieldInfo(id), from);
    EXPECT_EQ(relation->type(), eRef);
}

// ---- the field of its own

// behaviour: RI-03
TEST(relationInfo, toAClassPairsItsFieldWithAPointerFieldOfTheTarget) {
    orders const world;
    auto const relation = world.toClass();
    auto const pairs = pairsOf(relation);
    ASSERT_EQ(pairs.size(), 1u);
    EXPECT_EQ(pairs[0].first, world.from);
    auto const& target = pairs[0].second;
    EXPECT_EQ(target->scName().string(), L"PTR");
    EXPECT_EQ(target->type(), ePtr);
    EXPECT_EQ(target->typeString().string(), L"ptr");
    EXPECT_EQ(target->customTypeString().string(), L"");
    EXPECT_EQ(target->typeAttribs().size(), 0u);
    EXPECT_EQ(target->semantic(), eSemNone);
    EXPECT_EQ(target->label(), L"");
    EXPECT_EQ(target->baseField(), nullptr);
    EXPECT_EQ(target->classInfo(), world.customer);
    EXPECT_EQ(relation->toClassInfo(), world.customer);
    EXPECT_EQ(relation->toFieldInfo(world.from), target);
    EXPECT_EQ(relation->fromFieldInfo(target), world.from);
}

// behaviour: RI-04
TEST(relationInfo, toAClassHasATargetFieldThatNoClassLists) {
    orders const world;
    auto const target = targetOf(world.toClass());
    EXPECT_EQ(target->qualifiedName(), L"customer.PTR");
    EXPECT_EQ(world.customer->countFields(), 2u);
    EXPECT_EQ(fieldNames(world.customer), (names{L"id", L"site"}));
    for (wchar_t const* name : {L"PTR", L"ptr"}) {
        EXPECT_EQ(world.customer->fieldInfo(name, true, true), nullptr);
        EXPECT_EQ(world.model->fieldInfo(L"Customer", name, true), nullptr);
    }
}

// behaviour: RI-04
TEST(relationInfo, toAClassHasATargetFieldForItselfAlone) {
    orders const world;
    auto const first = targetOf(world.toClass());
    auto const second = targetOf(world.toClass());
    EXPECT_NE(first, second);
    auto const own = addField(world.customer, L"ptr");
    EXPECT_NE(own, first);
    EXPECT_EQ(own->type(), eInt);
    EXPECT_EQ(targetOf(world.toClass())->type(), ePtr);
}

// behaviour: RI-03
TEST(relationInfo, toAClassNamesItsFieldInCapitalsWhateverTheCaseRule) {
    tests::ownModel const model(true);
    auto const part = model->createClassInfo(L"part");
    addField(part, L"Maker");
    auto const relation = part->createRelation(L"Maker", false, part, eRef, L"", L"");
    EXPECT_EQ(targetOf(relation)->scName().string(), L"PTR");
}

// ---- its pairs

// behaviour: RI-07, RI-09
TEST(relationInfo, findsTheFieldsOfAPairThatIsAdded) {
    orders const world;
    auto const relation = world.toField();
    EXPECT_EQ(relation->toFieldInfo(world.branch), nullptr);
    EXPECT_TRUE(relation->addFieldRelation(world.branch, world.site));
    EXPECT_EQ(relation->toFieldInfo(world.branch), world.site);
    EXPECT_EQ(relation->fromFieldInfo(world.site), world.branch);
    EXPECT_EQ(relation->toFieldInfo(world.from), world.id);
    EXPECT_EQ(relation->firstFromFieldInfo(), world.from);
    EXPECT_EQ(pairsOf(relation), (fieldPairs{{world.from, world.id}, {world.branch, world.site}}));
}

// behaviour: RI-07
TEST(relationInfo, takesAPairAgainThatItHas) {
    orders const world;
    auto const relation = world.toField();
    EXPECT_TRUE(relation->addFieldRelation(world.from, world.id));
    EXPECT_TRUE(relation->addFieldRelation(world.from, world.id));
    EXPECT_EQ(pairsOf(relation), fieldPairs(3, {world.from, world.id}));
}

// behaviour: RI-07
TEST(relationInfo, leavesTheFieldsOfAnAddedPairTheirMeaning) {
    orders const world;
    auto const relation = world.toField();
    world.branch->setSemantic(eSemLength, genericSet(), L"");
    world.site->setSemantic(eSemPrimkey, genericSet(), L"");
    EXPECT_TRUE(relation->addFieldRelation(world.branch, world.site));
    EXPECT_EQ(world.branch->semantic(), eSemLength);
    EXPECT_EQ(world.site->semantic(), eSemPrimkey);
}

// behaviour: RI-07
TEST(relationInfo, toAClassTakesPairsOfRealFields) {
    orders const world;
    auto const relation = world.toClass();
    EXPECT_TRUE(relation->addFieldRelation(world.branch, world.site));
    EXPECT_EQ(relation->toFieldInfo(world.branch), world.site);
    EXPECT_EQ(pairsOf(relation).size(), 2u);
}

// behaviour: RI-07
TEST(relationInfo, takesAColumnThatItsClassDoesNotList) {
    orders const world;
    auto const relation = world.toClass();
    auto const pointerField = targetOf(relation);
    EXPECT_TRUE(world.toField()->addFieldRelation(world.branch, pointerField));
}

// behaviour: RI-09
TEST(relationInfo, findsTheFirstOfSeveralPairsWithAField) {
    orders const world;
    auto const relation = world.toField();
    relation->addFieldRelation(world.from, world.site);
    relation->addFieldRelation(world.branch, world.id);
    EXPECT_EQ(relation->toFieldInfo(world.from), world.id);
    EXPECT_EQ(relation->fromFieldInfo(world.id), world.from);
    EXPECT_EQ(relation->toFieldInfo(world.branch), world.id);
    EXPECT_EQ(relation->fromFieldInfo(world.site), world.from);
}

// behaviour: RI-09
TEST(relationInfo, findsNothingForEmptyPointersAndOtherFields) {
    orders const world;
    for (auto const& relation : {world.toClass(), world.toField()}) {
        EXPECT_EQ(relation->fromFieldInfo(refPtr<fieldInfo>()), nullptr);
        EXPECT_EQ(relation->toFieldInfo(refPtr<fieldInfo>()), nullptr);
        EXPECT_EQ(relation->toFieldInfo(world.branch), nullptr);
        EXPECT_EQ(relation->fromFieldInfo(world.site), nullptr);
    }
    EXPECT_EQ(world.toField()->toFieldInfo(world.id), nullptr);
    EXPECT_EQ(world.toField()->fromFieldInfo(world.from), nullptr);
}

// behaviour: RI-09
TEST(relationInfo, findsFieldsByObjectNotByName) {
    orders const world;
    ownClass const twin(L"order");
    auto const sameName = addField(twin, L"customer");
    EXPECT_EQ(world.toField()->toFieldInfo(sameName), nullptr);
}

// behaviour: RI-08
TEST(relationInfo, refusesAParentColumnOfAnotherClass) {
    orders const world;
    auto const relation = world.toField();
    ownClass const twin(L"order");
    auto const stranger = addField(twin, L"branch");
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { relation->addFieldRelation(stranger, world.site); }));
    EXPECT_TRUE(throwsFalse([&] { relation->addFieldRelation(world.site, world.site); }));
    EXPECT_EQ(log.take(), events(2, relationAssertion(differentParent, 137)));
    EXPECT_EQ(pairsOf(relation).size(), 1u);
}

// behaviour: RI-08
TEST(relationInfo, refusesADependentColumnOfAnotherClass) {
    orders const world;
    ownClass const twin(L"customer");
    auto const stranger = addField(twin, L"site");
    for (auto const& relation : {world.toField(), world.toClass()}) {
        eventLog log;
        EXPECT_TRUE(throwsFalse([&] { relation->addFieldRelation(world.branch, stranger); }));
        EXPECT_TRUE(throwsFalse([&] { relation->addFieldRelation(world.branch, world.branch); }));
        EXPECT_EQ(log.take(), events(2, relationAssertion(differentDependent, 138)));
        EXPECT_EQ(pairsOf(relation).size(), 1u);
    }
}

// behaviour: RI-08
TEST(relationInfo, tellsOfTheParentColumnFirst) {
    orders const world;
    auto const relation = world.toField();
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { relation->addFieldRelation(world.site, world.branch); }));
    EXPECT_EQ(log.take(), events{relationAssertion(differentParent, 137)});
}

// behaviour: RI-08
TEST(relationInfo, refusesColumnsWithoutAClass) {
    orders const world;
    auto const relation = world.toField();
    auto const classless = [] {
        ownClass const gone(L"gone");
        return addField(gone, L"branch");
    }();
    ASSERT_EQ(classless->classInfo(), nullptr);
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { relation->addFieldRelation(classless, world.site); }));
    EXPECT_TRUE(throwsFalse([&] { relation->addFieldRelation(world.branch, classless); }));
    EXPECT_TRUE(throwsFalse([&] { relation->addFieldRelation(classless, classless); }));
    EXPECT_EQ(log.take(), events(3, relationAssertion(columnWithoutClass, 135)));
    EXPECT_EQ(pairsOf(relation).size(), 1u);
}

// behaviour: RI-08
TEST(relationInfo, refusesEmptyColumns) {
    orders const world;
    auto const relation = world.toField();
    eventLog log;
    EXPECT_TRUE(throwsFalse([&] { relation->addFieldRelation(nullptr, world.site); }));
    EXPECT_TRUE(throwsFalse([&] { relation->addFieldRelation(world.branch, nullptr); }));
    EXPECT_EQ(log.take(), events(2, tests::emptyRefPtr));
    EXPECT_EQ(pairsOf(relation).size(), 1u);
}

// behaviour: RI-08
TEST(relationInfo, refusesFurtherPairsOnceItsOwnFieldsHaveNoClass) {
    orders const world;
    ownClass const source(L"source");
    ownClass const target(L"target");
    addField(source, L"from");
    auto const relation = source->createRelation(L"from", false, addField(target, L"to"), eRef, L"", L"");
    eventLog log;
    target->tearDown();
    auto const own = addField(source, L"another");
    log.take();
    EXPECT_TRUE(throwsFalse([&] { relation->addFieldRelation(own, world.site); }));
    EXPECT_EQ(log.take(), events{relationAssertion(differentDependent, 138)});
    source->tearDown();
    log.take();
    EXPECT_TRUE(throwsFalse([&] { relation->addFieldRelation(world.branch, world.site); }));
    EXPECT_EQ(log.take(), events{relationAssertion(differentParent, 137)});
    EXPECT_EQ(pairsOf(relation).size(), 1u);
}

// behaviour: RI-10
TEST(relationInfo, walksItsPairsInOrderAndStopsOnFalseOnlyWhenAsked) {
    orders const world;
    auto const relation = world.toField();
    relation->addFieldRelation(world.branch, world.site);
    int visits = 0;
    auto const refuse = [&](refPtr<fieldInfo> const& from, refPtr<fieldInfo> const&) {
        EXPECT_EQ(from, visits ? world.branch : world.from);
        return ++visits == 0;
    };
    EXPECT_FALSE(relation->forEachFieldPair(refuse, true));
    EXPECT_EQ(visits, 1);
    visits = 0;
    EXPECT_TRUE(relation->forEachFieldPair(refuse, false));
    EXPECT_EQ(visits, 2);
    visits = 0;
    EXPECT_TRUE(relation->forEachFieldPair([&](auto const&, auto const&) { return ++visits > 0; }, true));
    EXPECT_EQ(visits, 2);
}

// behaviour: RI-10
TEST(relationInfo, walksThePairsThatWereThereWhenTheWalkBegan) {
    orders const world;
    auto const relation = world.toField();
    int visits = 0;
    relation->forEachFieldPair(
        [&](refPtr<fieldInfo> const&, refPtr<fieldInfo> const&) {
            relation->addFieldRelation(world.branch, world.site);
            return ++visits > 0;
        },
        true);
    EXPECT_EQ(visits, 1);
    EXPECT_EQ(pairsOf(relation).size(), 2u);
}

// behaviour: RI-10
TEST(relationInfo, refusesAnEmptyFunctionForAWalk) {
    orders const world;
    auto const relation = world.toField();
    EXPECT_THROW(relation->forEachFieldPair({}, true), std::bad_function_call);
}

// ---- how long things live

// behaviour: RI-18
TEST(relationInfo, keepsItsFieldsAliveAndNotItsClasses) {
    eventLog log;
    refPtr<relationInfo> held;
    {
        ownClass const source(L"source");
        ownClass const target(L"target");
        addField(source, L"from")->setLabel(L"The from field");
        held = source->createRelation(L"from", false, target, eRef, L"", L"");
    }
    auto happened = log.take();
    EXPECT_EQ(tests::countStarting(happened, "trace classInfo released"), 2u);
    EXPECT_EQ(tests::countStarting(happened, "debug fieldInfo released"), 0u);
    auto const pairs = pairsOf(held);
    EXPECT_EQ(pairs[0].first->label(), L"The from field");
    EXPECT_EQ(pairs[0].second->scName().string(), L"PTR");
    EXPECT_EQ(held->fromClassInfo(), nullptr);
    EXPECT_EQ(held->toClassInfo(), nullptr);
    EXPECT_EQ(held->refCount(), 1u);
}

// ---- its life lines

// Collects whole lines while it lives.
class lineLog {
public:
    lineLog() {
        zovlog::logManager::setSink([this](zovlog::logRecord const& line) { lines.push_back(line); });
        zovlog::logManager::setLevel(zovlog::eLogTrace);
    }
    ~lineLog() {
        zovlog::logManager::setLevel(zovlog::eLogOff);
        zovlog::logManager::setSink({});
    }
    lineLog(lineLog const&) = delete;
    lineLog& operator=(lineLog const&) = delete;

    std::vector<zovlog::logRecord> lines;
};

constexpr char const* relationMade = "zov::metamodel::relationInfo::relationInfo";
constexpr char const* relationEnded = "zov::metamodel::relationInfo::~relationInfo";
constexpr char const* fieldMade = "zov::metamodel::fieldInfo::fieldInfo";

void expectLine(zovlog::logRecord const& line, std::string const& function, std::string const& message) {
    EXPECT_EQ(line.level, zovlog::eLogTrace);
    EXPECT_EQ(line.loggerName, function);
    EXPECT_EQ(line.function, function);
    EXPECT_EQ(line.message.toUtf8(), message);
    EXPECT_EQ(std::string(line.file), "libs/metamodel/src/zovMdlRelationInfo.cpp");
    EXPECT_GT(line.line, 0);
}

// behaviour: RI-12
TEST(relationInfo, tellsThatItComesAndGoesUnderItsTwoNames) {
    lineLog log;
    ownClass const source(L"source");
    ownClass const target(L"target");
    addField(source, L"from");
    auto const to = addField(target, L"to");
    log.lines.clear();
    auto relation = source->createRelation(L"from", false, to, eRef, L"a \"name\" %s", L"\u00E4");
    ASSERT_EQ(log.lines.size(), 1u);
    expectLine(log.lines[0], relationMade, "relationInfo created: \"a \"name\" %s\" to \"\xC3\xA4\"");
    source->tearDown();
    target->tearDown();
    log.lines.clear();
    relation.reset();
    ASSERT_EQ(log.lines.size(), 2u);
    expectLine(log.lines[0], relationEnded, "relationInfo released: \"a \"name\" %s\" to \"\xC3\xA4\"");
    EXPECT_EQ(log.lines[1].message, L"fieldInfo released: \"\"");
}

// behaviour: RI-12, CR-02
TEST(relationInfo, tellsThatItComesUnderTheNamesThatItWasCompletedWith) {
    orders const world;
    eventLog log;
    world.toField();
    EXPECT_EQ(log.take(), events{"trace relationInfo created: \"customer\" to \"order.customer\""});
    world.toClass();
    EXPECT_EQ(log.take(),
              (events{"trace relationInfo created: \"customer\" to \"order\"", "trace fieldInfo created: \"\""}));
    world.model->tearDown();
    auto const released = log.take();
    EXPECT_EQ(tests::countStarting(released, "trace relationInfo released: \"customer\" to \"order.customer\""), 1u);
    EXPECT_EQ(tests::countStarting(released, "trace relationInfo released: \"customer\" to \"order\""), 1u);
    EXPECT_EQ(tests::countStarting(released, "debug fieldInfo released: \"\""), 1u);
    EXPECT_EQ(released.size(), 3u);
}

// behaviour: RI-12
TEST(relationInfo, toAClassEndsBeforeTheFieldOfItsOwn) {
    ownClass const source(L"source");
    ownClass const target(L"target");
    auto const from = addField(source, L"from");
    auto relation = source->createRelation(L"from", false, target, eRef, L"", L"back");
    targetOf(relation)->setLabel(L"its own");
    source->tearDown();
    target->tearDown();
    eventLog log;
    relation.reset();
    EXPECT_EQ(log.take(),
              (events{"trace relationInfo released: \"from\" to \"back\"", "debug fieldInfo released: \"its own\""}));
}

// behaviour: RI-12
TEST(relationInfo, writesNoLinesBelowTheTraceLevel) {
    eventLog log(zovlog::eLogDebug);
    {
        orders const world;
        world.toField();
        world.toClass();
        EXPECT_EQ(log.take(), events());
    }
    EXPECT_EQ(log.take(), events(5, "debug fieldInfo released: \"\""));
}

// While it lives, loggers with this name are missing.
class missingLogger {
public:
    explicit missingLogger(std::string const& function) {
        zovlog::logManager::setProvider([function](char const* name) {
            return function == name ? refPtr<zovlog::logger>() : refPtr<zovlog::logger>(new zovlog::logger(name));
        });
    }
    ~missingLogger() { zovlog::logManager::setProvider({}); }
    missingLogger(missingLogger const&) = delete;
    missingLogger& operator=(missingLogger const&) = delete;
};

// behaviour: RI-13
TEST(relationInfo, isNotMadeWhenALoggerIsMissing) {
    orders const world;
    world.from->setSemantic(eSemPrimkey, genericSet(), L"");
    eventLog log(zovlog::eLogOff);
    {
        missingLogger const missing(relationMade);
        EXPECT_TRUE(throwsFalse([&] { world.toField(); }));
        EXPECT_TRUE(throwsFalse([&] { world.toClass(); }));
    }
    {
        missingLogger const missing(fieldMade);
        EXPECT_TRUE(throwsFalse([&] { world.toClass(); }));
    }
    EXPECT_EQ(log.take(), events(3, tests::emptyRefPtr));
    EXPECT_EQ(world.from->semantic(), eSemPrimkey);
    EXPECT_EQ(world.from->refCount(), 2u);
    EXPECT_EQ(world.customer->refCount(), 4u);
    EXPECT_TRUE(tests::leaving(world.order).empty());
    EXPECT_TRUE(tests::arriving(world.customer).empty());
    EXPECT_NE(world.toField(), nullptr);
}

// behaviour: RI-13
TEST(relationInfo, isFreedWhenALoggerIsMissingAtItsEnd) {
    ownClass const source(L"source");
    ownClass const target(L"target");
    auto const from = addField(source, L"from");
    auto const to = addField(target, L"to");
    auto relation = source->createRelation(L"from", false, to, eRef, L"", L"");
    source->tearDown();
    target->tearDown();
    EXPECT_EQ(from->refCount(), 2u);
    eventLog log(zovlog::eLogOff);
    {
        missingLogger const missing(relationEnded);
        EXPECT_TRUE(throwsFalse([&] { relation.reset(); }));
    }
    EXPECT_EQ(log.take(), events{tests::emptyRefPtr});
    EXPECT_EQ(from->refCount(), 1u);
    EXPECT_EQ(to->refCount(), 1u);
}

} // namespace
} // namespace zov::metamodel
