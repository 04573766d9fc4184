#include "store/RowSearch.h"

#include "catalogue/StoredName.h"
#include "catalogue/Tables.h"
#include "host/database/SqlState.h"
#include "host/platform/NarrowText.h"
#include "host/platform/Paths.h"

#include <cubes/database/TRkDatabaseException.h>

#include <algorithm>
#include <limits>

namespace cubes::store {

using matrix::FileStamp;

namespace {

// Longer names of cubes are cut in a stamp.
constexpr std::size_t longestStampedName = 188;

bool isPart(std::int32_t number) {
    return number >= std::numeric_limits<short>::min() && number <= std::numeric_limits<short>::max();
}

}

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

std::string cubeIn(FileStamp const& stamp) {
    auto const key = keyOf(stamp);
    bool const isNamed = key && !catalogue::findKind(key->cube()) && stamp.cube.size() <= longestStampedName;
    return isNamed ? platform::fromUtf8(stamp.cube) : std::string();
}

bool fitsRegister(catalogue::Register& names, short number, std::string const& cube) {
    auto const name = names.name(number);
    if (cube.empty() || (name && name->str() == cube)) return true;
    auto const registered = names.number(cube.c_str());
    return registered ? *registered == number : !name;
}

std::string storedNameOf(StoreTables const& tables, bool ofResults, std::string const& path) {
    auto const directory = tables.directory(ofResults);
    if (!path.starts_with(directory)) return {};
    auto name = path.substr(directory.size());
    std::ranges::replace(name, platform::pathDelimiter(), '\\');
    return name;
}

RowSearch::RowSearch(StoreTables const& tables, std::string path, std::optional<FileStamp> stamp)
    : tables_(tables), path_(std::move(path)), stamp_(std::move(stamp)) {}

bool RowSearch::isNamedByItsEntry(StoreTables const& tables) const {
    auto const isNamedBy = [&](EntryKey const& key) {
        auto rows = tables.rows(key.isResult());
        return rows->locate(key.numbers()) && tables.path(key, rows->filename()) == path_;
    };
    for (bool const ofResults : {false, true}) {
        auto const named = catalogue::keyOfFileName(storedNameOf(tables, ofResults, path_));
        if (!named.empty() && isNamedBy(store::keyOf(named))) return true;
    }
    auto const recorded = stamp_ ? keyOf(*stamp_) : std::nullopt;
    return recorded && isNamedBy(*recorded);
}

bool RowSearch::isNamed() const {
    if (isNamedByItsEntry(tables_)) return true;
    for (bool const ofResults : {false, true})
        if (auto rows = tables_.rows(ofResults); locateByName(tables_, rows, ofResults)) return true;
    return false;
}

// Applications may write "/" for "\".
bool RowSearch::locateByName(StoreTables const& tables, Rows& rows, bool ofResults) const {
    auto name = storedNameOf(tables, ofResults, path_);
    if (name.empty() || !rows.cursor().FindField(catalogue::filenameColumn)) return false;
    if (rows.cursor().Locate(catalogue::filenameColumn, name.c_str())) return true;
    std::ranges::replace(name, '\\', '/');
    return rows.cursor().Locate(catalogue::filenameColumn, name.c_str());
}

std::string RowSearch::otherOwner() const {
    if (storedNameOf(tables_, true, path_).empty()) return {};
    for (auto const& project : tables_.otherProjects()) {
        try {
            if (belongsTo(tables_.ofProject(project))) return "it belongs to the project " + project;
        } catch (TRkDatabaseException const& error) {
            if (error.IsMissingTable()) continue;
            if (error.SqlState() != database::sqlstate::missingRight) throw;
            return "it may belong to the project " + project + ", whose entries may not be read";
        }
    }
    return {};
}

bool RowSearch::belongsTo(StoreTables const& other) const {
    auto rows = other.rows(true);
    auto const named = catalogue::keyOfFileName(storedNameOf(other, true, path_));
    bool const isEntryOfItsName = !named.empty() && rows->locate(named) &&
                                  catalogue::storedPath(other.directory(true), rows->filename()) == path_;
    return (isEntryOfItsName || locateByName(other, rows, true)) && liesHere(other, keyOf(rows->key()));
}

// Another project may name a file like this one in a directory of its own. One that was not recorded may lie here.
bool RowSearch::liesHere(StoreTables const& other, EntryKey const& key) const {
    auto contents = other.contents(true);
    auto const recorded = contents ? StoreTables::recordedDirectory(key, *contents) : hdf5::Id128();
    if (!recorded.isKnown() || recorded == matrix::knownDirectoryIdentity(other.directory(true))) return true;
    return stamp_ && stamp_->directory == recorded;
}

}
