#pragma once

#include "tool/formats/TripTable.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace cubes::tool {

/// More zones than this make no table: it would take more than 4 GiB.
constexpr std::size_t mostZones = 32'767;

/// Collects the zones and cells of a file that lists them in any order, and makes the table of
/// them. Cells that were not given are 0.
class CellList {
public:
    void addZone(std::int32_t zone) { indexOf(zone); }
    void add(std::int32_t origin, std::int32_t destination, float value, std::size_t line);

    /// The zone numbers that occur, ascending.
    std::vector<std::int32_t> zones() const;
    /// The table of the given zones. Throws FormatError for a pair that was given twice, and for
    /// too many zones. REQUIRES: every zone that occurs is among `zones`, ascending.
    TripTable table(std::string const& file, std::vector<std::int32_t> zones) const;

private:
    // Zones are counted in the order of their first appearance until all are known.
    struct Cell {
        std::uint32_t origin;
        std::uint32_t destination;
        float value;
        std::uint32_t line;
    };

    std::uint32_t indexOf(std::int32_t zone);
    [[noreturn]] void refuseSecond(std::string const& file, Cell const& second) const;

    std::unordered_map<std::int32_t, std::uint32_t> indices_;
    std::vector<std::int32_t> numbers_;
    std::vector<Cell> cells_;
};

/// Throws FormatError when a table of so many zones is too large.
void requireFit(std::string const& file, std::size_t zones);

}
