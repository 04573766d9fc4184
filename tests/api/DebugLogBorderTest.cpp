#include <cubes/cubes.h>

#include "support/TempDir.h"
#include "support/Variable.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

// Tells who asks for a table.
class AskingDictionary : public TRkDBDataDictionary {
public:
    CountedPtr<Rktable::TRkTableProxy> BuildTable(char const* table, AnsiString const& schema) override {
        ZebDebug::writeStack();
        return TRkDBDataDictionary::BuildTable(table, schema);
    }
};

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
    EXPECT_TRUE(cubes::test::readFile(path()).ends_with("] from outside\n"));
}

TEST_F(DebugLogBorder, namesTheLibrarysFunctionsOfAStack) {
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
