#include "Hdf5.h"

#include "platform/NarrowText.h"

namespace cubes::routes::hdf5 {

namespace {

// At its end a process has HDF5 close what is open. Ours is closed by its owners; but damaged
// files can leave things behind in HDF5 that it then complains of on the terminal.
std::mutex& mutex() {
    static std::mutex instance;
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

void requireOwn(hid_t parent, std::string const& name) {
    H5L_info_t link{};
    check(H5Lget_info(parent, name.c_str(), &link, H5P_DEFAULT), "find " + name);
    if (link.type != H5L_TYPE_HARD) throw std::runtime_error(name + " leads elsewhere");
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

Handle::Handle(hid_t id, Close closer, std::string const& action) : id_(check(id, action)), close_(closer) {}

Handle::~Handle() {
    if (id_ >= 0) close_(id_);
}

Handle fileAccess() {
    char const* const action = "prepare the access to a file";
    Handle access(H5Pcreate(H5P_FILE_ACCESS), H5Pclose, action);
    check(H5Pset_fclose_degree(access.get(), H5F_CLOSE_STRONG), action);
    check(H5Pset_libver_bounds(access.get(), H5F_LIBVER_V110, H5F_LIBVER_V110), action);
    return access;
}

Handle openFile(std::string const& narrowPath) {
    Handle const access = fileAccess();
    check(H5Pset_file_locking(access.get(), false, true), "prepare the access to a file");
    std::string const name = platform::toUtf8(narrowPath);
    return Handle(H5Fopen(name.c_str(), H5F_ACC_RDONLY, access.get()), H5Fclose, "open it as HDF5");
}

Handle untimedProperties(hid_t classOfProperties) {
    Handle properties(H5Pcreate(classOfProperties), H5Pclose, "prepare the structure");
    check(H5Pset_obj_track_times(properties.get(), false), "prepare the structure");
    return properties;
}

Handle createGroup(hid_t parent, char const* name) {
    Handle const properties = untimedProperties(H5P_GROUP_CREATE);
    return Handle(H5Gcreate2(parent, name, H5P_DEFAULT, properties.get(), H5P_DEFAULT), H5Gclose, "make a group");
}

Handle openGroup(hid_t parent, char const* name) {
    requireOwn(parent, name);
    return Handle(H5Gopen2(parent, name, H5P_DEFAULT), H5Gclose, std::string("open ") + name);
}

Handle openDataset(hid_t parent, std::string const& name) {
    requireOwn(parent, name);
    return Handle(H5Dopen2(parent, name.c_str(), H5P_DEFAULT), H5Dclose, "open " + name);
}

bool hasLink(hid_t parent, std::string const& name) {
    return H5Lexists(parent, name.c_str(), H5P_DEFAULT) > 0;
}

}
