#pragma once

#include "host/database/Transaction.h"

#include <cubes/database/TRkDatabaseException.h>

#include <array>
#include <cstddef>
#include <span>
#include <string>

/// The tables of a project: the register, the two entry tables, and the table of what the library records about
/// entries.
namespace cubes::catalogue {

inline constexpr char const* registerTable = "cube";
inline constexpr char const* cubeEntriesTable = "cube4data1";
inline constexpr char const* resultEntriesTable = "cube5data1";
/// Records the directory and the content id of entries; it is in the schema of the entry table.
inline constexpr char const* contentTable = "cubes_content";

/// The schema of the entries of cubes, which projects on one database share.
inline constexpr char const* sharedSchema = "public";

/// The entries of cubes have the first five.
inline constexpr std::array<char const*, 7> keyColumns = {
    "cubenr", "purpose", "mode", "time", "user", "result", "iteration"};
inline constexpr std::array<char const*, 7> parentColumns = {
    "parentcubenr", "parentpurpose", "parentmode", "parenttime", "parentuser", "parentresult", "parentiteration"};
inline constexpr char const* nameColumn = "name";
inline constexpr char const* filenameColumn = "filename";
/// Counts an entry's users. A table may lack it; then users are not counted.
inline constexpr char const* usersColumn = "usageCounter";
inline constexpr char const* directoryColumn = "directory";
inline constexpr char const* contentColumn = "content";
/// Of the file when it was stored: bytes, and microseconds since 1970 (UTC).
inline constexpr char const* sizeColumn = "size";
inline constexpr char const* changedColumn = "changed";

/// Creates the register and the entry tables that are missing, those of results in `schema`. Existing tables are left
/// unchanged. Several processes may do so at once. Throws TRkDatabaseException.
void createMissingTables(database::Session& session, std::string const& schema);

/// The names of the first `count` key columns, joined by ";".
char const* keyList(std::size_t count);

/// Creates the table of contents for the entry table with that many key columns, unless it exists.
void createContentTable(database::Session& session, std::string const& schema, std::size_t keyParts);

/// Removes the record of an entry of a cube, if there is one and the database allows it; for callers that then store
/// the entry without recording it.
void forgetContent(database::Session& session, std::span<short const> key);

/// Whether an error on the library's own table can be ignored: the user lacks the permission, another process records
/// the same entry at the same time, or the table was removed.
bool isNegligible(TRkDatabaseException const& error);

/// Does optional work on tables for which a user may lack the permission. Its failure does not affect a running
/// transaction.
template <typename Work>
void whereAllowed(database::Session& session, Work const& work) {
    try {
        database::Savepoint savepoint(session);
        work();
        savepoint.commit();
    } catch (TRkDatabaseException const& error) {
        if (!isNegligible(error)) throw;
    }
}

/// Whether a schema holds results, and so belongs to a project.
bool belongsToProject(database::Session& session, std::string const& schema);

}
