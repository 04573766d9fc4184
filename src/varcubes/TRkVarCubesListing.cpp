#include <cubes/varcubes/TRkVarCubes.h>

#include "catalogue/CubeNames.h"
#include "catalogue/MissingTable.h"
#include "varcubes/EntryRow.h"

using cubes::varcubes::EntryRow;

namespace {

using Keys = TRkAutoListT<TRkVarCubes::TKey>;

// Throws TRkDatabaseException for a table that lacks a column of the key.
EntryRow requiredRow(Rktable::TRkTableProxy& table) {
    for (char const* const column : cubes::varcubes::keyColumns) table.FieldByName(column);
    return EntryRow(table);
}

// Rows come in the order of their keys, save from a table that was defined elsewhere.
void sortIfNeeded(Keys& list) {
    for (int i = 1; i < list.Count(); ++i)
        if (TRkVarCubes::TKeySortCompare(list[i - 1], list[i]) > 0) return list.Sort(TRkVarCubes::TKeySortCompare);
}

void appendEntries(Rktable::TRkTableProxy& table, EntryRow const& row, Keys& list) {
    for (; !table.GetEof(); table.Next()) {
        auto key = row.read();
        key->filename = row.filename();
        list.Add(key.release());
    }
    sortIfNeeded(list);
}

void appendFreeEntries(Rktable::TRkTableProxy& table, EntryRow const& row, Keys& list) {
    for (; !table.GetEof(); table.Next())
        if (!row.isUsed()) list.Add(row.read().release());
    sortIfNeeded(list);
}

// Reads an open table into the list; false when the table is gone.
template <typename Read>
bool readFrom(CountedPtr<Rktable::TRkTableProxy> const& table, Read const& read) {
    return table && cubes::falseWithoutTable([&] {
        read(*table, requiredRow(*table));
        return true;
    });
}

// Whether the last key's cube is known.
bool nameCubes(CountedPtr<Rktable::TRkTableProxy> const& catalogue, Keys& list) {
    cubes::CubeNames names(catalogue);
    bool isKnown = true;
    for (int i = 0; i < list.Count(); ++i) {
        TRkString const* const name = names.find(list[i]->cubenr);
        isKnown = name != nullptr;
        list[i]->filename = isKnown ? *name : TRkString();
    }
    return isKnown;
}

}

bool TRkVarCubes::Get(TRkAutoListT<TRkBaseCubes::TKey>& list) const {
    return TRkBaseCubes::Get(list);
}

bool TRkVarCubes::Get(TRkAutoListT<TKey>& list) const {
    list.Clear();
    auto table = Open();
    bool const isThere = readFrom(table, [&](Rktable::TRkTableProxy& rows, EntryRow const& row) {
        rows.SetFilterSQL(row.isOfCube(CubeNumber()));
        appendEntries(rows, row, list);
    });
    Close(table);
    return isThere;
}

bool TRkVarCubes::GetAllCubes(TRkAutoListT<TKey>& list) const {
    list.Clear();
    auto table = Open();
    bool const isThere =
        readFrom(table, [&](Rktable::TRkTableProxy& rows, EntryRow const& row) { appendFreeEntries(rows, row, list); });
    Close(table);
    if (!isThere) return false;
    auto catalogue = TRkBaseCubes::Open();
    bool const isKnown = nameCubes(catalogue, list);
    Close(catalogue);
    return isKnown;
}

// The children are what GetAllCubes lists, less all entries of another parent: the database leaves
// those out, which reads a few rows instead of all.
void TRkVarCubes::GetPmturis(
    short parentcubenr, short pp, short pm, short pt, short pu, short pr, short pi, TRkAutoListT<TKey>& list) const {
    Keys children;
    auto table = Open();
    readFrom(table, [&](Rktable::TRkTableProxy& rows, EntryRow const& row) {
        rows.SetFilterSQL(row.isChildOf({parentcubenr, pp, pm, pt, pu, pr, pi}));
        appendFreeEntries(rows, row, children);
    });
    Close(table);
    auto catalogue = TRkBaseCubes::Open();
    nameCubes(catalogue, children);
    Close(catalogue);
    for (int i = 0; i < children.Count(); ++i) list.Add(new TKey(*children[i]));
}
