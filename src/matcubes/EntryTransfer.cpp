#include "matcubes/EntryTransfer.h"

#include "catalogue/EntryFile.h"
#include "catalogue/Tables.h"

#include <cubes/database/TPgConnection.h>

namespace cubes::matcubes {

using catalogue::CubeKey;
using catalogue::EntryTable;

namespace {

std::string pathOf(TRkMatCubes const& cubes, Rktable::TRkTableProxy& table) {
    return EntryTable(table, std::tuple_size_v<CubeKey>).path(cubes.MatrixDirectory().str());
}

bool lookUp(
    TRkMatCubes const& cubes, CountedPtr<Rktable::TRkTableProxy> const& table, CubeKey const& k, bool zeroBased) {
    return cubes.LookUp(table, k[0], k[1], k[2], k[3], k[4], zeroBased);
}

}

void forgetContent(Pgaccess::TPgConnection* connection, CubeKey const& key) {
    if (connection) catalogue::forgetContent(connection->Backend(), key);
}

bool EntryTransfer::copy() const {
    return run([](Tables const&, std::string const& sourceFile, std::string const& targetFile) {
        return catalogue::copyMatrixFile(sourceFile, targetFile, lsReadWrite);
    });
}

bool EntryTransfer::move() const {
    return run([this](Tables const& tables, std::string const& sourceFile, std::string const& targetFile) {
        if (!catalogue::moveMatrixFile(sourceFile, targetFile)) return false;
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

// True also when the source does not exist or a row names no usable file: callers rely on it.
bool EntryTransfer::transfer(Tables const& tables, Placing const& place) const {
    if (!lookUp(source, tables.source, from, zeroBased)) return true;
    // Read at once: looking up the target may move the same cursor.
    std::string const sourceFile = pathOf(source, *tables.source);
    if (refusal && lookUp(target, tables.target, to, zeroBased)) throw TRkCubesException(*refusal);
    if (!target.Add(tables.target, to[0], to[1], to[2], to[3], to[4], zeroBased)) return true;
    std::string const targetFile = pathOf(target, *tables.target);
    if (sourceFile.empty() || targetFile.empty()) return true;
    if (!place(tables, sourceFile, targetFile)) return false;
    if (auto const key = catalogue::storedKey(to, zeroBased)) forgetContent(target.GetConnection(), *key);
    return true;
}

}
