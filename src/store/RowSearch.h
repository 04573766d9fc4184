#pragma once

#include "host/matrix/StagedFile.h"
#include "store/StoreTables.h"

#include <optional>
#include <string>

namespace cubes::store {

/// The entry that a file records; nothing when it records none.
std::optional<EntryKey> keyOf(matrix::FileStamp const& stamp);

/// The name of its cube that a file records; empty where it records none, or only the beginning of a long name.
std::string cubeIn(matrix::FileStamp const& stamp);
/// Whether a cube of that name may have that number: it has it, or neither is registered, or the name is empty.
bool fitsRegister(catalogue::Register& names, short number, std::string const& cube);

/// The name of a file as a row would store it; empty for one that is not in the directory of such entries.
std::string storedNameOf(StoreTables const& tables, bool ofResults, std::string const& path);

/// Finds the rows that name a file in a directory of the project. Throws TRkDatabaseException.
class RowSearch {
public:
    /// REQUIRES: `tables` outlives this object.
    RowSearch(StoreTables const& tables, std::string path, std::optional<matrix::FileStamp> stamp);

    /// Whether the row of the entry of its name, or of the entry that the file records, names the file.
    bool isNamedByItsEntry() const { return isNamedByItsEntry(tables_); }
    /// Whether any row of the project names the file.
    bool isNamed() const;
    /// Another project on the database that stores results in the same directory and names the file, as a sentence:
    /// "it belongs to the project trips"; empty when there is none.
    std::string otherOwner() const;

private:
    bool isNamedByItsEntry(StoreTables const& tables) const;
    /// Goes to a row that names the file as the file is called now.
    bool locateByName(StoreTables const& tables, Rows& rows, bool ofResults) const;
    bool belongsTo(StoreTables const& other) const;
    bool liesHere(StoreTables const& other, EntryKey const& key) const;

    StoreTables const& tables_;
    std::string path_;
    std::optional<matrix::FileStamp> stamp_;
};

}
