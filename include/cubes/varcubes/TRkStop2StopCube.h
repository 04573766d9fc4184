#pragma once

#include <cubes/Export.h>
#include <cubes/varcubes/TRkVarCubes.h>

/// The cube of stop-to-stop results.
class CUBES_API TRkStop2StopCube : public TRkVarCubes {
public:
    /// ctStopToStop.
    static RkCubeTypes const CubeType;
    /// mtStopToStop.
    static RkMatrixType const MatrixType;
    /// ".s2s".
    static char const* const Ext;

    /// Takes the matrix directory from the settings. `flag`: passed to new matrices.
    TRkStop2StopCube(TRkGlobalSettings* settings, bool flag);
    /// A null or empty directory is taken from the settings.
    TRkStop2StopCube(TRkGlobalSettings* settings, char const* directory, bool flag);
    /// Deleted: a text is not a flag.
    TRkStop2StopCube(TRkGlobalSettings*, char const*) = delete;
    TRkStop2StopCube(TRkStop2StopCube const&);
    TRkStop2StopCube& operator=(TRkStop2StopCube const&);
    ~TRkStop2StopCube() override;

    /// "stop2stopcube".
    char const* Name() const;
};
