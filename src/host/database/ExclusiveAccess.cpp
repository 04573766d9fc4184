#include "host/database/ExclusiveAccess.h"

#include "host/database/Cursor.h"

#include <cubes/database/TRkTableProxy.h>

namespace cubes::database {

namespace {

std::string beginExclusive(Cursor const& cursor) {
    return cursor.session().dialect().beginExclusive(cursor.table().description().quotedName);
}

}

ExclusiveAccess::ExclusiveAccess(Rktable::TRkTableProxy& table) : ExclusiveAccess(table.cursor()) {}

ExclusiveAccess::ExclusiveAccess(LockedCursor const& cursor)
    : transaction_(cursor->session(), beginExclusive(cursor.cursor)) {}

}
