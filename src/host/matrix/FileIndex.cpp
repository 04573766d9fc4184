#include "host/matrix/FileIndex.h"

#include <xxhash.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <stdexcept>

namespace cubes::matrix {

using hdf5::Extent;
using hdf5::IndexRecord;

namespace {

constexpr std::uint32_t selectedLinkFlag = 1;
enum class StorageCode : std::uint32_t { throughHdf5 = 0, plain = 1, deflate = 2, shuffleAndDeflate = 3 };

// The part of the record that is specific to matrix files; docs/matrix-file.md has the same table.
struct Details {
    std::int32_t rows;
    std::int32_t columns;
    std::int32_t type;
    std::int32_t kind;
    std::uint32_t flags;
    StorageCode storage;
    std::int32_t bandRows;
    std::uint32_t nameLength;
    std::uint64_t elements;
    std::uint64_t elementsSize;
    std::uint64_t chunkTable;
    std::uint64_t zones;
    std::array<char, 640> name;
};
static_assert(sizeof(Details) == IndexRecord::detailBytes);

template <typename Value>
std::vector<Value> readAt(std::span<std::byte const> file, std::uint64_t offset, std::size_t count) {
    std::vector<Value> values(count);
    std::memcpy(values.data(), file.data() + offset, count * sizeof(Value));
    return values;
}

// Cannot overflow: both factors have 31 bits.
std::uint64_t elementsBytes(std::int32_t rows, std::int32_t columns) {
    return static_cast<std::uint64_t>(rows) * static_cast<std::uint64_t>(columns) * sizeof(float);
}

Extent zonesExtent(std::uint64_t offset, std::int32_t rows) {
    return {offset, offset == 0 ? 0 : static_cast<std::uint64_t>(rows) * sizeof(std::int32_t)};
}

std::vector<std::int32_t> zonesAt(std::span<std::byte const> file, std::uint64_t offset, std::int32_t rows) {
    if (offset == 0) return {};
    return readAt<std::int32_t>(file, offset, static_cast<std::size_t>(rows));
}

// Everything in a file except its structure.
std::vector<Extent> dataOf(FileIndex const& index) {
    std::vector<Extent> data = {index.places.elements};
    if (index.places.zones != 0) data.push_back(zonesExtent(index.places.zones, index.header.rows));
    for (ChunkPlace const& chunk : index.places.chunks)
        if (chunk.offset != 0) data.push_back({chunk.offset, chunk.size});
    std::erase_if(data, [](Extent const& extent) { return extent.size == 0; });
    return data;
}

bool dimensionsHold(Details const& details) {
    return details.rows > 0 && details.columns > 0 && details.nameLength <= details.name.size() &&
           (details.zones == 0 || details.rows == details.columns);
}

std::size_t bandsOf(Details const& details) {
    return static_cast<std::size_t>((details.rows - 1) / details.bandRows + 1);
}

// The places of the chunks are checked once they are read.
bool placesHold(Details const& details, std::uint64_t size) {
    if (!dimensionsHold(details) || !isWithin(zonesExtent(details.zones, details.rows), size)) return false;
    if (details.storage == StorageCode::plain)
        return details.elements % alignof(float) == 0 && isWithin({details.elements, details.elementsSize}, size) &&
               details.elementsSize >= elementsBytes(details.rows, details.columns);
    return (details.storage == StorageCode::deflate || details.storage == StorageCode::shuffleAndDeflate) &&
           details.bandRows > 0 && details.bandRows <= details.rows &&
           isWithin({details.chunkTable, bandsOf(details) * sizeof(ChunkPlace)}, size);
}

bool chunksHold(std::vector<ChunkPlace> const& chunks, std::uint64_t size) {
    return std::ranges::all_of(chunks, [size](ChunkPlace const& chunk) {
        return isWithin({chunk.offset, chunk.size}, size);
    });
}

FileHeader headerOf(Details const& details, std::span<std::byte const> file) {
    return {details.rows, details.columns, static_cast<RkMatrixType>(details.type),
        static_cast<RkMatrixKind>(details.kind), std::string(details.name.data(), details.nameLength),
        zonesAt(file, details.zones, details.rows), (details.flags & selectedLinkFlag) != 0};
}

FilePlaces placesOf(Details const& details, std::span<std::byte const> file) {
    if (details.storage == StorageCode::plain)
        return {{details.bandRows, Filters::none}, {details.elements, details.elementsSize}, 0, {}, details.zones};
    Filters const filters = details.storage == StorageCode::deflate ? Filters::deflate : Filters::shuffleAndDeflate;
    return {{details.bandRows, filters}, {}, details.chunkTable,
        readAt<ChunkPlace>(file, details.chunkTable, bandsOf(details)), details.zones};
}

std::optional<FileIndex> indexOf(hdf5::FoundRecord const& found, std::span<std::byte const> file) {
    auto const& record = found.record;
    Details details;
    std::memcpy(&details, record.details.data(), sizeof details);
    bool const isOurs = record.holds == IndexRecord::Holds::matrix && record.fileSize == file.size();
    if (!isOurs || !placesHold(details, file.size())) return std::nullopt;
    FileIndex index{headerOf(details, file), placesOf(details, file), record.content};
    if (!chunksHold(index.places.chunks, file.size())) return std::nullopt;
    if (hdf5::structureChecksum(file, found.offset, dataOf(index)) != record.structure) return std::nullopt;
    return index;
}

StorageCode storageCodeOf(FileIndex const& index) {
    if (index.header.name.size() > sizeof(Details::name)) return StorageCode::throughHdf5;
    switch (index.places.layout.filters) {
    case Filters::none:
        return StorageCode::plain;
    case Filters::deflate:
        return StorageCode::deflate;
    case Filters::shuffleAndDeflate:
        break;
    }
    return StorageCode::shuffleAndDeflate;
}

Details detailsOf(FileIndex const& index) {
    FileHeader const& header = index.header;
    FilePlaces const& places = index.places;
    Details details{};
    details.rows = header.rows;
    details.columns = header.columns;
    details.type = header.type.value_or(mtMatrixCube);
    details.kind = header.kind.value_or(mkDefault);
    details.flags = header.selectedLink ? selectedLinkFlag : 0;
    details.storage = storageCodeOf(index);
    details.bandRows = places.layout.rows;
    details.elements = places.elements.offset;
    details.elementsSize = places.elements.size;
    details.chunkTable = places.chunkTable;
    details.zones = places.zones;
    details.nameLength = static_cast<std::uint32_t>(std::min(header.name.size(), details.name.size()));
    std::copy_n(header.name.begin(), details.nameLength, details.name.begin());
    return details;
}

std::span<std::byte const> bytesOf(FileHeader const& header, float const* elements) {
    return std::as_bytes(std::span(
        elements, elementCount(static_cast<std::uint64_t>(header.rows), static_cast<std::uint64_t>(header.columns))));
}

// The record of the first version, which only plain files have: all structure precedes the elements.
struct FirstRecord {
    std::array<char, 8> magic;
    std::uint64_t structure;
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
static_assert(sizeof(FirstRecord) == 512);

constexpr std::array<char, 8> firstMagic = {'C', 'U', 'B', 'E', 'I', 'D', 'X', '1'};
constexpr std::size_t firstSearched = 8192;

// Excludes its own bytes: the hash of what precedes them is the seed for what follows.
std::uint64_t firstChecksum(std::span<std::byte const> structure, std::size_t record) {
    std::size_t const own = record + offsetof(FirstRecord, structure);
    auto const behind = structure.subspan(own + sizeof(std::uint64_t));
    return XXH3_64bits_withSeed(behind.data(), behind.size(), XXH3_64bits(structure.data(), own));
}

std::optional<FileIndex> firstIndexAt(std::span<std::byte const> file, std::size_t offset) {
    FirstRecord record;
    std::memcpy(&record, file.data() + offset, sizeof record);
    bool const isPossible = record.rows > 0 && record.columns > 0 && record.fileSize == file.size() &&
                            record.nameLength <= record.name.size() && record.elements % alignof(float) == 0;
    if (!isPossible) return std::nullopt;
    Extent const elements = {record.elements, elementsBytes(record.rows, record.columns)};
    if (!isWithin(elements, file.size()) || !isWithin(zonesExtent(record.zones, record.rows), file.size()))
        return std::nullopt;
    std::uint64_t const end = record.zones == 0 ? record.elements : std::min(record.elements, record.zones);
    if (offset + sizeof record > end || firstChecksum(file.first(end), offset) != record.structure) return std::nullopt;
    FileHeader header{record.rows, record.columns, static_cast<RkMatrixType>(record.type),
        static_cast<RkMatrixKind>(record.kind), std::string(record.name.data(), record.nameLength),
        zonesAt(file, record.zones, record.rows), false};
    return FileIndex{std::move(header), {{record.rows, Filters::none}, elements, 0, {}, record.zones}};
}

std::optional<FileIndex> findFirstIndex(std::span<std::byte const> file) {
    std::size_t const end = std::min(file.size(), firstSearched);
    for (std::size_t offset = 0; offset + sizeof(FirstRecord) <= end; offset += sizeof firstMagic) {
        if (std::memcmp(file.data() + offset, firstMagic.data(), sizeof firstMagic) != 0) continue;
        if (auto index = firstIndexAt(file, offset)) return index;
    }
    return std::nullopt;
}

}

bool isWithin(Extent const& extent, std::uint64_t size) {
    return extent.offset <= size && extent.size <= size - extent.offset;
}

std::size_t elementCount(std::uint64_t rows, std::uint64_t columns) {
    constexpr auto largest = static_cast<std::uint64_t>(std::numeric_limits<int>::max());
    constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::ptrdiff_t>::max()) / sizeof(float);
    // Both dimensions fit into 31 bits, so their product cannot overflow.
    if (rows < 1 || columns < 1 || rows > largest || columns > largest || rows * columns > most)
        throw std::length_error(
            "a matrix of " + std::to_string(rows) + " x " + std::to_string(columns) + " elements is not possible");
    return static_cast<std::size_t>(rows * columns);
}

MatrixHash::MatrixHash(FileHeader const& header) : zones_(header.zones) {
    std::array<std::int32_t, 2> const shape = {header.rows, header.columns};
    hash_.add(std::as_bytes(std::span(shape)));
}

hdf5::Id128 MatrixHash::finish() {
    hash_.add(std::as_bytes(std::span(zones_)));
    return hash_.id();
}

hdf5::Id128 contentId(FileHeader const& header, float const* elements) {
    MatrixHash hash(header);
    hash.add(bytesOf(header, elements));
    return hash.finish();
}

bool RecordedContent::agreesWith(FileHeader const& header, float const* elements) const {
    if (id.isKnown() && hasZones) return contentId(header, elements) == id;
    if (id.isKnown()) return contentId({.rows = header.rows, .columns = header.columns}, elements) == id;
    auto const bytes = bytesOf(header, elements);
    return !checksum || XXH3_64bits(bytes.data(), bytes.size()) == *checksum;
}

std::string reasonOfDamage(std::string const& subject) {
    return hdf5::reasonOfDamage(subject) + "; restore it, or accept the change with cubes import --ignore-checksum";
}

IndexRecord indexRecord(
    std::span<std::byte const> file, std::uint64_t recordOffset, FileIndex const& index, IndexRecord record) {
    Details details = detailsOf(index);
    auto const structure = hdf5::structureChecksum(file, recordOffset, dataOf(index));
    if (!structure) details.storage = StorageCode::throughHdf5;
    record.structure = structure.value_or(0);
    record.fileSize = file.size();
    std::memcpy(record.details.data(), &details, sizeof details);
    return record;
}

std::optional<FileIndex> findIndex(std::span<std::byte const> file) {
    if (auto const found = hdf5::findRecord(file)) return indexOf(*found, file);
    return findFirstIndex(file);
}

}
