#pragma once

#include <cubes/Export.h>
#include <cubes/matrix/TRkMatrix.h>
#include <cubes/store/EntryCheck.h>
#include <cubes/store/EntryInfo.h>
#include <cubes/store/EntryKey.h>
#include <cubes/store/StoreError.h>

#include <cstddef>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cubes {

class EntryStore;

namespace catalogue {
class EntryTable;
}

namespace store {
class EntryWalk;
class StoreTables;
struct Task;
}

/// What to do when the target exists.
enum class OnExisting { replace, fail };

struct PutOptions {
    /// The entry that a result was derived from. Nothing: an entry that exists keeps its parent.
    std::optional<EntryKey> parent = {};
    OnExisting exists = OnExisting::replace;
};

struct GetOptions {
    /// Whether the matrix is verified, which reads all of it: damaged when its elements or zone numbers do not agree
    /// with the checksum in its file. Otherwise a plain file is mapped and read as it is accessed, unverified.
    bool verify = false;
};

struct CopyOptions {
    OnExisting exists = OnExisting::replace;
};

/// Protects an entry while it lives: its usage counter is raised by one. Movable. The counter of a
/// process that was killed stays raised; EntryStore::removeUser lowers it.
/// REQUIRES: the store outlives it.
class CUBES_API InUse {
public:
    InUse(InUse&& other) noexcept;
    InUse& operator=(InUse&&) = delete;
    /// Lowers the counter; a failure goes unnoticed. release() reports it.
    ~InUse();

    /// Lowers the counter now. Throws StoreError when that fails.
    void release();

private:
    friend class EntryStore;
    InUse(EntryStore& store, EntryKey const& key) : store_(&store), key_(key) {}

    EntryStore* store_;
    EntryKey key_;
};

/// Entries in the order of their keys, read in batches while they are walked: memory stays bounded
/// however many there are. An input range: walk it once. Movable.
/// REQUIRES: the store outlives it; one thread at a time uses it.
class CUBES_API EntryRange {
public:
    class Iterator {
    public:
        using value_type = EntryInfo;
        using difference_type = std::ptrdiff_t;
        using iterator_concept = std::input_iterator_tag;

        EntryInfo const& operator*() const { return range_->current(); }
        EntryInfo const* operator->() const { return &range_->current(); }
        Iterator& operator++() {
            range_->advance();
            return *this;
        }
        void operator++(int) { ++*this; }
        friend bool operator==(Iterator const& at, std::default_sentinel_t) { return at.isAtEnd(); }

    private:
        friend class EntryRange;
        explicit Iterator(EntryRange& range) : range_(&range) {}
        bool isAtEnd() const { return range_->isAtEnd(); }

        EntryRange* range_;
    };

    EntryRange(EntryRange&&) noexcept;
    ~EntryRange();
    /// Throw StoreError when the database fails; so does incrementing an iterator.
    Iterator begin() { return Iterator(*this); }
    std::default_sentinel_t end() const noexcept { return {}; }

private:
    friend class EntryStore;
    explicit EntryRange(std::unique_ptr<store::EntryWalk> walk);
    EntryInfo const& current() const;
    void advance();
    bool isAtEnd() const;

    std::unique_ptr<store::EntryWalk> walk_;
};

/// All entries of a project: rows in its database, each naming one file. Project::store() returns it.
///
/// An operation that fails throws a StoreError with its reason, and the entry keeps its old state:
/// the row with its parent and counter, and the file. Writing an entry holds the lock of its file.
///
/// Any number of threads may use one store at once: work in the database is done one at a time,
/// files are read and written in parallel.
///
/// In a transaction that the caller has begun on the project's connection, what is stored joins it:
/// after a rollback the rows are as before, but a replaced file stays replaced. Operations that
/// remove or move entries are refused there, because a rollback would not bring their files back.
class CUBES_API EntryStore {
public:
    /// Writes the file of a route entry at the path that it is given.
    using FileWriter = std::function<void(std::string const& path)>;

    EntryStore(EntryStore const&) = delete;
    EntryStore& operator=(EntryStore const&) = delete;
    ~EntryStore();

    // Keys and cubes

    /// The key that a text stands for: CUBE/purpose/mode/time/user with the name of a cube (which may
    /// hold slashes) or "fare", or KIND/purpose/mode/time/user/result/iteration with the word of a kind
    /// of results. Numbers alone, five or seven, are the numbers of the key, registered or not. Adds no
    /// cube. Throws notFound for a name that is not in the register, invalidKey for any other text.
    EntryKey parse(std::string_view text) const;
    /// The text that parse reads; the number stands for a cube whose name it would not read.
    std::string text(EntryKey const& key) const;

    /// The cubes of the register in the order of their numbers.
    std::vector<CubeInfo> cubes() const;
    /// The fares and the kinds of results that every project has.
    static std::vector<CubeInfo> kinds();
    /// The cube or kind of a word, of a number in digits if it is registered, or of a name, in this
    /// order; nothing when there is none, and for a name that is longer than the register's column.
    std::optional<CubeInfo> findCube(std::string_view nameOrNumber) const;
    /// Registers a cube and returns its number; of a registered cube, that of the register. Throws
    /// invalidKey for a name that is empty, longer than the register's column (128 characters) or
    /// contains control characters, and for the names that TRkCubes gives the kinds ("SkimCube").
    short addCube(std::string const& name);
    /// Removes a cube from the register with all its entries, and returns how many those were. Throws
    /// notFound, invalidKey for the fares and kinds of results, inUse or otherDirectory when an entry
    /// is in use or belongs to another project; then nothing has changed.
    std::size_t removeCube(short cube);

    // Entries

    /// The entry as its row describes it; nothing when there is none.
    std::optional<EntryInfo> find(EntryKey const& key) const;
    /// The entry's matrix. Later changes to the entry do not affect it.
    /// Throws notFound, outsideDirectory, otherDirectory, damaged, invalidKey for routes.
    TRkMatrix get(EntryKey const& key, GetOptions const& options = {}) const;
    /// Entries in the order of their keys: those of cubes, then those of results.
    EntryRange entries(EntrySelection const& selection = {}) const;
    /// The number of entries by the number of their cube or kind; those without entries are omitted.
    std::map<short, std::size_t> counts() const;

    /// Stores a matrix as an entry, atomically: readers find the old matrix or the new one. An entry that exists keeps
    /// its row, counter and parent; a new one has no parent unless the options say so. Throws notFound for a cube that
    /// is not in the register, alreadyExists, inUse, locked, otherDirectory, invalidKey for a parent as in setParent,
    /// wrongShape for a matrix that is not valid, damaged for one from a file that TRkMatrix::IsIntact rejects,
    /// noSpace, readOnly.
    void put(EntryKey const& key, TRkMatrix const& matrix, PutOptions const& options = {});
    /// The same for routes and data of routes: `write` writes a temporary file, which then replaces
    /// the entry's file. What `write` throws passes through unchanged.
    void putFile(EntryKey const& key, FileWriter const& write, PutOptions const& options = {});

    /// Copy and move an entry, replacing the target. A copy has no parent; a moved entry keeps its
    /// own, and its children still name the old key. When only the removal of the source's file fails, the
    /// move is complete and the error says so. Files are copied as they are, unverified and with
    /// their checksum, except matrices from a cube to a result or back: they are verified, and a damaged
    /// one is not stored. Nothing happens when both keys are the same. Throw inUse for a target in use,
    /// and for the source of a move.
    void copy(EntryKey const& from, EntryKey const& to, CopyOptions const& options = {});
    void move(EntryKey const& from, EntryKey const& to, CopyOptions const& options = {});
    /// The same from another project. Throw otherDirectory where both projects keep the files in one
    /// directory, or the entry in one row. The parent, an entry of the other project, is not copied. A
    /// move holds the lock of the source, copies and then removes it. When only the removal fails, the
    /// target stays and so does the source.
    void copyFrom(EntryStore& source, EntryKey const& from, EntryKey const& to, CopyOptions const& options = {});
    void moveFrom(EntryStore& source, EntryKey const& from, EntryKey const& to, CopyOptions const& options = {});

    /// Removes the row, then the file. Throws notFound, inUse, locked, otherDirectory; and for a file that
    /// cannot be removed, with the file's name: the row is removed nevertheless.
    void remove(EntryKey const& key);
    /// Removes all entries of the selection, and returns how many. Throws inUse or otherDirectory
    /// when one of them is in use or belongs to another project; then nothing has changed. A file that
    /// cannot be removed, or is locked by others, is reported like by remove(), after all others have been removed;
    /// one whose entry is being stored anew is left to its writer.
    std::size_t removeAll(EntrySelection const& selection);
    /// The same for entries by their keys; missing ones are skipped.
    std::size_t removeAll(std::vector<EntryKey> const& keys);

    // Parents

    /// The parent of a result; nothing without one. Throws notFound.
    std::optional<EntryKey> parent(EntryKey const& key) const;
    /// Gives a result another parent, or none; the parent need not be there. Throws notFound,
    /// inUse, invalidKey for an entry of a cube, which has no parent, and for a parent that is the entry
    /// itself or was derived from it.
    void setParent(EntryKey const& key, std::optional<EntryKey> const& parent);
    /// The results whose parent is this entry, in the order of their keys.
    std::vector<EntryKey> children(EntryKey const& key) const;
    Lineage lineage(EntryKey const& key) const;

    // Use

    /// Raises the usage counter for as long as the result lives. Throws notFound.
    [[nodiscard]] InUse use(EntryKey const& key);
    /// Raise and lower the usage counter, never below 0, and return it. Throw notFound.
    long addUser(EntryKey const& key);
    long removeUser(EntryKey const& key);

    // Check and repair

    /// Compares the rows of the selected entries with their files, and reports what is wrong: the findings of entries
    /// in the order of their keys, of cubes, then of files without a row. Files that name no entry are reported only
    /// when all entries are selected. Changes nothing. Throws notFound for an unknown cube, database, file.
    std::vector<Finding> check(EntrySelection const& selection = {}, CheckOptions const& options = {}) const;
    /// Repairs what a check has found, and returns what was done about each finding, in their order. What others have
    /// changed since is left alone, and so are notes and entries of other projects. No matrix is deleted: files that
    /// belong to no entry are moved to the directory "quarantine" beside them, with a note. Throws database inside a
    /// transaction that the caller has begun.
    std::vector<Repair> repair(std::vector<Finding> const& findings, RepairOptions const& options = {});

private:
    friend class Project;
    explicit EntryStore(std::unique_ptr<store::StoreTables> tables);
    store::Task taskFor(char const* verb, EntryKey const& key) const;
    void copyFrom(store::Task const& task, EntryStore& source, EntryKey const& from, EntryKey const& to,
        CopyOptions const& options);
    std::optional<CubeInfo> selectedCube(EntrySelection const& selection) const;
    void requireOtherFile(
        store::Task const& task, EntryStore const& source, EntryKey const& from, EntryKey const& to) const;
    long changeUsers(EntryKey const& key, bool (catalogue::EntryTable::*change)());

    std::unique_ptr<store::StoreTables> tables_;
};

}
