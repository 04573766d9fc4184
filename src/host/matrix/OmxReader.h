#pragma once

#include "host/matrix/FileHeader.h"
#include "host/matrix/OmxWriter.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace cubes::matrix {

/// One table of an OMX file, of whatever layout and numeric type. Keeps the file open.
class OmxTable {
public:
    OmxTable(hdf5::Handle file, hdf5::Handle dataset);

    FileHeader const& header() const noexcept { return header_; }
    /// The checksum recorded for the elements, if one is.
    std::optional<std::uint64_t> checksum() const;
    /// The number of rows that are best read together.
    int bandRows() const noexcept { return bandRows_; }
    /// Reads the band that begins with a row to its place among all `elements`. REQUIRES: `firstRow`
    /// is a multiple of bandRows() and the elements there are 0.
    void readBand(int firstRow, float* elements) const;
    /// Reads all, on all cores where the file allows that. REQUIRES: all `elements` are 0.
    void readAll(float* elements) const;

private:
    struct StoredChunk;
    void readLayout();
    StoredChunk storedChunk(int firstRow) const;
    void readRows(int first, int count, float* elements) const;
    void inflateBand(int firstRow, float* elements) const;

    FileHeader header_;
    hdf5::Handle file_;
    hdf5::Handle dataset_;
    int bandRows_ = 1;
    Filters filters_ = Filters::none;
    // Whether the chunks are whole rows of single-precision elements that we can inflate ourselves.
    bool ownCodec_ = false;
};

/// An OMX file opened through HDF5.
class OmxReader {
public:
    /// Throws hdf5::Error when it is no HDF5 file or is damaged.
    explicit OmxReader(std::string const& path);

    std::vector<std::string> tables() const;
    std::vector<std::string> lookups() const;
    /// Throws std::runtime_error when there is no such table or it is not a matrix of numbers.
    OmxTable table(std::string const& name) const;
    /// The table "matrix", else the only one.
    OmxTable onlyTable() const;

private:
    hdf5::Handle file_;
};

}
