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

/// Another way to a directory, on every platform, as long as the object lives.
class DirectoryLink {
public:
    DirectoryLink(std::string const& directory, std::string link);
    ~DirectoryLink();
    DirectoryLink(DirectoryLink const&) = delete;
    DirectoryLink& operator=(DirectoryLink const&) = delete;

private:
    std::string link_;
};

/// What can be read without end and is no file; empty where there is no such thing.
std::string endlessDevice();

/// Makes a symbolic link to a file or directory, or to nothing; false where none can be made.
bool makeLink(std::string const& target, std::string const& link);
bool isLink(std::string const& path);

/// The names of all files and directories below `directory`, sorted; to show that nothing is left over.
std::string listing(std::string const& directory);
/// The same without the lock file of all writers of matrices, and without what has been set aside for those who
/// still read it.
std::string filesIn(std::string const& directory);
std::string readFile(std::string const& path);
/// The same of a text, with "\n" for the platform's line ends.
std::string readText(std::string const& path);
void writeFile(std::string const& path, std::string const& bytes);

}
