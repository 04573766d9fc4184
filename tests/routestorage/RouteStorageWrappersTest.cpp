#include <cubes/routestorage/RouteStorageWrappers.h>

#include <gtest/gtest.h>

#include "routestorage/FakeProvider.h"
#include "support/TempDir.h"

using namespace VL::Interface;
using VL::InterfaceUtilities::TLastError;

namespace cubes::test {
namespace {

class Wrappers : public testing::Test {
protected:
    TempDir const directory;
    std::string const file = directory.file("a.FDB");
    FakeProvider fake;
};

// Returns the calls that the provider gets when a wrapper opens, and the result of open.
template <typename Wrapper>
std::string opening(FakeProvider& fake, std::string const& file, long mode, SettingsInterface* settings, int& result) {
    Wrapper wrapper(file.c_str());
    fake.calls();
    result = wrapper.open(mode, settings);
    return fake.calls();
}

TEST_F(Wrappers, passTheirOwnSettingsInCreatingModes) {
    std::string const asked = ".getFileName\nsettings.make a.FDB\n";
    for (long const mode : {1L, 257L, 0x7FFFFF01L, -255L}) {
        int result = 0;
        std::string const opened = ".open " + std::to_string(mode) + " with settings\nsettings.release -1\n";
        EXPECT_EQ(opening<TVlRouteStorageRouteSet>(fake, file, mode, nullptr, result), "set" + asked + "set" + opened);
        EXPECT_EQ(result, 1);
        EXPECT_EQ(opening<TVlRouteStorageDataSet>(fake, file, mode, nullptr, result), "data" + asked + "data" + opened);
        EXPECT_EQ(result, 1);
    }
}

TEST_F(Wrappers, passOtherModesUnchanged) {
    for (long const mode : {0L, 2L, 3L, 256L, 258L, -1L, 0x101000L}) {
        int result = 0;
        std::string const opened = ".open " + std::to_string(mode) + " without settings\n";
        EXPECT_EQ(opening<TVlRouteStorageRouteSet>(fake, file, mode, nullptr, result), "set" + opened);
        EXPECT_EQ(opening<TVlRouteStorageDataSet>(fake, file, mode, nullptr, result), "data" + opened);
        EXPECT_EQ(result, 1);
    }
}

TEST_F(Wrappers, passTheCallersSettingsUnchanged) {
    TVlSettings const settings("own.FDB");
    for (long const mode : {0L, 1L, 257L}) {
        int result = 0;
        std::string const opened = ".open " + std::to_string(mode) + " with settings\n";
        EXPECT_EQ(opening<TVlRouteStorageRouteSet>(fake, file, mode, settings.getInterface(), result), "set" + opened);
        EXPECT_EQ(opening<TVlRouteStorageDataSet>(fake, file, mode, settings.getInterface(), result), "data" + opened);
        EXPECT_EQ(result, 1);
    }
}

TEST_F(Wrappers, openWithoutSettingsWhenTheProviderHasNone) {
    TVlRouteStorageRouteSet routeSet(file.c_str());
    FakeProvider without("without");
    fake.calls();
    EXPECT_EQ(routeSet.open(1, nullptr), 1);
    EXPECT_EQ(fake.calls(), "set.getFileName\nset.open 1 without settings\n");
}

struct LastError {
    char const* text;
    int result;
};

TEST_F(Wrappers, reportFailureToOpenByTheLastError) {
    TVlRouteStorageRouteSet routeSet(file.c_str());
    TVlRouteStorageDataSet dataSet(file.c_str());
    for (auto const& [text, result] : {LastError{"", 1}, LastError{"the disk is full", 0}, LastError{" ", 0},
             LastError{nullptr, 1}, LastError{"", 1}}) {
        fake.setLastError(text);
        EXPECT_EQ(routeSet.open(0, nullptr), result);
        EXPECT_EQ(dataSet.open(0, nullptr), result);
        EXPECT_STREQ(TLastError::getInstance()->VlGetLastError(), text);
    }
}

TEST_F(Wrappers, reportAMissingObjectWhenTheyOpen) {
    FakeProvider without("without");
    TVlRouteStorageRouteSet routeSet(file.c_str());
    TVlRouteStorageDataSet dataSet(file.c_str());
    for (long const mode : {0L, 1L}) {
        EXPECT_EQ(routeSet.open(mode, nullptr), -1);
        EXPECT_EQ(dataSet.open(mode, nullptr), -1);
    }
    EXPECT_EQ(without.calls(), "");
}

TEST_F(Wrappers, createFurtherObjectsForTheCaller) {
    TVlSettings settings("a.FDB");
    SettingsInterface* const moreSettings = settings.CreateInterface("b.FDB");
    EXPECT_NE(moreSettings, settings.getInterface());
    moreSettings->release();
    TVlRouteStorageRouteSet routeSet("c.FDB");
    routeSet.CreateVelmoraRouteStorageRouteSetInterface("d.FDB")->release();
    TVlRouteStorageDataSet dataSet("e.FDB");
    dataSet.CreateVelmoraRouteStorageDataSetInterface("f.FDB")->release();
    EXPECT_EQ(fake.calls(), "settings.make a.FDB\nsettings.make b.FDB\nsettings.release -1\nset.make c.FDB\n"
                            "set.make d.FDB\nset.release -1\ndata.make e.FDB\ndata.make f.FDB\ndata.release -1\n");
    EXPECT_EQ(fake.living(), 3);
}

TEST_F(Wrappers, releaseOneReferenceOnly) {
    TVlRouteStorageRouteSet* const wrapper = new TVlRouteStorageRouteSet("a.FDB");
    RouteStorageInterface* const kept = wrapper->getInterface();
    kept->addRef();
    kept->addRef();
    delete wrapper;
    EXPECT_EQ(fake.living(), 1);
    EXPECT_EQ(kept->release(), 0);
}

TEST_F(Wrappers, ownTheHeaderThatTheyAreGiven) {
    TVlRouteStorageDataSet const dataSet("a.FDB");
    {
        TVlAdditionalDataHeader const header(dataSet.getInterface()->getAdditionalDataHeader());
        EXPECT_NE(header.getInterface(), nullptr);
        EXPECT_EQ(fake.living(), 2);
    }
    EXPECT_EQ(fake.living(), 1);
    EXPECT_EQ(fake.calls(), "data.make a.FDB\ndata.getAdditionalDataHeader\nheader.release -1\n");
    TVlAdditionalDataHeader const none(nullptr);
    EXPECT_EQ(none.getInterface(), nullptr);
}

TEST_F(Wrappers, shareOneObjectForTheLastError) {
    EXPECT_NE(TLastError::getInstance(), nullptr);
    EXPECT_EQ(TLastError::getInstance(), TLastError::getInstance());
}

}
}
