#include "tool/formats/Csv.h"
#include "tool/formats/FormatError.h"
#include "tool/formats/Milestones.h"
#include "tool/formats/NumberText.h"
#include "tool/formats/WholeFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <numeric>

namespace cubes::tool {

namespace {

using Zones = std::vector<std::int32_t>;

Zones zonesOf(TripTable const& trips) {
    if (!trips.zones.empty()) return trips.zones;
    Zones zones(static_cast<std::size_t>(trips.rows));
    std::iota(zones.begin(), zones.end(), 1);
    return zones;
}

void requireWritable(std::string const& path, TripTable const& trips, Zones zones) {
    if (!trips.isSquare())
        throw FormatError(path, fmt::format("a table of {} x {} values has no zones for both; .omx can hold it",
                                    trips.rows, trips.columns));
    std::sort(zones.begin(), zones.end());
    auto const twice = std::adjacent_find(zones.begin(), zones.end());
    if (twice != zones.end()) throw FormatError(path, fmt::format("the table has zone number {} twice", *twice));
}

// A value that is 0 in every bit: a reader takes that for a pair that is not listed.
bool isPlainZero(float value) {
    return std::bit_cast<std::uint32_t>(value) == 0;
}

// Each zone's pair with itself is always listed, so that no zone is lost.
void appendLongRow(std::string& text, Zones const& zones, std::span<float const> values, std::size_t row) {
    for (std::size_t column = 0; column < values.size(); ++column) {
        if (isPlainZero(values[column]) && column != row) continue;
        appendNumber(text, zones[row]);
        text += ',';
        appendNumber(text, zones[column]);
        text += ',';
        appendValue(text, values[column]);
        text += '\n';
    }
}

void appendWideRow(std::string& text, Zones const& zones, std::span<float const> values, std::size_t row) {
    appendNumber(text, zones[row]);
    for (float const value : values) {
        text += ',';
        appendValue(text, value);
    }
    text += '\n';
}

std::string longHeader(Zones const&) {
    return "origin,destination,value\n";
}

std::string wideHeader(Zones const& zones) {
    std::string text = "zone";
    for (auto const zone : zones) {
        text += ',';
        appendNumber(text, zone);
    }
    return text + "\n";
}

struct Form {
    std::string (*header)(Zones const&);
    void (*appendRow)(std::string&, Zones const&, std::span<float const>, std::size_t row);
};

Form formOf(CsvForm form) {
    return form == CsvForm::wide ? Form{wideHeader, appendWideRow} : Form{longHeader, appendLongRow};
}

}

void writeCsv(std::string const& path, TripTable const& trips, CsvForm csvForm, ShareDone const& shareDone) {
    auto const zones = zonesOf(trips);
    requireWritable(path, trips, zones);
    auto const form = formOf(csvForm);
    NewFile file(path);
    file.write(form.header(zones));
    Milestones milestones(zones.size(), shareDone);
    std::string text;
    for (std::size_t row = 0; row < zones.size(); ++row) {
        text.clear();
        form.appendRow(text, zones, trips.row(static_cast<int>(row)), row);
        file.write(text);
        milestones.reached(row + 1);
    }
    file.publish();
}

}
