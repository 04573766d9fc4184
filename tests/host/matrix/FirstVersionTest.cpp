// Files of the first version of the matrix file, stored as they were written, remain readable.

#include "host/matrix/Samples.h"

#include "host/matrix/Elements.h"
#include "host/matrix/StagedFile.h"
#include "support/Process.h"

#include <cubes/matrix/OmxFile.h>
#include <cubes/matrix/TRkVLSelectedLinkMatrix.h>

#include <gtest/gtest.h>

#include <cmath>

namespace cubes::test {
namespace {

std::string sampleFile(std::string const& name) {
    return std::string(CUBES_TEST_FILES) + "/matrix-1/" + name;
}

class EachFirstVersion : public testing::TestWithParam<char const*> {};

TEST_P(EachFirstVersion, isReadCompletely) {
    std::string const file = sampleFile(GetParam());
    TRkMatrix const matrix = opened(file, 0, 5);
    ASSERT_TRUE(matrix.IsValid()) << matrix.Reason();
    EXPECT_EQ(matrix.Rows(), 3);
    EXPECT_EQ(matrix.Columns(), 3);
    EXPECT_EQ(matrix.Type(), mtSkim);
    EXPECT_EQ(matrix.MatrixKind(), mkSkim);
    EXPECT_EQ(matrix.Zones(), (std::vector<std::int32_t>{101, -7, 2000000000}));
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            EXPECT_EQ(matrix.RowAt(row, 8)[column], 10.5f * static_cast<float>(row) - static_cast<float>(column));
    EXPECT_EQ(matrix.At(-7, 2000000000), 8.5f);
    EXPECT_TRUE(OmxFile::open(file).isIntact("matrix"));
    EXPECT_EQ(matrix::openMatrixFile(file).header.name, "Zürich [1,2]");
}

TEST_P(EachFirstVersion, isDetectedAsDamagedByItsChecksum) {
    TempDir const directory;
    std::string const file = directory.file("a.omx");
    std::filesystem::copy_file(sampleFile(GetParam()), file);
    EXPECT_TRUE(opened(file).IsIntact());
    flipBit(file, 0, 1);
    EXPECT_FALSE(opened(file).IsIntact());
    EXPECT_EQ(opened(file).RowAt(0, 8)[1], std::nextafter(-1.0f, -2.0f));
    EXPECT_FALSE(OmxFile::open(file).isIntact("matrix"));
}

TEST_P(EachFirstVersion, isAcceptedWithAChangeOnceItsChecksumIsDeleted) {
    TempDir const directory;
    std::string const file = directory.file("a.omx");
    std::filesystem::copy_file(sampleFile(GetParam()), file);
    auto const change = [&](std::string const& program) {
        auto const done = runPython("import h5py, sys\nf = h5py.File(sys.argv[1], 'r+')\n" + program, {file});
        EXPECT_EQ(done.exitCode, 0) << done.errors;
    };
    change("f['data/matrix'][0, 0] = 77");
    EXPECT_FALSE(OmxFile::open(file).isIntact("matrix"));
    change("del f['data/matrix'].attrs['cubes_checksum']");
    EXPECT_TRUE(OmxFile::open(file).isIntact("matrix"));
    EXPECT_EQ(opened(file).RowAt(0, 8)[0], 77);
}

TEST_P(EachFirstVersion, hasNoOrigin) {
    EXPECT_FALSE(matrix::readOrigin(sampleFile(GetParam())));
    EXPECT_EQ(matrix::readProvenance(sampleFile(GetParam())), matrix::Provenance{});
}

INSTANTIATE_TEST_SUITE_P(FirstVersion, EachFirstVersion, testing::Values("plain.omx", "deflate.omx"),
    [](auto const& name) { return std::string(name.param) == "plain.omx" ? "plain" : "deflate"; });

TEST(FirstVersion, plainFilesAreReadThroughTheirOwnIndex) {
    EXPECT_TRUE(matrix::findIndex(platform::FileView::open(sampleFile("plain.omx")).bytes()));
}

TEST(FirstVersion, selectedLinkMatricesAreRecognised) {
    TRkMatrix const matrix = opened(sampleFile("selected-link.omx"));
    ASSERT_NE(dynamic_cast<TRkVLSelectedLinkMatrix const*>(matrix.Body()), nullptr);
    EXPECT_EQ(matrix.RowAt(1, 8)[2], 2.5f);
}

}
}
