#pragma once

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
/// and flush it; for a new entry remove a stale file of that name, then insert the row; rename the
/// file; flush the directory; record what is stored; release the lock. What fails is undone.
class EntryWriting {
public:
    explicit EntryWriting(StoreTables const& tables) : tables_(tables) {}

    /// What the row says; nothing when there is none.
    std::optional<EntryInfo> find(EntryKey const& key) const;
    /// The same for an entry that must be there and whose file must not lie with another project.
    EntryInfo require(Task const& task, EntryKey const& key) const;
    /// The path of the entry's file, which is there.
    std::string requireFile(Task const& task, EntryInfo const& entry) const;

    void put(Task const& task, EntryKey const& key, TRkMatrix const& matrix, PutOptions const& options) const;
    void putFile(
        Task const& task, EntryKey const& key, EntryStore::FileWriter const& write, PutOptions const& options) const;
    /// Copies a file as it is; the entry has no parent then.
    void putCopy(Task const& task, EntryKey const& key, std::string const& source, OnExisting exists) const;
    /// Gives the file and the row of an entry another key.
    void rename(Task const& task, EntryInfo const& from, EntryKey const& to, OnExisting exists) const;
    void remove(Task const& task, EntryKey const& key) const;
    /// Removes those that are there, all or none. Returns how many.
    std::size_t removeAll(Task const& task, std::vector<EntryKey> const& keys) const;

private:
    /// Makes a complete file for the target; what it returns puts it in place.
    using Stage = std::function<std::function<void()>(std::string const& target)>;
    /// What becomes of the parent of an entry that exists; a new one gets `parent`.
    struct Parentage {
        bool isReplaced;
        std::optional<EntryKey> parent;
    };

    void store(
        Task const& task, EntryKey const& key, OnExisting exists, Parentage const& parentage, Stage const& stage) const;
    void requireStorable(Task const& task, EntryKey const& key) const;
    void requireReplaceable(Task const& task, EntryInfo const& existing, OnExisting exists) const;
    void requireFree(Task const& task, EntryInfo const& entry) const;
    void requireOwn(Task const& task, EntryKey const& key) const;
    std::string targetOf(Task const& task, EntryKey const& key, std::optional<EntryInfo> const& existing) const;
    bool insertRow(EntryKey const& key, std::optional<EntryKey> const& parent) const;
    void deleteRow(EntryKey const& key) const;
    void setParent(EntryKey const& key, std::optional<EntryKey> const& parent) const;
    hdf5::FileStamp stampOf(EntryKey const& key) const;
    void recordFile(EntryKey const& key, std::string const& file) const;

    StoreTables const& tables_;
};

}
