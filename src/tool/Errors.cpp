#include "tool/Errors.h"

#include "host/platform/TemporaryFile.h"
#include "tool/Terminal.h"
#include "tool/Text.h"

#include <cubes/core/TRkCubesException.h>
#include <cubes/matrix/TRkMatrixException.h>
#include <cubes/routestorage/DynamiclinkLibraryT.h>
#include <cubes/store/StoreError.h>

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <vector>

namespace cubes::tool {

namespace {

constexpr int signalled = 128;

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
    // Where nothing can be printed, the exit code still tells.
    std::fputs(fmt::format("cubes: {}{}\n", severity, escaped(message)).c_str(), stderr);
}

// How errors of files begin; longer texts come first.
constexpr std::string_view actions[] = {"cannot put in place ", "cannot read past the end of ", "cannot copy to ",
    "cannot read ", "cannot open ", "cannot create ", "cannot examine ", "cannot write ", "cannot flush ",
    "cannot map ", "cannot lock "};

// The message begins with "cannot" already: "cannot open /d/a.odm: Permission denied" is
// "/d/a.odm: Permission denied". A temporary file is called by its target.
std::string withoutAction(std::string text) {
    for (auto const action : actions) {
        if (!text.starts_with(action)) continue;
        text.erase(0, action.size());
        auto const end = std::min(text.find(": "), text.size());
        return platform::targetOfTemporary(text.substr(0, end)) + text.substr(end);
    }
    return text;
}

// The reason in "cannot write matrix file FILE: reason".
std::string reasonIn(std::string const& text, std::string const& file) {
    auto const at = file.empty() || !text.starts_with("cannot ") ? std::string::npos : text.find(file + ": ");
    return withoutAction(at == std::string::npos ? text : text.substr(at + file.size() + 2));
}

/// Why something failed, and the file and entry that the message must name.
struct Cause {
    std::string text;
    std::vector<std::string> names;
};

Cause causeIn(std::exception const& error) {
    if (auto const* const ofStore = dynamic_cast<StoreError const*>(&error))
        return {reasonIn(ofStore->cause(), ofStore->file()), {ofStore->file(), ofStore->entry()}};
    if (auto const* const ofMatrix = dynamic_cast<TRkMatrixException const*>(&error))
        return {reasonIn(error.what(), ofMatrix->File()), {ofMatrix->File()}};
    return {withoutAction(error.what()), {}};
}

// A missing file is a failure. A missing entry or cube was named wrongly on the command line.
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

void stopIfInterrupted() {
    if (interruption()) throw Interrupted();
}

FormatError::FormatError(std::size_t line, std::string const& problem)
    : std::runtime_error(fmt::format("line {}: {}", line, problem)) {}

ExitCode exitCodeOf(std::exception const& error) {
    if (int const signal = interruption()) return static_cast<ExitCode>(signalled + signal);
    for (auto const& rule : rules)
        if (rule.matches(error)) return rule.code;
    auto const* const ofStore = dynamic_cast<StoreError const*>(&error);
    return ofStore && isRefusal(*ofStore) ? ExitCode::refused : ExitCode::failed;
}

std::string causeOf(std::exception const& error, std::string const& task) {
    if (auto const* const noProvider = dynamic_cast<DllNotLoaded const*>(&error))
        return "no route provider: " + noProvider->Reason();
    auto [text, names] = causeIn(error);
    for (auto const& name : names) {
        bool const isInTask = task.find(name) != std::string::npos;
        if (isInTask && text.starts_with(name + ": ")) text.erase(0, name.size() + 2);
        if (!isInTask && text.find(name) == std::string::npos) text = name + ": " + text;
    }
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
