#include "tool/CityReport.h"
#include "tool/MatrixFacts.h"

#include "tool/Numbers.h"

#include <cmath>

namespace cubes::tool {

namespace {

Statistics figuresOf(TripTable const& table) {
    return statisticsOf(table.rows, table.columns, [&](int row) { return table.row(row); });
}

double tripsOf(TripTable const& table) {
    return std::round(figuresOf(table).total);
}

double meanOf(TripTable const& table) {
    return std::round(figuresOf(table).mean * 10) / 10;
}

/// A line that begins with `head` and goes on with a figure for every period.
template <typename Figure>
void addLine(Table& table, City const& city, std::vector<Json> head, Figure figure) {
    for (int period = 0; period < count(city.periods); ++period) head.emplace_back(figure(period));
    table.add(std::move(head));
}

using Skim = TripTable const& (City::*)(int mode, int period) const;

void addSkims(Table& table, City const& city, char const* figure, Skim skim) {
    for (int mode = 0; mode < count(city.modes); ++mode)
        addLine(table, city, {"skim", figure, Json(), nameAt(city.modes, mode)},
            [&](int period) { return meanOf((city.*skim)(mode, period)); });
}

}

Table overview(City const& city) {
    std::vector<Column> columns = {{"", "cube"}, {"", "figure"}, {"", "purpose"}, {"", "mode"}};
    for (auto const& period : city.periods) columns.push_back({"", period});
    Table table(columns);
    for (int purpose = 0; purpose < count(city.purposes); ++purpose)
        for (int mode = 0; mode < count(city.modes); ++mode)
            addLine(table, city, {tripsCube, "trips", nameAt(city.purposes, purpose), nameAt(city.modes, mode)},
                [&](int period) { return tripsOf(city.trips(purpose, mode, period)); });
    addSkims(table, city, "mean km", &City::distance);
    addSkims(table, city, "mean minutes", &City::time);
    return table;
}

Table listed(std::vector<CityMatrix> const& matrices) {
    Table table({{"entry", "entry"}, {"purpose", "purpose"}, {"mode", "mode"}, {"period", "period"}, {"total", "total"},
        {"mean", "mean"}});
    for (auto const& matrix : matrices) {
        auto const figures = figuresOf(*matrix.table);
        table.add({matrix.entry.text(), matrix.purpose.empty() ? Json() : Json(matrix.purpose), matrix.mode,
            matrix.period, trusted(figures.total, cellsIn(figures)), trusted(figures.mean, cellsIn(figures))});
    }
    return table;
}

}
