// Parents and children of entries.

#include <cubes/routestorage/RouteStorageBaseCube.h>
#include <cubes/routestorage/RouteStorageDataCube.h>

#include "catalogue/EntryTable.h"

#include <initializer_list>
#include <memory>

using Key = cubes::catalogue::ResultKey;

namespace {

struct Change {
    char const* column;
    long number;
};

// Writes the numbers into the row; false when there is no such row.
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

// The entry's row as lists give it; null for an entry that is missing or in use.
std::unique_ptr<TRkVarCubes::TKey> RouteStorageBaseCube::FreeEntry(
    short p, short m, short t, short u, short r, short i) const {
    if (!isCorrect(p, m, t, u, r, i)) return nullptr;
    auto table = Open();
    if (!LookUp(table, CubeNumber(), p, m, t, u, r, i, false)) return nullptr;
    return ReadEntry(cubes::catalogue::EntryTable(*table, std::tuple_size_v<Key>));
}

void RouteStorageBaseCube::GetParentPMTURI(short p, short m, short t, short u, short r, short i, short& pp, short& pm,
    short& pt, short& pu, short& pr, short& pi) const {
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
    auto const entry = FreeEntry(p, m, t, u, r, i);
    return entry ? entry->parentcubenr : TRkVarCubes::GetParentCubenr(p, m, t, u, r, i);
}

bool RouteStorageBaseCube::SetParentPMTURI(
    short p, short m, short t, short u, short r, short i, short pp, short pm, short pt, short pu, short pr, short pi) {
    return changeRow(*this, {CubeNumber(), p, m, t, u, r, i},
        {{"parentpurpose", pp}, {"parentmode", pm}, {"parenttime", pt}, {"parentuser", pu}, {"parentresult", pr},
            {"parentiteration", pi}});
}

bool RouteStorageBaseCube::SetParentCubenr(short p, short m, short t, short u, short r, short i, long cubenr) {
    return changeRow(*this, {CubeNumber(), p, m, t, u, r, i}, {{"parentcubenr", cubenr}});
}

bool RouteStorageBaseCube::GetChildsAll(
    short p, short m, short t, short u, short r, short i, TRkAutoListT<TKey>& list) const {
    GetPmturis(CubeNumber(), p, m, t, u, r, i, list);
    for (int child = list.Count() - 1; child >= 0; --child)
        if (list[child]->cubenr != ctRouteData) list.Delete(child);
    return true;
}

void RouteStorageBaseCube::DeleteChildren(
    RouteStorageDataCube& dataCube, short p, short m, short t, short u, short r, short i) const {
    TRkAutoListT<TKey> children;
    GetChilds(p, m, t, u, r, i, children);
    for (int index = 0; index < children.Count(); ++index) {
        TKey const& child = *children[index];
        dataCube.Delete(child.purpose, child.mode, child.time, child.user, child.result, child.iteration, false);
    }
}
