#include "host/database/LockTimeout.h"

#include "host/platform/System.h"

#include <cubes/database/TRkDatabaseException.h>

#include <charconv>

namespace cubes::database {

namespace {

constexpr char const* variable = "CUBES_LOCK_TIMEOUT";
constexpr double least = 0.001;
constexpr double most = 86400;

}

std::optional<std::chrono::milliseconds> givenLockTimeout() {
    auto const text = platform::environment(variable);
    if (!text) return std::nullopt;
    double seconds = 0;
    char const* const end = text->data() + text->size();
    auto const [stop, error] = std::from_chars(text->data(), end, seconds);
    if (error != std::errc() || stop != end || !(seconds >= least && seconds <= most))
        throw TRkDatabaseException(
            std::string(variable) + " must be a number of seconds from 0.001 to 86400, not \"" + *text + "\"");
    return std::chrono::round<std::chrono::milliseconds>(std::chrono::duration<double>(seconds));
}

std::string textOf(std::chrono::milliseconds time) {
    auto const milliseconds = time.count();
    return milliseconds % 1000 == 0 ? std::to_string(milliseconds / 1000) + " s" : std::to_string(milliseconds) + " ms";
}

}
