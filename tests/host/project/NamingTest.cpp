#include "support/TempDir.h"

#include <cubes/project/ProjectPathHelpers.h>
#include <cubes/project/ProjectUtils.h>
#include <cubes/text/TRkException.h>

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using cubes::test::TempDir;

std::string schemaName(char const* directory, char const* prefix = "") {
    return ProjectUtils::toSqlSchemaName(AnsiString(directory), AnsiString(prefix)).c_str();
}

struct Case {
    char const* directory;
    char const* name;
};

TEST(SchemaName, isFormedFromTheLastComponent) {
    Case const cases[] = {
        {"/data/delta", "delta"},
        {"/data/delta/", "delta"},
        {"/data/delta//", "delta"},
        {"C:\\Projects\\Delta 2030\\", "delta_2030"},
        {"C:\\data/mixed\\Name", "name"},
        {"delta", "delta"},
        {"/data/2030-base", "_2030_base"},
        {"/data/a.b-c d", "a_b_c_d"},
        {"/data/Zürich", "z__rich"},
        {"/data/_x", "_x"},
    };
    for (auto const& [directory, name] : cases) EXPECT_EQ(schemaName(directory), name) << directory;
}

TEST(SchemaName, acceptsAPrefix) {
    EXPECT_EQ(schemaName("/data/delta", "City"), "city_delta");
    EXPECT_EQ(schemaName("/data/delta", "1"), "_1_delta");
    EXPECT_EQ(schemaName("/data/1", "x"), "x_1");
}

TEST(SchemaName, hasAtMost63Bytes) {
    EXPECT_EQ(schemaName(("/" + std::string(100, 'x')).c_str()), std::string(63, 'x'));
    EXPECT_EQ(schemaName(("/1" + std::string(100, 'x')).c_str()), "_1" + std::string(61, 'x'));
}

TEST(SchemaName, cannotBeFormedFromAnEmptyName) {
    for (char const* const directory : {"", "/", "\\", "//\\"})
        EXPECT_THROW(schemaName(directory), TRkException) << directory;
    EXPECT_THROW(schemaName("", "x"), TRkException);
}

std::string projectDirectory(std::string const& directory) {
    return ProjectPathHelpers::getProjectDirectory(AnsiString(directory)).c_str();
}

TEST(ProjectDirectory, isTheNearestOneWithAProjectFile) {
    TempDir const directory;
    std::filesystem::create_directories(directory.file("outer/inner/results/deep"));
    cubes::test::writeFile(directory.file("outer/cubes.toml"), "");
    cubes::test::writeFile(directory.file("outer/inner/cubes.toml"), "");
    EXPECT_EQ(projectDirectory(directory.file("outer/inner/results/deep")), directory.file("outer/inner"));
    EXPECT_EQ(projectDirectory(directory.file("outer/inner/results/")), directory.file("outer/inner"));
    EXPECT_EQ(projectDirectory(directory.file("outer/inner")), directory.file("outer/inner"));
    EXPECT_EQ(projectDirectory(directory.file("outer/other/")), directory.file("outer"));
}

TEST(ProjectDirectory, isTheDirectoryItselfOutsideOfProjects) {
    TempDir const directory;
    EXPECT_EQ(projectDirectory(directory.str()), directory.str());
    EXPECT_EQ(projectDirectory(directory.file("a/b//")), directory.file("a/b"));
    EXPECT_EQ(projectDirectory("/"), "/");
    EXPECT_EQ(projectDirectory(""), "");
}

}
