#include "varcubes/EntryTransfer.h"

#include <cubes/core/TRkCubesException.h>

#include "catalogue/EntryTable.h"
#include "catalogue/MatrixPlacing.h"
#include "host/platform/Files.h"
#include "host/platform/Paths.h"

namespace cubes::varcubes {

namespace {

bool lookUp(TRkVarCubes const& cube, CountedPtr<Rktable::TRkTableProxy> const& table, Key const& k, bool zeroBased) {
    return cube.LookUp(table, k[0], k[1], k[2], k[3], k[4], k[5], k[6], zeroBased);
}

bool areDirectories(std::string const& source, std::string const& target) {
    return platform::isDirectory(source) && platform::isDirectory(target);
}

}

bool copyEntryFile(std::string const& source, std::string const& target) {
    if (source.empty() || target.empty()) return false;
    if (!areDirectories(source, target)) return copyMatrixFile(source, target, lsReadWrite);
    return !platform::overlap(source, target) && TRkFString(source).CopyTo(target.c_str(), true);
}

bool moveEntryFile(std::string const& source, std::string const& target) {
    if (source.empty() || target.empty()) return false;
    if (!platform::isDirectory(source)) return moveMatrixFile(source, target);
    if (platform::overlap(source, target)) return false;
    if (platform::isDirectory(target))
        platform::removeDirectory(target, true);
    else
        platform::removeFile(target);
    return platform::moveDirectory(source, target);
}

bool EntryTransfer::isDone() const {
    return from == to && source.MatrixDirectory().IsSameFile(target.MatrixDirectory());
}

bool EntryTransfer::run(FileOperation place) const {
    auto targetTable = target.Open();
    auto sourceTable = &source == &target ? targetTable : source.Open();
    bool placed = false;
    if (targetTable && lookUp(source, sourceTable, from, zeroBased)) {
        // Read at once: looking up the target may move this very cursor.
        std::string const sourceFile = fileOfRow(*sourceTable, source.MatrixDirectory().str());
        if (failIfExists && lookUp(target, targetTable, to, zeroBased))
            throw TRkCubesException(TRkCubesException::ecCubeExists);
        // Looking up alone honours the flag: callers know the target under the key they gave.
        if (target.Add(targetTable, to[0], to[1], to[2], to[3], to[4], to[5], to[6], 0, -1, -1, -1, -1, -1, -1, false))
            placed = place(sourceFile, fileOfRow(*targetTable, target.MatrixDirectory().str()));
    }
    source.Close(sourceTable);
    target.Close(targetTable);
    return placed;
}

void EntryTransfer::deleteSource() const {
    auto table = source.Open();
    if (lookUp(source, table, from, zeroBased)) table->Delete();
    source.Close(table);
}

}
