// Long random sequences of operations on models that grow large and are let go in parts, each compared with plain lists
// that follow the promises in the simplest way: classes with aliases, fields by the hundred, bases, copies, relations,
// tear-downs of classes and of the whole. The seeds are fixed, so that a failure comes again.
#include "zovMetamodel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "graphFixture.h"
#include "numberedNames.h"

namespace zov::metamodel {
namespace {

using tests::arriving;
using tests::capitals;
using tests::leaving;
using tests::names;
using tests::numberedNames;
using tests::ownModel;
using zov::tests::eventLog;
using zov::tests::throwsFalse;

struct plainClass;

struct plainField {
    plainClass* owner;
    string name;
    plainField* base = nullptr;
    refPtr<fieldInfo> made{};

    string const& rootName() const { return base ? base->rootName() : name; }
};

struct plainRelation {
    string name;
    std::vector<std::pair<plainField*, plainField*>> pairs;
    plainField* own;
    refPtr<relationInfo> made;

    plainField* targetOf(plainField const* from) const {
        for (auto const& [first, second] : pairs)
            if (first == from) return second;
        return nullptr;
    }
};

struct plainClass {
    std::size_t ordinal; // bases have a lower one, so that nobody builds a cycle
    string name;
    bool exact;
    refPtr<classInfo> made{};
    std::map<scString, plainClass*> bases{};
    std::vector<plainField*> fields{};
    std::vector<plainRelation*> leaving{};
    std::vector<plainRelation*> arriving{};
    names aliases{};

    plainField* find(string const& wanted, bool searchBases, bool searchAliases) const {
        string const key = exact ? wanted : wanted.lower();
        for (auto* const field : fields)
            if (field->rootName() == key) return field;
        if (!searchBases) return nullptr;
        for (auto const& [handle, base] : bases)
            if (auto* const found = base->find(wanted, searchAliases, true)) return found;
        return nullptr;
    }

    plainField* sameLetters(string const& wanted, bool exactly) const {
        for (auto* const field : fields) {
            string const& known = field->rootName();
            if (exactly ? known == wanted : known.lower() == wanted.lower()) return field;
        }
        return nullptr;
    }

    plainRelation* findRelation(string const& wanted, bool searchBases) const {
        for (auto* const relation : leaving)
            if (relation->name == wanted) return relation;
        if (!searchBases) return nullptr;
        for (auto const& [handle, base] : bases)
            if (auto* const found = base->findRelation(wanted, true)) return found;
        return nullptr;
    }

    bool isDerivedFrom(plainClass const* other) const {
        return std::any_of(bases.begin(), bases.end(), [&](auto const& entry) {
            return entry.second == other || entry.second->isDerivedFrom(other);
        });
    }

    void tearDown() {
        for (auto* const field : fields)
            field->owner = nullptr;
        for (auto const* const list : {&leaving, &arriving}) {
            for (auto* const relation : *list)
                if (relation->own) relation->own->owner = nullptr;
        }
        fields.clear();
        bases.clear();
        leaving.clear();
        arriving.clear();
    }
};

template <class Plain>
auto madeOf(Plain const* plain) {
    return plain ? plain->made : decltype(plain->made)();
}

// The model under test beside its plain counterpart.
class grownTwins {
public:
    grownTwins(bool exact, unsigned seed) : mRandom(seed), mExact(exact), mModel(exact) {}

    ~grownTwins() {
        mModel->tearDown();
        for (auto const& one : mClasses)
            one.made->tearDown();
    }

    grownTwins(grownTwins const&) = delete;
    grownTwins& operator=(grownTwins const&) = delete;

    void step() {
        if (mClasses.size() < 4) return registerClass();
        std::size_t const choice = pick(100);
        if (choice < 14) return registerClass();
        if (choice < 24) return changeAliases();
        if (choice < 30) return addBase();
        if (choice < 44) return createField();
        if (choice < 50) return createStandingField();
        if (choice < 57) return copyField();
        if (choice < 62) return copyFields();
        if (choice < 72) return relate();
        if (choice < 76) return relateAgain();
        if (choice < 82) return addPair();
        if (choice < 97) return lookUp();
        if (choice < 99) return tearDown(anyClass());
        pick(4) ? followAnotherCaseRule() : tearDownModel();
    }

    void compareAll() {
        EXPECT_EQ(mModel->countClasses(), mRegistered.size());
        compareWalkOfClasses();
        for (auto const* const list : {&mClassNames, &mAliases}) {
            for (auto const& name : *list) {
                for (string const& asked : {name, capitals(name)}) {
                    EXPECT_EQ(mModel->classInfo(asked, false), madeOf(findClass(asked, false)));
                    EXPECT_EQ(mModel->classInfo(asked, true), madeOf(findClass(asked, true)));
                }
            }
        }
        for (auto& one : mClasses)
            compareClass(one);
        for (auto const& field : mFields) {
            if (!field.made) continue;
            EXPECT_EQ(field.made->classInfo(), madeOf(field.owner));
            EXPECT_EQ(field.made->scName().string(), field.rootName());
        }
    }

private:
    static constexpr wchar_t const* prefixes[] = {nullptr, L"", L"p", L"q_", L"P"};

    std::size_t pick(std::size_t count) { return mRandom() % count; }
    bool toss() { return pick(2) == 0; }
    plainClass& anyClass() { return mClasses[pick(mClasses.size())]; }
    string any(names const& of) {
        string const& name = of[pick(of.size())];
        return pick(3) ? name : capitals(name);
    }

    plainClass* findClass(string const& name, bool searchAliases) const {
        string const key = mExact ? name : name.lower();
        for (auto const& [handle, one] : mRegistered)
            if (one->name == key) return one;
        if (!searchAliases) return nullptr;
        for (auto const& [handle, one] : mRegistered)
            if (std::find(one->aliases.begin(), one->aliases.end(), key) != one->aliases.end()) return one;
        return nullptr;
    }

    void compareWalkOfClasses() const {
        auto expected = mRegistered.begin();
        mModel->forEachClassInfo(
            [&](classInfo::entry const& entry) {
                EXPECT_TRUE(expected != mRegistered.end() && entry.first == expected->first);
                EXPECT_EQ(entry.second, expected->second->made);
                return ++expected != mRegistered.end();
            },
            true);
        EXPECT_EQ(expected, mRegistered.end());
    }

    void compareClass(plainClass& of) {
        compareFields(of);
        for (auto const& name : mFieldNames)
            for (string const& asked : {name, capitals(name), string(L"p" + name)})
                for (unsigned flags = 0; flags < 4; ++flags)
                    EXPECT_EQ(of.made->fieldInfo(asked, (flags & 1) != 0, (flags & 2) != 0),
                              madeOf(of.find(asked, (flags & 1) != 0, (flags & 2) != 0)));
        for (auto const& other : mClasses)
            EXPECT_EQ(of.made->isDerivedFrom(other.made), of.isDerivedFrom(&other));
        compareRelations(of);
        names aliases;
        of.made->getAliasnames(aliases);
        EXPECT_EQ(aliases, of.aliases);
    }

    // The class's list must have what the plain one has; new fields become known here.
    void compareFields(plainClass& of) {
        auto const actual = tests::fieldsOf(of.made);
        ASSERT_EQ(actual.size(), of.fields.size());
        EXPECT_EQ(of.made->countFields(), of.fields.size());
        for (std::size_t at = 0; at < actual.size(); ++at) {
            plainField& expected = *of.fields[at];
            if (!expected.made) expected.made = actual[at];
            ASSERT_EQ(actual[at], expected.made);
            ASSERT_EQ(actual[at]->scName().string(), expected.rootName());
            ASSERT_EQ(actual[at]->baseField(), madeOf(expected.base));
        }
    }

    static void compareList(tests::relations const& actual, std::vector<plainRelation*> const& expected) {
        ASSERT_EQ(actual.size(), expected.size());
        for (std::size_t at = 0; at < actual.size(); ++at)
            ASSERT_EQ(actual[at], expected[at]->made);
    }

    void compareRelations(plainClass const& of) const {
        compareList(leaving(of.made), of.leaving);
        compareList(arriving(of.made), of.arriving);
        for (auto const& name : mRelationNames)
            for (bool const searchBases : {false, true})
                EXPECT_EQ(of.made->toRelation(name, searchBases), madeOf(of.findRelation(name, searchBases)));
    }

    // ---- classes

    void addPlainClass(string const& name, refPtr<classInfo> const& made) {
        plainClass& added = mClasses.emplace_back(plainClass{mClasses.size(), name.lower(), mExact, made});
        mRegistered[made->scName()] = &added;
        made->getAliasnames(added.aliases);
    }

    // Some are refused, some are registered inside of the registration that then replaces them.
    void registerClass() {
        string const name = any(mClassNames);
        plainClass* const known = findClass(name, false);
        if (mClasses.size() >= 70 && !known) return;
        bool const getOrCreate = toss();
        bool const isAccepted = pick(6) != 0;
        bool const isNested = pick(6) == 0;
        string const alias = any(mAliases);
        refPtr<classInfo> inner;
        auto const accept = [&](refPtr<classInfo> const& offered) {
            offered->addAliasname(alias);
            if (isNested) inner = mModel->createClassInfo(name);
            return isAccepted;
        };
        refPtr<classInfo> made;
        bool const refused = throwsFalse([&] {
            made = getOrCreate ? mModel->getOrCreateClassInfo(name, accept) : mModel->createClassInfo(name, accept);
        });
        EXPECT_EQ(refused, known && !getOrCreate);
        EXPECT_EQ(made == nullptr, known ? refused : !isAccepted);
        if (known) {
            EXPECT_TRUE(refused || made == known->made);
            return;
        }
        if (inner) addPlainClass(name, inner);
        if (made) addPlainClass(name, made);
    }

    void changeAliases() {
        plainClass& of = anyClass();
        bool const known = toss() && !of.aliases.empty();
        string const alias = known ? of.aliases[pick(of.aliases.size())] : pick(8) ? any(mAliases) : any(mClassNames);
        std::erase(of.aliases, alias);
        if (pick(5) < 2) {
            of.made->removeAliasname(alias);
        } else {
            of.made->addAliasname(alias);
            of.aliases.push_back(alias);
        }
        EXPECT_EQ(mModel->classInfo(alias, true), madeOf(findClass(alias, true)));
    }

    void addBase() {
        plainClass& derived = anyClass();
        plainClass& base = anyClass();
        if (base.ordinal >= derived.ordinal || derived.ordinal > 16 || derived.bases.size() >= 3) return;
        derived.made->addBaseClass(base.made);
        derived.bases.emplace(base.made->scName(), &base);
    }

    // ---- fields

    void append(plainClass& of, string const& name, plainField* base = nullptr) {
        of.fields.push_back(&mFields.emplace_back(plainField{&of, name, base}));
    }

    // Runs an operation that yields a field or throws false, and compares with what the plain lists say by then.
    template <class Operation>
    void expectField(plainClass& of, Operation const& operation, plainField const* const expected) {
        refPtr<fieldInfo> actual;
        bool const refused = throwsFalse([&] { actual = operation(); });
        compareFields(of);
        EXPECT_EQ(refused, expected == nullptr);
        EXPECT_EQ(actual, madeOf(expected));
    }

    void createField() {
        plainClass& of = anyClass();
        string const name = any(mFieldNames);
        string const kept = of.exact ? name : name.lower();
        if (!of.find(name, true, false) && !of.sameLetters(kept, of.exact)) append(of, kept);
        expectField(
            of, [&] { return of.made->createFieldInfo(name, eInt, genericSet(), L""); }, of.find(name, true, false));
    }

    void createStandingField() {
        plainClass& of = anyClass();
        if (of.bases.empty()) return;
        plainClass& base = *std::next(of.bases.begin(), static_cast<std::ptrdiff_t>(pick(of.bases.size())))->second;
        string const name = any(mFieldNames);
        plainField* const standsFor = base.find(name, true, false);
        plainField* expected = nullptr;
        if (standsFor) {
            expected = of.sameLetters(standsFor->rootName(), false);
            if (!expected) {
                append(of, string(), standsFor);
                expected = of.find(name, true, false);
            }
        }
        expectField(
            of, [&] { return of.made->createFieldInfo(base.made, name); }, expected);
    }

    static string prefixed(wchar_t const* prefix, plainField const& from) {
        return string(prefix ? prefix : L"") + from.rootName();
    }

    void copyField() {
        plainClass& of = anyClass();
        plainClass const& from = anyClass();
        if (from.fields.empty()) return;
        plainField const& source = *from.fields[pick(from.fields.size())];
        wchar_t const* const prefix = prefixes[pick(std::size(prefixes))];
        string const name = prefixed(prefix, source);
        if (name.size() > 12) return;
        if (!of.sameLetters(name, false)) append(of, name);
        expectField(
            of, [&] { return of.made->copyFieldInfoFrom(source.made, prefix); }, of.find(name, true, false));
    }

    void copyFields() {
        plainClass& of = anyClass();
        plainClass const& from = anyClass();
        if (of.fields.size() + from.fields.size() > 160) return;
        wchar_t const* const prefix = prefixes[pick(std::size(prefixes))];
        auto const sources = from.fields;
        for (auto const* const source : sources)
            if (!of.sameLetters(prefixed(prefix, *source), false)) append(of, prefixed(prefix, *source));
        EXPECT_TRUE(of.made->copyInfosFrom(from.made, prefix));
        compareFields(of);
    }

    // ---- relations

    static plainRelation* relationBetween(plainClass const& of, plainField const& from, plainField const& target) {
        for (auto* const relation : of.leaving) {
            auto const& [first, second] = relation->pairs.front();
            if (first->owner == from.owner && second->owner == target.owner && relation->targetOf(&from) == &target)
                return relation;
        }
        return nullptr;
    }

    void file(plainClass& of, plainClass& target, plainRelation relation) {
        auto& added = mRelations.emplace_back(std::move(relation));
        of.leaving.push_back(&added);
        target.arriving.push_back(&added);
        compareRelations(of);
    }

    void relate() {
        plainClass& of = anyClass();
        plainClass& target = anyClass();
        string const fromName = any(mFieldNames);
        bool const searchBases = toss();
        auto* const from = of.find(fromName, searchBases, false);
        string const name = mRelationNames[pick(mRelationNames.size())];
        if (!from) {
            EXPECT_TRUE(
                throwsFalse([&] { of.made->createRelation(fromName, searchBases, target.made, eRef, name, L""); }));
            return;
        }
        if (toss() || target.fields.empty()) {
            auto const made = of.made->createRelation(fromName, searchBases, target.made, eRef, name, L"");
            auto& own = mFields.emplace_back(plainField{&target, L"PTR"});
            own.made = tests::targetOf(made);
            return file(of, target, {name, {{from, &own}}, &own, made});
        }
        relateToField(of, *from, *target.fields[pick(target.fields.size())], fromName, name);
    }

    // Bases are searched as well: it does no harm where the class has the field itself.
    void relateToField(plainClass& of, plainField& from, plainField& to, string const& fromName, string const& name) {
        auto const made = of.made->createRelation(fromName, true, to.made, eRef, name, L"");
        auto* const known = relationBetween(of, from, to);
        EXPECT_EQ(made == madeOf(known), known != nullptr);
        if (!known) file(of, *to.owner, {name, {{&from, &to}}, nullptr, made});
    }

    // A pair that some relation has, as its first one or as a later one.
    void relateAgain() {
        if (mRelations.empty()) return;
        auto const& relation = mRelations[pick(mRelations.size())];
        auto const [from, to] = relation.pairs[pick(relation.pairs.size())];
        if (!from->owner || !to->owner || from->owner->find(from->rootName(), true, false) != from) return;
        relateToField(*from->owner, *from, *to, from->rootName(), mRelationNames[0]);
    }

    void addPair() {
        if (mRelations.empty()) return;
        auto& relation = mRelations[pick(mRelations.size())];
        auto const& [first, second] = relation.pairs.front();
        if (!first->owner || !second->owner || first->owner->fields.empty() || second->owner->fields.empty()) return;
        auto* const from = first->owner->fields[pick(first->owner->fields.size())];
        auto* const to = second->owner->fields[pick(second->owner->fields.size())];
        EXPECT_TRUE(relation.made->addFieldRelation(from->made, to->made));
        relation.pairs.emplace_back(from, to);
        EXPECT_EQ(relation.made->toFieldInfo(from->made), madeOf(relation.targetOf(from)));
    }

    // ---- the end of some, and questions

    void tearDown(plainClass& of) {
        of.made->tearDown();
        of.tearDown();
        compareFields(of);
        compareRelations(of);
    }

    void tearDownModel() {
        mModel->tearDown();
        for (auto const& [handle, one] : mRegistered)
            one->tearDown();
        mRegistered.clear();
        compareWalkOfClasses();
    }

    // Classes keep the rule under which they were made.
    void followAnotherCaseRule() {
        mExact = !mExact;
        mModel->setAddProp(L"caseSensitiveNames", mExact ? L"true" : L"false");
    }

    void lookUp() {
        string const name = pick(3) ? any(mClassNames) : any(mAliases);
        string const field = any(mFieldNames);
        bool const flag = toss();
        plainClass const* const of = findClass(name, flag);
        EXPECT_EQ(mModel->classInfo(name, flag), madeOf(of));
        auto const expected = of ? madeOf(of->find(field, flag, false)) : nullptr;
        EXPECT_EQ(mModel->fieldInfo(name, field, flag), expected);
        EXPECT_EQ(mModel->fieldInfo(name + L"." + field, flag), expected);
    }

    names const mClassNames = numberedNames(L"Class", 40);
    names const mAliases = numberedNames(L"alias", 24);
    names const mFieldNames = numberedNames(L"field", 30);
    names const mRelationNames = numberedNames(L"relation", 20);
    std::mt19937 mRandom;
    bool mExact;
    ownModel const mModel;
    std::deque<plainClass> mClasses;
    std::deque<plainField> mFields;
    std::deque<plainRelation> mRelations;
    std::map<scString, plainClass*> mRegistered;
};

// Some sequences from different seeds; the first difference ends them.
void runSequences(bool caseSensitiveNames) {
    eventLog const quiet(zovlog::eLogOff);
    for (unsigned seed = 1; seed <= 10; ++seed) {
        SCOPED_TRACE(seed);
        grownTwins both(caseSensitiveNames, seed);
        for (int step = 1; step <= 1800 && !testing::Test::HasFailure(); ++step) {
            SCOPED_TRACE(step);
            both.step();
            if (step % 600 == 0) both.compareAll();
        }
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

// behaviour: MR-02, MR-08, MR-12, CF-01, CF-07, CF-18, CF-21, CI-04, CR-04, CR-11, GT-11, TD-06
TEST(randomGrowth, agreesWithPlainListsInAnyLetterCase) {
    runSequences(false);
}

// behaviour: MR-04, MR-07, MR-08, MP-04, CF-02, CF-07, CF-24, CI-04, CR-04, CR-11, GT-11, TD-06
TEST(randomGrowth, agreesWithPlainListsWhenCaseMatters) {
    runSequences(true);
}

} // namespace
} // namespace zov::metamodel
