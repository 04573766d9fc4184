#include "store/ProjectCheck.h"

#include "host/matrix/WriteLock.h"
#include "host/platform/Files.h"
#include "host/platform/NarrowText.h"
#include "host/platform/Parallel.h"
#include "store/RowSearch.h"
#include "store/StrayFiles.h"

#include <algorithm>
#include <system_error>

namespace cubes::store {

using catalogue::findKind;

namespace {

// The entries whose files are examined at a time, on all cores.
constexpr std::size_t batchSize = 1024;

std::string textOf(std::pair<int, int> const& shape) {
    return std::to_string(shape.first) + " x " + std::to_string(shape.second);
}

// What cannot be examined is there: reading it gives the reason.
bool mayBePresent(std::string const& file) {
    try {
        return platform::isPresent(file);
    } catch (std::system_error const&) {
        return true;
    }
}

// Nothing for a row without a file, and for a result that is a directory.
std::optional<FileFacts> factsOf(EntryInfo const& entry, CheckOptions const& options) {
    if (!mayBePresent(entry.file) || platform::isDirectory(entry.file)) return std::nullopt;
    bool const holdsRoutes = catalogue::kindOf(entry.key.cube()).holdsRoutes;
    auto facts = inspectFile(entry.file, holdsRoutes, options.deep);
    if (facts.problem || !holdsRoutes || !options.deep || !options.readRoutes) return facts;
    facts.detail = options.readRoutes(entry);
    if (!facts.detail.empty()) facts.problem = Problem::wrongContent;
    return facts;
}

// The numbers of a key as its file records them.
bool names(matrix::FileStamp const& stamp, EntryKey const& key) {
    return stamp.cubeNumber == key.cube() && std::ranges::equal(stamp.key, key.parts());
}

// Whether the file says that it was written in that directory.
bool records(std::string const& file, hdf5::Id128 const& directory) {
    try {
        auto const stamp = matrix::readStamp(file);
        return stamp && stamp->directory == directory;
    } catch (std::system_error const&) {
        return false;
    }
}

// Whether the file of any entry is there, whatever is checked.
bool holdsAnyFile(StoreTables const& tables, bool ofResults) {
    for (EntryWalk walk(tables, {{ofResults, {}}}); !walk.isAtEnd(); walk.advance())
        if (auto const& file = walk.current().file; !file.empty() && mayBePresent(file)) return true;
    return false;
}

bool namesOneEntry(EntrySelection const& selection, std::optional<CubeInfo> const& cube) {
    bool const hasCubeParts = cube && selection.purpose && selection.mode && selection.time && selection.user;
    return hasCubeParts && selection.result.has_value() == selection.iteration.has_value();
}

std::string textOf(matrix::FileStamp const& stamp) {
    auto text = platform::fromUtf8(stamp.cube);
    for (auto const part : stamp.key) text += "/" + std::to_string(part);
    return text;
}

}

ProjectCheck::ProjectCheck(StoreTables const& tables, EntrySelection const& selection,
    std::optional<CubeInfo> const& cube, CheckOptions const& options)
    : tables_(tables), selection_(selection), cube_(cube), options_(options), names_(tables.cubes()),
      contents_(tables.contents(false)), hasOtherProjects_(tables.hasOtherProjects()),
      identity_(matrix::knownDirectoryIdentity(tables.directory(false))) {}

std::vector<Finding> ProjectCheck::run() {
    checkEntries();
    reportCubes();
    checkStrayFiles();
    return std::move(findings_);
}

void ProjectCheck::checkEntries() {
    std::size_t total = 0;
    for (bool const ofResults : {false, true})
        for (auto const& [number, count] : tables_.counts(ofResults))
            if (!cube_ || cube_->number == number) total += count;
    std::size_t done = 0;
    std::vector<EntryInfo> batch;
    auto const finishBatch = [&] {
        checkBatch(batch);
        done += batch.size();
        batch.clear();
        if (options_.progress) options_.progress(done, std::max(done, total));
    };
    for (EntryWalk walk(tables_, stagesOf(selection_, cube_)); !walk.isAtEnd(); walk.advance()) {
        batch.push_back(walk.current());
        if (batch.size() == batchSize) finishBatch();
    }
    finishBatch();
    checkShapes();
}

void ProjectCheck::checkBatch(std::vector<EntryInfo> const& entries) {
    std::vector<std::optional<FileFacts>> facts(entries.size());
    platform::inParallel(
        entries.size(), [&] { return [&](std::size_t item) { facts[item] = factsOf(entries[item], options_); }; });
    for (std::size_t i = 0; i < entries.size(); ++i) check(entries[i], facts[i]);
}

void ProjectCheck::check(EntryInfo const& entry, std::optional<FileFacts> const& facts) {
    checkFile(entry, facts);
    noteCube(entry, facts);
    if (entry.parent) checkParent(entry);
    if (entry.users > 0) report(Problem::inUse, entry, "users: " + std::to_string(entry.users));
}

void ProjectCheck::checkFile(EntryInfo const& entry, std::optional<FileFacts> const& facts) {
    bool const isHere = !entry.file.empty() && mayBePresent(entry.file);
    Owner const owner = ownerOf(entry, isHere);
    if (owner == Owner::other)
        return report(Problem::otherDirectory, entry, "its file belongs to another project on this database");
    if (owner == Owner::unknown)
        return report(
            Problem::unknownOwner, entry, "its file is not here; another project on this database may have it");
    if (entry.file.empty())
        return report(Problem::outsideDirectory, entry,
            "its row names the file \"" + entry.storedName + "\", which is not inside " +
                tables_.directory(entry.key.isResult()));
    // Others may have removed the entry since the files were examined.
    bool const wasThere = !facts || facts->problem != Problem::missingFile;
    if (!isHere || !wasThere) return checkMissing(entry);
    if (!facts) return;
    if (facts->problem) report(*facts->problem, entry, facts->detail);
    checkStamp(entry, *facts);
    noteShape(entry, *facts);
}

void ProjectCheck::checkMissing(EntryInfo const& entry) {
    if (!isMissing(entry)) return;
    auto const directory = platform::directoryOf(entry.file);
    if (!platform::isDirectory(directory))
        return report(Problem::unreadableFile, entry, "the directory " + directory + " is missing; restore it");
    if (isElsewhere(entry))
        return report(Problem::unreadableFile, entry,
            "its directory seems to be another one or not mounted: no file of an entry is there; restore it");
    report(Problem::missingFile, entry, "there is no such file");
}

// Whether the entry was stored in another directory than the one that has its place now.
bool ProjectCheck::isElsewhere(EntryInfo const& entry) {
    bool const ofResults = entry.key.isResult();
    auto contents = tables_.contents(ofResults);
    auto const recorded = contents ? StoreTables::recordedDirectory(entry.key, *contents) : hdf5::Id128();
    if (!recorded.isKnown() || recorded == matrix::knownDirectoryIdentity(tables_.directory(ofResults))) return false;
    auto& holdsFiles = holdsFiles_[ofResults];
    if (!holdsFiles) holdsFiles = holdsAnyFile(tables_, ofResults);
    return !*holdsFiles;
}

// A row that is there has its file, but others may remove the entry and store it again between two looks, or copy a
// file to its place.
bool ProjectCheck::isMissing(EntryInfo const& entry) const {
    if (matrix::isLocked(entry.file)) return false;
    constexpr int looks = 3;
    auto rows = tables_.rows(entry.key.isResult());
    for (int look = 0; look < looks; ++look)
        if (!rows->locate(entry.key.numbers()) || mayBePresent(entry.file)) return false;
    return true;
}

// The fixed classes copy files as they are.
void ProjectCheck::checkStamp(EntryInfo const& entry, FileFacts const& facts) {
    if (!facts.stamp || facts.stamp->key.empty()) return;
    if (!names(*facts.stamp, entry.key) || !fitsRegister(names_, entry.key.cube(), cubeIn(*facts.stamp)))
        report(Problem::copiedFile, entry, "the file records " + textOf(*facts.stamp) + ": it was copied from there");
}

void ProjectCheck::checkParent(EntryInfo const& entry) {
    auto const& parent = *entry.parent;
    if (tables_.rows(parent.isResult())->locate(parent.numbers())) return;
    // Others may have removed the entry, and then its parent.
    if (!tables_.rows(entry.key.isResult())->locate(entry.key.numbers())) return;
    auto const& kind = catalogue::kindOf(entry.key.cube());
    bool const isRouteData = kind.holdsRoutes && catalogue::kindOf(parent.cube()).holdsRoutes;
    auto const text = tables_.text(parent, names_);
    if (isRouteData)
        report(Problem::orphanedRouteData, entry, "there are no routes " + text);
    else
        report(Problem::missingParent, entry, "there is no entry " + text + ", from which it was derived");
}

// The matrices of a cube belong to one zoning. Those of fares and results may differ: a cordon has other zones.
void ProjectCheck::noteShape(EntryInfo const& entry, FileFacts const& facts) {
    if (findKind(entry.key.cube()) || facts.rows == 0) return;
    if (!shaped_.empty() && shaped_.front().key.cube() != entry.key.cube()) checkShapes();
    shaped_.push_back({entry.key, {facts.rows, facts.columns}});
}

void ProjectCheck::checkShapes() {
    std::map<std::pair<int, int>, std::size_t> counts;
    for (auto const& shaped : shaped_) ++counts[shaped.shape];
    auto const most = std::ranges::max_element(counts, {}, [](auto const& count) { return count.second; });
    auto rows = tables_.rows(false);
    for (auto const& [key, shape] : shaped_)
        if (shape != most->first && 2 * most->second > shaped_.size() && rows->locate(key.numbers()))
            report(Problem::wrongShape, tables_.info(rows, false, names_),
                "it has " + textOf(shape) + " cells, most entries of its cube have " + textOf(most->first));
    shaped_.clear();
}

void ProjectCheck::noteCube(EntryInfo const& entry, std::optional<FileFacts> const& facts) {
    short const number = entry.key.cube();
    // The register holds the cubes of demand matrices; applications may store results of kinds of their own.
    if (entry.key.isResult() || findKind(number) || names_.name(number)) return;
    auto& cube = unregistered_[number];
    ++cube.entries;
    if (cube.name.empty() && facts && facts->stamp && facts->stamp->cubeNumber == number)
        cube.name = platform::fromUtf8(facts->stamp->cube);
}

// Others may have removed the cube, or registered it, since its entries were read.
void ProjectCheck::reportCubes() {
    if (unregistered_.empty()) return;
    auto const counts = tables_.counts(false);
    auto cubes = tables_.cubes();
    for (auto const& [number, cube] : unregistered_) {
        if (!counts.contains(number) || cubes.name(number)) continue;
        bool const isFree = !cube.name.empty() && !names_.number(cube.name.c_str());
        Finding finding{.problem = Problem::unregisteredCube, .text = std::to_string(number), .cube = number};
        finding.cubeName = isFree ? cube.name : "cube " + finding.text;
        finding.detail = "it is not in the register, and has entries: " + std::to_string(cube.entries);
        finding.repair = "register it as \"" + finding.cubeName + "\"";
        findings_.push_back(std::move(finding));
    }
}

void ProjectCheck::checkStrayFiles() {
    StrayFiles files(tables_);
    for (EntryWalk walk(tables_, stagesOf({}, {})); !walk.isAtEnd(); walk.advance()) files.claim(walk.current());
    if (namesOneEntry(selection_, cube_)) files.claimDirectories();
    auto const stages = stagesOf(selection_, cube_);
    bool const isWhole = stages.size() == 2 && stages.front().condition.empty();
    for (auto& finding : files.findings())
        if (finding.entry ? selects(selection_, cube_, *finding.entry) : isWhole)
            findings_.push_back(std::move(finding));
}

ProjectCheck::Owner ProjectCheck::ownerOf(EntryInfo const& entry, bool isHere) {
    // Without the directory nothing can be said about any file.
    if (entry.key.isResult() || !platform::isDirectory(tables_.directory(false))) return Owner::own;
    auto const recorded = contents_ ? StoreTables::recordedDirectory(entry.key, *contents_) : hdf5::Id128();
    if (!hasOtherProjects_) return Owner::own;
    if (!recorded.isKnown()) return isHere ? Owner::own : Owner::unknown;
    if (recorded == identity_) return Owner::own;
    // A directory that lost its "cubes-id" has another identity than was recorded.
    if (isHere && records(entry.file, recorded)) return Owner::own;
    return identity_.isKnown() ? Owner::other : Owner::unknown;
}

void ProjectCheck::report(Problem problem, EntryInfo const& entry, std::string detail) {
    findings_.push_back({.problem = problem,
        .entry = entry.key,
        .text = entry.text,
        .file = entry.file,
        .detail = std::move(detail),
        .repair = infoOf(problem).repair});
}

}
