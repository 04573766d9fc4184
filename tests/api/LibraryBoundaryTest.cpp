#include <cubes/cubes.h>

#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

class Sketch : public TRkBase {};

namespace {

class Keeper : public TRkObject {};

class CountingDictionary : public TRkDBDataDictionary {
public:
    CountedPtr<Rktable::TRkTableProxy> BuildTable(char const* table, AnsiString const& schema) override {
        ++calls;
        return TRkDBDataDictionary::BuildTable(table, schema);
    }
    int calls = 0;
};

class Refuser : public TRkVisitor {
public:
    void Visit(TRkBase const& object) override {
        TRkException error(object.ClassName(), __FILE__, __func__, __LINE__);
        throw error;
    }
};

}

TEST(LibraryBoundary, returnsTheNameOfAnApplicationsClass) {
    Sketch const sketch;
    TRkBase const& base = sketch;
    EXPECT_STREQ("Sketch", base.ClassName());
    EXPECT_STREQ("TRkBase", TRkBase().ClassName());
}

TEST(LibraryBoundary, downCastsTheApplicationsOwnObjects) {
    std::unique_ptr<TRkObject> const object = std::make_unique<Keeper>();
    EXPECT_NE(nullptr, dynamic_cast<Keeper*>(object.get()));
    std::unique_ptr<TRkObject> const plain = std::make_unique<TRkObject>();
    EXPECT_EQ(nullptr, dynamic_cast<Keeper*>(plain.get()));
}

TEST(LibraryBoundary, passesOnAnExceptionOfTheApplication) {
    Sketch const sketch;
    Refuser refuser;
    EXPECT_THROW(sketch.Accept(refuser), TRkException);
    EXPECT_THROW(sketch.Accept(refuser), VclOrStdException);
    EXPECT_THROW(sketch.Accept(refuser), std::exception);
}

TEST(LibraryBoundary, throwsExceptionsThatTheApplicationCanCatch) {
    cubes::test::TempDir const directory;
    EXPECT_THROW(cubes::Project::open(directory.file("none")), TRkProjectException);
    EXPECT_THROW(TRkMatrix::inMemory(0, 3), TRkMatrixException);
    EXPECT_THROW(ProjectUtils::toSqlSchemaName("", ""), TRkException);
    cubes::ProjectOptions elsewhere;
    elsewhere.database = "sqlite:" + directory.file("none/cubes.db");
    EXPECT_THROW(cubes::Project::create(directory.file("delta"), elsewhere), TRkDatabaseException);
}

TEST(LibraryBoundary, distinguishesItsExceptionsByType) {
    try {
        TRkBaseCubes::ShortTo40T(-1);
        FAIL() << "nothing was thrown";
    } catch (TRkException const& error) {
        EXPECT_NE(nullptr, dynamic_cast<TRkCubesException const*>(&error));
        EXPECT_EQ(nullptr, dynamic_cast<TRkDatabaseException const*>(&error));
        EXPECT_STREQ("IntTo40T> Only 2 positions reserved! Maximum value is 1599", error.what());
    }
}

TEST(LibraryBoundary, callsTheApplicationsOwnDictionary) {
    cubes::test::TempDir const directory;
    cubes::Project project = cubes::Project::create(directory.file("delta"));
    CountingDictionary dictionary;
    project.settings()->Set("RkLib.DataDictionary", &dictionary);
    TRkMatCubes cubes(project.settings(), ".odm", false);
    ASSERT_TRUE(cubes.Add("Base"));
    EXPECT_TRUE(cubes.Check("Base"));
    EXPECT_GE(dictionary.calls, 2);
}

TEST(LibraryBoundary, returnsMatricesThatTheApplicationDeletes) {
    cubes::test::TempDir const directory;
    cubes::Project project = cubes::Project::create(directory.file("delta"));
    TRkMatCubes cubes(project.settings(), ".odm", false);
    TRkMatrix matrix = TRkMatrix::inMemory(2, 3);
    matrix.RowAt(1, 8)[2] = 12.5F;
    ASSERT_TRUE(cubes.Set("Base", 1, 1, 1, 1, matrix, RkLockState(0), false));
    std::unique_ptr<TRkMatrix> const read(cubes.Get("Base", 1, 1, 1, 1, RkLockState(0), false));
    ASSERT_TRUE(read);
    EXPECT_EQ(12.5F, read->RowAt(1, 8)[2]);
}
