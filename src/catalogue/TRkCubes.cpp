#include <cubes/catalogue/TRkCubes.h>

#include <iterator>

#include "catalogue/EntryTable.h"

namespace {

void appendUnlessTaken(Rktable::TRkTableProxy& table, RkCubeTypes cubenr, char const* name) {
    auto const append = [&] {
        table.Append();
        table.FieldByName("cubenr")->SetAsInteger(cubenr);
        table.FieldByName("name")->SetAsString(name);
    };
    cubes::addUnlessTaken(table, append, [&] { return table.Locate("cubenr", static_cast<int>(cubenr)); });
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
