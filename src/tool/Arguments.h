#pragma once

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}

namespace cubes::tool {

/// What a command takes from the command line. Each is declared with the place its value goes to,
/// which stays as it is when it is not given; the help tells of them in the order of declaration.
class Arguments {
public:
    explicit Arguments(CLI::App& line) : line_(line) {}

    /// One argument, so that others can refer to it.
    class Argument {
    public:
        explicit Argument(CLI::Option& option) : option_(&option) {}
        /// Only these words are taken.
        Argument& oneOf(std::vector<std::string> const& words);
        /// How the help calls the value.
        Argument& calls(char const* value);
        /// Not together with that one.
        Argument& without(Argument const& other);

    private:
        CLI::Option* option_;
    };

    /// A word that must be there, by its place.
    Argument required(char const* name, std::string& value, char const* help);
    /// A word that may be left out: by its place, or behind its name, as in "--form wide".
    Argument optional(char const* name, std::string& value, char const* help);
    Argument optional(char const* name, std::optional<std::string>& value, char const* help);
    /// A name and so many words behind it: "--pair 4 7".
    Argument optional(char const* name, std::vector<std::string>& values, int count, char const* help);
    /// A name alone: "--json".
    Argument flag(char const* name, bool& value, char const* help);

private:
    CLI::App& line_;
};

}
