#include <cubes/cubes.h>

#include "support/TempDir.h"
#include "support/Variable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

namespace {

// Writes the stack whenever the library opens a table.
class AskingDictionary : public TRkDBDataDictionary {
public:
    CountedPtr<Rktable::TRkTableProxy> BuildTable(char const* table, AnsiString const& schema) override {
        ZebDebug::writeStack();
        return TRkDBDataDictionary::BuildTable(table, schema);
    }
};

class DebugLogBoundary : public testing::Test {
protected:
    DebugLogBoundary() { ZebDebug::setDebugOutput(path()); }
    ~DebugLogBoundary() override { ZebDebug::setDebugOutput(""); }

    std::string path() const { return directory_.file("log"); }

    cubes::test::TempDir directory_;
    cubes::test::Variable active_{"ZEB.DEBUG", "true"};
};

}

TEST_F(DebugLogBoundary, isOneLogForTheApplicationAndTheLibrary) {
    ZebDebug::writeError("from outside");
    auto const log = cubes::test::readText(path());
    EXPECT_TRUE(log.ends_with("] from outside\n")) << log;
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
}

TEST_F(DebugLogBoundary, namesTheLibrarysFunctionsInAStack) {
#ifdef _WIN32
    GTEST_SKIP() << "SKIPPED: Wine's debug-help functions find no names in libraries of this compiler";
#endif
    cubes::Project project = cubes::Project::create(directory_.file("delta"));
    AskingDictionary dictionary;
    project.settings()->Set("RkLib.DataDictionary", &dictionary);
    TRkMatCubes cubes(project.settings(), ".odm", false);
    EXPECT_FALSE(cubes.Check("Base"));
    std::istringstream log(cubes::test::readFile(path()));
    int named = 0;
    for (std::string line; std::getline(log, line);)
        if (line.find(": libcubes.so") != std::string::npos && line.find(" in TRkBaseCubes::") != std::string::npos)
            ++named;
    EXPECT_GT(named, 0) << log.str();
}
