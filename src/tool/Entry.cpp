#include "tool/Entry.h"

#include "tool/Errors.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <limits>

namespace cubes::tool {

namespace {

constexpr std::array<char const*, 4> partNames = {"purpose", "mode", "time", "user"};
constexpr short greatest = std::numeric_limits<short>::max();

bool isDigits(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool looksLikeNumber(std::string_view text) {
    if (text.starts_with('-')) text.remove_prefix(1);
    return isDigits(text);
}

std::optional<short> shortOf(std::string_view text) {
    short number = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

short parsePart(char const* name, std::string const& text) {
    auto const number = shortOf(text);
    if (!number || *number < 1)
        throw Refusal(fmt::format("{} must be a number from 1 to {}, not \"{}\"", name, greatest, text));
    return *number;
}

}

std::string textOf(Key const& key) {
    return fmt::format("{}/{}/{}/{}", key[0], key[1], key[2], key[3]);
}

bool isEntry(std::string const& text) {
    return std::count(text.begin(), text.end(), '/') >= 4;
}

CubeWord parseCube(std::string const& text) {
    if (text.empty()) throw UsageError("the name of the cube is empty");
    if (!looksLikeNumber(text)) return {text, std::nullopt};
    auto const number = shortOf(text);
    if (!number) throw Refusal(fmt::format("the cube's number {} is beyond 16 bits", text));
    return {text, number};
}

EntryWord parseEntry(std::string const& text) {
    if (!isEntry(text)) throw UsageError(fmt::format("\"{}\" is no entry: expected CUBE/purpose/mode/time/user", text));
    EntryWord entry;
    std::string rest = text;
    for (std::size_t part = partNames.size(); part-- > 0;) {
        auto const slash = rest.rfind('/');
        entry.key[part] = parsePart(partNames[part], rest.substr(slash + 1));
        rest.resize(slash);
    }
    entry.cube = parseCube(rest);
    return entry;
}

}
