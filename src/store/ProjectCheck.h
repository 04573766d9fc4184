#pragma once

#include "store/EntryWalk.h"
#include "store/FileInspection.h"

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace cubes::store {

/// Compares the rows of a project with its files.
class ProjectCheck {
public:
    /// REQUIRES: all outlive this object.
    ProjectCheck(StoreTables const& tables, EntrySelection const& selection, std::optional<CubeInfo> const& cube,
        CheckOptions const& options);

    std::vector<Finding> run();

private:
    /// Whose file a row names.
    enum class Owner { own, other, unknown };
    struct Shaped {
        EntryKey key;
        std::pair<int, int> shape;
    };
    struct Unregistered {
        std::size_t entries = 0;
        /// As the file of an entry records it; empty when none does.
        std::string name;
    };

    void checkEntries();
    void checkBatch(std::vector<EntryInfo> const& entries);
    void check(EntryInfo const& entry, std::optional<FileFacts> const& facts);
    void checkFile(EntryInfo const& entry, std::optional<FileFacts> const& facts);
    void checkMissing(EntryInfo const& entry);
    bool isMissing(EntryInfo const& entry) const;
    bool isElsewhere(EntryInfo const& entry);
    void checkStamp(EntryInfo const& entry, FileFacts const& facts);
    void checkParent(EntryInfo const& entry);
    void noteShape(EntryInfo const& entry, FileFacts const& facts);
    /// Reports those of the last cube that differ from most of it.
    void checkShapes();
    void noteCube(EntryInfo const& entry, std::optional<FileFacts> const& facts);
    void reportCubes();
    void checkStrayFiles();
    Owner ownerOf(EntryInfo const& entry, bool isHere);
    void report(Problem problem, EntryInfo const& entry, std::string detail);

    StoreTables const& tables_;
    EntrySelection const& selection_;
    std::optional<CubeInfo> const& cube_;
    CheckOptions const& options_;
    catalogue::Register names_;
    std::optional<Rows> contents_;
    bool hasOtherProjects_;
    /// Of the directory of matrices; unknown when it has none.
    hdf5::Id128 identity_;
    /// Whether the file of any entry of cubes, and of any result, is there; found out when it is needed.
    std::optional<bool> holdsFiles_[2];
    std::vector<Shaped> shaped_;
    std::map<short, Unregistered> unregistered_;
    std::vector<Finding> findings_;
};

}
