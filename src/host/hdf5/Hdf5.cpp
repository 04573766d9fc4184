#include "host/hdf5/Hdf5.h"

namespace cubes::hdf5 {

namespace {

// At its end a process has HDF5 close what is open. Ours is closed by its owners; but damaged
// files can leave things behind in HDF5 that it then complains of on the terminal.
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

}

Session::Session() : lock_(mutex()) {
    H5Eget_auto2(H5E_DEFAULT, &print_, &printTo_);
    H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
}

Session::~Session() {
    H5Eset_auto2(H5E_DEFAULT, print_, printTo_);
}

Error::Error(std::string const& action) : std::runtime_error("cannot " + action + innermostReason()) {}

Handle::Handle(hid_t id, Close closer, char const* action) : id_(check(id, action)), close_(closer) {}

Handle& Handle::operator=(Handle&& other) noexcept {
    closeQuietly();
    id_ = std::exchange(other.id_, H5I_INVALID_HID);
    close_ = other.close_;
    return *this;
}

Handle::~Handle() {
    closeQuietly();
}

void Handle::close(char const* action) {
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

Handle openGroup(hid_t parent, char const* name) {
    return Handle(H5Gopen2(parent, name, H5P_DEFAULT), H5Gclose, "open a group");
}

bool hasLink(hid_t parent, char const* name) {
    return H5Lexists(parent, name, H5P_DEFAULT) > 0;
}

}
