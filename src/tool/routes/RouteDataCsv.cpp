#include "tool/routes/RouteCsv.h"

#include "tool/Errors.h"
#include "tool/Text.h"
#include "tool/formats/CsvLines.h"
#include "tool/formats/WholeFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace cubes::tool {

namespace {

using VL::Interface::RouteFieldType;

/// A type of field and the range of its values.
struct Type {
    RouteFieldType type;
    char const* name;
    double least;
    double most;
    bool isWhole;
};

constexpr Type types[] = {
    {VL::Interface::rftBoolean, "boolean", 0, 1, true},
    {VL::Interface::rftBytes, "bytes", 0, 255, true},
    {VL::Interface::rftSmallint, "smalint", -32768, 32767, true},
    {VL::Interface::rftInteger, "integer", -2147483648.0, 2147483647.0, true},
    {VL::Interface::rftFloat, "float", std::numeric_limits<float>::lowest(), std::numeric_limits<float>::max(), false},
    {VL::Interface::rftDouble, "double", std::numeric_limits<double>::lowest(), std::numeric_limits<double>::max(),
        false},
};

Type const* findType(std::string_view name) {
    if (isSameWord(name, "smallint")) return findType("smalint");
    for (Type const& type : types)
        if (isSameWord(name, type.name)) return &type;
    return nullptr;
}

Type const& typeOf(RouteFieldType wanted) {
    return *std::find_if(std::begin(types), std::end(types), [&](Type const& type) { return type.type == wanted; });
}

// The text with every `what` replaced.
std::string replaced(std::string_view text, std::string_view what, std::string_view by) {
    std::string result(text);
    for (auto at = result.find(what); at != std::string::npos; at = result.find(what, at + by.size()))
        result.replace(at, what.size(), by);
    return result;
}

// The heading of a column, quoted where it contains a comma or a quote.
std::string headingOf(RouteValues const& field) {
    auto const heading = fmt::format("{}:{}", field.name, typeName(field.type));
    if (heading.find_first_of(",\"") == std::string::npos) return heading;
    return '"' + replaced(heading, "\"", "\"\"") + '"';
}

bool isControl(char letter) {
    return static_cast<unsigned char>(letter) < ' ' || letter == '\x7f';
}

RouteValues fieldOf(std::string_view heading, std::size_t line) {
    auto const colon = heading.rfind(':');
    auto const* const type = colon == std::string_view::npos ? findType("double") : findType(heading.substr(colon + 1));
    auto const name = heading.substr(0, colon);
    if (!type || name.empty())
        unexpected(line, heading, "NAME:TYPE with the type boolean, bytes, smalint, integer, float or double");
    if (std::any_of(name.begin(), name.end(), isControl))
        unexpected(line, heading, "a name without control characters");
    return {replaced(name, "\"\"", "\""), type->type, {}};
}

std::vector<RouteValues> fieldsOf(CsvLines const& lines) {
    auto const& header = lines.fields();
    if (!isSameWord(header.front(), "route") || header.size() < 2)
        unexpected(lines.number(), header.front(), "the header route,NAME:TYPE,...");
    std::vector<RouteValues> fields;
    for (std::size_t i = 1; i < header.size(); ++i) {
        auto field = fieldOf(header[i], lines.number());
        for (auto const& other : fields)
            if (other.name == field.name) unexpected(lines.number(), header[i], "each field once");
        fields.push_back(std::move(field));
    }
    return fields;
}

double valueOf(std::string_view text, RouteFieldType fieldType, std::size_t line) {
    if (fieldType == VL::Interface::rftFloat) return static_cast<double>(finiteFloat(text, line));
    Type const& type = typeOf(fieldType);
    double const value = finiteNumber(text, line);
    bool const fits = value >= type.least && value <= type.most && (!type.isWhole || value == std::trunc(value));
    if (!fits) unexpected(line, text, fmt::format("a value of the type {}", type.name));
    return value;
}

/// The values of a route and the number of their line.
struct ValueLine {
    std::uint32_t route;
    std::size_t number;
    std::vector<double> values;
};

ValueLine valueLineOf(CsvLines const& lines, std::vector<RouteValues> const& fields) {
    auto const& texts = lines.fields();
    auto const number = lines.number();
    if (texts.size() != fields.size() + 1)
        throw FormatError(number, fmt::format("found {} fields, expected {}", texts.size(), fields.size() + 1));
    ValueLine line{wholeNumber(texts.front(), number), number, {}};
    for (std::size_t i = 0; i < fields.size(); ++i)
        line.values.push_back(valueOf(texts[i + 1], fields[i].type, number));
    return line;
}

void requireEachRoute(std::vector<ValueLine> const& lines) {
    for (std::size_t i = 0; i < lines.size(); ++i)
        if (lines[i].route != i)
            throw FormatError(
                lines[i].number, fmt::format("found route {}, expected the routes from 0 to {}, each once",
                                     lines[i].route, lines.size() - 1));
}

}

char const* typeName(RouteFieldType type) {
    return typeOf(type).name;
}

std::vector<RouteValues> readRouteDataCsv(std::string const& path, ProgressCallback const& progress) {
    auto const text = readWholeFile(path);
    CsvLines csv(text, progress);
    if (!csv.next()) throw FormatError("it is empty, expected the header route,NAME:TYPE,...");
    auto fields = fieldsOf(csv);
    std::vector<ValueLine> lines;
    while (csv.next()) lines.push_back(valueLineOf(csv, fields));
    std::stable_sort(
        lines.begin(), lines.end(), [](ValueLine const& a, ValueLine const& b) { return a.route < b.route; });
    requireEachRoute(lines);
    for (std::size_t i = 0; i < fields.size(); ++i)
        for (auto const& line : lines) fields[i].values.push_back(line.values[i]);
    return fields;
}

void writeRouteDataCsv(
    std::string const& path, std::vector<RouteValues> const& fields, ProgressCallback const& progress) {
    NewFile file(path);
    std::string text = "route";
    for (auto const& field : fields) text += ',' + headingOf(field);
    text += '\n';
    std::size_t const routes = fields.empty() ? 0 : fields.front().values.size();
    ProgressThrottle throttle(routes, progress);
    for (std::size_t route = 0; route < routes; ++route) {
        text += fmt::format("{}", route);
        for (auto const& field : fields) {
            bool const isFloat = field.type == VL::Interface::rftFloat;
            text += isFloat ? fmt::format(",{}", static_cast<float>(field.values[route]))
                            : fmt::format(",{}", field.values[route]);
        }
        text += '\n';
        file.write(text);
        text.clear();
        throttle.reached(route + 1);
    }
    file.write(text);
    file.commit();
}

}
