#include "reader/ChunkCheck.h"

#include <gtest/gtest.h>

#include <libdeflate.h>

#include <stdexcept>

using cubes::hdf5::ChunkPlace;
using cubes::hdf5::Filter;
using cubes::reader::ChunkCheck;

namespace {

constexpr std::uint64_t chunkBytes = 4000;
constexpr std::uint64_t fileSize = 10000;

std::vector<std::byte> deflated(std::size_t size) {
    std::vector<std::byte> const zeros(size);
    std::vector<std::byte> stored(1000);
    auto* const compressor = libdeflate_alloc_compressor(1);
    stored.resize(libdeflate_zlib_compress(compressor, zeros.data(), size, stored.data(), stored.size()));
    libdeflate_free_compressor(compressor);
    return stored;
}

std::string faultOf(std::vector<std::int32_t> const& ids, ChunkPlace const& place, std::vector<std::byte> stored = {}) {
    std::vector<Filter> filters;
    for (auto const id : ids) filters.push_back({id, true});
    try {
        ChunkCheck(filters, chunkBytes, fileSize).require(place, [&] { return stored; });
        return "";
    } catch (std::runtime_error const& error) {
        return error.what();
    }
}

}

TEST(ChunkCheck, requiresTheExactSizeOfChunksThatAreNotCompressed) {
    EXPECT_EQ(faultOf({}, {100, 4000, 0}), "");
    EXPECT_EQ(faultOf({2, 3}, {100, 4004, 0}), "");
    EXPECT_EQ(faultOf({1}, {100, 4000, 1}), "");
    for (std::uint64_t const size : {0U, 8U, 3999U, 4001U}) {
        EXPECT_EQ(faultOf({}, {100, size, 0}), "a chunk has the wrong size") << size;
        EXPECT_EQ(faultOf({1}, {100, size, 1}), "a chunk has the wrong size") << size;
        EXPECT_EQ(faultOf({2, 1, 3}, {100, size, 6}), "a chunk has the wrong size") << size;
    }
}

TEST(ChunkCheck, requiresAPlaceWithinTheFile) {
    EXPECT_EQ(faultOf({}, {6000, 4000, 0}), "");
    EXPECT_EQ(faultOf({}, {6001, 4000, 0}), "a chunk is not within the file");
    EXPECT_EQ(faultOf({}, {~std::uint64_t{0}, 4000, 0}), "a chunk is not within the file");
    EXPECT_EQ(faultOf({1}, {100, ~std::uint64_t{0}, 0}), "a chunk is not within the file");
}

TEST(ChunkCheck, requiresThatCompressedBytesGiveTheWholeChunk) {
    auto const good = deflated(chunkBytes);
    auto const withChecksum = deflated(chunkBytes + 4);
    EXPECT_EQ(faultOf({2, 1}, {100, good.size(), 0}, good), "");
    EXPECT_EQ(faultOf({3, 1}, {100, withChecksum.size(), 0}, withChecksum), "");
    auto followed = good;
    followed.resize(good.size() + 4);
    EXPECT_EQ(faultOf({1, 3}, {100, followed.size(), 0}, followed), "");
    for (std::size_t const size : {chunkBytes - 1, chunkBytes + 1, std::uint64_t{10}}) {
        auto const other = deflated(size);
        EXPECT_EQ(faultOf({1}, {100, other.size(), 0}, other), "a compressed chunk is damaged") << size;
    }
    EXPECT_EQ(faultOf({1}, {100, 3, 0}, std::vector<std::byte>(3)), "a compressed chunk is damaged");
}

TEST(ChunkCheck, refusesChunksOfOtherFiltersUnlessTheyWereSkipped) {
    auto const refused = [](std::string const& filter) {
        return "its elements are stored with filter " + filter + ", whose output cannot be checked";
    };
    for (int const filter : {4, 5, 6, 32000}) {
        EXPECT_EQ(faultOf({filter}, {100, 10, 0}), refused(std::to_string(filter)));
        EXPECT_EQ(faultOf({2, filter}, {100, 4000, 2}), "");
    }
    EXPECT_EQ(faultOf({1, 1}, {100, 10, 0}), refused("1"));
}
