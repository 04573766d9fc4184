#pragma once

#include "DataSet.h"
#include "RouteSet.h"

#include "support/TempDir.h"

#include <memory>
#include <string>
#include <vector>

namespace cubes::test {

using namespace VL::Interface;

struct Release {
    template <typename Object>
    void operator()(Object* object) const {
        object->release();
    }
};
template <typename Object>
using Owner = std::unique_ptr<Object, Release>;

/// A route with its own links, to be compared and printed.
struct SampleRoute {
    std::int32_t origin;
    std::int32_t destination;
    std::vector<std::uint32_t> links;
    float share = 1;

    bool operator==(SampleRoute const&) const = default;
};

void PrintTo(SampleRoute const& route, std::ostream* out);

using Numbers = std::vector<std::uint32_t>;

Owner<VelmoraRouteStorageRouteSetInterface> routeSet(std::string const& file);
Owner<VelmoraRouteStorageDataSetInterface> dataSet(std::string const& file);
/// Opened as well.
Owner<VelmoraRouteStorageRouteSetInterface> routeSet(std::string const& file, RouteOpenMode mode);
Owner<VelmoraRouteStorageDataSetInterface> dataSet(std::string const& file, RouteOpenMode mode);
std::string lastError();

RouteResult add(VelmoraRouteStorageRouteSetInterface& set, SampleRoute const& route);
/// All routes by number.
std::vector<SampleRoute> routesOf(VelmoraRouteStorageRouteSetInterface const& set);
Numbers ofPair(VelmoraRouteStorageRouteSetInterface const& set, std::int32_t origin, std::int32_t destination);
Numbers ofOrigin(VelmoraRouteStorageRouteSetInterface const& set, std::int32_t origin);
Numbers ofLink(VelmoraRouteStorageRouteSetInterface const& set, std::uint32_t link);

/// Routes in a small network:
///
///     1 --10--> 2 --20--> 3        1 --15--> 3
std::vector<SampleRoute> smallSet();
/// Stores routes in a new file.
void store(std::string const& file, std::vector<SampleRoute> const& routes);

template <typename Number>
RouteField field(char const* name, RouteFieldType type, std::vector<Number> const& values) {
    return {name, type, values.data(), static_cast<std::int64_t>(values.size())};
}
/// One field of each type with three values.
void storeFields(std::string const& file);

}
