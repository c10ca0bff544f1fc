#include "sqliteDatabase.h"

#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <new>
#include <system_error>

#include <sqlite3.h>

#include "displayText.h"

namespace zovModel {

namespace {

namespace fs = std::filesystem;

// How long to wait for a program that writes to the database.
constexpr int cPatience = 1000; // milliseconds

[[noreturn]] void refuse(std::string const& path, std::string const& reason) {
    throw databaseError("cannot read " + quoted(zov::string::fromUtf8(path)).toUtf8() + ": " + reason);
}

// The file behind the path. SQLite itself would make a database out of some paths (":memory:", "file:...") and wait
// for ever on a pipe, so that only the full path of a regular file reaches it.
fs::path regularFile(std::string const& path) {
    std::error_code problem;
    fs::file_status const status = fs::status(path, problem);
    if (status.type() == fs::file_type::not_found) refuse(path, "there is no such file");
    if (problem) refuse(path, problem.message());
    if (status.type() == fs::file_type::directory) refuse(path, "it is a directory");
    if (status.type() != fs::file_type::regular) refuse(path, "it is not a regular file");
    fs::path full = fs::canonical(path, problem);
    if (problem) refuse(path, problem.message());
    return full;
}

// Whether the database keeps a write-ahead log, of which nothing is left to read and which no program has open.
// Opened in the usual way such a database gets two new files beside it, or fails where none can be made.
bool hasIdleWriteAheadLog(fs::path const& file) {
    std::array<char, 20> header{};
    std::ifstream(file, std::ios::binary).read(header.data(), header.size());
    bool const writesAhead = std::memcmp(header.data(), "SQLite format 3", 16) == 0 && header[18] == 2;
    std::error_code ignored;
    return writesAhead && !fs::exists(file.string() + "-wal", ignored);
}

// The file as a URI that promises SQLite that nobody changes it, and so keeps it from making files.
std::string unchangingUri(fs::path const& file) {
    std::string uri = "file:";
    for (char const unit : file.string()) {
        switch (unit) {
        case '%': uri += "%25"; break;
        case '?': uri += "%3f"; break;
        case '#': uri += "%23"; break;
        default: uri += unit;
        }
    }
    return uri + "?immutable=1";
}

std::string reasonFor(int code, sqlite3* connection) {
    switch (code & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED: return "it is locked by another program";
    case SQLITE_NOTADB: return "it is not an SQLite database";
    case SQLITE_CORRUPT: return std::string("it is damaged: ") + sqlite3_errmsg(connection);
    case SQLITE_READONLY:
        return "a program left it in the middle of a change; open it once with a program that may write";
    case SQLITE_CANTOPEN:
        if (int const reason = sqlite3_system_errno(connection)) return std::generic_category().message(reason);
        [[fallthrough]];
    default: return sqlite3_errmsg(connection);
    }
}

} // namespace

void database::closer::operator()(sqlite3* connection) const noexcept {
    sqlite3_close(connection);
}

database::database(std::string const& path) : mPath(path) {
    open();
    sqlite3_busy_timeout(mConnection.get(), cPatience);
    try {
        statement(*this, "BEGIN").step();
        statement(*this, "SELECT count(*) FROM sqlite_master").step(); // the transaction begins at the first reading
    } catch (queryError const& problem) {                              // a file of a newer format, for one
        refuse(mPath, problem.what());
    }
}

database::~database() = default;

void database::open() {
    fs::path const file = regularFile(mPath);
    bool const isIdle = hasIdleWriteAheadLog(file);
    std::string const name = isIdle ? unchangingUri(file) : file.string();
    sqlite3* connection = nullptr;
    int const flags = SQLITE_OPEN_READONLY | (isIdle ? SQLITE_OPEN_URI : 0);
    int const code = sqlite3_open_v2(name.c_str(), &connection, flags, nullptr);
    mConnection.reset(connection);
    if (!connection) throw std::bad_alloc();
    if (code != SQLITE_OK) fail(code);
}

void database::fail(int code) const {
    sqlite3* const connection = mConnection.get();
    if (code == SQLITE_NOMEM) throw std::bad_alloc();
    if (code == SQLITE_ERROR) throw queryError(printable(zov::string::fromUtf8(sqlite3_errmsg(connection))).toUtf8());
    refuse(mPath, printable(zov::string::fromUtf8(reasonFor(code, connection))).toUtf8());
}

void statement::finalizer::operator()(sqlite3_stmt* handle) const noexcept {
    sqlite3_finalize(handle);
}

statement::statement(database const& source, char const* sql) : mSource(source) {
    sqlite3_stmt* handle = nullptr;
    int const code = sqlite3_prepare_v2(mSource.mConnection.get(), sql, -1, &handle, nullptr);
    mHandle.reset(handle);
    if (code != SQLITE_OK) mSource.fail(code);
}

void statement::bind(int parameter, std::string const& text) {
    sqlite3_reset(mHandle.get());
    auto const length = static_cast<sqlite3_uint64>(text.size());
    int const code = sqlite3_bind_text64(mHandle.get(), parameter, text.data(), length, SQLITE_TRANSIENT, SQLITE_UTF8);
    if (code != SQLITE_OK) mSource.fail(code);
}

bool statement::step() {
    int const code = sqlite3_step(mHandle.get());
    if (code != SQLITE_ROW && code != SQLITE_DONE) mSource.fail(code);
    return code == SQLITE_ROW;
}

std::string statement::text(int column) const {
    auto const* const units = reinterpret_cast<char const*>(sqlite3_column_text(mHandle.get(), column));
    return units ? std::string(units, static_cast<std::size_t>(sqlite3_column_bytes(mHandle.get(), column))) : "";
}

int statement::number(int column) const {
    return sqlite3_column_int(mHandle.get(), column);
}

bool statement::isNull(int column) const {
    return sqlite3_column_type(mHandle.get(), column) == SQLITE_NULL;
}

} // namespace zovModel
