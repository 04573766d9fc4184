#pragma once

#include <cubes/Export.h>
#include <cubes/varcubes/TRkVarCubes.h>

/// The cube of cordon results: the trips that cross a cordon.
class CUBES_API TRkCordonCube : public TRkVarCubes {
public:
    /// ctCordon.
    static RkCubeTypes const CubeType;
    /// mtCordon.
    static RkMatrixType const MatrixType;
    /// ".cwm".
    static char const* const Ext;

    /// Takes the matrix directory from the settings. `flag`: passed to new matrices.
    TRkCordonCube(TRkGlobalSettings* settings, bool flag);
    /// A null or empty directory is taken from the settings.
    TRkCordonCube(TRkGlobalSettings* settings, char const* directory, bool flag);
    /// Deleted: a text is not a flag.
    TRkCordonCube(TRkGlobalSettings*, char const*) = delete;
    TRkCordonCube(TRkCordonCube const&);
    TRkCordonCube& operator=(TRkCordonCube const&);
    ~TRkCordonCube() override;

    /// "cordoncube".
    char const* Name() const;
};
