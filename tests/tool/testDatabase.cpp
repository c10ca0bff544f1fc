#include "testDatabase.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <sqlite3.h>

testFolder::testFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "zovToolTest.XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("cannot make a folder");
    mPath = pattern;
}

testFolder::~testFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(mPath, ignored);
}

std::string testFolder::path(std::string const& name) const {
    return mPath + "/" + name;
}

std::vector<std::string> testFolder::names() const {
    std::vector<std::string> names;
    for (auto const& entry : std::filesystem::directory_iterator(mPath))
        names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

connection::connection(std::string const& path) : mHandle(nullptr, sqlite3_close) {
    sqlite3* opened = nullptr;
    int const code = sqlite3_open(path.c_str(), &opened);
    mHandle.reset(opened);
    if (code != SQLITE_OK) throw std::runtime_error("cannot open " + path);
}

void connection::run(std::string const& sql) const {
    rows(sql);
}

std::vector<std::vector<std::string>> connection::rows(std::string const& sql) const {
    using table = std::vector<std::vector<std::string>>;
    auto const keep = [](void* target, int count, char** values, char**) {
        std::vector<std::string>& row = static_cast<table*>(target)->emplace_back();
        for (int at = 0; at < count; ++at)
            row.emplace_back(values[at] ? values[at] : "NULL");
        return 0;
    };
    table result;
    if (sqlite3_exec(mHandle.get(), sql.c_str(), keep, &result, nullptr) != SQLITE_OK) {
        throw std::runtime_error(sqlite3_errmsg(mHandle.get()));
    }
    return result;
}

testDatabase::testDatabase(std::string const& sql) {
    connection const made(path());
    made.run("BEGIN");
    made.run(sql);
    made.run("COMMIT");
}

void overwrite(std::string const& path, long offset, std::string const& bytes) {
    std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(offset);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string readFile(std::string const& path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}

void writeFile(std::string const& path, std::string const& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string sqlName(std::string const& name) {
    std::string quoted = "\"";
    for (char const unit : name)
        quoted += unit == '"' ? "\"\"" : std::string(1, unit);
    return quoted + "\"";
}
