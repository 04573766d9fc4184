#pragma once

#include <ostream>
#include <string>

namespace cubes::test {

/// A change of a matrix file's data that leaves its structure and its checksum alone.
struct Damage {
    char const* name;
    /// A statement of Python; see damage().
    char const* program;
};
/// Found by GoogleTest when a test with this parameter fails.
void PrintTo(Damage const& damage, std::ostream* out);

/// A byte of the elements (in a compressed file: of a chunk) and of the zone numbers, as a bad disk changes them; an
/// element and a zone number changed by another program, which compresses a chunk again.
inline constexpr Damage damages[] = {
    {"byteOfTheElements", "flip(table.id.get_chunk_info(0).byte_offset + table.id.get_chunk_info(0).size // 2)"},
    {"byteOfTheZones", "flip(f['lookup/zone'].id.get_offset())"},
    {"elementByAnotherProgram", "table[0, 1] = 12.5"},
    {"zoneByAnotherProgram", "f['lookup/zone'][0] = 4711"},
};

/// Runs the statement with the open h5py file `f`, its `table`, and `flip(offset)` for a byte.
void damage(std::string const& file, char const* program);

}
