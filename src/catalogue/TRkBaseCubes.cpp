#include <cubes/catalogue/TRkBaseCubes.h>

#include <cubes/core/TRkCubesException.h>
#include <cubes/database/TRkConnectionManager.h>
#include <cubes/database/TRkDBDataDictionary.h>
#include <cubes/project/TRkGlobalSettings.h>

#include "catalogue/ProjectCall.h"
#include "catalogue/Register.h"
#include "core/Base40.h"

#include <string_view>

using cubes::catalogue::ProjectCall;
using cubes::catalogue::Register;

namespace {

constexpr char const* dictionaryKey = "RkLib.DataDictionary";

Pgaccess::TPgConnection* currentConnection() {
    return getConnectionManagerInstance().CurrentConnection();
}

Pgaccess::TPgConnection* connectionFor(TRkGlobalSettings const* settings) {
    ProjectCall const call(settings);
    return currentConnection();
}

}

int TRkBaseCubes::Version = 4;

char const* const TRkBaseCubes::letters = cubes::base40Digits;

char const* const TRkBaseCubes::ObjectName = "cube";

TRkBaseCubes::TKey::TKey(short number, char const* text) : cubenr(number), name(text) {}

TRkString TRkBaseCubes::TKey::AsString() const {
    return TRkString(cubenr) + "," + name;
}

TRkBaseCubes::TRkBaseCubes(TRkGlobalSettings* settings, char const* matrixDirectory, char const* extension,
    RkCubeTypes cubeType, RkMatrixType matrixType, RkMatrixKind matrixKind, bool matrixFlag)
    : settings_(settings), matrixFlag_(matrixFlag), cubeType_(cubeType), matrixType_(matrixType),
      matrixDirectory_(matrixDirectory), extension_(extension), matrixKind_(matrixKind),
      connection_(connectionFor(settings)) {
    valid_ = true;
}

TRkBaseCubes::TRkBaseCubes(TRkBaseCubes const&) = default;
TRkBaseCubes& TRkBaseCubes::operator=(TRkBaseCubes const&) = default;
TRkBaseCubes::~TRkBaseCubes() = default;

bool TRkBaseCubes::Ok() const {
    return valid_;
}

void TRkBaseCubes::SetConnection(Pgaccess::TPgConnection* connection) {
    connection_ = connection;
}

Pgaccess::TPgConnection* TRkBaseCubes::GetConnection() const {
    return connection_;
}

TRkGlobalSettings* TRkBaseCubes::Settings() {
    return settings_;
}

TRkGlobalSettings* TRkBaseCubes::Settings() const {
    return settings_;
}

void TRkBaseCubes::Settings(TRkGlobalSettings* settings) {
    settings_ = settings;
    valid_ = true;
}

TRkDBDataDictionary* TRkBaseCubes::DataDictionary() const {
    return settings_ ? dynamic_cast<TRkDBDataDictionary*>(settings_->Get(dictionaryKey)) : nullptr;
}

void TRkBaseCubes::DataDictionary(TRkDBDataDictionary* dictionary) {
    if (settings_) settings_->Set(dictionaryKey, dictionary);
}

TRkFString const& TRkBaseCubes::MatrixDirectory() const {
    return matrixDirectory_;
}

AnsiString const& TRkBaseCubes::getMatrixSchema() const {
    return matrixSchema_;
}

void TRkBaseCubes::setMatrixSchema(AnsiString const& schema) {
    matrixSchema_ = schema;
}

bool TRkBaseCubes::Refresh() {
    return false;
}

CountedPtr<Rktable::TRkTableProxy> TRkBaseCubes::Open() const {
    ProjectCall const call(settings_);
    TRkDBDataDictionary* const dictionary = DataDictionary();
    if (!dictionary) return {};
    auto table = dictionary->BuildTable(ObjectName, AnsiString());
    if (!table) return table;
    // Whichever connection this catalogue works on.
    table->SetConnection(currentConnection());
    table->Open();
    return table;
}

bool TRkBaseCubes::Close(CountedPtr<Rktable::TRkTableProxy>& table) const {
    if (!table) return false;
    table->Close();
    table.Release();
    return true;
}

bool TRkBaseCubes::LookUp(CountedPtr<Rktable::TRkTableProxy> table, short cubenr) const {
    return Register(table).locate(cubenr);
}

bool TRkBaseCubes::LookUp(CountedPtr<Rktable::TRkTableProxy> table, char const* name) const {
    return Register(table).locate(name);
}

bool TRkBaseCubes::LookUp(short cubenr) const {
    return cubenr < 0 || Check(cubenr);
}

TRkString TRkBaseCubes::CubeNrToName(short cubenr) const {
    return Register(Open()).name(cubenr).value_or(TRkString());
}

short TRkBaseCubes::CubeNameToNr(char const* name) const {
    return Register(Open()).number(name).value_or(0);
}

bool TRkBaseCubes::Add(char const* name) const {
    return Register(Open()).add(name).has_value();
}

bool TRkBaseCubes::Check(char const* name) const {
    return Register(Open()).locate(name);
}

bool TRkBaseCubes::Check(short cubenr) const {
    return Register(Open()).locate(cubenr);
}

bool TRkBaseCubes::Exist(char const* name) const {
    return Check(name);
}

bool TRkBaseCubes::Clear(char const* name) const {
    return Register(Open()).remove(name);
}

bool TRkBaseCubes::Clear(short cubenr) const {
    return Register(Open()).remove(cubenr);
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
    for (auto const& cube : Register(table).cubes()) list.Add(new TKey(cube.number, cube.name.c_str()));
    return true;
}

// The checks before cubes are copied or moved. A move checks the same as a copy: the two have different names so that
// derived catalogues can give them different meanings. The conditions of the three forms differ deliberately.

bool TRkBaseCubes::Copy(TRkBaseCubes const& source, bool failIfExists, short from, short to) const {
    ProjectCall const call(settings_);
    if (!source.LookUp(from)) throw TRkCubesException(TRkCubesException::ecFromCubeMissing);
    if (to != from && failIfExists && to >= 0 && LookUp(to)) throw TRkCubesException(TRkCubesException::ecCubeExists);
    if (!LookUp(to)) throw TRkCubesException(TRkCubesException::ecToCubeMissing);
    return true;
}

bool TRkBaseCubes::Copy(bool failIfExists, short from, short to) const {
    return TRkBaseCubes::Copy(*this, failIfExists, from, to);
}

bool TRkBaseCubes::Move(TRkBaseCubes const& source, bool failIfExists, short& from, short& to) const {
    return TRkBaseCubes::Copy(source, failIfExists, from, to);
}

bool TRkBaseCubes::Move(bool failIfExists, short& from, short& to) const {
    return TRkBaseCubes::Copy(failIfExists, from, to);
}

bool TRkBaseCubes::Copy(char const* from, char const* to, bool failIfExists, short& fromNr, short& toNr) const {
    ProjectCall const call(settings_);
    Register const cubes(Open());
    fromNr = cubes.number(from).value_or(0);
    toNr = cubes.number(to).value_or(0);
    if (fromNr < 1) return false;
    if (toNr < 1) {
        toNr = cubes.add(to).value_or(0);
        return toNr > 0;
    }
    if (toNr == fromNr && failIfExists) throw TRkCubesException(TRkCubesException::ecCubeExists);
    return true;
}

bool TRkBaseCubes::Move(char const* from, char const* to, bool failIfExists, short& fromNr, short& toNr) const {
    return TRkBaseCubes::Copy(from, to, failIfExists, fromNr, toNr);
}

bool TRkBaseCubes::Copy(
    TRkBaseCubes const& source, char const* from, char const* to, bool failIfExists, short& fromNr, short& toNr) const {
    ProjectCall const call(settings_);
    Register const cubes(Open());
    fromNr = source.CubeNameToNr(from);
    toNr = cubes.number(to).value_or(0);
    if (fromNr < 1) return false;
    if (toNr < 1) {
        toNr = cubes.add(to).value_or(0);
        return toNr > 0;
    }
    fromNr = cubes.number(from).value_or(0);
    if (failIfExists && toNr != fromNr) throw TRkCubesException(TRkCubesException::ecCubeExists);
    return true;
}

bool TRkBaseCubes::Move(
    TRkBaseCubes const& source, char const* from, char const* to, bool failIfExists, short& fromNr, short& toNr) const {
    return TRkBaseCubes::Copy(source, from, to, failIfExists, fromNr, toNr);
}

char* TRkBaseCubes::ShortTo40T(short nr) {
    static char buffer[3] = {};
    if (nr < 0 || nr >= cubes::base40Limit) throw TRkCubesException(TRkCubesException::ecCubeNrOutOfRange);
    cubes::encodeBase40(nr, buffer);
    return buffer;
}

short TRkBaseCubes::cnvrt40TToShort(char const* text, int start, int count) {
    if (!text || start < 0 || count <= 0) return 0;
    std::string_view const whole(text);
    if (static_cast<std::size_t>(start) >= whole.size()) return 0;
    return cubes::decodeBase40(whole.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(count)));
}
