// Stores routes, and the trips over one of their links as a result derived from them.
#include <cubes/cubes.h>

#include <cstdint>
#include <iostream>
#include <stdexcept>
#include <string>

using namespace VL::Interface;

// A provider reports failure by a code; its last-error text holds the cause.
static void require(bool isDone) {
    if (!isDone) throw std::runtime_error(VL::InterfaceUtilities::TLastError::getInstance()->VlGetLastError());
}

// From zone 1 to zone 3, 75 % of the trips take the links 10 and 20, the others link 15.
static void writeRoutes(std::string const& path) {
    TVlRouteStorageRouteSet routes(path.c_str());
    require(routes.open(romCreate, nullptr) == 1);
    std::uint32_t const links[] = {10, 20, 15};
    require(routes.getInterface()->addRoute({1, 3, 0.75F, links, 2}) == rrDone);
    require(routes.getInterface()->addRoute({1, 3, 0.25F, links + 2, 1}) == rrDone);
    require(routes.getInterface()->commit() == rrDone);
}

// The trips of each OD pair times the shares of its routes over the link.
static TRkMatrix tripsOver(std::uint32_t link, std::string const& path, TRkMatrix const& trips) {
    TRkMatrix selected = TRkMatrix::inMemory(trips.Rows(), trips.Columns());
    TVlRouteStorageRouteSet routes(path.c_str());
    require(routes.open(romRead, nullptr) == 1);
    RouteNumbers found{};
    require(routes.getInterface()->findRoutesOfLink(link, &found) >= rrAbsent);
    Route route{};
    for (std::int64_t i = 0; i < found.count; ++i) {
        require(routes.getInterface()->getRoute(found.numbers[i], &route) == rrDone);
        float* const row = selected.WritableRow(route.origin - 1).data();
        row[route.destination - 1] += route.share * trips.At(route.origin, route.destination);
    }
    return selected;
}

int main(int count, char** arguments) {
    if (count != 2) return 2;
    try {
        cubes::Project const project = cubes::Project::create(arguments[1]);
        cubes::EntryStore& store = project.store();
        TRkMatrix trips = TRkMatrix::inMemory(3, 3);
        trips.WritableRow(0)[2] = 40;
        auto const routes = store.parse("routes/1/1/1/1/1/0");
        auto const selected = store.parse("selectedlink/1/1/1/1/1/0");
        store.putFile(routes, writeRoutes);
        store.put(selected, tripsOver(20, store.find(routes)->file, trips), {.parent = routes});
        std::cout << "from 1 to 3 over link 20: " << store.get(selected).At(1, 3) << '\n'
                  << "derived from " << store.text(*store.parent(selected)) << '\n';
        return 0;
    } catch (std::exception const& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
