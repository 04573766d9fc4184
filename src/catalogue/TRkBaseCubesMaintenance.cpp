#include <cubes/catalogue/TRkBaseCubes.h>

#include "host/database/ExclusiveAccess.h"

#include <algorithm>
#include <limits>
#include <optional>

namespace {

// The number a new cube takes; nothing when the numbers are used up.
std::optional<long> nextNumber(Rktable::TRkTableProxy& table) {
    long const greatest = std::max(0L, table.Greatest("cubenr").value_or(0));
    if (greatest >= std::numeric_limits<short>::max()) return std::nullopt;
    return greatest + 1;
}

void appendCube(Rktable::TRkTableProxy& table, long cubenr, char const* name) {
    table.Append();
    table.FieldByName("cubenr")->SetAsInteger(cubenr);
    table.FieldByName("name")->SetAsString(name);
    table.Post();
}

// Removes the row the cursor was placed on, if it was.
bool deleteIf(bool found, Rktable::TRkTableProxy& table) {
    if (found) table.Delete();
    return found;
}

}

bool TRkBaseCubes::Add(char const* name) const {
    if (!name) return false;
    auto table = Open();
    if (!table) return false;
    bool added = LookUp(table, name);
    if (!added) {
        // Others may register cubes at the same moment: look again where nobody else can write.
        cubes::database::ExclusiveAccess access(*table);
        added = LookUp(table, name);
        std::optional<long> const number = added ? std::nullopt : nextNumber(*table);
        if (number) {
            appendCube(*table, *number, name);
            added = true;
        }
        access.commit();
    }
    Close(table);
    return added;
}

bool TRkBaseCubes::Check(char const* name) const {
    auto table = Open();
    bool const found = LookUp(table, name);
    Close(table);
    return found;
}

bool TRkBaseCubes::Check(short cubenr) const {
    auto table = Open();
    bool const found = LookUp(table, cubenr);
    Close(table);
    return found;
}

bool TRkBaseCubes::Exist(char const* name) const {
    return Check(name);
}

bool TRkBaseCubes::Clear(char const* name) const {
    auto table = Open();
    if (!table) return false;
    bool const removed = deleteIf(LookUp(table, name), *table);
    Close(table);
    return removed;
}

bool TRkBaseCubes::Clear(short cubenr) const {
    auto table = Open();
    if (!table) return false;
    bool const removed = deleteIf(LookUp(table, cubenr), *table);
    Close(table);
    return removed;
}

bool TRkBaseCubes::Delete(char const* name) {
    return Clear(name);
}

bool TRkBaseCubes::Remove(char const* name) {
    return Clear(name);
}

bool TRkBaseCubes::Get(TRkAutoListT<TKey>& list) const {
    list.Clear();
    auto table = Open();
    if (!table) return false;
    auto* const cubenr = table->FieldByName("cubenr");
    auto* const name = table->FieldByName("name");
    for (; !table->GetEof(); table->Next())
        list.Add(new TKey(static_cast<short>(cubenr->AsInteger()), name->AsString().c_str()));
    Close(table);
    return true;
}
