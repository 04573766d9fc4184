#include "host/matrix/FileIndex.h"

#include <xxhash.h>

#include <algorithm>
#include <bit>
#include <cstring>

namespace cubes::matrix {

namespace {

static_assert(std::endian::native == std::endian::little, "elements and records go out as they lie in memory");

// The record as it lies in the file; docs/matrix-file.md has the same table.
struct Record {
    std::array<char, 8> magic;
    std::uint64_t structureChecksum;
    std::uint64_t fileSize;
    std::uint64_t elements;
    std::uint64_t zones;
    std::int32_t rows;
    std::int32_t columns;
    std::int32_t type;
    std::int32_t kind;
    std::uint64_t nameLength;
    std::array<char, 448> name;
};
static_assert(sizeof(Record) == FileIndex::bytes);

constexpr std::array<char, 8> magic = {'C', 'U', 'B', 'E', 'I', 'D', 'X', '1'};
// HDF5 puts the record behind its own structure, near the beginning.
constexpr std::size_t searched = 8192;
// A longer name could push structure behind the elements.
constexpr std::size_t longestName = 200;

std::uint64_t zonesBytes(Record const& record) {
    return record.zones == 0 ? 0 : static_cast<std::uint64_t>(record.rows) * sizeof(std::int32_t);
}

std::uint64_t elementsBytes(Record const& record) {
    return elementCount(static_cast<std::uint64_t>(record.rows), static_cast<std::uint64_t>(record.columns)) *
           sizeof(float);
}

bool lies(std::uint64_t offset, std::uint64_t length, std::uint64_t size) {
    return offset <= size && length <= size - offset;
}

bool placesHold(Record const& record, std::uint64_t size) {
    return record.rows > 0 && record.columns > 0 && record.fileSize == size && record.elements % alignof(float) == 0 &&
           lies(record.elements, elementsBytes(record), size) && lies(record.zones, zonesBytes(record), size) &&
           record.nameLength <= record.name.size();
}

std::uint64_t structureEnd(Record const& record) {
    return matrix::structureEnd({.elements = record.elements, .zones = record.zones});
}

// The structure's checksum leaves its own place out.
std::uint64_t structureChecksum(std::span<std::byte const> structure, std::size_t index) {
    std::size_t const own = index + offsetof(Record, structureChecksum);
    auto const behind = structure.subspan(own + sizeof(std::uint64_t));
    return XXH3_64bits_withSeed(behind.data(), behind.size(), XXH3_64bits(structure.data(), own));
}

std::optional<Record> recordAt(std::span<std::byte const> file, std::size_t offset) {
    Record record;
    std::memcpy(&record, file.data() + offset, sizeof record);
    if (record.magic != magic || !placesHold(record, file.size())) return std::nullopt;
    if (offset + sizeof record > structureEnd(record)) return std::nullopt;
    auto const structure = file.first(structureEnd(record));
    if (structureChecksum(structure, offset) != record.structureChecksum) return std::nullopt;
    return record;
}

std::vector<std::int32_t> zonesOf(Record const& record, std::span<std::byte const> file) {
    if (record.zones == 0) return {};
    std::vector<std::int32_t> zones(static_cast<std::size_t>(record.rows));
    std::memcpy(zones.data(), file.data() + record.zones, zonesBytes(record));
    return zones;
}

FileIndex decode(Record const& record, std::span<std::byte const> file, std::size_t offset) {
    FileHeader header;
    header.rows = record.rows;
    header.columns = record.columns;
    header.type = static_cast<RkMatrixType>(record.type);
    header.kind = static_cast<RkMatrixKind>(record.kind);
    header.name.assign(record.name.data(), record.nameLength);
    header.zones = zonesOf(record, file);
    return {std::move(header), {offset, record.elements, record.zones, record.fileSize}};
}

}

std::uint64_t structureEnd(FilePlaces const& places) {
    return places.zones == 0 ? places.elements : std::min(places.elements, places.zones);
}

std::optional<std::array<std::byte, FileIndex::bytes>> encodeIndex(
    FileIndex const& index, std::span<std::byte> structure) {
    if (index.header.name.size() > longestName) return std::nullopt;
    Record record{};
    record.magic = magic;
    record.fileSize = index.places.size;
    record.elements = index.places.elements;
    record.zones = index.places.zones;
    record.rows = index.header.rows;
    record.columns = index.header.columns;
    record.type = index.header.type.value_or(mtMatrixCube);
    record.kind = index.header.kind.value_or(mkDefault);
    record.nameLength = index.header.name.size();
    std::copy(index.header.name.begin(), index.header.name.end(), record.name.begin());
    std::size_t const place = index.places.index;
    if (place + sizeof record > structure.size()) return std::nullopt;
    std::memcpy(structure.data() + place, &record, sizeof record);
    record.structureChecksum = structureChecksum(structure, place);
    return std::bit_cast<std::array<std::byte, FileIndex::bytes>>(record);
}

std::optional<FileIndex> findIndex(std::span<std::byte const> file) {
    std::size_t const end = std::min(file.size(), searched);
    for (std::size_t offset = 0; offset + sizeof(Record) <= end; offset += sizeof magic) {
        if (std::memcmp(file.data() + offset, magic.data(), sizeof magic) != 0) continue;
        if (auto const record = recordAt(file, offset)) return decode(*record, file, offset);
    }
    return std::nullopt;
}

}
