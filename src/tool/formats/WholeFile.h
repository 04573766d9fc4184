#pragma once

#include <fstream>
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
    explicit NewFile(std::string path);
    /// Removes what was not committed.
    ~NewFile();
    NewFile(NewFile const&) = delete;
    NewFile& operator=(NewFile const&) = delete;

    void write(std::string_view bytes);
    void commit();

private:
    std::string path_;
    std::string temporary_;
    std::ofstream stream_;
};

}
