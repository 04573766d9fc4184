#include "host/database/Transaction.h"

#include "host/database/Cursor.h"

#include <cubes/database/TRkTableProxy.h>

namespace cubes::database {

Transaction::Transaction(Session& session, std::string const& lock) : lock_(session.lock()), session_(session) {
    session_.begin(lock);
}

Transaction::~Transaction() {
    if (isOpen_) session_.rollback();
}

void Transaction::commit() {
    isOpen_ = false;
    session_.commit();
}

ExclusiveAccess::ExclusiveAccess(Rktable::TRkTableProxy& table) : ExclusiveAccess(CursorAccess::of(table)) {}

ExclusiveAccess::ExclusiveAccess(LockedCursor const& cursor)
    : transaction_(cursor->session(), cursor->session().dialect().lockTable(cursor->table().description().quotedName)) {
}

bool lockRow(Rktable::TRkTableProxy& table) {
    return CursorAccess::of(table)->lockRow();
}

Savepoint::Savepoint(Session& session) : lock_(session.lock()) {
    if (session.isInTransaction()) transaction_.emplace(session);
}

Savepoint::Savepoint(Rktable::TRkTableProxy& table) : Savepoint(CursorAccess::of(table)->session()) {}

void Savepoint::commit() {
    if (transaction_) transaction_->commit();
}

}
