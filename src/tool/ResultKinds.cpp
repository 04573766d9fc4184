#include "tool/ResultKinds.h"

#include <cubes/varcubes/TRkCordonCube.h>
#include <cubes/varcubes/TRkPathCube.h>
#include <cubes/varcubes/TRkScreenCube.h>
#include <cubes/varcubes/TRkSelectedLinkCube.h>
#include <cubes/varcubes/TRkSkimCube.h>
#include <cubes/varcubes/TRkStop2StopCube.h>
#include <cubes/varcubes/TRkTransitCube.h>

namespace cubes::tool {

namespace {

template <typename Cube>
ResultKind kindOf(char const* word) {
    return {word, static_cast<short>(Cube::CubeType), Cube::Ext, Cube::MatrixType,
        [](TRkGlobalSettings* settings) -> std::unique_ptr<TRkVarCubes> {
            return std::make_unique<Cube>(settings, false);
        }};
}

template <typename Property>
ResultKind const* findKind(Property const& isWanted) {
    for (auto const& kind : resultKinds())
        if (isWanted(kind)) return &kind;
    return nullptr;
}

}

std::span<ResultKind const> resultKinds() {
    static ResultKind const kinds[] = {kindOf<TRkSkimCube>("skim"), kindOf<TRkSelectedLinkCube>("selectedlink"),
        kindOf<TRkCordonCube>("cordon"), kindOf<TRkScreenCube>("screen"), kindOf<TRkTransitCube>("transit"),
        kindOf<TRkPathCube>("path"), kindOf<TRkStop2StopCube>("stop2stop")};
    return kinds;
}

ResultKind const* findResultKind(std::string_view word) {
    return findKind([&](ResultKind const& kind) { return kind.word == word; });
}

ResultKind const* findResultKind(short number) {
    return findKind([&](ResultKind const& kind) { return kind.number == number; });
}

std::string resultKindWords() {
    std::string words;
    for (auto const& kind : resultKinds()) words += (words.empty() ? "" : ", ") + std::string(kind.word);
    return words;
}

}
