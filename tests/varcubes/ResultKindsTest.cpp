#include <cubes/matrix/TRkVLSelectedLinkMatrix.h>
#include <cubes/varcubes/CubeDataInterface.h>
#include <cubes/varcubes/TRkCordonCube.h>
#include <cubes/varcubes/TRkScreenCube.h>
#include <cubes/varcubes/TRkSelectedLinkCube.h>
#include <cubes/varcubes/TRkStop2StopCube.h>
#include <cubes/varcubes/TRkTransitCube.h>

#include <filesystem>
#include <stdexcept>
#include <type_traits>

#include "support/ChildTask.h"
#include "varcubes/VarCubesTest.h"

namespace cubes::test {
namespace {

namespace fs = std::filesystem;

struct Kind {
    std::unique_ptr<TRkVarCubes> cube;
    std::string className;
    std::string name;
    int cubeType;
    int matrixType;
    std::string ext;
    unsigned matrixKind;
};

class ResultKinds : public VarCubesTest {
protected:
    template <typename Cube>
    static Kind kind(TRkGlobalSettings* settings, char const* className, unsigned matrixKind) {
        auto cube = std::make_unique<Cube>(settings, true);
        std::string const name = cube->Name();
        return {std::move(cube), className, name, Cube::CubeType, Cube::MatrixType, Cube::Ext, matrixKind};
    }
    static std::vector<Kind> kinds(TRkGlobalSettings* settings) {
        std::vector<Kind> all;
        all.push_back(kind<TRkSkimCube>(settings, "TRkSkimCube", 2));
        all.push_back(kind<TRkSelectedLinkCube>(settings, "TRkSelectedLinkCube", 3));
        all.push_back(kind<TRkCordonCube>(settings, "TRkCordonCube", 0));
        all.push_back(kind<TRkScreenCube>(settings, "TRkScreenCube", 5));
        all.push_back(kind<TRkTransitCube>(settings, "TRkTransitCube", 6));
        all.push_back(kind<TRkPathCube>(settings, "TRkPathCube", 7));
        all.push_back(kind<TRkStop2StopCube>(settings, "TRkStop2StopCube", 8));
        return all;
    }
};

CUBES_BOTH_BACKENDS(ResultKinds);

TEST_P(ResultKinds, haveTheirNumbersTypesAndExtensions) {
    struct {
        char const* name;
        int cubeType;
        int matrixType;
        char const* ext;
    } const expected[] = {{"skimcube", -1, 13, ".skm"}, {"selectedlinkcube", -2, 12, ".slm"},
        {"cordoncube", -3, 16, ".cwm"}, {"screencube", -4, 12, ".crm"}, {"transitcube", -5, 7, ".tsm"},
        {"pathcube", -6, 7, ".ptm"}, {"stop2stopcube", -7, 23, ".s2s"}};
    auto const all = kinds(project().settings());
    for (std::size_t i = 0; i < all.size(); ++i) {
        EXPECT_EQ(all[i].name, expected[i].name);
        EXPECT_EQ(all[i].cubeType, expected[i].cubeType);
        EXPECT_EQ(all[i].matrixType, expected[i].matrixType);
        EXPECT_EQ(all[i].ext, expected[i].ext);
        EXPECT_EQ(all[i].cube->CubeNumber(), expected[i].cubeType);
        EXPECT_EQ(all[i].cube->ClassID(), 0);
        EXPECT_EQ(all[i].cube->ClassName(), all[i].className);
    }
}

TEST_P(ResultKinds, shareTheTableButNotTheirEntries) {
    auto const all = kinds(project().settings());
    for (auto const& kind : all) ASSERT_TRUE(store(*kind.cube, 1, 1));
    EXPECT_EQ(files(), "1-1-1-1-1-1.crm\n1-1-1-1-1-1.cwm\n1-1-1-1-1-1.ptm\n1-1-1-1-1-1.s2s\n1-1-1-1-1-1.skm\n"
                       "1-1-1-1-1-1.slm\n1-1-1-1-1-1.tsm\n");
    for (auto const& kind : all) {
        auto const found = open(*kind.cube, 1, lsRead);
        ASSERT_TRUE(found) << kind.name;
        EXPECT_EQ(found->Type(), kind.matrixType) << kind.name;
        EXPECT_EQ(found->Header().Kind(), kind.matrixKind) << kind.name;
        TRkMatrixHeader const* const header = kind.cube->GetHeader(1, 1, 1, 1, 1, 1, false);
        EXPECT_EQ(header->Kind(), kind.matrixKind) << kind.name;
        TRkAutoListT<TRkVarCubes::TKey> list;
        EXPECT_TRUE(kind.cube->Get(list));
        EXPECT_EQ(list.Count(), 1) << kind.name;
        EXPECT_TRUE(kind.cube->Clear());
    }
    EXPECT_EQ(rows(), "");
}

TEST_P(ResultKinds, canHaveADirectoryOfTheirOwn) {
    TempDir const own;
    TRkGlobalSettings* const settings = project().settings();
    EXPECT_TRUE(store(*std::make_unique<TRkCordonCube>(settings, own.str().c_str(), true), 1, 1));
    EXPECT_TRUE(store(*std::make_unique<TRkTransitCube>(settings, TRkFString(own.str()), true), 1, 1));
    EXPECT_EQ(filesIn(own.str()), "1-1-1-1-1-1.cwm\n1-1-1-1-1-1.tsm\n");
    EXPECT_EQ(TRkStop2StopCube(settings, "", true).MatrixDirectory().str(), directory());
}

TEST_P(ResultKinds, areCopiedWithDirectoryAndNumbers) {
    TempDir const own;
    TRkScreenCube const screens(project().settings(), TRkFString(own.str()), true);
    TRkScreenCube copy(screens);
    EXPECT_EQ(copy.MatrixDirectory().str(), screens.MatrixDirectory().str());
    EXPECT_TRUE(store(copy, 1, 1));
    EXPECT_TRUE(screens.Check(1, 1, 1, 1, 1, 1, false));
    TRkScreenCube assigned(nullptr, false);
    assigned = copy;
    EXPECT_EQ(firstElement(assigned, 1), 1.0);
}

// Cordon and stop-to-stop cubes use the directory as plain text, the other kinds as a path.
template <typename Cube, typename Directory>
constexpr bool takes = std::is_constructible_v<Cube, TRkGlobalSettings*, Directory, bool>;

static_assert(takes<TRkCordonCube, char const*> && !takes<TRkCordonCube, TRkFString>);
static_assert(takes<TRkStop2StopCube, char const*> && !takes<TRkStop2StopCube, TRkFString>);
static_assert(takes<TRkSkimCube, TRkFString> && takes<TRkSelectedLinkCube, TRkFString> &&
              takes<TRkScreenCube, TRkFString> && takes<TRkTransitCube, TRkFString> && takes<TRkPathCube, TRkFString>);

template <typename Cube>
constexpr bool takesNoTextAsFlag = !std::is_constructible_v<Cube, TRkGlobalSettings*, char const*> &&
                                   std::is_constructible_v<Cube, TRkGlobalSettings*, bool> &&
                                   std::is_copy_constructible_v<Cube> && std::is_copy_assignable_v<Cube>;

static_assert(takesNoTextAsFlag<TRkSkimCube> && takesNoTextAsFlag<TRkSelectedLinkCube> &&
              takesNoTextAsFlag<TRkCordonCube> && takesNoTextAsFlag<TRkScreenCube> &&
              takesNoTextAsFlag<TRkTransitCube> && takesNoTextAsFlag<TRkPathCube> &&
              takesNoTextAsFlag<TRkStop2StopCube>);

// Data that only count their references.
class CountedData final : public CubeDataInterface {
public:
    void addRef() override { ++references; }
    long release() override { return --references; }
    void setPurpose(long) override {}
    long getPurpose() const override { return 1; }
    void setMode(long) override {}
    long getMode() const override { return 2; }
    void setTime(long) override {}
    long getTime() const override { return 3; }
    void setUser(long) override {}
    long getUser() const override { return 4; }
    void setResult(long) override {}
    long getResult() const override { return 5; }
    void setIteration(long) override {}
    long getIteration() const override { return 6; }

    long references = 1;
};

// Results have parents only through Add: attached data and single links are for derived classes.
TEST_P(ResultKinds, keepNoAttachedDataAndChangeNoParent) {
    for (auto const& kind : kinds(project().settings())) {
        SCOPED_TRACE(kind.name);
        TRkVarCubes& cube = *kind.cube;
        ASSERT_TRUE(cube.Add(1, 1, 1, 1, 1, 1, -6, 1, 2, 3, 4, 5, 6, false));
        ASSERT_TRUE(cube.Add(1, 1, 1, 1, 1, 2, static_cast<short>(kind.cubeType), 1, 1, 1, 1, 1, 1, false));
        std::string const before = rows() + parents() + files();
        CountedData data;
        EXPECT_FALSE(cube.SetData(&data, 1, 1, 1, 1, 1, 1, -1, 1, 1, 1, 1, 1, 1, false));
        EXPECT_EQ(data.references, 1);
        EXPECT_EQ(cube.GetData(1, 1, 1, 1, 1, 1, false), nullptr);
        short p = 9, m = 9, t = 9, u = 9, r = 9, i = 9;
        cube.GetParentPMTURI(1, 1, 1, 1, 1, 1, p, m, t, u, r, i);
        for (short const part : {p, m, t, u, r, i}) EXPECT_EQ(part, -1);
        EXPECT_FALSE(cube.SetParentPMTURI(1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 2));
        EXPECT_EQ(cube.GetParentCubenr(1, 1, 1, 1, 1, 1), 0);
        EXPECT_FALSE(cube.SetParentCubenr(1, 1, 1, 1, 1, 1, -5));
        TRkAutoListT<TRkVarCubes::TKey> list;
        list.Add(new TRkVarCubes::TKey(9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, true));
        EXPECT_FALSE(cube.GetChilds(1, 1, 1, 1, 1, 1, list));
        EXPECT_EQ(list.Count(), 0);
        EXPECT_EQ(rows() + parents() + files(), before);
        // The parents that Add wrote are in the table.
        cube.GetPmturis(static_cast<short>(kind.cubeType), 1, 1, 1, 1, 1, 1, list);
        EXPECT_EQ(list.Count(), 1);
        EXPECT_TRUE(cube.Clear());
    }
}
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

TEST_P(SelectedLinkCube, copiesTheFileOfASelectedLinkMatrixUnchanged) {
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

TEST_P(SelectedLinkCube, namesTheFileByTheShiftedKeyAndReadsNoRow) {
    EXPECT_TRUE(screenCube().SaveMatrix(filled(elsewhere_.file("a")), 0, 0, 0, 0, 1, 1, lsRead, true));
    EXPECT_TRUE(screenCube().SaveMatrix(smallMatrix(1), 0, 0, 0, 0, 1, 2, lsRead, true));
    EXPECT_EQ(files(), "1-1-1-1-1-1.crm\n1-1-1-1-1-2.crm\n");
    EXPECT_EQ(rows(), "");
}

TEST_P(SelectedLinkCube, doesNothingOntoTheMatrixsOwnFileAndReturnsFalse) {
    ASSERT_TRUE(linkCube().Set(1, 1, 1, 1, 1, 1, filled(elsewhere_.file("a")), lsRead, false));
    std::string const before = readFile(pathOf("1-1-1-1-1-1.slm"));
    for (RkLockState const lock : {lsRead, lsInPlace, lsChanged}) {
        auto const own = open(linkCube(), 1, lsRead);
        EXPECT_FALSE(linkCube().SaveMatrix(*own, 1, 1, 1, 1, 1, 1, lock, false));
        EXPECT_EQ(readFile(pathOf("1-1-1-1-1-1.slm")), before);
    }
}

// Set first clears the entry with the matrix's own file; flushing writes it again.
TEST_P(SelectedLinkCube, losesNothingWhenAnEntrysOwnMatrixIsSetOntoIt) {
    ASSERT_TRUE(linkCube().Set(1, 1, 1, 1, 1, 1, filled(elsewhere_.file("a")), lsRead, false));
    auto const own = open(linkCube(), 1, lsRead);
    EXPECT_FALSE(linkCube().Set(1, 1, 1, 1, 1, 1, *own, lsRead, false));
    EXPECT_EQ(firstElement(linkCube(), 1), 5.0);
}

TEST_P(SelectedLinkCube, storesOtherMatricesLikeEveryResultCube) {
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

// Only these two kinds copy files: the others write the elements.
TEST_P(SelectedLinkCube, andScreenLinesAreTheOnlyKindsThatCopy) {
    EXPECT_TRUE(skims().Set(1, 1, 1, 1, 1, 1, filled(elsewhere_.file("a")), lsRead, false));
    EXPECT_EQ(firstElement(skims(), 1), 5.0);
    EXPECT_FALSE(isSelectedLink(*open(skims(), 1, lsRead)));
    EXPECT_EQ(skims().GetHeader(1, 1, 1, 1, 1, 1, false)->Type(), mtSkim);
}

ChildTask const savingOntoAnEntry("saving onto an entry", [](int, std::string const& root) {
    Project const own = Project::open(root);
    TRkSelectedLinkCube cube(own.settings(), true);
    TempDir const there;
    TRkMatrix matrix = TRkMatrix::selectedLink(2, 3, there.file("b").c_str());
    dynamic_cast<TRkVLSelectedLinkMatrix&>(*matrix.Body()).Add(0, 0, 7);
    if (!cube.SaveMatrix(matrix, 1, 1, 1, 1, 1, 1, lsRead, false)) throw std::runtime_error("refused");
});

TEST_P(SelectedLinkCube, doesNotReplaceAFileThatAnotherProcessWrites) {
    ASSERT_TRUE(linkCube().Set(1, 1, 1, 1, 1, 1, filled(elsewhere_.file("a")), lsRead, false));
    std::string const before = readFile(pathOf("1-1-1-1-1-1.slm"));
    auto writing = open(linkCube(), 1, lsReadWrite);
    ASSERT_NE(writing, nullptr);
    EXPECT_EQ(savingOntoAnEntry.inProcesses(1, project().root()), 0);
    EXPECT_EQ(readFile(pathOf("1-1-1-1-1-1.slm")), before);
    writing.reset();
    EXPECT_EQ(savingOntoAnEntry.inProcesses(1, project().root()), 1);
    EXPECT_EQ(firstElement(linkCube(), 1), 7.0);
}

}
}
