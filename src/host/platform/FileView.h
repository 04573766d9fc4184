#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace cubes::platform {

/// A view on the bytes of a whole file, read as they are touched. Writing to the view changes the
/// view alone. The view keeps its state when the file is replaced or removed; a file that someone
/// else cuts short in place takes the bytes away under the view. Movable.
class FileView {
public:
    /// Throws std::system_error; an empty file gives an empty view.
    static FileView open(std::string const& path);

    FileView(FileView&& other) noexcept;
    FileView& operator=(FileView&& other) noexcept;
    ~FileView();

    std::span<std::byte> bytes() const noexcept { return bytes_; }

private:
    explicit FileView(std::span<std::byte> bytes) noexcept : bytes_(bytes) {}
    void unmap() noexcept;

    std::span<std::byte> bytes_;
};

}
