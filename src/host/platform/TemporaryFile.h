#pragma once

#include "host/platform/File.h"

#include <string>
#include <string_view>

namespace cubes::platform {

/// A path of its own beside the target: ".<target>.<process>-<counter>.cubes-tmp".
std::string temporaryPath(std::string const& target);

/// A file in the making: it lies beside its target under such a name until it takes the target's
/// place in one step.
/// Unpublished it is removed at the end. What a killed process leaves is known by its name.
class TemporaryFile {
public:
    /// Makes the empty file. Throws std::system_error when that can't be done there.
    explicit TemporaryFile(std::string const& target);
    TemporaryFile(TemporaryFile const&) = delete;
    TemporaryFile& operator=(TemporaryFile const&) = delete;
    ~TemporaryFile();

    File& file() noexcept { return file_; }
    std::string const& path() const noexcept { return file_.path(); }
    std::string const& target() const noexcept { return target_; }
    /// Closes the file and puts it in place of the target. When that throws the target is as before.
    void publish();

private:
    std::string target_;
    File file_;
    bool published_ = false;
};

/// Whether a file of this name (without directory) is what an interrupted process left behind, or
/// one in the making.
bool isTemporaryName(std::string_view name);

}
