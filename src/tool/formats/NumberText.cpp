#include "tool/formats/NumberText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

namespace cubes::tool {

namespace {

enum class Reading { done, notANumber, outOfRange };

template <typename Number>
struct Read {
    Number value{};
    Reading reading = Reading::notANumber;
};

template <typename Number>
Read<Number> readNumber(std::string_view text) {
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
    Read<Number> read;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), read.value);
    if (end != text.data() + text.size() || error == std::errc::invalid_argument) return read;
    read.reading = error == std::errc() ? Reading::done : Reading::outOfRange;
    return read;
}

// Tools that compute in double precision write values like 1e-60, which a cell can't tell from 0.
Read<float> readCell(std::string_view text) {
    auto const cell = readNumber<float>(text);
    if (cell.reading != Reading::outOfRange) return cell;
    auto const wide = readNumber<double>(text);
    if (wide.reading == Reading::done && std::abs(wide.value) < 1)
        return {static_cast<float>(wide.value), Reading::done};
    return cell;
}

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

template <typename Number>
void append(std::string& text, Number number) {
    char buffer[32];
    auto const result = std::to_chars(buffer, buffer + sizeof buffer, number);
    text.append(buffer, result.ptr);
}

}

bool isZoneNumber(std::string_view text) {
    auto const read = readNumber<std::int32_t>(text);
    return read.reading == Reading::done && read.value >= 1;
}

std::uint32_t wholeNumber(std::string_view text, Place const& place) {
    auto const read = readNumber<std::uint32_t>(text);
    if (read.reading != Reading::done) unexpected(place, text, "a whole number from 0 to 4294967295");
    return read.value;
}

std::int32_t zoneNumber(std::string_view text, Place const& place) {
    auto const read = readNumber<std::int32_t>(text);
    if (read.reading != Reading::done || read.value < 1)
        unexpected(place, text, "a zone number (a whole number from 1 to 2147483647)");
    return read.value;
}

float cellValue(std::string_view text, Place const& place) {
    auto const read = readCell(text);
    if (read.reading == Reading::notANumber) unexpected(place, text, "a number");
    if (read.reading == Reading::outOfRange) unexpected(place, text, "a number within the range of a cell (3.4e38)");
    return read.value;
}

double finiteNumber(std::string_view text, Place const& place) {
    auto const read = readNumber<double>(text);
    if (read.reading != Reading::done || !std::isfinite(read.value)) unexpected(place, text, "a number");
    return read.value;
}

float finiteFloat(std::string_view text, Place const& place) {
    auto const read = readCell(text);
    if (read.reading == Reading::outOfRange) unexpected(place, text, "a number from -3.4e38 to 3.4e38");
    if (read.reading == Reading::notANumber || !std::isfinite(read.value)) unexpected(place, text, "a number");
    return read.value;
}

void appendValue(std::string& text, float value) {
    append(text, value);
}

void appendNumber(std::string& text, std::int32_t number) {
    append(text, number);
}

std::string_view trimmed(std::string_view text) {
    auto const first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool isSameWord(std::string_view first, std::string_view second) {
    return std::equal(
        first.begin(), first.end(), second.begin(), second.end(), [](char a, char b) { return lower(a) == lower(b); });
}

}
