#pragma once

#include "catalogue/EntryTable.h"
#include "catalogue/Kinds.h"
#include "catalogue/Register.h"
#include "host/hdf5/IndexRecord.h"

#include <cubes/database/TRkTableProxy.h>
#include <cubes/store/EntryInfo.h>
#include <cubes/text/CountedPtr.h>

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

class TRkGlobalSettings;
namespace Pgaccess {
class TPgConnection;
}
namespace cubes::database {
class Session;
}

namespace cubes::store {

/// An entry table with its own cursor.
class Rows {
public:
    Rows(CountedPtr<Rktable::TRkTableProxy> cursor, std::size_t keyParts)
        : cursor_(std::move(cursor)), table_(*cursor_, keyParts) {}

    catalogue::EntryTable* operator->() noexcept { return &table_; }
    catalogue::EntryTable const* operator->() const noexcept { return &table_; }
    Rktable::TRkTableProxy& cursor() const { return *cursor_; }

private:
    CountedPtr<Rktable::TRkTableProxy> cursor_;
    catalogue::EntryTable table_;
};

/// What is recorded of an entry's file.
struct ContentRecord {
    /// The identity of the directory that the file is in.
    hdf5::Id128 directory;
    hdf5::Id128 content;
    /// In bytes.
    std::uint64_t size;
    /// When the file was last changed: microseconds since 1970 (UTC).
    std::int64_t changed;
};

/// The tables, directories and cubes of one project, on its own connection.
class StoreTables {
public:
    /// REQUIRES: all outlive this object.
    StoreTables(Pgaccess::TPgConnection& connection, TRkGlobalSettings const& settings, std::string const& schema)
        : connection_(connection), settings_(settings), schema_(schema) {}

    database::Session& session() const;
    catalogue::Register cubes() const;
    /// The table of results, or that of the entries of cubes. Throws TRkDatabaseException when it is
    /// not there.
    Rows rows(bool ofResults) const;

    /// The number of rows by the number of their cube.
    std::map<short, std::size_t> counts(bool ofResults) const;

    /// The schemas of the other projects on the database.
    std::vector<std::string> otherProjects() const;
    bool hasOtherProjects() const { return !otherProjects().empty(); }
    /// The rows of another project, with the directories of this one. REQUIRES: `schema` outlives the result.
    StoreTables ofProject(std::string const& schema) const { return {connection_, settings_, schema}; }

    /// The directory of the files of these entries, with a delimiter at its end.
    std::string directory(bool ofResults) const;
    /// The identity of that directory; unknown when it has none and cannot be given one.
    hdf5::Id128 identity(bool ofResults) const;
    /// The full path of a row's file; empty when the row names none that may be used.
    std::string path(EntryKey const& key, std::string const& storedName) const;

    /// The entry of the cursor's row.
    EntryInfo info(Rows const& rows, bool ofResults, catalogue::Register& names) const;
    std::string text(EntryKey const& key) const;
    std::string text(EntryKey const& key, catalogue::Register& names) const;
    /// What is recorded of entries beside their rows; nothing without such a table.
    std::optional<Rows> contents(bool ofResults) const;
    /// The identity of the directory in which an entry was stored; unknown when it was not recorded.
    static hdf5::Id128 recordedDirectory(EntryKey const& key, Rows& contents);
    // These do nothing when the user lacks the right to.
    /// Creates the table of contents unless it exists.
    void requireContentTable(bool ofResults) const;
    /// What is to be recorded of an entry's file, which may be a temporary one. The content of a damaged file is
    /// unknown.
    ContentRecord recordOf(EntryKey const& key, std::string const& file) const;
    /// Records an entry's file, or that entries are gone.
    void record(EntryKey const& key, ContentRecord const& record) const;
    void forget(std::vector<EntryInfo> const& entries) const;

private:
    std::string contentSchema(bool ofResults) const;
    bool hasContentTable(bool ofResults) const;
    bool sharesContentTable(bool ofResults) const;

    Pgaccess::TPgConnection& connection_;
    TRkGlobalSettings const& settings_;
    std::string const& schema_;
    mutable std::mutex identityMutex_;
    mutable hdf5::Id128 identities_[2];
};

/// The text of a key in numbers alone.
std::string textOf(std::span<short const> numbers);
EntryKey keyOf(std::span<short const> numbers);
/// Nothing for a row without a parent cube and parts.
std::optional<EntryKey> parentOf(catalogue::ResultKey const& numbers);
/// The numbers that a child's row holds of its parent.
catalogue::ResultKey numbersOf(std::optional<EntryKey> const& parent);

}
