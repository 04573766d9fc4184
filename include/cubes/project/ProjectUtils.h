#pragma once

#include <cubes/Export.h>
#include <cubes/text/AnsiString.h>

namespace ProjectUtils {

/// The SQL schema name formed from a project directory: its last component in lower case,
/// everything outside a-z, 0-9 and "_" made "_", "_" in front of a leading digit, at most 63
/// bytes. A non-empty `prefix` goes in front with "_". An empty directory throws TRkException.
CUBES_API AnsiString toSqlSchemaName(AnsiString directory, AnsiString prefix);

}
