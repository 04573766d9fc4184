#include <cubes/matrix/MatrixLimits.h>

#include "host/matrix/Failure.h"
#include "host/platform/System.h"

#include <atomic>
#include <charconv>
#include <cstdio>
#include <stdexcept>
#include <string>

namespace cubes {

namespace {

constexpr char variable[] = "CUBES_MAX_ZONES";
constexpr double worthAsking = 64.0 * (1 << 20);

std::atomic<int> chosen = 0;

int zonesIn(std::string const& text) {
    int zones = 0;
    auto const [end, failure] = std::from_chars(text.data(), text.data() + text.size(), zones);
    if (failure != std::errc() || end != text.data() + text.size() || zones < 1)
        throw std::invalid_argument(std::string("the environment variable ") + variable + " is \"" + text +
                                    "\"; expected a number of zones from 1 on");
    return zones;
}

std::string sizeText(double rows, double columns) {
    char text[64];
    std::snprintf(text, sizeof text, "%.0f x %.0f", rows, columns);
    return text;
}

std::string gigabytes(double bytes) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f GB", bytes / 1e9);
    return text;
}

void requireLimit(double rows, double columns) {
    double const most = mostZones();
    if (rows * columns <= most * most) return;
    throw matrix::BeyondLimits(sizeText(rows, columns) + " elements are more than the limit of " +
                               sizeText(most, most) + "; set " + variable + " to allow more");
}

void requireMemory(double rows, double columns, double bytes) {
    if (bytes < worthAsking) return;
    auto const available = platform::availableMemory();
    if (!available || bytes <= static_cast<double>(*available)) return;
    throw matrix::BeyondLimits(sizeText(rows, columns) + " elements need " + gigabytes(bytes) +
                               " of memory, and only " + gigabytes(static_cast<double>(*available)) + " are available");
}

}

int mostZones() {
    if (int const zones = chosen; zones > 0) return zones;
    auto const text = platform::environment(variable);
    return text ? zonesIn(*text) : defaultMostZones;
}

void setMostZones(int zones) {
    chosen = zones;
}

void requireMatrixFits(std::uint64_t rows, std::uint64_t columns, int copies) {
    auto const height = static_cast<double>(rows);
    auto const width = static_cast<double>(columns);
    requireLimit(height, width);
    requireMemory(height, width, height * width * sizeof(float) * copies);
}

}
