#pragma once

#include <cubes/routestorage/RouteStorageInterface.h>

#include <string>
#include <vector>

namespace cubes::tool {

/// A field of route data: one value for each route of a set, by its number from 0. A double holds
/// a value of any type exactly.
struct RouteValues {
    std::string name;
    VL::Interface::RouteFieldType type = VL::Interface::rftDouble;
    std::vector<double> values;
};

/// "boolean", "bytes", "smalint", "integer", "float" or "double", as field metadata call it.
char const* typeName(VL::Interface::RouteFieldType type);

}
