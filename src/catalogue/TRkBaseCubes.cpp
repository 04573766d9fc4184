#include <cubes/catalogue/TRkBaseCubes.h>

#include <cubes/core/TRkCubesException.h>
#include <cubes/database/TRkConnectionManager.h>
#include <cubes/database/TRkDBDataDictionary.h>
#include <cubes/project/TRkGlobalSettings.h>

#include "catalogue/MissingTable.h"
#include "core/Base40.h"
#include "host/text/Utf8.h"

#include <string_view>

namespace {

constexpr char const* dictionaryKey = "RkLib.DataDictionary";

Pgaccess::TPgConnection* currentConnection() {
    return getConnectionManagerInstance().CurrentConnection();
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
      connection_(currentConnection()) {
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
    TRkDBDataDictionary* const dictionary = DataDictionary();
    if (!dictionary) return {};
    auto table = dictionary->BuildTable(ObjectName, AnsiString());
    if (!table) return table;
    // The register is always the current project's, whatever connection this catalogue works on.
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
    return table && cubes::falseWithoutTable([&] { return table->Locate("cubenr", cubenr); });
}

bool TRkBaseCubes::LookUp(CountedPtr<Rktable::TRkTableProxy> table, char const* name) const {
    if (!table || !name) return false;
    // A name longer than the column stands there cut, so it is searched cut.
    int const size = table->FieldByName("name")->Size();
    std::string const stored = size > 0 ? cubes::text::firstCharacters(name, size) : name;
    return cubes::falseWithoutTable(
        [&] { return table->Locate("name", stored, Rktable::LocateOptions::ignoringCase()); });
}

bool TRkBaseCubes::LookUp(short cubenr) const {
    if (cubenr < 0) return true;
    return Check(cubenr);
}

TRkString TRkBaseCubes::CubeNrToName(short cubenr) const {
    auto table = Open();
    TRkString const name = LookUp(table, cubenr) ? table->FieldByName("name")->AsString() : TRkString();
    Close(table);
    return name;
}

short TRkBaseCubes::CubeNameToNr(char const* name) const {
    auto table = Open();
    long const number = LookUp(table, name) ? table->FieldByName("cubenr")->AsInteger() : 0;
    Close(table);
    return static_cast<short>(number);
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
