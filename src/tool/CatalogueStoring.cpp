// How matrices come into a project: stored, copied and moved.

#include "tool/Catalogue.h"
#include "tool/Errors.h"
#include "tool/FileBeside.h"
#include "tool/Kinds.h"
#include "tool/Paths.h"

#include <fmt/format.h>

#include <filesystem>

namespace cubes::tool {

namespace {

namespace fs = std::filesystem;

std::string fileOf(std::string const& path) {
    return toText(toPath(path).filename());
}

/// Whether the file of one serves the other as it is.
bool shareFiles(Entry const& a, Entry const& b) {
    if (a.cube.holdsRoutes() || b.cube.holdsRoutes()) return a.cube.kind == b.cube.kind;
    return a.cube.kind == b.cube.kind || (a.cube.isOfResults() && b.cube.isOfResults());
}

// Taking back what was begun: what fails then is not what the user has to know.
template <typename Undo>
void shielded(Undo const& undo) {
    try {
        undo();
    } catch (std::exception const&) {
        // The first error is told.
    }
}

void requireFile(Entry const& entry, std::string const& path) {
    if (path.empty())
        throw Failure(fmt::format("the database row of {} names no file inside its directory", entry.text()));
}

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
        shielded([&] {
            if (isNew && entriesOf(entry.cube).empty()) remove(entry.cube);
        });
        throw;
    }
    return entry;
}

Entry Catalogue::store(EntryWord const& word, TRkMatrix const& matrix) {
    return inCube(word, [&](Entry const& entry) { storeAt(entry, matrix); });
}

Entry Catalogue::storeRoutes(
    EntryWord const& word, std::function<void(Entry const&, std::string const& path)> const& write) {
    return inCube(word, [&](Entry const& entry) {
        fill(entry, [&] {
            auto const place = placeOf(entry);
            FileBeside const file(place);
            std::error_code ignored;
            if (fs::is_directory(toPath(place), ignored))
                throw Failure(fmt::format("cannot write {}: it is a directory", place));
            auto const lock = lockOf(entry);
            if (!lock.IsValid()) throw Failure(lock.Reason());
            write(entry, file.path());
            file.takePlace();
        });
        // Who failed to make the entry at the same moment may have taken its row away.
        if (!has(entry)) familyOf(entry.cube).add(entry);
    });
}

void Catalogue::storeAt(Entry const& entry, TRkMatrix const& matrix) {
    if (entry.cube.holdsRoutes()) throw Refusal(fmt::format("{} holds routes, not a matrix", entry.text()));
    fill(entry, [&] { write(entry, matrix); });
}

// Gives an entry a file, and a row where it has none.
template <typename Write>
void Catalogue::fill(Entry const& entry, Write const& write) {
    if (has(entry)) {
        refuseToReplace(entry);
        write();
        return;
    }
    bool const hadFile = fileIsThere(entry);
    if (!familyOf(entry.cube).add(entry)) throw Failure(noEntryTable);
    try {
        write();
    } catch (...) {
        shielded([&] { takeBack(entry, hadFile); });
        throw;
    }
}

// Where an entry's file belongs, also of one that has no row, or whose row others take away meanwhile.
std::string Catalogue::placeOf(Entry const& entry) const {
    return toText(toPath(directoryOf(entry.cube.kind)) / toPath(familyOf(entry.cube).fileName(entry)));
}

bool Catalogue::fileIsThere(Entry const& entry) const {
    std::error_code ignored;
    return fs::exists(toPath(placeOf(entry)), ignored);
}

// Takes back the row of an entry that was to be new, unless someone else stores it at the same
// moment: who is at it holds the file's lock, who has done it left a file. In place of a directory nobody can.
void Catalogue::takeBack(Entry const& entry, bool hadFile) {
    auto const lock = lockOf(entry);
    std::error_code ignored;
    bool const isDirectory = fs::is_directory(toPath(placeOf(entry)), ignored);
    bool const isHeld = !lock.IsValid() && FileBeside(placeOf(entry)).canBeMade();
    if (!isDirectory && (isHeld || (!hadFile && fileIsThere(entry)))) return;
    if (auto const table = familyOf(entry.cube).row(entry)) table->Delete();
}

// The lock of an entry's file, for as long as the object lives; not valid when it is refused.
TRkMatrix Catalogue::lockOf(Entry const& entry) const {
    return {1, 1, familyOf(entry.cube).matrixType(), placeOf(entry).c_str(), 1, "", "", false, mkDefault, lsReadWrite};
}

void Catalogue::refuseToReplace(Entry const& entry) const {
    refuseUse(entry);
    // A row may name another file than the cube writes; the new matrix would never be found there.
    auto const file = fileOf(path(entry));
    bool const isGone = file.empty() && !has(entry);
    if (!isGone && file != fileOf(familyOf(entry.cube).fileName(entry)))
        throw Refusal(fmt::format("the entry's database row names another file, \"{}\"; remove the entry first", file));
}

void Catalogue::write(Entry const& entry, TRkMatrix const& matrix) {
    auto& family = familyOf(entry.cube);
    if (family.save(entry, matrix)) return;
    // The cube tells only that it failed; writing by hand tells why.
    TRkMatrix again(matrix.Rows(), matrix.Columns(), family.matrixType(), placeOf(entry).c_str(), 1, "", "", false,
        mkDefault, lsNone);
    if (again.IsValid()) again.AssignFrom(matrix);
    if (!again.IsValid()) throw Failure(again.Reason());
    if (!family.save(entry, matrix)) throw Failure("the matrix could not be written");
}

Entry Catalogue::copy(Entry const& from, EntryWord const& word, Existing existing) {
    return inCube(word, [&](Entry const& to) {
        refuseExisting(to, existing);
        if (from == to) return;
        refuseUse(to);
        if (shareFiles(from, to)) return place(from, to, &EntryFamily::copyFrom, existing);
        storeAt(to, *matrix(from));
        giveParent(to, {});
    });
}

Entry Catalogue::move(Entry const& from, EntryWord const& word, Existing existing) {
    return inCube(word, [&](Entry const& to) {
        refuseExisting(to, existing);
        if (from == to) return;
        refuseUse(from);
        refuseUse(to);
        auto const parent = familyOf(from.cube).parent(from);
        if (shareFiles(from, to)) {
            place(from, to, &EntryFamily::moveFrom, existing);
        } else {
            storeAt(to, *matrix(from));
            remove(from);
        }
        giveParent(to, parent);
    });
}

void Catalogue::giveParent(Entry const& entry, ParentNumbers const& parent) {
    auto& family = familyOf(entry.cube);
    if (family.parent(entry) != parent) family.setParent(entry, parent);
}

void Catalogue::refuseExisting(Entry const& to, Existing existing) const {
    if (existing == Existing::refused && has(to)) throw Refusal(fmt::format("{} already exists", to.text()));
}

// Files go as they are, without being read.
void Catalogue::place(Entry const& from, Entry const& to, FilePlacing placing, Existing existing) {
    auto const file = path(from);
    requireFile(from, file);
    std::error_code ignored;
    if (!fs::exists(toPath(file), ignored)) throw Failure(fmt::format("there is no file {}", file));
    bool const isNew = !has(to);
    if (!isNew) requireFile(to, path(to));
    bool const hadFile = fileIsThere(to);
    auto& family = familyOf(to.cube);
    auto const parent = isNew ? ParentNumbers() : family.parent(to);
    try {
        if ((family.*placing)(familyOf(from.cube), from, to, existing == Existing::refused)) return;
        throw Failure(whyNotPlaced(file, to));
    } catch (...) {
        shielded([&] { isNew ? takeBack(to, hadFile) : giveParent(to, parent); });
        throw;
    }
}

// Copying and moving tell only that they failed.
std::string Catalogue::whyNotPlaced(std::string const& file, Entry const& to) const {
    auto const target = path(to);
    auto const told = fmt::format("the file {} could not be copied or renamed to {}", file, target);
    std::error_code error;
    auto const isDirectory = fs::is_directory(toPath(file), error);
    auto const size = isDirectory ? 0 : fs::file_size(toPath(file), error);
    if (error) return fmt::format("{}: {}", told, error.message());
    if (isDirectory != fs::is_directory(toPath(target), error)) return told + ": one is a directory";
    auto const room = fs::space(toPath(directoryOf(to.cube.kind)), error).available;
    if (!error && room < size) return told + ": No space left on device";
    auto const unwritable = lockOf(to);
    return unwritable.IsValid() ? told : fmt::format("{}: {}", told, unwritable.Reason());
}

Entry Catalogue::copyFrom(Catalogue& source, Entry const& from, EntryWord const& word, Existing existing) {
    refuseSharedDirectory(source, from, word);
    if (from.cube.holdsRoutes()) {
        source.refuseUse(from);
        return copyRoutes(source.path(from), from, word, existing);
    }
    source.project_.makeCurrent();
    auto const found = source.matrix(from);
    project_.makeCurrent();
    return inCube(word, [&](Entry const& to) {
        refuseExisting(to, existing);
        refuseUse(to);
        storeAt(to, *found);
        giveParent(to, {});
    });
}

Entry Catalogue::copyRoutes(std::string const& file, Entry const& from, EntryWord const& word, Existing existing) {
    if (word.cube.kind != from.cube.kind)
        throw Refusal(fmt::format("{} and {} must be of the same kind", from.text(), word.text()));
    requireFile(from, file);
    std::error_code ignored;
    if (!fs::is_regular_file(toPath(file), ignored)) throw Failure(fmt::format("there is no file {}", file));
    refuseExisting(possibleEntry(word), existing);
    refuseUse(possibleEntry(word));
    auto const copied =
        storeRoutes(word, [&](Entry const&, std::string const& path) { fs::copy_file(toPath(file), toPath(path)); });
    giveParent(copied, {});
    return copied;
}

Entry Catalogue::moveFrom(Catalogue& source, Entry const& from, EntryWord const& word, Existing existing) {
    source.refuseUse(from);
    auto const to = copyFrom(source, from, word, existing);
    source.remove(from);
    // Projects of one database share the rows of cubes: the row that went may have been both.
    if (!has(to)) familyOf(to.cube).add(to);
    return to;
}

// Files are named by their keys: one project would write over the files of the other.
void Catalogue::refuseSharedDirectory(Catalogue const& source, Entry const& from, EntryWord const& to) const {
    auto const theirs = source.directoryOf(from.cube.kind);
    if (isSameDirectory(theirs, directoryOf(to.cube.kind)))
        throw Refusal(fmt::format("both projects keep their files in {}", theirs));
}

std::string Catalogue::directoryOf(Kind const* kind) const {
    auto const& settings = *project_.settings();
    return (kind && kind->isResult ? settings.WorkingDirectory() : settings.MatrixDirectory()).str();
}

}
