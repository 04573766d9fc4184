#include "tool/Text.h"

#include "host/platform/NarrowText.h"
#include "tool/Errors.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <numeric>
#include <vector>

namespace cubes::tool {

namespace {

constexpr std::size_t mostShown = 40;
constexpr std::size_t mostEdits = 2;
constexpr double cellRounding = 6e-8;
constexpr double ninthDigit = 5e-9;
constexpr int mostDigits = 9;

bool isControl(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
}

// The beginning of the text.
std::string shown(std::string_view text) {
    std::string result(platform::firstCharacters(text, mostShown));
    bool const isCut = result.size() < text.size();
    return escaped(result) + (isCut ? "..." : "");
}

// The letters of C for control characters.
constexpr std::pair<char, char> letters[] = {{'\n', 'n'}, {'\r', 'r'}, {'\t', 't'}};

std::string escape(char c) {
    for (auto const& [control, letter] : letters)
        if (c == control) return {'\\', letter};
    return fmt::format("\\x{:02x}", static_cast<unsigned char>(c));
}

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

// Tools that compute in double precision write values like 1e-60, which are 0 as a float.
Read<float> readCell(std::string_view text) {
    auto const cell = readNumber<float>(text);
    if (cell.reading != Reading::outOfRange) return cell;
    auto const wide = readNumber<double>(text);
    if (wide.reading == Reading::done && std::abs(wide.value) < 1)
        return {static_cast<float>(wide.value), Reading::done};
    return cell;
}

template <typename Number>
void append(std::string& text, Number number) {
    char buffer[32];
    auto const result = std::to_chars(buffer, buffer + sizeof buffer, number);
    text.append(buffer, result.ptr);
}

// A number that fmt or printf wrote.
double numberOf(std::string const& text) {
    double number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

template <typename Read>
auto parsed(char const* what, std::string const& text, Read const& read) {
    try {
        return read(text, 0);
    } catch (FormatError const&) {
        throw Refusal(fmt::format("\"{}\" is not a {} number", text, what));
    }
}

// The Levenshtein distance with swaps of neighbours, ignoring the case of ASCII letters.
std::size_t editsBetween(std::string_view first, std::string_view second) {
    auto const areSame = [&](std::size_t i, std::size_t j) {
        return platform::asciiLower(first[i]) == platform::asciiLower(second[j]);
    };
    std::vector<std::vector<std::size_t>> edits(first.size() + 1, std::vector<std::size_t>(second.size() + 1));
    for (std::size_t i = 0; i <= first.size(); ++i) edits[i][0] = i;
    std::iota(edits[0].begin(), edits[0].end(), 0u);
    for (std::size_t i = 1; i <= first.size(); ++i)
        for (std::size_t j = 1; j <= second.size(); ++j) {
            std::size_t const replaced = edits[i - 1][j - 1] + (areSame(i - 1, j - 1) ? 0 : 1);
            edits[i][j] = std::min({edits[i - 1][j] + 1, edits[i][j - 1] + 1, replaced});
            bool const areSwapped = i > 1 && j > 1 && areSame(i - 1, j - 2) && areSame(i - 2, j - 1);
            if (areSwapped) edits[i][j] = std::min(edits[i][j], edits[i - 2][j - 2] + 1);
        }
    return edits.back().back();
}

}

void unexpected(std::size_t line, std::string_view found, std::string_view expected) {
    if (found.empty()) throw FormatError(line, fmt::format("found nothing, expected {}", expected));
    throw FormatError(line, fmt::format("found '{}', expected {}", shown(found), expected));
}

bool isZoneNumber(std::string_view text) {
    auto const read = readNumber<std::int32_t>(text);
    return read.reading == Reading::done && read.value >= 1;
}

std::uint32_t wholeNumber(std::string_view text, std::size_t line) {
    auto const read = readNumber<std::uint32_t>(text);
    if (read.reading != Reading::done) unexpected(line, text, "a whole number from 0 to 4294967295");
    return read.value;
}

std::int32_t zoneNumber(std::string_view text, std::size_t line) {
    auto const read = readNumber<std::int32_t>(text);
    if (read.reading != Reading::done || read.value < 1)
        unexpected(line, text, "a zone number (a whole number from 1 to 2147483647)");
    return read.value;
}

float cellValue(std::string_view text, std::size_t line) {
    auto const read = readCell(text);
    if (read.reading == Reading::notANumber) unexpected(line, text, "a number");
    if (read.reading == Reading::outOfRange) unexpected(line, text, "a number within the range of a cell (3.4e38)");
    return read.value;
}

double finiteNumber(std::string_view text, std::size_t line) {
    auto const read = readNumber<double>(text);
    if (read.reading != Reading::done || !std::isfinite(read.value)) unexpected(line, text, "a number");
    return read.value;
}

float finiteFloat(std::string_view text, std::size_t line) {
    auto const read = readCell(text);
    if (read.reading == Reading::outOfRange) unexpected(line, text, "a number from -3.4e38 to 3.4e38");
    if (read.reading == Reading::notANumber || !std::isfinite(read.value)) unexpected(line, text, "a number");
    return read.value;
}

std::int32_t parseZone(std::string const& text) {
    return parsed("zone", text, zoneNumber);
}

std::uint32_t parseLink(std::string const& text) {
    return parsed("link", text, wholeNumber);
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

std::string escaped(std::string_view text) {
    std::string result;
    for (char const c : text) result += isControl(c) ? escape(c) : std::string(1, c);
    return result;
}

bool isSameWord(std::string_view first, std::string_view second) {
    return std::equal(first.begin(), first.end(), second.begin(), second.end(),
        [](char a, char b) { return platform::asciiLower(a) == platform::asciiLower(b); });
}

double trusted(double sum, std::int64_t cells) {
    if (!std::isfinite(sum)) return sum;
    double const count = static_cast<double>(std::max<std::int64_t>(cells, 1));
    double const error = std::abs(sum) * std::max(cellRounding / std::sqrt(count), ninthDigit);
    for (int digits = 1; digits < mostDigits; ++digits) {
        double const rounded = numberOf(fmt::format("{:.{}g}", sum, digits));
        if (std::abs(rounded - sum) <= error) return rounded;
    }
    return numberOf(fmt::format("{:.{}g}", sum, mostDigits));
}

double shortest(float cell) {
    return std::isfinite(cell) ? numberOf(fmt::format("{}", cell)) : static_cast<double>(cell);
}

std::string quotedForShell(std::string const& word) {
    auto const isPlain = [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) ||
               std::string_view("/._-+=:@\\").find(c) != std::string_view::npos;
    };
    if (std::all_of(word.begin(), word.end(), isPlain)) return word;
    std::string text = "'";
    for (char const c : word) text += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return text + "'";
}

std::optional<std::string> nearestTo(std::string_view unknown, std::span<std::string const> known, std::size_t limit) {
    auto const edits = [&](std::string const& word) { return editsBetween(unknown, word); };
    auto const nearest = std::ranges::min_element(known, {}, edits);
    bool const isNear = nearest != known.end() && edits(*nearest) <= limit;
    return isNear ? std::optional(*nearest) : std::nullopt;
}

std::string suggestion(std::string_view unknown, std::span<std::string const> known) {
    // A word of which nothing would be left is not near.
    auto const near = nearestTo(unknown, known, std::min(mostEdits, unknown.size() / 2));
    return near ? fmt::format("; did you mean {}?", *near) : std::string();
}

}
