#pragma once

#include "host/platform/File.h"

#include <cstdint>
#include <string>
#include <vector>

/// Files and directories by their names, as narrow texts.
namespace cubes::platform {

// These return whether they succeeded and never throw.

bool exists(std::string const& path);
bool isDirectory(std::string const& path);
bool isRegularFile(std::string const& path);
/// A symbolic link, whatever it leads to.
bool isLink(std::string const& path);
/// With all missing levels; true for an existing directory.
bool createDirectories(std::string const& path);
/// Removes an empty directory, or one with its content.
bool removeDirectory(std::string const& path, bool withContent);
/// Removes a directory with its content; a link is removed without its target, also when `directory` itself is one.
bool removeTree(std::string const& directory);
/// Removes a regular file and nothing else.
bool removeFile(std::string const& path);
/// Removes a file; objects that are reading it keep its content.
bool discardFile(std::string const& path) noexcept;
/// Copies a file or a directory with its content. False also when copying into itself.
bool copy(std::string const& source, std::string const& target, bool overwrite);
/// Copies a directory with its content to a new name, or into an existing directory; or a file. Stops at an existing
/// file unless `overwrite`.
bool copyTree(std::string const& source, std::string const& target, bool overwrite);
/// Copies a regular file over the target atomically. False for a directory, and for a file onto itself.
bool copyFile(std::string const& source, std::string const& target);
/// Renames a directory; false when the name is taken or on another file system.
bool moveDirectory(std::string const& source, std::string const& target);

// These throw std::system_error with the action, the path and the system's message.

/// Gives a file another name, in place of another file or where none is, in one step; a directory
/// only where nothing is. Of two names of one file the first is removed. False when the name lies on another file
/// system: then nothing is done.
bool renameFile(std::string const& from, std::string const& to);
/// Whether something has that name, also a directory: `exists` for decisions that data depends on, since an
/// input/output error is not "no".
bool isPresent(std::string const& path);
std::uint64_t fileSize(std::string const& path);
/// The names of the regular files in a directory, sorted.
std::vector<std::string> fileNamesIn(std::string const& directory);
/// The time of a file's last change: microseconds since 1970 (UTC).
std::int64_t lastChange(std::string const& path);
/// Makes everything written to a file, by anyone, survive a power failure.
void flushFile(std::string const& path);
/// Makes new names in a directory survive a power failure.
void flushDirectory(std::string const& directory);
/// Copies the content of a regular file into a new, empty file by the system's own copy, which shares blocks if the
/// file system supports that. On Windows the file is closed and opened again.
void copyContent(std::string const& source, File& target);
/// Gives a regular file a second name, which must be free. False if the file system has no second names.
bool linkFile(std::string const& source, std::string const& target) noexcept;
/// Sets the time of a file's last change to now, for anyone who may write it. Returns whether it succeeded.
bool touch(std::string const& path) noexcept;
/// Give an open file the rights of another one, or take away those that the other one does not grant. Nothing happens
/// when the other one is missing, on Windows, and on file systems without rights.
void takeRights(File& file, std::string const& model) noexcept;
void limitRights(File& file, std::string const& model) noexcept;
/// Like copyFile, for two different files. The copy survives a power failure.
void replaceByCopy(std::string const& source, std::string const& target);

/// Whether both texts name the same file, by the texts alone.
bool isSamePath(std::string const& first, std::string const& second);
/// Whether both paths name the same existing directory.
bool isSameDirectory(std::string const& first, std::string const& second);
/// Whether one path is the other or inside it, links followed as far as they exist: then neither can replace the other.
bool overlap(std::string const& first, std::string const& second);
/// The directory that contains a path; "." for a name alone.
std::string directoryOf(std::string const& path);
/// The absolute, lexically normalised form of a path.
std::string absolutePath(std::string const& path);

}
