#include "WorkDirectory.h"

#include <random>

namespace bench {

WorkDirectory::WorkDirectory() {
    std::random_device random;
    path_ = std::filesystem::temp_directory_path() / ("cubes-bench-" + std::to_string(random()));
    std::filesystem::create_directory(path_);
}

WorkDirectory::~WorkDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

}
