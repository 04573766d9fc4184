#include "host/hdf5/IndexRecord.h"
#include "host/matrix/FileIndex.h"
#include "host/matrix/Samples.h"
#include "support/EachStorage.h"

#include <cubes/matrix/MatrixStorage.h>
#include <cubes/matrix/OmxFile.h>
#include <cubes/matrix/TRkMatrixException.h>

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <span>

using namespace cubes::test;

namespace {

class EachDamagedStorage : public testing::TestWithParam<cubes::Storage> {
protected:
    void SetUp() override {
        cubes::setMatrixStorage(directory.str(), {GetParam(), cubes::Durability::process});
        TRkMatrix matrix = times(60, 60);
        matrix.SetZones(std::vector<std::int32_t>(60, 1));
        ASSERT_TRUE(save(matrix, good));
        bytes = readFile(good);
    }

    // A damaged file either gives a matrix of the right size or reports the damage.
    void expectNoCrash(std::string const& damaged, std::size_t place) {
        writeFile(file, damaged);
        TRkMatrix const matrix = opened(file);
        if (!matrix.IsValid()) {
            EXPECT_NE(matrix.Reason().find(file), std::string::npos) << matrix.Reason();
            // A process reads the file again, so that this is not done for each.
            if (place % 8 != 0) return;
            EXPECT_EQ(TRkMatrix().GetHeader(file.c_str()), nullptr);
            return;
        }
        [[maybe_unused]] float sum = 0;
        try {
            for (int row = 0; row < matrix.Rows(); row += 17) sum += matrix.RowAt(row, 8)[matrix.Columns() - 1];
        } catch (TRkMatrixException const& error) {
            EXPECT_NE(std::string(error.what()).find(file), std::string::npos) << place << ": " << error.what();
        }
    }

    TempDir const directory;
    std::string const good = directory.file("good.omx");
    std::string const file = directory.file("bad.omx");
    std::string bytes;
};

}

TEST_P(EachDamagedStorage, aTruncatedFileIsNotValid) {
    std::mt19937 random(7);
    std::vector<std::size_t> lengths = {1, 7, 8, 47, 48, 96, 512, 2048, 3000, 3512, 4096, 4097, bytes.size() - 1};
    for (int i = 0; i < 20; ++i) lengths.push_back(1 + random() % (bytes.size() - 1));
    for (std::size_t const length : lengths) {
        if (length >= bytes.size()) continue;
        writeFile(file, bytes.substr(0, length));
        TRkMatrix const matrix = opened(file);
        EXPECT_FALSE(matrix.IsValid()) << length;
        EXPECT_NE(matrix.Reason().find(file), std::string::npos) << matrix.Reason();
    }
}

TEST_P(EachDamagedStorage, aChangedByteInTheStructureNeverCrashes) {
    std::mt19937 random(11);
    std::size_t const structure = std::min<std::size_t>(bytes.size(), 4096);
    for (int i = 0; i < 80; ++i) {
        std::string damaged = bytes;
        std::size_t const place = random() % structure;
        damaged[place] = static_cast<char>(random());
        expectNoCrash(damaged, place);
    }
}

// A valid record can contain any places: the author of a malicious file can compute the checksum.
TEST_P(EachDamagedStorage, aRecordWithWrongPlacesNeverCrashes) {
    namespace hdf5 = cubes::hdf5;
    auto const original = hdf5::findRecord(std::as_bytes(std::span(bytes)));
    ASSERT_TRUE(original);
    constexpr std::size_t placesEnd = 64;
    for (std::size_t at = 0; at < placesEnd; at += 4)
        for (std::uint32_t const value : {0u, 3u, 61u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
            hdf5::IndexRecord record = original->record;
            std::memcpy(record.details.data() + at, &value, sizeof value);
            auto const encoded = hdf5::encode(record);
            std::string astray = bytes;
            std::memcpy(astray.data() + original->offset, encoded.data(), encoded.size());
            expectNoCrash(astray, at);
        }
}

// An empty chunk is no data, so the checksum of the structure holds wherever its offset leads.
TEST(DamagedFile, anEmptyChunkBeyondTheEndOfTheFileIsNotBelieved) {
    namespace hdf5 = cubes::hdf5;
    namespace matrix = cubes::matrix;
    TempDir const directory;
    std::string const file = directory.file("a.omx");
    cubes::setMatrixStorage(directory.str(), {cubes::Storage::deflate, cubes::Durability::process});
    ASSERT_TRUE(save(times(60, 60), file));
    std::string bytes = readFile(file);
    auto const all = std::as_writable_bytes(std::span(bytes));
    auto const found = hdf5::findRecord(all);
    auto index = matrix::findIndex(all);
    ASSERT_TRUE(found && index);
    for (std::uint64_t const offset : {bytes.size() + 1, std::size_t{1} << 40, ~std::size_t{0}}) {
        index->places.chunks = {{offset, 0, 0}};
        std::memcpy(all.data() + index->places.chunkTable, index->places.chunks.data(), sizeof(matrix::ChunkPlace));
        auto const crafted = hdf5::encode(matrix::indexRecord(all, found->offset, *index, found->record));
        std::memcpy(all.data() + found->offset, crafted.data(), crafted.size());
        EXPECT_FALSE(matrix::findIndex(all)) << offset;
        writeFile(file, bytes);
        EXPECT_EQ(difference(opened(file), times(60, 60)), "");
    }
}

TEST_P(EachDamagedStorage, aFileOfNoiseOrZerosIsNotValid) {
    std::mt19937 random(13);
    for (std::size_t kept : {8u, 48u, 300u, 1000u, 2000u}) {
        std::string damaged = bytes;
        for (std::size_t i = kept; i < damaged.size(); ++i) damaged[i] = static_cast<char>(random());
        expectNoCrash(damaged, kept);
        std::fill(damaged.begin() + static_cast<std::ptrdiff_t>(kept), damaged.end(), '\0');
        expectNoCrash(damaged, kept);
    }
}

TEST_P(EachDamagedStorage, aChangedElementIsFoundByTheContentId) {
    float const original = opened(good).RowAt(30, 8)[5];
    EXPECT_TRUE(cubes::OmxFile::open(good).isIntact("matrix"));
    flipBit(good, 30, 5);
    EXPECT_NE(opened(good).RowAt(30, 8)[5], original);
    EXPECT_FALSE(cubes::OmxFile::open(good).isIntact("matrix"));
}

TEST_P(EachDamagedStorage, aChangedByteOfACompressedChunkIsFoundToo) {
    std::string damaged = bytes;
    std::size_t const place = damaged.size() - 2000;
    damaged[place] = static_cast<char>(damaged[place] ^ 4);
    writeFile(file, damaged);
    if (GetParam() == cubes::Storage::deflate)
        EXPECT_THROW(cubes::OmxFile::open(file).isIntact("matrix"), TRkMatrixException);
    else
        EXPECT_FALSE(cubes::OmxFile::open(file).isIntact("matrix"));
}

TEST_P(EachDamagedStorage, bytesAfterTheEndAreIgnored) {
    writeFile(file, bytes + "more");
    EXPECT_EQ(difference(opened(file), opened(good)), "");
}

CUBES_EACH_STORAGE(DamagedFile, EachDamagedStorage);

TEST(DamagedFile, aPathThatIsNotARegularFileIsRefusedWithItsNameAndACause) {
    TempDir const directory;
    TRkMatrix const none(nullptr, 1, nullptr, true, mkDefault, lsNone, 0);
    EXPECT_FALSE(none.IsValid());
    EXPECT_FALSE(none.Reason().empty());
    std::string const device = endlessDevice();
    if (device.empty()) return;
    EXPECT_EQ(opened(device).Reason(), "cannot open matrix file " + device + ": it is not a regular file");
}
