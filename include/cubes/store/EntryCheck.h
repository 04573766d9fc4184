#pragma once

#include <cubes/Export.h>
#include <cubes/store/EntryInfo.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>

namespace cubes {

/// What is wrong with an entry or a file of a project. Numbers are only ever added at the end.
enum class Problem {
    /// A cube has entries but is not in the register.
    unregisteredCube,
    missingFile,
    /// The row names no file inside the project's directory.
    outsideDirectory,
    /// The file cannot be opened, which says nothing about its content.
    unreadableFile,
    damagedFile,
    /// The index record is damaged; the matrix is read through HDF5.
    damagedIndex,
    /// The content does not agree with its content id.
    wrongContent,
    /// The matrix has other dimensions than most matrices of its cube.
    wrongShape,
    /// Route data whose routes do not exist.
    orphanedRouteData,
    fileWithoutRow,
    /// A temporary file that no writer uses any more.
    leftoverFile,
    // The following are notes, which are never repaired.
    /// A temporary file that may still be in use.
    recentTemporaryFile,
    /// The file records another key: it is a copy of that entry's file.
    copiedFile,
    missingParent,
    inUse,
    /// The file belongs to another project that shares the database.
    otherDirectory,
    /// The file is not here, and projects that share the database may have it.
    unknownOwner,
    /// A directory with files of entries, none of which a row names, and which record cubes that have other numbers in
    /// this database: they seem to belong to another project, and are neither reported nor repaired unless one entry is
    /// checked.
    unclaimedDirectory,
};

enum class Severity { error, note };

/// What is the same for all findings of a problem.
struct ProblemInfo {
    Problem problem;
    /// As it is written in code: "missingFile".
    char const* name;
    Severity severity;
    /// What EntryStore::repair does, as an instruction: "remove the row (--drop-rows)"; empty: nothing.
    char const* repair;
};

/// All problems in the order of their numbers.
CUBES_API std::span<ProblemInfo const> problems() noexcept;
CUBES_API ProblemInfo const& infoOf(Problem problem) noexcept;
/// "error", "note".
CUBES_API char const* nameOf(Severity severity) noexcept;

/// One thing that EntryStore::check has found. A value, which later changes do not affect.
struct Finding {
    Problem problem;
    /// The entry; of a file without a row the entry that repair restores. Nothing when there is none.
    std::optional<EntryKey> entry = {};
    /// The entry, or the cube, as users write it; empty when there is none.
    std::string text = {};
    /// The full path of the file; empty when there is none.
    std::string file = {};
    /// What was found: "there are 24 x 24 elements, most entries of Trips have 76 x 76".
    std::string detail = {};
    /// What repair does; empty: nothing.
    std::string repair = {};
    /// The number of a cube that repair registers first; 0: none.
    short cube = 0;
    /// The name for that cube, or the name that the cube of a row must still have when repair restores the row; empty:
    /// none.
    std::string cubeName = {};

    Severity severity() const noexcept { return infoOf(problem).severity; }
};

struct CheckOptions {
    /// Also reads every matrix and compares it with its content id, on all cores.
    bool deep = false;
    /// Called with the numbers of entries that are checked and that there are; may be empty.
    std::function<void(std::size_t done, std::size_t total)> progress = {};
    /// Reads the file of an entry of routes or route data as a whole, which only a provider can do, and returns what is
    /// wrong with it: empty when nothing is. A deep check calls it, from several threads; when it is empty, the content
    /// of such files is not compared.
    std::function<std::string(EntryInfo const& entry)> readRoutes = {};
};

struct RepairOptions {
    /// Removes the rows of entries whose file is missing or outside the directory.
    bool dropRows = false;
};

/// What EntryStore::repair did about a finding.
struct Repair {
    /// "the row was restored"; empty when nothing was done.
    std::string done = {};
    /// Why it could not be done; empty when it was done, or when there was nothing to do.
    std::string failure = {};
};

}
