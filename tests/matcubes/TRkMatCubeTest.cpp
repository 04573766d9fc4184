#include <cubes/core/TRkCubesException.h>
#include <cubes/matcubes/TRkMatCube.h>

#include <filesystem>
#include <type_traits>

#include "matcubes/MatCubesTest.h"

namespace cubes::test {
namespace {

class MatCube : public MatCubesTest {
protected:
    void SetUp() override {
        MatCubesTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        cubes().Add("Other");
        base_.emplace(project().settings(), "Base", true);
    }
    TRkMatCube& base() { return *base_; }
    double first(short u) { return base().Get(1, 1, 1, u, 0, 0, lsRead, false); }
    bool copy(short from, short to, bool failIfExists) {
        return base().Copy(1, 1, 1, from, 1, 1, 1, to, failIfExists, false);
    }

private:
    std::optional<TRkMatCube> base_;
};

CUBES_BOTH_BACKENDS(MatCube);

static_assert(!std::is_constructible_v<TRkMatCube, TRkGlobalSettings*, char const*, char const*>);
static_assert(!std::is_constructible_v<TRkMatCubes, TRkGlobalSettings*, char const*, char const*>);
static_assert(std::is_constructible_v<TRkMatCubes, TRkGlobalSettings*, char const*, bool>);

template <typename Cube>
constexpr bool movesByKey = requires(Cube const& cube, short s) {
    cube.Move(s, s, s, s, s, s, s, s, false, false);
};
static_assert(!movesByKey<TRkMatCube>);

TEST_P(MatCube, isBoundByName) {
    EXPECT_STREQ(TRkMatCube::Ext, ".odm");
    EXPECT_STREQ(base().Name(), "Base");
    EXPECT_STREQ(base().ClassName(), "TRkMatCube");
    EXPECT_EQ(base().ClassID(), 0);
    EXPECT_EQ(cubeRows(), "1|Other\n");
    base().Name("Other");
    EXPECT_STREQ(base().Name(), "Other");
    EXPECT_TRUE(base().Check());
    EXPECT_STREQ(TRkMatCube(project().settings(), nullptr, true).Name(), "");
}

TEST_P(MatCube, isCopiedAndAssignedWithItsName) {
    TempDir const own;
    TRkMatCube const there(project().settings(), own.str().c_str(), "There", false);
    TRkMatCube const copied = there;
    EXPECT_STREQ(copied.Name(), "There");
    EXPECT_EQ(copied.MatrixDirectory().str(), own.file(""));
    base() = copied;
    EXPECT_STREQ(base().Name(), "There");
    EXPECT_EQ(base().MatrixDirectory().str(), own.file(""));
}

TEST_P(MatCube, takesTheMatrixDirectoryFromTheSettingsWhenNoneIsGiven) {
    for (char const* none : {static_cast<char const*>(nullptr), ""}) {
        TRkMatCube const cube(project().settings(), none, "Base", true);
        EXPECT_EQ(cube.MatrixDirectory().str(), project().matrixDirectory());
    }
}

TEST_P(MatCube, worksOnTheEntriesOfItsCube) {
    EXPECT_TRUE(base().Add(1, 2, 3, 4, false));
    EXPECT_EQ(cubeRows(), "1|Other\n2|Base\n");
    EXPECT_TRUE(base().Set(1, 2, 3, 4, smallMatrix(5), lsNone, false));
    EXPECT_EQ(rows(), "2|1|2|3|4|0|2-1-2-3-4.odm\n");
    EXPECT_TRUE(base().Check(0, 1, 2, 3, true));
    EXPECT_EQ(base().FileName(1, 2, 3, 4, false).str(), pathOf("2-1-2-3-4.odm"));
    EXPECT_EQ(base().Get(1, 2, 3, 4, 1, 2, lsRead, false), 17.0);
    std::unique_ptr<TRkMatrix> const found(base().Get(0, 1, 2, 3, lsRead, true));
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->Name().str(), "Base [1,2,3,4]");
    auto const* const header = base().GetHeader(1, 2, 3, 4, false);
    ASSERT_NE(header, nullptr);
    EXPECT_EQ(header->Type(), mtMatrixCube);
    EXPECT_EQ(header->Columns(), 3);
}

TEST_P(MatCube, removesAnEntryByEachOfThreeFunctions) {
    bool (TRkMatCube::*const functions[])(short, short, short, short, bool)
        const = {&TRkMatCube::Clear, &TRkMatCube::Delete, &TRkMatCube::Remove};
    for (auto const function : functions) {
        ASSERT_TRUE(base().Set(1, 1, 1, 1, smallMatrix(5), lsNone, false));
        EXPECT_TRUE((base().*function)(0, 0, 0, 0, true));
        EXPECT_EQ(rows() + files(), "");
        EXPECT_FALSE((base().*function)(1, 1, 1, 1, false));
    }
}

TEST_P(MatCube, returnsFalseOrNullForAMissingCube) {
    EXPECT_FALSE(base().Check());
    EXPECT_FALSE(base().Check(1, 1, 1, 1, false));
    EXPECT_EQ(base().Get(1, 1, 1, 1, lsRead, false), nullptr);
    EXPECT_EQ(first(1), -1.0);
    EXPECT_EQ(base().GetHeader(1, 1, 1, 1, false), nullptr);
    EXPECT_TRUE(base().FileName(1, 1, 1, 1, false).IsEmpty());
    EXPECT_FALSE(copy(1, 2, false));
    TRkAutoListT<TRkMatCubes::TKey> list;
    EXPECT_TRUE(base().Get(list));
    EXPECT_EQ(list.Count(), 0);
}

// The empty name is a name like any other; null is not a name.
TEST_P(MatCube, withoutANameFindsNothing) {
    TRkMatCube nameless(project().settings(), nullptr, true);
    project().execute("insert into cube values (2, '')");
    project().execute(
        "insert into " + table() + " (cubenr, purpose, mode, time, \"user\", filename) values (2, 1, 1, 1, 1, 'x')");
    std::string const before = cubeRows() + rows() + files();
    for (TRkMatCube const& cube : {nameless, TRkMatCube(nameless)}) {
        EXPECT_STREQ(cube.Name(), "");
        EXPECT_FALSE(cube.Add() || cube.Check() || cube.Delete() || cube.Remove());
        // As for an unknown name.
        EXPECT_TRUE(cube.Clear());
        EXPECT_FALSE(cube.Add(1, 1, 1, 1, false));
        EXPECT_FALSE(cube.Check(1, 1, 1, 1, false) || cube.Clear(1, 1, 1, 1, false) || cube.Delete(1, 1, 1, 1, false));
        EXPECT_FALSE(cube.Remove(1, 1, 1, 1, false) || cube.Copy(1, 1, 1, 1, 1, 1, 1, 2, false, false));
        EXPECT_TRUE(cube.FileName(1, 1, 1, 1, false).IsEmpty());
        EXPECT_EQ(cube.GetHeader(1, 1, 1, 1, false), nullptr);
        EXPECT_EQ(cube.Get(1, 1, 1, 1, lsRead, false), nullptr);
        EXPECT_EQ(cube.Get(1, 1, 1, 1, 0, 0, lsRead, false), -1.0);
        TRkAutoListT<TRkMatCubes::TKey> list;
        EXPECT_TRUE(cube.Get(list));
        EXPECT_EQ(list.Count(), 0);
    }
    EXPECT_FALSE(nameless.Set(1, 1, 1, 1, smallMatrix(5), lsNone, false));
    EXPECT_EQ(cubeRows() + rows() + files(), before);
    nameless.Name("");
    EXPECT_TRUE(nameless.Check() && nameless.Check(1, 1, 1, 1, false));
    nameless.Name(nullptr);
    EXPECT_FALSE(nameless.Check());
    nameless.Name("Named");
    EXPECT_TRUE(nameless.Add());
    EXPECT_EQ(cubeRows(), "1|Other\n2|\n3|Named\n");
}

TEST_P(MatCube, isRegisteredClearedAndRemovedAsAWhole) {
    EXPECT_TRUE(base().Add());
    EXPECT_TRUE(base().Check());
    ASSERT_TRUE(base().Set(1, 1, 1, 1, smallMatrix(5), lsNone, false));
    ASSERT_TRUE(cubes().Set("Other", 1, 1, 1, 1, smallMatrix(6), lsNone, false));
    EXPECT_TRUE(base().Clear());
    EXPECT_EQ(rows(), "1|1|1|1|1|0|1-1-1-1-1.odm\n");
    EXPECT_TRUE(base().Check());
    EXPECT_TRUE(base().Delete());
    EXPECT_FALSE(base().Check());
    EXPECT_FALSE(base().Delete());
    EXPECT_TRUE(base().Add());
    EXPECT_TRUE(base().Remove());
    EXPECT_EQ(cubeRows(), "1|Other\n");
    EXPECT_EQ(files(), "1-1-1-1-1.odm\n");
}

TEST_P(MatCube, copiesWithinItself) {
    ASSERT_TRUE(base().Set(1, 1, 1, 1, smallMatrix(5), lsNone, false));
    EXPECT_TRUE(copy(1, 2, true));
    EXPECT_EQ(first(2), 5.0);
    EXPECT_TRUE(base().Copy(0, 0, 0, 0, 0, 0, 0, 2, true, true));
    EXPECT_EQ(rows(), "2|1|1|1|1|0|2-1-1-1-1.odm\n2|1|1|1|2|0|2-1-1-1-2.odm\n2|1|1|1|3|0|2-1-1-1-3.odm\n");
    ASSERT_TRUE(base().Set(1, 1, 1, 1, smallMatrix(6), lsNone, false));
    EXPECT_TRUE(copy(1, 2, false));
    EXPECT_EQ(first(2), 6.0);
    EXPECT_TRUE(copy(8, 9, true));
    EXPECT_FALSE(base().Check(1, 1, 1, 9, false));
    EXPECT_FALSE(copy(1, 1, false));
    EXPECT_EQ(first(1), 6.0);
}

TEST_P(MatCube, refusesAnExistingTargetWithMatrixExists) {
    ASSERT_TRUE(base().Set(1, 1, 1, 1, smallMatrix(5), lsNone, false));
    ASSERT_TRUE(base().Set(1, 1, 1, 2, smallMatrix(6), lsNone, false));
    std::string const before = rows() + files();
    for (short const target : {short{1}, short{2}}) {
        try {
            copy(1, target, true);
            ADD_FAILURE() << "copied onto " << target;
        } catch (TRkCubesException const& error) {
            EXPECT_STREQ(error.what(), "Matrix already exists in the cube");
        }
    }
    EXPECT_EQ(rows() + files(), before);
    EXPECT_EQ(first(2), 6.0);
}

// The base class keeps its own rule: one and the same cube by name is refused.
TEST_P(MatCube, doesNotChangeTheFormsByName) {
    ASSERT_TRUE(base().Set(1, 1, 1, 1, smallMatrix(5), lsNone, false));
    EXPECT_THROW(base().TRkMatCubes::Copy("Base", 1, 1, 1, 1, "Base", 1, 1, 1, 2, true, false), TRkCubesException);
    EXPECT_TRUE(base().Move("Base", 1, 1, 1, 1, "Base", 1, 1, 1, 2, false, false));
    EXPECT_EQ(first(2), 5.0);
}

TEST_P(MatCube, listsItsOwnEntriesWithItsName) {
    ASSERT_TRUE(cubes().Add("Other", 9, 9, 9, 9, false));
    ASSERT_TRUE(base().Add(2, 1, 1, 1, false));
    ASSERT_TRUE(base().Add(1, 2, 3, 4, false));
    TRkAutoListT<TRkMatCubes::TKey> list;
    EXPECT_TRUE(base().Get(list));
    ASSERT_EQ(list.Count(), 2);
    EXPECT_EQ(list[0]->AsString().str(), "2,1,2,3,4,Base");
    EXPECT_EQ(list[1]->AsString().str(), "2,2,1,1,1,Base");
    EXPECT_FALSE(list[0]->zeroBased);
    base().setMatrixSchema("nowhere");
    EXPECT_FALSE(base().Get(list));
    EXPECT_EQ(list.Count(), 0);
}

}
}
