#include "store/StrayFiles.h"

#include "host/database/Session.h"
#include "host/matrix/WriteLock.h"
#include "host/platform/Files.h"
#include "host/platform/Paths.h"
#include "host/platform/TemporaryFile.h"
#include "store/RemovalLock.h"
#include "store/RowSearch.h"

#include <cubes/matrix/OmxFile.h>

#include <algorithm>
#include <set>
#include <string_view>

namespace cubes::store {

using catalogue::findKind;

namespace {

std::string withoutLinks(std::string const& path) {
    return platform::foldCase(platform::fromPath(platform::withoutLinks(platform::toPath(path))));
}

// The files of the project's database, and of others that are open: these have a log. When one is opened and closed,
// this process loses its locks on it.
std::set<std::string> filesOfDatabases(
    std::string const& ownDatabase, std::string const& directory, std::vector<std::string> const& names) {
    constexpr std::string_view log = "-wal";
    std::vector<std::string> databases;
    if (!ownDatabase.empty()) databases.push_back(ownDatabase);
    for (auto const& name : names)
        if (name.ends_with(log)) databases.push_back(directory + name.substr(0, name.size() - log.size()));
    std::set<std::string> files;
    for (auto const& database : databases)
        for (char const* const suffix : {"", "-wal", "-shm", "-journal", "-queue"})
            files.insert(withoutLinks(database + suffix));
    return files;
}

}

StrayFiles::StrayFiles(StoreTables const& tables) : tables_(tables), names_(tables.cubes()) {
    for (bool const ofResults : {false, true})
        directories_[ofResults] =
            platform::fromPath(platform::withoutLinks(platform::toPath(tables.directory(ofResults))));
    list(false, {});
    list(true, {});
    for (auto const& kind : catalogue::kinds())
        if (*kind.directory) list(kind.isResult, kind.directory);
}

void StrayFiles::list(bool ofResults, std::string const& subdirectory) {
    auto const directory = tables_.directory(ofResults) + platform::withNativeDelimiters(subdirectory);
    if (!platform::isDirectory(directory)) return;
    auto const names = platform::fileNamesIn(directory);
    auto const databases = filesOfDatabases(tables_.session().file(), directory, names);
    auto const mayHoldEntry = [&](std::string const& name) {
        if (platform::isTemporaryName(name)) return true;
        if (matrix::isLockName(name)) return false;
        if (catalogue::hasEntryExtension(name)) return true;
        return !databases.contains(withoutLinks(directory + name)) && OmxFile::mayBe(directory + name);
    };
    for (auto const& name : names)
        if (mayHoldEntry(name))
            files_.emplace(comparable(ofResults, directory + name), File{subdirectory + name, ofResults});
}

std::string StrayFiles::pathOf(File const& file) const {
    return tables_.directory(file.ofResults) + platform::withNativeDelimiters(file.storedName);
}

std::string StrayFiles::comparable(bool ofResults, std::string const& path) const {
    auto const inside = path.substr(tables_.directory(ofResults).size());
    auto const whole = platform::toPath(directories_[ofResults]) / platform::toPath(inside);
    return platform::foldCase(platform::fromPath(platform::normalForm(whole)));
}

void StrayFiles::claim(EntryInfo const& entry) {
    if (entry.file.empty()) return;
    bool const ofResults = entry.key.isResult();
    files_.erase(comparable(ofResults, entry.file));
    isOwn_[ofResults] = isOwn_[ofResults] || platform::exists(entry.file);
}

std::vector<Finding> StrayFiles::findings() {
    if (directories_[0] == directories_[1]) isOwn_[0] = isOwn_[1] = isOwn_[0] || isOwn_[1];
    std::vector<Finding> found;
    if (!isOwn_[0] && areOfAnotherDatabase())
        for (bool const ofResults : {false, true})
            if (!isOwn_[ofResults]) leaveDirectory(ofResults, found);
    for (auto const& unclaimed : files_)
        if (auto finding = findingOf(unclaimed.second)) found.push_back(*std::move(finding));
    return found;
}

// Whether the files of matrices record cubes that have other numbers here.
bool StrayFiles::areOfAnotherDatabase() {
    return std::ranges::any_of(files_, [this](auto const& listed) {
        File const& file = listed.second;
        if (file.ofResults || platform::isTemporaryName(file.storedName)) return false;
        auto const stamp = inspectFile(pathOf(file), false, false).stamp;
        auto const recorded = stamp ? keyOf(*stamp) : std::nullopt;
        return recorded && !fitsRegister(names_, recorded->cube(), cubeIn(*stamp));
    });
}

// The files of another database's project would be moved or given rows here.
void StrayFiles::leaveDirectory(bool ofResults, std::vector<Finding>& found) {
    auto const isThere = [ofResults](auto const& listed) { return listed.second.ofResults == ofResults; };
    auto const entries = std::ranges::count_if(files_,
        [&](auto const& listed) { return isThere(listed) && catalogue::hasEntryExtension(listed.second.storedName); });
    if (entries == 0) return;
    std::erase_if(files_, isThere);
    found.push_back({.problem = Problem::unclaimedDirectory,
        .file = tables_.directory(ofResults),
        .detail = "no row names a file there, and files record cubes that have other numbers in this database: its " +
                  std::to_string(entries) + " files of entries seem to belong to another project"});
}

std::optional<Finding> StrayFiles::findingOf(File const& file) {
    auto const path = pathOf(file);
    auto const name = platform::fromPath(platform::toPath(path).filename());
    if (platform::isTemporaryName(name)) return temporaryFile(path);
    auto const facts = inspectFile(path, file.storedName != name, false);
    bool const isStamped = facts.stamp && keyOf(*facts.stamp);
    if (!isStamped && !catalogue::hasEntryExtension(name)) return std::nullopt;
    // Who is storing the entry has not committed its row yet.
    if (isBeingChanged(file)) return std::nullopt;
    RowSearch const rows(tables_, path, facts.stamp);
    if (rows.isNamedByItsEntry()) return std::nullopt;
    auto const owner = rows.otherOwner();
    // Who is removing the entry has deleted its row.
    if (isBeingChanged(file) || !platform::isPresent(path)) return std::nullopt;
    if (!owner.empty()) return Finding{.problem = Problem::otherDirectory, .file = path, .detail = owner};
    auto const origin = originOf(file, facts);
    Finding finding{.problem = Problem::fileWithoutRow, .file = path};
    finding.detail = origin.obstacle.empty() ? "no row names it" : "no row names it, and " + origin.obstacle;
    finding.repair = infoOf(Problem::fileWithoutRow).repair;
    if (origin.obstacle.empty()) describeRow(finding, origin);
    return finding;
}

bool StrayFiles::isBeingChanged(File const& file) const {
    return matrix::isLocked(pathOf(file)) || RemovalLock::isHeld(tables_.directory(file.ofResults));
}

// How the row is restored.
void StrayFiles::describeRow(Finding& finding, Origin const& origin) {
    finding.entry = origin.key;
    finding.text = tables_.text(*origin.key, names_);
    finding.repair = "restore the row";
    short const number = origin.key->cube();
    // The register holds no cubes of results.
    if (findKind(number) || origin.key->isResult()) return;
    if (auto const name = names_.name(number)) {
        finding.cubeName = name->str();
        return;
    }
    finding.cube = number;
    finding.cubeName = origin.cube.empty() ? "cube " + std::to_string(finding.cube) : origin.cube;
    finding.repair = "register the cube \"" + finding.cubeName + "\" and restore the row";
}

std::optional<Finding> StrayFiles::temporaryFile(std::string const& path) {
    bool const isLeft = isLeftover(path);
    if (!platform::exists(path)) return std::nullopt;
    if (!isLeft) return Finding{.problem = Problem::recentTemporaryFile, .file = path, .detail = "it may be in use"};
    Finding finding{.problem = Problem::leftoverFile, .file = path, .detail = "a killed process left it"};
    finding.repair = infoOf(Problem::leftoverFile).repair;
    if (!mayBeComplete(path)) return finding;
    finding.detail += "; it may be complete";
    finding.repair = infoOf(Problem::fileWithoutRow).repair;
    return finding;
}

// The name counts before the key that the file records: in a plain copy that is the key of the original.
StrayFiles::Origin StrayFiles::originOf(File const& file, FileFacts const& facts) {
    if (facts.problem) return {{}, facts.detail, {}};
    if (platform::isLink(pathOf(file))) return {{}, "it is a symbolic link", {}};
    auto const recorded = facts.stamp ? keyOf(*facts.stamp) : std::nullopt;
    auto const named = catalogue::keyOfFileName(file.storedName);
    if (named.empty() && !recorded) return {{}, "neither its name nor its content names an entry", {}};
    EntryKey const key = named.empty() ? *recorded : store::keyOf(named);
    if (key.isResult() != file.ofResults && directories_[0] != directories_[1])
        return {{}, "it is not in the directory of such entries", {}};
    bool const namesCube = recorded && recorded->cube() == key.cube();
    std::string const cube = namesCube ? cubeIn(*facts.stamp) : std::string();
    return {key, obstacleOf(key, cube), cube};
}

std::string StrayFiles::obstacleOf(EntryKey const& key, std::string const& cube) {
    auto const parts = key.parts();
    constexpr std::size_t partsFromOne = 4;
    for (std::size_t i = 0; i < parts.size(); ++i)
        if (parts[i] < (i < partsFromOne ? 1 : 0)) return "its key is not valid";
    if (tables_.rows(key.isResult())->locate(key.numbers()))
        return "the row of " + tables_.text(key, names_) + " names another file";
    if (fitsRegister(names_, key.cube(), cube)) return {};
    return "the cube \"" + cube + "\" is not number " + std::to_string(key.cube()) + " any more";
}

bool isLeftover(std::string const& path) {
    auto const name = platform::fromPath(platform::toPath(path).filename());
    bool const isOld = platform::isOldName(name) || platform::isOlderThanADay(path);
    return isOld && !platform::isHeld(path) && !matrix::isLocked(platform::targetOfTemporary(path));
}

}
