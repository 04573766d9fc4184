#include "host/hdf5/Hdf5.h"

#include <exception>
#include <new>
#include <utility>

namespace cubes::hdf5 {

namespace {

using platform::File;

constexpr haddr_t largestAddress = (haddr_t{1} << 63) - 1;

/// What HDF5 is given to read through.
struct Lent {
    File* file;
};

/// A file that HDF5 reads.
struct OpenFile : H5FD_t {
    explicit OpenFile(File&& lent) : H5FD_t{}, file(std::move(lent)) {}

    File file;
    haddr_t endOfUse = 0;
};

OpenFile const& ours(H5FD_t const* file) {
    return *static_cast<OpenFile const*>(file);
}

void tellHdf5(std::exception const& error) {
    H5Epush2(H5E_DEFAULT, __FILE__, __func__, __LINE__, H5E_ERR_CLS, H5E_VFL, H5E_READERROR, "%s", error.what());
}

H5FD_t* take(char const*, unsigned, hid_t access, haddr_t) {
    auto const* const lent = static_cast<Lent const*>(H5Pget_driver_info(access));
    return lent ? new (std::nothrow) OpenFile(std::move(*lent->file)) : nullptr;
}

herr_t close(H5FD_t* file) {
    delete static_cast<OpenFile*>(file);
    return 0;
}

herr_t features(H5FD_t const*, unsigned long* flags) {
    *flags = H5FD_FEAT_ACCUMULATE_METADATA_READ | H5FD_FEAT_DATA_SIEVE;
    return 0;
}

haddr_t endOfUse(H5FD_t const* file, H5FD_mem_t) {
    return ours(file).endOfUse;
}

herr_t setEndOfUse(H5FD_t* file, H5FD_mem_t, haddr_t address) {
    static_cast<OpenFile*>(file)->endOfUse = address;
    return 0;
}

haddr_t endOfFile(H5FD_t const* file, H5FD_mem_t) {
    try {
        return ours(file).file.size();
    } catch (std::exception const& error) {
        tellHdf5(error);
        return HADDR_UNDEF;
    }
}

herr_t read(H5FD_t* file, H5FD_mem_t, hid_t, haddr_t address, std::size_t size, void* bytes) {
    try {
        ours(file).file.readAt(address, {static_cast<std::byte*>(bytes), size});
        return 0;
    } catch (std::exception const& error) {
        tellHdf5(error);
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
    driver.fc_degree = H5F_CLOSE_WEAK;
    driver.fapl_size = sizeof(Lent);
    driver.open = take;
    driver.close = close;
    driver.query = features;
    driver.get_eoa = endOfUse;
    driver.set_eoa = setEndOfUse;
    driver.get_eof = endOfFile;
    driver.read = read;
    driver.write = refuseToWrite;
    return driver;
}

Handle accessTo(Lent const& lent) {
    constexpr char const* action = "prepare the access to a file";
    H5FD_class_t const description = ourDriver();
    Handle const driver(H5FDregister(&description), H5FDunregister, action);
    Handle access = fileAccess();
    check(H5Pset_driver(access.get(), driver.get(), &lent), action);
    return access;
}

}

Handle openFile(File file) {
    std::string const path = file.path();
    Handle const access = accessTo({&file});
    return Handle(H5Fopen(path.c_str(), H5F_ACC_RDONLY, access.get()), H5Fclose, "open it as HDF5");
}

}
