#pragma once

#include "tool/formats/TripTable.h"

#include <functional>
#include <optional>
#include <string>

namespace cubes::tool {

/// Is told the share (0 to 1) of a long reading or writing that is done; may be empty.
using ShareDone = std::function<void(double)>;

/// The two ways to write trips as comma-separated values.
enum class CsvForm {
    /// A line `origin,destination,value` for every pair that is not zero.
    longForm,
    /// Zone numbers in the first row and column.
    wide,
};

/// Reads the file in the format of its extension, letter case ignored: .omx, .csv or .tntp.
/// `table` chooses a table of a file that may hold several (.omx); it is needed there unless the
/// file holds one, and refused for the formats that hold just one. Throws FormatError.
TripTable readTripTable(
    std::string const& path, std::optional<std::string> const& table = {}, ShareDone const& shareDone = {});

/// Writes the file in the format of its extension: .omx or .csv. `table` names the table where
/// the format has names. The file is written beside its place and takes it when it is complete:
/// when FormatError is thrown an old file is still what it was, and no new one is left.
void writeTripTable(std::string const& path, TripTable const& trips, std::string const& table,
    CsvForm form = CsvForm::longForm, ShareDone const& shareDone = {});

}
