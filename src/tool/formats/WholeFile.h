#pragma once

#include <fstream>
#include <string>
#include <string_view>

namespace cubes::tool {

/// The bytes of a file. Throws FormatError for one that is missing, a directory or unreadable.
std::string readWholeFile(std::string const& path);

/// A file that is written beside its place and takes it when it is complete. Throws FormatError
/// when something cannot be written; until publish has returned the old file is what it was.
class NewFile {
public:
    explicit NewFile(std::string path);
    /// Removes what was not published.
    ~NewFile();
    NewFile(NewFile const&) = delete;
    NewFile& operator=(NewFile const&) = delete;

    void write(std::string_view bytes);
    void publish();

private:
    [[noreturn]] void fail() const;

    std::string path_;
    std::string temporary_;
    std::ofstream stream_;
};

}
