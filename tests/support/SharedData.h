#pragma once

#include "support/Required.h"

#include <gtest/gtest.h>

#include <string>

namespace cubes::test {

/// The path of a file of real data ("tntp/SiouxFalls_trips.tntp"); empty when it is not here.
std::string sharedData(std::string const& name);

}

/// Ends a test whose real data is not here: skipped loudly, failed where it must be there.
#define CUBES_REQUIRE_DATA(name)                                                                                       \
    if (cubes::test::sharedData(name).empty()) {                                                                       \
        if (cubes::test::everythingIsRequired()) FAIL() << "missing test data: " << (name);                            \
        GTEST_SKIP() << "SKIPPED: test data " << (name) << " is missing; set CUBES_TEST_DATA";                         \
    }
