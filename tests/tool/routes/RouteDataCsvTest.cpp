#include "tool/routes/RouteCsv.h"

#include "tool/formats/BadFile.h"

#include <fmt/format.h>

#include <bit>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>

namespace cubes::tool {

namespace {

using namespace VL::Interface;

std::vector<RouteValues> readData(std::string const& content) {
    test::TempDir const directory;
    test::writeFile(directory.file("data.csv"), content);
    return readRouteDataCsv(directory.file("data.csv"), {});
}

std::string written(std::vector<RouteValues> const& fields) {
    test::TempDir const directory;
    writeRouteDataCsv(directory.file("data.csv"), fields, {});
    EXPECT_EQ(test::listing(directory.str()), "data.csv\n");
    return test::readFile(directory.file("data.csv"));
}

// "length double: 1.5 2.5" per field.
std::string textOf(std::vector<RouteValues> const& fields) {
    std::string text;
    for (auto const& field : fields) {
        text += field.name + " " + typeName(field.type) + ":";
        for (double const value : field.values) text += fmt::format(" {}", value);
        text += '\n';
    }
    return text;
}

struct GoodFile {
    std::string name;
    std::string content;
    std::string fields;
};

void PrintTo(GoodFile const& file, std::ostream* stream) {
    *stream << file.name;
}

constexpr char const* typeError = "expected NAME:TYPE with the type boolean, bytes, smalint, integer, float or double";

/// A type with its smallest and largest values, and values outside its range.
struct TypeCase {
    char const* name;
    RouteFieldType type;
    std::vector<std::string> good;
    std::vector<std::string> bad;
};

void PrintTo(TypeCase const& type, std::ostream* stream) {
    *stream << type.name;
}

}

class GoodRouteDataCsv : public testing::TestWithParam<GoodFile> {};

TEST_P(GoodRouteDataCsv, isAccepted) {
    EXPECT_EQ(textOf(readData(GetParam().content)), GetParam().fields);
}

INSTANTIATE_TEST_SUITE_P(RouteDataCsv, GoodRouteDataCsv,
    testing::Values(GoodFile{"oneField", "route,length:float\n0,1.5\n1,2.5\n", "length float: 1.5 2.5\n"},
        GoodFile{"severalFields", "route,tolled:boolean,length:double\n0,1,0.1\n1,0,-3\n",
            "tolled boolean: 1 0\nlength double: 0.1 -3\n"},
        GoodFile{"doubleWithoutType", "route,length\n0,0.1\n", "length double: 0.1\n"},
        GoodFile{"routesInAnyOrder", "route,length\n2,30\n0,10\n1,20\n", "length double: 10 20 30\n"},
        GoodFile{"smallintSpeltInFull", "route,a:smallint,b:SmallInt,c:smalint\n0,1,2,3\n",
            "a smalint: 1\nb smalint: 2\nc smalint: 3\n"},
        GoodFile{"typesInCapitals", "ROUTE,Toll:INTEGER\n0,7\n", "Toll integer: 7\n"},
        GoodFile{"namesThatDifferInLetterCase", "route,toll,Toll\n0,1,2\n", "toll double: 1\nToll double: 2\n"},
        GoodFile{"aNameWithAColon", "route,time:free:float\n0,7\n", "time:free float: 7\n"},
        GoodFile{"aNameWithACommaAndBlanks", "route,\"toll, paid :bytes\"\n0,255\n", "toll, paid  bytes: 255\n"},
        GoodFile{"aNameWithQuotes", "route,\"the \"\"old\"\" toll\"\n0,1\n", "the \"old\" toll double: 1\n"},
        GoodFile{"wholeNumbersWrittenOtherwise", "route,a:integer\n0,1e3\n1,+7\n2,5.0\n", "a integer: 1000 7 5\n"},
        GoodFile{"floatsAsTheyAreKept", "route,a:float\n0,0.1\n1,1e-60\n", "a float: 0.10000000149011612 0\n"},
        GoodFile{"byteOrderMarkAndWindowsLineEnds", "\xEF\xBB\xBFroute,a\r\n0,1\r\n\r\n1,2", "a double: 1 2\n"},
        GoodFile{"quotesAndBlanks", " \"route\" , \"a\"\n \"1\" ,\t2\n0,\"1\"\n", "a double: 1 2\n"},
        GoodFile{"noRoutes", "route,a:float,b:bytes\n", "a float:\nb bytes:\n"}),
    [](auto const& test) { return test.param.name; });

class BadRouteDataCsv : public testing::TestWithParam<BadFile> {};

TEST_P(BadRouteDataCsv, isRefusedWithItsLineAndReason) {
    auto const read = [](std::string const& path) { readRouteDataCsv(path, {}); };
    EXPECT_EQ(refusalOf("bad.csv", GetParam().content, read), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(Header, BadRouteDataCsv,
    testing::Values(BadFile{"empty", "", "it is empty, expected the header route,NAME:TYPE,..."},
        BadFile{"missing", "0,1.5\n", "line 1: found '0', expected the header route,NAME:TYPE,..."},
        BadFile{"withoutFields", "route\n0\n", "line 1: found 'route', expected the header route,NAME:TYPE,..."},
        BadFile{"fieldTwice", "route,toll:float,toll:bytes\n0,1,1\n",
            "line 1: found 'toll:bytes', expected each field once"},
        BadFile{"emptyName", "route,a,\n0,1,1\n", std::string("line 1: found nothing, ") + typeError},
        BadFile{"emptyNameBeforeAType", "route,:float\n0,1\n", std::string("line 1: found ':float', ") + typeError},
        BadFile{"unknownType", "route,a:text\n0,1\n", std::string("line 1: found 'a:text', ") + typeError},
        BadFile{"controlCharacterInAName", "route,a\tb\n0,1\n",
            "line 1: found 'a\\tb', expected a name without control characters"},
        BadFile{"emptyType", "route,a:\n0,1\n", std::string("line 1: found 'a:', ") + typeError}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(Lines, BadRouteDataCsv,
    testing::Values(BadFile{"tooFewFields", "route,a,b\n0,1,2\n1,1\n", "line 3: found 2 fields, expected 3"},
        BadFile{"tooManyFields", "route,a\n0,1,2\n", "line 2: found 3 fields, expected 2"},
        BadFile{"noValue", "route,a\n0,\n", "line 2: found nothing, expected a number"},
        BadFile{"valueInWords", "route,a:bytes\n0,many\n", "line 2: found 'many', expected a number"},
        BadFile{"floatTooLarge", "route,a:float\n0,3.5e38\n",
            "line 2: found '3.5e38', expected a number from -3.4e38 to 3.4e38"},
        BadFile{"floatFarTooLarge", "route,a:float\n0,-1e999\n",
            "line 2: found '-1e999', expected a number from -3.4e38 to 3.4e38"},
        BadFile{"doubleTooLarge", "route,a:double\n0,1e999\n", "line 2: found '1e999', expected a number"},
        BadFile{"routeNegative", "route,a\n-1,1\n", "line 2: found '-1', expected a whole number from 0 to 4294967295"},
        BadFile{"routeBroken", "route,a\n0.5,1\n", "line 2: found '0.5', expected a whole number from 0 to 4294967295"},
        BadFile{
            "routeMissing", "route,a\n0,1\n2,3\n", "line 3: found route 2, expected the routes from 0 to 1, each once"},
        BadFile{
            "firstRouteMissing", "route,a\n1,1\n", "line 2: found route 1, expected the routes from 0 to 0, each once"},
        BadFile{"routeTwice", "route,a\n0,1\n1,2\n0,3\n",
            "line 4: found route 0, expected the routes from 0 to 2, each once"},
        BadFile{"largestRoute", "route,a\n4294967295,1\n",
            "line 2: found route 4294967295, expected the routes from 0 to 0, each once"}),
    nameOf);

class RouteDataType : public testing::TestWithParam<TypeCase> {};

TEST_P(RouteDataType, acceptsItsValuesAndNoOthers) {
    std::string const head = std::string("route,a:") + GetParam().name + "\n0,";
    for (auto const& value : GetParam().good) {
        auto const fields = readData(head + value + "\n");
        ASSERT_EQ(fields.size(), 1u);
        EXPECT_EQ(fields[0].type, GetParam().type);
        EXPECT_EQ(fields[0].values, std::vector{std::strtod(value.c_str(), nullptr)}) << value;
        EXPECT_EQ(textOf(readData(written(fields))), textOf(fields));
    }
    auto const read = [](std::string const& path) { readRouteDataCsv(path, {}); };
    for (auto const& value : GetParam().bad)
        EXPECT_EQ(refusalOf("a.csv", head + value, read),
            "line 2: found '" + value + "', expected a value of the type " + GetParam().name);
    for (auto const* value : {"nan", "inf", "-inf", "0x1"})
        EXPECT_EQ(
            refusalOf("a.csv", head + value, read), std::string("line 2: found '") + value + "', expected a number");
}

INSTANTIATE_TEST_SUITE_P(RouteDataCsv, RouteDataType,
    testing::Values(TypeCase{"boolean", rftBoolean, {"0", "1", "1.0"}, {"-1", "2", "0.5"}},
        TypeCase{"bytes", rftBytes, {"0", "255"}, {"-1", "256", "0.5", "1e10"}},
        TypeCase{"smalint", rftSmallint, {"-32768", "32767"}, {"-32769", "32768", "-0.5"}},
        TypeCase{"integer", rftInteger, {"-2147483648", "2147483647"}, {"-2147483649", "2147483648", "0.5"}},
        TypeCase{"float", rftFloat, {"0.5", "-0.25", "3.4028234663852886e38", "-3.4028234663852886e38"}, {}},
        TypeCase{"double", rftDouble, {"0.1", "-1.7976931348623157e308", "5e-324"}, {}}),
    [](auto const& test) { return std::string(test.param.name); });

TEST(RouteDataCsv, isWrittenWithTypesAndRoutesFromZero) {
    EXPECT_EQ(written({{"tolled", rftBoolean, {1, 0}}, {"class", rftBytes, {0, 255}},
                  {"stops", rftSmallint, {-32768, 5}}, {"number", rftInteger, {2147483647, -1}},
                  {"time", rftFloat, {static_cast<double>(0.1f), 1e10}}, {"cost", rftDouble, {0.1, 1e300}}}),
        "route,tolled:boolean,class:bytes,stops:smalint,number:integer,time:float,cost:double\n"
        "0,1,0,-32768,2147483647,0.1,0.1\n"
        "1,0,255,5,-1,10000000000,1e+300\n");
    EXPECT_EQ(written({{"empty", rftFloat, {}}}), "route,empty:float\n");
}

TEST(RouteDataCsv, preservesNamesThatNeedQuotes) {
    for (std::string const name : {"toll, paid", "\"", "a\"b", "\"\"", "a:b", "time ", "toll"}) {
        auto const text = written({{name, rftBytes, {7}}});
        auto const fields = readData(text);
        ASSERT_EQ(fields.size(), 1u) << text;
        EXPECT_EQ(fields[0].name, name) << text;
        EXPECT_EQ(fields[0].values, std::vector{7.0});
    }
    EXPECT_EQ(written({{"toll, \"paid\"", rftBytes, {7}}}), "route,\"toll, \"\"paid\"\":bytes\"\n0,7\n");
}

TEST(RouteDataCsv, preservesAllValues) {
    std::mt19937_64 random(5);
    RouteValues wide{"wide", rftDouble, {0.0, -0.0}};
    RouteValues narrow{"narrow", rftFloat, {0.0, -0.0}};
    while (wide.values.size() < 1000) {
        auto const bits = random();
        double const value = std::bit_cast<double>(bits);
        float const rounded = std::bit_cast<float>(static_cast<std::uint32_t>(bits >> 16));
        if (!std::isfinite(value) || !std::isfinite(rounded)) continue;
        wide.values.push_back(value);
        narrow.values.push_back(static_cast<double>(rounded));
    }
    auto const back = readData(written({wide, narrow}));
    ASSERT_EQ(back.size(), 2u);
    EXPECT_EQ(back[0].values, wide.values);
    EXPECT_EQ(back[1].values, narrow.values);
    EXPECT_TRUE(std::signbit(back[0].values[1]));
    EXPECT_TRUE(std::signbit(back[1].values[1]));
}

TEST(RouteDataCsv, reportsProgress) {
    test::TempDir const directory;
    std::vector<double> shares;
    ProgressCallback const noted = [&](double share) { shares.push_back(share); };
    writeRouteDataCsv(directory.file("data.csv"), {{"a", rftDouble, std::vector<double>(1000)}}, noted);
    EXPECT_GT(shares.size(), 50u);
    EXPECT_GT(shares.back(), 0.9);
    EXPECT_LE(shares.size(), 101u);
}

TEST(RouteDataCsv, keepsTheOldFileWhenTheNewOneCannotBeWritten) {
    test::TempDir const directory;
    EXPECT_THROW(writeRouteDataCsv(directory.file("none/data.csv"), {{"a", rftFloat, {1}}}, {}), FormatError);
    EXPECT_THROW(writeRouteDataCsv(directory.str(), {{"a", rftFloat, {1}}}, {}), FormatError);
    EXPECT_EQ(test::listing(directory.str()), "");
}

}
