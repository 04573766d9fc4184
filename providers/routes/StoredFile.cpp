#include "StoredFile.h"

#include "Hdf5Memory.h"
#include "platform/NarrowText.h"
#include "platform/NewFile.h"

#include <filesystem>
#include <fstream>

namespace cubes::routes {

namespace {

namespace fs = std::filesystem;

fs::path toPath(std::string const& narrow) {
    std::string const utf8 = platform::toUtf8(narrow);
    return fs::path(std::u8string(utf8.begin(), utf8.end()));
}

// Anything else than a regular file could hold us up.
void requireRegular(fs::path const& path) {
    std::error_code error;
    auto const status = fs::status(path, error);
    if (status.type() == fs::file_type::not_found) throw std::runtime_error("there is no such file");
    if (!error && !fs::is_regular_file(status)) throw std::runtime_error("it is no regular file");
}

std::vector<std::byte> bytesOf(fs::path const& path) {
    std::ifstream file(path, std::ios::binary);
    file.exceptions(std::ios::badbit | std::ios::failbit);
    std::vector<std::byte> bytes(fs::file_size(path));
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return bytes;
}

void putInPlace(std::string const& path, std::vector<std::byte> const& bytes) {
    platform::NewFile file(path);
    file.write(bytes);
    file.putInPlace();
}

}

void readStoredFile(std::string const& path, FileContent const& read) {
    requireRegular(toPath(path));
    hdf5::Session const session;
    hdf5::Handle const file = hdf5::openFile(path);
    read(file.get());
}

void writeStoredFile(std::string const& path, FileContent const& write) {
    auto const made = [&write] {
        hdf5::Session const session;
        hdf5::MemoryFile file;
        write(file.get());
        return file.finish();
    };
    putInPlace(path, made());
}

void restampStoredFile(std::string const& path, Stamp const& stamp) {
    requireRegular(toPath(path));
    auto const stamped = [&] {
        hdf5::Session const session;
        hdf5::MemoryFile file(bytesOf(toPath(path)));
        writeStamp(file.get(), stamp);
        return file.finish();
    };
    putInPlace(path, stamped());
}

}
