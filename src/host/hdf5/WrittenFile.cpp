#include "host/hdf5/WrittenFile.h"

#include "host/hdf5/FileDriver.h"

#include <algorithm>

namespace cubes::hdf5 {

class WrittenFile::Target : public FileBytes {
public:
    explicit Target(platform::File& written) : file_(written) {}

    std::exception_ptr failure() const noexcept { return failure_; }

    std::uint64_t size() const override {
        std::uint64_t found = 0;
        attempt([&] { found = file_.size(); });
        return found;
    }
    // What was allocated but not written yet is zero.
    void read(std::uint64_t offset, std::span<std::byte> bytes) const override {
        std::ranges::fill(bytes, std::byte{0});
        auto const there = std::max(size(), offset) - offset;
        attempt([&] { file_.readAt(offset, bytes.first(std::min<std::uint64_t>(bytes.size(), there))); });
    }
    void write(std::uint64_t offset, std::span<std::byte const> bytes) override {
        attempt([&] { file_.writeAt(offset, bytes); });
    }

private:
    template <typename Work>
    void attempt(Work const& work) const noexcept {
        if (failure_) return;
        try {
            work();
        } catch (...) {
            failure_ = std::current_exception();
        }
    }

    platform::File& file_;
    mutable std::exception_ptr failure_;
};

namespace {

Handle create(std::string const& path, FileBytes& bytes, Handle const& access) {
    constexpr char const* action = "create an HDF5 file";
    Session const session;
    useBytes(access, bytes);
    // The other properties of a file keep their defaults: HDF5 would write them with the time.
    Handle const properties = untimedProperties(H5P_FILE_CREATE);
    return Handle(H5Fcreate(path.c_str(), H5F_ACC_TRUNC, properties.get(), access.get()), H5Fclose, action);
}

}

WrittenFile::WrittenFile(platform::File& file, Handle access)
    : target_(std::make_unique<Target>(file)), file_(create(file.path(), *target_, access)) {}

WrittenFile::~WrittenFile() = default;

void WrittenFile::requireWritten() const {
    if (target_->failure()) std::rethrow_exception(target_->failure());
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
