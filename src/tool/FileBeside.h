#pragma once

#include <string>

namespace cubes::tool {

/// A temporary file beside its target, which it replaces when it is complete; removed by the destructor otherwise.
class FileBeside {
public:
    explicit FileBeside(std::string const& place);
    ~FileBeside();
    FileBeside(FileBeside const&) = delete;
    FileBeside& operator=(FileBeside const&) = delete;

    std::string const& path() const noexcept { return path_; }
    bool canBeMade() const;
    /// Replaces the target in one step that survives a power failure. Throws Failure.
    void takePlace() const;

private:
    std::string place_;
    std::string path_;
};

}
