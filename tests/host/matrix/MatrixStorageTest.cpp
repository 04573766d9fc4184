#include "support/TempDir.h"

#include <cubes/matrix/MatrixStorage.h>

#include <gtest/gtest.h>

using namespace cubes;

TEST(MatrixStorageRule, isPlainAndFullByDefault) {
    MatrixStorage const rule = matrixStorage("/no/rule/here");
    EXPECT_EQ(rule.storage, Storage::plain);
    EXPECT_EQ(rule.durability, Durability::full);
}

TEST(MatrixStorageRule, appliesToADirectoryHoweverItsPathIsWritten) {
    test::TempDir const directory;
    setMatrixStorage(directory.str() + "/x/", {Storage::deflate, Durability::process});
    for (char const* path : {"x", "x/", "x//", "./x", "y/../x/"}) {
        MatrixStorage const rule = matrixStorage(directory.file(path));
        EXPECT_EQ(rule.storage, Storage::deflate) << path;
        EXPECT_EQ(rule.durability, Durability::process) << path;
    }
    EXPECT_EQ(matrixStorage(directory.str()).storage, Storage::plain);
    EXPECT_EQ(matrixStorage(directory.file("x/y")).storage, Storage::plain);
    setMatrixStorage(directory.file("x"), {});
    EXPECT_EQ(matrixStorage(directory.file("x")).storage, Storage::plain);
}
