#include "matcubes/EntryTransfer.h"

#include "catalogue/EntryTable.h"
#include "catalogue/MatrixPlacing.h"

namespace cubes::matcubes {

namespace {

bool lookUp(TRkMatCubes const& cubes, CountedPtr<Rktable::TRkTableProxy> const& table, Key const& k, bool zeroBased) {
    return cubes.LookUp(table, k[0], k[1], k[2], k[3], k[4], zeroBased);
}

}

bool EntryTransfer::copy() const {
    return run([](Tables const&, std::string const& sourceFile, std::string const& targetFile) {
        return copyMatrixFile(sourceFile, targetFile, lsReadWrite);
    });
}

bool EntryTransfer::move() const {
    return run([this](Tables const& tables, std::string const& sourceFile, std::string const& targetFile) {
        if (!moveMatrixFile(sourceFile, targetFile)) return false;
        if (lookUp(source, tables.source, from, zeroBased)) tables.source->Delete();
        return true;
    });
}

bool EntryTransfer::run(Placing const& place) const {
    Table targetTable = target.Open();
    Table sourceTable = &source == &target ? targetTable : source.Open();
    bool const done = targetTable && sourceTable && transfer({sourceTable, targetTable}, place);
    source.Close(sourceTable);
    target.Close(targetTable);
    return done;
}

// True also where there is nothing to place: callers know it so.
bool EntryTransfer::transfer(Tables const& tables, Placing const& place) const {
    if (!lookUp(source, tables.source, from, zeroBased)) return true;
    // Read at once: looking up the target may move this very cursor.
    std::string const sourceFile = fileOfRow(*tables.source, source.MatrixDirectory().str());
    if (refusal && lookUp(target, tables.target, to, zeroBased)) throw TRkCubesException(*refusal);
    if (!target.Add(tables.target, to[0], to[1], to[2], to[3], to[4], zeroBased)) return true;
    std::string const targetFile = fileOfRow(*tables.target, target.MatrixDirectory().str());
    return sourceFile.empty() || targetFile.empty() || place(tables, sourceFile, targetFile);
}

}
