#include <cubes/cubes.h>

#include "support/TempDir.h"
#include "support/Variable.h"

#include <gtest/gtest.h>

#include <fstream>
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
    std::ifstream log(path());
    std::string line;
    ASSERT_TRUE(std::getline(log, line));
    EXPECT_TRUE(line.ends_with("] from outside")) << line;
    EXPECT_FALSE(std::getline(log, line)) << line;
}
