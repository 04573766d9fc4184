#pragma once

#include "host/platform/File.h"

#include <string>
#include <string_view>

namespace cubes::platform {

/// A new path beside the target: ".<target>.<16 random hexadecimal digits>.cubes-tmp".
std::string temporaryPath(std::string const& target);

/// Whether a file of this name (without directory) is a temporary one: of a running process, or left behind by an
/// interrupted one.
bool isTemporaryName(std::string_view name);
/// Whether a message has the path of a temporary file in it.
bool mentionsTemporaryFile(std::string_view message);

/// The target of a temporary path; any other path unchanged. (Of a very long name only the beginning is known.)
std::string targetOfTemporary(std::string const& path);

/// Atomically replaces the target, which need not exist, by a complete and closed file beside it, and survives a power
/// failure. Throws std::system_error; the target is then the old or the new file.
void commitFile(std::string const& file, std::string const& target);

/// A new file beside its target that replaces the target atomically when it is complete. Otherwise the destructor
/// removes it.
class TemporaryFile {
public:
    /// Creates the empty file. Throws std::system_error.
    explicit TemporaryFile(std::string const& target);
    TemporaryFile(TemporaryFile const&) = delete;
    TemporaryFile& operator=(TemporaryFile const&) = delete;
    ~TemporaryFile();

    File& file() noexcept { return file_; }
    std::string const& path() const noexcept { return file_.path(); }
    std::string const& target() const noexcept { return target_; }
    /// Closes the file and renames it to the target. When it throws, the target is unchanged.
    void publish();
    /// The same, safe against a power failure: flushes the file before and the directory afterwards.
    /// Throws std::system_error; the target is then the old or the new file.
    void commit();

private:
    std::string target_;
    File file_;
    bool published_ = false;
};

}
