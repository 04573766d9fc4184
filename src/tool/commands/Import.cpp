#include "tool/Catalogue.h"
#include "tool/MatrixFacts.h"
#include "tool/Messages.h"
#include "tool/Numbers.h"
#include "tool/Progress.h"
#include "tool/ProjectFinder.h"
#include "tool/commands/Commands.h"
#include "tool/formats/FormatError.h"
#include "tool/formats/Formats.h"
#include "tool/formats/MatrixTable.h"

#include <fmt/format.h>

#include <algorithm>

namespace cubes::tool {

namespace {

class Import : public Command {
public:
    Import() : Command("import", "Store the matrix of a file in an entry") {}

    void declare(Arguments arguments) override {
        arguments.required("FILE", file_, "The file; its extension tells the format: .omx, .csv or .tntp");
        arguments.required("ENTRY", entry_, "The entry; a cube of a new name is added");
        arguments.optional("--table", table_, "Table of an OMX file that holds several").calls("NAME");
        arguments.flag("--allow-negative", allowNegative_, "Store negative cells too, which no trip table has");
    }

    std::string task() const override { return fmt::format("import {} into {}", file_, entry_); }

    // The file is read to its end before the project is touched.
    void run(Surroundings const& surroundings, Output& output) override {
        auto const word = parseEntry(entry_);
        auto const directory = findProject(surroundings.project);
        auto const trips = read();
        if (!allowNegative_) refuseNegative(trips);
        Catalogue catalogue(directory);
        auto const matrix = matrixOf(trips);
        auto const entry = catalogue.store(word, matrix);
        auto const figures = statisticsOf(matrix);
        for (auto const& warning : trips.warnings) tellWarning(warning);
        tellOfStrangeCells(figures);
        show(entry, matrix, figures, catalogue.path(entry), output);
    }

private:
    TripTable read() const {
        Progress progress("reading " + file_);
        return readTripTable(file_, table_, [&](double share) { progress.reached(share); });
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
        throw FormatError(
            file_, fmt::format("found {} from zone {} to zone {}, expected cells that are not negative ({} are); "
                               "--allow-negative stores them",
                       *first, zone(index / columns), zone(index % columns),
                       std::count_if(first, trips.cells.end(), isNegative)));
    }

    static void tellOfStrangeCells(Statistics const& figures) {
        std::pair<std::int64_t, char const*> const strange[] = {
            {figures.nans, "no number (NaN)"}, {figures.infinities, "infinite"}, {figures.negatives, "negative"}};
        for (auto const& [count, what] : strange)
            if (count > 0) tellWarning(fmt::format("cells that are {}: {}", what, count));
    }

    static void show(Entry const& entry, TRkMatrix const& matrix, Statistics const& figures, std::string const& path,
        Output& output) {
        Record stored;
        stored.add("entry", "entry", entry.text());
        stored.add("cube", "", entry.cube.number);
        stored.add("zones", "zones", zoneCount(matrix));
        stored.add("rows", "rows", matrix.Rows());
        stored.add("columns", "columns", matrix.Columns());
        stored.add("total", "total", trusted(figures.total, cellsIn(figures)));
        stored.add("file", "file", path);
        output.show(stored);
    }

    std::string file_;
    std::string entry_;
    std::optional<std::string> table_;
    bool allowNegative_ = false;
};

}

std::unique_ptr<Command> makeImport() {
    return std::make_unique<Import>();
}

}
