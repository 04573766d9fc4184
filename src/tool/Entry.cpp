#include "tool/Entry.h"

#include "tool/Errors.h"
#include "tool/Kinds.h"
#include "tool/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <limits>

namespace cubes::tool {

namespace {

/// A part of a key and the least number that it can be.
struct Part {
    char const* name;
    short least;
};

constexpr Part parts[] = {{"purpose", 1}, {"mode", 1}, {"time", 1}, {"user", 1}, {"result", 0}, {"iteration", 0}};
constexpr std::size_t partsOfCubes = 4;
constexpr std::size_t partsOfResults = 6;
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

short parsePart(Part const& part, std::string const& text) {
    auto const number = shortOf(text);
    if (!number || *number < part.least)
        throw Refusal(
            fmt::format("{} must be a number from {} to {}, not \"{}\"", part.name, part.least, greatest, text));
    return *number;
}

std::size_t slashesIn(std::string const& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '/'));
}

/// Splits the parts of a key off from the right, and leaves what stands in front of them.
Key takeKey(std::string& text, std::size_t count) {
    Key key(count);
    for (std::size_t i = count; i-- > 0;) {
        auto const slash = text.rfind('/');
        key[i] = parsePart(parts[i], text.substr(slash + 1));
        text.resize(slash);
    }
    return key;
}

/// The kind that a word or a number names; null when it names none.
Kind const* kindOf(std::string const& word) {
    if (auto const* const kind = findKind(word)) return kind;
    auto const number = looksLikeNumber(word) ? shortOf(word) : std::nullopt;
    return number ? findKind(*number) : nullptr;
}

[[noreturn]] void refuseWord(std::string const& text, std::string const& expected) {
    bool const mayBeCube = text.find('/') == std::string::npos;
    throw UsageError(fmt::format("\"{}\" is not an entry; expected {}{}", text, expected,
        mayBeCube ? "; list the entries of a cube with: cubes entries " + quotedForShell(text) : ""));
}

}

std::string textOf(Key const& key) {
    return fmt::format("{}", fmt::join(key, "/"));
}

bool Cube::isOfResults() const {
    return kind && kind->isResult;
}

bool Cube::holdsRoutes() const {
    return kind && kind->holdsRoutes;
}

std::size_t Cube::keyLength() const {
    return isOfResults() ? partsOfResults : partsOfCubes;
}

std::string Cube::text() const {
    return kind || isName(name) ? name : std::to_string(number);
}

bool isName(std::string const& text) {
    return !text.empty() && !looksLikeNumber(text) && !kindOf(text.substr(0, text.find('/')));
}

bool isEntry(std::string const& text) {
    return slashesIn(text) >= partsOfCubes;
}

CubeWord parseCube(std::string const& text) {
    if (text.empty()) throw UsageError("the name of the cube is empty");
    if (auto const* const kind = kindOf(text)) return {text, kind->number, kind};
    if (!looksLikeNumber(text)) return {text, std::nullopt};
    auto const number = shortOf(text);
    if (!number) throw Refusal(fmt::format("there is no cube {}; cube numbers run from -32768 to 32767", text));
    return {text, number};
}

EntryWord parseEntry(std::string const& text) {
    auto const* const kind = kindOf(text.substr(0, text.find('/')));
    bool const isResult = kind && kind->isResult;
    std::size_t const count = isResult ? partsOfResults : partsOfCubes;
    bool const fits = kind ? slashesIn(text) == count : slashesIn(text) >= count;
    if (!fits)
        refuseWord(text, fmt::format("{}/purpose/mode/time/user{}", kind ? kind->word : "CUBE",
                             isResult ? "/result/iteration" : ""));
    std::string rest = text;
    Key key = takeKey(rest, count);
    return {parseCube(rest), std::move(key)};
}

}
