// Route cubes in an application, with the provider in the library's directory.

#include <cubes/cubes.h>

#include "support/TempDir.h"
#include "support/Variable.h"

#include <gtest/gtest.h>

using namespace VL::Interface;

namespace {

class RouteBoundary : public testing::Test {
protected:
    cubes::test::TempDir const directory;
    cubes::Project project = cubes::Project::create(directory.file("delta"));
};

}

TEST_F(RouteBoundary, allowsAnApplicationToStoreRoutes) {
    RouteStorageCube cube(project.settings());
    ASSERT_TRUE(cube.SetData(nullptr, 1, 1, 1, 1, 1, 1, 0, -1, -1, -1, -1, -1, -1, false));
    cubes::Reference<CubeDataInterface> const data(cube.GetData(1, 1, 1, 1, 1, 1, false));
    auto* const record = dynamic_cast<RouteStorageCubeData*>(data.get());
    ASSERT_NE(record, nullptr);
    cubes::Reference<RouteStorageInterface> const storage(record->getRouteStorage());
    auto& routes = static_cast<VelmoraRouteStorageRouteSetInterface&>(*storage);
    routes.open(romExtend, nullptr);
    EXPECT_STREQ(VL::InterfaceUtilities::TLastError::getInstance()->VlGetLastError(), "");
    std::uint32_t const links[] = {7, 8, 9};
    EXPECT_EQ(routes.addRoute({1, 2, 1.0F, links, 3}), rrDone);
    EXPECT_EQ(routes.commit(), rrDone);

    TVlRouteStorageRouteSet file(cube.FileName(1, 1, 1, 1, 1, 1, false).c_str());
    EXPECT_EQ(file.open(romRead, nullptr), 1);
    EXPECT_EQ(file.getInterface()->countLinks(), 3);
}

TEST_F(RouteBoundary, returnsTheFieldsOfRouteData) {
    RouteStorageDataCube cube(project.settings());
    ASSERT_TRUE(cube.SetData(nullptr, 1, 1, 1, 1, 1, 1, 0, -1, -1, -1, -1, -1, -1, false));
    TVlRouteStorageDataSet file(cube.FileName(1, 1, 1, 1, 1, 1, false).c_str());
    ASSERT_EQ(file.open(romExtend, nullptr), 1);
    std::int16_t const tolls[] = {1, 2};
    EXPECT_EQ(file.getInterface()->addField({"toll", rftSmallint, tolls, 2}), rrDone);
    EXPECT_EQ(file.getInterface()->commit(), rrDone);
    cubes::Reference<Metadata::Vector<Metadata::Field*>> const fields(cube.getFieldMetadata(1, 1, 1, 1, 1, 1));
    ASSERT_EQ(fields->size(), 1u);
    cubes::Reference<Metadata::MetadataStringInterface> const type((*fields)[0]->getType());
    EXPECT_STREQ(type->get(), "smalint");
    EXPECT_NE(dynamic_cast<Metadata::String*>(type.get()), nullptr);
}

TEST_F(RouteBoundary, throwsAnExceptionThatTheApplicationCanCatchWithoutAProvider) {
    cubes::test::writeFile(directory.file("routeprovider64.dll"), "no library");
    {
        cubes::test::Variable const path("CUBES_PROVIDER_PATH", directory.str());
        EXPECT_THROW(TVlSettings("a.FDB"), DllNotLoaded);
        EXPECT_THROW(TVlSettings("a.FDB"), std::exception);
    }
    EXPECT_NE(TVlSettings("a.FDB").getInterface(), nullptr);
}
