#include "Samples.h"

#include <gtest/gtest.h>

#include <random>

using namespace cubes::test;

namespace {

class DamagedRouteFile : public testing::Test {
protected:
    void SetUp() override {
        std::mt19937 random(3);
        for (std::int32_t origin = 1; origin < 12; ++origin)
            for (std::int32_t destination = 1; destination < 12; ++destination) {
                Numbers links(random() % 9);
                for (auto& link : links) link = static_cast<std::uint32_t>(random() % 500);
                routes.push_back({origin, destination, links, 1});
            }
        store(file, routes);
        good = readFile(file);
    }

    // Damage is reported with the file's name, unless it is in bytes that have no effect.
    bool isRefused(std::string const& damaged, std::size_t place) const {
        writeFile(file, damaged);
        auto const set = routeSet(file, romRead);
        std::string const error = lastError();
        if (error.empty()) {
            EXPECT_EQ(routesOf(*set), routes) << place;
            return false;
        }
        EXPECT_EQ(error.find("cannot open " + file + ": "), 0u) << error;
        EXPECT_EQ(set->countRoutes(), rrFailed);
        return true;
    }

    TempDir const directory;
    std::string const file = directory.file("routes.FDB");
    std::vector<SampleRoute> routes;
    std::string good;
};

}

TEST_F(DamagedRouteFile, cutShortAnywhereIsRefused) {
    std::vector<std::size_t> lengths = {0, 1, 7, 8, 47, 48, 96, good.size() - 1};
    for (std::size_t length = 13; length < good.size(); length += 197) lengths.push_back(length);
    for (std::size_t const length : lengths) EXPECT_TRUE(isRefused(good.substr(0, length), length)) << length;
}

TEST_F(DamagedRouteFile, withAChangedByteIsRefusedUnlessItHasNoEffect) {
    int refused = 0;
    int changed = 0;
    for (std::size_t place = 0; place < good.size(); place += 61, ++changed) {
        std::string damaged = good;
        damaged[place] = static_cast<char>(damaged[place] ^ (place % 2 == 0 ? 0xFF : 0x01));
        refused += isRefused(damaged, place);
    }
    EXPECT_GT(changed, 80);
    EXPECT_GT(refused, 8);
}

TEST_F(DamagedRouteFile, withABlockOfZerosOrNoiseIsRefusedUnlessItHasNoEffect) {
    std::mt19937 random(9);
    for (std::size_t place = 0; place + 64 < good.size(); place += 151) {
        std::string damaged = good;
        for (std::size_t i = 0; i < 64; ++i) damaged[place + i] = static_cast<char>(place % 2 == 0 ? 0 : random());
        isRefused(damaged, place);
    }
}

TEST_F(DamagedRouteFile, withBytesAfterItsEndIsRead) {
    EXPECT_FALSE(isRefused(good + std::string(1000, 'x'), good.size()));
}

TEST_F(DamagedRouteFile, canBeReplacedButNotExtended) {
    writeFile(file, good.substr(0, good.size() / 2));
    std::string const bytes = readFile(file);
    auto const set = routeSet(file, romExtend);
    EXPECT_NE(lastError(), "");
    EXPECT_EQ(add(*set, {1, 2, {3}, 1}), rrFailed);
    EXPECT_EQ(set->commit(), rrFailed);
    EXPECT_EQ(readFile(file), bytes);
    set->open(romCreate, nullptr);
    EXPECT_EQ(lastError(), "");
}

TEST(DamagedDataFile, cutShortOrChangedNeverGivesOtherValues) {
    TempDir const directory;
    std::string const file = directory.file("data.FDB");
    storeFields(file);
    std::string const good = readFile(file);
    std::vector<double> expected(6);
    dataSet(file, romRead)->getRouteValues(1, expected.data());
    for (std::size_t place = 0; place < good.size(); place += 83) {
        writeFile(file, good.substr(0, place));
        dataSet(file, romRead);
        EXPECT_EQ(lastError().find("cannot open " + file + ": "), 0u) << place;

        std::string damaged = good;
        damaged[place] = static_cast<char>(damaged[place] ^ 0x10);
        writeFile(file, damaged);
        auto const set = dataSet(file, romRead);
        if (set->countFields() < 0) continue;
        std::vector<double> values(6);
        EXPECT_EQ(set->getRouteValues(1, values.data()), rrDone);
        EXPECT_EQ(values, expected) << place;
    }
}
