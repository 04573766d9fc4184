#pragma once

#include <filesystem>
#include <string>

namespace bench {

/// A directory for the run, removed at the end.
class WorkDirectory {
public:
    WorkDirectory();
    ~WorkDirectory();
    WorkDirectory(WorkDirectory const&) = delete;
    WorkDirectory& operator=(WorkDirectory const&) = delete;

    std::string path(std::string const& name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

}
