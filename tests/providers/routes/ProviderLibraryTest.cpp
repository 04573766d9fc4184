#include "host/platform/SharedLibrary.h"
#include "support/ChildTask.h"
#include "support/SystemMessages.h"
#include "support/TempDir.h"

#include <cubes/routestorage/RouteStorageInterface.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <thread>

using namespace cubes::test;
using namespace VL::Interface;

namespace {

void* library(char const* path) {
    void* const loaded = cubes::platform::loadLibraryFile(path);
    EXPECT_NE(loaded, nullptr) << path;
    return loaded;
}

template <typename Function>
Function* exported(char const* path, char const* name) {
    void* const found = cubes::platform::findSymbol(library(path), name);
    EXPECT_NE(found, nullptr) << name;
    return reinterpret_cast<Function*>(found);
}

// An application may change its working directory before cubes-reader is looked for beside the library.
ChildTask const readingAfterLeaving("reading after leaving", [](int, std::string const& file) {
    std::filesystem::path const provider = ROUTE_PROVIDER;
    std::filesystem::current_path(provider.parent_path());
    std::string const relative = (std::filesystem::path(".") / provider.filename()).string();
    auto* const create = exported<RouteSetFactory>(relative.c_str(), "CreateVelmoraRouteStorageRouteSetInterface");
    std::filesystem::current_path(std::filesystem::path(file).parent_path());
    auto* const set = create(file.c_str());
    set->open(romCreate, nullptr);
    set->open(romRead, nullptr);
    EXPECT_EQ(set->countRoutes(), 0);
    set->release();
});

std::string lastError() {
    return exported<LastErrorGetter>(UTILITIES, "VlInterfaceGetLastError")();
}

class ProviderLibrary : public testing::Test {
protected:
    TempDir const directory;
    std::string const file = directory.file("a.FDB");
    SettingsFactory* const createSettings = exported<SettingsFactory>(ROUTE_PROVIDER, "CreateSettingsInterface");
    RouteSetFactory* const createRouteSet =
        exported<RouteSetFactory>(ROUTE_PROVIDER, "CreateVelmoraRouteStorageRouteSetInterface");
    DataSetFactory* const createDataSet =
        exported<DataSetFactory>(ROUTE_PROVIDER, "CreateVelmoraRouteStorageDataSetInterface");
};

}

TEST_F(ProviderLibrary, hasTheFixedFileNames) {
    EXPECT_EQ(std::filesystem::path(ROUTE_PROVIDER).filename(), "routeprovider64.dll");
    EXPECT_EQ(std::filesystem::path(UTILITIES).filename(), VLINTERFACEUTILITIES_DLL_NAME);
    EXPECT_EQ(std::filesystem::path(UTILITIES).parent_path(), std::filesystem::path(ROUTE_PROVIDER).parent_path());
}

TEST_F(ProviderLibrary, exportsOnlyTheFixedNames) {
    char const* const inner = "_ZN5cubes6routes8RouteSet8addRouteERKN2VL9Interface5RouteE";
    EXPECT_EQ(cubes::platform::findSymbol(library(ROUTE_PROVIDER), inner), nullptr);
}

TEST_F(ProviderLibrary, storesAndReadsThroughItsExports) {
    auto* const set = createRouteSet(file.c_str());
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->getFileName(), file);
    SettingsInterface* const settings = createSettings(file.c_str());
    set->open(romCreate, settings);
    EXPECT_EQ(settings->release(), -1);
    EXPECT_EQ(lastError(), "");
    std::uint32_t const links[] = {3, 4};
    EXPECT_EQ(set->addRoute({1, 2, 1.0f, links, 2}), rrDone);
    EXPECT_EQ(set->commit(), rrDone);
    set->open(romRead, nullptr);
    RouteNumbers found{};
    EXPECT_EQ(set->findRoutesOfLink(4, &found), rrDone);
    EXPECT_EQ(found.count, 1);
    set->release();
}

// Not with the fixture, which has loaded the provider already.
TEST(ProviderLoadedByARelativePath, findsTheReaderAfterTheWorkingDirectoryHasChanged) {
    TempDir const directory;
    EXPECT_EQ(readingAfterLeaving.inProcesses(1, directory.file("a.FDB")), 1);
}

TEST_F(ProviderLibrary, anObjectThatIsOnlyReleasedIsDeleted) {
    EXPECT_EQ(createRouteSet(file.c_str())->release(), -1);
    EXPECT_EQ(createDataSet(file.c_str())->release(), -1);
    EXPECT_EQ(createSettings(file.c_str())->release(), -1);
}

TEST_F(ProviderLibrary, anObjectLivesUntilTheLastReferenceIsReleased) {
    auto* const set = createRouteSet(file.c_str());
    set->addRef();
    set->addRef();
    EXPECT_EQ(set->release(), 1);
    EXPECT_EQ(set->getFileName(), file);
    EXPECT_EQ(set->release(), 0);
}

TEST_F(ProviderLibrary, theHeaderIsDeletedByOneRelease) {
    auto* const set = createDataSet(file.c_str());
    set->open(romCreate, nullptr);
    AdditionalDataHeaderInterface* const header = set->getAdditionalDataHeader();
    set->release();
    ASSERT_NE(header, nullptr);
    EXPECT_STREQ(header->getFieldNames(), "");
    EXPECT_EQ(header->release(), -1);
}

TEST_F(ProviderLibrary, referencesAndTheFileNameLeaveTheLastErrorUnchanged) {
    auto* const set = createRouteSet(file.c_str());
    SettingsInterface* const settings = createSettings(file.c_str());
    set->open(romRead, settings);
    settings->release();
    set->addRef();
    set->getFileName();
    EXPECT_EQ(lastError(), "cannot open " + file + ": " + noSuchFile());
    set->release();
    EXPECT_EQ(lastError(), "cannot open " + file + ": " + noSuchFile());
}

TEST_F(ProviderLibrary, aFileNeedsAName) {
    EXPECT_EQ(createRouteSet(nullptr), nullptr);
    EXPECT_NE(lastError(), "");
    EXPECT_EQ(createDataSet(nullptr), nullptr);
    EXPECT_NE(lastError(), "");
}

TEST_F(ProviderLibrary, eachThreadHasItsOwnLastError) {
    auto* const set = createRouteSet(file.c_str());
    set->open(romRead, nullptr);
    std::thread([&] {
        EXPECT_EQ(lastError(), "");
        auto* const other = createRouteSet(directory.file("b.FDB").c_str());
        other->open(romCreate, nullptr);
        other->release();
    }).join();
    EXPECT_NE(lastError(), "");
    set->release();
}

TEST_F(ProviderLibrary, threadsMayUseObjectsOfTheirOwn) {
    auto const work = [&](std::string const& path) {
        for (int round = 0; round < 20; ++round) {
            auto* const set = createRouteSet(path.c_str());
            set->open(romCreate, nullptr);
            std::uint32_t const link = 5;
            set->addRoute({1, 2, 1.0f, &link, 1});
            EXPECT_EQ(set->commit(), rrDone) << lastError();
            set->open(romRead, nullptr);
            EXPECT_EQ(set->countRoutes(), 1) << lastError();
            set->release();
        }
    };
    std::thread first(work, file);
    std::thread second(work, directory.file("b.FDB"));
    first.join();
    second.join();
}
