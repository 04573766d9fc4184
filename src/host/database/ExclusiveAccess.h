#pragma once

#include "host/database/Transaction.h"

namespace Rktable {
class TRkTableProxy;
}

namespace cubes::database {

struct LockedCursor;

/// Keeps all others from writing to a table until it is committed or goes out of scope, which
/// gives up what was done meanwhile. Others that read are not disturbed; others that write wait.
/// What was read before may have changed since: read what matters inside. Does not nest.
class ExclusiveAccess {
public:
    /// REQUIRES: the cursor is open. Throws TRkDatabaseException when the table cannot be had.
    explicit ExclusiveAccess(Rktable::TRkTableProxy& table);

    /// Makes the changes last. Throws TRkDatabaseException when they are lost.
    void commit() { transaction_.commit(); }

private:
    explicit ExclusiveAccess(LockedCursor const& cursor);

    Transaction transaction_;
};

}
