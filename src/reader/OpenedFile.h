#pragma once

#include "host/hdf5/FileDriver.h"
#include "host/platform/File.h"

namespace cubes::reader {

/// A file that HDF5 reads through an open file: errors have the system's messages. REQUIRES: within a Session.
class OpenedFile {
public:
    /// Throws std::runtime_error: "it is not an HDF5 file".
    explicit OpenedFile(platform::File file);

    hid_t get() const noexcept { return file_.get(); }

private:
    class Bytes final : public hdf5::FileBytes {
    public:
        explicit Bytes(platform::File file) : file_(std::move(file)) {}

        std::string const& path() const noexcept { return file_.path(); }
        std::uint64_t size() const override { return file_.size(); }
        void read(std::uint64_t offset, std::span<std::byte> bytes) const override { file_.readAt(offset, bytes); }
        void write(std::uint64_t offset, std::span<std::byte const> bytes) override;

    private:
        platform::File file_;
    };

    // Outlives the file, which HDF5 reads through it.
    Bytes bytes_;
    hdf5::Handle file_;
};

}
