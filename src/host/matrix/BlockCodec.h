#pragma once

#include "host/matrix/FileIndex.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

struct libdeflate_compressor;
struct libdeflate_decompressor;

namespace cubes::matrix {

/// Encodes a chunk of elements as HDF5's own shuffle and deflate filters do, but faster. One thread at a time may use
/// an object.
class BlockEncoder {
public:
    explicit BlockEncoder(Filters filters);
    ~BlockEncoder();
    BlockEncoder(BlockEncoder const&) = delete;
    BlockEncoder& operator=(BlockEncoder const&) = delete;

    std::vector<std::byte> encode(std::span<float const> elements);

private:
    bool const shuffles_;
    std::unique_ptr<libdeflate_compressor, void (*)(libdeflate_compressor*)> compressor_;
    std::vector<std::uint8_t> shuffled_;
};

class BlockDecoder {
public:
    explicit BlockDecoder(Filters filters);
    ~BlockDecoder();
    BlockDecoder(BlockDecoder const&) = delete;
    BlockDecoder& operator=(BlockDecoder const&) = delete;

    /// Decodes a chunk. `skipped` has a bit for each filter that the writer skipped.
    /// Throws std::runtime_error unless the result has exactly the size of `elements`.
    void decode(std::span<std::byte const> stored, unsigned skipped, std::span<float> elements);

private:
    bool const shuffles_;
    std::unique_ptr<libdeflate_decompressor, void (*)(libdeflate_decompressor*)> decompressor_;
    std::vector<std::uint8_t> shuffled_;
};

/// A matrix divided into bands of whole rows, each stored as one chunk. The last chunk is padded to full size.
struct Bands {
    int rows = 0;
    int columns = 0;
    /// Rows of a band; the last one may have fewer.
    int bandRows = 1;

    std::size_t count() const { return static_cast<std::size_t>((rows - 1) / bandRows + 1); }
    std::size_t of(int row) const { return static_cast<std::size_t>(row / bandRows); }
    int firstRow(std::size_t band) const { return static_cast<int>(band) * bandRows; }
    /// The elements of a stored chunk.
    std::size_t chunkSize() const { return static_cast<std::size_t>(bandRows) * static_cast<std::size_t>(columns); }
    /// The range of a band within all elements.
    template <typename Element>
    std::span<Element> elements(std::size_t band, Element* all) const {
        auto const first = static_cast<std::size_t>(firstRow(band));
        auto const behind = std::min(first + static_cast<std::size_t>(bandRows), static_cast<std::size_t>(rows));
        return {all + first * static_cast<std::size_t>(columns), (behind - first) * static_cast<std::size_t>(columns)};
    }
};

/// Inflates the stored bytes of a band to its place among all elements. Without bytes its elements stay 0. Throws like
/// decode.
void inflateBand(BlockDecoder& decoder, Bands const& bands, std::size_t band, std::span<std::byte const> stored,
    unsigned skipped, float* all);

/// Inflates a band with the decoder of its thread.
using InflateBand = std::function<void(BlockDecoder&, std::size_t band)>;
/// Calls `inflate` for all bands but one on all cores.
void inflateAllBut(std::optional<std::size_t> done, Bands const& bands, Filters filters, InflateBand const& inflate);

}
