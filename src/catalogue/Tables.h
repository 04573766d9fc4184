#pragma once

#include "host/database/Transaction.h"

#include <cubes/database/TRkDatabaseException.h>

#include <array>
#include <cstddef>
#include <span>
#include <string>

/// The tables of a project: the register, the two entry tables, and what we record about entries
/// beside them.
namespace cubes::catalogue {

inline constexpr char const* registerTable = "cube";
inline constexpr char const* cubeEntriesTable = "cube4data1";
inline constexpr char const* resultEntriesTable = "cube5data1";
/// Where the files of entries lie and what they hold; it stands beside the entry table.
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
/// Counts an entry's users. A table may lack it; then nothing is counted.
inline constexpr char const* usersColumn = "usageCounter";
inline constexpr char const* directoryColumn = "directory";
inline constexpr char const* contentColumn = "content";
/// Of the file when it was stored: bytes, and microseconds since 1970 (UTC).
inline constexpr char const* sizeColumn = "size";
inline constexpr char const* changedColumn = "changed";

/// Creates the register and the entry tables that are missing, those of results in `schema`. What
/// exists is left as it is. Several processes may do so at once. Throws TRkDatabaseException.
void createMissingTables(database::Session& session, std::string const& schema);

/// The names of the first `count` key columns, joined by ";".
char const* keyList(std::size_t count);

/// Creates the table of contents beside the entry table with so many key columns, unless it exists.
void createContentTable(database::Session& session, std::string const& schema, std::size_t keyParts);

/// Removes what is recorded of an entry of a cube, if anything is and the database allows it. For
/// those who then store the entry and record nothing.
void forgetContent(database::Session& session, std::span<short const> key);

/// Whether an error on a table of ours is nothing to report: the user lacks the right to it, others
/// record the same entry at this moment, or the table was removed.
bool isNegligible(TRkDatabaseException const& error);

/// Does work on tables that a user may lack the right to, and can do without. Its failure has no
/// effect on a transaction under way.
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

/// Whether a schema holds results, so that it belongs to a project.
bool belongsToProject(database::Session& session, std::string const& schema);

}
