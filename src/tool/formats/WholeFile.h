#pragma once

#include <fstream>
#include <string>
#include <string_view>

namespace cubes::tool {

/// The bytes of a file. Throws FormatError when it is missing, a directory or unreadable.
std::string readWholeFile(std::string const& path);

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
