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

ExclusiveAccess::ExclusiveAccess(Rktable::TRkTableProxy& table) : ExclusiveAccess(table.cursor()) {}

ExclusiveAccess::ExclusiveAccess(LockedCursor const& cursor)
    : transaction_(cursor->session(), cursor->session().dialect().lockTable(cursor->table().description().quotedName)) {
}

}
