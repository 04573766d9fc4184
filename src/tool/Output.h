#pragma once

#include "tool/Errors.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace cubes::tool {

using Json = nlohmann::ordered_json;

/// A value for people: text without quotes and with its control characters escaped, numbers with the digits they need,
/// "-" for null and NaN.
std::string plainText(Json const& value);

/// The value, or null when it is not known.
inline Json orNull(bool isKnown, Json value) {
    return isKnown ? std::move(value) : Json();
}

/// A column of a table: its key in JSON and its title in text. A column without a key is printed in
/// text only, one without a title in JSON only.
struct Column {
    std::string key;
    std::string title;
};

/// Rows of values, printed as aligned text or as a JSON list of objects.
class Table {
public:
    explicit Table(std::vector<Column> columns);

    /// REQUIRES: one value per column.
    void add(std::vector<Json> row);

    /// Empty without rows.
    std::string asText() const;
    Json asJson() const;

private:
    std::vector<Column> columns_;
    std::vector<std::vector<Json>> rows_;
};

/// The properties of one thing, printed as lines of label and value or as a JSON object.
class Record {
public:
    /// A value without a label is printed in JSON only.
    void add(std::string key, std::string label, Json value);
    /// Adds all values of another record.
    void add(Record const& more) { fields_.insert(fields_.end(), more.fields_.begin(), more.fields_.end()); }

    std::string asText() const;
    Json asJson() const;

private:
    struct Field {
        std::string key;
        std::string label;
        Json value;
    };
    std::vector<Field> fields_;
};

/// How results are printed.
enum class Form { text, json };

/// The results of a command. They are collected and printed at the end, so that a command that fails
/// prints none.
class Output {
public:
    explicit Output(Form form) : form_(form) {}

    Form form() const noexcept { return form_; }
    void show(Table const& table);
    void show(Record const& record);
    void show(Json const& value);
    void add(std::string const& text) { text_ += text; }

    /// What the tool exits with after it has printed the results; by default done.
    void exitWith(ExitCode code) noexcept { exitCode_ = code; }
    ExitCode exitCode() const noexcept { return exitCode_; }

    /// Prints everything to standard output. Throws Failure when that fails; a reader that closed the
    /// pipe, as `head` does, is not an error.
    void write() const;

private:
    Form form_;
    std::string text_;
    ExitCode exitCode_ = ExitCode::done;
};

}
