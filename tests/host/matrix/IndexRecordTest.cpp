// The index record: its bytes, its validity, and the provenance beside it.

#include "host/hdf5/IndexRecord.h"

#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

namespace cubes::test {
namespace {

using namespace cubes::hdf5;

std::vector<std::byte> bytesOf(IndexRecord const& record, std::size_t offset = 0) {
    std::vector<std::byte> file(offset);
    auto const encoded = encode(record);
    file.insert(file.end(), encoded.begin(), encoded.end());
    return file;
}

IndexRecord sample() {
    IndexRecord record;
    record.holds = IndexRecord::Holds::routes;
    record.content = *Id128::parse("00112233445566778899aabbccddeeff");
    record.provenance = *Id128::parse("ffeeddccbbaa99887766554433221100");
    record.stamp = {*Id128::parse("0123456789abcdef0123456789abcdef"), "Zürich", 1599, {1, -2, 3, 32767, 0, 6}};
    record.structure = 17;
    record.fileSize = 1024;
    record.details.fill(std::byte{7});
    return record;
}

TEST(Id128, isWrittenAndReadAsHexadecimalDigits) {
    std::string const text = "00112233445566778899aabbccddeeff";
    EXPECT_EQ(Id128::parse(text)->text(), text);
    EXPECT_TRUE(Id128::parse(text)->isKnown());
    EXPECT_FALSE(Id128{}.isKnown());
    for (std::string const& wrong :
        {std::string(), text + "0", text.substr(1), "g" + text.substr(1), "A" + text.substr(1)})
        EXPECT_FALSE(Id128::parse(wrong)) << wrong;
}

TEST(ContentHash, isXxh3OfAllBytesHoweverTheyAreDivided) {
    std::string const text = "a few bytes";
    auto const bytes = std::as_bytes(std::span(text));
    ContentHash whole;
    whole.add(bytes);
    ContentHash cut;
    for (std::byte const& byte : bytes) cut.add({&byte, 1});
    EXPECT_EQ(whole.id(), cut.id());
    // The XXH3 (128 bits) of no bytes, as other programs print it.
    EXPECT_EQ(ContentHash().id().text(), "99aa06d3014798d86001c324468d497f");
}

TEST(IndexRecord, isReadAsItWasWritten) {
    auto const found = findRecord(bytesOf(sample(), 8));
    ASSERT_TRUE(found);
    EXPECT_EQ(found->offset, 8u);
    EXPECT_EQ(found->record.holds, IndexRecord::Holds::routes);
    EXPECT_EQ(found->record.content, sample().content);
    EXPECT_EQ(found->record.provenance, sample().provenance);
    EXPECT_EQ(found->record.stamp, sample().stamp);
    EXPECT_EQ(found->record.structure, 17u);
    EXPECT_EQ(found->record.fileSize, 1024u);
    EXPECT_EQ(found->record.details, sample().details);
}

TEST(IndexRecord, isFoundAtMultiplesOf8InTheFirst8192Bytes) {
    EXPECT_TRUE(findRecord(bytesOf(sample(), 8192 - 1024)));
    EXPECT_FALSE(findRecord(bytesOf(sample(), 8192 - 1024 + 8)));
    EXPECT_FALSE(findRecord(bytesOf(sample(), 4)));
    EXPECT_FALSE(findRecord(std::span<std::byte const>()));
}

TEST(IndexRecord, isInvalidWhenAnyByteOfItIsChangedOrMissing) {
    auto const good = bytesOf(sample());
    for (std::size_t i = 0; i < good.size(); ++i) {
        auto damaged = good;
        damaged[i] ^= std::byte{16};
        EXPECT_FALSE(findRecord(damaged)) << i;
    }
    EXPECT_FALSE(findRecord(std::span(good).first(good.size() - 1)));
}

TEST(IndexRecord, keepsTheBeginningOfALongNameInWholeCharacters) {
    IndexRecord record;
    for (auto const& [given, kept] : {std::pair(std::string(192, 'a'), std::string(192, 'a')),
             std::pair(std::string(191, 'a') + "ü", std::string(191, 'a')),
             std::pair(std::string(190, 'a') + "üü", std::string(190, 'a') + "ü")}) {
        record.stamp.cube = given;
        EXPECT_EQ(findRecord(bytesOf(record))->record.stamp.cube, kept);
    }
}

TEST(IndexRecord, holdsAtMost6PartsOfAKey) {
    IndexRecord record;
    record.stamp.key.assign(7, 1);
    EXPECT_THROW(encode(record), std::length_error);
}

TEST(IndexRecord, isStampedAgainInItsFile) {
    TempDir const directory;
    auto file = platform::File::createNew(directory.file("a"));
    EXPECT_FALSE(restamp(file, {}));
    file.writeAt(0, bytesOf(sample(), 16));
    FileStamp const stamp{Id128{}, "Other", 3, {1, 2, 3, 4}};
    EXPECT_TRUE(restamp(file, stamp));
    auto const found = findRecord(file);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->record.stamp, stamp);
    EXPECT_EQ(found->record.content, sample().content);
    EXPECT_EQ(found->record.details, sample().details);
    EXPECT_EQ(file.size(), 1024u + 16);
}

TEST(StructureChecksum, excludesRecordAndData) {
    std::vector<std::byte> file(4000);
    std::vector<Extent> const data = {{3000, 100}, {2500, 50}};
    auto const checksum = structureChecksum(file, 8, data);
    ASSERT_TRUE(checksum);
    for (std::size_t const i : {8u, 1031u, 2500u, 2549u, 3000u, 3099u}) {
        auto changed = file;
        changed[i] = std::byte{1};
        EXPECT_EQ(structureChecksum(changed, 8, data), checksum) << i;
    }
    for (std::size_t const i : {7u, 1032u, 2499u, 2550u, 2999u, 3100u, 3999u}) {
        auto changed = file;
        changed[i] = std::byte{1};
        EXPECT_NE(structureChecksum(changed, 8, data), checksum) << i;
    }
}

TEST(StructureChecksum, isMissingWhenDataOverlapOrLeaveTheFile) {
    std::vector<std::byte> const file(4000);
    constexpr std::uint64_t most = ~std::uint64_t{0};
    for (Extent const& wrong :
        {Extent{1000, 10}, Extent{3999, 2}, Extent{4001, 0}, Extent{most, 1}, Extent{2000, most}})
        EXPECT_FALSE(structureChecksum(file, 8, {wrong})) << wrong.offset << " " << wrong.size;
    EXPECT_FALSE(structureChecksum(file, 8, {{2000, 10}, {2009, 10}}));
    EXPECT_FALSE(structureChecksum(file, 2977, {}));
    EXPECT_TRUE(structureChecksum(file, 2976, {{2976 - 10, 10}}));
}

TEST(Provenance, hasADigestOfAllItsTexts) {
    EXPECT_FALSE(Provenance{}.digest().isKnown());
    std::vector<Provenance> const several = {{.madeBy = "calc"}, {.version = "calc"}, {.time = "calc"},
        {.note = "calc"}, {.source = "calc"}, {.inputs = {{"Base/1/1/1/1", Id128{}}}},
        {.inputs = {{"Base/1/1/1/1", sample().content}}}};
    for (auto const& one : several)
        for (auto const& other : several) EXPECT_EQ(one.digest() == other.digest(), &one == &other);
}

}
}
