#pragma once

#include <cubes/Export.h>
#include <cubes/text/AnsiString.h>

namespace ProjectUtils {

/// The SQL schema name formed from a project directory: its last component in lower case, with "_" for every character
/// other than a-z, 0-9 and "_", "_" in front of a leading digit, at most 63 bytes. A non-empty `prefix` is put in
/// front, followed by "_". An empty directory throws TRkException.
CUBES_API AnsiString toSqlSchemaName(AnsiString directory, AnsiString prefix);

}
