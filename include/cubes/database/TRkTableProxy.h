#pragma once

#include <cubes/Export.h>
#include <cubes/database/ColumnName.h>
#include <cubes/database/TRkField.h>
#include <cubes/database/Value.h>
#include <cubes/text/TRkString.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace Pgaccess {
class TPgConnection;
}

namespace cubes::database {
class Cursor;
struct CursorAccess;
struct LockedCursor;
}

namespace Rktable {

/// How Locate compares. Empty: exactly.
struct LocateOptions {
    bool caseInsensitive = false;

    static constexpr LocateOptions exact() { return {}; }
    /// Texts are compared without regard to letter case, beyond ASCII too.
    static constexpr LocateOptions ignoringCase() { return {true}; }
};

/// The cursor's alias: the short name by which a catalogue picks its table among several.
struct AliasProperty {
    TRkString alias;
    TRkString const& AsString() const noexcept { return alias; }
};

/// A cursor on one database table.
///
/// Opening reads no row. Rows are fetched when they are walked, in primary-key order and in
/// bounded batches, so a walk of a large table needs little memory; a walk sees each row as it
/// was when its batch was fetched. Changes address a row by its primary key.
///
/// All operations but the constructor and the name accessors throw TRkDatabaseException when the
/// database refuses, or when the cursor is not open. Not copyable; shared through CountedPtr.
///
/// Different cursors of one connection may be used by different threads; the connection runs their
/// operations one after the other. A cursor that two threads use at once moves and changes under
/// both, but stays intact.
class CUBES_API TRkTableProxy {
public:
    /// A cursor, neither connected nor open, on `table` in `schema` (empty: no schema in front).
    TRkTableProxy(std::string table, std::string schema, std::string alias);
    ~TRkTableProxy();
    TRkTableProxy(TRkTableProxy const&) = delete;
    TRkTableProxy& operator=(TRkTableProxy const&) = delete;

    /// Uses `connection` for all later work.
    void SetConnection(Pgaccess::TPgConnection* connection);
    /// Opens the table. The cursor is then on the first row, or at the end of an empty table.
    void Open();
    /// Closes the table; a change that was not posted is lost. A closed cursor stays closed.
    void Close();

    void First();
    void Next();
    /// Whether the cursor is past the last row.
    bool GetEof();

    /// The field of that column. An unknown column throws. An exact match of the name is preferred, then a single match
    /// without regard to letter case.
    TRkField* FieldByName(ColumnName const& name);
    /// The same; null when the table has no such column.
    TRkField* FindField(ColumnName const& name);

    /// Goes to the first row, in primary-key order, whose columns equal the values; true if found.
    /// `keys`: column names joined by ";", as many as there are values. Null equals nothing.
    /// Uses one prepared statement, cached by the connection. When no row is found, the position is undefined.
    bool Locate(ColumnName const& keys, Value const& value, LocateOptions options = {});
    bool Locate(ColumnName const& keys, std::vector<Value> const& values, LocateOptions options = {});

    /// Shows only the rows that satisfy the condition of an SQL WHERE clause (empty: all) and goes to the first of
    /// them. The text is passed to the database unchanged.
    void SetFilterSQL(std::string const& condition);

    /// Starts a new row, with all columns null.
    void Append();
    /// Starts changing the current row.
    void Edit();
    /// Writes the new or changed row, which becomes the current one. Only the columns that were set are written. A new
    /// row whose key exists already throws with SqlState() "23505".
    void Post();
    /// Deletes the current row; the cursor then is on the next row or at the end. A row that others have deleted
    /// meanwhile counts as deleted. Throws when the row cannot be deleted, because its key holds null or a trigger
    /// prevents it; the cursor then stays on it.
    void Delete();

    /// Adds 1 to a whole-number column of the current row, null counting as 0, in one statement, so that concurrent
    /// processes lose no increment. False when the row no longer exists.
    bool Raise(ColumnName const& column);
    /// Subtracts 1 from a whole-number column of the current row when it is above 0, and leaves any other value, in one
    /// statement. False when the row no longer exists.
    bool Lower(ColumnName const& column);
    /// The greatest value of a whole-number column over all rows shown; nothing without rows.
    std::optional<long> Greatest(ColumnName const& column);

    /// The table's name without its schema, as the database knows it.
    TRkString GetTableName() const;
    AliasProperty GetAliasPropertyWrapper() const;

private:
    friend struct cubes::database::CursorAccess;
    std::unique_lock<std::recursive_mutex> lock() const;
    cubes::database::LockedCursor cursor() const;

    std::string table_;
    std::string schema_;
    std::string alias_;
    std::atomic<Pgaccess::TPgConnection*> connection_ = nullptr;
    std::unique_ptr<cubes::database::Cursor> cursor_;
};

}
