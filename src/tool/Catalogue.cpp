#include "tool/Catalogue.h"

#include "tool/Errors.h"
#include "tool/ProjectFinder.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

namespace cubes::tool {

namespace {

constexpr char const* extension = ".odm";
constexpr bool oneBased = false;
constexpr RkLockState unlocked = lsNone;
constexpr char const* noEntryTable = "the database has no table of entries";

std::string fileOf(std::string const& path) {
    return std::filesystem::path(path).filename().string();
}

}

std::string Cube::text() const {
    return name.empty() ? std::to_string(number) : name;
}

std::string Entry::text() const {
    return cube.text() + "/" + textOf(key);
}

std::string Entry::fileName() const {
    return TRkMatCubes::MakeFilename(cube.number, key[0], key[1], key[2], key[3]).str() + extension;
}

Catalogue::Catalogue(std::string const& directory) : Catalogue(Project::open(directory)) {}

Catalogue::Catalogue(Project project) : project_(std::move(project)), cubes_(project_.settings(), extension, false) {}

Catalogue Catalogue::open(Surroundings const& surroundings) {
    return Catalogue(findProject(surroundings.project));
}

std::vector<Cube> Catalogue::cubes() const {
    TRkAutoListT<TRkBaseCubes::TKey> list;
    if (!cubes_.TRkBaseCubes::Get(list)) throw Failure("the database has no register of cubes");
    std::vector<Cube> found;
    for (int i = 0; i < list.Count(); ++i) found.push_back({list[i]->cubenr, list[i]->name.str()});
    std::sort(found.begin(), found.end(), [](Cube const& a, Cube const& b) { return a.number < b.number; });
    return found;
}

std::vector<Entry> Catalogue::entries() const {
    TRkAutoListT<TRkMatCubes::TKey> list;
    if (!cubes_.Get(list)) throw Failure(noEntryTable);
    std::vector<Entry> found;
    for (int i = 0; i < list.Count(); ++i) {
        auto const& key = *list[i];
        found.push_back({{key.cubenr, key.name.str()}, {key.purpose, key.mode, key.time, key.user}});
    }
    return found;
}

std::vector<Entry> Catalogue::entriesOf(Cube const& cube) const {
    auto found = entries();
    std::erase_if(found, [&](Entry const& entry) { return entry.cube.number != cube.number; });
    return found;
}

bool Catalogue::has(CubeWord const& word) const {
    return word.number ? cubes_.Check(*word.number) : cubes_.Check(word.text.c_str());
}

Cube Catalogue::cube(CubeWord const& word) const {
    if (!has(word)) throw Refusal(fmt::format("there is no cube {}", word.text));
    short const number = word.number ? *word.number : cubes_.CubeNameToNr(word.text.c_str());
    return {number, cubes_.CubeNrToName(number).str()};
}

bool Catalogue::has(Entry const& entry) const {
    auto const& [p, m, t, u] = entry.key;
    return cubes_.Check(entry.cube.number, p, m, t, u, oneBased);
}

Entry Catalogue::entry(EntryWord const& word) const {
    Entry const found = {cube(word.cube), word.key};
    if (!has(found)) throw Refusal(fmt::format("cube {} has no entry {}", found.cube.text(), textOf(word.key)));
    return found;
}

bool Catalogue::isInUse(Entry const& entry) const {
    auto const& [p, m, t, u] = entry.key;
    return has(entry) && !cubes_.isCorrect(entry.cube.number, p, m, t, u);
}

std::string Catalogue::path(Entry const& entry) const {
    auto const& [p, m, t, u] = entry.key;
    return cubes_.FileName(entry.cube.number, p, m, t, u, oneBased).str();
}

std::unique_ptr<TRkMatrix> Catalogue::matrix(Entry const& entry) const {
    auto const& [p, m, t, u] = entry.key;
    std::unique_ptr<TRkMatrix> found(cubes_.Get(entry.cube.number, p, m, t, u, unlocked, oneBased));
    if (found) return found;
    auto const file = path(entry);
    if (file.empty()) throw Failure("its row names no file inside the matrix directory");
    // The cube tells only that there is no matrix; the matrix tells why.
    TRkMatrix const unreadable(file.c_str(), 0, nullptr, false, mkDefault, unlocked, 0);
    throw Failure(unreadable.Reason());
}

Cube Catalogue::add(std::string const& name) {
    if (!cubes_.Add(name.c_str())) throw Failure("the database takes no more cubes");
    return cube({name, std::nullopt});
}

Entry Catalogue::store(EntryWord const& word, TRkMatrix const& matrix) {
    bool const isNew = !word.cube.number && !has(word.cube);
    Entry const entry = {isNew ? add(word.cube.text) : cube(word.cube), word.key};
    try {
        storeAt(entry, matrix);
    } catch (...) {
        // Others may have stored into the new cube meanwhile.
        if (isNew && entriesOf(entry.cube).empty()) remove(entry.cube);
        throw;
    }
    return entry;
}

void Catalogue::storeAt(Entry const& entry, TRkMatrix const& matrix) {
    if (has(entry)) {
        refuseToReplace(entry);
        write(entry, matrix);
        return;
    }
    auto const& [p, m, t, u] = entry.key;
    if (!cubes_.Add(cubes_.Open(), entry.cube.number, p, m, t, u, oneBased)) throw Failure(noEntryTable);
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
    if (file != entry.fileName())
        throw Refusal(fmt::format("the entry's row names the file \"{}\"; remove the entry first", file));
}

void Catalogue::write(Entry const& entry, TRkMatrix const& matrix) {
    auto const& [p, m, t, u] = entry.key;
    // By number: the old matrix stays until the new one is complete.
    if (cubes_.Set(entry.cube.number, p, m, t, u, matrix, unlocked, oneBased)) return;
    // The cube tells only that it failed; writing once more by hand tells why, or succeeds.
    TRkMatrix again(
        matrix.Rows(), matrix.Columns(), mtMatrixCube, path(entry).c_str(), 1, "", "", false, mkDefault, unlocked);
    if (again.IsValid()) again.AssignFrom(matrix);
    if (!again.IsValid()) throw Failure(again.Reason());
}

void Catalogue::remove(Cube const& cube) {
    if (!cubes_.Delete(cube.number)) throw Failure(noEntryTable);
}

void Catalogue::remove(Entry const& entry) {
    auto const& [p, m, t, u] = entry.key;
    if (!cubes_.Clear(entry.cube.number, p, m, t, u, oneBased)) throw Failure(noEntryTable);
}

}
