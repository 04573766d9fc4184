// Storing an entry's routes, and fetching them.

#include <cubes/routestorage/RouteStorageBaseCube.h>

#include <cubes/core/TRkCubesException.h>
#include <cubes/routestorage/Reference.h>
#include <cubes/routestorage/RouteStorageCubeData.h>

#include "catalogue/EntryTable.h"
#include "host/platform/Files.h"
#include "routestorage/RouteKind.h"

#include <stdexcept>

using cubes::Reference;
using cubes::routestorage::kindOf;
using Key = cubes::catalogue::ResultKey;
using VL::Interface::RouteStorageInterface;

namespace {

Reference<RouteStorageInterface> storageOf(CubeDataInterface* data) {
    auto const* const record = dynamic_cast<RouteStorageCubeData const*>(data);
    return Reference<RouteStorageInterface>(record ? record->getRouteStorage() : nullptr);
}

// A source that is not there leaves the target as it is.
void copyIfThere(std::string const& source, std::string const& target) {
    if (target.empty() || !cubes::platform::isRegularFile(source)) return;
    if (cubes::platform::overlap(source, target)) return;
    try {
        cubes::platform::replaceByCopy(source, target);
    } catch (std::runtime_error const& error) {
        throw TRkCubesException(("cannot copy " + source + " to the entry's file: " + error.what()).c_str(), 0);
    }
}

void storeCopy(RouteStorageInterface& storage, std::string const& file, Key const& key) {
    char const* const name = storage.getFileName();
    std::string const source = name ? name : "";
    cubes::routestorage::assign(storage, key);
    copyIfThere(source, file);
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

}

bool RouteStorageBaseCube::SetData(CubeDataInterface* data, short p, short m, short t, short u, short r, short i,
    short parentcubenr, short pp, short pm, short pt, short pu, short pr, short pi, bool zeroBased) {
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

CubeDataInterface* RouteStorageBaseCube::GetData(
    short p, short m, short t, short u, short r, short i, bool zeroBased) const {
    auto const key = cubes::catalogue::storedKey(Key{CubeNumber(), p, m, t, u, r, i}, zeroBased);
    if (!key) return nullptr;
    auto const& [cube, kp, km, kt, ku, kr, ki] = *key;
    if (!isCorrect(kp, km, kt, ku, kr, ki)) return nullptr;
    std::string const file = FileName(kp, km, kt, ku, kr, ki, false).str();
    if (!cubes::platform::exists(file)) return nullptr;
    auto record = recordOf(*key);
    kindOf(cubeType_).attachStorage(*record, file, *key);
    return record.release();
}
