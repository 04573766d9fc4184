#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cubes::routestorage {

/// Splits a list of names at commas and at blanks and control characters. Between quotation marks nothing separates,
/// and a doubled mark represents one; the marks themselves are removed. Only two adjacent commas enclose an empty name.
std::vector<std::string> splitFieldNames(std::string_view list);

}
