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

/// An OMX file of any program, opened to see and read its tables. It keeps the state it was opened
/// on when the file is replaced. Movable, not copyable. One thread at a time may use an object.
/// What fails throws TRkMatrixException with the file and the reason.
class CUBES_API OmxFile {
public:
    static OmxFile open(std::string const& path);
    OmxFile(OmxFile&&) noexcept;
    OmxFile& operator=(OmxFile&&) noexcept;
    ~OmxFile();

    std::string const& path() const noexcept { return path_; }
    /// The names of the two-dimensional tables under /data, sorted.
    std::vector<std::string> tables() const;
    /// The names of the one-dimensional lookups under /lookup, sorted.
    std::vector<std::string> lookups() const;
    /// A table in memory, with its kind where it has one. Elements become single precision; what
    /// is too large for that becomes infinite. Zone numbers come from the lookup named "zone",
    /// "taz", "no" or the like, else from the only one, if they are distinct whole numbers, one a
    /// row of a square table.
    TRkMatrix read(std::string const& table) const;
    /// Whether the elements of a table agree with the checksum that was recorded with them. A
    /// table without one counts as intact: another program wrote it.
    bool isIntact(std::string const& table) const;

    /// Writes a matrix as the only table of a file, which takes the place of an old one when it is
    /// complete. The rule for matrix files of that directory holds. No lock is asked for.
    static void write(std::string const& path, std::string const& table, TRkMatrix const& matrix);

private:
    OmxFile(std::string path, std::unique_ptr<matrix::OmxReader> reader);

    std::string path_;
    std::unique_ptr<matrix::OmxReader> reader_;
};

}
