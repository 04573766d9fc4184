#include "tool/Command.h"
#include "tool/Entries.h"
#include "tool/Statistics.h"
#include "tool/Text.h"

#include <limits>

namespace cubes::tool {

namespace {

/// The cells of a share of counted cells, which is exact.
constexpr auto exactly = std::numeric_limits<std::int64_t>::max();

/// The value of a cell, which the statistics hold as a double.
double cellValue(double value) {
    return shortest(static_cast<float>(value));
}

void addShape(Record& record, TRkMatrix const& matrix, Statistics const& figures) {
    auto const& zones = matrix.Zones();
    bool const isNumbered = !zones.empty();
    record.add("rows", "rows", matrix.Rows());
    record.add("columns", "columns", matrix.Columns());
    record.add("zones", "zones", orNull(figures.isSquare(), figures.rows));
    record.add("firstZone", "first zone", isNumbered ? Json(zones.front()) : Json());
    record.add("lastZone", "last zone", isNumbered ? Json(zones.back()) : Json());
}

void addSums(Record& record, Statistics const& figures) {
    auto const cells = cellsIn(figures);
    record.add("total", "total", trusted(figures.total, cells));
    record.add("intrazonal", "intrazonal", trusted(figures.intrazonal, figures.rows));
    record.add("intrazonalShare", "intrazonal share", trusted(figures.intrazonalShare, cells));
    record.add("zeros", "zeros", figures.zeros);
    record.add("nonZeroShare", "non-zero share", trusted(figures.nonZeroShare, exactly));
}

void addValues(Record& record, Statistics const& figures) {
    record.add("min", "min", cellValue(figures.minimum));
    record.add("max", "max", cellValue(figures.maximum));
    record.add("mean", "mean", trusted(figures.mean, cellsIn(figures)));
    record.add("median", "median", cellValue(figures.median));
    record.add("nan", "NaN", figures.nans);
    record.add("infinite", "infinite", figures.infinities);
    record.add("negative", "negative", figures.negatives);
}

class Show : public Command {
public:
    Show() : Command("show", "Print the size and statistics of a matrix") {}

    void declare(Arguments arguments) override { arguments.required("ENTRY", entry_, "The entry"); }

    bool onlyReads() const override { return true; }
    std::string task() const override { return "show " + entry_; }

    void run(Surroundings const& surroundings, Output& output) override {
        Entries const entries(surroundings, {entry_});
        auto const entry = entries.findReadable(entry_);
        auto const matrix = entries.store().get(entry.key, {.verify = true});
        auto const figures = statisticsOf(matrix);
        Record record;
        record.add("entry", "entry", entry.text);
        record.add("file", "file", entry.file);
        addShape(record, matrix, figures);
        addSums(record, figures);
        addValues(record, figures);
        output.show(record);
    }

private:
    std::string entry_;
};

}

std::unique_ptr<Command> makeShow() {
    return std::make_unique<Show>();
}

}
