#pragma once

#include <string>

namespace cubes::test {

/// The host by which the private PostgreSQL server of that directory is reached: its socket or a network address.
std::string serverHost(std::string const& directory);

}
