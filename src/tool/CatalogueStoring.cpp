// How matrices come into a project: stored, copied and moved.

#include "tool/Catalogue.h"
#include "tool/Errors.h"
#include "tool/Kinds.h"

#include <fmt/format.h>

#include <filesystem>

namespace cubes::tool {

namespace {

namespace fs = std::filesystem;

std::string fileOf(std::string const& path) {
    return fs::path(path).filename().string();
}

/// Whether the file of one serves the other as it is.
bool shareFiles(Entry const& a, Entry const& b) {
    return a.cube.kind == b.cube.kind || (a.cube.isOfResults() && b.cube.isOfResults());
}

void requireFile(Entry const& entry, std::string const& path) {
    if (path.empty()) throw Failure(fmt::format("the row of {} names no file inside its directory", entry.text()));
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
    bool const hadFile = fileIsThere(entry);
    if (!familyOf(entry.cube).add(entry)) throw Failure(noEntryTable);
    try {
        write(entry, matrix);
    } catch (...) {
        takeBack(entry, hadFile);
        throw;
    }
}

// What is at the place of an entry that may have no row.
bool Catalogue::fileIsThere(Entry const& entry) const {
    std::error_code ignored;
    return fs::exists(fs::path(directoryOf(entry.cube.kind)) / familyOf(entry.cube).fileName(entry), ignored);
}

// Takes back the row of an entry that was to be new.
void Catalogue::takeBack(Entry const& entry, bool hadFile) {
    // With a file that was not there before, it is the entry of someone who stored it at the same moment.
    if (!hadFile && fileIsThere(entry)) return;
    if (auto const table = familyOf(entry.cube).row(entry)) table->Delete();
}

void Catalogue::refuseToReplace(Entry const& entry) const {
    refuseUse(entry);
    // A row may name another file than the cube writes; the new matrix would never be found there.
    auto const file = fileOf(path(entry));
    if (file != familyOf(entry.cube).fileName(entry))
        throw Refusal(fmt::format("the entry's row names the file \"{}\"; remove the entry first", file));
}

void Catalogue::write(Entry const& entry, TRkMatrix const& matrix) {
    auto& family = familyOf(entry.cube);
    if (family.save(entry, matrix)) return;
    // The cube tells only that it failed; writing by hand tells why.
    TRkMatrix again(
        matrix.Rows(), matrix.Columns(), family.matrixType(), path(entry).c_str(), 1, "", "", false, mkDefault, lsNone);
    if (again.IsValid()) again.AssignFrom(matrix);
    if (!again.IsValid()) throw Failure(again.Reason());
    if (!family.save(entry, matrix)) throw Failure("the matrix could not be written");
}

Entry Catalogue::copy(Entry const& from, EntryWord const& word, Existing existing) {
    return inCube(word, [&](Entry const& to) {
        if (from == to) return;
        refuseTarget(to, existing);
        if (shareFiles(from, to)) return place(from, to, &EntryFamily::copyFrom, existing);
        storeAt(to, *matrix(from));
        giveParent(to, {});
    });
}

Entry Catalogue::move(Entry const& from, EntryWord const& word, Existing existing) {
    return inCube(word, [&](Entry const& to) {
        if (from == to) return;
        refuseUse(from);
        refuseTarget(to, existing);
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

void Catalogue::refuseTarget(Entry const& to, Existing existing) const {
    if (existing == Existing::refused && has(to)) throw Refusal(fmt::format("{} exists already", to.text()));
    refuseUse(to);
}

// Files go as they are, without being read.
void Catalogue::place(Entry const& from, Entry const& to, FilePlacing placing, Existing existing) {
    auto const file = path(from);
    requireFile(from, file);
    std::error_code ignored;
    if (!fs::exists(file, ignored)) throw Failure(fmt::format("there is no file {}", file));
    bool const isNew = !has(to);
    if (!isNew) requireFile(to, path(to));
    bool const hadFile = fileIsThere(to);
    auto& family = familyOf(to.cube);
    auto const parent = isNew ? ParentNumbers() : family.parent(to);
    if ((family.*placing)(familyOf(from.cube), from, to, existing == Existing::refused)) return;
    auto const why = whyNotPlaced(file, to);
    if (isNew)
        takeBack(to, hadFile);
    else
        giveParent(to, parent);
    throw Failure(why);
}

// Copying and moving tell only that they failed.
std::string Catalogue::whyNotPlaced(std::string const& file, Entry const& to) const {
    auto const target = path(to);
    auto const told = fmt::format("the file {} could not be placed at {}", file, target);
    std::error_code ignored;
    if (fs::is_directory(file, ignored) != fs::is_directory(target, ignored)) return told + ": one is a directory";
    auto const room = fs::space(directoryOf(to.cube.kind), ignored).available;
    if (!ignored && room < fs::file_size(file, ignored)) return told + ": no space is left";
    TRkMatrix const unwritable(
        1, 1, familyOf(to.cube).matrixType(), target.c_str(), 1, "", "", false, mkDefault, lsReadWrite);
    return unwritable.IsValid() ? told : fmt::format("{}: {}", told, unwritable.Reason());
}

Entry Catalogue::copyFrom(Catalogue& source, Entry const& from, EntryWord const& word, Existing existing) {
    refuseSharedDirectory(source, from, word);
    source.project_.makeCurrent();
    auto const found = source.matrix(from);
    project_.makeCurrent();
    return inCube(word, [&](Entry const& to) {
        refuseTarget(to, existing);
        storeAt(to, *found);
        giveParent(to, {});
    });
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
    std::error_code ignored;
    if (fs::equivalent(theirs, directoryOf(to.cube.kind), ignored))
        throw Refusal(fmt::format("both projects keep their files in {}", theirs));
}

std::string Catalogue::directoryOf(Kind const* kind) const {
    auto const& settings = *project_.settings();
    return (kind && kind->isResult ? settings.WorkingDirectory() : settings.MatrixDirectory()).str();
}

}
