#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cubes::routestorage {

/// The names in a list: separated by a comma, with any blanks and control characters around it, or
/// by these alone. Quotation marks go; what stands between them separates nothing, and two of them
/// there are one of the name. Two commas have an empty name between them.
std::vector<std::string> splitFieldNames(std::string_view list);

}
