#pragma once

#include <hdf5.h>

#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>

/// The little we need around HDF5's C interface.
namespace cubes::routes::hdf5 {

/// Every use of HDF5 is made while a Session lives, and closed before it ends: the library is not
/// safe for threads everywhere, and prints its errors unless told otherwise.
class Session {
public:
    Session();
    ~Session();
    Session(Session const&) = delete;
    Session& operator=(Session const&) = delete;

private:
    std::unique_lock<std::mutex> lock_;
    H5E_auto2_t print_ = nullptr;
    void* printTo_ = nullptr;
};

/// A failed call: what was tried and HDF5's own innermost reason.
class Error : public std::runtime_error {
public:
    explicit Error(std::string const& action);
};

/// Throws Error for the status of a failed call, and gives it back otherwise.
template <typename Status>
Status check(Status status, std::string const& action) {
    if (status < 0) throw Error(action);
    return status;
}

/// Owns an identifier of any kind. Movable.
class Handle {
public:
    using Close = herr_t (*)(hid_t);

    /// Throws Error ("cannot `action`") for the identifier of a failed call.
    Handle(hid_t id, Close closer, std::string const& action);
    Handle(Handle&& other) noexcept : id_(std::exchange(other.id_, H5I_INVALID_HID)), close_(other.close_) {}
    Handle& operator=(Handle&&) = delete;
    ~Handle();

    hid_t get() const noexcept { return id_; }
    /// Closes with a report, where closing writes.
    void close(std::string const& action) { check(close_(std::exchange(id_, H5I_INVALID_HID)), action); }

private:
    hid_t id_;
    Close close_;
};

/// Opens a file for reading, without HDF5's own locks: whoever replaces it does so in one step.
Handle openFile(std::string const& narrowPath);
/// Access to files whose structure has checksums, and that closes all that is open of a file with it.
Handle fileAccess();

/// For making something of that class (H5P_FILE_CREATE and the like) without the time in it: equal routes make
/// equal files.
Handle untimedProperties(hid_t classOfProperties);
Handle createGroup(hid_t parent, char const* name);
/// Refuses links into other files.
Handle openGroup(hid_t parent, char const* name);
Handle openDataset(hid_t parent, std::string const& name);
bool hasLink(hid_t parent, std::string const& name);

}
