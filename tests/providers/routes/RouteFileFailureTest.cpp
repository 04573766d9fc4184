#include "Samples.h"

#include "host/matrix/FailingSystem.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <random>
#include <sys/stat.h>

using namespace cubes::test;

namespace {

class RouteFileFailure : public testing::Test {
protected:
    void SetUp() override { store(file, smallSet()); }

    void expectOldOrNew(std::size_t newCount, bool mustBeOld) const {
        auto const count = static_cast<std::size_t>(routeSet(file, romRead)->countRoutes());
        EXPECT_TRUE(count == smallSet().size() || (!mustBeOld && count == newCount)) << count << " " << lastError();
        EXPECT_EQ(listing(directory.str()), "routes.FDB\n");
    }

    TempDir const directory;
    std::string const file = directory.file("routes.FDB");
};

}

TEST_F(RouteFileFailure, everyFailingStepLeavesTheOldFileOrTheNewOne) {
    int steps = 0;
    for (bool failed = true; failed; ++steps) {
        ASSERT_LT(steps, 50);
        store(file, smallSet());
        auto const set = routeSet(file, romExtend);
        add(*set, {7, 8, {9}, 1});
        RouteResult result{};
        std::string error;
        {
            FailingSystem const system(steps + 1, ENOSPC);
            result = set->commit();
            error = lastError();
            failed = system.hasFailed();
        }
        EXPECT_EQ(result, failed ? rrFailed : rrDone) << steps;
        EXPECT_EQ(error, failed ? "cannot write " + file + ": No space left on device" : "");
        // Only the directory's flush comes after the replacement.
        expectOldOrNew(5, failed && steps < 4);
        EXPECT_EQ(set->countRoutes(), 5);
        EXPECT_EQ(set->commit(), rrDone);
        expectOldOrNew(5, false);
    }
    // Creating, writing, flushing, renaming, flushing the directory.
    EXPECT_EQ(steps, 6);
}

TEST_F(RouteFileFailure, aFileThatCannotBeCreatedKeepsTheOldOneAndTheObjectClosed) {
    for (int step = 1; step <= 4; ++step) {
        auto const set = routeSet(file);
        {
            FailingSystem const system(step, EIO);
            set->open(romCreate, nullptr);
        }
        EXPECT_EQ(lastError(), "cannot open " + file + ": Input/output error");
        EXPECT_EQ(set->countRoutes(), rrFailed);
        expectOldOrNew(0, true);
    }
}

TEST_F(RouteFileFailure, aKeyThatCannotBeChangedLeavesTheFile) {
    std::string const bytes = readFile(file);
    auto const set = routeSet(file, romExtend);
    for (int step = 1; step <= 4; ++step) {
        {
            FailingSystem const system(step, EIO);
            set->setKey(1, 2, 3, 4, 5, 6);
        }
        EXPECT_EQ(lastError(), "cannot change the key of " + file + ": Input/output error");
        EXPECT_EQ(readFile(file), bytes);
        EXPECT_EQ(listing(directory.str()), "routes.FDB\n");
    }
}

TEST_F(RouteFileFailure, aFullDiskLeavesTheOldFile) {
    std::string const disk = directory.file("disk");
    std::filesystem::create_directory(disk);
    SmallDisk const smallDisk(disk, 64);
    std::string const target = disk + "/routes.FDB";
    store(target, smallSet());
    {
        std::mt19937 random(1);
        auto const set = routeSet(target, romExtend);
        Numbers links(100000);
        std::ranges::generate(links, [&] { return static_cast<std::uint32_t>(random()); });
        add(*set, {7, 8, links, 1});
        EXPECT_EQ(set->commit(), rrFailed);
        EXPECT_NE(lastError().find("No space left"), std::string::npos) << lastError();
    }
    EXPECT_EQ(routesOf(*routeSet(target, romRead)), smallSet());
    EXPECT_EQ(listing(disk), "routes.FDB\n");
}

TEST_F(RouteFileFailure, aMissingDirectoryIsReported) {
    routeSet(directory.file("none/routes.FDB"), romCreate);
    EXPECT_EQ(lastError(), "cannot open " + directory.file("none/routes.FDB") + ": No such file or directory");
}

TEST_F(RouteFileFailure, aDirectoryInPlaceOfTheFileStays) {
    std::string const place = directory.file("place");
    std::filesystem::create_directory(place);
    routeSet(place, romCreate);
    EXPECT_EQ(lastError(), "cannot open " + place + ": Is a directory");
    EXPECT_EQ(listing(directory.str()), "place\nroutes.FDB\n");
}

TEST_F(RouteFileFailure, aPipeDoesNotBlock) {
    std::string const pipe = directory.file("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    routeSet(pipe, romRead);
    EXPECT_EQ(lastError(), "cannot open " + pipe + ": it is not a regular file");
}

TEST_F(RouteFileFailure, aLongNameIsAccepted) {
    std::string const name = directory.file(std::string(250, 'x'));
    store(name, smallSet());
    EXPECT_EQ(routesOf(*routeSet(name, romRead)), smallSet());
}
