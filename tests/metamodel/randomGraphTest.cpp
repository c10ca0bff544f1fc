// Random sequences of operations on a graph of classes, fields, bases, relations and properties, compared with plain
// lists and maps that follow the promises one by one. The seeds are fixed, so that a failure comes again.
#include "zovMetamodel.h"

#include <gtest/gtest.h>

#include <deque>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "graphFixture.h"

namespace zov::metamodel {
namespace {

using tests::classAssertion;
using tests::countStarting;
using tests::events;
using tests::fieldPairs;
using tests::relationAssertion;
using zov::tests::eventLog;

// A value of a property: a text, a number or an object.
struct plainValue {
    enum { text, number, object } kind;
    int content;

    string asText() const { return kind == text ? string::sformat(L"text %d", content) : shownNumber(); }
    string shownNumber() const { return string::sformat(L"%d", content); }
    bool operator==(plainValue const&) const = default;
};

// The two sets of an owner: 0 is private, 1 is inheritable.
using plainProperties = std::map<string, plainValue>[2];

struct plainClass;

struct plainField {
    string name;
    eFieldType type;
    plainClass* owner;
    plainField* base = nullptr;
    eFieldSemantics semantic = eSemNone;
    plainProperties properties{};
    refPtr<fieldInfo> made{};

    plainField& root() { return base ? base->root() : *this; }
};

struct plainRelation {
    eRelationType type;
    string name;
    string reverseName;
    std::vector<std::pair<plainField*, plainField*>> pairs;
    plainField* own = nullptr;
    refPtr<relationInfo> made{};

    plainField* targetOf(plainField const* from) const {
        for (auto const& [first, second] : pairs)
            if (first == from) return second;
        return nullptr;
    }
    plainField* sourceOf(plainField const* to) const {
        for (auto const& [first, second] : pairs)
            if (second == to) return first;
        return nullptr;
    }
};

struct plainClass {
    int ordinal; // bases have a lower one, so that nobody builds a cycle
    string name;
    std::map<scString, plainClass*> bases{};
    std::vector<plainField*> fields{};
    std::vector<plainRelation*> leaving{};
    std::vector<plainRelation*> arriving{};
    plainProperties properties{};
    refPtr<classInfo> made{};

    plainField* find(string const& wanted, bool searchBases) {
        for (auto* const field : fields)
            if (field->root().name == wanted) return field;
        if (!searchBases) return nullptr;
        for (auto const& [handle, base] : bases)
            if (auto* const found = base->find(wanted, false)) return found;
        return nullptr;
    }

    plainRelation* findRelation(string const& wanted, bool searchBases) {
        for (auto* const relation : leaving)
            if (relation->name == wanted) return relation;
        if (!searchBases) return nullptr;
        for (auto const& [handle, base] : bases)
            if (auto* const found = base->findRelation(wanted, true)) return found;
        return nullptr;
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

// What kind of value is asked for.
enum asked { eText, eObject, eValue };

bool answers(plainValue const& value, asked kind) {
    return kind == eValue || (kind == eObject) == (value.kind == plainValue::object);
}

plainValue const* valueIn(std::map<string, plainValue> const& set, string const& name, asked kind) {
    auto const found = set.find(name);
    return found != set.end() && answers(found->second, kind) ? &found->second : nullptr;
}

plainValue const* inheritedBy(plainClass const& owner, string const& name, asked kind) {
    for (auto const& [handle, base] : owner.bases) {
        if (auto const* const found = valueIn(base->properties[1], name, kind)) return found;
        if (auto const* const found = inheritedBy(*base, name, kind)) return found;
    }
    return nullptr;
}

plainValue const* inheritedBy(plainField const& owner, string const& name, asked kind) {
    for (auto const* field = owner.base; field; field = field->base)
        if (auto const* const found = valueIn(field->properties[1], name, kind)) return found;
    return nullptr;
}

bool showsUnasked(plainClass const&, asked kind) {
    return kind != eValue;
}
bool showsUnasked(plainField const&, asked kind) {
    return kind == eObject;
}

template <class Owner>
plainValue const* readFrom(Owner const& owner, string const& name, asked kind, bool searchInherited) {
    if (auto const* const found = valueIn(owner.properties[0], name, kind)) return found;
    if (!searchInherited && !showsUnasked(owner, kind)) return nullptr;
    if (auto const* const found = valueIn(owner.properties[1], name, kind)) return found;
    return searchInherited ? inheritedBy(owner, name, kind) : nullptr;
}

// Objects for properties.
class numbered : public refObj {
public:
    explicit numbered(int from) : number(from) {}
    int const number;

private:
    ~numbered() override = default;
    void destroy() override { delete this; }
};

// How many lines of each kind have come.
class tally {
public:
    void add(events const& happened) {
        for (std::size_t kind = 0; kind < std::size(starts); ++kind)
            mCounts[kind] += countStarting(happened, starts[kind]);
    }
    void expectAllFreed() const {
        for (std::size_t kind = 0; kind < std::size(starts); kind += 2) {
            EXPECT_GT(mCounts[kind], 0u) << starts[kind];
            EXPECT_EQ(mCounts[kind], mCounts[kind + 1]) << starts[kind];
        }
    }

private:
    static constexpr char const* starts[] = {"trace classInfo created",    "trace classInfo released",
                                             "trace fieldInfo created",    "debug fieldInfo released",
                                             "trace relationInfo created", "trace relationInfo released"};
    std::size_t mCounts[std::size(starts)] = {};
};

// The graph under test beside its plain counterpart.
class twinGraphs {
public:
    twinGraphs(unsigned seed, eventLog& log, tally& lines) : mRandom(seed), mLog(log), mLines(lines) {}

    ~twinGraphs() {
        mModel->tearDown();
        for (auto const& one : mClasses)
            one.made->tearDown();
    }

    twinGraphs(twinGraphs const&) = delete;
    twinGraphs& operator=(twinGraphs const&) = delete;

    void step() {
        if (mClasses.size() < 3) return registerClass();
        switch (pick(24)) {
        case 0: return registerClass();
        case 1:
        case 2: return addBase();
        case 3:
        case 4: return createField();
        case 5: return createStandingField();
        case 6: return giveMeaning();
        case 7:
        case 8: return relateToClass();
        case 9:
        case 10:
        case 11: return relateToField();
        case 12:
        case 13: return addPair();
        case 14:
        case 15: return setProperty(anyClass());
        case 16:
        case 17: return setPropertyOfField();
        case 18: return readProperties(anyClass());
        case 19: return readPropertiesOfField();
        case 20:
        case 21: return lookUp();
        case 22: return compare(anyClass());
        default: return pick(8) ? compareRelation() : letGo();
        }
    }

    void compareAll() {
        for (auto& one : mClasses) {
            compare(one);
            compareListed(one.made, one.properties);
        }
        for (auto& field : mFields) {
            EXPECT_EQ(field.made->classInfo(), field.owner ? field.owner->made : nullptr);
            EXPECT_EQ(field.made->semantic(), field.root().semantic);
            compareListed(field.made, field.properties);
        }
        for (auto const& relation : mRelations)
            compareRelation(relation);
    }

private:
    static constexpr wchar_t const* fieldNames[] = {L"a", L"b", L"c", L"d", L"e"};
    static constexpr wchar_t const* relationNames[] = {L"", L"", L"r", L"R", L"a", L"b"};
    static constexpr wchar_t const* propertyNames[] = {L"p", L"P", L"q"};
    static constexpr eFieldType types[] = {eInt, eString, static_cast<eFieldType>(0)};
    static constexpr eRelationType kinds[] = {eRef, eAgg, eRevAgg, eBiAgg};

    std::size_t pick(std::size_t count) { return mRandom() % count; }
    bool toss() { return pick(2) == 0; }
    template <class T, std::size_t Count>
    T any(T const (&of)[Count]) {
        return of[pick(Count)];
    }
    plainClass& anyClass() { return mClasses[pick(mClasses.size())]; }
    plainField* anyField() { return mFields.empty() ? nullptr : &mFields[pick(mFields.size())]; }
    plainRelation* anyRelation() { return mRelations.empty() ? nullptr : &mRelations[pick(mRelations.size())]; }

    static refPtr<fieldInfo> madeOf(plainField const* field) { return field ? field->made : nullptr; }
    static refPtr<relationInfo> madeOf(plainRelation const* relation) { return relation ? relation->made : nullptr; }

    // Runs an operation and compares the one assertion that it reports, or "" for none.
    template <class Operation>
    void expectReported(Operation const& operation, std::string const& expected) {
        mLines.add(mLog.take());
        bool const refused = zov::tests::throwsFalse(operation);
        auto const happened = mLog.take();
        mLines.add(happened);
        EXPECT_EQ(refused, !expected.empty());
        EXPECT_EQ(countStarting(happened, "assert"), expected.empty() ? 0u : 1u);
        EXPECT_EQ(countStarting(happened, expected), expected.empty() ? happened.size() : 1u) << expected;
    }

    void registerClass() {
        if (mClasses.size() >= 9) return;
        int const ordinal = static_cast<int>(mClasses.size());
        string const name = string::sformat(L"class%d", ordinal);
        auto& added = mClasses.emplace_back(plainClass{ordinal, name});
        added.made = toss() ? mModel->createClassInfo(name) : classInfo::createClassInfo(name);
    }

    void addBase() {
        plainClass& derived = anyClass();
        plainClass& base = anyClass();
        if (base.ordinal >= derived.ordinal) return;
        derived.made->addBaseClass(base.made);
        derived.bases.emplace(base.made->scName(), &base);
    }

    void createField() {
        plainClass& of = anyClass();
        string const name = any(fieldNames);
        eFieldType const type = any(types);
        auto const made = of.made->createFieldInfo(name, type, genericSet(), L"");
        auto* known = of.find(name, true);
        if (!known) {
            known = &mFields.emplace_back(plainField{name, type, &of});
            known->made = made;
            of.fields.push_back(known);
        }
        EXPECT_EQ(made, known->made);
    }

    void createStandingField() {
        plainClass& of = anyClass();
        if (of.bases.empty()) return;
        plainClass& base = *std::next(of.bases.begin(), static_cast<std::ptrdiff_t>(pick(of.bases.size())))->second;
        string const name = any(fieldNames);
        auto* const standsFor = base.find(name, true);
        if (!standsFor) return;
        auto const made = of.made->createFieldInfo(base.made, name);
        auto* known = of.find(name, false);
        if (!known) {
            known = &mFields.emplace_back(plainField{string(), standsFor->type, &of, standsFor});
            known->made = made;
            of.fields.push_back(known);
        }
        EXPECT_EQ(made, known->made);
        EXPECT_EQ(made->baseField(), madeOf(known->base));
    }

    void giveMeaning() {
        auto* const field = anyField();
        if (!field || !field->owner) return;
        field->semantic = toss() ? eSemPrimkey : eSemLength;
        field->made->setSemantic(field->semantic, genericSet(), L"");
    }

    // The names that a relation is completed with.
    plainRelation completed(plainField& from, eRelationType type, string const& name, string const& reverseName,
                            bool toField) {
        string const fieldName = from.root().name;
        string const back = toField ? from.owner->name + L"." + fieldName : from.owner->name;
        return {type, name.empty() ? fieldName : name, reverseName.empty() ? back : reverseName, {}};
    }

    // What is filed once it is made.
    void file(plainClass& of, plainClass& target, plainField& from, plainField& to, plainRelation relation,
              refPtr<relationInfo> const& made) {
        relation.pairs = {{&from, &to}};
        relation.made = made;
        from.semantic = eSemRelation;
        auto& added = mRelations.emplace_back(std::move(relation));
        of.leaving.push_back(&added);
        target.arriving.push_back(&added);
        compareRelation(added);
    }

    void relateToClass() {
        plainClass& of = anyClass();
        auto* const target = pick(10) ? &anyClass() : nullptr;
        bool const searchBases = toss();
        string const fromName = any(fieldNames);
        string const name = any(relationNames);
        string const back = any(relationNames);
        eRelationType const type = any(kinds);
        auto* const from = of.find(fromName, searchBases);
        std::string const expected = !from                ? classAssertion("pFromFld", 688)
                                     : !from->root().type ? classAssertion("pFromFld->type()", 689)
                                     : !target            ? relationAssertion("pFromField&&pToClass", 54)
                                                          : std::string();
        refPtr<relationInfo> made;
        expectReported(
            [&] {
                made =
                    of.made->createRelation(fromName, searchBases, target ? target->made : nullptr, type, name, back);
            },
            expected);
        EXPECT_EQ(bool(made), expected.empty());
        if (!made) return;
        auto& own = mFields.emplace_back(plainField{L"PTR", ePtr, target});
        own.made = tests::targetOf(made);
        EXPECT_EQ(own.made->type(), ePtr);
        auto relation = completed(*from, type, name, back, false);
        relation.own = &own;
        file(of, *target, *from, own, std::move(relation), made);
    }

    void relateToField() {
        plainClass& of = anyClass();
        auto* const target = pick(10) ? anyField() : nullptr;
        bool const searchBases = toss();
        string const fromName = any(fieldNames);
        string const name = any(relationNames);
        string const back = any(relationNames);
        eRelationType const type = any(kinds);
        auto* const from = of.find(fromName, searchBases);
        auto* const known = from && target ? relationBetween(of, *from, *target) : nullptr;
        std::string const expected = !from     ? classAssertion("pFromFld", 653)
                                     : !target ? relationAssertion("pFromField&&pToField", 19)
                                     : known   ? std::string()
                                     : !target->owner
                                         ? relationAssertion("pFromField->classInfo()&&pToField->classInfo()", 20)
                                         : std::string();
        refPtr<relationInfo> made;
        expectReported([&] { made = of.made->createRelation(fromName, searchBases, madeOf(target), type, name, back); },
                       expected);
        EXPECT_EQ(bool(made), expected.empty());
        if (known) {
            EXPECT_EQ(made, known->made);
        }
        if (!made || known) return;
        file(of, *target->owner, *from, *target, completed(*from, type, name, back, true), made);
    }

    static plainRelation* relationBetween(plainClass const& of, plainField const& from, plainField const& target) {
        for (auto* const relation : of.leaving) {
            auto const& [first, second] = relation->pairs.front();
            if (first->owner == from.owner && second->owner == target.owner && relation->targetOf(&from) == &target)
                return relation;
        }
        return nullptr;
    }

    void addPair() {
        auto* const relation = anyRelation();
        auto* const from = anyField();
        auto* const to = anyField();
        if (!relation || relation->pairs.size() > 6) return;
        auto const& [first, second] = relation->pairs.front();
        std::string expected;
        if (!from->owner || !to->owner) {
            expected = relationAssertion("pParentColumn->classInfo()&&pDepColumn->classInfo()", 135);
        } else if (first->owner != from->owner) {
            expected = relationAssertion(
                "mRelations[0].first->classInfo() && mRelations[0].first->classInfo()==pParentColumn->classInfo()",
                137);
        } else if (second->owner != to->owner) {
            expected = relationAssertion(
                "mRelations[0].second->classInfo() && mRelations[0].second->classInfo()==pDepColumn->classInfo()", 138);
        }
        expectReported([&] { EXPECT_TRUE(relation->made->addFieldRelation(from->made, to->made)); }, expected);
        if (expected.empty()) relation->pairs.emplace_back(from, to);
        compareRelation(*relation);
    }

    template <class Owner>
    void setProperty(Owner& owner) {
        string const name = any(propertyNames);
        bool const inheritable = toss();
        plainValue value{any({plainValue::text, plainValue::number, plainValue::object}), static_cast<int>(pick(100))};
        owner.properties[inheritable ? 1 : 0].insert_or_assign(name, value);
        switch (value.kind) {
        case plainValue::text: return owner.made->setUserProperty(name, value.asText(), inheritable);
        case plainValue::number: return owner.made->setUserProperty(name, genericValue(value.content), inheritable);
        default:
            refPtr<refObj> const object = refPtr<numbered>(new numbered(value.content));
            return owner.made->setUserProperty(name, object, inheritable);
        }
    }

    void setPropertyOfField() {
        if (auto* const field = anyField()) setProperty(*field);
    }

    // A value as it was read; empty when it is of no kind that was stored.
    static std::optional<plainValue> readAs(genericValue& value) {
        if (auto const* const number = value.valuePtr<int>()) return plainValue{plainValue::number, *number};
        if (auto const* const object = value.valuePtr<refPtr<refObj>>())
            return plainValue{plainValue::object, refPtrCast<numbered>(*object)->number};
        string text;
        if (!value.getValue(text) || !text.starts_with(L"text ")) return std::nullopt;
        return plainValue{plainValue::text, std::stoi(text.substr(5))};
    }

    template <class Owner>
    void readProperties(Owner& owner) {
        for (string const name : propertyNames) {
            for (bool const searchInherited : {false, true}) {
                auto const* expected = readFrom(owner, name, eText, searchInherited);
                string text = L"before";
                EXPECT_EQ(owner.made->getUserProperty(name, text, searchInherited), expected != nullptr);
                EXPECT_EQ(text, expected ? expected->asText() : string(L"before"));

                expected = readFrom(owner, name, eObject, searchInherited);
                refPtr<refObj> object;
                const_refPtr<refObj> readOnly;
                EXPECT_EQ(owner.made->getUserProperty(name, object, searchInherited), expected != nullptr);
                EXPECT_EQ(std::as_const(*owner.made).getUserProperty(name, readOnly, searchInherited),
                          expected != nullptr);
                EXPECT_EQ(object, readOnly);
                EXPECT_EQ(bool(object), expected != nullptr);
                if (object && expected) {
                    EXPECT_EQ(refPtrCast<numbered>(object)->number, expected->content);
                }

                expected = readFrom(owner, name, eValue, searchInherited);
                genericValue value;
                EXPECT_EQ(owner.made->getUserProperty(name, value, searchInherited), expected != nullptr);
                EXPECT_EQ(value.isEmpty(), expected == nullptr);
                if (expected) {
                    EXPECT_EQ(readAs(value), *expected);
                }
            }
        }
    }

    void readPropertiesOfField() {
        if (auto* const field = anyField()) readProperties(*field);
    }

    template <class Made>
    void compareListed(Made const& made, plainProperties const& expected) {
        for (bool const inheritable : {false, true}) {
            std::map<string, plainValue> actual;
            made->forEachUserProperty(
                inheritable,
                [&](scString const& name, genericValue const& value) {
                    genericValue copy(value);
                    if (auto const read = readAs(copy)) actual.emplace(name.string(), *read);
                    return true;
                },
                true);
            EXPECT_EQ(actual, expected[inheritable ? 1 : 0]);
        }
    }

    void lookUp() {
        plainClass& of = anyClass();
        bool const searchBases = toss();
        for (wchar_t const* name : relationNames)
            EXPECT_EQ(of.made->toRelation(name, searchBases), madeOf(of.findRelation(name, searchBases)));
        for (wchar_t const* name : fieldNames) {
            EXPECT_EQ(of.made->fieldInfo(name, searchBases, false), madeOf(of.find(name, searchBases)));
            EXPECT_EQ(of.made->toRelation(name, searchBases), madeOf(of.findRelation(name, searchBases)));
        }
    }

    static tests::relations madeOf(std::vector<plainRelation*> const& list) {
        tests::relations made;
        for (auto const* const relation : list)
            made.push_back(relation->made);
        return made;
    }

    void compare(plainClass& one) {
        EXPECT_EQ(tests::leaving(one.made), madeOf(one.leaving));
        EXPECT_EQ(tests::arriving(one.made), madeOf(one.arriving));
        std::vector<refPtr<fieldInfo>> fields;
        one.made->forEachFieldInfo(
            [&](refPtr<fieldInfo> const& field) {
                fields.push_back(field);
                return true;
            },
            true);
        ASSERT_EQ(fields.size(), one.fields.size());
        for (std::size_t at = 0; at < fields.size(); ++at) {
            EXPECT_EQ(fields[at], one.fields[at]->made);
            EXPECT_EQ(fields[at]->semantic(), one.fields[at]->root().semantic);
        }
    }

    void compareRelation() {
        if (auto const* const relation = anyRelation()) compareRelation(*relation);
    }

    void compareRelation(plainRelation const& relation) {
        auto const& made = relation.made;
        EXPECT_EQ(made->type(), relation.type);
        EXPECT_EQ(made->scName().string(), relation.name);
        EXPECT_EQ(made->scReverseName().string(), relation.reverseName);
        fieldPairs expected;
        for (auto const& [from, to] : relation.pairs) {
            expected.emplace_back(from->made, to->made);
            EXPECT_EQ(made->toFieldInfo(from->made), madeOf(relation.targetOf(from)));
            EXPECT_EQ(made->fromFieldInfo(to->made), madeOf(relation.sourceOf(to)));
        }
        EXPECT_EQ(tests::pairsOf(made), expected);
        auto const& [from, to] = relation.pairs.front();
        EXPECT_EQ(made->firstFromFieldInfo(), from->made);
        EXPECT_EQ(made->fromClassInfo(), from->owner ? from->owner->made : nullptr);
        EXPECT_EQ(made->toClassInfo(), to->owner ? to->owner->made : nullptr);
        if (auto* const any = anyField()) {
            EXPECT_EQ(made->toFieldInfo(any->made), madeOf(relation.targetOf(any)));
            EXPECT_EQ(made->fromFieldInfo(any->made), madeOf(relation.sourceOf(any)));
        }
    }

    // A class, or with it all that the model knows; they may be filled anew.
    void letGo() {
        if (pick(4)) {
            plainClass& one = anyClass();
            one.made->tearDown();
            one.tearDown();
            return compare(one);
        }
        for (auto& one : mClasses)
            if (mModel->classInfo(one.name, false) == one.made) one.tearDown();
        mModel->tearDown();
        for (auto& one : mClasses)
            compare(one);
    }

    template <class T>
    T any(std::initializer_list<T> of) {
        return *(of.begin() + pick(of.size()));
    }

    std::mt19937 mRandom;
    eventLog& mLog;
    tally& mLines;
    refPtr<modelInfo> mModel = modelInfo::createModelInfo(false);
    std::deque<plainClass> mClasses;
    std::deque<plainField> mFields;
    std::deque<plainRelation> mRelations;
};

// behaviour: CR-01, CR-02, CR-03, CR-04, CR-05, CR-06, CR-07, CR-08, CR-11, RI-01, RI-07, RI-08, RI-09, UP-02, UP-03,
// behaviour: UP-04, UP-05, UP-06, UP-09, GT-01, GT-03, GT-04, GT-11
TEST(randomGraph, agreesWithPlainListsAndIsFreedWhole) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE(seed);
        eventLog log;
        tally lines;
        {
            twinGraphs both(seed, log, lines);
            for (int step = 0; step < 1000 && !testing::Test::HasFailure(); ++step) {
                SCOPED_TRACE(step);
                both.step();
            }
            both.compareAll();
        }
        lines.add(log.take());
        lines.expectAllFreed();
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

} // namespace
} // namespace zov::metamodel
