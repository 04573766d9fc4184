#pragma once

#include <cubes/Export.h>
#include <cubes/matrix/TRkMatrix.h>

#include <memory>
#include <string>
#include <vector>

namespace cubes {

namespace matrix {
class OmxReader;
}

/// An OMX file of any program, opened for reading its tables. It keeps the state it was opened on when the file is
/// replaced. Movable, not copyable. Different objects may be used in different threads; one thread at a time may use
/// one object. Failures throw TRkMatrixException with the file and the cause.
class CUBES_API OmxFile {
public:
    static OmxFile open(std::string const& path);
    /// Whether a file begins as HDF5 files do, and so may be an OMX file, whatever its name; false when it cannot be
    /// read.
    static bool mayBe(std::string const& path) noexcept;
    OmxFile(OmxFile&&) noexcept;
    OmxFile& operator=(OmxFile&&) noexcept;
    ~OmxFile();

    std::string const& path() const noexcept { return path_; }
    /// The names of the two-dimensional tables under /data, sorted.
    std::vector<std::string> tables() const;
    /// The names of the one-dimensional lookups under /lookup, sorted.
    std::vector<std::string> lookups() const;
    /// A table in memory, with its kind where it has one. Elements are converted to single precision;
    /// numbers outside its range become infinite. Zone numbers are those of the lookup named "zone", "taz", "no" or the
    /// like, or of the only lookup, when they are distinct whole numbers, one for each row of a square table. In a file
    /// that this library wrote they need not be distinct.
    TRkMatrix read(std::string const& table) const;
    /// The same, but throws when the table is not intact.
    TRkMatrix readVerified(std::string const& table) const;
    /// Whether the elements of a table and their zone numbers agree with the content id that was recorded with them (in
    /// files of the first version, the elements with their checksum). A table of another program, which has neither,
    /// counts as intact.
    bool isIntact(std::string const& table) const;

    /// Writes a matrix as the only table of a file; an old file is replaced atomically. The storage rule of the
    /// directory applies. Takes no lock. A matrix that was opened from a file has to be intact (TRkMatrix::IsIntact).
    static void write(std::string const& path, std::string const& table, TRkMatrix const& matrix);

private:
    OmxFile(std::string path, std::unique_ptr<matrix::OmxReader> reader);

    std::string path_;
    std::unique_ptr<matrix::OmxReader> reader_;
};

}
