#include "tool/Catalogue.h"

#include "tool/Errors.h"
#include "tool/ProjectFinder.h"
#include "tool/ResultKinds.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

namespace cubes::tool {

namespace {

constexpr char const* noEntryTable = "the database has no table of entries";

std::string fileOf(std::string const& path) {
    return std::filesystem::path(path).filename().string();
}

bool areResults(Entry const& a, Entry const& b) {
    return a.cube.results && b.cube.results;
}

Cube cubeOfResults(ResultKind const& kind) {
    return {kind.number, kind.word, &kind};
}

}

Catalogue::Catalogue(std::string const& directory) : Catalogue(Project::open(directory)) {}

Catalogue::Catalogue(Project project)
    : project_(std::move(project)), register_(project_.settings(), "", false),
      cubeEntries_(cubeEntries(project_.settings())) {
    for (auto const& kind : resultKinds()) results_[&kind] = resultEntries(project_.settings(), kind);
}

Catalogue Catalogue::open(Surroundings const& surroundings) {
    return Catalogue(findProject(surroundings.project));
}

EntryFamily& Catalogue::familyOf(Cube const& cube) const {
    return cube.results ? *results_.at(cube.results) : *cubeEntries_;
}

std::vector<Cube> Catalogue::cubes() const {
    TRkAutoListT<TRkBaseCubes::TKey> list;
    if (!register_.TRkBaseCubes::Get(list)) throw Failure("the database has no register of cubes");
    std::vector<Cube> found;
    for (int i = 0; i < list.Count(); ++i)
        if (!findResultKind(list[i]->cubenr)) found.push_back({list[i]->cubenr, list[i]->name.str()});
    std::sort(found.begin(), found.end(), [](Cube const& a, Cube const& b) { return a.number < b.number; });
    return found;
}

std::vector<Entry> Catalogue::entries() const {
    if (!cubeEntries_->hasTable()) throw Failure(noEntryTable);
    auto found = cubeEntries_->entries();
    for (auto const& kind : resultKinds()) {
        auto const results = results_.at(&kind)->entries();
        found.insert(found.end(), results.begin(), results.end());
    }
    return found;
}

std::vector<Entry> Catalogue::entriesOf(Cube const& cube) const {
    auto found = familyOf(cube).entries();
    std::erase_if(found, [&](Entry const& entry) { return entry.cube.number != cube.number; });
    return found;
}

bool Catalogue::has(CubeWord const& word) const {
    if (word.results) return true;
    return word.number ? register_.Check(*word.number) : register_.Check(word.text.c_str());
}

Cube Catalogue::cube(CubeWord const& word) const {
    if (word.results) return cubeOfResults(*word.results);
    if (!has(word)) throw Refusal(fmt::format("there is no cube {}", word.text));
    short const number = word.number ? *word.number : register_.CubeNameToNr(word.text.c_str());
    return {number, register_.CubeNrToName(number).str()};
}

Cube Catalogue::cubeOf(short number) const {
    if (auto const* const kind = findResultKind(number)) return cubeOfResults(*kind);
    return {number, register_.CubeNrToName(number).str()};
}

bool Catalogue::has(Entry const& entry) const {
    return familyOf(entry.cube).has(entry);
}

Entry Catalogue::entry(EntryWord const& word) const {
    Entry const found = {cube(word.cube), word.key};
    if (has(found)) return found;
    if (word.cube.results) throw Refusal(fmt::format("there is no {}", word.text()));
    throw Refusal(fmt::format("cube {} has no entry {}", found.cube.text(), textOf(word.key)));
}

bool Catalogue::isInUse(Entry const& entry) const {
    return has(entry) && !familyOf(entry.cube).isFree(entry);
}

std::string Catalogue::path(Entry const& entry) const {
    return familyOf(entry.cube).path(entry);
}

std::unique_ptr<TRkMatrix> Catalogue::matrix(Entry const& entry) const {
    if (auto found = familyOf(entry.cube).matrix(entry)) return found;
    if (entry.cube.results && isInUse(entry)) throw Refusal("the entry is in use");
    auto const file = path(entry);
    if (file.empty()) throw Failure("its row names no file inside the matrix directory");
    // The cube tells only that there is no matrix; the matrix tells why.
    TRkMatrix const unreadable(file.c_str(), 0, nullptr, false, mkDefault, lsNone, 0);
    throw Failure(unreadable.Reason());
}

long Catalogue::users(Entry const& entry) const {
    auto const row = familyOf(entry.cube).row(entry);
    auto const* const counter = row ? row->FindField("usageCounter") : nullptr;
    return counter && !counter->IsNull() ? counter->AsInteger() : 0;
}

Cube Catalogue::add(std::string const& name) {
    if (!register_.Add(name.c_str())) throw Failure("the database takes no more cubes");
    return cube({name, std::nullopt});
}

// Does something to an entry; a cube that is new is taken back when that fails.
template <typename Action>
Entry Catalogue::inCube(EntryWord const& word, Action const& action) {
    bool const isNew = !word.cube.number && !has(word.cube);
    Entry const entry = {isNew ? add(word.cube.text) : cube(word.cube), word.key};
    try {
        action(entry);
    } catch (...) {
        // Others may have stored into the new cube meanwhile.
        if (isNew && entriesOf(entry.cube).empty()) remove(entry.cube);
        throw;
    }
    return entry;
}

Entry Catalogue::store(EntryWord const& word, TRkMatrix const& matrix) {
    return inCube(word, [&](Entry const& entry) { storeAt(entry, matrix); });
}

void Catalogue::storeAt(Entry const& entry, TRkMatrix const& matrix) {
    if (has(entry)) {
        refuseToReplace(entry);
        write(entry, matrix);
        return;
    }
    if (!familyOf(entry.cube).add(entry)) throw Failure(noEntryTable);
    try {
        write(entry, matrix);
    } catch (...) {
        // With a file it is the entry of someone who stored it at the same moment.
        if (!std::filesystem::exists(path(entry))) remove(entry);
        throw;
    }
}

void Catalogue::refuseToReplace(Entry const& entry) const {
    if (isInUse(entry)) throw Refusal("the entry is in use");
    // A row may name another file than the cube writes; the new matrix would never be found there.
    auto const file = fileOf(path(entry));
    if (file != familyOf(entry.cube).fileName(entry))
        throw Refusal(fmt::format("the entry's row names the file \"{}\"; remove the entry first", file));
}

void Catalogue::write(Entry const& entry, TRkMatrix const& matrix) {
    auto& family = familyOf(entry.cube);
    if (family.save(entry, matrix)) return;
    // The cube tells only that it failed; writing once more by hand tells why, or succeeds.
    TRkMatrix again(
        matrix.Rows(), matrix.Columns(), family.matrixType(), path(entry).c_str(), 1, "", "", false, mkDefault, lsNone);
    if (again.IsValid()) again.AssignFrom(matrix);
    if (!again.IsValid()) throw Failure(again.Reason());
}

void Catalogue::remove(Cube const& cube) {
    if (!familyOf(cube).remove(cube)) throw Failure(noEntryTable);
}

void Catalogue::remove(Entry const& entry) {
    if (!familyOf(entry.cube).remove(entry)) throw Failure(noEntryTable);
}

std::vector<Derived> Catalogue::derivedOf(ResultKind const& kind) const {
    return results_.at(&kind)->derived();
}

void Catalogue::setParent(Entry const& entry, ParentNumbers const& parent) {
    // A change of parent starts the count of users anew.
    refuseUse(entry);
    if (!familyOf(entry.cube).setParent(entry, parent)) throw Refusal("only results have parents");
}

Entry Catalogue::copy(Entry const& from, EntryWord const& word, Existing existing) {
    return inCube(word, [&](Entry const& to) {
        if (from == to) return;
        refuseTarget(to, existing);
        if (areResults(from, to)) return place(from, to, &EntryFamily::copyFrom);
        storeAt(to, *matrix(from));
    });
}

Entry Catalogue::move(Entry const& from, EntryWord const& word, Existing existing) {
    return inCube(word, [&](Entry const& to) {
        if (from == to) return;
        refuseUse(from);
        refuseTarget(to, existing);
        if (areResults(from, to)) return place(from, to, &EntryFamily::moveFrom);
        storeAt(to, *matrix(from));
        remove(from);
    });
}

void Catalogue::refuseTarget(Entry const& to, Existing existing) const {
    if (existing == Existing::refused && has(to)) throw Refusal(fmt::format("{} exists already", to.text()));
    refuseUse(to);
}

// The files of results go as they are, without being read.
void Catalogue::place(Entry const& from, Entry const& to, FilePlacing placing) {
    auto const file = path(from);
    if (file.empty()) throw Failure("its row names no file inside the matrix directory");
    if (!std::filesystem::exists(file)) throw Failure(fmt::format("there is no file {}", file));
    bool const isNew = !has(to);
    if ((familyOf(to.cube).*placing)(familyOf(from.cube), from, to)) return;
    auto const target = path(to);
    if (isNew && has(to)) remove(to);
    throw Failure(fmt::format("the file {} could not be placed at {}", file, target));
}

void Catalogue::refuseUse(Entry const& entry) const {
    if (isInUse(entry)) throw Refusal(fmt::format("{} is in use", entry.text()));
}

void Catalogue::use(Entry const& entry) {
    if (!familyOf(entry.cube).use(entry)) throw Failure("the table of entries counts no users");
}

void Catalogue::leave(Entry const& entry) {
    if (users(entry) <= 0) throw Refusal("nobody uses the entry");
    if (!familyOf(entry.cube).leave(entry)) throw Failure("the table of entries counts no users");
}

}
