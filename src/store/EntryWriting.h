#pragma once

#include "host/matrix/StagedFile.h"
#include "host/matrix/WriteLock.h"
#include "store/Failure.h"
#include "store/RemovalLock.h"
#include "store/StoreTables.h"

#include <cubes/store/EntryStore.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace cubes::database {
class Transaction;
}

namespace cubes::store {

/// Changes entries of a project so that row and file agree, whatever fails.
///
/// The order of a change: take the lock of the entry's file; write the new file beside the old one
/// and flush it; change the rows in a transaction; replace the file and flush the directory; commit;
/// release the lock. What fails is undone. A process that is killed between replacement and commit
/// leaves the new file, without a row or under the old one, never a row without a file.
class EntryWriting {
public:
    explicit EntryWriting(StoreTables const& tables) : tables_(tables), names_(tables.cubes()) {}

    std::string text(EntryKey const& key) const { return tables_.text(key, names_); }

    /// The entry as its row has it; nothing when there is none.
    std::optional<EntryInfo> find(EntryKey const& key) const;
    /// The same for an entry that must be there and whose file must not lie with another project.
    EntryInfo require(Task const& task, EntryKey const& key) const;
    /// The path of the entry's file, which is there.
    std::string requireFile(Task const& task, EntryInfo const& entry) const;
    void requireFree(Task const& task, EntryInfo const& entry) const;
    /// Fails for a key of routes or route data.
    void requireMatrix(Task const& task, EntryKey const& key) const;
    /// The matrix of an entry.
    TRkMatrix read(Task const& task, EntryInfo const& entry) const;
    static void requireIntact(Task const& task, TRkMatrix const& matrix);

    /// The parent of the stored entry: a new entry gets `parent`, an existing one if it is replaced.
    struct Parentage {
        bool isReplaced;
        std::optional<EntryKey> parent;
    };
    /// A change of an entry, apart from the content of its file.
    struct Change {
        OnExisting exists;
        Parentage parentage;
        /// The source of a move, whose row and file are removed.
        std::optional<EntryInfo> movedFrom = {};
    };

    void put(Task const& task, EntryKey const& key, TRkMatrix const& matrix, Change const& change) const;
    void putFile(
        Task const& task, EntryKey const& key, EntryStore::FileWriter const& write, Change const& change) const;
    /// Writes the matrix of an entry to a new file.
    void rewrite(Task const& task, EntryKey const& key) const;
    /// Copies a file as it is.
    void putCopy(Task const& task, EntryKey const& key, std::string const& source, Change const& change) const;
    /// Copies the file of the entry that is moved, or gives it a second name on a full disk.
    void moveFile(Task const& task, EntryKey const& to, Change const& change) const;
    /// Stores the matrix of the entry that is moved under the key of the other family.
    void moveMatrix(Task const& task, EntryKey const& to, Change const& change) const;
    /// Removes an entry in two steps. The first checks that it can be removed and holds its file's lock.
    class Removal {
    public:
        /// REQUIRES: both outlive this object.
        Removal(EntryWriting const& writing, Task const& task, EntryKey const& key);
        /// As the row has it, which nobody replaces meanwhile.
        EntryInfo const& entry() const noexcept { return *entry_; }
        /// Removes row and file.
        void finish();

    private:
        EntryWriting const& writing_;
        Task const& task_;
        std::optional<EntryInfo> entry_;
        std::optional<matrix::WriteLock> lock_;
    };
    void setParent(Task const& task, EntryKey const& key, std::optional<EntryKey> const& parent) const;
    void remove(Task const& task, EntryKey const& key) const;
    /// Removes those that exist, all or none. Returns how many.
    std::size_t removeAll(Task const& task, std::vector<EntryKey> const& keys) const;
    /// Removes a cube of the register with its entries, all or none. Returns how many entries.
    std::size_t removeCube(Task const& task, short cube) const;
    /// Fails inside a transaction that the caller has begun: its rollback would bring back rows
    /// whose files are gone.
    void requireOwnTransaction(Task const& task) const;

private:
    using Write = std::function<void(matrix::StagedFile&)>;

    void store(Task const& task, EntryKey const& key, Change const& change, Write const& write) const;
    /// Changes the rows and puts the file in place. Returns why the change may not survive a power failure, if so.
    std::optional<TRkMatrixException> commit(Task const& task, EntryKey const& key, Change change,
        matrix::StagedFile& staged, ContentRecord const& record) const;
    enum class RowChange { none, changed, added };
    /// Inside a transaction: adds the row or changes its parent. The file will be `target`.
    RowChange changeRow(Task const& task, EntryKey const& key, Change const& change, std::string const& target) const;
    /// Fails for a parent that is the entry itself or derived from it, or that the table has no columns for.
    void requireParentable(
        Task const& task, EntryKey const& key, std::optional<EntryKey> const& parent, Rows const& rows) const;
    static void commitRecord(database::Transaction& transaction);
    /// After a failed commit: whether the server may have committed, and whether the rows show that it
    /// has. Throws StoreError when they cannot be read.
    bool mayBeCommitted(TRkDatabaseException const& error) const;
    bool isCommitted(Task const& task, EntryKey const& key, Change const& change) const;
    void write(matrix::StagedFile& staged, EntryKey const& key, TRkMatrix const& matrix) const;
    /// Writes the matrix of another entry, unless it is damaged.
    void writeIntact(Task const& task, matrix::StagedFile& staged, EntryKey const& key, EntryInfo const& source) const;
    EntryInfo takeRow(Task const& task, EntryInfo const& entry) const;
    /// For the directories of these entries. To be held until the files of deleted rows are removed.
    std::vector<RemovalLock> lockRemovals(std::vector<EntryKey> const& keys) const;
    std::vector<EntryInfo> deleteRows(Task const& task, std::vector<EntryKey> keys) const;
    void removeFiles(Task const& task, std::vector<EntryInfo> const& removed) const;
    /// Why the file of a removed entry stays.
    struct Obstacle {
        explicit Obstacle(std::error_code code);
        Obstacle(Reason why, std::string text) : reason(why), cause(std::move(text)) {}
        Reason reason;
        std::string cause;
    };
    using Left = std::optional<Obstacle>;
    Left removeFile(EntryInfo const& entry) const;
    static Left removeContent(EntryInfo const& entry);
    /// Fails for a file that stays although its row is removed; `others` stay as well.
    static void requireRemoved(Task const& task, EntryInfo const& entry, Left const& left, std::size_t others = 0);
    [[noreturn]] void missing(Task const& task, EntryKey const& key) const;
    [[noreturn]] void outside(Task const& task, EntryInfo const& entry, char const* advice) const;
    void requireStorable(Task const& task, EntryKey const& key) const;
    void requireCube(Task const& task, EntryKey const& key) const;
    void requireReplaceable(Task const& task, EntryInfo const& existing, OnExisting exists) const;
    static void requireDirectory(Task const& task, std::string const& directory);
    void requireOwn(Task const& task, EntryKey const& key) const;
    void requireOwn(Task const& task, EntryKey const& key, Rows& contents) const;
    bool isStoredHere(EntryKey const& key, hdf5::Id128 const& recorded) const;
    std::string targetOf(Task const& task, EntryKey const& key, std::optional<EntryInfo> const& existing) const;
    hdf5::FileStamp stampOf(EntryKey const& key) const;
    void recordFile(EntryKey const& key, ContentRecord const& record) const;

    StoreTables const& tables_;
    mutable catalogue::Register names_;
};

}
