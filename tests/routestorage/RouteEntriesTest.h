#pragma once

#include <string>
#include <vector>

#include "routestorage/RouteCubeTest.h"

namespace cubes::test {

/// A route cube as the provider and the entry table see it.
struct RouteKind {
    RouteStorageBaseCube& cube;
    std::string object;
    std::string number;
    std::string directory;
};

/// Both kinds of route cubes over the provider that only counts and notes.
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

    // A record with a storage of the provider for a file that lies elsewhere.
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
