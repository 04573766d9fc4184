#include "tool/Catalogue.h"
#include "tool/Matrices.h"
#include "tool/Messages.h"
#include "tool/Numbers.h"
#include "tool/Progress.h"
#include "tool/ProjectFinder.h"
#include "tool/commands/Commands.h"
#include "tool/formats/Formats.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace cubes::tool {

namespace {

class Import : public Command {
public:
    Import() : Command("import", "Store the matrix of a file in an entry") {}

    void declare(CLI::App& line) override {
        line.add_option("FILE", file_, "The file; its extension tells the format: .omx, .csv or .tntp")->required();
        line.add_option("ENTRY", entry_, "CUBE/purpose/mode/time/user; a cube of a new name is added")->required();
        line.add_option("--table", table_, "Table of an OMX file that holds several")->type_name("NAME");
    }

    std::string task() const override { return fmt::format("import {} into {}", file_, entry_); }

    // The file is read to its end before the project is touched.
    void run(Surroundings const& surroundings, Output& output) override {
        auto const word = parseEntry(entry_);
        auto const directory = findProject(surroundings.project);
        auto const trips = read();
        Catalogue catalogue(directory);
        auto const matrix = matrixOf(trips);
        auto const entry = catalogue.store(word, matrix);
        for (auto const& warning : trips.warnings) tellWarning(warning);
        show(entry, matrix, catalogue.path(entry), output);
    }

private:
    TripTable read() const {
        Progress progress("reading " + file_);
        return readTripTable(file_, table_, [&](double share) { progress.reached(share); });
    }

    static void show(Entry const& entry, TRkMatrix const& matrix, std::string const& path, Output& output) {
        Record stored;
        stored.add("entry", "entry", entry.text());
        stored.add("cube", "", entry.cube.number);
        stored.add("zones", "zones", matrix.Zones().size());
        stored.add("rows", "rows", matrix.Rows());
        stored.add("columns", "columns", matrix.Columns());
        stored.add("total", "total", trusted(statisticsOf(matrix).total));
        stored.add("file", "file", path);
        output.show(stored);
    }

    std::string file_;
    std::string entry_;
    std::optional<std::string> table_;
};

}

std::unique_ptr<Command> makeImport() {
    return std::make_unique<Import>();
}

}
