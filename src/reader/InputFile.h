#pragma once

#include "host/hdf5/FileDriver.h"
#include "host/platform/File.h"

#include <system_error>

namespace cubes::reader {

/// The file that HDF5 reads, which was opened by the library. It must outlive everything that is opened in it.
class InputFile final : public hdf5::FileBytes {
public:
    explicit InputFile(platform::File file) : file_(std::move(file)) {}

    /// Opens it with HDF5. Throws std::runtime_error: "it is not an HDF5 file". REQUIRES: within a Session.
    hdf5::Handle open();
    /// The system's error, if the file could not be read at some time: then nothing that HDF5 reports counts.
    std::error_code failure() const noexcept { return failure_; }

    std::uint64_t size() const override;
    void read(std::uint64_t offset, std::span<std::byte> bytes) const override;
    void write(std::uint64_t offset, std::span<std::byte const> bytes) override;

private:
    template <typename Work>
    auto noting(Work const& work) const -> decltype(work());

    platform::File file_;
    mutable std::error_code failure_;
};

}
