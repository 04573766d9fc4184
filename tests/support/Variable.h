#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace cubes::test {

/// Sets or removes an environment variable until the end of the block.
class Variable {
public:
    Variable(char const* name, std::optional<std::string> const& value) : name_(name) {
        if (char const* const before = std::getenv(name)) before_ = before;
        set(value);
    }
    ~Variable() { set(before_); }
    Variable(Variable const&) = delete;
    Variable& operator=(Variable const&) = delete;

    void set(std::optional<std::string> const& value);

    /// The name of the variable with the user's temporary directory.
    static char const* const temporaryDirectory;

private:
    char const* name_;
    std::optional<std::string> before_;
};

}
