#include "tool/Catalogue.h"
#include "tool/Errors.h"
#include "tool/Numbers.h"
#include "tool/commands/Commands.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace cubes::tool {

namespace {

int zoneNumber(char const* what, std::string const& text) {
    int number = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc() && end == text.data() + text.size()) return number;
    throw Refusal(fmt::format("{} must be the number of a zone, not \"{}\"", what, text));
}

/// The index of a zone: by its number where the matrix knows zone numbers, else by position from 1.
int indexOf(int zone, std::vector<std::int32_t> const& zones, int size) {
    if (zones.empty()) {
        if (zone >= 1 && zone <= size) return zone - 1;
        throw Refusal(fmt::format("there is no zone {}: the matrix has {}", zone, size));
    }
    auto const found = std::find(zones.begin(), zones.end(), zone);
    if (found == zones.end()) throw Refusal(fmt::format("there is no zone {} in the matrix", zone));
    return static_cast<int>(found - zones.begin());
}

class Cell : public Command {
public:
    Cell() : Command("cell", "Print one value of an entry") {}

    void declare(Arguments arguments) override {
        arguments.required("ENTRY", entry_, "The entry");
        arguments.required("ORIGIN", origin_, "Number of the zone of origin; its position from 1 in a matrix without");
        arguments.required("DESTINATION", destination_, "The same of the zone of destination");
    }

    std::string task() const override {
        return fmt::format("read the cell {} to {} of {}", origin_, destination_, entry_);
    }

    void run(Surroundings const& surroundings, Output& output) override {
        auto const word = parseEntry(entry_);
        int const origin = zoneNumber("ORIGIN", origin_);
        int const destination = zoneNumber("DESTINATION", destination_);
        auto const catalogue = Catalogue::open(surroundings);
        auto const entry = catalogue.entry(word);
        auto const matrix = catalogue.matrix(entry);
        int const row = indexOf(origin, matrix->Zones(), matrix->Rows());
        int const column = indexOf(destination, matrix->Zones(), matrix->Columns());
        double const value = shortest(matrix->RowAt(row, 0)[column]);
        if (output.form() == Form::text) return output.add(fmt::format("{}\n", value));
        Record cell;
        cell.add("entry", "", entry.text());
        cell.add("origin", "", origin);
        cell.add("destination", "", destination);
        cell.add("value", "", value);
        output.show(cell);
    }

private:
    std::string entry_;
    std::string origin_;
    std::string destination_;
};

}

std::unique_ptr<Command> makeCell() {
    return std::make_unique<Cell>();
}

}
