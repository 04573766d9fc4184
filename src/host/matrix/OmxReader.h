#pragma once

#include "host/hdf5/GuardedFile.h"
#include "host/matrix/BlockCodec.h"
#include "host/matrix/FileIndex.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace cubes::matrix {

/// The names inside an OMX file: the first five are OMX's, the others the library's.
namespace omx {

inline constexpr char version[] = "OMX_VERSION";
inline constexpr char shape[] = "SHAPE";
inline constexpr char tables[] = "data";
inline constexpr char lookups[] = "lookup";
inline constexpr char zones[] = "zone";

inline constexpr char table[] = "matrix";
inline constexpr char chunks[] = "cubes_chunks";
inline constexpr char type[] = "cubes_type";
inline constexpr char kind[] = "cubes_kind";
inline constexpr char name[] = "cubes_name";
inline constexpr char selectedLink[] = "cubes_selected_link";
inline constexpr char content[] = "cubes_content";
/// XXH3 (64 bits) of the elements, in files of the first version.
inline constexpr char checksum[] = "cubes_checksum";

}

/// The source of the bands of a matrix. Any number of threads may read.
class BandSource {
public:
    BandSource() = default;
    BandSource(BandSource const&) = delete;
    BandSource& operator=(BandSource const&) = delete;
    virtual ~BandSource() = default;

    virtual Bands bands() const = 0;
    /// Reads a band to its place among all elements. REQUIRES: the elements there are 0.
    virtual void readBand(std::size_t band, float* all) const = 0;
    /// Reads all bands but one, on all cores if the file allows that. REQUIRES: the elements read are 0.
    virtual void readAllBut(std::optional<std::size_t> done, float* all) const = 0;

protected:
    BandSource(BandSource&&) = default;
};

/// One table of an OMX file, of any layout and numeric type. Keeps the file open.
class OmxTable : public BandSource {
public:
    /// The tables of a file and its OmxReader share the process that reads it.
    OmxTable(std::shared_ptr<hdf5::GuardedFile const> file, std::string const& name);

    FileHeader const& header() const noexcept { return header_; }
    /// The content id counts as long as the file has its index record.
    RecordedContent recorded() const;
    /// Reads all. REQUIRES: all elements are 0.
    void readAll(float* all) const { readAllBut(std::nullopt, all); }

    Bands bands() const override { return {header_.rows, header_.columns, bandRows_}; }
    void readBand(std::size_t band, float* all) const override;
    void readAllBut(std::optional<std::size_t> done, float* all) const override;

private:
    // How elements are read: at their places in the file, or converted by the process that reads the file.
    enum class Access { contiguous, chunks, converted };

    void readHeader();
    void requireElements() const;
    void readLayout();
    void readChunks(Filters filters);
    void decode(BlockDecoder& decoder, std::size_t band, float* all) const;
    void readRows(int first, int behind, float* all) const;

    std::shared_ptr<hdf5::GuardedFile const> file_;
    std::string path_;
    hdf5::Dataset dataset_;
    FileHeader header_;
    int bandRows_ = 1;
    Access access_ = Access::converted;
    Filters filters_ = Filters::none;
    std::vector<ChunkPlace> chunks_;
};

/// An OMX file of any program, read by another process.
class OmxReader {
public:
    /// Throws std::runtime_error for a file that is damaged or not HDF5.
    explicit OmxReader(std::string const& path);

    /// The names of the two-dimensional datasets under /data, sorted.
    std::vector<std::string> tables() const;
    /// The names of the one-dimensional datasets under /lookup, sorted.
    std::vector<std::string> lookups() const;
    /// Throws std::runtime_error when there is no such table or it is not a matrix of numbers.
    OmxTable table(std::string const& name) const;
    /// The table "matrix", or the only one.
    OmxTable onlyTable() const;
    /// Whether the file has the dataset of an index record, valid or not.
    bool hasRecord() const { return file_->exists(hdf5::IndexRecord::dataset); }
    /// See hdf5::hasRecordAt.
    bool hasRecordAt(std::uint64_t offset) const { return hdf5::hasRecordAt(*file_, offset); }
    hdf5::Provenance provenance() const { return hdf5::readProvenance(*file_); }

private:
    std::shared_ptr<hdf5::GuardedFile const> file_;
};

}
