#pragma once

#include "host/matrix/StagedFile.h"
#include "store/Failure.h"
#include "store/StoreTables.h"

#include <cubes/store/EntryStore.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

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

    /// What the row says; nothing when there is none.
    std::optional<EntryInfo> find(EntryKey const& key) const;
    /// The same for an entry that must be there and whose file must not lie with another project.
    EntryInfo require(Task const& task, EntryKey const& key) const;
    /// The path of the entry's file, which is there.
    std::string requireFile(Task const& task, EntryInfo const& entry) const;
    void requireFree(Task const& task, EntryInfo const& entry) const;

    /// What becomes of the parent of an entry that exists; a new one gets `parent`.
    struct Parentage {
        bool isReplaced;
        std::optional<EntryKey> parent;
    };
    /// How an entry comes by its new file, besides its content.
    struct Change {
        OnExisting exists;
        Parentage parentage;
        /// The entry whose row and file go, when a matrix is moved.
        std::optional<EntryInfo> movedFrom = {};
    };

    void put(Task const& task, EntryKey const& key, TRkMatrix const& matrix, Change const& change) const;
    void putFile(
        Task const& task, EntryKey const& key, EntryStore::FileWriter const& write, Change const& change) const;
    /// Copies a file as it is.
    void putCopy(Task const& task, EntryKey const& key, std::string const& source, Change const& change) const;
    /// Gives the file of the entry that is moved another name.
    void rename(Task const& task, EntryKey const& to, Change const& change) const;
    void remove(Task const& task, EntryKey const& key) const;
    /// Removes those that are there, all or none, and with them the cube, if any. Returns how many.
    std::size_t removeAll(
        Task const& task, std::vector<EntryKey> const& keys, std::optional<short> const& cube = {}) const;

private:
    using Write = std::function<void(matrix::StagedFile&)>;

    void store(Task const& task, EntryKey const& key, Change const& change, Write const& write) const;
    /// Changes the rows and puts the file in place. Returns why the change may not survive a power failure, if so.
    std::optional<TRkMatrixException> commit(Task const& task, EntryKey const& key,
        std::optional<EntryInfo> const& existing, Change const& change, matrix::StagedFile& staged) const;
    void leave(std::string const& source, EntryKey const& key, std::string const& target) const;
    void takeRow(Task const& task, EntryInfo const& entry) const;
    std::vector<EntryInfo> deleteRows(Task const& task, std::vector<EntryKey> const& keys) const;
    void removeFile(EntryInfo const& entry) const;
    void requireStorable(Task const& task, EntryKey const& key) const;
    void requireReplaceable(Task const& task, EntryInfo const& existing, OnExisting exists) const;
    void requireOwn(Task const& task, EntryKey const& key) const;
    void requireOwn(Task const& task, EntryKey const& key, Rows& contents) const;
    bool isStoredHere(EntryKey const& key, hdf5::Id128 const& recorded) const;
    std::string targetOf(Task const& task, EntryKey const& key, std::optional<EntryInfo> const& existing) const;
    hdf5::FileStamp stampOf(EntryKey const& key) const;
    void recordFile(EntryKey const& key, std::string const& file) const;

    StoreTables const& tables_;
    mutable catalogue::Register names_;
};

}
