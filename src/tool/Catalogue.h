#pragma once

#include "tool/Command.h"
#include "tool/EntryFamily.h"

#include <cubes/matcubes/TRkMatCubes.h>
#include <cubes/matrix/TRkMatrix.h>
#include <cubes/project/Project.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace cubes::tool {

/// What the commands ask of a project: its cubes and entries, and its results. What is asked for
/// and not there is a Refusal; a matrix that is there and cannot be read, a Failure.
class Catalogue {
public:
    explicit Catalogue(std::string const& directory);
    explicit Catalogue(Project project);
    /// The project that the command line names.
    static Catalogue open(Surroundings const& surroundings);
    /// Creates a project. Throws Refusal when the directory is already one; prints a note when the database
    /// holds entries of other projects.
    static Catalogue create(std::string const& directory, ProjectOptions const& options);

    Project const& project() const noexcept { return project_; }

    /// The cubes of the register in the order of their numbers. What the register holds of the
    /// kinds is left out.
    std::vector<Cube> cubes() const;
    /// In the order of their keys: those of the cubes, then kind by kind.
    std::vector<Entry> entries() const;
    std::vector<Entry> entriesOf(Cube const& cube) const;
    Cube cube(CubeWord const& word) const;
    /// The cube of that number, whether it is there or not.
    Cube cubeOf(short number) const;
    Entry entry(EntryWord const& word) const;
    /// The same, whether it is there or not; its cube need not be there when it is given by number.
    Entry possibleEntry(EntryWord const& word) const;
    /// What a row says of its parent.
    Entry entryOf(ParentNumbers const& numbers) const;

    bool has(CubeWord const& word) const;
    bool has(Entry const& entry) const;
    /// Whether somebody uses the entry, so that it must stay as it is.
    bool isInUse(Entry const& entry) const;
    /// Where the entry's matrix is; empty when its row names no file inside its directory.
    std::string path(Entry const& entry) const;
    std::unique_ptr<TRkMatrix> matrix(Entry const& entry) const;
    /// The number of those who use the entry.
    long users(Entry const& entry) const;

    /// Registers the cube; one of that name stays as it is.
    Cube add(std::string const& name);
    /// Stores the matrix, in place of the one that was there; a cube given by a new name is
    /// registered. An entry in use is refused. When it fails nothing has changed.
    Entry store(EntryWord const& word, TRkMatrix const& matrix);
    /// The same for routes: `write` makes the file at the path that it is told.
    Entry storeRoutes(EntryWord const& word, std::function<void(Entry const&, std::string const& path)> const& write);
    void remove(Cube const& cube);
    /// False when somebody else has removed it meanwhile.
    bool remove(Entry const& entry);
    /// Raises or lowers the number of users; below 0 is refused.
    void use(Entry const& entry);
    void leave(Entry const& entry);

    /// The entries of a kind that have a parent.
    std::vector<Derived> derivedOf(Kind const& kind) const;
    /// A parent that is gone is told like any other: rows keep its key.
    std::optional<Entry> parentOf(Entry const& entry) const;
    /// In the order of their keys, kind by kind.
    std::vector<Entry> childrenOf(Entry const& entry) const;
    /// An entry in use is refused: a change of parent starts the count of its users anew.
    void setParent(Entry const& entry, ParentNumbers const& parent);

    void refuseUse(Entry const& entry) const;

    /// What becomes of an entry that is there already.
    enum class Existing { replaced, refused };
    /// Makes the entry of the word what `from` is; a cube given by a new name is registered. A copy
    /// has no parent; what is moved keeps its own. An entry in use is refused: the target, and the
    /// source of a move. Onto itself nothing happens. When it fails nothing has changed, save that
    /// a directory may be lost that the move of another was to replace.
    Entry copy(Entry const& from, EntryWord const& to, Existing existing);
    Entry move(Entry const& from, EntryWord const& to, Existing existing);
    /// The same from another project, which may have another database. This project is the current
    /// one afterwards. Projects that keep their files in one directory are refused.
    Entry copyFrom(Catalogue& source, Entry const& from, EntryWord const& to, Existing existing);
    Entry moveFrom(Catalogue& source, Entry const& from, EntryWord const& to, Existing existing);

private:
    static constexpr char const* noEntryTable = "the database has no entry table";

    EntryFamily& familyOf(Cube const& cube) const;
    std::string hintFor(CubeWord const& word) const;
    using FilePlacing = bool (EntryFamily::*)(
        EntryFamily const& source, Entry const& from, Entry const& to, bool failIfExists);
    template <typename Action>
    Entry inCube(EntryWord const& word, Action const& action);
    void refuseExisting(Entry const& to, Existing existing) const;
    void place(Entry const& from, Entry const& to, FilePlacing placing, Existing existing);
    std::string placeOf(Entry const& entry) const;
    bool fileIsThere(Entry const& entry) const;
    void takeBack(Entry const& entry, bool hadFile);
    TRkMatrix lockOf(Entry const& entry) const;
    void giveParent(Entry const& entry, ParentNumbers const& parent);
    std::string whyNotPlaced(std::string const& file, Entry const& to) const;
    Entry copyRoutes(std::string const& file, Entry const& from, EntryWord const& word, Existing existing);
    void refuseSharedDirectory(Catalogue const& source, Entry const& from, EntryWord const& to) const;
    std::string directoryOf(Kind const* kind) const;
    void storeAt(Entry const& entry, TRkMatrix const& matrix);
    template <typename Write>
    void fill(Entry const& entry, Write const& write);
    void refuseToReplace(Entry const& entry) const;
    void write(Entry const& entry, TRkMatrix const& matrix);

    Project project_;
    TRkMatCubes register_;
    std::unique_ptr<EntryFamily> cubeEntries_;
    std::map<Kind const*, std::unique_ptr<EntryFamily>> kinds_;
};

/// The numbers that the row of a child of this entry holds.
ParentNumbers numbersOf(Entry const& parent);

}
