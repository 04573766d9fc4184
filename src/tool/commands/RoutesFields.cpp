#include "tool/Command.h"
#include "tool/Errors.h"
#include "tool/commands/Routes.h"

#include <cubes/routestorage/Reference.h>
#include <cubes/routestorage/RouteStorageDataCube.h>

#include <fmt/format.h>

namespace cubes::tool {

namespace {

class RoutesFields : public RoutesCommand {
public:
    RoutesFields() : RoutesCommand("routes fields", "List the fields of route data") {}

    void declare(Arguments arguments) override { arguments.required("ENTRY", entry_, "The entry, of routedata"); }

    bool onlyReads() const override { return true; }
    std::string task() const override { return "list the fields of " + entry_; }

    void run(Surroundings const& surroundings, Output& output) override {
        requireRoutes(entry_, surroundings);
        if (isRouteSet(entry_)) throw Refusal("routes have no fields; route data have");
        Entries const entries(surroundings);
        auto const entry = findRoutes(entry_, entries);
        // The metadata of an unreadable file are empty; reading it gives the reason.
        readRouteData(entry.file);
        Table table({{"name", "name"}, {"type", "type"}, {"size", "size"}, {"precision", "precision"}});
        RouteStorageDataCube const cube(entries.project().settings());
        auto const k = entry.key.parts();
        Reference<Metadata::Vector<Metadata::Field*>> const fields(
            cube.getFieldMetadata(k[0], k[1], k[2], k[3], k[4], k[5]));
        for (std::size_t i = 0; i < fields->size(); ++i) table.add(rowOf(*(*fields)[i]));
        output.show(table);
    }

private:
    static std::vector<Json> rowOf(Metadata::Field& field) {
        Reference<Metadata::MetadataStringInterface> const name(field.getName());
        Reference<Metadata::MetadataStringInterface> const type(field.getType());
        Reference<Metadata::MetadataUnsignedLongInterface> const size(field.getSize());
        Reference<Metadata::MetadataLongInterface> const precision(field.getPrecision());
        return {name->get(), type->get(), size->get(), precision->get()};
    }

    std::string entry_;
};

}

std::unique_ptr<Command> makeRoutesFields() {
    return std::make_unique<RoutesFields>();
}

}
