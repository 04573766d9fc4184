#include <cubes/cubes.h>

#include "support/TempDir.h"
#include "support/Variable.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

using namespace cubes::test;

// Tells who asks for a table.
class AskingDictionary : public TRkDBDataDictionary {
public:
    CountedPtr<Rktable::TRkTableProxy> BuildTable(char const* table, AnsiString const& schema) override {
        ZebDebug::writeStack();
        return TRkDBDataDictionary::BuildTable(table, schema);
    }
};

}

TEST(StackNames, tellTheLibrarysFunctions) {
    Variable const active("ZEB.DEBUG", "true");
    TempDir const directory;
    std::string const path = directory.file("log");
    ZebDebug::setDebugOutput(path);
    cubes::Project project = cubes::Project::create(directory.file("delta"));
    AskingDictionary dictionary;
    project.settings()->Set("RkLib.DataDictionary", &dictionary);
    TRkMatCubes cubes(project.settings(), ".odm", false);
    EXPECT_FALSE(cubes.Check("Base"));
    ZebDebug::setDebugOutput("");
    std::istringstream log(readFile(path));
    int named = 0;
    for (std::string line; std::getline(log, line);)
        if (line.find(": libcubes.so") != std::string::npos && line.find(" in TRkBaseCubes::") != std::string::npos)
            ++named;
    EXPECT_GT(named, 0) << log.str();
}
