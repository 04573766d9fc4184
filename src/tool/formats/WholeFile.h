#pragma once

#include "host/platform/TemporaryFile.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace cubes::tool {

/// The bytes of a text file. Throws FormatError when it is missing, a directory, unreadable or not a text: when it
/// holds zero bytes.
std::string readWholeFile(std::string const& path);

/// Throws FormatError when no file can be written to the path: its directory is missing, or it is a directory or
/// another thing than a regular file.
void requireWritablePath(std::string const& path);

/// A file written under a temporary name beside its target, which it replaces when it is complete. Throws
/// FormatError when something cannot be written; until commit() returns, the old file is unchanged.
class NewFile {
public:
    explicit NewFile(std::string const& path);

    void write(std::string_view bytes);
    void commit();

private:
    void writeWaiting();

    std::unique_ptr<platform::TemporaryFile> temporary_;
    std::string waiting_;
    std::uint64_t written_ = 0;
};

}
