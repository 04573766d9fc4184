#pragma once

#include "Measure.h"

#include <string>
#include <vector>

namespace bench {

/// `postgresUrl`: a database of a private server that may be filled; empty leaves those figures out.
std::vector<Result> entryOperations(std::string const& postgresUrl);
std::vector<Result> listings(std::string const& postgresUrl);
std::vector<Result> matrices();

}
