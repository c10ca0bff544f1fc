// Files, directories and search paths.
#include "zovFsEntry.h"

#include <gtest/gtest.h>

#include <chrono>
#include <clocale>
#include <filesystem>
#include <fstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "zovAssert.h"

namespace {

using zov::directory;
using zov::file;
using zov::fsEntryName;
using zov::searchPath;
using zov::string;

static_assert(std::has_virtual_destructor_v<zov::fsEntry>);
static_assert(!std::is_constructible_v<zov::fsEntry, fsEntryName const&, string const&, bool>);
static_assert(!std::is_copy_assignable_v<zov::fsEntry>);
static_assert(std::is_nothrow_move_constructible_v<file>);
static_assert(std::is_nothrow_move_assignable_v<directory>);

fsEntryName named(string const& name, bool clean = false) {
    fsEntryName result;
    result.setName(name, clean);
    return result;
}

string textOf(std::filesystem::path const& path) {
    std::u8string const text = path.generic_u8string();
    return string::fromUtf8(std::string(text.begin(), text.end()));
}

// A fresh directory for each test, removed afterwards.
class fileSystem : public testing::Test {
protected:
    fileSystem() {
        auto const ticks = std::chrono::steady_clock::now().time_since_epoch().count();
        mRoot = std::filesystem::temp_directory_path() / ("zovFsEntry" + std::to_string(ticks));
        std::filesystem::create_directory(mRoot);
    }
    ~fileSystem() override {
        std::error_code ignored;
        std::filesystem::remove_all(mRoot, ignored);
    }

    string pathOf(std::u8string const& name) const { return textOf(mRoot / name); }

    string makeFile(std::u8string const& name, std::string const& content = "content") const {
        std::ofstream(mRoot / name) << content;
        return pathOf(name);
    }

    string makeDirectory(std::u8string const& name) const {
        std::filesystem::create_directory(mRoot / name);
        return pathOf(name);
    }

    std::filesystem::path mRoot;
};

// behaviour: PA-01
TEST(fsEntryNameText, isKeptAsItStands) {
    EXPECT_EQ(fsEntryName().name(), L"");
    EXPECT_EQ(named(L" \ta.txt ").name(), L" \ta.txt ");
    EXPECT_EQ(named(L"").name(), L"");
}

// behaviour: PA-02
TEST(fsEntryNameText, isCleanedOnRequest) {
    EXPECT_EQ(named(L" \ta b.txt\t ", true).name(), L"a b.txt");
    EXPECT_EQ(named(L" \t", true).name(), L"");
}

// behaviour: PA-02
TEST(fsEntryNameText, mayBeSetFromItself) {
    fsEntryName name = named(L" a ");
    name.setName(name.name(), true);
    EXPECT_EQ(name.name(), L"a");
}

// behaviour: PA-03
TEST(fsEntryPath, isEmptyByDefault) {
    EXPECT_EQ(file().path(), L"");
    EXPECT_EQ(directory().path(), L"");
    EXPECT_EQ(file(fsEntryName(), string(), false), file());
    EXPECT_EQ(directory(named(L""), string(), true), directory());
}

// behaviour: PA-03
TEST(fsEntryPath, tellsItsKind) {
    EXPECT_FALSE(file().isDirectory());
    EXPECT_TRUE(directory().isDirectory());
}

// behaviour: PA-04
TEST(fsEntryPath, joinsBaseAndName) {
    EXPECT_EQ(file(named(L"a.txt"), L"/data", false).path(), L"/data/a.txt");
    EXPECT_EQ(file(named(L"a.txt"), L"/data/", false).path(), L"/data/a.txt");
    EXPECT_EQ(directory(named(L"sub"), L"data", true).path(), L"data/sub");
}

// behaviour: PA-04
TEST(fsEntryPath, isTheNameWhereThatIsEnough) {
    EXPECT_EQ(file(named(L"a.txt"), L"", false).path(), L"a.txt");
    EXPECT_EQ(file(named(L"/tmp/a.txt"), L"/data", false).path(), L"/tmp/a.txt");
}

// behaviour: PA-04
TEST(fsEntryPath, isTheBaseForAnEmptyName) {
    EXPECT_EQ(directory(named(L""), L"/data", true).path(), L"/data");
}

// behaviour: PA-05
TEST(fsEntryKind, mustFitTheClass) {
    std::vector<string> reports;
    zov::setAssertHandler([&](string const& text) { reports.push_back(text); });
    EXPECT_THROW(file(fsEntryName(), string(), true), bool);
    EXPECT_THROW(directory(fsEntryName(), string(), false), bool);
    zov::setAssertHandler({});
    ASSERT_EQ(reports.size(), 2U);
    EXPECT_TRUE(reports[0].starts_with(L"Assertion failed:\n!isDirectory\n\nFile: libs/utils/src/zovFsEntry.cpp\n"));
    EXPECT_TRUE(reports[1].starts_with(L"Assertion failed:\nisDirectory\n\nFile: libs/utils/src/zovFsEntry.cpp\n"));
}

// behaviour: PA-06
TEST(fsEntryEquality, isThatOfPathTexts) {
    EXPECT_EQ(file(L"a.txt"), file(named(L"a.txt"), L"", false));
    EXPECT_NE(file(L"a.txt"), file(L"./a.txt"));
    EXPECT_NE(file(L"a.txt"), file(L"A.txt"));
    EXPECT_EQ(directory(L"/x"), directory(L"/x"));
    EXPECT_NE(directory(L"/x"), directory(L"/x/"));
}

// behaviour: PA-06
TEST(fsEntryEquality, holdsForCopies) {
    file const one(L"a.txt");
    file copy = one;
    EXPECT_EQ(copy, one);
    copy = file(L"b.txt");
    EXPECT_NE(copy, one);
}

// behaviour: PA-07
TEST(fsEntryRemote, isReadOffThePath) {
    EXPECT_TRUE(file(L"\\\\server\\share\\a.txt").isRemote());
    EXPECT_TRUE(directory(L"//server/share").isRemote());
    EXPECT_FALSE(file(L"/data/a.txt").isRemote());
    EXPECT_FALSE(file(L"C:\\a.txt").isRemote());
    EXPECT_FALSE(file().isRemote());
}

// behaviour: PA-08
TEST_F(fileSystem, findsAFile) {
    file const present(makeFile(u8"a.txt"));
    EXPECT_TRUE(present.exists());
    EXPECT_FALSE(directory(present.path()).exists());
    EXPECT_FALSE(file(pathOf(u8"b.txt")).exists());
}

// behaviour: PA-08
TEST_F(fileSystem, findsADirectory) {
    directory const present(makeDirectory(u8"sub"));
    EXPECT_TRUE(present.exists());
    EXPECT_FALSE(file(present.path()).exists());
    EXPECT_FALSE(directory(pathOf(u8"other")).exists());
}

// behaviour: PA-08
TEST_F(fileSystem, findsThroughTheBase) {
    file const present(makeFile(u8"a.txt"));
    zov::fsEntry const& entry = file(named(L"a.txt"), textOf(mRoot), false);
    EXPECT_TRUE(entry.exists());
}

// behaviour: PA-09
TEST_F(fileSystem, takesNamesOfEveryScriptInThePlainLocale) {
    std::string const before = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "C");
    file present(makeFile(u8"\u00C4\u4E2D\U0001F600.txt"));
    EXPECT_TRUE(present.exists());
    EXPECT_TRUE(present.rename(pathOf(u8"\u0416.txt")));
    EXPECT_TRUE(std::filesystem::exists(mRoot / u8"\u0416.txt"));
    std::setlocale(LC_ALL, before.c_str());
}

// behaviour: PA-10
TEST_F(fileSystem, findsNothingOnPathsThatCannotBe) {
    string const present = makeFile(u8"a.txt");
    EXPECT_FALSE(file().exists());
    EXPECT_FALSE(directory().exists());
    EXPECT_FALSE(file(present + L"/below").exists());
    EXPECT_FALSE(file(present + L'\0').exists());
    EXPECT_FALSE(file(textOf(mRoot) + L"/" + string(100'000, L'x')).exists());
    EXPECT_FALSE(file(textOf(mRoot) + L"/" + string(1, static_cast<wchar_t>(0xD800))).exists());
}

// behaviour: PA-11
TEST_F(fileSystem, renamesAFile) {
    file moved(makeFile(u8"a.txt"));
    EXPECT_TRUE(moved.rename(pathOf(u8"b.txt")));
    EXPECT_EQ(moved.path(), pathOf(u8"b.txt"));
    EXPECT_TRUE(moved.exists());
    EXPECT_FALSE(file(pathOf(u8"a.txt")).exists());
}

// behaviour: PA-11
TEST_F(fileSystem, renamesADirectoryWithItsContent) {
    directory moved(makeDirectory(u8"one"));
    makeFile(u8"one/a.txt");
    EXPECT_TRUE(moved.rename(pathOf(u8"two")));
    EXPECT_EQ(moved.path(), pathOf(u8"two"));
    EXPECT_TRUE(file(pathOf(u8"two/a.txt")).exists());
}

// behaviour: PA-11
TEST_F(fileSystem, renamesToItsOwnPath) {
    file same(makeFile(u8"a.txt"));
    EXPECT_TRUE(same.rename(same.path()));
    EXPECT_TRUE(same.exists());
}

// behaviour: PA-11
TEST_F(fileSystem, renamesToAPathOfItsOwnWhateverTheBase) {
    makeFile(u8"a.txt");
    file moved(named(L"a.txt"), textOf(mRoot), false);
    EXPECT_TRUE(moved.rename(pathOf(u8"b.txt")));
    EXPECT_EQ(moved.path(), pathOf(u8"b.txt"));
}

// behaviour: PA-12
TEST_F(fileSystem, leavesAllAsItWasWhenRenamingFails) {
    file present(makeFile(u8"a.txt"));
    string const path = present.path();
    std::vector<string> const targets{L"", pathOf(u8"none/a.txt"), pathOf(u8"b.txt") + L'\0', path + L"/below"};
    for (string const& target : targets) {
        EXPECT_FALSE(present.rename(target));
        EXPECT_EQ(present.path(), path);
        EXPECT_TRUE(present.exists());
    }
}

// behaviour: PA-12
TEST_F(fileSystem, renamesNothingThatIsNotThere) {
    file missing(pathOf(u8"a.txt"));
    EXPECT_FALSE(missing.rename(pathOf(u8"b.txt")));
    EXPECT_EQ(missing.path(), pathOf(u8"a.txt"));
    EXPECT_FALSE(file().rename(pathOf(u8"b.txt")));
}

// behaviour: PA-12
TEST_F(fileSystem, renamesNothingOfAnotherKind) {
    file notAFile(makeDirectory(u8"sub"));
    EXPECT_FALSE(notAFile.rename(pathOf(u8"other")));
    directory notADirectory(makeFile(u8"a.txt"));
    EXPECT_FALSE(notADirectory.rename(pathOf(u8"b.txt")));
    EXPECT_TRUE(directory(notAFile.path()).exists());
    EXPECT_TRUE(file(notADirectory.path()).exists());
}

// behaviour: PA-13
TEST(searchPathText, isKeptAsItStands) {
    EXPECT_EQ(searchPath().path(), L"");
    EXPECT_EQ(searchPath(L"/a;;/b;").path(), L"/a;;/b;");
    EXPECT_EQ(searchPath(L"/a"), searchPath(L"/a"));
    EXPECT_NE(searchPath(L"/a"), searchPath(L"/a;"));
    EXPECT_EQ(searchPath(), searchPath(L""));
}

// behaviour: PA-14
TEST(searchPathDirectories, standBetweenSemicolons) {
    EXPECT_TRUE(searchPath().directories().empty());
    std::vector<directory> const expected{directory(L"/a"), directory(L"C:\\b"), directory(L"c d")};
    EXPECT_EQ(searchPath(L";/a;;C:\\b;c d;").directories(), expected);
}

// behaviour: PA-15
TEST(searchPathDirectories, areAddedAtTheEnd) {
    searchPath path;
    EXPECT_TRUE(path.append(directory(L"/a")));
    EXPECT_TRUE(path.append(directory(L"/b")));
    EXPECT_EQ(path, searchPath(L"/a;/b"));
}

// behaviour: PA-15
TEST(searchPathDirectories, areRefusedWhenTheTextCannotNameThem) {
    searchPath path(L"/a");
    EXPECT_FALSE(path.append(directory()));
    EXPECT_FALSE(path.append(directory(L"/b;c")));
    EXPECT_EQ(path, searchPath(L"/a"));
}

} // namespace
