// From declared types to field types.
#include <gtest/gtest.h>

#include "sqliteView.h"
#include "testDatabase.h"
#include "toolRun.h"

namespace {

// The field of a column that was declared with the type.
nlohmann::ordered_json fieldFor(std::string const& declared) {
    testDatabase const made("CREATE TABLE t (c " + declared + ");");
    return jsonList(made.path()).fieldOf("t", "c");
}

std::string typeFor(std::string const& declared) {
    return fieldFor(declared).value("type", "none");
}

unsigned long lengthFor(std::string const& declared) {
    return fieldFor(declared).value("length", 0ul);
}

} // namespace

// behaviour: TL-07
TEST(types, takesWholeNumbersForLongs) {
    for (auto const* const declared : {"INT", "INTEGER", "TINYINT", "SMALLINT", "BIGINT", "UNSIGNED BIG INT", "int8"}) {
        EXPECT_EQ(typeFor(declared), "long") << declared;
    }
}

// behaviour: TL-07
TEST(types, takesTextsForStrings) {
    for (auto const* const declared : {"TEXT", "CLOB", "CHARACTER(20)", "VARYING CHARACTER(255)", "NCHAR(55)"}) {
        EXPECT_EQ(typeFor(declared), "string") << declared;
    }
}

// behaviour: TL-07
TEST(types, takesBlobsAndUndeclaredColumnsForBinary) {
    EXPECT_EQ(typeFor("BLOB"), "binary");
    EXPECT_EQ(typeFor(""), "binary");
}

// behaviour: TL-07
TEST(types, takesFloatingNumbersForDoubles) {
    for (auto const* const declared : {"REAL", "DOUBLE", "DOUBLE PRECISION", "FLOAT"}) {
        EXPECT_EQ(typeFor(declared), "double") << declared;
    }
}

// behaviour: TL-07
TEST(types, followsSqliteWhereSeveralWordsFit) {
    EXPECT_EQ(typeFor("FLOATING POINT"), "long"); // "int" is in it
    EXPECT_EQ(typeFor("CHARINT"), "long");
    EXPECT_EQ(typeFor("BLOBTEXT"), "string");
    EXPECT_EQ(typeFor("REALBLOB"), "binary");
}

// behaviour: TL-07
TEST(types, fitsTheAffinityOfAnyDeclaredType) {
    std::string columns;
    int count = 0;
    for (auto const* const declared :
         {"INT",     "POINT", "VARCHAR(10)", "\"long text\"", "CLOB",    "BLOB",    "",
          "REAL",    "FLOA",  "DOUBT",       "NUMERIC",       "DATE",    "STRING",  "DECIMAL(10,2)",
          "\"a'b\"", "ANY",   "MONEY",       "INTERVAL",      "CHARINT", "\"İNT\"", "BOOLEAN"}) {
        columns += (columns.empty() ? "c" : ", c") + std::to_string(count++) + " " + declared;
    }
    testDatabase const made("CREATE TABLE t (" + columns + ");");
    EXPECT_EQ(unfitTypes(made.path(), jsonList(made.path())), std::vector<std::string>());
}

// behaviour: TL-08
TEST(types, keepsTheLengthOfTexts) {
    EXPECT_EQ(lengthFor("VARCHAR(160)"), 160u);
    EXPECT_EQ(typeFor("VARCHAR(160)"), "string");
    EXPECT_EQ(lengthFor("char ( 10 )"), 10u);
    EXPECT_EQ(lengthFor("STRING(7)"), 7u);
}

// behaviour: TL-08
TEST(types, takesAnUnusableLengthForNone) {
    for (auto const* const declared : {"VARCHAR(0)", "VARCHAR(-5)", "VARCHAR(99999999999999999999999)", "TEXT"}) {
        EXPECT_EQ(typeFor(declared), "string") << declared;
        EXPECT_EQ(lengthFor(declared), 0u) << declared;
    }
}

// behaviour: TL-08
TEST(types, keepsNoLengthOfOtherTypes) {
    EXPECT_EQ(lengthFor("INT(11)"), 0u);
    EXPECT_EQ(lengthFor("DECIMAL(10, 2)"), 0u);
}

// behaviour: TL-09
TEST(types, readsTheWordsThatSqliteLeavesOpen) {
    std::vector<std::pair<std::string, std::string>> const words{{"BOOLEAN", "bool"},
                                                                 {"BOOL", "bool"},
                                                                 {"DATE", "date"},
                                                                 {"TIME", "time"},
                                                                 {"DATETIME", "timestamp"},
                                                                 {"TIMESTAMP(6)", "timestamp"},
                                                                 {"NUMERIC", "double"},
                                                                 {"DECIMAL(10,5)", "double"},
                                                                 {"VARBINARY(16)", "binary"},
                                                                 {"STRING", "string"},
                                                                 {"FILE", "file"},
                                                                 {"SearchPath", "searchpath"}};
    for (auto const& [declared, type] : words)
        EXPECT_EQ(typeFor(declared), type) << declared;
}

// behaviour: TL-10
TEST(types, keepsOtherDeclaredTypesAsCustom) {
    for (auto const* const declared : {"MONEY", "Json", "GEOMETRY", "DECIMALS(1,2)", "DATETIMEOFFSET"}) {
        EXPECT_EQ(typeFor(declared), declared);
    }
    testDatabase const made("CREATE TABLE t (c MONEY);");
    EXPECT_TRUE(holds(runTool({"list", made.path()}).mOut, "custom \"MONEY\"\n"));
}
