// The text formats of the tool: what is read can be written, and is then read as the same.

#include "Target.h"

#include "tool/Errors.h"
#include "tool/formats/Formats.h"
#include "tool/routes/RouteCsv.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace cubes::fuzz {

namespace {

using tool::FormatError;
using tool::RouteList;
using tool::RouteValues;
using tool::TripTable;

// What `read` returns for the file; nothing when it is refused.
template <typename Read>
auto accepted(Read const& read) -> std::optional<decltype(read())> {
    try {
        return read();
    } catch (FormatError const& error) {
        requireReason(error.what());
        return {};
    }
}

bool isSame(float first, float second) {
    return first == second || (std::isnan(first) && std::isnan(second));
}

bool isSame(TripTable const& first, TripTable const& second) {
    return first.zones == second.zones &&
           std::ranges::equal(first.cells, second.cells, [](float one, float other) { return isSame(one, other); });
}

void requireSound(TripTable const& table) {
    require(table.isSquare(), "a table is square");
    require(table.zones.size() == static_cast<std::size_t>(table.rows), "each row has a zone number");
    require(table.cells.size() == table.zones.size() * table.zones.size(), "each OD pair has a cell");
    require(std::ranges::adjacent_find(table.zones, std::greater_equal()) == table.zones.end(),
        "zone numbers ascend and are distinct");
}

void readTable(std::string const& path) {
    auto const table = accepted([&] { return tool::readTripTable(path); });
    if (!table) return;
    requireSound(*table);
    for (auto const form : {tool::CsvForm::longForm, tool::CsvForm::wide}) {
        auto const copy = pathOf("copy.csv");
        tool::writeTripTable(copy, *table, {}, form);
        require(isSame(tool::readTripTable(copy), *table), "a written table is read as it was");
    }
}

void readCsv(std::string const& input) {
    readTable(fileOf("input.csv", input));
}

void readTntp(std::string const& input) {
    readTable(fileOf("input.tntp", input));
}

bool isSame(RouteList const& first, RouteList const& second) {
    if (first.size() != second.size()) return false;
    for (std::size_t i = 0; i < first.size(); ++i) {
        auto const& one = first[i];
        auto const& other = second[i];
        if (one.origin != other.origin || one.destination != other.destination || one.share != other.share ||
            !std::ranges::equal(one.links, other.links))
            return false;
    }
    return true;
}

void readRoutes(std::string const& input) {
    auto const path = fileOf("input.csv", input);
    auto const routes = accepted([&] { return tool::readRoutesCsv(path, {}); });
    if (!routes) return;
    auto const copy = pathOf("copy.csv");
    tool::writeRoutesCsv(copy, *routes, {});
    require(isSame(tool::readRoutesCsv(copy, {}), *routes), "written routes are read as they were");
}

bool isSame(RouteValues const& first, RouteValues const& second) {
    return first.name == second.name && first.type == second.type && first.values == second.values;
}

void readRouteData(std::string const& input) {
    auto const path = fileOf("input.csv", input);
    auto const fields = accepted([&] { return tool::readRouteDataCsv(path, {}); });
    if (!fields) return;
    auto const copy = pathOf("copy.csv");
    tool::writeRouteDataCsv(copy, *fields, {});
    require(std::ranges::equal(tool::readRouteDataCsv(copy, {}), *fields,
                [](RouteValues const& one, RouteValues const& other) { return isSame(one, other); }),
        "written route data are read as they were");
}

constexpr Target all[] = {
    {"csv", readCsv, noSeeds},
    {"tntp", readTntp, noSeeds},
    {"routes-csv", readRoutes, noSeeds},
    {"route-data-csv", readRouteData, noSeeds},
};

}

std::span<Target const> targets() {
    return all;
}

}
