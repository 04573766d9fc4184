#include "tool/formats/WholeFile.h"

#include "tool/Errors.h"
#include "tool/Paths.h"

#include <fmt/format.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <span>
#include <system_error>

namespace cubes::tool {

namespace fs = std::filesystem;

namespace {

// The standard streams keep their reason in errno, if anywhere.
[[noreturn]] void fail() {
    throw FormatError(errno ? std::generic_category().message(errno) : std::string("input/output error"));
}

// Few large writes instead of many small ones.
constexpr std::size_t blockSize = std::size_t{1} << 20;

template <typename Work>
auto describing(Work const& work) {
    try {
        return work();
    } catch (std::system_error const& error) {
        throw FormatError(error.code().message());
    }
}

}

// Replacing a directory, a device or a pipe is never intended.
void requireWritablePath(std::string const& path) {
    std::error_code ignored;
    auto const file = toPath(path);
    auto const directory = file.parent_path();
    if (!directory.empty() && !fs::is_directory(directory, ignored))
        throw FormatError(fmt::format("there is no directory {}", toText(directory)));
    auto const status = fs::status(file, ignored);
    if (fs::is_directory(status)) throw FormatError("it is a directory");
    if (fs::exists(status) && !fs::is_regular_file(status)) throw FormatError("it is not a regular file");
}

std::string readWholeFile(std::string const& path) {
    std::error_code ignored;
    fs::path const file = toPath(path);
    if (fs::is_directory(file, ignored)) throw FormatError("it is a directory");
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    if (!stream) fail();
    auto const size = fs::is_regular_file(file, ignored) ? fs::file_size(file, ignored) : 0;
    std::string bytes;
    bytes.reserve(ignored ? 0 : size);
    char block[1 << 16];
    while (stream.read(block, sizeof block) || stream.gcount() > 0)
        bytes.append(block, static_cast<std::size_t>(stream.gcount()));
    if (stream.bad()) fail();
    if (bytes.find('\0') != std::string::npos) throw FormatError("it is not a text file: it holds zero bytes");
    return bytes;
}

NewFile::NewFile(std::string const& path) {
    requireWritablePath(path);
    temporary_ = describing([&] { return std::make_unique<platform::TemporaryFile>(path); });
}

void NewFile::write(std::string_view bytes) {
    waiting_ += bytes;
    if (waiting_.size() >= blockSize) describing([&] { writeWaiting(); });
}

void NewFile::writeWaiting() {
    temporary_->file().writeAt(written_, std::as_bytes(std::span(waiting_)));
    written_ += waiting_.size();
    waiting_.clear();
}

void NewFile::commit() {
    try {
        writeWaiting();
        temporary_->commit();
    } catch (std::system_error const& error) {
        char const* const state = temporary_->isPublished() ? platform::mayBeLost : "";
        throw FormatError(state + error.code().message());
    }
}

}
