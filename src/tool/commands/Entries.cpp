#include "tool/Entries.h"
#include "tool/Command.h"
#include "tool/Errors.h"
#include "tool/Paths.h"
#include "tool/Progress.h"

#include <algorithm>
#include <filesystem>
#include <map>

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

FileFacts factsOf(std::string const& path, bool holdsRoutes) {
    FileFacts facts;
    std::error_code missing;
    auto const size = fs::file_size(toPath(path), missing);
    if (missing) return facts;
    // The provider would have to read all routes to know whether they are readable.
    facts.state = holdsRoutes ? "ok" : "unreadable";
    facts.size = size;
    if (holdsRoutes) return facts;
    TRkMatrix reader;
    auto const* const header = reader.GetHeader(path.c_str());
    if (!header) return facts;
    facts.state = "ok";
    facts.rows = header->Rows();
    facts.columns = header->Columns();
    return facts;
}

std::map<short, CubeInfo> cubesByNumber(EntryStore const& store) {
    std::map<short, CubeInfo> found;
    for (auto const& cube : store.cubes()) found.emplace(cube.number, cube);
    for (auto const& kind : EntryStore::kinds()) found.emplace(kind.number, kind);
    return found;
}

class ListEntries : public Command {
public:
    ListEntries() : Command("entries", "List the entries of a cube or of the project") {}

    void declare(Arguments arguments) override {
        arguments.optional("CUBE", cube_, "Name or number of a cube, fare, or a kind of results; default: all entries");
    }

    bool onlyReads() const override { return true; }
    std::string task() const override { return cube_.empty() ? "list the entries" : "list the entries of " + cube_; }

    void run(Surroundings const& surroundings, Output& output) override {
        Entries const project(surroundings);
        auto const cube = cube_.empty() ? std::string() : std::to_string(project.cube(cube_).number);
        std::vector<EntryInfo> entries;
        for (auto const& entry : project.store().entries({.cube = cube})) entries.push_back(entry);
        std::ranges::sort(entries, isListedBefore, &EntryInfo::key);
        auto cubes = cubesByNumber(project.store());
        Table table({{"", "entry"}, {"cube", ""}, {"name", ""}, {"purpose", ""}, {"mode", ""}, {"time", ""},
            {"user", ""}, {"result", ""}, {"iteration", ""}, {"file", "file"}, {"state", "state"}, {"size", "size"},
            {"rows", "rows"}, {"columns", "columns"}});
        Progress progress("listing");
        for (std::size_t i = 0; i < entries.size(); ++i) {
            table.add(rowOf(entries[i], cubes[entries[i].key.cube()]));
            progress.reached(i + 1, entries.size());
        }
        output.show(table);
        if (entries.empty()) printNote("there are no entries; store one with: cubes import FILE ENTRY");
    }

private:
    static std::vector<Json> rowOf(EntryInfo const& entry, CubeInfo const& cube) {
        auto const facts = factsOf(entry.file, cube.holdsRoutes);
        std::vector<Json> row = {entry.text, entry.key.cube(), cube.name};
        auto const parts = entry.key.parts();
        for (std::size_t part = 0; part < longestKey; ++part)
            row.push_back(part < parts.size() ? Json(parts[part]) : Json());
        for (auto const& fact :
            {Json(toText(toPath(entry.file).filename())), Json(facts.state), facts.size, facts.rows, facts.columns})
            row.push_back(fact);
        return row;
    }

    std::string cube_;
};

}

std::unique_ptr<Command> makeEntries() {
    return std::make_unique<ListEntries>();
}

}
