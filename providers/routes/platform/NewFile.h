#pragma once

#include "platform/System.h"

namespace cubes::routes::platform {

/// A file in the making: it lies beside its target as ".<target>.<process>-<counter>r.cubes-tmp" until
/// it takes the target's place. Without that it is removed at the end. Failures throw std::system_error.
class NewFile {
public:
    explicit NewFile(std::string const& target);
    NewFile(NewFile const&) = delete;
    NewFile& operator=(NewFile const&) = delete;
    ~NewFile();

    void write(std::span<std::byte const> bytes) { writeFile(file_, bytes); }
    /// Flushes the file and puts it in place of the target. When that throws the target is as before.
    void putInPlace();

private:
    void close() noexcept;

    static constexpr NativeFile none = -1;
    std::string target_;
    std::string path_;
    NativeFile file_;
    bool isInPlace_ = false;
};

}
