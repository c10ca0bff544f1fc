// What `check` finds in a model.
#include <gtest/gtest.h>

#include <algorithm>

#include "checkReport.h"
#include "testDatabase.h"
#include "toolRun.h"

namespace {

toolRun checked(std::string const& sql, bool inherit = false) {
    testDatabase const made(sql);
    return inherit ? runTool({"check", made.path(), "--inherit"}) : runTool({"check", made.path()});
}

void expectFindings(toolRun const& run, std::string const& findings) {
    EXPECT_EQ(run.mStatus, 1);
    EXPECT_EQ(run.mOut, findings);
}

} // namespace

// behaviour: TL-63
TEST(check, findsNothingInASoundModel) {
    toolRun const run = checked("CREATE TABLE Item (id INTEGER PRIMARY KEY, name TEXT);"
                                "CREATE TABLE Part (id INTEGER PRIMARY KEY REFERENCES Item, width DOUBLE);",
                                true);
    EXPECT_EQ(run.mStatus, 0);
    EXPECT_EQ(run.mErr, "");
    EXPECT_EQ(run.mOut, "nothing to report\n");
    EXPECT_EQ(checked("").mStatus, 0);
}

// behaviour: TL-64
TEST(check, reportsClassesWithoutIdentifyingFields) {
    expectFindings(checked("CREATE TABLE Log (at TIMESTAMP, line TEXT); CREATE TABLE ok (id INTEGER PRIMARY KEY);"),
                   "no identifying fields: the class log \"Log\"\n");
}

// behaviour: TL-64
TEST(check, wantsNoIdentityOfViews) {
    EXPECT_EQ(checked("CREATE TABLE ok (id INTEGER PRIMARY KEY); CREATE VIEW v AS SELECT id FROM ok;").mStatus, 0);
}

// behaviour: TL-65
TEST(check, reportsRelationsWhoseSidesDifferInType) {
    expectFindings(checked("CREATE TABLE A (x INTEGER, y VARCHAR(8), z MONEY, PRIMARY KEY (x, y, z));"
                           "CREATE TABLE B (id INTEGER PRIMARY KEY, p TEXT, q CHAR(20), r Money, s PRICE,"
                           "FOREIGN KEY (p, q, r) REFERENCES A, FOREIGN KEY (s) REFERENCES A (z));"),
                   "different types: the relation from b.s, custom \"PRICE\", to a.z, custom \"MONEY\"\n"
                   "different types: the relation from b.p, string, to a.x, long\n");
}

// behaviour: TL-66
TEST(check, reportsNamesThatNothingReaches) {
    expectFindings(checked("CREATE TABLE \"É\" (a INTEGER PRIMARY KEY); CREATE TABLE \"é\" (a INTEGER PRIMARY KEY);"
                           "CREATE TABLE \"my.parts\" (a INTEGER PRIMARY KEY);"
                           "CREATE TABLE t (\"Ü\" INTEGER PRIMARY KEY, \"ü\" INT, \"a.b\" INT);"),
                   "out of reach: the fields of the class my.parts \"my.parts\", whose name holds a full stop\n"
                   "out of reach: the field \"ü\" of the class t \"t\", whose name another field has\n"
                   "out of reach: the class é \"é\", whose name another class has\n");
}

// behaviour: TL-66
TEST(check, keepsToOneLineForEachFinding) {
    toolRun const run = checked("CREATE TABLE \"a\nb\" (\"c\nd\" INT);");
    EXPECT_TRUE(isOneLine(run.mOut));
}

// behaviour: TL-67
TEST(check, reportsAliasesThatHideEachOther) {
    using zov::string;
    zovModel::databaseModel source;
    zov::refPtr<zov::metamodel::classInfo> made;
    for (auto const* const name : {L"bolt", L"nut", L"screw"}) {
        made = source.model().createClassInfo(name);
        made->setAbstract(true);
        made->addAliasname(L"fastener");
    }
    made->addAliasname(L"nut");
    made->addAliasname(L"Schraube");
    made->addAliasname(L"vis");
    zovModel::checkResult const result = zovModel::checkReport(source);
    EXPECT_FALSE(result.mIsClean);
    std::vector<std::string> const found = linesOf(result.mText.toUtf8());
    ASSERT_EQ(found.size(), 4u);
    EXPECT_TRUE(holds(textOf(found), "hidden: the alias \"nut\" of the class screw \"\", by the class nut \"\"\n"));
    EXPECT_TRUE(holds(textOf(found), "hidden: the alias \"Schraube\" of the class screw \"\", by its letter case\n"));
    EXPECT_EQ(std::count_if(found.begin(), found.end(),
                            [](std::string const& line) { return holds(line, "hidden: the alias \"fastener\" of "); }),
              2);
}
