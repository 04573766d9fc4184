#include "tool/Command.h"
#include "tool/Entries.h"
#include "tool/Progress.h"
#include "tool/formats/Formats.h"
#include "tool/formats/TripTable.h"

#include <fmt/format.h>

namespace cubes::tool {

namespace {

// As in the project's own matrix files.
constexpr char const* tableName = "matrix";

class Export : public Command {
public:
    Export() : Command("export", "Write a matrix to a file") {}

    void declare(Arguments arguments) override {
        arguments.required("ENTRY", entry_, "The entry");
        arguments.required("FILE", file_, "The file; its extension determines the format: .omx or .csv");
        arguments.optional("--form", form_, "Form of a .csv file: long (default), a line for each cell, or wide")
            .oneOf({"long", "wide"})
            .calls("FORM");
    }

    std::string task() const override { return fmt::format("export {} to {}", entry_, file_); }

    void run(Surroundings const& surroundings, Output& output) override {
        Entries const entries(surroundings, {entry_});
        auto const entry = entries.findReadable(entry_);
        auto const trips = tableOf(entries.store().get(entry.key, {.verify = true}));
        write(trips);
        Record written;
        written.add("entry", "entry", entry.text);
        written.add("file", "file", file_);
        written.add("rows", "rows", trips.rows);
        written.add("columns", "columns", trips.columns);
        output.show(written);
    }

private:
    void write(TripTable const& trips) const {
        Progress progress("writing " + file_);
        auto const form = form_ == "wide" ? CsvForm::wide : CsvForm::longForm;
        writeTripTable(file_, trips, tableName, form, progress.callback());
    }

    std::string entry_;
    std::string file_;
    std::string form_ = "long";
};

}

std::unique_ptr<Command> makeExport() {
    return std::make_unique<Export>();
}

}
