// The class diagram that `dot` writes. Graphviz itself reads it where it is installed.
#include <gtest/gtest.h>

#include <algorithm>

#include "testDatabase.h"
#include "toolRun.h"

using lines = std::vector<std::string>;

namespace {

constexpr char const* cItems =
    "CREATE TABLE Shelf (no INTEGER PRIMARY KEY);"
    "CREATE TABLE Item (id INTEGER PRIMARY KEY, shelf INT REFERENCES Shelf, box INT REFERENCES Item ON DELETE CASCADE);"
    "CREATE TABLE Part (id INTEGER PRIMARY KEY REFERENCES Item, Width DOUBLE, twice DOUBLE AS (width * 2), p MONEY);"
    "CREATE VIEW Wide AS SELECT * FROM Part;";

lines arrowsIn(std::string const& diagram) {
    lines found = linesOf(diagram);
    std::erase_if(found, [](std::string const& line) { return !holds(line, "\" -> \""); });
    return found;
}

// The fields of all classes, as they are marked.
lines rowsIn(std::string const& diagram) {
    lines found;
    for (std::string const& line : linesOf(diagram)) {
        std::string const begin = "<tr><td align=\"left\">";
        std::size_t const at = line.find(begin);
        if (at != std::string::npos)
            found.push_back(line.substr(at + begin.size(), line.find("</td>") - at - begin.size()));
    }
    return found;
}

bool hasGraphviz() {
    return runProgram("/bin/sh", {"-c", "command -v dot"}).mStatus == 0;
}

// What Graphviz makes of the diagram, and what it complains of.
toolRun drawn(std::string const& diagram) {
    testFolder const folder;
    writeFile(folder.path("diagram.dot"), diagram);
    return runProgram("/bin/sh", {"-c", R"(exec dot -Tsvg "$0")", folder.path("diagram.dot")});
}

} // namespace

// behaviour: TL-59
TEST(dot, showsClassesWithTheirFields) {
    testDatabase const made(cItems);
    toolRun const run = runTool({"dot", made.path()});
    EXPECT_EQ(run.mStatus, 0);
    EXPECT_EQ(run.mErr, "");
    EXPECT_EQ(linesOf(run.mOut).front(), "digraph model {");
    EXPECT_EQ(linesOf(run.mOut).back(), "}");
    EXPECT_EQ(rowsIn(run.mOut), (lines{"<u>id</u>", "shelf", "box", "<u>id</u>", "Width", "/twice", "p", "<u>no</u>",
                                       "id", "Width", "twice", "p"}));
    EXPECT_TRUE(holds(run.mOut, ">MONEY</font>"));
}

// behaviour: TL-59
TEST(dot, showsAbstractClassesInItalics) {
    testDatabase const made(cItems);
    std::string const diagram = runTool({"dot", made.path()}).mOut;
    EXPECT_TRUE(holds(diagram, "<i><b>Wide</b></i>"));
    EXPECT_TRUE(holds(diagram, "><b>Part</b><"));
}

// behaviour: TL-59
TEST(dot, drawsRelations) {
    testDatabase const made(cItems);
    EXPECT_EQ(arrowsIn(runTool({"dot", made.path()}).mOut),
              (lines{R"(    "Item" -> "Shelf" [label=" shelf ", arrowhead=vee])",
                     R"(    "Item" -> "Item" [label=" box ", arrowhead=diamond])",
                     R"(    "Part" -> "Item" [label=" id ", arrowhead=vee])"}));
}

// behaviour: TL-62
TEST(dot, drawsBasesInPlaceOfTheForeignKeysThatMakeThem) {
    testDatabase const made(cItems);
    EXPECT_EQ(arrowsIn(runTool({"dot", made.path(), "--inherit"}).mOut),
              (lines{R"(    "Item" -> "Shelf" [label=" shelf ", arrowhead=vee])",
                     R"(    "Item" -> "Item" [label=" box ", arrowhead=diamond])",
                     R"(    "Part" -> "Item" [arrowhead=onormal, arrowsize=1.2])"}));
}

// behaviour: TL-62
TEST(dot, drawsOtherRelationsToABaseAsWell) {
    testDatabase const made("CREATE TABLE Item (id INTEGER PRIMARY KEY);"
                            "CREATE TABLE Part (id INTEGER PRIMARY KEY REFERENCES Item, other INT REFERENCES Item);");
    EXPECT_EQ(arrowsIn(runTool({"dot", made.path(), "--inherit"}).mOut).size(), 2u);
}

// behaviour: TL-59
TEST(dot, writesTheSameEveryTime) {
    std::string const item = "CREATE TABLE Item (id INTEGER PRIMARY KEY, up INT REFERENCES Item);";
    std::string const part = "CREATE TABLE Part (id INTEGER PRIMARY KEY, item INT REFERENCES Item);";
    testDatabase const one(item + part);
    testDatabase const other(part + item);
    EXPECT_EQ(runTool({"dot", one.path()}).mOut, runTool({"dot", other.path()}).mOut);
}

// behaviour: TL-61
TEST(dot, showsTheChosenClassesOnly) {
    testDatabase const made(cItems);
    toolRun const run = runTool({"dot", made.path(), "--classes", "shelf", "ITEM"});
    EXPECT_EQ(run.mStatus, 0);
    EXPECT_EQ(arrowsIn(run.mOut).size(), 2u);
    EXPECT_EQ(rowsIn(run.mOut), (lines{"<u>id</u>", "shelf", "box", "<u>no</u>"}));
    EXPECT_EQ(arrowsIn(runTool({"dot", made.path(), "--classes", "Part", "Shelf"}).mOut), lines());
}

// behaviour: TL-61
TEST(dot, tellsWhichChosenClassesThereAreNot) {
    testDatabase const made(cItems);
    toolRun const run = runTool({"dot", made.path(), "--classes", "Nobody", "Item"});
    EXPECT_EQ(run.mStatus, 1);
    EXPECT_EQ(run.mErr, "zovModel: there is no class \"Nobody\"\n");
    EXPECT_EQ(rowsIn(run.mOut).size(), 3u);
    EXPECT_EQ(runTool({"dot", made.path(), "--classes"}).mStatus, 2);
}

// behaviour: TL-61
TEST(dot, choosesClassesWithNamesOfEveryKind) {
    lines command{"dot", "", "--inherit", "--classes", "[a,b]", "{}", "=x", "a b", "--", "--inherit", "-x"};
    std::string sql;
    for (std::size_t at = 4; at < command.size(); ++at) {
        if (command[at] != "--") sql += "CREATE TABLE " + sqlName(command[at]) + " (c INT);";
    }
    testDatabase const made(sql);
    command[1] = made.path();
    toolRun const run = runTool(command);
    EXPECT_EQ(run.mStatus, 0) << run.mErr;
    EXPECT_EQ(rowsIn(run.mOut).size(), 6u);
}

// behaviour: TL-60
TEST(dot, escapesNames) {
    testDatabase const made(R"sql(CREATE TABLE "a""<b>&\n" ("x&<""> y" INTEGER PRIMARY KEY, "" INT);
                                  CREATE TABLE t ("\N &amp; ""q""" INT REFERENCES "a""<b>&\n");)sql");
    std::string const diagram = runTool({"dot", made.path()}).mOut;
    EXPECT_TRUE(holds(diagram, R"(    "a\"<b>&\\n" [label=<)"));
    EXPECT_TRUE(holds(diagram, R"(<b>a&quot;&lt;b&gt;&amp;\n</b>)"));
    EXPECT_TRUE(holds(diagram, R"(<u>x&amp;&lt;&quot;&gt; y</u>)"));
    EXPECT_TRUE(holds(diagram, R"("t" -> "a\"<b>&\\n" [label=" \\N &amp;amp; \"q\" ", arrowhead=vee])"));
    EXPECT_EQ(rowsIn(diagram).at(1), "&quot;&quot;");
}

// behaviour: TL-60
TEST(dot, isUnderstoodByGraphvizWhateverTheNames) {
    if (!hasGraphviz()) GTEST_SKIP() << "dot (package graphviz) is not installed";
    std::string sql;
    for (std::string const name :
         {"",    " ",    "a b",   "<b>",          "&amp;", "&",          "a\"b", "a\\",
          "\\N", "node", "graph", "Теплица",      "倉庫",  "two\nlines", "\x01", "{a|b}",
          "a:b", "-->",  "]]>",   "\xEF\xBF\xBF", "\xFF",  "É",          "é",    "\xF0\x9F\x94\xA7"}) {
        sql += "CREATE TABLE " + sqlName(name) + " (" + sqlName(name) + " INTEGER PRIMARY KEY REFERENCES " +
               sqlName(name) + ", c MONEY, d \"<&>\", v AS (1));";
        sql += "CREATE VIEW " + sqlName("view of " + name) + " AS SELECT * FROM " + sqlName(name) + ";";
    }
    testDatabase const made(sql);
    std::string const diagram = runTool({"dot", made.path()}).mOut;
    toolRun const run = drawn(diagram);
    EXPECT_EQ(run.mStatus, 0);
    EXPECT_EQ(run.mErr, "");
    EXPECT_TRUE(holds(run.mOut, "</svg>"));
    lines const drawing = linesOf(run.mOut);
    auto const isNode = [](std::string const& line) { return holds(line, "class=\"node\""); };
    EXPECT_EQ(std::count_if(drawing.begin(), drawing.end(), isNode), 48);
}

// behaviour: TL-60
TEST(dot, isUnderstoodByGraphvizWithoutTables) {
    if (!hasGraphviz()) GTEST_SKIP() << "dot (package graphviz) is not installed";
    testDatabase const made("");
    EXPECT_EQ(drawn(runTool({"dot", made.path()}).mOut).mErr, "");
}
