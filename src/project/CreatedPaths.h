#pragma once

#include <string>
#include <vector>

namespace cubes::project {

/// The directories and files that a new project has brought into being. Unless they are kept
/// they are removed again, and nothing else with them.
class CreatedPaths {
public:
    CreatedPaths() = default;
    ~CreatedPaths();
    CreatedPaths(CreatedPaths const&) = delete;
    CreatedPaths& operator=(CreatedPaths const&) = delete;

    /// Makes a directory with all levels that are missing. Throws TRkProjectException.
    void makeDirectory(std::string const& path);
    /// A file that is about to be made; one that exists already is not ours.
    void expectFile(std::string const& path);
    void keep() noexcept { paths_.clear(); }

private:
    std::vector<std::string> paths_;
};

}
