#include "host/database/ExclusiveAccess.h"

#include "host/database/Cursor.h"

#include <cubes/database/TRkTableProxy.h>

namespace cubes::database {

namespace {

std::string beginExclusive(Cursor const& cursor) {
    return cursor.session().dialect().beginExclusive(cursor.table().description().quotedName);
}

}

ExclusiveAccess::ExclusiveAccess(Rktable::TRkTableProxy& table)
    : transaction_(table.cursor().session(), beginExclusive(table.cursor())) {}

}
