#include "tool/routes/RouteFiles.h"

#include "support/TempDir.h"
#include "tool/Errors.h"

#include <gtest/gtest.h>

namespace cubes::tool {

namespace {

using namespace VL::Interface;

constexpr RouteKey key{-9, {1, 2, 3, 4, 5, 6}};

class RouteFiles : public testing::Test {
protected:
    template <typename Work>
    static std::string failure(Work const& work) {
        try {
            work();
            return {};
        } catch (Failure const& error) {
            return error.what();
        }
    }

    test::TempDir const directory;
    std::string const file = directory.file("a.FDB");
};

}

TEST_F(RouteFiles, giveBackRoutesByPairAndLink) {
    RouteList routes;
    routes.begin(1, 3, 0.75f);
    routes.addLink(10);
    routes.addLink(4294967295);
    routes.begin(1, 3, 0.25f);
    routes.begin(2, 3, 1);
    routes.addLink(10);
    writeRouteSet(file, key, routes);

    RouteSetFile const set(file);
    EXPECT_EQ(set.size(), 3u);
    EXPECT_EQ(set.linkCount(), 3u);
    auto const first = set.route(0);
    EXPECT_EQ(first.origin, 1);
    EXPECT_EQ(first.destination, 3);
    EXPECT_EQ(first.share, 0.75f);
    EXPECT_EQ(std::vector(first.links.begin(), first.links.end()), (std::vector<std::uint32_t>{10, 4294967295}));
    EXPECT_TRUE(set.route(1).links.empty());
    EXPECT_EQ(set.ofPair(1, 3), (std::vector<std::size_t>{0, 1}));
    EXPECT_EQ(set.ofPair(3, 1), std::vector<std::size_t>());
    EXPECT_EQ(set.overLink(10), (std::vector<std::size_t>{0, 2}));
    EXPECT_EQ(set.overLink(11), std::vector<std::size_t>());
}

TEST_F(RouteFiles, giveBackTheOutermostValuesOfEachType) {
    std::vector<RouteValues> const fields = {{"tolled", rftBoolean, {0, 1}}, {"class", rftBytes, {0, 255}},
        {"stops", rftSmallint, {-32768, 32767}}, {"number", rftInteger, {-2147483648.0, 2147483647}},
        {"time", rftFloat, {-0.5, 3.4028234663852886e38}}, {"cost", rftDouble, {0.1, -1.7976931348623157e308}}};
    writeRouteData(file, key, fields);
    auto const back = readRouteData(file);
    ASSERT_EQ(back.size(), fields.size());
    for (std::size_t i = 0; i < fields.size(); ++i) {
        EXPECT_EQ(back[i].name, fields[i].name);
        EXPECT_EQ(back[i].type, fields[i].type);
        EXPECT_EQ(back[i].values, fields[i].values) << fields[i].name;
    }
}

TEST_F(RouteFiles, ofNothingAreEmpty) {
    writeRouteSet(file, key, {});
    EXPECT_EQ(RouteSetFile(file).size(), 0u);
    EXPECT_EQ(RouteSetFile(file).overLink(1), std::vector<std::size_t>());
    writeRouteData(file, key, {});
    EXPECT_TRUE(readRouteData(file).empty());
}

TEST_F(RouteFiles, takeThePlaceOfThoseThatAreThere) {
    RouteList routes;
    routes.begin(1, 2, 1);
    writeRouteSet(file, key, routes);
    writeRouteSet(file, key, {});
    EXPECT_EQ(RouteSetFile(file).size(), 0u);
    EXPECT_EQ(test::listing(directory.str()), "a.FDB\n");
}

TEST_F(RouteFiles, thatCannotBeReadOrWrittenTellWhy) {
    auto const readSet = [&] { RouteSetFile const set(file); };
    auto const readData = [&] { readRouteData(file); };
    EXPECT_EQ(failure(readSet), "cannot open " + file + ": there is no such file");
    EXPECT_EQ(failure(readData), "cannot open " + file + ": there is no such file");
    test::writeFile(file, "no routes");
    EXPECT_TRUE(failure(readSet).starts_with("cannot open " + file + ": ")) << failure(readSet);
    EXPECT_TRUE(failure(readData).starts_with("cannot open " + file + ": ")) << failure(readData);
    auto const nowhere = directory.file("none/a.FDB");
    EXPECT_NE(failure([&] { writeRouteSet(nowhere, key, {}); }).find(nowhere), std::string::npos);
    EXPECT_NE(failure([&] { writeRouteData(nowhere, key, {}); }).find(nowhere), std::string::npos);
}

TEST_F(RouteFiles, ofOneSortAreNotReadAsTheOther) {
    writeRouteData(file, key, {{"a", rftFloat, {1}}});
    EXPECT_NE(failure([&] { RouteSetFile const set(file); }), "");
    writeRouteSet(file, key, {});
    EXPECT_NE(failure([&] { readRouteData(file); }), "");
}

TEST_F(RouteFiles, refuseWhatTheProviderRefuses) {
    EXPECT_NE(failure([&] { writeRouteData(file, key, {{"a\tb", rftFloat, {1}}}); }), "");
    EXPECT_NE(failure([&] { writeRouteData(file, key, {{"a", rftFloat, {1}}, {"b", rftFloat, {1, 2}}}); }), "");
}

}
