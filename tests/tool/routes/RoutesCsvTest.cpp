#include "tool/routes/RouteCsv.h"

#include "tool/formats/BadFile.h"

#include <fmt/format.h>

#include <limits>
#include <random>

namespace cubes::tool {

namespace {

std::string const header = "origin,destination,route,sequence,link,share\n";

RouteList readRoutes(std::string const& content) {
    test::TempDir const directory;
    test::writeFile(directory.file("routes.csv"), content);
    return readRoutesCsv(directory.file("routes.csv"), {});
}

std::string written(RouteList const& routes, ProgressCallback const& progress = {}) {
    test::TempDir const directory;
    writeRoutesCsv(directory.file("routes.csv"), routes, progress);
    EXPECT_EQ(test::listing(directory.str()), "routes.csv\n");
    return test::readFile(directory.file("routes.csv"));
}

// "1>3 0.75: 10 20" per route.
std::string textOf(RouteList const& routes) {
    std::string text;
    for (std::size_t i = 0; i < routes.size(); ++i) {
        auto const one = routes[i];
        text += fmt::format("{}>{} {}:", one.origin, one.destination, one.share);
        for (auto const link : one.links) text += fmt::format(" {}", link);
        text += '\n';
    }
    return text;
}

void add(RouteList& routes, std::int32_t origin, std::int32_t destination, float share,
    std::vector<std::uint32_t> const& links) {
    routes.begin(origin, destination, share);
    for (auto const link : links) routes.addLink(link);
}

struct GoodFile {
    std::string name;
    std::string content;
    std::string routes;
};

void PrintTo(GoodFile const& file, std::ostream* stream) {
    *stream << file.name;
}

std::string zoneError(std::string const& found) {
    return "line 2: found '" + found + "', expected a zone number (a whole number from 1 to 2147483647)";
}

std::string wholeError(std::string const& found) {
    return "line 2: found '" + found + "', expected a whole number from 0 to 4294967295";
}

constexpr char const* two = "1>3 0.75: 10 20\n1>3 0.25: 15\n";
constexpr char const* secondFirst = "1>3 0.25: 15\n1>3 0.75: 10 20\n";

}

class GoodRoutesCsv : public testing::TestWithParam<GoodFile> {};

TEST_P(GoodRoutesCsv, isAccepted) {
    EXPECT_EQ(textOf(readRoutes(GetParam().content)), GetParam().routes);
}

INSTANTIATE_TEST_SUITE_P(RoutesCsv, GoodRoutesCsv,
    testing::Values(GoodFile{"asItIsWritten", header + "1,3,1,1,10,0.75\n1,3,1,2,20,0.75\n1,3,2,1,15,0.25\n", two},
        GoodFile{"columnsInAnyOrder",
            "share,link,sequence,route,destination,origin\n.75,10,1,1,3,1\n.75,20,2,1,3,1\n.25,15,1,2,3,1\n", two},
        GoodFile{"headerInCapitals",
            "Origin,DESTINATION,Route,Sequence,LINK,Share\n1,3,1,1,10,0.75\n1,3,1,2,20,0.75\n1,3,2,1,15,0.25\n", two},
        GoodFile{"linesInAnyOrder", header + "1,3,2,1,15,0.25\n1,3,1,2,20,0.75\n1,3,1,1,10,0.75\n", secondFirst},
        GoodFile{"byteOrderMarkAndWindowsLineEnds",
            "\xEF\xBB\xBForigin,destination,route,sequence,link,share\r\n1,3,1,1,10,0.75\r\n1,3,1,2,20,0.75\r\n"
            "1,3,2,1,15,0.25\r\n",
            two},
        GoodFile{"blankLinesAndNoLastLineEnd",
            "\n" + header + "\n1,3,1,1,10,0.75\n \n1,3,1,2,20,0.75\n\n1,3,2,1,15,0.25", two},
        GoodFile{"quotesAndBlanks",
            "\"origin\",destination , route,\tsequence,\"link\",share\n\"1\",3, 1 ,1,\"10\",\" 0.75\"\n"
            "1,3,1,2,20,\"0.75\"\n1,3,\"2\",1,15,0.25 \n",
            two},
        GoodFile{"numbersOfRoutesAndSequencesWithGaps",
            header + "1,3,4294967295,0,15,0.25\n1,3,0,4294967295,20,7.5e-1\n1,3,0,7,10,0.75\n", secondFirst},
        GoodFile{"plusSigns", header + "+1,+3,+1,+1,+10,+0.75\n1,3,1,2,20,0.75\n1,3,2,1,15,0.25\n", two},
        GoodFile{
            "pairsInAnyOrder", header + "2,1,1,1,5,1\n1,10,1,1,6,1\n1,2,1,1,7,1\n", "2>1 1: 5\n1>10 1: 6\n1>2 1: 7\n"},
        GoodFile{"routesInEachOther",
            header + "5,4,1,2,8,1\n1,2,9,3,3,1\n5,4,1,1,7,1\n1,2,1,1,6,1\n1,2,9,1,1,1\n1,2,9,2,2,1\n",
            "5>4 1: 7 8\n1>2 1: 1 2 3\n1>2 1: 6\n"},
        GoodFile{"withoutLinks", header + "4,4,1,,,1\n", "4>4 1:\n"},
        GoodFile{"withoutLinksInQuotes", header + "4,4,1,\"\", ,1\n", "4>4 1:\n"},
        GoodFile{
            "someWithoutLinks", header + "1,2,2,1,7,0.5\n1,2,1,,,0.5\n1,1,1,,,1\n", "1>2 0.5: 7\n1>2 0.5:\n1>1 1:\n"},
        GoodFile{"aLinkTwice", header + "1,2,1,1,5,1\n1,2,1,2,6,1\n1,2,1,3,5,1\n", "1>2 1: 5 6 5\n"},
        GoodFile{"largestNumbers", header + "2147483647,2147483647,1,1,4294967295,3.4028235e38\n",
            "2147483647>2147483647 3.4028235e+38: 4294967295\n"},
        GoodFile{"smallestNumbers", header + "1,1,0,0,0,0\n", "1>1 0: 0\n"},
        GoodFile{"sharesThatAreTrips", header + "1,2,1,1,5,1234.5\n1,2,2,1,6,2\n", "1>2 1234.5: 5\n1>2 2: 6\n"},
        GoodFile{"shareTooSmallForAFloat", header + "1,2,1,1,5,1e-60\n", "1>2 0: 5\n"}),
    [](auto const& test) { return test.param.name; });

class BadRoutesCsv : public testing::TestWithParam<BadFile> {};

TEST_P(BadRoutesCsv, isRefusedWithItsLineAndReason) {
    auto const read = [](std::string const& path) { readRoutesCsv(path, {}); };
    EXPECT_EQ(refusalOf("bad.csv", GetParam().content, read), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(Header, BadRoutesCsv,
    testing::Values(
        BadFile{"empty", "", "it is empty, expected the header origin,destination,route,sequence,link,share"},
        BadFile{"missing", "1,3,1,1,10,0.75\n",
            "line 1: found '1,3,1,1,10,0.75', expected the header origin,destination,route,sequence,link,share"},
        BadFile{"aColumnMissing", "origin,destination,route,sequence,link\n1,3,1,1,10\n",
            "line 1: found 'origin,destination,route,sequence,link', expected the header "
            "origin,destination,route,sequence,link,share"},
        BadFile{"aColumnTwice", "origin,origin,route,sequence,link,share\n1,3,1,1,10,1\n",
            "line 1: found 'origin,origin,route,sequence,link,share', expected the header "
            "origin,destination,route,sequence,link,share"},
        BadFile{"aColumnMore", "origin,destination,route,sequence,link,share,a\n1,3,1,1,10,1,2\n",
            "line 1: found 'origin,destination,route,sequence,link,s...', expected the header "
            "origin,destination,route,sequence,link,share"},
        BadFile{"withoutLines", header, "it has no routes after the header line"},
        BadFile{"withBlankLines", header + "\n \n", "it has no routes after the header line"}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(Numbers, BadRoutesCsv,
    testing::Values(
        BadFile{"tooFewFields", header + "1,3,1,1,10,1\n1,3,1,2,10\n", "line 3: found 5 fields, expected 6"},
        BadFile{"tooManyFields", header + "1,3,1,1,10,1,\n", "line 2: found 7 fields, expected 6"},
        BadFile{"originZero", header + "0,3,1,1,10,1\n", zoneError("0")},
        BadFile{"destinationNegative", header + "1,-3,1,1,10,1\n", zoneError("-3")},
        BadFile{"destinationTooLarge", header + "1,2147483648,1,1,10,1\n", zoneError("2147483648")},
        BadFile{"originBroken", header + "1.5,3,1,1,10,1\n", zoneError("1.5")},
        BadFile{"originInWords", header + "north,3,1,1,10,1\n", zoneError("north")},
        BadFile{"originMissing", header + ",3,1,1,10,1\n",
            "line 2: found nothing, expected a zone number (a whole number from 1 to 2147483647)"},
        BadFile{"routeNegative", header + "1,3,-1,1,10,1\n", wholeError("-1")},
        BadFile{"routeMissing", header + "1,3,,1,10,1\n",
            "line 2: found nothing, expected a whole number from 0 to 4294967295"},
        BadFile{"linkNegative", header + "1,3,1,1,-10,1\n", wholeError("-10")},
        BadFile{"linkTooLarge", header + "1,3,1,1,4294967296,1\n", wholeError("4294967296")},
        BadFile{"linkBroken", header + "1,3,1,1,1e1,1\n", wholeError("1e1")},
        BadFile{"linkWithoutSequence", header + "1,3,1,,10,1\n",
            "line 2: found nothing, expected a whole number from 0 to 4294967295"},
        BadFile{"sequenceWithoutLink", header + "1,3,1,1,,1\n",
            "line 2: found nothing, expected a whole number from 0 to 4294967295"},
        BadFile{"shareMissing", header + "1,3,1,1,10,\n", "line 2: found nothing, expected a number"},
        BadFile{"shareInWords", header + "1,3,1,1,10,half\n", "line 2: found 'half', expected a number"},
        BadFile{"shareNegative", header + "1,3,1,1,10,0.5\n1,3,2,1,11,-0.5\n",
            "line 3: found '-0.5', expected a share of at least 0"},
        BadFile{"shareNotFinite", header + "1,3,1,1,10,inf\n", "line 2: found 'inf', expected a number"},
        BadFile{"shareNotANumber", header + "1,3,1,1,10,nan\n", "line 2: found 'nan', expected a number"},
        BadFile{"shareTooLarge", header + "1,3,1,1,10,1e39\n",
            "line 2: found '1e39', expected a number from -3.4e38 to 3.4e38"},
        BadFile{"shareTooNegative", header + "1,3,1,1,10,-1e39\n",
            "line 2: found '-1e39', expected a number from -3.4e38 to 3.4e38"},
        BadFile{"decimalComma", header + "1,3,1,1,10,\"0,5\"\n", "line 2: found '0,5', expected a number"}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(Routes, BadRoutesCsv,
    testing::Values(BadFile{"sharesThatDiffer", header + "1,3,1,1,10,0.5\n1,3,1,2,20,0.25\n",
                        "line 3: found share 0.25, expected 0.5 as in line 2 of the same route"},
        BadFile{"sharesThatDifferInOtherOrder", header + "1,3,1,2,20,0.25\n2,3,1,1,10,1\n1,3,1,1,10,0.5\n",
            "line 2: found share 0.25, expected 0.5 as in line 4 of the same route"},
        BadFile{"sequenceTwice", header + "1,3,1,1,10,1\n1,3,1,2,20,1\n1,3,1,1,30,1\n",
            "line 4: found sequence 1 of a route a second time, after line 2"},
        BadFile{"linksAfterARouteWithout", header + "1,3,1,,,1\n1,3,1,1,10,1\n",
            "line 2: found a route without links, but it has some in line 3"},
        BadFile{"linksBeforeARouteWithout", header + "1,3,1,1,10,1\n1,3,1,,,1\n",
            "line 3: found a route without links, but it has some in line 2"},
        BadFile{"linksFromSequenceZeroBeforeARouteWithout", header + "1,3,1,0,10,1\n1,3,1,,,1\n",
            "line 3: found a route without links, but it has some in line 2"},
        BadFile{"withoutLinksTwice", header + "1,3,1,,,1\n1,4,1,,,1\n1,3,1,,,1\n",
            "line 4: found a route without links a second time, after line 2"}),
    nameOf);

TEST(RoutesCsv, isRefusedWhenItIsMissingOrADirectory) {
    test::TempDir const directory;
    for (std::string const& path : {directory.file("none.csv"), directory.str()}) {
        try {
            readRoutesCsv(path, {});
            ADD_FAILURE() << path;
        } catch (FormatError const& error) {
            EXPECT_NE(std::string(error.what()), "") << path;
        }
    }
}

TEST(RoutesCsv, isWrittenWithRoutesAndSequencesFromOne) {
    RouteList routes;
    add(routes, 1, 3, 0.75f, {10, 20});
    add(routes, 2, 1, 1, {4294967295, 0});
    add(routes, 1, 3, 0.25f, {15});
    add(routes, 2, 2, 0.1f, {});
    EXPECT_EQ(written(routes), "origin,destination,route,sequence,link,share\n"
                               "1,3,1,1,10,0.75\n"
                               "1,3,1,2,20,0.75\n"
                               "2,1,1,1,4294967295,1\n"
                               "2,1,1,2,0,1\n"
                               "1,3,2,1,15,0.25\n"
                               "2,2,1,,,0.1\n");
}

TEST(RoutesCsv, withoutRoutesIsAHeader) {
    EXPECT_EQ(written({}), header);
}

TEST(RoutesCsv, preservesAllRoutes) {
    std::mt19937 random(11);
    RouteList routes;
    for (std::int32_t origin = 1; origin <= 20; ++origin)
        for (std::int32_t destination = 1; destination <= 20; ++destination)
            for (int route = 0; route < 3; ++route) {
                std::vector<std::uint32_t> links(random() % 20);
                for (auto& link : links) link = static_cast<std::uint32_t>(random());
                add(routes, origin, destination, static_cast<float>(random()) / 3, links);
            }
    auto const text = written(routes);
    EXPECT_GT(text.size(), 1u << 17);
    EXPECT_EQ(textOf(readRoutes(text)), textOf(routes));
    EXPECT_EQ(written(readRoutes(text)), text);
}

TEST(RoutesCsv, reportsProgress) {
    RouteList routes;
    for (std::int32_t zone = 1; zone <= 20000; ++zone) add(routes, zone, 1, 1, {1, 2, 3});
    std::vector<double> shares;
    ProgressCallback const noted = [&](double share) { shares.push_back(share); };
    test::TempDir const directory;
    writeRoutesCsv(directory.file("routes.csv"), routes, noted);
    EXPECT_GT(shares.size(), 5u);
    EXPECT_GT(shares.back(), 0.9);
    EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
    shares.clear();
    readRoutesCsv(directory.file("routes.csv"), noted);
    EXPECT_GT(shares.size(), 50u);
    EXPECT_GT(shares.back(), 0.98);
}

TEST(RoutesCsv, keepsTheOldFileWhenTheNewOneCannotBeWritten) {
    test::TempDir const directory;
    test::writeFile(directory.file("routes.csv"), "old");
    RouteList routes;
    add(routes, 1, 2, 1, {3});
    EXPECT_THROW(writeRoutesCsv(directory.file("none/routes.csv"), routes, {}), FormatError);
    EXPECT_THROW(writeRoutesCsv(directory.str(), routes, {}), FormatError);
    EXPECT_EQ(test::listing(directory.str()), "routes.csv\n");
    writeRoutesCsv(directory.file("routes.csv"), routes, {});
    EXPECT_EQ(test::readFile(directory.file("routes.csv")), header + "1,2,1,1,3,1\n");
}

}
