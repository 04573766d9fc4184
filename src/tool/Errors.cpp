#include "tool/Errors.h"

#include <cubes/core/TRkCubesException.h>

#include <fmt/format.h>

#include <cstdio>

namespace cubes::tool {

namespace {

template <typename Error>
bool isA(std::exception const& error) {
    return dynamic_cast<Error const*>(&error) != nullptr;
}

struct Rule {
    bool (*matches)(std::exception const&);
    ExitCode code;
};

// Every other error is a failure: of the database, a matrix, the project's files, memory.
constexpr Rule rules[] = {
    {isA<UsageError>, ExitCode::usage},
    {isA<Refusal>, ExitCode::refused},
    {isA<TRkCubesException>, ExitCode::refused},
};

void print(char const* severity, std::string const& message) {
    fmt::print(stderr, "cubes: {}{}\n", severity, message);
}

}

FormatError::FormatError(std::size_t line, std::string const& problem)
    : std::runtime_error(fmt::format("line {}: {}", line, problem)) {}

ExitCode exitCodeOf(std::exception const& error) {
    for (auto const& rule : rules)
        if (rule.matches(error)) return rule.code;
    return ExitCode::failed;
}

void printError(std::string const& message) {
    print("", message);
}

void printWarning(std::string const& message) {
    print("warning: ", message);
}

void printNote(std::string const& message) {
    print("note: ", message);
}

}
