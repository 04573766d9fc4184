#include <cubes/routestorage/TLastError.h>
#include <cubes/routestorage/TVlRouteStorageDataSet.h>
#include <cubes/routestorage/TVlRouteStorageRouteSet.h>
#include <cubes/routestorage/TVlSettings.h>

#include <gtest/gtest.h>

#include <filesystem>

#include "routestorage/FakeProvider.h"
#include "support/TempDir.h"

using namespace VL::Interface;
using VL::InterfaceUtilities::TLastError;

namespace cubes::test {
namespace {

template <typename Work>
std::string failureOf(Work const& work) {
    try {
        work();
        return "none";
    } catch (DllNotLoaded const& error) {
        return error.what();
    }
}

constexpr char const* noProvider = "Dll routeprovider64.dll not loaded";
constexpr char const* noUtilities = "Dll vlinterfaceutilities64.dll not loaded";

// A provider without the utilities library.
class HalfAProvider {
public:
    HalfAProvider() {
        std::filesystem::copy(fakeDirectory("full") + "/routeprovider64.dll", directory_.file("routeprovider64.dll"));
    }
    std::string directory() const { return directory_.str(); }
    std::string file() const { return directory_.file("a.FDB"); }

private:
    TempDir directory_;
};

TEST(MissingProvider, isToldByEveryWrapper) {
    ProviderPath const nowhere("");
    EXPECT_EQ(failureOf([] { TVlSettings("a.FDB"); }), noProvider);
    EXPECT_EQ(failureOf([] { TVlRouteStorageRouteSet("a.FDB"); }), noProvider);
    EXPECT_EQ(failureOf([] { TVlRouteStorageDataSet("a.FDB"); }), noProvider);
}

TEST(MissingProvider, isFoundOnceItIsThere) {
    ProviderPath const nowhere("");
    EXPECT_EQ(failureOf([] { TVlSettings("a.FDB"); }), noProvider);
    ProviderPath const path(fakeDirectory("full"));
    EXPECT_NE(TVlSettings("a.FDB").getInterface(), nullptr);
}

TEST(MissingUtilities, areToldAtEachCallUntilTheyAreThere) {
    EXPECT_TRUE(worksInOwnProcess([] {
        ProviderPath const nowhere("");
        EXPECT_EQ(failureOf([] { TLastError::getInstance(); }), noUtilities);
        EXPECT_EQ(failureOf([] { TLastError::getInstance(); }), noUtilities);
        FakeProvider fake;
        fake.setLastError("the disk is full");
        EXPECT_STREQ(TLastError::getInstance()->VlGetLastError(), "the disk is full");
    }));
}

TEST(MissingUtilities, areToldByOpening) {
    HalfAProvider const half;
    EXPECT_TRUE(worksInOwnProcess([&half] {
        ProviderPath const path(half.directory());
        TVlRouteStorageRouteSet routeSet(half.file().c_str());
        EXPECT_EQ(failureOf([&] { routeSet.open(1, nullptr); }), noUtilities);
        TVlRouteStorageDataSet dataSet(half.file().c_str());
        EXPECT_EQ(failureOf([&] { dataSet.open(0, nullptr); }), noUtilities);
    }));
}

TEST(SilentUtilities, countAsNoError) {
    EXPECT_TRUE(worksInOwnProcess([] {
        ProviderPath const path(fakeDirectory("without"));
        EXPECT_EQ(TLastError::getInstance()->VlGetLastError(), nullptr);
        FakeProvider fake;
        fake.setLastError("not heard");
        TVlRouteStorageRouteSet routeSet("a.FDB");
        EXPECT_EQ(routeSet.open(0, nullptr), 1);
        EXPECT_EQ(TLastError::getInstance()->VlGetLastError(), nullptr);
    }));
}

TEST(UtilitiesWithUnderscores, areAsked) {
    for (char const* const variant : {"full", "leading", "trailing"})
        EXPECT_TRUE(worksInOwnProcess([variant] {
            FakeProvider fake(variant);
            fake.setLastError(variant);
            EXPECT_STREQ(TLastError::getInstance()->VlGetLastError(), variant);
        }));
}

}
}
