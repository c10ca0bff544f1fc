// Defaults, generated columns, semantics and null values, as `list` and `find` tell them.
#include <gtest/gtest.h>

#include "sqliteView.h"
#include "testDatabase.h"
#include "toolRun.h"

using lines = std::vector<std::string>;

namespace {

// Defaults of every kind, and generated columns of both.
constexpr char const* cEveryKind = R"sql(
    CREATE TABLE kinds (
        plain INT, whole INT DEFAULT 5, negative INT DEFAULT -7, positive INT DEFAULT + 7, hex INT DEFAULT 0x10,
        quotedWhole INT DEFAULT '42', exponent INT DEFAULT 1e3, deep INT DEFAULT ((9)), yes INT DEFAULT TRUE,
        least INT DEFAULT -9223372036854775808,
        rate REAL DEFAULT 0.1, tiny DOUBLE DEFAULT -.5e-3, round REAL DEFAULT 3, price DECIMAL(5, 2) DEFAULT 19.99,
        quotedRate NUMERIC DEFAULT '4.50',
        word TEXT DEFAULT 'it''s', none TEXT DEFAULT '', number TEXT DEFAULT 5, float TEXT DEFAULT 1e3,
        third TEXT DEFAULT 0.333333333333333333, bare TEXT DEFAULT open, doubled TEXT DEFAULT "half open",
        script TEXT DEFAULT 'Теплица 倉庫', line TEXT DEFAULT 'a
b',
        off BOOLEAN DEFAULT 0, "on" BOOL DEFAULT true, bytes BLOB DEFAULT x'00FF0a', noBytes BLOB DEFAULT x'',
        day DATE DEFAULT '2024-02-29', hour TIME DEFAULT '08:30:00', moment TIMESTAMP DEFAULT '2024-02-29 08:30:00',
        fee MONEY DEFAULT 9.90, kind MONEY DEFAULT 'low', path FILE DEFAULT '/tmp/a',
        noNumber INT DEFAULT NULL, noDay DATE DEFAULT NULL, noFee MONEY DEFAULT (NULL),
        today DATE DEFAULT CURRENT_DATE, now TIME DEFAULT CURRENT_TIME, stamp TIMESTAMP DEFAULT CURRENT_TIMESTAMP,
        sum INT DEFAULT (1 + 1), call TEXT DEFAULT (lower('A')), spaced INT DEFAULT ( 1 /* one */ + 2 ));
    CREATE TABLE made (
        a INT DEFAULT 2, "as" TEXT DEFAULT 'as (1)', virtual INT AS (a * 2),
        "sto,red" TEXT GENERATED ALWAYS AS ("as" || ')' || '--') STORED,
        "nested" INT AS (max(a, (a + 1) * 3)) VIRTUAL, /* comma, ( */ later TEXT AS (a || x'41') -- as (
        , CHECK (a > 0));
    ALTER TABLE made ADD COLUMN added INT DEFAULT 4;
    ALTER TABLE made ADD COLUMN computed INT GENERATED ALWAYS AS (added + a);
)sql";

nlohmann::ordered_json fieldFor(std::string const& declared) {
    testDatabase const made("CREATE TABLE t (c " + declared + ");");
    return jsonList(made.path()).fieldOf("t", "c");
}

nlohmann::ordered_json defaultFor(std::string const& declared) {
    return fieldFor(declared).at("default");
}

std::string found(std::string const& declared) {
    testDatabase const made("CREATE TABLE t (c " + declared + ");");
    return runTool({"find", made.path(), "t.c"}).mOut;
}

} // namespace

// behaviour: TL-43, TL-47
TEST(defaults, agreeWithSqliteOnEveryKind) {
    testDatabase const made(cEveryKind);
    jsonList const answer(made.path());
    EXPECT_EQ(answer.mRun.mStatus, 0);
    EXPECT_EQ(answer.mRun.mErr, "");
    EXPECT_EQ(textOf(definitionsByTool(answer)), textOf(definitionsBySqlite(made.path())));
}

// behaviour: TL-44
TEST(defaults, areTheValuesThatSqliteStores) {
    testDatabase const made(cEveryKind);
    EXPECT_EQ(unfitDefaults(made.path(), jsonList(made.path())),
              (lines{"kinds / call: none for a", "kinds / moment: \"2024-02-29T08:30:00\" for 2024-02-29 08:30:00",
                     "kinds / now: none for CURRENT_TIME", "kinds / spaced: none for 3",
                     "kinds / stamp: none for CURRENT_TIMESTAMP", "kinds / sum: none for 2",
                     "kinds / today: none for CURRENT_DATE"}));
}

// behaviour: TL-44
TEST(defaults, areValuesOfTheFieldsType) {
    EXPECT_EQ(defaultFor("INT DEFAULT '42'").dump(), "42");
    EXPECT_EQ(defaultFor("REAL DEFAULT 3").dump(), "3.0");
    EXPECT_EQ(defaultFor("BOOLEAN DEFAULT 0").dump(), "false");
    EXPECT_EQ(defaultFor("BOOLEAN DEFAULT 'TRUE'").dump(), "true");
    EXPECT_EQ(defaultFor("TEXT DEFAULT 5").dump(), "\"5\"");
    EXPECT_EQ(defaultFor("BLOB DEFAULT x'00FF0a'").dump(), "\"00ff0a\"");
    EXPECT_EQ(defaultFor("MONEY DEFAULT 9.90").dump(), "\"9.9\"");
    EXPECT_EQ(defaultFor("FILE DEFAULT '/tmp/a'").dump(), "\"/tmp/a\"");
    EXPECT_EQ(defaultFor("DATE DEFAULT '2024-02-29'").dump(), "\"2024-02-29\"");
}

// behaviour: TL-45
TEST(defaults, thatDoNotConvertAreReportedAndKept) {
    testDatabase const made("CREATE TABLE t (a INT DEFAULT 'many', b DATE DEFAULT '2024-02-30', c DEFAULT 5,"
                            "d INT DEFAULT 3.5, e TIMESTAMP DEFAULT 0, f REAL DEFAULT 9e999, g TEXT DEFAULT x'41');");
    jsonList const answer(made.path());
    EXPECT_EQ(answer.mRun.mStatus, 0);
    EXPECT_EQ(linesOf(answer.mRun.mErr).size(), 7u);
    EXPECT_EQ(linesOf(answer.mRun.mErr).at(0),
              "zovModel: warning: in the table \"t\", the default 'many' of the column \"a\" is no value of the type "
              "long: it is kept as an expression");
    for (std::string const& label : answer.labelsOf("t"))
        EXPECT_EQ(answer.fieldOf("t", label).at("default"), nullptr) << label;
    EXPECT_EQ(textOf(definitionsByTool(answer)), textOf(definitionsBySqlite(made.path())));
    EXPECT_TRUE(holds(runTool({"find", made.path(), "t.a"}).mOut, ", default expression 'many', null 0\n"));
}

// behaviour: TL-45
TEST(defaults, thatDoNotConvertAreReportedOnOneLine) {
    testDatabase const made("CREATE TABLE \"a\nb\" (c INT DEFAULT 'x\ny');");
    EXPECT_TRUE(isOneLine(runTool({"list", made.path()}).mErr));
}

// behaviour: TL-46
TEST(defaults, areNeverThePresentMoment) {
    for (std::string const type : {"DATE", "TIME", "TIMESTAMP"}) {
        EXPECT_FALSE(holds(found(type), "default")) << type;
        EXPECT_EQ(defaultFor(type), nullptr);
        EXPECT_EQ(defaultFor(type + " DEFAULT CURRENT_" + type), nullptr);
        EXPECT_TRUE(holds(found(type + " DEFAULT CURRENT_" + type), ", default expression CURRENT_" + type + ", null"));
        EXPECT_EQ(defaultFor(type + " DEFAULT 'tomorrow'"), nullptr);
    }
}

// behaviour: TL-46
TEST(defaults, areNoneAtAllWhereNullIsOne) {
    EXPECT_EQ(fieldFor("DATE DEFAULT NULL").at("default"), nullptr);
    EXPECT_EQ(fieldFor("DATE DEFAULT NULL").at("defaultExpression"), "NULL");
    EXPECT_EQ(found("DATE DEFAULT NULL"), "t.c: field t.c \"c\", date, date, default NULL, null 1900-01-01\n");
}

// behaviour: TL-47
TEST(defaults, ofGeneratedColumnsAreWhatComputesThem) {
    testDatabase const made(cEveryKind);
    connection const source(made.path());
    source.run("INSERT INTO made (a, \"as\", added) VALUES (1, 'x', 5), (NULL, NULL, NULL), (9, 'ü', -1)");
    jsonList const answer(made.path());
    std::size_t count = 0;
    for (std::string const& label : answer.labelsOf("made")) {
        std::string const expression = answer.fieldOf("made", label).at("autoExpression");
        if (expression.empty()) continue;
        ++count;
        auto const rows = source.rows("SELECT count(*) FROM made WHERE (" + expression + ") IS NOT " + sqlName(label));
        EXPECT_EQ(rows.at(0).at(0), "0") << expression;
    }
    EXPECT_EQ(count, 5u);
}

// behaviour: TL-47
TEST(defaults, showWhatComputesAColumn) {
    testDatabase const made("CREATE TABLE t (a INT, b INT AS (a *\n 2));");
    EXPECT_EQ(runTool({"find", made.path(), "t.b"}).mOut, "t.b: field t.b \"b\", long, computed a *\\n 2, null 0\n");
}

// behaviour: TL-49
TEST(semantics, sayWhatDatesAre) {
    EXPECT_EQ(fieldFor("DATE").at("semantic"), "date");
    EXPECT_EQ(fieldFor("TIME").at("semantic"), "time");
    EXPECT_EQ(fieldFor("DATETIME").at("semantic"), "timestamp");
    EXPECT_EQ(fieldFor("TIMESTAMP").at("type"), "timestamp");
    EXPECT_EQ(fieldFor("INT").at("semantic"), "");
}

// behaviour: TL-49
TEST(semantics, sayWhatKeysAre) {
    EXPECT_EQ(fieldFor("INTEGER PRIMARY KEY").at("semantic"), "key");
    EXPECT_EQ(fieldFor("DATE PRIMARY KEY").at("semantic"), "key");
    EXPECT_EQ(fieldFor("DATE PRIMARY KEY").at("type"), "date");
}

// behaviour: TL-49
TEST(semantics, sayWhatForeignKeysAre) {
    testDatabase const made("CREATE TABLE one (x INT, y INT, PRIMARY KEY (x, y));"
                            "CREATE TABLE many (a INT, b DATE, c INT PRIMARY KEY, FOREIGN KEY (a, b) REFERENCES one);");
    jsonList const answer(made.path());
    EXPECT_EQ(answer.fieldOf("many", "a").at("semantic"), "relation");
    EXPECT_EQ(answer.fieldOf("many", "b").at("semantic"), "relation");
    EXPECT_EQ(answer.fieldOf("many", "b").at("type"), "date");
    EXPECT_EQ(answer.fieldOf("many", "c").at("semantic"), "key");
}

// behaviour: TL-50
TEST(nullValues, areTheTypesOwn) {
    EXPECT_EQ(fieldFor("INT").at("null").dump(), "0");
    EXPECT_EQ(fieldFor("REAL").at("null").dump(), "0.0");
    EXPECT_EQ(fieldFor("TEXT").at("null").dump(), "\"\"");
    EXPECT_EQ(fieldFor("BOOLEAN").at("null").dump(), "false");
    EXPECT_EQ(fieldFor("DATE").at("null").dump(), "\"1900-01-01\"");
    EXPECT_EQ(fieldFor("TIME").at("null").dump(), "\"00:00:00\"");
    EXPECT_EQ(fieldFor("TIMESTAMP").at("null").dump(), "\"1900-01-01T00:00:00\"");
    EXPECT_EQ(fieldFor("BLOB").at("null").dump(), "\"\"");
    EXPECT_EQ(fieldFor("FILE").at("null").dump(), "\"\"");
    EXPECT_EQ(fieldFor("MONEY").at("null").dump(), "null");
}

// behaviour: TL-50
TEST(nullValues, areShownToPeople) {
    EXPECT_EQ(found("VARCHAR(8) NOT NULL DEFAULT 'a\"b'"),
              "t.c: field t.c \"c\", string(8), mandatory, default \"a\\\"b\", null \"\"\n");
    EXPECT_EQ(found("BLOB DEFAULT x'0A'"), "t.c: field t.c \"c\", binary, default x'0a', null x''\n");
    EXPECT_EQ(found("MONEY DEFAULT 5"), "t.c: field t.c \"c\", custom \"MONEY\", default \"5\"\n");
    EXPECT_EQ(found("DATE PRIMARY KEY"), "t.c: field t.c \"c\", date, key, unique, null 1900-01-01\n");
}
