#include "reader/OpenedFile.h"

#include <new>
#include <stdexcept>
#include <system_error>

namespace cubes::reader {

using hdf5::check;
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
    Handle access = hdf5::fileAccess();
    check(H5Pset_driver(access.get(), hdf5::registeredDriver(ourDriver(), driver), &lent), action);
    return access;
}

}

Handle openFile(platform::File file) {
    Handle const access = accessTo({&file});
    try {
        return Handle(H5Fopen(file.path().c_str(), H5F_ACC_RDONLY, access.get()), H5Fclose, "open it");
    } catch (hdf5::Error const& error) {
        for (auto const& [message, meaning] : openingFailures)
            if (std::string_view(error.what()).starts_with(message)) throw std::runtime_error(meaning);
        throw;
    }
}

}
