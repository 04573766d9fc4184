#include "tool/Catalogue.h"
#include "tool/CityReport.h"
#include "tool/CityRoutes.h"
#include "tool/Errors.h"
#include "tool/LineageReport.h"
#include "tool/Progress.h"
#include "tool/ProjectFinder.h"
#include "tool/commands/Commands.h"
#include "tool/formats/MatrixTable.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <string_view>

namespace cubes::tool {

namespace {

/// Trips are balanced to much less than this share of what starts and ends in a zone.
constexpr double tolerance = 1e-4;

std::string const firstTrips = std::string(tripsCube) + "/1/1/1/1";
constexpr char const* firstDistances = "skim/1/1/1/1/1/1";

constexpr char const* checked =
    "\nEvery matrix and route was read back and is what was stored; the trips of each zone agree with what\n"
    "starts and ends there to a share of {}.\n";

/// A word as the shell takes it.
std::string quoted(std::string const& word) {
    auto const isPlain = [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) ||
               std::string_view("/._-+=:@\\").find(c) != std::string_view::npos;
    };
    if (std::all_of(word.begin(), word.end(), isPlain)) return word;
    std::string text = "'";
    for (char const c : word) text += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return text + "'";
}

void storeAll(Catalogue& catalogue, std::vector<CityMatrix> const& matrices) {
    Progress progress("storing");
    for (std::size_t i = 0; i < matrices.size(); ++i) {
        auto const entry = catalogue.store(matrices[i].entry, matrixOf(*matrices[i].table));
        if (auto const& parent = matrices[i].parent) catalogue.setParent(entry, numbersOf(catalogue.entry(*parent)));
        progress.reached(static_cast<double>(i + 1) / static_cast<double>(matrices.size()));
    }
}

/// Reads everything back and compares it, cell by cell.
void check(Catalogue const& catalogue, std::vector<CityMatrix> const& matrices) {
    Progress progress("checking");
    for (std::size_t i = 0; i < matrices.size(); ++i) {
        auto const entry = catalogue.entry(matrices[i].entry);
        auto const stored = tableOf(*catalogue.matrix(entry));
        if (stored.cells != matrices[i].table->cells || stored.zones != matrices[i].table->zones)
            throw Failure(fmt::format("{} is not read back as it was stored", entry.text()));
        progress.reached(static_cast<double>(i + 1) / static_cast<double>(matrices.size()));
    }
}

double checkedImbalance(City const& city) {
    double const imbalance = largestMarginError(city);
    if (imbalance > tolerance)
        throw Failure(fmt::format("the trips miss what starts and ends in a zone by a share of {}", imbalance));
    return imbalance;
}

class Demo : public Command {
public:
    Demo() : Command("demo", "Make a project with a made-up city in it") {}

    void declare(Arguments arguments) override {
        arguments.required("DIR", directory_, "Directory of the project, made when it is not there");
        arguments.optional("--database", options_.database, "sqlite:PATH or postgresql://...; default sqlite:cubes.db")
            .calls("URL");
    }

    bool needsProject() const override { return false; }
    std::string task() const override { return "make a demo in " + directory_; }

    void run(Surroundings const& surroundings, Output& output) override {
        refuseProject(directory_);
        auto const city = makeCity();
        double const imbalance = checkedImbalance(city);
        auto const matrices = matricesOf(city);
        Catalogue catalogue(Project::create(directory_, options_));
        storeAll(catalogue, matrices);
        check(catalogue, matrices);
        auto const routes = storeRoutes(city, catalogue);
        show(city, matrices, routes, imbalance, catalogue.project().root(), output);
        if (output.form() == Form::json) return;
        output.add("\n" + overview(city).asText());
        output.add("\nWhat was derived from the trips to work by car in the morning, and from the distances by car:\n" +
                   lineageOf(firstTrips, catalogue) + lineageOf(firstDistances, catalogue));
        output.add(fmt::format(checked, tolerance) + nextCommands(surroundings.program, city));
    }

private:
    static std::string lineageOf(std::string const& word, Catalogue const& catalogue) {
        auto const entry = catalogue.entry(parseEntry(word));
        return asText(tool::lineageOf(entry, Lineage(catalogue), catalogue));
    }

    static void show(City const& city, std::vector<CityMatrix> const& matrices, std::size_t routes, double imbalance,
        std::string const& root, Output& output) {
        Record made;
        made.add("project", "project", root);
        made.add("zones", "zones", city.zones.size());
        made.add("matrices", "matrices", matrices.size());
        made.add("routes", "routes", routes);
        made.add("imbalance", "", imbalance);
        made.add("entries", "", listed(matrices).asJson());
        output.show(made);
    }

    std::string nextCommands(std::string const& program, City const& city) const {
        auto const line = [&](std::string const& words) {
            return fmt::format("  {} {} --project {}\n", quoted(program), words, quoted(directory_));
        };
        return "\nTry next:\n" + line("list") + line("show " + firstTrips) + line("tree selectedlink/1/1/1/1/1/1") +
               line(fmt::format("cell skim/1/1/1/1/2/1 {} {}", city.zones.front().number, city.zones.back().number)) +
               line(fmt::format(
                   "routes show {} --od {} {}", cityRoutes, city.zones.back().number, city.zones.front().number)) +
               line("export " + firstTrips + " trips.csv");
    }

    std::string directory_;
    ProjectOptions options_;
};

}

std::unique_ptr<Command> makeDemo() {
    return std::make_unique<Demo>();
}

}
