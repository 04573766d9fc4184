#include "reader/InputFile.h"

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

}

Handle InputFile::open() {
    Handle const access = hdf5::fileAccess();
    hdf5::useBytes(access, *this);
    try {
        return Handle(H5Fopen(file_.path().c_str(), H5F_ACC_RDONLY, access.get()), H5Fclose, "open it");
    } catch (hdf5::Error const& error) {
        for (auto const& [message, meaning] : openingFailures)
            if (std::string_view(error.what()).starts_with(message)) throw std::runtime_error(meaning);
        throw;
    }
}

// A file that ends too early is damaged; any other error says nothing about its content.
template <typename Work>
auto InputFile::noting(Work const& work) const -> decltype(work()) {
    try {
        return work();
    } catch (std::system_error const& error) {
        if (error.code().category() == std::system_category()) failure_ = error.code();
        throw;
    }
}

std::uint64_t InputFile::size() const {
    return noting([this] { return file_.size(); });
}

void InputFile::read(std::uint64_t offset, std::span<std::byte> bytes) const {
    noting([&] { file_.readAt(offset, bytes); });
}

void InputFile::write(std::uint64_t, std::span<std::byte const>) {
    throw std::logic_error("it is open for reading");
}

}
