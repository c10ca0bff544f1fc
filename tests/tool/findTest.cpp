// What `find` says of names.
#include <gtest/gtest.h>

#include "testDatabase.h"
#include "toolRun.h"

namespace {

constexpr char const* cItems = "CREATE TABLE Item (id INTEGER PRIMARY KEY, name VARCHAR(80) NOT NULL UNIQUE);"
                               "CREATE TABLE Part (id INTEGER PRIMARY KEY REFERENCES Item, Width DOUBLE NOT NULL);"
                               "CREATE TABLE Machined (id INTEGER PRIMARY KEY REFERENCES Part, price MONEY);";

} // namespace

// behaviour: TL-25
TEST(find, tellsAFieldInAnyLetterCase) {
    testDatabase const made(cItems);
    toolRun const run = runTool({"find", made.path(), "Part.Width", "pART.wIDTH", "Machined.price"});
    EXPECT_EQ(run.mStatus, 0);
    EXPECT_EQ(run.mOut, "Part.Width: field part.width \"Width\", double, mandatory, null 0\n"
                        "pART.wIDTH: field part.width \"Width\", double, mandatory, null 0\n"
                        "Machined.price: field machined.price \"price\", custom \"MONEY\"\n");
}

// behaviour: TL-26
TEST(find, tellsAClass) {
    testDatabase const made(std::string(cItems) + "CREATE VIEW Wide AS SELECT * FROM Part;");
    toolRun const run = runTool({"find", made.path(), "ITEM", "wide"});
    EXPECT_EQ(run.mStatus, 0);
    EXPECT_EQ(run.mOut, "ITEM: class item \"Item\", 2 fields, identified by id\n"
                        "wide: class wide \"Wide\", abstract, 2 fields\n");
}

// behaviour: TL-27
TEST(find, tellsAFieldOfADirectBase) {
    testDatabase const made(cItems);
    toolRun const run = runTool({"find", made.path(), "--inherit", "Machined.width"});
    EXPECT_EQ(run.mStatus, 0);
    EXPECT_EQ(run.mOut,
              "Machined.width: field part.width \"Width\", double, mandatory, null 0, inherited from the direct "
              "base part \"Part\"\n");
}

// behaviour: TL-28
TEST(find, tellsAFieldFromFurtherUp) {
    testDatabase const made(cItems);
    toolRun const run = runTool({"find", made.path(), "Machined.name", "--inherit"});
    EXPECT_EQ(run.mStatus, 0);
    EXPECT_EQ(run.mOut,
              "Machined.name: field item.name \"name\", string(80), mandatory, unique, null \"\", inherited from "
              "further up, from item \"Item\"\n");
}

// behaviour: TL-28
TEST(find, prefersTheClassesOwnField) {
    testDatabase const made(cItems);
    EXPECT_EQ(runTool({"find", made.path(), "--inherit", "Machined.id"}).mOut,
              "Machined.id: field machined.id \"id\", long, key, unique, null 0\n");
}

// behaviour: TL-29
TEST(find, answersEveryNameAndTellsTheUnknownOnes) {
    testDatabase const made(cItems);
    toolRun const run = runTool({"find", made.path(), "Nobody", "Part.colour", "Nobody.name", "Item", ".", "a b"});
    EXPECT_EQ(run.mStatus, 1);
    EXPECT_EQ(run.mErr, "");
    EXPECT_EQ(run.mOut, "Nobody: unknown; there is no class of this name\n"
                        "Part.colour: unknown; the class part \"Part\" has no such field, nor has a base of it\n"
                        "Nobody.name: unknown; there is no class \"Nobody\"\n"
                        "Item: class item \"Item\", 2 fields, identified by id\n"
                        ".: unknown; there is no class \"\"\n"
                        "\"a b\": unknown; there is no class of this name\n");
}

// behaviour: TL-29
TEST(find, knowsNoInheritedFieldWithoutInherit) {
    testDatabase const made(cItems);
    EXPECT_EQ(runTool({"find", made.path(), "Machined.width"}).mStatus, 1);
}

// behaviour: TL-30
TEST(find, tellsAllFieldsThatSeveralBasesOffer) {
    testDatabase const made("CREATE TABLE A (id INTEGER PRIMARY KEY, name TEXT);"
                            "CREATE TABLE B (id INTEGER PRIMARY KEY, name VARCHAR(8));"
                            "CREATE TABLE C (id INTEGER PRIMARY KEY REFERENCES A REFERENCES B);"
                            "CREATE TABLE D (id INTEGER PRIMARY KEY REFERENCES C);");
    std::string const other = "    note: it may as well be b.name: nothing tells which of several bases comes first\n";
    EXPECT_EQ(runTool({"find", made.path(), "--inherit", "C.name"}).mOut,
              "C.name: field a.name \"name\", string, null \"\", inherited from the direct base a \"A\"\n" + other);
    EXPECT_EQ(runTool({"find", made.path(), "--inherit", "D.name"}).mOut,
              "D.name: field a.name \"name\", string, null \"\", inherited from further up, from a \"A\"\n" + other);
}

// behaviour: TL-31
TEST(find, takesWhatFollowsTwoDashesForNames) {
    testDatabase const made("CREATE TABLE \"--inherit\" (a INT);");
    toolRun const run = runTool({"find", made.path(), "--", "--inherit", "--INHERIT.a"});
    EXPECT_EQ(run.mStatus, 0);
    EXPECT_EQ(run.mOut, "--inherit: class --inherit \"--inherit\", 1 field\n"
                        "--INHERIT.a: field --inherit.a \"a\", long, null 0\n");
}
