#include "tool/Command.h"
#include "tool/Errors.h"
#include "tool/Progress.h"
#include "tool/Projects.h"
#include "tool/commands/Routes.h"
#include "tool/routes/RouteCsv.h"

#include <fmt/format.h>

namespace cubes::tool {

namespace {

class RoutesImport : public RoutesCommand {
public:
    RoutesImport() : RoutesCommand("routes import", "Store routes or route data from a file in an entry") {}

    void declare(Arguments arguments) override {
        arguments.required("CSV", file_,
            "The file: origin,destination,route,sequence,link,share, or for route data route,NAME:TYPE,...");
        arguments.required("ENTRY", entry_, "The entry, of routes or routedata");
    }

    std::string task() const override { return fmt::format("import {} into {}", file_, entry_); }

    // The whole file is read before the project is changed.
    void run(Surroundings const& surroundings, Output& output) override {
        requireRoutes(entry_, surroundings);
        auto const directory = findProject(surroundings.project);
        if (isRouteSet(entry_))
            storeSet(directory, output);
        else
            storeData(directory, output);
    }

private:
    template <typename Reader>
    auto read(Reader const& reader) const {
        Progress progress("reading " + file_);
        return reader(file_, progress.callback());
    }

    void storeSet(std::string const& directory, Output& output) const {
        auto const routes = read(readRoutesCsv);
        Record facts;
        facts.add("routes", "routes", routes.size());
        facts.add("links", "links", routes.linkCount());
        store(directory, facts, output,
            [&](std::string const& path, RouteKey const& key) { writeRouteSet(path, key, routes); });
        warnOfTrips(routes);
    }

    // A file of routes may hold the trips of a route in place of its share.
    static void warnOfTrips(RouteList const& routes) {
        constexpr float mostByRounding = 1.0001f;
        std::size_t count = 0;
        for (std::size_t i = 0; i < routes.size(); ++i) count += routes[i].share > mostByRounding ? 1 : 0;
        if (count > 0)
            printWarning(
                fmt::format("routes with a share above 1: {}; routes select multiplies trips by these values", count));
    }

    void storeData(std::string const& directory, Output& output) const {
        auto const fields = read(readRouteDataCsv);
        Record facts;
        facts.add("routes", "routes", fields.front().values.size());
        facts.add("fields", "fields", fields.size());
        store(directory, facts, output,
            [&](std::string const& path, RouteKey const& key) { writeRouteData(path, key, fields); });
    }

    template <typename Write>
    void store(std::string const& directory, Record const& facts, Output& output, Write const& write) const {
        Entries const entries(Project::open(directory));
        auto const entry = entries.write(entry_, [&](EntryKey const& key) {
            entries.store().putFile(key, [&](std::string const& path) { write(path, routeKeyOf(key)); });
        });
        Record done;
        done.add("entry", "entry", entry.text);
        done.add(facts);
        done.add("file", "file", entry.file);
        output.show(done);
    }

    std::string file_;
    std::string entry_;
};

}

std::unique_ptr<Command> makeRoutesImport() {
    return std::make_unique<RoutesImport>();
}

}
