#include "tool/formats/Csv.h"
#include "tool/formats/CsvForms.h"
#include "tool/formats/WholeFile.h"

namespace cubes::tool {

TripTable readCsv(std::string const& path, ShareDone const& shareDone) {
    auto const text = readWholeFile(path);
    CsvLines lines(path, text, shareDone);
    if (!lines.next()) throw FormatError(path, "is empty, expected comma-separated values");
    return isLongHeader(lines) ? readLongForm(path, lines) : readWideForm(path, lines);
}

}
