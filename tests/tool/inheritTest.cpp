// What --inherit makes of foreign keys.
#include <gtest/gtest.h>

#include "testDatabase.h"
#include "toolRun.h"

using names = std::vector<std::string>;

namespace {

names basesOf(std::string const& label, std::string const& sql) {
    testDatabase const made(sql);
    jsonList const answer(made.path(), true);
    EXPECT_EQ(answer.mRun.mErr, "");
    return answer.classOf(label).at("baseClasses");
}

} // namespace

// behaviour: TL-20
TEST(inherit, isOnlyOnRequest) {
    testDatabase const made("CREATE TABLE Item (id INTEGER PRIMARY KEY);"
                            "CREATE TABLE Part (id INTEGER PRIMARY KEY REFERENCES Item (id));");
    EXPECT_TRUE(jsonList(made.path()).classOf("Part").at("baseClasses").empty());
    EXPECT_EQ(runTool({"find", made.path(), "Part"}).mOut, "Part: class part \"Part\", 1 field, identified by id\n");
}

// behaviour: TL-21
TEST(inherit, derivesWhereTheKeyRefersToTheKey) {
    EXPECT_EQ(basesOf("Part", "CREATE TABLE Item (id INTEGER PRIMARY KEY);"
                              "CREATE TABLE Part (no INTEGER PRIMARY KEY REFERENCES Item (id));"),
              names{"item"});
}

// behaviour: TL-21
TEST(inherit, showsTheBaseToPeople) {
    testDatabase const made("CREATE TABLE Item (id INTEGER PRIMARY KEY);"
                            "CREATE TABLE Part (no INTEGER PRIMARY KEY REFERENCES Item (id));");
    EXPECT_TRUE(holds(runTool({"list", made.path(), "--inherit"}).mOut, "part \"Part\", derived from item\n"));
    EXPECT_EQ(runTool({"find", made.path(), "--inherit", "Part"}).mOut,
              "Part: class part \"Part\", derived from item, 1 field, identified by no\n");
}

// behaviour: TL-21
TEST(inherit, readsReferencesInAnySpellingAndOrder) {
    EXPECT_EQ(basesOf("Part", "CREATE TABLE Part (no INTEGER PRIMARY KEY REFERENCES ITEM);"
                              "CREATE TABLE Item (id INTEGER PRIMARY KEY);"),
              names{"item"});
    EXPECT_EQ(basesOf("Part", "CREATE TABLE Item (Id INTEGER PRIMARY KEY);"
                              "CREATE TABLE Part (No INTEGER PRIMARY KEY, FOREIGN KEY (NO) REFERENCES item (ID));"),
              names{"item"});
}

// behaviour: TL-21
TEST(inherit, keepsTheTablesOwnColumns) {
    testDatabase const made("CREATE TABLE Item (id INTEGER PRIMARY KEY, name VARCHAR(80));"
                            "CREATE TABLE Part (id INTEGER PRIMARY KEY REFERENCES Item (id), name VARCHAR(20));");
    jsonList const answer(made.path(), true);
    EXPECT_EQ(answer.labelsOf("Part"), (names{"id", "name"}));
    EXPECT_EQ(answer.fieldOf("Part", "name").at("length"), 20);
    EXPECT_EQ(answer.fieldOf("Part", "name").at("qualifiedName"), "part.name");
}

// behaviour: TL-21
TEST(inherit, takesSeveralBases) {
    EXPECT_EQ(basesOf("Both", "CREATE TABLE A (id INTEGER PRIMARY KEY); CREATE TABLE B (id INTEGER PRIMARY KEY);"
                              "CREATE TABLE Both (id INTEGER PRIMARY KEY REFERENCES A REFERENCES B);"),
              (names{"a", "b"}));
}

// behaviour: TL-22
TEST(inherit, needsTheWholeKeyOnBothSides) {
    std::string const base = "CREATE TABLE Base (a INT, b INT, c INT UNIQUE, PRIMARY KEY (a, b));"
                             "CREATE TABLE Small (a INT PRIMARY KEY);";
    EXPECT_EQ(basesOf("T", base + "CREATE TABLE T (a INT, b INT, FOREIGN KEY (a, b) REFERENCES Base (a, b));"),
              names());
    EXPECT_EQ(basesOf("T", base + "CREATE TABLE T (a INT PRIMARY KEY, b INT, "
                                  "FOREIGN KEY (a, b) REFERENCES Base (a, b));"),
              names());
    EXPECT_EQ(basesOf("T", base + "CREATE TABLE T (a INT, b INT REFERENCES Small (a), PRIMARY KEY (a, b));"), names());
    EXPECT_EQ(basesOf("T", base + "CREATE TABLE T (a INT PRIMARY KEY REFERENCES Base (c));"), names());
}

// behaviour: TL-22
TEST(inherit, derivesFromNothingThatIsNotThere) {
    testDatabase const made("CREATE TABLE T (a INT PRIMARY KEY REFERENCES Gone (a));");
    EXPECT_TRUE(jsonList(made.path(), true).classOf("T").at("baseClasses").empty());
    EXPECT_EQ(basesOf("T", "CREATE TABLE T (a INT PRIMARY KEY REFERENCES T (a));"), names());
}

// behaviour: TL-23
TEST(inherit, comparesCompoundKeysAsSets) {
    EXPECT_EQ(basesOf("T",
                      "CREATE TABLE Base (a INT, b INT, PRIMARY KEY (a, b));"
                      "CREATE TABLE T (x INT, y INT, PRIMARY KEY (y, x), FOREIGN KEY (x, y) REFERENCES Base (b, a));"),
              names{"base"});
    EXPECT_EQ(basesOf("T", "CREATE TABLE Base (a INT, b INT, PRIMARY KEY (a, b));"
                           "CREATE TABLE T (x INT, y INT, PRIMARY KEY (x, y), FOREIGN KEY (x, y) REFERENCES Base);"),
              names{"base"});
}

// behaviour: TL-24
TEST(inherit, breaksAndReportsCircles) {
    testDatabase const made("CREATE TABLE A (id INTEGER PRIMARY KEY REFERENCES B);"
                            "CREATE TABLE B (id INTEGER PRIMARY KEY REFERENCES A);"
                            "CREATE TABLE C (id INTEGER PRIMARY KEY REFERENCES A);");
    jsonList const answer(made.path(), true);
    EXPECT_EQ(answer.mRun.mStatus, 1);
    EXPECT_EQ(linesOf(answer.mRun.mErr),
              (names{"zovModel: the table \"A\" is not derived from the table \"B\": their primary keys refer to each "
                     "other in a circle",
                     "zovModel: the table \"B\" is not derived from the table \"A\": their primary keys refer to each "
                     "other in a circle"}));
    EXPECT_TRUE(answer.classOf("A").at("baseClasses").empty());
    EXPECT_EQ(answer.classOf("C").at("baseClasses"), (nlohmann::ordered_json{"a"}));
}

// behaviour: TL-24
TEST(inherit, reportsABaseThatDiffersFromAnotherInLetterCaseOnly) {
    testDatabase const made("CREATE TABLE \"É\" (id INTEGER PRIMARY KEY); CREATE TABLE \"é\" (id INTEGER PRIMARY KEY);"
                            "CREATE TABLE T (id INTEGER PRIMARY KEY REFERENCES \"É\" REFERENCES \"é\");");
    jsonList const answer(made.path(), true);
    EXPECT_EQ(answer.mRun.mStatus, 1);
    EXPECT_EQ(answer.classOf("T").at("baseClasses").size(), 1u);
    EXPECT_TRUE(holds(answer.mRun.mErr, "zovModel: the table \"T\" is not derived from the table "));
}
