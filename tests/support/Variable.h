#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace cubes::test {

/// Gives a variable of the environment a value, or takes it away, until the end of the block.
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

    /// Of the variable that names the user's temporary directory.
    static char const* const temporaryDirectory;

private:
    char const* name_;
    std::optional<std::string> before_;
};

}
