#include "tool/Command.h"
#include "tool/Progress.h"
#include "tool/commands/Routes.h"
#include "tool/routes/RouteCsv.h"

#include <fmt/format.h>

namespace cubes::tool {

namespace {

class RoutesExport : public RoutesCommand {
public:
    RoutesExport() : RoutesCommand("routes export", "Write routes or route data to a file") {}

    void declare(Arguments arguments) override {
        arguments.required("ENTRY", entry_, "The entry, of routes or routedata");
        arguments.required("CSV", file_, "The file, which routes import can read");
    }

    std::string task() const override { return fmt::format("export {} to {}", entry_, file_); }

    void run(Surroundings const& surroundings, Output& output) override {
        requireRoutes(entry_, surroundings);
        Entries const entries(surroundings);
        auto const entry = findRoutes(entry_, entries);
        auto const routes = write(entry.file);
        Record done;
        done.add("entry", "entry", entry.text);
        done.add("routes", "routes", routes);
        done.add("file", "file", file_);
        output.show(done);
    }

private:
    // Returns the number of routes.
    std::size_t write(std::string const& file) const {
        Progress progress("writing " + file_);
        auto const callback = progress.callback();
        if (isRouteSet(entry_)) {
            auto const routes = routesIn(RouteSetFile(file));
            writeRoutesCsv(file_, routes, callback);
            return routes.size();
        }
        auto const fields = readRouteData(file);
        writeRouteDataCsv(file_, fields, callback);
        return fields.empty() ? 0 : fields.front().values.size();
    }

    std::string entry_;
    std::string file_;
};

}

std::unique_ptr<Command> makeRoutesExport() {
    return std::make_unique<RoutesExport>();
}

}
