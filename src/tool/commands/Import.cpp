#include "tool/Command.h"
#include "tool/Entries.h"
#include "tool/Errors.h"
#include "tool/Progress.h"
#include "tool/Projects.h"
#include "tool/Statistics.h"
#include "tool/Text.h"
#include "tool/formats/Formats.h"
#include "tool/formats/TripTable.h"
#include "tool/formats/WholeFile.h"

#include <cubes/matrix/MatrixLimits.h>

#include <fmt/format.h>

#include <algorithm>

namespace cubes::tool {

namespace {

class Import : public Command {
public:
    Import() : Command("import", "Store a matrix from a file in an entry") {}

    void declare(Arguments arguments) override {
        arguments.required("FILE", file_, "The file; its extension determines the format: .omx, .csv or .tntp");
        arguments.required("ENTRY", entry_, "The entry; a new cube is added");
        arguments.optional("--table", table_, "Table of an OMX file with several tables").calls("NAME");
        arguments.flag("--ignore-checksum", ignoreChecksum_, "Accept an OMX file that does not match its checksum");
        arguments.flag(
            "--allow-negative", allowNegative_, "Store negative cells as well, which trip tables do not have");
        arguments.optional("--max-zones", mostZones_, "Largest size of the matrix; default CUBES_MAX_ZONES, or 40000")
            .calls("N");
    }

    std::string task() const override { return fmt::format("import {} into {}", file_, entry_); }

    // The whole file is read before the project is changed.
    void run(Surroundings const& surroundings, Output& output) override {
        requireEntry(entry_, surroundings);
        if (mostZones_) setMostZones(limitIn(*mostZones_));
        auto const directory = findProject(surroundings.project);
        auto const trips = read();
        if (!allowNegative_) refuseNegative(trips);
        Entries const entries(Project::open(directory));
        auto const matrix = matrixOf(trips);
        auto const entry = entries.write(entry_, [&](EntryKey const& key) { entries.store().put(key, matrix); });
        auto const figures = statisticsOf(matrix);
        for (auto const& warning : trips.warnings) printWarning(warning);
        warnOfUnusualCells(figures);
        show(entry, matrix, figures, output);
    }

private:
    static std::int32_t limitIn(std::string const& text) {
        constexpr std::size_t onlyLine = 1;
        if (!isZoneNumber(text))
            throw UsageError(fmt::format("--max-zones must be a number of zones from 1 on, not \"{}\"", text));
        return zoneNumber(text, onlyLine);
    }

    TripTable read() const {
        Progress progress("reading " + file_);
        return readTripTable(file_, {table_, ignoreChecksum_}, progress.callback());
    }

    void refuseNegative(TripTable const& trips) const {
        auto const isNegative = [](float value) { return value < 0; };
        auto const first = std::find_if(trips.cells.begin(), trips.cells.end(), isNegative);
        if (first == trips.cells.end()) return;
        auto const index = static_cast<std::size_t>(first - trips.cells.begin());
        auto const columns = static_cast<std::size_t>(trips.columns);
        auto const zone = [&](std::size_t position) {
            return trips.zones.empty() ? static_cast<std::int32_t>(position + 1) : trips.zones[position];
        };
        throw FormatError(fmt::format("it has negative cells ({} in all), the first is {} from zone {} to zone {}; "
                                      "store them with --allow-negative",
            std::count_if(first, trips.cells.end(), isNegative), *first, zone(index / columns), zone(index % columns)));
    }

    static void warnOfUnusualCells(Statistics const& figures) {
        std::pair<std::int64_t, char const*> const unusual[] = {
            {figures.nans, "NaN"}, {figures.infinities, "infinite"}, {figures.negatives, "negative"}};
        for (auto const& [count, what] : unusual)
            if (count > 0) printWarning(fmt::format("cells that are {}: {}", what, count));
    }

    static void show(EntryInfo const& entry, TRkMatrix const& matrix, Statistics const& figures, Output& output) {
        Record stored;
        stored.add("entry", "entry", entry.text);
        stored.add("cube", "", entry.key.cube());
        stored.add("zones", "zones", orNull(figures.isSquare(), figures.rows));
        stored.add("rows", "rows", matrix.Rows());
        stored.add("columns", "columns", matrix.Columns());
        stored.add("total", "total", trusted(figures.total, cellsIn(figures)));
        stored.add("file", "file", entry.file);
        output.show(stored);
    }

    std::string file_;
    std::string entry_;
    std::optional<std::string> table_;
    std::optional<std::string> mostZones_;
    bool ignoreChecksum_ = false;
    bool allowNegative_ = false;
};

}

std::unique_ptr<Command> makeImport() {
    return std::make_unique<Import>();
}

}
