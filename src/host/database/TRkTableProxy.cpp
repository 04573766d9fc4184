#include <cubes/database/TRkTableProxy.h>

#include "host/database/Cursor.h"
#include "host/database/Session.h"
#include "host/database/SqlState.h"
#include "host/platform/NarrowText.h"

#include <cubes/database/TPgConnection.h>
#include <cubes/database/TRkDatabaseException.h>

namespace Rktable {

using cubes::database::Cursor;
using cubes::database::LockedCursor;

TRkTableProxy::TRkTableProxy(std::string table, std::string schema, std::string alias)
    : table_(std::move(table)), schema_(std::move(schema)), alias_(std::move(alias)) {}

TRkTableProxy::~TRkTableProxy() = default;

// The lock that guards this cursor is that of its connection, which may change until it is held.
std::unique_lock<std::recursive_mutex> TRkTableProxy::lock() const {
    while (auto* const connection = connection_.load()) {
        auto held = connection->Backend().lock();
        if (connection == connection_) return held;
    }
    return {};
}

LockedCursor TRkTableProxy::cursor() const {
    auto held = lock();
    if (!held || !cursor_ || !cursor_->isOpen())
        throw TRkDatabaseException("table \"" + table_ + "\" is not open", cubes::database::sqlstate::wrongCursorState);
    return {std::move(held), *cursor_};
}

void TRkTableProxy::SetConnection(Pgaccess::TPgConnection* connection) {
    for (;;) {
        auto const held = lock();
        auto* before = held ? connection_.load() : nullptr;
        if (held && before != connection) cursor_.reset();
        if (held && cursor_) cursor_->close();
        if (connection_.compare_exchange_strong(before, connection)) return;
    }
}

void TRkTableProxy::Open() {
    auto const held = lock();
    if (!held)
        throw TRkDatabaseException(
            "table \"" + table_ + "\" cannot be opened without a connection", cubes::database::sqlstate::notConnected);
    auto& session = connection_.load()->Backend();
    auto known = session.systemTables().find(schema_, table_);
    if (!known)
        throw TRkDatabaseException(
            session.url() + ": there is no table " + session.dialect().qualifiedName(schema_, table_),
            cubes::database::sqlstate::missingTable);
    if (cursor_)
        cursor_->open(std::move(known));
    else
        cursor_ = std::make_unique<Cursor>(session, std::move(known));
}

void TRkTableProxy::Close() {
    auto const held = lock();
    if (held && cursor_) cursor_->close();
}

void TRkTableProxy::First() {
    cursor()->first();
}

void TRkTableProxy::Next() {
    cursor()->next();
}

bool TRkTableProxy::GetEof() {
    return cursor()->atEnd();
}

TRkField* TRkTableProxy::FieldByName(ColumnName const& name) {
    return cursor()->field(name.str());
}

TRkField* TRkTableProxy::FindField(ColumnName const& name) {
    return cursor()->findField(name.str());
}

bool TRkTableProxy::Locate(ColumnName const& keys, Value const& value, LocateOptions options) {
    return cursor()->locate(keys.str(), std::span(&value, 1), options);
}

bool TRkTableProxy::Locate(ColumnName const& keys, std::vector<Value> const& values, LocateOptions options) {
    return cursor()->locate(keys.str(), values, options);
}

void TRkTableProxy::SetFilterSQL(std::string const& condition) {
    cursor()->filter(condition);
}

void TRkTableProxy::Append() {
    cursor()->append();
}

void TRkTableProxy::Edit() {
    cursor()->edit();
}

void TRkTableProxy::Post() {
    cursor()->post();
}

void TRkTableProxy::Delete() {
    cursor()->remove();
}

bool TRkTableProxy::Raise(ColumnName const& column) {
    return cursor()->raise(column.str());
}

bool TRkTableProxy::Lower(ColumnName const& column) {
    return cursor()->lower(column.str());
}

std::optional<long> TRkTableProxy::Greatest(ColumnName const& column) {
    auto const greatest = cursor()->greatest(column.str());
    return greatest ? std::optional(static_cast<long>(*greatest)) : std::nullopt;
}

TRkString TRkTableProxy::GetTableName() const {
    return TRkString(table_);
}

AliasProperty TRkTableProxy::GetAliasPropertyWrapper() const {
    return {TRkString(alias_)};
}

ColumnName::ColumnName(wchar_t const* name) : text_(name ? cubes::platform::toNarrow(name) : std::string()) {}

ColumnName::ColumnName(std::wstring const& name) : text_(cubes::platform::toNarrow(name)) {}

}
