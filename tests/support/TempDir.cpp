#include "support/TempDir.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace cubes::test {

namespace fs = std::filesystem;

TempDir::TempDir() : TempDir(fs::temp_directory_path()) {}

TempDir::TempDir(fs::path const& parent) {
    std::random_device random;
    do path_ = parent / ("cubes-test-" + std::to_string(random()) + std::to_string(random()));
    while (!fs::create_directory(path_));
}

TempDir::~TempDir() {
    std::error_code ignored;
    fs::permissions(path_, fs::perms::owner_all, fs::perm_options::add, ignored);
    fs::remove_all(path_, ignored);
}

std::string nativePath(std::string path) {
    std::replace(path.begin(), path.end(), '/', static_cast<char>(fs::path::preferred_separator));
    return path;
}

std::string listing(std::string const& directory) {
    std::vector<std::string> names;
    for (auto const& entry : fs::recursive_directory_iterator(directory))
        names.push_back(fs::relative(entry.path(), directory).generic_string());
    std::sort(names.begin(), names.end());
    std::string text;
    for (auto const& name : names) text += name + "\n";
    return text;
}

std::string filesIn(std::string const& directory) {
    std::istringstream names(listing(directory));
    std::string kept;
    for (std::string name; std::getline(names, name);)
        if (name != ".cubes-lock" && !name.ends_with(".old.cubes-tmp")) kept += name + "\n";
    return kept;
}

std::string readFile(std::string const& path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream) throw std::runtime_error("cannot read " + path);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::string readText(std::string const& path) {
    std::ifstream stream(path);
    if (!stream) throw std::runtime_error("cannot read " + path);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void writeFile(std::string const& path, std::string const& bytes) {
    std::ofstream stream(path, std::ios::binary);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!stream.flush()) throw std::runtime_error("cannot write " + path);
}

}
