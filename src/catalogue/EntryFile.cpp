#include "catalogue/EntryFile.h"

#include "host/matrix/Body.h"
#include "host/matrix/StagedFile.h"
#include "host/matrix/WriteLock.h"
#include "host/platform/Files.h"

#include <cubes/matrix/TRkMatrix.h>
#include <cubes/matrix/TRkMatrixException.h>

#include <exception>
#include <optional>
#include <stdexcept>

namespace cubes::catalogue {

namespace {

using matrix::WriteLock;

constexpr int rowAccess = 8;

void requireDistinctFiles(std::string const& source, std::string const& target) {
    if (!platform::isRegularFile(source)) throw std::runtime_error(source + " is not a regular file");
    if (platform::isDirectory(target)) throw std::runtime_error(target + " is a directory");
    if (platform::overlap(source, target)) throw std::runtime_error(source + " and " + target + " are the same file");
}

void copyOver(std::string const& source, std::string const& target) {
    matrix::StagedFile staged(target);
    staged.copy(source);
    staged.publish();
}

// Renames the file and flushes the new name before the old one is removed. If that cannot be done atomically, the
// source may stay: the target is complete nevertheless.
void rename(std::string const& source, std::string const& target, bool isFlushed) {
    if (!platform::renameFile(source, target)) {
        copyOver(source, target);
        platform::discardFile(source);
    } else if (isFlushed) {
        platform::flushDirectory(platform::directoryOf(target));
    }
}

void moveFile(std::string const& source, std::string const& target) {
    requireDistinctFiles(source, target);
    WriteLock const held(target, WriteLock::Purpose::create);
    bool const isFlushed = matrix::isToBeFlushed(target);
    // The source may come from a directory whose files are not flushed.
    if (isFlushed) platform::flushFile(source);
    rename(source, target, isFlushed);
    std::string const left = platform::directoryOf(source);
    if (isFlushed && !platform::isSamePath(left, platform::directoryOf(target))) platform::flushDirectory(left);
}

template <typename Work>
bool succeeds(Work const& work) {
    try {
        work();
        return true;
    } catch (std::exception const&) {
        return false;
    }
}

void requireColumn(TRkMatrix const& matrix, int column) {
    if (column >= 0 && column < matrix.Columns()) return;
    throw TRkMatrixException("cannot read column " + std::to_string(column) + " of " + matrix.FileName() + ": it has " +
                                 std::to_string(matrix.Columns()) + " columns",
        matrix.FileName());
}

}

void copyFile(std::string const& source, std::string const& target, RkLockState lock) {
    requireDistinctFiles(source, target);
    std::optional<WriteLock> held;
    if (lock & lsWrite) held.emplace(target, WriteLock::Purpose::create);
    copyOver(source, target);
}

bool copyMatrixFile(std::string const& source, std::string const& target, RkLockState lock) {
    return succeeds([&] { copyFile(source, target, lock); });
}

bool moveMatrixFile(std::string const& source, std::string const& target) {
    return succeeds([&] { moveFile(source, target); });
}

bool copyResult(std::string const& source, std::string const& target) {
    if (source.empty() || target.empty()) return false;
    if (!platform::isDirectory(source) || !platform::isDirectory(target))
        return copyMatrixFile(source, target, lsReadWrite);
    return !platform::overlap(source, target) && platform::copy(source, target, true);
}

bool moveResult(std::string const& source, std::string const& target) {
    if (source.empty() || target.empty()) return false;
    if (!platform::isDirectory(source)) return moveMatrixFile(source, target);
    if (platform::overlap(source, target)) return false;
    removeResult(target);
    return platform::moveDirectory(source, target);
}

bool removeResult(std::string const& path) {
    return platform::isDirectory(path) ? platform::removeDirectory(path, true) : platform::removeFile(path);
}

double readElement(std::unique_ptr<TRkMatrix> matrix, int row, int column) {
    if (!matrix) return -1.0;
    requireColumn(*matrix, column);
    double const element = matrix->RowAt(row, rowAccess)[column];
    matrix->Release();
    cubes::matrix::dropZones(*matrix.release());
    return element;
}

TRkMatrixHeader const* readHeader(TRkString const& file) {
    return file.IsEmpty() ? nullptr : TRkMatrix().GetHeader(file.c_str());
}

}
