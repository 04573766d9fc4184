#pragma once

#include "tool/Table.h"

#include <string>

namespace cubes::tool {

/// How results are shown.
enum class Form { text, json };

/// The results of a command on their way to the output stream. They are collected and written
/// at the end, so that a command that fails prints no half result.
class Output {
public:
    explicit Output(Form form) : form_(form) {}

    Form form() const noexcept { return form_; }
    void show(Table const& table);
    void show(Record const& record);
    void show(Json const& value);
    void add(std::string const& text) { text_ += text; }

    /// Writes everything. Throws Failure when the stream refuses; a reader that went away
    /// (as `head` does) is no failure.
    void write() const;

private:
    Form form_;
    std::string text_;
};

}
