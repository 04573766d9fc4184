#pragma once

#include <cubes/Export.h>
#include <cubes/varcubes/TRkVarCubes.h>

/// The cube of skims: time, distance or generalised cost of each OD pair.
class CUBES_API TRkSkimCube : public TRkVarCubes {
public:
    /// ctSkim.
    static RkCubeTypes const CubeType;
    /// mtSkim.
    static RkMatrixType const MatrixType;
    /// ".skm".
    static char const* const Ext;

    /// Takes the matrix directory from the settings. `flag`: passed to new matrices.
    TRkSkimCube(TRkGlobalSettings* settings, bool flag);
    /// An empty directory is taken from the settings.
    TRkSkimCube(TRkGlobalSettings* settings, TRkFString const& directory, bool flag);
    /// Deleted: a text is not a flag.
    TRkSkimCube(TRkGlobalSettings*, char const*) = delete;
    TRkSkimCube(TRkSkimCube const&);
    TRkSkimCube& operator=(TRkSkimCube const&);
    ~TRkSkimCube() override;

    /// "skimcube".
    char const* Name() const;
};
