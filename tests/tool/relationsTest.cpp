// What foreign keys become, and what `relations` says of them.
#include <gtest/gtest.h>

#include <set>

#include "sqliteView.h"
#include "testDatabase.h"
#include "toolRun.h"

using lines = std::vector<std::string>;
using json = nlohmann::ordered_json;

namespace {

constexpr char const* cOrders = "CREATE TABLE Customer (Id INTEGER PRIMARY KEY);"
                                "CREATE TABLE \"Order\" (Id INTEGER PRIMARY KEY, Customer INT REFERENCES Customer);"
                                "CREATE TABLE Line (\"Order\" INT REFERENCES \"Order\" (id) ON DELETE CASCADE, no INT,"
                                "PRIMARY KEY (\"Order\", no));";

// The relations of the database, which must agree with SQLite, in the tool's order.
json relationsOf(std::string const& sql) {
    testDatabase const made(sql);
    jsonList const answer(made.path());
    EXPECT_EQ(answer.mRun.mErr, "");
    EXPECT_EQ(textOf(relationsByTool(answer)), textOf(relationsBySqlite(made.path())));
    return answer.mRelations;
}

// What the tool complains of, and its exit status.
std::string complaintOf(std::string const& sql, int status = 0) {
    testDatabase const made(sql);
    jsonList const answer(made.path());
    EXPECT_EQ(answer.mRun.mStatus, status);
    return answer.mRun.mErr;
}

} // namespace

// behaviour: TL-51, TL-57
TEST(relations, leadFromFieldToField) {
    json const expected = json::parse(R"([
        {"name": "order", "reverseName": "line.order", "type": "agg", "from": "Line", "to": "Order",
         "pairs": [["Line.Order", "Order.Id"]]},
        {"name": "customer", "reverseName": "order.customer", "type": "ref", "from": "Order", "to": "Customer",
         "pairs": [["Order.Customer", "Customer.Id"]]}])");
    EXPECT_EQ(relationsOf(cOrders).dump(), expected.dump());
}

// behaviour: TL-51
TEST(relations, joinCompoundKeysPairByPair) {
    json const made = relationsOf("CREATE TABLE a (x INT, y INT, z INT, PRIMARY KEY (z, x));"
                                  "CREATE TABLE b (p INT, q INT, FOREIGN KEY (p, q) REFERENCES a);"
                                  "CREATE TABLE c (p INT, q INT, FOREIGN KEY (q, p) REFERENCES A (Y, X));");
    ASSERT_EQ(made.size(), 2u);
    EXPECT_EQ(made[0].at("pairs").dump(), R"([["b.p","a.z"],["b.q","a.x"]])");
    EXPECT_EQ(made[1].at("pairs").dump(), R"([["c.q","a.y"],["c.p","a.x"]])");
}

// behaviour: TL-51
TEST(relations, matchNamesWhateverTheirLetterCase) {
    json const made = relationsOf("CREATE TABLE \"Bär\" (Größe INT PRIMARY KEY);"
                                  "CREATE TABLE Zoo (tier INT, FOREIGN KEY (TIER) REFERENCES \"BäR\" (GRößE));");
    ASSERT_EQ(made.size(), 1u);
    EXPECT_EQ(made[0].at("pairs").dump(), R"([["Zoo.tier","Bär.Größe"]])");
}

// behaviour: TL-51
TEST(relations, leadToTheirOwnTableAndToLaterOnes) {
    json const made = relationsOf("CREATE TABLE Node (id INTEGER PRIMARY KEY, up INT REFERENCES Node, to_ INT "
                                  "REFERENCES Late (code)); CREATE TABLE Late (code INT UNIQUE);");
    EXPECT_EQ(made.size(), 2u);
}

// behaviour: TL-52
TEST(relations, thatLeadNowhereAreReported) {
    std::string const begin = "zovModel: warning: in the table \"t\", the foreign key (a) leads nowhere: ";
    EXPECT_EQ(complaintOf("CREATE TABLE t (a INT REFERENCES Gone (b));"), begin + "there is no table \"Gone\"\n");
    EXPECT_EQ(complaintOf("CREATE TABLE u (c INT); CREATE TABLE t (a INT REFERENCES U (b));"),
              begin + "the table \"u\" has no column \"b\"\n");
    EXPECT_EQ(complaintOf("CREATE TABLE u (c INT); CREATE TABLE t (a INT REFERENCES u);"),
              begin + "the primary key of \"u\" has 0 columns\n");
    EXPECT_EQ(complaintOf("CREATE TABLE u (c INT, d INT, PRIMARY KEY (c, d)); CREATE TABLE t (a INT REFERENCES u);"),
              begin + "the primary key of \"u\" has 2 columns\n");
    EXPECT_EQ(complaintOf("CREATE TABLE u (c INT PRIMARY KEY);"
                          "CREATE TABLE t (a INT, b INT, FOREIGN KEY (a, b) REFERENCES u);"),
              "zovModel: warning: in the table \"t\", the foreign key (a, b) leads nowhere: the primary key of \"u\" "
              "has 1 column\n");
}

// behaviour: TL-52
TEST(relations, areMadeBesideThoseThatLeadNowhere) {
    testDatabase const made(std::string(cOrders) + "CREATE TABLE t (a INT REFERENCES Gone REFERENCES Customer);");
    jsonList const answer(made.path());
    EXPECT_EQ(answer.mRelations.size(), 3u);
    EXPECT_EQ(answer.fieldOf("t", "a").at("semantic"), "relation");
}

// behaviour: TL-53
TEST(relations, leaveKeysKeysAndFlagsToTheDatabase) {
    testDatabase const made("CREATE TABLE A (id INTEGER PRIMARY KEY); CREATE TABLE B (id TEXT NOT NULL PRIMARY KEY);"
                            "CREATE TABLE AB (a INT REFERENCES A, b TEXT NOT NULL REFERENCES B, c INT UNIQUE "
                            "REFERENCES A, PRIMARY KEY (a, b));");
    jsonList const answer(made.path());
    EXPECT_EQ(answer.classOf("AB").at("idFields"), (json{"a", "b"}));
    EXPECT_EQ(answer.fieldOf("AB", "a").at("semantic"), "key");
    EXPECT_EQ(answer.fieldOf("AB", "c").at("semantic"), "relation");
    EXPECT_EQ(answer.mRelations.size(), 3u);
    EXPECT_EQ(textOf(seenByTool(answer)), textOf(seenBySqlite(made.path())));
}

// behaviour: TL-54
TEST(relations, ownWhereDeletingCascades) {
    json const made = relationsOf("CREATE TABLE A (id INTEGER PRIMARY KEY);"
                                  "CREATE TABLE B (r INT REFERENCES A, c INT REFERENCES A ON DELETE CASCADE, "
                                  "u INT REFERENCES A ON UPDATE CASCADE, n INT REFERENCES A ON DELETE SET NULL);");
    ASSERT_EQ(made.size(), 4u);
    EXPECT_EQ(made[0].at("type"), "ref");
    EXPECT_EQ(made[1].at("type"), "agg");
    EXPECT_EQ(made[2].at("type"), "ref");
    EXPECT_EQ(made[3].at("type"), "ref");
}

// behaviour: TL-55
TEST(relations, thatShareFieldsAreAllKept) {
    json const made = relationsOf("CREATE TABLE A (x INT, y INT, z INT, PRIMARY KEY (x, y));"
                                  "CREATE TABLE B (p INT, q INT, r INT, FOREIGN KEY (p, q) REFERENCES A,"
                                  "FOREIGN KEY (p, r) REFERENCES A, FOREIGN KEY (p, q) REFERENCES A (x, z),"
                                  "FOREIGN KEY (p) REFERENCES A (x));");
    ASSERT_EQ(made.size(), 4u);
    std::set<std::string> names;
    for (json const& each : made)
        names.insert(each.at("name").get<std::string>());
    EXPECT_EQ(names, (std::set<std::string>{"p", "q", "q_a", "r"}));
}

// behaviour: TL-55
TEST(relations, ofOneFieldToSeveralTablesHaveDifferentNames) {
    json const made =
        relationsOf("CREATE TABLE A (id INTEGER PRIMARY KEY, x INT, y INT);"
                    "CREATE TABLE B (id INTEGER PRIMARY KEY);"
                    "CREATE TABLE C (r INT REFERENCES A REFERENCES B REFERENCES A (x) REFERENCES A (y));");
    ASSERT_EQ(made.size(), 4u);
    EXPECT_EQ(made[0].at("name"), "r");
    EXPECT_EQ(made[0].at("reverseName"), "c.r");
    EXPECT_EQ(made[1].at("name"), "r_b");
    EXPECT_EQ(made[1].at("reverseName"), "c.r_b");
    EXPECT_EQ(made[2].at("name"), "r_a");
    EXPECT_EQ(made[3].at("name"), "r_a_2");
}

// behaviour: TL-55
TEST(relations, thatSayTheSameTwiceAreReported) {
    EXPECT_EQ(complaintOf("CREATE TABLE A (x INT PRIMARY KEY);"
                          "CREATE TABLE B (p INT REFERENCES A REFERENCES a (X) ON DELETE CASCADE);"),
              "zovModel: warning: in the table \"B\", the foreign key (p) has no relation of its own: \"p\" joins the "
              "same fields\n");
    EXPECT_EQ(complaintOf("CREATE TABLE A (x INT, y INT, PRIMARY KEY (x, y)); CREATE TABLE B (p INT REFERENCES A (x),"
                          "q INT REFERENCES A (y), FOREIGN KEY (p, q) REFERENCES A);"),
              "zovModel: warning: in the table \"B\", the foreign key (p, q) has no relation of its own: \"p\" and "
              "others join the same fields\n");
}

// behaviour: TL-56
TEST(relations, areShownFromBothSides) {
    testDatabase const made(cOrders);
    toolRun const run = runTool({"relations", made.path()});
    EXPECT_EQ(run.mStatus, 0);
    EXPECT_EQ(run.mErr, "");
    EXPECT_EQ(run.mOut, "customer \"Customer\"\n"
                        "    from  order  order.customer  ref  Order.Customer = Customer.Id\n"
                        "\n"
                        "line \"Line\"\n"
                        "    to  order  order  agg  Line.Order = Order.Id\n"
                        "\n"
                        "order \"Order\"\n"
                        "    to    customer  customer    ref  Order.Customer = Customer.Id\n"
                        "    from  line      line.order  agg  Line.Order = Order.Id\n");
}

// behaviour: TL-56
TEST(relations, areShownOfOneClass) {
    testDatabase const made(std::string(cOrders) + "CREATE TABLE Alone (a INT); CREATE TABLE \"\" (a INT);");
    EXPECT_EQ(runTool({"relations", made.path(), "CUSTOMER"}).mOut,
              "customer \"Customer\"\n    from  order  order.customer  ref  Order.Customer = Customer.Id\n");
    EXPECT_EQ(runTool({"relations", made.path(), "alone"}).mOut, "alone \"Alone\"\n    no relations\n");
    EXPECT_EQ(runTool({"relations", made.path(), ""}).mOut, " \"\"\n    no relations\n");
    toolRun const run = runTool({"relations", made.path(), "Nobody"});
    EXPECT_EQ(run.mStatus, 1);
    EXPECT_EQ(run.mOut, "there is no class \"Nobody\"\n");
}

// behaviour: TL-56
TEST(relations, areNoneWithoutForeignKeys) {
    testDatabase const made("CREATE TABLE t (a);");
    EXPECT_EQ(runTool({"relations", made.path()}).mOut, "no relations\n");
}

// behaviour: TL-58
TEST(relations, reachTablesAndColumnsThatTheModelCannotHold) {
    std::string const sql = "CREATE TABLE \"É\" (id INTEGER PRIMARY KEY); CREATE TABLE \"é\" (id INTEGER PRIMARY KEY, "
                            "up INT REFERENCES \"é\"); CREATE TABLE t (\"Ü\" INT REFERENCES \"É\", \"ü\" INT "
                            "REFERENCES \"é\", FOREIGN KEY (\"ü\") REFERENCES \"É\");";
    testDatabase const made(sql);
    jsonList const answer(made.path());
    EXPECT_EQ(answer.mRun.mStatus, 1);
    EXPECT_EQ(textOf(relationsByTool(answer)), textOf(relationsBySqlite(made.path())));
    EXPECT_EQ(answer.mRelations.size(), 4u);
    EXPECT_EQ(linesOf(runTool({"relations", made.path(), "É"}).mOut).size(), 8u);
}

// behaviour: TL-58
TEST(relations, loseAPairThatLeavesTheModelAndSaySo) {
    std::string const complaint = complaintOf("CREATE TABLE a (x INT, y INT, PRIMARY KEY (x, y));"
                                              "CREATE TABLE t (\"Ü\" INT, \"ü\" INT, FOREIGN KEY (\"Ü\", \"ü\") "
                                              "REFERENCES a);",
                                              1);
    EXPECT_TRUE(holds(complaint, "zovModel: in the table \"t\", the foreign key (Ü, ü) loses the pair of \"ü\" and "
                                 "\"y\": one of the two is not in the model\n"));
}

// behaviour: TL-51
TEST(relations, areTheSameWithInherit) {
    testDatabase const made("CREATE TABLE Item (id INTEGER PRIMARY KEY, up INT REFERENCES Item);"
                            "CREATE TABLE Part (id INTEGER PRIMARY KEY REFERENCES Item, up INT REFERENCES Part);");
    EXPECT_EQ(jsonList(made.path(), true).mRelations, jsonList(made.path()).mRelations);
}
