#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace cubes::tool {

using Json = nlohmann::ordered_json;

/// A value as people read it: texts without quotes, numbers with the digits they need, "-" for
/// what is not known (null or NaN).
std::string plainText(Json const& value);

/// One column of a table: its key in JSON and its title in text. A column without a key is shown
/// in text only, one without a title in JSON only.
struct Column {
    std::string key;
    std::string title;
};

/// Rows of values that are shown as an aligned text or as a JSON list of objects.
class Table {
public:
    explicit Table(std::vector<Column> columns);

    /// REQUIRES: one value a column.
    void add(std::vector<Json> row);

    /// Empty without rows.
    std::string asText() const;
    Json asJson() const;

private:
    std::vector<Column> columns_;
    std::vector<std::vector<Json>> rows_;
};

/// The facts about one thing, shown as lines of label and value or as a JSON object.
class Record {
public:
    /// An empty label: in JSON only.
    void add(std::string key, std::string label, Json value);
    /// Adds all that is in another record.
    void add(Record const& more) { facts_.insert(facts_.end(), more.facts_.begin(), more.facts_.end()); }

    std::string asText() const;
    Json asJson() const;

private:
    struct Fact {
        std::string key;
        std::string label;
        Json value;
    };
    std::vector<Fact> facts_;
};

}
