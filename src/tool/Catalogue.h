#pragma once

#include "tool/Command.h"
#include "tool/Entry.h"

#include <cubes/matcubes/TRkMatCubes.h>
#include <cubes/matrix/TRkMatrix.h>
#include <cubes/project/Project.h>

#include <memory>
#include <string>
#include <vector>

namespace cubes::tool {

/// A cube of the register.
struct Cube {
    short number;
    std::string name;

    /// Its name, or its number when the register has no name for it.
    std::string text() const;
};

/// A place for a matrix: a cube and a key.
struct Entry {
    Cube cube;
    Key key;

    /// "Base/1/2/3/4".
    std::string text() const;
    /// The file it is stored in: "1-1-2-3-4.odm".
    std::string fileName() const;
};

/// What the commands ask of a project: its cubes and entries. What is asked for and not there is
/// a Refusal; a matrix that is there and cannot be read, a Failure.
class Catalogue {
public:
    explicit Catalogue(std::string const& directory);
    explicit Catalogue(Project project);
    /// The project that the surroundings name.
    static Catalogue open(Surroundings const& surroundings);

    Project const& project() const noexcept { return project_; }

    /// In the order of their numbers.
    std::vector<Cube> cubes() const;
    /// In the order of their keys.
    std::vector<Entry> entries() const;
    std::vector<Entry> entriesOf(Cube const& cube) const;
    Cube cube(CubeWord const& word) const;
    Entry entry(EntryWord const& word) const;

    bool has(CubeWord const& word) const;
    bool has(Entry const& entry) const;
    /// Whether somebody uses the entry, so that it must stay as it is.
    bool isInUse(Entry const& entry) const;
    /// Where the entry's matrix is; empty when its row names no file inside the matrix directory.
    std::string path(Entry const& entry) const;
    std::unique_ptr<TRkMatrix> matrix(Entry const& entry) const;

    /// Registers the cube; one of that name stays as it is.
    Cube add(std::string const& name);
    /// Stores the matrix, in place of the one that was there; a cube given by a new name is
    /// registered. An entry in use is refused. When it fails nothing has changed.
    Entry store(EntryWord const& word, TRkMatrix const& matrix);
    void remove(Cube const& cube);
    void remove(Entry const& entry);

private:
    void storeAt(Entry const& entry, TRkMatrix const& matrix);
    void refuseToReplace(Entry const& entry) const;
    void write(Entry const& entry, TRkMatrix const& matrix);

    Project project_;
    TRkMatCubes cubes_;
};

}
