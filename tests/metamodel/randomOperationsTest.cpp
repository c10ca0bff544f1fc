// Long random sequences of operations, each compared with plain maps and lists that do the same in the simplest way.
#include "zovMetamodel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <map>
#include <optional>
#include <random>
#include <vector>

#include "modelFixture.h"

namespace zov::metamodel {
namespace {

using zov::tests::throwsFalse;

string fold(string text) {
    for (wchar_t& unit : text)
        if (unit >= L'A' && unit <= L'Z') unit = static_cast<wchar_t>(unit - L'A' + L'a');
    return text;
}

struct plainClass;

struct plainField {
    string name;
    eFieldType type;
    plainField* base = nullptr;
    bool key = false;
    refPtr<fieldInfo> made{};

    plainField const& root() const { return base ? base->root() : *this; }
};

struct plainClass {
    std::size_t ordinal; // bases have a lower one, so that nobody builds a cycle
    string name;
    bool exact;
    std::map<scString, plainClass*> bases{};
    std::vector<plainField*> fields{};
    std::vector<string> aliases{};
    std::optional<std::vector<plainField*>> idSet{};
    refPtr<classInfo> made{};

    plainField* find(string const& wanted, bool searchBases, bool searchAliases) const {
        string const key = exact ? wanted : fold(wanted);
        for (auto* const field : fields)
            if (field->root().name == key) return field;
        if (!searchBases) return nullptr;
        for (auto const& [handle, base] : bases)
            if (auto* const found = base->find(wanted, searchAliases, true)) return found;
        return nullptr;
    }

    plainField* sameLetters(string const& wanted, bool exactly) const {
        for (auto* const field : fields) {
            string const& known = field->root().name;
            if (exactly ? known == wanted : fold(known) == fold(wanted)) return field;
        }
        return nullptr;
    }

    bool isDerivedFrom(plainClass const* other) const {
        for (auto const& [handle, base] : bases)
            if (base == other || base->isDerivedFrom(other)) return true;
        return false;
    }

    std::vector<plainField*> identifying() const {
        std::vector<plainField*> found;
        for (auto* const field : fields)
            if (field->root().key) found.push_back(field);
        return found;
    }
};

// The model under test beside its plain counterpart. Null stands for what throws false, where an operation can.
class twins {
public:
    twins(bool exact, unsigned seed) : mRandom(seed), mExact(exact), mModel(modelInfo::createModelInfo(exact)) {}

    ~twins() {
        mModel->tearDown();
        for (auto const& one : mClasses)
            one.made->tearDown();
    }

    twins(twins const&) = delete;
    twins& operator=(twins const&) = delete;

    void step() {
        switch (mClasses.empty() ? 0 : pick(12)) {
        case 0: return registerClass();
        case 1: return refuseClass();
        case 2: return changeAliases();
        case 3: return addBase();
        case 4:
        case 5: return createField();
        case 6: return createStandingField();
        case 7: return copyField();
        case 8: return copyFields();
        case 9: return changeKey();
        case 10: return askForIdSet();
        default: return lookUp();
        }
    }

    // Compares everything that can be asked for.
    void compareAll() {
        EXPECT_EQ(mModel->countClasses(), mRegistered.size());
        for (auto& one : mClasses) {
            compareFields(one);
            for (wchar_t const* name : fieldNames)
                for (unsigned flags = 0; flags < 4; ++flags)
                    compareField(one.made->fieldInfo(name, (flags & 1) != 0, (flags & 2) != 0),
                                 one.find(name, (flags & 1) != 0, (flags & 2) != 0));
            for (auto& other : mClasses)
                EXPECT_EQ(one.made->isDerivedFrom(other.made), one.isDerivedFrom(&other));
        }
        for (wchar_t const* name : classNames)
            for (bool const searchAliases : {false, true})
                compareClass(mModel->classInfo(name, searchAliases), findClass(name, searchAliases));
    }

private:
    static constexpr wchar_t const* classNames[] = {L"part", L"Part", L"PART", L"item", L"Item", L"x", L"thing", L"y"};
    static constexpr wchar_t const* fieldNames[] = {L"a", L"A", L"b", L"B", L"ab", L"Ab", L"pa", L"Pa", L"pb", L"c.d"};
    static constexpr wchar_t const* prefixes[] = {nullptr, L"", L"p", L"P"};
    static constexpr eFieldType types[] = {eInt, eString, eTimestamp, eCustom};

    std::size_t pick(std::size_t count) { return mRandom() % count; }
    bool toss() { return pick(2) == 0; }
    string className() { return classNames[pick(std::size(classNames))]; }
    string fieldName() { return fieldNames[pick(std::size(fieldNames))]; }
    plainClass& anyClass() { return mClasses[pick(mClasses.size())]; }

    plainField* anyField(plainClass const& of) {
        return of.fields.empty() ? nullptr : of.fields[pick(of.fields.size())];
    }

    plainClass* findClass(string const& name, bool searchAliases) const {
        string const key = mExact ? name : fold(name);
        for (auto const& [handle, one] : mRegistered)
            if (one->name == key) return one;
        if (!searchAliases) return nullptr;
        for (auto const& [handle, one] : mRegistered)
            if (std::find(one->aliases.begin(), one->aliases.end(), key) != one->aliases.end()) return one;
        return nullptr;
    }

    void compareClass(refPtr<classInfo> const& actual, plainClass const* expected) {
        EXPECT_EQ(actual, expected ? expected->made : nullptr);
    }

    void compareField(refPtr<fieldInfo> const& actual, plainField const* expected) {
        EXPECT_EQ(actual, expected ? expected->made : nullptr);
    }

    // The class's list must have what the plain one has; new fields become known here.
    void compareFields(plainClass& of) {
        std::size_t at = 0;
        of.made->forEachFieldInfo(
            [&](refPtr<fieldInfo> const& field) {
                if (at >= of.fields.size()) return ++at > 0;
                plainField& expected = *of.fields[at++];
                if (!expected.made) expected.made = field;
                EXPECT_EQ(field, expected.made);
                EXPECT_EQ(field->scName().string(), expected.root().name);
                EXPECT_EQ(field->type(), expected.root().type);
                EXPECT_EQ(field->semantic(), expected.root().key ? eSemPrimkey : eSemNone);
                EXPECT_EQ(field->baseField(), expected.base ? expected.base->made : nullptr);
                EXPECT_EQ(field->classInfo(), of.made);
                return true;
            },
            true);
        EXPECT_EQ(at, of.fields.size());
        EXPECT_EQ(of.made->countFields(), of.fields.size());
    }

    // Runs an operation that yields a field or throws false, and compares with what the plain lists say by then.
    template <class Operation>
    void expectField(plainClass& of, Operation const& operation, plainField const* const expected) {
        refPtr<fieldInfo> actual;
        bool const refused = throwsFalse([&] { actual = operation(); });
        compareFields(of);
        EXPECT_EQ(refused, expected == nullptr);
        compareField(actual, expected);
    }

    void registerClass() {
        string const name = className();
        if (mClasses.size() >= 14) return compareClass(mModel->classInfo(name, false), findClass(name, false));
        plainClass* const known = findClass(name, false);
        bool const getOrCreate = toss();
        refPtr<classInfo> actual;
        bool const refused = throwsFalse(
            [&] { actual = getOrCreate ? mModel->getOrCreateClassInfo(name) : mModel->createClassInfo(name); });
        EXPECT_EQ(refused, known && !getOrCreate);
        if (known) return compareClass(actual, getOrCreate ? known : nullptr);
        ASSERT_NE(actual, nullptr);
        plainClass& added = mClasses.emplace_back(plainClass{mClasses.size(), fold(name), mExact});
        added.made = actual;
        mRegistered[actual->scName()] = &added;
        EXPECT_EQ(actual->scName().string(), added.name);
    }

    void refuseClass() {
        string const name = className();
        plainClass* const known = findClass(name, false);
        auto const refuse = [](refPtr<classInfo> const& offered) {
            tests::addField(offered, L"a");
            return false;
        };
        compareClass(mModel->getOrCreateClassInfo(name, refuse), known);
        EXPECT_EQ(mModel->countClasses(), mRegistered.size());
    }

    void changeAliases() {
        plainClass& of = anyClass();
        string const alias = className();
        std::erase(of.aliases, alias);
        if (toss()) {
            of.made->removeAliasname(alias);
        } else {
            of.made->addAliasname(alias);
            of.aliases.push_back(alias);
        }
        tests::names actual;
        of.made->getAliasnames(actual);
        EXPECT_EQ(actual, of.aliases);
    }

    void addBase() {
        plainClass& derived = anyClass();
        plainClass& base = anyClass();
        if (base.ordinal >= derived.ordinal || derived.bases.size() >= 3) return;
        derived.made->addBaseClass(base.made);
        derived.bases.emplace(base.made->scName(), &base);
        std::size_t count = 0;
        derived.made->forEachBaseClass([&](classInfo::entry const&) { return ++count > 0; }, true);
        EXPECT_EQ(count, derived.bases.size());
        EXPECT_FALSE(base.made->isBaseOf(derived.made));
    }

    plainField* append(plainClass& of, plainField field) {
        of.fields.push_back(&mFields.emplace_back(std::move(field)));
        return of.fields.back();
    }

    void createField() {
        plainClass& of = anyClass();
        string const name = fieldName();
        eFieldType const type = types[pick(std::size(types))];
        if (!of.find(name, true, false) && !of.sameLetters(of.exact ? name : fold(name), of.exact))
            append(of, {of.exact ? name : fold(name), type});
        expectField(
            of, [&] { return of.made->createFieldInfo(name, type, genericSet(), L""); }, of.find(name, true, false));
    }

    void createStandingField() {
        plainClass& of = anyClass();
        plainClass& base = anyClass();
        string const name = fieldName();
        plainField* const standsFor = of.isDerivedFrom(&base) ? base.find(name, true, false) : nullptr;
        plainField* expected = nullptr;
        if (standsFor) {
            expected = of.sameLetters(standsFor->root().name, false);
            if (!expected) {
                append(of, {string(), standsFor->type, standsFor});
                expected = of.find(name, true, false);
            }
        }
        expectField(
            of, [&] { return of.made->createFieldInfo(base.made, name); }, expected);
    }

    plainField copyOf(plainField const& from, wchar_t const* prefix) {
        return {string(prefix ? prefix : L"") + from.root().name, from.root().type, nullptr, from.root().key};
    }

    void copyField() {
        plainClass& of = anyClass();
        plainField const* const from = anyField(anyClass());
        wchar_t const* const prefix = prefixes[pick(std::size(prefixes))];
        if (!from) return;
        plainField copy = copyOf(*from, prefix);
        string const name = copy.name;
        if (name.size() > 5) return;
        if (!of.sameLetters(name, false)) append(of, std::move(copy));
        expectField(
            of, [&] { return of.made->copyFieldInfoFrom(from->made, prefix); }, of.find(name, true, false));
    }

    void copyFields() {
        plainClass& of = anyClass();
        plainClass& from = anyClass();
        wchar_t const* const prefix = prefixes[pick(std::size(prefixes))];
        if (from.fields.size() > 12) return;
        auto const sources = from.fields;
        for (auto const* const source : sources) {
            plainField copy = copyOf(*source, prefix);
            if (!of.sameLetters(copy.name, false)) append(of, std::move(copy));
        }
        EXPECT_TRUE(of.made->copyInfosFrom(from.made, prefix));
        compareFields(of);
    }

    void changeKey() {
        plainClass& of = anyClass();
        plainField* const field = anyField(of);
        if (!field) return;
        bool const key = toss();
        field->made->setSemantic(key ? eSemPrimkey : eSemNone, genericSet(), L"");
        field->key = key;
        if (field->root().key) of.idSet.reset();
        compareFields(of);
    }

    void askForIdSet() {
        plainClass& of = anyClass();
        if (!of.idSet && of.identifying().empty()) {
            zov::tests::eventLog const quiet;
            EXPECT_TRUE(throwsFalse([&] { of.made->idInfo(); }));
            return;
        }
        if (!of.idSet) of.idSet = of.identifying();
        std::vector<refPtr<fieldInfo>> actual;
        of.made->idInfo()->forEachFieldInfo(
            [&](refPtr<fieldInfo> const& field) {
                actual.push_back(field);
                return true;
            },
            true);
        compareList(actual, *of.idSet);
        actual.clear();
        of.made->getIdFieldInfos(actual);
        compareList(actual, of.identifying());
    }

    void compareList(std::vector<refPtr<fieldInfo>> const& actual, std::vector<plainField*> const& expected) {
        ASSERT_EQ(actual.size(), expected.size());
        for (std::size_t at = 0; at < actual.size(); ++at)
            compareField(actual[at], expected[at]);
    }

    void lookUp() {
        string const name = className();
        string const field = fieldName();
        bool const flag = toss();
        plainClass const* const of = findClass(name, flag);
        plainField const* const expected = of ? of->find(field, flag, false) : nullptr;
        compareClass(mModel->classInfo(name, flag), of);
        compareField(mModel->fieldInfo(name, field, flag), expected);
        compareField(mModel->fieldInfo(name + L"." + field, flag), expected);
    }

    std::mt19937 mRandom;
    bool mExact;
    refPtr<modelInfo> mModel;
    std::deque<plainClass> mClasses;
    std::deque<plainField> mFields;
    std::map<scString, plainClass*> mRegistered;
};

// Some sequences from different seeds; the first difference ends them.
void runSequences(bool caseSensitiveNames) {
    for (unsigned seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE(seed);
        twins both(caseSensitiveNames, seed);
        for (int step = 0; step < 1500 && !testing::Test::HasFailure(); ++step) {
            SCOPED_TRACE(step);
            both.step();
        }
        both.compareAll();
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

// behaviour: MR-02, MR-08, MF-01, CF-01, CF-07, CF-10, CF-21, CF-22, CF-24, CI-04, ID-11
TEST(randomOperations, agreeWithPlainMapsInAnyLetterCase) {
    runSequences(false);
}

// behaviour: MR-04, MR-07, MF-01, CF-02, CF-07, CF-10, CF-24, CF-28, CI-04, ID-11
TEST(randomOperations, agreeWithPlainMapsWhenCaseMatters) {
    runSequences(true);
}

} // namespace
} // namespace zov::metamodel
