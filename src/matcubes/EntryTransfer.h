#pragma once

#include <cubes/core/TRkCubesException.h>
#include <cubes/matcubes/TRkMatCubes.h>

#include "catalogue/EntryTable.h"

#include <functional>
#include <optional>
#include <string>

namespace cubes::matcubes {

/// The error for an existing target; nothing when it is to be replaced.
inline std::optional<TRkCubesException::ErrorCodes> whenExisting(
    bool failIfExists, TRkCubesException::ErrorCodes code) {
    return failIfExists ? std::optional(code) : std::nullopt;
}

/// Removes what the store recorded of an entry's file, which is no longer true once it is written here.
void forgetContent(Pgaccess::TPgConnection* connection, catalogue::CubeKey const& key);

/// Copies or moves an entry after the cubes were checked, within one cube object or from another one. See
/// TRkMatCubes::Copy and Move for results and errors.
struct EntryTransfer {
    TRkMatCubes const& source;
    TRkMatCubes const& target;
    /// As the caller passed them.
    catalogue::CubeKey from;
    catalogue::CubeKey to;
    /// Thrown when the target exists; nothing: it is replaced.
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
    /// Puts the file of the source at the path of the target.
    using Placing = std::function<bool(Tables const& tables, std::string const& source, std::string const& target)>;

    bool run(Placing const& place) const;
    bool transfer(Tables const& tables, Placing const& place) const;
};

}
