#pragma once

#include <cubes/varcubes/TRkVarCubes.h>

#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace cubes::tool {

/// A kind of results. Their entries are written KIND/purpose/mode/time/user/result/iteration.
struct ResultKind {
    /// What stands for the cube's name.
    char const* word;
    short number;
    /// Of its matrix files, with the point.
    char const* extension;
    RkMatrixType matrixType;
    std::unique_ptr<TRkVarCubes> (*cubeOf)(TRkGlobalSettings* settings);
};

/// Every kind, in the order of the help.
std::span<ResultKind const> resultKinds();

/// Null for a word or number that is no kind's.
ResultKind const* findResultKind(std::string_view word);
ResultKind const* findResultKind(short number);

/// "skim, selectedlink, ...".
std::string resultKindWords();

}
