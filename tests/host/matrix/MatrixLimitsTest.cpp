#include "host/matrix/Samples.h"

#include "host/platform/System.h"
#include "support/Variable.h"

#include <cubes/matrix/MatrixLimits.h>
#include <cubes/matrix/MatrixStorage.h>
#include <cubes/matrix/OmxFile.h>
#include <cubes/matrix/TRkMatrixException.h>

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

using namespace cubes::test;

namespace {

std::string failureOf(std::function<void()> const& work) {
    try {
        work();
        return "";
    } catch (std::exception const& error) {
        return error.what();
    }
}

class MatrixLimits : public testing::Test {
protected:
    void TearDown() override { cubes::setMostZones(0); }
    Variable const unset{"CUBES_MAX_ZONES", std::nullopt};
};

}

TEST_F(MatrixLimits, areFortyThousandZonesUnlessSetOtherwise) {
    EXPECT_EQ(cubes::mostZones(), 40'000);
    Variable const more("CUBES_MAX_ZONES", "50000");
    EXPECT_EQ(cubes::mostZones(), 50'000);
    cubes::setMostZones(100);
    EXPECT_EQ(cubes::mostZones(), 100);
    cubes::setMostZones(0);
    EXPECT_EQ(cubes::mostZones(), 50'000);
}

TEST_F(MatrixLimits, areNotReadFromATextThatIsNoNumber) {
    for (char const* text : {"abc", "0", "-5", "10x", "99999999999999"}) {
        Variable const wrong("CUBES_MAX_ZONES", text);
        EXPECT_EQ(failureOf(cubes::mostZones), std::string("the environment variable CUBES_MAX_ZONES is \"") + text +
                                                   "\"; expected a number of zones from 1 on");
    }
}

TEST_F(MatrixLimits, concernTheElementsWhateverTheShape) {
    cubes::setMostZones(100);
    EXPECT_EQ(TRkMatrix::inMemory(100, 100).Rows(), 100);
    EXPECT_EQ(TRkMatrix::inMemory(1, 10'000).Rows(), 1);
    EXPECT_EQ(failureOf([] { TRkMatrix::inMemory(100, 101); }),
        "cannot create a matrix of 100 x 101 elements: 100 x 101 elements are more than the limit of 100 x 100; set "
        "CUBES_MAX_ZONES to allow more");
}

TEST_F(MatrixLimits, concernFilesBeforeTheirElementsAreRead) {
    TempDir const directory;
    cubes::setMatrixStorage(directory.str(), {cubes::Storage::deflate, cubes::Durability::process});
    std::string const file = directory.file("a.omx");
    ASSERT_TRUE(save(times(60, 60), file));
    cubes::setMostZones(50);
    EXPECT_NE(failureOf([&] { cubes::OmxFile::open(file).read("matrix"); }).find("60 x 60 elements are more than"),
        std::string::npos);
    EXPECT_NE(failureOf([&] { opened(file).Elements(); }).find("60 x 60 elements are more than"), std::string::npos);
}

TEST_F(MatrixLimits, areNoFaultOfTheFile) {
    TempDir const directory;
    std::string const file = directory.file("a.omx");
    ASSERT_TRUE(save(times(60, 60), file));
    cubes::setMostZones(50);
    try {
        cubes::OmxFile::open(file).read("matrix");
        FAIL() << "it was read";
    } catch (TRkMatrixException const& error) {
        EXPECT_EQ(error.Code(), std::errc::not_enough_memory);
    }
}

TEST_F(MatrixLimits, includeTheMemoryThatIsAvailable) {
    auto const available = cubes::platform::availableMemory();
    ASSERT_TRUE(available);
    EXPECT_GT(*available, std::uint64_t{1} << 20);
    cubes::setMostZones(2'000'000'000);
    std::string const failure = failureOf([] { cubes::requireMatrixFits(2'000'000, 2'000'000); });
    EXPECT_EQ(failure.find("2000000 x 2000000 elements need 16000.0 GB of memory, and only "), 0u) << failure;
    EXPECT_NE(failureOf([] { cubes::requireMatrixFits(200'000, 2'000'000, 10); }), "");
}

TEST_F(MatrixLimits, acceptOurOwnLargeMatrixOfZerosWithoutStoredElements) {
    TempDir const directory;
    cubes::setMatrixStorage(directory.str(), {cubes::Storage::deflate, cubes::Durability::process});
    std::string const file = directory.file("a.omx");
    TRkMatrix zeros = TRkMatrix::inMemory(1100, 1100);
    ASSERT_TRUE(save(zeros, file));
    EXPECT_EQ(difference(cubes::OmxFile::open(file).read("matrix"), zeros), "");
    EXPECT_TRUE(cubes::OmxFile::open(file).isIntact("matrix"));
}
