#include "tool/routes/RouteCsv.h"

#include "tool/Errors.h"
#include "tool/Text.h"
#include "tool/formats/CsvLines.h"
#include "tool/formats/WholeFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <tuple>

namespace cubes::tool {

namespace {

constexpr std::string_view columnNames[] = {"origin", "destination", "route", "sequence", "link", "share"};
enum Column : std::size_t { origin, destination, route, sequence, link, share };
constexpr std::string_view header = "origin,destination,route,sequence,link,share";
constexpr std::size_t bytesAtOnce = 1 << 16;

/// A line of the file.
struct Line {
    std::int32_t origin;
    std::int32_t destination;
    std::uint32_t route;
    std::uint32_t sequence;
    std::uint32_t link;
    float share;
    std::uint32_t number;
    bool hasLink;

    auto routeKey() const { return std::tie(origin, destination, route); }
};

float shareOf(std::string_view text, std::size_t line) {
    auto const value = finiteFloat(text, line);
    if (value < 0) unexpected(line, text, "a share of at least 0");
    return value;
}

Line lineOf(CsvColumns const& columns) {
    auto const number = columns.line();
    Line line{};
    line.origin = zoneNumber(columns[origin], number);
    line.destination = zoneNumber(columns[destination], number);
    line.route = wholeNumber(columns[route], number);
    line.share = shareOf(columns[share], number);
    line.number = static_cast<std::uint32_t>(number);
    line.hasLink = !columns[link].empty() || !columns[sequence].empty();
    if (!line.hasLink) return line;
    line.sequence = wholeNumber(columns[sequence], number);
    line.link = wholeNumber(columns[link], number);
    return line;
}

std::vector<Line> readLines(std::string const& path, ProgressCallback const& progress) {
    auto const text = readWholeFile(path);
    CsvLines csv(text, progress);
    auto columns = CsvColumns::require(csv, columnNames);
    std::vector<Line> lines;
    while (columns.next()) lines.push_back(lineOf(columns));
    if (lines.empty()) throw FormatError("it has no routes after the header line");
    return lines;
}

// Throws for two lines of a route of which at least one has no link.
[[noreturn]] void refuseLineWithoutLink(Line const& before, Line const& line) {
    if (!before.hasLink && !line.hasLink)
        throw FormatError(
            line.number, fmt::format("found a route without links a second time, after line {}", before.number));
    auto const& without = before.hasLink ? line : before;
    auto const& with = before.hasLink ? before : line;
    throw FormatError(
        without.number, fmt::format("found a route without links, but it has some in line {}", with.number));
}

// Whether both lines belong to one route.
bool isSameRoute(Line const& before, Line const& line) {
    if (before.routeKey() != line.routeKey()) return false;
    if (before.share != line.share)
        throw FormatError(line.number, fmt::format("found share {}, expected {} as in line {} of the same route",
                                           line.share, before.share, before.number));
    if (!before.hasLink || !line.hasLink) refuseLineWithoutLink(before, line);
    if (before.sequence == line.sequence)
        throw FormatError(line.number,
            fmt::format("found sequence {} of a route a second time, after line {}", line.sequence, before.number));
    return true;
}

// The lines of each route, in the order in which the routes first appear in the file.
std::vector<std::span<Line const>> routesOf(std::span<Line const> lines) {
    std::vector<std::span<Line const>> routes;
    std::size_t first = 0;
    for (std::size_t i = 1; i <= lines.size(); ++i) {
        if (i < lines.size() && isSameRoute(lines[i - 1], lines[i])) continue;
        routes.push_back(lines.subspan(first, i - first));
        first = i;
    }
    auto const place = [](std::span<Line const> route) { return std::ranges::min(route, {}, &Line::number).number; };
    std::vector<std::pair<std::uint32_t, std::size_t>> places;
    for (std::size_t i = 0; i < routes.size(); ++i) places.emplace_back(place(routes[i]), i);
    std::sort(places.begin(), places.end());
    std::vector<std::span<Line const>> ordered;
    for (auto const& [line, i] : places) ordered.push_back(routes[i]);
    return ordered;
}

void appendLine(std::string& text, RouteList::Route const& one, std::uint32_t number, std::size_t place) {
    text += fmt::format("{},{},{},", one.origin, one.destination, number);
    text += one.links.empty() ? "," : fmt::format("{},{}", place + 1, one.links[place]);
    text += ',';
    appendValue(text, one.share);
    text += '\n';
}

}

RouteList readRoutesCsv(std::string const& path, ProgressCallback const& progress) {
    auto lines = readLines(path, progress);
    auto const order = [](Line const& line) {
        return std::tie(line.origin, line.destination, line.route, line.sequence);
    };
    std::stable_sort(lines.begin(), lines.end(), [&](Line const& a, Line const& b) { return order(a) < order(b); });
    RouteList routes;
    for (auto const& one : routesOf(lines)) {
        routes.begin(one.front().origin, one.front().destination, one.front().share);
        for (Line const& line : one)
            if (line.hasLink) routes.addLink(line.link);
    }
    return routes;
}

void writeRoutesCsv(std::string const& path, RouteList const& routes, ProgressCallback const& progress) {
    NewFile file(path);
    ProgressThrottle throttle(routes.size(), progress);
    std::map<std::pair<std::int32_t, std::int32_t>, std::uint32_t> ofPair;
    std::string text = std::string(header) + "\n";
    for (std::size_t i = 0; i < routes.size(); ++i) {
        auto const one = routes[i];
        auto const number = ++ofPair[{one.origin, one.destination}];
        for (std::size_t place = 0; place < std::max<std::size_t>(one.links.size(), 1); ++place)
            appendLine(text, one, number, place);
        if (text.size() < bytesAtOnce) continue;
        file.write(text);
        text.clear();
        throttle.reached(i + 1);
    }
    file.write(text);
    file.commit();
}

}
