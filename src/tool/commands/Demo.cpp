#include "tool/CityCubes.h"
#include "tool/Errors.h"
#include "tool/Lineage.h"
#include "tool/Progress.h"
#include "tool/Projects.h"
#include "tool/Statistics.h"
#include "tool/Text.h"

#include <fmt/format.h>

#include <cmath>

namespace cubes::tool {

namespace {

/// The accepted relative error of the row and column totals; balancing reaches much less.
constexpr double tolerance = 1e-4;

std::string const firstTrips = std::string(tripsCube) + "/1/1/1/1";
constexpr char const* firstDistances = "skim/1/1/1/1/1/1";

constexpr char const* checked =
    "\nEvery matrix and route was read back and equals what was stored; row and column totals of the trips\n"
    "agree with productions and attractions to a relative error of {}.\n";

Statistics figuresOf(TripTable const& table) {
    return statisticsOf(table.rows, table.columns, [&](int row) { return table.row(row); });
}

double tripsOf(TripTable const& table) {
    return std::round(figuresOf(table).total);
}

double meanOf(TripTable const& table) {
    return std::round(figuresOf(table).mean * 10) / 10;
}

/// Adds a line: `head`, then a figure for each period.
template <typename Figure>
void addLine(Table& table, City const& city, std::vector<Json> head, Figure figure) {
    for (int period = 0; period < count(city.periods); ++period) head.emplace_back(figure(period));
    table.add(std::move(head));
}

using Skim = TripTable const& (City::*)(int mode, int period) const;

void addSkims(Table& table, City const& city, char const* figure, Skim skim) {
    for (int mode = 0; mode < count(city.modes); ++mode)
        addLine(table, city, {"skim", figure, Json(), nameAt(city.modes, mode)},
            [&](int period) { return meanOf((city.*skim)(mode, period)); });
}

// One line per purpose and mode with the trips of each period, and one per mode with the mean distances and times.
Table overview(City const& city) {
    std::vector<Column> columns = {{"", "cube"}, {"", "figure"}, {"", "purpose"}, {"", "mode"}};
    for (auto const& period : city.periods) columns.push_back({"", period});
    Table table(columns);
    for (int purpose = 0; purpose < count(city.purposes); ++purpose)
        for (int mode = 0; mode < count(city.modes); ++mode)
            addLine(table, city, {tripsCube, "trips", nameAt(city.purposes, purpose), nameAt(city.modes, mode)},
                [&](int period) { return tripsOf(city.trips(purpose, mode, period)); });
    addSkims(table, city, "mean km", &City::distance);
    addSkims(table, city, "mean minutes", &City::time);
    return table;
}

// One line per matrix.
Table listed(std::vector<CityMatrix> const& matrices) {
    Table table({{"entry", "entry"}, {"purpose", "purpose"}, {"mode", "mode"}, {"period", "period"}, {"total", "total"},
        {"mean", "mean"}});
    for (auto const& matrix : matrices) {
        auto const figures = figuresOf(*matrix.table);
        table.add({matrix.entry, matrix.purpose.empty() ? Json() : Json(matrix.purpose), matrix.mode, matrix.period,
            trusted(figures.total, cellsIn(figures)), trusted(figures.mean, cellsIn(figures))});
    }
    return table;
}

/// Removes the entries of a demo that failed. The database may outlive the project: it may hold other projects.
class StoredEntries {
public:
    explicit StoredEntries(EntryStore& store) : store_(store), hadCube_(store.findCube(tripsCube)) {}
    ~StoredEntries() {
        try {
            if (!isComplete_) removeAll();
        } catch (std::exception const&) {
            // The error that led here is the one to report.
        }
    }
    StoredEntries(StoredEntries const&) = delete;
    StoredEntries& operator=(StoredEntries const&) = delete;

    void add(EntryKey const& key) { keys_.push_back(key); }
    void complete() noexcept { isComplete_ = true; }

private:
    void removeAll() const {
        store_.removeAll(keys_);
        auto const cube = store_.findCube(tripsCube);
        if (!hadCube_ && cube && !store_.counts().contains(cube->number)) store_.removeCube(cube->number);
    }

    EntryStore& store_;
    bool hadCube_;
    std::vector<EntryKey> keys_;
    bool isComplete_ = false;
};

void storeAll(Entries const& entries, std::vector<CityMatrix> const& matrices, StoredEntries& stored) {
    Progress progress("storing");
    for (std::size_t i = 0; i < matrices.size(); ++i) {
        PutOptions options{.exists = OnExisting::fail};
        if (auto const& parent = matrices[i].parent) options.parent = entries.key(*parent);
        auto const entry = entries.write(matrices[i].entry,
            [&](EntryKey const& key) { entries.store().put(key, matrixOf(*matrices[i].table), options); });
        stored.add(entry.key);
        progress.reached(i + 1, matrices.size());
    }
}

/// Reads everything back and compares it, cell by cell.
void check(Entries const& entries, std::vector<CityMatrix> const& matrices) {
    Progress progress("checking");
    for (std::size_t i = 0; i < matrices.size(); ++i) {
        auto const entry = entries.find(matrices[i].entry);
        auto const stored = tableOf(entries.store().get(entry.key));
        if (stored.cells != matrices[i].table->cells || stored.zones != matrices[i].table->zones)
            throw Failure(fmt::format("{} was read back with other values than stored", entry.text));
        progress.reached(i + 1, matrices.size());
    }
}

// Returns the number of routes.
std::size_t storeAndCheck(Entries const& entries, City const& city, std::vector<CityMatrix> const& matrices) {
    StoredEntries stored(entries.store());
    storeAll(entries, matrices, stored);
    check(entries, matrices);
    for (auto const* const routes : {cityRoutes, cityRouteData}) stored.add(entries.key(routes));
    auto const count = storeRoutes(city, entries);
    stored.complete();
    return count;
}

double checkedImbalance(City const& city) {
    double const imbalance = largestMarginError(city);
    if (imbalance > tolerance)
        throw Failure(fmt::format("row and column totals of the trips have a relative error of {}", imbalance));
    return imbalance;
}

class Demo : public Command {
public:
    Demo() : Command("demo", "Create a project with a synthetic city") {}

    void declare(Arguments arguments) override {
        arguments.required("DIR", directory_, "Directory of the project, created when it does not exist");
        arguments.optional("--database", options_.database, "sqlite:PATH or postgresql://...; default sqlite:cubes.db")
            .calls("URL");
    }

    bool needsProject() const override { return false; }
    std::string task() const override { return "create a demo in " + directory_; }

    void run(Surroundings const& surroundings, Output& output) override {
        auto const city = makeCity();
        double const imbalance = checkedImbalance(city);
        auto const before = pathsOfProject(directory_, options_);
        auto project = createProject(directory_, options_);
        try {
            fill(std::move(project), city, imbalance, surroundings, output);
        } catch (...) {
            removeNewPaths(directory_, options_, before);
            throw;
        }
    }

private:
    // The project is closed at the end, so that its files can be removed.
    void fill(
        Project project, City const& city, double imbalance, Surroundings const& surroundings, Output& output) const {
        auto const matrices = matricesOf(city);
        Entries const entries(std::move(project));
        auto const routes = storeAndCheck(entries, city, matrices);
        show(city, matrices, routes, imbalance, entries.project().root(), output);
        if (output.form() == Form::json) return;
        output.add("\n" + overview(city).asText());
        output.add("\nLineage of the work trips by car in the morning, and of the car distances:\n" +
                   lineageOf(firstTrips, entries) + lineageOf(firstDistances, entries));
        output.add(fmt::format(checked, tolerance) + nextCommands(surroundings.program, city));
    }

    static std::string lineageOf(std::string const& word, Entries const& entries) {
        return asText(tool::lineageOf(entries.key(word), entries.store()));
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
            return fmt::format("  {} {} --project {}\n", quotedForShell(program), words, quotedForShell(directory_));
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
