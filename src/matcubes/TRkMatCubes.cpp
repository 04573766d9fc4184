#include <cubes/matcubes/TRkMatCubes.h>

#include <cubes/database/TRkDBDataDictionary.h>
#include <cubes/database/TRkDatabaseException.h>
#include <cubes/project/TRkGlobalSettings.h>

#include "catalogue/MissingTable.h"
#include "catalogue/StoredName.h"
#include "matcubes/EntryKey.h"

#include <optional>

using cubes::matcubes::EntryKey;
using cubes::matcubes::storedKey;

namespace {

constexpr char const* matrixCubeSchema = "public";

void setNumber(Rktable::TRkTableProxy& table, char const* column, long number) {
    table.FieldByName(column)->SetAsInteger(number);
}

void setKey(Rktable::TRkTableProxy& table, EntryKey const& key) {
    setNumber(table, "cubenr", key.cubenr);
    setNumber(table, "purpose", key.purpose);
    setNumber(table, "mode", key.mode);
    setNumber(table, "time", key.time);
    setNumber(table, "user", key.user);
}

}

char const* const TRkMatCubes::FAliasName = "matcube";

TRkMatCubes::TRkMatCubes(TRkGlobalSettings* settings, char const* ext, bool flag)
    : TRkMatCubes(settings, nullptr, ext, flag) {}

TRkMatCubes::TRkMatCubes(TRkGlobalSettings* settings, char const* matrixDir, char const* ext, bool flag)
    : TRkBaseCubes(settings, matrixDir, ext, ctMatrix, mtMatrixCube, mkDefault, flag) {
    if (matrixDirectory_.IsEmpty())
        FindMatrixDirectory();
    else
        matrixDirectory_ = TRkFString::Directory(matrixDirectory_.str());
    FindMatrixSchema();
}

TRkMatCubes::TRkMatCubes(TRkMatCubes const&) = default;
TRkMatCubes& TRkMatCubes::operator=(TRkMatCubes const&) = default;
TRkMatCubes::~TRkMatCubes() = default;

char const* TRkMatCubes::cubeAliasName() const {
    return "cube4data1";
}

bool TRkMatCubes::FindMatrixDirectory() {
    if (settings_) matrixDirectory_ = TRkFString::Directory(settings_->MatrixDirectory().str());
    return true;
}

bool TRkMatCubes::FindMatrixSchema() {
    setMatrixSchema(matrixCubeSchema);
    return true;
}

CountedPtr<Rktable::TRkTableProxy> TRkMatCubes::Open() const {
    TRkDBDataDictionary* const dictionary = DataDictionary();
    if (!dictionary) return {};
    std::vector<CountedPtr<Rktable::TRkTableProxy>> tables;
    if (!dictionary->BuildDataTables(ObjectName, tables, getMatrixSchema())) return {};
    for (auto const& table : tables) {
        if (!table || table->GetAliasPropertyWrapper().AsString().ToLower() != cubeAliasName()) continue;
        table->SetConnection(GetConnection());
        table->Open();
        return table;
    }
    return {};
}

bool TRkMatCubes::LookUp(
    CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t, short u, bool zeroBased) const {
    if (!table) return false;
    std::optional<EntryKey> const key = storedKey(cubenr, p, m, t, u, zeroBased);
    if (!key) return false;
    return cubes::falseWithoutTable([&] { return table->Locate(cubes::matcubes::keyColumns, valuesOf(*key)); });
}

bool TRkMatCubes::Add(
    CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t, short u, bool zeroBased) const {
    if (!table) return false;
    if (LookUp(table, cubenr, p, m, t, u, zeroBased)) return true;
    std::optional<EntryKey> const key = storedKey(cubenr, p, m, t, u, zeroBased);
    if (!key) return false;
    // Made before the row is begun: a number that the name cannot hold leaves no half-made row.
    TRkString const name = MakeFilename(key->cubenr, key->purpose, key->mode, key->time, key->user) + extension_;
    table->Append();
    setKey(*table, *key);
    if (auto* const filename = table->FindField("filename")) filename->SetAsString(name.c_str());
    if (auto* const counter = table->FindField("usageCounter")) counter->SetAsInteger(0);
    try {
        table->Post();
    } catch (TRkDatabaseException const& error) {
        // An entry that another process added at the same moment is as good as ours.
        if (!error.IsDuplicateKey() || !LookUp(table, cubenr, p, m, t, u, zeroBased)) throw;
    }
    return true;
}

bool TRkMatCubes::Add(char const* cubeName, short p, short m, short t, short u, bool zeroBased) const {
    TRkBaseCubes::Add(cubeName);
    short const cubenr = CubeNameToNr(cubeName);
    auto table = Open();
    if (!table) return true;
    // 0 is no cube: nothing could be registered.
    bool const added = cubenr != 0 && Add(table, cubenr, p, m, t, u, zeroBased);
    Close(table);
    return added;
}

bool TRkMatCubes::Add(char const* cubeName) const {
    return TRkBaseCubes::Add(cubeName);
}

TRkString TRkMatCubes::FileName(
    CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t, short u, bool zeroBased) const {
    if (!LookUp(table, cubenr, p, m, t, u, zeroBased)) return {};
    auto* const filename = table->FindField("filename");
    if (!filename) return {};
    return cubes::storedPath(matrixDirectory_.str(), filename->AsString().str());
}

TRkString TRkMatCubes::FileName(short cubenr, short p, short m, short t, short u, bool zeroBased) const {
    auto table = Open();
    TRkString const path = FileName(table, cubenr, p, m, t, u, zeroBased);
    Close(table);
    return path;
}

TRkString TRkMatCubes::FileName(char const* cubeName, short p, short m, short t, short u, bool zeroBased) const {
    return FileName(CubeNameToNr(cubeName), p, m, t, u, zeroBased);
}
