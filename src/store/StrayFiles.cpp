#include "store/StrayFiles.h"

#include "catalogue/StoredName.h"
#include "host/matrix/WriteLock.h"
#include "host/platform/Files.h"
#include "host/platform/NarrowText.h"
#include "host/platform/Paths.h"
#include "host/platform/TemporaryFile.h"

#include <algorithm>
#include <limits>
#include <system_error>

namespace cubes::store {

using catalogue::findKind;
using matrix::FileStamp;

namespace {

// Longer names of cubes are cut in a stamp.
constexpr std::size_t longestStampedName = 188;

bool isPart(std::int32_t number) {
    return number >= std::numeric_limits<short>::min() && number <= std::numeric_limits<short>::max();
}

// The entry that a file records; nothing when it records none.
std::optional<EntryKey> keyOf(FileStamp const& stamp) {
    std::vector<short> numbers;
    for (auto const number : stamp.key) {
        if (!isPart(number)) return std::nullopt;
        numbers.push_back(static_cast<short>(number));
    }
    if (stamp.cubeNumber == 0 || !isPart(stamp.cubeNumber)) return std::nullopt;
    auto const cube = static_cast<short>(stamp.cubeNumber);
    numbers.insert(numbers.begin(), cube);
    bool const isResult = catalogue::kindOf(cube).isResult;
    if (numbers.size() != (isResult ? std::tuple_size_v<catalogue::ResultKey> : std::tuple_size_v<catalogue::CubeKey>))
        return std::nullopt;
    return store::keyOf(numbers);
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
    for (auto const& name : platform::fileNamesIn(directory)) {
        if (!platform::isTemporaryName(name) && matrix::isLockName(name)) continue;
        files_.emplace(comparable(ofResults, directory + name), File{subdirectory + name, ofResults});
    }
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
    if (!entry.file.empty()) files_.erase(comparable(entry.key.isResult(), entry.file));
}

std::vector<Finding> StrayFiles::findings() {
    std::vector<Finding> found;
    for (auto const& unclaimed : files_)
        if (auto finding = findingOf(unclaimed.second)) found.push_back(*std::move(finding));
    return found;
}

std::optional<Finding> StrayFiles::findingOf(File const& file) {
    auto const path = pathOf(file);
    auto const name = platform::fromPath(platform::toPath(path).filename());
    if (platform::isTemporaryName(name)) return temporaryFile(path);
    auto const facts = inspectFile(path, file.storedName != name, false);
    bool const isStamped = facts.stamp && keyOf(*facts.stamp);
    if (!isStamped && !catalogue::hasEntryExtension(name)) return std::nullopt;
    // Who is storing the entry has not committed its row yet; the file of a removed one may be gone by now.
    if (matrix::isLocked(path) || !platform::isPresent(path)) return std::nullopt;
    if (isNamedByARow(tables_, path, facts.stamp)) return std::nullopt;
    auto const origin = originOf(file, facts);
    Finding finding{.problem = Problem::fileWithoutRow, .file = path};
    finding.detail = origin.obstacle.empty() ? "no row names it" : "no row names it, and " + origin.obstacle;
    finding.repair = infoOf(Problem::fileWithoutRow).repair;
    if (origin.obstacle.empty()) describeRow(finding, origin);
    return finding;
}

// How the row is restored.
void StrayFiles::describeRow(Finding& finding, Origin const& origin) {
    finding.entry = origin.key;
    finding.text = tables_.text(*origin.key, names_);
    finding.repair = "restore the row";
    if (findKind(origin.key->cube()) || names_.name(origin.key->cube())) return;
    finding.cube = origin.key->cube();
    finding.cubeName = origin.cube.empty() ? "cube " + std::to_string(finding.cube) : origin.cube;
    finding.repair = "register the cube \"" + finding.cubeName + "\" and restore the row";
}

Finding StrayFiles::temporaryFile(std::string const& path) {
    if (!isLeftover(path)) return {.problem = Problem::recentTemporaryFile, .file = path, .detail = "it may be in use"};
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
    auto const recorded = facts.stamp ? keyOf(*facts.stamp) : std::nullopt;
    auto const named = catalogue::keyOfFileName(file.storedName);
    if (named.empty() && !recorded) return {{}, "neither its name nor its content names an entry", {}};
    EntryKey const key = named.empty() ? *recorded : store::keyOf(named);
    if (key.isResult() != file.ofResults && directories_[0] != directories_[1])
        return {{}, "it is not in the directory of such entries", {}};
    bool const namesCube = recorded && recorded->cube() == key.cube() && !findKind(key.cube()) &&
                           facts.stamp->cube.size() <= longestStampedName;
    std::string const cube = namesCube ? platform::fromUtf8(facts.stamp->cube) : std::string();
    return {key, obstacleOf(key, cube), cube};
}

std::string StrayFiles::obstacleOf(EntryKey const& key, std::string const& cube) {
    auto const parts = key.parts();
    constexpr std::size_t partsFromOne = 4;
    for (std::size_t i = 0; i < parts.size(); ++i)
        if (parts[i] < (i < partsFromOne ? 1 : 0)) return "its key is not valid";
    if (tables_.rows(key.isResult())->locate(key.numbers()))
        return "the row of " + tables_.text(key, names_) + " names another file";
    if (cube.empty()) return {};
    auto const registered = names_.number(cube.c_str());
    if (registered ? *registered == key.cube() : !names_.name(key.cube())) return {};
    return "the cube \"" + cube + "\" is not number " + std::to_string(key.cube()) + " any more";
}

std::string storedNameOf(StoreTables const& tables, bool ofResults, std::string const& path) {
    auto const directory = tables.directory(ofResults);
    if (!path.starts_with(directory)) return {};
    auto name = path.substr(directory.size());
    std::ranges::replace(name, platform::pathDelimiter(), '\\');
    return name;
}

bool isNamedByARow(StoreTables const& tables, std::string const& path, std::optional<FileStamp> const& stamp) {
    auto const isNamedBy = [&](EntryKey const& key) {
        auto rows = tables.rows(key.isResult());
        return rows->locate(key.numbers()) && tables.path(key, rows->filename()) == path;
    };
    for (bool const ofResults : {false, true}) {
        auto const named = catalogue::keyOfFileName(storedNameOf(tables, ofResults, path));
        if (!named.empty() && isNamedBy(store::keyOf(named))) return true;
    }
    auto const recorded = stamp ? keyOf(*stamp) : std::nullopt;
    return recorded && isNamedBy(*recorded);
}

bool isLeftover(std::string const& path) {
    auto const name = platform::fromPath(platform::toPath(path).filename());
    bool const isOld = platform::isOldName(name) || platform::isOlderThanADay(path);
    return isOld && !matrix::isLocked(platform::targetOfTemporary(path));
}

}
