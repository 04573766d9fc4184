#include "host/database/Cursor.h"

#include "host/database/Conversion.h"
#include "host/database/Session.h"
#include "host/database/Sql.h"
#include "host/database/SqlState.h"

#include <cubes/database/TRkDatabaseException.h>
#include <cubes/database/TRkField.h>

#include <algorithm>

namespace cubes::database {

namespace {

// Most cursors read a few rows only; those that read more walk the table.
constexpr std::size_t firstBatch = 32;
constexpr std::size_t walkingBatch = 2048;

// Errors of the statement itself rather than of the data, the connection or other users: the
// table may have been dropped or changed since it was described.
bool doubtsTheTable(std::string const& sqlState) {
    for (char const* const kind : {"42", "0A", "HY"})
        if (sqlState.starts_with(kind)) return true;
    return false;
}

std::string asText(Value const& value) {
    if (value.IsNull()) return "NULL";
    return value.IsNumber() ? std::to_string(value.Number()) : "'" + value.Text() + "'";
}

}

void Cursor::open(std::shared_ptr<KnownTable> table) {
    if (table_ != table) fields_.clear();
    table_ = std::move(table);
    isOpen_ = true;
    filter({});
}

void Cursor::close() {
    isOpen_ = false;
    goTo(Place::atEnd);
    row_ = {};
    batch_ = {};
}

std::size_t Cursor::run(Statement& statement, std::span<Value const> values, Cells& cells) {
    try {
        return statement.run(values, cells);
    } catch (TRkDatabaseException const& error) {
        if (doubtsTheTable(error.SqlState())) session_.systemTables().forget(*table_);
        throw;
    }
}

// The same for a statement on the row of a key, which an error about locks then names.
std::size_t Cursor::run(Statement& statement, std::span<Value const> values, Cells& cells, std::span<Value const> key) {
    try {
        return run(statement, values, cells);
    } catch (TRkDatabaseException const& error) {
        if (error.SqlState() != sqlstate::locked) throw;
        throw TRkDatabaseException("row " + textOf(key) + " of table " + description().quotedName + ": " + error.what(),
            error.SqlState(), error.Statement());
    }
}

// "cubenr=1, purpose=2"
std::string Cursor::textOf(std::span<Value const> key) const {
    std::string text;
    for (std::size_t i = 0; i < key.size(); ++i)
        text += (i ? ", " : "") + column(description().key[i]).name + "=" + asText(key[i]);
    return text;
}

// Statements with a filter are not kept: there are as many as there are filters.
std::size_t Cursor::run(
    std::string const& sql, std::vector<ColumnType> const& types, std::span<Value const> values, Cells& cells) {
    if (filter_.empty()) return run(table_->statement(sql, types), values, cells);
    return run(*session_.prepareOnce(sql, types), values, cells);
}

Rktable::TRkField* Cursor::findField(std::string_view name) {
    std::size_t const column = table_->find(name);
    if (column >= description().declaredColumns()) return nullptr;
    if (fields_.empty()) {
        fields_.reserve(description().columns.size());
        for (std::size_t i = 0; i < description().columns.size(); ++i) fields_.push_back(Rktable::TRkField(*this, i));
    }
    return &fields_[column];
}

Rktable::TRkField* Cursor::field(std::string_view name) {
    Rktable::TRkField* const found = findField(name);
    if (!found) table_->column(name);
    return found;
}

void Cursor::goTo(Place place) noexcept {
    place_ = place;
    change_ = Change::none;
}

void Cursor::first() {
    behind_.clear();
    isLastBatch_ = false;
    batchRows_ = 0;
    goTo(Place::ahead);
}

void Cursor::next() {
    if (atEnd()) return;
    if (place_ == Place::onRow) {
        behind_ = keyOf(current());
        isLastBatch_ = false;
        batchRows_ = 0;
        return goTo(Place::ahead);
    }
    goTo(Place::inBatch);
    if (++index_ < batchRows_) return;
    goTo(isLastBatch_ ? Place::atEnd : Place::ahead);
}

bool Cursor::atEnd() {
    if (place_ == Place::ahead) fetch();
    return place_ == Place::atEnd;
}

void Cursor::fetch() {
    std::size_t const limit = batchRows_ == 0 ? firstBatch : walkingBatch;
    batch_.clear();
    index_ = 0;
    batchRows_ = fetchInto(batch_, limit);
    isLastBatch_ = batchRows_ < limit;
    place_ = batchRows_ == 0 ? Place::atEnd : Place::inBatch;
    if (!isLastBatch_) behind_ = keyOf(batch_.row(batchRows_ - 1, description().columns.size()));
}

std::size_t Cursor::fetchInto(Cells& cells, std::size_t limit) {
    Sql const sql(description(), session_.dialect());
    if (behind_.empty()) return run(sql.firstRows(filter_, limit), {}, {}, cells);
    auto const types = sql.types(description().key);
    std::size_t rows = 0;
    if (behind_.size() > 1) rows = run(sql.rowsOfSameGroup(filter_, limit), types, behind_, cells);
    if (rows == limit) return rows;
    // Not just the rest of the limit: each limit would be a statement of its own.
    return rows + run(sql.rowsOfLaterGroups(filter_, limit), {types[0]}, std::span(behind_).first(1), cells);
}

Match Cursor::matchFor(std::span<Value const> values, Rktable::LocateOptions options) const {
    if (!options.caseInsensitive) return Match::exact;
    Match match = Match::ignoringAsciiCase;
    for (Value const& value : values)
        if (value.IsText()) match = std::max(match, session_.dialect().ignoringCase(value.Text()));
    return match;
}

bool Cursor::locate(std::string_view keys, std::span<Value const> values, Rktable::LocateOptions options) {
    goTo(Place::atEnd);
    if (runLookUp(keys, values, matchFor(values, options)) == 0) return false;
    place_ = Place::onRow;
    return true;
}

std::size_t Cursor::runLookUp(std::string_view keys, std::span<Value const> values, Match match) {
    row_.clear();
    LookUp const& lookUp = table_->lookUp(keys, match);
    if (lookUp.columns.size() != values.size())
        throw TRkDatabaseException("look-up in table " + description().quotedName + ": the keys '" + lookUp.keys +
                                   "' need " + std::to_string(lookUp.columns.size()) + " values, not " +
                                   std::to_string(values.size()));
    bool suitable = filter_.empty();
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (values[i].IsNull()) return 0;
        suitable = suitable && suits(values[i], column(lookUp.columns[i]).type);
    }
    if (suitable) return run(*lookUp.statement, values, row_);

    std::vector<Value> converted;
    for (std::size_t i = 0; i < values.size(); ++i) {
        auto value = comparable(values[i], column(lookUp.columns[i]).type);
        if (!value) return 0;
        converted.push_back(std::move(*value));
    }
    Sql const sql(description(), session_.dialect());
    return run(sql.lookUp(lookUp.columns, match, filter_), sql.types(lookUp.columns), converted, row_);
}

void Cursor::filter(std::string const& condition) {
    filter_ = condition;
    first();
}

std::optional<long long> Cursor::greatest(std::string_view name) {
    std::size_t const column = table_->column(name);
    Cells cells;
    run(Sql(description(), session_.dialect()).greatest(column, filter_), {}, {}, cells);
    Value const& value = cells.row(0, 1)[0];
    if (value.IsNull()) return std::nullopt;
    return value.IsNumber() ? value.Number() : leadingNumber(value.Text());
}

std::vector<Value> Cursor::keyOf(std::span<Value const> row) const {
    std::vector<Value> key;
    key.reserve(description().key.size());
    for (std::size_t const column : description().key) key.push_back(row[column]);
    return key;
}

std::span<Value> Cursor::current() {
    if (atEnd())
        throw TRkDatabaseException(
            "table " + description().quotedName + ": the cursor is not on a row", sqlstate::wrongCursorState);
    std::size_t const width = description().columns.size();
    return place_ == Place::onRow ? row_.row(0, width) : batch_.row(index_, width);
}

Value const& Cursor::value(std::size_t column) {
    return change_ == Change::none ? current()[column] : draft_[column];
}

void Cursor::append() {
    change_ = Change::append;
    draft_.assign(description().columns.size(), Value());
    isSet_.assign(draft_.size(), false);
}

void Cursor::edit() {
    auto const row = current();
    change_ = Change::edit;
    draft_.assign(row.begin(), row.end());
    isSet_.assign(draft_.size(), false);
}

void Cursor::setValue(std::size_t column, Value value) {
    if (change_ == Change::none)
        throw TRkDatabaseException("table " + description().quotedName + ": column '" + this->column(column).name +
                                       "' was set, but no row is being changed",
            sqlstate::wrongCursorState);
    draft_[column] = storable(std::move(value), this->column(column));
    isSet_[column] = true;
}

std::vector<std::size_t> Cursor::changedColumns() const {
    std::vector<std::size_t> columns;
    for (std::size_t i = 0; i < isSet_.size(); ++i)
        if (isSet_[i]) columns.push_back(i);
    return columns;
}

void Cursor::post() {
    if (change_ == Change::none)
        throw TRkDatabaseException(
            "table " + description().quotedName + ": no row is being changed", sqlstate::wrongCursorState);
    if (change_ == Change::append)
        insertDraft();
    else
        updateDraft();
    change_ = Change::none;
}

// A refused row stays as it was filled in, to be corrected or dropped.
void Cursor::insertDraft() {
    auto const columns = changedColumns();
    std::vector<Value> values;
    for (std::size_t const column : columns) values.push_back(draft_[column]);
    Cells posted;
    if (run(table_->statement(Operation::insert, columns), values, posted, keyOf(draft_)) == 0)
        throw TRkDatabaseException(
            "table " + description().quotedName + ": the database did not take the new row", sqlstate::noData);
    row_ = std::move(posted);
    place_ = Place::onRow;
}

void Cursor::updateDraft() {
    auto const columns = changedColumns();
    if (columns.empty()) return;
    std::vector<Value> values;
    for (std::size_t const column : columns) values.push_back(draft_[column]);
    auto const key = keyOf(current());
    values.insert(values.end(), key.begin(), key.end());
    Cells posted;
    if (run(table_->statement(Operation::update, columns), values, posted, key) == 0)
        throw TRkDatabaseException(
            "table " + description().quotedName + ": the row to be changed was deleted", sqlstate::noData);
    standOn(posted.row(0, description().columns.size()));
}

// What the current row now is, in its place in the walk.
void Cursor::standOn(std::span<Value const> row) {
    std::copy(row.begin(), row.end(), current().begin());
}

// Another process may delete the row at the same moment, and a third one add it again.
void Cursor::remove() {
    constexpr int attempts = 20;
    auto const key = keyOf(current());
    for (int attempt = 0; attempt < attempts; ++attempt) {
        Cells nothing;
        if (run(table_->statement(Operation::remove, {}), key, nothing, key) > 0 || isGone(key)) return next();
    }
    // A loop that deletes all rows would meet it again and again.
    bool const hasNull = std::any_of(key.begin(), key.end(), [](Value const& value) { return value.IsNull(); });
    throw TRkDatabaseException("cannot delete the row " + textOf(key) + " of table " + description().quotedName + ": " +
                                   (hasNull ? "its key holds NULL" : "the database keeps it, as a trigger may do"),
        sqlstate::rowNotDeleted);
}

bool Cursor::isGone(std::span<Value const> key) {
    Cells found;
    return run(table_->statement(Operation::isThere, {}), key, found) == 0;
}

bool Cursor::changeInPlace(Operation operation, std::string_view name) {
    auto const key = keyOf(current());
    Cells changed;
    if (run(table_->statement(operation, {table_->column(name)}), key, changed, key) == 0) return false;
    standOn(changed.row(0, description().columns.size()));
    return true;
}

// Where nobody else writes during a transaction, the row was read in it and is current.
bool Cursor::lockRow() {
    if (session_.dialect().lockRows().empty()) return true;
    auto const key = keyOf(current());
    Cells found;
    if (run(table_->statement(Operation::lockRow, {}), key, found, key) == 0) return false;
    standOn(found.row(0, description().columns.size()));
    return true;
}

bool Cursor::raise(std::string_view column) {
    return changeInPlace(Operation::raise, column);
}

bool Cursor::lower(std::string_view column) {
    return changeInPlace(Operation::lower, column);
}

}

namespace Rktable {

long TRkField::AsInteger() const {
    auto const held = cursor_->session().lock();
    Value const& value = cursor_->value(column_);
    if (value.IsNumber()) return static_cast<long>(value.Number());
    return value.IsText() ? static_cast<long>(cubes::database::leadingNumber(value.Text())) : 0;
}

void TRkField::SetAsInteger(long number) {
    auto const held = cursor_->session().lock();
    cursor_->setValue(column_, number);
}

TRkString TRkField::AsString() const {
    auto const held = cursor_->session().lock();
    Value const& value = cursor_->value(column_);
    if (value.IsText()) return TRkString(value.Text());
    return value.IsNumber() ? TRkString(value.Number()) : TRkString();
}

void TRkField::SetAsString(char const* text) {
    auto const held = cursor_->session().lock();
    cursor_->setValue(column_, text);
}

bool TRkField::IsNull() const {
    auto const held = cursor_->session().lock();
    return cursor_->value(column_).IsNull();
}

void TRkField::Clear() {
    auto const held = cursor_->session().lock();
    cursor_->setValue(column_, {});
}

TRkString TRkField::Stored(char const* text) const {
    return TRkString(std::string(cubes::database::cut(text ? text : "", cursor_->column(column_))));
}

int TRkField::Size() const noexcept {
    return static_cast<int>(cursor_->column(column_).size);
}

std::string const& TRkField::Name() const noexcept {
    return cursor_->column(column_).name;
}

}
