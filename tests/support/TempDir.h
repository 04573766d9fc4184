#pragma once

#include <filesystem>
#include <string>

namespace cubes::test {

/// The path with the platform's delimiters. (Texts beyond ASCII are in its narrow encoding.)
std::string nativePath(std::string path);

/// A directory of its own for one test, removed with its content at the end.
class TempDir {
public:
    TempDir();
    /// On the file system of `parent`.
    explicit TempDir(std::filesystem::path const& parent);
    ~TempDir();
    TempDir(TempDir const&) = delete;
    TempDir& operator=(TempDir const&) = delete;

    std::string str() const { return path_.string(); }
    /// The path of `name` inside the directory, with the platform's delimiters.
    std::string file(std::string const& name) const { return nativePath(str() + "/" + name); }

private:
    std::filesystem::path path_;
};

/// The directory of temporary files when the user's own is unknown, with a delimiter at its end.
std::string temporaryDirectoryWithoutName();

/// A directory on another file system than `directory`; empty where there is none.
std::string otherFileSystem(std::string const& directory);

/// Another path to a directory, on every platform, as long as the object lives.
class DirectoryLink {
public:
    DirectoryLink(std::string const& directory, std::string link);
    ~DirectoryLink();
    DirectoryLink(DirectoryLink const&) = delete;
    DirectoryLink& operator=(DirectoryLink const&) = delete;

private:
    std::string link_;
};

/// A file that can be read without end and is not a regular file; empty if there is none.
std::string endlessDevice();

/// Makes a symbolic link to a file or directory, or a dangling one; false if links cannot be made.
bool makeLink(std::string const& target, std::string const& link);
bool isLink(std::string const& path);

/// The names of all files and directories below `directory`, sorted; to show that nothing is left behind.
std::string listing(std::string const& directory);
/// The same without the lock file of all writers of matrices, and without files that were renamed because they are
/// still being read.
std::string filesIn(std::string const& directory);
std::string readFile(std::string const& path);
/// The same for a text, with "\n" in place of the platform's line ends.
std::string readText(std::string const& path);
void writeFile(std::string const& path, std::string const& bytes);

}
