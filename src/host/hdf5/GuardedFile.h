#pragma once

#include "host/hdf5/ReaderProtocol.h"
#include "host/platform/ChildProcess.h"
#include "host/platform/File.h"

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace cubes::hdf5 {

/// Deflate compresses to about a thousandth at best: a file that claims more is damaged.
inline constexpr std::size_t mostInflation = 1040;

/// How readers are started. Tests change it while no file is being opened.
struct ReaderSettings {
    /// The program; empty: cubes-reader in the directory of the library, or in "cubes" there.
    std::string program = {};
    /// How long a reader may be silent, but for the time that reading takes.
    std::chrono::milliseconds patience = std::chrono::seconds(60);

    /// How long it may be silent before it answers with that many bytes: a second longer for every 10 MB.
    std::chrono::milliseconds patienceFor(std::uint64_t bytes) const {
        return patience + std::chrono::milliseconds(bytes / 10'000);
    }
};
ReaderSettings& readerSettings();

/// The program that reads HDF5 files cannot be started, or does not run here, which says nothing about the file.
class NoReader : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// An HDF5 file that another process reads: HDF5 does not survive every damaged file, and no file may harm this
/// process. Each object starts a program of its own, cubes-reader, which keeps the file in the state in which it was
/// opened. Everything that the program answers is checked before it is used. Any number of threads may use an object.
///
/// What fails throws std::runtime_error: "it is not an HDF5 file", "it is damaged (HDF5 failed on it)"; NoReader, or
/// std::bad_alloc when this process or the reader has too little memory; std::system_error when the file cannot be
/// read.
class GuardedFile {
public:
    explicit GuardedFile(platform::File file);

    platform::File const& file() const noexcept { return file_; }
    /// The size of the file when it was opened: where less is found later, it was truncated.
    std::uint64_t size() const noexcept { return size_; }
    /// Whether a group, which must exist, has a link of any kind of that name.
    bool exists(std::string const& path) const;
    /// The links of a group, sorted by name.
    std::vector<Link> links(std::string const& group) const;
    /// Throws for a dataset whose elements are stored elsewhere, and where there is none.
    Dataset dataset(std::string const& path) const;
    /// Nothing when the dataset, or the root, has no attribute of that name.
    std::optional<Attribute> attribute(std::string const& object, std::string const& name) const;
    /// The places of chunks of whole rows, from the first row to the last. They may be anywhere.
    std::vector<ChunkPlace> chunks(std::string const& path, std::size_t count) const;
    /// Reads as many rows as fill `to`, converted to a type. A row is what has the same first index.
    /// REQUIRES: `dataset` is that of the path, and `to` has whole rows.
    void read(std::string const& path, Dataset const& dataset, NumberType type, std::uint64_t first,
        std::span<std::byte> to) const;

    /// The number of the reader's process.
    std::uint64_t processId() const noexcept { return reader_->id(); }

private:
    template <typename Take>
    auto ask(Message const& question, Take take) const;
    std::unique_lock<std::mutex> turn() const;
    AnswerHead answerTo(Message const& question, std::uint64_t bytes = 0) const;
    void receiveExactly(Message const& question, std::span<std::byte> bytes) const;
    void receive(std::span<std::byte> bytes, std::chrono::milliseconds patience) const;
    void receive(std::span<std::byte> bytes) const { receive(bytes, settings_.patience); }
    void require(platform::Transfer transfer, std::chrono::milliseconds patience) const;
    [[noreturn]] void fail(std::string const& reason) const;
    [[noreturn]] void throwError(std::uint64_t size) const;
    [[noreturn]] void throwSystemError(std::uint64_t size) const;

    platform::File file_;
    std::uint64_t size_;
    unsigned long forks_;
    ReaderSettings settings_ = readerSettings();
    // One question at a time.
    mutable std::mutex mutex_;
    std::unique_ptr<platform::ChildProcess> reader_;
    // Set when the reader can no longer be asked.
    mutable std::string failure_;
};

/// A text of fixed length; nothing when there is none.
std::optional<std::string> findText(GuardedFile const& file, std::string const& object, std::string const& name);
/// The same; empty for nothing.
std::string readText(GuardedFile const& file, std::string const& object, std::string const& name);

}
