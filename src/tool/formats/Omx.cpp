#include "tool/formats/Omx.h"

#include "tool/formats/FormatError.h"
#include "tool/formats/MatrixTable.h"

#include <cubes/matrix/OmxFile.h>

#include <fmt/format.h>

#include <algorithm>

namespace cubes::tool {

namespace {

std::string listed(std::vector<std::string> const& names) {
    return fmt::format("{}", fmt::join(names, ", "));
}

std::string onlyTable(std::string const& path, std::vector<std::string> const& tables) {
    if (tables.size() == 1) return tables.front();
    if (tables.empty()) throw FormatError(path, "holds no table");
    throw FormatError(path, fmt::format("holds several tables, choose one of {}", listed(tables)));
}

std::string chosenTable(
    std::string const& path, std::vector<std::string> const& tables, std::optional<std::string> const& name) {
    if (!name) return onlyTable(path, tables);
    if (std::find(tables.begin(), tables.end(), *name) != tables.end()) return *name;
    if (tables.empty()) throw FormatError(path, fmt::format("holds no table, '{}' was asked for", *name));
    throw FormatError(path, fmt::format("holds no table '{}', expected one of {}", *name, listed(tables)));
}

}

TripTable readOmx(std::string const& path, std::optional<std::string> const& table) {
    auto const file = OmxFile::open(path);
    auto const name = chosenTable(path, file.tables(), table);
    if (!file.isIntact(name))
        throw FormatError(path, fmt::format("table '{}' is damaged: its values do not agree with its checksum", name));
    return tableOf(file.read(name));
}

void writeOmx(std::string const& path, TripTable const& trips, std::string const& table) {
    OmxFile::write(path, table, matrixOf(trips));
}

}
