#include "tool/routes/RouteFiles.h"

#include "tool/Errors.h"

#include <cubes/routestorage/RouteStorageWrappers.h>

#include <fmt/format.h>

#include <cstring>
#include <unordered_map>

namespace cubes::tool {

namespace {

using namespace VL::Interface;
using VL::InterfaceUtilities::TLastError;

[[noreturn]] void fail(std::string const& path) {
    char const* const text = TLastError::getInstance()->VlGetLastError();
    std::string const reason = text && *text ? text : fmt::format("{}: the route provider gives no reason", path);
    // "cannot open FILE: reason" without what could not be done.
    auto const file = reason.find(path + ": ");
    throw Failure(file == std::string::npos ? reason : reason.substr(file));
}

// Returns whether something was found.
bool isFound(std::string const& path, RouteResult result) {
    if (result == rrNotOffered) throw Failure(fmt::format("{}: the route provider does not support this", path));
    if (result == rrFailed) fail(path);
    return result == rrDone;
}

template <typename File>
void open(File& file, std::string const& path, long mode) {
    auto const opened = file.open(mode, nullptr);
    if (opened < 0) throw Failure("the route provider does not support such files");
    if (opened == 0) fail(path);
}

template <typename File>
void verify(File file, std::string const& path) {
    if (file.open(romRead, nullptr) == 0) fail(path);
}

template <typename File>
void create(File& file, std::string const& path, RouteKey const& key) {
    auto const& [p, m, t, u, r, i] = key.key;
    if (auto* const made = file.getInterface()) {
        made->setCubeType(key.cube);
        made->setKey(p, m, t, u, r, i);
    }
    open(file, path, romCreate);
}

std::vector<std::size_t> listOf(RouteNumbers const& found) {
    return {found.numbers, found.numbers + found.count};
}

// The values of a field as its type lays them out.
template <typename Value>
std::vector<std::byte> packed(std::vector<double> const& values) {
    std::vector<std::byte> bytes(values.size() * sizeof(Value));
    for (std::size_t i = 0; i < values.size(); ++i) {
        auto const value = static_cast<Value>(values[i]);
        std::memcpy(bytes.data() + i * sizeof value, &value, sizeof value);
    }
    return bytes;
}

std::vector<std::byte> packed(RouteValues const& field) {
    switch (field.type) {
    case rftBoolean:
    case rftBytes:
        return packed<std::uint8_t>(field.values);
    case rftSmallint:
        return packed<std::int16_t>(field.values);
    case rftInteger:
        return packed<std::int32_t>(field.values);
    case rftFloat:
        return packed<float>(field.values);
    default:
        return packed<double>(field.values);
    }
}

}

RouteSetFile::RouteSetFile(std::string const& path) : file_(path.c_str()) {
    open(file_, path, romRead);
    if (set().countRoutes() < 0) throw Failure(fmt::format("{}: the route provider does not support reading", path));
}

RouteList::Route RouteSetFile::route(std::size_t number) const {
    Route found{};
    isFound(set().getFileName(), set().getRoute(static_cast<std::int64_t>(number), &found));
    return {found.origin, found.destination, found.share, {found.links, static_cast<std::size_t>(found.linkCount)}};
}

std::vector<std::size_t> RouteSetFile::ofPair(std::int32_t origin, std::int32_t destination) const {
    RouteNumbers found{};
    return isFound(set().getFileName(), set().findRoutesOfPair(origin, destination, &found))
               ? listOf(found)
               : std::vector<std::size_t>();
}

std::vector<std::size_t> RouteSetFile::overLink(std::uint32_t link) const {
    RouteNumbers found{};
    return isFound(set().getFileName(), set().findRoutesOfLink(link, &found)) ? listOf(found)
                                                                              : std::vector<std::size_t>();
}

void writeRouteSet(std::string const& path, RouteKey const& key, RouteList const& routes) {
    TVlRouteStorageRouteSet file(path.c_str());
    create(file, path, key);
    for (std::size_t i = 0; i < routes.size(); ++i) {
        auto const one = routes[i];
        isFound(path, file.getInterface()->addRoute({one.origin, one.destination, one.share, one.links.data(),
                          static_cast<std::int64_t>(one.links.size())}));
    }
    isFound(path, file.getInterface()->commit());
}

void writeRouteData(std::string const& path, RouteKey const& key, std::vector<RouteValues> const& fields) {
    TVlRouteStorageDataSet file(path.c_str());
    create(file, path, key);
    for (auto const& field : fields) {
        auto const values = packed(field);
        isFound(path, file.getInterface()->addField({field.name.c_str(), field.type, values.data(),
                          static_cast<std::int64_t>(field.values.size())}));
    }
    isFound(path, file.getInterface()->commit());
}

void verifyRouteSet(std::string const& path) {
    verify(TVlRouteStorageRouteSet(path.c_str()), path);
}

void verifyRouteData(std::string const& path) {
    verify(TVlRouteStorageDataSet(path.c_str()), path);
}

std::vector<RouteValues> readRouteData(std::string const& path) {
    TVlRouteStorageDataSet file(path.c_str());
    open(file, path, romRead);
    auto const& data = *file.getInterface();
    std::vector<RouteValues> fields;
    RouteField field{};
    for (std::int64_t place = 0; isFound(path, data.getField(place, &field)); ++place)
        fields.push_back({field.name, field.type, {}});
    std::vector<double> values(fields.size());
    for (std::int64_t route = 0; isFound(path, data.getRouteValues(route, values.data())); ++route)
        for (std::size_t i = 0; i < fields.size(); ++i) fields[i].values.push_back(values[i]);
    return fields;
}

namespace {

class ZoneIndex {
public:
    explicit ZoneIndex(TripTable const& trips) {
        for (int i = 0; i < trips.rows; ++i)
            places_[trips.zones.empty() ? i + 1 : trips.zones[static_cast<std::size_t>(i)]] = i;
    }
    int operator[](std::int32_t zone) const {
        auto const found = places_.find(zone);
        if (found == places_.end())
            throw Failure(fmt::format("the matrix of the trips has no zone {}, where a route begins or ends", zone));
        return found->second;
    }

private:
    std::unordered_map<std::int32_t, int> places_;
};

}

TripTable tripsOverLink(RouteSetFile const& routes, std::uint32_t link, TripTable const& trips) {
    if (!trips.isSquare()) throw Failure("the matrix of the trips is not square");
    ZoneIndex const zones(trips);
    TripTable shares = trips;
    std::fill(shares.cells.begin(), shares.cells.end(), 0.0f);
    for (auto const number : routes.overLink(link)) {
        auto const one = routes.route(number);
        shares.at(zones[one.origin], zones[one.destination]) += one.share;
    }
    // A share of 0 makes 0 trips, even of infinitely many.
    for (std::size_t i = 0; i < shares.cells.size(); ++i)
        if (shares.cells[i] != 0) shares.cells[i] *= trips.cells[i];
    return shares;
}

}
