#pragma once

#include <string>

/// Whole-file operations on narrow path texts. Unless told otherwise they report by their result and never throw.
namespace cubes::platform {

bool exists(std::string const& path);
bool isDirectory(std::string const& path);
bool isRegularFile(std::string const& path);
/// With all missing levels; an existing directory is no failure.
bool createDirectories(std::string const& path);
/// Removes an empty directory, or one with its content.
bool removeDirectory(std::string const& path, bool withContent);
/// Removes a regular file and nothing else.
bool removeFile(std::string const& path);
/// Copies a file or a directory with its content. False also for one into itself.
bool copy(std::string const& source, std::string const& target, bool overwrite);
/// Copies a regular file over the target: it is written beside the target and takes its place when
/// complete. False when that fails, for a directory, and for a file onto itself.
bool copyFile(std::string const& source, std::string const& target);
/// The same of two different files; throws what hinders it, std::system_error as a rule.
void replaceByCopy(std::string const& source, std::string const& target);
/// Gives a directory another name; false when that is taken or lies on another file system.
bool moveDirectory(std::string const& source, std::string const& target);
/// Whether both texts name the same file without asking the file system for links.
bool isSamePath(std::string const& first, std::string const& second);
/// Whether one path is the other or lies in it, links followed as far as they exist: then neither
/// can take the other's place.
bool overlap(std::string const& first, std::string const& second);
/// The directory in which a path lies; "." for a name alone.
std::string directoryOf(std::string const& path);
/// The absolute, lexically normalised form of a path.
std::string absolutePath(std::string const& path);

}
