#include "StoredFile.h"

#include "Numbers.h"
#include "host/hdf5/MemoryFile.h"
#include "host/platform/Files.h"
#include "host/platform/TemporaryFile.h"

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

namespace cubes::routes {

using hdf5::IndexRecord;

namespace {

using Bytes = std::vector<std::byte>;

constexpr std::int32_t version = 1;
constexpr std::int32_t noCube = 0;
constexpr Key noKey = {-1, -1, -1, -1, -1, -1};

// The size is known only when the file is complete.
void writeSizeIntoRecord(Bytes& file) {
    auto found = hdf5::findRecord(file);
    if (!found) return;
    found->record.fileSize = file.size();
    std::ranges::copy(hdf5::encode(found->record), file.begin() + static_cast<std::ptrdiff_t>(found->offset));
}

void writeStamp(hid_t file, Stamp const& stamp) {
    std::int32_t const cubeType = stamp.cubeType.value_or(noCube);
    Key const key = stamp.key.value_or(noKey);
    writeAttribute(file, "cube_type", typeOf<std::int32_t>(), &cubeType, 1);
    writeAttribute(file, "key", typeOf<std::int16_t>(), key.data(), key.size());
}

Stamp readStamp(hdf5::GuardedFile const& file) {
    Key key{};
    auto const parts = readAttribute(file, "", "key", key.size());
    std::ranges::transform(parts, key.begin(), [](std::int64_t part) { return static_cast<std::int16_t>(part); });
    return {static_cast<std::int32_t>(readAttribute(file, "", "cube_type", 1)[0]), key};
}

void requireKind(hdf5::GuardedFile const& file, FileKind kind) {
    std::string const found = file.attribute("", "format") ? textAttribute(file, "", "format") : "something else";
    if (found != kind.format) throw std::runtime_error("it holds " + found + ", not " + std::string(kind.format));
    auto const number = readAttribute(file, "", "version", 1)[0];
    if (number != version) throw std::runtime_error("its version " + std::to_string(number) + " is unknown");
}

platform::File openContent(std::string const& path) {
    auto file = platform::File::openForReading(path);
    if (file.size() == 0) throw std::runtime_error("it is empty");
    return file;
}

void commit(std::string const& path, Bytes bytes) {
    writeSizeIntoRecord(bytes);
    platform::TemporaryFile file(path);
    file.file().writeAt(0, bytes);
    file.commit();
}

}

void readStoredFile(std::string const& path, FileKind kind,
    std::function<void(hdf5::GuardedFile const&, FileRoot const&)> const& read) {
    platform::File content = openContent(path);
    auto const found = hdf5::findRecord(content);
    hdf5::GuardedFile const file(std::move(content));
    requireKind(file, kind);
    bool const isRecorded = found && hdf5::hasRecordAt(file, found->offset);
    read(file, {readStamp(file), isRecorded ? found->record : IndexRecord{}});
}

void writeStoredFile(
    std::string const& path, FileKind kind, FileRoot const& root, std::function<void(hid_t)> const& write) {
    auto const made = [&] {
        hdf5::Session const session;
        hdf5::MemoryFile file;
        IndexRecord record = root.record;
        record.holds = kind.holds;
        hdf5::writeRecord(file.get(), record);
        hdf5::writeText(file.get(), "format", std::string(kind.format));
        writeAttribute(file.get(), "version", typeOf<std::int32_t>(), &version, 1);
        writeStamp(file.get(), root.stamp);
        write(file.get());
        return file.finish();
    };
    commit(path, made());
}

}
