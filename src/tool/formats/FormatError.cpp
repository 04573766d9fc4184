#include "tool/formats/FormatError.h"

#include <fmt/format.h>

namespace cubes::tool {

namespace {

constexpr std::size_t mostShown = 40;

bool isControl(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
}

// The beginning of the text, fit for a terminal.
std::string shown(std::string_view text) {
    std::string result(text.substr(0, mostShown));
    for (char& c : result)
        if (isControl(c)) c = '?';
    return text.size() > mostShown ? result + "..." : result;
}

}

FormatError::FormatError(std::string_view file, std::string_view problem)
    : std::runtime_error(fmt::format("{}: {}", file, problem)) {}

FormatError::FormatError(Place const& place, std::string_view problem)
    : std::runtime_error(fmt::format("{}:{}: {}", place.file, place.line, problem)) {}

void unexpected(Place const& place, std::string_view found, std::string_view expected) {
    if (found.empty()) throw FormatError(place, fmt::format("found nothing, expected {}", expected));
    throw FormatError(place, fmt::format("found '{}', expected {}", shown(found), expected));
}

}
