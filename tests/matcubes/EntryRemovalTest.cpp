#include <filesystem>

#include "matcubes/MatCubesTest.h"

namespace cubes::test {
namespace {

class EntryRemoval : public MatCubesTest {
protected:
    void store(char const* cube, short user, float first) {
        ASSERT_TRUE(cubes().Set(cube, 1, 1, 1, user, matrix(first), lsReadWrite, false));
    }
};

CUBES_BOTH_BACKENDS(EntryRemoval);

TEST_P(EntryRemoval, takesRowAndFile) {
    store("Base", 1, 1);
    store("Base", 2, 2);
    EXPECT_TRUE(cubes().Clear(1, 1, 1, 1, 1, false));
    EXPECT_EQ(rows(), "1|1|1|1|2|0|1-1-1-1-2.odm\n");
    EXPECT_FALSE(std::filesystem::exists(pathOf("1-1-1-1-1.odm")));
    EXPECT_TRUE(std::filesystem::exists(pathOf("1-1-1-1-2.odm")));
    EXPECT_EQ(cubeRows(), "1|Base\n");
}

TEST_P(EntryRemoval, ofAMissingEntryIsFalseAndTouchesNoFile) {
    store("Base", 1, 1);
    writeFile(pathOf("1-1-1-1-2.odm"), "not of an entry");
    std::string const before = files();
    EXPECT_FALSE(cubes().Clear(1, 1, 1, 1, 2, false));
    EXPECT_FALSE(cubes().Clear("Base", 1, 1, 1, 2, false));
    EXPECT_FALSE(cubes().Clear("Other", 1, 1, 1, 1, false));
    EXPECT_EQ(files(), before);
}

TEST_P(EntryRemoval, hasSixEqualNames) {
    short user = 0;
    auto const next = [&] { store("Base", ++user, 1); };
    next();
    EXPECT_TRUE(cubes().Clear(1, 1, 1, 1, user, false));
    next();
    EXPECT_TRUE(cubes().Clear("Base", 0, 0, 0, static_cast<short>(user - 1), true));
    next();
    EXPECT_TRUE(cubes().Delete(1, 1, 1, 1, user, false));
    next();
    EXPECT_TRUE(cubes().Delete("base", 1, 1, 1, user, false));
    next();
    EXPECT_TRUE(cubes().Remove(1, 1, 1, 1, user, false));
    next();
    EXPECT_TRUE(cubes().Remove("BASE", 1, 1, 1, user, false));
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(files().find(".odm"), std::string::npos);
    EXPECT_FALSE(cubes().Delete(1, 1, 1, 1, user, false));
    EXPECT_FALSE(cubes().Remove("Base", 1, 1, 1, user, false));
}

TEST_P(EntryRemoval, doesNotAskTheUsageCounter) {
    store("Base", 1, 1);
    ASSERT_TRUE(cubes().incUsage(1, 1, 1, 1, 1));
    EXPECT_TRUE(cubes().Clear(1, 1, 1, 1, 1, false));
    EXPECT_EQ(rows(), "");
}

TEST_P(EntryRemoval, isTrueWhenTheFileIsGoneOrCannotBeRemoved) {
    store("Base", 1, 1);
    std::filesystem::remove(pathOf("1-1-1-1-1.odm"));
    EXPECT_TRUE(cubes().Clear(1, 1, 1, 1, 1, false));
    store("Base", 1, 1);
    std::filesystem::remove(pathOf("1-1-1-1-1.odm"));
    std::filesystem::create_directory(pathOf("1-1-1-1-1.odm"));
    EXPECT_TRUE(cubes().Clear(1, 1, 1, 1, 1, false));
    EXPECT_EQ(rows(), "");
    EXPECT_TRUE(std::filesystem::is_directory(pathOf("1-1-1-1-1.odm")));
}

TEST_P(EntryRemoval, takesAFileThatTwoRowsShareWithTheFirst) {
    store("Base", 1, 1);
    store("Base", 2, 2);
    project().execute("update " + table() + " set filename = '1-1-1-1-1.odm'");
    EXPECT_TRUE(cubes().Clear(1, 1, 1, 1, 2, false));
    EXPECT_FALSE(std::filesystem::exists(pathOf("1-1-1-1-1.odm")));
    EXPECT_TRUE(cubes().Check(1, 1, 1, 1, 1, false));
}

TEST_P(EntryRemoval, neverLeavesTheMatrixDirectory) {
    std::string const outside = TRkFString::Directory(project().matrixDirectory()).str() + "../outside.odm";
    writeFile(outside, "precious");
    for (std::string const& name : {std::string("../outside.odm"), std::string("..\\outside.odm"),
             std::filesystem::absolute(outside).string(), std::string(), std::string(".")}) {
        store("Base", 1, 1);
        project().execute("update " + table() + " set filename = '" + name + "'");
        EXPECT_TRUE(cubes().Clear(1, 1, 1, 1, 1, false)) << name;
        EXPECT_EQ(rows(), "") << name;
        EXPECT_EQ(readFile(outside), "precious") << name;
    }
    EXPECT_TRUE(std::filesystem::is_directory(project().matrixDirectory()));
}

TEST_P(EntryRemoval, ofAWholeCubeTakesItsEntriesAlone) {
    store("A", 1, 1);
    store("A", 2, 2);
    store("B", 1, 3);
    EXPECT_TRUE(cubes().Clear(short(1)));
    EXPECT_EQ(rows(), "2|1|1|1|1|0|2-1-1-1-1.odm\n");
    EXPECT_EQ(cubeRows(), "1|A\n2|B\n");
    EXPECT_TRUE(cubes().Clear(short(1)));
    EXPECT_TRUE(cubes().Clear("b"));
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(cubeRows(), "1|A\n2|B\n");
    EXPECT_EQ(files().find(".odm"), std::string::npos);
}

TEST_P(EntryRemoval, ofACubeFromTheRegisterClearsItFirst) {
    for (char const* const name : {"A", "B", "C", "D"}) store(name, 1, 1);
    EXPECT_TRUE(cubes().Delete(short(1)));
    EXPECT_TRUE(cubes().Delete("b"));
    EXPECT_TRUE(cubes().Remove(short(3)));
    EXPECT_TRUE(cubes().Remove("D"));
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(cubeRows(), "");
    EXPECT_FALSE(cubes().Delete(short(1)));
    EXPECT_FALSE(cubes().Remove("A"));
}

TEST_P(EntryRemoval, withoutAnEntryTableLeavesTheCube) {
    cubes().Add("Base");
    project().project().connection()->Execute("drop table " + table());
    EXPECT_FALSE(cubes().Clear(short(1)));
    EXPECT_FALSE(cubes().Delete(short(1)));
    EXPECT_FALSE(cubes().Delete("Base"));
    EXPECT_FALSE(cubes().Clear(1, 1, 1, 1, 1, false));
    EXPECT_EQ(cubeRows(), "1|Base\n");
}

TEST_P(EntryRemoval, checksCubesAndEntries) {
    store("Base", 1, 1);
    EXPECT_TRUE(cubes().Check(short(1)));
    EXPECT_TRUE(cubes().Check("base"));
    EXPECT_FALSE(cubes().Check(short(2)));
    EXPECT_FALSE(cubes().Check("Other"));
    EXPECT_TRUE(cubes().Check(1, 0, 0, 0, 0, true));
    EXPECT_TRUE(cubes().Check("Base", 1, 1, 1, 1, false));
    EXPECT_FALSE(cubes().Check("Base", 1, 1, 1, 1, true));
    EXPECT_FALSE(cubes().Check("Other", 1, 1, 1, 1, false));
}

}
}
