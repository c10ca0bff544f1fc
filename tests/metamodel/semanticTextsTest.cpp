// Semantics as texts: how they are read, and what is shown of them.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fieldChain.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::events;
using tests::fieldChain;
using tests::names;
using tests::ownClass;
using zov::tests::eventLog;

constexpr std::pair<eFieldSemantics, wchar_t const*> words[] = {
    {eSemLength, L"length"},       {eSemArea, L"area"}, {eSemVolume, L"volume"},
    {eSemMonetary, L"monetary"},   {eSemTime, L"time"}, {eSemDate, L"date"},
    {eSemTimestamp, L"timestamp"}, {eSemEnum, L"enum"}, {eSemBits, L"bits"}};

// A semantics text read into a semantic that it does not name and attributes that have one entry of another key.
struct read {
    bool accepted = false;
    eFieldSemantics semantic = static_cast<eFieldSemantics>(0x1);
    genericSet attribs;
    events reported;

    explicit read(string const& text) {
        attribs.setValue(L"kept", 7, false);
        eventLog log;
        accepted = fieldInfo::parseSemantics(text, semantic, attribs);
        reported = log.take();
    }
};

// Read as this semantic, which adds nothing to the attributes.
void expectPlain(string const& text, eFieldSemantics semantic, bool accepted = true) {
    SCOPED_TRACE(text.toUtf8());
    read const result(text);
    EXPECT_EQ(result.accepted, accepted);
    EXPECT_EQ(result.semantic, semantic);
    EXPECT_EQ(result.attribs.size(), 1u);
    EXPECT_EQ(result.reported, events());
}

void expectUnknown(string const& text) {
    expectPlain(text, eSemNone, false);
}

// Read as a custom semantic of this name, which is held as exactly a string.
void expectCustom(string const& text, string const& name) {
    SCOPED_TRACE(text.toUtf8());
    read const result(text);
    EXPECT_TRUE(result.accepted);
    EXPECT_EQ(result.semantic, eSemCustom);
    string* held = nullptr;
    ASSERT_TRUE(result.attribs.getValuePtr(L"custom_semantic", held));
    EXPECT_EQ(*held, name);
    EXPECT_EQ(result.attribs.size(), 2u);
    EXPECT_EQ(result.reported, events());
}

// Read as a relation to these classes.
void expectRelation(string const& text, names const& classes) {
    SCOPED_TRACE(text.toUtf8());
    read const result(text);
    EXPECT_TRUE(result.accepted);
    EXPECT_EQ(result.semantic, eSemRelation);
    names* held = nullptr;
    ASSERT_TRUE(result.attribs.getValuePtr(L"referencedClasses", held));
    EXPECT_EQ(*held, classes);
    EXPECT_EQ(result.attribs.size(), 2u);
    EXPECT_EQ(result.reported, events());
}

// behaviour: FS-20
TEST(semanticTexts, areWordsInAnyLetterCase) {
    expectPlain(L"", eSemNone);
    for (auto const& [semantic, word] : words) {
        expectPlain(word, semantic);
        string upper = word;
        for (wchar_t& letter : upper)
            letter = static_cast<wchar_t>(letter - L'a' + L'A');
        expectPlain(upper, semantic);
    }
    expectPlain(L"TimeStamp", eSemTimestamp);
}

// behaviour: FS-20
TEST(semanticTexts, areFoldedByUnicodesRules) {
    expectPlain(L"PRIM\u212aEY", eSemPrimkey);
    expectPlain(L"T\u0130ME", eSemTime);
}

// behaviour: FS-21
TEST(semanticTexts, namePrimaryKeysByTheirStart) {
    for (wchar_t const* text : {L"primkey", L"Primkey", L"PRIMKEY_ID", L"primkeys", L"primkey custom(a)",
                                L"primkeyrelation(xa)", L"primkeyprimkey", L"primkey "})
        expectPlain(text, eSemPrimkey);
}

// behaviour: FS-22
TEST(semanticTexts, doNotNamePrimaryKeysElsewhere) {
    for (wchar_t const* text : {L"myprimkey", L" primkey", L"prim key", L"primke", L"prim", L"lengthprimkey"})
        expectUnknown(text);
}

// behaviour: FS-22
TEST(semanticTexts, areRefusedWithAnythingAroundAWord) {
    for (auto const& [semantic, word] : words) {
        expectUnknown(string(word) + L" ");
        expectUnknown(L" " + string(word));
        expectUnknown(string(word) + L"s");
        expectUnknown(string(word) + L"()");
        expectUnknown(string(word, 1));
    }
}

// behaviour: FS-22
TEST(semanticTexts, areRefusedWhenTheyNameNothing) {
    for (wchar_t const* text : {L" ", L"\t", L"none", L"relation", L"relation (a)", L"custom", L"custom (a)",
                                L"custom\uff08a)", L"kind", L"(", L")", L"int", L"1", L"\u00c4rea", L"\u9577\u3055"})
        expectUnknown(text);
    expectUnknown(string(std::wstring_view(L"date\0", 5)));
}

// behaviour: FS-23
TEST(semanticTexts, nameCustomSemanticsInLowerCase) {
    expectCustom(L"Custom(MyKind)", L"mykind");
    expectCustom(L"custom(ÄRMEL Größe)", L"ärmel größe");
    expectCustom(L"custom(漢字)", L"漢字");
}

// behaviour: FS-23
TEST(semanticTexts, nameCustomSemanticsUpToTheLastParentheses) {
    expectCustom(L"custom(a", L"a");
    expectCustom(L"custom(a)))", L"a");
    expectCustom(L"custom(a(b))", L"a(b");
    expectCustom(L"custom(a)b", L"a)b");
    expectCustom(L"custom(a) ", L"a) ");
    expectCustom(L"custom()a)", L")a");
}

// behaviour: FS-23
TEST(semanticTexts, keepBlanksAndCommasOfACustomName) {
    expectCustom(L"custom( a \t b, c )", L" a \t b, c ");
}

// behaviour: FS-23
TEST(semanticTexts, mayNameACustomSemanticByTheEmptyText) {
    expectCustom(L"custom()", L"");
    expectCustom(L"custom(", L"");
    expectCustom(L"custom())))", L"");
}

// behaviour: FS-23
TEST(semanticTexts, findACustomSemanticAnywhere) {
    expectCustom(L"xcustom(a)", L"a");
    expectCustom(L"length custom(a)", L"a");
    expectCustom(L"custom(a)custom(b)", L"a)custom(b");
    expectCustom(L"customcustom(a)", L"a");
}

// behaviour: FS-24, FS-30
TEST(semanticTexts, nameTheClassesOfARelationWithoutTheFirstCharacter) {
    expectRelation(L"relation(Xa, Yb)", {L"a", L"yb"});
    expectRelation(L"relation(part)", {L"art"});
    expectRelation(L"relation( Part)", {L"part"});
    expectRelation(L"relation(\tpart,order)", {L"part", L"order"});
    expectRelation(L"relation(ÄRMEL)", {L"rmel"});
    expectRelation(L"relation(relation(", {L"elation("});
}

// behaviour: FS-24
TEST(semanticTexts, loseAllBlanksAndTabsInTheClassesOfARelation) {
    expectRelation(L"relation(x p a r t ,\to\trder )", {L"part", L"order"});
    expectRelation(L"relation(xa\u00a0b)", {L"a\u00a0b"});
}

// behaviour: FS-24
TEST(semanticTexts, keepEmptyClassesOfARelation) {
    expectRelation(L"relation(,,)", {L"", L""});
    expectRelation(L"relation(xa,,b,)", {L"a", L"", L"b", L""});
    expectRelation(L"relation(x , )", {L"", L""});
}

// behaviour: FS-24
TEST(semanticTexts, nameTheClassesOfARelationUpToTheLastParentheses) {
    expectRelation(L"relation(xa", {L"a"});
    expectRelation(L"relation(xa)))", {L"a"});
    expectRelation(L"relation(xa) ", {L"a)"});
    expectRelation(L"relation(xa)b", {L"a)b"});
    expectRelation(L"relation(xa(b))", {L"a(b"});
}

// behaviour: FS-24
TEST(semanticTexts, findARelationAnywhere) {
    expectRelation(L"myrelation(xpart)", {L"part"});
    expectRelation(L"length relation(xpart)", {L"part"});
    expectRelation(L"relation(xa)relation(yb)", {L"a)relation(yb"});
}

// behaviour: FS-25
TEST(semanticTexts, meanNothingWhenNoClassIsLeft) {
    expectPlain(L"relation()", eSemNone);
    expectPlain(L"Relation(x)", eSemNone);
    expectPlain(L"relation(x", eSemNone);
    expectPlain(L"relation())))", eSemNone);
    expectPlain(L"relation(,)", eSemNone);
}

// behaviour: FS-25
TEST(semanticTexts, meanNothingWhenOnlyBlanksAreLeft) {
    expectPlain(L"relation(x \t)", eSemNone);
    expectPlain(L"relation(   )", eSemNone);
}

// behaviour: FS-30
TEST(semanticTexts, areOutOfRangeWhenTheyEndWithTheParenthesisOfARelation) {
    for (wchar_t const* text : {L"relation(", L"RELATION(", L"my relation("}) {
        SCOPED_TRACE(string(text).toUtf8());
        eFieldSemantics semantic = eSemBits;
        genericSet attribs;
        eventLog log;
        EXPECT_THROW(fieldInfo::parseSemantics(text, semantic, attribs), std::out_of_range);
        EXPECT_EQ(semantic, eSemBits);
        EXPECT_EQ(attribs.size(), 0u);
        EXPECT_EQ(log.take(), events());
    }
}

// behaviour: FS-26
TEST(semanticTexts, areReadByTheFirstRuleThatFits) {
    expectCustom(L"xcustom(a)relation(b)", L"a)relation(b");
    expectCustom(L"relation(custom(x))", L"x");
    expectCustom(L"relation(a)custom(", L"");
    expectCustom(L"custom(relation(", L"relation(");
    expectCustom(L"myprimkey custom(a)", L"a");
    expectPlain(L"primkey relation(", eSemPrimkey);
    expectRelation(L"relation(xprimkey)", {L"primkey"});
}

// behaviour: FS-27
TEST(semanticTexts, replaceWhatIsUnderTheirKeyAndNothingElse) {
    genericSet attribs;
    attribs.setValue(L"custom_semantic", 5, false);
    attribs.setValue(L"referencedClasses", 6, false);
    eFieldSemantics semantic = eSemNone;
    EXPECT_TRUE(fieldInfo::parseSemantics(L"custom(a)", semantic, attribs));
    string name;
    EXPECT_TRUE(attribs.getValue(L"custom_semantic", name));
    EXPECT_EQ(name, L"a");
    int number = 0;
    EXPECT_TRUE(attribs.getValue(L"referencedClasses", number));
    EXPECT_EQ(number, 6);
    EXPECT_TRUE(fieldInfo::parseSemantics(L"relation(xb)", semantic, attribs));
    names* classes = nullptr;
    ASSERT_TRUE(attribs.getValuePtr(L"referencedClasses", classes));
    EXPECT_EQ(*classes, names{L"b"});
    EXPECT_TRUE(attribs.getValue(L"custom_semantic", name));
    EXPECT_EQ(name, L"a");
    EXPECT_EQ(attribs.size(), 2u);
}

// behaviour: FS-27
TEST(semanticTexts, leaveAttributesOfFormerTextsThere) {
    genericSet attribs;
    eFieldSemantics semantic = eSemNone;
    EXPECT_TRUE(fieldInfo::parseSemantics(L"relation(xa)", semantic, attribs));
    for (wchar_t const* text : {L"", L"length", L"primkey", L"relation()"}) {
        EXPECT_TRUE(fieldInfo::parseSemantics(text, semantic, attribs));
        EXPECT_EQ(attribs.size(), 1u);
    }
    EXPECT_FALSE(fieldInfo::parseSemantics(L"kind", semantic, attribs));
    EXPECT_EQ(attribs.size(), 1u);
}

// behaviour: FS-27
TEST(semanticTexts, areNotChangedByBeingRead) {
    string const text = L"Custom( MyKind )";
    read const result(text);
    EXPECT_EQ(text, L"Custom( MyKind )");
    EXPECT_TRUE(result.accepted);
}

// behaviour: FS-28
TEST(semanticTexts, existForPlainSemanticsAndRelations) {
    for (auto const& [semantic, word] : words)
        EXPECT_EQ(fieldInfo::semanticStringFromType(semantic).string(), word);
    EXPECT_EQ(fieldInfo::semanticStringFromType(eSemRelation).string(), L"relation");
    EXPECT_EQ(fieldInfo::semanticStringFromType(eSemNone), scString());
}

// behaviour: FS-31
TEST(semanticTexts, areMissingForKeysCustomSemanticsAndOtherValues) {
    for (auto const semantic :
         {eSemPrimkey, eSemCustom, static_cast<eFieldSemantics>(0x1), static_cast<eFieldSemantics>(0x8000000),
          static_cast<eFieldSemantics>(eSemLength | eSemArea), static_cast<eFieldSemantics>(0xFFFFFFFF)})
        EXPECT_EQ(fieldInfo::semanticStringFromType(semantic), scString());
}

// behaviour: FS-28
TEST(semanticTexts, ofPlainSemanticsAreReadBackAsThemselves) {
    for (auto const& [semantic, word] : words)
        expectPlain(fieldInfo::semanticStringFromType(semantic).string(), semantic);
}

// behaviour: FS-29
TEST(semanticTexts, giveTheirClassesUnderAKeyThatHostsCanAskFor) {
    EXPECT_EQ(string(fieldInfo::referencedClasses()), L"referencedClasses");
}

// behaviour: FS-32
TEST(semanticTexts, ofFieldsAreTheTextOfTheirType) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width", eDouble);
    EXPECT_EQ(width->semanticString().string(), L"double");
    for (eFieldSemantics const semantic : {eSemLength, eSemArea, eSemVolume, eSemMonetary, eSemPrimkey, eSemNone}) {
        width->setSemantic(semantic, genericSet(), L"ignored");
        EXPECT_EQ(width->semanticString().string(), L"double");
    }
}

// behaviour: FS-32
TEST(semanticTexts, ofFieldsFollowTheTypeThatASemanticMadeThem) {
    ownClass const part(L"part");
    auto const when = addField(part, L"when", eTimestamp);
    when->setSemantic(eSemTimestamp, genericSet(), L"");
    EXPECT_EQ(when->semanticString().string(), L"timestamp");
    when->setSemantic(eSemDate, genericSet(), L"");
    EXPECT_EQ(when->semanticString().string(), L"date");
}

// behaviour: FS-32
TEST(semanticTexts, ofFieldsOfACustomTypeAreEmptyWhateverTheTypeIsCalled) {
    ownClass const part(L"part");
    auto const where = part->createFieldInfo(L"where", eCustom, genericSet(), L"Point");
    where->setSemantic(eSemLength, genericSet(), L"");
    EXPECT_EQ(where->typeString().string(), L"Point");
    EXPECT_EQ(where->semanticString(), scString());
}

// behaviour: FS-33
TEST(semanticTexts, ofCustomSemanticsAreTheirNameAsGiven) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    width->setSemantic(eSemCustom, genericSet(), L"My Kind");
    EXPECT_EQ(width->semanticString().string(), L"My Kind");
    genericSet attribs;
    attribs.setValue(L"custom_semantic", L"Other Kind", false);
    width->setSemantic(eSemCustom, attribs, L"");
    EXPECT_EQ(width->semanticString().string(), L"Other Kind");
}

// behaviour: FS-33
TEST(semanticTexts, ofRelationsAreTheNameThatTheFieldHadBefore) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    width->setSemantic(eSemRelation, genericSet(), L"ignored");
    EXPECT_EQ(width->semanticString(), scString());
    width->setSemantic(eSemCustom, genericSet(), L"My Kind");
    width->setSemantic(eSemRelation, genericSet(), L"ignored");
    EXPECT_EQ(width->semanticString().string(), L"My Kind");
}

// behaviour: FS-33
TEST(semanticTexts, ofStandingFieldsAreThoseOfTheRoot) {
    fieldChain const chain(eDouble);
    EXPECT_EQ(chain.field->semanticString().string(), L"double");
    chain.field->setSemantic(eSemCustom, genericSet(), L"Own Kind");
    EXPECT_EQ(chain.field->semanticString().string(), L"double");
    chain.root->setSemantic(eSemCustom, genericSet(), L"Root Kind");
    chain.field->setSemantic(eSemLength, genericSet(), L"");
    EXPECT_EQ(chain.middle->semanticString().string(), L"Root Kind");
    EXPECT_EQ(chain.field->semanticString().string(), L"Root Kind");
}

// behaviour: FS-34
TEST(semanticTexts, leadToTheSemanticsOfFields) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    eFieldSemantics semantic = eSemNone;
    genericSet attribs;
    ASSERT_TRUE(fieldInfo::parseSemantics(L"Custom(Tolerance Class)", semantic, attribs));
    width->setSemantic(semantic, attribs, L"");
    EXPECT_EQ(width->semantic(), eSemCustom);
    EXPECT_EQ(width->semanticString().string(), L"tolerance class");
}

// behaviour: FS-34
TEST(semanticTexts, ofACustomSemanticWithoutANameAreReadButRefusedByFields) {
    ownClass const part(L"part");
    auto const width = addField(part, L"width");
    eFieldSemantics semantic = eSemNone;
    genericSet attribs;
    ASSERT_TRUE(fieldInfo::parseSemantics(L"custom()", semantic, attribs));
    eventLog log;
    width->setSemantic(semantic, attribs, L"");
    EXPECT_EQ(log.take(), events{tests::fieldAssertion("semStr.length()", 634)});
    EXPECT_EQ(width->semantic(), eSemNone);
}

// behaviour: FS-34
TEST(semanticTexts, ofARelationLeaveTheClassesInTheAttributesOfTheField) {
    ownClass const part(L"part");
    auto const order = addField(part, L"order");
    eFieldSemantics semantic = eSemNone;
    genericSet attribs;
    ASSERT_TRUE(fieldInfo::parseSemantics(L"relation( order)", semantic, attribs));
    order->setSemantic(semantic, attribs, L"");
    EXPECT_EQ(order->semantic(), eSemRelation);
    names* classes = nullptr;
    ASSERT_TRUE(order->semanticAttribs().getValuePtr(fieldInfo::referencedClasses(), classes));
    EXPECT_EQ(*classes, names{L"order"});
}

} // namespace
} // namespace zov::metamodel
