#pragma once

#include <string>
#include <vector>

namespace cubes::project {

/// The directories and files that a new project has created. The destructor removes them, and nothing else, unless they
/// are kept.
class CreatedPaths {
public:
    CreatedPaths() = default;
    ~CreatedPaths();
    CreatedPaths(CreatedPaths const&) = delete;
    CreatedPaths& operator=(CreatedPaths const&) = delete;

    /// Creates a directory with all missing levels. Throws TRkProjectException.
    void makeDirectory(std::string const& path);
    /// Notes a file that is about to be created; one that exists already is not noted. Throws TRkProjectException.
    void expectFile(std::string const& path);
    void keep() noexcept { paths_.clear(); }

private:
    std::vector<std::string> paths_;
};

/// Whether something has that name. Throws TRkProjectException when the system cannot say.
bool isPresent(std::string const& path);

}
