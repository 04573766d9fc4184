#include <cubes/matcubes/TRkMatCubes.h>

#include <cubes/core/TRkCubesException.h>
#include <cubes/database/TPgConnection.h>
#include <cubes/database/TRkDBDataDictionary.h>
#include <cubes/matrix/TRkMatrix.h>
#include <cubes/project/TRkGlobalSettings.h>

#include <array>
#include <memory>
#include <span>

#include "catalogue/EntryFile.h"
#include "catalogue/EntryTable.h"
#include "catalogue/Kinds.h"
#include "catalogue/ProjectCall.h"
#include "catalogue/Register.h"
#include "catalogue/StoredName.h"
#include "catalogue/Tables.h"
#include "host/platform/Files.h"
#include "matcubes/EntryTransfer.h"

using cubes::catalogue::CubeKey;
using cubes::catalogue::EntryTable;
using cubes::catalogue::falseWithoutTable;
using cubes::catalogue::ProjectCall;
using cubes::catalogue::Register;
using cubes::catalogue::storedKey;
using cubes::matcubes::EntryTransfer;
using cubes::matcubes::whenExisting;

namespace {

constexpr std::size_t keyParts = std::tuple_size_v<CubeKey>;

// Adds the row of an entry that was not found by the look-up. Another process may have added it since, which is fine.
void insertUnlessTaken(EntryTable& entries, CubeKey const& key, TRkString const& filename) {
    cubes::catalogue::addAmongOthers(key, [&] { return entries.insert(key, filename.str()) || entries.locate(key); });
}

void removeEntry(Rktable::TRkTableProxy& table, TRkFString const& directory) {
    cubes::platform::removeFile(EntryTable(table, keyParts).remove(directory.str()));
}

// A leading minus belongs to the cube number; it is replaced by a plus so that it does not separate.
void readDecimalName(std::string text, int* const (&numbers)[keyParts]) {
    if (text.front() == '-') text.front() = '+';
    auto const pieces = TRkString(text).Split('-');
    if (pieces.size() < keyParts) return;
    for (std::size_t i = 0; i < keyParts; ++i) *numbers[i] = pieces[i].ToInteger();
    if (text.front() == '+') *numbers[0] = -*numbers[0];
}

}

char const* const TRkMatCubes::FAliasName = "matcube";

TRkMatCubes::TKey::TKey(short cube, short p, short m, short t, short u, bool zero)
    : zeroBased(zero), cubenr(cube), mode(m), purpose(p), time(t), user(u) {}

int TRkMatCubes::TKey::operator()(int index) const {
    CubeKey const numbers = {cubenr, purpose, mode, time, user};
    if (index == -1) return keyParts;
    return index >= 0 && index < static_cast<int>(keyParts) ? numbers[static_cast<std::size_t>(index)] : -1;
}

int TRkMatCubes::TKey::operator[](int index) const {
    return (*this)(index);
}

TRkString TRkMatCubes::TKey::AsString() const {
    TRkString text;
    for (short const number : {cubenr, purpose, mode, time, user}) text += TRkString(number) + ",";
    return text + name;
}

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
    setMatrixSchema(cubes::catalogue::sharedSchema);
    return true;
}

CountedPtr<Rktable::TRkTableProxy> TRkMatCubes::Open() const {
    ProjectCall const call(settings_);
    TRkDBDataDictionary* const dictionary = DataDictionary();
    if (!dictionary) return {};
    auto table = cubes::catalogue::buildEntryTable(*dictionary, getMatrixSchema(), cubeAliasName());
    if (!table) return {};
    table->SetConnection(GetConnection());
    table->Open();
    return table;
}

bool TRkMatCubes::LookUp(
    CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t, short u, bool zeroBased) const {
    if (!table) return false;
    auto const key = storedKey(CubeKey{cubenr, p, m, t, u}, zeroBased);
    return key && falseWithoutTable([&] { return EntryTable(*table, keyParts).locate(*key); });
}

bool TRkMatCubes::Add(
    CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t, short u, bool zeroBased) const {
    if (!table) return false;
    auto const key = storedKey(CubeKey{cubenr, p, m, t, u}, zeroBased);
    if (!key) return false;
    EntryTable entries(*table, keyParts);
    if (falseWithoutTable([&] { return entries.locate(*key); })) return true;
    // Formed before the row is begun: a number that the name cannot hold leaves no half-made row.
    insertUnlessTaken(entries, *key, cubes::catalogue::fileStem(*key) + extension_);
    cubes::matcubes::forgetContent(GetConnection(), *key);
    return true;
}

bool TRkMatCubes::Add(char const* cubeName, short p, short m, short t, short u, bool zeroBased) const {
    ProjectCall const call(settings_);
    auto const cubenr = Register(TRkBaseCubes::Open()).add(cubeName);
    auto table = Open();
    if (!table) return true;
    bool const added = cubenr && Add(table, *cubenr, p, m, t, u, zeroBased);
    Close(table);
    return added;
}

bool TRkMatCubes::Add(char const* cubeName) const {
    return TRkBaseCubes::Add(cubeName);
}

TRkString TRkMatCubes::FileName(
    CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t, short u, bool zeroBased) const {
    if (!LookUp(table, cubenr, p, m, t, u, zeroBased)) return {};
    return EntryTable(*table, keyParts).path(matrixDirectory_.str());
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

TRkString TRkMatCubes::MakeFilename(short cubenr, short p, short m, short t, short u) {
    return cubes::catalogue::fileStem(CubeKey{cubenr, p, m, t, u});
}

bool TRkMatCubes::MakeFilename(char const* stem, int& cubenr, int& p, int& m, int& t, int& u) {
    if (!stem) return false;
    std::string const text(stem);
    int* const numbers[keyParts] = {&cubenr, &p, &m, &t, &u};
    if (text.find('-') != std::string::npos) {
        readDecimalName(text, numbers);
        return true;
    }
    if (text.size() != 2 * keyParts) return false;
    cubes::catalogue::readBase40Stem(stem, numbers);
    return true;
}

bool TRkMatCubes::Get(CountedPtr<Rktable::TRkTableProxy> table, TRkAutoListT<TKey>& list) const {
    list.Clear();
    if (!table) return false;
    EntryTable const entries(*table, keyParts);
    entries.requireKey();
    for (; !table->GetEof(); table->Next()) {
        auto const key = entries.key();
        list.Add(new TKey(key[0], key[1], key[2], key[3], key[4], false));
    }
    return true;
}

bool TRkMatCubes::GetNames(CountedPtr<Rktable::TRkTableProxy> catalogue, TRkAutoListT<TKey> list) const {
    if (!catalogue) return false;
    Register names(catalogue);
    for (int i = 0; i < list.Count(); ++i) list[i]->name = names.name(list[i]->cubenr).value_or(TRkString());
    return true;
}

bool TRkMatCubes::Get(TRkAutoListT<TKey>& list) const {
    ProjectCall const call(settings_);
    auto entries = Open();
    bool const isRead = Get(entries, list);
    Close(entries);
    if (isRead) GetNames(TRkBaseCubes::Open(), list);
    return isRead;
}

bool TRkMatCubes::GetOfCube(short cubenr, TRkAutoListT<TKey>& list) const {
    auto table = Open();
    if (table) table->SetFilterSQL(EntryTable(*table, keyParts).ofCube(cubenr));
    bool const isRead = Get(table, list);
    Close(table);
    return isRead;
}

bool TRkMatCubes::Check(short cubenr) const {
    return TRkBaseCubes::Check(cubenr);
}

bool TRkMatCubes::Check(char const* cubeName) const {
    return TRkBaseCubes::Check(cubeName);
}

bool TRkMatCubes::Check(short cubenr, short p, short m, short t, short u, bool zeroBased) const {
    auto table = Open();
    bool const isFound = LookUp(table, cubenr, p, m, t, u, zeroBased);
    Close(table);
    return isFound;
}

bool TRkMatCubes::Check(char const* cubeName, short p, short m, short t, short u, bool zeroBased) const {
    return Check(CubeNameToNr(cubeName), p, m, t, u, zeroBased);
}

TRkMatrix* TRkMatCubes::Get(short cubenr, short p, short m, short t, short u, RkLockState lock, bool zeroBased) const {
    ProjectCall const call(settings_);
    TRkString const file = FileName(cubenr, p, m, t, u, zeroBased);
    if (file.IsEmpty()) return nullptr;
    auto const key = storedKey(CubeKey{cubenr, p, m, t, u}, zeroBased);
    TRkString const name = CubeNrToName(cubenr) + " " + cubes::catalogue::displayKey(std::span(*key).subspan(1));
    auto matrix = std::make_unique<TRkMatrix>(file.c_str(), 1, name.c_str(), true, mkDefault, lock, 0);
    return matrix->IsValid() ? matrix.release() : nullptr;
}

TRkMatrix* TRkMatCubes::Get(
    char const* cubeName, short p, short m, short t, short u, RkLockState lock, bool zeroBased) const {
    return Get(CubeNameToNr(cubeName), p, m, t, u, lock, zeroBased);
}

double TRkMatCubes::Get(
    short cubenr, short p, short m, short t, short u, int i, int j, RkLockState lock, bool zeroBased) const {
    return cubes::catalogue::readElement(std::unique_ptr<TRkMatrix>(Get(cubenr, p, m, t, u, lock, zeroBased)), i, j);
}

double TRkMatCubes::Get(
    char const* cubeName, short p, short m, short t, short u, int i, int j, RkLockState lock, bool zeroBased) const {
    return Get(CubeNameToNr(cubeName), p, m, t, u, i, j, lock, zeroBased);
}

TRkMatrixHeader const* TRkMatCubes::GetHeader(
    char const* cubeName, short p, short m, short t, short u, bool zeroBased) const {
    return cubes::catalogue::readHeader(FileName(cubeName, p, m, t, u, zeroBased));
}

bool TRkMatCubes::Set(
    short cubenr, short p, short m, short t, short u, TRkMatrix const& matrix, RkLockState lock, bool zeroBased) {
    if (!Check(cubenr, p, m, t, u, zeroBased)) return false;
    bool const isSaved = SaveMatrix(matrix, cubenr, p, m, t, u, lock, zeroBased);
    auto const key = storedKey(CubeKey{cubenr, p, m, t, u}, zeroBased);
    // A matrix that was not changed is copied, and false is returned.
    if (key && (isSaved || matrix.StateCode() == lsUnchanged)) cubes::matcubes::forgetContent(GetConnection(), *key);
    return isSaved;
}

bool TRkMatCubes::Set(char const* cubeName, short p, short m, short t, short u, TRkMatrix const& matrix,
    RkLockState lock, bool zeroBased) {
    ProjectCall const call(settings_);
    auto const cubenr = Register(TRkBaseCubes::Open()).add(cubeName);
    auto const key = storedKey(CubeKey{cubenr.value_or(0), p, m, t, u}, zeroBased);
    if (!cubenr || !key) return false;
    // A number that the file's name cannot hold throws here, before anything is lost.
    TRkString const filename = cubes::catalogue::fileStem(*key) + extension_;
    if (auto table = Open()) {
        EntryTable entries(*table, keyParts);
        if (entries.locate(*key)) removeEntry(*table, matrixDirectory_);
        insertUnlessTaken(entries, *key, filename);
        cubes::matcubes::forgetContent(GetConnection(), *key);
    }
    return SaveMatrix(matrix, *cubenr, p, m, t, u, lock, zeroBased);
}

bool TRkMatCubes::SaveMatrix(
    TRkMatrix const& matrix, short cubenr, short p, short m, short t, short u, RkLockState lock, bool zeroBased) {
    auto const key = storedKey(CubeKey{cubenr, p, m, t, u}, zeroBased);
    if (!key) return false;
    TRkFString const target(TRkString(matrixDirectory_) + cubes::catalogue::fileStem(*key) + extension_);
    matrix.Prepare();
    TRkFString const source(matrix.FileName());
    if (source.IsSameFile(target) && matrix.StateCode() != lsChanged) return false;
    if (matrix.StateCode() == lsUnchanged && source.Exists()) {
        // The file has the content of the matrix. False although it was written: callers expect it.
        cubes::catalogue::copyMatrixFile(source.str(), target.str(), lock);
        return false;
    }
    unsigned const sourceKind = matrix.Header().Kind();
    RkMatrixKind const kind =
        sourceKind > cubes::catalogue::lastCubeKind ? static_cast<RkMatrixKind>(sourceKind) : matrixKind_;
    TRkMatrix file(matrix.Rows(), matrix.Columns(), matrixType_, target.c_str(), 1, "", "", matrixFlag_, kind, lock);
    if (!file.IsValid()) return false;
    file.AssignFrom(matrix);
    return file.IsValid();
}

bool TRkMatCubes::incUsage(short cubenr, short p, short m, short t, short u) {
    auto table = Open();
    bool const raised = LookUp(table, cubenr, p, m, t, u, false) && EntryTable(*table, keyParts).raiseUsers();
    Close(table);
    return raised;
}

bool TRkMatCubes::decUsage(short cubenr, short p, short m, short t, short u) {
    auto table = Open();
    bool const lowered = LookUp(table, cubenr, p, m, t, u, false) && EntryTable(*table, keyParts).lowerUsers();
    Close(table);
    return lowered;
}

bool TRkMatCubes::isCorrect(short cubenr, short p, short m, short t, short u) const {
    auto table = Open();
    bool const isFree = LookUp(table, cubenr, p, m, t, u, false) && EntryTable(*table, keyParts).users() == 0;
    Close(table);
    return isFree;
}

bool TRkMatCubes::Clear(short cubenr, short p, short m, short t, short u, bool zeroBased) const {
    auto table = Open();
    bool const isFound = LookUp(table, cubenr, p, m, t, u, zeroBased);
    if (isFound) removeEntry(*table, matrixDirectory_);
    Close(table);
    return isFound;
}

bool TRkMatCubes::Clear(char const* cubeName, short p, short m, short t, short u, bool zeroBased) const {
    return Clear(CubeNameToNr(cubeName), p, m, t, u, zeroBased);
}

bool TRkMatCubes::Delete(short cubenr, short p, short m, short t, short u, bool zeroBased) const {
    return Clear(cubenr, p, m, t, u, zeroBased);
}

bool TRkMatCubes::Delete(char const* cubeName, short p, short m, short t, short u, bool zeroBased) const {
    return Clear(cubeName, p, m, t, u, zeroBased);
}

bool TRkMatCubes::Remove(short cubenr, short p, short m, short t, short u, bool zeroBased) const {
    return Clear(cubenr, p, m, t, u, zeroBased);
}

bool TRkMatCubes::Remove(char const* cubeName, short p, short m, short t, short u, bool zeroBased) const {
    return Clear(cubeName, p, m, t, u, zeroBased);
}

bool TRkMatCubes::Clear(short cubenr) const {
    auto table = Open();
    bool const cleared = table && falseWithoutTable([&] {
        while (table->Locate("cubenr", cubenr)) removeEntry(*table, matrixDirectory_);
        return true;
    });
    Close(table);
    return cleared;
}

bool TRkMatCubes::Clear(char const* cubeName) const {
    return Clear(CubeNameToNr(cubeName));
}

bool TRkMatCubes::Delete(short cubenr) const {
    return Clear(cubenr) && TRkBaseCubes::Clear(cubenr);
}

bool TRkMatCubes::Delete(char const* cubeName) const {
    return Clear(cubeName) && TRkBaseCubes::Clear(cubeName);
}

bool TRkMatCubes::Remove(short cubenr) const {
    return Delete(cubenr);
}

bool TRkMatCubes::Remove(char const* cubeName) const {
    return Delete(cubeName);
}

// The forms differ in the check of the cubes before the transfer, and in the error for an existing target, by which
// callers distinguish them.

bool TRkMatCubes::Copy(short cubenr, short p, short m, short t, short u, short toCubenr, short toP, short toM,
    short toT, short toU, bool failIfExists, bool zeroBased) const {
    ProjectCall const call(settings_);
    if (!TRkBaseCubes::Copy(failIfExists, cubenr, toCubenr)) return false;
    auto const code = whenExisting(failIfExists, TRkCubesException::ecEntryExists);
    return EntryTransfer{*this, *this, {cubenr, p, m, t, u}, {toCubenr, toP, toM, toT, toU}, code, zeroBased}.copy();
}

bool TRkMatCubes::Copy(char const* cubeName, short p, short m, short t, short u, char const* toCubeName, short toP,
    short toM, short toT, short toU, bool failIfExists, bool zeroBased) const {
    ProjectCall const call(settings_);
    short from = 0;
    short to = 0;
    if (!TRkBaseCubes::Copy(cubeName, toCubeName, failIfExists, from, to)) return false;
    auto const code = whenExisting(failIfExists, TRkCubesException::ecMatrixExists);
    return EntryTransfer{*this, *this, {from, p, m, t, u}, {to, toP, toM, toT, toU}, code, zeroBased}.copy();
}

bool TRkMatCubes::Copy(TRkMatCubes const& other, short cubenr, short p, short m, short t, short u, short toCubenr,
    short toP, short toM, short toT, short toU, bool failIfExists, bool zeroBased) const {
    ProjectCall const call(settings_);
    if (!TRkBaseCubes::Copy(other, failIfExists, cubenr, toCubenr)) return false;
    auto const code = whenExisting(failIfExists, TRkCubesException::ecCubeExists);
    return EntryTransfer{other, *this, {cubenr, p, m, t, u}, {toCubenr, toP, toM, toT, toU}, code, zeroBased}.copy();
}

bool TRkMatCubes::Copy(TRkMatCubes const& other, char const* cubeName, short p, short m, short t, short u,
    char const* toCubeName, short toP, short toM, short toT, short toU, bool failIfExists, bool zeroBased) const {
    ProjectCall const call(settings_);
    short from = 0;
    short to = 0;
    if (!TRkBaseCubes::Copy(other, cubeName, toCubeName, failIfExists, from, to)) return false;
    auto const code = whenExisting(failIfExists, TRkCubesException::ecEntryExists);
    return EntryTransfer{other, *this, {from, p, m, t, u}, {to, toP, toM, toT, toU}, code, zeroBased}.copy();
}

bool TRkMatCubes::Move(short cubenr, short p, short m, short t, short u, short toCubenr, short toP, short toM,
    short toT, short toU, bool failIfExists, bool zeroBased) const {
    ProjectCall const call(settings_);
    if (!TRkBaseCubes::Move(failIfExists, cubenr, toCubenr)) return false;
    auto const code = whenExisting(failIfExists, TRkCubesException::ecCubeExists);
    return EntryTransfer{*this, *this, {cubenr, p, m, t, u}, {toCubenr, toP, toM, toT, toU}, code, zeroBased}.move();
}

bool TRkMatCubes::Move(char const* cubeName, short p, short m, short t, short u, char const* toCubeName, short toP,
    short toM, short toT, short toU, bool failIfExists, bool zeroBased) const {
    ProjectCall const call(settings_);
    short from = 0;
    short to = 0;
    if (!TRkBaseCubes::Move(cubeName, toCubeName, failIfExists, from, to)) return false;
    auto const code = whenExisting(failIfExists, TRkCubesException::ecCubeExists);
    return EntryTransfer{*this, *this, {from, p, m, t, u}, {to, toP, toM, toT, toU}, code, zeroBased}.move();
}

bool TRkMatCubes::Move(TRkMatCubes const& other, short cubenr, short p, short m, short t, short u, short toCubenr,
    short toP, short toM, short toT, short toU, bool failIfExists, bool zeroBased) const {
    ProjectCall const call(settings_);
    if (!TRkBaseCubes::Move(other, failIfExists, cubenr, toCubenr)) return false;
    auto const code = whenExisting(failIfExists, TRkCubesException::ecCubeExists);
    return EntryTransfer{other, *this, {cubenr, p, m, t, u}, {toCubenr, toP, toM, toT, toU}, code, zeroBased}.move();
}

bool TRkMatCubes::Move(TRkMatCubes const& other, char const* cubeName, short p, short m, short t, short u,
    char const* toCubeName, short toP, short toM, short toT, short toU, bool failIfExists, bool zeroBased) const {
    ProjectCall const call(settings_);
    short from = 0;
    short to = 0;
    if (!TRkBaseCubes::Move(other, cubeName, toCubeName, failIfExists, from, to)) return false;
    auto const code = whenExisting(failIfExists, TRkCubesException::ecCubeExists);
    return EntryTransfer{other, *this, {from, p, m, t, u}, {to, toP, toM, toT, toU}, code, zeroBased}.move();
}
