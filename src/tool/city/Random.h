#pragma once

#include <cstdint>
#include <random>

namespace cubes::tool {

/// Random numbers that are the same on every platform: the engine is fixed by the C++ standard,
/// its distributions are not, so that we make our own.
class Random {
public:
    explicit Random(std::uint64_t seed) : engine_(seed) {}

    /// Evenly spread over [0, 1), in steps of 2^-53.
    double share() { return static_cast<double>(engine_() >> 11) * 0x1p-53; }
    /// Evenly spread over [least, most).
    double between(double least, double most) { return least + (most - least) * share(); }

private:
    std::mt19937_64 engine_;
};

}
