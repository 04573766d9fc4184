#pragma once

#include "host/hdf5/ReaderProtocol.h"

#include <hdf5.h>

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

/// Owners and helpers for HDF5's C interface, shared by the library, the provider and cubes-reader. The first two only
/// write with it; see GuardedFile for reading.
namespace cubes::hdf5 {

/// Every use of HDF5 is made within a Session, by one thread of the module (the library, the provider) at a time;
/// errors are not printed meanwhile. Threads of different modules exclude each other by HDF5's own lock, without which
/// the build refuses HDF5. Sessions of one thread may nest.
class Session {
public:
    Session();
    ~Session();
    Session(Session const&) = delete;
    Session& operator=(Session const&) = delete;

private:
    std::unique_lock<std::recursive_mutex> lock_;
    H5E_auto2_t print_ = nullptr;
    void* printTo_ = nullptr;
};

/// A failed call: the action and HDF5's innermost reason.
class Error : public std::runtime_error {
public:
    explicit Error(std::string_view action);
};

/// Throws Error for the last failed call, or std::bad_alloc where HDF5 had too little memory for it.
[[noreturn]] void throwFailure(std::string_view action);

/// Owns an identifier of any kind. Movable.
class Handle {
public:
    using Close = herr_t (*)(hid_t);

    Handle() = default;
    /// Throws Error ("HDF5 could not `action`") for the identifier of a failed call.
    Handle(hid_t id, Close closer, std::string_view action);
    Handle(Handle&& other) noexcept : id_(std::exchange(other.id_, H5I_INVALID_HID)), close_(other.close_) {}
    Handle& operator=(Handle&& other) noexcept;
    ~Handle();

    hid_t get() const noexcept { return id_; }
    /// Closes and throws Error for a failure: closing may write.
    void close(std::string_view action);

private:
    void closeQuietly() noexcept;

    hid_t id_ = H5I_INVALID_HID;
    Close close_ = nullptr;
};

/// Throws like throwFailure for the status of a failed call; returns any other status.
template <typename Status>
Status check(Status status, std::string_view action) {
    if (status < 0) throwFailure(action);
    return status;
}

/// Access without HDF5's own locks: files are replaced atomically.
Handle fileAccess();

/// Properties of a class (H5P_FILE_CREATE and the like) that record no times: equal content makes equal files.
Handle untimedProperties(hid_t classOfProperties);
Handle createGroup(hid_t parent, std::string const& name);
/// Writes bytes as a dataset without chunks and returns their place in the file.
std::uint64_t writeBytes(hid_t parent, char const* name, std::span<std::byte const> bytes);
/// The type of numbers in memory, and in files of ours.
hid_t hdfType(NumberType type);

}
