#pragma once

#include <cubes/database/TRkDatabaseException.h>
#include <cubes/database/TRkTableProxy.h>
#include <cubes/text/CountedPtr.h>

#include <string>

class AnsiString;
class TRkDBDataDictionary;

/// What entry families share in working on their tables. An open cursor is placed on a row.
namespace cubes {

/// The data table of that alias in a schema, neither connected nor open; empty when there is none.
CountedPtr<Rktable::TRkTableProxy> buildEntryTable(
    TRkDBDataDictionary& dictionary, AnsiString const& schema, char const* alias);

/// Posts the row. False when the database refuses it for the reason given.
inline bool postUnless(Rktable::TRkTableProxy& table, bool (TRkDatabaseException::*isReason)() const noexcept) {
    try {
        table.Post();
        return true;
    } catch (TRkDatabaseException const& error) {
        if (!(error.*isReason)()) throw;
        return false;
    }
}

/// Adds the row that `append` begins and fills in, unless another process has added it meanwhile,
/// which `isThere` finds out: its row is as good. When that is gone again the row is added anew,
/// once. Any other duplicate is an error.
template <typename Append, typename IsThere>
void addUnlessTaken(Rktable::TRkTableProxy& table, Append const& append, IsThere const& isThere) {
    append();
    if (postUnless(table, &TRkDatabaseException::IsDuplicateKey) || isThere()) return;
    append();
    table.Post();
}

/// The native full path of the file that the row names; empty when it names none that may be used.
std::string fileOfRow(Rktable::TRkTableProxy& table, std::string const& directory);

/// Deletes the row and gives its file's path, for the file to go after it: a file without a row is
/// harmless, a row without its file is not.
std::string deleteRow(Rktable::TRkTableProxy& table, std::string const& directory);

/// The column that counts an entry's users. A table may lack it; then nothing is counted.
inline constexpr char const* usageColumn = "usageCounter";

/// Whether there is a table and it counts users.
bool countsUsers(CountedPtr<Rktable::TRkTableProxy> const& table);

/// Whether nobody uses the row's entry.
bool isFree(Rktable::TRkTableProxy& table);

}
