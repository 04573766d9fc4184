#include "support/TempDir.h"

#include <cubes/database/TPgConnection.h>
#include <cubes/database/TRkConnectionManager.h>
#include <cubes/project/Project.h>
#include <cubes/project/TRkGlobalSettings.h>

#include <gtest/gtest.h>

#include <optional>

namespace {

using cubes::Project;
using cubes::test::TempDir;

Pgaccess::TPgConnection* current() {
    return getConnectionManagerInstance().CurrentConnection();
}

class CurrentProject : public testing::Test {
protected:
    Project make(char const* name) { return Project::create(directory.file(name)); }
    TempDir directory;
};

TEST_F(CurrentProject, isNoneAtFirst) {
    EXPECT_EQ(current(), nullptr);
    EXPECT_EQ(&getConnectionManagerInstance(), &getConnectionManagerInstance());
}

TEST_F(CurrentProject, isTheLastOneCreatedOpenedOrChosen) {
    Project one = make("one");
    EXPECT_EQ(current(), one.connection());
    Project two = make("two");
    EXPECT_EQ(current(), two.connection());
    one.makeCurrent();
    EXPECT_EQ(current(), one.connection());
    Project again = Project::open(directory.file("two"));
    EXPECT_EQ(current(), again.connection());
}

TEST_F(CurrentProject, isFollowedByThePreviousOneThatStillExists) {
    std::optional<Project> one = make("one");
    std::optional<Project> two = make("two");
    std::optional<Project> three = make("three");
    one->makeCurrent();
    two.reset();
    EXPECT_EQ(current(), one->connection());
    one.reset();
    EXPECT_EQ(current(), three->connection());
    three.reset();
    EXPECT_EQ(current(), nullptr);
}

TEST_F(CurrentProject, staysCurrentWhenItIsMoved) {
    Project one = make("one");
    auto* const connection = one.connection();
    auto* const settings = one.settings();
    Project moved = std::move(one);
    EXPECT_EQ(current(), connection);
    EXPECT_EQ(moved.connection(), connection);
    EXPECT_EQ(moved.settings(), settings);
    Project two = make("two");
    two = std::move(moved);
    EXPECT_EQ(current(), connection);
}

TEST_F(CurrentProject, doesNotReplaceAConnectionThatAnotherCallerMadeCurrent) {
    Pgaccess::TPgConnection other("sqlite:" + directory.file("other.db"));
    {
        Project const one = make("one");
        getConnectionManagerInstance().SetCurrentConnection(&other);
    }
    EXPECT_EQ(current(), &other);
    getConnectionManagerInstance().SetCurrentConnection(nullptr);
}

}
