#include <cubes/catalogue/TRkCubes.h>

#include <cubes/database/TRkDatabaseException.h>

#include <iterator>

namespace {

// A row that another process adds at the same moment is as good as ours.
void appendUnlessTaken(Rktable::TRkTableProxy& table, RkCubeTypes cubenr, char const* name) {
    table.Append();
    table.FieldByName("cubenr")->SetAsInteger(cubenr);
    table.FieldByName("name")->SetAsString(name);
    try {
        table.Post();
    } catch (TRkDatabaseException const& error) {
        if (!error.IsDuplicateKey() || !table.Locate("cubenr", static_cast<int>(cubenr))) throw;
    }
}

}

char const* const TRkCubes::CubeNames[6] = {
    "SkimCube", "SelectedLinkCube", "CordonCube", "ScreenCube", "TransitCube", "PathCube"};

RkCubeTypes const TRkCubes::CubeTypes[6] = {ctSkim, ctSelectedLink, ctCordon, ctScreenLine, ctTransit, ctPath};

TRkCubes::TRkCubes(TRkGlobalSettings* settings)
    : TRkBaseCubes(settings, nullptr, "", ctMatrix, mtMatrixCube, mkDefault, false) {
    Init();
}

TRkCubes::TRkCubes(TRkCubes const&) = default;
TRkCubes& TRkCubes::operator=(TRkCubes const&) = default;
TRkCubes::~TRkCubes() = default;

bool TRkCubes::Init() {
    auto table = Open();
    if (!table) return false;
    for (std::size_t row = 0; row < std::size(CubeTypes); ++row)
        if (!LookUp(table, static_cast<short>(CubeTypes[row])))
            appendUnlessTaken(*table, CubeTypes[row], CubeNames[row]);
    Close(table);
    return true;
}

bool TRkCubes::Get(TRkAutoListT<TRkBaseCubes::TKey>& list) const {
    return TRkBaseCubes::Get(list);
}
