#include <cubes/core/TRkCubesException.h>
#include <cubes/database/TRkDatabaseException.h>
#include <cubes/matrix/TRkMatrix.h>

#include <filesystem>
#include <type_traits>
#include <utility>

#include "routestorage/RouteCubeTest.h"

namespace cubes::test {
namespace {

class RouteEntries : public RouteEntriesTest {};

template <typename Cube>
constexpr bool givesRecords =
    std::is_same_v<decltype(std::declval<Cube const&>().GetData(1, 1, 1, 1, 1, 1, false)), RouteStorageCubeData*>;

static_assert(givesRecords<RouteStorageCube> && givesRecords<RouteStorageDataCube>);

CUBES_BOTH_BACKENDS(RouteEntries);

TEST_P(RouteEntries, haveNoMatrices) {
    for (auto const& kind : kinds()) {
        EXPECT_TRUE(store(kind.cube, 6));
        TRkMatrix const some = smallMatrix(1);
        EXPECT_FALSE(kind.cube.Set(1, 2, 3, 4, 5, 7, some, lsReadWrite, false));
        EXPECT_FALSE(kind.cube.SaveMatrix(some, 1, 2, 3, 4, 5, 6, lsReadWrite, false));
        EXPECT_EQ(kind.cube.Get(1, 2, 3, 4, 5, 6, lsRead, false), nullptr);
        EXPECT_EQ(kind.cube.Get(1, 2, 3, 4, 5, 6, 0, 0, lsRead, false), -1.0);
        EXPECT_EQ(kind.cube.GetHeader(1, 2, 3, 4, 5, 6, false), nullptr);
        EXPECT_FALSE(kind.cube.Check(1, 2, 3, 4, 5, 7, false));
    }
}

TEST_P(RouteEntries, areCreatedWithAnEmptyFileOfTheProvider) {
    for (auto const& kind : kinds()) {
        EXPECT_TRUE(kind.cube.SetData(nullptr, 1, 2, 3, 4, 5, 6, -9, 9, 8, 7, 6, 5, 4, false));
        EXPECT_EQ(fake.calls(), created(kind, "1-2-3-4-5-6", "1 2 3 4 5 6"));
        EXPECT_EQ(rows(), rowOf(kind, "1|2|3|4|5|6", "1-2-3-4-5-6"));
        EXPECT_EQ(parents(), "-9|9|8|7|6|5|4\n");
        EXPECT_EQ(readFile(fileOf(kind, "1-2-3-4-5-6")), "made by the fake provider");
        EXPECT_EQ(kind.cube.FileName(1, 2, 3, 4, 5, 6, false).str(), fileOf(kind, "1-2-3-4-5-6"));
        EXPECT_EQ(fake.living(), 0);
        kind.cube.Clear();
    }
}

TEST_P(RouteEntries, ofZeroBasedKeysAreStoredOneBased) {
    for (auto const& kind : kinds()) {
        fake.calls();
        EXPECT_TRUE(kind.cube.SetData(nullptr, 0, 1, 2, 3, 5, 6, 0, -1, -1, -1, -1, -1, -1, true));
        EXPECT_EQ(fake.calls(), created(kind, "1-2-3-4-5-6", "1 2 3 4 5 6"));
        EXPECT_EQ(rows(), rowOf(kind, "1|2|3|4|5|6", "1-2-3-4-5-6"));
        EXPECT_TRUE(std::filesystem::exists(fileOf(kind, "1-2-3-4-5-6")));
        auto const record = recordOf(kind.cube.GetData(0, 1, 2, 3, 5, 6, true));
        ASSERT_NE(record, nullptr);
        EXPECT_EQ(keyOf(*record), "1 2 3 4 5 6");
        kind.cube.Clear();
    }
}

TEST_P(RouteEntries, areClearedBeforeTheyAreStoredAgain) {
    for (auto const& kind : kinds()) {
        EXPECT_TRUE(kind.cube.SetData(nullptr, 1, 2, 3, 4, 5, 6, -9, 9, 8, 7, 6, 5, 4, false));
        kind.cube.incUsage(1, 2, 3, 4, 5, 6);
        writeFile(fileOf(kind, "1-2-3-4-5-6"), "old");
        EXPECT_TRUE(store(kind.cube, 6));
        EXPECT_EQ(rows(), rowOf(kind, "1|2|3|4|5|6", "1-2-3-4-5-6"));
        EXPECT_EQ(parents(), "NULL|NULL|NULL|NULL|NULL|NULL|NULL\n");
        EXPECT_EQ(readFile(fileOf(kind, "1-2-3-4-5-6")), "made by the fake provider");
        kind.cube.Clear();
    }
}

TEST_P(RouteEntries, holdACopyOfTheFileOfTheirData) {
    for (auto const& kind : kinds()) {
        std::string const source = elsewhere.file("source.FDB");
        writeFile(source, "some routes");
        auto record = recordFor(kind, source);
        fake.calls();
        EXPECT_TRUE(kind.cube.SetData(record.get(), 0, 1, 2, 3, 5, 6, -9, 9, 8, 7, 6, 5, 4, true));
        EXPECT_EQ(fake.calls(), kind.object + ".addRef 2\n" + kind.object + ".getFileName\n" +
                                    assigned(kind, "1 2 3 4 5 6") + kind.object + ".release 1\n");
        EXPECT_EQ(rows(), rowOf(kind, "1|2|3|4|5|6", "1-2-3-4-5-6"));
        EXPECT_EQ(readFile(fileOf(kind, "1-2-3-4-5-6")), "some routes");
        EXPECT_EQ(readFile(source), "some routes");
        // A file that no row names is overwritten.
        kind.cube.Clear();
        writeFile(fileOf(kind, "1-2-3-4-5-6"), "left over");
        EXPECT_TRUE(store(kind.cube, 6, record.get()));
        EXPECT_EQ(readFile(fileOf(kind, "1-2-3-4-5-6")), "some routes");
        record.reset();
        EXPECT_EQ(fake.living(), 0);
        kind.cube.Clear();
    }
}

TEST_P(RouteEntries, areOnlyRegisteredWhenTheirDataHaveNoFile) {
    for (auto const& kind : kinds()) {
        for (std::string const& source : {elsewhere.file("none.FDB"), elsewhere.str(), std::string()}) {
            auto const record = recordFor(kind, source);
            fake.calls();
            EXPECT_TRUE(store(kind.cube, 6, record.get()));
            EXPECT_EQ(fake.calls(), kind.object + ".addRef 2\n" + kind.object + ".getFileName\n" +
                                        assigned(kind, "1 2 3 4 5 6") + kind.object + ".release 1\n");
            EXPECT_EQ(rows(), rowOf(kind, "1|2|3|4|5|6", "1-2-3-4-5-6"));
            EXPECT_FALSE(std::filesystem::exists(fileOf(kind, "1-2-3-4-5-6")));
            EXPECT_EQ(kind.cube.GetData(1, 2, 3, 4, 5, 6, false), nullptr);
        }
        kind.cube.Clear();
    }
}

// Clearing the entry removes the file of the data.
TEST_P(RouteEntries, loseTheirFileWhenTheyAreStoredFromTheirOwnData) {
    EXPECT_TRUE(store(routes(), 6));
    auto const record = fetch(routes(), 6);
    EXPECT_TRUE(store(routes(), 6, record.get()));
    EXPECT_EQ(rows(), "-9|1|2|3|4|5|6|0|RouteStorage_Routes\\1-2-3-4-5-6.FDB\n");
    EXPECT_FALSE(std::filesystem::exists(routeFile(6)));
}

TEST_P(RouteEntries, keepTheirFileWhenOnlyTheRowWasLost) {
    EXPECT_TRUE(store(routes(), 6));
    writeFile(routeFile(6), "some routes");
    auto const record = fetch(routes(), 6);
    execute("delete from " + table());
    EXPECT_TRUE(store(routes(), 6, record.get()));
    EXPECT_EQ(readFile(routeFile(6)), "some routes");
}

TEST_P(RouteEntries, reportWhichFileCannotBeCopiedWhere) {
    std::string const source = elsewhere.file("source.FDB");
    writeFile(source, "some routes");
    auto record = recordFor(kinds()[0], source);
    EXPECT_TRUE(store(routes(), 6));
    std::filesystem::remove(routeFile(6));
    std::filesystem::create_directories(routeFile(7) + "/full");
    fake.calls();
    try {
        store(routes(), 7, record.get());
        FAIL() << "it was copied";
    } catch (TRkException const& error) {
        std::string const text = error.what();
        EXPECT_TRUE(text.starts_with("cannot copy route file " + source + " to " + routeFile(7) + ": ")) << text;
        EXPECT_EQ(dynamic_cast<TRkCubesException const*>(&error), nullptr);
    }
    EXPECT_EQ(
        fake.calls(), "set.addRef 2\nset.getFileName\nset.setCubeType -9\nset.setKey 1 2 3 4 5 7\nset.release 1\n");
    EXPECT_TRUE(routes().Check(1, 2, 3, 4, 5, 7, false));
}

// Data of another class, and data without a storage.
class OtherData final : public CubeDataInterface {
public:
    void addRef() override { ADD_FAILURE() << "a reference was taken"; }
    long release() override { return 0; }
    void setPurpose(long) override {}
    long getPurpose() const override { return 1; }
    void setMode(long) override {}
    long getMode() const override { return 1; }
    void setTime(long) override {}
    long getTime() const override { return 1; }
    void setUser(long) override {}
    long getUser() const override { return 1; }
    void setResult(long) override {}
    long getResult() const override { return 1; }
    void setIteration(long) override {}
    long getIteration() const override { return 1; }
};

TEST_P(RouteEntries, areCreatedEmptyFromOtherData) {
    OtherData other;
    RouteStorageCubeData withoutStorage;
    for (auto const& kind : kinds())
        for (CubeDataInterface* const given : {static_cast<CubeDataInterface*>(&other),
                 static_cast<CubeDataInterface*>(&withoutStorage), static_cast<CubeDataInterface*>(nullptr)}) {
            EXPECT_TRUE(store(kind.cube, 6, given));
            EXPECT_EQ(fake.calls(), created(kind, "1-2-3-4-5-6", "1 2 3 4 5 6"));
        }
}

TEST_P(RouteEntries, acceptAFileOfTheOtherKind) {
    std::string const source = elsewhere.file("source.FDB");
    writeFile(source, "some data");
    auto const record = recordFor(kinds()[1], source);
    fake.calls();
    EXPECT_TRUE(store(routes(), 6, record.get()));
    EXPECT_EQ(fake.calls(),
        "data.addRef 2\ndata.getFileName\ndata.setCubeType -9\ndata.setKey 1 2 3 4 5 6\ndata.release 1\n");
    EXPECT_EQ(readFile(routeFile(6)), "some data");
}

TEST_P(RouteEntries, areRegisteredWhenTheProviderHasNoFactories) {
    FakeProvider without("without");
    for (auto const& kind : kinds()) {
        EXPECT_TRUE(store(kind.cube, 6));
        EXPECT_EQ(rows(), rowOf(kind, "1|2|3|4|5|6", "1-2-3-4-5-6"));
        EXPECT_EQ(kind.cube.GetData(1, 2, 3, 4, 5, 6, false), nullptr);
        writeFile(fileOf(kind, "1-2-3-4-5-6"), "something");
        auto const record = fetch(kind.cube, 6);
        ASSERT_NE(record, nullptr);
        EXPECT_EQ(keyOf(*record), "1 2 3 4 5 6");
        EXPECT_EQ(record->getRouteStorage(), nullptr);
        kind.cube.Clear();
    }
    EXPECT_EQ(without.calls(), "");
}

TEST_P(RouteEntries, areReportedAsStoredWithoutATable) {
    writeFile(elsewhere.file("source.FDB"), "some routes");
    auto const record = recordFor(kinds()[0], elsewhere.file("source.FDB"));
    fake.calls();
    execute("drop table " + table());
    EXPECT_TRUE(store(routes(), 6));
    EXPECT_TRUE(store(data(), 6));
    EXPECT_EQ(fake.calls(), "");
    EXPECT_TRUE(store(routes(), 6, record.get()));
    EXPECT_EQ(
        fake.calls(), "set.addRef 2\nset.getFileName\nset.setCubeType -9\nset.setKey 1 2 3 4 5 6\nset.release 1\n");
    EXPECT_EQ(routes().GetData(1, 2, 3, 4, 5, 6, false), nullptr);
    EXPECT_EQ(files(), "");
}

TEST_P(RouteEntries, createTheirDirectoryWhenTheyAreAdded) {
    for (auto const& kind : kinds()) {
        EXPECT_FALSE(std::filesystem::exists(pathOf(kind.directory)));
        EXPECT_TRUE(add(kind.cube, 1));
        EXPECT_TRUE(std::filesystem::is_directory(pathOf(kind.directory)));
        std::filesystem::remove(pathOf(kind.directory));
        // For an entry that exists too.
        EXPECT_TRUE(add(kind.cube, 1));
        EXPECT_TRUE(std::filesystem::is_directory(pathOf(kind.directory)));
    }
}

TEST_P(RouteEntries, createNoDirectoryWhenTheyAreNotAdded) {
    execute("drop table " + table());
    for (auto const& kind : kinds()) {
        EXPECT_FALSE(add(kind.cube, 1));
        EXPECT_FALSE(kind.cube.Add({}, -9, 1, 1, 1, 1, 1, 1, 0, -1, -1, -1, -1, -1, -1, false));
        EXPECT_FALSE(std::filesystem::exists(pathOf(kind.directory)));
    }
}

TEST_P(RouteEntries, mayBeInAnotherDirectory) {
    RouteStorageCube cube(project().settings(), elsewhere.str().c_str());
    EXPECT_TRUE(store(cube, 6));
    EXPECT_EQ(listing(elsewhere.str()), "RouteStorage_Routes\nRouteStorage_Routes/1-2-3-4-5-6.FDB\n");
    RouteStorageDataCube const inProject(project().settings(), "");
    EXPECT_EQ(inProject.MatrixDirectory().str(), directory());
}

TEST_P(RouteEntries, areListedLikeThoseOfAnyResultCube) {
    store(routes(), 7);
    store(routes(), 6);
    store(data(), 6);
    add(skims(), 1);
    Keys list;
    EXPECT_TRUE(routes().Get(list));
    ASSERT_EQ(list.Count(), 2);
    EXPECT_STREQ(list[0]->AsString().c_str(), "-9,1,2,3,4,5,6,RouteStorage_Routes\\1-2-3-4-5-6.FDB");
    EXPECT_STREQ(list[1]->AsString().c_str(), "-9,1,2,3,4,5,7,RouteStorage_Routes\\1-2-3-4-5-7.FDB");
    TRkAutoListT<TRkBaseCubes::TKey> cubes;
    EXPECT_TRUE(data().Get(cubes));
}

TEST_P(RouteEntries, areCopiedMovedAndClearedWithTheirFiles) {
    for (auto const& kind : kinds()) {
        store(kind.cube, 1);
        writeFile(fileOf(kind, "1-2-3-4-5-1"), "some routes");
        fake.calls();
        EXPECT_TRUE(kind.cube.Copy(1, 2, 3, 4, 5, 1, 1, 2, 3, 4, 5, 2, true, false));
        EXPECT_EQ(readFile(fileOf(kind, "1-2-3-4-5-2")), "some routes");
        EXPECT_TRUE(kind.cube.Move(1, 2, 3, 4, 5, 1, 1, 2, 3, 4, 5, 3, true, false));
        EXPECT_EQ(readFile(fileOf(kind, "1-2-3-4-5-3")), "some routes");
        EXPECT_FALSE(std::filesystem::exists(fileOf(kind, "1-2-3-4-5-1")));
        EXPECT_EQ(rows(), rowOf(kind, "1|2|3|4|5|2", "1-2-3-4-5-2") + rowOf(kind, "1|2|3|4|5|3", "1-2-3-4-5-3"));
        EXPECT_TRUE(kind.cube.Clear(1, 2, 3, 4, 5, 2, false));
        EXPECT_FALSE(std::filesystem::exists(fileOf(kind, "1-2-3-4-5-2")));
        EXPECT_TRUE(kind.cube.Clear());
        EXPECT_EQ(filesIn(pathOf(kind.directory)), "");
        EXPECT_EQ(fake.calls(), "");
    }
}

TEST_P(RouteEntries, areCopiedIntoANewDirectory) {
    TestProject other(backend());
    RouteStorageCube target(other.settings());
    store(routes(), 1);
    EXPECT_TRUE(target.Copy(routes(), 1, 2, 3, 4, 5, 1, 1, 2, 3, 4, 5, 2, true, false));
    EXPECT_EQ(
        readFile(target.MatrixDirectory().str() + "RouteStorage_Routes/1-2-3-4-5-2.FDB"), "made by the fake provider");
}

TEST_P(RouteEntries, areFetchedWithAStorageForTheirFile) {
    for (auto const& kind : kinds()) {
        EXPECT_TRUE(kind.cube.SetData(nullptr, 1, 2, 3, 4, 5, 6, -9, 9, 8, 7, 6, 5, 4, false));
        fake.calls();
        auto record = fetch(kind.cube, 6);
        ASSERT_NE(record, nullptr);
        EXPECT_EQ(fake.calls(), kind.object + ".make 1-2-3-4-5-6.FDB\n" + assigned(kind, "1 2 3 4 5 6") + kind.object +
                                    ".addRef 1\n" + kind.object + ".addRef 2\n" + kind.object + ".release 1\n");
        EXPECT_EQ(keyOf(*record), "1 2 3 4 5 6");
        EXPECT_EQ(record->getParentPurpose(), -1);
        EXPECT_EQ(record->getParentCubeNr(), 0);
        {
            Reference<VL::Interface::RouteStorageInterface> const storage(record->getRouteStorage());
            EXPECT_EQ(storage->getFileName(), fileOf(kind, "1-2-3-4-5-6"));
        }
        fake.calls();
        EXPECT_EQ(record.release()->release(), 0);
        EXPECT_EQ(fake.calls(), kind.object + ".release 0\n");
        EXPECT_EQ(fake.living(), 0);
    }
}

TEST_P(RouteEntries, ofZeroBasedKeysAreFetchedWithTheirOneBasedKey) {
    for (auto const& kind : kinds()) {
        kind.cube.SetData(nullptr, 1, 1, 1, 1, 5, 6, 0, -1, -1, -1, -1, -1, -1, false);
        fake.calls();
        auto const record = recordOf(kind.cube.GetData(0, 0, 0, 0, 5, 6, true));
        ASSERT_NE(record, nullptr);
        EXPECT_EQ(keyOf(*record), "1 1 1 1 5 6");
        EXPECT_EQ(fake.calls().find(kind.object + ".make 1-1-1-1-5-6.FDB\n" + assigned(kind, "1 1 1 1 5 6")), 0u);
        EXPECT_EQ(kind.cube.GetData(0, 0, 0, 0, 5, 6, false), nullptr);
        EXPECT_EQ(kind.cube.GetData(1, 1, 1, 1, 5, 6, true), nullptr);
    }
}

TEST_P(RouteEntries, cannotBeFetchedWhenMissingInUseOrWithoutFile) {
    for (auto const& kind : kinds()) {
        EXPECT_EQ(kind.cube.GetData(1, 2, 3, 4, 5, 6, false), nullptr);
        store(kind.cube, 6);
        kind.cube.incUsage(1, 2, 3, 4, 5, 6);
        fake.calls();
        EXPECT_EQ(kind.cube.GetData(1, 2, 3, 4, 5, 6, false), nullptr);
        kind.cube.decUsage(1, 2, 3, 4, 5, 6);
        EXPECT_NE(fetch(kind.cube, 6), nullptr);
        fake.calls();
        std::filesystem::remove(fileOf(kind, "1-2-3-4-5-6"));
        EXPECT_EQ(kind.cube.GetData(1, 2, 3, 4, 5, 6, false), nullptr);
        EXPECT_EQ(fake.calls(), "");
    }
}

TEST_P(RouteEntries, withNamesOutsideTheDirectoryAreNeverOpened) {
    for (auto const& kind : kinds()) {
        store(kind.cube, 6);
        fake.calls();
        writeFile(project().root() + "/outside", "secret");
        execute("update " + table() + " set filename = '..\\outside'");
        EXPECT_EQ(kind.cube.GetData(1, 2, 3, 4, 5, 6, false), nullptr);
        EXPECT_EQ(fake.calls(), "");
        EXPECT_EQ(data().getFieldMetadata(1, 2, 3, 4, 5, 6)->release(), 0);
        kind.cube.Clear();
        EXPECT_EQ(readFile(project().root() + "/outside"), "secret");
    }
}

TEST_P(RouteEntries, cannotHaveKeysAbove32767) {
    constexpr short last = 32767;
    for (auto const& kind : kinds()) {
        EXPECT_TRUE(kind.cube.SetData(nullptr, last, 1, 1, 1, 1, 1, 0, -1, -1, -1, -1, -1, -1, true));
        EXPECT_EQ(kind.cube.GetData(last, 1, 1, 1, 1, 1, true), nullptr);
    }
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(fake.calls(), "");
}

class RouteParents : public RouteCubeTest {
protected:
    static std::string parentOf(TRkVarCubes const& cube, short iteration) {
        short p = 9, m = 9, t = 9, u = 9, r = 9, i = 9;
        cube.GetParentPMTURI(1, 2, 3, 4, 5, iteration, p, m, t, u, r, i);
        std::string text = std::to_string(cube.GetParentCubenr(1, 2, 3, 4, 5, iteration)) + ":";
        for (short const part : {p, m, t, u, r, i}) text += " " + std::to_string(part);
        return text;
    }
    static std::string keysIn(Keys const& list) {
        std::string text;
        for (int i = 0; i < list.Count(); ++i)
            text += std::to_string(list[i]->cubenr) + "/" + std::to_string(list[i]->iteration) + " ";
        return text;
    }
    // With an entry in it that the caller has added.
    static Keys listInUse(short cubenr) {
        Keys list;
        list.Add(new TRkVarCubes::TKey(cubenr, 9, 9, 9, 9, 9, 9, 0, -1, -1, -1, -1, -1, -1, false));
        return list;
    }

    FakeProvider fake;
};

CUBES_BOTH_BACKENDS(RouteParents);

constexpr char const* noParent = "0: -1 -1 -1 -1 -1 -1";

TEST_P(RouteParents, areReadFromTheEntry) {
    for (TRkVarCubes* const cube : {static_cast<TRkVarCubes*>(&routes()), static_cast<TRkVarCubes*>(&data())}) {
        EXPECT_EQ(parentOf(*cube, 6), noParent);
        cube->Add(1, 2, 3, 4, 5, 6, -6, 11, 12, 13, 14, 15, 16, false);
        cube->Add(1, 2, 3, 4, 5, 7, 0, -1, -1, -1, -1, -1, -1, false);
        EXPECT_EQ(parentOf(*cube, 6), "-6: 11 12 13 14 15 16");
        EXPECT_EQ(parentOf(*cube, 7), noParent);
        cube->incUsage(1, 2, 3, 4, 5, 6);
        EXPECT_EQ(parentOf(*cube, 6), noParent);
    }
}

TEST_P(RouteParents, areSetInTwoParts) {
    for (TRkVarCubes* const cube : {static_cast<TRkVarCubes*>(&routes()), static_cast<TRkVarCubes*>(&data())}) {
        cube->Add(1, 2, 3, 4, 5, 6, 0, -1, -1, -1, -1, -1, -1, false);
        EXPECT_TRUE(cube->SetParentCubenr(1, 2, 3, 4, 5, 6, -9));
        EXPECT_EQ(parents(), "-9|NULL|NULL|NULL|NULL|NULL|NULL\n");
        EXPECT_TRUE(cube->SetParentPMTURI(1, 2, 3, 4, 5, 6, 11, 12, 13, 14, 15, -1));
        EXPECT_EQ(parents(), "-9|11|12|13|14|15|-1\n");
        EXPECT_EQ(parentOf(*cube, 6), "-9: 11 12 13 14 15 -1");
        EXPECT_TRUE(cube->SetParentCubenr(1, 2, 3, 4, 5, 6, 0));
        EXPECT_EQ(parents(), "0|11|12|13|14|15|-1\n");
        cube->Clear();
    }
}

// Only the entry of this cube is changed, in use or not, and only its parent.
TEST_P(RouteParents, areSetInOneRow) {
    routes().Add(1, 2, 3, 4, 5, 6, 0, -1, -1, -1, -1, -1, -1, false);
    data().Add(1, 2, 3, 4, 5, 6, 0, -1, -1, -1, -1, -1, -1, false);
    routes().incUsage(1, 2, 3, 4, 5, 6);
    std::string const before = rows();
    EXPECT_TRUE(routes().SetParentCubenr(1, 2, 3, 4, 5, 6, -6));
    EXPECT_TRUE(routes().SetParentPMTURI(1, 2, 3, 4, 5, 6, 1, 1, 1, 1, 1, 1));
    EXPECT_EQ(parents(), "NULL|NULL|NULL|NULL|NULL|NULL|NULL\n-6|1|1|1|1|1|1\n");
    EXPECT_EQ(rows(), before);
}

TEST_P(RouteParents, ofMissingEntriesAreNotSet) {
    EXPECT_FALSE(routes().SetParentCubenr(1, 2, 3, 4, 5, 6, -9));
    EXPECT_FALSE(routes().SetParentPMTURI(1, 2, 3, 4, 5, 6, 1, 1, 1, 1, 1, 1));
    execute("drop table " + table());
    EXPECT_FALSE(routes().SetParentCubenr(1, 2, 3, 4, 5, 6, -9));
    EXPECT_FALSE(routes().SetParentPMTURI(1, 2, 3, 4, 5, 6, 1, 1, 1, 1, 1, 1));
    EXPECT_EQ(parentOf(routes(), 6), noParent);
}

TEST_P(RouteParents, areNotSetInATableWithoutTheirColumns) {
    routes().Add(1, 2, 3, 4, 5, 6, -9, 1, 1, 1, 1, 1, 1, false);
    project().execute("alter table " + table() + " rename column parentuser to other");
    RouteStorageCube cube(project().settings());
    EXPECT_THROW(cube.SetParentPMTURI(1, 2, 3, 4, 5, 6, 2, 2, 2, 2, 2, 2), TRkDatabaseException);
    EXPECT_EQ(read("select parentpurpose, parentcubenr from " + table()), "1|-9\n");
    EXPECT_TRUE(cube.SetParentCubenr(1, 2, 3, 4, 5, 6, -6));
    EXPECT_EQ(read("select parentpurpose, parentcubenr from " + table()), "1|-6\n");
}

class RouteChildren : public RouteParents {
protected:
    void SetUp() override {
        RouteParents::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        store(routes(), 1);
        store(routes(), 2);
        addChild(data(), 11, 1);
        addChild(data(), 12, 1);
        addChild(data(), 13, 2);
        addChild(skims(), 14, 1);
        addChild(routes(), 15, 1);
        fake.calls();
    }
};

CUBES_BOTH_BACKENDS(RouteChildren);

TEST_P(RouteChildren, areTheRouteDataOfASet) {
    Keys list = listInUse(ctRouteData);
    EXPECT_TRUE(routes().GetChilds(1, 2, 3, 4, 5, 1, list));
    EXPECT_EQ(keysIn(list), "-10/11 -10/12 ");
    EXPECT_TRUE(routes().GetChilds(1, 2, 3, 4, 5, 2, list));
    EXPECT_EQ(keysIn(list), "-10/13 ");
    EXPECT_TRUE(routes().GetChilds(1, 2, 3, 4, 5, 15, list));
    EXPECT_EQ(keysIn(list), "");
}

TEST_P(RouteChildren, ofAnEntryThatIsMissingOrInUseAreNotListed) {
    Keys list = listInUse(ctRouteData);
    EXPECT_FALSE(routes().GetChilds(1, 2, 3, 4, 5, 3, list));
    EXPECT_EQ(keysIn(list), "");
    routes().incUsage(1, 2, 3, 4, 5, 1);
    list = listInUse(ctRouteData);
    EXPECT_FALSE(routes().GetChilds(1, 2, 3, 4, 5, 1, list));
    EXPECT_EQ(keysIn(list), "");
}

TEST_P(RouteChildren, inUseAreSkipped) {
    data().incUsage(1, 2, 3, 4, 5, 12);
    Keys list;
    EXPECT_TRUE(routes().GetChilds(1, 2, 3, 4, 5, 1, list));
    EXPECT_EQ(keysIn(list), "-10/11 ");
    routes().DeleteChildren(data(), 1, 2, 3, 4, 5, 1);
    EXPECT_FALSE(data().Check(1, 2, 3, 4, 5, 11, false));
    EXPECT_TRUE(data().Check(1, 2, 3, 4, 5, 12, false));
}

TEST_P(RouteChildren, canBeListedOfAnyEntryAndAreAppended) {
    routes().incUsage(1, 2, 3, 4, 5, 1);
    Keys list = listInUse(ctRouteData);
    EXPECT_TRUE(routes().GetChildsAll(1, 2, 3, 4, 5, 1, list));
    EXPECT_EQ(keysIn(list), "-10/9 -10/11 -10/12 ");
    EXPECT_TRUE(routes().GetChildsAll(1, 2, 3, 4, 5, 2, list));
    EXPECT_EQ(keysIn(list), "-10/9 -10/11 -10/12 -10/13 ");
    list = listInUse(ctSkim);
    EXPECT_TRUE(routes().GetChildsAll(9, 9, 9, 9, 9, 9, list));
    EXPECT_EQ(keysIn(list), "");
}

TEST_P(RouteChildren, areDeletedWithTheirFiles) {
    for (short const child : {short(11), short(12), short(13)}) writeFile(dataFile(child), "values");
    routes().DeleteChildren(data(), 1, 2, 3, 4, 5, 1);
    EXPECT_EQ(filesIn(pathOf("RouteStorage_RouteData")), "1-2-3-4-5-13.FDB\n");
    EXPECT_FALSE(data().Check(1, 2, 3, 4, 5, 11, false));
    EXPECT_FALSE(data().Check(1, 2, 3, 4, 5, 12, false));
    EXPECT_TRUE(data().Check(1, 2, 3, 4, 5, 13, false));
    EXPECT_TRUE(skims().Check(1, 2, 3, 4, 5, 14, false));
    EXPECT_TRUE(routes().Check(1, 2, 3, 4, 5, 1, false));
    EXPECT_TRUE(routes().Check(1, 2, 3, 4, 5, 15, false));
    EXPECT_EQ(fake.calls(), "");
}

TEST_P(RouteChildren, ofAnEntryInUseAreNotDeleted) {
    routes().incUsage(1, 2, 3, 4, 5, 1);
    routes().DeleteChildren(data(), 1, 2, 3, 4, 5, 1);
    EXPECT_TRUE(data().Check(1, 2, 3, 4, 5, 11, false));
}

TEST_P(RouteChildren, doNotExistForRouteData) {
    data().Add(1, 2, 3, 4, 5, 20, ctRouteData, 1, 2, 3, 4, 5, 11, false);
    Keys list = listInUse(ctRouteData);
    EXPECT_FALSE(data().GetChilds(1, 2, 3, 4, 5, 11, list));
    EXPECT_EQ(list.Count(), 0);
    data().DeleteChildren(data(), 1, 2, 3, 4, 5, 11);
    EXPECT_TRUE(data().Check(1, 2, 3, 4, 5, 20, false));
    EXPECT_TRUE(data().GetChildsAll(1, 2, 3, 4, 5, 11, list));
    EXPECT_EQ(keysIn(list), "-10/20 ");
}

}
}
