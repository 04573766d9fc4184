#pragma once

#include "Measure.h"

#include <string>
#include <vector>

namespace bench {

/// `postgresUrl`: a database of a private server that may be filled; empty skips those figures.
std::vector<Result> entryOperations(std::string const& postgresUrl);
std::vector<Result> listings(std::string const& postgresUrl);
std::vector<Result> matrices();
/// `network`: a road network in the text format of the Transportation Networks collection.
std::vector<Result> routes(std::string const& network);

}
