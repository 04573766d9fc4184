#include "tool/formats/Formats.h"

#include "tool/Errors.h"
#include "tool/Paths.h"
#include "tool/Text.h"
#include "tool/formats/WholeFile.h"

#include <cubes/matrix/OmxFile.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <new>
#include <span>
#include <string_view>
#include <system_error>

namespace cubes::tool {

namespace {

using Tables = std::vector<std::string>;

std::string onlyTable(Tables const& tables) {
    if (tables.size() == 1) return tables.front();
    if (tables.empty()) throw FormatError("it holds no table");
    throw FormatError(
        fmt::format("it holds {} tables; choose one with --table: {}", tables.size(), fmt::join(tables, ", ")));
}

std::string chosenTable(Tables const& tables, std::string const& name) {
    if (std::ranges::find(tables, name) != tables.end()) return name;
    if (tables.empty()) throw FormatError("it holds no table");
    auto const near = suggestion(name, tables);
    throw FormatError(fmt::format("it has no table '{}'{}", name,
        near.empty() ? fmt::format("; choose one with --table: {}", fmt::join(tables, ", ")) : near));
}

struct Source {
    std::string const& path;
    ReadOptions const& options;
    ProgressCallback const& progress;
};

struct Target {
    std::string const& path;
    TripTable const& trips;
    std::string const& table;
    CsvForm form;
    ProgressCallback const& progress;
};

void refuseTableName(Source const& source) {
    if (source.options.table) throw FormatError("it holds one table without a name; omit --table");
}

TripTable readCsvSource(Source const& source) {
    refuseTableName(source);
    return readCsv(source.path, source.progress);
}

TripTable readTntpSource(Source const& source) {
    refuseTableName(source);
    return readTntp(source.path, source.progress);
}

TripTable readOmxSource(Source const& source) {
    auto const file = OmxFile::open(source.path);
    auto const& table = source.options.table;
    auto const name = table ? chosenTable(file.tables(), *table) : onlyTable(file.tables());
    return tableOf(source.options.ignoreChecksum ? file.read(name) : file.readVerified(name));
}

void writeCsvTarget(Target const& target) {
    writeCsv(target.path, target.trips, target.form, target.progress);
}

void writeOmxTarget(Target const& target) {
    requireWritablePath(target.path);
    OmxFile::write(target.path, target.table, matrixOf(target.trips));
}

// The format keeps no more digits than its author chose, and cannot hold skims.
void refuseTntpTarget(Target const&) {
    throw FormatError(".tntp files can be imported only; export to .omx or .csv, which keep every value");
}

struct Format {
    std::string_view extension;
    TripTable (*read)(Source const&);
    void (*write)(Target const&);
};

constexpr Format omx = {".omx", readOmxSource, writeOmxTarget};

constexpr std::array formats = {
    omx,
    Format{".csv", readCsvSource, writeCsvTarget},
    Format{".tntp", readTntpSource, refuseTntpTarget},
};

Format const* formatOf(std::string const& path) {
    auto const extension = toText(toPath(path).extension());
    auto const found = std::find_if(
        formats.begin(), formats.end(), [&](Format const& format) { return isSameWord(format.extension, extension); });
    return found == formats.end() ? nullptr : &*found;
}

[[noreturn]] void refuseFormat(std::string const& path) {
    auto const extension = toText(toPath(path).extension());
    Tables known;
    for (auto const& format : formats) known.emplace_back(format.extension);
    throw FormatError(fmt::format("{}; expected one of {}",
        extension.empty() ? std::string("the file name has no extension")
                          : fmt::format("'{}' is not a format", extension),
        fmt::join(known, ", ")));
}

// A table of any format can be too large for this machine.
template <typename Work>
auto withinMemory(Work work) {
    try {
        return work();
    } catch (std::bad_alloc const&) {
        throw FormatError("the matrix does not fit into memory");
    }
}

}

TripTable readTripTable(std::string const& path, ReadOptions const& options, ProgressCallback const& progress) {
    auto const* const byExtension = formatOf(path);
    if (!byExtension && !OmxFile::mayBe(path)) refuseFormat(path);
    auto const& format = byExtension ? *byExtension : omx;
    return withinMemory([&] { return format.read({path, options, progress}); });
}

void writeTripTable(std::string const& path, TripTable const& trips, std::string const& table, CsvForm form,
    ProgressCallback const& progress) {
    auto const* const format = formatOf(path);
    if (!format) refuseFormat(path);
    withinMemory([&] { format->write({path, trips, table, form, progress}); });
}

}
