#include "host/matrix/Hdf5.h"

#include "host/platform/FileView.h"

#include <atomic>
#include <memory>

namespace cubes::matrix::hdf5 {

namespace {

/// A file in our own view, which HDF5 takes for a file in memory. HDF5 by itself would open it so that
/// nobody could replace or remove it while it is read.
struct Image {
    platform::FileView view;
    /// Whether HDF5 gives it up.
    bool isHandedOver = false;
};

void* addressOf(void* image) {
    return static_cast<Image*>(image)->view.bytes().data();
}

// HDF5 asks for memory, for itself and for the list of properties that tells of it: it all is the view.
void* allocate(std::size_t, H5FD_file_image_op_t, void* image) {
    return addressOf(image);
}

void* copy(void* to, void const*, std::size_t, H5FD_file_image_op_t, void*) {
    return to;
}

void* refuseToGrow(void*, std::size_t, H5FD_file_image_op_t, void*) {
    return nullptr;
}

herr_t release(void*, H5FD_file_image_op_t reason, void* image) {
    auto* const ours = static_cast<Image*>(image);
    if (reason == H5FD_FILE_IMAGE_OP_FILE_CLOSE && ours->isHandedOver) delete ours;
    return 0;
}

void* sameImage(void* image) {
    return image;
}

herr_t keepImage(void*) {
    return 0;
}

Handle accessTo(Image& image) {
    constexpr char const* action = "prepare the access to a file";
    Handle access = fileAccess();
    check(H5Pset_fapl_core(access.get(), 1, false), action);
    H5FD_file_image_callbacks_t callbacks{allocate, copy, refuseToGrow, release, sameImage, keepImage, &image};
    check(H5Pset_file_image_callbacks(access.get(), &callbacks), action);
    auto const bytes = image.view.bytes();
    check(H5Pset_file_image(access.get(), bytes.data(), bytes.size()), action);
    return access;
}

// Files in memory are the same file to HDF5 when they have the same name.
std::string uniqueName(std::string const& path) {
    static std::atomic<unsigned> count = 0;
    return path + "#" + std::to_string(++count);
}

}

Handle openFile(std::string const& path) {
    auto image = std::make_unique<Image>(Image{platform::FileView::openUnchanged(path)});
    Handle const access = accessTo(*image);
    Handle file(H5Fopen(uniqueName(path).c_str(), H5F_ACC_RDONLY, access.get()), H5Fclose, "open it as HDF5");
    image.release()->isHandedOver = true;
    return file;
}

}
