#include "tool/Arguments.h"

#include <CLI/CLI.hpp>

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
    return Argument(*line_.add_option(name, value, help));
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

}
