#include <cubes/matrix/TRkMatrix.h>
#include <cubes/matrix/TRkMatrixException.h>
#include <cubes/matrix/TRkVLSelectedLinkMatrix.h>

#include "support/Process.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace cubes::test {
namespace {

namespace fs = std::filesystem;

class SelectedLinkMatrix : public testing::Test {
protected:
    static TRkVLSelectedLinkMatrix& links(TRkMatrix& matrix) {
        return dynamic_cast<TRkVLSelectedLinkMatrix&>(*matrix.Body());
    }
    std::string file() const { return directory_.file("a.slm"); }
    TRkMatrix made(int rows = 3, int columns = 3) const {
        return TRkMatrix::selectedLink(rows, columns, file().c_str());
    }
    TRkMatrix opened() const { return {file().c_str(), 1, "", true, mkDefault, lsRead, 0}; }
    std::string files() const { return listing(directory_.str()); }

    TempDir directory_;
};

TEST_F(SelectedLinkMatrix, sumsTheValuesAddedToOdPairs) {
    TRkMatrix matrix = made();
    links(matrix).Add(0, 2, 1.5f);
    links(matrix).Add(0, 2, 2);
    links(matrix).Add(2, 1, 7);
    EXPECT_EQ(matrix.RowAt(0, 8)[2], 3.5f);
    EXPECT_EQ(matrix.RowAt(2, 8)[1], 7.0f);
    EXPECT_EQ(matrix.RowAt(1, 8)[1], 0.0f);
    EXPECT_EQ(matrix.Rows(), 3);
    EXPECT_EQ(matrix.Type(), mtSelectedLink);
    EXPECT_EQ(matrix.MatrixKind(), mkSelectedLink);
    EXPECT_STREQ(links(matrix).FileName(), file().c_str());
    EXPECT_STREQ(matrix.FileName(), file().c_str());
}

TEST_F(SelectedLinkMatrix, refusesOdPairsOutsideTheMatrix) {
    TRkMatrix matrix = made(2, 3);
    for (auto const& [row, column] : {std::pair(-1, 0), std::pair(2, 0), std::pair(0, -1), std::pair(0, 3)})
        EXPECT_THROW(links(matrix).Add(row, column, 1), TRkMatrixException);
    EXPECT_THROW(TRkMatrix::selectedLink(0, 3, ""), TRkMatrixException);
}

TEST_F(SelectedLinkMatrix, isAnOrdinaryMatrixForOtherReaders) {
    TRkMatrix matrix = made(2, 3);
    links(matrix).Add(1, 2, 4);
    links(matrix).Flush();
    TRkMatrix const read = opened();
    ASSERT_TRUE(read.IsValid());
    EXPECT_EQ(read.RowAt(1, 8)[2], 4.0f);
    EXPECT_EQ(read.RowAt(0, 8)[0], 0.0f);
    auto const seen = runPython("import h5py, sys\n"
                                "f = h5py.File(sys.argv[1])\n"
                                "d = f['data/matrix']\n"
                                "print(d.shape, d.compression, d[:].tolist(), d.attrs['cubes_selected_link'])\n",
        {file()});
    EXPECT_EQ(seen.output, "(2, 3) gzip [[0.0, 0.0, 0.0], [0.0, 0.0, 4.0]] 1\n") << seen.errors;
}

TEST_F(SelectedLinkMatrix, isASelectedLinkMatrixWhenItsFileIsOpened) {
    {
        TRkMatrix matrix = made();
        links(matrix).Add(0, 1, 4);
        links(matrix).Flush();
    }
    TRkMatrix again = opened();
    ASSERT_TRUE(again.IsValid());
    EXPECT_EQ(again.Type(), mtSelectedLink);
    links(again).Add(0, 1, 1);
    EXPECT_EQ(opened().RowAt(0, 8)[1], 4.0f);
    links(again).Flush();
    EXPECT_EQ(opened().RowAt(0, 8)[1], 5.0f);
    EXPECT_NE(dynamic_cast<TRkVLSelectedLinkMatrix const*>(opened().Body()), nullptr);
}

TEST_F(SelectedLinkMatrix, isAnOrdinaryMatrixWhenItsElementsWereAssignedToOne) {
    TRkMatrix matrix = made();
    {
        TRkMatrix plain(3, 3, mtSkim, file().c_str(), 1, "", "", true, mkSkim, lsRead);
        plain.AssignFrom(matrix);
    }
    EXPECT_EQ(dynamic_cast<TRkVLSelectedLinkMatrix const*>(opened().Body()), nullptr);
    EXPECT_EQ(dynamic_cast<TRkVLSelectedLinkMatrix const*>(TRkMatrix::inMemory(3, 3).Body()), nullptr);
}

TEST_F(SelectedLinkMatrix, writesTheFileWhenItIsMissingOrOutdated) {
    TRkMatrix matrix = made();
    EXPECT_FALSE(fs::exists(file()));
    links(matrix).Flush();
    ASSERT_TRUE(fs::exists(file()));
    writeFile(file(), "not ours");
    links(matrix).Flush();
    EXPECT_EQ(readFile(file()), "not ours");
    links(matrix).Add(0, 0, 1);
    links(matrix).Flush();
    EXPECT_EQ(opened().RowAt(0, 8)[0], 1.0f);
    fs::remove(file());
    links(matrix).Flush();
    EXPECT_EQ(opened().RowAt(0, 8)[0], 1.0f);
}

TEST_F(SelectedLinkMatrix, isFlushedByTheDestructorWhenValuesWereAdded) {
    { TRkMatrix const untouched = made(); }
    EXPECT_EQ(files(), "");
    {
        TRkMatrix matrix = made();
        links(matrix).Add(0, 0, 1);
        EXPECT_FALSE(fs::exists(file()));
    }
    EXPECT_EQ(files(), "a.slm\n");
    EXPECT_EQ(opened().RowAt(0, 8)[0], 1.0f);
}

TEST_F(SelectedLinkMatrix, canBeFilledByRowsAndByAssignment) {
    {
        TRkMatrix byRow = made();
        byRow.RowAt(1, 8)[1] = 3;
        byRow.Release();
    }
    EXPECT_EQ(opened().RowAt(1, 8)[1], 3.0f);
    TRkMatrix source = TRkMatrix::inMemory(3, 3);
    source.RowAt(2, 8)[2] = 5;
    TRkMatrix assigned = made();
    assigned.AssignFrom(source);
    EXPECT_EQ(opened().RowAt(2, 8)[2], 5.0f);
    EXPECT_NE(dynamic_cast<TRkVLSelectedLinkMatrix const*>(opened().Body()), nullptr);
}

TEST_F(SelectedLinkMatrix, canBeReleasedAndReadAgain) {
    TRkMatrix matrix = made();
    links(matrix).Add(0, 0, 1);
    matrix.Release();
    EXPECT_EQ(matrix.RowAt(0, 8)[0], 1.0f);
    links(matrix).Flush();
    matrix.Release();
    EXPECT_EQ(matrix.RowAt(0, 8)[0], 1.0f);
    links(matrix).Add(0, 0, 1);
    links(matrix).Flush();
    EXPECT_EQ(opened().RowAt(0, 8)[0], 2.0f);
}

TEST_F(SelectedLinkMatrix, canStayInMemory) {
    for (char const* const none : {static_cast<char const*>(nullptr), ""}) {
        TRkMatrix matrix = TRkMatrix::selectedLink(2, 2, none);
        links(matrix).Add(1, 1, 2);
        links(matrix).Flush();
        matrix.Release();
        EXPECT_EQ(matrix.RowAt(1, 8)[1], 2.0f);
        EXPECT_STREQ(links(matrix).FileName(), "");
    }
    EXPECT_EQ(files(), "");
}

TEST_F(SelectedLinkMatrix, isNotValidIfNoFileCanBeCreated) {
    TRkMatrix const missing = TRkMatrix::selectedLink(2, 2, directory_.file("missing/a.slm").c_str());
    EXPECT_FALSE(missing.IsValid());
    EXPECT_NE(missing.Reason().find(nativePath("missing/a.slm")), std::string::npos) << missing.Reason();
    EXPECT_FALSE(TRkMatrix::selectedLink(2, 2, directory_.str().c_str()).IsValid());
}

TEST_F(SelectedLinkMatrix, throwsWhenItCannotBeFlushed) {
    TRkMatrix matrix = made();
    fs::remove(file());
    fs::create_directory(file());
    EXPECT_THROW(links(matrix).Flush(), TRkMatrixException);
}

TEST_F(SelectedLinkMatrix, keepsKindAndZonesInItsFile) {
    TRkMatrix matrix = made();
    matrix.SetZones({5, 7, 9});
    links(matrix).Add(0, 0, 1);
    links(matrix).Flush();
    TRkMatrix const read = opened();
    EXPECT_EQ(read.Zones(), (std::vector<std::int32_t>{5, 7, 9}));
    EXPECT_EQ(read.MatrixKind(), mkSelectedLink);
    TRkMatrix moved = std::move(matrix);
    links(moved).Add(0, 0, 1);
    links(moved).Flush();
    EXPECT_EQ(opened().Zones(), (std::vector<std::int32_t>{5, 7, 9}));
}

TEST_F(SelectedLinkMatrix, isWrittenByEachAssignment) {
    TRkMatrix matrix = made(1, 2);
    TRkMatrix source = TRkMatrix::inMemory(1, 2);
    for (float const value : {3.0f, 4.0f}) {
        source.RowAt(0, 8)[1] = value;
        matrix.AssignFrom(source);
        EXPECT_EQ(opened().RowAt(0, 8)[1], value);
    }
}

TEST_F(SelectedLinkMatrix, canBeFlushedAfterAFailure) {
    TRkMatrix matrix = made(2, 2);
    links(matrix).Add(1, 1, 9);
    fs::create_directory(file());
    EXPECT_THROW(links(matrix).Flush(), TRkMatrixException);
    EXPECT_EQ(files(), "a.slm\n");
    fs::remove(file());
    links(matrix).Flush();
    EXPECT_EQ(opened().RowAt(1, 8)[1], 9.0f);
}

TEST_F(SelectedLinkMatrix, doesNotFlushRowsWrittenInAnOpenedMatrix) {
    {
        TRkMatrix matrix = made(2, 2);
        links(matrix).Add(0, 0, 1);
    }
    TRkMatrix again = opened();
    again.RowAt(0, 8)[0] = 99;
    links(again).Flush();
    EXPECT_EQ(opened().RowAt(0, 8)[0], 1.0f);
}

}
}
