#include <cubes/cubes.h>

#include "support/TempDir.h"
#include "support/Variable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

class DebugLogBorder : public testing::Test {
protected:
    DebugLogBorder() { ZebDebug::setDebugOutput(path()); }
    ~DebugLogBorder() override { ZebDebug::setDebugOutput(""); }

    std::string path() const { return directory_.file("log"); }

    cubes::test::TempDir directory_;
    cubes::test::Variable active_{"ZEB.DEBUG", "true"};
};

}

TEST_F(DebugLogBorder, isOneLogForTheApplicationAndTheLibrary) {
    ZebDebug::writeError("from outside");
    auto const log = cubes::test::readText(path());
    EXPECT_TRUE(log.ends_with("] from outside\n")) << log;
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
}
