// Names of every kind, and names that the model cannot tell apart or cannot reach.
#include <gtest/gtest.h>

#include "testDatabase.h"
#include "toolRun.h"

using names = std::vector<std::string>;

// behaviour: TL-12
TEST(names, listsNamesOfEveryKind) {
    names const odd{"",     " ",     "a b",  "a/b",  "a\"b", "a'b", "[a,b]",           "{}", "select", "Теплица",
                    "倉庫", "größe", "%s%n", "a\\b", "-x",   "*",   "\xF0\x9F\x94\xA7"};
    std::string sql;
    for (std::string const& name : odd)
        sql += "CREATE TABLE " + sqlName(name) + " (" + sqlName(name) + " INT);";
    testDatabase const made(sql);
    jsonList const answer(made.path());
    EXPECT_EQ(answer.mRun.mStatus, 0) << answer.mRun.mErr;
    for (std::string const& name : odd)
        EXPECT_EQ(answer.labelsOf(name), names{name});
    EXPECT_EQ(runTool({"list", made.path()}).mStatus, 0);
}

// behaviour: TL-12
TEST(names, findsNamesOfEveryKind) {
    names const odd{"",     " ",     "a b",  "a/b",  "a\"b", "a'b", "[a,b]", "{}",   "select", "Теплица",
                    "倉庫", "größe", "%s%n", "a\\b", "-x",   "=a",  "--",    "list", "find",   "[]"};
    std::string sql;
    names wanted{"find", "", "--"};
    for (std::string const& name : odd) {
        sql += "CREATE TABLE " + sqlName(name) + " (" + sqlName(name) + " INT);";
        wanted.push_back(name);
        wanted.push_back(name + "." + name);
    }
    testDatabase const made(sql);
    wanted[1] = made.path();
    toolRun const run = runTool(wanted);
    EXPECT_EQ(run.mStatus, 0) << run.mOut << run.mErr;
    EXPECT_EQ(linesOf(run.mOut).size(), 2 * odd.size());
}

// behaviour: TL-13
TEST(names, reportsTablesThatDifferInLetterCaseOnly) {
    testDatabase const made("CREATE TABLE \"É\" (a INT, b INT); CREATE TABLE \"é\" (c TEXT);");
    jsonList const answer(made.path());
    EXPECT_EQ(answer.mRun.mStatus, 1);
    EXPECT_EQ(answer.mRun.mErr, "zovModel: the table \"é\" differs from the table \"É\" in letter case only: it is "
                                "listed, but no name finds it\n");
}

// behaviour: TL-13
TEST(names, listsBothOfSuchTables) {
    testDatabase const made("CREATE TABLE \"É\" (a INT, b INT); CREATE TABLE \"é\" (c TEXT PRIMARY KEY);");
    jsonList const answer(made.path());
    EXPECT_EQ(answer.labels(), (names{"É", "é"}));
    EXPECT_EQ(answer.labelsOf("É"), (names{"a", "b"}));
    EXPECT_EQ(answer.labelsOf("é"), (names{"c"}));
    EXPECT_EQ(answer.classOf("é").at("idFields"), (nlohmann::ordered_json{"c"}));
    EXPECT_TRUE(
        holds(runTool({"list", made.path()}).mOut, "note: not in the model, where a class of this name is already\n"));
}

// behaviour: TL-13
TEST(names, findsTheFirstOfSuchTablesAndNamesTheOther) {
    testDatabase const made("CREATE TABLE \"É\" (a INT, b INT); CREATE TABLE \"é\" (c TEXT);");
    toolRun const run = runTool({"find", made.path(), "é"});
    EXPECT_EQ(run.mStatus, 1);
    EXPECT_EQ(run.mOut, "é: class é \"É\", 2 fields\n"
                        "    note: \"é\" has this name too, and is not in the model\n");
    EXPECT_TRUE(isOneLine(run.mErr));
}

// behaviour: TL-14
TEST(names, reportsColumnsThatDifferInLetterCaseOnly) {
    testDatabase const made("CREATE TABLE t (\"Ü\" INT, b INT, \"ü\" VARCHAR(9));");
    jsonList const answer(made.path());
    EXPECT_EQ(answer.mRun.mStatus, 1);
    EXPECT_EQ(answer.mRun.mErr,
              "zovModel: in the table \"t\", the column \"ü\" differs from the column \"Ü\" in letter "
              "case only: it is listed, but no name finds it\n");
}

// behaviour: TL-14
TEST(names, listsAllOfSuchColumns) {
    testDatabase const made("CREATE TABLE t (\"Ǆ\" INT, \"ǅ\" INT, b INT, \"ǆ\" VARCHAR(9) NOT NULL, "
                            "PRIMARY KEY (\"Ǆ\", \"ǆ\"));");
    jsonList const answer(made.path());
    EXPECT_EQ(answer.labelsOf("t"), (names{"Ǆ", "b", "ǅ", "ǆ"}));
    EXPECT_EQ(answer.fieldOf("t", "ǆ").at("length"), 9);
    EXPECT_EQ(answer.fieldOf("t", "ǆ").at("mandatory"), true);
    EXPECT_EQ(answer.fieldOf("t", "ǆ").at("qualifiedName"), "t.ǆ");
    EXPECT_EQ(answer.classOf("t").at("idFields").size(), 2u);
    EXPECT_EQ(linesOf(answer.mRun.mErr).size(), 2u);
}

// behaviour: TL-14
TEST(names, findsTheFirstOfSuchColumnsAndNamesTheOther) {
    testDatabase const made("CREATE TABLE t (\"Ü\" INT, b INT, \"ü\" VARCHAR(9));");
    toolRun const run = runTool({"find", made.path(), "T.ü"});
    EXPECT_EQ(run.mStatus, 1);
    EXPECT_EQ(run.mOut, "T.ü: field t.ü \"Ü\", long, null 0\n"
                        "    note: the column \"ü\" has this name too, and is not in the model\n");
}

// behaviour: TL-15
TEST(names, listsSayThatATableWithAFullStopIsOutOfReach) {
    testDatabase const made("CREATE TABLE \"my.parts\" (width INT); CREATE TABLE plain (\"a.b\" INT);");
    toolRun const forPeople = runTool({"list", made.path()});
    EXPECT_EQ(forPeople.mStatus, 0);
    EXPECT_EQ(forPeople.mOut, "my.parts \"my.parts\"\n"
                              "    width  \"width\"  long  null 0\n"
                              "    note: no qualified name reaches its fields, since its own name holds a full stop\n"
                              "\n"
                              "plain \"plain\"\n"
                              "    a.b  \"a.b\"  long  null 0\n");
    jsonList const forPrograms(made.path());
    EXPECT_EQ(forPrograms.mRun.mStatus, 0);
    EXPECT_EQ(forPrograms.mRun.mErr, "zovModel: note: no qualified name reaches the fields of \"my.parts\", since its "
                                     "own name holds a full stop\n");
}

// behaviour: TL-15
TEST(names, findsSayThatATableWithAFullStopIsOutOfReach) {
    testDatabase const made("CREATE TABLE \"my.parts\" (width INT);");
    toolRun const run = runTool({"find", made.path(), "my.parts.width", "My.Parts"});
    EXPECT_EQ(run.mStatus, 1);
    EXPECT_EQ(run.mOut, "my.parts.width: unknown; the class my.parts \"my.parts\" has the field \"width\", but no "
                        "qualified name reaches it, since the class's own name holds a full stop\n"
                        "My.Parts: class my.parts \"my.parts\", 1 field\n"
                        "    note: no qualified name reaches its fields, since its own name holds a full stop\n");
}

// behaviour: TL-15
TEST(names, findsColumnsWithFullStops) {
    testDatabase const made("CREATE TABLE plain (\"a.b\" INT);");
    toolRun const run = runTool({"find", made.path(), "plain.a.b"});
    EXPECT_EQ(run.mStatus, 0);
    EXPECT_EQ(run.mOut, "plain.a.b: field plain.a.b \"a.b\", long, null 0\n");
}

// behaviour: TL-15
TEST(names, findsBothThingsThatANameDenotes) {
    testDatabase const made("CREATE TABLE a (b INT); CREATE TABLE \"a.b\" (c INT);");
    std::vector<std::string> const lines = linesOf(runTool({"find", made.path(), "a.b"}).mOut);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0], "a.b: field a.b \"b\", long, null 0");
    EXPECT_EQ(lines[1], "a.b: class a.b \"a.b\", 1 field");
}

// behaviour: TL-16
TEST(names, spellsOutControlCharacters) {
    testDatabase const made("CREATE TABLE \"two\nlines\" (\"\x1b[31mred\" INT);");
    EXPECT_EQ(runTool({"list", made.path()}).mOut, "two\\nlines \"two\\nlines\"\n"
                                                   "    \\u{1b}[31mred  \"\\u{1b}[31mred\"  long  null 0\n");
}

// behaviour: TL-16
TEST(names, writesIllFormedNamesWithReplacementCharacters) {
    testDatabase const made("CREATE TABLE \"a\xFFz\" (c INT);");
    EXPECT_EQ(jsonList(made.path()).labels(), (names{"a\xEF\xBF\xBDz"}));
}

// behaviour: TL-38
TEST(names, areUtf8InTheCLocale) {
    testDatabase const made("CREATE TABLE \"Größe\" (c INT);");
    toolRun const run = runTool({"find", made.path(), "GRÖSSE", "GRÖßE"}, "LC_ALL=C");
    EXPECT_EQ(run.mOut, "GRÖSSE: unknown; there is no class of this name\n"
                        "GRÖßE: class größe \"Größe\", 1 field\n");
}
