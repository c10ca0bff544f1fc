// What cannot be read or understood: one line on standard error, nothing on standard output, exit status 2.
#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>

#include "testDatabase.h"
#include "toolRun.h"

namespace {

void expectRefusal(std::string const& path, std::string const& reason) {
    for (std::vector<std::string> const& command : {std::vector<std::string>{"list", path},
                                                    {"list", path, "--json"},
                                                    {"find", path, "Part"},
                                                    {"relations", path},
                                                    {"dot", path},
                                                    {"check", path}}) {
        toolRun const run = runTool(command);
        EXPECT_EQ(run.mStatus, 2);
        EXPECT_EQ(run.mOut, "");
        EXPECT_TRUE(isOneLine(run.mErr)) << run.mErr;
        EXPECT_EQ(run.mErr.rfind("zovModel: cannot read \"" + path + "\": " + reason, 0), 0u) << run.mErr;
    }
}

} // namespace

// behaviour: TL-32
TEST(errors, tellsThatTheFileIsMissing) {
    testFolder const folder;
    expectRefusal(folder.path("gone.db"), "there is no such file\n");
    EXPECT_TRUE(folder.names().empty());
    expectRefusal(":memory:", "there is no such file\n");
    expectRefusal("file:gone.db?mode=memory", "there is no such file\n");
    expectRefusal("", "there is no such file\n");
}

// behaviour: TL-32
TEST(errors, tellsThatThePathIsADirectory) {
    testFolder const folder;
    std::filesystem::create_directory(folder.path("sub"));
    expectRefusal(folder.path("sub"), "it is a directory\n");
}

// behaviour: TL-32
TEST(errors, doesNotWaitForPipes) {
    testFolder const folder;
    ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
    expectRefusal(folder.path("pipe"), "it is not a regular file\n");
}

// behaviour: TL-32
TEST(errors, tellsThatTheFileIsNoDatabase) {
    testFolder const folder;
    writeFile(folder.path("notes.txt"), "width: 80 mm\n");
    writeFile(folder.path("long.txt"), std::string(5000, 'x'));
    expectRefusal(folder.path("notes.txt"), "it is not an SQLite database\n");
    expectRefusal(folder.path("long.txt"), "it is not an SQLite database\n");
}

// behaviour: TL-32
TEST(errors, tellsThatTheFileIsDamaged) {
    testDatabase const made("CREATE TABLE t (a);");
    overwrite(made.path(), 100, std::string(200, '\xff'));
    expectRefusal(made.path(), "it is damaged: ");
}

// behaviour: TL-32
TEST(errors, tellsThatTheSchemaIsDamaged) {
    testDatabase const made("CREATE TABLE t (a); PRAGMA writable_schema = ON;"
                            "UPDATE sqlite_master SET sql = 'CREATE TABLE t (' || char(10) || '(';");
    expectRefusal(made.path(), "it is damaged: malformed database schema (t)");
}

// behaviour: TL-32
TEST(errors, tellsThatTheFormatIsUnknown) {
    testDatabase const made("CREATE TABLE t (a);");
    overwrite(made.path(), 47, "\x09"); // the number of the schema format
    expectRefusal(made.path(), "unsupported file format\n");
}

// behaviour: TL-32
TEST(errors, writesPathsOnOneLine) {
    toolRun const run = runTool({"list", "no\nsuch\xff"});
    EXPECT_EQ(run.mErr, "zovModel: cannot read \"no\\nsuch\xEF\xBF\xBD\": there is no such file\n");
}

// behaviour: TL-33
TEST(errors, tellsThatTheDatabaseIsLocked) {
    testDatabase const made("CREATE TABLE Part (a);");
    connection const writer(made.path());
    writer.run("BEGIN EXCLUSIVE");
    expectRefusal(made.path(), "it is locked by another program\n");
    writer.run("COMMIT");
    EXPECT_EQ(runTool({"list", made.path()}).mStatus, 0);
}

// behaviour: TL-42
TEST(errors, tellsThatAChangeWasInterrupted) {
    testDatabase const made("CREATE TABLE Part (a);");
    testFolder const copies;
    connection const writer(made.path());
    writer.run(
        "PRAGMA cache_size = 2; BEGIN; WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n LIMIT 500) "
        "INSERT INTO Part SELECT randomblob(500) FROM n;");
    // What a machine finds after a loss of power: the database half changed, and its journal.
    std::filesystem::copy_file(made.path(), copies.path("x.db"));
    std::filesystem::copy_file(made.path() + "-journal", copies.path("x.db-journal"));
    writer.run("ROLLBACK");
    expectRefusal(copies.path("x.db"),
                  "a program left it in the middle of a change; open it once with a program that may write\n");
}

// behaviour: TL-34
TEST(errors, tellsWhatIsWrongWithTheCommand) {
    testDatabase const made("CREATE TABLE Part (a);");
    for (std::vector<std::string> const& command : {std::vector<std::string>{},
                                                    {"list"},
                                                    {"find", made.path()},
                                                    {"drop", made.path()},
                                                    {"list", made.path(), "--colour"},
                                                    {"list", made.path(), "Part"},
                                                    {"find", made.path(), "--json", "Part"},
                                                    {"relations", made.path(), "a", "b"},
                                                    {"dot", made.path(), "Part"},
                                                    {"check", made.path(), "Part"}}) {
        toolRun const run = runTool(command);
        EXPECT_EQ(run.mStatus, 2);
        EXPECT_EQ(run.mOut, "");
        EXPECT_NE(run.mErr, "");
    }
}

// behaviour: TL-34
TEST(errors, explainsItselfOnRequest) {
    for (std::vector<std::string> const& command : {std::vector<std::string>{"--help"},
                                                    {"list", "-h"},
                                                    {"find", "-h"},
                                                    {"relations", "-h"},
                                                    {"dot", "-h"},
                                                    {"check", "-h"}}) {
        toolRun const run = runTool(command);
        EXPECT_EQ(run.mStatus, 0);
        EXPECT_EQ(run.mErr, "");
        EXPECT_TRUE(holds(run.mOut, "Exit status: 0"));
    }
}

// behaviour: TL-35
TEST(errors, tellsThatTheAnswerCannotBeWritten) {
    testDatabase const made("CREATE TABLE Part (a);");
    toolRun const run = runProgram("/bin/sh", {"-c", R"(exec "$0" list "$1" > /dev/full)", ZOV_TOOL, made.path()});
    EXPECT_EQ(run.mStatus, 2);
    EXPECT_EQ(run.mErr, "zovModel: cannot write the answer\n");
}

// behaviour: TL-36
TEST(reading, leavesTheFileAndItsFolderAlone) {
    testDatabase const made("CREATE TABLE Part (a);");
    connection(made.path()).run("PRAGMA journal_mode = WAL");
    auto const before = std::filesystem::last_write_time(made.path());
    ASSERT_EQ(made.folder().names(), std::vector<std::string>{"test.db"});
    EXPECT_EQ(jsonList(made.path()).labels(), std::vector<std::string>{"Part"});
    EXPECT_EQ(made.folder().names(), std::vector<std::string>{"test.db"});
    EXPECT_EQ(std::filesystem::last_write_time(made.path()), before);
}

// behaviour: TL-36
TEST(reading, seesWhatAnotherProgramHasJustWritten) {
    testDatabase const made("CREATE TABLE Part (a);");
    connection const writer(made.path());
    writer.run("PRAGMA journal_mode = WAL; CREATE TABLE Fresh (a);");
    EXPECT_EQ(jsonList(made.path()).labels(), (std::vector<std::string>{"Fresh", "Part"}));
}

// behaviour: TL-36
TEST(reading, takesPathsLiterally) {
    testFolder const folder;
    for (auto const* const name : {"file:a%41?mode=ro#x.db", ":memory:", "[a,b].db", "100%.db"}) {
        connection(folder.path("made.db")).run("PRAGMA journal_mode = WAL; CREATE TABLE t (a);");
        std::filesystem::rename(folder.path("made.db"), folder.path(name));
        EXPECT_EQ(jsonList(folder.path(name)).labels(), std::vector<std::string>{"t"}) << name;
    }
}
