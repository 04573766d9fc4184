#include <cubes/cubes.h>

#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <regex>
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
    DebugLogBorder() {
        setenv("ZEB.DEBUG", "true", 1);
        ZebDebug::setDebugOutput(path());
    }
    ~DebugLogBorder() override {
        ZebDebug::setDebugOutput("");
        unsetenv("ZEB.DEBUG");
    }

    std::string path() const { return directory_.file("log"); }

    cubes::test::TempDir directory_;
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
    std::string const log = cubes::test::readFile(path());
    std::regex const frame(
        "\t[0-9]+: libcubes\\.so[.0-9]* in TRk[A-Za-z]+::[A-Za-z]+\\(.*\\).* at line \\? at address 0x[0-9a-f]+\n");
    EXPECT_TRUE(std::regex_search(log, frame)) << log;
}
