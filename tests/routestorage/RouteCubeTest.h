#pragma once

#include <cubes/routestorage/Reference.h>
#include <cubes/routestorage/RouteStorageCube.h>
#include <cubes/routestorage/RouteStorageCubeData.h>
#include <cubes/routestorage/RouteStorageDataCube.h>

#include <cubes/routestorage/RouteStorageWrappers.h>

#include <memory>
#include <string>
#include <vector>

#include "routestorage/FakeProvider.h"
#include "varcubes/VarCubesTest.h"

namespace cubes::test {

/// A fresh project on either backend with the cubes of route sets and of route data.
class RouteCubeTest : public VarCubesTest {
protected:
    using Keys = TRkAutoListT<TRkVarCubes::TKey>;

    void SetUp() override {
        VarCubesTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        routes_ = std::make_unique<RouteStorageCube>(project().settings());
        data_ = std::make_unique<RouteStorageDataCube>(project().settings());
    }

    RouteStorageCube& routes() { return *routes_; }
    RouteStorageDataCube& data() { return *data_; }

    /// Stores 1/2/3/4/5/`iteration` without a parent.
    static bool store(TRkVarCubes& cube, short iteration, CubeDataInterface* given = nullptr) {
        return cube.SetData(given, 1, 2, 3, 4, 5, iteration, 0, -1, -1, -1, -1, -1, -1, false);
    }
    /// Adds route data 1/2/3/4/5/`iteration` as a child of the route set 1/2/3/4/5/`parent`.
    static bool addChild(TRkVarCubes& cube, short iteration, short parent) {
        return cube.Add(1, 2, 3, 4, 5, iteration, ctRouteSet, 1, 2, 3, 4, 5, parent, false);
    }
    static Reference<RouteStorageCubeData> fetch(TRkVarCubes const& cube, short iteration) {
        return recordOf(cube.GetData(1, 2, 3, 4, 5, iteration, false));
    }
    static Reference<RouteStorageCubeData> recordOf(CubeDataInterface* fetched) {
        return Reference<RouteStorageCubeData>(dynamic_cast<RouteStorageCubeData*>(fetched));
    }
    static std::string keyOf(RouteStorageCubeData const& record) {
        std::string text;
        for (long const part : {record.getPurpose(), record.getMode(), record.getTime(), record.getUser(),
                 record.getResult(), record.getIteration()})
            text += (text.empty() ? "" : " ") + std::to_string(part);
        return text;
    }

    /// The native path of the file of 1/2/3/4/5/`iteration`.
    std::string routeFile(short iteration) { return fileIn("RouteStorage_Routes", iteration); }
    std::string dataFile(short iteration) { return fileIn("RouteStorage_RouteData", iteration); }

private:
    std::string fileIn(std::string const& name, short iteration) {
        return nativePath(pathOf(name + "/1-2-3-4-5-" + std::to_string(iteration) + ".FDB"));
    }

    std::unique_ptr<RouteStorageCube> routes_;
    std::unique_ptr<RouteStorageDataCube> data_;
};

/// A route cube with its names in the fake provider and in the entry table.
struct RouteKind {
    RouteStorageBaseCube& cube;
    std::string object;
    std::string number;
    std::string directory;
};

/// Both kinds of route cubes over the fake provider.
class RouteEntriesTest : public RouteCubeTest {
protected:
    std::vector<RouteKind> kinds() {
        return {{routes(), "set", "-9", "RouteStorage_Routes"}, {data(), "data", "-10", "RouteStorage_RouteData"}};
    }
    std::string fileOf(RouteKind const& kind, std::string const& key) {
        return nativePath(pathOf(kind.directory + "/" + key + ".FDB"));
    }
    static std::string rowOf(RouteKind const& kind, std::string const& parts, std::string const& name) {
        return kind.number + "|" + parts + "|0|" + kind.directory + "\\" + name + ".FDB\n";
    }
    static std::string assigned(RouteKind const& kind, std::string const& key) {
        return kind.object + ".setCubeType " + kind.number + "\n" + kind.object + ".setKey " + key + "\n";
    }
    static std::string created(RouteKind const& kind, std::string const& name, std::string const& key) {
        std::string const& object = kind.object;
        return object + ".make " + name + ".FDB\n" + assigned(kind, key) + object + ".getFileName\nsettings.make " +
               name + ".FDB\n" + object + ".open 1 with settings\nsettings.release -1\n" + object + ".release -1\n";
    }

    // A record with a storage for a file outside the project.
    template <typename Wrapper>
    Reference<RouteStorageCubeData> recordFor(std::string const& file) {
        Reference<RouteStorageCubeData> record(new RouteStorageCubeData);
        Wrapper const wrapper(file.c_str());
        wrapper.getInterface()->addRef();
        record->setRouteStorage(wrapper.getInterface());
        return record;
    }
    Reference<RouteStorageCubeData> recordFor(RouteKind const& kind, std::string const& file) {
        if (kind.object == "set") return recordFor<VL::Interface::TVlRouteStorageRouteSet>(file);
        return recordFor<VL::Interface::TVlRouteStorageDataSet>(file);
    }

    FakeProvider fake;
    TempDir elsewhere;
};

}
