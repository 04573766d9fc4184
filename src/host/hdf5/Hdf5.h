#pragma once

#include "host/platform/File.h"

#include <hdf5.h>

#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>

/// The little we need around HDF5's C interface.
namespace cubes::hdf5 {

/// Every use of HDF5 is made within a Session: the library is not safe for threads, and prints
/// its errors unless told otherwise. Sessions of one thread may nest.
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

/// A failed call: what was tried and HDF5's own innermost reason.
class Error : public std::runtime_error {
public:
    explicit Error(std::string const& action);
};

/// Owns an identifier of any kind. Movable.
class Handle {
public:
    using Close = herr_t (*)(hid_t);

    Handle() = default;
    /// Throws Error ("cannot `action`") for the identifier of a failed call.
    Handle(hid_t id, Close closer, char const* action);
    Handle(Handle&& other) noexcept : id_(std::exchange(other.id_, H5I_INVALID_HID)), close_(other.close_) {}
    Handle& operator=(Handle&& other) noexcept;
    ~Handle();

    hid_t get() const noexcept { return id_; }
    /// Closes with a report, where closing writes.
    void close(char const* action);

private:
    void closeQuietly() noexcept;

    hid_t id_ = H5I_INVALID_HID;
    Close close_ = nullptr;
};

/// Throws Error for the status of a failed call, and gives it back otherwise.
template <typename Status>
Status check(Status status, char const* action) {
    if (status < 0) throw Error(action);
    return status;
}

/// Opens a file for reading through our own: that can be replaced and removed meanwhile on every system, and
/// fails in the system's words.
Handle openFile(platform::File file);
Handle openGroup(hid_t parent, char const* name);
bool hasLink(hid_t parent, char const* name);
/// Access that leaves locking to us.
Handle fileAccess();

}
