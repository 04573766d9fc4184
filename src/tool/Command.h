#pragma once

#include "tool/Arguments.h"
#include "tool/Output.h"

#include <memory>
#include <string>
#include <vector>

namespace cubes::tool {

/// What every command is told besides its own arguments.
struct Surroundings {
    /// The tool as it was called.
    std::string program;
    /// The directory given with --project; empty: look for it.
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

    /// Of all commands with the same first word, for a command of two words.
    virtual char const* groupSummary() const { return ""; }
    /// Declares the command's arguments and options.
    virtual void declare(Arguments arguments) = 0;
    /// Whether the command works in a project that is there already.
    virtual bool needsProject() const { return true; }
    /// What it does, in words that go on after "cannot".
    virtual std::string task() const = 0;
    virtual void run(Surroundings const& surroundings, Output& output) = 0;

private:
    char const* name_;
    char const* summary_;
};

/// Every command, in the order of the help.
std::vector<std::unique_ptr<Command>> allCommands();

}
