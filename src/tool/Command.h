#pragma once

#include "tool/Output.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}

namespace cubes::tool {

/// The command line of a command. Each argument is declared with the variable that receives its value and
/// keeps its default when the argument is not given; the help lists them in the order of declaration.
class Arguments {
public:
    explicit Arguments(CLI::App& line) : line_(line) {}

    /// One argument, which others can refer to.
    class Argument {
    public:
        explicit Argument(CLI::Option& option) : option_(&option) {}
        /// Accepts these words only.
        Argument& oneOf(std::vector<std::string> const& words);
        /// Names the value in the help.
        Argument& calls(char const* value);
        /// Excludes the other argument.
        Argument& without(Argument const& other);

    private:
        CLI::Option* option_;
    };

    /// A positional argument that must be given.
    Argument required(char const* name, std::string& value, char const* help);
    /// A positional argument or an option with a value, such as "--form wide".
    Argument optional(char const* name, std::string& value, char const* help);
    Argument optional(char const* name, std::optional<std::string>& value, char const* help);
    /// An option with several values, such as "--od 4 7".
    Argument optional(char const* name, std::vector<std::string>& values, int count, char const* help);
    /// An option without a value, such as "--json".
    Argument flag(char const* name, bool& value, char const* help);

private:
    CLI::App& line_;
};

/// What every command gets besides its own arguments.
struct Surroundings {
    /// The tool's name as it was called.
    std::string program;
    /// The directory given with --project; empty to search for it.
    std::string project;
    bool json = false;
};

/// One command of the tool: its part of the command line and what it does.
class Command {
public:
    /// `name`: one word, or two.
    Command(char const* name, char const* summary) : name_(name), summary_(summary) {}
    virtual ~Command() = default;
    Command(Command const&) = delete;
    Command& operator=(Command const&) = delete;

    char const* name() const noexcept { return name_; }
    char const* summary() const noexcept { return summary_; }

    /// The summary of all commands with the same first word, for a command of two words.
    virtual char const* groupSummary() const { return ""; }
    /// Declares the command's arguments and options.
    virtual void declare(Arguments arguments) = 0;
    /// Whether the command works in an existing project.
    virtual bool needsProject() const { return true; }
    /// Whether it changes nothing, so that it has failed when its result cannot be printed.
    virtual bool onlyReads() const { return false; }
    /// The task as error messages put it after "cannot".
    virtual std::string task() const = 0;
    virtual void run(Surroundings const& surroundings, Output& output) = 0;

private:
    char const* name_;
    char const* summary_;
};

std::unique_ptr<Command> makeInit();
std::unique_ptr<Command> makeDemo();
std::unique_ptr<Command> makeAdd();
std::unique_ptr<Command> makeList();
std::unique_ptr<Command> makeEntries();
std::unique_ptr<Command> makeImport();
std::unique_ptr<Command> makeExport();
std::unique_ptr<Command> makeShow();
std::unique_ptr<Command> makeCell();
std::unique_ptr<Command> makeCopy();
std::unique_ptr<Command> makeMove();
std::unique_ptr<Command> makeClear();
std::unique_ptr<Command> makeRemove();
std::unique_ptr<Command> makeParent();
std::unique_ptr<Command> makeChildren();
std::unique_ptr<Command> makeTree();
std::unique_ptr<Command> makeUse();
std::unique_ptr<Command> makeCheck();
std::unique_ptr<Command> makeRoutesImport();
std::unique_ptr<Command> makeRoutesShow();
std::unique_ptr<Command> makeRoutesExport();
std::unique_ptr<Command> makeRoutesFields();
std::unique_ptr<Command> makeRoutesSelect();

}
