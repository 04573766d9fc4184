#pragma once

#include <cubes/matrix/MatrixStorage.h>

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace cubes {

inline std::string nameOf(Storage storage) {
    return storage == Storage::plain ? "plain" : "deflate";
}

/// Found by GoogleTest when a test with this parameter fails.
inline void PrintTo(Storage storage, std::ostream* out) {
    *out << nameOf(storage);
}

}

/// Makes every TEST_P of the suite a test on each storage, named "Prefix/Suite.claim/plain" and ".../deflate".
#define CUBES_EACH_STORAGE(prefix, suite)                                                                              \
    INSTANTIATE_TEST_SUITE_P(prefix, suite, testing::Values(cubes::Storage::plain, cubes::Storage::deflate),           \
        [](auto const& parameter) { return cubes::nameOf(parameter.param); })
