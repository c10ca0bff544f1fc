// The sample database that ships with the tool, and the program that makes it.
#include <gtest/gtest.h>

#include "sqliteView.h"
#include "testDatabase.h"
#include "toolRun.h"

namespace {

class sample : public testing::Test {
protected:
    void SetUp() override {
        toolRun const run = runProgram(ZOV_SAMPLE_DATABASE, {ZOV_SAMPLE_SQL, path()});
        ASSERT_EQ(run.mStatus, 0) << run.mErr;
    }

    std::string path() const { return mFolder.path("workshop.db"); }

private:
    testFolder mFolder;
};

} // namespace

// behaviour: TL-40
TEST_F(sample, showsThreeLevelsOfInheritance) {
    jsonList const answer(path(), true);
    EXPECT_EQ(answer.mRun.mStatus, 0);
    EXPECT_EQ(answer.classOf("MachinedPart").at("baseClasses"), (nlohmann::ordered_json{"part"}));
    EXPECT_EQ(answer.classOf("Part").at("baseClasses"), (nlohmann::ordered_json{"item"}));
    EXPECT_EQ(answer.classOf("Item").at("baseClasses"), nlohmann::ordered_json::array());
    EXPECT_EQ(answer.classOf("DeliveredLine").at("baseClasses"), (nlohmann::ordered_json{"orderline"}));
    EXPECT_EQ(answer.classOf("OpenLine").at("abstract"), true);
}

// behaviour: TL-40
TEST_F(sample, answersTheDemonstrationsQuestions) {
    toolRun const run = runTool({"find", path(), "--inherit", "Part.width", "PART.WIDTH", "MachinedPart.width",
                                 "MachinedPart.name", "Part.colour"});
    EXPECT_EQ(run.mStatus, 1);
    EXPECT_EQ(run.mErr, "");
    EXPECT_EQ(run.mOut, "Part.width: field part.width \"width\", double, mandatory, null 0\n"
                        "PART.WIDTH: field part.width \"width\", double, mandatory, null 0\n"
                        "MachinedPart.width: field part.width \"width\", double, mandatory, null 0, inherited from the "
                        "direct base part "
                        "\"Part\"\n"
                        "MachinedPart.name: field item.name \"name\", string(80), mandatory, null \"\", inherited from "
                        "further up, from item "
                        "\"Item\"\n"
                        "Part.colour: unknown; the class part \"Part\" has no such field, nor has a base of it\n");
}

// behaviour: TL-11, TL-40, TL-43, TL-51
TEST_F(sample, agreesWithSqlite) {
    jsonList const answer(path());
    EXPECT_EQ(textOf(definitionsByTool(answer)), textOf(definitionsBySqlite(path())));
    EXPECT_EQ(textOf(relationsByTool(answer)), textOf(relationsBySqlite(path())));
    EXPECT_EQ(textOf(seenByTool(answer)), textOf(seenBySqlite(path())));
    EXPECT_EQ(unfitTypes(path(), answer), std::vector<std::string>());
}

// behaviour: TL-40
TEST_F(sample, hasAComputedFieldADefaultAndAnAggregation) {
    EXPECT_EQ(runTool({"find", path(), "Part.area", "OrderLine.quantity"}).mOut,
              "Part.area: field part.area \"area\", double, computed width * height / 1e6, null 0\n"
              "OrderLine.quantity: field orderline.quantity \"quantity\", double, mandatory, default 1, null 0\n");
    EXPECT_TRUE(holds(runTool({"relations", path(), "OrderLine"}).mOut, "  agg  OrderLine.orderNo = "));
    EXPECT_EQ(runTool({"check", path(), "--inherit"}).mStatus, 0);
}

// behaviour: TL-41
TEST_F(sample, isNeverOverwritten) {
    toolRun const run = runProgram(ZOV_SAMPLE_DATABASE, {ZOV_SAMPLE_SQL, path()});
    EXPECT_EQ(run.mStatus, 2);
    EXPECT_EQ(run.mErr, "zovSampleDatabase: " + path() + " exists already\n");
    EXPECT_EQ(runTool({"list", path()}).mStatus, 0);
}

// behaviour: TL-41
TEST(sampleDatabase, tellsWhatItCannotDo) {
    testFolder const folder;
    writeFile(folder.path("bad.sql"), "CREATE TABLE (");
    for (std::vector<std::string> const& command : {std::vector<std::string>{},
                                                    {"one"},
                                                    {folder.path("gone.sql"), folder.path("a.db")},
                                                    {folder.path("bad.sql"), folder.path("b.db")},
                                                    {ZOV_SAMPLE_SQL, folder.path("no/such/folder.db")}}) {
        toolRun const run = runProgram(ZOV_SAMPLE_DATABASE, command);
        EXPECT_EQ(run.mStatus, 2);
        EXPECT_TRUE(isOneLine(run.mErr)) << run.mErr;
    }
}
