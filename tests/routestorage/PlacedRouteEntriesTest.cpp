#include <filesystem>

#include "routestorage/RouteEntriesTest.h"

namespace cubes::test {
namespace {

class PlacedRouteEntries : public RouteEntriesTest {};

CUBES_BOTH_BACKENDS(PlacedRouteEntries);

TEST_P(PlacedRouteEntries, makeTheirDirectoryWhenTheyAreAdded) {
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

TEST_P(PlacedRouteEntries, thatAreNotAddedMakeNoDirectory) {
    execute("drop table " + table());
    for (auto const& kind : kinds()) {
        EXPECT_FALSE(add(kind.cube, 1));
        EXPECT_FALSE(kind.cube.Add({}, -9, 1, 1, 1, 1, 1, 1, 0, -1, -1, -1, -1, -1, -1, false));
        EXPECT_FALSE(std::filesystem::exists(pathOf(kind.directory)));
    }
}

TEST_P(PlacedRouteEntries, mayLieInAnotherDirectory) {
    RouteStorageCube cube(project().settings(), elsewhere.str().c_str());
    EXPECT_TRUE(store(cube, 6));
    EXPECT_EQ(listing(elsewhere.str()), "RouteStorage_Routes\nRouteStorage_Routes/1-2-3-4-5-6.FDB\n");
    RouteStorageDataCube const inProject(project().settings(), "");
    EXPECT_EQ(inProject.MatrixDirectory().str(), directory());
}

TEST_P(PlacedRouteEntries, areListedLikeThoseOfAnyResultCube) {
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

TEST_P(PlacedRouteEntries, areCopiedMovedAndClearedWithTheirFiles) {
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

TEST_P(PlacedRouteEntries, areCopiedIntoADirectoryThatWasNotThere) {
    TestProject other(backend());
    RouteStorageCube target(other.settings());
    store(routes(), 1);
    EXPECT_TRUE(target.Copy(routes(), 1, 2, 3, 4, 5, 1, 1, 2, 3, 4, 5, 2, true, false));
    EXPECT_EQ(
        readFile(target.MatrixDirectory().str() + "RouteStorage_Routes/1-2-3-4-5-2.FDB"), "made by the fake provider");
}

}
}
