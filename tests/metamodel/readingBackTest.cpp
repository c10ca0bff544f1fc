// Whatever a host put into a model, a host can list.
#include "zovMetamodel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "graphFixture.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::arriving;
using tests::leaving;
using tests::orders;
using tests::ownModel;
using tests::pairsOf;

using lines = std::vector<std::string>;

// One line each, for all that can be listed of a model through const pointers.
class description {
public:
    explicit description(const_refPtr<modelInfo> const& model) {
        model->forEachAddProp([this](auto const& key, auto const& value) { return property("model", key, value); },
                              true);
        model->forEachClassInfo([this](classInfo::entry const& entry) { return describe(entry.second); }, true);
        std::sort(mLines.begin(), mLines.end());
    }

    lines const& sorted() const { return mLines; }

private:
    bool add(std::string line) {
        mLines.push_back(std::move(line));
        return true;
    }

    bool property(std::string const& owner, scString const& key, genericValue const& value) {
        string text;
        value.getValue(text);
        return add(owner + ": " + key.string().toUtf8() + " = " + text.toUtf8());
    }

    static std::string nameOf(const_refPtr<fieldInfo> const& field) {
        return field->classInfo()->scName().string().toUtf8() + "." + field->scName().string().toUtf8();
    }

    template <class Owner>
    void describeProperties(std::string const& name, Owner const& owner) {
        for (bool const inheritable : {false, true}) {
            std::string const kind = inheritable ? " inheritable" : " private";
            owner->forEachUserProperty(
                inheritable,
                [&](scString const& key, genericValue const& value) { return property(name + kind, key, value); },
                true);
        }
    }

    bool describe(const_refPtr<classInfo> const& one) {
        std::string const name = one->scName().string().toUtf8();
        add(name + (one->isAbstract() ? " abstract" : "") + " label " + one->label().toUtf8());
        std::vector<string> aliases;
        one->getAliasnames(aliases);
        for (auto const& alias : aliases)
            add(name + " alias " + alias.toUtf8());
        one->forEachBaseClass(
            [&](classInfo::entry const& base) { return add(name + " base " + base.first.string().toUtf8()); }, true);
        one->forEachFieldInfo([&](const_refPtr<fieldInfo> const& field) { return describe(field); }, true);
        std::vector<refPtr<fieldInfo>> keys;
        one->getIdFieldInfos(keys);
        for (auto const& key : keys)
            add(name + " key " + key->scName().string().toUtf8());
        one->forEachToRelation([&](const_refPtr<relationInfo> const& to) { return describe(name + " to ", to); }, true);
        one->forEachFromRelation(
            [&](const_refPtr<relationInfo> const& from) { return describe(name + " from ", from); }, true);
        describeProperties(name, one);
        return true;
    }

    bool describe(const_refPtr<fieldInfo> const& field) {
        std::string const name = nameOf(field);
        add(name + " " + field->typeString().string().toUtf8() + (field->isMandatory() ? " mandatory" : "") +
            (field->isUnique() ? " unique" : "") + " label " + field->label().toUtf8() + " unit " +
            field->unit().toUtf8());
        if (field->baseField()) add(name + " stands for " + nameOf(field->baseField()));
        describeProperties(name, field);
        return true;
    }

    bool describe(std::string const& side, const_refPtr<relationInfo> const& relation) {
        std::string line = side + relation->scName().string().toUtf8() + "/" +
                           relation->scReverseName().string().toUtf8() + " " +
                           relationTypeString(relation->type()).string().toUtf8();
        relation->forEachFieldPair(
            [&](const_refPtr<fieldInfo> const& from, const_refPtr<fieldInfo> const& to) {
                line += " " + nameOf(from) + "=" + nameOf(to);
                return true;
            },
            true);
        return add(line);
    }

    lines mLines;
};

// Everything that a host can say.
void fill(modelInfo& model) {
    model.setAddProp(L"author", L"somebody");
    auto const item = model.createClassInfo(L"Item");
    item->setAbstract(true);
    item->setUserProperty(L"table", L"t_item", true);
    addField(item, L"id")->setSemantic(eSemPrimkey, genericSet(), L"");
    auto const part = model.createClassInfo(L"Part");
    part->setLabel(L"A part");
    part->addAliasname(L"Piece");
    part->addBaseClass(item);
    part->createFieldInfo(item, L"id");
    auto const width = addField(part, L"width", eDouble);
    width->setLabel(L"The width");
    width->setUnit(L"mm");
    width->setUserProperty(L"column", L"w", false);
    width->setUserProperty(L"digits", genericValue(3), true);
    addField(part, L"maker");
    addField(part, L"site");
    auto const maker = model.createClassInfo(L"Maker");
    auto const makerId = addField(maker, L"id");
    auto const site = addField(maker, L"site");
    part->createRelation(L"maker", false, makerId, eAgg, L"made by", L"makes")
        ->addFieldRelation(part->fieldInfo(L"site", false, false), site);
    part->createRelation(L"site", false, maker, eRef, L"", L"");
}

// behaviour: RB-01
TEST(readingBack, listsWhateverAHostPutIn) {
    ownModel const model;
    fill(*model.pointer());
    EXPECT_EQ(description(model.pointer()).sorted(),
              (lines{
                  "item abstract label ",
                  "item inheritable: table = t_item",
                  "item key id",
                  "item.id int mandatory unique label  unit ",
                  "maker from made by/makes agg part.maker=maker.id part.site=maker.site",
                  "maker from site/part ref part.site=maker.PTR",
                  "maker label ",
                  "maker.id int label  unit ",
                  "maker.site int label  unit ",
                  "model: author = somebody",
                  "model: caseSensitiveNames = false",
                  "part alias Piece",
                  "part base item",
                  "part key id",
                  "part label A part",
                  "part to made by/makes agg part.maker=maker.id part.site=maker.site",
                  "part to site/part ref part.site=maker.PTR",
                  "part.id int label  unit ",
                  "part.id stands for item.id",
                  "part.maker int label  unit ",
                  "part.site int label  unit ",
                  "part.width double label The width unit mm",
                  "part.width inheritable: digits = 3",
                  "part.width private: column = w",
              }));
}

// behaviour: RB-02
TEST(readingBack, changesNothing) {
    ownModel const model;
    fill(*model.pointer());
    auto const part = model->classInfo(L"part", false);
    auto const width = part->fieldInfo(L"width", false, false);
    auto const relation = leaving(part).front();
    auto const target = pairsOf(relation).front().second;
    auto const countsNow = [&] {
        return std::vector{part->refCount(), width->refCount(), relation->refCount(), target->refCount()};
    };
    auto const counts = countsNow();
    auto const first = description(model.pointer()).sorted();
    EXPECT_EQ(description(model.pointer()).sorted(), first);
    EXPECT_EQ(countsNow(), counts);
}

// behaviour: RB-01
TEST(readingBack, givesTwoModelsThatWereFilledAlikeOneDescription) {
    ownModel const model;
    ownModel const other;
    fill(*model.pointer());
    EXPECT_NE(description(model.pointer()).sorted(), description(other.pointer()).sorted());
    fill(*other.pointer());
    EXPECT_EQ(description(model.pointer()).sorted(), description(other.pointer()).sorted());
}

// behaviour: RB-03
TEST(readingBack, showsTheSameRelationsFromBothSides) {
    ownModel const model;
    fill(*model.pointer());
    auto const part = model->classInfo(L"part", false);
    auto const maker = model->classInfo(L"maker", false);
    EXPECT_EQ(leaving(part).size(), 2u);
    EXPECT_EQ(leaving(part), arriving(maker));
}

// The fields that no class lists come to light through the relations.
// behaviour: RB-04
TEST(readingBack, reachesThePointerFieldsThroughTheirRelations) {
    ownModel const model;
    fill(*model.pointer());
    auto const maker = model->classInfo(L"maker", false);
    std::vector<refPtr<fieldInfo>> pointerFields;
    for (auto const& relation : arriving(maker)) {
        for (auto const& [from, to] : pairsOf(relation)) {
            if (to->type() == ePtr) pointerFields.push_back(to);
        }
    }
    ASSERT_EQ(pointerFields.size(), 1u);
    EXPECT_EQ(pointerFields[0]->qualifiedName(), L"maker.PTR");
    pointerFields[0]->setUserProperty(L"note", L"the host's", false);
    string note;
    EXPECT_TRUE(pairsOf(arriving(maker)[1]).front().second->getUserProperty(L"note", note, false));
    EXPECT_EQ(note, L"the host's");
}

} // namespace
} // namespace zov::metamodel
