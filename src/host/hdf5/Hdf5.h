#pragma once

#include "host/platform/File.h"

#include <hdf5.h>

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

/// Owners and helpers for HDF5's C interface, shared by the library and the provider.
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

/// Throws Error for the status of a failed call; returns any other status.
template <typename Status>
Status check(Status status, std::string_view action) {
    if (status < 0) throw Error(action);
    return status;
}

/// Deflate compresses to about a thousandth at best: a file that claims more is damaged.
inline constexpr std::size_t mostInflation = 1040;

/// Opens a file for reading through `file`: on every system it can be replaced and removed meanwhile, errors have the
/// system's messages, and closing it closes everything opened in it.
Handle openFile(platform::File file);
/// Owns the file that H5Fopen returned. Throws std::runtime_error when it failed: "it is not an HDF5 file".
Handle openedFile(hid_t id);
/// Registers a driver of ours once for the process, and again if the application has closed HDF5 since. `known` keeps
/// its identifier. HDF5 still uses a driver when it closes the last file of it: one that is unregistered would be freed
/// by then. Throws Error. REQUIRES: within a Session.
hid_t registeredDriver(H5FD_class_t const& description, hid_t& known);
/// Access without HDF5's own locks: files are replaced atomically.
Handle fileAccess();

/// Properties of a class (H5P_FILE_CREATE and the like) that record no times: equal content makes equal files.
Handle untimedProperties(hid_t classOfProperties);
Handle createGroup(hid_t parent, std::string const& name);
/// Writes bytes as a dataset without chunks and returns their place in the file.
std::uint64_t writeBytes(hid_t parent, char const* name, std::span<std::byte const> bytes);
/// The size of the file that an object lies in.
std::uint64_t fileSize(hid_t object);
bool hasLink(hid_t parent, std::string const& name);
/// Whether a name in a group stands for an object of its own: soft, external and user-defined links are never followed.
bool isOwnLink(hid_t parent, std::string const& name);
/// Whether the elements of a dataset are stored in its own file: external and virtual storage is never read.
bool isOwnStorage(hid_t dataset);
/// These throw std::runtime_error for a link that is not the object's own, and for storage in another place.
Handle openGroup(hid_t parent, std::string const& name);
Handle openDataset(hid_t parent, std::string const& name);

}
