#include <filesystem>

#include "routestorage/RouteCubeTest.h"

namespace cubes::test {
namespace {

class RoutesWithoutProvider : public RouteCubeTest {
protected:
    static void expectMissing(std::function<void()> const& work) {
        try {
            work();
            FAIL() << "it worked";
        } catch (DllNotLoaded const& error) {
            EXPECT_STREQ(error.what(), "Dll routeprovider64.dll not loaded");
        }
    }

    ProviderPath nowhere{""};
};

CUBES_BOTH_BACKENDS(RoutesWithoutProvider);

TEST_P(RoutesWithoutProvider, areNotStored) {
    expectMissing([&] { store(routes(), 6); });
    expectMissing([&] { store(data(), 6); });
    // The entries were registered before.
    EXPECT_EQ(rows(), "-10|1|2|3|4|5|6|0|RouteStorage_RouteData\\1-2-3-4-5-6.FDB\n"
                      "-9|1|2|3|4|5|6|0|RouteStorage_Routes\\1-2-3-4-5-6.FDB\n");
}

TEST_P(RoutesWithoutProvider, areNotFetched) {
    add(routes(), 1);
    add(data(), 1);
    // Without a file the provider is not called.
    EXPECT_EQ(routes().GetData(1, 1, 1, 1, 1, 1, false), nullptr);
    EXPECT_EQ(data().getFieldMetadata(1, 1, 1, 1, 1, 1)->release(), 0);
    writeFile(pathOf("RouteStorage_Routes/1-1-1-1-1-1.FDB"), "some routes");
    writeFile(pathOf("RouteStorage_RouteData/1-1-1-1-1-1.FDB"), "some data");
    expectMissing([&] { routes().GetData(1, 1, 1, 1, 1, 1, false); });
    expectMissing([&] { data().GetData(1, 1, 1, 1, 1, 1, false); });
    expectMissing([&] { data().getFieldMetadata(1, 1, 1, 1, 1, 1); });
}

TEST_P(RoutesWithoutProvider, areCopiedAndClearedNevertheless) {
    add(routes(), 1);
    writeFile(pathOf("RouteStorage_Routes/1-1-1-1-1-1.FDB"), "some routes");
    EXPECT_TRUE(routes().Copy(1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2, true, false));
    EXPECT_TRUE(routes().Clear());
    EXPECT_EQ(filesIn(pathOf("RouteStorage_Routes")), "");
}

}
}
