#pragma once

#include "host/matrix/OmxWriter.h"

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

struct libdeflate_compressor;
struct libdeflate_decompressor;

namespace cubes::matrix {

/// Does to a chunk of elements what HDF5's own shuffle and deflate filters do, faster. One thread
/// at a time may use an object.
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
    std::vector<std::byte> shuffled_;
};

class BlockDecoder {
public:
    explicit BlockDecoder(Filters filters);
    ~BlockDecoder();
    BlockDecoder(BlockDecoder const&) = delete;
    BlockDecoder& operator=(BlockDecoder const&) = delete;

    /// Gives the elements of a chunk. `skipped` has a bit for each filter that the writer left out.
    /// Throws std::runtime_error unless they come to exactly the size of `elements`.
    void decode(std::span<std::byte const> stored, unsigned skipped, std::span<float> elements);

private:
    bool const shuffles_;
    std::unique_ptr<libdeflate_decompressor, void (*)(libdeflate_decompressor*)> decompressor_;
    std::vector<std::byte> shuffled_;
};

}
