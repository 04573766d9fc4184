#include "catalogue/EntryTable.h"

#include <cubes/catalogue/TRkBaseCubes.h>
#include <cubes/database/TRkDBDataDictionary.h>

#include "catalogue/StoredName.h"

namespace cubes {

CountedPtr<Rktable::TRkTableProxy> buildEntryTable(
    TRkDBDataDictionary& dictionary, AnsiString const& schema, char const* alias) {
    std::vector<CountedPtr<Rktable::TRkTableProxy>> tables;
    if (!dictionary.BuildDataTables(TRkBaseCubes::ObjectName, tables, schema)) return {};
    for (auto const& table : tables)
        if (table && table->GetAliasPropertyWrapper().AsString().ToLower() == alias) return table;
    return {};
}

std::string fileOfRow(Rktable::TRkTableProxy& table, std::string const& directory) {
    auto const* const filename = table.FindField("filename");
    return filename ? storedPath(directory, filename->AsString().str()) : std::string();
}

std::string deleteRow(Rktable::TRkTableProxy& table, std::string const& directory) {
    std::string path = fileOfRow(table, directory);
    table.Delete();
    return path;
}

bool countsUsers(CountedPtr<Rktable::TRkTableProxy> const& table) {
    return table && table->FindField(usageColumn);
}

bool isFree(Rktable::TRkTableProxy& table) {
    auto const* const counter = table.FindField(usageColumn);
    return !counter || counter->IsNull() || counter->AsInteger() == 0;
}

}
