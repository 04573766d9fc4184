#include "reader/ChunkCheck.h"

#include "host/hdf5/GuardedFile.h"

#include <libdeflate.h>

#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

namespace cubes::reader {

namespace {

enum KnownFilter : std::int32_t { deflate = 1, shuffle = 2, fletcher32 = 3 };
constexpr std::uint64_t checksumBytes = 4;

/// What the filters of a chunk, those that were not skipped, make of its elements.
struct Stored {
    /// The size before it was compressed, or of all where it was not.
    std::uint64_t size;
    bool isDeflated = false;
    /// The bytes behind the compressed ones.
    std::uint64_t behind = 0;
};

Stored storedForm(std::vector<hdf5::Filter> const& filters, std::uint64_t skipped, std::uint64_t bytes) {
    Stored stored{bytes};
    for (std::size_t i = 0; i < filters.size(); ++i) {
        if (skipped >> i & 1u || filters[i].id == shuffle) continue;
        bool const isKnown = filters[i].id == fletcher32 || (filters[i].id == deflate && !stored.isDeflated);
        if (!isKnown)
            throw std::runtime_error("its elements are stored with filter " + std::to_string(filters[i].id) +
                                     ", whose output cannot be checked");
        if (filters[i].id == deflate)
            stored.isDeflated = true;
        else
            (stored.isDeflated ? stored.behind : stored.size) += checksumBytes;
    }
    return stored;
}

}

ChunkCheck::ChunkCheck(std::vector<hdf5::Filter> filters, std::uint64_t chunkBytes, std::uint64_t fileSize)
    : filters_(std::move(filters)), chunkBytes_(chunkBytes), fileSize_(fileSize) {}

void ChunkCheck::require(hdf5::ChunkPlace const& place, std::function<std::vector<std::byte>()> const& read) {
    if (place.offset == 0) return;
    if (place.offset > fileSize_ || place.size > fileSize_ - place.offset)
        throw std::runtime_error("a chunk is not within the file");
    Stored const form = storedForm(filters_, place.skipped, chunkBytes_);
    if (!form.isDeflated && place.size != form.size) throw std::runtime_error("a chunk has the wrong size");
    if (form.isDeflated) requireInflated(read(), form.behind, form.size);
}

void ChunkCheck::requireInflated(std::vector<std::byte> const& stored, std::size_t behind, std::uint64_t expected) {
    constexpr char const* damaged = "a compressed chunk is damaged";
    if (stored.size() < behind || expected / hdf5::mostInflation > stored.size()) throw std::runtime_error(damaged);
    std::unique_ptr<libdeflate_decompressor, void (*)(libdeflate_decompressor*)> const decompressor(
        libdeflate_alloc_decompressor(), libdeflate_free_decompressor);
    if (!decompressor) throw std::bad_alloc();
    inflated_.resize(expected);
    if (libdeflate_zlib_decompress(decompressor.get(), stored.data(), stored.size() - behind, inflated_.data(),
            inflated_.size(), nullptr) != LIBDEFLATE_SUCCESS)
        throw std::runtime_error(damaged);
}

}
