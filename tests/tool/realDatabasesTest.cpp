// Databases that nobody made for these tests: the tool must say of every table, column, key, flag, default
// and foreign key what SQLite says.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "sqliteView.h"
#include "testDatabase.h"
#include "toolRun.h"

namespace {

void expectAgreement(std::string const& path) {
    jsonList const answer(path);
    EXPECT_EQ(answer.mRun.mStatus, 0);
    EXPECT_EQ(answer.mRun.mErr, "");
    EXPECT_FALSE(answer.labels().empty());
    EXPECT_EQ(textOf(seenByTool(answer)), textOf(seenBySqlite(path)));
    EXPECT_EQ(unfitTypes(path, answer), std::vector<std::string>());
    EXPECT_EQ(textOf(definitionsByTool(answer)), textOf(definitionsBySqlite(path)));
    EXPECT_EQ(unfitDefaults(path, answer), std::vector<std::string>());
    EXPECT_EQ(textOf(relationsByTool(answer)), textOf(relationsBySqlite(path)));
    EXPECT_FALSE(answer.mRelations.empty());
    EXPECT_EQ(runTool({"list", path, "--inherit"}).mStatus, 0);
}

std::string sampleSchema(std::string const& name) {
    char const* const folder = std::getenv("ZOV_SAMPLE_SCHEMAS");
    return folder ? std::string(folder) + "/" + name : "";
}

void expectAgreementOnSchema(std::string const& path) {
    testDatabase const made(readFile(path));
    expectAgreement(made.path());
}

constexpr char const* cProj = "/usr/share/proj/proj.db";

} // namespace

// behaviour: TL-11
TEST(realDatabases, agreesWithSqliteOnEveryOddity) {
    testDatabase const made(R"sql(
        CREATE TABLE "order details" ("order id" INT, "line/no" INT, "say ""hi""" TEXT NOT NULL,
            PRIMARY KEY ("order id", "line/no"));
        CREATE TABLE number (id INTEGER PRIMARY KEY, a UNIQUE, b, c NOT NULL UNIQUE, UNIQUE (a, b));
        CREATE TABLE falling (id INTEGER PRIMARY KEY DESC, a UNIQUE ON CONFLICT REPLACE);
        CREATE TABLE word (code TEXT PRIMARY KEY COLLATE NOCASE, a INT);
        CREATE TABLE bare (b TEXT, a INT, PRIMARY KEY (a, b)) WITHOUT ROWID;
        CREATE TABLE bareSingle (b TEXT PRIMARY KEY, a INT) WITHOUT ROWID;
        CREATE TABLE strict (id INT PRIMARY KEY, t TEXT NOT NULL, x ANY) STRICT;
        CREATE TABLE twice (a INT, b INT, UNIQUE (a, a), PRIMARY KEY (b, b));
        CREATE TABLE made (a INT, v INT AS (a + 1) UNIQUE, s TEXT AS (a || 'x') STORED NOT NULL);
        CREATE TABLE untyped (a, b, c);
        CREATE TABLE "select" ("from" INTEGER, "where" POINT);
        CREATE TABLE "склад.деталь" ("ширина" REAL, "倉庫" TEXT);
        CREATE UNIQUE INDEX some ON untyped (a) WHERE b > 0;
        CREATE UNIQUE INDEX computed ON untyped (b + 1);
        CREATE UNIQUE INDEX "odd ""index""" ON untyped (c DESC);
        CREATE INDEX plain ON number (b);
        CREATE VIEW looking AS SELECT number.*, "order id", 1 + 1 AS two FROM number, "order details";
        CREATE VIEW renamed (x, y) AS SELECT a, b FROM untyped;
        CREATE VIRTUAL TABLE docs USING fts5 (title, body);
        CREATE VIRTUAL TABLE old USING fts4 (title);
        CREATE VIRTUAL TABLE area USING rtree (id, left, right);
    )sql");
    jsonList const answer(made.path());
    EXPECT_EQ(answer.mRun.mStatus, 0);
    EXPECT_EQ(textOf(seenByTool(answer)), textOf(seenBySqlite(made.path())));
}

// behaviour: TL-11, TL-43, TL-44, TL-51
TEST(realDatabases, agreesWithSqliteOnProj) {
    if (!std::filesystem::exists(cProj)) GTEST_SKIP() << cProj << " (package proj-data) is not installed";
    expectAgreement(cProj);
}

// behaviour: TL-11, TL-43, TL-44, TL-51
TEST(realDatabases, agreesWithSqliteOnChinook) {
    std::string const path = sampleSchema("chinook.sql");
    if (!std::filesystem::exists(path))
        GTEST_SKIP() << "chinook.sql is not in the folder that ZOV_SAMPLE_SCHEMAS names";
    expectAgreementOnSchema(path);
}

// behaviour: TL-11, TL-43, TL-44, TL-51
TEST(realDatabases, agreesWithSqliteOnNorthwind) {
    std::string const path = sampleSchema("northwind.sql");
    if (!std::filesystem::exists(path)) {
        GTEST_SKIP() << "northwind.sql is not in the folder that ZOV_SAMPLE_SCHEMAS names";
    }
    expectAgreementOnSchema(path);
}

// behaviour: TL-11, TL-43, TL-44, TL-51
TEST(realDatabases, agreesWithSqliteOnSakila) {
    std::string const path = sampleSchema("sakila.sql");
    if (!std::filesystem::exists(path)) GTEST_SKIP() << "sakila.sql is not in the folder that ZOV_SAMPLE_SCHEMAS names";
    expectAgreementOnSchema(path);
}
