#include "tool/CommandLine.h"

#include "tool/Command.h"
#include "tool/Messages.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <sstream>

namespace cubes::tool {

namespace {

constexpr char const* about =
    "Keeps the matrices of a transport model: cubes of entries, found by purpose, mode, time\n"
    "and user, in a database that several people share and in matrix files (OMX) that other\n"
    "tools open.\n";
constexpr char const* entryHelp =
    "An ENTRY is CUBE/purpose/mode/time/user, the cube by name or number, the rest from 1: Base/1/1/1/1,\n"
    "or KIND/purpose/mode/time/user/result/iteration: skim/1/1/1/1/1/1. The kinds of results are skim,\n"
    "selectedlink, cordon, screen, transit, path, stop2stop, routes and routedata. Fares are\n"
    "fare/purpose/mode/time/user.";
constexpr char const* more = "`cubes COMMAND --help` tells more about a command.\n"
                             "Exit codes: 0 done, 1 not found or refused, 2 wrong usage, 3 failed";

// What the parser's help says by itself, in our words.
void wordHelp(CLI::Formatter& formatter) {
    for (auto const* type : {"TEXT", "INT", "REQUIRED"}) formatter.label(type, "");
    formatter.label("SUBCOMMAND", "COMMAND");
    formatter.label("Positionals", "Arguments");
}

// Taken before and behind the command's name.
void declareEverywhere(CLI::App& line, Surroundings& surroundings) {
    Arguments arguments(line);
    arguments
        .optional("--project", surroundings.project,
            "Project to work in; else the nearest directory upward with a cubes.toml")
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

std::string trimmed(std::string text) {
    text.erase(text.find_last_not_of(" \r\n") + 1);
    return text;
}

ExitCode run(Command& command, Surroundings const& surroundings) {
    try {
        Output output(surroundings.json ? Form::json : Form::text);
        command.run(surroundings, output);
        output.write();
        return ExitCode::done;
    } catch (std::exception const& error) {
        tellError(fmt::format("cannot {}: {}", command.task(), trimmed(error.what())));
        return exitCodeOf(error);
    }
}

// " routes import".
std::string wordsOf(CLI::App const& part) {
    auto const further = part.get_subcommands();
    return " " + part.get_name() + (further.empty() ? "" : wordsOf(*further.front()));
}

ExitCode answer(CLI::App const& line, CLI::ParseError const& error) {
    // Help and version come as errors too, and are printed by the parser.
    if (error.get_exit_code() == 0) return static_cast<ExitCode>(line.exit(error));
    auto const chosen = line.get_subcommands();
    auto const strange = line.remaining();
    if (!chosen.empty())
        tellError(fmt::format("{}; see cubes{} --help", trimmed(error.what()), wordsOf(*chosen.front())));
    else if (!strange.empty())
        tellError(fmt::format("there is no command {}; see cubes --help", strange.front()));
    else
        tellError("no command is given; see cubes --help");
    return ExitCode::usage;
}

ExitCode answerNothing(CLI::App const& line) {
    std::fputs(line.help().c_str(), stderr);
    return ExitCode::usage;
}

}

ExitCode runTool(int argc, char** argv) {
    CLI::App line(about, "cubes");
    line.set_version_flag("--version", "cubes " CUBES_VERSION, "Print the version and exit");
    line.footer(std::string(entryHelp) + "\n" + more);
    line.require_subcommand(1);
    // An entry of a cube without a name is no option.
    line.allow_windows_style_options(false);
    auto const formatter = std::make_shared<CLI::Formatter>();
    wordHelp(*formatter);
    line.formatter(formatter);
    Surroundings surroundings;
    surroundings.program = argc > 0 ? argv[0] : "cubes";
    declareEverywhere(line, surroundings);
    auto const commands = allCommands();
    for (auto const& command : commands) declare(line, *command, surroundings);
    if (argc <= 1) return answerNothing(line);
    try {
        line.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        return answer(line, error);
    }
    for (auto const& command : commands)
        if (chosenPart(line, command->name())) return run(*command, surroundings);
    return ExitCode::usage;
}

}
