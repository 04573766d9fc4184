#include "tool/Command.h"
#include "tool/Entries.h"
#include "tool/Errors.h"
#include "tool/Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace cubes::tool {

namespace {

/// The index of a zone: by its number, or by its position from 1 in a matrix without zone numbers.
int indexOf(int zone, std::vector<std::int32_t> const& zones, int size) {
    auto const refuse = [&](int least, int most) {
        throw Refusal(fmt::format("there is no zone {}; zone numbers run from {} to {}", zone, least, most));
    };
    if (zones.empty()) {
        if (zone > size) refuse(1, size);
        return zone - 1;
    }
    auto const found = std::find(zones.begin(), zones.end(), zone);
    if (found == zones.end()) refuse(std::ranges::min(zones), std::ranges::max(zones));
    return static_cast<int>(found - zones.begin());
}

class Cell : public Command {
public:
    Cell() : Command("cell", "Print one cell of a matrix") {}

    void declare(Arguments arguments) override {
        arguments.required("ENTRY", entry_, "The entry");
        arguments.required(
            "ORIGIN", origin_, "Zone number of the origin, or its position from 1 in a matrix without zone numbers");
        arguments.required("DESTINATION", destination_, "The same for the destination");
    }

    bool onlyReads() const override { return true; }
    std::string task() const override {
        return fmt::format("read the cell from {} to {} of {}", origin_, destination_, entry_);
    }

    void run(Surroundings const& surroundings, Output& output) override {
        requireEntry(entry_, surroundings);
        int const origin = parseZone(origin_);
        int const destination = parseZone(destination_);
        Entries const entries(surroundings);
        auto const entry = entries.findReadable(entry_);
        auto const matrix = entries.store().get(entry.key);
        int const row = indexOf(origin, matrix.Zones(), matrix.Rows());
        int const column = indexOf(destination, matrix.Zones(), matrix.Columns());
        double const value = shortest(matrix.RowAt(row, 0)[column]);
        if (output.form() == Form::text) return output.add(fmt::format("{}\n", value));
        Record cell;
        cell.add("entry", "", entry.text);
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
