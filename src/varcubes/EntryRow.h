#pragma once

#include <cubes/database/TRkTableProxy.h>
#include <cubes/varcubes/TRkVarCubes.h>

#include <array>
#include <memory>
#include <string>

namespace cubes::varcubes {

/// Cube number, purpose, mode, time, user, result, iteration: of an entry, or of its parent.
using Key = std::array<short, 7>;

/// The columns of a key, in its order.
inline constexpr std::array<char const*, 7> keyColumns = {
    "cubenr", "purpose", "mode", "time", "user", "result", "iteration"};

/// No parent: no cube and no part set.
inline constexpr Key noParent = {0, -1, -1, -1, -1, -1, -1};

/// The columns of an entry's row, on an open cursor. What a column that is not there would hold
/// counts as null.
class EntryRow {
public:
    /// REQUIRES: the cursor outlives this object.
    explicit EntryRow(Rktable::TRkTableProxy& table);

    bool hasKey() const noexcept;

    /// Writes the row of a new entry into a cursor that appends. REQUIRES: hasKey().
    void fill(Key const& key, Key const& parent, std::string const& filename);
    /// Gives an entry that exists, in a cursor that edits, another parent.
    void changeParent(Key const& parent);

    /// The entry without its file name. REQUIRES: hasKey().
    std::unique_ptr<TRkVarCubes::TKey> read() const;
    TRkString filename() const;
    /// Whether somebody uses the entry; a counter below 0 counts nobody.
    bool isUsed() const;

    /// The condition of SQL that the rows of a cube satisfy.
    std::string isOfCube(short cubenr) const;
    /// The condition that the rows of the parent's children satisfy.
    std::string isChildOf(Key const& parent) const;

private:
    using Fields = std::array<Rktable::TRkField*, 7>;

    Key parent() const;

    Fields key_;
    Fields parent_;
    Rktable::TRkField* filename_;
    Rktable::TRkField* counter_;
};

}
