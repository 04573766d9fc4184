#pragma once

#include <string>

namespace cubes::test {

/// How the private PostgreSQL server of that directory is reached: by its socket, or else by the network.
std::string serverHost(std::string const& directory);

}
