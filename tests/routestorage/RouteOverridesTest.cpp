#include <utility>

#include "routestorage/RouteCubeTest.h"
#include "varcubes/WatchedCube.h"

namespace cubes::test {
namespace {

// A cube that records which of its operations the others call.
template <typename Cube>
class Noting : public Cube {
public:
    using Cube::Cube;

    bool Check(short p, short m, short t, short u, short r, short i, bool zeroBased) const override {
        calls += zeroBased ? "Check+ " : "Check ";
        return Cube::Check(p, m, t, u, r, i, zeroBased);
    }
    bool Clear(short p, short m, short t, short u, short r, short i, bool zeroBased) override {
        calls += zeroBased ? "Clear+ " : "Clear ";
        return Cube::Clear(p, m, t, u, r, i, zeroBased);
    }
    using Cube::Clear;
    bool Add(short p, short m, short t, short u, short r, short i, short parentcubenr, short pp, short pm, short pt,
        short pu, short pr, short pi, bool zeroBased) override {
        calls += zeroBased ? "Add+ " : "Add ";
        return Cube::Add(p, m, t, u, r, i, parentcubenr, pp, pm, pt, pu, pr, pi, zeroBased);
    }
    bool Add(CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t, short u, short r,
        short i, short parentcubenr, short pp, short pm, short pt, short pu, short pr, short pi,
        bool zeroBased) override {
        calls += "AddRow ";
        return Cube::Add(table, cubenr, p, m, t, u, r, i, parentcubenr, pp, pm, pt, pu, pr, pi, zeroBased);
    }
    TRkString FileName(short p, short m, short t, short u, short r, short i, bool zeroBased) const override {
        calls += zeroBased ? "FileName+ " : "FileName ";
        return Cube::FileName(p, m, t, u, r, i, zeroBased);
    }
    using Cube::FileName;
    TRkString createFilename(short p, short m, short t, short u, short r, short i) const override {
        calls += "createFilename ";
        return Cube::createFilename(p, m, t, u, r, i);
    }
    bool Delete(short p, short m, short t, short u, short r, short i, bool zeroBased) override {
        calls += zeroBased ? "Delete+ " : "Delete ";
        return Cube::Delete(p, m, t, u, r, i, zeroBased);
    }
    using Cube::Delete;
    void GetPmturis(short cubenr, short p, short m, short t, short u, short r, short i,
        TRkAutoListT<TRkVarCubes::TKey>& list) const override {
        calls += "GetPmturis" + std::to_string(cubenr) + " ";
        Cube::GetPmturis(cubenr, p, m, t, u, r, i, list);
    }

    std::string taken() const { return std::exchange(calls, {}); }

    mutable std::string calls;
};

class RouteOverrides : public RouteCubeTest {
protected:
    FakeProvider fake;
};

CUBES_BOTH_BACKENDS(RouteOverrides);

template <typename Cube>
void expectCalls(Cube& cube) {
    cube.SetData(nullptr, 0, 1, 2, 3, 5, 6, 0, -1, -1, -1, -1, -1, -1, true);
    EXPECT_EQ(cube.taken(), "Check+ Add+ AddRow createFilename FileName ");
    cube.SetData(nullptr, 1, 2, 3, 4, 5, 6, 0, -1, -1, -1, -1, -1, -1, false);
    EXPECT_EQ(cube.taken(), "Check Clear Add AddRow createFilename FileName ");
    Reference<CubeDataInterface>(cube.GetData(1, 2, 3, 4, 5, 6, false));
    EXPECT_EQ(cube.taken(), "Check FileName ");
    cube.GetParentCubenr(1, 2, 3, 4, 5, 6);
    EXPECT_EQ(cube.taken(), "Check ");
}

// The operations of both kinds of route cubes.
template <typename Cube>
std::vector<WatchedOperation<Cube>> routeOperations() {
    using Table = CountedPtr<Rktable::TRkTableProxy>;
    using Keys = TRkAutoListT<TRkVarCubes::TKey>;
    auto operations = resultOperations<Cube>();
    std::vector<WatchedOperation<Cube>> const more = {
        {"SetData",
            [](Cube& c, Table const&) { c.SetData(nullptr, 1, 2, 3, 4, 5, 6, 0, -1, -1, -1, -1, -1, -1, false); }},
        {"GetData", [](Cube& c, Table const&) { Reference<CubeDataInterface>(c.GetData(1, 2, 3, 4, 5, 6, false)); }},
        {"GetParentPMTURI",
            [](Cube& c, Table const&) {
                short parent[6];
                c.GetParentPMTURI(1, 2, 3, 4, 5, 6, parent[0], parent[1], parent[2], parent[3], parent[4], parent[5]);
            }},
        {"GetParentCubenr", [](Cube& c, Table const&) { c.GetParentCubenr(1, 2, 3, 4, 5, 6); }},
        {"SetParentPMTURI", [](Cube& c, Table const&) { c.SetParentPMTURI(1, 2, 3, 4, 5, 6, 1, 1, 1, 1, 1, 1); }},
        {"SetParentCubenr", [](Cube& c, Table const&) { c.SetParentCubenr(1, 2, 3, 4, 5, 6, 7); }},
        {"GetChildsAll",
            [](Cube& c, Table const&) {
                Keys list;
                c.GetChildsAll(1, 2, 3, 4, 5, 6, list);
            }},
    };
    operations.insert(operations.end(), more.begin(), more.end());
    return operations;
}

TEST_P(RouteOverrides, seeTheConnectionOfTheirOwnProject) {
    WatchedCube<RouteStorageCube> routeSets(project().settings());
    WatchedCube<RouteStorageDataCube> routeData(project().settings());
    RouteStorageDataCube children(project().settings());
    auto* const own = project().project().connection();
    TestProject const current(backend());
    using Table = CountedPtr<Rktable::TRkTableProxy>;
    auto ofSets = routeOperations<RouteStorageCube>();
    ofSets.push_back({"GetChilds", [](RouteStorageCube& c, Table const&) {
                          Keys list;
                          c.GetChilds(1, 2, 3, 4, 5, 6, list);
                      }});
    ofSets.push_back(
        {"DeleteChildren", [&](RouteStorageCube& c, Table const&) { c.DeleteChildren(children, 1, 2, 3, 4, 5, 6); }});
    expectOwnConnection<RouteStorageCube>(routeSets, own, ofSets);
    auto ofData = routeOperations<RouteStorageDataCube>();
    ofData.push_back({"getFieldMetadata", [](RouteStorageDataCube& c, Table const&) {
                          Reference<Metadata::MetadataInterface>(c.getFieldMetadata(1, 2, 3, 4, 5, 6));
                      }});
    expectOwnConnection<RouteStorageDataCube>(routeData, own, ofData);
}

TEST_P(RouteOverrides, takeEffectWhenStoringAndFetching) {
    Noting<RouteStorageCube> routeSets(project().settings());
    expectCalls(routeSets);
    Noting<RouteStorageDataCube> routeData(project().settings());
    expectCalls(routeData);
    Reference<Metadata::MetadataInterface>(routeData.getFieldMetadata(1, 2, 3, 4, 5, 6));
    EXPECT_EQ(routeData.taken(), "FileName ");
}

TEST_P(RouteOverrides, takeEffectWhenWorkingOnChildren) {
    Noting<RouteStorageCube> routeSets(project().settings());
    Noting<RouteStorageDataCube> routeData(project().settings());
    store(routeSets, 1);
    addChild(routeData, 11, 1);
    routeSets.taken();
    routeData.taken();
    Keys list;
    EXPECT_TRUE(routeSets.GetChilds(1, 2, 3, 4, 5, 1, list));
    EXPECT_EQ(routeSets.taken(), "Check GetPmturis-9 ");
    EXPECT_TRUE(routeSets.GetChildsAll(1, 2, 3, 4, 5, 1, list));
    EXPECT_EQ(routeSets.taken(), "GetPmturis-9 ");
    routeSets.DeleteChildren(routeData, 1, 2, 3, 4, 5, 1);
    EXPECT_EQ(routeSets.taken(), "Check GetPmturis-9 ");
    EXPECT_EQ(routeData.taken(), "Delete Clear ");
    EXPECT_TRUE(routeData.GetChildsAll(1, 2, 3, 4, 5, 1, list));
    EXPECT_EQ(routeData.taken(), "GetPmturis-10 ");
}

// A cube that keeps its files in another directory under other names.
class Elsewhere : public RouteStorageCube {
public:
    Elsewhere(TRkGlobalSettings* settings, std::string directory)
        : RouteStorageCube(settings), directory_(std::move(directory)) {}
    TRkFString MatrixDirectory() const override { return TRkFString::Directory(directory_); }
    TRkString createFilename(short, short, short, short, short, short iteration) const override {
        return TRkString("RouteStorage_Routes\\number ") + iteration + ".";
    }

private:
    std::string directory_;
};

TEST_P(RouteOverrides, ofDirectoryAndNameTakeEffect) {
    TempDir const elsewhere;
    Elsewhere cube(project().settings(), elsewhere.str());
    EXPECT_TRUE(store(cube, 6));
    EXPECT_EQ(listing(elsewhere.str()), "RouteStorage_Routes\nRouteStorage_Routes/number 6.FDB\n");
    EXPECT_EQ(rows(), "-9|1|2|3|4|5|6|0|RouteStorage_Routes\\number 6.FDB\n");
    EXPECT_NE(fetch(cube, 6), nullptr);
}

}
}
