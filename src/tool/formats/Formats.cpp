#include "tool/formats/Formats.h"

#include "tool/Paths.h"
#include "tool/formats/Csv.h"
#include "tool/formats/FormatError.h"
#include "tool/formats/NumberText.h"
#include "tool/formats/Omx.h"
#include "tool/formats/Tntp.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <new>

namespace cubes::tool {

namespace {

struct Source {
    std::string const& path;
    std::optional<std::string> const& table;
    ShareDone const& shareDone;
};

struct Target {
    std::string const& path;
    TripTable const& trips;
    std::string const& table;
    CsvForm form;
    ShareDone const& shareDone;
};

void refuseTableName(Source const& source) {
    if (source.table)
        throw FormatError(
            source.path, fmt::format("holds one table without a name, '{}' was asked for", *source.table));
}

TripTable readCsvSource(Source const& source) {
    refuseTableName(source);
    return readCsv(source.path, source.shareDone);
}

TripTable readTntpSource(Source const& source) {
    refuseTableName(source);
    return readTntp(source.path, source.shareDone);
}

TripTable readOmxSource(Source const& source) {
    return readOmx(source.path, source.table);
}

void writeCsvTarget(Target const& target) {
    writeCsv(target.path, target.trips, target.form, target.shareDone);
}

void writeOmxTarget(Target const& target) {
    writeOmx(target.path, target.trips, target.table);
}

// The format keeps no more digits than its author chose, and has no place for skims.
void refuseTntpTarget(Target const& target) {
    throw FormatError(target.path, ".tntp is a format to import from; write .omx or .csv, which keep every value");
}

struct Format {
    std::string_view extension;
    TripTable (*read)(Source const&);
    void (*write)(Target const&);
};

constexpr std::array formats = {
    Format{".omx", readOmxSource, writeOmxTarget},
    Format{".csv", readCsvSource, writeCsvTarget},
    Format{".tntp", readTntpSource, refuseTntpTarget},
};

Format const& formatOf(std::string const& path) {
    auto const extension = toText(toPath(path).extension());
    auto const found = std::find_if(
        formats.begin(), formats.end(), [&](Format const& format) { return isSameWord(format.extension, extension); });
    if (found != formats.end()) return *found;
    std::string known;
    for (auto const& format : formats) known += fmt::format("{}{}", known.empty() ? "" : ", ", format.extension);
    auto const what = extension.empty() ? std::string("has no extension") : fmt::format("'{}' is no format", extension);
    throw FormatError(path, fmt::format("{}, expected one of {}", what, known));
}

// A table can be larger than this machine, whatever its format.
template <typename Work>
auto withinMemory(std::string const& path, Work work) {
    try {
        return work();
    } catch (std::bad_alloc const&) {
        throw FormatError(path, "needs more memory than there is");
    }
}

}

TripTable readTripTable(std::string const& path, std::optional<std::string> const& table, ShareDone const& shareDone) {
    auto const& format = formatOf(path);
    return withinMemory(path, [&] { return format.read({path, table, shareDone}); });
}

void writeTripTable(std::string const& path, TripTable const& trips, std::string const& table, CsvForm form,
    ShareDone const& shareDone) {
    auto const& format = formatOf(path);
    withinMemory(path, [&] { format.write({path, trips, table, form, shareDone}); });
}

}
