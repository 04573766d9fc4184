#include "store/ProjectRepair.h"

#include "host/database/Transaction.h"
#include "host/matrix/Elements.h"
#include "host/platform/Files.h"
#include "host/platform/TemporaryFile.h"
#include "store/FileInspection.h"
#include "store/Quarantine.h"
#include "store/RowSearch.h"
#include "store/StrayFiles.h"

namespace cubes::store {

using matrix::WriteLock;

Repair ProjectRepair::repair(Finding const& finding) const {
    struct Action {
        Problem problem;
        std::string (ProjectRepair::*act)(Finding const&) const;
    };
    constexpr Action actions[] = {{Problem::unregisteredCube, &ProjectRepair::registerCube},
        {Problem::fileWithoutRow, &ProjectRepair::placeFile}, {Problem::leftoverFile, &ProjectRepair::removeLeftover},
        {Problem::missingFile, &ProjectRepair::dropRow}, {Problem::outsideDirectory, &ProjectRepair::dropRow},
        {Problem::damagedIndex, &ProjectRepair::rewrite}};
    for (auto const& action : actions) {
        if (action.problem != finding.problem) continue;
        try {
            return {reporting({"repair " + (finding.file.empty() ? finding.text : finding.file), finding.text},
                        [&] { return (this->*action.act)(finding); }),
                {}};
        } catch (StoreError const& error) {
            return {{}, error.cause()};
        }
    }
    return {};
}

std::string ProjectRepair::registerCube(Finding const& finding) const {
    database::Transaction transaction(tables_.session());
    auto cubes = tables_.cubes();
    if (cubes.name(finding.cube) || !tables_.counts(false).contains(finding.cube)) return {};
    cubes.ensure(finding.cube, finding.cubeName.c_str());
    transaction.commit();
    return "the cube was registered as \"" + finding.cubeName + "\"";
}

std::string ProjectRepair::placeFile(Finding const& finding) const {
    WriteLock const lock(finding.file, WriteLock::Purpose::create);
    if (!platform::isPresent(finding.file)) return {};
    RowSearch const rows(tables_, finding.file, matrix::readStamp(finding.file));
    if (rows.isNamed() || !rows.otherOwner().empty()) return {};
    // Its row may have been deleted just now, and the file is next.
    if (isBeingRemoved(finding.file))
        Task{"repair " + finding.file, finding.text}.fail(
            Reason::locked, "entries are being removed from its directory; check again later");
    if (!platform::isPresent(finding.file)) return {};
    if (finding.entry && !EntryWriting(tables_).find(*finding.entry)) return restoreRow(finding);
    return "it was moved to " + moveToQuarantine(finding.file, finding.detail);
}

bool ProjectRepair::isBeingRemoved(std::string const& file) const {
    auto const isRemovedFrom = [&](bool ofResults) {
        return !storedNameOf(tables_, ofResults, file).empty() && RemovalLock::isHeld(tables_.directory(ofResults));
    };
    return isRemovedFrom(false) || isRemovedFrom(true);
}

std::string ProjectRepair::restoreRow(Finding const& finding) const {
    auto const& key = *finding.entry;
    auto const name = storedNameOf(tables_, key.isResult(), finding.file);
    Task const task{"restore the row of " + finding.text, finding.text};
    if (name.empty()) task.fail(Reason::otherDirectory, "the file is not in the directory of such entries");
    if (platform::isLink(finding.file)) task.fail(Reason::file, "the file is a symbolic link", finding.file);
    auto const record = tables_.recordOf(key, finding.file);
    tables_.requireContentTable(key.isResult());
    database::Transaction transaction(tables_.session());
    requireCube(task, finding);
    auto rows = tables_.rows(key.isResult());
    if (!rows->insert(key.numbers(), name)) return {};
    tables_.record(key, record);
    transaction.commit();
    return "the row was restored";
}

// Another one may have got the number since the check.
void ProjectRepair::requireCube(Task const& task, Finding const& finding) const {
    if (finding.cubeName.empty()) return;
    short const number = finding.entry->cube();
    auto const cubes = tables_.cubes();
    if (finding.cube != 0) cubes.ensure(finding.cube, finding.cubeName.c_str());
    if (cubes.number(finding.cubeName.c_str()) == number) return;
    task.fail(Reason::alreadyExists,
        "the cube number " + std::to_string(number) + " is not that of " + finding.cubeName + "; check again");
}

std::string ProjectRepair::removeLeftover(Finding const& finding) const {
    if (!platform::isPresent(finding.file) || !isLeftover(finding.file)) return {};
    if (mayBeComplete(finding.file)) return "it was moved to " + moveToQuarantine(finding.file, finding.detail);
    return platform::removeLeftover(finding.file) ? "it was removed" : "";
}

std::string ProjectRepair::dropRow(Finding const& finding) const {
    if (!options_.dropRows) return {};
    Task const task{"remove the row of " + finding.text, finding.text};
    EntryWriting const writing(tables_);
    if (!writing.find(*finding.entry)) return {};
    EntryWriting::Removal removal(writing, task, *finding.entry);
    // The row may be another one by now, and the directory another disk.
    auto const& file = removal.entry().file;
    if (!file.empty() && (platform::isPresent(file) || !platform::isDirectory(platform::directoryOf(file)))) return {};
    removal.finish();
    return "the row was removed";
}

std::string ProjectRepair::rewrite(Finding const& finding) const {
    Task const task{"write " + finding.text + " anew", finding.text};
    EntryWriting(tables_).rewrite(task, *finding.entry);
    return "the file was written anew";
}

}
