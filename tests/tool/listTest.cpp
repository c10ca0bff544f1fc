// What `list` says: tables and views, columns, flags, keys, and the two forms of the answer.
#include <gtest/gtest.h>

#include "testDatabase.h"
#include "toolRun.h"

using names = std::vector<std::string>;

// behaviour: TL-01
TEST(list, showsEveryTableAsClass) {
    testDatabase const made("CREATE TABLE Part (a); CREATE TABLE Item (a);");
    EXPECT_EQ(jsonList(made.path()).labels(), (names{"Item", "Part"}));
}

// behaviour: TL-01
TEST(list, showsViewsAsAbstractClasses) {
    testDatabase const made("CREATE TABLE t (a INTEGER); CREATE VIEW v AS SELECT a, a + 1 AS next FROM t;");
    jsonList const answer(made.path());
    EXPECT_EQ(answer.classOf("v").at("abstract"), true);
    EXPECT_EQ(answer.classOf("t").at("abstract"), false);
    EXPECT_EQ(answer.labelsOf("v"), (names{"a", "next"}));
}

// behaviour: TL-01
TEST(list, leavesOutSqlitesOwnTables) {
    testDatabase const made("CREATE TABLE t (a INTEGER PRIMARY KEY AUTOINCREMENT); INSERT INTO t DEFAULT VALUES;"
                            "CREATE TABLE sqliteish (a); ANALYZE;");
    EXPECT_EQ(jsonList(made.path()).labels(), (names{"sqliteish", "t"}));
}

// behaviour: TL-01
TEST(list, showsVirtualTablesAndWhatTheyAreStoredIn) {
    testDatabase const made("CREATE VIRTUAL TABLE docs USING fts5 (title, body);");
    jsonList const answer(made.path());
    EXPECT_EQ(answer.labels(), (names{"docs", "docs_config", "docs_content", "docs_data", "docs_docsize", "docs_idx"}));
}

// behaviour: TL-02
TEST(list, keepsTheOrderOfColumns) {
    testDatabase const made("CREATE TABLE t (z, a, m);");
    EXPECT_EQ(jsonList(made.path()).labelsOf("t"), (names{"z", "a", "m"}));
}

// behaviour: TL-02
TEST(list, showsGeneratedColumns) {
    testDatabase const made("CREATE TABLE t (a INT, v INT AS (a + 1), s TEXT GENERATED ALWAYS AS (a || '') STORED);");
    jsonList const answer(made.path());
    EXPECT_EQ(answer.labelsOf("t"), (names{"a", "v", "s"}));
    EXPECT_EQ(answer.fieldOf("t", "s").at("type"), "string");
}

// behaviour: TL-02
TEST(list, showsHiddenColumnsOfVirtualTables) {
    testDatabase const made("CREATE VIRTUAL TABLE docs USING fts5 (title);");
    EXPECT_EQ(jsonList(made.path()).labelsOf("docs"), (names{"title", "docs", "rank"}));
}

// behaviour: TL-03
TEST(list, keepsTheSpellingAsLabelAndFoldsTheName) {
    testDatabase const made("CREATE TABLE MachinedPart (MaxWidth DOUBLE);");
    jsonList const answer(made.path());
    EXPECT_EQ(answer.classOf("MachinedPart").at("name"), "machinedpart");
    EXPECT_EQ(answer.fieldOf("MachinedPart", "MaxWidth").at("name"), "maxwidth");
    EXPECT_EQ(answer.fieldOf("MachinedPart", "MaxWidth").at("qualifiedName"), "machinedpart.maxwidth");
}

// behaviour: TL-04
TEST(list, callsColumnsMandatoryThatAreNotNull) {
    testDatabase const made("CREATE TABLE t (a NOT NULL, b NULL, c);");
    jsonList const answer(made.path());
    EXPECT_EQ(answer.fieldOf("t", "a").at("mandatory"), true);
    EXPECT_EQ(answer.fieldOf("t", "b").at("mandatory"), false);
    EXPECT_EQ(answer.fieldOf("t", "c").at("mandatory"), false);
}

// behaviour: TL-04
TEST(list, doesNotCallKeysMandatoryThatTakeNull) {
    testDatabase const made("CREATE TABLE number (a INTEGER PRIMARY KEY); CREATE TABLE word (a TEXT PRIMARY KEY);"
                            "CREATE TABLE both (a INTEGER NOT NULL PRIMARY KEY);");
    jsonList const answer(made.path());
    EXPECT_EQ(answer.fieldOf("number", "a").at("mandatory"), false);
    EXPECT_EQ(answer.fieldOf("word", "a").at("mandatory"), false);
    EXPECT_EQ(answer.fieldOf("both", "a").at("mandatory"), true);
}

// behaviour: TL-04
TEST(list, callsKeysMandatoryThatSqliteKeepsFromNull) {
    testDatabase const made("CREATE TABLE bare (a TEXT, b TEXT, PRIMARY KEY (a, b)) WITHOUT ROWID;"
                            "CREATE TABLE strict (a TEXT PRIMARY KEY) STRICT;");
    jsonList const answer(made.path());
    EXPECT_EQ(answer.fieldOf("bare", "a").at("mandatory"), true);
    EXPECT_EQ(answer.fieldOf("bare", "b").at("mandatory"), true);
    EXPECT_EQ(answer.fieldOf("strict", "a").at("mandatory"), true);
}

// behaviour: TL-05
TEST(list, callsColumnsUniqueThatAreTheWholeKey) {
    testDatabase const made("CREATE TABLE number (a INTEGER PRIMARY KEY, b); CREATE TABLE word (a TEXT PRIMARY KEY, b);"
                            "CREATE TABLE bare (a TEXT PRIMARY KEY, b) WITHOUT ROWID;");
    jsonList const answer(made.path());
    for (auto const* const table : {"number", "word", "bare"}) {
        EXPECT_EQ(answer.fieldOf(table, "a").at("unique"), true) << table;
        EXPECT_EQ(answer.fieldOf(table, "b").at("unique"), false) << table;
    }
}

// behaviour: TL-05
TEST(list, callsColumnsUniqueThatAConstraintOrIndexCoversAlone) {
    testDatabase const made("CREATE TABLE t (a UNIQUE, b, c, UNIQUE (b)); CREATE UNIQUE INDEX i ON t (c);");
    jsonList const answer(made.path());
    for (auto const* const column : {"a", "b", "c"})
        EXPECT_EQ(answer.fieldOf("t", column).at("unique"), true);
}

// behaviour: TL-05
TEST(list, doesNotCallPartsOfCompoundKeysUnique) {
    testDatabase const made("CREATE TABLE t (a, b, c, d, PRIMARY KEY (a, b), UNIQUE (c, d));");
    jsonList const answer(made.path());
    for (auto const* const column : {"a", "b", "c", "d"})
        EXPECT_EQ(answer.fieldOf("t", column).at("unique"), false);
}

// behaviour: TL-05
TEST(list, doesNotCallColumnsUniqueForPartialPlainAndExpressionIndexes) {
    testDatabase const made("CREATE TABLE t (a, b, c TEXT); CREATE UNIQUE INDEX some ON t (a) WHERE a > 0;"
                            "CREATE INDEX plain ON t (b); CREATE UNIQUE INDEX folded ON t (lower(c));");
    jsonList const answer(made.path());
    for (auto const* const column : {"a", "b", "c"})
        EXPECT_EQ(answer.fieldOf("t", column).at("unique"), false);
}

// behaviour: TL-06
TEST(list, identifiesByThePrimaryKeyInColumnOrder) {
    testDatabase const made("CREATE TABLE t (c, b, a, PRIMARY KEY (a, c));");
    EXPECT_EQ(jsonList(made.path()).classOf("t").at("idFields"), (nlohmann::ordered_json{"c", "a"}));
}

// behaviour: TL-06
TEST(list, identifiesNothingWithoutPrimaryKey) {
    testDatabase const made("CREATE TABLE t (a UNIQUE); CREATE VIEW v AS SELECT a FROM t;");
    jsonList const answer(made.path());
    EXPECT_TRUE(answer.classOf("t").at("idFields").empty());
    EXPECT_TRUE(answer.classOf("v").at("idFields").empty());
}

// behaviour: TL-17, TL-50
TEST(list, alignsColumnsForPeople) {
    testDatabase const made("CREATE TABLE Part (id INTEGER PRIMARY KEY, Name VARCHAR(80) NOT NULL, price MONEY);"
                            "CREATE VIEW Dear AS SELECT Name FROM Part;");
    toolRun const run = runTool({"list", made.path()});
    EXPECT_EQ(run.mStatus, 0);
    EXPECT_EQ(run.mErr, "");
    EXPECT_EQ(run.mOut, "dear \"Dear\", abstract\n"
                        "    name  \"Name\"  string(80)  null \"\"\n"
                        "\n"
                        "part \"Part\"\n"
                        "    id     \"id\"     long            key  unique     null 0\n"
                        "    name   \"Name\"   string(80)           mandatory  null \"\"\n"
                        "    price  \"price\"  custom \"MONEY\"\n"
                        "    identified by id\n");
}

// behaviour: TL-17
TEST(list, alignsWideCharacters) {
    testDatabase const made("CREATE TABLE t (\"幅\" INT, ab INT);");
    std::vector<std::string> const lines = linesOf(runTool({"list", made.path()}).mOut);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[1], "    幅  \"幅\"  long  null 0");
    EXPECT_EQ(lines[2], "    ab  \"ab\"  long  null 0");
}

// behaviour: TL-18, TL-50
TEST(list, writesJsonInOneForm) {
    testDatabase const made("CREATE TABLE Part (id INTEGER PRIMARY KEY, Name VARCHAR(80) NOT NULL DEFAULT 'none');");
    auto const expected = nlohmann::ordered_json::parse(R"({"classes": [{
        "name": "part", "label": "Part", "aliases": [], "abstract": false, "baseClasses": [],
        "fields": [
            {"name": "id", "qualifiedName": "part.id", "label": "id", "type": "long", "length": 0,
             "mandatory": false, "unique": true, "semantic": "key", "default": null, "defaultExpression": "",
             "autoExpression": "", "null": 0},
            {"name": "name", "qualifiedName": "part.name", "label": "Name", "type": "string", "length": 80,
             "mandatory": true, "unique": false, "semantic": "", "default": "none", "defaultExpression": "'none'",
             "autoExpression": "", "null": ""}],
        "idFields": ["id"]}], "relations": []})");
    toolRun const run = runTool({"list", made.path(), "--json"});
    EXPECT_EQ(run.mStatus, 0);
    EXPECT_EQ(run.mErr, "");
    EXPECT_EQ(nlohmann::ordered_json::parse(run.mOut).dump(), expected.dump());
}

// behaviour: TL-18
TEST(list, sortsClassesByName) {
    testDatabase const made(
        "CREATE TABLE b (x); CREATE TABLE A (x); CREATE VIEW C AS SELECT 1; CREATE TABLE \"é\" (x);");
    EXPECT_EQ(jsonList(made.path()).labels(), (names{"A", "b", "C", "é"}));
}

// behaviour: TL-19
TEST(list, takesEmptyFilesForEmptyDatabases) {
    testFolder const folder;
    writeFile(folder.path("empty.db"), "");
    toolRun const run = runTool({"list", folder.path("empty.db")});
    EXPECT_EQ(run.mStatus, 0);
    EXPECT_EQ(run.mOut, "no tables and no views\n");
    EXPECT_EQ(nlohmann::json::parse(runTool({"list", folder.path("empty.db"), "--json"}).mOut),
              nlohmann::json::parse(R"({"classes": [], "relations": []})"));
}

// behaviour: TL-37
TEST(list, reportsViewsThatCannotBeRead) {
    testDatabase const made("CREATE TABLE t (a); CREATE VIEW broken AS SELECT a FROM gone;");
    jsonList const answer(made.path());
    EXPECT_EQ(answer.mRun.mStatus, 1);
    EXPECT_EQ(answer.mRun.mErr,
              "zovModel: the columns of the view \"broken\" cannot be read: no such table: main.gone\n");
    EXPECT_EQ(answer.labels(), (names{"broken", "t"}));
    EXPECT_EQ(answer.labelsOf("t"), (names{"a"}));
}

// behaviour: TL-39
TEST(list, takesTwoThousandTablesInSeconds) {
    std::string sql;
    for (int at = 0; at < 2000; ++at) {
        std::string const number = std::to_string(at);
        sql += "CREATE TABLE Table" + number + " (id INTEGER PRIMARY KEY" +
               (at > 0 ? " REFERENCES Table" + std::to_string(at - 1) : std::string()) +
               ", name VARCHAR(80) NOT NULL UNIQUE, width DOUBLE, height DOUBLE, note" + number + " TEXT);";
    }
    testDatabase const made(sql);
    jsonList const answer(made.path(), true);
    EXPECT_EQ(answer.mRun.mStatus, 0);
    EXPECT_EQ(answer.labels().size(), 2000u);
    toolRun const deepest = runTool({"find", made.path(), "--inherit", "Table1999.note0"});
    EXPECT_EQ(deepest.mStatus, 0) << deepest.mOut;
}
