#include <cubes/matcubes/TRkMatCubes.h>

#include <cubes/database/TRkDBDataDictionary.h>
#include <cubes/project/TRkGlobalSettings.h>

#include <array>

#include "catalogue/EntryKey.h"
#include "catalogue/EntryTable.h"
#include "catalogue/MissingTable.h"

namespace {

constexpr char const* matrixCubeSchema = "public";

constexpr char const* keyList = "cubenr;purpose;mode;time;user";
constexpr std::array keyColumns = {"cubenr", "purpose", "mode", "time", "user"};

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
    auto table = cubes::buildEntryTable(*dictionary, getMatrixSchema(), cubeAliasName());
    if (!table) return {};
    table->SetConnection(GetConnection());
    table->Open();
    return table;
}

bool TRkMatCubes::LookUp(
    CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t, short u, bool zeroBased) const {
    if (!table) return false;
    auto const key = cubes::storedKey(std::array{cubenr, p, m, t, u}, zeroBased);
    return key && cubes::falseWithoutTable([&] { return table->Locate(keyList, cubes::valuesOf(*key)); });
}

bool TRkMatCubes::Add(
    CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t, short u, bool zeroBased) const {
    if (!table) return false;
    if (LookUp(table, cubenr, p, m, t, u, zeroBased)) return true;
    auto const key = cubes::storedKey(std::array{cubenr, p, m, t, u}, zeroBased);
    if (!key) return false;
    // Made before the row is begun: a number that the name cannot hold leaves no half-made row.
    TRkString const name = cubes::fileStem(*key) + extension_;
    auto const append = [&] {
        table->Append();
        for (std::size_t i = 0; i < key->size(); ++i) table->FieldByName(keyColumns[i])->SetAsInteger((*key)[i]);
        if (auto* const filename = table->FindField("filename")) filename->SetAsString(name.c_str());
        if (auto* const counter = table->FindField(cubes::usageColumn)) counter->SetAsInteger(0);
    };
    cubes::addUnlessTaken(*table, append, [&] { return LookUp(table, cubenr, p, m, t, u, zeroBased); });
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
    return cubes::fileOfRow(*table, matrixDirectory_.str());
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
