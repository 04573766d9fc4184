#include "tool/Command.h"
#include "tool/Errors.h"
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
        requireRouteSet(entry_, surroundings);
        auto const link = parseLink(link_);
        for (auto const& word : {trips_, result_}) requireEntry(word, surroundings);
        auto const kind = resultKindOf(result_);
        if (!kind || kind->holdsRoutes)
            throw Refusal("RESULT must be a result that holds a matrix, such as selectedlink/1/1/1/1/1/1");
        Entries const entries(surroundings);
        auto const routes = entries.find(entry_);
        auto const tripsEntry = entries.find(trips_);
        if (tripsEntry.key.isResult()) refuseUse(tripsEntry, tripsEntry.text);
        auto const trips = tableOf(entries.store().get(tripsEntry.key, {.verify = true}));
        RouteSetFile const set(findRoutes(entry_, entries).file);
        auto const matrix = matrixOf(tripsOverLink(set, link, trips));
        auto const stored = entries.write(
            result_, [&](EntryKey const& key) { entries.store().put(key, matrix, {.parent = routes.key}); });
        show(stored, statisticsOf(matrix), output);
        if (set.overLink(link).empty()) printNote(fmt::format("no route uses link {}", link));
    }

private:
    static void show(EntryInfo const& stored, Statistics const& figures, Output& output) {
        Record done;
        done.add("entry", "entry", stored.text);
        done.add("pairs", "OD pairs", cellsIn(figures));
        done.add("total", "total", trusted(figures.total, cellsIn(figures)));
        done.add("file", "file", stored.file);
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
