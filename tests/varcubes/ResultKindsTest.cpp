#include <cubes/varcubes/TRkCordonCube.h>
#include <cubes/varcubes/TRkScreenCube.h>
#include <cubes/varcubes/TRkSelectedLinkCube.h>
#include <cubes/varcubes/TRkStop2StopCube.h>
#include <cubes/varcubes/TRkTransitCube.h>

#include <type_traits>

#include "varcubes/VarCubesTest.h"

namespace cubes::test {
namespace {

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

TEST_P(ResultKinds, takeADirectoryOfTheirOwn) {
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

// Cordon and stop-to-stop cubes take the directory as plain text, the other kinds as a path.
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

}
}
