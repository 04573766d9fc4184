#pragma once

#include <array>
#include <cstddef>
#include <string>

namespace cubes::database {
class Session;
}

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

/// Creates the register and the entry tables that are missing, those of results in `schema`. What
/// exists is left as it is. Several processes may do so at once. Throws TRkDatabaseException.
void createMissingTables(database::Session& session, std::string const& schema);

/// Creates the table of contents beside the entry table with so many key columns, unless it exists.
void createContentTable(database::Session& session, std::string const& schema, std::size_t keyParts);

/// Whether a schema holds results, so that it belongs to a project.
bool belongsToProject(database::Session& session, std::string const& schema);

}
