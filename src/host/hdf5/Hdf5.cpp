#include "host/hdf5/Hdf5.h"

#include <new>
#include <system_error>

namespace cubes::hdf5 {

namespace {

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

/// How HDF5's reason begins when it cannot open a file, and what that means.
struct OpeningFailure {
    std::string_view reason;
    char const* meaning;
};

constexpr OpeningFailure openingFailures[] = {
    {" (file signature not found", "it is not an HDF5 file"},
    {" (truncated file", "it is truncated"},
    {" (it is truncated", "it is truncated"},
};

void requireOwn(hid_t parent, std::string const& name) {
    if (!isOwnLink(parent, name)) throw std::runtime_error(name + " is a soft or external link");
}

void requireOwnStorage(hid_t dataset, std::string const& name) {
    if (!isOwnStorage(dataset)) throw std::runtime_error(name + " is not stored in this file");
}

constexpr haddr_t largestAddress = (haddr_t{1} << 63) - 1;

// The functions through which HDF5 reads.
struct Lent {
    platform::File* file;
};

// A file that HDF5 reads.
struct OpenFile : H5FD_t {
    explicit OpenFile(platform::File&& lent) : H5FD_t{}, file(std::move(lent)) {}

    platform::File file;
    haddr_t endOfUse = 0;
};

OpenFile const& ours(H5FD_t const* file) {
    return *static_cast<OpenFile const*>(file);
}

// Without the action and the file, which the caller's message has.
void report(std::system_error const& error) {
    H5Epush2(H5E_DEFAULT, __FILE__, __func__, __LINE__, H5E_ERR_CLS, H5E_VFL, H5E_READERROR, "%s",
        error.code().message().c_str());
}

H5FD_t* openOurs(char const*, unsigned, hid_t access, haddr_t) {
    auto const* const lent = static_cast<Lent const*>(H5Pget_driver_info(access));
    return lent ? new (std::nothrow) OpenFile(std::move(*lent->file)) : nullptr;
}

herr_t closeOurs(H5FD_t* file) {
    delete static_cast<OpenFile*>(file);
    return 0;
}

herr_t features(H5FD_t const*, unsigned long* flags) {
    *flags = H5FD_FEAT_ACCUMULATE_METADATA_READ | H5FD_FEAT_DATA_SIEVE;
    return 0;
}

haddr_t endOfUseOf(H5FD_t const* file, H5FD_mem_t) {
    return ours(file).endOfUse;
}

herr_t setEndOfUse(H5FD_t* file, H5FD_mem_t, haddr_t address) {
    static_cast<OpenFile*>(file)->endOfUse = address;
    return 0;
}

haddr_t endOfFile(H5FD_t const* file, H5FD_mem_t) {
    try {
        return ours(file).file.size();
    } catch (std::system_error const& error) {
        report(error);
        return HADDR_UNDEF;
    }
}

herr_t readOurs(H5FD_t* file, H5FD_mem_t, hid_t, haddr_t address, std::size_t size, void* bytes) {
    try {
        ours(file).file.readAt(address, {static_cast<std::byte*>(bytes), size});
        return 0;
    } catch (std::system_error const& error) {
        report(error);
        return -1;
    }
}

herr_t refuseToWrite(H5FD_t*, H5FD_mem_t, hid_t, haddr_t, std::size_t, void const*) {
    return -1;
}

H5FD_class_t ourDriver() {
    H5FD_class_t driver{};
#ifdef H5FD_CLASS_VERSION
    driver.version = H5FD_CLASS_VERSION;
#endif
    driver.name = "cubes";
    driver.maxaddr = largestAddress;
    driver.fc_degree = H5F_CLOSE_STRONG;
    driver.fapl_size = sizeof(Lent);
    driver.open = openOurs;
    driver.close = closeOurs;
    driver.query = features;
    driver.get_eoa = endOfUseOf;
    driver.set_eoa = setEndOfUse;
    driver.get_eof = endOfFile;
    driver.read = readOurs;
    driver.write = refuseToWrite;
    return driver;
}

Handle accessTo(Lent const& lent) {
    constexpr char const* action = "prepare the access to a file";
    static hid_t driver = H5I_INVALID_HID;
    Handle access = fileAccess();
    check(H5Pset_driver(access.get(), registeredDriver(ourDriver(), driver), &lent), action);
    return access;
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

hid_t registeredDriver(H5FD_class_t const& description, hid_t& known) {
    if (H5Iget_type(known) != H5I_VFL) known = check(H5FDregister(&description), "prepare the access to a file");
    return known;
}

Handle fileAccess() {
    Handle access(H5Pcreate(H5P_FILE_ACCESS), H5Pclose, "prepare the access to a file");
    check(H5Pset_file_locking(access.get(), false, true), "prepare the access to a file");
    return access;
}

Handle openFile(platform::File file) {
    std::string const path = file.path();
    Handle const access = accessTo({&file});
    return openedFile(H5Fopen(path.c_str(), H5F_ACC_RDONLY, access.get()));
}

Handle openedFile(hid_t id) {
    if (id >= 0) return Handle(id, H5Fclose, "open it");
    std::string const reason = innermostReason();
    for (auto const& known : openingFailures)
        if (reason.starts_with(known.reason)) throw std::runtime_error(known.meaning);
    throw std::runtime_error("HDF5 could not open it" + reason);
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

std::uint64_t fileSize(hid_t object) {
    Handle const file(H5Iget_file_id(object), H5Fclose, "find the file");
    hsize_t size = 0;
    check(H5Fget_filesize(file.get(), &size), "read the size of the file");
    return size;
}

bool hasLink(hid_t parent, std::string const& name) {
    return H5Lexists(parent, name.c_str(), H5P_DEFAULT) > 0;
}

bool isOwnLink(hid_t parent, std::string const& name) {
    H5L_info_t link{};
    check(H5Lget_info(parent, name.c_str(), &link, H5P_DEFAULT), "find " + name);
    return link.type == H5L_TYPE_HARD;
}

bool isOwnStorage(hid_t dataset) {
    Handle const properties(H5Dget_create_plist(dataset), H5Pclose, "read the layout");
    H5D_layout_t const kind = H5Pget_layout(properties.get());
    bool const isKnown = kind == H5D_COMPACT || kind == H5D_CONTIGUOUS || kind == H5D_CHUNKED;
    return isKnown && H5Pget_external_count(properties.get()) == 0;
}

Handle openGroup(hid_t parent, std::string const& name) {
    requireOwn(parent, name);
    return Handle(H5Gopen2(parent, name.c_str(), H5P_DEFAULT), H5Gclose, "open " + name);
}

Handle openDataset(hid_t parent, std::string const& name) {
    requireOwn(parent, name);
    Handle dataset(H5Dopen2(parent, name.c_str(), H5P_DEFAULT), H5Dclose, "open " + name);
    requireOwnStorage(dataset.get(), name);
    return dataset;
}

}
