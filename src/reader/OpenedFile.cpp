#include "reader/OpenedFile.h"

#include <stdexcept>
#include <string_view>
#include <utility>

namespace cubes::reader {

using hdf5::Handle;

namespace {

/// How the message begins when HDF5 cannot open a file, and what that means.
struct OpeningFailure {
    std::string_view message;
    char const* meaning;
};

constexpr OpeningFailure openingFailures[] = {
    {"HDF5 could not open it (file signature not found", "it is not an HDF5 file"},
    {"HDF5 could not open it (truncated file", "it is truncated"},
    {"HDF5 could not open it (it is truncated", "it is truncated"},
};

Handle open(std::string const& path, hdf5::FileBytes& bytes) {
    Handle const access = hdf5::fileAccess();
    hdf5::useBytes(access, bytes);
    try {
        return Handle(H5Fopen(path.c_str(), H5F_ACC_RDONLY, access.get()), H5Fclose, "open it");
    } catch (hdf5::Error const& error) {
        for (auto const& [message, meaning] : openingFailures)
            if (std::string_view(error.what()).starts_with(message)) throw std::runtime_error(meaning);
        throw;
    }
}

}

OpenedFile::OpenedFile(platform::File file) : bytes_(std::move(file)), file_(open(bytes_.path(), bytes_)) {}

void OpenedFile::Bytes::write(std::uint64_t, std::span<std::byte const>) {
    throw std::logic_error("it is open for reading");
}

}
