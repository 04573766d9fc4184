#include "host/matrix/DeflateStorage.h"

#include "host/matrix/BlockCodec.h"
#include "host/matrix/OmxWriter.h"
#include "host/platform/Parallel.h"

#include <xxhash.h>

#include <algorithm>
#include <cstring>
#include <span>
#include <stdexcept>
#include <vector>

namespace cubes::matrix {

namespace {

// Large enough to compress well, small enough for a core's cache and for reading a single cell.
constexpr std::size_t bandBytes = std::size_t{256} << 10;
// Compressed at a time before they are written, so that memory stays bounded.
constexpr std::size_t bandsAtATime = 64;

/// A matrix cut into bands of whole rows.
class Bands {
public:
    Bands(FileHeader const& header, float const* elements)
        : columns_(static_cast<std::size_t>(header.columns)),
          rows_(static_cast<std::size_t>(std::clamp<std::size_t>(
              bandBytes / (columns_ * sizeof(float)), 1, static_cast<std::size_t>(header.rows)))),
          all_(elements, columns_ * static_cast<std::size_t>(header.rows)) {
        if (columns_ * sizeof(float) > 0xFFFFFFFF)
            throw std::length_error("a row is longer than a matrix file can hold");
    }

    int rows() const { return static_cast<int>(rows_); }
    std::size_t count() const { return (all_.size() + size() - 1) / size(); }
    std::size_t size() const { return rows_ * columns_; }
    int firstRow(std::size_t band) const { return static_cast<int>(band * rows_); }
    std::span<float const> elements(std::size_t band) const {
        return all_.subspan(band * size(), std::min(size(), all_.size() - band * size()));
    }
    std::span<float const> all() const { return all_; }

private:
    std::size_t columns_;
    std::size_t rows_;
    std::span<float const> all_;
};

// Zeros by their bits: a negative zero is stored.
bool isZero(std::span<float const> elements) {
    auto const bytes = std::as_bytes(elements);
    return bytes[0] == std::byte{0} && std::memcmp(bytes.data(), bytes.data() + 1, bytes.size() - 1) == 0;
}

// A stored chunk is always whole: the last one is filled up with zeros.
std::vector<std::byte> encodeWhole(BlockEncoder& encoder, std::span<float const> elements, std::size_t size) {
    if (elements.size() == size) return encoder.encode(elements);
    std::vector<float> whole(elements.begin(), elements.end());
    whole.resize(size);
    return encoder.encode(whole);
}

// Shuffling helps full matrices and harms sparse ones, where whole elements repeat. The first band
// from the middle on that is not all zero decides.
Filters chooseFilters(Bands const& bands) {
    for (std::size_t i = 0; i < bands.count(); ++i) {
        auto const sample = bands.elements((bands.count() / 2 + i) % bands.count());
        if (isZero(sample)) continue;
        BlockEncoder plain(Filters::deflate);
        BlockEncoder shuffling(Filters::shuffleAndDeflate);
        return shuffling.encode(sample).size() < plain.encode(sample).size() ? Filters::shuffleAndDeflate
                                                                             : Filters::deflate;
    }
    return Filters::deflate;
}

void writeBands(OmxWriter& writer, Bands const& bands, Filters filters) {
    for (std::size_t first = 0; first < bands.count(); first += bandsAtATime) {
        std::vector<std::vector<std::byte>> stored(std::min(bandsAtATime, bands.count() - first));
        platform::inParallel(stored.size(), [&](std::size_t i) {
            auto const elements = bands.elements(first + i);
            if (isZero(elements)) return;
            BlockEncoder encoder(filters);
            stored[i] = encodeWhole(encoder, elements, bands.size());
        });
        for (std::size_t i = 0; i < stored.size(); ++i)
            if (!stored[i].empty()) writer.writeChunk(bands.firstRow(first + i), stored[i]);
    }
}

}

void writeDeflate(platform::File& file, std::string const& table, FileHeader const& header, float const* elements) {
    Bands const bands(header, elements);
    Filters const filters = chooseFilters(bands);
    OmxWriter writer(file.path(), table, header, {bands.rows(), filters});
    writeBands(writer, bands, filters);
    auto const bytes = std::as_bytes(bands.all());
    writer.finish(XXH3_64bits(bytes.data(), bytes.size()));
}

}
