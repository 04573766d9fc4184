#include "host/matrix/BlockCodec.h"

#include "host/platform/Parallel.h"

#include <libdeflate.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <new>
#include <stdexcept>

namespace cubes::matrix {

namespace {

// Higher levels take several times as long and save only a few per cent.
constexpr int level = 1;

// All first bytes, then all second bytes, and so on. The loops are written so that compilers vectorise them.
void shuffle(std::span<float const> elements, std::uint8_t* shuffled) {
    std::size_t const count = elements.size();
    float const* const from = elements.data();
    for (std::size_t i = 0; i < count; ++i) {
        auto const bits = std::bit_cast<std::uint32_t>(from[i]);
        shuffled[i] = static_cast<std::uint8_t>(bits);
        shuffled[count + i] = static_cast<std::uint8_t>(bits >> 8);
        shuffled[2 * count + i] = static_cast<std::uint8_t>(bits >> 16);
        shuffled[3 * count + i] = static_cast<std::uint8_t>(bits >> 24);
    }
}

void unshuffle(std::uint8_t const* shuffled, std::span<float> elements) {
    std::size_t const count = elements.size();
    float* const to = elements.data();
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t const low = shuffled[i] | static_cast<std::uint32_t>(shuffled[count + i]) << 8;
        std::uint32_t const high = shuffled[2 * count + i] | static_cast<std::uint32_t>(shuffled[3 * count + i]) << 8;
        to[i] = std::bit_cast<float>(low | high << 16);
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
        raw = std::as_bytes(std::span(shuffled_));
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
    void* const target = shuffled ? static_cast<void*>(shuffled_.data()) : raw.data();
    if (!deflated && stored.size() != raw.size()) throw std::runtime_error("a chunk has the wrong size");
    if (!deflated)
        std::memcpy(target, stored.data(), stored.size());
    else if (libdeflate_zlib_decompress(
                 decompressor_.get(), stored.data(), stored.size(), target, raw.size(), nullptr) != LIBDEFLATE_SUCCESS)
        throw std::runtime_error("a compressed chunk is damaged");
    if (shuffled) unshuffle(shuffled_.data(), elements);
}

void inflateBand(BlockDecoder& decoder, Bands const& bands, std::size_t band, std::span<std::byte const> stored,
    unsigned skipped, float* all) {
    if (stored.empty()) return;
    // Memory is allocated only after this check: a damaged file may claim any size.
    if (bands.chunkSize() * sizeof(float) / hdf5::mostInflation > stored.size())
        throw std::runtime_error("a compressed chunk is damaged");
    auto const target = bands.elements(band, all);
    if (target.size() == bands.chunkSize()) return decoder.decode(stored, skipped, target);
    std::vector<float> whole(bands.chunkSize());
    decoder.decode(stored, skipped, whole);
    std::copy_n(whole.begin(), target.size(), target.begin());
}

void inflateAllBut(std::optional<std::size_t> done, Bands const& bands, Filters filters, InflateBand const& inflate) {
    platform::inParallel(bands.count(), [&] {
        auto const decoder = std::make_shared<BlockDecoder>(filters);
        return [&, decoder](std::size_t band) {
            if (band != done) inflate(*decoder, band);
        };
    });
}

}
