#include <cubes/routestorage/RouteStorageCube.h>
#include <cubes/routestorage/RouteStorageDataCube.h>

#include <gtest/gtest.h>

#include <array>
#include <ostream>

#include "support/CubeTesting.h"

namespace {

TEST(RouteCubes, differOnlyInTheirType) {
    EXPECT_EQ(RouteStorageCube::CubeType, -9);
    EXPECT_EQ(RouteStorageDataCube::CubeType, -10);
    EXPECT_EQ(RouteStorageCube::MatrixType, 7);
    EXPECT_EQ(RouteStorageDataCube::MatrixType, 7);
    RouteStorageCube const routes(nullptr);
    RouteStorageDataCube const data(nullptr);
    EXPECT_STREQ(routes.Name(), "routestoragecube");
    EXPECT_STREQ(data.Name(), routes.Name());
    EXPECT_STREQ(RouteStorageCube::Ext, "FDB");
    EXPECT_STREQ(RouteStorageDataCube::Ext, "FDB");
    EXPECT_STREQ(routes.ClassName(), "RouteStorageCube");
    EXPECT_STREQ(data.ClassName(), "RouteStorageDataCube");
    EXPECT_EQ(routes.ClassID(), 0);
    EXPECT_EQ(routes.CubeNumber(), -9);
    EXPECT_EQ(data.CubeNumber(), -10);
}

TEST(RouteNames, joinTheNumbersAfterTheDirectory) {
    EXPECT_STREQ(RouteStorageCube::MakeFilename(1, 2, 3, 1, 1, 1).c_str(), "RouteStorage_Routes\\1-2-3-1-1-1.");
    EXPECT_STREQ(RouteStorageDataCube::MakeFilename(1, 2, 3, 1, 1, 1).c_str(), "RouteStorage_RouteData\\1-2-3-1-1-1.");
    EXPECT_STREQ(RouteStorageCube::MakeFilename(0, -1, 32767, -32768, 10, 0).c_str(),
        "RouteStorage_Routes\\0--1-32767--32768-10-0.");
    RouteStorageCube const routes(nullptr);
    RouteStorageDataCube const data(nullptr);
    EXPECT_STREQ(routes.createFilename(1, 2, 3, 4, 5, 6).c_str(), "RouteStorage_Routes\\1-2-3-4-5-6.");
    EXPECT_STREQ(data.createFilename(1, 2, 3, 4, 5, 6).c_str(), "RouteStorage_RouteData\\1-2-3-4-5-6.");
}

TEST(RouteNames, doNotChangeWithTheVersion) {
    cubes::test::VersionGuard const version(3);
    RouteStorageCube const routes(nullptr);
    EXPECT_STREQ(routes.createFilename(1, 2, 3, 4, 5, 6).c_str(), "RouteStorage_Routes\\1-2-3-4-5-6.");
}

using Numbers = std::array<int, 6>;
constexpr Numbers zeros = {};
constexpr Numbers counting = {1, 2, 3, 4, 5, 6};

struct Parsed {
    char const* text;
    bool result;
    Numbers numbers;
};

std::ostream& operator<<(std::ostream& stream, Parsed const& parsed) {
    return stream << (parsed.text ? parsed.text : "null");
}

template <typename Cube>
void expectParsed(Parsed const& parsed) {
    Numbers n = {91, 92, 93, 94, 95, 96};
    EXPECT_EQ(Cube::MakeFilename(parsed.text, n[0], n[1], n[2], n[3], n[4], n[5]), parsed.result) << parsed;
    EXPECT_EQ(n, parsed.numbers) << parsed;
}

class RouteNameParser : public testing::TestWithParam<Parsed> {};

TEST_P(RouteNameParser, parsesNamesOfRouteSetsInBothCubes) {
    expectParsed<RouteStorageCube>(GetParam());
    expectParsed<RouteStorageDataCube>(GetParam());
}

INSTANTIATE_TEST_SUITE_P(names, RouteNameParser,
    testing::Values(Parsed{"RouteStorage_Routes\\1-2-3-4-5-6", true, counting},
        Parsed{"RouteStorage_Routes/1-2-3-4-5-6", true, counting},
        Parsed{"RouteStorage_Routes\\1-2-3-4-5-6.", true, counting},
        Parsed{"RouteStorage_Routes\\1-2-3-4-5-6.FDB", true, counting},
        Parsed{"RouteStorage_Routes\\1-2-3-4-5-6.FDB \n", true, counting}, Parsed{"1-2-3-4-5-6", true, counting},
        Parsed{"1-2-3-4-5-6.FDB", true, counting}, Parsed{"100-0-32767-4-5-6", true, {100, 0, 32767, 4, 5, 6}},
        // Only a text that begins with the directory is trimmed.
        Parsed{" RouteStorage_Routes\\1-2-3-4-5-6", true, {0, 2, 3, 4, 5, 6}},
        Parsed{"routestorage_routes\\1-2-3-4-5-6", true, {0, 2, 3, 4, 5, 6}}, Parsed{"a-b-c-d-e-f", true, zeros},
        Parsed{"-----", true, zeros}, Parsed{"1-2-3-4-5", false, zeros},
        Parsed{"RouteStorage_Routes\\1-2-3-4-5", false, zeros}, Parsed{"1-2-3-4-5-6-7", false, zeros},
        Parsed{"1--2-3-4-5-6", false, zeros}, Parsed{"-", false, zeros}, Parsed{"123456", false, zeros},
        Parsed{"RouteStorage_Routes\\123456", false, zeros}, Parsed{"RouteStorage_Routes", false, zeros},
        Parsed{"", false, zeros}, Parsed{nullptr, false, zeros}));

TEST(RouteNameParsers, ofRouteDataParseTheirOwnNamesToo) {
    expectParsed<RouteStorageDataCube>({"RouteStorage_RouteData\\1-2-3-4-5-6", true, counting});
    expectParsed<RouteStorageDataCube>({"RouteStorage_RouteData/1-2-3-4-5-6.FDB", true, counting});
    expectParsed<RouteStorageDataCube>({"RouteStorage_RouteData\\1-2-3-4-5", false, zeros});
    expectParsed<RouteStorageCube>({"RouteStorage_RouteData\\1-2-3-4-5-6", true, {0, 2, 3, 4, 5, 6}});
}

TEST(RouteNameParsers, parseTheNamesOfTheCubes) {
    Numbers n{};
    EXPECT_TRUE(RouteStorageCube::MakeFilename(
        RouteStorageCube::MakeFilename(7, 6, 5, 4, 3, 2).c_str(), n[0], n[1], n[2], n[3], n[4], n[5]));
    EXPECT_EQ(n, (Numbers{7, 6, 5, 4, 3, 2}));
    EXPECT_TRUE(RouteStorageDataCube::MakeFilename(
        RouteStorageDataCube::MakeFilename(2, 3, 4, 5, 6, 7).c_str(), n[0], n[1], n[2], n[3], n[4], n[5]));
    EXPECT_EQ(n, (Numbers{2, 3, 4, 5, 6, 7}));
}

}
