#include "host/database/Conversion.h"
#include "host/database/Cursor.h"
#include "host/database/Session.h"
#include "host/database/SqlState.h"

#include <cubes/database/TRkDatabaseException.h>

#include <algorithm>

namespace cubes::database {

namespace {

std::string asText(Value const& value) {
    if (value.IsNull()) return "NULL";
    return value.IsNumber() ? std::to_string(value.Number()) : "'" + value.Text() + "'";
}

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

// A refused row stays as it was filled in, to be corrected or given up.
void Cursor::insertDraft() {
    auto const columns = changedColumns();
    std::vector<Value> values;
    for (std::size_t const column : columns) values.push_back(draft_[column]);
    Cells posted;
    if (run(table_->statement(Operation::insert, columns), values, posted) == 0)
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
    for (Value& value : keyOf(current())) values.push_back(std::move(value));
    Cells posted;
    if (run(table_->statement(Operation::update, columns), values, posted) == 0)
        throw TRkDatabaseException(
            "table " + description().quotedName + ": the row to be changed is no longer there", sqlstate::noData);
    standOn(posted.row(0, description().columns.size()));
}

// What the current row now is, in its place in the walk.
void Cursor::standOn(std::span<Value const> row) {
    std::copy(row.begin(), row.end(), current().begin());
}

void Cursor::remove() {
    auto const key = keyOf(current());
    Cells nothing;
    if (run(table_->statement(Operation::remove, {}), key, nothing) == 0) requireGone(key);
    next();
}

// Another process may have deleted the row just before. A row that is still there would otherwise
// be met again and again by a loop that deletes all rows.
void Cursor::requireGone(std::span<Value const> key) {
    Cells found;
    if (run(table_->statement(Operation::isThere, {}), key, found) == 0) return;
    std::string text;
    bool hasNull = false;
    for (std::size_t i = 0; i < key.size(); ++i) {
        hasNull = hasNull || key[i].IsNull();
        text += (i ? ", " : "") + column(description().key[i]).name + "=" + asText(key[i]);
    }
    throw TRkDatabaseException("cannot delete the row " + text + " of table " + description().quotedName + ": " +
                                   (hasNull ? "its key holds NULL" : "the database keeps it, as a trigger may do"),
        sqlstate::rowNotDeleted);
}

bool Cursor::changeInPlace(Operation operation, std::string_view name) {
    auto const key = keyOf(current());
    Cells changed;
    if (run(table_->statement(operation, {table_->column(name)}), key, changed) == 0) return false;
    standOn(changed.row(0, description().columns.size()));
    return true;
}

bool Cursor::raise(std::string_view column) {
    return changeInPlace(Operation::raise, column);
}

bool Cursor::lower(std::string_view column) {
    return changeInPlace(Operation::lower, column);
}

}
