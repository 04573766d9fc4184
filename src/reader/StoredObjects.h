#pragma once

#include "host/hdf5/Hdf5.h"
#include "host/hdf5/ReaderProtocol.h"
#include "reader/InputFile.h"

#include <optional>
#include <string>

namespace cubes::reader {

/// The objects of an HDF5 file, as the questions of ReaderProtocol.h ask for them. Nothing outside the file is opened.
/// What fails throws std::runtime_error. REQUIRES: within a Session.
class StoredObjects {
public:
    /// The file must outlive the object.
    explicit StoredObjects(InputFile& file);

    bool exists(std::string const& path) const;
    std::vector<hdf5::Link> links(std::string const& group) const;
    hdf5::Dataset dataset(std::string const& path);
    std::optional<hdf5::Attribute> attribute(std::string const& object, std::string const& name);
    std::vector<hdf5::ChunkPlace> chunks(std::string const& path);
    std::vector<std::byte> numbers(
        std::string const& path, hdf5::NumberType type, std::uint64_t first, std::uint64_t rows);

private:
    hdf5::Handle group(std::string const& path) const;
    hid_t opened(std::string const& path);
    std::uint64_t fileSize() const;
    void requireSoundChunks(hid_t dataset, std::uint64_t first, std::uint64_t rows) const;

    hdf5::Handle file_;
    // The last dataset, whose chunks HDF5 has cached.
    std::string path_;
    hdf5::Handle dataset_;
};

}
