#include "catalogue/EntryTable.h"

#include "catalogue/StoredName.h"
#include "catalogue/Tables.h"
#include "host/database/Sql.h"
#include "host/database/Transaction.h"

#include <cubes/catalogue/TRkBaseCubes.h>
#include <cubes/database/TRkDBDataDictionary.h>

#include <algorithm>

namespace cubes::catalogue {

namespace {

template <typename Fields>
bool allThere(Fields const& fields) {
    return std::all_of(fields.begin(), fields.end(), [](auto const* field) { return field; });
}

void setOrClear(Rktable::TRkField* field, bool isSet, short number) {
    if (!field) return;
    if (isSet)
        field->SetAsInteger(number);
    else
        field->Clear();
}

// Null stands for `none`, and so does a column that is not there.
std::string equals(Rktable::TRkField const* field, short number, short none) {
    if (!field) return number == none ? "1=1" : "1=0";
    std::string const column = database::quoted(field->Name());
    std::string const same = column + "=" + std::to_string(number);
    return number == none ? "(" + same + " or " + column + " is null)" : same;
}

// Posts the row. False when the database refuses it for the reason given; a transaction that the
// caller has begun goes on.
bool postUnless(Rktable::TRkTableProxy& table, bool (TRkDatabaseException::*isReason)() const noexcept) {
    database::Savepoint savepoint(table);
    try {
        table.Post();
        savepoint.commit();
        return true;
    } catch (TRkDatabaseException const& error) {
        if (!(error.*isReason)()) throw;
        return false;
    }
}

}

std::string displayKey(std::span<short const> parts) {
    std::string text = "[";
    for (short const part : parts) text += (text.size() > 1 ? "," : "") + std::to_string(part);
    return text + "]";
}

void addAmongOthers(std::span<short const> key, std::function<bool()> const& attempt) {
    constexpr int attempts = 100;
    for (int i = 0; i < attempts; ++i)
        if (attempt()) return;
    throw TRkDatabaseException(
        "cannot add entry " + displayKey(key) + ": others add and remove it at the same time; try again later");
}

CountedPtr<Rktable::TRkTableProxy> buildEntryTable(
    TRkDBDataDictionary& dictionary, AnsiString const& schema, char const* alias) {
    std::vector<CountedPtr<Rktable::TRkTableProxy>> tables;
    if (!dictionary.BuildDataTables(TRkBaseCubes::ObjectName, tables, schema)) return {};
    for (auto const& table : tables)
        if (table && table->GetAliasPropertyWrapper().AsString().ToLower() == alias) return table;
    return {};
}

EntryTable::Fields const& EntryTable::fields() const {
    if (fields_) return *fields_;
    auto const find = [this](char const* column) { return cursor_.FindField(column); };
    Fields found;
    std::transform(
        keyColumns.begin(), keyColumns.begin() + static_cast<std::ptrdiff_t>(keyParts_), found.key.begin(), find);
    std::transform(parentColumns.begin(), parentColumns.end(), found.parent.begin(), find);
    found.filename = find(filenameColumn);
    found.users = find(usersColumn);
    return fields_.emplace(found);
}

bool EntryTable::locate(std::span<short const> key) {
    return cursor_.Locate(keyList(key.size()), std::vector<Rktable::Value>(key.begin(), key.end()));
}

bool EntryTable::locateAndLock(std::span<short const> key) {
    return locate(key) && database::lockRow(cursor_);
}

bool EntryTable::hasKey() const {
    return allThere(std::span(fields().key).first(keyParts_));
}

void EntryTable::requireKey() const {
    for (std::size_t i = 0; i < keyParts_; ++i) cursor_.FieldByName(keyColumns[i]);
}

void EntryTable::requireParent() const {
    for (char const* const column : parentColumns) cursor_.FieldByName(column);
}

bool EntryTable::insert(std::span<short const> key, std::string const& filename, ResultKey const& parent) {
    auto const& columns = fields();
    requireKey();
    bool const hasParent = allThere(columns.parent);
    cursor_.Append();
    for (std::size_t i = 0; i < key.size(); ++i) columns.key[i]->SetAsInteger(key[i]);
    for (std::size_t i = 0; i < parent.size(); ++i)
        if (hasParent && parent[i] != noParent[i]) columns.parent[i]->SetAsInteger(parent[i]);
    if (columns.users) columns.users->SetAsInteger(0);
    if (columns.filename) columns.filename->SetAsString(filename.c_str());
    return postUnless(cursor_, &TRkDatabaseException::IsDuplicateKey);
}

bool EntryTable::changeParent(ResultKey const& parent) {
    auto const& columns = fields();
    bool const hasParts = !std::equal(parent.begin() + 1, parent.end(), noParent.begin() + 1);
    cursor_.Edit();
    setOrClear(columns.parent[0], parent[0] != noParent[0], parent[0]);
    // Once a part is set, those that are not are written as they are, unlike in a new row.
    for (std::size_t i = 1; i < parent.size(); ++i) setOrClear(columns.parent[i], hasParts, parent[i]);
    setOrClear(columns.users, hasParts, 0);
    return postUnless(cursor_, &TRkDatabaseException::IsMissingRow);
}

bool EntryTable::setParent(ResultKey const& parent) {
    auto const& columns = fields();
    cursor_.Edit();
    for (std::size_t i = 0; i < parent.size(); ++i) setOrClear(columns.parent[i], parent[i] != noParent[i], parent[i]);
    return postUnless(cursor_, &TRkDatabaseException::IsMissingRow);
}

std::string EntryTable::remove(std::string const& directory) {
    std::string file = path(directory);
    cursor_.Delete();
    return file;
}

bool EntryTable::raiseUsers() {
    return countsUsers() && cursor_.Raise(usersColumn);
}

bool EntryTable::lowerUsers() {
    return countsUsers() && cursor_.Lower(usersColumn);
}

bool EntryTable::countsUsers() const {
    return cursor_.FindField(usersColumn);
}

std::vector<short> EntryTable::key() const {
    std::vector<short> numbers;
    numbers.reserve(keyParts_);
    for (std::size_t i = 0; i < keyParts_; ++i) numbers.push_back(static_cast<short>(fields().key[i]->AsInteger()));
    return numbers;
}

ResultKey EntryTable::parent() const {
    ResultKey numbers = noParent;
    for (std::size_t i = 0; i < numbers.size(); ++i)
        if (auto const* const column = fields().parent[i]; column && !column->IsNull())
            numbers[i] = static_cast<short>(column->AsInteger());
    return numbers;
}

std::string EntryTable::filename() const {
    auto const* const column = fields_ ? fields_->filename : cursor_.FindField(filenameColumn);
    return column ? column->AsString().str() : std::string();
}

std::string EntryTable::path(std::string const& directory) const {
    return storedPath(directory, filename());
}

long EntryTable::users() const {
    auto const* const column = fields_ ? fields_->users : cursor_.FindField(usersColumn);
    return column ? column->AsInteger() : 0;
}

std::string EntryTable::ofCube(short cubenr) const {
    return database::quoted(cursor_.FieldByName(keyColumns[0])->Name()) + "=" + std::to_string(cubenr);
}

std::string EntryTable::childrenOf(ResultKey const& parent) const {
    std::string condition;
    for (std::size_t i = 0; i < parent.size(); ++i)
        condition += (i ? " and " : "") + equals(fields().parent[i], parent[i], noParent[i]);
    return condition;
}

}
