#include "host/matrix/MatrixFileWriter.h"

#include "host/matrix/BlockCodec.h"
#include "host/platform/File.h"
#include "host/platform/Parallel.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <span>
#include <stdexcept>
#include <vector>

namespace cubes::matrix {

namespace {

// HDF5 allows chunks of at most one byte less than 4 GiB.
constexpr std::uint64_t largestChunk = 0xFFFFFFFF;
// Whole chunks with a multiple of this many rows are whole pages, so the chunks follow each other without a gap.
constexpr std::uint64_t rowsOfWholePages = 1024;
// The system caches the data of one large call in larger pages, and a memory map of larger pages is read faster (100
// MB: 7.4 ms, against 9.0 after writes of 1 MiB). Flushing starts between the pieces.
constexpr std::size_t piece = std::size_t{16} << 20;
// Large enough to compress well, small enough for a core's cache and for reading a single cell.
constexpr std::size_t bandBytes = std::size_t{256} << 10;
// Compressed together before they are written, so that memory use is bounded.
constexpr std::size_t bandsAtATime = 64;

// The last step: the structure is complete, and the record describes it.
void writeRecord(platform::File& file, std::uint64_t offset, MatrixContent const& content, FilePlaces places,
    hdf5::Id128 const& id) {
    hdf5::IndexRecord record;
    record.content = id;
    record.provenance = content.provenance.digest();
    record.stamp = content.stamp;
    auto const view = platform::FileView::open(file.path());
    file.writeAt(offset, hdf5::encode(indexRecord(view.bytes(), offset, {content.header, std::move(places)}, record)));
}

int plainChunkRows(FileHeader const& header, std::uint64_t limit) {
    auto const rowBytes = static_cast<std::uint64_t>(header.columns) * sizeof(float);
    auto const rows = static_cast<std::uint64_t>(header.rows);
    std::uint64_t fitting = limit / rowBytes;
    if (fitting == 0) throw std::length_error("a row is longer than a matrix file can hold");
    if (fitting >= rows) return header.rows;
    if (fitting > rowsOfWholePages) fitting -= fitting % rowsOfWholePages;
    return static_cast<int>(fitting);
}

// One contiguous run of a matrix's elements in the file.
struct Run {
    hdf5::Extent place;
    std::span<std::byte const> bytes;
};

std::vector<Run> runsOf(OmxWriter const& writer, MatrixContent const& content, Bands const& bands) {
    std::vector<Run> runs;
    for (std::size_t band = 0; band < bands.count(); ++band) {
        ChunkPlace const place = writer.chunkPlace(bands.firstRow(band));
        if (place.offset == 0) throw std::runtime_error("HDF5 allocated no space for the elements");
        runs.push_back({{place.offset, place.size}, std::as_bytes(bands.elements(band, content.elements))});
    }
    return runs;
}

hdf5::Id128 writeRuns(platform::File& file, FileHeader const& header, std::vector<Run> const& runs) {
    MatrixHash hash(header);
    for (auto const& [place, all] : runs)
        for (std::size_t done = 0; done < all.size(); done += piece) {
            auto const bytes = all.subspan(done, std::min(piece, all.size() - done));
            hash.add(bytes);
            file.writeAt(place.offset + done, bytes);
            file.beginFlush(place.offset + done, bytes.size());
        }
    return hash.finish();
}

// All elements as one run; an empty one when there are gaps between the chunks.
hdf5::Extent placeOf(std::vector<Run> const& runs) {
    auto const gap = [](Run const& a, Run const& b) { return a.place.offset + a.bytes.size() != b.place.offset; };
    if (std::ranges::adjacent_find(runs, gap) != runs.end()) return {};
    std::uint64_t const begin = runs.front().place.offset;
    return {begin, runs.back().place.offset + runs.back().place.size - begin};
}

Bands deflateBands(FileHeader const& header) {
    auto const rowBytes = static_cast<std::size_t>(header.columns) * sizeof(float);
    if (rowBytes > largestChunk) throw std::length_error("a row is longer than a matrix file can hold");
    auto const rows = std::clamp<std::size_t>(bandBytes / rowBytes, 1, static_cast<std::size_t>(header.rows));
    return {header.rows, header.columns, static_cast<int>(rows)};
}

// Zeros by their bits: a negative zero is stored.
bool isZero(std::span<float const> elements) {
    auto const bytes = std::as_bytes(elements);
    return bytes[0] == std::byte{0} && std::memcmp(bytes.data(), bytes.data() + 1, bytes.size() - 1) == 0;
}

// A stored chunk is always whole: the last one is padded with zeros.
std::vector<std::byte> encodeWhole(BlockEncoder& encoder, std::span<float const> elements, std::size_t size) {
    if (elements.size() == size) return encoder.encode(elements);
    std::vector<float> whole(elements.begin(), elements.end());
    whole.resize(size);
    return encoder.encode(whole);
}

// Shuffling makes full matrices smaller and sparse ones, where whole elements repeat, larger. The first band from the
// middle on that is not all zero decides.
Filters chooseFilters(Bands const& bands, float const* elements) {
    for (std::size_t i = 0; i < bands.count(); ++i) {
        auto const sample = bands.elements((bands.count() / 2 + i) % bands.count(), elements);
        if (isZero(sample)) continue;
        BlockEncoder plain(Filters::deflate);
        BlockEncoder shuffling(Filters::shuffleAndDeflate);
        return shuffling.encode(sample).size() < plain.encode(sample).size() ? Filters::shuffleAndDeflate
                                                                             : Filters::deflate;
    }
    return Filters::deflate;
}

// The stored forms of some bands; empty for zeros.
std::vector<std::vector<std::byte>> encodeBands(
    Bands const& bands, float const* elements, std::size_t first, std::size_t count, Filters filters) {
    std::vector<std::vector<std::byte>> stored(count);
    platform::inParallel(count, [&] {
        auto const encoder = std::make_shared<BlockEncoder>(filters);
        return [&, encoder](std::size_t i) {
            auto const band = bands.elements(first + i, elements);
            if (!isZero(band)) stored[i] = encodeWhole(*encoder, band, bands.chunkSize());
        };
    });
    return stored;
}

void writeBands(OmxWriter& writer, Bands const& bands, float const* elements, Filters filters) {
    for (std::size_t first = 0; first < bands.count(); first += bandsAtATime) {
        auto const stored = encodeBands(bands, elements, first, std::min(bandsAtATime, bands.count() - first), filters);
        for (std::size_t i = 0; i < stored.size(); ++i)
            if (!stored[i].empty()) writer.writeChunk(bands.firstRow(first + i), stored[i]);
    }
}

std::vector<ChunkPlace> chunksOf(OmxWriter const& writer, Bands const& bands) {
    std::vector<ChunkPlace> chunks;
    for (std::size_t band = 0; band < bands.count(); ++band) chunks.push_back(writer.chunkPlace(bands.firstRow(band)));
    return chunks;
}

void writeDeflate(platform::File& file, MatrixContent const& content) {
    Bands const bands = deflateBands(content.header);
    ChunkLayout const layout{bands.bandRows, chooseFilters(bands, content.elements)};
    OmxWriter writer(file, content, layout);
    writeBands(writer, bands, content.elements, layout.filters);
    auto chunks = chunksOf(writer, bands);
    std::uint64_t const chunkTable = writer.writeChunkTable(chunks);
    auto const id = contentId(content.header, content.elements);
    writer.finish(id);
    FilePlaces places{layout, {}, chunkTable, std::move(chunks), writer.zonesOffset()};
    writeRecord(file, writer.recordOffset(), content, std::move(places), id);
}

}

void writeMatrixFile(platform::File& file, MatrixContent const& content, Storage storage) {
    if (storage == Storage::deflate || content.header.selectedLink) return writeDeflate(file, content);
    writePlainInChunks(file, content, largestChunk);
}

void writePlainInChunks(platform::File& file, MatrixContent const& content, std::uint64_t limit) {
    FileHeader const& header = content.header;
    Bands const bands{header.rows, header.columns, plainChunkRows(header, limit)};
    ChunkLayout const layout{bands.bandRows, Filters::none};
    OmxWriter writer(file, content, layout);
    auto const runs = runsOf(writer, content, bands);
    auto const id = writeRuns(file, header, runs);
    writer.finish(id);
    FilePlaces places{layout, placeOf(runs), 0, {}, writer.zonesOffset()};
    writeRecord(file, writer.recordOffset(), content, std::move(places), id);
}

}
