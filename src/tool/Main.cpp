// The command line: declares the commands, runs the chosen one and reports errors.

#include "tool/Command.h"
#include "tool/Errors.h"
#include "tool/Terminal.h"
#include "tool/Text.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <sstream>

namespace cubes::tool {

using Argument = Arguments::Argument;

Argument& Argument::oneOf(std::vector<std::string> const& words) {
    option_->check(CLI::IsMember(words));
    return *this;
}

Argument& Argument::calls(char const* value) {
    option_->type_name(value);
    return *this;
}

Argument& Argument::without(Argument const& other) {
    option_->excludes(other.option_);
    return *this;
}

Argument Arguments::required(char const* name, std::string& value, char const* help) {
    return Argument(*line_.add_option(name, value, help)->required());
}

Argument Arguments::optional(char const* name, std::string& value, char const* help) {
    auto& option = *line_.add_option(name, value, help);
    // An empty variable of a script would otherwise stand for everything.
    if (option.get_positional())
        option.check([](std::string const& text) { return text.empty() ? "it is empty" : ""; });
    return Argument(option);
}

Argument Arguments::optional(char const* name, std::optional<std::string>& value, char const* help) {
    return Argument(*line_.add_option(name, value, help));
}

Argument Arguments::optional(char const* name, std::vector<std::string>& values, int count, char const* help) {
    return Argument(*line_.add_option(name, values, help)->expected(count));
}

Argument Arguments::flag(char const* name, bool& value, char const* help) {
    return Argument(*line_.add_flag(name, value, help));
}

namespace {

using Commands = std::vector<std::unique_ptr<Command>>;

constexpr char const* about =
    "Manages the matrices of a transport model: cubes of entries, addressed by purpose, mode, time\n"
    "and user, in a database that several people can share and in matrix files (OMX) that other\n"
    "tools can open.\n";
constexpr char const* entryHelp =
    "An ENTRY is CUBE/purpose/mode/time/user, with the name or number of the cube: Base/1/1/1/1,\n"
    "or KIND/purpose/mode/time/user/result/iteration: skim/1/1/1/1/1/1. The kinds of results are skim,\n"
    "selectedlink, cordon, screen, transit, path, stop2stop, routes and routedata. Fares are\n"
    "fare/purpose/mode/time/user.";
constexpr char const* more =
    "`cubes COMMAND --help` describes a command.\n"
    "Exit codes: 0 done, 1 not found or refused, 2 wrong usage, 3 failed, 128 + signal: interrupted";

// In the order of the help.
Commands allCommands() {
    constexpr std::unique_ptr<Command> (*makers[])() = {makeInit, makeDemo, makeAdd, makeList, makeEntries, makeImport,
        makeExport, makeShow, makeCell, makeCopy, makeMove, makeClear, makeRemove, makeParent, makeChildren, makeTree,
        makeUse, makeCheck, makeRoutesImport, makeRoutesShow, makeRoutesExport, makeRoutesFields, makeRoutesSelect};
    Commands commands;
    for (auto const make : makers) commands.push_back(make());
    return commands;
}

// Replaces words of the parser's own help.
void wordHelp(CLI::Formatter& formatter) {
    for (auto const* type : {"TEXT", "INT", "REQUIRED"}) formatter.label(type, "");
    formatter.label("SUBCOMMAND", "COMMAND");
    formatter.label("Positionals", "Arguments");
}

// Options accepted before and after the command's name.
void declareEverywhere(CLI::App& line, Surroundings& surroundings) {
    Arguments arguments(line);
    arguments
        .optional("--project", surroundings.project,
            "Project to work in; default: the nearest directory upward with a cubes.toml")
        .calls("DIR");
    arguments.flag("--json", surroundings.json, "Print results as JSON");
}

// The part of the command line that a command's words name; null when they were not given.
CLI::App const* chosenPart(CLI::App const& line, std::string_view words) {
    CLI::App const* part = &line;
    for (std::istringstream names{std::string(words)}; part && !names.eof();) {
        std::string name;
        names >> name;
        part = part->got_subcommand(name) ? part->get_subcommand(name) : nullptr;
    }
    return part;
}

// Commands of two words share a part that is named by the first one.
CLI::App& groupOf(CLI::App& line, Command const& command) {
    std::string_view const name = command.name();
    if (name.find(' ') == std::string_view::npos) return line;
    std::string const group(name.substr(0, name.find(' ')));
    for (auto* const known : line.get_subcommands(nullptr))
        if (known->get_name() == group) return *known;
    auto* const made = line.add_subcommand(group, command.groupSummary());
    made->group("Commands")->require_subcommand(1);
    return *made;
}

void declare(CLI::App& line, Command& command, Surroundings& surroundings) {
    std::string const name = command.name();
    auto* const part = groupOf(line, command).add_subcommand(name.substr(name.find(' ') + 1), command.summary());
    part->group("Commands");
    part->footer(entryHelp);
    command.declare(Arguments(*part));
    if (command.needsProject())
        declareEverywhere(*part, surroundings);
    else
        Arguments(*part).flag("--json", surroundings.json, "Print results as JSON");
}

std::string withoutLastBreak(std::string text) {
    text.erase(text.find_last_not_of(" \r\n") + 1);
    return text;
}

// A command that has changed something is done, whether or not its result can be printed.
ExitCode print(Command const& command, Output const& output) {
    try {
        output.write();
    } catch (Failure const& error) {
        if (command.onlyReads()) throw;
        printError(fmt::format("cannot print the result: {}; the command succeeded: {}", error.what(), command.task()));
        return exitCodeOf(error);
    }
    if (!interruption()) return output.exitCode();
    printError("interrupted when this was done: " + command.task());
    return exitCodeOf(Interrupted());
}

ExitCode run(Command& command, Surroundings const& surroundings) {
    try {
        Output output(surroundings.json ? Form::json : Form::text);
        command.run(surroundings, output);
        return print(command, output);
    } catch (std::exception const& error) {
        printError(fmt::format("cannot {}: {}", command.task(), withoutLastBreak(causeOf(error, command.task()))));
        return exitCodeOf(error);
    }
}

// " routes import".
std::string wordsOf(CLI::App const& part) {
    auto const further = part.get_subcommands();
    return " " + part.get_name() + (further.empty() ? "" : wordsOf(*further.front()));
}

// The part that the last word of the chosen command names.
CLI::App const& innermost(CLI::App const& part) {
    auto const further = part.get_subcommands();
    return further.empty() ? part : innermost(*further.front());
}

std::vector<std::string> optionsOf(CLI::App const& part) {
    std::vector<std::string> names;
    for (auto const* const option : part.get_options())
        for (auto const& name : option->get_lnames()) names.push_back("--" + name);
    return names;
}

std::vector<std::string> commandsOf(CLI::App const& part) {
    std::vector<std::string> names;
    for (auto const* const command : part.get_subcommands([](CLI::App const*) { return true; }))
        names.push_back(command->get_name());
    return names;
}

std::string problemOf(CLI::App const& line, CLI::ParseError const& error) {
    auto const& part = innermost(line);
    auto const unknown = line.remaining(true);
    bool const needsCommand = !commandsOf(part).empty();
    if (!unknown.empty() && unknown.front().starts_with('-'))
        return fmt::format("there is no option {}{}", unknown.front(), suggestion(unknown.front(), optionsOf(part)));
    if (!unknown.empty() && needsCommand)
        return fmt::format("there is no command {}{}", unknown.front(), suggestion(unknown.front(), commandsOf(part)));
    if (!unknown.empty()) return fmt::format("there is one argument too many: {}", unknown.front());
    return needsCommand ? std::string("no command is given") : withoutLastBreak(error.what());
}

ExitCode reportParseError(CLI::App const& line, CLI::ParseError const& error) {
    // Help and version are errors to the parser, which prints them.
    if (error.get_exit_code() == 0) return static_cast<ExitCode>(line.exit(error));
    auto const chosen = line.get_subcommands();
    printError(
        fmt::format("{}; see cubes{} --help", problemOf(line, error), chosen.empty() ? "" : wordsOf(*chosen.front())));
    return ExitCode::usage;
}

ExitCode printHelp(CLI::App const& line) {
    std::fputs(line.help().c_str(), stderr);
    return ExitCode::usage;
}

ExitCode runTool(int argc, char** argv) {
    CLI::App line(about, "cubes");
    line.set_version_flag("--version", "cubes " CUBES_VERSION, "Print the version and exit");
    line.footer(std::string(entryHelp) + "\n" + more);
    line.require_subcommand(1);
    // "/1/1/1/1", an entry of a cube without a name, is not an option.
    line.allow_windows_style_options(false);
    auto const formatter = std::make_shared<CLI::Formatter>();
    wordHelp(*formatter);
    line.formatter(formatter);
    Surroundings surroundings;
    surroundings.program = argc > 0 ? argv[0] : "cubes";
    declareEverywhere(line, surroundings);
    auto const commands = allCommands();
    for (auto const& command : commands) declare(line, *command, surroundings);
    if (argc <= 1) return printHelp(line);
    try {
        line.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        return reportParseError(line, error);
    }
    for (auto const& command : commands)
        if (chosenPart(line, command->name())) return run(*command, surroundings);
    return ExitCode::usage;
}

}

}

int main(int argc, char** argv) {
    cubes::tool::prepareStreams();
    cubes::tool::noteInterruptions();
    return static_cast<int>(cubes::tool::runTool(argc, argv));
}
