#pragma once

#include <cubes/database/TRkDatabaseException.h>
#include <cubes/database/TRkTableProxy.h>
#include <cubes/database/Value.h>
#include <cubes/text/CountedPtr.h>

#include <array>
#include <cstddef>
#include <functional>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <vector>

class AnsiString;
class TRkDBDataDictionary;

/// The tables of entries: one with four key parts beside the cube number, one with six.
namespace cubes::catalogue {

/// The number of a cube, then purpose, mode, time and user; of a result also result and iteration.
template <std::size_t Size>
using Key = std::array<short, Size>;
using CubeKey = Key<5>;
using ResultKey = Key<7>;

/// A result's parent: the number of its cube and six key parts. What is not set is 0 for the cube
/// and -1 for a part, and null in the table.
inline constexpr ResultKey noParent = {0, -1, -1, -1, -1, -1, -1};

/// The stored form of a caller's key: purpose, mode, time and user are one-based. Nothing when one
/// of them has no successor in 16 bits.
template <std::size_t Size>
std::optional<Key<Size>> storedKey(Key<Size> key, bool zeroBased) {
    constexpr std::size_t firstShifted = 1;
    constexpr std::size_t lastShifted = 4;
    for (std::size_t i = firstShifted; zeroBased && i <= lastShifted; ++i) {
        if (key[i] == std::numeric_limits<short>::max()) return std::nullopt;
        ++key[i];
    }
    return key;
}

/// "[1,2,3,4]": the parts of a key as users read them.
std::string displayKey(std::span<short const> parts);

/// Repeats an attempt to add the row of a key until it succeeds: it fails when another process adds the row first and
/// removes it again before it is found. Throws TRkDatabaseException when that happens again and again.
void addAmongOthers(std::span<short const> key, std::function<bool()> const& attempt);

/// The table of that alias among those that the dictionary builds for a schema, neither connected
/// nor open; empty when there is none.
CountedPtr<Rktable::TRkTableProxy> buildEntryTable(
    TRkDBDataDictionary& dictionary, AnsiString const& schema, char const* alias);

/// The result of `lookUp`; false when its table was dropped since it was last used.
template <typename LookUp>
bool falseWithoutTable(LookUp const& lookUp) {
    try {
        return lookUp();
    } catch (TRkDatabaseException const& error) {
        if (!error.IsMissingTable()) throw;
        return false;
    }
}

/// An entry table through an open cursor on it. Columns that a table may lack (the parent, the
/// counter, the file name) read as null and are not written.
///
/// REQUIRES of all operations on "the row": the cursor is on one.
class EntryTable {
public:
    /// `keyParts`: 5 or 7, the number of key columns with the cube's. REQUIRES: the cursor outlives this object.
    EntryTable(Rktable::TRkTableProxy& cursor, std::size_t keyParts) : cursor_(cursor), keyParts_(keyParts) {}

    /// Goes to the row of a key; its size decides the key columns.
    bool locate(std::span<short const> key);
    /// The same inside a transaction; others cannot change the row until it ends.
    bool locateAndLock(std::span<short const> key);
    /// Whether the table has all key columns.
    bool hasKey() const;
    /// Throws TRkDatabaseException, naming the first key column that the table lacks.
    void requireKey() const;
    /// The same for the columns of the parent.
    void requireParent() const;

    /// Adds a row with a counter of 0. False when a row of that key exists.
    [[nodiscard]] bool insert(
        std::span<short const> key, std::string const& filename, ResultKey const& parent = noParent);
    /// Gives the row another parent. As the fixed classes do it: a parent cube of 0 and six parts of
    /// -1 are stored as null, other parts as they are, and the counter starts anew (null without
    /// parts, else 0). False when the row is gone.
    [[nodiscard]] bool changeParent(ResultKey const& parent);
    /// The same without touching the counter; what is not set is stored as null.
    [[nodiscard]] bool setParent(ResultKey const& parent);
    /// Deletes the row and returns the path of its file, for the file to go after it: a file
    /// without a row is harmless, a row without its file is not.
    std::string remove(std::string const& directory);
    /// Adds 1 to the row's counter, or takes 1 from it if it is above 0, in one statement. False
    /// when the row is gone or users are not counted.
    [[nodiscard]] bool raiseUsers();
    [[nodiscard]] bool lowerUsers();
    /// Whether the table has a column for the number of users.
    bool countsUsers() const;

    std::vector<short> key() const;
    ResultKey parent() const;
    std::string filename() const;
    /// The native full path of the row's file; empty when it names none that may be used.
    std::string path(std::string const& directory) const;
    /// The number of users; 0 when it is null or not kept.
    long users() const;

    /// The SQL conditions that the rows of a cube, and the children of a parent, satisfy.
    std::string ofCube(short cubenr) const;
    std::string childrenOf(ResultKey const& parent) const;

private:
    /// The columns of a row; null for one that the table lacks.
    struct Fields {
        std::array<Rktable::TRkField*, 7> key{};
        std::array<Rktable::TRkField*, 7> parent{};
        Rktable::TRkField* filename = nullptr;
        Rktable::TRkField* users = nullptr;
    };
    Fields const& fields() const;

    Rktable::TRkTableProxy& cursor_;
    std::size_t keyParts_;
    // Found when a whole row is first read: a look-up needs none of them.
    mutable std::optional<Fields> fields_;
};

}
