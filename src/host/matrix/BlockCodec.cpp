#include "host/matrix/BlockCodec.h"

#include <libdeflate.h>

#include <cstdint>
#include <cstring>
#include <new>
#include <stdexcept>

namespace cubes::matrix {

namespace {

// Higher levels cost several times the time for a few hundredths of the size.
constexpr int level = 1;

// All first bytes, then all second bytes, and so on: the bytes of like meaning lie together.
void shuffle(std::span<float const> elements, std::byte* shuffled) {
    std::size_t const count = elements.size();
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t bits;
        std::memcpy(&bits, &elements[i], sizeof bits);
        for (std::size_t plane = 0; plane < sizeof bits; ++plane)
            shuffled[plane * count + i] = static_cast<std::byte>(bits >> (8 * plane));
    }
}

void unshuffle(std::byte const* shuffled, std::span<float> elements) {
    std::size_t const count = elements.size();
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t bits = 0;
        for (std::size_t plane = 0; plane < sizeof bits; ++plane)
            bits |= static_cast<std::uint32_t>(shuffled[plane * count + i]) << (8 * plane);
        std::memcpy(&elements[i], &bits, sizeof bits);
    }
}

}

BlockEncoder::BlockEncoder(Filters filters)
    : shuffles_(filters == Filters::shuffleAndDeflate),
      compressor_(libdeflate_alloc_compressor(level), libdeflate_free_compressor) {
    if (!compressor_) throw std::bad_alloc();
}

BlockEncoder::~BlockEncoder() = default;

std::vector<std::byte> BlockEncoder::encode(std::span<float const> elements) {
    auto raw = std::as_bytes(elements);
    if (shuffles_) {
        shuffled_.resize(raw.size());
        shuffle(elements, shuffled_.data());
        raw = shuffled_;
    }
    std::vector<std::byte> stored(libdeflate_zlib_compress_bound(compressor_.get(), raw.size()));
    stored.resize(libdeflate_zlib_compress(compressor_.get(), raw.data(), raw.size(), stored.data(), stored.size()));
    if (stored.empty()) throw std::runtime_error("cannot compress a chunk");
    stored.shrink_to_fit();
    return stored;
}

BlockDecoder::BlockDecoder(Filters filters)
    : shuffles_(filters == Filters::shuffleAndDeflate),
      decompressor_(libdeflate_alloc_decompressor(), libdeflate_free_decompressor) {
    if (!decompressor_) throw std::bad_alloc();
}

BlockDecoder::~BlockDecoder() = default;

void BlockDecoder::decode(std::span<std::byte const> stored, unsigned skipped, std::span<float> elements) {
    bool const shuffled = shuffles_ && !(skipped & 1u);
    bool const deflated = !(skipped & (shuffles_ ? 2u : 1u));
    auto const raw = std::as_writable_bytes(elements);
    if (shuffled) shuffled_.resize(raw.size());
    std::byte* const target = shuffled ? shuffled_.data() : raw.data();
    if (!deflated && stored.size() != raw.size()) throw std::runtime_error("a chunk has the wrong size");
    if (!deflated)
        std::memcpy(target, stored.data(), stored.size());
    else if (libdeflate_zlib_decompress(
                 decompressor_.get(), stored.data(), stored.size(), target, raw.size(), nullptr) != LIBDEFLATE_SUCCESS)
        throw std::runtime_error("a compressed chunk is damaged");
    if (shuffled) unshuffle(target, elements);
}

}
