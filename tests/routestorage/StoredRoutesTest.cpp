// The cubes with the project's own provider, which is in the directory of the test programs.

#include <cubes/routestorage/RouteStorageWrappers.h>

#include <filesystem>

#include "routestorage/RouteCubeTest.h"
#include "support/Process.h"

using namespace VL::Interface;
using VL::InterfaceUtilities::TLastError;

namespace cubes::test {
namespace {

class StoredRoutes : public RouteCubeTest {
protected:
    // The storage of 1/2/3/4/5/`iteration`, not yet opened.
    template <typename Storage>
    static Reference<Storage> storageOf(TRkVarCubes const& cube, short iteration) {
        auto const record = fetch(cube, iteration);
        return Reference<Storage>(record ? static_cast<Storage*>(record->getRouteStorage()) : nullptr);
    }
    static Reference<VelmoraRouteStorageRouteSetInterface> setOf(TRkVarCubes const& cube, short iteration) {
        return storageOf<VelmoraRouteStorageRouteSetInterface>(cube, iteration);
    }
    static Reference<VelmoraRouteStorageDataSetInterface> dataOf(TRkVarCubes const& cube, short iteration) {
        return storageOf<VelmoraRouteStorageDataSetInterface>(cube, iteration);
    }

    static std::string lastError() { return TLastError::getInstance()->VlGetLastError(); }

    // Two routes from 1 to 3.
    static void addRoutes(VelmoraRouteStorageRouteSetInterface& set) {
        std::uint32_t const first[] = {10, 20};
        std::uint32_t const second[] = {15};
        EXPECT_EQ(set.addRoute({1, 3, 0.75f, first, 2}), rrDone);
        EXPECT_EQ(set.addRoute({1, 3, 0.25f, second, 1}), rrDone);
        EXPECT_EQ(set.commit(), rrDone);
    }
    static void addFields(VelmoraRouteStorageDataSetInterface& values) {
        float const lengths[] = {1.5f, 2.5f};
        std::uint8_t const flags[] = {0, 1};
        EXPECT_EQ(values.addField({"length", rftFloat, lengths, 2}), rrDone);
        EXPECT_EQ(values.addField({"toll, paid", rftBytes, flags, 2}), rrDone);
        EXPECT_EQ(values.commit(), rrDone);
    }
    // "1>3: 10 20" per line.
    static std::string readRoutes(VelmoraRouteStorageRouteSetInterface& set) {
        set.open(romRead, nullptr);
        if (!lastError().empty()) return lastError();
        std::string text;
        Route route{};
        for (std::int64_t number = 0; set.getRoute(number, &route) == rrDone; ++number) {
            text += std::to_string(route.origin) + ">" + std::to_string(route.destination) + ":";
            for (std::int64_t i = 0; i < route.linkCount; ++i) text += " " + std::to_string(route.links[i]);
            text += "\n";
        }
        return text;
    }
    static std::string stampOf(std::string const& file) {
        auto const result = runPython("import sys, h5py\n"
                                      "f = h5py.File(sys.argv[1], 'r')\n"
                                      "print(f.attrs['cube_type'], *f.attrs['key'])",
            {file});
        EXPECT_EQ(result.exitCode, 0) << result.errors;
        return result.output;
    }
    std::string fields() {
        Reference<Metadata::Vector<Metadata::Field*>> const list(data().getFieldMetadata(1, 2, 3, 4, 5, 6));
        std::string text;
        for (std::size_t i = 0; i < list->size(); ++i) {
            Reference<Metadata::MetadataStringInterface> const name((*list)[i]->getName());
            Reference<Metadata::MetadataStringInterface> const type((*list)[i]->getType());
            text += std::string(name->get()) + ": " + type->get() + "\n";
        }
        return text;
    }

    TempDir elsewhere;

private:
    ProviderPath nowhere_{""};
};

CUBES_BOTH_BACKENDS(StoredRoutes);

constexpr char const* bothRoutes = "1>3: 10 20\n1>3: 15\n";

TEST_P(StoredRoutes, areAddedToTheEntrysOwnFile) {
    ASSERT_TRUE(store(routes(), 6));
    EXPECT_EQ(lastError(), "");
    EXPECT_EQ(stampOf(routeFile(6)), "-9 1 2 3 4 5 6\n");
    {
        auto const set = setOf(routes(), 6);
        ASSERT_NE(set, nullptr);
        EXPECT_EQ(set->getFileName(), routeFile(6));
        set->open(romExtend, nullptr);
        EXPECT_EQ(lastError(), "");
        addRoutes(*set);
    }
    auto const later = setOf(routes(), 6);
    EXPECT_EQ(readRoutes(*later), bothRoutes);
    RouteNumbers found{};
    EXPECT_EQ(later->findRoutesOfLink(20, &found), rrDone);
    EXPECT_EQ(found.count, 1);
}

TEST_P(StoredRoutes, areCopiedFromAnotherFileWithTheKeyOfTheEntry) {
    Reference<RouteStorageCubeData> record(new RouteStorageCubeData);
    {
        TVlRouteStorageRouteSet made(elsewhere.file("made.FDB").c_str());
        ASSERT_EQ(made.open(romCreate, nullptr), 1) << lastError();
        addRoutes(*made.getInterface());
        made.getInterface()->addRef();
        record->setRouteStorage(made.getInterface());
    }
    EXPECT_TRUE(store(routes(), 6, record.get()));
    EXPECT_EQ(readRoutes(*setOf(routes(), 6)), bothRoutes);
    EXPECT_EQ(stampOf(routeFile(6)), "-9 1 2 3 4 5 6\n");
    // The record still refers to its own file.
    Reference<RouteStorageInterface> const own(record->getRouteStorage());
    EXPECT_EQ(own->getFileName(), elsewhere.file("made.FDB"));
}

TEST_P(StoredRoutes, areReplacedByAnEmptySet) {
    store(routes(), 6);
    auto set = setOf(routes(), 6);
    set->open(romExtend, nullptr);
    addRoutes(*set);
    set.reset();
    EXPECT_TRUE(store(routes(), 6));
    EXPECT_EQ(readRoutes(*setOf(routes(), 6)), "");
}

TEST_P(StoredRoutes, ofZeroBasedKeysReplaceThoseOfTheOneBasedKey) {
    store(routes(), 6);
    auto set = setOf(routes(), 6);
    set->open(romExtend, nullptr);
    addRoutes(*set);
    set.reset();
    // The key plus one, which a key that is shifted twice would become.
    EXPECT_TRUE(routes().SetData(nullptr, 2, 3, 4, 5, 5, 6, 0, -1, -1, -1, -1, -1, -1, false));
    auto const neighbour = pathOf("RouteStorage_Routes/2-3-4-5-5-6.FDB");
    writeFile(neighbour, "of the neighbour");
    auto const before = rows();
    EXPECT_TRUE(routes().SetData(nullptr, 0, 1, 2, 3, 5, 6, 0, -1, -1, -1, -1, -1, -1, true));
    EXPECT_EQ(lastError(), "");
    EXPECT_EQ(rows(), before);
    EXPECT_EQ(readRoutes(*setOf(routes(), 6)), "");
    EXPECT_EQ(stampOf(routeFile(6)), "-9 1 2 3 4 5 6\n");
    EXPECT_EQ(readFile(neighbour), "of the neighbour");
    EXPECT_EQ(filesIn(pathOf("RouteStorage_Routes")), "1-2-3-4-5-6.FDB\n2-3-4-5-5-6.FDB\n");
}

TEST_P(StoredRoutes, areCopiedAndMovedAsEntries) {
    store(routes(), 1);
    {
        auto const set = setOf(routes(), 1);
        set->open(romExtend, nullptr);
        addRoutes(*set);
    }
    EXPECT_TRUE(routes().Copy(1, 2, 3, 4, 5, 1, 1, 2, 3, 4, 5, 2, true, false));
    EXPECT_TRUE(routes().Move(1, 2, 3, 4, 5, 1, 1, 2, 3, 4, 5, 3, true, false));
    EXPECT_EQ(routes().GetData(1, 2, 3, 4, 5, 1, false), nullptr);
    EXPECT_EQ(readRoutes(*setOf(routes(), 2)), bothRoutes);
    EXPECT_EQ(readRoutes(*setOf(routes(), 3)), bothRoutes);
}

TEST_P(StoredRoutes, outliveTheRecordTheyWereFetchedWith) {
    store(routes(), 6);
    auto record = fetch(routes(), 6);
    auto* const storage = static_cast<VelmoraRouteStorageRouteSetInterface*>(record->getRouteStorage());
    EXPECT_EQ(record.release()->release(), 0);
    EXPECT_EQ(readRoutes(*storage), "");
    EXPECT_EQ(storage->release(), 0);
}

TEST_P(StoredRoutes, thatAreDamagedReportTheCause) {
    store(routes(), 6);
    std::string const whole = readFile(routeFile(6));
    for (std::string const& bad : {std::string(), std::string("no routes"), whole.substr(0, whole.size() / 2)}) {
        writeFile(routeFile(6), bad);
        auto const set = setOf(routes(), 6);
        ASSERT_NE(set, nullptr);
        EXPECT_NE(readRoutes(*set).find(routeFile(6)), std::string::npos) << lastError();
        TVlRouteStorageRouteSet wrapper(routeFile(6).c_str());
        EXPECT_EQ(wrapper.open(romRead, nullptr), 0);
        EXPECT_EQ(readFile(routeFile(6)), bad);
    }
}

TEST_P(StoredRoutes, thatAreMissingAreNotFetched) {
    store(routes(), 6);
    std::filesystem::remove(routeFile(6));
    EXPECT_EQ(routes().GetData(1, 2, 3, 4, 5, 6, false), nullptr);
}

TEST_P(StoredRoutes, reportWhyTheirFileCannotBeCreated) {
    std::filesystem::create_directories(routeFile(6) + "/full");
    EXPECT_TRUE(store(routes(), 6));
    EXPECT_NE(lastError().find(routeFile(6)), std::string::npos) << lastError();
    EXPECT_TRUE(std::filesystem::exists(routeFile(6) + "/full"));
}

TEST_P(StoredRoutes, areRegisteredWhenTheirDirectoryCannotBeCreated) {
    writeFile(pathOf("RouteStorage_Routes"), "in the way");
    EXPECT_TRUE(store(routes(), 6));
    EXPECT_NE(lastError(), "");
    EXPECT_TRUE(routes().Check(1, 2, 3, 4, 5, 6, false));
    EXPECT_EQ(routes().GetData(1, 2, 3, 4, 5, 6, false), nullptr);
    EXPECT_EQ(readFile(pathOf("RouteStorage_Routes")), "in the way");
}

TEST_P(StoredRoutes, haveDataWithFields) {
    ASSERT_TRUE(store(data(), 6));
    EXPECT_EQ(lastError(), "");
    EXPECT_EQ(stampOf(dataFile(6)), "-10 1 2 3 4 5 6\n");
    EXPECT_EQ(fields(), "");
    {
        auto const values = dataOf(data(), 6);
        values->open(romExtend, nullptr);
        addFields(*values);
    }
    EXPECT_EQ(fields(), "length: float\ntoll, paid: bytes\n");
    auto const values = dataOf(data(), 6);
    values->open(romRead, nullptr);
    double route[2] = {};
    EXPECT_EQ(values->getRouteValues(1, route), rrDone);
    EXPECT_EQ(route[0], 2.5);
    EXPECT_EQ(route[1], 1.0);
}

TEST_P(StoredRoutes, haveDataWithoutFieldsWhenTheFileIsDamaged) {
    store(data(), 6);
    writeFile(dataFile(6), "no data");
    EXPECT_EQ(fields(), "");
    EXPECT_NE(lastError(), "");
    EXPECT_EQ(readFile(dataFile(6)), "no data");
}

TEST_P(StoredRoutes, cannotBeReadAsRouteData) {
    store(routes(), 6);
    auto const record = fetch(routes(), 6);
    EXPECT_TRUE(store(data(), 6, record.get()));
    EXPECT_EQ(fields(), "");
    dataOf(data(), 6)->open(romRead, nullptr);
    EXPECT_NE(lastError().find(dataFile(6)), std::string::npos) << lastError();
}

TEST_P(StoredRoutes, areReadByAnotherCubeObjectAndWithBothSeparators) {
    store(routes(), 6);
    RouteStorageCube const again(project().settings());
    EXPECT_EQ(readRoutes(*setOf(again, 6)), "");
    execute("update " + table() + " set filename = 'RouteStorage_Routes/1-2-3-4-5-6.FDB'");
    EXPECT_EQ(readRoutes(*setOf(again, 6)), "");
}

}
}
