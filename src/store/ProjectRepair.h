#pragma once

#include "store/EntryWriting.h"

#include <cubes/store/EntryCheck.h>

#include <string>

namespace cubes::store {

/// Repairs what a check has found. Each finding is looked at anew while the lock of its file is held, because others
/// may have changed the entry since. No matrix is deleted: files without an entry are moved to the quarantine.
class ProjectRepair {
public:
    /// REQUIRES: `tables` outlives this object.
    ProjectRepair(StoreTables const& tables, RepairOptions const& options) : tables_(tables), options_(options) {}

    /// Never throws for a finding that cannot be repaired.
    Repair repair(Finding const& finding) const;

private:
    // These return what was done; empty: nothing was to be done.
    std::string registerCube(Finding const& finding) const;
    std::string placeFile(Finding const& finding) const;
    std::string restoreRow(Finding const& finding) const;
    /// Whether somebody removes entries from the directory of the file.
    bool isBeingRemoved(std::string const& file) const;
    void requireCube(Task const& task, Finding const& finding) const;
    std::string removeLeftover(Finding const& finding) const;
    std::string dropRow(Finding const& finding) const;
    std::string rewrite(Finding const& finding) const;

    StoreTables const& tables_;
    RepairOptions options_;
};

}
