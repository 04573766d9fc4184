#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace cubes::platform {

/// What the system has no error of its own for.
enum class FileError { notRegular = 1, truncated };
/// "it is not a regular file", "it is truncated".
std::error_code make_error_code(FileError error);

/// An open file. Movable. Failures throw std::system_error with the action, the path and the
/// system's message.
class File {
public:
    /// Opens an existing regular file; anything else fails with FileError::notRegular, or as the system refuses a
    /// directory. Others may read, write, rename and remove it meanwhile.
    static File openForReading(std::string const& path);
    /// Creates a file for reading and writing; fails where one exists.
    static File createNew(std::string const& path);
    /// The same with the rights of another file, if that exists; the owner may write it in any case.
    static File createLike(std::string const& path, std::string const& model);
    /// Opens an existing regular file for reading and writing; never through a link.
    static File openExisting(std::string const& path);
    /// Opens a file for reading and writing together with others; creates it when it is missing. Never through a link,
    /// and regular files only.
    static File openShared(std::string const& path);
    /// Owns a file that the system has opened.
    static File adopt(std::intptr_t native, std::string path) { return File(native, std::move(path)); }

    File(File&& other) noexcept;
    File& operator=(File&& other) noexcept;
    ~File();

    /// Opens a file for appending; creates it when it is missing. Fails for links and for everything else that is not a
    /// regular file with one name: others may have planted it.
    static File openLog(std::string const& path);

    std::uint64_t size() const;
    /// Reads or writes all the bytes or throws: FileError::truncated where the file has fewer.
    void readAt(std::uint64_t offset, std::span<std::byte> bytes) const;
    void writeAt(std::uint64_t offset, std::span<std::byte const> bytes);
    /// Appends a text to a log, with the line ends of the platform, after whatever others have appended.
    void append(std::string_view text);
    /// Starts writing these bytes to the disk if the system can do that in the background, which shortens a later
    /// flush.
    void beginFlush(std::uint64_t offset, std::uint64_t length) noexcept;
    /// Returns when everything written to the file, by anyone, is on the disk.
    void flush();
    void close() noexcept;
    /// Closes a file that was written; throws when the system reports only now that a write failed.
    void finish();
    /// Takes an exclusive lock on one byte, which need not exist, against every other open file in this and in other
    /// processes, until it is closed. False when another holder has it.
    bool tryLock(std::uint64_t position);
    /// Whether another open file, in this or in another process, has a lock on one of these bytes at the moment.
    /// REQUIRES: they are more than a byte that this one has locked.
    bool isLockedByOthers(std::uint64_t position, std::uint64_t length) const;
    /// Whether the file has no name any more.
    bool isRemoved() const;
    /// Releases all locks on the file, also where closing it does not yet: in a child process that is being started and
    /// has it open as well.
    void unlock() noexcept;

    std::string const& path() const noexcept { return path_; }
    /// The system's handle or descriptor.
    std::intptr_t native() const noexcept { return native_; }

private:
    File(std::intptr_t native, std::string path) : native_(native), path_(std::move(path)) {}

    static constexpr std::intptr_t none = -1;
    std::intptr_t native_;
    std::string path_;
};

/// A view on the bytes of a whole file, read as they are touched. Writing to the view changes the
/// view alone. The view keeps its state when the file is replaced or removed; truncating the file
/// in place removes the bytes from the view. Movable.
class FileView {
public:
    /// Throws std::system_error; an empty file gives an empty view.
    static FileView open(std::string const& path);

    FileView(FileView&& other) noexcept;
    FileView& operator=(FileView&& other) noexcept;
    ~FileView();

    std::span<std::byte> bytes() const noexcept { return bytes_; }

private:
    explicit FileView(std::span<std::byte> bytes) noexcept : bytes_(bytes) {}
    void unmap() noexcept;

    std::span<std::byte> bytes_;
};

/// An exclusive lock on one byte of a file, against every other holder in this and in other processes, until it is
/// destroyed or the process ends. The byte need not exist. Movable.
class ByteLock {
public:
    /// Nothing when another holder has the byte. The file is created when it is missing. Throws
    /// std::system_error when the file cannot be opened for writing or cannot be locked.
    static std::optional<ByteLock> tryTake(std::string const& path, std::uint64_t position);
    /// Owns the lock that an open file has.
    explicit ByteLock(File file);
    /// Whether another holder has one of these bytes at the moment. Throws std::system_error.
    bool isHeldByOthers(std::uint64_t position, std::uint64_t length) const {
        return file_->isLockedByOthers(position, length);
    }

private:
    // A forked process releases nothing: the lock is its parent's.
    struct Releasing {
        unsigned long forks;
        void operator()(File* file) const noexcept;
    };

    std::unique_ptr<File, Releasing> file_;
};

}
