#include "tool/Entries.h"

#include "tool/Errors.h"
#include "tool/Projects.h"
#include "tool/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>

namespace cubes::tool {

namespace {

constexpr std::ptrdiff_t partsOfCubes = 4;
constexpr std::ptrdiff_t partsOfResults = 6;

// Like the words of the command line, with a minus sign or without.
bool isNumber(std::string_view word) {
    if (word.starts_with('-')) word.remove_prefix(1);
    return !word.empty() && word.find_first_not_of("0123456789") == std::string_view::npos;
}

std::optional<CubeInfo> kindOf(std::string const& word) {
    for (auto const& kind : EntryStore::kinds())
        if (word == kind.name || word == std::to_string(kind.number)) return kind;
    return std::nullopt;
}

std::optional<CubeInfo> kindInFrontOf(std::string const& word) {
    return kindOf(word.substr(0, word.find('/')));
}

// In lists: 0 for every cube of the register, then the kinds.
std::size_t placeOf(short cube) {
    static auto const kinds = EntryStore::kinds();
    auto const found = std::ranges::find(kinds, cube, &CubeInfo::number);
    return found == kinds.end() ? 0 : static_cast<std::size_t>(found - kinds.begin()) + 1;
}

// Stands for any cube in a usage message.
CubeInfo const anyCube{.name = "CUBE"};

std::ptrdiff_t partsOf(CubeInfo const& cube) {
    return cube.holdsResults ? partsOfResults : partsOfCubes;
}

// How entries are written.
std::string formOf(CubeInfo const& cube) {
    return cube.name + "/purpose/mode/time/user" + (cube.holdsResults ? "/result/iteration" : "");
}

std::ptrdiff_t slashesIn(std::string const& word) {
    return std::count(word.begin(), word.end(), '/');
}

// The name or number of the cube in the text of one of its entries.
std::string cubeIn(std::string word) {
    for (int i = 0; i < partsOfCubes; ++i) word.resize(word.rfind('/'));
    return word;
}

constexpr std::size_t leastLetters = 4;

// Without digits and short words: names that differ in these are meant to differ, as "Plan 2030" and
// "Plan 2040", "Work AM" and "Work PM".
std::string longWordsOf(std::string const& name) {
    std::string text;
    std::string word;
    for (char const c : name + " ") {
        bool const isLetter = std::isalpha(static_cast<unsigned char>(c)) || static_cast<signed char>(c) < 0;
        if (isLetter) {
            word += c;
            continue;
        }
        if (word.size() >= leastLetters) text += word + " ";
        word.clear();
    }
    return text;
}

std::size_t editsOfATypo(std::string const& name) {
    return name.size() < leastLetters ? 0 : 1;
}

// False also without a project.
bool isCube(std::string const& word, Surroundings const& surroundings) {
    try {
        return kindOf(word) || Entries(surroundings).store().findCube(word);
    } catch (std::exception const&) {
        return false;
    }
}

}

bool isEntry(std::string const& word) {
    return slashesIn(word) >= partsOfCubes;
}

void requireEntry(std::string const& word, Surroundings const& surroundings) {
    auto const kind = kindInFrontOf(word);
    auto const parts = kind ? partsOf(*kind) : partsOfCubes;
    if (!kind && word.starts_with('/') && slashesIn(word) == parts) throw UsageError("the name of the cube is empty");
    if (kind ? slashesIn(word) == parts : slashesIn(word) >= parts) return;
    if (slashesIn(word) == 0 && isCube(word, surroundings))
        throw UsageError(fmt::format("\"{}\" is a {}; list its entries with: cubes entries {}", word,
            kind ? "kind" : "cube", quotedForShell(word)));
    throw UsageError(fmt::format("\"{}\" is not an entry; expected {}", word, formOf(kind ? *kind : anyCube)));
}

std::optional<CubeInfo> resultKindOf(std::string const& word) {
    auto kind = kindInFrontOf(word);
    return kind && kind->holdsResults ? kind : std::nullopt;
}

void requireCubeName(std::string const& name) {
    if (name.empty()) throw UsageError("the name of the cube is empty");
    if (kindOf(name)) throw Refusal("the name is reserved for fares or a kind of results; choose another one");
    if (isNumber(name)) throw Refusal("a name of digits would be read as a cube number; choose another one");
    if (kindInFrontOf(name))
        throw Refusal("a name that begins with a kind of results would be read as a result; choose another one");
}

bool isKind(CubeInfo const& cube) {
    return placeOf(cube.number) > 0;
}

bool isListedBefore(EntryKey const& a, EntryKey const& b) {
    return std::pair(placeOf(a.cube()), a) < std::pair(placeOf(b.cube()), b);
}

void refuseUse(EntryInfo const& entry, std::string const& called) {
    if (entry.users != 0) throw Refusal(called + " is in use; try again later");
}

Entries::Entries(Surroundings const& surroundings, std::vector<std::string> const& words)
    : project_([&] {
          for (auto const& word : words) requireEntry(word, surroundings);
          return Project::open(findProject(surroundings.project));
      }()) {}

// How to find a cube that does not exist by that name.
std::string Entries::hintFor(std::string const& cube) const {
    if (isNumber(cube)) return "; list the cubes with: cubes list";
    std::vector<std::string> names;
    for (auto const& known : store().cubes()) names.push_back(known.name);
    for (auto const& kind : EntryStore::kinds()) names.push_back(kind.name);
    auto const near = suggestion(cube, names);
    return near.empty() ? "; list the cubes with: cubes list" : near;
}

CubeInfo Entries::cube(std::string const& word) const {
    if (word.empty()) throw UsageError("the name of the cube is empty");
    if (auto found = store().findCube(word)) return *std::move(found);
    throw Refusal(fmt::format("there is no cube {}{}", word, hintFor(word)));
}

std::string Entries::nameOf(CubeInfo const& cube) const {
    return isKind(cube) ? cube.name : cubeIn(store().text({cube.number, 1, 1, 1, 1}));
}

EntryKey Entries::key(std::string const& word) const {
    try {
        return store().parse(word);
    } catch (StoreError const& error) {
        if (error.reason() != Reason::notFound) throw;
        throw Refusal(error.cause() + hintFor(cubeIn(word)));
    }
}

EntryInfo Entries::find(std::string const& word) const {
    auto const key = this->key(word);
    if (auto found = store().find(key)) return *std::move(found);
    auto const cube = this->cube(std::to_string(key.cube()));
    auto const name = nameOf(cube);
    throw Refusal(fmt::format("{} {} has no entry {}; list its entries with: cubes entries {}",
        isKind(cube) ? "kind" : "cube", name, fmt::join(key.parts(), "/"), quotedForShell(name)));
}

EntryInfo Entries::findReadable(std::string const& word) const {
    auto found = find(word);
    if (found.key.isResult()) refuseUse(found, "it");
    return found;
}

std::string Entries::alternativeTo(std::string const& word) const {
    auto const front = word.substr(0, word.find('/'));
    std::vector<std::string> kinds;
    for (auto const& kind : EntryStore::kinds()) {
        bool const hasItsParts = slashesIn(word) == partsOf(kind);
        if (isSameWord(front, kind.name) && !hasItsParts) return formOf(kind);
        if (hasItsParts) kinds.push_back(kind.name);
    }
    if (auto const kind = nearestTo(front, kinds, editsOfATypo(front))) return *kind + word.substr(front.size());
    auto const name = cubeIn(word);
    std::vector<std::string> names;
    for (auto const& known : store().cubes())
        if (!isSameWord(longWordsOf(known.name), longWordsOf(name))) names.push_back(known.name);
    auto const near = nearestTo(name, names, editsOfATypo(name));
    return near ? *near + word.substr(name.size()) : std::string();
}

std::optional<short> Entries::addMissingCube(std::string const& word) const {
    try {
        store().parse(word);
        return std::nullopt;
    } catch (StoreError const& error) {
        if (error.reason() != Reason::notFound) throw;
    }
    auto const name = cubeIn(word);
    if (isNumber(name)) throw Refusal("there is no cube " + name + hintFor(name));
    requireCubeName(name);
    return store().addCube(name);
}

void Entries::noteNewCube(std::string const& word) const {
    auto const alternative = alternativeTo(word);
    if (alternative.empty()) return;
    printNote(fmt::format("added the cube \"{}\"; did you mean {}?", cubeIn(word), alternative));
}

void Entries::removeIfEmpty(short cube) const noexcept {
    try {
        // Another program may have stored into the new cube meanwhile.
        if (!store().counts().contains(cube)) store().removeCube(cube);
    } catch (std::exception const& error) {
        printWarning(fmt::format("the cube {} was added and could not be removed again: {}", cube, error.what()));
    }
}

EntryInfo Entries::write(std::string const& word, std::function<void(EntryKey const&)> const& action) const {
    auto const added = addMissingCube(word);
    try {
        auto const entry = key(word);
        cube(std::to_string(entry.cube()));
        stopIfInterrupted();
        action(entry);
        if (added) noteNewCube(word);
        return find(word);
    } catch (StoreError const& error) {
        // The holder of the lock is storing an entry of the cube.
        if (added && error.reason() != Reason::locked) removeIfEmpty(*added);
        throw;
    } catch (...) {
        if (added) removeIfEmpty(*added);
        throw;
    }
}

}
