#include <cubes/routestorage/RouteStorageWrappers.h>

#include <gtest/gtest.h>

#include <type_traits>

#include "host/platform/Paths.h"
#include "host/platform/SharedLibrary.h"
#include "routestorage/FakeProvider.h"
#include "support/TempDir.h"

using namespace VL::Interface;

namespace cubes::test {
namespace {

constexpr char const* provider = "routeprovider64.dll";

TEST(DllNotLoaded, namesTheLibrary) {
    DllNotLoaded const error("routeprovider64.dll");
    EXPECT_STREQ(error.what(), "Dll routeprovider64.dll not loaded");
    EXPECT_STREQ(error.what(), "Dll routeprovider64.dll not loaded");
    DllNotLoaded const copy(error);
    EXPECT_STREQ(copy.what(), "Dll routeprovider64.dll not loaded");
    EXPECT_STREQ(DllNotLoaded("").what(), "Dll  not loaded");
    static_assert(std::is_base_of_v<std::exception, DllNotLoaded>);
}

TEST(Loader, throwsForAMissingLibrary) {
    try {
        Library const library("no-such-library64.dll");
        FAIL() << "it was loaded";
    } catch (std::exception const& error) {
        EXPECT_STREQ(error.what(), "Dll no-such-library64.dll not loaded");
    }
}

TEST(Loader, throwsForAFileThatIsNotALibrary) {
    TempDir const directory;
    writeFile(directory.file(provider), "no library");
    ProviderPath const path(directory.str());
    EXPECT_THROW(TVlSettings("a.FDB"), DllNotLoaded);
    EXPECT_THROW(TVlRouteStorageRouteSet("a.FDB"), DllNotLoaded);
    EXPECT_THROW(TVlRouteStorageDataSet("a.FDB"), DllNotLoaded);
}

TEST(Loader, findsWhatIsExported) {
    ProviderPath const path(fakeDirectory("full"));
    Library const library(provider);
    int (*living)() = nullptr;
    EXPECT_TRUE(library.getProcedure("FakeLiving", living));
    ASSERT_NE(living, nullptr);
    EXPECT_EQ(living(), 0);
    EXPECT_TRUE(library.getProcedureFromLibrary("FakeLiving", living));
}

TEST(Loader, setsAProcedureThatItDoesNotFindToNull) {
    ProviderPath const path(fakeDirectory("full"));
    Library const library(provider);
    int (*none)() = [] { return 1; };
    EXPECT_FALSE(library.getProcedure("FakeNothing", none));
    EXPECT_EQ(none, nullptr);
}

struct Variant {
    char const* directory;
    bool isFound;
};

void PrintTo(Variant const& variant, std::ostream* out) {
    *out << variant.directory;
}

class NameVariants : public testing::TestWithParam<Variant> {};

TEST_P(NameVariants, ofFactoriesAreTried) {
    FakeProvider fake(GetParam().directory);
    {
        TVlSettings const settings("a.FDB");
        TVlRouteStorageRouteSet const routeSet("b.FDB");
        TVlRouteStorageDataSet const dataSet("c.FDB");
        EXPECT_EQ(settings.getInterface() != nullptr, GetParam().isFound);
        EXPECT_EQ(routeSet.getInterface() != nullptr, GetParam().isFound);
        EXPECT_EQ(dataSet.getInterface() != nullptr, GetParam().isFound);
    }
    EXPECT_EQ(fake.calls(), GetParam().isFound ? "settings.make a.FDB\nset.make b.FDB\ndata.make c.FDB\n"
                                                 "data.release -1\nset.release -1\nsettings.release -1\n"
                                               : "");
}

INSTANTIATE_TEST_SUITE_P(, NameVariants,
    testing::Values(
        Variant{"full", true}, Variant{"leading", true}, Variant{"trailing", true}, Variant{"without", false}),
    [](auto const& variant) { return std::string(variant.param.directory); });

TEST(Loader, createsNothingWithoutAFactory) {
    FakeProvider fake("without");
    TVlSettings settings("a.FDB");
    TVlRouteStorageRouteSet routeSet("b.FDB");
    TVlRouteStorageDataSet dataSet("c.FDB");
    EXPECT_EQ(settings.CreateInterface("a.FDB"), nullptr);
    EXPECT_EQ(routeSet.CreateVelmoraRouteStorageRouteSetInterface("b.FDB"), nullptr);
    EXPECT_EQ(dataSet.CreateVelmoraRouteStorageDataSetInterface("c.FDB"), nullptr);
}

TEST(Loader, leavesTheLibraryLoaded) {
    FakeProvider fake;
    {
        TVlSettings const first("a.FDB");
        TVlSettings const second("b.FDB");
    }
    // The library kept its state, so it was neither unloaded nor loaded again.
    EXPECT_EQ(fake.calls(), "settings.make a.FDB\nsettings.make b.FDB\nsettings.release -1\nsettings.release -1\n");
    int (*before)() = nullptr;
    Library(provider).getProcedure("FakeLiving", before);
    EXPECT_EQ(before(), 0);
    int (*after)() = nullptr;
    Library(provider).getProcedure("FakeLiving", after);
    EXPECT_EQ(before, after);
}

// The reason that is reported when the provider is searched in these directories.
std::string reasonWith(std::string const& directories) {
    ProviderPath const path(directories);
    try {
        Library const library("no-such-library64.dll");
        return "it was loaded";
    } catch (DllNotLoaded const& error) {
        return error.Reason();
    }
}

TEST(DllNotLoaded, reportsTheDirectoriesAndTheLoadersMessage) {
    TempDir const first;
    TempDir const second;
    std::string const between(1, platform::searchPathDelimiter());
    std::string const end(1, platform::pathDelimiter());
    std::string const reason = reasonWith(first.str() + between + second.str());
    EXPECT_TRUE(reason.starts_with("no-such-library64.dll was looked for in " + first.str() + end + ", " +
                                   second.str() + end + ", " + platform::ownDirectory() +
                                   ", and the system's library directories; the loader says: "))
        << reason;
    EXPECT_FALSE(reason.ends_with("says: ")) << reason;
}

TEST(DllNotLoaded, reportsWhyTheFoundFileIsNotALibrary) {
    TempDir const directory;
    std::string const file = directory.file("no-such-library64.dll");
    writeFile(file, "no library");
    std::string const reason = reasonWith(directory.str());
    EXPECT_NE(reason.find("; the loader says: "), std::string::npos) << reason;
    EXPECT_EQ(reason.find("No such file"), std::string::npos) << reason;
}

TEST(DllNotLoaded, reportsALibraryThatCanBeLoadedByNow) {
    ProviderPath const path(fakeDirectory("full"));
    EXPECT_TRUE(DllNotLoaded(provider).Reason().ends_with("; it can be loaded by now"));
}

std::string foundWith(std::string const& directories) {
    ProviderPath const path(directories);
    Library const library(provider);
    int (*living)() = nullptr;
    if (!library.getProcedure("FakeLiving", living)) return "ours";
    SettingsFactory* create = nullptr;
    return library.getProcedure("CreateSettingsInterface", create) ? "full" : "without";
}

TEST(ProviderSearch, usesTheFirstDirectoryThatHoldsTheLibrary) {
    std::string const between(1, platform::searchPathDelimiter());
    TempDir const empty;
    std::string const full = fakeDirectory("full");
    std::string const without = fakeDirectory("without");
    EXPECT_EQ(foundWith(full), "full");
    EXPECT_EQ(foundWith(without), "without");
    EXPECT_EQ(foundWith(without + between + full), "without");
    EXPECT_EQ(foundWith(full + between + without), "full");
    EXPECT_EQ(foundWith(between + empty.str() + between + between + full + between), "full");
    EXPECT_EQ(foundWith(empty.file("nowhere") + between + without + "/"), "without");
}

TEST(ProviderSearch, fallsBackToTheLibrarysOwnDirectory) {
    TempDir const empty;
    EXPECT_EQ(foundWith(""), "ours");
    EXPECT_EQ(foundWith(empty.str()), "ours");
}

TEST(ProviderSearch, hasNamesForTheUtilitiesAndScriptLibraries) {
    EXPECT_STREQ(SCRIPT_INTERFACE_DLL_NAME, "ScriptInterface64.dll");
    EXPECT_STREQ(VLINTERFACEUTILITIES_DLL_NAME, "vlinterfaceutilities64.dll");
}

}
}
