#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cubes::routestorage {

/// Splits a list of names at commas and at blanks and control characters. Between quotation marks
/// nothing separates, and a doubled mark stands for one; the marks themselves are removed. An empty
/// name lies between two commas only.
std::vector<std::string> splitFieldNames(std::string_view list);

}
