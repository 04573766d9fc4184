#include "host/hdf5/WrittenFile.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace cubes::hdf5 {

// What HDF5 writes through.
struct WrittenFile::Target {
    explicit Target(platform::File& written) : file(written) {}

    platform::File& file;
    std::exception_ptr failure;

    // Whether it succeeded. HDF5 is C code, which exceptions must not leave.
    template <typename Work>
    bool succeeds(Work const& work) noexcept {
        if (failure) return false;
        try {
            work();
            return true;
        } catch (...) {
            failure = std::current_exception();
            return false;
        }
    }
};

namespace {

constexpr haddr_t mostBytes = (haddr_t{1} << 63) - 1;

template <typename Target>
struct DriverFile : H5FD_t {
    explicit DriverFile(Target& lent) : H5FD_t{}, target(lent) {}

    Target& target;
    haddr_t endOfUse = 0;
};

// The functions of the driver; HDF5 passes the file that `open` returned.
template <typename Target>
struct Driver {
    using File = DriverFile<Target>;

    static File& ours(H5FD_t* file) { return *static_cast<File*>(file); }
    static File const& ours(H5FD_t const* file) { return *static_cast<File const*>(file); }

    static std::uint64_t sizeOf(Target& target) {
        std::uint64_t size = 0;
        target.succeeds([&] { size = target.file.size(); });
        return size;
    }

    static H5FD_t* open(char const*, unsigned, hid_t access, haddr_t) {
        auto* const* const target = static_cast<Target* const*>(H5Pget_driver_info(access));
        return target ? new (std::nothrow) File(**target) : nullptr;
    }

    static herr_t close(H5FD_t* file) {
        delete &ours(file);
        return 0;
    }

    static herr_t query(H5FD_t const*, unsigned long* flags) {
        *flags = H5FD_FEAT_AGGREGATE_METADATA | H5FD_FEAT_ACCUMULATE_METADATA | H5FD_FEAT_DATA_SIEVE |
                 H5FD_FEAT_AGGREGATE_SMALLDATA;
        return 0;
    }

    static haddr_t endOfUse(H5FD_t const* file, H5FD_mem_t) { return ours(file).endOfUse; }

    static herr_t setEndOfUse(H5FD_t* file, H5FD_mem_t, haddr_t address) {
        ours(file).endOfUse = address;
        return 0;
    }

    static haddr_t endOfFile(H5FD_t const* file, H5FD_mem_t) { return sizeOf(ours(file).target); }

    // What was allocated but not written yet is zero.
    static herr_t read(H5FD_t* file, H5FD_mem_t, hid_t, haddr_t address, std::size_t size, void* bytes) {
        auto& target = ours(file).target;
        std::memset(bytes, 0, size);
        auto const end = std::max<std::uint64_t>(sizeOf(target), address);
        std::span const wanted(static_cast<std::byte*>(bytes), std::min<std::uint64_t>(size, end - address));
        target.succeeds([&] { target.file.readAt(address, wanted); });
        return 0;
    }

    static herr_t write(H5FD_t* file, H5FD_mem_t, hid_t, haddr_t address, std::size_t size, void const* bytes) {
        auto& target = ours(file).target;
        target.succeeds([&] { target.file.writeAt(address, {static_cast<std::byte const*>(bytes), size}); });
        return 0;
    }

    // Makes the file as long as HDF5 uses it.
    static herr_t truncate(H5FD_t* file, hid_t, hbool_t) {
        auto& target = ours(file).target;
        haddr_t const end = ours(file).endOfUse;
        constexpr std::byte zero[] = {std::byte{0}};
        if (sizeOf(target) < end) target.succeeds([&] { target.file.writeAt(end - 1, zero); });
        return 0;
    }

    static H5FD_class_t description() {
        H5FD_class_t driver{};
#ifdef H5FD_CLASS_VERSION
        driver.version = H5FD_CLASS_VERSION;
#endif
        driver.name = "cubes-writing";
        driver.maxaddr = mostBytes;
        driver.fc_degree = H5F_CLOSE_STRONG;
        driver.fapl_size = sizeof(Target*);
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
};

template <typename Target>
Handle create(Target& target, Handle const& access) {
    constexpr char const* action = "create an HDF5 file";
    Session const session;
    static hid_t driver = H5I_INVALID_HID;
    Target* const info = &target;
    check(H5Pset_driver(access.get(), registeredDriver(Driver<Target>::description(), driver), &info), action);
    // The other properties of a file keep their defaults: HDF5 would write them with the time.
    Handle const properties = untimedProperties(H5P_FILE_CREATE);
    return Handle(
        H5Fcreate(target.file.path().c_str(), H5F_ACC_TRUNC, properties.get(), access.get()), H5Fclose, action);
}

}

WrittenFile::WrittenFile(platform::File& file, Handle access)
    : target_(std::make_unique<Target>(file)), file_(create(*target_, access)) {}

WrittenFile::~WrittenFile() = default;

void WrittenFile::requireWritten() const {
    if (target_->failure) std::rethrow_exception(target_->failure);
}

void WrittenFile::finish() {
    Session const session;
    try {
        file_.close("finish the file");
    } catch (Error const&) {
        requireWritten();
        throw;
    }
    requireWritten();
}

}
