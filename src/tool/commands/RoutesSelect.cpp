#include "tool/Command.h"
#include "tool/Errors.h"
#include "tool/Kinds.h"
#include "tool/Statistics.h"
#include "tool/Text.h"
#include "tool/commands/Routes.h"
#include "tool/formats/TripTable.h"
#include "tool/routes/RouteFiles.h"

#include <fmt/format.h>

namespace cubes::tool {

namespace {

class RoutesSelect : public RoutesCommand {
public:
    RoutesSelect() : RoutesCommand("routes select", "Select link analysis: store the trips over a link") {}

    void declare(Arguments arguments) override {
        arguments.required("ENTRY", entry_, "The routes; they become the parent of RESULT");
        arguments.required("LINK", link_, "The link number");
        arguments.required("TRIPS", trips_, "The demand matrix, which is split by the shares of the routes");
        arguments.required("RESULT", result_, "The result to store the trips over the link in");
    }

    std::string task() const override { return fmt::format("select link {} of {}", link_, entry_); }

    void run(Surroundings const& surroundings, Output& output) override {
        auto const routesWord = parseRouteSet(entry_);
        auto const link = parseLink(link_);
        auto const tripsWord = parseEntry(trips_);
        auto const resultWord = parseEntry(result_);
        if (!resultWord.cube.kind || !resultWord.cube.kind->isResult || resultWord.cube.kind->holdsRoutes)
            throw Refusal("RESULT must be a result that holds a matrix, such as selectedlink/1/1/1/1/1/1");
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
        done.add("pairs", "OD pairs", cellsIn(figures));
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
