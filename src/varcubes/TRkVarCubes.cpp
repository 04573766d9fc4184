#include <cubes/varcubes/TRkVarCubes.h>

#include <cubes/core/TRkCubesException.h>
#include <cubes/database/TRkDBDataDictionary.h>
#include <cubes/matrix/TRkMatrix.h>
#include <cubes/project/TRkGlobalSettings.h>

#include <array>
#include <exception>
#include <memory>
#include <span>

#include "catalogue/EntryFile.h"
#include "catalogue/EntryTable.h"
#include "catalogue/ProjectCall.h"
#include "catalogue/Register.h"
#include "catalogue/StoredName.h"
#include "host/platform/Paths.h"
#include "host/project/ProjectLink.h"

using cubes::catalogue::EntryTable;
using cubes::catalogue::falseWithoutTable;
using cubes::catalogue::noParent;
using cubes::catalogue::ProjectCall;
using cubes::catalogue::Register;
using cubes::catalogue::ResultKey;
using cubes::catalogue::storedKey;

namespace {

using Table = CountedPtr<Rktable::TRkTableProxy>;
using Keys = TRkAutoListT<TRkVarCubes::TKey>;

constexpr std::size_t keyParts = std::tuple_size_v<ResultKey>;
// File names do not contain the number of the cube.
constexpr std::size_t nameParts = keyParts - 1;

template <typename Meaning>
struct ForCube {
    RkCubeTypes cubeType;
    Meaning meaning;
};

// The kind of an entry's matrix when it is opened; in other cubes it keeps the kind it has.
constexpr ForCube<RkMatrixKind> openedKinds[] = {
    {ctStopToStop, mkStopToStop}, {ctPath, mkPath}, {ctTransit, mkTransit}, {ctScreenLine, mkScreenLine}};

// The type that a cube writes if it was constructed with the type of four-key matrices; others keep theirs.
constexpr ForCube<RkMatrixType> writtenTypes[] = {
    {ctStopToStop, mtStopToStop}, {ctScreenLine, mtScreenLine}, {ctSelectedLink, mtSelectedLink}, {ctCordon, mtCordon}};

template <typename Meaning, std::size_t Count>
Meaning meaningFor(RkCubeTypes cubeType, ForCube<Meaning> const (&table)[Count], Meaning fallback) {
    for (auto const& row : table)
        if (row.cubeType == cubeType) return row.meaning;
    return fallback;
}

bool writesUnderLock(RkCubeTypes cubeType) {
    return cubeType == ctScreenLine || cubeType == ctSelectedLink;
}

// The text with a delimiter at its end, so that a file name can follow.
TRkFString withTrailingDelimiter(std::string text) {
    if (!text.empty() && text.back() != cubes::platform::pathDelimiter()) text += cubes::platform::pathDelimiter();
    return text;
}

// A matrix that works in place on this very file need not be saved unless it was changed.
bool isSaved(TRkMatrix const& matrix, TRkFString const& target, RkLockState lock) {
    bool const inPlace = (lock & lsInPlace) && TRkFString(matrix.FileName()).IsSameFile(target);
    return inPlace && matrix.StateCode() != lsChanged;
}

void removeEntry(Rktable::TRkTableProxy& table, TRkFString const& directory) {
    cubes::catalogue::removeResult(EntryTable(table, keyParts).remove(directory.str()));
}

bool isLostConnection(TRkDatabaseException const& error) {
    return error.SqlState().starts_with("08");
}

int partOf(ResultKey const& numbers, int index) {
    if (index == -1) return keyParts;
    return index >= 0 && index < static_cast<int>(keyParts) ? numbers[static_cast<std::size_t>(index)] : -1;
}

ResultKey keyOf(TRkVarCubes::TKey const& entry) {
    return {entry.cubenr, entry.purpose, entry.mode, entry.time, entry.user, entry.result, entry.iteration};
}

ResultKey parentOf(TRkVarCubes::TKey const& entry) {
    return {entry.parentcubenr, entry.parentpurpose, entry.parentmode, entry.parenttime, entry.parentuser,
        entry.parentresult, entry.parentiteration};
}

bool readDecimalName(std::string const& text, std::array<int*, nameParts> const& numbers) {
    auto const pieces = TRkString(text).Split('-');
    if (pieces.size() != nameParts) return false;
    for (std::size_t part = 0; part < nameParts; ++part) *numbers[part] = pieces[part].ToInteger();
    return true;
}

// Rows come in the order of their keys, except from a table that another program created.
void sortIfNeeded(Keys& list) {
    for (int i = 1; i < list.Count(); ++i)
        if (TRkVarCubes::TKeySortCompare(list[i - 1], list[i]) > 0) return list.Sort(TRkVarCubes::TKeySortCompare);
}

// Sets the names of the keys' cubes; returns whether the last one is known.
bool nameCubes(Register cubes, Keys& list) {
    bool isKnown = true;
    for (int i = 0; i < list.Count(); ++i) {
        auto const name = cubes.name(list[i]->cubenr);
        isKnown = name.has_value();
        list[i]->filename = name.value_or(TRkString());
    }
    return isKnown;
}

// Puts the file of one entry at another entry's path; returns whether it succeeded.
using FileOperation = bool (*)(std::string const& source, std::string const& target);

// Copies or moves an entry, within a cube object or from another one.
struct Transfer {
    TRkVarCubes const& source;
    TRkVarCubes& target;
    // With the numbers of their cubes, as the caller passed them.
    ResultKey from;
    ResultKey to;
    bool failIfExists;
    bool zeroBased;

    bool copies() const { return isDone() || run(cubes::catalogue::copyResult); }
    bool moves() const {
        if (isDone()) return true;
        if (!run(cubes::catalogue::moveResult)) return false;
        auto table = source.Open();
        if (lookUp(source, table, from)) table->Delete();
        return true;
    }

private:
    // Whether both are the same entry.
    bool isDone() const {
        return from == to && (&source == &target || source.MatrixDirectory().IsSameFile(target.MatrixDirectory()));
    }
    bool lookUp(TRkVarCubes const& cube, Table const& table, ResultKey const& k) const {
        return cube.LookUp(table, k[0], k[1], k[2], k[3], k[4], k[5], k[6], zeroBased);
    }
    static std::string pathOf(TRkVarCubes const& cube, Rktable::TRkTableProxy& table) {
        return EntryTable(table, keyParts).path(cube.MatrixDirectory().str());
    }
    bool run(FileOperation place) const {
        auto targetTable = target.Open();
        auto const sourceTable = &source == &target ? targetTable : source.Open();
        if (!targetTable || !lookUp(source, sourceTable, from)) return false;
        // Read at once: looking up the target may move the same cursor.
        std::string const sourceFile = pathOf(source, *sourceTable);
        if (failIfExists && lookUp(target, targetTable, to)) throw TRkCubesException(TRkCubesException::ecCubeExists);
        // Only the look-up uses the flag: callers know the target under the key that they passed.
        return target.Add(
                   targetTable, to[0], to[1], to[2], to[3], to[4], to[5], to[6], 0, -1, -1, -1, -1, -1, -1, false) &&
               place(sourceFile, pathOf(target, *targetTable));
    }
};

}

TRkVarCubes::TKey::TKey(short cube, short p, short m, short t, short u, short r, short i, short parentCube, short pp,
    short pm, short pt, short pu, short pr, short pi, bool carried)
    : flag(carried), cubenr(cube), mode(m), purpose(p), time(t), user(u), result(r), iteration(i),
      parentcubenr(parentCube), parentmode(pm), parentpurpose(pp), parenttime(pt), parentuser(pu), parentresult(pr),
      parentiteration(pi) {}

int TRkVarCubes::TKey::operator()(int index) const {
    return partOf(keyOf(*this), index);
}

int TRkVarCubes::TKey::operator[](int index) const {
    return partOf(parentOf(*this), index);
}

TRkString TRkVarCubes::TKey::AsString() const {
    TRkString text;
    for (short const number : keyOf(*this)) text += TRkString(number) + ",";
    return text + filename;
}

int TRkVarCubes::TKeySortCompare(TKey* first, TKey* second) {
    auto const a = keyOf(*first);
    auto const b = keyOf(*second);
    if (a < b) return -1;
    return b < a ? 1 : 0;
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

Table TRkVarCubes::Open() const {
    ProjectCall const call(settings_);
    TRkDBDataDictionary* const dictionary = DataDictionary();
    if (!dictionary || !GetConnection()) return {};
    try {
        AnsiString const& known = getMatrixSchema();
        AnsiString const schema = known.IsEmpty() ? AnsiString(cubes::project::projectSchema(*settings_)) : known;
        auto table = cubes::catalogue::buildEntryTable(*dictionary, schema, FAliasName);
        if (!table) return {};
        table->SetConnection(GetConnection());
        table->Open();
        return table;
    } catch (TRkDatabaseException const& error) {
        if (isLostConnection(error)) throw;
        return {};
    } catch (std::exception const&) {
        return {};
    }
}

bool TRkVarCubes::LookUp(
    Table table, short cubenr, short p, short m, short t, short u, short r, short i, bool zeroBased) const {
    ProjectCall const call(settings_);
    if (!table) return false;
    auto const key = storedKey(ResultKey{cubenr, p, m, t, u, r, i}, zeroBased);
    return key && falseWithoutTable([&] { return EntryTable(*table, keyParts).locate(*key); });
}

bool TRkVarCubes::Add(Table table, short cubenr, short p, short m, short t, short u, short r, short i,
    short parentcubenr, short pp, short pm, short pt, short pu, short pr, short pi, bool zeroBased) {
    ProjectCall const call(settings_);
    if (!table) return false;
    EntryTable entries(*table, keyParts);
    if (!entries.hasKey()) return true;
    ResultKey const parent = {parentcubenr, pp, pm, pt, pu, pr, pi};
    // False also when another process has removed the entry since it was found.
    auto const changeParentIfThere = [&] {
        return LookUp(table, cubenr, p, m, t, u, r, i, zeroBased) && entries.changeParent(parent);
    };
    if (changeParentIfThere()) return true;
    auto const key = storedKey(ResultKey{cubenr, p, m, t, u, r, i}, zeroBased);
    if (!key) return false;
    // Formed before the row is begun: a number that the name cannot hold leaves no half-made row.
    auto const& [cube, kp, km, kt, ku, kr, ki] = *key;
    std::string const name = (createFilename(kp, km, kt, ku, kr, ki) + extension_).str();
    // Another process may add the entry at the same time.
    cubes::catalogue::addAmongOthers(*key, [&] { return entries.insert(*key, name, parent) || changeParentIfThere(); });
    return true;
}

bool TRkVarCubes::Add(short p, short m, short t, short u, short r, short i, short parentcubenr, short pp, short pm,
    short pt, short pu, short pr, short pi, bool zeroBased) {
    ProjectCall const call(settings_);
    auto table = Open();
    bool const added = Add(table, CubeNumber(), p, m, t, u, r, i, parentcubenr, pp, pm, pt, pu, pr, pi, zeroBased);
    Close(table);
    return added;
}

TRkString TRkVarCubes::FileName(
    Table table, short cubenr, short p, short m, short t, short u, short r, short i, bool zeroBased) const {
    ProjectCall const call(settings_);
    if (!LookUp(table, cubenr, p, m, t, u, r, i, zeroBased)) return {};
    return EntryTable(*table, keyParts).path(MatrixDirectory().str());
}

TRkString TRkVarCubes::FileName(short p, short m, short t, short u, short r, short i, bool zeroBased) const {
    ProjectCall const call(settings_);
    auto table = Open();
    TRkString const path = FileName(table, CubeNumber(), p, m, t, u, r, i, zeroBased);
    Close(table);
    return path;
}

TRkString TRkVarCubes::MakeFilename(short p, short m, short t, short u, short r, short i) {
    return cubes::catalogue::fileStem(std::array{p, m, t, u, r, i});
}

bool TRkVarCubes::MakeFilename(char const* stem, int& p, int& m, int& t, int& u, int& r, int& i) {
    if (!stem) return false;
    std::string const text(stem);
    std::array const numbers = {&p, &m, &t, &u, &r, &i};
    if (text.find('-') != std::string::npos) return readDecimalName(text, numbers);
    if (text.size() != 2 * nameParts) return false;
    cubes::catalogue::readBase40Stem(stem, numbers);
    return true;
}

TRkString TRkVarCubes::createFilename(short p, short m, short t, short u, short r, short i) const {
    return MakeFilename(p, m, t, u, r, i);
}

bool TRkVarCubes::Get(TRkAutoListT<TRkBaseCubes::TKey>& list) const {
    ProjectCall const call(settings_);
    return TRkBaseCubes::Get(list);
}

std::unique_ptr<TRkVarCubes::TKey> TRkVarCubes::ReadEntry(EntryTable const& entries) {
    auto const key = entries.key();
    auto const up = entries.parent();
    return std::make_unique<TKey>(
        key[0], key[1], key[2], key[3], key[4], key[5], key[6], up[0], up[1], up[2], up[3], up[4], up[5], up[6], false);
}

bool TRkVarCubes::Get(TRkAutoListT<TKey>& list) const {
    ProjectCall const call(settings_);
    list.Clear();
    auto table = Open();
    return table && falseWithoutTable([&] {
        EntryTable const entries(*table, keyParts);
        entries.requireKey();
        table->SetFilterSQL(entries.ofCube(CubeNumber()));
        for (; !table->GetEof(); table->Next()) {
            auto key = ReadEntry(entries);
            key->filename = entries.filename();
            list.Add(key.release());
        }
        sortIfNeeded(list);
        return true;
    });
}

// Appends the entries that nobody uses, of all cubes; only those of a parent when there is one.
bool TRkVarCubes::AppendFree(TRkAutoListT<TKey>& list, ResultKey const* parent) const {
    auto table = Open();
    return table && falseWithoutTable([&] {
        EntryTable const entries(*table, keyParts);
        entries.requireKey();
        if (parent) table->SetFilterSQL(entries.childrenOf(*parent));
        for (; !table->GetEof(); table->Next())
            if (entries.users() <= 0) list.Add(ReadEntry(entries).release());
        sortIfNeeded(list);
        return true;
    });
}

bool TRkVarCubes::GetAllCubes(TRkAutoListT<TKey>& list) const {
    ProjectCall const call(settings_);
    list.Clear();
    return AppendFree(list, nullptr) && nameCubes(Register(TRkBaseCubes::Open()), list);
}

// The children are the entries of GetAllCubes with that parent. The database filters them, so that only a few rows are
// read.
void TRkVarCubes::GetPmturis(
    short parentcubenr, short pp, short pm, short pt, short pu, short pr, short pi, TRkAutoListT<TKey>& list) const {
    ProjectCall const call(settings_);
    ResultKey const parent = {parentcubenr, pp, pm, pt, pu, pr, pi};
    Keys children;
    AppendFree(children, &parent);
    nameCubes(Register(TRkBaseCubes::Open()), children);
    for (int i = 0; i < children.Count(); ++i) list.Add(new TKey(*children[i]));
}

// Result cubes have parents only through Add and attach no data: route cubes implement these operations.

bool TRkVarCubes::SetData(CubeDataInterface*, short, short, short, short, short, short, short, short, short, short,
    short, short, short, bool) {
    return false;
}

CubeDataInterface* TRkVarCubes::GetData(short, short, short, short, short, short, bool) const {
    return nullptr;
}

void TRkVarCubes::GetParentPMTURI(
    short, short, short, short, short, short, short& pp, short& pm, short& pt, short& pu, short& pr, short& pi) const {
    pp = pm = pt = pu = pr = pi = -1;
}

bool TRkVarCubes::SetParentPMTURI(short, short, short, short, short, short, short, short, short, short, short, short) {
    return false;
}

short TRkVarCubes::GetParentCubenr(short, short, short, short, short, short) const {
    return 0;
}

bool TRkVarCubes::SetParentCubenr(short, short, short, short, short, short, long) {
    return false;
}

bool TRkVarCubes::GetChilds(short, short, short, short, short, short, TRkAutoListT<TKey>& list) const {
    list.Clear();
    return false;
}

bool TRkVarCubes::Set(
    short p, short m, short t, short u, short r, short i, TRkMatrix const& matrix, RkLockState lock, bool zeroBased) {
    ProjectCall const call(settings_);
    // Numbers that a key or a file's name cannot hold are rejected here, before anything is lost.
    if (MatrixFile(p, m, t, u, r, i, zeroBased).IsEmpty()) return false;
    MakeFilename(p, m, t, u, r, i);
    if (Check(p, m, t, u, r, i, zeroBased)) Clear(p, m, t, u, r, i, zeroBased);
    // Callers rely on this row: the key as it was passed, with the flag as parent cube.
    short const parent = zeroBased ? 1 : 0;
    Add(p, m, t, u, r, i, parent, -1, -1, -1, -1, -1, -1, false);
    return SaveMatrix(matrix, p, m, t, u, r, i, lock, zeroBased);
}

TRkFString TRkVarCubes::MatrixFile(short p, short m, short t, short u, short r, short i, bool zeroBased) const {
    auto const key = storedKey(ResultKey{CubeNumber(), p, m, t, u, r, i}, zeroBased);
    if (!key) return {};
    return TRkFString(
        TRkString(MatrixDirectory()) + cubes::catalogue::fileStem(std::span(*key).subspan(1)) + extension_);
}

bool TRkVarCubes::SaveMatrix(
    TRkMatrix const& matrix, short p, short m, short t, short u, short r, short i, RkLockState lock, bool zeroBased) {
    ProjectCall const call(settings_);
    TRkFString const target = MatrixFile(p, m, t, u, r, i, zeroBased);
    if (target.IsEmpty()) return false;
    matrix.Prepare();
    if (isSaved(matrix, target, lock)) return false;
    if (matrixType_ == mtMatrixCube) matrixType_ = meaningFor(cubeType_, writtenTypes, matrixType_);
    TRkMatrix file(matrix.Rows(), matrix.Columns(), matrixType_, target.c_str(), 1, "", "", matrixFlag_, matrixKind_,
        writesUnderLock(cubeType_) ? lsReadWrite : lock);
    if (!file.IsValid()) return false;
    file.AssignFrom(matrix);
    return file.IsValid();
}

TRkMatrix* TRkVarCubes::Get(
    short p, short m, short t, short u, short r, short i, RkLockState lock, bool zeroBased) const {
    ProjectCall const call(settings_);
    auto const key = storedKey(ResultKey{CubeNumber(), p, m, t, u, r, i}, zeroBased);
    if (!key) return nullptr;
    auto const& [cube, kp, km, kt, ku, kr, ki] = *key;
    if (!isCorrect(kp, km, kt, ku, kr, ki)) return nullptr;
    TRkString const file = FileName(kp, km, kt, ku, kr, ki, false);
    if (file.IsEmpty()) return nullptr;
    std::string const name = cubes::catalogue::displayKey(std::span(*key).subspan(1));
    auto matrix = std::make_unique<TRkMatrix>(file.c_str(), 1, name.c_str(), true, matrixKind_, lock, 0);
    if (!matrix->IsValid()) return nullptr;
    matrix->MatrixKind(meaningFor(cubeType_, openedKinds, matrix->MatrixKind()));
    return matrix.release();
}

double TRkVarCubes::Get(
    short p, short m, short t, short u, short r, short i, int row, int column, RkLockState lock, bool zeroBased) const {
    ProjectCall const call(settings_);
    return cubes::catalogue::readElement(
        std::unique_ptr<TRkMatrix>(Get(p, m, t, u, r, i, lock, zeroBased)), row, column);
}

TRkMatrixHeader const* TRkVarCubes::GetHeader(
    short p, short m, short t, short u, short r, short i, bool zeroBased) const {
    ProjectCall const call(settings_);
    return cubes::catalogue::readHeader(FileName(p, m, t, u, r, i, zeroBased));
}

bool TRkVarCubes::incUsage(short p, short m, short t, short u, short r, short i) {
    ProjectCall const call(settings_);
    auto table = Open();
    bool const raised =
        LookUp(table, CubeNumber(), p, m, t, u, r, i, false) && EntryTable(*table, keyParts).raiseUsers();
    Close(table);
    return raised;
}

bool TRkVarCubes::decUsage(short p, short m, short t, short u, short r, short i) {
    ProjectCall const call(settings_);
    auto table = Open();
    bool const lowered =
        LookUp(table, CubeNumber(), p, m, t, u, r, i, false) && EntryTable(*table, keyParts).lowerUsers();
    Close(table);
    return lowered;
}

bool TRkVarCubes::isCorrect(short p, short m, short t, short u, short r, short i) const {
    ProjectCall const call(settings_);
    if (!Check(p, m, t, u, r, i, false)) return false;
    auto table = Open();
    bool const isFree =
        LookUp(table, CubeNumber(), p, m, t, u, r, i, false) && EntryTable(*table, keyParts).users() == 0;
    Close(table);
    return isFree;
}

bool TRkVarCubes::Check(short p, short m, short t, short u, short r, short i, bool zeroBased) const {
    ProjectCall const call(settings_);
    auto table = Open();
    bool const found = LookUp(table, CubeNumber(), p, m, t, u, r, i, zeroBased);
    Close(table);
    return found;
}

bool TRkVarCubes::Clear(short p, short m, short t, short u, short r, short i, bool zeroBased) {
    ProjectCall const call(settings_);
    auto table = Open();
    bool const found = LookUp(table, CubeNumber(), p, m, t, u, r, i, zeroBased);
    if (found) removeEntry(*table, MatrixDirectory());
    Close(table);
    return found;
}

bool TRkVarCubes::Delete(short p, short m, short t, short u, short r, short i, bool zeroBased) {
    ProjectCall const call(settings_);
    return Clear(p, m, t, u, r, i, zeroBased);
}

bool TRkVarCubes::Remove(short p, short m, short t, short u, short r, short i, bool zeroBased) {
    ProjectCall const call(settings_);
    return Clear(p, m, t, u, r, i, zeroBased);
}

bool TRkVarCubes::Clear() {
    ProjectCall const call(settings_);
    auto table = Open();
    bool const cleared = table && falseWithoutTable([&] {
        while (table->Locate("cubenr", CubeNumber())) removeEntry(*table, MatrixDirectory());
        return true;
    });
    Close(table);
    return cleared;
}

bool TRkVarCubes::Delete() {
    ProjectCall const call(settings_);
    return Clear();
}

bool TRkVarCubes::Remove() {
    ProjectCall const call(settings_);
    return Clear();
}

bool TRkVarCubes::Copy(short p, short m, short t, short u, short r, short i, short toP, short toM, short toT, short toU,
    short toR, short toI, bool failIfExists, bool zeroBased) {
    ProjectCall const call(settings_);
    return Transfer{*this, *this, {CubeNumber(), p, m, t, u, r, i}, {CubeNumber(), toP, toM, toT, toU, toR, toI},
        failIfExists, zeroBased}
        .copies();
}

bool TRkVarCubes::Copy(TRkVarCubes const& other, short p, short m, short t, short u, short r, short i, short toP,
    short toM, short toT, short toU, short toR, short toI, bool failIfExists, bool zeroBased) {
    ProjectCall const call(settings_);
    return Transfer{other, *this, {other.CubeNumber(), p, m, t, u, r, i}, {CubeNumber(), toP, toM, toT, toU, toR, toI},
        failIfExists, zeroBased}
        .copies();
}

bool TRkVarCubes::Move(short p, short m, short t, short u, short r, short i, short toP, short toM, short toT, short toU,
    short toR, short toI, bool failIfExists, bool zeroBased) {
    ProjectCall const call(settings_);
    return Transfer{*this, *this, {CubeNumber(), p, m, t, u, r, i}, {CubeNumber(), toP, toM, toT, toU, toR, toI},
        failIfExists, zeroBased}
        .moves();
}

bool TRkVarCubes::Move(TRkVarCubes const& other, short p, short m, short t, short u, short r, short i, short toP,
    short toM, short toT, short toU, short toR, short toI, bool failIfExists, bool zeroBased) {
    ProjectCall const call(settings_);
    return Transfer{other, *this, {other.CubeNumber(), p, m, t, u, r, i}, {CubeNumber(), toP, toM, toT, toU, toR, toI},
        failIfExists, zeroBased}
        .moves();
}
