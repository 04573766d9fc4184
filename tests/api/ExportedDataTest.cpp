// The static data of the library's classes, as seen by a program that is another module.

#include <cubes/cubes.h>

#include "support/CubeTesting.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace {

#ifdef _WIN32
void const* addressInLibrary(std::string const& symbol) {
    HMODULE const library = ::GetModuleHandleA("cubes.dll");
    return reinterpret_cast<void const*>(::GetProcAddress(library, symbol.c_str()));
}
#else
void const* addressInLibrary(std::string const& symbol) {
    return ::dlsym(RTLD_DEFAULT, symbol.c_str());
}
#endif

struct Exported {
    char const* className;
    char const* name;
    void const* address;

    std::string symbol() const {
        auto const part = [](char const* text) { return std::to_string(std::strlen(text)) + text; };
        return "_ZN" + part(className) + part(name) + "E";
    }
};

#define EXPORTED(Class, name)                                                                                          \
    Exported {                                                                                                         \
#Class, #name, &Class::name                                                                                    \
    }
#define KIND(Class) EXPORTED(Class, CubeType), EXPORTED(Class, MatrixType), EXPORTED(Class, Ext)

Exported const all[] = {EXPORTED(TRkBaseCubes, Version), EXPORTED(TRkBaseCubes, letters),
    EXPORTED(TRkBaseCubes, ObjectName), EXPORTED(TRkCubes, CubeNames), EXPORTED(TRkCubes, CubeTypes),
    EXPORTED(TRkMatCubes, FAliasName), EXPORTED(TRkMatCube, Ext), EXPORTED(TRkFareCube, Ext),
    EXPORTED(TRkVarCubes, FAliasName), KIND(TRkSkimCube), KIND(TRkSelectedLinkCube), KIND(TRkCordonCube),
    KIND(TRkScreenCube), KIND(TRkTransitCube), KIND(TRkPathCube), KIND(TRkStop2StopCube), KIND(RouteStorageCube),
    KIND(RouteStorageDataCube)};

template <typename Cube>
void expectKind(int cubeType, int matrixType, char const* ext) {
    EXPECT_EQ(Cube::CubeType, cubeType) << ext;
    EXPECT_EQ(Cube::MatrixType, matrixType) << ext;
    EXPECT_STREQ(Cube::Ext, ext);
}

}

TEST(ExportedData, hasOneDefinitionForTheProgramAndTheLibrary) {
    for (Exported const& exported : all)
        EXPECT_EQ(exported.address, addressInLibrary(exported.symbol())) << exported.symbol();
}

TEST(ExportedData, hasTheNumbersAndExtensionsOfTheKinds) {
    expectKind<TRkSkimCube>(-1, 13, ".skm");
    expectKind<TRkSelectedLinkCube>(-2, 12, ".slm");
    expectKind<TRkCordonCube>(-3, 16, ".cwm");
    expectKind<TRkScreenCube>(-4, 12, ".crm");
    expectKind<TRkTransitCube>(-5, 7, ".tsm");
    expectKind<TRkPathCube>(-6, 7, ".ptm");
    expectKind<TRkStop2StopCube>(-7, 23, ".s2s");
    expectKind<RouteStorageCube>(-9, 7, "FDB");
    expectKind<RouteStorageDataCube>(-10, 7, "FDB");
}

TEST(ExportedData, hasTheNamesOfTablesAndCubes) {
    EXPECT_STREQ(TRkBaseCubes::ObjectName, "cube");
    EXPECT_STREQ(TRkBaseCubes::letters, "0123456789abcdefghijklmnopqrstvwxyz_@#&^");
    EXPECT_STREQ(TRkMatCubes::FAliasName, "matcube");
    EXPECT_STREQ(TRkVarCubes::FAliasName, "cube5data1");
    EXPECT_STREQ(TRkMatCube::Ext, ".odm");
    EXPECT_STREQ(TRkFareCube::Ext, ".frs");
    char const* const names[] = {"SkimCube", "SelectedLinkCube", "CordonCube", "ScreenCube", "TransitCube", "PathCube"};
    for (int i = 0; i < 6; ++i) {
        EXPECT_STREQ(TRkCubes::CubeNames[i], names[i]);
        EXPECT_EQ(TRkCubes::CubeTypes[i], -1 - i);
    }
}

// The library itself reads the value that the program sets.
TEST(ExportedData, includesTheVersionThatTheProgramCanSet) {
    EXPECT_EQ(TRkBaseCubes::Version, 4);
    EXPECT_STREQ(TRkMatCubes::MakeFilename(12, 1, 2, 3, 4).c_str(), "12-1-2-3-4");
    cubes::test::VersionGuard const version(3);
    EXPECT_STREQ(TRkMatCubes::MakeFilename(12, 1, 2, 3, 4).c_str(), "0c01020304");
}
