#include "Samples.h"

#include <gtest/gtest.h>

namespace cubes::test {

namespace {

template <typename Find>
Numbers found(Find find) {
    std::uint32_t const other[] = {99};
    RouteNumbers numbers{other, 1};
    RouteResult const result = find(&numbers);
    EXPECT_EQ(result, numbers.count == 0 ? rrAbsent : rrDone) << lastError();
    return Numbers(numbers.numbers, numbers.numbers + numbers.count);
}

}

void PrintTo(SampleRoute const& route, std::ostream* out) {
    *out << route.origin << " -> " << route.destination << " (" << route.share << "):";
    for (auto const link : route.links) *out << ' ' << link;
}

Owner<VelmoraRouteStorageRouteSetInterface> routeSet(std::string const& file) {
    return Owner<VelmoraRouteStorageRouteSetInterface>(new routes::RouteSet(file.c_str()));
}

Owner<VelmoraRouteStorageDataSetInterface> dataSet(std::string const& file) {
    return Owner<VelmoraRouteStorageDataSetInterface>(new routes::DataSet(file.c_str()));
}

Owner<VelmoraRouteStorageRouteSetInterface> routeSet(std::string const& file, RouteOpenMode mode) {
    auto set = routeSet(file);
    set->open(mode, nullptr);
    return set;
}

Owner<VelmoraRouteStorageDataSetInterface> dataSet(std::string const& file, RouteOpenMode mode) {
    auto set = dataSet(file);
    set->open(mode, nullptr);
    return set;
}

std::string lastError() {
    return VlInterfaceGetLastError();
}

RouteResult add(VelmoraRouteStorageRouteSetInterface& set, SampleRoute const& route) {
    return set.addRoute({route.origin, route.destination, route.share, route.links.data(),
        static_cast<std::int64_t>(route.links.size())});
}

std::vector<SampleRoute> routesOf(VelmoraRouteStorageRouteSetInterface const& set) {
    std::vector<SampleRoute> all;
    for (std::int64_t number = 0; number < set.countRoutes(); ++number) {
        Route route{};
        EXPECT_EQ(set.getRoute(number, &route), rrDone) << lastError();
        all.push_back({route.origin, route.destination, {route.links, route.links + route.linkCount}, route.share});
    }
    return all;
}

Numbers ofPair(VelmoraRouteStorageRouteSetInterface const& set, std::int32_t origin, std::int32_t destination) {
    return found([&](RouteNumbers* numbers) { return set.findRoutesOfPair(origin, destination, numbers); });
}

Numbers ofOrigin(VelmoraRouteStorageRouteSetInterface const& set, std::int32_t origin) {
    return found([&](RouteNumbers* numbers) { return set.findRoutesOfOrigin(origin, numbers); });
}

Numbers ofLink(VelmoraRouteStorageRouteSetInterface const& set, std::uint32_t link) {
    return found([&](RouteNumbers* numbers) { return set.findRoutesOfLink(link, numbers); });
}

std::vector<SampleRoute> smallSet() {
    return {{1, 3, {10, 20}, 0.75f}, {1, 2, {10}, 1}, {2, 3, {20}, 1}, {1, 3, {15}, 0.25f}};
}

void store(std::string const& file, std::vector<SampleRoute> const& routes) {
    auto const set = routeSet(file, romCreate);
    for (auto const& route : routes) ASSERT_EQ(add(*set, route), rrDone) << lastError();
    ASSERT_EQ(set->commit(), rrDone) << lastError();
}

void storeFields(std::string const& file) {
    auto const set = dataSet(file, romCreate);
    set->addField(field<std::uint8_t>("tolled", rftBoolean, {1, 0, 1}));
    set->addField(field<std::uint8_t>("class", rftBytes, {0, 200, 255}));
    set->addField(field<std::int16_t>("stops", rftSmallint, {-32768, 0, 32767}));
    set->addField(field<std::int32_t>("number", rftInteger, {-2147483647, 0, 2147483647}));
    set->addField(field<float>("time", rftFloat, {0.5f, 1.25f, -3}));
    set->addField(field<double>("cost", rftDouble, {0.1, 1e300, -2}));
    ASSERT_EQ(set->countFields(), 6) << lastError();
    ASSERT_EQ(set->commit(), rrDone) << lastError();
}

}
