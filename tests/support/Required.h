#pragma once

#include <cstdlib>
#include <string_view>

namespace cubes::test {

/// Whether a test fails that lacks what it needs, instead of being skipped: on the machines that guard every change.
inline bool everythingIsRequired() {
    char const* const ci = std::getenv("CI");
    return ci && std::string_view(ci) == "true";
}

}
