#include "Samples.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace cubes::test;

namespace {

// Some OD pairs have routes and others none; there are few links, in no order.
std::vector<SampleRoute> randomSet(unsigned seed, std::size_t count, std::uint32_t firstLink) {
    std::mt19937 random(seed);
    std::vector<SampleRoute> routes(count);
    for (auto& route : routes) {
        route.origin = static_cast<std::int32_t>(random() % 15) - 3;
        route.destination = static_cast<std::int32_t>(random() % 15) - 3;
        route.links.resize(random() % 12);
        for (auto& link : route.links) link = firstLink + static_cast<std::uint32_t>(random() % 40);
        route.share = static_cast<float>(random() % 8) / 8;
    }
    return routes;
}

template <typename Claim>
Numbers numbersWhere(std::vector<SampleRoute> const& routes, Claim holds) {
    Numbers numbers;
    for (std::uint32_t number = 0; number < routes.size(); ++number)
        if (holds(routes[number])) numbers.push_back(number);
    return numbers;
}

void expectSameAnswers(
    VelmoraRouteStorageRouteSetInterface const& set, std::vector<SampleRoute> const& routes, std::uint32_t firstLink) {
    ASSERT_EQ(routesOf(set), routes);
    for (std::int32_t from = -4; from < 13; ++from) {
        Numbers expected = numbersWhere(routes, [&](auto const& route) { return route.origin == from; });
        std::ranges::stable_sort(expected, {}, [&](std::uint32_t number) { return routes[number].destination; });
        EXPECT_EQ(ofOrigin(set, from), expected);
        for (std::int32_t to = -4; to < 13; ++to)
            EXPECT_EQ(ofPair(set, from, to), numbersWhere(routes, [&](auto const& route) {
                return route.origin == from && route.destination == to;
            }));
    }
    for (std::uint32_t link = firstLink; link < firstLink + 41; ++link)
        EXPECT_EQ(ofLink(set, link),
            numbersWhere(routes, [&](auto const& route) { return std::ranges::count(route.links, link) > 0; }));
}

}

TEST(RouteIndex, givesTheResultsOfASearchThroughAllRoutes) {
    TempDir const directory;
    std::string const file = directory.file("routes.FDB");
    for (std::uint32_t const firstLink : {1u, 65520u, 4000000000u}) {
        auto const routes = randomSet(firstLink, 400, firstLink);
        store(file, routes);
        expectSameAnswers(*routeSet(file, romRead), routes, firstLink);
    }
}

TEST(RouteIndex, isRebuiltAfterExtending) {
    TempDir const directory;
    std::string const file = directory.file("routes.FDB");
    auto routes = randomSet(5, 200, 1);
    store(file, routes);
    auto const set = routeSet(file, romExtend);
    expectSameAnswers(*set, routes, 1);
    for (auto const& route : randomSet(6, 100, 1)) {
        add(*set, route);
        routes.push_back(route);
    }
    expectSameAnswers(*set, routes, 1);
    set->commit();
    expectSameAnswers(*routeSet(file, romRead), routes, 1);
}
