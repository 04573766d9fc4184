#pragma once

#include <cubes/Export.h>
#include <cubes/varcubes/TRkVarCubes.h>

/// The cube of path results.
class CUBES_API TRkPathCube : public TRkVarCubes {
public:
    /// ctPath.
    static RkCubeTypes const CubeType;
    /// mtMatrixCube.
    static RkMatrixType const MatrixType;
    /// ".ptm".
    static char const* const Ext;

    /// Takes the matrix directory from the settings. `flag`: passed to new matrices.
    TRkPathCube(TRkGlobalSettings* settings, bool flag);
    /// An empty directory is taken from the settings.
    TRkPathCube(TRkGlobalSettings* settings, TRkFString const& directory, bool flag);
    /// Deleted: a text is not a flag.
    TRkPathCube(TRkGlobalSettings*, char const*) = delete;
    TRkPathCube(TRkPathCube const&);
    TRkPathCube& operator=(TRkPathCube const&);
    ~TRkPathCube() override;

    /// "pathcube".
    char const* Name() const;
};
