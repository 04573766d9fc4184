#pragma once

#include "host/platform/File.h"

#include <string>
#include <string_view>

namespace cubes::platform {

/// A new path beside the target: ".<target>.<16 random hexadecimal digits>.cubes-tmp".
std::string temporaryPath(std::string const& target);
/// The same for a file that is being replaced, which may be the only copy: ".<target>.<16 digits>.cubes-old".
std::string oldPath(std::string const& target);

/// Whether a file of this name (without directory) is a temporary one: of a running process, or left behind by an
/// interrupted one.
bool isTemporaryName(std::string_view name);
/// Whether it is the temporary name of an old file that is being replaced: ".<target>.<16 digits>.cubes-old".
bool isOldName(std::string_view name);
/// Whether a temporary file of this name is one that was replaced or removed while it was being read: Windows sets it
/// aside.
bool isSetAside(std::string_view name);
/// Whether a message has the path of a temporary file in it.
bool mentionsTemporaryFile(std::string_view message);

/// The target of a temporary path; any other path unchanged. (Of a very long name only the beginning is known.)
std::string targetOfTemporary(std::string const& path);

/// The beginning of the message when only the flush of the directory failed, after the file was replaced.
inline constexpr char mayBeLost[] = "it is done, but may not survive a power failure: the directory was not flushed: ";

/// The lock file of a directory of matrix or route files. The search for leftovers there sets its time.
inline constexpr char lockFileName[] = ".cubes-lock";

/// Whether a file was last changed more than a day ago, so that no running process is likely to be writing it.
bool isOlderThanADay(std::string const& path) noexcept;
/// Removes a new file that an interrupted process left: one that nobody holds and that was last changed more than a day
/// ago. An old file, which may be the only copy, is not removed. Returns whether it is removed; never throws.
bool removeLeftover(std::string const& path) noexcept;

/// Whether a process holds this temporary file at the moment. False where that cannot be found out.
bool isHeld(std::string const& path);
/// Whether a process holds a temporary file of this target at the moment. Throws std::system_error when the directory
/// cannot be listed.
bool isBeingReplaced(std::string const& target);

/// A new file beside its target that replaces the target atomically when it is complete, and keeps the target's rights.
/// Otherwise the destructor removes it. It is locked as long as it exists, so that it can be told from a leftover; a
/// process that makes its first temporary file in a directory removes the leftovers there, in directories with a lock
/// file at most once a day.
class TemporaryFile {
public:
    /// What it is for: to replace the target, or to keep the target's old file until another one has replaced it.
    enum class Purpose { replace, keepOld };

    /// Creates the empty file, with the target's rights or, for a new target, as the umask says. Throws
    /// std::system_error.
    explicit TemporaryFile(std::string const& target, Purpose purpose = Purpose::replace);
    TemporaryFile(TemporaryFile const&) = delete;
    TemporaryFile& operator=(TemporaryFile const&) = delete;
    ~TemporaryFile();

    File& file() noexcept { return file_; }
    std::string const& path() const noexcept { return file_.path(); }
    std::string const& target() const noexcept { return target_; }
    bool isPublished() const noexcept { return isPublished_; }
    /// Copies the content of a regular file into the empty file. A new target gets no rights that the source does not
    /// grant. Throws std::system_error.
    void copyFrom(std::string const& source);
    /// Makes the empty file a second name of a regular file, or a copy if the file system has no second names.
    /// Throws std::system_error.
    void linkTo(std::string const& source);
    /// Opens the file again after another program has written or replaced it by its path. Throws std::system_error.
    void reopen();
    /// Leaves the file under its temporary name.
    void leave() noexcept { isLeft_ = true; }
    /// Closes the file and renames it to the target. When it throws, the target is unchanged.
    void publish();
    /// The same, safe against a power failure: flushes the file before and the directory afterwards.
    /// Throws std::system_error; the target is then the old or the new file.
    void commit();

private:
    void hold() noexcept;

    std::string target_;
    bool isNew_;
    File file_;
    bool isPublished_ = false;
    bool isLeft_ = false;
};

}
