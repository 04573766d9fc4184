#pragma once

#include "support/Required.h"

#include <gtest/gtest.h>

#include <string>

namespace cubes::test {

/// The path of a file of real data ("tntp/SiouxFalls_trips.tntp"); empty when it is not available.
std::string sharedData(std::string const& name);

}

/// Ends a test whose real data is not available: skipped with a message, or failed if it must be available.
#define CUBES_REQUIRE_DATA(name)                                                                                       \
    if (cubes::test::sharedData(name).empty()) {                                                                       \
        if (cubes::test::everythingIsRequired()) FAIL() << "missing test data: " << (name);                            \
        GTEST_SKIP() << "SKIPPED: test data " << (name) << " is missing; set CUBES_TEST_DATA";                         \
    }
