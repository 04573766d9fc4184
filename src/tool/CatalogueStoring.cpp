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

void requireFile(std::string const& path) {
    if (path.empty()) throw Failure("its row names no file inside the matrix directory");
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
    if (!familyOf(entry.cube).add(entry)) throw Failure(noEntryTable);
    try {
        write(entry, matrix);
    } catch (...) {
        // With a file it is the entry of someone who stored it at the same moment.
        if (!fs::exists(path(entry))) remove(entry);
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

Entry Catalogue::copy(Entry const& from, EntryWord const& word, Existing existing) {
    return inCube(word, [&](Entry const& to) {
        if (from == to) return;
        refuseTarget(to, existing);
        if (shareFiles(from, to)) return place(from, to, &EntryFamily::copyFrom);
        storeAt(to, *matrix(from));
    });
}

Entry Catalogue::move(Entry const& from, EntryWord const& word, Existing existing) {
    return inCube(word, [&](Entry const& to) {
        if (from == to) return;
        refuseUse(from);
        refuseTarget(to, existing);
        if (shareFiles(from, to)) return place(from, to, &EntryFamily::moveFrom);
        storeAt(to, *matrix(from));
        remove(from);
    });
}

void Catalogue::refuseTarget(Entry const& to, Existing existing) const {
    if (existing == Existing::refused && has(to)) throw Refusal(fmt::format("{} exists already", to.text()));
    refuseUse(to);
}

// Files go as they are, without being read.
void Catalogue::place(Entry const& from, Entry const& to, FilePlacing placing) {
    auto const file = path(from);
    requireFile(file);
    if (!fs::exists(file)) throw Failure(fmt::format("there is no file {}", file));
    bool const isNew = !has(to);
    if (!isNew) requireFile(path(to));
    if ((familyOf(to.cube).*placing)(familyOf(from.cube), from, to)) return;
    auto const target = path(to);
    if (isNew && has(to)) remove(to);
    throw Failure(fmt::format("the file {} could not be placed at {}", file, target));
}

Entry Catalogue::copyFrom(Catalogue& source, Entry const& from, EntryWord const& word, Existing existing) {
    refuseSharedDirectory(source, from, word);
    source.project_.makeCurrent();
    auto const found = source.matrix(from);
    project_.makeCurrent();
    return inCube(word, [&](Entry const& to) {
        refuseTarget(to, existing);
        storeAt(to, *found);
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
