#include "tool/Errors.h"
#include "tool/Kinds.h"
#include "tool/MatrixFacts.h"
#include "tool/Numbers.h"
#include "tool/commands/Commands.h"
#include "tool/commands/Routes.h"
#include "tool/formats/MatrixTable.h"
#include "tool/routes/SelectLink.h"

#include <fmt/format.h>

namespace cubes::tool {

namespace {

class RoutesSelect : public RoutesCommand {
public:
    RoutesSelect() : RoutesCommand("routes select", "Store the trips that pass a link by the routes of an entry") {}

    void declare(Arguments arguments) override {
        arguments.required("ENTRY", entry_, "The entry of routes; it becomes the parent of RESULT");
        arguments.required("LINK", link_, "The number of the link");
        arguments.required("TRIPS", trips_, "The entry of the trips; the shares of the routes divide them up");
        arguments.required("RESULT", result_, "The result to store the trips in that pass the link");
    }

    std::string task() const override { return fmt::format("select link {} of {}", link_, entry_); }

    void run(Surroundings const& surroundings, Output& output) override {
        auto const routesWord = parseRouteSet(entry_);
        auto const link = parseLink(link_);
        auto const tripsWord = parseEntry(trips_);
        auto const resultWord = parseEntry(result_);
        if (!resultWord.cube.kind || !resultWord.cube.kind->isResult || resultWord.cube.kind->holdsRoutes)
            throw Refusal("RESULT must be a result that holds a matrix");
        auto catalogue = Catalogue::open(surroundings);
        auto const entry = catalogue.entry(routesWord);
        auto const trips = tableOf(*catalogue.matrix(catalogue.entry(tripsWord)));
        RouteSetFile const set(routeFileOf(entry, catalogue));
        auto const selected = tripsOverLink(set, link, trips);
        auto const matrix = matrixOf(selected);
        auto const stored = catalogue.store(resultWord, matrix);
        catalogue.setParent(stored, numbersOf(entry));
        show(stored, statisticsOf(matrix), catalogue.path(stored), output);
    }

private:
    static void show(Entry const& stored, Statistics const& figures, std::string const& file, Output& output) {
        Record done;
        done.add("entry", "entry", stored.text());
        done.add("pairs", "pairs of zones", cellsIn(figures));
        done.add("total", "total", trusted(figures.total, cellsIn(figures)));
        done.add("file", "file", file);
        output.show(done);
    }

    std::string entry_;
    std::string link_;
    std::string trips_;
    std::string result_;
};

}

std::unique_ptr<Command> makeRoutesSelect() {
    return std::make_unique<RoutesSelect>();
}

}
