// Files, directories and search paths as values: names of what may or may not be there.
//
//     zov::directory drawings(L"/data/drawings");
//     zov::fsEntryName name;
//     name.setName(L" part.dwg ", true);                     // cleaned: "part.dwg"
//     zov::file drawing(name, drawings.path(), false);       // "/data/drawings/part.dwg"
//     if (drawing.exists()) drawing.rename(L"/data/old.dwg");  // true: the file moved, and drawing.path() follows
//
// An entry is its path text; making, copying and comparing entries never looks at the file system. A relative path
// is relative to the current directory of the process at the time of a look.
//
// Ownership: values; they own their texts and no handle of the system.
// Threads: any number of readers, or one writer.
// Fails: what asks the file system answers false on any error; texts that are not kept fail with std::bad_alloc.
#pragma once

#include <vector>

#include "zovString.h"
#include "zovUtilsApi.h"

namespace zov {

// The name of an entry: one name, or a path of its own.
class ZOV_UTILS_API fsEntryName {
public:
    // The empty name.
    fsEntryName() = default;

    // Takes `name` as it stands or, with `clean`, without the blanks and tabs around it. The empty name is allowed.
    // Fails: std::bad_alloc, and the name is as before.
    void setName(string const& name, bool clean);

    // The name.
    // Stays valid while this object lives and setName is not called.
    string const& name() const noexcept { return mName; }

private:
    string mName;
};

// What files and directories have in common.
class ZOV_UTILS_API fsEntry {
public:
    virtual ~fsEntry();

    // Whether the path names something of the entry's kind now. False on any error of the file system.
    virtual bool exists() const;

    // Whether the path text names another machine: it begins with two separators, as in \\server\share or
    // //server/share. Nothing is asked of the network.
    virtual bool isRemote() const;

    // The path text.
    // Stays valid while the entry is neither assigned to, renamed nor destroyed.
    string const& path() const noexcept { return mPath; }

    // Whether the entry is a directory by kind, whatever the path names.
    bool isDirectory() const noexcept { return mIsDirectory; }

protected:
    // The entry `name` in the directory `base`. A name that says itself where it begins (/x, C:\x) and an empty
    // `base` leave the name as the path; an empty name leaves the base. `isDirectory` is the entry's kind.
    fsEntry(fsEntryName const& name, string const& base, bool isDirectory);
    fsEntry(string const& path, bool isDirectory) : mPath(path), mIsDirectory(isDirectory) {}
    fsEntry(fsEntry const&) = default;
    fsEntry(fsEntry&&) noexcept = default;
    fsEntry& operator=(fsEntry const&) = default;
    fsEntry& operator=(fsEntry&&) noexcept = default;

    // Gives what the path names the path `newPath`, which this entry then has. False, and all as before, when
    // exists() is false, on an empty path and on any error of the file system.
    bool renameTo(string const& newPath);

private:
    string mPath;
    bool mIsDirectory;
};

// A file: anything in the file system that is no directory. Files are equal when their path texts are.
class ZOV_UTILS_API file : public fsEntry {
public:
    // The file with the empty path, which never exists.
    file() : fsEntry(string(), false) {}

    // The file with the given path text.
    explicit file(string const& path) : fsEntry(path, false) {}

    // The file `name` in the directory `base` (see fsEntry).
    // Fails: an assertion when `isDirectory` is true.
    file(fsEntryName const& name, string const& base, bool isDirectory);

    file(file const&) = default;
    file(file&&) noexcept = default;
    file& operator=(file const&) = default;
    file& operator=(file&&) noexcept = default;
    ~file() override;

    // Whether the path names something that is no directory. False on any error.
    bool exists() const override;

    // Moves the file to `newPath`, a path text of its own, not relative to the old one; a file that is there is
    // replaced where the system does so. True when it was moved: path() is then `newPath`. False, and all as before,
    // when the file does not exist, on an empty path and on any error.
    virtual bool rename(string const& newPath);

    friend bool operator==(file const& one, file const& other) noexcept { return one.path() == other.path(); }
};

// A directory. Directories are equal when their path texts are.
class ZOV_UTILS_API directory : public fsEntry {
public:
    // The directory with the empty path, which never exists.
    directory() : fsEntry(string(), true) {}

    // The directory with the given path text.
    explicit directory(string const& path) : fsEntry(path, true) {}

    // The directory `name` in the directory `base` (see fsEntry).
    // Fails: an assertion when `isDirectory` is false.
    directory(fsEntryName const& name, string const& base, bool isDirectory);

    directory(directory const&) = default;
    directory(directory&&) noexcept = default;
    directory& operator=(directory const&) = default;
    directory& operator=(directory&&) noexcept = default;
    ~directory() override;

    // Whether the path names a directory. False on any error.
    bool exists() const override;

    // Moves the directory with all that is in it to `newPath`, a path text of its own, not relative to the old one.
    // True when it was moved: path() is then `newPath`. False, and all as before, when the directory does not exist,
    // on an empty path and on any error.
    virtual bool rename(string const& newPath);

    friend bool operator==(directory const& one, directory const& other) noexcept { return one.path() == other.path(); }
};

// Directories in the order in which something is looked for. Its path text names them with a semicolon between, on
// every platform. Search paths are equal when their path texts are.
class ZOV_UTILS_API searchPath {
public:
    // The search path without directories.
    searchPath() = default;

    // The search path with the given path text, kept as it stands.
    explicit searchPath(string const& path) : mPath(path) {}

    // The path text.
    // Stays valid while the search path is neither assigned to, appended to nor destroyed.
    string const& path() const noexcept { return mPath; }

    // The directories, in order; an empty name between semicolons is none.
    std::vector<directory> directories() const;

    // Adds a directory at the end. False, and nothing happens, when its path is empty or has a semicolon.
    // Fails: std::bad_alloc, and the search path is as before.
    bool append(directory const& last);

    friend bool operator==(searchPath const& one, searchPath const& other) noexcept = default;

private:
    string mPath;
};

} // namespace zov
