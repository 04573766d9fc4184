#pragma once

#include "host/matrix/OmxWriter.h"
#include "host/platform/TemporaryFile.h"

#include <cubes/matrix/TRkMatrixHeader.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace cubes::matrix {

using hdf5::FileStamp;
using hdf5::Id128;
using hdf5::Provenance;

/// A new matrix file under a temporary name beside its target, complete and flushed as the rule of that directory
/// requires, until it replaces the target atomically. Writing and publishing are separate, so that a database row can
/// be changed in between. The destructor removes a file that was not published. Movable.
///
/// What fails throws TRkMatrixException ("<action> <target>: ..."); the target is then as before, unless isPublished()
/// says otherwise. One thread at a time may use an object.
class StagedFile {
public:
    /// Creates the empty file, so that a directory that cannot be written to is reported at once. Throws
    /// std::system_error, or std::runtime_error when the target has no name or is a directory.
    explicit StagedFile(std::string const& target, std::string action = "cannot write matrix file");

    /// Writes a matrix, plain or deflate according to the rule of the directory.
    void write(MatrixContent const& content);
    /// Copies a matrix file byte by byte.
    void copy(std::string const& source);
    /// Copies a matrix file and gives the copy another stamp; a file without an index record stays without one. The
    /// provenance is that of the source.
    void copy(std::string const& source, FileStamp const& stamp);
    /// Makes the source's content the new file: by a second name for the same file if the file system supports that,
    /// otherwise by a copy.
    void link(std::string const& source);
    /// Lets `writer` write the file at a path beside the target, then stamps it. Exceptions of `writer` that are not a
    /// std::exception pass through unchanged.
    void write(std::function<void(std::string const& path)> const& writer, FileStamp const& stamp);
    /// Replaces the target and flushes its directory as the rule requires. When only the flush fails, the target is
    /// already replaced and isPublished() returns true.
    void publish();
    bool isPublished() const noexcept { return isPublished_; }

    /// Where the new file is until it is published.
    std::string const& path() const noexcept { return temporary_->path(); }
    std::string const& target() const noexcept { return temporary_->target(); }

private:
    template <typename Work>
    void writing(Work const& work) const;
    void flush();

    std::string action_;
    std::unique_ptr<platform::TemporaryFile> temporary_;
    bool isPublished_ = false;
};

/// Writes a matrix file and replaces the target with it. Throws TRkMatrixException ("<action> <target>: ..."); then the
/// target is as before.
void replaceMatrixFile(
    std::string const& target, MatrixContent const& content, std::string const& action = "cannot write matrix file");

/// The header of a matrix as its file stores it.
FileHeader fileHeader(TRkMatrixHeader const& header);

/// Whether the rule of a file's directory requires that the file survives a power failure.
bool isToBeFlushed(std::string const& path);

/// The origin of a matrix or route file, as recorded in its index record.
struct RecordedOrigin {
    FileStamp stamp;
    Id128 content;
};

/// Reads the record; nothing for a file without a valid one, and for one whose record another program has deleted.
/// Matrix files with an unchanged structure are read without HDF5. Throws std::system_error when the file cannot be
/// read.
std::optional<RecordedOrigin> readOrigin(std::string const& path);
/// The stamp alone, also of a file that is damaged or was changed since. Throws std::system_error.
std::optional<FileStamp> readStamp(std::string const& path);

/// Reads the provenance; empty when none is recorded. Throws TRkMatrixException.
Provenance readProvenance(std::string const& path);

/// The identity of a directory of matrix files: the 32 hexadecimal digits in its file "cubes-id", which is created when
/// it is missing. Any number of threads and processes that ask at once get the same. Unknown in a directory that cannot
/// be written to, and for a file with other content; never throws for those.
Id128 directoryIdentity(std::string const& directory);
/// The same; unknown in a directory that has none, which is given none.
Id128 knownDirectoryIdentity(std::string const& directory);

}
