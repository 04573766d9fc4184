#include <cubes/matrix/TRkVLSelectedLinkMatrix.h>
#include <cubes/varcubes/TRkScreenCube.h>
#include <cubes/varcubes/TRkSelectedLinkCube.h>

#include <filesystem>
#include <stdexcept>

#include "support/ChildTask.h"
#include "varcubes/VarCubesTest.h"

namespace cubes::test {
namespace {

namespace fs = std::filesystem;

class SelectedLinkCube : public VarCubesTest {
protected:
    void SetUp() override {
        VarCubesTest::SetUp();
        if (IsSkipped()) return;
        links_.emplace(project().settings(), true);
        screens_.emplace(project().settings(), true);
    }
    TRkSelectedLinkCube& linkCube() { return *links_; }
    TRkScreenCube& screenCube() { return *screens_; }

    TRkMatrix filled(std::string const& file) {
        TRkMatrix matrix = TRkMatrix::selectedLink(2, 3, file.c_str());
        dynamic_cast<TRkVLSelectedLinkMatrix&>(*matrix.Body()).Add(0, 0, 5);
        return matrix;
    }
    static bool isSelectedLink(TRkMatrix const& matrix) {
        return dynamic_cast<TRkVLSelectedLinkMatrix const*>(matrix.Body()) != nullptr;
    }

    TempDir elsewhere_;

private:
    std::optional<TRkSelectedLinkCube> links_;
    std::optional<TRkScreenCube> screens_;
};

CUBES_BOTH_BACKENDS(SelectedLinkCube);

TEST_P(SelectedLinkCube, takesTheFileOfASelectedLinkMatrixAsItIs) {
    std::string const file = elsewhere_.file("links");
    TRkMatrix const matrix = filled(file);
    TRkVarCubes* const cubes[] = {&linkCube(), &screenCube()};
    for (TRkVarCubes* const cube : cubes) {
        EXPECT_TRUE(cube->Set(1, 1, 1, 1, 1, 1, matrix, lsRead, false));
        EXPECT_EQ(firstElement(*cube, 1), 5.0);
        EXPECT_TRUE(isSelectedLink(*open(*cube, 1, lsRead)));
    }
    EXPECT_EQ(readFile(pathOf("1-1-1-1-1-1.slm")), readFile(file));
    EXPECT_EQ(readFile(pathOf("1-1-1-1-1-1.crm")), readFile(file));
    EXPECT_EQ(rows(), "-4|1|1|1|1|1|1|0|1-1-1-1-1-1.crm\n-2|1|1|1|1|1|1|0|1-1-1-1-1-1.slm\n");
    EXPECT_EQ(open(screenCube(), 1, lsRead)->MatrixKind(), mkScreenLine);
}

TEST_P(SelectedLinkCube, flushesTheMatrixBeforeItsFileIsCopied) {
    std::string const file = elsewhere_.file("links");
    TRkMatrix matrix = filled(file);
    EXPECT_FALSE(fs::exists(file));
    EXPECT_TRUE(linkCube().SaveMatrix(matrix, 1, 1, 1, 1, 1, 1, lsRead, false));
    EXPECT_TRUE(fs::exists(file));
    dynamic_cast<TRkVLSelectedLinkMatrix&>(*matrix.Body()).Add(0, 0, 1);
    EXPECT_TRUE(linkCube().SaveMatrix(matrix, 1, 1, 1, 1, 1, 1, lsRead, false));
    add(linkCube(), 1);
    EXPECT_EQ(firstElement(linkCube(), 1), 6.0);
}

TEST_P(SelectedLinkCube, namesTheFileByTheShiftedKeyAndAsksNoRow) {
    EXPECT_TRUE(screenCube().SaveMatrix(filled(elsewhere_.file("a")), 0, 0, 0, 0, 1, 1, lsRead, true));
    EXPECT_TRUE(screenCube().SaveMatrix(matrix(1), 0, 0, 0, 0, 1, 2, lsRead, true));
    EXPECT_EQ(files(), "1-1-1-1-1-1.crm\n1-1-1-1-1-2.crm\n");
    EXPECT_EQ(rows(), "");
}

TEST_P(SelectedLinkCube, doesNothingOntoTheMatrixsOwnFileAndGivesFalse) {
    ASSERT_TRUE(linkCube().Set(1, 1, 1, 1, 1, 1, filled(elsewhere_.file("a")), lsRead, false));
    std::string const before = readFile(pathOf("1-1-1-1-1-1.slm"));
    for (RkLockState const lock : {lsRead, lsInPlace, lsChanged}) {
        auto const own = open(linkCube(), 1, lsRead);
        EXPECT_FALSE(linkCube().SaveMatrix(*own, 1, 1, 1, 1, 1, 1, lock, false));
        EXPECT_EQ(readFile(pathOf("1-1-1-1-1-1.slm")), before);
    }
}

// Set clears the entry first, and with it the matrix's own file: flushing brings it back.
TEST_P(SelectedLinkCube, losesNothingWhenAnEntrysOwnMatrixIsSetOntoIt) {
    ASSERT_TRUE(linkCube().Set(1, 1, 1, 1, 1, 1, filled(elsewhere_.file("a")), lsRead, false));
    auto const own = open(linkCube(), 1, lsRead);
    EXPECT_FALSE(linkCube().Set(1, 1, 1, 1, 1, 1, *own, lsRead, false));
    EXPECT_EQ(firstElement(linkCube(), 1), 5.0);
}

TEST_P(SelectedLinkCube, storesOtherMatricesAsEveryResultCubeDoes) {
    TRkVarCubes* const cubes[] = {&linkCube(), &screenCube()};
    TRkMatrix withoutFile = filled("");
    for (TRkVarCubes* const cube : cubes) {
        EXPECT_TRUE(store(*cube, 1, 7));
        EXPECT_EQ(firstElement(*cube, 1), 7.0);
        EXPECT_TRUE(cube->Set(1, 1, 1, 1, 1, 2, withoutFile, lsRead, false));
        EXPECT_EQ(firstElement(*cube, 2), 5.0);
        EXPECT_FALSE(isSelectedLink(*open(*cube, 2, lsRead)));
        auto const own = open(*cube, 1, lsRead);
        EXPECT_FALSE(cube->SaveMatrix(*own, 1, 1, 1, 1, 1, 1, lsInPlace, false));
    }
    EXPECT_EQ(linkCube().GetHeader(1, 1, 1, 1, 1, 1, false)->Kind(), 3u);
    EXPECT_EQ(screenCube().GetHeader(1, 1, 1, 1, 1, 1, false)->Kind(), 5u);
}

TEST_P(SelectedLinkCube, isFalseWhenTheFileCannotBeCopied) {
    fs::create_directory(pathOf("1-1-1-1-1-1.slm"));
    EXPECT_FALSE(linkCube().SaveMatrix(filled(elsewhere_.file("a")), 1, 1, 1, 1, 1, 1, lsRead, false));
    EXPECT_TRUE(fs::is_directory(pathOf("1-1-1-1-1-1.slm")));
    fs::remove_all(directory());
    EXPECT_FALSE(linkCube().SaveMatrix(filled(elsewhere_.file("b")), 1, 1, 1, 1, 1, 1, lsRead, false));
}

// Only these two kinds copy files: in the others the elements are written anew.
TEST_P(SelectedLinkCube, isTheOnlyKindWithScreenLinesThatCopies) {
    EXPECT_TRUE(skims().Set(1, 1, 1, 1, 1, 1, filled(elsewhere_.file("a")), lsRead, false));
    EXPECT_EQ(firstElement(skims(), 1), 5.0);
    EXPECT_FALSE(isSelectedLink(*open(skims(), 1, lsRead)));
    EXPECT_EQ(skims().GetHeader(1, 1, 1, 1, 1, 1, false)->Type(), mtSkim);
}

ChildTask const refusedSaving("refused saving", [](int, std::string const& root) {
    Project const own = Project::open(root);
    TRkSelectedLinkCube cube(own.settings(), true);
    TempDir const there;
    TRkMatrix matrix = TRkMatrix::selectedLink(2, 3, there.file("b").c_str());
    dynamic_cast<TRkVLSelectedLinkMatrix&>(*matrix.Body()).Add(0, 0, 7);
    if (cube.SaveMatrix(matrix, 1, 1, 1, 1, 1, 1, lsRead, false)) throw std::runtime_error("saved");
});

TEST_P(SelectedLinkCube, leavesAFileAloneThatSomeoneWrites) {
    ASSERT_TRUE(linkCube().Set(1, 1, 1, 1, 1, 1, filled(elsewhere_.file("a")), lsRead, false));
    std::string const before = readFile(pathOf("1-1-1-1-1-1.slm"));
    auto const writing = open(linkCube(), 1, lsReadWrite);
    ASSERT_NE(writing, nullptr);
    EXPECT_EQ(refusedSaving.inProcesses(1, project().root()), 1);
    EXPECT_EQ(readFile(pathOf("1-1-1-1-1-1.slm")), before);
}

}
}
