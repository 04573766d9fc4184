#include <cubes/core/TRkCubesException.h>
#include <cubes/matrix/TRkMatrix.h>

#include <filesystem>
#include <type_traits>
#include <utility>

#include "routestorage/RouteEntriesTest.h"

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
        TRkMatrix const some = matrix(1);
        EXPECT_FALSE(kind.cube.Set(1, 2, 3, 4, 5, 7, some, lsReadWrite, false));
        EXPECT_FALSE(kind.cube.SaveMatrix(some, 1, 2, 3, 4, 5, 6, lsReadWrite, false));
        EXPECT_EQ(kind.cube.Get(1, 2, 3, 4, 5, 6, lsRead, false), nullptr);
        EXPECT_EQ(kind.cube.Get(1, 2, 3, 4, 5, 6, 0, 0, lsRead, false), -1.0);
        EXPECT_EQ(kind.cube.GetHeader(1, 2, 3, 4, 5, 6, false), nullptr);
        EXPECT_FALSE(kind.cube.Check(1, 2, 3, 4, 5, 7, false));
    }
}

TEST_P(RouteEntries, areMadeWithAnEmptyFileOfTheProvider) {
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

TEST_P(RouteEntries, givenZeroBasedAreStoredOneBased) {
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

TEST_P(RouteEntries, givenDataAgainAreClearedFirst) {
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

TEST_P(RouteEntries, takeACopyOfTheFileThatTheDataHold) {
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
        // A file that nobody's row names is overwritten.
        kind.cube.Clear();
        writeFile(fileOf(kind, "1-2-3-4-5-6"), "left over");
        EXPECT_TRUE(store(kind.cube, 6, record.get()));
        EXPECT_EQ(readFile(fileOf(kind, "1-2-3-4-5-6")), "some routes");
        record.reset();
        EXPECT_EQ(fake.living(), 0);
        kind.cube.Clear();
    }
}

TEST_P(RouteEntries, areOnlyRegisteredWhenTheDataHaveNoFile) {
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

// Clearing the entry takes the file that the data came with.
TEST_P(RouteEntries, givenTheirOwnDataLoseTheirFile) {
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
        EXPECT_TRUE(text.starts_with("cannot copy " + source + " to " + routeFile(7) + ": ")) << text;
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

TEST_P(RouteEntries, areMadeEmptyFromOtherData) {
    OtherData other;
    RouteStorageCubeData withoutStorage;
    for (auto const& kind : kinds())
        for (CubeDataInterface* const given : {static_cast<CubeDataInterface*>(&other),
                 static_cast<CubeDataInterface*>(&withoutStorage), static_cast<CubeDataInterface*>(nullptr)}) {
            EXPECT_TRUE(store(kind.cube, 6, given));
            EXPECT_EQ(fake.calls(), created(kind, "1-2-3-4-5-6", "1 2 3 4 5 6"));
        }
}

TEST_P(RouteEntries, ofTheOtherKindAreCopiedAllTheSame) {
    std::string const source = elsewhere.file("source.FDB");
    writeFile(source, "some data");
    auto const record = recordFor(kinds()[1], source);
    fake.calls();
    EXPECT_TRUE(store(routes(), 6, record.get()));
    EXPECT_EQ(fake.calls(),
        "data.addRef 2\ndata.getFileName\ndata.setCubeType -9\ndata.setKey 1 2 3 4 5 6\ndata.release 1\n");
    EXPECT_EQ(readFile(routeFile(6)), "some data");
}

TEST_P(RouteEntries, areRegisteredWhenTheProviderMakesNoObjects) {
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

TEST_P(RouteEntries, areTrueWithoutATable) {
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

}
}
