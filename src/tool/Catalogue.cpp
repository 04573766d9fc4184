#include "tool/Catalogue.h"

#include "tool/Errors.h"
#include "tool/Kinds.h"
#include "tool/Projects.h"
#include "tool/Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace cubes::tool {

namespace {

Cube cubeOfKind(Kind const& kind) {
    return {kind.number, kind.word, &kind};
}

}

Catalogue::Catalogue(std::string const& directory) : Catalogue(Project::open(directory)) {}

Catalogue::Catalogue(Project project)
    : project_(std::move(project)), register_(project_.settings(), "", false),
      cubeEntries_(cubeEntries(project_.settings())) {
    for (auto const& kind : kinds()) kinds_[&kind] = kind.entriesOf(project_.settings(), kind);
}

Catalogue Catalogue::open(Surroundings const& surroundings) {
    return Catalogue(findProject(surroundings.project));
}

Catalogue Catalogue::create(std::string const& directory, ProjectOptions const& options) {
    refuseProject(directory);
    Catalogue created(Project::create(directory, options));
    if (auto const count = created.entries().size(); count > 0)
        printNote(fmt::format("the database holds {} entries of cubes from other projects; they are shared", count));
    return created;
}

EntryFamily& Catalogue::familyOf(Cube const& cube) const {
    return cube.kind ? *kinds_.at(cube.kind) : *cubeEntries_;
}

std::vector<Cube> Catalogue::cubes() const {
    TRkAutoListT<TRkBaseCubes::TKey> list;
    if (!register_.TRkBaseCubes::Get(list)) throw Failure("the database has no register of cubes");
    std::vector<Cube> found;
    for (int i = 0; i < list.Count(); ++i)
        if (!findKind(list[i]->cubenr)) found.push_back({list[i]->cubenr, list[i]->name.str()});
    std::sort(found.begin(), found.end(), [](Cube const& a, Cube const& b) { return a.number < b.number; });
    return found;
}

std::vector<Entry> Catalogue::entries() const {
    if (!cubeEntries_->hasTable()) throw Failure(noEntryTable);
    auto found = cubeEntries_->entries();
    for (auto const& kind : kinds()) {
        auto const more = kinds_.at(&kind)->entries();
        found.insert(found.end(), more.begin(), more.end());
    }
    return found;
}

std::vector<Entry> Catalogue::entriesOf(Cube const& cube) const {
    auto found = familyOf(cube).entries();
    std::erase_if(found, [&](Entry const& entry) { return entry.cube.number != cube.number; });
    return found;
}

bool Catalogue::has(CubeWord const& word) const {
    if (word.kind) return true;
    return word.number ? register_.Check(*word.number) : register_.Check(word.text.c_str());
}

// How to find a cube that does not exist by that name.
std::string Catalogue::hintFor(CubeWord const& word) const {
    std::vector<std::string> names;
    for (auto const& known : cubes()) names.push_back(known.text());
    for (auto const& kind : kinds()) names.emplace_back(kind.word);
    auto const near = word.number ? std::string() : suggestion(word.text, names);
    return near.empty() ? "; list the cubes with: cubes list" : near;
}

Cube Catalogue::cube(CubeWord const& word) const {
    if (word.kind) return cubeOfKind(*word.kind);
    if (!has(word)) throw Refusal(fmt::format("there is no cube {}{}", word.text, hintFor(word)));
    short const number = word.number ? *word.number : register_.CubeNameToNr(word.text.c_str());
    return {number, register_.CubeNrToName(number).str()};
}

Cube Catalogue::cubeOf(short number) const {
    if (auto const* const kind = findKind(number)) return cubeOfKind(*kind);
    return {number, register_.CubeNrToName(number).str()};
}

// A row may name a parent whose key does not suit its cube.
bool Catalogue::has(Entry const& entry) const {
    return entry.key.size() == entry.cube.keyLength() && familyOf(entry.cube).has(entry);
}

Entry Catalogue::entry(EntryWord const& word) const {
    Entry const found = {cube(word.cube), word.key};
    if (has(found)) return found;
    auto const hint = fmt::format("list its entries with: cubes entries {}", quotedForShell(found.cube.text()));
    throw Refusal(fmt::format(
        "{} {} has no entry {}; {}", word.cube.kind ? "kind" : "cube", found.cube.text(), textOf(word.key), hint));
}

Entry Catalogue::possibleEntry(EntryWord const& word) const {
    return {word.cube.number ? cubeOf(*word.cube.number) : cube(word.cube), word.key};
}

Entry Catalogue::entryOf(ParentNumbers const& numbers) const {
    auto const cube = cubeOf(numbers.cube);
    auto length = cube.keyLength();
    // Further parts are shown too: no such entry can exist.
    while (length < numbers.key.size() && numbers.key[length] != ParentNumbers().key[length]) ++length;
    return {cube, Key(numbers.key.begin(), numbers.key.begin() + static_cast<std::ptrdiff_t>(length))};
}

// An entry that others have just removed has no users.
bool Catalogue::isInUse(Entry const& entry) const {
    return entry.key.size() == entry.cube.keyLength() && users(entry) != 0;
}

std::string Catalogue::path(Entry const& entry) const {
    return familyOf(entry.cube).path(entry);
}

std::unique_ptr<TRkMatrix> Catalogue::matrix(Entry const& entry) const {
    if (entry.cube.holdsRoutes()) throw Refusal(fmt::format("{} holds routes, not a matrix", entry.text()));
    if (auto found = familyOf(entry.cube).matrix(entry)) return found;
    if (entry.cube.isOfResults()) refuseUse(entry);
    auto const file = path(entry);
    if (file.empty()) throw Failure("its database row names no file inside its directory");
    // The cube only returns that there is no matrix; the matrix has the reason.
    TRkMatrix const unreadable(file.c_str(), 0, nullptr, false, mkDefault, lsNone, 0);
    throw Failure(unreadable.Reason());
}

long Catalogue::users(Entry const& entry) const {
    auto const row = familyOf(entry.cube).row(entry);
    auto const* const counter = row ? row->FindField("usageCounter") : nullptr;
    return counter && !counter->IsNull() ? counter->AsInteger() : 0;
}

Cube Catalogue::add(std::string const& name) {
    if (!register_.Add(name.c_str())) throw Failure("the database accepts no more cubes");
    return cube({name, std::nullopt});
}

void Catalogue::remove(Cube const& cube) {
    if (!familyOf(cube).remove(cube)) throw Failure(noEntryTable);
}

bool Catalogue::remove(Entry const& entry) {
    return familyOf(entry.cube).remove(entry);
}

std::vector<Derived> Catalogue::derivedOf(Kind const& kind) const {
    return kinds_.at(&kind)->derived();
}

std::optional<Entry> Catalogue::parentOf(Entry const& entry) const {
    if (!has(entry)) return std::nullopt;
    auto const parent = familyOf(entry.cube).parent(entry);
    return parent.areSet() ? std::optional(entryOf(parent)) : std::nullopt;
}

std::vector<Entry> Catalogue::childrenOf(Entry const& entry) const {
    std::vector<Entry> found;
    for (auto const& kind : kinds()) {
        auto const more = kinds_.at(&kind)->childrenOf(numbersOf(entry));
        found.insert(found.end(), more.begin(), more.end());
    }
    return found;
}

void Catalogue::setParent(Entry const& entry, ParentNumbers const& parent) {
    refuseUse(entry);
    if (!familyOf(entry.cube).setParent(entry, parent)) throw Refusal("only results have parents");
}

void Catalogue::refuseUse(Entry const& entry) const {
    if (isInUse(entry)) throw Refusal(fmt::format("{} is in use; try again later", entry.text()));
}

void Catalogue::use(Entry const& entry) {
    if (!familyOf(entry.cube).use(entry)) throw Failure("the entry table has no usage counter");
}

void Catalogue::leave(Entry const& entry) {
    if (users(entry) <= 0) throw Refusal("it has no users");
    if (!familyOf(entry.cube).leave(entry)) throw Failure("the entry table has no usage counter");
}

ParentNumbers numbersOf(Entry const& parent) {
    ParentNumbers numbers{parent.cube.number, ParentNumbers().key};
    std::copy(parent.key.begin(), parent.key.end(), numbers.key.begin());
    return numbers;
}

}
