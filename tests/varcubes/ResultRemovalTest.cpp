#include <filesystem>

#include "varcubes/VarCubesTest.h"

namespace cubes::test {
namespace {

class ResultRemoval : public VarCubesTest {};

CUBES_BOTH_BACKENDS(ResultRemoval);

TEST_P(ResultRemoval, takesRowAndFile) {
    store(skims(), 1, 1);
    store(skims(), 2, 2);
    EXPECT_TRUE(skims().Clear(1, 1, 1, 1, 1, 1, false));
    EXPECT_EQ(rows(), "-1|1|1|1|1|1|2|0|1-1-1-1-1-2.skm\n");
    EXPECT_EQ(files(), "1-1-1-1-1-2.skm\n");
    EXPECT_TRUE(skims().Clear(0, 0, 0, 0, 1, 2, true));
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(files(), "");
}

TEST_P(ResultRemoval, ofAMissingEntryIsFalseAndTouchesNoFile) {
    store(skims(), 1, 1);
    writeFile(pathOf("1-1-1-1-1-2.skm"), "not of an entry");
    EXPECT_FALSE(skims().Clear(1, 1, 1, 1, 1, 2, false));
    EXPECT_FALSE(TRkPathCube(project().settings(), true).Clear(1, 1, 1, 1, 1, 1, false));
    EXPECT_EQ(files(), "1-1-1-1-1-1.skm\n1-1-1-1-1-2.skm\n");
}

TEST_P(ResultRemoval, hasThreeEqualNames) {
    for (short i = 1; i <= 3; ++i) store(skims(), i, 1);
    EXPECT_TRUE(skims().Remove(0, 0, 0, 0, 1, 1, true));
    EXPECT_FALSE(skims().Remove(1, 1, 1, 1, 1, 1, false));
    EXPECT_TRUE(skims().Delete(1, 1, 1, 1, 1, 2, false));
    EXPECT_FALSE(skims().Delete(1, 1, 1, 1, 1, 2, false));
    EXPECT_EQ(files(), "1-1-1-1-1-3.skm\n");
}

TEST_P(ResultRemoval, doesNotAskTheUsageCounter) {
    store(skims(), 1, 1);
    ASSERT_TRUE(skims().incUsage(1, 1, 1, 1, 1, 1));
    EXPECT_TRUE(skims().Clear(1, 1, 1, 1, 1, 1, false));
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(files(), "");
}

TEST_P(ResultRemoval, takesTheRowOfAMissingFile) {
    add(skims(), 1);
    EXPECT_TRUE(skims().Clear(1, 1, 1, 1, 1, 1, false));
    EXPECT_EQ(rows(), "");
}

TEST_P(ResultRemoval, takesADirectoryWithItsContent) {
    add(skims(), 1);
    std::filesystem::create_directories(pathOf("1-1-1-1-1-1.skm/inner"));
    writeFile(pathOf("1-1-1-1-1-1.skm/inner/part"), "x");
    EXPECT_TRUE(skims().Clear(1, 1, 1, 1, 1, 1, false));
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(files(), "");
}

TEST_P(ResultRemoval, takesAFileThatTwoRowsShareWithTheFirst) {
    store(skims(), 1, 1);
    store(skims(), 2, 2);
    execute("update " + table() + " set filename = '1-1-1-1-1-1.skm'");
    EXPECT_TRUE(skims().Clear(1, 1, 1, 1, 1, 2, false));
    EXPECT_EQ(files(), "1-1-1-1-1-2.skm\n");
    EXPECT_TRUE(skims().Check(1, 1, 1, 1, 1, 1, false));
}

TEST_P(ResultRemoval, neverLeavesTheMatrixDirectory) {
    std::string const outside = pathOf("../outside.skm");
    writeFile(outside, "precious");
    store(skims(), 2, 2);
    std::string const everything = files();
    for (std::string const& name :
        {std::string("../outside.skm"), std::string("..\\outside.skm"), std::filesystem::absolute(outside).string(),
            std::string(), std::string("."), std::string("x/.."), std::string("x/")}) {
        add(skims(), 1);
        execute("update " + table() + " set filename = '" + name + "' where iteration = 1");
        EXPECT_TRUE(skims().Clear(1, 1, 1, 1, 1, 1, false)) << name;
        EXPECT_EQ(readFile(outside), "precious") << name;
        EXPECT_EQ(files(), everything) << name;
    }
    EXPECT_EQ(rows(), "-1|1|1|1|1|1|2|0|1-1-1-1-1-2.skm\n");
}

TEST_P(ResultRemoval, ofAWholeCubeTakesDirectoriesAndRowsWithoutFiles) {
    store(skims(), 1, 1);
    for (short i = 2; i <= 4; ++i) add(skims(), i);
    std::filesystem::create_directories(pathOf("1-1-1-1-1-2.skm/inner"));
    writeFile(pathOf("1-1-1-1-1-2.skm/inner/part"), "x");
    execute("update " + table() + " set filename = null where iteration = 4");
    EXPECT_TRUE(skims().Clear());
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(files(), "");
}

TEST_P(ResultRemoval, ofAWholeCubeTakesItsEntriesAlone) {
    TRkPathCube paths(project().settings(), true);
    store(paths, 1, 1);
    using Operation = bool (TRkVarCubes::*)();
    for (Operation const operation :
        {Operation(&TRkVarCubes::Clear), Operation(&TRkVarCubes::Remove), Operation(&TRkVarCubes::Delete)}) {
        for (short i = 1; i <= 3; ++i) store(skims(), i, 1);
        EXPECT_TRUE((skims().*operation)());
        EXPECT_EQ(rows(), "-6|1|1|1|1|1|1|0|1-1-1-1-1-1.ptm\n");
        EXPECT_EQ(files(), "1-1-1-1-1-1.ptm\n");
        EXPECT_TRUE((skims().*operation)());
    }
    skims().setMatrixSchema("nowhere");
    EXPECT_FALSE(skims().Clear());
}

}
}
