#include "Samples.h"

#include "support/SystemMessages.h"

#include <gtest/gtest.h>

using namespace cubes::test;
using cubes::routes::Key;
using cubes::routes::Stamp;

namespace {

template <typename Content = cubes::routes::IndexedRoutes>
Stamp stampOf(std::string const& file) {
    Stamp stamp;
    cubes::routes::readStoredFile(
        file, Content::kind, [&](auto const&, cubes::routes::FileRoot const& root) { stamp = root.stamp; });
    return stamp;
}

class RouteStampTest : public testing::Test {
protected:
    TempDir const directory;
    std::string const file = directory.file("routes.FDB");
};

constexpr Key noKey = {-1, -1, -1, -1, -1, -1};

}

TEST_F(RouteStampTest, isWrittenWithANewFile) {
    auto const set = routeSet(file);
    set->setCubeType(-9);
    set->setKey(1, 2, 3, 4, 5, 6);
    EXPECT_EQ(listing(directory.str()), "");
    set->open(romCreate, nullptr);
    EXPECT_EQ(stampOf(file), (Stamp{-9, Key{1, 2, 3, 4, 5, 6}}));
}

TEST_F(RouteStampTest, isEmptyWhenNothingWasSet) {
    routeSet(file, romCreate);
    EXPECT_EQ(stampOf(file), (Stamp{0, noKey}));
}

TEST_F(RouteStampTest, holdsTheWholeRangeOfAKey) {
    auto const set = dataSet(file);
    set->setCubeType(-10);
    set->setKey(-32768, 32767, 0, -1, 1, 300);
    set->open(romCreate, nullptr);
    EXPECT_EQ(stampOf<cubes::routes::StoredFields>(file), (Stamp{-10, Key{-32768, 32767, 0, -1, 1, 300}}));
}

TEST_F(RouteStampTest, changesAtOnceInAFileThatIsOpenForAdding) {
    store(file, smallSet());
    auto const set = routeSet(file, romExtend);
    add(*set, {7, 8, {9}, 1});
    set->setCubeType(-9);
    EXPECT_EQ(lastError(), "");
    EXPECT_EQ(stampOf(file), (Stamp{-9, noKey}));
    set->setKey(1, 2, 3, 4, 5, 6);
    EXPECT_EQ(stampOf(file), (Stamp{-9, Key{1, 2, 3, 4, 5, 6}}));
    EXPECT_EQ(routesOf(*routeSet(file, romRead)), smallSet());
    set->commit();
    EXPECT_EQ(stampOf(file), (Stamp{-9, Key{1, 2, 3, 4, 5, 6}}));
    EXPECT_EQ(routeSet(file, romRead)->countRoutes(), 5);
    EXPECT_EQ(listing(directory.str()), "routes.FDB\n");
}

TEST_F(RouteStampTest, staysInAFileThatIsReadOrNotOpen) {
    store(file, smallSet());
    std::string const bytes = readFile(file);
    auto const set = routeSet(file);
    set->setKey(1, 2, 3, 4, 5, 6);
    set->open(romRead, nullptr);
    set->setCubeType(-9);
    EXPECT_EQ(lastError(), "");
    EXPECT_EQ(readFile(file), bytes);
}

TEST_F(RouteStampTest, keepsTheFilesValuesWhenNoneWereSet) {
    {
        auto const set = routeSet(file);
        set->setCubeType(-9);
        set->setKey(1, 2, 3, 4, 5, 6);
        set->open(romCreate, nullptr);
    }
    auto const set = routeSet(file);
    set->setCubeType(-8);
    set->open(romExtend, nullptr);
    set->commit();
    EXPECT_EQ(stampOf(file), (Stamp{-8, Key{1, 2, 3, 4, 5, 6}}));
}

TEST_F(RouteStampTest, ofAMissingFileCannotBeChanged) {
    auto const set = routeSet(file, romCreate);
    std::filesystem::remove(file);
    set->setCubeType(-9);
    EXPECT_EQ(lastError(), "cannot change the key of " + file + ": " + noSuchFile());
    EXPECT_EQ(set->commit(), rrDone);
    EXPECT_EQ(stampOf(file), (Stamp{-9, noKey}));
}

TEST_F(RouteStampTest, setBeforeOpeningForAddingIsWrittenWhenItIsSetAgain) {
    routeSet(file, romCreate)->setKey(1, 1, 1, 1, 1, 1);
    auto const set = routeSet(file);
    set->setKey(2, 2, 2, 2, 2, 2);
    set->open(romExtend, nullptr);
    set->setKey(2, 2, 2, 2, 2, 2);
    EXPECT_EQ(stampOf(file), (Stamp{0, Key{2, 2, 2, 2, 2, 2}}));
}
