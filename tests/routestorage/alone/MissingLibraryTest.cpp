#include <cubes/routestorage/RouteStorageWrappers.h>

#include <gtest/gtest.h>

#include <filesystem>

#include "routestorage/FakeProvider.h"
#include "support/ChildTask.h"
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
    std::string file() const { return directory_.file("a.FDB"); }

private:
    TempDir directory_;
};

TEST(MissingProvider, isReportedByEveryWrapper) {
    ProviderPath const nowhere("");
    EXPECT_EQ(failureOf([] { TVlSettings("a.FDB"); }), noProvider);
    EXPECT_EQ(failureOf([] { TVlRouteStorageRouteSet("a.FDB"); }), noProvider);
    EXPECT_EQ(failureOf([] { TVlRouteStorageDataSet("a.FDB"); }), noProvider);
}

// A library that was found once stays loaded until the process ends, so each of these has a process of its own.

ChildTask const finding("finding", [](int, std::string const&) {
    ProviderPath const nowhere("");
    EXPECT_EQ(failureOf([] { TVlSettings("a.FDB"); }), noProvider);
    ProviderPath const path(fakeDirectory("full"));
    EXPECT_NE(TVlSettings("a.FDB").getInterface(), nullptr);
});

ChildTask const askingUntilTheyAreThere("asking until they are there", [](int, std::string const&) {
    ProviderPath const nowhere("");
    EXPECT_EQ(failureOf([] { TLastError::getInstance(); }), noUtilities);
    EXPECT_EQ(failureOf([] { TLastError::getInstance(); }), noUtilities);
    FakeProvider fake;
    fake.setLastError("the disk is full");
    EXPECT_STREQ(TLastError::getInstance()->VlGetLastError(), "the disk is full");
});

// The argument is the path of a file in a directory with only one of the provider's libraries.
ChildTask const openingWithout("opening without them", [](int, std::string const& file) {
    ProviderPath const path(std::filesystem::path(file).parent_path().string());
    TVlRouteStorageRouteSet routeSet(file.c_str());
    EXPECT_EQ(failureOf([&] { routeSet.open(1, nullptr); }), noUtilities);
    TVlRouteStorageDataSet dataSet(file.c_str());
    EXPECT_EQ(failureOf([&] { dataSet.open(0, nullptr); }), noUtilities);
});

ChildTask const askingSilentOnes("asking silent ones", [](int, std::string const&) {
    ProviderPath const path(fakeDirectory("without"));
    EXPECT_EQ(TLastError::getInstance()->VlGetLastError(), nullptr);
    FakeProvider fake;
    fake.setLastError("not heard");
    TVlRouteStorageRouteSet routeSet("a.FDB");
    EXPECT_EQ(routeSet.open(0, nullptr), 1);
    EXPECT_EQ(TLastError::getInstance()->VlGetLastError(), nullptr);
});

// The argument is the variant.
ChildTask const asking("asking", [](int, std::string const& variant) {
    FakeProvider fake(variant);
    fake.setLastError(variant.c_str());
    EXPECT_STREQ(TLastError::getInstance()->VlGetLastError(), variant.c_str());
});

TEST(MissingProvider, isFoundOnceItIsThere) {
    EXPECT_EQ(finding.inProcesses(1), 1);
}

TEST(MissingUtilities, areReportedAtEachCallUntilTheyExist) {
    EXPECT_EQ(askingUntilTheyAreThere.inProcesses(1), 1);
}

TEST(MissingUtilities, areReportedByOpening) {
    HalfAProvider const half;
    EXPECT_EQ(openingWithout.inProcesses(1, half.file()), 1);
}

TEST(SilentUtilities, reportNoError) {
    EXPECT_EQ(askingSilentOnes.inProcesses(1), 1);
}

TEST(UtilitiesWithUnderscores, areCalled) {
    for (char const* const variant : {"full", "leading", "trailing"})
        EXPECT_EQ(asking.inProcesses(1, variant), 1) << variant;
}

}
}
