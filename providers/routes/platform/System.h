#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

/// The few calls of the operating system that a file needs to be written safely. Failures throw
/// std::system_error with the system's reason.
namespace cubes::routes::platform {

/// A system's handle or descriptor of an open file.
using NativeFile = std::intptr_t;

/// Makes a new file for writing; fails where one exists.
NativeFile createFile(std::string const& path);
/// Writes all the bytes behind what was written before.
void writeFile(NativeFile file, std::span<std::byte const> bytes);
/// Returns when everything written is on the disk.
void flushFile(NativeFile file);
void closeFile(NativeFile file) noexcept;
/// Puts a complete and closed file in place of another, or where none is, in one step that survives
/// a power failure.
void replaceFile(std::string const& from, std::string const& to);
/// Removes a file that may be there; failures are of no interest.
void discardFile(std::string const& path) noexcept;
std::uint64_t processId();
/// The characters that end a directory's name in a path.
char const* directoryEnds() noexcept;

}
