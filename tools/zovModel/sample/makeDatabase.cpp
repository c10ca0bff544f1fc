// Makes a database from a file of SQL, for machines without SQLite's own shell:
//
//     zovSampleDatabase workshop.sql workshop.db
//
// The database must not exist yet: nothing is ever overwritten. Exit status: 0, or 2 with a line on standard error.

#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

#include <sqlite3.h>

namespace {

std::string readAll(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    if (!file || !text) throw std::runtime_error("cannot read " + path); // nothing to read counts as well
    return text.str();
}

void makeDatabase(std::string const& path, std::string const& sql) {
    if (std::filesystem::exists(path)) throw std::runtime_error(path + " exists already");
    sqlite3* opened = nullptr;
    int const code = sqlite3_open(path.c_str(), &opened);
    std::unique_ptr<sqlite3, int (*)(sqlite3*)> const connection(opened, sqlite3_close);
    if (code != SQLITE_OK || sqlite3_exec(opened, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw std::runtime_error("cannot make " + path + ": " + sqlite3_errmsg(opened));
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: zovSampleDatabase SQLFILE DBFILE\n";
        return 2;
    }
    try {
        makeDatabase(argv[2], readAll(argv[1]));
        return 0;
    } catch (std::exception const& problem) {
        std::cerr << "zovSampleDatabase: " << problem.what() << '\n';
        return 2;
    }
}
