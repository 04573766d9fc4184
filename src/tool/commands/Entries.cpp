#include "tool/Catalogue.h"
#include "tool/Command.h"
#include "tool/Errors.h"
#include "tool/Paths.h"
#include "tool/Progress.h"

#include <filesystem>

namespace cubes::tool {

namespace {

namespace fs = std::filesystem;

/// Purpose, mode, time, user, result, iteration.
constexpr std::size_t longestKey = 6;

/// What a listing shows of a file.
struct FileFacts {
    std::string state = "missing";
    Json size;
    Json rows;
    Json columns;
};

FileFacts factsOf(Entry const& entry, std::string const& path) {
    FileFacts facts;
    std::error_code missing;
    auto const size = fs::file_size(toPath(path), missing);
    if (missing) return facts;
    // The provider would have to read all routes to know whether they are readable.
    facts.state = entry.cube.holdsRoutes() ? "ok" : "unreadable";
    facts.size = size;
    if (entry.cube.holdsRoutes()) return facts;
    TRkMatrix reader;
    auto const* const header = reader.GetHeader(path.c_str());
    if (!header) return facts;
    facts.state = "ok";
    facts.rows = header->Rows();
    facts.columns = header->Columns();
    return facts;
}

class Entries : public Command {
public:
    Entries() : Command("entries", "List the entries of a cube or of the project") {}

    void declare(Arguments arguments) override {
        arguments.optional("CUBE", cube_, "Name or number of a cube, fare, or a kind of results; default: all entries");
    }

    std::string task() const override { return cube_.empty() ? "list the entries" : "list the entries of " + cube_; }

    void run(Surroundings const& surroundings, Output& output) override {
        auto const catalogue = Catalogue::open(surroundings);
        auto const entries =
            cube_.empty() ? catalogue.entries() : catalogue.entriesOf(catalogue.cube(parseCube(cube_)));
        Table table({{"", "entry"}, {"cube", ""}, {"name", ""}, {"purpose", ""}, {"mode", ""}, {"time", ""},
            {"user", ""}, {"result", ""}, {"iteration", ""}, {"file", "file"}, {"state", "state"}, {"size", "size"},
            {"rows", "rows"}, {"columns", "columns"}});
        Progress progress("listing");
        for (std::size_t i = 0; i < entries.size(); ++i) {
            table.add(rowOf(entries[i], catalogue.path(entries[i])));
            progress.reached(i + 1, entries.size());
        }
        output.show(table);
        if (entries.empty()) printNote("there are no entries; store one with: cubes import FILE ENTRY");
    }

private:
    static std::vector<Json> rowOf(Entry const& entry, std::string const& path) {
        auto const facts = factsOf(entry, path);
        std::vector<Json> row = {entry.text(), entry.cube.number, entry.cube.name};
        for (std::size_t part = 0; part < longestKey; ++part)
            row.push_back(part < entry.key.size() ? Json(entry.key[part]) : Json());
        for (auto const& fact :
            {Json(toText(toPath(path).filename())), Json(facts.state), facts.size, facts.rows, facts.columns})
            row.push_back(fact);
        return row;
    }

    std::string cube_;
};

}

std::unique_ptr<Command> makeEntries() {
    return std::make_unique<Entries>();
}

}
