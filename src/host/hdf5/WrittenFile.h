#pragma once

#include "host/hdf5/Hdf5.h"
#include "host/platform/File.h"

#include <exception>
#include <memory>

namespace cubes::hdf5 {

/// An HDF5 file that HDF5 creates through an open, empty file. HDF5 does not pass on every failed write: when a small
/// dataset is closed, or written again later, the failure is lost. So the first failure is kept here, and everything
/// after it is only pretended to be written, so that HDF5 can close the file.
class WrittenFile {
public:
    /// `access`: properties of class H5P_FILE_ACCESS, whose driver is replaced. `file` must outlive this object; others
    /// may write to it as well. Throws Error.
    WrittenFile(platform::File& file, Handle access);
    WrittenFile(WrittenFile const&) = delete;
    WrittenFile& operator=(WrittenFile const&) = delete;
    ~WrittenFile();

    hid_t get() const noexcept { return file_.get(); }
    /// Throws what the first failed write threw: std::system_error.
    void requireWritten() const;
    /// Closes the file. Throws like requireWritten, or Error.
    void finish();

private:
    class Target;

    // Outlives the file, which HDF5 writes through it.
    std::unique_ptr<Target> target_;
    Handle file_;
};

}
