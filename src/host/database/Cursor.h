#pragma once

#include "host/database/Statement.h"
#include "host/database/Table.h"

#include <cubes/database/TRkField.h>
#include <cubes/database/TRkTableProxy.h>

#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace cubes::database {

class Session;

/// A cursor: where it stands in its table, and the row being changed. REQUIRES of every operation:
/// the caller holds the session's lock.
class Cursor {
public:
    /// Open.
    Cursor(Session& session, std::shared_ptr<KnownTable> table) : session_(session), table_(std::move(table)) {}

    bool isOpen() const noexcept { return isOpen_; }
    /// Opens it anew, on that table.
    void open(std::shared_ptr<KnownTable> table);
    /// Releases the rows. Fields that other threads may still hold remain and stand on no row.
    void close();

    Session& session() const noexcept { return session_; }
    KnownTable const& table() const noexcept { return *table_; }
    Rktable::TRkField* field(std::string_view name);
    Rktable::TRkField* findField(std::string_view name);

    void first();
    void next();
    bool atEnd();
    bool locate(std::string_view keys, std::span<Value const> values, Rktable::LocateOptions options);
    void filter(std::string const& condition);

    void append();
    void edit();
    void post();
    void remove();
    bool raise(std::string_view column);
    bool lower(std::string_view column);
    /// Inside a transaction that writes: reads the current row anew and keeps others from changing
    /// it until the transaction ends. False when it is gone.
    bool lockRow();
    std::optional<long long> greatest(std::string_view column);

    /// A column of the row being changed, else of the current row.
    Value const& value(std::size_t column);
    void setValue(std::size_t column, Value value);
    Column const& column(std::size_t column) const noexcept { return description().columns[column]; }

private:
    // Rows are fetched as late as can be: after First() or Delete() the cursor is "ahead" of
    // rows that nobody may ask for.
    enum class Place { ahead, inBatch, onRow, atEnd };
    enum class Change { none, edit, append };

    Table const& description() const noexcept { return table_->description(); }
    std::size_t run(
        std::string const& sql, std::vector<ColumnType> const& types, std::span<Value const> values, Cells& cells);
    std::size_t run(Statement& statement, std::span<Value const> values, Cells& cells);
    std::size_t run(Statement& statement, std::span<Value const> values, Cells& cells, std::span<Value const> key);
    std::string textOf(std::span<Value const> key) const;
    void goTo(Place place) noexcept;
    void fetch();
    std::size_t fetchInto(Cells& cells, std::size_t limit);
    std::span<Value> current();
    std::vector<Value> keyOf(std::span<Value const> row) const;
    void standOn(std::span<Value const> row);
    std::vector<std::size_t> changedColumns() const;
    void insertDraft();
    void updateDraft();
    bool isGone(std::span<Value const> key);
    bool changeInPlace(Operation operation, std::string_view name);
    std::size_t runLookUp(std::string_view keys, std::span<Value const> values, Match match);
    Match matchFor(std::span<Value const> values, Rktable::LocateOptions options) const;

    Session& session_;
    std::shared_ptr<KnownTable> table_;
    bool isOpen_ = true;
    std::vector<Rktable::TRkField> fields_;
    std::string filter_;

    Place place_ = Place::ahead;
    Cells row_;
    Cells batch_;
    std::size_t index_ = 0;
    std::size_t batchRows_ = 0;
    bool isLastBatch_ = false;
    // The key behind which the next batch begins; empty: at the first row.
    std::vector<Value> behind_;

    Change change_ = Change::none;
    std::vector<Value> draft_;
    std::vector<bool> isSet_;
};

/// An open cursor that no other thread uses meanwhile.
struct LockedCursor {
    std::unique_lock<std::recursive_mutex> lock;
    Cursor& cursor;

    Cursor* operator->() const noexcept { return &cursor; }
};

/// What the rest of this folder needs of a table and applications do not.
struct CursorAccess {
    /// Throws TRkDatabaseException when the table is not open.
    static LockedCursor of(Rktable::TRkTableProxy& table) { return table.cursor(); }
};

}
