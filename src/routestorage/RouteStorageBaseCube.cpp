#include <cubes/routestorage/RouteStorageBaseCube.h>

#include <cubes/routestorage/Reference.h>
#include <cubes/routestorage/RouteStorageDataCube.h>
#include <cubes/routestorage/RouteStorageWrappers.h>

#include "catalogue/EntryTable.h"
#include "catalogue/ProjectCall.h"
#include "host/matrix/Failure.h"
#include "host/matrix/StagedFile.h"
#include "host/platform/Files.h"
#include "routestorage/RouteNames.h"

#include <initializer_list>
#include <memory>
#include <tuple>

namespace platform = cubes::platform;

using cubes::Reference;
using cubes::catalogue::ProjectCall;
using cubes::routestorage::routeDataDirectory;
using cubes::routestorage::routeSetDirectory;
using VL::Interface::RouteStorageInterface;
using VL::Interface::TVlRouteStorageDataSet;
using VL::Interface::TVlRouteStorageRouteSet;
using Key = cubes::catalogue::ResultKey;

namespace {

constexpr RkMatrixKind matrixKind = mkSelectedLink;

/// The differences between the cubes of route sets and of route data.
struct RouteKind {
    /// Relative to the matrix directory.
    char const* directory;
    /// Lets the provider create an empty file for the entry.
    void (*createFile)(std::string const& file, Key const& key);
    /// Gives the record the storage of the entry's file; none when the provider creates none.
    void (*attachStorage)(RouteStorageCubeData& record, std::string const& file, Key const& key);
};

void assignKey(RouteStorageInterface& storage, Key const& key) {
    storage.setCubeType(key[0]);
    storage.setKey(key[1], key[2], key[3], key[4], key[5], key[6]);
}

template <typename Wrapper>
void createFile(std::string const& file, Key const& key) {
    Wrapper wrapper(file.c_str());
    if (auto* const storage = wrapper.getInterface()) assignKey(*storage, key);
    wrapper.open(VL::Interface::romCreate, nullptr);
}

template <typename Wrapper>
void attachStorage(RouteStorageCubeData& record, std::string const& file, Key const& key) {
    Wrapper const wrapper(file.c_str());
    auto* const storage = wrapper.getInterface();
    if (!storage) return;
    assignKey(*storage, key);
    // The wrapper releases this reference; the record adds its own.
    storage->addRef();
    record.setRouteStorage(storage);
}

constexpr RouteKind routeSets = {
    routeSetDirectory, createFile<TVlRouteStorageRouteSet>, attachStorage<TVlRouteStorageRouteSet>};
constexpr RouteKind routeData = {
    routeDataDirectory, createFile<TVlRouteStorageDataSet>, attachStorage<TVlRouteStorageDataSet>};

RouteKind const& kindOf(RkCubeTypes cubeType) {
    return cubeType == ctRouteSet ? routeSets : routeData;
}

Reference<RouteStorageInterface> storageOf(CubeDataInterface* data) {
    auto const* const record = dynamic_cast<RouteStorageCubeData const*>(data);
    return Reference<RouteStorageInterface>(record ? record->getRouteStorage() : nullptr);
}

// Without a source file the target is left unchanged.
void copyIfPresent(std::string const& source, std::string const& target) {
    if (target.empty() || !platform::isRegularFile(source) || platform::overlap(source, target)) return;
    std::string const action = "cannot copy route file " + source + " to";
    cubes::matrix::describingFailure(action, target, [&] {
        cubes::matrix::StagedFile staged(target, action);
        staged.copy(source);
        staged.publish();
    });
}

void storeCopy(RouteStorageInterface& storage, std::string const& file, Key const& key) {
    char const* const name = storage.getFileName();
    std::string const source = name ? name : "";
    assignKey(storage, key);
    copyIfPresent(source, file);
}

Reference<RouteStorageCubeData> recordOf(Key const& key) {
    Reference<RouteStorageCubeData> record(new RouteStorageCubeData);
    record->setPurpose(key[1]);
    record->setMode(key[2]);
    record->setTime(key[3]);
    record->setUser(key[4]);
    record->setResult(key[5]);
    record->setIteration(key[6]);
    return record;
}

struct Change {
    char const* column;
    long number;
};

// Writes the numbers to the row; false when there is no such row.
bool changeRow(RouteStorageBaseCube const& cube, Key const& k, std::initializer_list<Change> changes) {
    auto table = cube.Open();
    bool const found = cube.LookUp(table, k[0], k[1], k[2], k[3], k[4], k[5], k[6], false);
    if (found) {
        table->Edit();
        for (auto const& [column, number] : changes) table->FieldByName(column)->SetAsInteger(number);
        table->Post();
    }
    cube.Close(table);
    return found;
}

}

RouteStorageBaseCube::RouteStorageBaseCube(TRkGlobalSettings* settings, char const* directory, char const* extension,
    RkCubeTypes cubeType, RkMatrixType matrixType)
    : TRkVarCubes(settings, directory, extension, cubeType, matrixType, matrixKind, true) {}

RouteStorageBaseCube::RouteStorageBaseCube(RouteStorageBaseCube const&) = default;
RouteStorageBaseCube& RouteStorageBaseCube::operator=(RouteStorageBaseCube const&) = default;
RouteStorageBaseCube::~RouteStorageBaseCube() = default;

char const* RouteStorageBaseCube::Name() const {
    return "routestoragecube";
}

bool RouteStorageBaseCube::Set(short, short, short, short, short, short, TRkMatrix const&, RkLockState, bool) {
    return false;
}

TRkMatrix* RouteStorageBaseCube::Get(short, short, short, short, short, short, RkLockState, bool) const {
    return nullptr;
}

double RouteStorageBaseCube::Get(short, short, short, short, short, short, int, int, RkLockState, bool) const {
    return -1.0;
}

TRkMatrixHeader const* RouteStorageBaseCube::GetHeader(short, short, short, short, short, short, bool) const {
    return nullptr;
}

bool RouteStorageBaseCube::SaveMatrix(TRkMatrix const&, short, short, short, short, short, short, RkLockState, bool) {
    return false;
}

bool RouteStorageBaseCube::Add(CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t,
    short u, short r, short i, short parentcubenr, short pp, short pm, short pt, short pu, short pr, short pi,
    bool zeroBased) {
    ProjectCall const call(settings_);
    if (!TRkVarCubes::Add(table, cubenr, p, m, t, u, r, i, parentcubenr, pp, pm, pt, pu, pr, pi, zeroBased))
        return false;
    TRkFString::Directory(MatrixDirectory().str() + kindOf(cubeType_).directory).MkDir();
    return true;
}

TRkString RouteStorageBaseCube::createFilename(short p, short m, short t, short u, short r, short i) const {
    return cubes::routestorage::routeFileStem(kindOf(cubeType_).directory, {p, m, t, u, r, i});
}

bool RouteStorageBaseCube::SetData(CubeDataInterface* data, short p, short m, short t, short u, short r, short i,
    short parentcubenr, short pp, short pm, short pt, short pu, short pr, short pi, bool zeroBased) {
    ProjectCall const call(settings_);
    if (Check(p, m, t, u, r, i, zeroBased)) Clear(p, m, t, u, r, i, zeroBased);
    Add(p, m, t, u, r, i, parentcubenr, pp, pm, pt, pu, pr, pi, zeroBased);
    auto const key = cubes::catalogue::storedKey(Key{CubeNumber(), p, m, t, u, r, i}, zeroBased);
    if (!key) return true;
    auto const& [cube, kp, km, kt, ku, kr, ki] = *key;
    std::string const file = FileName(kp, km, kt, ku, kr, ki, false).str();
    if (auto const storage = storageOf(data))
        storeCopy(*storage, file, *key);
    else if (!file.empty())
        kindOf(cubeType_).createFile(file, *key);
    return true;
}

RouteStorageCubeData* RouteStorageBaseCube::GetData(
    short p, short m, short t, short u, short r, short i, bool zeroBased) const {
    ProjectCall const call(settings_);
    auto const key = cubes::catalogue::storedKey(Key{CubeNumber(), p, m, t, u, r, i}, zeroBased);
    if (!key) return nullptr;
    auto const& [cube, kp, km, kt, ku, kr, ki] = *key;
    if (!isCorrect(kp, km, kt, ku, kr, ki)) return nullptr;
    std::string const file = FileName(kp, km, kt, ku, kr, ki, false).str();
    if (!platform::exists(file)) return nullptr;
    auto record = recordOf(*key);
    kindOf(cubeType_).attachStorage(*record, file, *key);
    return record.release();
}

std::unique_ptr<TRkVarCubes::TKey> RouteStorageBaseCube::FreeEntry(
    short p, short m, short t, short u, short r, short i) const {
    if (!isCorrect(p, m, t, u, r, i)) return nullptr;
    auto table = Open();
    if (!LookUp(table, CubeNumber(), p, m, t, u, r, i, false)) return nullptr;
    return ReadEntry(cubes::catalogue::EntryTable(*table, std::tuple_size_v<Key>));
}

void RouteStorageBaseCube::GetParentPMTURI(short p, short m, short t, short u, short r, short i, short& pp, short& pm,
    short& pt, short& pu, short& pr, short& pi) const {
    ProjectCall const call(settings_);
    TRkVarCubes::GetParentPMTURI(p, m, t, u, r, i, pp, pm, pt, pu, pr, pi);
    auto const entry = FreeEntry(p, m, t, u, r, i);
    if (!entry) return;
    pp = entry->parentpurpose;
    pm = entry->parentmode;
    pt = entry->parenttime;
    pu = entry->parentuser;
    pr = entry->parentresult;
    pi = entry->parentiteration;
}

short RouteStorageBaseCube::GetParentCubenr(short p, short m, short t, short u, short r, short i) const {
    ProjectCall const call(settings_);
    auto const entry = FreeEntry(p, m, t, u, r, i);
    return entry ? entry->parentcubenr : TRkVarCubes::GetParentCubenr(p, m, t, u, r, i);
}

bool RouteStorageBaseCube::SetParentPMTURI(
    short p, short m, short t, short u, short r, short i, short pp, short pm, short pt, short pu, short pr, short pi) {
    ProjectCall const call(settings_);
    return changeRow(*this, {CubeNumber(), p, m, t, u, r, i},
        {{"parentpurpose", pp}, {"parentmode", pm}, {"parenttime", pt}, {"parentuser", pu}, {"parentresult", pr},
            {"parentiteration", pi}});
}

bool RouteStorageBaseCube::SetParentCubenr(short p, short m, short t, short u, short r, short i, long cubenr) {
    ProjectCall const call(settings_);
    return changeRow(*this, {CubeNumber(), p, m, t, u, r, i}, {{"parentcubenr", cubenr}});
}

bool RouteStorageBaseCube::GetChildsAll(
    short p, short m, short t, short u, short r, short i, TRkAutoListT<TKey>& list) const {
    ProjectCall const call(settings_);
    GetPmturis(CubeNumber(), p, m, t, u, r, i, list);
    for (int child = list.Count() - 1; child >= 0; --child)
        if (list[child]->cubenr != ctRouteData) list.Delete(child);
    return true;
}

void RouteStorageBaseCube::DeleteChildren(
    RouteStorageDataCube& dataCube, short p, short m, short t, short u, short r, short i) const {
    ProjectCall const call(settings_);
    TRkAutoListT<TKey> children;
    GetChilds(p, m, t, u, r, i, children);
    for (int index = 0; index < children.Count(); ++index) {
        TKey const& child = *children[index];
        dataCube.Delete(child.purpose, child.mode, child.time, child.user, child.result, child.iteration, false);
    }
}
