#include <cubes/catalogue/TRkCubes.h>

#include "catalogue/ProjectCall.h"
#include "catalogue/Register.h"

#include <iterator>

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
    cubes::catalogue::ProjectCall const call(settings_);
    auto table = Open();
    if (!table) return false;
    cubes::catalogue::Register const reserved(table);
    for (std::size_t row = 0; row < std::size(CubeTypes); ++row)
        reserved.ensure(static_cast<short>(CubeTypes[row]), CubeNames[row]);
    return true;
}

bool TRkCubes::Get(TRkAutoListT<TRkBaseCubes::TKey>& list) const {
    return TRkBaseCubes::Get(list);
}
