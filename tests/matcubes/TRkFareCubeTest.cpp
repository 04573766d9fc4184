#include <cubes/matcubes/TRkFareCube.h>

#include <functional>
#include <type_traits>

#include "matcubes/MatCubesTest.h"

namespace cubes::test {
namespace {

class FareCube : public MatCubesTest {
protected:
    void SetUp() override {
        MatCubesTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        fares_.emplace(project().settings(), true);
    }
    TRkFareCube& fares() { return *fares_; }
    void store(short u, float first) {
        ASSERT_TRUE(fares().Add(1, 1, 1, u, false));
        ASSERT_TRUE(fares().Set(1, 1, 1, u, smallMatrix(first), lsNone, false));
    }
    double first(short u) { return fares().Get(1, 1, 1, u, 0, 0, lsRead, false); }

private:
    std::optional<TRkFareCube> fares_;
};

CUBES_BOTH_BACKENDS(FareCube);

static_assert(!std::is_constructible_v<TRkFareCube, TRkGlobalSettings*, char const*>);
static_assert(std::is_constructible_v<TRkFareCube, TRkGlobalSettings*, bool>);

TEST_P(FareCube, hasItsNameExtensionAndType) {
    EXPECT_STREQ(TRkFareCube::Ext, ".frs");
    EXPECT_STREQ(fares().Name(), "StopCube");
    EXPECT_STREQ(fares().ClassName(), "TRkFareCube");
    EXPECT_EQ(fares().ClassID(), 0);
    store(1, 5);
    EXPECT_EQ(files(), "-8-1-1-1-1.frs\n");
    auto const* const header = fares().GetHeader(0, 0, 0, 0, true);
    ASSERT_NE(header, nullptr);
    EXPECT_EQ(header->Type(), 23);
    EXPECT_EQ(fares().GetHeader(2, 1, 1, 1, false), nullptr);
}

TEST_P(FareCube, keepsItsTypeWhenItIsCopiedAndAssigned) {
    TempDir const own;
    TRkFareCube const there(project().settings(), own.str().c_str(), true);
    TRkFareCube copied = there;
    EXPECT_EQ(copied.MatrixDirectory().str(), own.file(""));
    ASSERT_TRUE(copied.Add(1, 1, 1, 1, false));
    ASSERT_TRUE(copied.Set(1, 1, 1, 1, smallMatrix(5), lsNone, false));
    EXPECT_EQ(copied.GetHeader(1, 1, 1, 1, false)->Type(), mtFare);
    fares() = copied;
    EXPECT_EQ(fares().MatrixDirectory().str(), own.file(""));
    EXPECT_EQ(first(1), 5.0);
}

TEST_P(FareCube, isNotInTheRegister) {
    EXPECT_TRUE(fares().Add(0, 0, 0, 0, true));
    EXPECT_TRUE(fares().Add("Anything", 1, 1, 1, 1, false));
    EXPECT_EQ(rows(), "-8|1|1|1|1|0|-8-1-1-1-1.frs\n");
    EXPECT_EQ(cubeRows(), "");
}

TEST_P(FareCube, doesNothingAsACube) {
    store(1, 5);
    project().execute("insert into cube values (-8, 'StopCube')");
    EXPECT_FALSE(fares().Add());
    EXPECT_FALSE(fares().Check());
    EXPECT_FALSE(fares().Delete());
    EXPECT_FALSE(fares().Remove());
    EXPECT_EQ(cubeRows(), "-8|StopCube\n");
    EXPECT_EQ(first(1), 5.0);
}

TEST_P(FareCube, isClearedSeparately) {
    store(1, 5);
    store(2, 6);
    ASSERT_TRUE(cubes().Set("Base", 1, 1, 1, 1, smallMatrix(1), lsNone, false));
    EXPECT_TRUE(fares().Clear());
    EXPECT_EQ(rows(), "1|1|1|1|1|0|1-1-1-1-1.odm\n");
    EXPECT_EQ(files(), "1-1-1-1-1.odm\n");
    EXPECT_TRUE(fares().Clear());
}

TEST_P(FareCube, worksOnItsEntriesByKeyAndByAnyName) {
    ASSERT_TRUE(cubes().Set("Base", 1, 1, 1, 1, smallMatrix(1), lsNone, false));
    store(1, 5);
    EXPECT_TRUE(fares().Check(0, 0, 0, 0, true));
    EXPECT_TRUE(fares().Check("Base", 1, 1, 1, 1, false));
    EXPECT_EQ(fares().FileName(1, 1, 1, 1, false).str(), pathOf("-8-1-1-1-1.frs"));
    EXPECT_EQ(fares().FileName("Base", 0, 0, 0, 0, true).str(), pathOf("-8-1-1-1-1.frs"));
    EXPECT_EQ(first(1), 5.0);
    EXPECT_EQ(fares().Get("Base", 1, 1, 1, 1, 1, 1, lsRead, false), 16.0);
    std::unique_ptr<TRkMatrix> const byKey(fares().Get(1, 1, 1, 1, lsRead, false));
    std::unique_ptr<TRkMatrix> const byName(fares().Get("Base", 0, 0, 0, 0, lsRead, true));
    ASSERT_TRUE(byKey && byName);
    EXPECT_EQ(byKey->RowAt(0, 8)[0], 5.0f);
    EXPECT_EQ(byName->RowAt(0, 8)[0], 5.0f);
    EXPECT_TRUE(fares().Set("Base", 1, 1, 1, 1, smallMatrix(7), lsNone, false));
    EXPECT_EQ(first(1), 7.0);
    EXPECT_FALSE(fares().Set("Base", 1, 1, 1, 2, smallMatrix(7), lsNone, false));
    EXPECT_FALSE(fares().Set(1, 1, 1, 2, smallMatrix(7), lsNone, false));
    EXPECT_EQ(firstElement(1, 1, 1, 1, 1), 1.0);
}

TEST_P(FareCube, removesAnEntryByEachOfSixFunctions) {
    std::function<bool()> const removals[] = {[&] { return fares().Clear(1, 1, 1, 1, false); },
        [&] { return fares().Clear("Base", 0, 0, 0, 0, true); }, [&] { return fares().Delete(1, 1, 1, 1, false); },
        [&] { return fares().Delete("Base", 1, 1, 1, 1, false); }, [&] { return fares().Remove(0, 0, 0, 0, true); },
        [&] { return fares().Remove("Base", 1, 1, 1, 1, false); }};
    ASSERT_TRUE(cubes().Add("Base", 1, 1, 1, 1, false));
    for (auto const& remove : removals) {
        store(1, 5);
        EXPECT_TRUE(remove());
        EXPECT_EQ(rows(), "1|1|1|1|1|0|1-1-1-1-1.odm\n");
        EXPECT_EQ(files(), "");
        EXPECT_FALSE(remove());
    }
}

TEST_P(FareCube, copiesAndMovesFares) {
    store(1, 5);
    EXPECT_TRUE(fares().Copy(1, 1, 1, 1, 1, 1, 1, 2, true, false));
    EXPECT_TRUE(fares().Copy("A", 0, 0, 0, 0, "B", 0, 0, 0, 2, true, true));
    EXPECT_TRUE(fares().Move(1, 1, 1, 1, 1, 1, 1, 4, true, false));
    EXPECT_TRUE(fares().Move("A", 1, 1, 1, 2, "B", 1, 1, 1, 5, false, false));
    EXPECT_EQ(rows(), "-8|1|1|1|3|0|-8-1-1-1-3.frs\n-8|1|1|1|4|0|-8-1-1-1-4.frs\n-8|1|1|1|5|0|-8-1-1-1-5.frs\n");
    EXPECT_EQ(files(), "-8-1-1-1-3.frs\n-8-1-1-1-4.frs\n-8-1-1-1-5.frs\n");
    for (short const u : {short{3}, short{4}, short{5}}) EXPECT_EQ(first(u), 5.0);
    EXPECT_TRUE(fares().Copy(1, 1, 1, 9, 1, 1, 1, 8, true, false));
    EXPECT_EQ(cubeRows(), "");
}

TEST_P(FareCube, refusesAnExistingTargetLikeTheFormsByNumber) {
    store(1, 5);
    store(2, 6);
    std::string const before = rows() + files();
    EXPECT_EQ(
        cubeErrorOf([&] { fares().Copy(1, 1, 1, 1, 1, 1, 1, 2, true, false); }), "Entry already exists in the cube");
    EXPECT_EQ(cubeErrorOf([&] { fares().Copy("A", 1, 1, 1, 1, "B", 1, 1, 1, 2, true, false); }),
        "Entry already exists in the cube");
    EXPECT_EQ(cubeErrorOf([&] { fares().Move(1, 1, 1, 1, 1, 1, 1, 2, true, false); }), "Cube already exists");
    EXPECT_EQ(cubeErrorOf([&] { fares().Move("A", 1, 1, 1, 1, "B", 1, 1, 1, 2, true, false); }), "Cube already exists");
    EXPECT_EQ(rows() + files(), before);
    EXPECT_EQ(first(2), 6.0);
}

TEST_P(FareCube, listsFaresWithoutNames) {
    store(2, 6);
    store(1, 5);
    ASSERT_TRUE(cubes().Add("Base", 1, 1, 1, 1, false));
    project().execute("insert into cube values (-8, 'StopCube')");
    TRkAutoListT<TRkMatCubes::TKey> list;
    EXPECT_TRUE(fares().Get(list));
    ASSERT_EQ(list.Count(), 2);
    EXPECT_EQ(list[0]->AsString().str(), "-8,1,1,1,1,");
    EXPECT_EQ(list[1]->AsString().str(), "-8,1,1,1,2,");
    fares().setMatrixSchema("nowhere");
    EXPECT_FALSE(fares().Get(list));
    EXPECT_EQ(list.Count(), 0);
    EXPECT_FALSE(fares().Add(1, 1, 1, 1, false));
    EXPECT_FALSE(fares().Clear());
}

// Two base-40 digits cannot hold a sign.
TEST_P(FareCube, cannotBeStoredUnderOldFileNames) {
    VersionGuard const version(3);
    EXPECT_EQ(cubeErrorOf([&] { fares().Add(1, 1, 1, 1, false); }),
        "IntTo40T> Only 2 positions reserved! Maximum value is 1599");
    EXPECT_EQ(rows(), "");
}

// No function is virtual: through TRkMatCubes the name counts.
TEST_P(FareCube, usesTheGivenCubeThroughTheBaseClass) {
    TRkMatCubes& known = fares();
    EXPECT_TRUE(known.Add("Base", 1, 1, 1, 1, false));
    EXPECT_EQ(rows(), "1|1|1|1|1|0|1-1-1-1-1.frs\n");
    EXPECT_FALSE(fares().Check("Base", 1, 1, 1, 1, false));
}

}
}
