#pragma once

#include <filesystem>
#include <string>

namespace cubes::tool {

/// A file beside its place, which it takes when it is complete; gone at the end otherwise.
class FileBeside {
public:
    explicit FileBeside(std::string const& place);
    ~FileBeside();
    FileBeside(FileBeside const&) = delete;
    FileBeside& operator=(FileBeside const&) = delete;

    std::string path() const;
    bool canBeMade() const;
    /// Once it is on the disk. Throws Failure.
    void takePlace() const;

private:
    std::filesystem::path place_;
    std::filesystem::path path_;
};

}
