#include "tool/Errors.h"

#include <cubes/core/TRkCubesException.h>
#include <cubes/routestorage/DynamiclinkLibraryT.h>
#include <cubes/store/StoreError.h>

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

// Of a file that is not there the disk is to blame, of an entry or cube the command.
bool isRefusal(StoreError const& error) {
    switch (error.reason()) {
    case Reason::alreadyExists:
    case Reason::inUse:
    case Reason::otherDirectory:
    case Reason::invalidKey:
        return true;
    case Reason::notFound:
        return error.file().empty();
    default:
        return false;
    }
}

}

FormatError::FormatError(std::size_t line, std::string const& problem)
    : std::runtime_error(fmt::format("line {}: {}", line, problem)) {}

ExitCode exitCodeOf(std::exception const& error) {
    for (auto const& rule : rules)
        if (rule.matches(error)) return rule.code;
    auto const* const ofStore = dynamic_cast<StoreError const*>(&error);
    return ofStore && isRefusal(*ofStore) ? ExitCode::refused : ExitCode::failed;
}

std::string causeOf(std::exception const& error, std::string const& task) {
    if (auto const* const noProvider = dynamic_cast<DllNotLoaded const*>(&error))
        return "no route provider: " + noProvider->Reason();
    auto const* const ofStore = dynamic_cast<StoreError const*>(&error);
    if (!ofStore) return error.what();
    std::string text = ofStore->cause();
    // It says what could not be done to which file.
    if (text.starts_with("cannot ")) return text;
    for (auto const& name : {ofStore->file(), ofStore->entry()})
        if (text.find(name) == std::string::npos && task.find(name) == std::string::npos) text = name + ": " + text;
    return text;
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
