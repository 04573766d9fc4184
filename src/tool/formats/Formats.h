#pragma once

#include "tool/Progress.h"
#include "tool/formats/TripTable.h"

#include <optional>
#include <string>

/// Matrices in files of other programs. Everything throws FormatError for a file that cannot be read or
/// written, and the library's TRkMatrixException for one that is not a readable OMX file.
namespace cubes::tool {

/// The two forms of comma-separated values.
enum class CsvForm {
    /// A line `origin,destination,value` for every OD pair that is not zero.
    longForm,
    /// Zone numbers in the first row and column.
    wide,
};

/// What is read from a file.
struct ReadOptions {
    /// Chooses a table of an .omx file that holds several; refused for the formats that hold just one.
    std::optional<std::string> table = {};
    /// Accepts a table that does not match the checksum in its .omx file. The other formats have none.
    bool ignoreChecksum = false;
};

/// Reads a file in the format of its extension, ignoring case: .omx, .csv or .tntp. An HDF5 file of another extension
/// is read as .omx, such as the matrix files of projects.
TripTable readTripTable(
    std::string const& path, ReadOptions const& options = {}, ProgressCallback const& progress = {});

/// Writes a file in the format of its extension: .omx or .csv. `table` names the table of an .omx file.
/// When an error is thrown, an old file is unchanged and no new one is left.
void writeTripTable(std::string const& path, TripTable const& trips, std::string const& table,
    CsvForm form = CsvForm::longForm, ProgressCallback const& progress = {});

/// Reads comma-separated values in either form, which the first line decides. The long form has the
/// columns origin, destination and value, in any order; OD pairs that it does not list are 0. The wide
/// form has the same zones in its first row and column. Zones are sorted in ascending order.
TripTable readCsv(std::string const& path, ProgressCallback const& progress);

/// Refuses a table that is not square or has a zone number twice. Zones without numbers get 1, 2, 3...
void writeCsv(std::string const& path, TripTable const& trips, CsvForm form, ProgressCallback const& progress);

/// Reads trips in the text format of Transportation Networks for Research: lines `<KEY> value` up to
/// `<END OF METADATA>`, then `Origin n` followed by `destination : trips;` items, with blanks and tabs
/// anywhere and comments from `~` to the end of the line. The zones are 1 to the header's number of
/// zones, or those that occur when others do. A header figure that the cells contradict is a warning.
TripTable readTntp(std::string const& path, ProgressCallback const& progress);

}
