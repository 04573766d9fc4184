#include "host/hdf5/Hdf5.h"

#include <bit>
#include <new>

namespace cubes::hdf5 {

namespace {

static_assert(std::endian::native == std::endian::little, "numbers in memory are as in files");

// HDF5 closes open objects at exit. The library's owners close theirs, but damaged files can leave objects behind in
// HDF5, which it would report on the terminal.
std::recursive_mutex& mutex() {
    static std::recursive_mutex instance;
    [[maybe_unused]] static herr_t const quietEnd = H5dont_atexit();
    return instance;
}

std::string innermostReason() {
    std::string reason;
    auto const keepFirst = [](unsigned, H5E_error2_t const* error, void* text) -> herr_t {
        auto& kept = *static_cast<std::string*>(text);
        if (kept.empty() && error->desc) kept = error->desc;
        return 0;
    };
    H5Ewalk2(H5E_DEFAULT, H5E_WALK_UPWARD, keepFirst, &reason);
    return reason.empty() ? reason : " (" + reason + ")";
}

bool isShortOfMemory() {
    bool isShort = false;
    auto const compare = [](unsigned, H5E_error2_t const* error, void* found) -> herr_t {
        if (error->maj_num == H5E_RESOURCE && error->min_num == H5E_NOSPACE) *static_cast<bool*>(found) = true;
        return 0;
    };
    H5Ewalk2(H5E_DEFAULT, H5E_WALK_UPWARD, compare, &isShort);
    return isShort;
}

}

Session::Session() : lock_(mutex()) {
    H5Eget_auto2(H5E_DEFAULT, &print_, &printTo_);
    H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
}

Session::~Session() {
    H5Eset_auto2(H5E_DEFAULT, print_, printTo_);
}

Error::Error(std::string_view action)
    : std::runtime_error("HDF5 could not " + std::string(action) + innermostReason()) {}

void throwFailure(std::string_view action) {
    if (isShortOfMemory()) throw std::bad_alloc();
    throw Error(action);
}

Handle::Handle(hid_t id, Close closer, std::string_view action) : id_(check(id, action)), close_(closer) {}

Handle& Handle::operator=(Handle&& other) noexcept {
    closeQuietly();
    id_ = std::exchange(other.id_, H5I_INVALID_HID);
    close_ = other.close_;
    return *this;
}

Handle::~Handle() {
    closeQuietly();
}

void Handle::close(std::string_view action) {
    check(close_(std::exchange(id_, H5I_INVALID_HID)), action);
}

void Handle::closeQuietly() noexcept {
    if (id_ < 0) return;
    Session const session;
    close_(std::exchange(id_, H5I_INVALID_HID));
}

Handle fileAccess() {
    Handle access(H5Pcreate(H5P_FILE_ACCESS), H5Pclose, "prepare the access to a file");
    check(H5Pset_file_locking(access.get(), false, true), "prepare the access to a file");
    return access;
}

Handle untimedProperties(hid_t classOfProperties) {
    Handle properties(H5Pcreate(classOfProperties), H5Pclose, "prepare the structure");
    check(H5Pset_obj_track_times(properties.get(), false), "prepare the structure");
    return properties;
}

Handle createGroup(hid_t parent, std::string const& name) {
    Handle const properties = untimedProperties(H5P_GROUP_CREATE);
    return Handle(
        H5Gcreate2(parent, name.c_str(), H5P_DEFAULT, properties.get(), H5P_DEFAULT), H5Gclose, "create " + name);
}

std::uint64_t writeBytes(hid_t parent, char const* name, std::span<std::byte const> bytes) {
    std::string const action = std::string("write ") + name;
    hsize_t const size = bytes.size();
    Handle const space(H5Screate_simple(1, &size, nullptr), H5Sclose, action);
    Handle const properties = untimedProperties(H5P_DATASET_CREATE);
    Handle const dataset(
        H5Dcreate2(parent, name, H5T_STD_U8LE, space.get(), H5P_DEFAULT, properties.get(), H5P_DEFAULT), H5Dclose,
        action);
    check(H5Dwrite(dataset.get(), H5T_STD_U8LE, H5S_ALL, H5S_ALL, H5P_DEFAULT, bytes.data()), action);
    return H5Dget_offset(dataset.get());
}

hid_t hdfType(NumberType type) {
    // By NumberType. They are little-endian, as this system is.
    hid_t const types[] = {H5T_STD_U8LE, H5T_STD_I16LE, H5T_STD_U16LE, H5T_STD_I32LE, H5T_STD_U32LE, H5T_STD_I64LE,
        H5T_STD_U64LE, H5T_IEEE_F32LE, H5T_IEEE_F64LE};
    return types[static_cast<std::size_t>(type)];
}

}
