#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// Conversions between narrow path texts and the file system's own paths: the one place where encodings, delimiters and
/// letter case of paths differ between platforms.
namespace cubes::platform {

/// "/" or, on Windows, "\".
char pathDelimiter();

/// The path a narrow text names. Texts are in the platform's narrow encoding.
std::filesystem::path toPath(std::string_view text);
std::string fromPath(std::filesystem::path const& path);
/// The absolute path; the path itself when the system cannot determine it.
std::filesystem::path fromRoot(std::filesystem::path const& path);
/// The same without "." and "..", by its text alone.
std::filesystem::path normalForm(std::filesystem::path const& path);
/// The same by what exists: links and other names of directories are followed as far as they exist.
std::filesystem::path withoutLinks(std::filesystem::path const& path);
/// The path of a text that may be relative to a directory.
std::string resolved(std::string const& directory, std::string const& path);

/// The text with the delimiters of other platforms converted to native ones. Windows accepts both.
std::string withNativeDelimiters(std::string text);

/// The text normalised for comparing paths: letter case folded where the file system ignores it.
std::string foldCase(std::string const& path);

}
