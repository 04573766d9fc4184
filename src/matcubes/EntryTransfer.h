#pragma once

#include <cubes/core/TRkCubesException.h>
#include <cubes/matcubes/TRkMatCubes.h>

#include <array>
#include <functional>
#include <optional>
#include <string>

namespace cubes::matcubes {

/// Cube number, purpose, mode, time and user, as they were handed in.
using Key = std::array<short, 5>;

/// What is thrown for an entry that exists, when that is asked for.
inline std::optional<TRkCubesException::ErrorCodes> whenExisting(
    bool failIfExists, TRkCubesException::ErrorCodes code) {
    return failIfExists ? std::optional(code) : std::nullopt;
}

/// One entry that is to become another, after their cubes were checked: within one catalogue or
/// from another one. See TRkMatCubes::Copy and Move for results and errors.
struct EntryTransfer {
    TRkMatCubes const& source;
    TRkMatCubes const& target;
    Key from;
    Key to;
    /// Nothing: an entry that exists is replaced.
    std::optional<TRkCubesException::ErrorCodes> refusal;
    bool zeroBased;

    bool copy() const;
    bool move() const;

private:
    using Table = CountedPtr<Rktable::TRkTableProxy>;
    struct Tables {
        Table source;
        Table target;
    };
    /// Places the file of the source at the path of the target.
    using Placing = std::function<bool(Tables const& tables, std::string const& source, std::string const& target)>;

    bool run(Placing const& place) const;
    bool transfer(Tables const& tables, Placing const& place) const;
};

}
