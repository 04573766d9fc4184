#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace cubes::platform {

/// An open file. Movable. Failures throw std::system_error with the action, the path and the
/// system's reason.
class File {
public:
    /// Opens an existing regular file. Others may read, write, rename and remove it meanwhile.
    static File openForReading(std::string const& path);
    /// Makes a new file for reading and writing; fails where one exists.
    static File createNew(std::string const& path);
    /// Opens a file for reading and writing together with others; makes it when it is missing.
    static File openShared(std::string const& path);

    File(File&& other) noexcept;
    File& operator=(File&& other) noexcept;
    ~File();

    std::uint64_t size() const;
    /// Reads or writes all the bytes or throws.
    void readAt(std::uint64_t offset, std::span<std::byte> bytes) const;
    void writeAt(std::uint64_t offset, std::span<std::byte const> bytes);
    /// Starts moving written bytes to the disk where the system can do that in the background; a
    /// later flush then has less to wait for.
    void beginFlush(std::uint64_t offset, std::uint64_t length) noexcept;
    /// Returns when everything written to the file, by anyone, is on the disk.
    void flush();
    void close() noexcept;

    std::string const& path() const noexcept { return path_; }
    /// The system's handle or descriptor.
    std::intptr_t native() const noexcept { return native_; }

private:
    File(std::intptr_t native, std::string path) : native_(native), path_(std::move(path)) {}

    static constexpr std::intptr_t none = -1;
    std::intptr_t native_;
    std::string path_;
};

/// Gives a file another name, in place of another file or where none is, in one step; a directory
/// only where nothing is. False when the name lies on another file system: then nothing is done.
/// Throws std::system_error when it can't be done.
bool renameFile(std::string const& from, std::string const& to);
/// Makes what was written to a file, by anyone, survive a power failure.
void flushFile(std::string const& path);
/// Makes names given in a directory survive a power failure.
void flushDirectory(std::string const& directory);
/// Removes a file; objects that read it keep it. False when it cannot be removed or is not there.
bool discardFile(std::string const& path) noexcept;
std::uint64_t processId();

}
