#include <cubes/matrix/MatrixStorage.h>
#include <cubes/matrix/TRkMatrix.h>

#include "support/Process.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

using cubes::test::TempDir;

namespace {

TRkMatrix numbered(int rows, int columns) {
    TRkMatrix matrix = TRkMatrix::inMemory(rows, columns);
    for (int i = 0; i < rows; ++i)
        for (int j = 0; j < columns; ++j) matrix.RowAt(i, 0)[j] = static_cast<float>(i * 1000 + j);
    return matrix;
}

bool save(std::string const& file, TRkMatrix const& matrix) {
    TRkMatrix target(matrix.Rows(), matrix.Columns(), mtMatrixCube, file.c_str(), 1, "", "", true, mkDefault, lsNone);
    if (target.IsValid()) target.AssignFrom(matrix);
    EXPECT_EQ(target.Reason(), "");
    return target.IsValid();
}

TRkMatrix opened(std::string const& file) {
    return TRkMatrix(file.c_str(), 1, "", true, mkDefault, lsNone, 0);
}

}

TEST(MatrixFile, givesBackWhatWasSaved) {
    TempDir const directory;
    for (auto storage : {cubes::Storage::plain, cubes::Storage::deflate}) {
        cubes::setMatrixStorage(directory.str(), {storage, cubes::Durability::full});
        ASSERT_TRUE(save(directory.file("a.omx"), numbered(3, 5)));
        TRkMatrix const read = opened(directory.file("a.omx"));
        ASSERT_TRUE(read.IsValid()) << read.Reason();
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 5; ++j) EXPECT_EQ(read.RowAt(i, 8)[j], static_cast<float>(i * 1000 + j));
        EXPECT_EQ(cubes::test::listing(directory.str()), "a.omx\n");
    }
}
