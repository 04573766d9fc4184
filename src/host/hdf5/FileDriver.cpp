#include "host/hdf5/FileDriver.h"

#include <exception>
#include <new>
#include <system_error>

namespace cubes::hdf5 {

namespace {

constexpr haddr_t largestAddress = (haddr_t{1} << 63) - 1;

// What `open` returns, and HDF5 passes to the other functions.
struct DrivenFile : H5FD_t {
    explicit DrivenFile(FileBytes& used) : H5FD_t{}, bytes(used) {}

    FileBytes& bytes;
    haddr_t endOfUse = 0;
};

DrivenFile& ours(H5FD_t* file) {
    return *static_cast<DrivenFile*>(file);
}

DrivenFile const& ours(H5FD_t const* file) {
    return *static_cast<DrivenFile const*>(file);
}

// Without the action and the file, which the caller's message has.
void report(std::string const& reason) {
    H5Epush2(H5E_DEFAULT, __FILE__, __func__, __LINE__, H5E_ERR_CLS, H5E_VFL, H5E_READERROR, "%s", reason.c_str());
}

// HDF5 is C code, which exceptions must not leave.
template <typename Work>
herr_t statusOf(Work const& work) noexcept {
    try {
        work();
        return 0;
    } catch (std::system_error const& error) {
        report(error.code().message());
    } catch (std::exception const& error) {
        report(error.what());
    }
    return -1;
}

H5FD_t* open(char const*, unsigned, hid_t access, haddr_t) {
    auto* const* const bytes = static_cast<FileBytes* const*>(H5Pget_driver_info(access));
    return bytes ? new (std::nothrow) DrivenFile(**bytes) : nullptr;
}

herr_t close(H5FD_t* file) {
    delete &ours(file);
    return 0;
}

herr_t query(H5FD_t const*, unsigned long* flags) {
    *flags = H5FD_FEAT_AGGREGATE_METADATA | H5FD_FEAT_ACCUMULATE_METADATA | H5FD_FEAT_DATA_SIEVE |
             H5FD_FEAT_AGGREGATE_SMALLDATA;
    return 0;
}

haddr_t endOfUse(H5FD_t const* file, H5FD_mem_t) {
    return ours(file).endOfUse;
}

herr_t setEndOfUse(H5FD_t* file, H5FD_mem_t, haddr_t address) {
    ours(file).endOfUse = address;
    return 0;
}

haddr_t endOfFile(H5FD_t const* file, H5FD_mem_t) {
    haddr_t end = HADDR_UNDEF;
    statusOf([&] { end = ours(file).bytes.size(); });
    return end;
}

herr_t read(H5FD_t* file, H5FD_mem_t, hid_t, haddr_t address, std::size_t size, void* bytes) {
    return statusOf([&] { ours(file).bytes.read(address, {static_cast<std::byte*>(bytes), size}); });
}

herr_t write(H5FD_t* file, H5FD_mem_t, hid_t, haddr_t address, std::size_t size, void const* bytes) {
    return statusOf([&] { ours(file).bytes.write(address, {static_cast<std::byte const*>(bytes), size}); });
}

// Makes the file as long as HDF5 uses it.
herr_t truncate(H5FD_t* file, hid_t, hbool_t) {
    return statusOf([&] {
        constexpr std::byte zero[] = {std::byte{0}};
        haddr_t const end = ours(file).endOfUse;
        if (ours(file).bytes.size() < end) ours(file).bytes.write(end - 1, zero);
    });
}

H5FD_class_t description() {
    H5FD_class_t driver{};
#ifdef H5FD_CLASS_VERSION
    driver.version = H5FD_CLASS_VERSION;
#endif
    driver.name = "cubes";
    driver.maxaddr = largestAddress;
    driver.fc_degree = H5F_CLOSE_STRONG;
    driver.fapl_size = sizeof(FileBytes*);
    driver.open = open;
    driver.close = close;
    driver.query = query;
    driver.get_eoa = endOfUse;
    driver.set_eoa = setEndOfUse;
    driver.get_eof = endOfFile;
    driver.read = read;
    driver.write = write;
    driver.truncate = truncate;
    return driver;
}

// Registered once for the process, and again if the application has closed HDF5 since. HDF5 still uses a driver when it
// closes the last file of it: one that is unregistered would be freed by then.
hid_t registeredDriver() {
    static hid_t known = H5I_INVALID_HID;
    H5FD_class_t const described = description();
    if (H5Iget_type(known) != H5I_VFL) known = check(H5FDregister(&described), "prepare the access to a file");
    return known;
}

}

void useBytes(Handle const& access, FileBytes& bytes) {
    FileBytes* const info = &bytes;
    check(H5Pset_driver(access.get(), registeredDriver(), &info), "prepare the access to a file");
}

}
