#include <cubes/varcubes/TRkVarCubes.h>

#include <cubes/database/TRkDBDataDictionary.h>
#include <cubes/project/TRkGlobalSettings.h>

#include <array>
#include <exception>

#include "catalogue/EntryKey.h"
#include "catalogue/EntryTable.h"
#include "catalogue/MissingTable.h"
#include "host/platform/Paths.h"
#include "host/project/ProjectSchema.h"
#include "varcubes/EntryRow.h"

using cubes::varcubes::EntryRow;

namespace {

constexpr char const* keyList = "cubenr;purpose;mode;time;user;result;iteration";

// The text as it is, made fit to be followed by a file name.
TRkFString withTrailingDelimiter(std::string text) {
    if (!text.empty() && text.back() != cubes::platform::pathDelimiter()) text += cubes::platform::pathDelimiter();
    return text;
}

}

char const* const TRkVarCubes::FAliasName = "cube5data1";

TRkVarCubes::TRkVarCubes(TRkGlobalSettings* settings, char const* matrixDirectory, char const* extension,
    RkCubeTypes cubeType, RkMatrixType matrixType, RkMatrixKind matrixKind, bool flag)
    : TRkBaseCubes(settings, matrixDirectory, extension, cubeType, matrixType, matrixKind, flag) {
    if (matrixDirectory_.IsEmpty())
        TRkVarCubes::FindMatrixDirectory();
    else
        matrixDirectory_ = withTrailingDelimiter(matrixDirectory_.str());
    TRkVarCubes::FindMatrixSchema();
}

TRkVarCubes::TRkVarCubes(TRkGlobalSettings* settings, char const* extension, RkCubeTypes cubeType,
    RkMatrixType matrixType, RkMatrixKind matrixKind, bool flag)
    : TRkVarCubes(settings, nullptr, extension, cubeType, matrixType, matrixKind, flag) {}

TRkVarCubes::TRkVarCubes(TRkVarCubes const&) = default;
TRkVarCubes& TRkVarCubes::operator=(TRkVarCubes const&) = default;
TRkVarCubes::~TRkVarCubes() = default;

char const* TRkVarCubes::cubeAliasName() const {
    return FAliasName;
}

TRkFString TRkVarCubes::MatrixDirectory() const {
    return matrixDirectory_;
}

void TRkVarCubes::MatrixDirectory(TRkFString const& directory) {
    matrixDirectory_ = withTrailingDelimiter(directory.str());
}

bool TRkVarCubes::FindMatrixDirectory() {
    if (!settings_) return false;
    matrixDirectory_ = withTrailingDelimiter(settings_->WorkingDirectory().str());
    return true;
}

bool TRkVarCubes::FindMatrixSchema() {
    if (!settings_) return false;
    try {
        setMatrixSchema(AnsiString(cubes::project::projectSchema(*settings_)));
        return true;
    } catch (std::exception const&) {
        return false;
    }
}

CountedPtr<Rktable::TRkTableProxy> TRkVarCubes::Open() const {
    TRkDBDataDictionary* const dictionary = DataDictionary();
    if (!dictionary || !GetConnection()) return {};
    try {
        AnsiString const& known = getMatrixSchema();
        AnsiString const schema = known.IsEmpty() ? AnsiString(cubes::project::projectSchema(*settings_)) : known;
        auto table = cubes::buildEntryTable(*dictionary, schema, FAliasName);
        if (!table) return {};
        table->SetConnection(GetConnection());
        table->Open();
        return table;
    } catch (std::exception const&) {
        return {};
    }
}

bool TRkVarCubes::LookUp(CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t, short u,
    short r, short i, bool zeroBased) const {
    if (!table) return false;
    auto const key = cubes::storedKey(std::array{cubenr, p, m, t, u, r, i}, zeroBased);
    return key && cubes::falseWithoutTable([&] { return table->Locate(keyList, cubes::valuesOf(*key)); });
}

bool TRkVarCubes::Add(CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t, short u,
    short r, short i, short parentcubenr, short pp, short pm, short pt, short pu, short pr, short pi, bool zeroBased) {
    if (!table) return false;
    EntryRow row(*table);
    if (!row.hasKey()) return true;
    cubes::varcubes::Key const parent = {parentcubenr, pp, pm, pt, pu, pr, pi};
    auto const changeParentIfThere = [&] {
        if (!LookUp(table, cubenr, p, m, t, u, r, i, zeroBased)) return false;
        table->Edit();
        row.changeParent(parent);
        // Others may have cleared the entry since: then it is not there.
        return cubes::postUnless(*table, &TRkDatabaseException::IsMissingRow);
    };
    if (changeParentIfThere()) return true;
    auto const key = cubes::storedKey(std::array{cubenr, p, m, t, u, r, i}, zeroBased);
    if (!key) return false;
    // Made before the row is begun: a number that the name cannot hold leaves no half-made row.
    auto const& [cube, kp, km, kt, ku, kr, ki] = *key;
    TRkString const name = createFilename(kp, km, kt, ku, kr, ki) + extension_;
    auto const append = [&] {
        table->Append();
        row.fill(*key, parent, name.str());
    };
    cubes::addUnlessTaken(*table, append, changeParentIfThere);
    return true;
}

bool TRkVarCubes::Add(short p, short m, short t, short u, short r, short i, short parentcubenr, short pp, short pm,
    short pt, short pu, short pr, short pi, bool zeroBased) {
    auto table = Open();
    bool const added = Add(table, CubeNumber(), p, m, t, u, r, i, parentcubenr, pp, pm, pt, pu, pr, pi, zeroBased);
    Close(table);
    return added;
}

TRkString TRkVarCubes::FileName(CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t,
    short u, short r, short i, bool zeroBased) const {
    if (!LookUp(table, cubenr, p, m, t, u, r, i, zeroBased)) return {};
    return cubes::fileOfRow(*table, MatrixDirectory().str());
}

TRkString TRkVarCubes::FileName(short p, short m, short t, short u, short r, short i, bool zeroBased) const {
    auto table = Open();
    TRkString const path = FileName(table, CubeNumber(), p, m, t, u, r, i, zeroBased);
    Close(table);
    return path;
}
