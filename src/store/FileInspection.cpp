#include "store/FileInspection.h"

#include "catalogue/Kinds.h"
#include "host/matrix/Elements.h"
#include "host/matrix/Failure.h"
#include "host/matrix/OmxReader.h"
#include "host/platform/File.h"
#include "host/platform/Files.h"
#include "host/platform/Paths.h"
#include "host/platform/TemporaryFile.h"
#include "store/Failure.h"

#include <algorithm>
#include <exception>
#include <system_error>

namespace cubes::store {

namespace {

// Only files of ours are known: an application may store routes in files of its own.
void inspectRoutes(std::span<std::byte const> file, FileFacts& facts) {
    auto const damaged = [&facts](std::string const& why) {
        facts.problem = Problem::damagedFile;
        facts.detail = why;
    };
    if (file.empty()) return damaged("it is empty");
    auto const found = hdf5::findRecord(file);
    if (!found) return;
    if (!hdf5::beginsAsHdf5(file)) return damaged("its beginning is damaged");
    if (file.size() < found->record.fileSize)
        damaged("it is truncated: it has " + std::to_string(file.size()) + " bytes of " +
                std::to_string(found->record.fileSize));
}

void inspectMatrix(std::string const& path, FileFacts& facts) {
    auto const opened = matrix::openMatrixFile(path);
    facts.rows = opened.header.rows;
    facts.columns = opened.header.columns;
}

bool hasDamagedRecord(std::string const& path, std::span<std::byte const> file) {
    if (!hdf5::beginsAsHdf5(file) || hdf5::findRecord(file)) return false;
    return matrix::describingFailure("cannot read", path, [&] { return matrix::OmxReader(path).hasRecord(); });
}

void inspectContent(std::string const& path, FileFacts& facts) {
    if (matrix::isIntactFile(path)) return;
    facts.problem = Problem::wrongContent;
    facts.detail = hdf5::reasonOfDamage("it");
}

Problem problemOf(std::error_code code) {
    return code == std::errc::no_such_file_or_directory ? Problem::missingFile : Problem::unreadableFile;
}

void inspect(std::string const& path, bool holdsRoutes, bool deep, FileFacts& facts) {
    auto const view = platform::FileView::open(path);
    if (auto const found = hdf5::findRecord(view.bytes())) facts.stamp = found->record.stamp;
    if (holdsRoutes)
        inspectRoutes(view.bytes(), facts);
    else
        inspectMatrix(path, facts);
    if (facts.problem) return;
    if (hasDamagedRecord(path, view.bytes())) {
        facts.problem = Problem::damagedIndex;
        facts.detail = "its index record is damaged";
    }
    if (deep && !holdsRoutes) inspectContent(path, facts);
}

// Of a very long temporary name the extension is not known.
bool isAmongRoutes(std::string const& path) {
    auto const directory = platform::fromPath(platform::toPath(path).parent_path().filename()) + "\\";
    return std::ranges::any_of(catalogue::kinds(),
        [&](catalogue::Kind const& kind) { return kind.holdsRoutes && directory == kind.directory; });
}

}

FileFacts inspectFile(std::string const& path, bool holdsRoutes, bool deep) {
    FileFacts facts;
    auto const failed = [&facts](Problem problem, std::string why) {
        facts.problem = problem;
        facts.detail = std::move(why);
    };
    try {
        inspect(path, holdsRoutes, deep, facts);
    } catch (TRkMatrixException const& error) {
        failed(error.Code() ? problemOf(error.Code()) : Problem::damagedFile, causeOf(error));
    } catch (std::system_error const& error) {
        failed(problemOf(error.code()), error.code().message());
    } catch (std::bad_alloc const&) {
        failed(Problem::unreadableFile, "not enough memory");
    } catch (std::exception const& error) {
        failed(Problem::damagedFile, error.what());
    }
    return facts;
}

bool mayBeComplete(std::string const& path) {
    auto const name = platform::fromPath(platform::toPath(path).filename());
    if (platform::isOldName(name)) return true;
    if (platform::isSetAside(name)) return false;
    try {
        auto const file = platform::File::openForReading(path);
        if (auto const found = hdf5::findRecord(file)) return found->record.fileSize == file.size();
    } catch (std::system_error const&) {
        return true;
    }
    return inspectFile(path, isAmongRoutes(path), false).problem != Problem::damagedFile;
}

}
