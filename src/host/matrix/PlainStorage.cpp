#include "host/matrix/PlainStorage.h"

#include "host/matrix/FileIndex.h"
#include "host/matrix/OmxWriter.h"

#include <xxhash.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <vector>

namespace cubes::matrix {

namespace {

// One byte short of 4 GiB is the largest chunk that HDF5 takes.
constexpr std::uint64_t largestChunk = 0xFFFFFFFF;
// Whole chunks of this many rows are whole pages, so that one chunk follows another without a gap.
constexpr std::uint64_t rowsOfWholePages = 1024;
// Elements are checksummed in pieces that are still in the processor's cache when they are written.
constexpr std::size_t piece = std::size_t{1} << 20;

int plainChunkRows(FileHeader const& header, std::uint64_t limit) {
    auto const rowBytes = static_cast<std::uint64_t>(header.columns) * sizeof(float);
    auto const rows = static_cast<std::uint64_t>(header.rows);
    std::uint64_t fitting = limit / rowBytes;
    if (fitting == 0) throw std::length_error("a row is longer than a matrix file can hold");
    if (fitting >= rows) return header.rows;
    if (fitting > rowsOfWholePages) fitting -= fitting % rowsOfWholePages;
    return static_cast<int>(fitting);
}

class Checksum {
public:
    Checksum() : state_(XXH3_createState(), XXH3_freeState) {
        if (!state_) throw std::bad_alloc();
        XXH3_64bits_reset(state_.get());
    }
    void add(std::span<std::byte const> bytes) { XXH3_64bits_update(state_.get(), bytes.data(), bytes.size()); }
    std::uint64_t value() const { return XXH3_64bits_digest(state_.get()); }

private:
    std::unique_ptr<XXH3_state_t, decltype(&XXH3_freeState)> state_;
};

// One uninterrupted run of a matrix's elements in the file.
struct Run {
    std::uint64_t offset;
    std::span<std::byte const> bytes;
};

std::vector<Run> runsOf(OmxWriter const& writer, FileHeader const& header, int chunkRows, float const* elements) {
    auto const rowBytes = static_cast<std::size_t>(header.columns) * sizeof(float);
    auto const all = std::as_bytes(std::span(
        elements, elementCount(static_cast<std::uint64_t>(header.rows), static_cast<std::uint64_t>(header.columns))));
    std::vector<Run> runs;
    for (std::int64_t row = 0; row < header.rows; row += chunkRows) {
        auto const start = static_cast<std::size_t>(row) * rowBytes;
        auto const length = std::min(static_cast<std::size_t>(chunkRows) * rowBytes, all.size() - start);
        runs.push_back({writer.chunkOffset(static_cast<int>(row)), all.subspan(start, length)});
    }
    return runs;
}

std::uint64_t writeRuns(platform::File& file, std::vector<Run> const& runs) {
    Checksum checksum;
    for (Run const& run : runs)
        for (std::size_t done = 0; done < run.bytes.size(); done += piece) {
            auto const bytes = run.bytes.subspan(done, std::min(piece, run.bytes.size() - done));
            checksum.add(bytes);
            file.writeAt(run.offset + done, bytes);
            file.beginFlush(run.offset + done, bytes.size());
        }
    return checksum.value();
}

bool followEachOther(std::vector<Run> const& runs) {
    auto const gap = [](Run const& a, Run const& b) { return a.offset + a.bytes.size() != b.offset; };
    return std::adjacent_find(runs.begin(), runs.end(), gap) == runs.end();
}

// The index holds only if all structure lies in front: behind it there must be elements and zone
// numbers and nothing else.
bool structureIsInFront(FilePlaces const& places, std::uint64_t chunksEnd, std::size_t zones) {
    std::uint64_t const zonesEnd = places.zones + zones * sizeof(std::int32_t);
    return places.size == std::max(chunksEnd, zonesEnd) && places.index + FileIndex::bytes <= structureEnd(places);
}

void writeIndex(platform::File& file, FileIndex const& index) {
    std::vector<std::byte> structure(structureEnd(index.places));
    file.readAt(0, structure);
    if (auto const record = encodeIndex(index, structure)) file.writeAt(index.places.index, *record);
}

}

void writePlain(platform::File& file, std::string const& table, FileHeader const& header, float const* elements) {
    writePlainInChunks(file, table, header, elements, largestChunk);
}

void writePlainInChunks(platform::File& file, std::string const& table, FileHeader const& header, float const* elements,
    std::uint64_t limit) {
    int const chunkRows = plainChunkRows(header, limit);
    OmxWriter writer(file.path(), table, header, {chunkRows, Filters::none});
    auto const runs = runsOf(writer, header, chunkRows, elements);
    writer.finish(writeRuns(file, runs));
    FilePlaces const places{writer.indexOffset(), runs.front().offset, writer.zonesOffset(), file.size()};
    std::uint64_t const chunkBytes =
        static_cast<std::uint64_t>(chunkRows) * static_cast<std::uint64_t>(header.columns) * sizeof(float);
    if (followEachOther(runs) && structureIsInFront(places, runs.back().offset + chunkBytes, header.zones.size()))
        writeIndex(file, {header, places});
}

}
