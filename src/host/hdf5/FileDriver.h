#pragma once

#include "host/hdf5/Hdf5.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace cubes::hdf5 {

/// The bytes of a file that HDF5 reads and writes. What these functions throw makes HDF5's call fail, with the message
/// of a std::system_error as its reason.
class FileBytes {
public:
    FileBytes() = default;
    FileBytes(FileBytes const&) = delete;
    FileBytes& operator=(FileBytes const&) = delete;
    virtual ~FileBytes() = default;

    virtual std::uint64_t size() const = 0;
    virtual void read(std::uint64_t offset, std::span<std::byte> bytes) const = 0;
    virtual void write(std::uint64_t offset, std::span<std::byte const> bytes) = 0;
};

/// Makes HDF5 use these bytes for the file that is opened or created with `access`, whatever its name; closing that
/// file closes everything opened in it. The bytes must outlive it. Throws Error. REQUIRES: within a Session.
void useBytes(Handle const& access, FileBytes& bytes);

}
