#include "host/platform/Paths.h"

#include <algorithm>

namespace cubes::platform {

char pathDelimiter() {
    return '/';
}

std::filesystem::path toPath(std::string_view text) {
    return std::filesystem::path(text);
}

std::string fromPath(std::filesystem::path const& path) {
    return path.string();
}

std::filesystem::path fromRoot(std::filesystem::path const& path) {
    std::error_code error;
    auto const absolute = std::filesystem::absolute(path, error);
    return error ? path : absolute;
}

std::filesystem::path normalForm(std::filesystem::path const& path) {
    return fromRoot(path).lexically_normal();
}

std::filesystem::path withoutLinks(std::filesystem::path const& path) {
    std::error_code error;
    auto const canonical = std::filesystem::weakly_canonical(fromRoot(path), error);
    return error ? normalForm(path) : canonical;
}

std::string resolved(std::string const& directory, std::string const& path) {
    return fromPath(toPath(directory) / toPath(path));
}

std::string withNativeDelimiters(std::string text) {
    std::replace(text.begin(), text.end(), '\\', '/');
    return text;
}

std::string foldCase(std::string const& path) {
    return path;
}

}
