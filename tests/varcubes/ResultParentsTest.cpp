#include <cubes/varcubes/CubeDataInterface.h>
#include <cubes/varcubes/TRkCordonCube.h>
#include <cubes/varcubes/TRkScreenCube.h>
#include <cubes/varcubes/TRkSelectedLinkCube.h>
#include <cubes/varcubes/TRkStop2StopCube.h>
#include <cubes/varcubes/TRkTransitCube.h>

#include "varcubes/VarCubesTest.h"

namespace cubes::test {
namespace {

// Data that count their references and nothing else.
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

// Here data and single links are for derived classes: nothing is kept, whatever the entry's row.
template <typename Cube>
class ResultParents : public testing::Test {};

using Kinds = testing::Types<TRkSkimCube, TRkSelectedLinkCube, TRkCordonCube, TRkScreenCube, TRkTransitCube,
    TRkPathCube, TRkStop2StopCube>;
TYPED_TEST_SUITE(ResultParents, Kinds);

TYPED_TEST(ResultParents, areNotKeptByCubesWithoutAttachedData) {
    TypeParam cube(nullptr, true);
    CountedData data;
    EXPECT_FALSE(cube.SetData(&data, 1, 1, 1, 1, 1, 1, -1, 1, 1, 1, 1, 1, 1, false));
    EXPECT_EQ(data.references, 1);
    EXPECT_EQ(cube.GetData(1, 1, 1, 1, 1, 1, false), nullptr);
    short p = 9, m = 9, t = 9, u = 9, r = 9, i = 9;
    cube.GetParentPMTURI(1, 1, 1, 1, 1, 1, p, m, t, u, r, i);
    for (short const part : {p, m, t, u, r, i}) EXPECT_EQ(part, -1);
    EXPECT_FALSE(cube.SetParentPMTURI(1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 2));
    EXPECT_EQ(cube.GetParentCubenr(1, 1, 1, 1, 1, 1), 0);
    EXPECT_FALSE(cube.SetParentCubenr(1, 1, 1, 1, 1, 1, -6));
    TRkAutoListT<TRkVarCubes::TKey> list;
    list.Add(new TRkVarCubes::TKey(9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, true));
    EXPECT_FALSE(cube.GetChilds(1, 1, 1, 1, 1, 1, list));
    EXPECT_EQ(list.Count(), 0);
}

}
}
