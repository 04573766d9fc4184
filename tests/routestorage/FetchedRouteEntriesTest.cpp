#include <filesystem>

#include "routestorage/RouteEntriesTest.h"

namespace cubes::test {
namespace {

class FetchedRouteEntries : public RouteEntriesTest {};

CUBES_BOTH_BACKENDS(FetchedRouteEntries);

TEST_P(FetchedRouteEntries, areFetchedWithAStorageForTheirFile) {
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

TEST_P(FetchedRouteEntries, givenZeroBasedAreFetchedWithTheirOneBasedKey) {
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

TEST_P(FetchedRouteEntries, cannotBeFetchedWhenMissingInUseOrWithoutFile) {
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

TEST_P(FetchedRouteEntries, withNamesThatLeadOutAreNeverOpened) {
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

TEST_P(FetchedRouteEntries, withKeysThatCannotBeStoredAreNotThere) {
    constexpr short last = 32767;
    for (auto const& kind : kinds()) {
        EXPECT_TRUE(kind.cube.SetData(nullptr, last, 1, 1, 1, 1, 1, 0, -1, -1, -1, -1, -1, -1, true));
        EXPECT_EQ(kind.cube.GetData(last, 1, 1, 1, 1, 1, true), nullptr);
    }
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(fake.calls(), "");
}

}
}
