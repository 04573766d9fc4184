#include "core/DebugLogObstacles.h"

#include <set>

namespace cubes::test {

namespace fs = std::filesystem;

namespace {

// A link to itself stops those that look behind it.
std::set<std::string> namesIn(TempDir const& directory) {
    std::set<std::string> names;
    for (auto const& entry : fs::directory_iterator(directory.str())) names.insert(entry.path().filename().string());
    return names;
}

}

TEST_P(Obstacles, areOfNoConsequence) {
    TempDir const room;
    temporary_.set(GetParam().build(room));
    auto const before = namesIn(room);
    EXPECT_NO_THROW(writeEverything());
    EXPECT_FALSE(ZebDebug::openStream());
    EXPECT_NO_THROW(writeEverything());
    EXPECT_EQ(namesIn(room), before);
}

TEST_P(Obstacles, areForgottenWhenTheyAreGone) {
    TempDir const room;
    temporary_.set(GetParam().build(room));
    ZebDebug::writeDebug("lost");
    temporary_.set(directory_.str());
    ZebDebug::writeDebug("text");
    EXPECT_EQ(log(), "D [time] text\n");
}

INSTANTIATE_TEST_SUITE_P(all, Obstacles,
    testing::Values( //
        Obstacle{"aDirectoryThatIsNotThere", [](TempDir const& room) { return room.file("none"); }},
        Obstacle{"aFileForADirectory",
            [](TempDir const& room) {
                writeFile(room.file("file"), "text");
                return room.file("file");
            }},
        Obstacle{"aDirectoryForTheFile",
            [](TempDir const& room) {
                fs::create_directory(room.file("debug.log"));
                return room.str();
            }}),
    [](auto const& obstacle) { return obstacle.param.name; });

TEST_F(DebugLogTest, survivesANameThatIsTooLong) {
    ZebDebug::setDebugOutput(std::string(300, 'x'));
    EXPECT_NO_THROW(writeEverything());
    EXPECT_EQ(listing(directory_.str()), "");
}

TEST_F(DebugLogTest, beginsAnewWhenTheFileIsRemoved) {
    ZebDebug::writeDebug("one");
    fs::remove(path());
    ZebDebug::writeDebug("two");
    EXPECT_EQ(log(), "D [time] two\n");
}

TEST_F(DebugLogTest, survivesThatTheFileIsRemovedWhileOpen) {
    ZebDebug::openStream();
    fs::remove(path());
    EXPECT_NO_THROW(writeEverything());
    ZebDebug::setDebugOutput("");
    EXPECT_EQ(log(), "(none)");
    ZebDebug::writeDebug("text");
    EXPECT_EQ(log(), "D [time] text\n");
}

}
