#include "zovFsEntry.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <string>
#include <system_error>

#include "zovAssert.h"

namespace zov {

namespace {

constexpr char const* sourceFile = "libs/utils/src/zovFsEntry.cpp";
constexpr wchar_t listSeparator = L';';

// By way of UTF-8, so that the system's path does not depend on the locale.
std::filesystem::path toPath(string const& text) {
    std::string const narrow = text.toUtf8();
    return std::filesystem::path(std::u8string(narrow.begin(), narrow.end()));
}

bool isSeparator(wchar_t unit) noexcept {
    constexpr wchar_t separators[] = {L'/', static_cast<wchar_t>(std::filesystem::path::preferred_separator)};
    return std::find(std::begin(separators), std::end(separators), unit) != std::end(separators);
}

string joinedPath(string const& base, string const& name) {
    if (base.empty() || name.empty() || toPath(name).has_root_path()) return name.empty() ? base : name;
    string path = base;
    if (!isSeparator(path.back())) path += L'/';
    path += name;
    return path;
}

// A text with a NUL inside is no path: the system would read only what stands before it.
bool isPath(string const& text) noexcept {
    return !text.empty() && text.find(L'\0') == string::npos;
}

} // namespace

void fsEntryName::setName(string const& name, bool clean) {
    string text = name;
    if (clean) text.deleteLeading(L" \t").deleteTrailing(L" \t");
    mName = std::move(text);
}

fsEntry::fsEntry(fsEntryName const& name, string const& base, bool isDirectory)
    : mPath(joinedPath(base, name.name())), mIsDirectory(isDirectory) {}

fsEntry::~fsEntry() = default;

bool fsEntry::exists() const {
    if (!isPath(mPath)) return false;
    std::error_code error;
    auto const status = std::filesystem::status(toPath(mPath), error);
    return std::filesystem::exists(status) && std::filesystem::is_directory(status) == mIsDirectory;
}

bool fsEntry::isRemote() const {
    std::wstring_view const path = mPath;
    return path.starts_with(L"//") || path.starts_with(L"\\\\");
}

bool fsEntry::renameTo(string const& newPath) {
    if (!isPath(newPath) || !exists()) return false;
    // What needs memory comes before the move, so that the entry can follow it without failing.
    string path = newPath;
    std::error_code error;
    std::filesystem::rename(toPath(mPath), toPath(newPath), error);
    if (error) return false;
    mPath = std::move(path);
    return true;
}

file::file(fsEntryName const& name, string const& base, bool isDirectory) : fsEntry(name, base, isDirectory) {
    assertThat(!isDirectory, L"!isDirectory", sourceFile, __LINE__);
}

file::~file() = default;

bool file::exists() const {
    return fsEntry::exists();
}

bool file::rename(string const& newPath) {
    return renameTo(newPath);
}

directory::directory(fsEntryName const& name, string const& base, bool isDirectory) : fsEntry(name, base, isDirectory) {
    assertThat(isDirectory, L"isDirectory", sourceFile, __LINE__);
}

directory::~directory() = default;

bool directory::exists() const {
    return fsEntry::exists();
}

bool directory::rename(string const& newPath) {
    return renameTo(newPath);
}

std::vector<directory> searchPath::directories() const {
    std::vector<string> pieces;
    mPath.splitAt(string(1, listSeparator), pieces, true);
    return std::vector<directory>(pieces.begin(), pieces.end());
}

bool searchPath::append(directory const& last) {
    string const& added = last.path();
    if (added.empty() || added.find(listSeparator) != string::npos) return false;
    string path = mPath;
    if (!path.empty()) path += listSeparator;
    path += added;
    mPath = std::move(path);
    return true;
}

} // namespace zov
