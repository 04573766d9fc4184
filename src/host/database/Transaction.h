#pragma once

#include "host/database/Session.h"

#include <optional>

namespace Rktable {
class TRkTableProxy;
}

namespace cubes::database {

struct LockedCursor;

/// A transaction that is rolled back unless it is committed. It holds the session's lock, so that
/// no other thread's statements get into it. Inside a transaction that is under way already, the
/// caller's or another one of these, it is a savepoint: the outer transaction decides in the end.
class Transaction {
public:
    /// `lock`: SQL that locks what the transaction needs, from the session's dialect.
    /// Throws TRkDatabaseException.
    explicit Transaction(Session& session, std::string const& lock = {});
    ~Transaction();
    Transaction(Transaction const&) = delete;
    Transaction& operator=(Transaction const&) = delete;

    /// Makes the changes last. Throws TRkDatabaseException when they are lost.
    void commit();

private:
    std::unique_lock<std::recursive_mutex> lock_;
    Session& session_;
    bool isOpen_ = true;
};

/// Keeps all others from writing to a table until it is committed or goes out of scope, which
/// rolls back what was done meanwhile. Others that read are not disturbed; others that write wait.
/// What was read before may have changed since: read what matters inside.
class ExclusiveAccess {
public:
    /// REQUIRES: the cursor is open. Throws TRkDatabaseException when the table cannot be locked.
    explicit ExclusiveAccess(Rktable::TRkTableProxy& table);

    /// Makes the changes last. Throws TRkDatabaseException when they are lost.
    void commit() { transaction_.commit(); }

private:
    explicit ExclusiveAccess(LockedCursor const& cursor);

    Transaction transaction_;
};

/// Inside a transaction: reads the cursor's row anew and keeps others from changing it until the
/// transaction ends. False when it is gone. Throws TRkDatabaseException.
bool lockRow(Rktable::TRkTableProxy& table);

/// A savepoint where a transaction is under way, and nothing elsewhere. An error before commit()
/// leaves that transaction as it was: PostgreSQL would refuse all its further statements.
class Savepoint {
public:
    /// Throws TRkDatabaseException.
    explicit Savepoint(Session& session);
    /// On the connection of an open cursor.
    explicit Savepoint(Rktable::TRkTableProxy& table);

    /// Keeps the changes since. Throws TRkDatabaseException when they are lost.
    void commit();

private:
    std::unique_lock<std::recursive_mutex> lock_;
    std::optional<Transaction> transaction_;
};

}
