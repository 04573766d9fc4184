#include "host/platform/Files.h"

#include "host/platform/Paths.h"

#include <filesystem>
#include <system_error>

namespace cubes::platform {

namespace fs = std::filesystem;

bool exists(std::string const& path) {
    std::error_code ignored;
    return !path.empty() && fs::exists(toPath(path), ignored);
}

bool isDirectory(std::string const& path) {
    std::error_code ignored;
    return fs::is_directory(toPath(path), ignored);
}

bool isRegularFile(std::string const& path) {
    std::error_code ignored;
    return fs::is_regular_file(toPath(path), ignored);
}

bool createDirectories(std::string const& path) {
    std::error_code error;
    fs::create_directories(toPath(path), error);
    return !error && isDirectory(path);
}

bool removeDirectory(std::string const& path, bool withContent) {
    if (!isDirectory(path)) return false;
    std::error_code error;
    if (withContent)
        fs::remove_all(toPath(path), error);
    else
        fs::remove(toPath(path), error);
    return !error;
}

bool removeFile(std::string const& path) {
    if (!isRegularFile(path)) return false;
    std::error_code error;
    return fs::remove(toPath(path), error) && !error;
}

bool copy(std::string const& source, std::string const& target, bool overwrite) {
    if (isSamePath(source, target)) return false;
    auto const existing = overwrite ? fs::copy_options::overwrite_existing : fs::copy_options::none;
    std::error_code error;
    fs::copy(toPath(source), toPath(target), existing | fs::copy_options::recursive, error);
    return !error;
}

bool copyFile(std::string const& source, std::string const& target) {
    if (!isRegularFile(source) || isDirectory(target) || isSamePath(source, target)) return false;
    fs::path const beside = toPath(target + ".copy");
    std::error_code error;
    fs::copy_file(toPath(source), beside, fs::copy_options::overwrite_existing, error);
    if (!error) fs::rename(beside, toPath(target), error);
    if (!error) return true;
    std::error_code ignored;
    fs::remove(beside, ignored);
    return false;
}

std::string absolutePath(std::string const& path) {
    std::error_code error;
    fs::path const absolute = fs::absolute(toPath(path), error);
    return fromPath((error ? toPath(path) : absolute).lexically_normal());
}

bool isSamePath(std::string const& first, std::string const& second) {
    if (first.empty() || second.empty()) return false;
    auto const normal = [](std::string const& path) { return foldCase(absolutePath(withNativeDelimiters(path))); };
    return normal(first) == normal(second);
}

}
