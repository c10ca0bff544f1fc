// Databases made for one test.
#pragma once

#include <memory>
#include <string>
#include <vector>

struct sqlite3;

// A new folder, removed with all that is in it at the end of its life.
class testFolder {
public:
    testFolder();
    ~testFolder();

    testFolder(testFolder const&) = delete;
    testFolder& operator=(testFolder const&) = delete;

    // The path of a file in it.
    std::string path(std::string const& name) const;

    // The names of the files in it, sorted.
    std::vector<std::string> names() const;

private:
    std::string mPath;
};

// A connection through SQLite's own library. What fails throws std::runtime_error.
class connection {
public:
    explicit connection(std::string const& path);

    void run(std::string const& sql) const;

    // All rows, their values as text, null as "NULL".
    std::vector<std::vector<std::string>> rows(std::string const& sql) const;

private:
    std::unique_ptr<sqlite3, int (*)(sqlite3*)> mHandle;
};

// A database made by the statements, in a folder of its own.
class testDatabase {
public:
    explicit testDatabase(std::string const& sql);

    std::string path() const { return mFolder.path("test.db"); }
    testFolder const& folder() const { return mFolder; }

private:
    testFolder mFolder;
};

// The bytes of the file from `offset` on become `bytes`.
void overwrite(std::string const& path, long offset, std::string const& bytes);

// The bytes of a file, none when there is no such file.
std::string readFile(std::string const& path);

// Makes the file with these bytes.
void writeFile(std::string const& path, std::string const& bytes);

// The text as an SQL name.
std::string sqlName(std::string const& name);
