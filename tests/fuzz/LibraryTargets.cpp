// What the library reads: project files, texts of keys, stored names, matrix files and route files.

#include "Target.h"

#include "DataSet.h"
#include "RouteSet.h"
#include "catalogue/StoredName.h"
#include "host/database/DatabaseUrl.h"
#include "host/project/ProjectFile.h"
#include "routestorage/FieldNames.h"
#include "support/TempDir.h"

#include <cubes/catalogue/TRkBaseCubes.h>
#include <cubes/matcubes/TRkMatCubes.h>
#include <cubes/matrix/MatrixStorage.h>
#include <cubes/matrix/OmxFile.h>
#include <cubes/matrix/TRkMatrix.h>
#include <cubes/matrix/TRkMatrixException.h>
#include <cubes/project/Project.h>
#include <cubes/project/TRkProjectException.h>
#include <cubes/routestorage/RouteStorageDataCube.h>
#include <cubes/store/EntryStore.h>
#include <cubes/store/StoreError.h>
#include <cubes/varcubes/TRkVarCubes.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>

namespace cubes::fuzz {

namespace {

namespace fs = std::filesystem;

void requireSame(project::ProjectFile const& first, project::ProjectFile const& second) {
    require(first.database == second.database && first.matrixDirectory == second.matrixDirectory &&
                first.workingDirectory == second.workingDirectory && first.schema == second.schema &&
                first.storage.storage == second.storage.storage &&
                first.storage.durability == second.storage.durability,
        "a written project file is read as it was");
}

void readProjectFile(std::string const& input) {
    auto const directory = fs::path(fileOf("cubes.toml", input)).parent_path().string();
    project::ProjectFile file;
    try {
        file = project::readProjectFile(directory);
    } catch (TRkProjectException const& error) {
        requireReason(error.what());
        return;
    }
    // A password is not written, nor is an unnamed schema.
    file.database = database::withoutPassword(file.database);
    // Nor is a URL that cannot be read.
    if (file.database.empty()) return;
    if (file.schema.empty()) file.schema = "results";
    project::writeProjectFile(file, directory);
    requireSame(project::readProjectFile(directory), file);
}

EntryStore& store() {
    static test::TempDir const directory;
    static Project project = [] {
        auto made = Project::create(directory.str(), {.database = "sqlite:cubes.db"});
        for (char const* const name : {"Base", "2030/1/15", "two words", "7"}) made.store().addCube(name);
        return made;
    }();
    return project.store();
}

void readKey(std::string const& input) {
    try {
        auto const key = store().parse(input);
        require(store().parse(store().text(key)) == key, "the text of a key is read as the key");
    } catch (StoreError const& error) {
        bool const endsWithCause = std::string_view(error.what()).ends_with(error.cause());
        require(!error.cause().empty() && endsWithCause, "a refused text has a reason");
        require(error.reason() == Reason::invalidKey || error.reason() == Reason::notFound,
            "a text that names no entry is refused");
    }
}

template <std::size_t count>
using Numbers = std::array<int, count>;

bool isShort(int number) {
    return number == static_cast<short>(number);
}

void readCubeStem(std::string const& stem) {
    Numbers<5> n{};
    if (!TRkMatCubes::MakeFilename(stem.c_str(), n[0], n[1], n[2], n[3], n[4]) || !std::ranges::all_of(n, isShort))
        return;
    auto const part = [&](std::size_t i) { return static_cast<short>(n[i]); };
    Numbers<5> again{};
    require(TRkMatCubes::MakeFilename(TRkMatCubes::MakeFilename(part(0), part(1), part(2), part(3), part(4)).c_str(),
                again[0], again[1], again[2], again[3], again[4]) &&
                again == n,
        "the file name of numbers is read as the numbers");
}

void readRouteName(std::string const& name) {
    Numbers<6> n{};
    if (!RouteStorageDataCube::MakeFilename(name.c_str(), n[0], n[1], n[2], n[3], n[4], n[5]) ||
        !std::ranges::all_of(n, isShort))
        return;
    auto const part = [&](std::size_t i) { return static_cast<short>(n[i]); };
    Numbers<6> again{};
    auto const made = RouteStorageDataCube::MakeFilename(part(0), part(1), part(2), part(3), part(4), part(5));
    require(
        RouteStorageDataCube::MakeFilename(made.c_str(), again[0], again[1], again[2], again[3], again[4], again[5]) &&
            again == n,
        "the name of route data is read as the numbers");
}

// A path outside the directory is never used.
void readStoredName(std::string const& input) {
    std::string const directory = "/data/m/";
    auto const path = catalogue::storedPath(directory, input);
    if (!path.empty()) {
        auto const inside = fs::path(path).lexically_normal().lexically_relative("/data/m");
        require(
            path.find('\0') == std::string::npos && path.starts_with(directory), "a path begins with its directory");
        require(!inside.empty() && inside != "." && *inside.begin() != "..", "a path stays inside its directory");
        fs::path const parts = path;
        require(std::find(parts.begin(), parts.end(), "..") == parts.end(), "a path goes up nowhere");
    }
    readCubeStem(input);
    readRouteName(input);
    routestorage::splitFieldNames(input);
    TRkBaseCubes::cnvrt40TToShort(input.c_str(), 0, static_cast<int>(input.size()));
}

TRkMatrix sampleMatrix() {
    auto matrix = TRkMatrix::inMemory(7, 7);
    for (int row = 0; row < 7; ++row)
        for (int column = 0; column < 7; ++column) matrix.RowAt(row, 0)[column] = static_cast<float>(10 * row + column);
    matrix.SetZones({1, 2, 3, 5, 8, 13, 21});
    return matrix;
}

std::vector<std::string> matrixFiles() {
    std::vector<std::string> files;
    for (auto const storage : {Storage::plain, Storage::deflate}) {
        auto const path = pathOf("seed.omx");
        setMatrixStorage(fs::path(path).parent_path().string(), {storage, Durability::process});
        OmxFile::write(path, "trips", sampleMatrix());
        files.push_back(test::readFile(path));
    }
    return files;
}

// Each as the tool imports it.
void readOmx(std::string const& input) {
    try {
        auto const file = OmxFile::open(fileOf("input.omx", input));
        file.lookups();
        for (auto const& table : file.tables()) {
            file.isIntact(table);
            auto const matrix = file.read(table);
            require(matrix.IsValid(), "a table that is read is a matrix");
        }
    } catch (TRkMatrixException const& error) {
        requireReason(error.what());
    }
}

// As an entry's file is opened, by its index where it has one.
void readMatrix(std::string const& input) {
    TRkMatrix const matrix(fileOf("input.odm", input).c_str(), 1, "", true, mkDefault, lsRead, 0);
    if (!matrix.IsValid()) return requireReason(matrix.Reason());
    try {
        std::vector<float> cells;
        for (int row = 0; row < matrix.Rows(); ++row)
            cells.assign(matrix.RowAt(row, 0), matrix.RowAt(row, 0) + matrix.Columns());
        require(matrix.Zones().empty() || matrix.Zones().size() == static_cast<std::size_t>(matrix.Rows()),
            "each row has a zone number, or none has");
    } catch (TRkMatrixException const& error) {
        requireReason(error.what());
    }
}

using namespace VL::Interface;

template <typename Object>
std::unique_ptr<Object, void (*)(Object*)> storedObject(std::string const& path) {
    return {new Object(path.c_str()), [](Object* object) { object->release(); }};
}

std::vector<std::string> routeFiles() {
    auto const path = pathOf("seed.FDB");
    auto const set = storedObject<routes::RouteSet>(path);
    set->open(romCreate, nullptr);
    std::uint32_t const links[] = {10, 20, 30};
    for (std::int32_t destination = 2; destination < 6; ++destination) set->addRoute({1, destination, 0.5f, links, 3});
    set->commit();
    return {test::readFile(path)};
}

void readRouteFile(std::string const& input) {
    auto const set = storedObject<routes::RouteSet>(fileOf("input.FDB", input));
    set->open(romRead, nullptr);
    std::int64_t const count = set->countRoutes();
    for (std::int64_t number = 0; number < count; ++number) {
        Route route{};
        require(set->getRoute(number, &route) == rrDone, "each route of a file can be read");
        RouteNumbers found{};
        require(set->findRoutesOfPair(route.origin, route.destination, &found) == rrDone && found.count > 0,
            "a route is found by its OD pair");
    }
}

std::vector<std::string> routeDataFiles() {
    auto const path = pathOf("seed.FDB");
    auto const set = storedObject<routes::DataSet>(path);
    set->open(romCreate, nullptr);
    float const lengths[] = {1.5f, 2.5f};
    std::int16_t const lanes[] = {1, 2};
    set->addField({"length", rftFloat, lengths, 2});
    set->addField({"lanes", rftSmallint, lanes, 2});
    set->commit();
    return {test::readFile(path)};
}

void readRouteDataFile(std::string const& input) {
    auto const set = storedObject<routes::DataSet>(fileOf("input.FDB", input));
    set->open(romRead, nullptr);
    std::int64_t const count = set->countFields();
    for (std::int64_t number = 0; number < count; ++number) {
        RouteField field{};
        require(set->getField(number, &field) == rrDone, "each field of a file is described");
    }
}

constexpr Target all[] = {
    {"project-file", readProjectFile, noSeeds},
    {"key", readKey, noSeeds},
    {"stored-name", readStoredName, noSeeds},
    {"omx", readOmx, matrixFiles},
    {"matrix", readMatrix, matrixFiles},
    {"route-set", readRouteFile, routeFiles},
    {"route-data", readRouteDataFile, routeDataFiles},
};

}

std::span<Target const> targets() {
    return all;
}

}
