#pragma once

#include "store/FileInspection.h"
#include "store/StoreTables.h"

#include <cubes/store/EntryCheck.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace cubes::store {

/// Files in the directories of a project that no row names: those of entries whose rows were lost or removed, and
/// temporary files that a killed process left behind.
class StrayFiles {
public:
    /// Lists the files. Whoever then claims those of all rows misses no file that was stored meanwhile.
    /// REQUIRES: `tables` outlives this object.
    explicit StrayFiles(StoreTables const& tables);

    /// The row of that entry names the file.
    void claim(EntryInfo const& entry);
    /// The files in the directories are the project's, even if no row names one.
    void claimDirectories() { isOwn_[0] = isOwn_[1] = true; }
    /// What is to be reported of the files that nobody has claimed. REQUIRES: the rows of all entries did.
    std::vector<Finding> findings();

private:
    struct File {
        /// As a row would name it.
        std::string storedName;
        bool ofResults;
    };
    /// The entry that a file without a row holds.
    struct Origin {
        std::optional<EntryKey> key;
        /// Why its row cannot be restored; empty when it can.
        std::string obstacle;
        /// The name of its cube as the file records it; empty when it does not.
        std::string cube;
    };

    void list(bool ofResults, std::string const& subdirectory);
    std::string pathOf(File const& file) const;
    std::string comparable(bool ofResults, std::string const& path) const;
    bool areOfAnotherDatabase();
    /// Reports a directory in which no row names a file, and none of its files.
    void leaveDirectory(bool ofResults, std::vector<Finding>& found);
    std::optional<Finding> findingOf(File const& file);
    bool isBeingChanged(File const& file) const;
    static std::optional<Finding> temporaryFile(std::string const& path);
    void describeRow(Finding& finding, Origin const& origin);
    Origin originOf(File const& file, FileFacts const& facts);
    std::string obstacleOf(EntryKey const& key, std::string const& cube);

    StoreTables const& tables_;
    catalogue::Register names_;
    /// Without links, so that a file has one path; of entries of cubes, and of results.
    std::string directories_[2];
    /// By their comparable paths.
    std::map<std::string, File> files_;
    /// Whether a row names a file in the directory.
    bool isOwn_[2] = {false, false};
};

/// Whether a temporary file was left behind: it is a day old, or the old file of a target, and nobody holds it or is
/// writing the target.
bool isLeftover(std::string const& path);

}
