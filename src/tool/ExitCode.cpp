#include "tool/ExitCode.h"

#include "tool/Errors.h"

#include <cubes/core/TRkCubesException.h>

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

// Every other error has failed: of the database, a matrix, the project's files, memory.
constexpr Rule rules[] = {
    {isA<UsageError>, ExitCode::usage},
    {isA<Refusal>, ExitCode::refused},
    {isA<TRkCubesException>, ExitCode::refused},
};

}

ExitCode exitCodeOf(std::exception const& error) {
    for (auto const& rule : rules)
        if (rule.matches(error)) return rule.code;
    return ExitCode::failed;
}

}
