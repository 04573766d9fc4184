#include "tool/formats/TripTable.h"

#include "tool/Errors.h"

#include <cubes/matrix/MatrixLimits.h>

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace cubes::tool {

namespace {

constexpr int anyAccess = 0;

}

TRkMatrix matrixOf(TripTable const& table) {
    auto matrix = TRkMatrix::inMemory(table.rows, table.columns);
    for (int row = 0; row < table.rows; ++row) std::ranges::copy(table.row(row), matrix.RowAt(row, anyAccess));
    matrix.SetZones(table.zones);
    return matrix;
}

TripTable tableOf(TRkMatrix const& matrix) {
    TripTable table;
    table.rows = matrix.Rows();
    table.columns = matrix.Columns();
    table.zones = matrix.Zones();
    auto const width = static_cast<std::size_t>(table.columns);
    requireMatrixFits(static_cast<std::uint64_t>(table.rows), static_cast<std::uint64_t>(table.columns));
    table.cells.reserve(static_cast<std::size_t>(table.rows) * width);
    for (int row = 0; row < table.rows; ++row) {
        float const* const cells = matrix.RowAt(row, anyAccess);
        table.cells.insert(table.cells.end(), cells, cells + width);
    }
    return table;
}

namespace {

// The index of each number in the ascending list.
std::vector<std::uint32_t> placesOf(std::vector<std::int32_t> const& numbers, std::vector<std::int32_t> const& sorted) {
    std::vector<std::uint32_t> places;
    places.reserve(numbers.size());
    for (auto const number : numbers) {
        auto const found = std::lower_bound(sorted.begin(), sorted.end(), number);
        places.push_back(static_cast<std::uint32_t>(found - sorted.begin()));
    }
    return places;
}

}

void requireFit(std::size_t zones) {
    // The table, and the matrix that is made of it.
    constexpr int copies = 2;
    if (std::cmp_greater(zones, mostZones()))
        throw FormatError(fmt::format(
            "it has {} zones, more than {}; allow more with --max-zones or CUBES_MAX_ZONES", zones, mostZones()));
    try {
        requireMatrixFits(zones, zones, copies);
    } catch (std::length_error const& error) {
        throw FormatError(fmt::format("it has {} zones: {}", zones, error.what()));
    }
}

void CellList::add(std::int32_t origin, std::int32_t destination, float value, std::size_t line) {
    cells_.push_back({indexOf(origin), indexOf(destination), value, static_cast<std::uint32_t>(line)});
}

std::vector<std::int32_t> CellList::zones() const {
    auto sorted = numbers_;
    std::sort(sorted.begin(), sorted.end());
    return sorted;
}

TripTable CellList::table(std::vector<std::int32_t> zones) const {
    requireFit(zones.size());
    auto const count = zones.size();
    auto const places = placesOf(numbers_, zones);
    TripTable table;
    table.rows = table.columns = static_cast<int>(count);
    table.zones = std::move(zones);
    table.cells.resize(count * count);
    std::vector<bool> given(count * count);
    for (auto const& cell : cells_) {
        auto const offset = places[cell.origin] * count + places[cell.destination];
        if (given[offset]) refuseSecond(cell);
        given[offset] = true;
        table.cells[offset] = cell.value;
    }
    return table;
}

std::uint32_t CellList::indexOf(std::int32_t zone) {
    auto const [found, isNew] = indices_.try_emplace(zone, static_cast<std::uint32_t>(numbers_.size()));
    if (isNew) numbers_.push_back(zone);
    return found->second;
}

void CellList::refuseSecond(Cell const& second) const {
    auto const first = std::find_if(cells_.begin(), cells_.end(),
        [&](Cell const& cell) { return cell.origin == second.origin && cell.destination == second.destination; });
    throw FormatError(second.line, fmt::format("found the cell from zone {} to zone {} again, after line {}",
                                       numbers_[second.origin], numbers_[second.destination], first->line));
}

}
